#pragma once

#include <optional>
#include <string>

/// The first line that comes from a file descriptor, without its end. None where it cannot be read.
std::optional<std::string> read_line(int descriptor);

/// Asks on the terminal of this process, where nothing of the answer is shown. None without a terminal.
std::optional<std::string> ask_on_terminal(const std::string& prompt);

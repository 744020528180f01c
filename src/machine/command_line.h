#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace machine {

/// A command line as a shell starts it: the program in quotes or up to the first blank, and the rest.
struct CommandLine {
    std::string program;
    std::string rest;  ///< without the blanks that part it from the program
};
CommandLine parse_command_line(std::string_view line);

/// The arguments that a Windows program makes of the text behind its name: parted by blanks and tabs, quotes
/// hold together, a quote behind a backslash is a character of its own.
std::vector<std::string> split_arguments(std::string_view rest);

}  // namespace machine

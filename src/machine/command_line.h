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

/// The text after the name of the running program `module` (its full path). The start at logon names it
/// without quotes, blanks in its path or not.
std::string rest_of_command_line(std::string_view line, std::string_view module);

/// The arguments that a Windows program makes of the text behind its name: parted by blanks and tabs, quotes
/// hold together, a quote behind a backslash is a character of its own.
std::vector<std::string> split_arguments(std::string_view rest);

}  // namespace machine

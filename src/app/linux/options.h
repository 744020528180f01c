#pragma once

#include <map>
#include <optional>
#include <string>
#include <variant>

/// What the Linux edition is started with: its own options, and the program's command line.
struct Options {
    enum class Tell { nothing, help, version };
    Tell tell = Tell::nothing;
    std::map<char, std::string> drives;  ///< host folders by letter; C is the installation
    std::string program_directory;       ///< where the program lies for Windows; empty: the default
    std::string state_folder;            ///< empty: the usual one
    std::string screenshot;              ///< PNG file to render the main window into; empty: none
    int page = 1;                        ///< of the screenshot
    std::string user;                    ///< whose marks the screenshot shows; empty: those at the start
    std::string make_sample;             ///< folder to make a sample installation in; empty: none
    std::string restriction_file;        ///< shown once the main window is there; empty: none
    std::string command_line;            ///< what the program is to see, as a whole: /icon, /uninstall
};

extern const char* const usage;

/// The options, or one line that tells what is wrong with them.
std::variant<Options, std::string> parse_options(int argc, const char* const* argv);

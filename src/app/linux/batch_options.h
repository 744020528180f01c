#pragma once

#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// What a run without a window is started with. Its first word is a verb. Host texts (UTF-8).
struct BatchOptions {
    enum class Verb { apply, show, save };
    Verb verb = Verb::show;
    std::string file;                    ///< the restriction file of apply and save, on this Linux system
    std::map<char, std::string> drives;  ///< host folders by letter; C is the installation
    std::vector<std::string> users;
    bool all_users = false;
    bool json = false;
    bool overwrite = false;
    int password_descriptor = -1;   ///< where the password comes from; -1: the terminal
    std::string program_directory;  ///< where the program lies for Windows; empty: the default
    std::string state_folder;       ///< empty: the usual one
};

extern const char* const batch_usage;

bool is_batch_verb(std::string_view word);

/// The options of a command line whose first word is a verb, or one line that tells what is wrong with them.
std::variant<BatchOptions, std::string> parse_batch_options(const std::vector<std::string>& words);

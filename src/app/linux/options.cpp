#include "app/linux/options.h"

#include <cstring>
#include <functional>
#include <vector>

#include "base/text.h"

const char* const usage =
    "Usage: britlock --machine DIR [--drive D=DIR]... [OPTION]... [/icon | /uninstall]\n"
    "\n"
    "  --machine DIR            the folder of a Windows installation: its drive C\n"
    "  --drive D=DIR            the folder of a further drive\n"
    "  --program-directory PATH where the program lies for Windows (for the start at logon)\n"
    "  --state DIR              folder for mounted hives and the registry of the person here\n"
    "  --screenshot FILE        render the main window into a PNG file, and end\n"
    "  --page N                 the page of the screenshot, 1 to 9\n"
    "  --user NAME              the user whose marks the screenshot shows\n"
    "  --make-sample DIR        make a small Windows XP installation to try things on, and end\n";

namespace {

using Setter = std::function<bool(Options&, const std::string&)>;

struct Known {
    const char* name;
    Setter set;
};

bool set_drive(Options& options, const std::string& text) {
    const char letter = text.empty() ? '\0' : text::upper(text[0]);
    if (text.size() < 3 || text[1] != '=' || letter < 'A' || letter > 'Z') return false;
    return options.drives.emplace(letter, text.substr(2)).second;
}

bool set_page(Options& options, const std::string& text) {
    if (text.size() != 1 || text[0] < '1' || text[0] > '9') return false;
    options.page = text[0] - '0';
    return true;
}

Setter into(std::string Options::*field) {
    return [field](Options& options, const std::string& text) {
        options.*field = text;
        return !text.empty();
    };
}

const std::vector<Known>& known_options() {
    static const std::vector<Known> all = {
        {"--machine", [](Options& o, const std::string& text) { return set_drive(o, "C=" + text); }},
        {"--drive", set_drive},
        {"--program-directory", into(&Options::program_directory)},
        {"--state", into(&Options::state_folder)},
        {"--screenshot", into(&Options::screenshot)},
        {"--page", set_page},
        {"--user", into(&Options::user)},
        {"--make-sample", into(&Options::make_sample)},
    };
    return all;
}

}  // namespace

std::variant<Options, std::string> parse_options(int argc, const char* const* argv) {
    Options options;
    int i = 1;
    for (; i < argc && std::strncmp(argv[i], "--", 2) == 0; i += 2) {
        const Known* found = nullptr;
        for (const Known& known : known_options()) {
            if (std::strcmp(known.name, argv[i]) == 0) found = &known;
        }
        if (!found) return "unknown option " + std::string(argv[i]);
        if (i + 1 == argc) return std::string(argv[i]) + " wants a value";
        if (!found->set(options, argv[i + 1])) {
            return std::string(argv[i]) + " does not take the value '" + argv[i + 1] + "'";
        }
    }
    for (; i < argc; ++i)
        options.command_line += (options.command_line.empty() ? "" : " ") + std::string(argv[i]);
    if (options.make_sample.empty() && !options.drives.contains('C'))
        return std::string("--machine is missing");
    return options;
}

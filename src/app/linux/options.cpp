#include "app/linux/options.h"

#include <functional>
#include <string_view>
#include <vector>

#include "base/text.h"

const char* const usage =
    "Usage: britlock --machine DIR [--drive D=DIR]... [OPTION]... [FILE.brl | /icon | /uninstall]\n"
    "       britlock (apply | show | save) --help    the work without a window\n"
    "\n"
    "  --machine DIR            the folder of a Windows installation: its drive C\n"
    "  --drive D=DIR            the folder of a further drive\n"
    "  --program-directory PATH where the program lies for Windows (for the start at logon)\n"
    "  --state DIR              folder for mounted hives and the registry of the person here\n"
    "  --screenshot FILE        render the main window into a PNG file, and end\n"
    "  --page N                 the page of the screenshot, 1 to 9\n"
    "  --user NAME              the user whose marks the screenshot shows\n"
    "  --make-sample DIR        make a small Windows XP installation to try things on, and end\n"
    "  --help, --version        tell about the program, and end\n"
    "\n"
    "A value can also follow its option after '='. The exit code is 0 (done), 1 (failed), 2 (wrong call) or\n"
    "3 (the display or the installation could not be opened).\n";

namespace {

using Setter = std::function<bool(Options&, const std::string&)>;

struct Known {
    std::string_view name;
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

const Known* find_option(std::string_view name) {
    for (const Known& known : known_options()) {
        if (known.name == name) return &known;
    }
    return nullptr;
}

/// The words of a command line, in their order.
class Words {
  public:
    Words(int argc, const char* const* argv) : words_(argv + 1, argv + argc) {}
    bool at_end() const { return next_ == words_.size(); }
    std::string take() { return words_[next_++]; }

  private:
    std::vector<std::string> words_;
    size_t next_ = 0;
};

/// One option with its value, after '=' or in the next word. Empty, or what is wrong.
std::string take_option(const std::string& word, Words& words, Options& options) {
    const size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const Known* known = find_option(name);
    if (!known) return "unknown option " + name;
    if (equals == std::string::npos && words.at_end()) return name + " wants a value";
    const std::string value = equals == std::string::npos ? words.take() : word.substr(equals + 1);
    return known->set(options, value) ? "" : name + " does not take the value '" + value + "'";
}

/// A restriction file, or a word of the program's own command line. That is taken as a whole: but for its
/// commands every text is an ordinary start.
std::string take_word(const std::string& word, Options& options) {
    if (word.starts_with('/') && word.find('/', 1) == std::string::npos) {
        options.command_line += (options.command_line.empty() ? "" : " ") + word;
    } else if (text::lower(word).ends_with(".brl")) {
        options.restriction_file = word;
    } else {
        return "unknown command " + word;
    }
    return "";
}

}  // namespace

std::variant<Options, std::string> parse_options(int argc, const char* const* argv) {
    Options options;
    for (Words words(argc, argv); !words.at_end();) {
        const std::string word = words.take();
        if (word == "--help" || word == "--version") {
            options.tell = word == "--help" ? Options::Tell::help : Options::Tell::version;
            return options;
        }
        const std::string wrong =
            word.starts_with('-') ? take_option(word, words, options) : take_word(word, options);
        if (!wrong.empty()) return wrong;
    }
    if (options.make_sample.empty() && !options.drives.contains('C'))
        return std::string("--machine is missing");
    return options;
}

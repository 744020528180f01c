#include "app/linux/batch_options.h"

#include <charconv>
#include <optional>

#include "base/text.h"

const char* const batch_usage =
    "Usage: britlock apply FILE.brl --machine DIR (--user NAME... | --all-users) [OPTION]...\n"
    "       britlock show --machine DIR (--user NAME... | --all-users) [--json] [OPTION]...\n"
    "       britlock save FILE.brl --machine DIR --user NAME [--overwrite] [OPTION]...\n"
    "\n"
    "  --machine DIR            the folder of a Windows installation: its drive C\n"
    "  --drive D=DIR            the folder of a further drive\n"
    "  --user NAME              a user; may be given several times\n"
    "  --all-users              everybody who has a profile, Administrator as well\n"
    "  --json                   for programs: one object for each user, on a line of its own\n"
    "  --overwrite              replace FILE.brl where it is there already\n"
    "  --password-fd N          read the product's password from this file descriptor, not the terminal\n"
    "  --program-directory PATH where the program lies for Windows (for the start at logon)\n"
    "  --state DIR              folder for mounted hives\n"
    "  --help                   tell this, and end\n"
    "\n"
    "A value can also follow its option after '='. The exit code is 0 (all done), 1 (some user failed), 2\n"
    "(wrong call) or 3 (the password, the file or the installation: nothing could be opened).\n";

namespace {

using Verb = BatchOptions::Verb;

struct VerbRow {
    std::string_view word;
    Verb verb;
    bool takes_file;
};

constexpr VerbRow verbs[] = {
    {"apply", Verb::apply, true}, {"show", Verb::show, false}, {"save", Verb::save, true}};

const VerbRow* find_verb(std::string_view word) {
    for (const VerbRow& row : verbs) {
        if (row.word == word) return &row;
    }
    return nullptr;
}

/// False where the option does not take the value.
using Setter = bool (*)(BatchOptions&, const std::string& value);

bool set_drive(BatchOptions& options, const std::string& value) {
    const char letter = value.empty() ? '\0' : text::upper(value[0]);
    if (value.size() < 3 || value[1] != '=' || letter < 'A' || letter > 'Z') return false;
    return options.drives.emplace(letter, value.substr(2)).second;
}

bool set_descriptor(BatchOptions& options, const std::string& value) {
    const char* const end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, options.password_descriptor);
    return read.ec == std::errc() && read.ptr == end && options.password_descriptor >= 0;
}

struct Option {
    std::string_view name;
    bool takes_value;
    Setter set;
};

constexpr Option known_options[] = {
    {"--machine", true, [](BatchOptions& o, const std::string& value) { return set_drive(o, "C=" + value); }},
    {"--drive", true, set_drive},
    {"--user", true,
     [](BatchOptions& o, const std::string& value) {
         o.users.push_back(value);
         return !value.empty();
     }},
    {"--all-users", false, [](BatchOptions& o, const std::string&) { return o.all_users = true; }},
    {"--json", false, [](BatchOptions& o, const std::string&) { return o.json = true; }},
    {"--overwrite", false, [](BatchOptions& o, const std::string&) { return o.overwrite = true; }},
    {"--password-fd", true, set_descriptor},
    {"--program-directory", true,
     [](BatchOptions& o, const std::string& value) { return !(o.program_directory = value).empty(); }},
    {"--state", true,
     [](BatchOptions& o, const std::string& value) { return !(o.state_folder = value).empty(); }},
};

const Option* find_option(std::string_view name) {
    for (const Option& option : known_options) {
        if (option.name == name) return &option;
    }
    return nullptr;
}

/// Takes the option at `at` with its value, which follows after '=' or in the next word. Empty, or what is
/// wrong.
std::string take_option(const std::vector<std::string>& words, size_t& at, BatchOptions& options) {
    const size_t equals = words[at].find('=');
    const std::string name = words[at].substr(0, equals);
    const Option* option = find_option(name);
    if (!option) return "unknown option " + name;
    std::optional<std::string> value;
    if (equals != std::string::npos) value = words[at].substr(equals + 1);
    if (option->takes_value && !value) {
        if (at + 1 == words.size()) return name + " wants a value";
        value = words[++at];
    }
    if (!option->takes_value && value) return name + " takes no value";
    return option->set(options, value.value_or("")) ? "" : name + " does not take the value '" + *value + "'";
}

/// What is wrong with options that are each right; empty: nothing.
std::string contradiction(const BatchOptions& options, const VerbRow& verb) {
    const std::string word(verb.word);
    if (verb.takes_file && options.file.empty()) return word + " wants a file";
    if (!options.drives.contains('C')) return "--machine is missing";
    if (options.users.empty() == !options.all_users) return word + " wants either --user or --all-users";
    const bool one_user = options.users.size() == 1;
    if (verb.verb == Verb::save && !one_user) return "save wants one --user";
    if (options.json && verb.verb != Verb::show) return "--json goes with show";
    if (options.overwrite && verb.verb != Verb::save) return "--overwrite goes with save";
    return "";
}

}  // namespace

bool is_batch_verb(std::string_view word) { return find_verb(word) != nullptr; }

std::variant<BatchOptions, std::string> parse_batch_options(const std::vector<std::string>& words) {
    const VerbRow& verb = *find_verb(words.at(0));
    BatchOptions options;
    options.verb = verb.verb;
    for (size_t at = 1; at < words.size(); ++at) {
        if (words[at].starts_with("--")) {
            if (std::string wrong = take_option(words, at, options); !wrong.empty()) return wrong;
        } else if (verb.takes_file && options.file.empty()) {
            options.file = words[at];
        } else {
            return "nothing is known of '" + words[at] + "'";
        }
    }
    if (std::string wrong = contradiction(options, verb); !wrong.empty()) return wrong;
    return options;
}

#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <vector>

#include "base/product.h"
#include "base/text.h"
#include "engine/allowed_programs.h"
#include "engine/catalogue.h"
#include "engine/keys.h"
#include "platform/windows_family.h"

/// Prints what the help's sources take from the catalogue, as macros: captions, names of values, keys. So the
/// help names a box as the window does. Complains of a box that a source does not explain.
///
/// usage: help_tables LANGUAGE SOURCE > tables.but
namespace {

using namespace britlock;

constexpr int last_page = 9;
constexpr int command_line_box = 96;
constexpr machine::Version windows_xp{2, 5, 1, 2600};

std::string escaped(std::string_view ansi) {
    std::string out;
    for (const char c : text::to_utf8(ansi)) {
        if (c == '\\' || c == '{' || c == '}') out += '\\';
        out += c;
    }
    return out;
}

std::string code(std::string_view ansi) { return "\\cw{" + escaped(ansi) + "}"; }

void define(const std::string& name, const std::string& text) {
    std::cout << "\\define{" << name << "} " << text << "\n\n";
}

template <class List, class Format>
std::string joined(const List& list, Format format, const char* between = ", ") {
    std::string out;
    for (const auto& item : list)
        out += (out.empty() ? "" : between) + format(item);
    return out;
}

/// The values that one box writes, by the key that they lie in.
std::map<std::string, std::vector<std::string>> values_of(int box) {
    std::map<std::string, std::vector<std::string>> values;
    for (const Restriction& row : Get_CR()) {
        if (row.box != box || !row.value_name) continue;
        values[row.key].emplace_back(row.value_name);
        if (row.text) values[row.text->key].emplace_back(row.text->value_name);
    }
    if (box == command_line_box) {  // the tick lies elsewhere than the value that is cleared
        const WindowsFamily& family = family_of(windows_xp);
        values = {{family.command_line_key, {family.command_line_value}}};
    }
    if (values.empty()) values[boot_file] = {};
    return values;
}

void print_boxes(int language) {
    for (const Restriction& row : Get_CR()) {
        if (row.page == 0) continue;
        const auto values = values_of(row.box);
        std::vector<std::string> names;
        for (const auto& [key, in_it] : values) {
            if (in_it.empty()) names.push_back(key);
            names.insert(names.end(), in_it.begin(), in_it.end());
        }
        define("tick" + std::to_string(row.box), escaped(pick(row.caption, language)));
        define("stored" + std::to_string(row.box), "(" + joined(names, code) + ")");
    }
}

/// The keys of each page, once each.
void print_keys(int language) {
    for (int page = 1; page <= last_page; ++page) {
        std::map<std::string, std::vector<std::string>> all;
        for (const int box : boxes_of_page(page)) {
            for (const auto& [key, names] : values_of(box)) {
                if (!names.empty()) all[key].insert(all[key].end(), names.begin(), names.end());
            }
        }
        if (all.empty()) continue;
        const Twin root{"der Wurzel des Benutzers", "the user's root"};
        define("keys" + std::to_string(page),
               joined(
                   all,
                   [&](const auto& entry) {
                       const std::string key = entry.first.empty() ? pick(root, language) : code(entry.first);
                       return key + ": " + joined(entry.second, code);
                   },
                   "; "));
    }
}

void print_lists(int language) {
    define("applets", joined(applets, [&](const Applet& a) { return escaped(pick(a.label, language)); }));
    define("suggestions", joined(suggested_programs(), code));
    define("ownentry", code(this_program));
    const std::pair<const char*, const char*> places[] = {
        {"hidekey", key::hide},
        {"explorerkey", key::explorer},
        {"restrictrunkey", key::restrict_run},
        {"dontloadkey", key::dont_load},
        {"disallowkey", key::disallow_cpl},
        {"productkey", product::key},

    };
    for (const auto& [name, place] : places)
        define(name, code(place));
    define("version", product::version);
    define("homepage", language == german ? product::german_homepage : product::homepage);
}

bool explains_every_box(const std::string& source) {
    std::ifstream in(source);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    bool complete = true;
    for (const Restriction& row : Get_CR()) {
        const std::string macro = "tick" + std::to_string(row.box) + "\n";
        if (row.page == 0 || text.find("\\" + macro) != std::string::npos) continue;
        std::cerr << source << ": the box c" << row.box << " is not explained\n";
        complete = false;
    }
    return complete;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const int language = std::stoi(argv[1]);
    print_boxes(language);
    print_keys(language);
    print_lists(language);
    return explains_every_box(argv[2]) ? 0 : 1;
}

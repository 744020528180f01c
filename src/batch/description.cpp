#include "batch/description.h"

#include <array>
#include <vector>

#include "base/text.h"
#include "engine/catalogue.h"

namespace britlock {

using namespace text::literals;
using Names = std::vector<std::string>;

namespace {

constexpr Twin nothing{U"keine Einschränkungen"_ansi, "no restrictions"};
constexpr Twin applets_caption{"In der Systemsteuerung ausgeblendet: ", "Hidden in the Control Panel: "};
constexpr Twin drives_caption{"Ausgeblendete Laufwerke: ", "Hidden drives: "};

std::string joined(const Names& names) {
    std::string out;
    for (const std::string& name : names)
        out += (out.empty() ? "" : ", ") + name;
    return out;
}

Names hidden_drives(const RestrictionSet& set) {
    Names letters;
    for (size_t k = 0; k < set.drives.size(); ++k) {
        if (set.drives[k] == 1) letters.emplace_back(1, static_cast<char>('A' + k));
    }
    return letters;
}

template <class NameOf>
Names hidden_applets(const RestrictionSet& set, NameOf name_of) {
    Names names;
    for (size_t i = 0; i < set.hidden_applets.size(); ++i) {
        if (set.hidden_applets[i]) names.emplace_back(name_of(applets[i]));
    }
    return names;
}

/// What stands beside a box on the window; empty for most.
std::string value_beside(int box, const RestrictionSet& set) {
    if (box == 37) return set.wallpaper;
    if (box == 39) return set.icon_folder;
    return box == 41 ? joined(set.programs) : "";
}

Names ticked_boxes(const RestrictionSet& set) {
    Names names;
    for (const Restriction& row : Get_CR()) {
        if (row.page != 0 && set.ticked(row.box)) names.push_back("c" + std::to_string(row.box));
    }
    return names;
}

std::string json_text(const std::string& ansi) {
    constexpr const char* digits = "0123456789abcdef";
    std::string out = "\"";
    for (const char c : ansi) {
        if (c == '"' || c == '\\') {
            out += std::string{'\\', c};
        } else if (static_cast<unsigned char>(c) < 0x20) {
            out += std::string("\\u00") + digits[c >> 4] + digits[c & 15];
        } else {
            out += c;
        }
    }
    return out + '"';
}

std::string json_list(const Names& names) {
    Names texts;
    for (const std::string& name : names)
        texts.push_back(json_text(name));
    return "[" + joined(texts) + "]";
}

}  // namespace

std::string description_of(const std::string& user, const RestrictionSet& set, int language) {
    Names lines;
    for (const Restriction& row : Get_CR()) {
        if (row.page == 0 || !set.ticked(row.box)) continue;
        const std::string value = value_beside(row.box, set);
        lines.push_back(pick(row.caption, language) + (value.empty() ? "" : " " + value));
    }
    const Names labels =
        hidden_applets(set, [&](const Applet& applet) { return pick(applet.label, language); });
    if (!labels.empty()) lines.push_back(pick(applets_caption, language) + joined(labels));
    const Names letters = hidden_drives(set);
    if (!letters.empty()) lines.push_back(pick(drives_caption, language) + joined(letters));
    if (lines.empty()) lines.emplace_back(pick(nothing, language));

    std::string out = user + ":\n";
    for (const std::string& line : lines)
        out += "  " + line + "\n";
    return out;
}

std::string json_of(const std::string& user, const RestrictionSet& set) {
    const std::pair<const char*, std::string> members[] = {
        {"user", json_text(user)},
        {"ticked", json_list(ticked_boxes(set))},
        {"hidden_applets", json_list(hidden_applets(set, [](const Applet& applet) { return applet.file; }))},
        {"programs", json_list(set.programs)},
        {"hidden_drives", json_list(hidden_drives(set))},
        {"wallpaper", json_text(set.wallpaper)},
        {"icon_folder", json_text(set.icon_folder)},
    };
    Names texts;
    for (const auto& [name, value] : members)
        texts.push_back(json_text(name) + ": " + value);
    return "{" + joined(texts) + "}\n";
}

}  // namespace britlock

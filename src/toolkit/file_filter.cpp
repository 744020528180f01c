#include "toolkit/file_filter.h"

#include "base/text.h"
#include "base/wildcards.h"

namespace toolkit {

namespace {

std::vector<std::string_view> split(std::string_view text, char at) {
    std::vector<std::string_view> parts;
    for (size_t end = text.find(at); end != std::string_view::npos; end = text.find(at)) {
        parts.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    parts.push_back(text);
    return parts;
}

}  // namespace

std::vector<Filter> parse_filters(std::string_view text) {
    const auto parts = split(text, '|');
    std::vector<Filter> filters;
    for (size_t i = 0; i + 1 < parts.size(); i += 2)
        filters.push_back({std::string(parts[i]), std::string(parts[i + 1])});
    return filters;
}

bool matches(std::string_view name, std::string_view pattern) {
    const std::string lower_name = text::lower(name);
    for (const std::string_view one : split(pattern, ';')) {
        const std::string_view bare = text::trim_blanks(one);
        if (bare == "*.*" || text::like(lower_name, text::lower(bare))) return true;
    }
    return false;
}

std::string full_path(std::string_view folder, std::string_view typed) {
    const auto below = [](std::string_view parent, std::string_view rest) {
        return std::string(parent) + (parent.ends_with('\\') ? "" : "\\") + std::string(rest);
    };
    if (typed.size() >= 2 && typed[1] == ':') {
        const bool from_root = typed.size() > 2 && typed[2] == '\\';
        return below(typed.substr(0, 2), typed.substr(from_root ? 3 : 2));
    }
    if (typed.starts_with('\\')) return below(folder.substr(0, 2), typed.substr(1));
    return below(folder, typed);
}

}  // namespace toolkit

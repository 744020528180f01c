#include "machine/command_line.h"

#include <algorithm>

#include "base/text.h"

namespace machine {

CommandLine parse_command_line(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    const bool quoted = line.starts_with('"');
    if (quoted) line.remove_prefix(1);
    const size_t end = std::min(quoted ? line.find('"') : line.find_first_of(" \t"), line.size());
    std::string_view rest = line.substr(end);
    if (quoted && !rest.empty()) rest.remove_prefix(1);
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
    return {std::string(line.substr(0, end)), std::string(rest)};
}

std::string rest_of_command_line(std::string_view line, std::string_view module) {
    constexpr std::string_view blanks = " \t";
    std::string_view rest = line.substr(std::min(line.find_first_not_of(blanks), line.size()));
    if (!text::equal_ignoring_case(rest.substr(0, module.size()), module))
        return parse_command_line(line).rest;
    rest.remove_prefix(module.size());
    if (rest.find_first_of(blanks) != 0 && !rest.empty()) return parse_command_line(line).rest;
    return std::string(rest.substr(std::min(rest.find_first_not_of(blanks), rest.size())));
}

std::vector<std::string> split_arguments(std::string_view rest) {
    std::vector<std::string> out;
    bool inside = false;  // an argument has begun, be it with an empty pair of quotes
    bool quoted = false;
    for (size_t i = 0; i < rest.size();) {
        if (!quoted && (rest[i] == ' ' || rest[i] == '\t')) {
            inside = false;
            ++i;
            continue;
        }
        if (!inside) out.emplace_back();
        inside = true;
        const size_t backslashes = std::min(rest.find_first_not_of('\\', i), rest.size()) - i;
        i += backslashes;
        const bool before_quote = i < rest.size() && rest[i] == '"';
        out.back().append(before_quote ? backslashes / 2 : backslashes, '\\');
        if (before_quote) {
            if (backslashes % 2 == 1) {
                out.back() += '"';
            } else {
                quoted = !quoted;
            }
            ++i;
        } else if (backslashes == 0) {
            out.back() += rest[i++];
        }
    }
    return out;
}

}  // namespace machine

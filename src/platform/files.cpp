#include <limits>

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/registry_mod.h"

namespace britlock {

namespace {

/// One class of a pattern, `at` behind its bracket; moves `at` behind the closing one.
bool in_class(char c, std::string_view pattern, size_t& at) {
    const size_t end = pattern.find(']', at);
    if (end == std::string_view::npos) throw RuntimeError(93);  // a pattern that nobody can fulfil
    std::string_view set = pattern.substr(at, end - at);
    at = end + 1;
    const bool negated = set.starts_with('!');
    if (negated) set.remove_prefix(1);
    bool found = false;
    for (size_t i = 0; i < set.size(); ++i) {
        const bool range = i + 2 < set.size() && set[i + 1] == '-';
        const auto low = static_cast<unsigned char>(set[i]);
        const auto high = static_cast<unsigned char>(range ? set[i + 2] : set[i]);
        const auto u = static_cast<unsigned char>(c);
        found = found || (u >= low && u <= high);
        if (range) i += 2;
    }
    return found != negated;
}

}  // namespace

bool like(std::string_view text, std::string_view pattern) {
    size_t t = 0, p = 0;
    size_t star = std::string_view::npos, retry = 0;
    while (t < text.size() || p < pattern.size()) {
        size_t next = p;
        bool fits = false;
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            retry = t;
            continue;
        }
        if (p < pattern.size() && t < text.size()) {
            const char c = pattern[next++];
            fits = c == '?' || (c == '#' ? text[t] >= '0' && text[t] <= '9' : c == text[t]);
            if (c == '[') fits = in_class(text[t], pattern, next);
        }
        if (fits) {
            ++t;
            p = next;
        } else if (star != std::string_view::npos && retry < text.size()) {
            p = star + 1;
            t = ++retry;
        } else {
            return false;
        }
    }
    return true;
}

bool REGISTRY_MOD::file_has_content(std::string_view path) {
    const auto file = machine_.files.open_binary(path);
    if (file.error == machine::permission_denied) return true;  // the NTUSER.DAT of somebody who is logged on
    if (file.error != machine::no_error) return false;
    if (file.length > 0) return true;
    (void)machine_.files.remove(path);  // what the opening has made, or an empty file that was there
    return false;
}

int REGISTRY_MOD::find_files(std::string_view directory, std::vector<std::string>& files,
                             std::string_view pattern, uint32_t attributes, bool recursive) {
    std::string folder(directory);
    if (!folder.ends_with('\\')) folder += '\\';
    const std::string wanted = text::lower(pattern);

    const auto found = machine_.files.find(folder + '*');
    if (!found) throw RuntimeError(76);
    int16_t count = 0;
    auto add = [&](int more) {
        if (count + more > std::numeric_limits<int16_t>::max()) throw RuntimeError(6);
        count = static_cast<int16_t>(count + more);
    };
    for (const machine::FoundFile& entry : *found) {
        const std::string path = folder + entry.name;
        const uint32_t its = machine_.files.attributes(path);
        if (its & machine::attribute_directory) {
            const bool real = its != machine::no_attributes && entry.name != "." && entry.name != "..";
            if (recursive && real) add(find_files(path, files, wanted, attributes, true));
        } else if ((its & attributes) == attributes && like(text::lower(entry.name), wanted)) {
            add(1);
            files.push_back(path);
        }
    }
    return count;
}

}  // namespace britlock

#include "base/wildcards.h"

#include "base/runtime_error.h"

namespace text {

namespace {

/// One class of a pattern, `at` after its bracket; moves `at` past the closing one.
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

}  // namespace text

#include "base/text.h"

#include <algorithm>

namespace text {

namespace {

void append_utf8(std::string& out, char32_t c) {
    auto put = [&](char32_t v) { out.push_back(static_cast<char>(static_cast<unsigned char>(v))); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | (c >> 6));
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3F));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

bool is_lead_surrogate(char16_t u) { return u >= 0xD800 && u < 0xDC00; }
bool is_trail_surrogate(char16_t u) { return u >= 0xDC00 && u < 0xE000; }

}  // namespace

char16_t to_utf16(char byte) {
    const auto b = static_cast<unsigned char>(byte);
    return b >= 0x80 && b < 0xA0 ? detail::high_half[b - 0x80] : static_cast<char16_t>(b);
}

std::optional<char> from_utf16(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF))
        return static_cast<char>(static_cast<unsigned char>(unit));
    const auto* at = std::find(std::begin(detail::high_half), std::end(detail::high_half), unit);
    if (at == std::end(detail::high_half)) return std::nullopt;
    return static_cast<char>(static_cast<unsigned char>(0x80 + (at - std::begin(detail::high_half))));
}

std::u16string to_utf16(std::string_view ansi) {
    std::u16string out;
    out.reserve(ansi.size());
    for (char c : ansi)
        out.push_back(to_utf16(c));
    return out;
}

std::optional<std::string> from_utf16(std::u16string_view units) {
    std::string out;
    out.reserve(units.size());
    for (char16_t u : units) {
        const auto byte = from_utf16(u);
        if (!byte) return std::nullopt;
        out.push_back(*byte);
    }
    return out;
}

std::string to_utf8(std::string_view ansi) { return utf8_from_utf16(to_utf16(ansi)); }

std::string utf8_from_utf16(std::u16string_view units) {
    std::string out;
    for (size_t i = 0; i < units.size(); ++i) {
        char32_t c = units[i];
        if (is_lead_surrogate(units[i]) && i + 1 < units.size() && is_trail_surrogate(units[i + 1])) {
            c = 0x10000 + ((c - 0xD800) << 10) + (units[i + 1] - 0xDC00u);
            ++i;
        } else if (is_lead_surrogate(units[i]) || is_trail_surrogate(units[i])) {
            c = 0xFFFD;
        }
        append_utf8(out, c);
    }
    return out;
}

std::optional<std::u16string> utf16_from_utf8(std::string_view utf8) {
    std::u16string out;
    for (size_t i = 0; i < utf8.size();) {
        const auto lead = static_cast<unsigned char>(utf8[i++]);
        int more = 0;
        char32_t c = lead;
        if (lead >= 0xF0 && lead < 0xF8) {
            more = 3;
            c = lead & 0x07u;
        } else if (lead >= 0xE0) {
            more = 2;
            c = lead & 0x0Fu;
        } else if (lead >= 0xC0) {
            more = 1;
            c = lead & 0x1Fu;
        } else if (lead >= 0x80) {
            return std::nullopt;
        }
        if (lead >= 0xF8) return std::nullopt;
        constexpr char32_t least[] = {0, 0x80, 0x800, 0x10000};
        const char32_t minimum = least[more];
        for (; more > 0; --more) {
            if (i == utf8.size()) return std::nullopt;
            const auto next = static_cast<unsigned char>(utf8[i++]);
            if ((next & 0xC0u) != 0x80) return std::nullopt;
            c = (c << 6) | (next & 0x3Fu);
        }
        if (c < minimum || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) return std::nullopt;
        if (c >= 0x10000) {
            out.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(c));
        }
    }
    return out;
}

std::optional<std::string> from_utf8(std::string_view utf8) {
    const auto units = utf16_from_utf8(utf8);
    return units ? from_utf16(*units) : std::nullopt;
}

char lower(char byte) {
    const auto b = static_cast<unsigned char>(byte);
    const bool plain = b >= 'A' && b <= 'Z';
    const bool umlaut = b >= 0xC0 && b <= 0xDE && b != 0xD7;
    if (plain || umlaut) return static_cast<char>(b + 0x20);
    if (b == 0x8A || b == 0x8C || b == 0x8E) return static_cast<char>(b + 0x10);
    return b == 0x9F ? '\xFF' : byte;
}

char upper(char byte) {
    const auto b = static_cast<unsigned char>(byte);
    const bool plain = b >= 'a' && b <= 'z';
    const bool umlaut = b >= 0xE0 && b <= 0xFE && b != 0xF7;
    if (plain || umlaut) return static_cast<char>(b - 0x20);
    if (b == 0x9A || b == 0x9C || b == 0x9E) return static_cast<char>(b - 0x10);
    return b == 0xFF ? '\x9F' : byte;
}

std::string lower(std::string_view ansi) {
    std::string out(ansi);
    for (char& c : out)
        c = lower(c);
    return out;
}

std::string upper(std::string_view ansi) {
    std::string out(ansi);
    for (char& c : out)
        c = upper(c);
    return out;
}

bool equal_ignoring_case(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

bool less_ignoring_case(std::string_view a, std::string_view b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return static_cast<unsigned char>(upper(x)) < static_cast<unsigned char>(upper(y));
    });
}

std::string_view trim_blanks(std::string_view ansi) {
    const auto first = ansi.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return ansi.substr(first, ansi.find_last_not_of(' ') - first + 1);
}

}  // namespace text

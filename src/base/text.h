#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Text of the program is bytes in Windows code page 1252, NUL bytes allowed. The five bytes that the page
/// leaves open (81, 8D, 8F, 90, 9D) stand for the control characters of the same number, as Windows does it.
namespace text {

/// The UTF-16 code unit of one byte.
char16_t to_utf16(char byte);
/// The byte of one code unit; none where the code page cannot spell it.
std::optional<char> from_utf16(char16_t unit);

std::u16string to_utf16(std::string_view ansi);
/// None where one unit cannot be spelled: a name is refused, never mangled.
std::optional<std::string> from_utf16(std::u16string_view units);

/// For host file names and messages, which are UTF-8.
std::string to_utf8(std::string_view ansi);
std::string utf8_from_utf16(std::u16string_view units);
/// None for malformed UTF-8 or a character outside the code page.
std::optional<std::string> from_utf8(std::string_view utf8);
/// None for malformed UTF-8.
std::optional<std::u16string> utf16_from_utf8(std::string_view utf8);

/// Upper and lower case by the code page, umlauts included. Sharp s has no partner; y with diaeresis has one
/// (9F).
char lower(char byte);
char upper(char byte);
std::string lower(std::string_view ansi);
std::string upper(std::string_view ansi);
bool equal_ignoring_case(std::string_view a, std::string_view b);
bool less_ignoring_case(std::string_view a, std::string_view b);

/// What Windows' ANSI calls and the controls of a form see of a text: all before its first NUL.
constexpr std::string_view up_to_nul(std::string_view ansi) { return ansi.substr(0, ansi.find('\0')); }

/// Blanks (code 32) only.
std::string_view trim_blanks(std::string_view ansi);

namespace detail {
constexpr char16_t high_half[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                    0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

consteval char ansi_of(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(static_cast<unsigned char>(c));
    for (int i = 0; i < 32; ++i) {
        if (high_half[i] == c) return static_cast<char>(static_cast<unsigned char>(0x80 + i));
    }
    throw "this letter is not in code page 1252";
}

template <size_t N>
struct AnsiLiteral {
    char bytes[N]{};
    consteval AnsiLiteral(const char32_t (&source)[N]) {
        for (size_t i = 0; i < N; ++i)
            bytes[i] = ansi_of(source[i]);
    }
};
}  // namespace detail

inline namespace literals {
/// U"Menü"_ansi: the bytes of code page 1252, made at compile time; another letter does not compile.
template <detail::AnsiLiteral literal>
constexpr const char* operator""_ansi() {
    return literal.bytes;
}
}  // namespace literals

}  // namespace text

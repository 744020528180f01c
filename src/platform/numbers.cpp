#include "platform/numbers.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "base/runtime_error.h"

namespace britlock {

namespace {

bool is_space(char c) { return c == ' ' || c == '\t' || c == '\n'; }
bool is_digit(char c) { return c >= '0' && c <= '9'; }
char capital(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

int digit_value(char c) {
    if (is_digit(c)) return c - '0';
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : 99;
}

/// `&H1F`, `&O17`: up to 16 bits the number has the sign of 16 bits, above that of 32.
double based_number(std::string_view digits, int base) {
    uint64_t value = 0;
    for (char c : digits) {
        const int digit = digit_value(c);
        if (digit >= base) break;
        value = value * base + digit;
        if (value > std::numeric_limits<uint32_t>::max()) throw RuntimeError(6);
    }
    if (value <= std::numeric_limits<uint16_t>::max()) return static_cast<int16_t>(value);
    return static_cast<int32_t>(value);
}

std::string decimal_prefix(std::string_view s) {
    std::string out;
    size_t i = 0;
    auto take_digits = [&] {
        const size_t start = i;
        while (i < s.size() && is_digit(s[i]))
            out.push_back(s[i++]);
        return i > start;
    };
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) out.push_back(s[i++]);
    bool digits = take_digits();
    if (i < s.size() && s[i] == '.') {
        out.push_back(s[i++]);
        digits = take_digits() || digits;
    }
    if (!digits) return "0";
    if (i < s.size() && (s[i] == 'E' || s[i] == 'D')) {
        std::string mantissa = out;
        out.push_back('e');
        ++i;
        if (i < s.size() && (s[i] == '+' || s[i] == '-')) out.push_back(s[i++]);
        if (!take_digits()) return mantissa;
    }
    return out;
}

}  // namespace

double leading_number(std::string_view text) {
    std::string dense;
    for (char c : text) {
        if (!is_space(c)) dense.push_back(capital(c));
    }
    if (dense.starts_with("&H")) return based_number(std::string_view(dense).substr(2), 16);
    if (dense.starts_with("&O")) return based_number(std::string_view(dense).substr(2), 8);
    const std::string prefix = decimal_prefix(dense);
    const char* digits = prefix.c_str() + (prefix.starts_with('+') ? 1 : 0);
    double number = 0;
    // No function of the C library: a desktop in German sets its decimal comma for the whole process.
    const auto read = std::from_chars(digits, prefix.c_str() + prefix.size(), number);
    const bool tiny = prefix.find("e-") != std::string::npos;
    if (read.ec == std::errc::result_out_of_range && !tiny) throw RuntimeError(6);
    return number;
}

int32_t to_long(double number) {
    const double rounded = std::nearbyint(number);
    if (!(rounded >= std::numeric_limits<int32_t>::min() && rounded <= std::numeric_limits<int32_t>::max())) {
        throw RuntimeError(6);
    }
    return static_cast<int32_t>(rounded);
}

std::string number_text(int32_t number) { return (number >= 0 ? " " : "") + std::to_string(number); }

}  // namespace britlock

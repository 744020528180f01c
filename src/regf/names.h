#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace regf {

/// Windows' own upper case of one code unit: one unit to one unit, no locale, no sharp s.
char16_t upcase(char16_t unit);

/// The order of subkeys: unit by unit in upper case; the shorter first. Negative, 0 or positive.
int compare_names(std::u16string_view a, std::u16string_view b);

/// The four bytes beside a key in an `lf` list: the start of its name.
uint32_t name_hint(std::u16string_view name);
/// The four bytes beside a key in an `lh` list.
uint32_t name_hash(std::u16string_view name);

/// A name as it is stored: one byte a character where all fit, else UTF-16.
struct StoredName {
    std::vector<uint8_t> bytes;
    bool compressed = false;
};
StoredName store_name(std::u16string_view name);
std::u16string load_name(std::span<const uint8_t> bytes, bool compressed);

/// For messages: a path with everything odd escaped.
std::string printable(std::u16string_view name);

}  // namespace regf

#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "regf/bytes.h"

namespace regf {

/// Windows' own upper case of one code unit: one unit to one unit, no locale, no sharp s.
char16_t upcase(char16_t unit);

/// A name where it is stored: one byte a character where all fit, else UTF-16.
struct NameView {
    std::span<const uint8_t> bytes;
    bool compressed = false;

    size_t size() const { return compressed ? bytes.size() : bytes.size() / 2; }
    char16_t operator[](size_t i) const {
        return static_cast<char16_t>(compressed ? bytes[i] : get16(bytes, 2 * i));
    }
    std::u16string text() const;
};

/// The order of subkeys: unit by unit in upper case; the shorter first. Negative, 0 or positive.
int compare_names(NameView a, NameView b);
int compare_names(NameView a, std::u16string_view b);
int compare_names(std::u16string_view a, std::u16string_view b);

/// The four bytes beside a key in an `lf` list: the start of its name.
uint32_t name_hint(NameView name);
/// The four bytes beside a key in an `lh` list.
uint32_t name_hash(NameView name);

/// A name as it is to be stored.
struct StoredName {
    std::vector<uint8_t> bytes;
    bool compressed = false;
};
StoredName store_name(std::u16string_view name);

/// For messages: a path with everything odd escaped.
std::string printable(std::u16string_view name);

}  // namespace regf

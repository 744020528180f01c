#include "regf/names.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "base/text.h"
#include "regf/bytes.h"
#include "regf/hive.h"

namespace regf {

namespace {

/// Every `step`th unit from first to last has its capital `delta` further on.
struct CaseRange {
    uint16_t first, last;
    uint8_t step;
    int32_t delta;
};

constexpr CaseRange case_ranges[] = {
    {0x61, 0x7A, 1, -32},     {0xE0, 0xF6, 1, -32},        {0xF8, 0xFE, 1, -32},
    {0xFF, 0xFF, 1, 121},     {0x101, 0x12F, 2, -1},       {0x133, 0x137, 2, -1},
    {0x13A, 0x148, 2, -1},    {0x14B, 0x177, 2, -1},       {0x17A, 0x17E, 2, -1},
    {0x180, 0x180, 1, 195},   {0x183, 0x185, 2, -1},       {0x188, 0x188, 1, -1},
    {0x18C, 0x18C, 1, -1},    {0x192, 0x192, 1, -1},       {0x195, 0x195, 1, 97},
    {0x199, 0x199, 1, -1},    {0x19A, 0x19A, 1, 163},      {0x19E, 0x19E, 1, 130},
    {0x1A1, 0x1A5, 2, -1},    {0x1A8, 0x1A8, 1, -1},       {0x1AD, 0x1AD, 1, -1},
    {0x1B0, 0x1B0, 1, -1},    {0x1B4, 0x1B6, 2, -1},       {0x1B9, 0x1B9, 1, -1},
    {0x1BD, 0x1BD, 1, -1},    {0x1BF, 0x1BF, 1, 56},       {0x1C6, 0x1C6, 1, -2},
    {0x1C9, 0x1C9, 1, -2},    {0x1CC, 0x1CC, 1, -2},       {0x1CE, 0x1DC, 2, -1},
    {0x1DD, 0x1DD, 1, -79},   {0x1DF, 0x1EF, 2, -1},       {0x1F3, 0x1F3, 1, -2},
    {0x1F5, 0x1F5, 1, -1},    {0x1F9, 0x21F, 2, -1},       {0x223, 0x233, 2, -1},
    {0x23C, 0x23C, 1, -1},    {0x242, 0x242, 1, -1},       {0x247, 0x24F, 2, -1},
    {0x250, 0x250, 1, 10783}, {0x251, 0x251, 1, 10780},    {0x253, 0x253, 1, -210},
    {0x254, 0x254, 1, -206},  {0x256, 0x257, 1, -205},     {0x259, 0x259, 1, -202},
    {0x25B, 0x25B, 1, -203},  {0x260, 0x260, 1, -205},     {0x263, 0x263, 1, -207},
    {0x268, 0x268, 1, -209},  {0x269, 0x269, 1, -211},     {0x26B, 0x26B, 1, 10743},
    {0x26F, 0x26F, 1, -211},  {0x271, 0x271, 1, 10749},    {0x272, 0x272, 1, -213},
    {0x275, 0x275, 1, -214},  {0x27D, 0x27D, 1, 10727},    {0x280, 0x280, 1, -218},
    {0x283, 0x283, 1, -218},  {0x288, 0x288, 1, -218},     {0x289, 0x289, 1, -69},
    {0x28A, 0x28B, 1, -217},  {0x28C, 0x28C, 1, -71},      {0x292, 0x292, 1, -219},
    {0x371, 0x373, 2, -1},    {0x377, 0x377, 1, -1},       {0x37B, 0x37D, 1, 130},
    {0x3AC, 0x3AC, 1, -38},   {0x3AD, 0x3AF, 1, -37},      {0x3B1, 0x3C1, 1, -32},
    {0x3C3, 0x3CB, 1, -32},   {0x3CC, 0x3CC, 1, -64},      {0x3CD, 0x3CE, 1, -63},
    {0x3D7, 0x3D7, 1, -8},    {0x3D9, 0x3EF, 2, -1},       {0x3F2, 0x3F2, 1, 7},
    {0x3F8, 0x3F8, 1, -1},    {0x3FB, 0x3FB, 1, -1},       {0x430, 0x44F, 1, -32},
    {0x450, 0x45F, 1, -80},   {0x461, 0x481, 2, -1},       {0x48B, 0x4BF, 2, -1},
    {0x4C2, 0x4CE, 2, -1},    {0x4CF, 0x4CF, 1, -15},      {0x4D1, 0x523, 2, -1},
    {0x561, 0x586, 1, -48},   {0x1D79, 0x1D79, 1, 35332},  {0x1D7D, 0x1D7D, 1, 3814},
    {0x1E01, 0x1E95, 2, -1},  {0x1EA1, 0x1EFF, 2, -1},     {0x1F00, 0x1F07, 1, 8},
    {0x1F10, 0x1F15, 1, 8},   {0x1F20, 0x1F27, 1, 8},      {0x1F30, 0x1F37, 1, 8},
    {0x1F40, 0x1F45, 1, 8},   {0x1F51, 0x1F57, 2, 8},      {0x1F60, 0x1F67, 1, 8},
    {0x1F70, 0x1F71, 1, 74},  {0x1F72, 0x1F75, 1, 86},     {0x1F76, 0x1F77, 1, 100},
    {0x1F78, 0x1F79, 1, 128}, {0x1F7A, 0x1F7B, 1, 112},    {0x1F7C, 0x1F7D, 1, 126},
    {0x1F80, 0x1F87, 1, 8},   {0x1F90, 0x1F97, 1, 8},      {0x1FA0, 0x1FA7, 1, 8},
    {0x1FB0, 0x1FB1, 1, 8},   {0x1FB3, 0x1FB3, 1, 9},      {0x1FC3, 0x1FC3, 1, 9},
    {0x1FD0, 0x1FD1, 1, 8},   {0x1FE0, 0x1FE1, 1, 8},      {0x1FE5, 0x1FE5, 1, 7},
    {0x1FF3, 0x1FF3, 1, 9},   {0x214E, 0x214E, 1, -28},    {0x2170, 0x217F, 1, -16},
    {0x2184, 0x2184, 1, -1},  {0x24D0, 0x24E9, 1, -26},    {0x2C30, 0x2C5E, 1, -48},
    {0x2C61, 0x2C61, 1, -1},  {0x2C65, 0x2C65, 1, -10795}, {0x2C66, 0x2C66, 1, -10792},
    {0x2C68, 0x2C6C, 2, -1},  {0x2C73, 0x2C73, 1, -1},     {0x2C76, 0x2C76, 1, -1},
    {0x2C81, 0x2CE3, 2, -1},  {0x2D00, 0x2D25, 1, -7264},  {0xA641, 0xA65F, 2, -1},
    {0xA663, 0xA66D, 2, -1},  {0xA681, 0xA697, 2, -1},     {0xA723, 0xA72F, 2, -1},
    {0xA733, 0xA76F, 2, -1},  {0xA77A, 0xA77C, 2, -1},     {0xA77F, 0xA787, 2, -1},
    {0xA78C, 0xA78C, 1, -1},  {0xFF41, 0xFF5A, 1, -32},
};

constexpr std::array<char16_t, 0x10000> capitals = [] {
    std::array<char16_t, 0x10000> table{};
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<char16_t>(i);
    for (const CaseRange& range : case_ranges) {
        for (uint32_t u = range.first; u <= range.last; u += range.step) {
            table[u] = static_cast<char16_t>(static_cast<int32_t>(u) + range.delta);
        }
    }
    return table;
}();

}  // namespace

char16_t upcase(char16_t unit) { return capitals[unit]; }

std::u16string NameView::text() const {
    std::u16string out(size(), u'\0');
    for (size_t i = 0; i < out.size(); ++i)
        out[i] = (*this)[i];
    return out;
}

namespace {

template <class A, class B>
int compare(const A& a, const B& b) {
    const size_t common = std::min(a.size(), b.size());
    for (size_t i = 0; i < common; ++i) {
        const int difference = upcase(a[i]) - upcase(b[i]);
        if (difference != 0) return difference;
    }
    return static_cast<int>(a.size()) - static_cast<int>(b.size());
}

}  // namespace

int compare_names(NameView a, NameView b) { return compare(a, b); }
int compare_names(NameView a, std::u16string_view b) { return compare(a, b); }
int compare_names(std::u16string_view a, std::u16string_view b) { return compare(a, b); }

bool same_name(std::u16string_view a, std::u16string_view b) {
    return a.size() == b.size() && compare_names(a, b) == 0;
}

uint32_t name_hint(NameView name) {
    uint32_t hint = 0;
    for (size_t i = 0; i < std::min<size_t>(name.size(), 4); ++i) {
        if (name[i] > 0xFF) return 0;
        hint |= static_cast<uint32_t>(name[i]) << 8 * i;
    }
    return hint;
}

uint32_t name_hash(NameView name) {
    uint32_t hash = 0;
    for (size_t i = 0; i < name.size(); ++i)
        hash = hash * 37 + upcase(name[i]);
    return hash;
}

StoredName store_name(std::u16string_view name) {
    StoredName out;
    out.compressed = std::all_of(name.begin(), name.end(), [](char16_t u) { return u <= 0xFF; });
    for (char16_t u : name) {
        out.bytes.push_back(static_cast<uint8_t>(u));
        if (!out.compressed) out.bytes.push_back(static_cast<uint8_t>(u >> 8));
    }
    return out;
}

std::string printable(std::u16string_view name) {
    std::u16string out;
    for (char16_t u : name) {
        if (u >= 0x20 && u != 0x7F) {
            out.push_back(u);
        } else {
            out += u"\\x";
            out.push_back(u"0123456789ABCDEF"[u >> 4 & 15]);
            out.push_back(u"0123456789ABCDEF"[u & 15]);
        }
    }
    return text::utf8_from_utf16(out);
}

}  // namespace regf

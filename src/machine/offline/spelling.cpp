#include "machine/offline/spelling.h"

#include "base/text.h"

namespace machine {

namespace {

bool is_text(uint32_t type) {
    return type == regf::REG_SZ || type == regf::REG_EXPAND_SZ || type == regf::REG_MULTI_SZ;
}

/// How many blanks and NULs stand before and behind the text itself.
struct Ends {
    size_t before;
    size_t length;
};

Ends ends_of(std::string_view ansi) {
    constexpr std::string_view padding(" \0", 2);
    const size_t first = ansi.find_first_not_of(padding);
    if (first == std::string_view::npos) return {0, 0};
    return {first, ansi.find_last_not_of(padding) - first + 1};
}

}  // namespace

RawValue Spelling::to_ansi(const regf::Value& stored) {
    if (!is_text(stored.type)) return {stored.type, std::string(stored.data.begin(), stored.data.end())};
    const std::u16string units = regf::units_of(stored.data);
    std::string ansi;
    for (char16_t unit : units)
        ansi += text::from_utf16(unit).value_or('?');

    const Ends ends = ends_of(ansi);
    const std::string core = ansi.substr(ends.before, ends.length);
    if (core.find('?') != std::string::npos) {
        const Original original{core, units.substr(ends.before, ends.length), false};
        const auto [known, fresh] = originals_.try_emplace(text::lower(core), original);
        if (!fresh && known->second.text != original.text) known->second.ambiguous = true;
    }
    return {stored.type, std::move(ansi)};
}

std::optional<regf::Value> Spelling::to_stored(const RawValue& value) const {
    if (!is_text(value.type))
        return regf::Value{value.type, regf::Bytes(value.data.begin(), value.data.end())};
    std::u16string units = text::to_utf16(value.data);
    const Ends ends = ends_of(value.data);
    const std::string core = value.data.substr(ends.before, ends.length);
    const auto known = originals_.find(text::lower(core));
    if (known != originals_.end()) {
        if (known->second.ambiguous || known->second.spelled != core) return std::nullopt;
        units.replace(ends.before, ends.length, known->second.text);
    }
    return regf::Value{value.type, regf::bytes_of(units)};
}

}  // namespace machine

#include "machine/offline/spelling.h"

#include <algorithm>

#include "base/text.h"

namespace machine {

namespace {

bool is_text(uint32_t type) {
    return type == regf::REG_SZ || type == regf::REG_EXPAND_SZ || type == regf::REG_MULTI_SZ;
}

std::string ansi_of(std::u16string_view units) {
    std::string ansi;
    for (char16_t unit : units)
        ansi += text::from_utf16(unit).value_or('?');
    return ansi;
}

/// Where the text itself stands between blanks and NULs.
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
    return {stored.type, ansi_of(regf::units_of(stored.data))};
}

void Spelling::remember(const std::string& key, const std::vector<regf::Hive::NamedValue>& values) {
    std::vector<Original> fresh;
    for (const auto& value : values) {
        const auto name = text::from_utf16(value.name);
        if (!name || !is_text(value.type)) continue;
        const std::u16string units = regf::units_of(value.data);
        const std::string ansi = ansi_of(units);
        const Ends ends = ends_of(ansi);
        std::string core = ansi.substr(ends.before, ends.length);
        if (core.find('?') == std::string::npos) continue;
        fresh.push_back({text::lower(*name), std::move(core), units.substr(ends.before, ends.length), {}});
    }
    auto& known = originals_[key];
    for (Original& old : known) {
        const bool there = std::any_of(fresh.begin(), fresh.end(), [&](const Original& any) {
            return any.spelled == old.spelled && any.text == old.text;
        });
        if (!there) fresh.push_back(std::move(old));
    }
    known = std::move(fresh);
    seen_.insert(key);
}

void Spelling::end_session() {
    seen_.clear();
    for (const auto& [key, originals] : originals_)
        forget_uses(key);
}

void Spelling::forget_uses(const std::string& key) {
    for (Original& original : originals_[key])
        original.used_by.reset();
}

/// Of several with one spelling that of the same value comes first, then the others in their order.
Spelling::Original* Spelling::find(const std::string& key, const std::string& name,
                                   std::string_view spelled) {
    Original* any = nullptr;
    Original* next = nullptr;
    for (Original& original : originals_[key]) {
        if (original.used_by == name) original.used_by.reset();
        if (original.spelled != spelled) continue;
        if (!any) any = &original;
        if (original.used_by) continue;
        if (original.name == name) return &original;
        if (!next) next = &original;
    }
    return next ? next : any;
}

regf::Value Spelling::to_stored(const std::string& key, std::string_view name, const RawValue& value) {
    if (!is_text(value.type))
        return regf::Value{value.type, regf::Bytes(value.data.begin(), value.data.end())};
    std::u16string units = text::to_utf16(value.data);
    const Ends ends = ends_of(value.data);
    const std::string folded = text::lower(name);
    Original* const original =
        find(key, folded, std::string_view(value.data).substr(ends.before, ends.length));
    if (original) {
        units.replace(ends.before, ends.length, original->text);
        original->used_by = folded;
    }
    return regf::Value{value.type, regf::bytes_of(units)};
}

}  // namespace machine

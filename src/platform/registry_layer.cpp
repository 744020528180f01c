#include "base/text.h"
#include "platform/numbers.h"
#include "platform/registry_mod.h"

namespace britlock {

using machine::Outcome;
using machine::RawValue;

namespace {

std::string bytes_of(int32_t number) {
    std::string out;
    for (int shift = 0; shift < 32; shift += 8) {
        out.push_back(static_cast<char>(static_cast<uint32_t>(number) >> shift & 0xFF));
    }
    return out;
}

int32_t number_of(const std::string& bytes) {
    uint32_t out = 0;
    for (size_t i = 4; i-- > 0;)
        out = out << 8 | static_cast<unsigned char>(bytes[i]);
    return static_cast<int32_t>(out);
}

}  // namespace

/// None for a missing value and for every type but the two that the program knows.
std::optional<RawValue> REGISTRY_MOD::reg_query_value(Root root, std::string_view subkey,
                                                      std::string_view name) {
    RawValue value;
    const Outcome got = machine_.registry.query(root, subkey, name, value);
    if (got.open != machine::success || got.action != machine::success) return std::nullopt;
    if (value.type == machine::reg_sz) return value;
    if (value.type == machine::reg_dword && value.data.size() == 4) return value;
    return std::nullopt;
}

std::string REGISTRY_MOD::reg_read_value(Root root, std::string_view subkey, std::string_view name) {
    const auto value = reg_query_value(root, subkey, name);
    if (!value) return "";
    if (value->type == machine::reg_dword) return std::to_string(number_of(value->data));
    return value->data + ' ';  // the buffer is one blank longer than the value with its NUL
}

std::string REGISTRY_MOD::reg_read_string(Root root, std::string_view subkey, std::string_view name) {
    return clean_reg_string(reg_read_value(root, subkey, name));
}

std::string REGISTRY_MOD::clean_reg_string(std::string_view text) {
    std::string_view out = text::trim_blanks(text);
    // One NUL only: an encoded password may end in several.
    if (out.ends_with('\0')) out.remove_suffix(1);
    while (out.ends_with(' '))
        out.remove_suffix(1);
    return std::string(out);
}

WinCode REGISTRY_MOD::reg_set_value(Root root, std::string_view subkey, std::string_view name,
                                    const RawValue& value) {
    return machine_.registry.set(root, subkey, name, value)
        .open;  // what came of the write itself nobody learns
}

WinCode REGISTRY_MOD::reg_write_string(Root root, std::string_view subkey, std::string_view name,
                                       std::string_view text) {
    return reg_set_value(root, subkey, name, {machine::reg_sz, std::string(text) + '\0'});
}

WinCode REGISTRY_MOD::reg_write_dword(Root root, std::string_view subkey, std::string_view name,
                                      std::string_view number) {
    return reg_set_value(root, subkey, name, {machine::reg_dword, bytes_of(to_long(leading_number(number)))});
}

int REGISTRY_MOD::reg_create_key(Root root, std::string_view subkey) {
    return static_cast<int>(machine_.registry.create_key(root, subkey));
}

WinCode REGISTRY_MOD::reg_delete_key(Root root, std::string_view subkey) {
    (void)machine_.registry.delete_key(root, subkey);  // a key with subkeys stays, and nobody is told
    return machine::success;
}

WinCode REGISTRY_MOD::reg_delete_value(Root root, std::string_view subkey, std::string_view name) {
    return machine_.registry.delete_value(root, subkey, name).open;
}

bool ticks(std::string_view read_value) { return read_value == "1" || read_value == " 1"; }

}  // namespace britlock

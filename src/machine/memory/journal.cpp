#include "machine/memory/journal.h"

#include <cstdio>
#include <cstring>

namespace machine {

namespace {

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (char c : text)
        out += c == '\0' ? std::string("\\0") : std::string(1, c);
    return out + "\"";
}

std::string_view short_name(Root root) {
    switch (root) {
        case Root::current_user:
            return "HKCU";
        case Root::local_machine:
            return "HKLM";
        case Root::users:
            return "HKU";
    }
    return "?";
}

std::string place(Root root, std::string_view subkey, std::string_view name) {
    return describe(root, subkey) + " : " + std::string(name);
}

}  // namespace

std::string describe(const RawValue& value) {
    if (value.type == reg_dword && value.data.size() == 4) {
        int32_t number = 0;
        std::memcpy(&number, value.data.data(), 4);
        return "dword " + std::to_string(number);
    }
    if (value.type == reg_sz) {
        const bool closed = value.data.ends_with('\0');
        const std::string_view text(value.data.data(), value.data.size() - (closed ? 1 : 0));
        return quoted(text) + (closed ? "" : " without NUL");
    }
    std::string out = "type " + std::to_string(value.type) + ":";
    for (char c : value.data) {
        char hex[4];
        (void)std::snprintf(hex, sizeof hex, " %02x", static_cast<unsigned char>(c));
        out += hex;
    }
    return out;
}

std::string describe(Root root, std::string_view subkey) {
    return std::string(short_name(root)) + "\\" + std::string(subkey);
}

Outcome RegistryForwarder::query(Root root, std::string_view subkey, std::string_view name, RawValue& out) {
    return target_.query(root, subkey, name, out);
}

Outcome RegistryForwarder::set(Root root, std::string_view subkey, std::string_view name,
                               const RawValue& value) {
    return target_.set(root, subkey, name, value);
}

Outcome RegistryForwarder::delete_value(Root root, std::string_view subkey, std::string_view name) {
    return target_.delete_value(root, subkey, name);
}

Registry::Disposition RegistryForwarder::create_key(Root root, std::string_view subkey) {
    return target_.create_key(root, subkey);
}

WinCode RegistryForwarder::delete_key(Root root, std::string_view subkey) {
    return target_.delete_key(root, subkey);
}

WinCode RegistryForwarder::enum_key(Root root, std::string_view subkey, uint32_t index, std::string& name) {
    return target_.enum_key(root, subkey, index, name);
}

Outcome JournalRegistry::note(const std::string& what, Outcome outcome) {
    text_ += what;
    if (outcome.open != success) {
        text_ += " -> open " + std::to_string(outcome.open);
    } else if (outcome.action != success) {
        text_ += " -> action " + std::to_string(outcome.action);
    }
    text_ += "\n";
    return outcome;
}

Outcome JournalRegistry::set(Root root, std::string_view subkey, std::string_view name,
                             const RawValue& value) {
    return note("set " + place(root, subkey, name) + " = " + describe(value),
                RegistryForwarder::set(root, subkey, name, value));
}

Outcome JournalRegistry::delete_value(Root root, std::string_view subkey, std::string_view name) {
    return note("delete value " + place(root, subkey, name),
                RegistryForwarder::delete_value(root, subkey, name));
}

Registry::Disposition JournalRegistry::create_key(Root root, std::string_view subkey) {
    const Disposition disposition = RegistryForwarder::create_key(root, subkey);
    text_ +=
        "create " + describe(root, subkey) + " -> " + std::to_string(static_cast<int>(disposition)) + "\n";
    return disposition;
}

WinCode JournalRegistry::delete_key(Root root, std::string_view subkey) {
    const WinCode code = RegistryForwarder::delete_key(root, subkey);
    text_ += "delete key " + describe(root, subkey) + " -> " + std::to_string(code) + "\n";
    return code;
}

}  // namespace machine

#include "machine/windows/windows_registry.h"

#include <windows.h>

namespace machine {

namespace {

// Narrower than KEY_READ and KEY_ALL_ACCESS: no standard rights are asked for, so that a person without
// READ_CONTROL or DELETE on a key still gets through.
constexpr REGSAM reading = KEY_QUERY_VALUE | KEY_ENUMERATE_SUB_KEYS | KEY_NOTIFY;
constexpr REGSAM enumerating = KEY_ENUMERATE_SUB_KEYS;
constexpr REGSAM writing = KEY_QUERY_VALUE | KEY_SET_VALUE | KEY_CREATE_SUB_KEY | KEY_ENUMERATE_SUB_KEYS |
                           KEY_NOTIFY | KEY_CREATE_LINK;
static_assert(reading == 0x19 && writing == 0x3F);

HKEY handle_of(Root root) {
    return reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<uint32_t>(root)));
}

WinCode code_of(LONG answer) { return static_cast<WinCode>(answer); }

/// A key that is open for as long as this lives. RegUnLoadKey fails while a key of the hive is open.
class OpenKey {
  public:
    OpenKey(Root root, std::string_view subkey, REGSAM access)
        : code_(code_of(RegOpenKeyExA(handle_of(root), std::string(subkey).c_str(), 0, access, &handle_))) {}
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    ~OpenKey() {
        if (code_ == success) RegCloseKey(handle_);
    }
    WinCode code() const { return code_; }
    HKEY handle() const { return handle_; }

  private:
    HKEY handle_ = nullptr;
    WinCode code_;
};

bool is_nt() { return (GetVersion() & 0x80000000) == 0; }

bool has_subkeys(Root root, std::string_view subkey) {
    std::string name;
    return WindowsRegistry().enum_key(root, subkey, 0, name) == more_data;
}

}  // namespace

Outcome WindowsRegistry::query(Root root, std::string_view subkey, std::string_view name, RawValue& out) {
    const OpenKey key(root, subkey, reading);
    if (key.code() != success) return {key.code(), success};
    const std::string value_name(name);
    for (;;) {
        DWORD type = 0;
        DWORD size = 0;
        WinCode code =
            code_of(RegQueryValueExA(key.handle(), value_name.c_str(), nullptr, &type, nullptr, &size));
        if (code != success) return {success, code};
        std::string data(size, '\0');
        code = code_of(RegQueryValueExA(key.handle(), value_name.c_str(), nullptr, &type,
                                        reinterpret_cast<BYTE*>(data.data()), &size));
        if (code == more_data) continue;  // somebody wrote a longer one in between
        if (code != success) return {success, code};
        data.resize(size);
        out = {type, std::move(data)};
        return {};
    }
}

Outcome WindowsRegistry::set(Root root, std::string_view subkey, std::string_view name,
                             const RawValue& value) {
    const OpenKey key(root, subkey, writing);
    if (key.code() != success) return {key.code(), success};
    // Windows NT takes a NUL that happens to stand after a text for a part of it; Windows 9X ends a text at a
    // NUL, whatever the length says.
    const std::string data = value.data + (is_nt() ? '\1' : '\0');
    const WinCode code = code_of(RegSetValueExA(key.handle(), std::string(name).c_str(), 0, value.type,
                                                reinterpret_cast<const BYTE*>(data.data()),
                                                static_cast<DWORD>(value.data.size())));
    return {success, code};
}

Outcome WindowsRegistry::delete_value(Root root, std::string_view subkey, std::string_view name) {
    const OpenKey key(root, subkey, writing);
    if (key.code() != success) return {key.code(), success};
    return {success, code_of(RegDeleteValueA(key.handle(), std::string(name).c_str()))};
}

Registry::Disposition WindowsRegistry::create_key(Root root, std::string_view subkey) {
    HKEY key = nullptr;
    DWORD disposition = 0;
    if (RegCreateKeyExA(handle_of(root), std::string(subkey).c_str(), 0, nullptr, 0, writing, nullptr, &key,
                        &disposition) != ERROR_SUCCESS)
        return Disposition::failed;
    // The hive may be unloaded seconds later. A key that cannot be flushed stays open, and so its hive
    // mounted.
    if (RegFlushKey(key) == ERROR_SUCCESS) RegCloseKey(key);
    return disposition == REG_CREATED_NEW_KEY ? Disposition::created : Disposition::opened;
}

WinCode WindowsRegistry::delete_key(Root root, std::string_view subkey) {
    // Windows 9X would take all keys below along.
    if (!is_nt() && has_subkeys(root, subkey)) return access_denied;
    return code_of(RegDeleteKeyA(handle_of(root), std::string(subkey).c_str()));
}

WinCode WindowsRegistry::enum_key(Root root, std::string_view subkey, uint32_t index, std::string& name) {
    const OpenKey key(root, subkey, enumerating);
    if (key.code() != success) return no_more_items;
    // Without a buffer for the class: asked with one that is too small, not every Windows fills in the name.
    char buffer[255 + 1] = {};
    DWORD length = sizeof buffer;
    const WinCode code =
        code_of(RegEnumKeyExA(key.handle(), index, buffer, &length, nullptr, nullptr, nullptr, nullptr));
    if (code != success) return code;
    name = buffer;
    return more_data;
}

}  // namespace machine

#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "machine/registry.h"

namespace machine {

/// Order and equality of names as Windows has them.
struct NameLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
};

/// What a key lets the program do: read_only answers access_denied to writers, none to everybody.
enum class Access { full, read_only, none };

RawValue text_value(std::string_view text);  ///< REG_SZ with its closing NUL
RawValue dword_value(int32_t number);

/// A key with all below it. References stay good until the key is deleted.
class MemoryKey {
  public:
    std::map<std::string, RawValue, NameLess> values;
    std::map<std::string, std::shared_ptr<MemoryKey>, NameLess> subkeys;
    Access access = Access::full;

    /// The key below, made with all levels where it is missing: for setting the scene.
    MemoryKey& operator[](std::string_view subkey);
    /// Null where it is missing.
    const MemoryKey* find(std::string_view subkey) const;
    MemoryKey& set(std::string_view name, const RawValue& value);
    MemoryKey& set(std::string_view name, std::string_view text) { return set(name, text_value(text)); }
    MemoryKey& set(std::string_view name, int32_t number) { return set(name, dword_value(number)); }

    /// One line for each key and each value below, sorted: `Software\X`, `Software\X : name = dword 1`.
    std::string dump() const;
};

/// A registry that lives in memory, with failures on demand.
class MemoryRegistry : public Registry {
  public:
    /// A root itself, or a key below it, made where it is missing.
    MemoryKey& at(Root root, std::string_view subkey = "");
    /// The dump of a key; "(missing)" where there is none.
    std::string dump(Root root, std::string_view subkey = "") const;

    /// Windows 9X lets a program make a key directly below HKEY_USERS, Windows NT does not.
    bool users_root_open = false;
    /// What writing, deleting and flushing answer once the key is open. A failed flush leaves the handle
    /// open.
    WinCode failing_set = success;
    WinCode failing_delete = success;
    bool failing_flush = false;

    /// Shows `hive` as HKEY_USERS\name; false where the name is taken.
    bool mount(std::string_view name, const std::shared_ptr<MemoryKey>& hive);
    /// False where there is no such hive, or a key in it is still open.
    bool unmount(std::string_view name);
    bool is_mounted(const MemoryKey& hive) const;

    Outcome query(Root root, std::string_view subkey, std::string_view name, RawValue& out) override;
    Outcome set(Root root, std::string_view subkey, std::string_view name, const RawValue& value) override;
    Outcome delete_value(Root root, std::string_view subkey, std::string_view name) override;
    Disposition create_key(Root root, std::string_view subkey) override;
    WinCode delete_key(Root root, std::string_view subkey) override;
    WinCode enum_key(Root root, std::string_view subkey, uint32_t index, std::string& name) override;

  private:
    struct Opened {
        WinCode code;
        MemoryKey* key;
    };
    Opened open(Root root, std::string_view subkey, Access wanted);

    std::map<Root, MemoryKey> roots_;
    std::set<std::string, NameLess> left_open_;  ///< hives with a key that a failed flush left open
};

}  // namespace machine

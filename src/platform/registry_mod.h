#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/twin.h"
#include "machine/machine.h"
#include "platform/windows_family.h"

// Windows' header makes macros of these; a source that has included it must get the names below all the same.
#undef HKEY_CURRENT_USER
#undef HKEY_LOCAL_MACHINE
#undef HKEY_USERS

namespace britlock {

using machine::Root;
using machine::WinCode;

constexpr Root HKEY_CURRENT_USER = Root::current_user;
constexpr Root HKEY_LOCAL_MACHINE = Root::local_machine;
constexpr Root HKEY_USERS = Root::users;

/// The registry layer and the small questions about the machine. Silent and forgiving: nothing here shows a
/// message; what is missing reads as "".
class REGISTRY_MOD {
  public:
    REGISTRY_MOD(const machine::Machine& machine, int language) : machine_(machine), language_(language) {}

    /// The uninstall runs: the logged-on user is not refused, hive files are not tested.
    bool uninstall_running = false;

    /// A text without surrounding blanks and its closing NUL; a number as its digits.
    std::string reg_read_string(Root root, std::string_view subkey, std::string_view name);
    /// As stored: after a text still stand its closing NUL and one blank.
    std::string reg_read_value(Root root, std::string_view subkey, std::string_view name);
    /// Writers never create a key: they give the error of opening it (2 where it is missing, 5 without the
    /// right), and 0 also when the write itself failed.
    WinCode reg_write_string(Root root, std::string_view subkey, std::string_view name,
                             std::string_view text);
    /// Writes the number at the front of `number`; RuntimeError 6 where it needs more than 32 bits.
    WinCode reg_write_dword(Root root, std::string_view subkey, std::string_view name,
                            std::string_view number);
    /// 1 created, 2 was there, 0 refused.
    int reg_create_key(Root root, std::string_view subkey);
    /// One level only, and always 0: a key with subkeys stays.
    WinCode reg_delete_key(Root root, std::string_view subkey);
    WinCode reg_delete_value(Root root, std::string_view subkey, std::string_view name);
    /// Reads a value of Internet Explorer's restrictions for the running account, and makes the keys on the
    /// way. " 1" for a set one; for a missing one the disposition of the last key made.
    std::string ie_policy_read(std::string_view name);
    static std::string clean_reg_string(std::string_view text);

    /// A constant of the edition.
    int get_language() const { return language_; }
    const char* pick(const Twin& twin) const { return ::pick(twin, get_language()); }

    const WindowsFamily& family() { return family_of(machine_.system.version()); }

    /// "WinNT", "Win2K", "WinXP", "Win95", "Win98", "Win98SE", "WinME", "Win32S", "Win???".
    std::string get_os_name();
    bool is_nt_family();
    /// With its closing NUL, or "NoUser".
    std::string get_user_name();
    /// The folders end in a backslash.
    std::string get_windows_dir();
    std::string get_system_dir();
    /// 254 blanks and a backslash where Windows does not know.
    std::string get_profiles_dir();

    /// True where the file has content, or is held by another program. An empty file is deleted.
    bool file_has_content(std::string_view path);
    /// Adds the paths whose name fits `pattern` and whose attributes have all bits of `attributes`; gives
    /// their number. RuntimeError 76 for a folder that cannot be searched.
    int find_files(std::string_view directory, std::vector<std::string>& files, std::string_view pattern,
                   uint32_t attributes, bool recursive);

  private:
    std::optional<machine::RawValue> reg_query_value(Root root, std::string_view subkey,
                                                     std::string_view name);
    WinCode reg_set_value(Root root, std::string_view subkey, std::string_view name,
                          const machine::RawValue& value);

    machine::Machine machine_;
    int language_;
};

/// The tick rule: only a number that is exactly 1 ticks; no text does.
bool ticks(std::string_view read_value);

}  // namespace britlock

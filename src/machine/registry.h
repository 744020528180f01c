#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "machine/codes.h"

namespace machine {

/// The predefined handles that the program uses, with Windows' numbers.
enum class Root : uint32_t { current_user = 0x80000001, local_machine = 0x80000002, users = 0x80000003 };

enum ValueType : uint32_t { reg_sz = 1, reg_dword = 4 };

/// A value as stored. Texts (types 1, 2, 7) are ANSI bytes, a closing NUL only if one is stored; every other
/// type is its raw bytes.
struct RawValue {
    uint32_t type = 0;
    std::string data;
    bool operator==(const RawValue&) const = default;
};

/// A key is opened, used once and closed. `open` tells how the opening went; `action`, what came of the work.
struct Outcome {
    WinCode open = success;
    WinCode action = success;
};

/// The registry of the machine being worked on, as the ANSI calls of Windows show it. No handle gets out.
///
/// Subkeys compare without case, by code page 1252. An empty subkey opens the root itself; a closing
/// backslash and a doubled inner one are legal; a leading one is refused (bad_path_name). The empty value
/// name is the default value. Under Root::users only mounted hives exist: a key directly below it cannot be
/// made.
class Registry {
  public:
    virtual ~Registry() = default;

    virtual Outcome query(Root root, std::string_view subkey, std::string_view name, RawValue& out) = 0;

    /// Adds or overwrites one value. Never creates the key.
    virtual Outcome set(Root root, std::string_view subkey, std::string_view name, const RawValue& value) = 0;

    virtual Outcome delete_value(Root root, std::string_view subkey, std::string_view name) = 0;

    enum class Disposition { failed = 0, created = 1, opened = 2 };
    /// Makes every missing level and flushes.
    virtual Disposition create_key(Root root, std::string_view subkey) = 0;

    /// One key with its values; refused where it has subkeys (access_denied).
    virtual WinCode delete_key(Root root, std::string_view subkey) = 0;

    /// The name of one subkey, by position. As the program asks with a class buffer of no length, Windows
    /// answers more_data for every subkey there is, the name filled in; no_more_items behind the last, and
    /// for a key that cannot be opened.
    virtual WinCode enum_key(Root root, std::string_view subkey, uint32_t index, std::string& name) = 0;
};

}  // namespace machine

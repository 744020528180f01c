#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "base/runtime_error.h"
#include "platform/registry_mod.h"

namespace britlock {

/// A table of fixed size, used from index 1. RuntimeError 9 outside it.
template <size_t last>
class Table {
  public:
    std::string& operator[](int index) {
        if (index < 0 || static_cast<size_t>(index) > last) throw RuntimeError(9);
        return entries_[index];
    }

  private:
    std::array<std::string, last + 1> entries_;
};

/// Why the profile list of the system tells nothing of somebody.
enum class SidProblem { not_opened, not_read, not_found };

/// Who can be restricted. A user is a folder in the profile directory; the folder's name is the user's name
/// everywhere.
class UserDirectory {
  public:
    UserDirectory(const machine::Machine& machine, REGISTRY_MOD& reg) : machine_(machine), reg_(reg) {}

    /// Fills the tables below. Gives the hive files that are missing or empty; their users are in the tables
    /// all the same, and it is told again when somebody wants to restrict one.
    std::vector<std::string> profiles_scan();

    std::string profile_base_path;   ///< ends in a backslash, unless the administrator has set it otherwise
    Table<1000> profile_names;       ///< in the order of the directory
    Table<1000> profile_hive_paths;  ///< same index
    int profile_count = 0;

    /// The SID directory, from the system's profile list. No flow of the program needs it. Gives what could
    /// not be read.
    std::vector<SidProblem> GET_SIDS();
    /// The SIDs of people in the profile list.
    void for_each_sid(const std::function<void(const std::string& sid)>& visit);
    /// The last part of the ProfileImagePath of one entry of the profile list (`sidname`: its full key).
    BasicResult<std::string, SidProblem> REG_GetUserProfileList(std::string_view sidname);
    BasicResult<std::string, SidProblem> NameToSID(std::string_view name);

    Table<100> sid_list;
    Table<100> sid_user_list;  ///< same index

  private:
    std::string find_base_path();

    machine::Machine machine_;
    REGISTRY_MOD& reg_;
};

/// Under HKEY_LOCAL_MACHINE.
constexpr const char* profile_list_key = R"(Software\Microsoft\Windows NT\CurrentVersion\ProfileList)";

}  // namespace britlock

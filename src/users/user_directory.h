#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "base/runtime_error.h"

namespace toolkit {
class TextBox;
}

namespace britlock {

class Program;

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

/// Who can be restricted. A user is a folder in the profile directory; the folder's name is the user's name
/// everywhere.
class UserDirectory {
  public:
    explicit UserDirectory(Program& program) : program_(program) {}

    /// Fills the tables below and the box with the base path; names the profiles that cannot be read in one
    /// message.
    void profiles_scan(toolkit::TextBox& base_path_box);

    std::string profile_base_path;   ///< ends in a backslash, unless the administrator has set it otherwise
    Table<1000> profile_names;       ///< in the order of the directory
    Table<1000> profile_hive_paths;  ///< same index
    int profile_count = 0;

    /// The SID directory, from the system's profile list. No flow of the program needs it.
    void GET_SIDS();
    /// The SIDs of people in the profile list.
    void for_each_sid(const std::function<void(const std::string& sid)>& visit);
    /// The last part of the ProfileImagePath of one entry of the profile list (`sidname`: its full key); ""
    /// after a message.
    std::string REG_GetUserProfileList(std::string_view sidname);
    /// "" after a message.
    std::string NameToSID(std::string_view name);

    Table<100> sid_list;
    Table<100> sid_user_list;  ///< same index

  private:
    std::string find_base_path();
    void plain_box(const char* german, const char* english);

    Program& program_;
};

/// Under HKEY_LOCAL_MACHINE.
constexpr const char* profile_list_key = R"(Software\Microsoft\Windows NT\CurrentVersion\ProfileList)";

}  // namespace britlock

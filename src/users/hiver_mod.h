#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "machine/system.h"

namespace britlock {

class Program;

/// Mounts and unmounts the hives of users who are not logged on, through the hive tool beside the program.
class HIVER_MOD {
  public:
    explicit HIVER_MOD(Program& program) : program_(program) {}

    enum Tool { load = 1, unload = 2 };
    enum Result { done = 0, failed = 99 };
    /// Mounts `file` as HKEY_USERS\<name>, or unmounts it. Failed after a message; unloading never fails.
    Result hive_tool(int mode, std::string_view file, std::string_view name);

    enum FileStatus { usable = 0, missing = 1, in_use = 2, path_missing = 3, other = 9 };
    /// An empty file is deleted, as is the one that the test itself makes of a missing one.
    FileStatus hive_file_status(std::string_view path);

    /// Runs a program to its end, however long that takes; handles the events of the interface meanwhile if
    /// `keep_alive`.
    uint32_t run_and_wait(std::string_view command_line, machine::WindowStyle style, bool keep_alive);

  private:
    std::string tool_path() const;
    bool complain_about(std::string_view file);

    Program& program_;
};

}  // namespace britlock

#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry_mod.h"

namespace britlock {

/// Mounts and unmounts the hives of users who are not logged on, through the hive tool beside the program.
/// Shows nothing: what came of it is an outcome.
class HIVER_MOD {
  public:
    /// `handle_events` runs again and again while the tool is waited for.
    HIVER_MOD(const machine::Machine& machine, REGISTRY_MOD& reg, std::function<void()> handle_events)
        : machine_(machine), reg_(reg), handle_events_(std::move(handle_events)) {}

    enum Tool { load = 1, unload = 2 };
    enum Result { done = 0, failed = 99 };
    enum class Complaint {
        tool_missing,
        file_missing,
        file_in_use,
        path_missing,
        unknown_error,
        no_write_access
    };
    struct Outcome {
        Result result = failed;
        /// What a person is to be told, in this order. None though it failed: the mode is unknown, or the
        /// uninstall runs and never writes into a hive.
        std::vector<Complaint> complaints;
    };
    /// Mounts `file` as HKEY_USERS\<name>, or unmounts it; unloading never fails. RuntimeError 53 where the
    /// tool is not there any more.
    Outcome hive_tool(int mode, std::string_view file, std::string_view name);

    enum FileStatus { usable = 0, missing = 1, in_use = 2, path_not_found = 3, other = 9 };
    /// An empty file is deleted, as is the one that the test itself makes of a missing one.
    FileStatus hive_file_status(std::string_view path);

    /// Runs a program to its end, however long that takes; handles events meanwhile if `keep_alive`.
    uint32_t run_and_wait(std::string_view command_line, machine::WindowStyle style, bool keep_alive);

    /// A user's hive for the span of one visit.
    struct Visit {
        std::string name;  ///< of the profile's folder, and of the mounted hive
        std::string file;
        std::function<void()> before_load = [] {};  ///< the hive that a crashed run may have left is gone now
    };
    /// Unmounts what may be left, mounts, works, unmounts. The work is not done where the mount fails; a
    /// run-time error of the work leaves the hive mounted.
    Outcome visit(const Visit& visit, const std::function<void()>& work);

  private:
    std::string tool_path();
    std::vector<Complaint> complaints_about(std::string_view file);

    machine::Machine machine_;
    REGISTRY_MOD& reg_;
    std::function<void()> handle_events_;
};

/// The hive file of a profile: `profiles` is the folder of all of them, with its closing backslash.
std::string hive_file_of(std::string_view profiles, std::string_view user);

}  // namespace britlock

#pragma once

#include <sys/types.h>

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "machine/offline/drive_map.h"
#include "machine/offline/mount_table.h"
#include "machine/offline/offline_registry.h"
#include "machine/system.h"

namespace machine {

/// Told when changes did not reach a user's hive: the key below HKEY_USERS, and why (UTF-8).
using LostChanges = std::function<void(const std::string& user, const std::string& message)>;

/// Of Windows' programs two can be started here: the hive tool, which is one of ours, and the explorer on a
/// folder, for which the desktop's file manager stands in.
class OfflineProcesses : public Processes {
  public:
    OfflineProcesses(const DriveMap& drives, const MountTable& mounts, OfflineRegistry& registry,
                     System& system, LostChanges on_lost_changes)
        : drives_(drives),
          mounts_(mounts),
          registry_(registry),
          system_(system),
          on_lost_changes_(std::move(on_lost_changes)) {}

    Started start(std::string_view command_line, WindowStyle style) override;
    uint32_t exit_code(uint32_t id) override;
    void open_address(std::string_view address) override;

  private:
    struct Child {
        pid_t process = 0;    ///< 0 once it has ended
        Descriptor messages;  ///< the hive tool's error output
        std::string message;  ///< what it wrote to its error output
        uint32_t code = still_active;
        bool nothing_to_do = false;  ///< unmounts what is not mounted, to be on the safe side: no news
        std::string changed_user;    ///< whose changes the tool is to write, if there are any
        WinCode sealed = success;
    };
    Started start_hive_tool(const std::string& host_program, const std::string& arguments);
    Started open_folder_window(const std::string& folder);
    Started run(const std::vector<std::string>& arguments, Child child, int error_output);
    void finish(Child& child, uint32_t code);

    const DriveMap& drives_;
    const MountTable& mounts_;
    OfflineRegistry& registry_;
    System& system_;
    LostChanges on_lost_changes_;
    /// By id, the first being 1. Handlers that run while one is waited for may start more: none may move.
    std::deque<Child> children_;
};

}  // namespace machine

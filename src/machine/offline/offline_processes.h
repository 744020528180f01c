#pragma once

#include <sys/types.h>

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "machine/offline/drive_map.h"
#include "machine/offline/mount_table.h"
#include "machine/offline/offline_registry.h"
#include "machine/offline/tool_report.h"
#include "machine/offline/tool_request.h"
#include "machine/system.h"

namespace machine {

/// Of Windows' programs two can be started here: the hive tool, which is one of ours, and the explorer on a
/// folder, for which the desktop's file manager stands in.
class OfflineProcesses : public Processes {
  public:
    OfflineProcesses(const DriveMap& drives, const MountTable& mounts, OfflineRegistry& registry,
                     System& system, OnToolReport on_report)
        : drives_(drives),
          mounts_(mounts),
          registry_(registry),
          system_(system),
          on_report_(std::move(on_report)) {}

    OfflineProcesses(const OfflineProcesses&) = delete;
    OfflineProcesses& operator=(const OfflineProcesses&) = delete;
    ~OfflineProcesses() override;

    Started start(std::string_view command_line, WindowStyle style) override;
    uint32_t exit_code(uint32_t id) override;
    void open_address(std::string_view address) override;

  private:
    struct Process {
        pid_t id = 0;        ///< 0: there is none, or no longer
        Descriptor end;      ///< can be read once it has ended
        Descriptor channel;  ///< our end; none: another program than the hive tool
    };
    struct Child {
        Process process;
        uint32_t code = still_active;
        ToolReport known;          ///< before the tool has told anything: verb and name
        WinCode sealed = success;  ///< of the changes that it is to write
    };
    Started start_hive_tool(const std::string& host_program, const std::string& arguments);
    Started open_folder_window(const std::string& folder);
    Started add(Child child);
    /// A tool that has been asked; not there where none can be started.
    Process ask_tool(const std::string& host_program, const ToolRequest& request,
                     const std::optional<HandedHive>& hive);
    static Process start_tool(const std::string& host_program);
    /// `of_tool`: the end of the channel that the hive tool gets.
    static Process run(const std::vector<std::string>& arguments, const Descriptor& of_tool = {});
    bool is_not_mounted(const std::string& name) const;
    void report(Child& child, ToolReport told, std::optional<HandedHive> hive);
    void take_leave(int options);

    const DriveMap& drives_;
    const MountTable& mounts_;
    OfflineRegistry& registry_;
    System& system_;
    OnToolReport on_report_;  ///< none: failures go to the standard error
    /// By id, the first being 1. Handlers that run while one is waited for may start more: none may move.
    std::deque<Child> children_;
    std::vector<pid_t> leaving_;
    /// The next hive tool: it is started while the one before it works, and waits for its command.
    Process next_tool_;
};

}  // namespace machine

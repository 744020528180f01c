#pragma once

#include <map>

#include "machine/system.h"

namespace machine {

/// Processes of the running Windows.
class WindowsProcesses : public Processes {
  public:
    WindowsProcesses() = default;
    WindowsProcesses(const WindowsProcesses&) = delete;
    WindowsProcesses& operator=(const WindowsProcesses&) = delete;
    ~WindowsProcesses() override;

    Started start(std::string_view command_line, WindowStyle style) override;
    /// Rests for a moment while the process runs and nothing comes in for the windows of this thread.
    uint32_t exit_code(uint32_t id) override;
    void open_address(std::string_view address) override;

  private:
    std::map<uint32_t, void*> running_;  ///< handles by process id
};

}  // namespace machine

#pragma once

#include "machine/machine.h"
#include "machine/windows/windows_files.h"
#include "machine/windows/windows_internet.h"
#include "machine/windows/windows_processes.h"
#include "machine/windows/windows_registry.h"
#include "machine/windows/windows_system.h"

namespace machine {

/// The running Windows, 95 to XP.
class WindowsMachine {
  public:
    WindowsMachine();
    WindowsMachine(const WindowsMachine&) = delete;
    WindowsMachine& operator=(const WindowsMachine&) = delete;

    Machine machine() { return {registry_, files_, processes_, system_, internet_}; }

  private:
    WindowsSystem system_;
    WindowsRegistry registry_;
    WindowsFiles files_{system_};
    WindowsProcesses processes_;
    WindowsInternet internet_;
};

}  // namespace machine

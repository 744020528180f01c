#pragma once

#include <vector>

#include "toolkit/controls.h"
#include "toolkit/win32/system.h"

/// The messages of the process, on their way to windows.
namespace toolkit::win32 {

/// Waits for the next message and handles it; false where none will come any more.
bool pump_next();
/// Handles what is waiting.
void pump_waiting();

/// Calls that run when control is back in a message loop, be it that of a box.
class IdleCalls {
  public:
    void add(const Event& call);

  private:
    static LRESULT CALLBACK procedure(HWND window, UINT id, WPARAM w, LPARAM l) noexcept;

    HWND window_ = nullptr;  // never seen
    std::vector<Event> calls_;
};

}  // namespace toolkit::win32

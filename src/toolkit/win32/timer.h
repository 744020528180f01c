#pragma once

#include "toolkit/controls.h"
#include "toolkit/win32/system.h"

namespace toolkit::win32 {

/// A timer of the system for one of the program's; its window hears it.
class TimerPeer : public Peer {
  public:
    TimerPeer(Timer& control, HWND window);
    ~TimerPeer() override;

    void refresh(const Control& control, Change change) override;
    UINT_PTR id() const { return reinterpret_cast<UINT_PTR>(this); }
    Timer& control() const { return control_; }

  private:
    Timer& control_;
    HWND window_;
    int running_ms_ = 0;  // 0: stands still
};

}  // namespace toolkit::win32

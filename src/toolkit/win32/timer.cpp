#include "toolkit/win32/timer.h"

#include <utility>

namespace toolkit::win32 {

TimerPeer::TimerPeer(Timer& control, HWND window) : control_(control), window_(window) {
    control.peer = this;
    refresh(control, Change::all);
}

TimerPeer::~TimerPeer() {
    control_.peer = nullptr;
    if (running_ms_ > 0) KillTimer(window_, id());
}

void TimerPeer::refresh(const Control&, Change) {
    const int wanted = control_.enabled() ? control_.interval_ms : 0;
    if (std::exchange(running_ms_, wanted) == wanted) return;
    if (wanted > 0) {
        SetTimer(window_, id(), static_cast<UINT>(wanted), nullptr);
    } else {
        KillTimer(window_, id());
    }
}

}  // namespace toolkit::win32

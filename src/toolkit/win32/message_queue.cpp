#include "toolkit/win32/message_queue.h"

#include <utility>

#include "toolkit/win32/window.h"

namespace toolkit::win32 {

namespace {

constexpr const char* idle_class = "BrightlockIdle";
constexpr UINT wake_up = WM_APP;

void handle(const MSG& message) {
    const bool is_key = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
    Window* const window = is_key ? Window::around(message.hwnd) : nullptr;
    if (window && window->takes_key(message)) return;
    TranslateMessage(&message);
    DispatchMessageA(&message);
}

}  // namespace

bool pump_next() {
    MSG message;
    if (GetMessageA(&message, nullptr, 0, 0) <= 0) return false;
    handle(message);
    return true;
}

void pump_waiting() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
        handle(message);
}

void IdleCalls::add(const Event& call) {
    if (!window_) {
        WNDCLASSA kind{};
        kind.lpfnWndProc = &procedure;
        kind.hInstance = GetModuleHandleA(nullptr);
        kind.lpszClassName = idle_class;
        RegisterClassA(&kind);
        window_ = CreateWindowExA(0, idle_class, "", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, kind.hInstance,
                                  nullptr);
        SetWindowLongA(window_, GWL_USERDATA, reinterpret_cast<LONG>(this));
    }
    calls_.push_back(call);
    PostMessageA(window_, wake_up, 0, 0);
}

LRESULT CALLBACK IdleCalls::procedure(HWND window, UINT id, WPARAM w, LPARAM l) noexcept {
    if (id != wake_up) return DefWindowProcA(window, id, w, l);
    auto* const self = reinterpret_cast<IdleCalls*>(GetWindowLongA(window, GWL_USERDATA));
    for (const Event& call : std::exchange(self->calls_, {}))
        call();
    return 0;
}

}  // namespace toolkit::win32

#include "toolkit/win32/message_queue.h"

#include <optional>
#include <utility>

#include "base/text.h"
#include "toolkit/win32/window.h"

namespace toolkit::win32 {

namespace {

constexpr const char* idle_class = "BrightlockIdle";
constexpr UINT wake_up = WM_APP;

/// Windows NT gives letters as UTF-16 where it is asked to, so that one beyond the code page is told from the
/// question mark that stands for it. Windows 95 has these calls as empty shells, but knows no such letters.
struct Calls {
    decltype(&GetMessageA) get = &GetMessageA;
    decltype(&PeekMessageA) peek = &PeekMessageA;
    decltype(&DispatchMessageA) dispatch = &DispatchMessageA;
    bool wide = false;
};

const Calls& calls() {
    static const bool is_nt = GetVersion() < 0x80000000;
    static const Calls narrow;
    static const Calls wide{&GetMessageW, &PeekMessageW, &DispatchMessageW, true};
    return is_nt ? wide : narrow;
}

/// What the letter of a message is in the code page; none: nothing there spells it.
std::optional<char> letter_of(const MSG& message) {
    return calls().wide ? text::from_utf16(static_cast<char16_t>(message.wParam))
                        : static_cast<char>(message.wParam);
}

void handle(const MSG& message) {
    const bool is_letter = message.message == WM_CHAR || message.message == WM_SYSCHAR;
    const auto letter = is_letter ? letter_of(message) : '\0';
    if (!letter) return;
    const bool is_key = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
    Window* const window = is_key ? Window::around(message.hwnd) : nullptr;
    if (window && window->takes_key(message, *letter)) return;
    TranslateMessage(&message);
    calls().dispatch(&message);
}

}  // namespace

bool pump_next() {
    MSG message;
    if (calls().get(&message, nullptr, 0, 0) <= 0) return false;
    handle(message);
    return true;
}

void pump_waiting() {
    MSG message;
    while (calls().peek(&message, nullptr, 0, 0, PM_REMOVE))
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

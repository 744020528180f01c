#pragma once

#include <optional>

#include "toolkit/toolkit.h"
#include "toolkit/win32/system.h"

namespace toolkit::win32 {

class Window;

/// What a widget's window is to be.
struct Creation {
    const char* window_class;
    DWORD style = 0;
    DWORD extended_style = 0;
};

/// The window of one control. It hears every message first. The control outlives its widget: both go when no
/// event runs any more, so no call here need ask whether they are still there.
class Widget : public Peer {
  public:
    ~Widget() override;
    Widget(const Widget&) = delete;
    Widget& operator=(const Widget&) = delete;

    void refresh(const Control& control, Change change) final;
    Control& control() const { return control_; }
    HWND handle() const { return handle_; }

    /// Null where the window is not a widget's.
    static Widget* of(HWND window);
    /// Hands on what a window got about one of its children; none: it is nobody's.
    static std::optional<LRESULT> hand_on(const Message& message);
    /// A key that means something to the widget itself and so nothing to the form.
    virtual bool wants_key(WPARAM) const { return false; }

  protected:
    Widget(Control& control, HWND parent, const Creation& creation);

    /// Shows what this kind of control has besides place, font and the like.
    virtual void show_state() = 0;
    /// The same where nothing but one more line is new.
    virtual void show_appended() { show_state(); }
    virtual void show_place(const RECT& place);

    virtual LRESULT on_message(const Message& message) { return pass_on(message); }
    /// What the system tells the parent about this window. Not called for what refresh() itself caused.
    virtual std::optional<LRESULT> on_notification(const Message&) { return {}; }
    /// Does a press of the mouse here bring the keyboard?
    virtual bool takes_focus_at(POINT) const { return control_.takes_focus(); }

    /// To the procedure that the window's class has of itself.
    LRESULT pass_on(const Message& message) const;
    LRESULT send(UINT id, WPARAM w = 0, LPARAM l = 0) const { return SendMessageA(handle_, id, w, l); }
    LRESULT send(UINT id, WPARAM w, const char* text) const {
        return send(id, w, reinterpret_cast<LPARAM>(text));
    }
    HFONT font() const;
    Window& window() const;

    /// Puts what a person did into the control, then shows what the control made of it: it may have refused.
    template <class Act>
    void act(Act what) {
        control_.form().toolkit().deliver(what);
        refresh(control_, Change::content);
    }

  private:
    static LRESULT CALLBACK procedure(HWND window, UINT id, WPARAM w, LPARAM l) noexcept;
    LRESULT hear(const Message& message);
    void show_common(Change change);

    static inline int refreshing_ = 0;
    Control& control_;
    HWND handle_;
    WNDPROC own_procedure_;
};

/// A widget that knows its kind of control.
template <class C>
class Shown : public Widget {
  public:
    Shown(C& control, HWND parent, const Creation& creation)
        : Widget(control, parent, creation), control_(control) {}

  protected:
    C& control_;
};

/// The class of windows that draw themselves.
extern const char* const drawn_class;
void register_drawn_class();

/// A widget of no class of Windows' own. It is drawn aside and shown in one go, so that nothing flickers.
template <class C>
class Drawn : public Shown<C> {
  public:
    Drawn(C& control, HWND parent, DWORD style = 0, DWORD extended_style = 0)
        : Shown<C>(control, parent, {drawn_class, style, extended_style}) {}

  protected:
    virtual void paint(HDC dc, const RECT& area) = 0;
    void show_state() override { InvalidateRect(this->handle(), nullptr, FALSE); }
    LRESULT on_message(const Message& message) override;
};

/// Calls `paint` with a device context whose content comes to the screen afterwards.
void paint_aside(HWND window, HFONT font, const std::function<void(HDC, const RECT&)>& paint);

template <class C>
LRESULT Drawn<C>::on_message(const Message& message) {
    switch (message.id) {
        case WM_ERASEBKGND:
            return TRUE;
        case WM_PAINT:
            paint_aside(this->handle(), this->font(), [this](HDC dc, const RECT& area) { paint(dc, area); });
            return 0;
        default:
            return this->pass_on(message);
    }
}

}  // namespace toolkit::win32

#include "toolkit/win32/picture.h"
#include "toolkit/win32/units.h"
#include "toolkit/win32/widgets.h"

namespace toolkit::win32 {

namespace {

/// Setting the same text again would flicker, and throw the cursor of a text box to the start.
void show_text(HWND window, const std::string& text) {
    if (text_of(window) != text) SetWindowTextA(window, text.c_str());
}

class LabelWidget : public Shown<Label> {
  public:
    LabelWidget(Label& control, HWND parent) : Shown(control, parent, {"STATIC", SS_LEFT}) {}

  private:
    void show_state() override { show_text(handle(), control_.text()); }
};

class TextBoxWidget : public Shown<TextBox> {
  public:
    TextBoxWidget(TextBox& control, HWND parent)
        : Shown(control, parent, {"EDIT", ES_AUTOHSCROLL, WS_EX_CLIENTEDGE}) {}

  private:
    void show_state() override {
        send(EM_LIMITTEXT, control_.max_length());
        const auto mask = static_cast<unsigned char>(control_.password_char());
        if (static_cast<WPARAM>(send(EM_GETPASSWORDCHAR)) != mask) send(EM_SETPASSWORDCHAR, mask);
        show_text(handle(), control_.text());
    }

    std::optional<LRESULT> on_notification(const Message& message) override {
        if (message.id == WM_COMMAND && HIWORD(message.w) == EN_CHANGE) {
            act([this] { control_.type(text_of(handle())); });
        }
        return {};
    }

    LRESULT on_message(const Message& message) override {
        const LRESULT answer = pass_on(message);
        if (message.id == WM_LBUTTONUP) {
            RECT area;
            GetClientRect(handle(), &area);
            const POINT at{static_cast<short>(LOWORD(message.l)), static_cast<short>(HIWORD(message.l))};
            if (PtInRect(&area, at)) act([this] { control_.click(); });
        }
        return answer;
    }
};

/// The window says which button looks as the one that Enter presses.
class ButtonWidget : public Shown<Button> {
  public:
    ButtonWidget(Button& control, HWND parent) : Shown(control, parent, {"BUTTON", BS_PUSHBUTTON}) {}

  private:
    void show_state() override { show_text(handle(), control_.text()); }

    std::optional<LRESULT> on_notification(const Message& message) override {
        if (message.id == WM_COMMAND && HIWORD(message.w) == BN_CLICKED) act([this] { control_.click(); });
        return {};
    }
};

class CheckBoxWidget : public Shown<CheckBox> {
  public:
    CheckBoxWidget(CheckBox& control, HWND parent) : Shown(control, parent, {"BUTTON", BS_3STATE}) {}

  private:
    void show_state() override {
        show_text(handle(), control_.text());
        if (send(BM_GETCHECK) != control_.value()) send(BM_SETCHECK, control_.value());
    }

    std::optional<LRESULT> on_notification(const Message& message) override {
        if (message.id == WM_COMMAND && HIWORD(message.w) == BN_CLICKED) act([this] { control_.click(); });
        return {};
    }
};

/// An etched line with the caption in its upper edge. Windows' own group box draws no ground, so what it lies
/// over would show through.
class FrameWidget : public Drawn<Frame> {
  public:
    FrameWidget(Frame& control, HWND parent) : Drawn(control, parent, WS_CLIPCHILDREN) {}

  private:
    static constexpr int caption_left = 8;

    void paint(HDC dc, const RECT& area) override {
        const int line = line_height(font());
        RECT edge = area;
        edge.top += line / 2;
        DrawEdge(dc, &edge, EDGE_ETCHED, BF_RECT);
        const std::string& caption = control_.text();
        if (caption.empty()) return;
        RECT place{caption_left, 0, area.right, line};
        DrawTextA(dc, caption.c_str(), -1, &place, DT_SINGLELINE | DT_CALCRECT);
        const RECT ground{place.left - 2, place.top, place.right + 2, place.bottom};
        FillRect(dc, &ground, GetSysColorBrush(COLOR_BTNFACE));
        DrawTextA(dc, caption.c_str(), -1, &place, DT_SINGLELINE);
    }
};

class PictureWidget : public Drawn<PictureBox> {
  public:
    using Drawn::Drawn;

  private:
    std::string bytes_;
    Picture picture_;

    void show_state() override {
        if (bytes_ != control_.bytes()) {
            bytes_ = control_.bytes();
            picture_ = Picture(bytes_);
        }
        Drawn::show_state();
    }

    void paint(HDC dc, const RECT& area) override {
        if (control_.drawing()) {
            const RECT square = fitted({1, 1}, area);
            return draw(dc, *control_.drawing(), square);
        }
        // A box for a picture from a file shows its place before there is one.
        RECT edge = area;
        DrawEdge(dc, &edge, EDGE_SUNKEN, BF_RECT);
        if (picture_) picture_.draw(dc, fitted(picture_.size(), shrunk(area, 2)));
    }
};

}  // namespace

Made make_widget(Label& control, HWND parent) { return std::make_unique<LabelWidget>(control, parent); }
Made make_widget(TextBox& control, HWND parent) { return std::make_unique<TextBoxWidget>(control, parent); }
Made make_widget(Button& control, HWND parent) { return std::make_unique<ButtonWidget>(control, parent); }
Made make_widget(CheckBox& control, HWND parent) { return std::make_unique<CheckBoxWidget>(control, parent); }
Made make_widget(Frame& control, HWND parent) { return std::make_unique<FrameWidget>(control, parent); }
Made make_widget(PictureBox& control, HWND parent) {
    return std::make_unique<PictureWidget>(control, parent);
}

}  // namespace toolkit::win32

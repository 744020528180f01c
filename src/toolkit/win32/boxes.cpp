#include "toolkit/win32/boxes.h"

#include <algorithm>

#include "toolkit/win32/units.h"
#include "toolkit/win32/window.h"

namespace toolkit::win32 {

namespace {

int shown_so_far = 0;

}  // namespace

int boxes_shown() { return shown_so_far; }

Modal::Modal(const Toolkit& toolkit, HWND owner) {
    ++shown_so_far;
    for (const Form* form : toolkit.forms()) {
        const auto* window = static_cast<const Window*>(form->peer);
        if (!window || window->handle() == owner || !IsWindowEnabled(window->handle())) continue;
        EnableWindow(window->handle(), FALSE);
        disabled_.push_back(window->handle());
    }
}

Modal::~Modal() {
    for (HWND window : disabled_)
        EnableWindow(window, TRUE);  // one that has gone meanwhile is passed over
}

// --- message boxes

namespace {

struct Choice {
    int id;
    Word word;
    Answer answer;
};
constexpr Choice choices[] = {
    {IDOK, Word::ok, Answer::ok},          {IDYES, Word::yes, Answer::yes},
    {IDNO, Word::no, Answer::no},          {IDABORT, Word::abort, Answer::abort},
    {IDRETRY, Word::retry, Answer::retry}, {IDIGNORE, Word::ignore, Answer::ignore},
};

UINT buttons_of(const Box& box) {
    switch (box.buttons) {
        case Buttons::yes_no:
            return MB_YESNO | (box.default_answer == Answer::no ? MB_DEFBUTTON2 : MB_DEFBUTTON1);
        case Buttons::abort_retry_ignore:
            return MB_ABORTRETRYIGNORE | (box.default_answer == Answer::retry    ? MB_DEFBUTTON2
                                          : box.default_answer == Answer::ignore ? MB_DEFBUTTON3
                                                                                 : MB_DEFBUTTON1);
        case Buttons::ok:
            break;
    }
    return MB_OK;
}

UINT icon_of(Icon icon) {
    switch (icon) {
        case Icon::critical:
            return MB_ICONHAND;
        case Icon::question:
            return MB_ICONQUESTION;
        case Icon::exclamation:
            return MB_ICONEXCLAMATION;
        case Icon::information:
            return MB_ICONASTERISK;
        case Icon::none:
            break;
    }
    return 0;
}

/// Windows puts the words of its own language on the buttons. This puts those of the program there, just
/// before the box comes up.
class Captions {
  public:
    explicit Captions(Language language) {
        language_ = language;
        hook_ = SetWindowsHookExA(WH_CBT, &on_activity, nullptr, GetCurrentThreadId());
    }
    ~Captions() { stop(); }
    Captions(const Captions&) = delete;
    Captions& operator=(const Captions&) = delete;

  private:
    static void stop() {
        if (hook_) UnhookWindowsHookEx(hook_);
        hook_ = nullptr;
    }
    static LRESULT CALLBACK on_activity(int what, WPARAM window, LPARAM more) noexcept {
        if (what != HCBT_ACTIVATE) return CallNextHookEx(hook_, what, window, more);
        for (const Choice& choice : choices)
            SetDlgItemTextA(reinterpret_cast<HWND>(window), choice.id, caption_of(choice));
        stop();
        return 0;
    }
    static const char* caption_of(const Choice& choice) { return word(choice.word, language_); }

    static inline HHOOK hook_ = nullptr;
    static inline Language language_ = Language::english;
};

}  // namespace

Answer ask(const Box& box, HWND owner, Language language) {
    const Captions captions(language);
    const UINT alone = owner ? 0 : MB_SETFOREGROUND;
    const int pressed = MessageBoxA(owner, box.text.c_str(), box.title.c_str(),
                                    buttons_of(box) | icon_of(box.icon) | MB_TASKMODAL | alone);
    const auto found = std::find_if(std::begin(choices), std::end(choices),
                                    [pressed](const Choice& choice) { return choice.id == pressed; });
    return found == std::end(choices) ? box.default_answer : found->answer;
}

// --- input box

namespace {

/// One line to type, below a text. Laid out by hand: sizes go by the font that the forms have.
class LineDialog {
  public:
    LineDialog(const std::string& title, const std::string& prompt, Language language)
        : title_(title), prompt_(prompt), language_(language) {}

    std::string run(HWND owner) {
        struct {
            DLGTEMPLATE head{};
            WORD none[3] = {};  // menu, class, title
        } empty;
        empty.head.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME;
        const INT_PTR ended = DialogBoxIndirectParamA(GetModuleHandleA(nullptr), &empty.head, owner,
                                                      &procedure, reinterpret_cast<LPARAM>(this));
        return ended == IDOK ? line_ : std::string();
    }

  private:
    static constexpr int line_id = 100;
    static constexpr int margin = 11;
    static constexpr int button_height = 23;
    static constexpr int button_width = 75;

    static INT_PTR CALLBACK procedure(HWND dialog, UINT id, WPARAM w, LPARAM l) noexcept {
        if (id == WM_INITDIALOG) {
            SetWindowLongA(dialog, GWL_USERDATA, l);
            reinterpret_cast<LineDialog*>(l)->fill(dialog);
            return FALSE;  // the keyboard is at the line already
        }
        auto* const self = reinterpret_cast<LineDialog*>(GetWindowLongA(dialog, GWL_USERDATA));
        if (!self || id != WM_COMMAND || (LOWORD(w) != IDOK && LOWORD(w) != IDCANCEL)) return FALSE;
        self->line_ = text_of(GetDlgItem(dialog, line_id));
        EndDialog(dialog, LOWORD(w));
        return TRUE;
    }

    void fill(HWND dialog) {
        SetWindowTextA(dialog, title_.c_str());
        const int width = pixels(5400);
        const int text_height = height_of_prompt(width - 2 * margin);
        const int line_top = margin + text_height + margin;
        const int line_height = win32::line_height(font_of(0)) + 8;
        const int buttons_top = line_top + line_height + margin;

        add(dialog, "STATIC", SS_LEFT | SS_NOPREFIX, prompt_.c_str(), 0,
            {margin, margin, width - margin, margin + text_height});
        HWND const line = add(dialog, "EDIT", ES_AUTOHSCROLL | WS_TABSTOP, "", line_id,
                              {margin, line_top, width - margin, line_top + line_height});
        RECT button{width - margin - button_width, buttons_top, width - margin, buttons_top + button_height};
        HWND const cancel = add(dialog, "BUTTON", BS_PUSHBUTTON | WS_TABSTOP, word(Word::cancel, language_),
                                IDCANCEL, button);
        OffsetRect(&button, -button_width - margin / 2, 0);
        HWND const ok =
            add(dialog, "BUTTON", BS_DEFPUSHBUTTON | WS_TABSTOP, word(Word::ok, language_), IDOK, button);
        SetWindowPos(cancel, ok, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);  // the way of Tab
        show_in_the_middle(dialog, width, buttons_top + button_height + margin);
        SetFocus(line);
    }

    int height_of_prompt(int width) const {
        RECT room{0, 0, width, 0};
        HDC const dc = GetDC(nullptr);
        {
            const Chosen letters(dc, font_of(0));
            DrawTextA(dc, prompt_.c_str(), -1, &room, DT_WORDBREAK | DT_CALCRECT | DT_NOPREFIX);
        }
        ReleaseDC(nullptr, dc);
        return height_of(room);
    }

    static HWND add(HWND dialog, const char* kind, DWORD style, const char* text, int id, const RECT& place) {
        const DWORD edge = std::string_view(kind) == "EDIT" ? WS_EX_CLIENTEDGE : 0;
        HWND const window = CreateWindowExA(edge, kind, text, style | WS_CHILD | WS_VISIBLE, place.left,
                                            place.top, width_of(place), height_of(place), dialog,
                                            reinterpret_cast<HMENU>(id), GetModuleHandleA(nullptr), nullptr);
        SendMessageA(window, WM_SETFONT, reinterpret_cast<WPARAM>(font_of(0)), FALSE);
        return window;
    }

    static void show_in_the_middle(HWND dialog, int width, int height) {
        RECT frame{0, 0, width, height};
        AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongA(dialog, GWL_STYLE)), FALSE,
                           static_cast<DWORD>(GetWindowLongA(dialog, GWL_EXSTYLE)));
        RECT around;
        HWND const owner = GetWindow(dialog, GW_OWNER);
        if (owner) {
            GetWindowRect(owner, &around);
        } else {
            SystemParametersInfoA(SPI_GETWORKAREA, 0, &around, 0);
        }
        SetWindowPos(dialog, nullptr, (around.left + around.right - width_of(frame)) / 2,
                     (around.top + around.bottom - height_of(frame)) / 2, width_of(frame), height_of(frame),
                     SWP_NOZORDER | SWP_SHOWWINDOW);
    }

    const std::string& title_;
    const std::string& prompt_;
    Language language_;
    std::string line_;
};

}  // namespace

std::string ask_line(const std::string& title, const std::string& prompt, HWND owner, Language language) {
    return LineDialog(title, prompt, language).run(owner);
}

}  // namespace toolkit::win32

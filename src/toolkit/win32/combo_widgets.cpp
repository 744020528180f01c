#include <utility>

#include "toolkit/win32/lines.h"
#include "toolkit/win32/units.h"
#include "toolkit/win32/widgets.h"

namespace toolkit::win32 {

namespace {

constexpr UINT list_closed = WM_APP;

/// A combo box that only its list can change. Its text need not be in the list, so it draws itself.
template <class C>
class ListOnlyCombo : public Shown<C> {
  public:
    ListOnlyCombo(C& control, HWND parent)
        : Shown<C>(control, parent,
                   {"COMBOBOX", CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS | WS_VSCROLL}) {}

    bool wants_key(WPARAM key) const override { return (key == VK_RETURN || key == VK_ESCAPE) && is_open(); }

  protected:
    virtual void choose(int row) = 0;

    void show_lines(const std::vector<std::string>& lines, const std::string& text) {
        follow(
            lines_, lines, [this](size_t at) { this->send(CB_DELETESTRING, at); },
            [this](size_t at, const std::string& line) { this->send(CB_INSERTSTRING, at, line.c_str()); });
        const auto found = std::find(lines.begin(), lines.end(), text);
        const int row = found == lines.end() ? -1 : static_cast<int>(found - lines.begin());
        if (row != selected()) this->send(CB_SETCURSEL, row);
        if (std::exchange(text_, text) != text) InvalidateRect(this->handle(), nullptr, TRUE);
    }

  private:
    static constexpr int lines_at_once = 12;
    std::vector<std::string> lines_;
    std::string text_;
    bool chosen_ = false;
    bool moving_ = false;

    int selected() const { return static_cast<int>(this->send(CB_GETCURSEL)); }
    bool is_open() const { return this->send(CB_GETDROPPEDSTATE) != 0; }

    /// The place is that of the field; the height that Windows is told includes the list.
    void show_place(const RECT& place) override {
        const int line = line_height(this->font());
        this->send(CB_SETITEMHEIGHT, 0, line);
        RECT whole = place;
        whole.bottom += lines_at_once * line + 2;
        Shown<C>::show_place(whole);
        RECT now;
        GetWindowRect(this->handle(), &now);
        const auto field = static_cast<int>(this->send(CB_GETITEMHEIGHT, static_cast<WPARAM>(-1)));
        this->send(CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), field + height_of(place) - height_of(now));
    }

    LRESULT on_message(const Message& message) override {
        switch (message.id) {
            case WM_KEYDOWN:
                return moves(message.w) || wants_key(message.w) ? on_move(message) : 0;
            case WM_MOUSEWHEEL:  // newer systems turn it over what has no keyboard
                return GetFocus() == this->handle() ? on_move(message) : 0;
            case WM_GETTEXTLENGTH:  // for whoever reads the screen aloud
                return static_cast<LRESULT>(text_.size());
            case WM_GETTEXT:
                lstrcpynA(reinterpret_cast<char*>(message.l), text_.c_str(), static_cast<int>(message.w));
                return lstrlenA(reinterpret_cast<const char*>(message.l));
            case WM_CHAR:
                return 0;  // Windows would look for a typed letter in the list and choose what it finds
            case list_closed:
                if (std::exchange(chosen_, false)) choose(selected());
                return 0;
            default:
                return this->pass_on(message);
        }
    }

    static bool moves(WPARAM key) {
        switch (key) {
            case VK_UP:
            case VK_DOWN:
            case VK_PRIOR:
            case VK_NEXT:
            case VK_HOME:
            case VK_END:
            case VK_F4:
                return true;
            default:
                return false;
        }
    }

    LRESULT on_move(const Message& message) {
        if (moving_) return this->pass_on(message);  // the wheel comes again as a key
        const int before = selected();
        moving_ = true;
        const LRESULT answer = this->pass_on(message);
        moving_ = false;
        if (!is_open() && !chosen_ && selected() != before) choose(selected());
        return answer;
    }

    std::optional<LRESULT> on_notification(const Message& message) override {
        if (message.id == WM_DRAWITEM) {
            draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(message.l));
            return TRUE;
        }
        if (message.id != WM_COMMAND) return {};
        switch (HIWORD(message.w)) {
            case CBN_DROPDOWN:
                chosen_ = false;
                break;
            case CBN_SELENDOK:
                chosen_ = is_open();
                break;
            case CBN_CLOSEUP:  // not now: the list is still at work
                PostMessageA(this->handle(), list_closed, 0, 0);
                break;
            default:
                break;
        }
        return {};
    }

    void draw(const DRAWITEMSTRUCT& item) const {
        const bool marked = (item.itemState & ODS_SELECTED) != 0;
        const bool grey = (item.itemState & ODS_DISABLED) != 0;
        const int ground = marked ? COLOR_HIGHLIGHT : grey ? COLOR_BTNFACE : COLOR_WINDOW;
        const int letters = marked ? COLOR_HIGHLIGHTTEXT : grey ? COLOR_GRAYTEXT : COLOR_WINDOWTEXT;
        FillRect(item.hDC, &item.rcItem, GetSysColorBrush(ground));
        SetBkMode(item.hDC, TRANSPARENT);
        SetTextColor(item.hDC, GetSysColor(letters));
        RECT place = item.rcItem;
        place.left += 2;
        DrawTextA(item.hDC, text_of_item(item).c_str(), -1, &place, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
        if (item.itemState & ODS_FOCUS) DrawFocusRect(item.hDC, &item.rcItem);
    }

    std::string text_of_item(const DRAWITEMSTRUCT& item) const {
        if (item.itemState & ODS_COMBOBOXEDIT) return text_;
        return item.itemID < lines_.size() ? lines_[item.itemID] : std::string();
    }
};

class ComboBoxWidget : public ListOnlyCombo<ComboBox> {
  public:
    using ListOnlyCombo::ListOnlyCombo;

  private:
    void choose(int row) override {
        act([this, row] { control_.choose(row); });
    }
    void show_state() override { show_lines(control_.items(), control_.text()); }
};

class DriveListWidget : public ListOnlyCombo<DriveListBox> {
  public:
    using ListOnlyCombo::ListOnlyCombo;

  private:
    void choose(int row) override {
        act([this, row] { control_.choose(row); });
    }
    void show_state() override {
        std::vector<std::string> names;
        for (const char letter : control_.drives())
            names.push_back({letter, ':'});
        show_lines(names, control_.drive());
    }
};

}  // namespace

Made make_widget(ComboBox& control, HWND parent) { return std::make_unique<ComboBoxWidget>(control, parent); }
Made make_widget(DriveListBox& control, HWND parent) {
    return std::make_unique<DriveListWidget>(control, parent);
}

}  // namespace toolkit::win32

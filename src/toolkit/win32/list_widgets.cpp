#include <utility>

#include "toolkit/drawing.h"
#include "toolkit/win32/lines.h"
#include "toolkit/win32/picture.h"
#include "toolkit/win32/units.h"
#include "toolkit/win32/widgets.h"

namespace toolkit::win32 {

namespace {

constexpr UINT draw_now = WM_APP;

/// A list that tells what a person does to it, and never what the program does.
template <class C>
class LineList : public Shown<C> {
  public:
    LineList(C& control, HWND parent, DWORD style = 0)
        : Shown<C>(
              control, parent,
              {"LISTBOX", style | LBS_HASSTRINGS | LBS_NOINTEGRALHEIGHT | WS_VSCROLL, WS_EX_CLIENTEDGE}) {}

  protected:
    virtual void on_click(int) {}  ///< by mouse, the same line again included
    virtual void on_move(int) {}   ///< another line by key
    virtual void on_open(int) {}   ///< double click or Enter

    void show_lines(const std::vector<std::string>& lines) {
        draw_later();
        follow(
            shown_, lines, [this](size_t at) { this->send(LB_DELETESTRING, at); },
            [this](size_t at, const std::string& line) { this->send(LB_INSERTSTRING, at, line.c_str()); });
    }
    void append(const std::string& line) {
        draw_later();
        this->send(LB_ADDSTRING, 0, line.c_str());
        shown_.push_back(line);
    }
    int selected() const { return static_cast<int>(this->send(LB_GETCURSEL)); }
    void select(int row) {
        if (row != selected()) this->send(LB_SETCURSEL, row);
    }

    LRESULT on_message(const Message& message) override {
        switch (message.id) {
            case draw_now:
                draws_later_ = false;
                this->send(WM_SETREDRAW, TRUE);
                InvalidateRect(this->handle(), nullptr, TRUE);
                return 0;
            case WM_LBUTTONDOWN:
                pressed_ = line_at(message.l) >= 0;
                return pressed_ ? this->pass_on(message) : 0;
            case WM_LBUTTONUP: {
                const LRESULT answer = this->pass_on(message);
                if (std::exchange(pressed_, false) && selected() >= 0) on_click(selected());
                return answer;
            }
            case WM_LBUTTONDBLCLK:
                if (line_at(message.l) >= 0) on_open(line_at(message.l));
                return 0;
            case WM_KEYDOWN:
            case WM_CHAR:
                return on_key(message);
            default:
                return this->pass_on(message);
        }
    }

  private:
    std::vector<std::string> shown_;
    bool draws_later_ = false;
    bool pressed_ = false;

    /// Nothing is drawn before the program has done with the list for now: a thousand lines may follow.
    void draw_later() {
        if (std::exchange(draws_later_, true)) return;
        this->send(WM_SETREDRAW, FALSE);
        PostMessageA(this->handle(), draw_now, 0, 0);
    }

    /// -1: below the last one.
    int line_at(LPARAM place) const {
        const int height = std::max<int>(1, static_cast<int>(this->send(LB_GETITEMHEIGHT)));
        const int line = static_cast<int>(this->send(LB_GETTOPINDEX)) + HIWORD(place) / height;
        return line < static_cast<int>(shown_.size()) ? line : -1;
    }

    LRESULT on_key(const Message& message) {
        if (message.id == WM_KEYDOWN && message.w == VK_RETURN) {
            if (selected() >= 0) on_open(selected());
            return 0;
        }
        const int before = selected();
        const bool arrow = message.id == WM_KEYDOWN && (message.w == VK_DOWN || message.w == VK_UP);
        LRESULT answer = 0;
        if (arrow && before < 0) {
            select(0);  // the first line has been passed over by nobody
        } else {
            answer = this->pass_on(message);
        }
        if (selected() != before) on_move(selected());
        return answer;
    }
};

class ListBoxWidget : public LineList<ListBox> {
  public:
    using LineList::LineList;

  private:
    void show_state() override {
        show_lines(control_.items());
        select(control_.selected());
    }
    void show_appended() override { append(control_.items().back()); }
    void on_click(int row) override {
        act([this, row] { control_.click_item(row); });
    }
    void on_move(int row) override { on_click(row); }
};

class FileListWidget : public LineList<FileListBox> {
  public:
    using LineList::LineList;

  private:
    void show_state() override { show_lines(control_.files()); }
};

// --- folders

constexpr float back[] = {2, 7, 13, 7, 16, 10, 28, 10, 28, 27, 2, 27};
constexpr float closed_front[] = {2, 11, 28, 27};
constexpr float open_front[] = {8, 15, 31, 15, 25, 27, 2, 27};
constexpr uint32_t edge_colour = 0x807020;
constexpr uint32_t front_colour = 0xf8e070;
constexpr Shape closed_shapes[] = {{Shape::Kind::polygon, edge_colour, back},
                                   {Shape::Kind::box, front_colour, closed_front}};
constexpr Shape open_shapes[] = {{Shape::Kind::polygon, edge_colour, back},
                                 {Shape::Kind::polygon, front_colour, open_front}};
constexpr Drawing closed_folder{closed_shapes};
constexpr Drawing open_folder{open_shapes};

/// The way to a folder, each step further in, and the folders in it.
class DirListWidget : public LineList<DirListBox> {
  public:
    DirListWidget(DirListBox& control, HWND parent) : LineList(control, parent, LBS_OWNERDRAWFIXED) {}

    bool wants_key(WPARAM key) const override { return key == VK_RETURN; }

  private:
    static constexpr int side = 16;
    static constexpr int step = 10;
    std::vector<std::string> way_;

    int depth() const { return static_cast<int>(way_.size()); }

    void show_state() override {
        send(LB_SETITEMHEIGHT, 0, MAKELPARAM(std::max(side, line_height(font())), 0));
        const bool moved = std::exchange(way_, control_.ancestors()) != way_;
        std::vector<std::string> lines;
        for (const std::string& path : way_)
            lines.push_back(path.ends_with('\\') ? path : path.substr(path.rfind('\\') + 1));
        lines.insert(lines.end(), control_.folders().begin(), control_.folders().end());
        show_lines(lines);
        if (moved) select(depth() - 1);
    }

    void on_open(int row) override {
        act([this, row] {
            row < depth() ? control_.open_ancestor(row) : control_.open_folder(row - depth());
        });
    }

    std::optional<LRESULT> on_notification(const Message& message) override {
        if (message.id != WM_DRAWITEM) return {};
        const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(message.l);
        if (item.itemID != static_cast<UINT>(-1)) draw_line(item, static_cast<int>(item.itemID));
        return TRUE;
    }

    void draw_line(const DRAWITEMSTRUCT& item, int row) const {
        const bool marked = (item.itemState & ODS_SELECTED) != 0;
        FillRect(item.hDC, &item.rcItem, GetSysColorBrush(marked ? COLOR_HIGHLIGHT : COLOR_WINDOW));
        const int left = item.rcItem.left + 2 + step * std::min(row, depth());
        const int top = (item.rcItem.top + item.rcItem.bottom - side) / 2;
        draw(item.hDC, row < depth() ? open_folder : closed_folder, {left, top, left + side, top + side});
        std::string text(static_cast<size_t>(send(LB_GETTEXTLEN, row)) + 1, '\0');
        send(LB_GETTEXT, row, text.data());
        RECT place{left + side + 3, item.rcItem.top, item.rcItem.right, item.rcItem.bottom};
        SetBkMode(item.hDC, TRANSPARENT);
        SetTextColor(item.hDC, GetSysColor(marked ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
        DrawTextA(item.hDC, text.c_str(), -1, &place, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
        if (item.itemState & ODS_FOCUS) DrawFocusRect(item.hDC, &item.rcItem);
    }
};

// --- rows with a mark each

class ListViewWidget : public Shown<ListView> {
  public:
    ListViewWidget(ListView& control, HWND parent)
        : Shown(control, parent,
                {WC_LISTVIEWA, LVS_REPORT | LVS_NOCOLUMNHEADER | LVS_SINGLESEL | LVS_SHOWSELALWAYS,
                 WS_EX_CLIENTEDGE}) {
        send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_CHECKBOXES);
        LVCOLUMNA column{};
        send(LVM_INSERTCOLUMNA, 0, reinterpret_cast<LPARAM>(&column));
    }

  private:
    static constexpr UINT marked = INDEXTOSTATEIMAGEMASK(2);
    static constexpr UINT unmarked = INDEXTOSTATEIMAGEMASK(1);
    std::vector<std::string> shown_;

    void show_place(const RECT& place) override {
        Shown::show_place(place);
        RECT area;
        GetClientRect(handle(), &area);
        send(LVM_SETCOLUMNWIDTH, 0, MAKELPARAM(width_of(area) - GetSystemMetrics(SM_CXVSCROLL), 0));
    }

    void show_state() override {
        std::vector<std::string> texts;
        for (const ListView::Row& row : control_.rows())
            texts.push_back(row.text);
        follow(
            shown_, texts, [this](size_t at) { send(LVM_DELETEITEM, at); },
            [this](size_t at, const std::string& text) { insert(at, text); });
        for (size_t at = 0; at < control_.rows().size(); ++at)
            set_state(at, control_.rows()[at].checked ? marked : unmarked, LVIS_STATEIMAGEMASK);
    }

    void insert(size_t at, std::string text) {
        LVITEMA item{};
        item.mask = LVIF_TEXT;
        item.iItem = static_cast<int>(at);
        item.pszText = text.data();
        send(LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
    }

    void set_state(size_t at, UINT state, UINT mask) {
        if ((static_cast<UINT>(send(LVM_GETITEMSTATE, at, mask)) & mask) == state) return;
        LVITEMA item{};
        item.state = state;
        item.stateMask = mask;
        send(LVM_SETITEMSTATE, at, reinterpret_cast<LPARAM>(&item));
    }

    std::optional<LRESULT> on_notification(const Message& message) override {
        if (message.id != WM_NOTIFY) return {};
        const auto& news = *reinterpret_cast<const NMLISTVIEW*>(message.l);
        if (news.hdr.code != LVN_ITEMCHANGED || !(news.uChanged & LVIF_STATE)) return {};
        const UINT before = news.uOldState & LVIS_STATEIMAGEMASK;
        const UINT now = news.uNewState & LVIS_STATEIMAGEMASK;
        if (before == 0 || now == 0 || before == now) return {};
        const auto row = static_cast<size_t>(news.iItem);
        act([this, row] { control_.click_row(row); });
        set_state(row, LVIS_FOCUSED | LVIS_SELECTED,
                  LVIS_FOCUSED | LVIS_SELECTED);  // where the next key goes
        return {};
    }
};

}  // namespace

Made make_widget(ListBox& control, HWND parent) { return std::make_unique<ListBoxWidget>(control, parent); }
Made make_widget(ListView& control, HWND parent) { return std::make_unique<ListViewWidget>(control, parent); }
Made make_widget(DirListBox& control, HWND parent) {
    return std::make_unique<DirListWidget>(control, parent);
}
Made make_widget(FileListBox& control, HWND parent) {
    return std::make_unique<FileListWidget>(control, parent);
}

}  // namespace toolkit::win32

#include "toolkit/win32/lines.h"
#include "toolkit/win32/units.h"
#include "toolkit/win32/widgets.h"

namespace toolkit::win32 {

namespace {

/// A row of tabs at the upper edge of a pane; the controls of the pages are children of the whole.
class TabWidget : public Shown<TabContainer> {
  public:
    TabWidget(TabContainer& control, HWND parent)
        : Shown(control, parent, {WC_TABCONTROLA, WS_CLIPCHILDREN}) {
        send(TCM_SETMINTABWIDTH);  // nine tabs stand beside each other
    }

  private:
    std::vector<std::string> captions_;

    void show_state() override {
        follow(
            captions_, control_.captions(), [this](size_t at) { send(TCM_DELETEITEM, at); },
            [this](size_t at, const std::string& caption) { insert(at, caption); });
        if (send(TCM_GETCURSEL) != control_.current()) send(TCM_SETCURSEL, control_.current());
        for (Control* control : control_.form().controls()) {
            if (control->parent() == &control_ && control->peer)
                control->peer->refresh(*control, Change::visible);
        }
    }

    void insert(size_t at, std::string caption) {
        TCITEMA item{};
        item.mask = TCIF_TEXT;
        item.pszText = caption.data();
        send(TCM_INSERTITEMA, at, reinterpret_cast<LPARAM>(&item));
    }

    bool takes_focus_at(POINT at) const override {
        TCHITTESTINFO hit{at, 0};
        return send(TCM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)) >= 0;
    }

    std::optional<LRESULT> on_notification(const Message& message) override {
        if (message.id != WM_NOTIFY) return {};
        if (reinterpret_cast<const NMHDR*>(message.l)->code != static_cast<UINT>(TCN_SELCHANGE)) return {};
        const auto page = static_cast<int>(send(TCM_GETCURSEL));
        act([this, page] { control_.click_tab(page); });
        return 0;
    }
};

}  // namespace

Made make_widget(TabContainer& control, HWND parent) { return std::make_unique<TabWidget>(control, parent); }

}  // namespace toolkit::win32

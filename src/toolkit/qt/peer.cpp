#include "toolkit/qt/peer.h"

#include <QApplication>
#include <QScopedValueRollback>

#include "toolkit/qt/conversion.h"
#include "toolkit/qt/window.h"
#include "toolkit/spoken.h"

namespace toolkit::qt {

namespace {

bool on_its_page(const Control& control) {
    const Control* parent = control.parent();
    return !parent || parent->kind() != Kind::tab ||
           static_cast<const TabContainer*>(parent)->current() == control.page();
}

QFont font_of(const Control& control) {
    QFont font = QApplication::font();
    if (control.font_size() > 0) font.setPixelSize(font_pixels(control.font_size()));
    return font;
}

}  // namespace

void WidgetPeer::refresh(const Control&, Change change) {
    {
        const QScopedValueRollback quiet(refreshing_, refreshing_ + 1);
        if (change == Change::appended) return show_appended();
        if (change != Change::content) show_common(change);
        if (change == Change::all || change == Change::content) {
            show_state();
            if (control_.takes_focus() || control_.kind() == Kind::frame)
                widget_.setAccessibleName(shown(spoken_name(control_)));
        }
    }
    if (auto* window = static_cast<Window*>(control_.form().peer)) window->give_back_focus();
}

void WidgetPeer::show_common(Change change) {
    const auto is_new = [change](Change one) { return change == Change::all || change == one; };
    if (is_new(Change::place)) widget_.setGeometry(pixels(control_.place()));
    if (is_new(Change::font)) {
        if (const QFont font = font_of(control_); widget_.font() != font) widget_.setFont(font);
    }
    if (is_new(Change::enabled)) widget_.setEnabled(control_.responsive());
    if (is_new(Change::visible)) widget_.setVisible(control_.visible() && on_its_page(control_));
}

void WidgetPeer::focus_came(Qt::FocusReason reason) {
    const bool by_person = reason == Qt::MouseFocusReason || reason == Qt::TabFocusReason ||
                           reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason;
    if (auto* window = static_cast<Window*>(control_.form().peer)) window->scroll_to(widget_);
    if (by_person && !refreshing()) {
        act([this] { control_.form().toolkit().set_focus(&control_); });
    }
}

}  // namespace toolkit::qt

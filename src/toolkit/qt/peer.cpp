#include "toolkit/qt/peer.h"

#include <QApplication>
#include <QScopedValueRollback>

#include "toolkit/qt/conversion.h"

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

void WidgetPeer::refresh(const Control&) {
    // When the focused widget goes, Qt passes the focus on as if the person had pressed Tab.
    const QScopedValueRollback quiet(refreshing_, refreshing_ + 1);
    const bool was_gone = widget_.isHidden() || !widget_.isEnabled();
    widget_.setGeometry(pixels(control_.place()));
    if (const QFont font = font_of(control_); widget_.font() != font) widget_.setFont(font);
    widget_.setEnabled(control_.enabled());
    show_state();
    widget_.setVisible(control_.visible() && on_its_page(control_));
    if (was_gone && control_.form().toolkit().focus() == &control_) widget_.setFocus(Qt::OtherFocusReason);
}

void WidgetPeer::focus_came(Qt::FocusReason reason) {
    const bool by_person = reason == Qt::MouseFocusReason || reason == Qt::TabFocusReason ||
                           reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason;
    if (by_person && refreshing_ == 0) {
        act([this] { control_.form().toolkit().set_focus(&control_); });
    }
}

}  // namespace toolkit::qt

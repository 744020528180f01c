#include "toolkit/qt/window.h"

#include <QAction>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <algorithm>
#include <utility>

#include "toolkit/qt/conversion.h"
#include "toolkit/qt/picture.h"
#include "toolkit/qt/strip.h"
#include "toolkit/qt/widgets.h"
#include "toolkit/spoken.h"

namespace toolkit::qt {

namespace {

QWidget& widget_of(const Control& control) { return static_cast<WidgetPeer*>(control.peer)->widget(); }

}  // namespace

Window::Window(Form& form)
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                           Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint),
      form_(form),
      menu_bar_(new QMenuBar(this)),
      view_(new QScrollArea(this)),
      client_(new QWidget),
      strip_(new Strip(this)) {
    form.peer = this;
    view_->setFrameShape(QFrame::NoFrame);
    view_->setFocusPolicy(Qt::NoFocus);
    view_->setWidget(client_);
    make_menus();
    make_controls();
    order_controls();
}

// --- creation

void Window::make_menus() { add_entries(form_.menus(), *menu_bar_); }

void Window::add_entries(const std::vector<MenuItem*>& items, QWidget& menu) {
    for (MenuItem* item : items) {
        auto* action = new QAction(this);
        menu.addAction(action);
        actions_.emplace_back(item, action);
        if (item->entries().empty()) {
            connect(action, &QAction::triggered, this,
                    [this, item] { form_.toolkit().deliver([item] { item->click(); }); });
        } else {
            auto* sub_menu = new QMenu(this);
            action->setMenu(sub_menu);
            add_entries(item->entries(), *sub_menu);
        }
    }
}

void Window::make_controls() {
    for (Control* control : form_.controls())
        make(*control);
}

void Window::make(Control& control) {
    if (control.peer) return;
    if (control.parent()) make(*control.parent());
    QWidget& parent = control.parent() ? widget_of(*control.parent()) : *client_;
    WidgetPeer* peer = visit(control, [&](auto& any) { return make_widget(any, parent); });
    if (peer) peer->refresh(control, Change::all);
}

/// What comes later lies above.
void Window::order_controls() {
    for (Control* control : form_.controls()) {
        if (control->kind() == Kind::timer) continue;
        widget_of(*control).raise();
        const Control* label = label_of(*control);
        if (!label || label->kind() != Kind::label) continue;
        static_cast<QLabel&>(widget_of(*label)).setBuddy(&widget_of(*control));
    }
}

// --- layout

void Window::refresh() {
    setWindowTitle(shown(form_.caption()));
    if (form_.icon()) setWindowIcon(icon_of(*form_.icon()));
    setCursor(form_.mouse_pointer() == MousePointer::hourglass ? Qt::WaitCursor : Qt::ArrowCursor);
    refresh_menus();

    const QSize size(pixels(form_.client_width()), pixels(form_.client_height()));
    const auto& menus = form_.menus();
    const bool has_menu = std::any_of(menus.begin(), menus.end(), [](auto* item) { return item->visible(); });
    const int bar_height = has_menu ? menu_bar_->heightForWidth(size.width()) : 0;
    const int strip_height = strip_->height_at(size.width());
    const QSize view = room_for(size, bar_height + strip_height);
    client_->resize(size);
    menu_bar_->setVisible(has_menu);
    menu_bar_->setGeometry(0, 0, view.width(), bar_height);
    view_->setGeometry(QRect(QPoint(0, bar_height), view));
    strip_->setVisible(strip_height > 0);
    strip_->setGeometry(0, bar_height + view.height(), view.width(), strip_height);
    setFixedSize(view.width(), bar_height + view.height() + strip_height);
}

/// The client area, or as much of it as a small screen has room for: the rest is scrolled to.
QSize Window::room_for(QSize client, int around) const {
    if (QGuiApplication::platformName() == QLatin1String("offscreen")) return client;  // nothing is too small
    const QSize frame(8, 32);  // what a window manager adds
    const QSize room = screen()->availableGeometry().size() - frame - QSize(0, around);
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const QSize bars(client.height() > room.height() ? bar : 0, client.width() > room.width() ? bar : 0);
    return (client + bars).boundedTo(room);
}

void Window::scroll_to(QWidget& widget) { view_->ensureWidgetVisible(&widget); }

void Window::set_strip(const std::vector<std::string>& lines) {
    const bool news = strip_->show_lines(lines);
    refresh();
    if (news) strip_->announce();
}

void Window::refresh_menus() {
    for (const auto& [item, action] : actions_) {
        action->setText(item->separator() ? QString() : shown(item->caption()));
        action->setSeparator(item->separator());
        action->setEnabled(item->responsive());
        action->setVisible(item->visible());
    }
}

// --- events

void Window::closeEvent(QCloseEvent* event) {
    event->ignore();  // the window goes when the form is unloaded
    form_.toolkit().deliver([this] { form_.close_by_frame(); });
}

void Window::keyPressEvent(QKeyEvent* event) {
    if (focus_is_claimed() && form_.toolkit().busy()) return;  // typed at a control that was there just now
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return press(button_for_enter(form_, control_with_focus()));
        case Qt::Key_Escape:
            return press(button_for_escape(form_));
        case Qt::Key_F1:
            if (form_.on_help) form_.toolkit().deliver(form_.on_help);
            return;
        case Qt::Key_F10:
            return open_menu();
        default:
            QWidget::keyPressEvent(event);
    }
}

void Window::press(Button* button) {
    if (button) form_.toolkit().deliver([button] { button->press_by_key(); });
}

void Window::open_menu() {
    for (const auto& [item, action] : actions_) {
        if (!action->isVisible() || !action->isEnabled()) continue;
        menu_bar_->setActiveAction(action);
        return;
    }
}

// --- focus

Control* Window::control_with_focus() const {
    for (QWidget* widget = focus_is_claimed() ? claimant_.data() : focusWidget(); widget && widget != this;
         widget = widget->parentWidget()) {
        if (auto* peer = dynamic_cast<WidgetPeer*>(widget)) return &peer->control();
    }
    return nullptr;
}

bool Window::focus_is_claimed() const { return claimant_ && focusWidget() == this; }

void Window::give_back_focus() {
    if (!focus_is_claimed() || !claimant_->isEnabled() || !claimant_->isVisible()) return;
    std::exchange(claimant_, nullptr)->setFocus(Qt::OtherFocusReason);
}

/// Called by Qt for Tab and arrow keys, and when the widget with the focus goes.
bool Window::focusNextPrevChild(bool next) {
    if (WidgetPeer::refreshing()) {
        claimant_ = focusWidget();
        setFocus(Qt::OtherFocusReason);
    } else if (!focus_is_claimed() || !form_.toolkit().busy()) {
        step_focus(next ? Step::forward : Step::back);
    }
    return true;
}

void Window::start_focus() {
    Control* first = next_stop(form_, nullptr, Step::forward);
    if (first && !focusWidget()) widget_of(*first).setFocus(Qt::OtherFocusReason);
}

/// The strip is the last stop of all.
void Window::step_focus(Step step) {
    const auto reason = step == Step::forward ? Qt::TabFocusReason : Qt::BacktabFocusReason;
    const bool at_strip = strip_->hasFocus();
    Control* to = next_stop(form_, at_strip ? nullptr : control_with_focus(), step);
    if (!to && !strip_->isHidden() && !at_strip) return strip_->setFocus(reason);
    if (!to) to = next_stop(form_, nullptr, step);
    if (to) widget_of(*to).setFocus(reason);
}

}  // namespace toolkit::qt

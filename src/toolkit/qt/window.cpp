#include "toolkit/qt/window.h"

#include <QAction>
#include <QCloseEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <algorithm>

#include "toolkit/qt/conversion.h"
#include "toolkit/qt/picture.h"
#include "toolkit/qt/widgets.h"

namespace toolkit::qt {

namespace {

QWidget& widget_of(const Control& control) { return static_cast<WidgetPeer*>(control.peer)->widget(); }

template <class C>
C& as(Control& control) {
    return static_cast<C&>(control);
}

WidgetPeer* make_peer(Control& c, QWidget& parent) {
    switch (c.kind()) {
        case Kind::label:
            return make_label(as<Label>(c), parent);
        case Kind::text_box:
            return make_text_box(as<TextBox>(c), parent);
        case Kind::button:
            return make_button(as<Button>(c), parent);
        case Kind::check_box:
            return make_check_box(as<CheckBox>(c), parent);
        case Kind::list_box:
            return make_list_box(as<ListBox>(c), parent);
        case Kind::combo_box:
            return make_combo_box(as<ComboBox>(c), parent);
        case Kind::list_view:
            return make_list_view(as<ListView>(c), parent);
        case Kind::frame:
            return make_frame(as<Frame>(c), parent);
        case Kind::tab:
            return make_tab(as<TabContainer>(c), parent);
        case Kind::list_bar:
            return make_list_bar(as<ListBar>(c), parent);
        case Kind::status_bar:
            return make_status_bar(as<StatusBar>(c), parent);
        case Kind::picture_box:
            return make_picture_box(as<PictureBox>(c), parent);
        case Kind::dir_list:
            return make_dir_list(as<DirListBox>(c), parent);
        case Kind::drive_list:
            return make_drive_list(as<DriveListBox>(c), parent);
        case Kind::file_list:
            return make_file_list(as<FileListBox>(c), parent);
        case Kind::timer:
            make_timer(as<Timer>(c), parent);
            break;
    }
    return nullptr;
}

QIcon icon_of(const Drawing& drawing) {
    QIcon icon;
    for (const int size : {16, 32, 48, 64})
        icon.addPixmap(draw(drawing, size));
    return icon;
}

}  // namespace

Window::Window(Form& form)
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                           Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint),
      form_(form),
      menu_bar_(new QMenuBar(this)),
      client_(new QWidget(this)) {
    form.peer = this;
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
    WidgetPeer* peer = make_peer(control, control.parent() ? widget_of(*control.parent()) : *client_);
    if (peer) peer->refresh(control);
}

/// What comes later lies above and is reached later by Tab. The access key of a label leads to the control
/// that follows it.
void Window::order_controls() {
    QLabel* label = nullptr;
    QWidget* last = menu_bar_;
    for (Control* control : form_.controls()) {
        if (control->kind() == Kind::timer) continue;
        QWidget& widget = widget_of(*control);
        widget.raise();
        if (control->kind() == Kind::label) label = qobject_cast<QLabel*>(&widget);
        if (!control->takes_focus()) continue;
        if (label) std::exchange(label, nullptr)->setBuddy(&widget);
        setTabOrder(std::exchange(last, &widget), &widget);
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
    menu_bar_->setVisible(has_menu);
    menu_bar_->setGeometry(0, 0, size.width(), bar_height);
    client_->setGeometry(QRect(QPoint(0, bar_height), size));
    setFixedSize(size.width(), size.height() + bar_height);
}

void Window::refresh_menus() {
    for (const auto& [item, action] : actions_) {
        action->setText(item->separator() ? QString() : shown(item->caption()));
        action->setSeparator(item->separator());
        action->setVisible(item->visible());
    }
}

// --- events

void Window::closeEvent(QCloseEvent* event) {
    event->ignore();  // the window goes when the form is unloaded
    form_.toolkit().deliver([this] { form_.close_by_frame(); });
}

void Window::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return press(&Button::is_default);
        case Qt::Key_Escape:
            return press(&Button::is_cancel);
        case Qt::Key_F1:
            if (form_.on_help) form_.toolkit().deliver(form_.on_help);
            return;
        default:
            QWidget::keyPressEvent(event);
    }
}

void Window::press(bool Button::*role) {
    for (Control* control : form_.controls()) {
        if (control->kind() != Kind::button || !(as<Button>(*control).*role)) continue;
        form_.toolkit().deliver([control] { as<Button>(*control).press_by_key(); });
        return;
    }
}

}  // namespace toolkit::qt

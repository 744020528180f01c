#include "toolkit/qt_person.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QLoggingCategory>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <QWheelEvent>
#include <cstdio>
#include <map>

#include "toolkit/qt/conversion.h"

using namespace toolkit;

namespace {

QWidget& target() {
    for (QWidget* window : {QApplication::activePopupWidget(), QApplication::activeModalWidget()}) {
        if (window) return window->focusWidget() ? *window->focusWidget() : *window;
    }
    for (QWidget* widget : {QApplication::focusWidget(), QApplication::activeWindow()}) {
        if (widget) return *widget;
    }
    throw std::logic_error("nothing has the keyboard");
}

/// What hears the mouse of a control.
QWidget& surface(const Control& control) {
    QWidget& widget = QtPerson::widget(control);
    if (auto* list = qobject_cast<QListView*>(&widget)) return *list->viewport();
    if (auto* tabs = widget.findChild<QTabBar*>({}, Qt::FindDirectChildrenOnly)) return *tabs;
    return widget;
}

QPoint line_at(const Control& control, int line) {
    QWidget& widget = QtPerson::widget(control);
    if (auto* tabs = qobject_cast<QTabBar*>(&surface(control))) return tabs->tabRect(line).center();
    auto& list = dynamic_cast<QListView&>(widget);
    if (line >= list.model()->rowCount()) return list.viewport()->rect().bottomLeft() - QPoint(-20, 2);
    const QRect row = list.visualRect(list.model()->index(line, 0));
    return {row.left() + 8, row.center().y()};  // on the mark, if it has one
}

std::string ansi_text(const QString& text) { return qt::ansi(text).value_or("?"); }

const char* mark_of(int state) {
    return state == Qt::Checked ? "[x] " : state == Qt::Unchecked ? "[ ] " : "[-] ";
}

std::string lines_of(const Control& control, QListView& list) {
    std::string out;
    for (int i = 0; i < list.model()->rowCount(); ++i) {
        const QModelIndex at = list.model()->index(i, 0);
        if (control.kind() == Kind::list_bar) {  // its mark is painted: seen where the row is
            const bool visible = list.viewport()->rect().contains(list.visualRect(at));
            const QImage shot = visible ? list.grab().toImage() : QImage();
            const QPoint corner = list.viewport()->mapTo(&list, list.visualRect(at).topLeft() + QPoint(3, 3));
            if (visible && shot.pixelColor(corner) == list.palette().color(QPalette::Highlight)) out += "*";
        } else if (list.selectionModel()->isSelected(at)) {
            out += "*";
        }
        if (const QVariant mark = at.data(Qt::CheckStateRole); mark.isValid()) out += mark_of(mark.toInt());
        out += ansi_text(at.data().toString()) + "|";
    }
    return out;
}

}  // namespace

QtPerson::QtPerson(int& argc, char** argv)
    : screen_(argc, argv, folders_, german, [](Ending ending) {
          std::fputs("before the end\n", stderr);
          return ending == Ending::done ? 0 : 1;
      }) {
    instance_ = this;
}

QtPerson::~QtPerson() {
    qDeleteAll(QApplication::topLevelWidgets());
    instance_ = nullptr;
}

std::unique_ptr<Person> make_person(int& argc, char** argv) {
    // No test needs a screen; with one, they can be watched.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QLoggingCategory::setFilterRules("qt.gui.imageio*=false");  // damaged pictures are meant to be damaged
    return std::make_unique<QtPerson>(argc, argv);
}

// --- the hand

void QtPerson::press(Key key) {
    static const std::map<Key, Qt::Key> keys = {
        {Key::tab, Qt::Key_Tab},       {Key::back_tab, Qt::Key_Backtab}, {Key::enter, Qt::Key_Return},
        {Key::escape, Qt::Key_Escape}, {Key::space, Qt::Key_Space},      {Key::up, Qt::Key_Up},
        {Key::down, Qt::Key_Down},     {Key::left, Qt::Key_Left},        {Key::right, Qt::Key_Right},
        {Key::home, Qt::Key_Home},     {Key::del, Qt::Key_Delete},       {Key::f1, Qt::Key_F1},
        {Key::f4, Qt::Key_F4},         {Key::f10, Qt::Key_F10}};
    QTest::keyClick(&target(), keys.at(key));
}

void QtPerson::press_access(char letter) {
    QTest::keyClick(&target(), static_cast<Qt::Key>(letter), Qt::AltModifier);
}

void QtPerson::paste(std::string_view ansi) {
    QApplication::clipboard()->setText(qt::shown(ansi));
    QTest::keyClick(&target(), Qt::Key_V, Qt::ControlModifier);
}

void QtPerson::type(std::u16string_view text) {
    for (const char16_t letter : text)
        QTest::sendKeyEvent(QTest::Click, &target(),
                            letter < 0x80 ? static_cast<Qt::Key>(letter) : Qt::Key_unknown, QChar(letter),
                            Qt::NoModifier);
}

void QtPerson::click(const Control& control) {
    const QPoint middle_left(5, widget(control).height() / 2);
    QTest::mouseClick(&widget(control), Qt::LeftButton, {}, middle_left);
}

void QtPerson::click_line(const Control& control, int line) {
    QTest::mouseClick(&surface(control), Qt::LeftButton, {}, line_at(control, line));
}

void QtPerson::double_click_line(const Control& control, int line) {
    QTest::mouseDClick(&surface(control), Qt::LeftButton, {}, line_at(control, line));
}

/// As one that comes from outside: Qt decides first whether it moves the focus.
void QtPerson::turn_wheel(const Control& control, int notches) {
    QWidget& over = surface(control);
    const QPoint at = over.rect().center();
    QWheelEvent event(at, over.mapToGlobal(at), {}, QPoint(0, -120 * notches), Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(&over, &event);
}

void QtPerson::close_window(const Form& form) { widget(*form.controls().front()).window()->close(); }

void QtPerson::at_next_dialog(const std::function<void(QDialog&)>& act) {
    QTimer::singleShot(0, [act] {
        auto* window = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(window);
        act(*window);
    });
}

void QtPerson::at_next_box(Keys keys) {
    at_next_dialog([this, keys](QDialog& box) {
        box_ = {ansi_text(box.windowTitle()), {}, {}};
        if (const auto* message = qobject_cast<QMessageBox*>(&box)) {
            EXPECT_EQ(message->textFormat(), Qt::PlainText);
            box_.text = ansi_text(message->text());
            std::fprintf(stderr, "%s\n", box_.text.c_str());
            for (const QAbstractButton* button : message->buttons())
                box_.buttons.push_back(ansi_text(button->text()));
        }
        for (const Key key : keys) {
            EXPECT_TRUE(box.isVisible());
            press(key);
        }
    });
}

void QtPerson::wait() {
    constexpr int milliseconds = 150;  // as long as Qt shows a button pressed by its access key
    QTest::qWait(milliseconds);
    // What a window manager does when a box has gone.
    if (!QApplication::activeWindow() && !screen_.forms().empty())
        widget(*screen_.forms().back()->controls().front()).activateWindow();
    QTest::qWait(1);
}

// --- the eye

std::string QtPerson::sees(const Control& control) {
    QWidget& shows = widget(control);
    if (auto* list = qobject_cast<QListView*>(&shows)) return lines_of(control, *list);
    if (const auto* box = qobject_cast<QCheckBox*>(&shows))
        return mark_of(box->checkState()) + ansi_text(box->text());
    if (const auto* line = qobject_cast<QLineEdit*>(&shows)) return ansi_text(line->displayText());
    if (const auto* combo = qobject_cast<QComboBox*>(&shows)) {
        // Painted from the control; the list behind it must not name another entry.
        const bool listed = combo->currentIndex() >= 0;
        return listed ? ansi_text(combo->currentText()) : control.text();
    }
    return control.text();
}

bool QtPerson::sees_window(const Form& form) {
    return widget(*form.controls().front()).window()->isVisible();
}

bool QtPerson::is_on_screen(const Control& control) { return widget(control).isVisible(); }

bool QtPerson::is_grey(const Control& control) { return !widget(control).isEnabled(); }

std::string QtPerson::sees_menu() {
    const auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    std::string out;
    for (const QAction* action : menu ? menu->actions() : QList<QAction*>()) {
        if (!action->isVisible()) continue;
        const std::string text = action->isSeparator() ? "-" : ansi_text(action->text());
        out += (action->isEnabled() || action->isSeparator() ? text : "(" + text + ")") + "|";
    }
    return out;
}

const Control* QtPerson::keyboard(const Form& form) {
    for (const Control* control : form.controls()) {
        if (control->kind() != Kind::timer && surface(*control).hasFocus()) return control;
        if (control->kind() != Kind::timer && widget(*control).hasFocus()) return control;
    }
    return nullptr;
}

unsigned QtPerson::colour(const Control& control) {
    QWidget& over = widget(control);
    const QImage shot = over.window()->grab().toImage();
    return shot.pixel(over.mapTo(over.window(), over.rect().center())) & 0xffffffU;
}

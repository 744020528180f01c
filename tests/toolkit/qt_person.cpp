#include "toolkit/qt_person.h"

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>
#include <cstdio>

#include "toolkit/person.h"
#include "toolkit/qt/conversion.h"
#include "toolkit/qt/peer.h"
#include "toolkit/qt/qt_toolkit.h"

using namespace toolkit;

namespace {

QWidget& widget_of(const Control& control) { return static_cast<qt::WidgetPeer*>(control.peer)->widget(); }

QWidget& window_of(const Form& form) { return *widget_of(*form.controls().front()).window(); }

/// What has the keyboard.
QWidget& target() {
    for (QWidget* window : {QApplication::activePopupWidget(), QApplication::activeModalWidget(),
                            QApplication::activeWindow()}) {
        if (window) return window->focusWidget() ? *window->focusWidget() : *window;
    }
    throw std::logic_error("nothing has the keyboard");
}

/// What hears the mouse of a control.
QWidget& surface(const Control& control) {
    QWidget& widget = widget_of(control);
    if (auto* list = qobject_cast<QListView*>(&widget)) return *list->viewport();
    if (auto* tabs = widget.findChild<QTabBar*>({}, Qt::FindDirectChildrenOnly)) return *tabs;
    return widget;
}

/// On the mark, if there is one.
QPoint place_in(const Control& control, int line) {
    QWidget& widget = surface(control);
    if (auto* tabs = qobject_cast<QTabBar*>(&widget)) return tabs->tabRect(line).center();
    const auto* list = qobject_cast<QListView*>(&widget_of(control));
    if (!list) return {5, widget.height() / 2};
    if (line >= list->model()->rowCount()) return widget.rect().bottomLeft() + QPoint(20, -2);
    const QRect row = list->visualRect(list->model()->index(line, 0));
    return {row.left() + 8, row.center().y()};
}

std::string ansi_text(const QString& text) { return qt::ansi(text).value_or("?"); }

const char* mark_of(int state) {
    return state == Qt::Checked ? "[x] " : state == Qt::Unchecked ? "[ ] " : "[-] ";
}

std::string lines_of(const Control& control, QListView& list) {
    std::string out;
    for (int i = 0; i < list.model()->rowCount(); ++i) {
        const QModelIndex at = list.model()->index(i, 0);
        bool marked = list.selectionModel()->isSelected(at);
        if (control.kind() == Kind::list_bar) {  // its mark is painted: seen where the row is
            const QImage shot = list.viewport()->grab().toImage();
            const QPoint corner = list.visualRect(at).topLeft() + QPoint(3, 3);
            marked =
                shot.valid(corner) && shot.pixelColor(corner) == list.palette().color(QPalette::Highlight);
        }
        if (marked) out += "*";
        if (const QVariant mark = at.data(Qt::CheckStateRole); mark.isValid()) out += mark_of(mark.toInt());
        out += ansi_text(at.data().toString()) + "|";
    }
    return out;
}

/// Somebody at the Qt renderer.
class QtPerson : public Person {
  public:
    QtPerson(int& argc, char** argv)
        : screen_(argc, argv, folders, german, [](Ending ending) {
              std::fputs("before the end\n", stderr);
              return ending == Ending::done ? 0 : 1;
          }) {}
    ~QtPerson() override { qDeleteAll(QApplication::topLevelWidgets()); }
    Toolkit& screen() override { return screen_; }

    void type(std::u16string_view text) override {
        for (const char16_t letter : text) {
            const auto key = letter < 0x80 ? static_cast<Qt::Key>(letter) : Qt::Key_unknown;
            QTest::sendKeyEvent(QTest::Click, &target(), key, QChar(letter), Qt::NoModifier);
        }
    }
    void click(const Control& control, int line) override {
        QTest::mouseClick(&surface(control), Qt::LeftButton, {}, place_in(control, line));
    }
    void double_click(const Control& control, int line) override {
        QTest::mouseDClick(&surface(control), Qt::LeftButton, {}, place_in(control, line));
    }
    /// As one that comes from outside: Qt decides first whether it moves the focus.
    void turn_wheel(const Control& control, int notches) override {
        QWidget& over = surface(control);
        const QPoint at = over.rect().center();
        QWheelEvent event(at, over.mapToGlobal(at), {}, QPoint(0, -120 * notches), Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(&over, &event);
    }
    void close_window(const Form& form) override { window_of(form).close(); }
    void at_next_box(const std::string& keys) override {
        at_next_dialog([this, keys](QDialog& dialog) {
            box = {ansi_text(dialog.windowTitle()), {}, {}};
            if (const auto* message = qobject_cast<QMessageBox*>(&dialog)) {
                EXPECT_EQ(message->textFormat(), Qt::PlainText);
                box.text = ansi_text(message->text());
                std::fprintf(stderr, "%s\n", box.text.c_str());
                for (const QAbstractButton* button : message->buttons())
                    box.buttons.push_back(ansi_text(button->text()));
            }
            const size_t last = keys.rfind(' ') + 1;
            press(keys.substr(0, last));
            EXPECT_TRUE(dialog.isVisible());
            press(keys.substr(last));
        });
    }
    void wait() override {
        QTest::qWait(150);  // as long as Qt shows a button pressed by its access key
        // What a window manager does when a box has gone.
        if (!QApplication::activeWindow() && !screen_.forms().empty())
            window_of(*screen_.forms().back()).activateWindow();
        QTest::qWait(1);
    }

    std::string sees(const Control& control) override {
        QWidget& shows = widget_of(control);
        if (auto* list = qobject_cast<QListView*>(&shows)) return lines_of(control, *list);
        if (const auto* mark = qobject_cast<QCheckBox*>(&shows))
            return mark_of(mark->checkState()) + ansi_text(mark->text());
        if (const auto* line = qobject_cast<QLineEdit*>(&shows)) return ansi_text(line->displayText());
        // A combo box is painted from the control; the list behind it must not name another entry.
        const auto* combo = qobject_cast<QComboBox*>(&shows);
        return combo && combo->currentIndex() >= 0 ? ansi_text(combo->currentText()) : control.text();
    }
    bool is_on_screen(const Control& control) override { return widget_of(control).isVisible(); }
    bool is_grey(const Control& control) override { return !widget_of(control).isEnabled(); }
    std::string sees_menu(const Form& form) override {
        std::string out;
        for (const QAction* action :
             window_of(form).findChild<QMenuBar*>()->actions().first()->menu()->actions()) {
            if (!action->isVisible()) continue;
            const std::string text = action->isSeparator() ? "-" : ansi_text(action->text());
            out += (action->isEnabled() || action->isSeparator() ? text : "(" + text + ")") + "|";
        }
        return out;
    }
    const Control* keyboard(const Form& form) override {
        for (const Control* control : form.controls()) {
            if (control->kind() == Kind::timer) continue;
            if (surface(*control).hasFocus() || widget_of(*control).hasFocus()) return control;
        }
        return nullptr;
    }
    unsigned colour(const Control& control) override {
        QWidget& over = widget_of(control);
        const QImage shot = over.window()->grab().toImage();
        return shot.pixel(over.mapTo(over.window(), over.rect().center())) & 0xffffffU;
    }

  protected:
    void hit(const std::string& key) override {
        const QKeyCombination keys = QKeySequence::fromString(QString::fromStdString(key))[0];
        QTest::keyClick(&target(), keys.key(), keys.keyboardModifiers());
    }

  private:
    QtToolkit screen_;
};

}  // namespace

void at_next_dialog(const std::function<void(QDialog&)>& act) {
    QTimer::singleShot(0, [act] {
        auto* window = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(window);
        act(*window);
    });
}

std::unique_ptr<Person> make_person(int& argc, char** argv) {
    // No test needs a screen; with one, they can be watched.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QLoggingCategory::setFilterRules("qt.gui.imageio*=false");  // damaged pictures are meant to be damaged
    return std::make_unique<QtPerson>(argc, argv);
}

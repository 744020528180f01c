#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <set>

#include "machine/memory/memory_machine.h"
#include "startup/program.h"
#include "toolkit/qt/peer.h"
#include "toolkit/qt/qt_toolkit.h"
#include "ui/forms.h"
#include "ui/main_form.h"

namespace britlock {
namespace {

using testing::IsEmpty;
using toolkit::Control;

/// The main window on a machine in memory, for somebody without a mouse.
class Keyboard : public testing::TestWithParam<int> {
  protected:
    Keyboard() {
        windows.system.drives = 0b101;  // A and C: the other letters are grey
        add_forms(program);
        screen.deliver([this] { program.show<MainForm>(); });
        EXPECT_TRUE(QTest::qWaitForWindowActive(&top()));
    }
    ~Keyboard() override { screen.destroy_window(window()); }

    MainForm& window() { return *program.loaded<MainForm>(); }
    static QWidget* widget_of(const Control& control) {
        auto* peer = dynamic_cast<toolkit::qt::WidgetPeer*>(control.peer);
        return peer ? &peer->widget() : nullptr;
    }
    static QWidget& widget(const Control& control) { return *widget_of(control); }
    QWidget& top() { return *widget(window().tab).window(); }
    static void key(Qt::Key key, Qt::KeyboardModifiers with = {}) {
        QWidget* target = QApplication::activePopupWidget();
        if (!target) target = QApplication::focusWidget();
        ASSERT_TRUE(target);
        QTest::keyClick(target, key, with);
    }
    /// Null where something else has the keyboard.
    Control* focused() {
        for (Control* control : window().controls()) {
            const QWidget* shown = widget_of(*control);
            if (shown && (shown->focusProxy() ? shown->focusProxy() : shown) == QApplication::focusWidget())
                return control;
        }
        return nullptr;
    }
    /// What a person would expect to reach on the page on show.
    std::set<std::string> expected() {
        std::set<std::string> out;
        for (Control* control : window().controls()) {
            const QWidget* shown = widget_of(*control);
            if (shown && shown->isVisible() && control->takes_focus() && control->usable())
                out.insert(control->name());
        }
        return out;
    }

    struct Screen : toolkit::QtToolkit {
        using QtToolkit::destroy_window;
        using QtToolkit::QtToolkit;
    };
    static inline int count = 1;
    static inline char name[] = "keyboard_test";
    static inline char* arguments[] = {name, nullptr};

    machine::MemoryMachine windows{machine::versions::winxp};
    machine::Machine its = windows.machine();
    FolderBrowser folders{its};
    Screen screen{count, arguments, folders, static_cast<toolkit::Language>(GetParam()),
                  [](toolkit::Ending) { return 0; }};
    Program program{its, screen, GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Languages, Keyboard, testing::Values(0, 1), testing::PrintToStringParamName());

TEST_P(Keyboard, ReachesAndTicksEverythingOnEveryPage) {
    widget(window().cmd_set).setFocus(Qt::TabFocusReason);
    for (int page = 1; page <= 9; ++page) {
        SCOPED_TRACE(page);
        key(static_cast<Qt::Key>(Qt::Key_0 + page), Qt::AltModifier);
        ASSERT_EQ(window().tab.current(), page - 1);
        std::set<std::string> missed = expected();
        EXPECT_GT(missed.size(), 6u) << "combo box, three buttons, list bar, tabs, and what the page holds";
        std::vector<std::string> not_ticked;
        for (int step = 0; step < 100; ++step) {
            key(Qt::Key_Tab);
            Control* control = focused();
            if (!control) continue;
            missed.erase(control->name());
            auto* box = dynamic_cast<toolkit::CheckBox*>(control);
            if (!box) continue;
            const bool before = box->ticked();
            key(Qt::Key_Space);
            if (box->ticked() == before) not_ticked.push_back(box->name());
        }
        EXPECT_THAT(missed, IsEmpty());
        EXPECT_THAT(not_ticked, IsEmpty());
    }
}

TEST_P(Keyboard, OpensEveryMenu) {
    widget(window().cmd_set).setFocus(Qt::TabFocusReason);
    const auto bar = top().findChild<QMenuBar*>();
    ASSERT_TRUE(bar);
    int menus = 0;
    for (const QAction* action : bar->actions()) {
        if (!action->isVisible()) continue;
        SCOPED_TRACE(action->text().toStdString());
        const QKeySequence access = QKeySequence::mnemonic(action->text());
        ASSERT_FALSE(access.isEmpty());
        key(static_cast<Qt::Key>(access[0].key()), Qt::AltModifier);
        const QWidget* popup = QApplication::activePopupWidget();
        ASSERT_EQ(popup, action->menu());
        key(Qt::Key_Down);
        EXPECT_TRUE(action->menu()->activeAction());
        key(Qt::Key_Escape);
        key(Qt::Key_Escape);  // and out of the bar
        ++menus;
    }
    EXPECT_EQ(menus, 4) << "the menu of the languages is hidden";
}

TEST_P(Keyboard, TurnsPagesByListBarAndArrows) {
    widget(window().SSListBar1).setFocus(Qt::TabFocusReason);
    for (int i = 0; i < 3; ++i)  // from the page on show
        key(Qt::Key_Down);
    key(Qt::Key_Return);
    EXPECT_EQ(window().tab.current(), 3);
    key(Qt::Key_Up);
    key(Qt::Key_Space);
    EXPECT_EQ(window().tab.current(), 2);
}

}  // namespace
}  // namespace britlock

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

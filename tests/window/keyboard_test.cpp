#include <QtTest>
#include <QtWidgets>

#include "program/world.h"
#include "toolkit/qt/peer.h"
#include "toolkit/qt/qt_toolkit.h"
#include "ui/profile.h"
#include "ui/verzeichnis.h"

namespace {

using toolkit::Control;

QWidget& widget(const Control& control) {
    return static_cast<toolkit::qt::WidgetPeer*>(control.peer)->widget();
}

/// A control as a screen reader finds it.
QAccessibleInterface* seen_of(const Control& control) {
    QWidget& shown = widget(control);
    return QAccessible::queryAccessibleInterface(shown.focusProxy() ? shown.focusProxy() : &shown);
}

/// The main window on a machine in memory, for somebody without a mouse.
class Keyboard : public TestWithParam<int> {
  protected:
    Keyboard() {
        windows.system.drives = 0b101;  // A and C: the other letters are grey
        add_forms(program);
        screen.deliver([this] { program.show<MainForm>(); });
        EXPECT_TRUE(QTest::qWaitForWindowActive(&top()));
    }
    ~Keyboard() override { screen.destroy_window(window()); }

    MainForm& window() { return *program.loaded<MainForm>(); }
    QWidget& top() { return *widget(window().tab).window(); }
    static void key(Qt::Key key, Qt::KeyboardModifiers with = {}) {
        QWidget* menu = QApplication::activePopupWidget();
        QTest::keyClick(menu ? menu : QApplication::focusWidget(), key, with);
    }
    /// Null where something else has the keyboard.
    Control* focused() {
        for (Control* control : window().controls())
            if (control->takes_focus() && seen_of(*control)->object() == QApplication::focusWidget())
                return control;
        return nullptr;
    }

    struct Screen : toolkit::QtToolkit {
        using QtToolkit::destroy_window;
        using QtToolkit::QtToolkit;
    };
    static inline int count = 0;

    machine::MemoryMachine windows{machine::versions::winxp};
    machine::Machine its = windows.machine();
    FolderBrowser folders{its};
    Screen screen{count, nullptr, folders, static_cast<Language>(GetParam()),
                  [](toolkit::Ending) { return 0; }};
    Program program{its, screen, GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Languages, Keyboard, Values(0, 1), PrintToStringParamName());

TEST_P(Keyboard, ReachesAndTicksEverythingOnEveryPage) {
    // Whoever enters this box is asked two questions, and the program ends.
    window().t810.on_got_focus = nullptr;
    window().t810.on_lost_focus = nullptr;
    widget(window().cmd_set).setFocus(Qt::TabFocusReason);
    for (int page = 1; page <= 9; ++page) {
        SCOPED_TRACE(page);
        key(static_cast<Qt::Key>(Qt::Key_0 + page), Qt::AltModifier);
        ASSERT_EQ(window().tab.current(), page - 1);
        std::set<std::string> missed;
        for (const Control* control : window().controls()) {
            if (control->takes_focus() && control->usable() && widget(*control).isVisible())
                missed.insert(control->name());
        }
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

/// What a screen reader finds of a form: everything that takes the keyboard has its role, and a name that
/// nothing beside it has.
void expect_names(const toolkit::Form& form) {
    using toolkit::Kind;
    // clang-format off
    static const std::map<Kind, QAccessible::Role> roles = {
        {Kind::text_box, QAccessible::EditableText}, {Kind::button, QAccessible::Button}, {Kind::list_box, QAccessible::List},
        {Kind::check_box, QAccessible::CheckBox}, {Kind::combo_box, QAccessible::ComboBox}, {Kind::list_view, QAccessible::List},
        {Kind::frame, QAccessible::Grouping}, {Kind::tab, QAccessible::PageTabList}, {Kind::dir_list, QAccessible::List},
        {Kind::list_bar, QAccessible::List}, {Kind::status_bar, QAccessible::StatusBar}, {Kind::drive_list, QAccessible::ComboBox}};
    // clang-format on
    std::set<std::tuple<const Control*, Kind, QString>> names;
    for (Control* control : form.controls()) {
        SCOPED_TRACE(form.name() + "." + control->name());
        const auto role = roles.find(control->kind());
        if (role == roles.end() || !control->visible()) continue;
        QAccessibleInterface* seen = seen_of(*control);
        EXPECT_EQ(seen->role(), role->second);
        if (!control->takes_focus()) continue;
        const QString name = seen->text(QAccessible::Name);
        EXPECT_FALSE(name.isEmpty() || name.contains('&')) << name.toStdString();
        EXPECT_TRUE(names.emplace(control->parent(), control->kind(), name).second) << name.toStdString();
    }
}

TEST_P(Keyboard, NothingIsNamelessToAScreenReader) {
    windows.files.add_folder("C:\\Icons");
    window().t32.set_text("C:\\Icons");
    screen.deliver([this] {
        program.show<setpass>();
        program.show<verzeichnis>();
        program.show<profile>();
    });
    for (toolkit::Form* form :
         std::initializer_list<toolkit::Form*>{program.loaded<setpass>(), program.loaded<verzeichnis>(),
                                               program.loaded<profile>(), &window()}) {
        expect_names(*form);
        QWidget* frame = widget(*form->controls().front()).window();
        EXPECT_EQ(QAccessible::queryAccessibleInterface(frame)->role(), QAccessible::Window);
        if (form != &window()) screen.destroy_window(*form);
    }
    for (const auto& [seen, words] : {std::pair{seen_of(window().StatusBar), std::string("WinXP")},
                                      {seen_of(window().f1), text::to_utf8(window().f1.text())},
                                      {seen_of(window().tab)->child(4), text::to_utf8(window().f5.text())}})
        EXPECT_THAT(seen->text(QAccessible::Name).toStdString(), HasSubstr(words));
}

TEST_P(Keyboard, StripIsTheLastStopAndCanBeRead) {
    const int before = top().height();
    screen.set_strip({"Windows XP in /mnt", "Anna: 5 values changed"});
    EXPECT_GT(top().height(), before + 20);
    EXPECT_EQ(top().width(), window().client_width() / 15);
    widget(window().cm02).setFocus(Qt::TabFocusReason);
    key(Qt::Key_Tab);
    ASSERT_EQ(focused(), nullptr);
    QAccessibleInterface* strip = QAccessible::queryAccessibleInterface(QApplication::focusWidget());
    EXPECT_EQ(strip->role(), QAccessible::Notification);
    EXPECT_EQ(strip->text(QAccessible::Name), "Windows XP in /mnt\nAnna: 5 values changed");
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), &window().SSListBar1);
    key(Qt::Key_Backtab);
    key(Qt::Key_Backtab);
    EXPECT_EQ(focused(), &window().cm02);
}

TEST_P(Keyboard, OpensEveryMenu) {
    widget(window().cmd_set).setFocus(Qt::TabFocusReason);
    int menus = 0;
    for (const QAction* action : top().findChild<QMenuBar*>()->actions()) {
        if (!action->isVisible()) continue;
        SCOPED_TRACE(action->text().toStdString());
        const QKeySequence access = QKeySequence::mnemonic(action->text());
        ASSERT_FALSE(access.isEmpty());
        key(static_cast<Qt::Key>(access[0].key()), Qt::AltModifier);
        ASSERT_EQ(QApplication::activePopupWidget(), action->menu());
        key(Qt::Key_Down);
        EXPECT_TRUE(action->menu()->activeAction());
        key(Qt::Key_Escape);
        key(Qt::Key_Escape);  // and out of the bar
        ++menus;
    }
    EXPECT_EQ(menus, 4) << "the menu of the languages is hidden";
}

}  // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

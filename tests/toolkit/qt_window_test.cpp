#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTabBar>
#include <QWheelEvent>

#include "base/text.h"
#include "toolkit/desk.h"

using namespace toolkit;
using namespace text::literals;

namespace {

QPoint line_at(QListView& list, int row) { return list.visualRect(list.model()->index(row, 0)).center(); }

}  // namespace

TEST_F(QtWindow, CheckBoxAnswersToMouseSpaceAndAccessKey) {
    auto& box = widget<QCheckBox>(gallery->tick);
    click(box, {5, 8});
    EXPECT_EQ(log(), "+tick tick=1");
    EXPECT_TRUE(box.isChecked());
    key(box, Qt::Key_Space);
    EXPECT_EQ(log(), "tick=0");
    key(box, Qt::Key_T, Qt::AltModifier);
    EXPECT_EQ(log_soon(), "tick=1");  // Qt shows the box pressed for a while
    click(widget(gallery->grey), {5, 8});
    EXPECT_EQ(log(), "-tick +grey grey=0");
}

TEST_F(QtWindow, ProgramsChangeIsShownWithoutAnEcho) {
    by_program([this] {
        gallery->tick.set_value(2);
        gallery->combo.set_text("pupil");
        gallery->list.set_selected(2);
        gallery->name.set_text(U"Schüler"_ansi);
    });
    EXPECT_EQ(log(), "tick=2");
    EXPECT_EQ(widget<QCheckBox>(gallery->tick).checkState(), Qt::PartiallyChecked);
    EXPECT_EQ(widget<QComboBox>(gallery->combo).currentIndex(), 1);
    EXPECT_EQ(widget<QListView>(gallery->list).currentIndex().data().toString(), "R&D.EXE");
    EXPECT_EQ(widget<QLineEdit>(gallery->name).text(), QStringLiteral("Schüler"));
}

TEST_F(QtWindow, WidgetShowsWhatTheControlMadeOfIt) {
    by_program([this] { screen.set_focus(&gallery->name); });
    gallery->name.on_lost_focus = [this] { gallery->tick.set_enabled(false); };
    click(widget(gallery->tick), {5, 8});
    EXPECT_FALSE(widget<QCheckBox>(gallery->tick).isChecked());
    EXPECT_EQ(gallery->tick.value(), 0);

    gallery->list.on_click = [this] { gallery->list.set_selected(-1); };
    auto& list = widget<QListView>(gallery->list);
    click(*list.viewport(), line_at(list, 1));
    EXPECT_FALSE(list.selectionModel()->hasSelection());
}

TEST_F(QtWindow, ComboBoxChangesByItsListOnly) {
    auto& combo = widget<QComboBox>(gallery->combo);
    combo.setFocus(Qt::MouseFocusReason);
    EXPECT_EQ(log(), "+combo");
    QApplication::clipboard()->setText("pupil");
    type(combo, "pupil");
    key(combo, Qt::Key_Delete);
    key(combo, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(gallery->combo.text(), "somebody else");
    EXPECT_EQ(combo.currentIndex(), -1);
    EXPECT_EQ(log(), "");

    key(combo, Qt::Key_Down);
    key(combo, Qt::Key_Down);
    EXPECT_EQ(log(), "chose Administrator chose pupil");
    QWheelEvent wheel(QPointF(5, 5), combo.mapToGlobal(QPointF(5, 5)), {}, {0, 120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&combo, &wheel);
    EXPECT_EQ(log(), "chose Administrator");
    combo.showPopup();
    key(*combo.view(), Qt::Key_Return);
    EXPECT_EQ(log_soon(), "chose Administrator");
}

TEST_F(QtWindow, TextBoxTakesWhatTheProgramCanSpell) {
    auto& name = widget<QLineEdit>(gallery->name);
    click(name);
    EXPECT_EQ(log(), "+name name clicked");
    type(name, QStringLiteral("Bücherei"));
    EXPECT_EQ(gallery->name.text(), U"Bücherei"_ansi);
    type(name, QStringLiteral("\u0416\u2190"));
    EXPECT_EQ(name.text(), QStringLiteral("Bücherei"));
    type(name, " 1234567");
    EXPECT_EQ(gallery->name.text(), U"Bücherei 123"_ansi);
    EXPECT_EQ(log(), "");
    EXPECT_EQ(widget<QLineEdit>(gallery->secret).displayText(), "******");
}

TEST_F(QtWindow, ListsAnswerToMouseAndKeys) {
    auto& list = widget<QListView>(gallery->list);
    list.setFocus(Qt::TabFocusReason);
    key(list, Qt::Key_Down);
    EXPECT_EQ(log(), "+list line 0");
    click(*list.viewport(), line_at(list, 1));
    click(*list.viewport(), line_at(list, 1));
    key(list, Qt::Key_Down);
    EXPECT_EQ(log(), "line 1 line 1 line 2");
    by_program([this] { gallery->list.remove(2); });
    EXPECT_FALSE(list.selectionModel()->hasSelection());
    click(*list.viewport(), {20, list.viewport()->height() + 500});  // below the last line
    EXPECT_EQ(log(), "");

    by_program([this] { gallery->tab.set_current(1); });
    auto& view = widget<QListView>(gallery->view);
    const QRect row = view.visualRect(view.model()->index(3, 0));
    click(*view.viewport(), {row.left() + 8, row.center().y()});
    EXPECT_TRUE(gallery->view.rows()[3].checked);
    key(view, Qt::Key_Space);
    EXPECT_FALSE(gallery->view.rows()[3].checked);
}

TEST_F(QtWindow, FolderListOpensByDoubleClickAndEnter) {
    by_program([this] { gallery->tab.set_current(2); });
    auto& dir = widget<QListView>(gallery->dir);
    QTest::mouseDClick(dir.viewport(), Qt::LeftButton, {}, line_at(dir, 2));
    EXPECT_EQ(gallery->dir.path(), "C:\\School\\Room 1");
    EXPECT_EQ(widget<QListView>(gallery->files).model()->index(0, 0).data().toString(), "pc1.brl");
    log();
    key(dir, Qt::Key_Up);
    key(dir, Qt::Key_Up);
    key(dir, Qt::Key_Return);
    EXPECT_EQ(log(), "dir C:\\");  // and the default button is not pressed
    EXPECT_EQ(dir.model()->rowCount(), 3);
}

TEST_F(QtWindow, KeysOfTheWindow) {
    auto& name = widget(gallery->name);
    name.setFocus(Qt::TabFocusReason);
    log();
    key(name, Qt::Key_Return);
    key(name, Qt::Key_Escape);
    key(name, Qt::Key_F1);
    EXPECT_EQ(log(), "ok cancel help");
    auto& apply = widget(gallery->apply);
    apply.setFocus(Qt::TabFocusReason);
    key(apply, Qt::Key_Enter);
    EXPECT_EQ(log(), "-name +apply apply");
}

TEST_F(QtWindow, TabKeyFollowsTheLayout) {
    by_program([this] { screen.set_focus(&gallery->bar); });
    std::string way;
    do {
        way += screen.focus()->name() + " ";
        key(*QApplication::focusWidget(), Qt::Key_Tab);
    } while (screen.focus() != &gallery->bar && way.size() < 200);
    EXPECT_EQ(way, "bar tab tick second grey name secret list combo apply cancel ok ");
    key(*QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(screen.focus(), &gallery->ok);
    key(*QApplication::focusWidget(), Qt::Key_N, Qt::AltModifier);  // the label's access key
    EXPECT_EQ(screen.focus(), &gallery->name);
}

TEST_F(QtWindow, HiddenPageGivesTheFocusToTheTabs) {
    by_program([this] { screen.set_focus(&gallery->name); });
    log();
    by_program([this] { gallery->tab.set_current(1); });
    EXPECT_EQ(log(), "-name +tab page 1");
    EXPECT_FALSE(widget(gallery->page1).isVisible());
    EXPECT_TRUE(widget(gallery->view).isVisible());

    auto& tabs = *widget(gallery->tab).findChild<QTabBar*>();
    EXPECT_TRUE(tabs.hasFocus());
    click(tabs, tabs.tabRect(2).center());
    key(tabs, Qt::Key_Right);
    key(tabs, Qt::Key_1, Qt::AltModifier);
    EXPECT_EQ(log(), "page 2 page 3 page 0");
}

TEST_F(QtWindow, FocusReturnsToAControlThatWasDisabledMeanwhile) {
    auto& combo = widget(gallery->combo);
    combo.setFocus(Qt::TabFocusReason);
    gallery->combo.on_click = [&] {
        gallery->combo.set_enabled(false);
        EXPECT_FALSE(combo.hasFocus());
        gallery->combo.set_enabled(true);
    };
    key(combo, Qt::Key_Down);
    EXPECT_TRUE(combo.hasFocus());
    EXPECT_EQ(log(), "+combo");
}

TEST_F(QtWindow, BarStatusMenuAndPicture) {
    auto& bar = widget<QListView>(gallery->bar);
    click(*bar.viewport(), line_at(bar, 1));
    key(bar, Qt::Key_Down);
    key(bar, Qt::Key_Space);
    key(bar, Qt::Key_Return);
    EXPECT_EQ(log(), "+bar item 2 item 3 item 3");

    QTest::mouseClick(&widget(gallery->status), Qt::LeftButton, {}, {99, 5});
    QTest::mouseClick(&widget(gallery->status), Qt::RightButton, {}, {100, 5});
    EXPECT_EQ(log(), "status 1 left status 2 right");

    by_program([this] {
        gallery->m_more.set_visible(false);
        gallery->m_open.set_caption("&Load");
    });
    key(window(), Qt::Key_F, Qt::AltModifier);
    auto* menu = dynamic_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    EXPECT_TRUE(menu->actions()[1]->isSeparator());
    EXPECT_FALSE(menu->actions()[2]->isVisible());
    key(*menu, Qt::Key_L);
    EXPECT_EQ(log(), "open");  // no control lost the focus

    const QImage shot = window().grab().toImage();
    const QPoint middle = widget(gallery->picture).mapTo(&window(), widget(gallery->picture).rect().center());
    EXPECT_EQ(shot.pixelColor(middle), QColor(0xf0, 0xc0, 0x30));
}

TEST_F(QtWindow, FrameHidesWhatItLiesOver) {
    EXPECT_EQ(window().size(), QSize(582, 408 + window().findChild<QMenuBar*>()->height()));
    const QPoint edge = widget(gallery->panel).mapTo(&window(), QPoint(40, 200));
    EXPECT_EQ(window().childAt(edge), &widget(gallery->picture));
    const auto& page = widget(gallery->page1);
    EXPECT_EQ(page.mapTo(&window(), page.rect().bottomRight()),
              widget(gallery->panel).mapTo(&window(), widget(gallery->panel).rect().bottomRight()));
}

TEST_F(QtWindow, TimerTicksWhileItIsEnabled) {
    by_program([this] {
        gallery->clock.interval_ms = 1;
        gallery->clock.set_enabled(true);
    });
    EXPECT_TRUE(log_soon().starts_with("tock"));
    by_program([this] { gallery->clock.set_enabled(false); });
    log();
    QTest::qWait(20);
    EXPECT_EQ(log(), "");
}

// --- re-entry

TEST_F(QtWindow, BoxInsideAClickMovesNoFocus) {
    Answer answer{};
    gallery->apply.on_click = [&] {
        answer = screen.message_box({.text = "<b>Really?</b>",
                                     .title = "Delete",
                                     .icon = Icon::critical,
                                     .buttons = Buttons::yes_no,
                                     .default_answer = Answer::no});
    };
    at_box<QMessageBox>([this](QMessageBox& box) {
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.windowTitle(), "Delete");
        EXPECT_EQ(box.icon(), QMessageBox::Critical);
        by_program([this] { gallery->note("meanwhile"); });
        key(box, Qt::Key_Escape);
        box.close();
        EXPECT_TRUE(box.isVisible());
        key(box, Qt::Key_Return);
    });
    click(widget(gallery->apply));
    EXPECT_EQ(answer, Answer::no);
    window().activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
    EXPECT_EQ(log(), "+apply meanwhile");

    at_box<QMessageBox>([](QMessageBox& box) { click(*box.buttons()[0]); });
    click(widget(gallery->apply));
    EXPECT_EQ(answer, Answer::yes);
}

TEST_F(QtWindow, BoxesOfOtherKinds) {
    by_program([this] {
        at_box<QMessageBox>([](QMessageBox& box) { key(box, Qt::Key_Escape); });
        EXPECT_EQ(screen.message_box({.text = "Done."}), Answer::ok);
        at_box<QMessageBox>([](QMessageBox& box) {
            EXPECT_EQ(box.windowTitle(), "Brightlock Suite");
            click(*box.buttons()[1]);
        });
        EXPECT_EQ(screen.message_box({.text = "Disk", .buttons = Buttons::abort_retry_ignore}),
                  Answer::retry);
        at_box([](QWidget& box) {
            type(*box.focusWidget(), QStringLiteral("C:\\Übung"));
            key(box, Qt::Key_Return);
        });
        EXPECT_EQ(screen.input_box("Title", "Folder?"), U"C:\\Übung"_ansi);
        at_box([](QWidget& box) {
            type(*box.focusWidget(), "C:");
            key(box, Qt::Key_Escape);
        });
        EXPECT_EQ(screen.input_box("Title", "Folder?"), "");
    });
}

TEST_F(QtWindow, FormUnloadedInItsOwnHandler) {
    const QPointer<QWidget> shown(&window());
    gallery->apply.on_click = [this] {
        screen.unload(*gallery, [this] { gallery.reset(); });
        screen.process_events();
        at_box<QMessageBox>([](QMessageBox& box) { key(box, Qt::Key_Return); });
        screen.message_box({.text = "The event still runs."});
        EXPECT_TRUE(gallery);
    };
    click(widget(gallery->apply));
    EXPECT_TRUE(shown);  // the button is still at work
    EXPECT_FALSE(shown->isVisible());
    QCoreApplication::processEvents();
    EXPECT_FALSE(shown);
    EXPECT_FALSE(gallery);
}

TEST_F(QtWindow, ClosedByItsFrameStaysUntilUnloaded) {
    window().close();
    EXPECT_EQ(log(), "close");
    EXPECT_TRUE(window().isVisible());
    by_program([this] { screen.hide(*gallery); });
    EXPECT_FALSE(window().isVisible());
    by_program([this] { screen.show(*gallery); });
    EXPECT_TRUE(window().isVisible());
}

TEST_F(QtWindow, RunTimeErrorEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            at_box<QMessageBox>([](QMessageBox& box) {
                std::fputs(box.text().toLatin1().constData(), stderr);
                key(box, Qt::Key_Return);
            });
            by_program([] { throw RuntimeError(53); });
        },
        testing::ExitedWithCode(0), "Run-time error '53'(.|\n)*before the end");
}

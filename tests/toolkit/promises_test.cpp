#include <gmock/gmock.h>

#include <cstdio>

#include "base/text.h"
#include "toolkit/person.h"

using namespace toolkit;
using namespace text::literals;

/// What every renderer promises, on a form with every kind of control.
class Promise : public testing::Test {
  protected:
    /// A small form of its own stays on show, or the end of a test's form would be that of the process.
    struct Anchor : Form {
        explicit Anchor(Toolkit& toolkit) : Form(toolkit, "anchor") { set_client_size(3000, 1500); }
        void close_by_frame() override {}
        Label label{*this, "label"};
    };

    Promise() {
        static auto* const anchor = new Anchor(screen);
        if (!anchor->shown()) by_program([this] { screen.show(*anchor); });
        gallery = std::make_unique<Gallery>(screen, person->folders);
        by_program([this] { screen.show(*gallery); });
        person->wait();
        log();
    }
    ~Promise() override {
        if (!gallery) return;
        by_program([this] { screen.unload(*gallery, [this] { gallery.reset(); }); });
        person->wait();
        EXPECT_FALSE(gallery);
    }

    void by_program(const Event& event) { screen.deliver(event); }
    std::string log() { return gallery->take_log(); }
    std::string log_after(const char* keys) {
        person->press(keys);
        return log();
    }
    std::string log_soon() {
        person->wait();
        return log();
    }
    void focus(Control& control) {
        by_program([&] { screen.set_focus(&control); });
        log();
    }

    Person* const person = the_person.get();
    Toolkit& screen = person->screen();
    std::unique_ptr<Gallery> gallery;
};

// --- controls

TEST_F(Promise, CheckBoxAnswersToMouseSpaceAndAccessKey) {
    person->click(gallery->tick);
    EXPECT_EQ(log(), "+tick tick=1");
    EXPECT_EQ(person->sees(gallery->tick), "[x] &Tick this entry of the menu");
    EXPECT_EQ(log_after("Space"), "tick=0");
    person->press("Alt+T");
    EXPECT_EQ(log_soon(), "tick=1");
    EXPECT_EQ(person->sees(gallery->grey), "[-] Neither this nor that");
    person->click(gallery->grey);
    EXPECT_EQ(log(), "-tick +grey grey=0");
}

TEST_F(Promise, WhatTheProgramChangesIsShownWithoutAnEcho) {
    by_program([this] {
        gallery->tick.set_value(2);
        gallery->combo.set_text("nobody");
        gallery->list.set_selected(2);
        gallery->list.add("LAST.EXE");
        gallery->name.set_text(U"Schüler"_ansi);
        gallery->apply.set_enabled(false);
    });
    EXPECT_EQ(log(), "tick=2");
    EXPECT_EQ(person->sees(gallery->tick).substr(0, 3), "[-]");
    EXPECT_EQ(person->sees(gallery->combo), "nobody");
    EXPECT_EQ(person->sees(gallery->list),
              "BRITLOCK.EXE|CALC.EXE|*R&D.EXE|NOTEPAD.EXE|SOL.EXE|WINMINE.EXE|LAST.EXE|");
    EXPECT_EQ(person->sees(gallery->name), U"Schüler"_ansi);
    EXPECT_EQ(person->sees(gallery->secret), "******");
    EXPECT_TRUE(person->is_grey(gallery->apply));
    EXPECT_TRUE(person->is_grey(gallery->unbuilt));
    EXPECT_FALSE(person->is_grey(gallery->ok));
    EXPECT_EQ(person->colour(gallery->picture), 0xf0c030U);
}

TEST_F(Promise, ScreenShowsWhatTheControlMadeOfAClick) {
    focus(gallery->name);
    gallery->name.on_lost_focus = [this] { gallery->tick.set_enabled(false); };
    person->click(gallery->tick);
    EXPECT_EQ(person->sees(gallery->tick).substr(0, 3), "[ ]");
    gallery->list.on_click = [this] { gallery->list.set_selected(-1); };
    person->click(gallery->list, 1);
    EXPECT_EQ(person->sees(gallery->list).find('*'), std::string::npos);
}

TEST_F(Promise, TextBoxTakesWhatTheProgramCanSpell) {
    person->click(gallery->name);
    EXPECT_EQ(log(), "+name name clicked");
    person->type(u"Bücherei");
    person->type(u"\u0416\u2190");
    EXPECT_EQ(person->sees(gallery->name), U"Bücherei"_ansi);
    person->type(u" 1234567");
    EXPECT_EQ(gallery->name.text(), U"Bücherei 123"_ansi);
    EXPECT_EQ(log(), "");
}

TEST_F(Promise, ComboBoxChangesByItsListOnly) {
    focus(gallery->combo);
    person->type(u"pupil");
    person->press("Del");
    EXPECT_EQ(person->sees(gallery->combo), "somebody else");
    EXPECT_EQ(log(), "");
    EXPECT_EQ(log_after("Down Down"), "chose Administrator chose pupil");
    person->turn_wheel(gallery->combo, -1);
    EXPECT_EQ(log(), "chose Administrator");
    person->press("F4 Return");
    EXPECT_EQ(log_soon(), "chose Administrator") << "the same entry again counts";
}

TEST_F(Promise, WheelOverWhatHasNoKeyboardChangesNothing) {
    focus(gallery->ok);
    for (const Control* control : std::initializer_list<const Control*>{
             &gallery->combo, &gallery->list, &gallery->tab, &gallery->bar, &gallery->name}) {
        person->turn_wheel(*control, 1);
        EXPECT_EQ(log_soon(), "") << control->name();
        EXPECT_EQ(person->keyboard(*gallery), &gallery->ok) << control->name();
    }
    by_program([this] { gallery->tab.set_current(2); });
    log();
    person->turn_wheel(gallery->drive, 1);
    EXPECT_EQ(log_soon(), "");
}

TEST_F(Promise, ListsAnswerToMouseAndKeys) {
    focus(gallery->list);
    EXPECT_EQ(log_after("Down"), "line 0");
    person->click(gallery->list, 1);
    person->click(gallery->list, 1);
    EXPECT_EQ(log_after("Down"), "line 1 line 1 line 2");
    by_program([this] {
        gallery->list.remove(2);
        gallery->list.remove(0);
        gallery->list.remove(0);
    });
    EXPECT_EQ(person->sees(gallery->list).find('*'), std::string::npos);
    person->click(gallery->list, 99);
    EXPECT_EQ(log(), "");

    by_program([this] { gallery->tab.set_current(1); });
    person->click(gallery->view, 3);
    EXPECT_TRUE(gallery->view.rows()[3].checked);
    EXPECT_NE(person->sees(gallery->view).find("[x] Applet 4|"), std::string::npos);
    person->press("Space");
    EXPECT_FALSE(gallery->view.rows()[3].checked);
}

TEST_F(Promise, FolderListOpensByDoubleClickAndEnter) {
    by_program([this] { gallery->tab.set_current(2); });
    person->double_click(gallery->dir, 2);
    EXPECT_EQ(gallery->dir.path(), "C:\\School\\Room 1");
    EXPECT_EQ(person->sees(gallery->files), "pc1.brl|");
    log();
    EXPECT_EQ(log_after("Up Up Return"), "dir C:\\") << "and the default button is not pressed";
    EXPECT_EQ(person->sees(gallery->dir), "*C:\\|Documents and Settings|Program Files|School|WINDOWS|");
}

TEST_F(Promise, ListBarOpensItsItemsAndMarksThePage) {
    person->click(gallery->bar, 1);
    EXPECT_EQ(log_after("Down Space Return"), "+bar item 2 item 3 item 3");
    by_program([this] { gallery->tab.set_current(2); });
    EXPECT_NE(person->sees(gallery->bar).find("|*Desktop|"), std::string::npos);
    by_program([this] { gallery->tab.set_current(8); });
    EXPECT_NE(person->sees(gallery->bar).find("|*Settings|"), std::string::npos) << "scrolled to";
}

TEST_F(Promise, TimerTicksAndStatusBarHearsTheMouse) {
    person->click(gallery->status);
    EXPECT_EQ(log(), "status 1 left");
    by_program([this] {
        gallery->clock.interval_ms = 1;
        gallery->clock.set_enabled(true);
    });
    EXPECT_TRUE(log_soon().starts_with("tock"));
    by_program([this] { gallery->clock.set_enabled(false); });
    log();
    EXPECT_EQ(log_soon(), "");
}

// --- keys and focus

TEST_F(Promise, EnterEscapeAndHelpByTheFormsRules) {
    focus(gallery->name);
    EXPECT_EQ(log_after("Return Esc F1"), "ok cancel help");
    focus(gallery->apply);
    EXPECT_EQ(log_after("Return"), "apply");
    for (Button* grey : {&gallery->ok, &gallery->cancel})
        by_program([grey] { grey->set_enabled(false); });
    focus(gallery->tick);
    EXPECT_EQ(log_after("Return Esc"), "") << "a button that is grey is not pressed";
}

TEST_F(Promise, TabFollowsTheLayout) {
    focus(gallery->bar);
    std::string way;
    do {
        const Control* at = person->keyboard(*gallery);
        way += (at ? at->name() : "-") + " ";
        person->press("Tab");
    } while (person->keyboard(*gallery) != &gallery->bar && way.size() < 200);
    EXPECT_EQ(way, "bar tab tick second grey name secret list combo apply cancel ok ");
    person->press("Backtab");
    EXPECT_EQ(screen.focus(), &gallery->ok);
    person->press("Alt+N");  // the label's access key
    EXPECT_EQ(screen.focus(), &gallery->name);
}

TEST_F(Promise, HiddenPageGivesTheFocusToTheTabs) {
    gallery->secret.on_lost_focus = [this] { screen.set_focus(&gallery->name); };
    focus(gallery->secret);
    by_program([this] { screen.set_focus(&gallery->apply); });
    EXPECT_EQ(log(), "-apply +name");
    EXPECT_EQ(person->keyboard(*gallery), &gallery->name);
    by_program([this] { gallery->tab.set_current(1); });
    EXPECT_EQ(log(), "-name +tab page 1");
    EXPECT_FALSE(person->is_on_screen(gallery->page1));
    EXPECT_TRUE(person->is_on_screen(gallery->view));
    EXPECT_EQ(person->keyboard(*gallery), &gallery->tab);
    person->click(gallery->tab, 2);
    person->press("Right");
    person->press("Alt+1");
    EXPECT_EQ(log(), "page 2 page 3 page 0");
}

TEST_F(Promise, ControlTakenAwayKeepsItsClaimOnTheKeyboard) {
    focus(gallery->combo);
    gallery->combo.on_click = [this] {
        gallery->combo.set_enabled(false);
        person->wait();
        EXPECT_EQ(person->keyboard(*gallery), nullptr);
        // What is typed while the program waits leads nowhere, and is not made up for.
        person->press("Down Space Return Esc Tab Space F1");
        gallery->combo.set_enabled(true);
        EXPECT_EQ(person->keyboard(*gallery), &gallery->combo);
    };
    person->press("Down");
    EXPECT_EQ(log_soon(), "");
    EXPECT_EQ(gallery->combo.text(), "Administrator");

    by_program([this] { gallery->combo.set_visible(false); });
    EXPECT_EQ(person->keyboard(*gallery), nullptr);
    EXPECT_EQ(log_after("Tab"), "-combo +apply") << "a person goes on from where it was";
}

TEST_F(Promise, MenuShowsWhatItCanDo) {
    by_program([this] {
        gallery->m_more.set_visible(false);
        gallery->m_open.set_caption("&Load");
    });
    focus(gallery->name);
    EXPECT_EQ(person->sees_menu(*gallery), "&Load|-|(Not &built yet)|");
    EXPECT_EQ(log_after("F10 Down L"), "open") << "and no control lost the focus";
    gallery->m_file.set_enabled(false);
    gallery->m_open.click();
    EXPECT_EQ(log(), "");
}

// --- re-entry

TEST_F(Promise, BoxInsideAClickMovesNoFocus) {
    Answer answer{};
    gallery->apply.on_click = [&] {
        answer = screen.message_box({.text = "<b>Really?</b>\r\nYes & no",
                                     .title = "Delete",
                                     .icon = Icon::critical,
                                     .buttons = Buttons::yes_no,
                                     .default_answer = Answer::no});
    };
    person->at_next_box("Esc Return");  // this box cannot be left by Esc
    person->click(gallery->apply);
    EXPECT_EQ(answer, Answer::no);
    EXPECT_EQ(person->box.title, "Delete");
    EXPECT_EQ(person->box.text, "<b>Really?</b>\nYes & no");
    EXPECT_EQ(person->box.buttons, (std::vector<std::string>{"&Ja", "&Nein"}));
    EXPECT_EQ(log_soon(), "+apply");
    EXPECT_EQ(person->keyboard(*gallery), &gallery->apply);
}

TEST_F(Promise, BoxesOfOtherKinds) {
    by_program([this] {
        person->at_next_box("Esc");
        EXPECT_EQ(screen.message_box({.text = "Done."}), Answer::ok);
        EXPECT_EQ(person->box.title, "Brightlock Suite");
        person->at_next_box("Tab Return");
        EXPECT_EQ(
            screen.message_box(
                {.text = "Disk", .buttons = Buttons::abort_retry_ignore, .default_answer = Answer::abort}),
            Answer::retry);
        person->at_next_box("Esc");
        EXPECT_EQ(screen.input_box("Title", "Folder?"), "");
    });
}

TEST_F(Promise, FormUnloadedInItsOwnHandler) {
    gallery->apply.on_click = [this] {
        screen.unload(*gallery, [this] { gallery.reset(); });
        screen.process_events();
        person->at_next_box("Return");
        screen.message_box({.text = "The event still runs."});
        EXPECT_TRUE(gallery);
        EXPECT_FALSE(person->is_on_screen(gallery->apply));
    };
    person->click(gallery->apply);
    person->wait();
    EXPECT_FALSE(gallery);
}

TEST_F(Promise, WindowClosedByItsFrameStaysUntilUnloaded) {
    person->close_window(*gallery);
    EXPECT_EQ(log(), "close");
    EXPECT_TRUE(person->is_on_screen(gallery->apply));
    by_program([this] { screen.hide(*gallery); });
    EXPECT_FALSE(person->is_on_screen(gallery->apply));
}

TEST_F(Promise, RunTimeErrorIsToldAndFailsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            person->at_next_box("Return");
            by_program([] { throw RuntimeError(53); });
        },
        testing::ExitedWithCode(1),
        testing::AllOf(testing::HasSubstr("Laufzeitfehler '53'"), testing::HasSubstr("before the end")));
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    the_person = make_person(argc, argv);
    const int result = RUN_ALL_TESTS();
    std::fflush(stdout);
    std::_Exit(result);  // the window that stays on show has no end of its own
}

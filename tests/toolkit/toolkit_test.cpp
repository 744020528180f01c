#include <gtest/gtest.h>

#include "toolkit/gallery.h"
#include "toolkit/script/script_toolkit.h"

using namespace toolkit;

namespace {

int error_of(const Event& event) {
    try {
        event();
    } catch (const RuntimeError& error) {
        return error.number();
    }
    return 0;
}

}  // namespace

/// The model behind the gallery, without a screen.
class Model : public testing::Test {
  protected:
    void SetUp() override {
        screen.act([this] { screen.show(gallery); });
        log();
    }
    std::string log() { return gallery.take_log(); }

    PaperFolders folders;
    ScriptToolkit screen;
    Gallery gallery{screen, folders};
};

TEST_F(Model, CheckBoxFiresOnARealChangeOnly) {
    gallery.tick.set_value(0);
    gallery.tick.set_value(1);
    gallery.tick.set_value(1);
    gallery.tick.set_value(2);
    EXPECT_FALSE(gallery.tick.ticked());
    gallery.tick.click();
    EXPECT_EQ(log(), "tick=1 tick=2 +tick tick=0");
    EXPECT_EQ(error_of([this] { gallery.tick.set_value(3); }), 380);
    gallery.tick.set_enabled(false);
    gallery.tick.click();
    EXPECT_EQ(log(), "");
}

TEST_F(Model, ListsKeepTheirSelectionInOrder) {
    gallery.list.set_selected(2);
    gallery.list.remove(0);
    EXPECT_EQ(gallery.list.item(gallery.list.selected()), "R&D.EXE");
    gallery.list.remove(1);
    EXPECT_EQ(gallery.list.selected(), -1);
    EXPECT_EQ(error_of([this] { gallery.list.set_selected(4); }), 9);
    EXPECT_EQ(error_of([this] {
                  for (;;)
                      gallery.list.add("line");
              }),
              6);
    EXPECT_EQ(gallery.list.count(), 32767);
    EXPECT_EQ(log(), "");
    gallery.list.click_item(1);
    gallery.list.click_item(1);
    gallery.combo.set_text("pupil");
    gallery.combo.choose(1);
    EXPECT_EQ(log(), "+list line 1 line 1 -list +combo chose pupil");
}

TEST_F(Model, FocusMovesOnceAndLeavesAHiddenPage) {
    screen.set_focus(&gallery.name);
    screen.set_focus(&gallery.name);
    screen.set_focus(&gallery.view);  // on another page
    screen.set_focus(&gallery.panel);
    EXPECT_EQ(log(), "+name");
    gallery.name.on_lost_focus = [this] { screen.set_focus(&gallery.ok); };
    screen.set_focus(&gallery.apply);
    EXPECT_EQ(screen.focus(), &gallery.ok);
    EXPECT_EQ(log(), "-apply +ok");
    screen.set_focus(&gallery.secret);
    gallery.tab.set_current(1);
    gallery.tab.set_current(1);
    EXPECT_EQ(log(), "-ok +secret -secret +tab page 1");
    gallery.tick.click();
    EXPECT_EQ(log(), "");
    EXPECT_EQ(error_of([this] { gallery.tab.set_current(9); }), 380);
}

TEST_F(Model, TextsEndAtNulAndAtTheirLimit) {
    gallery.name.set_text(std::string_view("bob\0by", 6));
    EXPECT_EQ(gallery.name.text(), "bob");
    gallery.name.type("more than twelve letters");
    EXPECT_EQ(gallery.name.text(), "more than tw");
    screen.expect_box("two");
    EXPECT_TRUE(screen.act([this] { screen.message_box({.text = "a\rb\r\nc", .title = {"two\0x", 5}}); }));
    EXPECT_EQ(screen.boxes.back().text, "a\nb\nc");
}

TEST_F(Model, FoldersFollowTheDrives) {
    EXPECT_EQ(folders_on_the_way("C:\\School\\Room 1"),
              (std::vector<std::string>{"C:\\", "C:\\School", "C:\\School\\Room 1"}));
    EXPECT_EQ(folders_on_the_way("C:\\"), (std::vector<std::string>{"C:\\"}));
    gallery.tab.set_current(2);
    log();
    gallery.dir.open_folder(0);
    gallery.dir.open_ancestor(0);
    gallery.drive.choose(1);
    EXPECT_EQ(log(), "+dir dir C:\\School\\Room 1 dir C:\\ -dir +drive drive D:");
    EXPECT_EQ(error_of([this] { gallery.drive.set_drive("Q"); }), 68);
    EXPECT_EQ(error_of([this] { gallery.dir.set_path("C:\\nowhere"); }), 76);
    EXPECT_EQ(error_of([this] { gallery.photo.load("no picture"); }), 481);
}

TEST_F(Model, FormsLiveUntilTheEventEnds) {
    Gallery other(screen, folders);
    screen.act([&] { screen.show(other); });
    bool released = false;
    other.apply.on_click = [&] {
        screen.set_focus(&other.name);
        screen.unload(other, [&] { released = true; });
        screen.process_events();
        EXPECT_FALSE(released);
    };
    screen.meanwhile = [&] { other.apply.click(); };  // a form that is gone hears nothing
    EXPECT_TRUE(screen.act([&] { other.apply.click(); }));
    EXPECT_TRUE(released);
    EXPECT_EQ(other.take_log(), "+apply -apply +name -name");
    EXPECT_FALSE(screen.act([&] { screen.unload(gallery, {}); }));  // the last one
}

TEST_F(Model, RunTimeErrorIsToldAndEndsTheProcess) {
    screen.expect_box("Brightlock Suite");
    EXPECT_FALSE(screen.act([] { throw RuntimeError(70); }));
    EXPECT_EQ(screen.boxes.back().icon, Icon::critical);
    EXPECT_TRUE(screen.boxes.back().text.starts_with("Run-time error '70'"));
}

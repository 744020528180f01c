#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/restriction_file.h"
#include "program/random_marks.h"
#include "program/world.h"

namespace britlock {
namespace {

using namespace machine;
using testing::HasSubstr;
using testing::Not;
using toolkit::Answer;

struct FileCommands : testing::Test {
    World w;
    MemoryKey& anna = w.windows.add_profile("Anna");
    MainForm* window = &w.enter();

    bool save_as(const std::string& path) {
        w.screen.expect_file(path);
        return w.click(window->mm13);
    }
    bool open(const std::string& path) {
        w.screen.expect_file(path);
        return w.click(window->mm11);
    }
};

TEST_F(FileCommands, SaveAsksForANameOnceAndSaveAsAlways) {
    const auto saved_to = [&](const std::string& path) {
        return w.content(path) == brl_text(window->marks());
    };
    w.choosing_file("").click(window->mm12);
    w.choosing_file("C:\\a.brl").click(window->mm12);
    EXPECT_TRUE(saved_to("C:\\a.brl"));
    w.click(window->c11);
    w.click(window->mm12);
    EXPECT_TRUE(saved_to("C:\\a.brl")) << "written over without a question";
    const toolkit::FileDialog& asked = w.screen.file_dialogs.back();
    EXPECT_EQ(asked.title + asked.filter, "Save Settings*.BRL (Brightlock)|*.brl");
    EXPECT_EQ(asked.action, toolkit::FileDialog::Action::save);

    w.windows.files.add_file("C:\\b.brl", "old");
    w.screen.expect_box("Save settings...", Answer::no);
    save_as("C:\\b.brl");
    EXPECT_EQ(w.content("C:\\b.brl"), "old");
    EXPECT_EQ(window->last_file_name, "C:\\a.brl");
    EXPECT_EQ(w.told(), "This file already exists.\nOverwrite existing file ?");
    w.screen.expect_box("Save settings...", Answer::yes);
    save_as("C:\\b.brl");
    EXPECT_TRUE(saved_to("C:\\b.brl"));
    EXPECT_EQ(w.screen.beeps, 2);
    w.windows.files.add_file("C:\\empty.brl", "");
    save_as("C:\\empty.brl");
    open("C:\\a.brl");
    EXPECT_EQ(window->last_file_name, "C:\\empty.brl") << "an opened file is not saved to";
}

TEST_F(FileCommands, OpenShowsTheSetAndApplyWritesIt) {
    w.choose("Anna");
    RandomPerson(w, 7).mark();
    window->c16.set_value(1);
    window->c31.set_value(0);
    window->c41.set_value(1);
    window->List1.clear();
    window->List1.add("CALC.EXE");
    window->c96.set_value(1);
    window->t81.set_text("The School");
    Marks saved = Marks::of(*window);
    save_as("C:\\set.brl");

    w.click(window->mm22);
    window->c39.set_value(1);
    window->t32.set_text("C:\\Icons");
    window->List1.clear();
    open("C:\\set.brl");
    saved.lines["c96"] = "0";
    saved.lines["c39"] = "1";
    saved.lines["t32"] = "C:\\Icons";
    EXPECT_EQ(Marks::of(*window).lines, saved.lines)
        << "c16 ticks c31 for a moment, c41 adds a line that goes";
    EXPECT_EQ(window->t81.text() + "|" + window->t82.text(), "1|The School");
    EXPECT_THAT(anna.dump(), Not(HasSubstr("NoClose"))) << "an opened file writes nothing";

    // The last text is not the folder of the profiles: the hive is not found until the person mends it.
    w.expecting("Path not found...").apply();
    w.screen.act([&] { window->t810.set_text(w.program->users.profile_base_path); });
    w.apply();
    EXPECT_THAT(anna.dump(), HasSubstr("RestrictRun :  0 = \"CALC.EXE\""));
    EXPECT_THAT(anna.dump(), HasSubstr("FixedLNKUrl = \"C:\\Icons\""));
}

TEST(FileCommandsThatFail, LeaveTheMarksAsTheyWere) {
    RestrictionSet set;
    set.boxes.set(12, 1);
    const std::string whole = brl_text(set);
    struct Case {
        const char* path;
        FileError fault;
        std::optional<std::string> bytes;
        const char* title;
        const char* text;
    };
    const Case cases[] = {
        {"C:\\other.brl", no_error, "\"brlck\"\r\n\"x\"\r\n", "Error...",
         "This is not a Brightlock Suite-File."},
        {"C:\\cut.brl", no_error, whole.substr(0, whole.size() / 2), "Brightlock Suite", "'62'"},
        {"C:\\missing.brl", no_error, {}, "Brightlock Suite", "'53'"},
        {"C:\\held.brl", permission_denied, whole, "Brightlock Suite", "'70'"},
        {"Q:\\gone.brl", no_error, {}, "Brightlock Suite", "'76'"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        World w;
        MainForm& window = w.enter();
        if (c.bytes) w.windows.files.add_file(c.path, *c.bytes);
        if (c.fault != no_error) w.windows.files.fail(c.path, c.fault);
        w.click(window.c11);
        const Marks before = Marks::of(window);
        w.choosing_file("").click(window.mm11);
        EXPECT_EQ(w.choosing_file(c.path).expecting(c.title).click(window.mm11), c.text[0] != '\'')
            << "a run-time error ends the program";
        EXPECT_THAT(w.told(), HasSubstr(c.text));
        EXPECT_EQ(Marks::of(window).lines, before.lines) << "no part of a set is shown";
    }
    for (const char* path : {"Q:\\x.brl", "C:\\nowhere\\x.brl", "C:\\WINDOWS"}) {
        World w(versions::winxp, german);
        w.enter();
        EXPECT_FALSE(w.choosing_file(path).expecting("Brightlock Suite").click(w.window().mm13)) << path;
        EXPECT_EQ(w.screen.file_dialogs[0].title, "Einstellungen speichern...");
    }
}

}  // namespace
}  // namespace britlock

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/restriction_file.h"
#include "program/random_marks.h"
#include "program/world.h"

namespace britlock {
namespace {

using namespace machine;
using testing::HasSubstr;
using toolkit::Answer;

struct FileCommands : testing::Test, WithAnna {
    bool saved_to(const std::string& path) { return content(path) == brl_text(window().marks()); }
};

TEST_F(FileCommands, SaveAsksForANameOnceAndSaveAsAlways) {
    MainForm& form = window();
    choosing_file("").click(form.mm12);
    choosing_file("C:\\a.brl").click(form.mm12);
    EXPECT_TRUE(saved_to("C:\\a.brl"));
    click(form.c11);
    click(form.mm12);
    EXPECT_TRUE(saved_to("C:\\a.brl")) << "written over without a question";
    const toolkit::FileDialog& asked = screen.file_dialogs.back();
    EXPECT_EQ(asked.title + asked.filter, "Save Settings*.BRL (Brightlock)|*.brl");
    EXPECT_EQ(asked.action, toolkit::FileDialog::Action::save);

    windows.files.add_file("C:\\b.brl", "old");
    expecting("Save settings...", Answer::no).choosing_file("C:\\b.brl").click(form.mm13);
    EXPECT_EQ(content("C:\\b.brl") + form.last_file_name, "oldC:\\a.brl");
    EXPECT_EQ(told(), "This file already exists.\nOverwrite existing file ?");
    expecting("Save settings...", Answer::yes).choosing_file("C:\\b.brl").click(form.mm13);
    EXPECT_TRUE(saved_to("C:\\b.brl"));
    EXPECT_EQ(screen.beeps, 2);
    windows.files.add_file("C:\\empty.brl", "");
    choosing_file("C:\\empty.brl").click(form.mm13);
    choosing_file("C:\\a.brl").click(form.mm11);
    EXPECT_EQ(form.last_file_name, "C:\\empty.brl") << "an opened file is not saved to";
}

TEST_F(FileCommands, OpenShowsTheSetAndApplyWritesIt) {
    MainForm& form = window();
    mark_at_random(*this, 7);
    form.c16.set_value(1);
    form.c31.set_value(0);  // which c16 ticks for a moment
    form.c41.set_value(1);
    form.c96.set_value(1);
    form.List1.clear();  // of the line that c41 adds
    form.List1.add("CALC.EXE");
    form.t81.set_text("The School");
    RestrictionSet set = form.marks();
    choosing_file("C:\\set.brl").click(form.mm13);

    click(form.mm22);
    form.c39.set_value(1);
    form.t32.set_text("C:\\Icons");
    form.List1.clear();
    choosing_file("C:\\set.brl").click(form.mm11);
    set.boxes.set(96, 0);
    set.boxes.set(39, 1);
    set.icon_folder = "C:\\Icons";
    set.machine = {"1", "The School", set.machine.owner};
    EXPECT_EQ(form.marks(), set);
    EXPECT_EQ(dump(key::explorer), "(missing)") << "an opened file writes nothing";

    // The last text is not the folder of the profiles: the hive is not found until the person mends it.
    expecting("Path not found...").apply();
    form.t810.set_text(program->users.profile_base_path);
    apply();
    EXPECT_THAT(dump(), HasSubstr("RestrictRun :  0 = \"CALC.EXE\""));
    EXPECT_THAT(dump(), HasSubstr("FixedLNKUrl = \"C:\\Icons\""));
}

TEST_F(FileCommands, ThatFailLeaveTheMarksAsTheyWere) {
    const std::string whole = brl_text(window().marks());
    windows.files.add_file("C:\\other.brl", "\"brlck\"\r\n\"x\"\r\n");
    windows.files.add_file("C:\\cut.brl", whole.substr(0, whole.size() / 2));
    windows.files.add_file("C:\\held.brl", whole);
    windows.files.fail("C:\\held.brl", permission_denied);
    struct Case {
        const char* path;
        toolkit::MenuItem MainForm::*command;
        const char* says;
    };
    const auto open = &MainForm::mm11, save = &MainForm::mm13;
    for (const Case& c : {Case{"C:\\other.brl", open, "This is not a Brightlock Suite-File."},
                          {"C:\\cut.brl", open, "'62'"},
                          {"C:\\missing.brl", open, "'53'"},
                          {"C:\\held.brl", open, "'70'"},
                          {"Q:\\gone.brl", open, "'76'"},
                          {"Q:\\x.brl", save, "'76'"},
                          {"C:\\nowhere\\x.brl", save, "'76'"},
                          {"C:\\WINDOWS", save, "'75'"}}) {
        SCOPED_TRACE(c.path);
        MainForm& form = enter();
        click(form.c11);
        const RestrictionSet before = form.marks();
        choosing_file("").click(form.*c.command);
        const bool runs_on = c.says[0] != '\'';  // a run-time error ends the program
        expecting(runs_on ? "Error..." : "Brightlock Suite").choosing_file(c.path);
        EXPECT_EQ(click(form.*c.command), runs_on);
        EXPECT_THAT(told(), HasSubstr(c.says));
        EXPECT_EQ(form.marks(), before) << "no part of a set is shown";
    }
}

}  // namespace
}  // namespace britlock

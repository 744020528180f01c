#include "files/restriction_file.h"

#include <regex>

#include "base/runtime_error.h"
#include "files/random_set.h"
#include "program/random_marks.h"
#include "program/world.h"

namespace {

/// The number of the run-time error that reading ends in; 0: none.
int error_of_reading(std::string_view bytes, const RestrictionSet& shown = {}) {
    try {
        (void)read_brl(bytes, shown);
    } catch (const RuntimeError& error) {
        return error.number();
    }
    return 0;
}

std::string repeated(const std::string& line, int times) {
    std::string lines;
    while (times-- > 0)
        lines += line;
    return lines;
}

/// A whole file of zeros, but for the list of programs and the drive C.
std::string file_with(const std::string& count_and_list, const std::string& drive = "0") {
    return "\"BRLCK\"\r\n\"NEVER EDIT THIS FILE!\"\r\n" + repeated("0,", 9) + repeated("0\r\n", 40) +
           repeated("0,", 17) + "0\r\n\"\"\r\n0\r\n" + count_and_list + "0,0," + drive + repeated(",0", 23) +
           "\r\n" + repeated("0,", 17) + "0\r\n\"org\",\"owner\"\r\n\"path\"\r\n";
}

TEST(RestrictionFile, IsWrittenByteForByte) {
    RestrictionSet set;
    for (const int box : {11, 16, 110, 22, 210, 37, 39, 41, 66, 610, 99, 61, 90, 96})
        set.boxes.set(box, 1);
    set.boxes.set(18, 2);
    set.hidden_applets[0] = set.hidden_applets[30] = set.hidden_applets[38] = true;
    set.wallpaper = "C:\\B\xE4r, gro\xDF.bmp";
    set.icon_folder = "C:\\Icons";
    set.programs = {"BRITLOCK.EXE", "a\"b.exe"};
    set.drives = {1, 0, 2};
    set.drives['T' - 'A'] = set.drives['Z' - 'A'] = 1;
    set.machine = {"Schule, Z\xFCrich", "M. B\xFCrgi", "C:\\Documents and Settings\\"};
    EXPECT_EQ(std::regex_replace(brl_text(set), std::regex("\r\n"), "|"),
              R"("BRLCK"|"NEVER EDIT THIS FILE!"|1,0,0,0,0,1,0,2,0,1|1|)" + repeated("0|", 29) + "1|" +
                  repeated("0|", 7) +
                  "1|0,1,0,0,0,0,0,0,0,1|0,0,0,0,0,0,1,0|\"C:\\B\xE4r, "
                  "gro\xDF.bmp\"|1|2|\"BRITLOCK.EXE\"|\"a\"b.exe\"|"
                  "1,0,2,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1,0,0,0,0,0,1|0,1,0,0,0,1,0,1|1,0,0,0,1,0,0,0,0,1|"
                  "\"Schule, Z\xFCrich\",\"M. B\xFCrgi\"|\"C:\\Documents and Settings\\\"|");
}

/// What the way changes, and nothing else.
RestrictionSet after_a_way_through_a_file(RestrictionSet set, const RestrictionSet& shown) {
    set.machine = {std::to_string(set.boxes[96]), set.machine.organisation, set.machine.owner};
    for (const Restriction& row : Get_CR()) {
        if (row.page != 0) set.boxes.set(row.box, set.ticked(row.box));
    }
    set.boxes.set(96, 0);
    set.boxes.set(39, shown.boxes[39]);
    set.icon_folder = shown.icon_folder;
    return set;
}

TEST(RestrictionFile, ComesBackWithTheTextsShifted) {
    std::mt19937 random(5);
    for (int i = 0; i < 300; ++i) {
        const RestrictionSet set = random_set(random), shown = random_set(random);
        const auto read = read_brl(brl_text(set), shown);
        ASSERT_TRUE(read);
        ASSERT_EQ(*read, after_a_way_through_a_file(set, shown)) << brl_text(set);
    }
}

TEST(RestrictionFile, BeginsWithTheExactWord) {
    const std::string rest = brl_text({}).substr(32);  // after the word and the warning
    for (const char* start : {"\"BRLCK\",\"NEVER EDIT THIS FILE!\"", "  BRLCK, whatever"})
        EXPECT_TRUE(read_brl(start + rest, {})) << start;
    for (const char* start : {"\"brlck\",x", "BRLCK2,x", "\" BRLCK\",\"\"", ",", "BRLCK ,x"})
        EXPECT_FALSE(read_brl(start + rest, {})) << start;
    EXPECT_EQ(error_of_reading("PK\x03\x04"), 62) << "two fields are read before one is looked at";
}

TEST(RestrictionFile, IsGovernedByTheCount) {
    using Programs = std::vector<std::string>;
    const std::string two = "\"A.EXE\"\r\n\"B.EXE\"\r\n", long_name(65535, 'x');
    const std::tuple<std::string, Programs, const char*> read_as[] = {
        {"2\r\n" + two, {"A.EXE", "B.EXE"}, "0"},
        {"-3\r\n", {}, "0"},
        {"none\r\n", {}, "0"},
        // One too few: everything after the list is read one field too early, the texts of the machine too.
        {"1\r\n" + two, {"A.EXE"}, "0"},
        {"3\r\n" + two, {"A.EXE", "B.EXE", "0"}, "org"},
        // A quote ends the text, and what stands between it and the comma is gone. Nothing else is changed.
        {"2\r\n\"A\"B.EXE\"\r\n\"two\r\nlines, one\"\r\n", {"A", "two\r\nlines, one"}, "0"},
        {"3\r\nbare.exe,\"\"\r\n\" britlock.exe \"\r\n", {"bare.exe", "", " britlock.exe "}, "0"},
        {"32767\r\n" + repeated("\r\n", 32767), Programs(32767), "0"},
        {"1\r\n" + long_name + "\r\n", {long_name}, "0"}};
    for (const auto& [list, programs, organisation] : read_as) {
        const auto read = read_brl(file_with(list), {});
        EXPECT_TRUE(read->programs == programs) << list.substr(0, 50);
        EXPECT_EQ(read->machine.organisation, organisation) << list.substr(0, 50);
    }
    for (const auto& [list, error] :
         {std::pair{"32767\r\n" + two, 62}, {"32768\r\n" + two, 6}, {"1\r\n" + long_name + "x\r\n", 380}})
        EXPECT_EQ(error_of_reading(file_with(list)), error) << list.substr(0, 50);
    EXPECT_EQ(read_brl(file_with("0\r\n", "1.5"), {})->drives[2], 2);
    for (const char* drive : {"3", "-1", "2.6"})
        EXPECT_EQ(error_of_reading(file_with("0\r\n", drive)), 380) << drive;
}

TEST(RestrictionFile, ThatEndsEarlyIsNotRead) {
    std::mt19937 random(11);
    RestrictionSet set = random_set(random);
    set.machine.owner = "the owner";
    const std::string whole = brl_text(set);
    const size_t last_read = whole.rfind("\"the owner\"");
    for (size_t length = 0; length < whole.size(); ++length) {
        std::string marked = whole;
        marked[length] = '\x1A';  // the end of a text, whatever follows
        for (const std::string& file : {marked, whole.substr(0, length)})
            ASSERT_EQ(error_of_reading(file), length > last_read ? 0 : 62) << length;
    }
}

struct FileCommands : Test, WithAnna {
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
    const auto open = &MainForm::mm11, save = &MainForm::mm13;
    for (const auto& [path, command, says] :
         {std::tuple{"C:\\other.brl", open, "This is not a Brightlock Suite-File."},
          {"C:\\cut.brl", open, "'62'"},
          {"C:\\missing.brl", open, "'53'"},
          {"C:\\held.brl", open, "'70'"},
          {"Q:\\gone.brl", open, "'76'"},
          {"Q:\\x.brl", save, "'76'"},
          {"C:\\nowhere\\x.brl", save, "'76'"},
          {"C:\\WINDOWS", save, "'75'"}}) {
        SCOPED_TRACE(path);
        MainForm& form = enter();
        click(form.c11);
        const RestrictionSet before = form.marks();
        choosing_file("").click(form.*command);
        const bool runs_on = says[0] != '\'';  // a run-time error ends the program
        expecting(runs_on ? "Error..." : "Brightlock Suite").choosing_file(path);
        EXPECT_EQ(click(form.*command), runs_on);
        EXPECT_THAT(told(), HasSubstr(says));
        EXPECT_EQ(form.marks(), before) << "no part of a set is shown";
    }
}

}  // namespace

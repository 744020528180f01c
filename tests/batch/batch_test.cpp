#include "batch/batch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "batch/description.h"
#include "files/random_set.h"
#include "files/restriction_file.h"
#include "program/world.h"

namespace britlock {
namespace {

using namespace machine;
using testing::ElementsAre;
using testing::HasSubstr;

/// A machine with users that are restricted already, each in another way.
struct School {
    World w;
    std::map<std::string, MemoryKey*> users;

    School() {
        for (const std::string name : {"Anna", "Ben", "Carla"}) {
            MemoryKey& hive = *(users[name] = &w.windows.add_profile(name));
            hive[key::desktop].set("Wallpaper", "C:\\" + name + ".bmp");
            hive[key::explorer].set("FixedLNK", 1).set("FixedLNKUrl", "C:\\Icons of " + name);
            hive[key::restrict_run].set("Gesamt", 1).set(" 0", name + ".EXE");
        }
        w.windows.registry.at(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows NT\\CurrentVersion")
            .set("RegisteredOrganization", "12 Schools");
    }
    Batch batch(Language language = english) {
        return Batch(w.windows.machine(), language, [] { return ""; });
    }
    std::string dump() const {
        std::string out;
        for (const auto& [name, hive] : users)
            out += name + "\n" + hive->dump();
        return out;
    }
};

TEST(Batch, DoesWhatAPersonDoesInTheWindow) {
    std::mt19937 random(3);
    for (int i = 0; i < 20; ++i) {
        RestrictionSet set = random_set(random);
        set.machine.organisation = "7 Dwarfs";  // in the file it comes to stand where the owner is read
        const std::string file = brl_text(set);
        School by_hand, in_batch;
        by_hand.w.windows.files.add_file("C:\\set.brl", file);
        for (const char* name : {"Ben", "Anna"}) {
            MainForm& window = by_hand.w.enter();
            by_hand.w.choose(name);
            by_hand.w.choosing_file("C:\\set.brl").click(window.mm11);
            by_hand.w.screen.act([&] { window.t810.set_text(by_hand.w.program->users.profile_base_path); });
            by_hand.w.apply();
        }
        Batch batch = in_batch.batch();
        EXPECT_EQ(batch.apply("Anna", file) + batch.apply("BEN", file), "");
        ASSERT_EQ(in_batch.dump(), by_hand.dump()) << file;
    }
}

TEST(Batch, LeavesOneUserOutOfTheTroubleOfAnother) {
    School school;
    auto& files = school.w.windows.files;
    (*school.users["Ben"])[key::restrict_run].set("Gesamt", "99999");
    const std::string ben = school.users["Ben"]->dump();
    for (const char* name : {"Held", "Gone", "Administrator"})
        school.w.windows.add_profile(name);
    files.fail("C:\\Documents and Settings\\Held\\NTUSER.DAT", permission_denied);
    (void)files.remove("C:\\Documents and Settings\\Gone\\NTUSER.DAT");
    RestrictionSet set;
    set.boxes.set(11, 1);

    std::string trouble;
    Batch batch(school.w.windows.machine(), english, [&] { return trouble; });
    EXPECT_THAT(batch.users(), ElementsAre("Administrator", "Anna", "Ben", "Carla", "Gone", "Held"));
    for (const auto& [name, outcome] : {std::pair{"Nobody", "there is no such user here"},
                                        {"..\\Anna", "there is no such user here"},
                                        {"", "there is no such user here"},
                                        {"administrator", "the user who is logged on cannot be restricted"},
                                        {"Ben", "run-time error 6: Overflow"},
                                        {"Held", "the file NTUSER.DAT is in use or locked"},
                                        {"Gone", "the file NTUSER.DAT is missing or empty"},
                                        {"Anna", ""},
                                        {"Carla", ""}}) {
        EXPECT_EQ(batch.apply(name, brl_text(set)), outcome) << name;
    }
    EXPECT_EQ(school.users["Ben"]->dump(), ben);
    EXPECT_THAT(school.users["Carla"]->dump(), HasSubstr("NoClose = dword 1"));
    EXPECT_THAT(school.users["Carla"]->dump(), HasSubstr("FixedLNKUrl = \"C:\\Icons of Carla\""));
    EXPECT_FALSE(school.w.windows.registry.is_mounted(*school.users["Ben"]));

    EXPECT_EQ(batch.apply("Anna", "other,file"), "the file is not a Brightlock Suite file");
    trouble = "the disk is full";
    EXPECT_EQ(batch.apply("Anna", brl_text(set)), "the changes could not be saved (the disk is full)");
    school.w.windows.processes.failing_tool = 1;
    EXPECT_EQ(school.batch(german).apply("Anna", brl_text(set)),
              "die Datei NTUSER.DAT konnte nicht geladen werden");
    (void)files.remove("C:\\Program Files\\Brightlock Suite\\regg.exe");
    EXPECT_EQ(school.batch(english).apply("Anna", brl_text(set)), "run-time error 53: File not found");
}

TEST(Batch, ShowsAUserInWords) {
    School school;
    RestrictionSet set;
    for (const int box : {11, 37, 41, 610})
        set.boxes.set(box, 1);
    set.boxes.set(12, 2);
    set.wallpaper = "C:\\\"a\".bmp";
    set.programs = {"BRITLOCK.EXE", "\xDC.EXE"};
    set.drives[19] = 1;
    set.hidden_applets[4] = set.hidden_applets[30] = true;
    Batch batch = school.batch();
    ASSERT_EQ(batch.apply("Anna", brl_text(set)), "");
    RestrictionSet read;
    ASSERT_EQ(batch.read("Anna", read), "");
    EXPECT_EQ(description_of("Anna", read, english),
              "Anna:\n"
              "  Disable ShutDown\n"
              "  Fix your Background-Picture: C:\\\n"
              "  Get Desktop-Icons from: C:\\Icons of Anna\n"
              "  Allow only these EXE-Files: BRITLOCK.EXE, \xDC.EXE\n"
              "  Disable Printer-Sharing Settings\n"
              "  Hidden in the Control Panel: Game Controllers, Printers and Faxes (2000/XP)\n"
              "  Hidden drives: T\n");
    EXPECT_EQ(description_of("Ben", {}, german), "Ben:\n  keine Einschr\xE4nkungen\n");
    set.wallpaper += "\r";
    EXPECT_EQ(json_of("Anna", set),
              "{\"user\": \"Anna\", \"ticked\": [\"c11\", \"c37\", \"c41\", \"c610\"], "
              "\"hidden_applets\": [\"JOY.CPL\", \"Drucker und Faxger\xE4te\"], "
              "\"programs\": [\"BRITLOCK.EXE\", \"\xDC.EXE\"], \"hidden_drives\": [\"T\"], "
              "\"wallpaper\": \"C:\\\\\\\"a\\\".bmp\\u000d\", \"icon_folder\": \"\"}\n");
}

}  // namespace
}  // namespace britlock

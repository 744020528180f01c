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
struct School : World {
    std::map<std::string, MemoryKey*> users;

    School() {
        for (const std::string name : {"Anna", "Ben", "Carla"}) {
            MemoryKey& hive = *(users[name] = &windows.add_profile(name));
            hive[key::desktop].set("Wallpaper", "C:\\" + name + ".bmp");
            hive[key::explorer].set("FixedLNK", 1).set("FixedLNKUrl", "C:\\Icons of " + name);
            hive[key::restrict_run].set("Gesamt", 1).set(" 0", name + ".EXE");
        }
        windows.registry.at(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows NT\\CurrentVersion")
            .set("RegisteredOrganization", "12 Schools");
    }
    Batch batch(Language of = english, std::string trouble = "") {
        return Batch(windows.machine(), of, [trouble] { return trouble; });
    }
    std::string dump() const {
        return users.at("Anna")->dump() + users.at("Ben")->dump() + users.at("Carla")->dump();
    }
};

TEST(Batch, DoesWhatAPersonDoesInTheWindow) {
    std::mt19937 random(3);
    for (int i = 0; i < 20; ++i) {
        RestrictionSet set = random_set(random);
        set.machine.organisation = "7 Dwarfs";  // in the file it comes to stand where the owner is read
        const std::string file = brl_text(set);
        School by_hand, in_batch;
        by_hand.windows.files.add_file("C:\\set.brl", file);
        for (const char* name : {"Ben", "Anna"}) {
            MainForm& window = by_hand.enter();
            by_hand.choose(name);
            by_hand.choosing_file("C:\\set.brl").click(window.mm11);
            window.t810.set_text(by_hand.program->users.profile_base_path);
            by_hand.apply();
        }
        Batch batch = in_batch.batch();
        EXPECT_EQ(batch.apply("Anna", file) + batch.apply("BEN", file), "");
        ASSERT_EQ(in_batch.dump(), by_hand.dump()) << file;
    }
}

TEST(Batch, LeavesOneUserOutOfTheTroubleOfAnother) {
    School school;
    auto& files = school.windows.files;
    (*school.users["Ben"])[key::restrict_run].set("Gesamt", "99999");
    const std::string ben = school.users["Ben"]->dump();
    for (const char* name : {"Held", "Gone", "Administrator"})
        school.windows.add_profile(name);
    files.fail("C:\\Documents and Settings\\Held\\NTUSER.DAT", permission_denied);
    (void)files.remove("C:\\Documents and Settings\\Gone\\NTUSER.DAT");
    RestrictionSet set;
    set.boxes.set(11, 1);
    const std::string file = brl_text(set);

    Batch batch = school.batch();
    EXPECT_THAT(batch.users(), ElementsAre("Administrator", "Anna", "Ben", "Carla", "Gone", "Held"));
    for (const auto& [name, outcome] : {std::pair{"", "there is no such user here"},
                                        {"administrator", "the user who is logged on cannot be restricted"},
                                        {"Ben", "run-time error 6: Overflow"},
                                        {"Held", "the file NTUSER.DAT is in use or locked"},
                                        {"Gone", "the file NTUSER.DAT is missing or empty"},
                                        {"Carla", ""}})
        EXPECT_EQ(batch.apply(name, file), outcome) << name;
    EXPECT_EQ(school.users["Ben"]->dump(), ben);
    EXPECT_THAT(school.users["Carla"]->dump(), HasSubstr("NoClose = dword 1"));
    EXPECT_THAT(school.users["Carla"]->dump(), HasSubstr("FixedLNKUrl = \"C:\\Icons of Carla\""));
    EXPECT_FALSE(school.windows.registry.is_mounted(*school.users["Ben"]));

    EXPECT_EQ(batch.apply("Anna", "other,file"), "the file is not a Brightlock Suite file");
    EXPECT_EQ(school.batch(english, "the disk is full").apply("Anna", file),
              "the changes could not be saved (the disk is full)");
    school.windows.processes.failing_tool = 1;
    EXPECT_EQ(school.batch(german).apply("Anna", file), "die Datei NTUSER.DAT konnte nicht geladen werden");
    (void)files.remove("C:\\Program Files\\Brightlock Suite\\regg.exe");
    EXPECT_EQ(batch.apply("Anna", file), "run-time error 53: File not found");
}

TEST(Batch, TellsAnythingInJson) {
    EXPECT_THAT(json_of("\\\"a\"\r", {}),
                testing::StartsWith("{\"user\": \"\\\\\\\"a\\\"\\u000d\", \"ticked\": [], "));
}

}  // namespace
}  // namespace britlock

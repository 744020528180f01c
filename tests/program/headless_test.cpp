#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/engine.h"
#include "machine/memory/memory_machine.h"
#include "toolkit/headless/headless_toolkit.h"
#include "users/hiver_mod.h"

namespace britlock {
namespace {

using namespace machine;

/// Engine and users need no window: a run over several users, none of whom inherits anything of another.
TEST(WithoutAWindow, EachUserIsRestrictedAloneAndAMissingOneIsAnOutcome) {
    MemoryMachine windows;
    const std::string profiles = *windows.system.profiles_folder + '\\';
    windows.files.add_file(boot_file, "[Options]\r\n");
    for (const char* user : {"Anna", "Ben"})
        windows.add_profile(user)["Control Panel\\Desktop"].set("Wallpaper", std::string(user) + ".bmp");
    toolkit::HeadlessToolkit screen;
    REGISTRY_MOD reg(windows.machine(), english);
    HIVER_MOD hives(windows.machine(), reg, [&] { screen.process_events(); });
    Engine engine(windows.machine(), reg);

    std::map<std::string, RestrictionSet> sets;
    const auto visit = [&](const std::string& user, const std::function<void(RestrictionSet&)>& change) {
        return hives.visit({user, hive_file_of(profiles, user)}, [&] {
            sets[user] = engine.read(target_of_reading(reg, user), engine.machine_texts());
            change(sets[user]);
            EXPECT_EQ(engine.write(target_of_writing(reg, user), sets[user]), Engine::Written::done);
        });
    };
    const auto restrict_anna = [](RestrictionSet& set) {
        set.boxes.set(37, 1);
        set.icon_folder = "C:\\Icons";
        set.programs.push_back("CALC.EXE");
    };
    EXPECT_EQ(visit("Anna", restrict_anna).result, HIVER_MOD::done);
    const auto nobody = visit("Nobody", restrict_anna);
    EXPECT_EQ(nobody.result, HIVER_MOD::failed);
    EXPECT_THAT(nobody.complaints, testing::ElementsAre(HIVER_MOD::Complaint::path_missing));
    EXPECT_EQ(visit("Ben", [](RestrictionSet&) {}).result, HIVER_MOD::done);

    EXPECT_EQ(sets["Anna"].wallpaper + sets["Ben"].wallpaper, "Anna.bmpBen.bmp");
    EXPECT_FALSE(sets["Ben"].ticked(37));
    EXPECT_EQ(sets["Ben"].icon_folder, "");
    EXPECT_EQ(sets["Ben"].programs, std::vector<std::string>{"BRITLOCK.EXE"});
    EXPECT_TRUE(screen.boxes.empty());
}

}  // namespace
}  // namespace britlock

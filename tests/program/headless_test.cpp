#include <gtest/gtest.h>

#include "engine/engine.h"
#include "machine/memory/memory_machine.h"
#include "toolkit/headless/headless_toolkit.h"
#include "users/hiver_mod.h"

using namespace britlock;

using namespace machine;

/// Engine and users need no window: a run over several users, none of whom inherits anything of another.
TEST(WithoutAWindow, EachUserIsRestrictedAloneAndAMissingOneIsAnOutcome) {
    MemoryMachine windows;
    windows.files.add_file(boot_file, "[Options]\r\n");
    for (const char* user : {"Anna", "Ben"})
        windows.add_profile(user)["Control Panel\\Desktop"].set("Wallpaper", std::string(user) + ".bmp");
    toolkit::HeadlessToolkit screen;
    REGISTRY_MOD reg(windows.machine(), english);
    HIVER_MOD hives(windows.machine(), reg, [&] { screen.process_events(); });
    Engine engine(windows.machine(), reg);
    std::map<std::string, RestrictionSet> sets;
    for (const std::string user : {"Anna", "Nobody", "Ben"}) {
        const auto outcome =
            hives.visit({user, hive_file_of(*windows.system.profiles_folder + '\\', user)}, [&] {
                RestrictionSet& set = sets[user] =
                    engine.read(target_of_reading(reg, user), engine.machine_texts());
                if (user == "Anna") set.programs.push_back("CALC.EXE");
                EXPECT_EQ(engine.write(target_of_writing(reg, user), set), Engine::Written::done);
            });
        EXPECT_EQ(outcome.result, user == "Nobody" ? HIVER_MOD::failed : HIVER_MOD::done);
        EXPECT_EQ(outcome.complaints.empty(), user != "Nobody");
    }
    EXPECT_EQ(sets["Anna"].wallpaper + sets["Ben"].wallpaper, "Anna.bmpBen.bmp");
    EXPECT_EQ(sets["Ben"].programs, std::vector<std::string>{"BRITLOCK.EXE"});
    EXPECT_TRUE(screen.boxes.empty());
}

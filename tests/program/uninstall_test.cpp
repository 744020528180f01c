#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/text.h"
#include "program/world.h"

namespace britlock {
namespace {

using namespace machine;
using namespace text::literals;
using testing::HasSubstr;
using testing::Not;
using toolkit::Answer;

constexpr const char* run_key = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const char* setup = "C:\\WINDOWS\\uninstall\\brightlock suite\\setup.exe";
constexpr const char* former_hive = "C:\\Program Files\\Brightlock Suite\\britlock.HIV";
constexpr const char* profiles_box = "Attention User Profiles - Read carefully !";

struct Installed : World {
    explicit Installed(const Version& version = versions::winxp) : World(version) {
        windows.registry.at(HKEY_LOCAL_MACHINE, run_key).set("BritlockTray", "tray").set("Other", "stays");
        windows.files.add_file(former_hive, "regf");
        windows.files.add_file(setup, "MZ");
    }
    std::string autostart() { return windows.registry.dump(HKEY_LOCAL_MACHINE, run_key); }
};

TEST(Uninstall, OnNTLoadsEveryHiveAndChangesNone) {
    Installed w;
    MemoryKey& anna = w.windows.add_profile("Anna");
    MemoryKey& admin = w.windows.add_profile("Administrator");
    anna[key::explorer].set("NoClose", 1);
    const std::string before = anna.dump();
    w.have_password();
    w.expecting("How to uninstall ?").start("/uninstall");
    EXPECT_TRUE(w.expecting("Uninstall ?", Answer::no).give_password("secret"));
    EXPECT_TRUE(w.window().shown()) << "a refusal leads to the main window";
    EXPECT_FALSE(w.program->reg.uninstall_running);
    EXPECT_TRUE(w.windows.files.exists(former_hive));

    EXPECT_FALSE(w.expecting("Uninstall ?", Answer::yes).click(w.window().mm132)) << "the process ends";
    EXPECT_EQ(anna.dump(), before);
    EXPECT_TRUE(w.windows.registry.is_mounted(anna)) << "until the restart";
    EXPECT_TRUE(w.windows.registry.is_mounted(admin)) << "the logged-on user is not refused";
    EXPECT_EQ(w.autostart(), " : Other = \"stays\"\n");
    EXPECT_FALSE(w.windows.files.exists(former_hive));
    EXPECT_EQ(w.last_command(), '"' + std::string(setup) + '"');
    EXPECT_THAT(w.windows.registry.dump(HKEY_LOCAL_MACHINE), HasSubstr("BRLCK"));

    // Whatever fails, it goes on; a set-up that is missing is told.
    w.enter();
    for (const char* file : {"C:\\Program Files\\Brightlock Suite\\regg.exe", setup})
        (void)w.windows.files.remove(file);
    EXPECT_FALSE(
        w.expecting("Uninstall ?", Answer::yes).expecting("Uninstall not found").click(w.window().mm132));
}

TEST(Uninstall, On9XLiftsTheRestrictionsOfTheRunningAccount) {
    Installed w(versions::win98);
    MainForm& window = w.enter();
    w.expecting("Brightlock Suite").click(window.mm21);
    for (auto* button : {&window.cmd22, &window.cmd_set})
        w.click(*button);
    const std::string restricted = w.windows.registry.dump(HKEY_CURRENT_USER), untouched = w.autostart();
    w.expecting("Uninstall ?", Answer::yes).expecting(profiles_box, Answer::no).click(window.mm132);
    EXPECT_FALSE(w.program->reg.uninstall_running);
    EXPECT_EQ(w.windows.registry.dump(HKEY_CURRENT_USER) + w.autostart(), restricted + untouched);
    EXPECT_THAT(w.told(), HasSubstr("on your PC.\n\nIn this case"));

    EXPECT_FALSE(
        w.expecting("Uninstall ?", Answer::yes).expecting(profiles_box, Answer::yes).click(window.mm132));
    EXPECT_THAT(w.windows.registry.dump(HKEY_CURRENT_USER, key::explorer), HasSubstr("NoDrives = dword 0"));
    w.enter();
    EXPECT_EQ(w.ticked(), " c61 c62 c96 A: C: D:") << "files, another key, and the program's own record";
    EXPECT_THAT(w.autostart(), Not(HasSubstr("BritlockTray")));
}

TEST(Uninstall, ARefusedWriteIsToldAndPassedOver) {
    Installed w(versions::win98);
    w.language = german;
    MainForm& window = w.enter();
    w.windows.registry.at(HKEY_CURRENT_USER, key::explorer).access = Access::read_only;
    EXPECT_FALSE(w.expecting("DE-Installieren ?", Answer::yes)
                     .expecting("Achtung Benutzer-Profile - bitte UNBEDINGT beachten !", Answer::yes)
                     .expecting(U"Kann Einschränkung nicht setzen..."_ansi)
                     .click(window.mm132));
    EXPECT_TRUE(w.told().ends_with(U"für den Benutzer Administrator"_ansi))
        << "the name's NUL cuts the rest off";
    EXPECT_THAT(w.autostart(), Not(HasSubstr("BritlockTray")));
    EXPECT_THAT(w.windows.registry.dump(HKEY_CURRENT_USER), Not(HasSubstr("NoDrives")));
}

}  // namespace
}  // namespace britlock

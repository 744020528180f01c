#include "program/world.h"
#include "ui/update_form.h"

namespace {

constexpr const char* run_key = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const char* setup = "C:\\WINDOWS\\uninstall\\brightlock suite\\setup.exe";
constexpr const char* former_hive = "C:\\Program Files\\Brightlock Suite\\britlock.HIV";
constexpr const char* profiles_box = "Attention User Profiles - Read carefully !";

/// A PC on which the set-up has been.
struct FromSetUp : World {
    explicit FromSetUp(const Version& version = versions::winxp) : World(version) {
        windows.registry.at(HKEY_LOCAL_MACHINE, run_key).set("BritlockTray", "tray").set("Other", "stays");
        windows.files.add_file(former_hive, "regf");
        windows.files.add_file(setup, "MZ");
    }
    std::string autostart() { return windows.registry.dump(HKEY_LOCAL_MACHINE, run_key); }
};

TEST(Uninstall, OnNTLoadsEveryHiveAndChangesNone) {
    FromSetUp w;
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
    FromSetUp w(versions::win98);
    MainForm& window = w.enter();
    w.expecting("Brightlock Suite").click(window.mm21);
    for (auto* button : {&window.cmd22, &window.cmd_set})
        w.click(*button);
    const std::string restricted = w.windows.registry.dump(HKEY_CURRENT_USER), untouched = w.autostart();
    w.expecting("Uninstall ?", Answer::yes).expecting(profiles_box, Answer::no).click(window.mm132);
    EXPECT_FALSE(w.program->reg.uninstall_running);
    EXPECT_EQ(w.windows.registry.dump(HKEY_CURRENT_USER) + w.autostart(), restricted + untouched);

    EXPECT_FALSE(
        w.expecting("Uninstall ?", Answer::yes).expecting(profiles_box, Answer::yes).click(window.mm132));
    EXPECT_THAT(w.windows.registry.dump(HKEY_CURRENT_USER, key::explorer), HasSubstr("NoDrives = dword 0"));
    w.enter();
    EXPECT_EQ(w.ticked(), " c61 c62 c96 A: C: D:") << "files, another key, and the program's own record";
    EXPECT_THAT(w.autostart(), Not(HasSubstr("BritlockTray")));
}

TEST(Uninstall, ARefusedWriteIsToldAndPassedOver) {
    FromSetUp w(versions::win98);
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

constexpr const char* version_page = "http://update.brightlock.invalid/update/brit.txt";
constexpr const char* installer_page = "http://update-de.brightlock.invalid/update/brlckup.exe";
constexpr const char* installer = "C:\\Program Files\\Brightlock Suite\\brlckup.exe";

struct OnlineUpdate : Test, World {
    Update& update = open();

    Update& open() {
        click(enter().mm55);
        return form<Update>();
    }
    void offer(const std::string& version, const std::string& file) {
        windows.internet.pages = {{version_page, version}, {installer_page, file}};
        click(update.cmd1);
    }
    std::string enabled() {
        std::string names;
        for (auto* button : {&update.cmd1, &update.cmd2, &update.cmd3, &update.cmd_abbruch})
            names += button->enabled() ? button->name() + " " : "";
        return names;
    }
};

TEST_F(OnlineUpdate, TellsEveryDifferenceAsANewerVersion) {
    expecting("Brightlock Suite").click(update.cmd1);
    EXPECT_EQ(told(), "ERROR: Unable to connect to the remote host");
    EXPECT_EQ(update.lbl4.text(), "1.0.0\r\n??? <check>");
    for (const std::string version : {"1.0.0", "0.9.9", "1.0.0\n", "1.0.0 ", ""}) {
        const bool same = version == "1.0.0";
        offer(version, "");
        EXPECT_EQ(update.lbl5.text(),
                  same ? "You own the latest version." : "A newer version is ready to be downloaded...");
        EXPECT_EQ(update.lbl4.text(), "1.0.0\r\n" + version);
        EXPECT_EQ(enabled(), same ? "cmd1 cmd3 cmd_abbruch " : "cmd1 cmd2 cmd3 cmd_abbruch ");
    }
    click(update.cmd3);
    EXPECT_EQ(program->loaded<Update>(), nullptr);

    language = german;
    Update& deutsch = open();
    EXPECT_EQ(deutsch.lbl4.text(), U"1.0.0\r\n??? <prüfen>"_ansi);
    windows.internet.pages["http://update-de.brightlock.invalid/update/brit.txt"] = "1.0.1";
    click(deutsch.cmd1);
    EXPECT_EQ(deutsch.lbl5.text(), "Eine neuere Version steht zum Download bereit.");
}

TEST_F(OnlineUpdate, FetchesTheInstallerStartsItAndEnds) {
    windows.files.add_file(installer, std::string(3000, 'o'));
    const std::string file(1450, 'n');
    offer("2.0.0", file);
    std::string seen;  // how many kilobytes, after each piece of 200 bytes and at the end
    screen.meanwhile = [&] {
        EXPECT_TRUE(update.lbl7.text().ends_with(" KB downgeloaded... Bitte warten..."));
        seen += update.lbl7.text()[0];
        EXPECT_EQ(enabled(), "cmd_abbruch ");
        EXPECT_EQ(update.lbl6.text(), "Downlad nach: C:\\Program Files\\Brightlock Suite\\BRLCKUP.EXE");
    };
    EXPECT_FALSE(click(update.cmd2)) << "the process ends";
    EXPECT_EQ(seen, "000001111");
    EXPECT_EQ(update.lbl7.text(), "1450 Byts wurden Downgeloadet     -  Fertig!");
    EXPECT_EQ(content(installer), file + std::string(1550, 'o')) << "a longer one keeps its tail";
    EXPECT_EQ(last_command(), '"' + std::string(installer) + '"');
    EXPECT_THAT(windows.internet.requests, ElementsAre(version_page, installer_page));
    EXPECT_EQ(windows.internet.open_bodies(), 0u);

    screen.meanwhile = nullptr;
    click(open().cmd1);
    windows.internet.pages.erase(installer_page);
    EXPECT_FALSE(expecting("Brightlock Suite").click(form<Update>().cmd2));
    EXPECT_EQ(told() + form<Update>().lbl7.text(), "Error 60 Byts wurden Downgeloadet     -  Fertig!");
}

TEST_F(OnlineUpdate, ACancelStopsThisDownloadOrTheNextOne) {
    offer("2.0.0", std::string(1000, 'n'));
    screen.meanwhile = [&] {
        if (content(installer).size() == 400) update.cmd_abbruch.click();
    };
    EXPECT_TRUE(expecting("Cancel !").click(update.cmd2));
    EXPECT_EQ(content(installer).size(), 600u) << "one chunk more, then the flag is looked at";
    EXPECT_EQ(update.lbl6.text() + update.lbl7.text(), "");
    EXPECT_EQ(enabled(), "cmd1 cmd2 cmd3 cmd_abbruch ");
    EXPECT_EQ(windows.internet.open_bodies(), 0u);

    screen.meanwhile = nullptr;
    windows.files.remove(installer);
    click(update.cmd_abbruch);
    EXPECT_TRUE(expecting("Cancel !").click(update.cmd2));
    EXPECT_EQ(content(installer).size(), 200u);
    EXPECT_FALSE(click(update.cmd2)) << "the flag is gone";
    EXPECT_EQ(content(installer).size(), 1000u);
}

TEST_F(OnlineUpdate, IsClosedByWhatCannotBeWrittenAndByThePersonAmidTheDownload) {
    offer("2.0.0", std::string(1000, 'n'));
    windows.files.fail(installer, path_access);
    EXPECT_TRUE(expecting("Error while connecting...").click(update.cmd2));
    EXPECT_EQ(program->loaded<Update>(), nullptr);
    EXPECT_EQ(windows.internet.open_bodies(), 0u);

    windows.files.fail(installer, no_error);
    Update& again = open();
    click(again.cmd1);
    screen.meanwhile = [&] { again.close_by_frame(); };
    screen.while_box = [&](const toolkit::Box&) { screen.meanwhile = nullptr; };
    EXPECT_TRUE(expecting("Cancel !").click(again.cmd2));
    EXPECT_EQ(program->loaded<Update>(), nullptr);
    EXPECT_EQ(content(installer).size(), 400u);
}

}  // namespace

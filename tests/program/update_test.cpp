#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/text.h"
#include "program/world.h"
#include "ui/update_form.h"

namespace britlock {
namespace {

using namespace machine;
using namespace text::literals;
using testing::ElementsAre;

constexpr const char* version_page = "http://update.brightlock.invalid/update/brit.txt";
constexpr const char* installer_page = "http://update-de.brightlock.invalid/update/brlckup.exe";
constexpr const char* installer = "C:\\Program Files\\Brightlock Suite\\brlckup.exe";

struct OnlineUpdate : testing::Test, World {
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

TEST_F(OnlineUpdate, ALostConnectionIsToldAndEndsTheFile) {
    offer("2.0.0", std::string(1000, 'n'));
    windows.internet.lost_after = 600;
    EXPECT_FALSE(expecting("Brightlock Suite").click(update.cmd2));
    EXPECT_EQ(told(), "Error 12030");
    EXPECT_EQ(update.lbl7.text(), "600 Byts wurden Downgeloadet     -  Fertig!");
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
}  // namespace britlock

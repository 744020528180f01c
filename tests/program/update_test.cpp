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
constexpr const char* german_version_page = "http://update-de.brightlock.invalid/update/brit.txt";
constexpr const char* installer_page = "http://update-de.brightlock.invalid/update/brlckup.exe";
constexpr const char* installer = "C:\\Program Files\\Brightlock Suite\\brlckup.exe";

struct OnlineUpdate : testing::Test {
    World w;
    Update* form = nullptr;

    void SetUp() override {
        MainForm& window = w.enter();
        w.click(window.mm55);
        form = w.program->loaded<Update>();
    }
    bool press(toolkit::Button& button) {
        return w.screen.act([&] { button.click(); });
    }
    void offer(const std::string& version, const std::string& file) {
        w.windows.internet.pages[version_page] = version;
        w.windows.internet.pages[installer_page] = file;
        press(form->cmd1);
    }
    std::string enabled() {
        std::string names;
        for (auto* button : {&form->cmd1, &form->cmd2, &form->cmd3, &form->cmd_abbruch})
            names += button->enabled() ? button->name() + " " : "";
        return names;
    }
};

TEST_F(OnlineUpdate, TellsEveryDifferenceAsANewerVersion) {
    w.screen.expect_box("Brightlock Suite");
    press(form->cmd1);
    EXPECT_EQ(w.told(), "ERROR: Unable to connect to the remote host");
    EXPECT_EQ(form->lbl4.text(), "1.0.0\r\n??? <check>");

    offer("1.0.0", "");
    EXPECT_EQ(form->lbl5.text(), "You own the latest version.");
    EXPECT_EQ(enabled(), "cmd1 cmd3 cmd_abbruch ");
    for (const char* other : {"0.9.9", "1.0.0\n", "1.0.0 ", ""}) {
        offer(other, "");
        EXPECT_EQ(form->lbl5.text(), "A newer version is ready to be downloaded...") << other;
        EXPECT_EQ(form->lbl4.text(), std::string("1.0.0\r\n") + other);
        EXPECT_EQ(enabled(), "cmd1 cmd2 cmd3 cmd_abbruch ");
    }
    press(form->cmd3);
    EXPECT_EQ(w.program->loaded<Update>(), nullptr);
}

TEST_F(OnlineUpdate, FetchesTheInstallerStartsItAndEnds) {
    w.windows.files.add_file(installer, std::string(3000, 'o'));
    const std::string file(1450, 'n');
    offer("2.0.0", file);
    std::vector<std::string> seen;
    w.screen.meanwhile = [&] {
        seen.push_back(form->lbl7.text());
        EXPECT_EQ(enabled(), "cmd_abbruch ");
        EXPECT_EQ(form->lbl6.text(), "Downlad nach: C:\\Program Files\\Brightlock Suite\\BRLCKUP.EXE");
    };
    EXPECT_FALSE(press(form->cmd2)) << "the process ends";
    EXPECT_EQ(seen.size(), 9u);
    EXPECT_EQ(seen[4], "0 KB downgeloaded... Bitte warten...");
    EXPECT_EQ(seen[7], "1 KB downgeloaded... Bitte warten...");
    EXPECT_EQ(form->lbl7.text(), "1450 Byts wurden Downgeloadet     -  Fertig!");
    EXPECT_EQ(w.content(installer), file + std::string(1550, 'o')) << "a longer one keeps its tail";
    EXPECT_EQ(w.windows.processes.started.back().command_line, '"' + std::string(installer) + '"');
    EXPECT_THAT(w.windows.internet.requests, ElementsAre(version_page, installer_page));
    EXPECT_EQ(w.windows.internet.open_bodies(), 0u);
}

TEST_F(OnlineUpdate, ACancelStopsThisDownloadOrTheNextOne) {
    offer("2.0.0", std::string(1000, 'n'));
    w.screen.meanwhile = [&] {
        if (w.content(installer).size() == 400) form->cmd_abbruch.click();
    };
    w.screen.expect_box("Cancel !");
    EXPECT_TRUE(press(form->cmd2));
    EXPECT_EQ(w.content(installer).size(), 600u) << "one chunk more, then the flag is looked at";
    EXPECT_EQ(form->lbl6.text() + form->lbl7.text(), "");
    EXPECT_EQ(enabled(), "cmd1 cmd2 cmd3 cmd_abbruch ");
    EXPECT_EQ(w.windows.internet.open_bodies(), 0u);

    w.screen.meanwhile = nullptr;
    w.windows.files.remove(installer);
    press(form->cmd_abbruch);
    w.screen.expect_box("Cancel !");
    EXPECT_TRUE(press(form->cmd2));
    EXPECT_EQ(w.content(installer).size(), 200u);
    EXPECT_FALSE(press(form->cmd2)) << "the flag is gone";
    EXPECT_EQ(w.content(installer).size(), 1000u);
}

TEST_F(OnlineUpdate, ALostConnectionIsToldAndEndsTheFile) {
    offer("2.0.0", std::string(1000, 'n'));
    w.windows.internet.lost_after = 600;
    w.screen.expect_box("Brightlock Suite");
    EXPECT_FALSE(press(form->cmd2));
    EXPECT_EQ(w.told(), "Error 12030");
    EXPECT_EQ(form->lbl7.text(), "600 Byts wurden Downgeloadet     -  Fertig!");
}

TEST_F(OnlineUpdate, WhatCannotBeWrittenClosesTheForm) {
    offer("2.0.0", "new");
    w.windows.files.fail(installer, path_access);
    w.screen.expect_box("Error while connecting...");
    EXPECT_TRUE(press(form->cmd2));
    EXPECT_EQ(w.program->loaded<Update>(), nullptr);
    EXPECT_EQ(w.windows.internet.open_bodies(), 0u);
}

TEST_F(OnlineUpdate, ClosingTheWindowCancelsTheDownload) {
    offer("2.0.0", std::string(1000, 'n'));
    w.screen.meanwhile = [&] { w.program->forms.loaded("Update")->close_by_frame(); };
    w.screen.expect_box("Cancel !");
    w.screen.while_box = [&](const toolkit::Box&) { w.screen.meanwhile = nullptr; };
    EXPECT_TRUE(w.screen.act([&] { form->cmd2.click(); }));
    EXPECT_EQ(w.program->loaded<Update>(), nullptr);
    EXPECT_EQ(w.content(installer).size(), 400u);
}

TEST(OnlineUpdateInGerman, AsksTheGermanHost) {
    World w(versions::winxp, german);
    w.windows.internet.pages[german_version_page] = "1.0.1";
    w.click(w.enter().mm55);
    Update& form = *w.program->loaded<Update>();
    EXPECT_EQ(form.lbl4.text(), U"1.0.0\r\n??? <prüfen>"_ansi);
    w.screen.act([&] { form.cmd1.click(); });
    EXPECT_EQ(form.lbl5.text(), "Eine neuere Version steht zum Download bereit.");
}

}  // namespace
}  // namespace britlock

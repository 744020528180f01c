#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "program/world.h"

namespace britlock {
namespace {

using namespace machine;
using testing::HasSubstr;

TEST(Startup, WithoutAPasswordLeadsToSetpassAndOnToMain) {
    World w;
    w.screen.expect_box("Set a Password !");
    ASSERT_TRUE(w.start());
    EXPECT_EQ(w.program->loaded<getpass>(), nullptr);
    setpass& form = *w.program->loaded<setpass>();
    EXPECT_EQ(form.caption(), "Set New Password");

    struct Try {
        const char* first;
        const char* second;
        const char* box;
    };
    for (const Try& t : {Try{"abc", "abd", "Sorry..."}, Try{"1234", "1234", "Sorry..."},
                         Try{"1234567890123456", "1234567890123456", "Sorry..."}}) {
        w.screen.expect_box(t.box);
        w.screen.act([&] {
            form.txt_newpw.type(t.first);
            form.txt_wdh.type(t.second);
            form.cmd_ok.click();
        });
        EXPECT_EQ(form.txt_newpw.text(), "");
        EXPECT_EQ(form.txt_wdh.text(), "");
        EXPECT_EQ(w.screen.focus(), &form.txt_newpw);
    }
    EXPECT_THAT(w.screen.boxes[1].text, HasSubstr("not the same"))
        << "the repetition is looked at before the length";
    EXPECT_THAT(w.screen.boxes[2].text, HasSubstr("5 or more"));
    EXPECT_EQ(w.screen.boxes[2].text, w.screen.boxes[3].text);

    // Each character meets its own digit of the key: five bytes 0, which must come back from the registry.
    w.screen.expect_box("Password...");
    w.screen.act([&] {
        form.txt_newpw.type("73927");
        form.txt_wdh.type("73927");
        form.cmd_ok.click();
    });
    EXPECT_EQ(w.program->loaded<setpass>(), nullptr);
    EXPECT_TRUE(w.window().shown());

    ASSERT_TRUE(w.start());
    getpass& prompt = *w.program->loaded<getpass>();
    for (const char* wrong : {"", "7392", "73928"}) {
        w.screen.expect_box("Incorrect Password...");
        w.screen.act([&] {
            prompt.txt_pw.type(wrong);
            prompt.cmd_ok.press_by_key();
        });
        EXPECT_EQ(prompt.txt_pw.text(), "");
    }
    w.screen.act([&] {
        prompt.txt_pw.type("73927");
        prompt.cmd_ok.press_by_key();
    });
    EXPECT_TRUE(w.window().shown());
}

TEST(Startup, APasswordOfFiveToFifteenLettersIsStoredByTheKeysDigits) {
    struct Row {
        const char* password;
        const char* stored;
    };
    for (const Row& row : {Row{"Hello", "\x7FVU^X"}, Row{"correct-horse15", "T\\K@RPM\x1F_\\KAR\x02\f"}}) {
        World w;
        w.screen.expect_box("Set a Password !");
        w.start();
        w.screen.expect_box("Password...");
        ASSERT_TRUE(w.set_password(row.password));
        EXPECT_EQ(w.windows.registry.at(HKEY_LOCAL_MACHINE, product::key).values["UserPW"],
                  text_value(row.stored))
            << row.password;
    }
}

TEST(Startup, CancellingTheFirstPasswordOpensMainAndAsksAgainNextTime) {
    World w;
    for (int run = 0; run < 2; ++run) {
        w.screen.expect_box("Set a Password !");
        w.start();
        w.screen.act([&] { w.program->loaded<setpass>()->cmd_abbrechen.press_by_key(); });
        EXPECT_TRUE(w.window().shown());
        EXPECT_EQ(w.screen.forms().size(), 1u);
    }
}

TEST(Startup, APasswordThatCannotBeStoredIsReportedAsSavedAllTheSame) {
    World w;
    w.windows.registry.at(HKEY_LOCAL_MACHINE, product::key).access = Access::read_only;
    w.screen.expect_box("Set a Password !");
    w.start();
    w.screen.expect_box("Password...");
    w.screen.act([&] {
        w.program->loaded<setpass>()->txt_newpw.type("abcde");
        w.program->loaded<setpass>()->txt_wdh.type("abcde");
        w.program->loaded<setpass>()->cmd_ok.click();
    });
    w.screen.expect_box("Set a Password !");
    w.start();
}

TEST(Startup, UninstallAsksForThePasswordAsUsualAndRegistersItsCommandWhereTheKeyIs) {
    const std::string key = R"(Software\Microsoft\Windows\CurrentVersion\Uninstall\Brightlock Suite)";
    World w;
    w.screen.expect_box("How to uninstall ?");
    w.screen.expect_box("Set a Password !");
    w.start("/uninstall");
    EXPECT_EQ(w.windows.registry.dump(HKEY_LOCAL_MACHINE, key), "(missing)");

    w.windows.registry.at(HKEY_LOCAL_MACHINE, key);
    w.enter();
    EXPECT_THAT(
        w.windows.registry.dump(HKEY_LOCAL_MACHINE, key),
        HasSubstr(R"(UninstallString = ""C:\Program Files\Brightlock Suite\britlock.exe" /uninstall")"));
}

TEST(Startup, AMissingOrEmptyHiveToolEndsTheProcess) {
    for (const bool empty : {false, true}) {
        World w;
        (void)w.windows.files.remove("C:\\Program Files\\Brightlock Suite\\regg.exe");
        if (empty) w.windows.files.add_file("C:\\Program Files\\Brightlock Suite\\regg.exe", "");
        w.screen.expect_box("Required files are missing. Run Setup again !");
        EXPECT_FALSE(w.start());
        EXPECT_FALSE(w.windows.files.exists("C:\\Program Files\\Brightlock Suite\\regg.exe"));
    }
}

struct TokenCase {
    const char* what;
    Version version;
    std::optional<std::vector<std::string>> groups;
    bool warned;
    bool survives;
};

TEST(Startup, WarnsWhoIsNoAdministratorOnTheNtFamilyOnly) {
    const std::string admin = "S-1-5-32-544", other = "S-1-5-32-545";
    const std::vector<std::string> twenty(20, other);
    auto with_admin_after = [&](size_t others) {
        std::vector<std::string> groups(others, other);
        groups.push_back(admin);
        return groups;
    };
    for (const TokenCase& c :
         {TokenCase{"no token", versions::winxp, std::nullopt, true, true},
          TokenCase{"a user", versions::win2k, {{other}}, true, true},
          TokenCase{"20 groups without", versions::winnt, twenty, true, true},
          TokenCase{"21st of 21", versions::winxp, with_admin_after(20), false, true},
          TokenCase{"22nd of 22 lies beyond the table", versions::winxp, with_admin_after(21), false, false},
          TokenCase{"Windows 98", versions::win98, std::nullopt, false, true}}) {
        SCOPED_TRACE(c.what);
        World w(c.version);
        w.windows.registry.at(HKEY_LOCAL_MACHINE, product::key).set("UserPW", "x");
        w.windows.system.groups = c.groups;
        if (c.warned) w.screen.expect_box("Admin privileges required !");
        if (!c.survives) w.screen.expect_box("Brightlock Suite");
        EXPECT_EQ(w.start(), c.survives);
        if (c.survives) continue;
        EXPECT_THAT(w.screen.boxes.back().text, HasSubstr("Run-time error '9'"));
    }
}

TEST(Startup, OnlyTheExactWordStartsTheIconRun) {
    World w;
    auto& policies = w.windows.registry.at(HKEY_CURRENT_USER, key::explorer);
    auto& folders = w.windows.registry.at(
        HKEY_CURRENT_USER, R"(Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders)");
    folders.set("Desktop", "C:\\Documents and Settings\\Anna\\Desktop");
    policies.set("FixedLNKUrl", "C:\\Icons");
    w.windows.files.add_file("C:\\Icons\\one.lnk", "new");
    w.windows.files.add_file("C:\\Documents and Settings\\Anna\\Desktop\\one.lnk", "old");
    w.windows.files.add_file("C:\\Documents and Settings\\Anna\\Desktop\\own.txt", "kept");
    auto one_lnk = [&] {
        std::string bytes;
        (void)w.windows.files.read("C:\\Documents and Settings\\Anna\\Desktop\\one.lnk", bytes);
        return bytes;
    };

    EXPECT_FALSE(w.start("/icon")) << "without FixedLNK nothing happens";
    EXPECT_EQ(one_lnk(), "old");
    policies.set("FixedLNK", 1);
    for (const char* ordinary : {"/ICON", "/icon x", " /icon"}) {
        w.screen.expect_box("Set a Password !");
        EXPECT_TRUE(w.start(ordinary));
    }
    EXPECT_EQ(one_lnk(), "old");

    w.windows.journal.clear();
    EXPECT_FALSE(w.start("/icon"));
    EXPECT_FALSE(w.windows.files.exists("C:\\Icons")) << "who may delete the source has lost it";
    EXPECT_EQ(one_lnk(), "old");
    EXPECT_EQ(w.windows.journal.text(), "") << "no key, no password, no uninstall command is touched";
    EXPECT_FALSE(w.start("/icon")) << "and every later logon finds no folder, without a word";
    EXPECT_TRUE(w.windows.files.exists("C:\\Documents and Settings\\Anna\\Desktop\\own.txt"));
}

TEST(Startup, AnIconFolderThatCannotBeDeletedIsCopied) {
    World w;
    w.windows.registry.at(HKEY_CURRENT_USER, key::explorer)
        .set("FixedLNK", 1)
        .set("FixedLNKUrl", "C:\\Program Files");
    w.windows.registry
        .at(HKEY_CURRENT_USER, R"(Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders)")
        .set("Desktop", "C:\\Desk");
    w.windows.files.add_file("C:\\Program Files\\one.lnk", "new");
    w.windows.files.add_file("C:\\Desk\\ONE.LNK", "old");
    EXPECT_FALSE(w.start("/icon"));
    std::string bytes;
    ASSERT_EQ(w.windows.files.read("C:\\Desk\\one.lnk", bytes), no_error);
    EXPECT_EQ(bytes, "new");
    EXPECT_TRUE(w.windows.files.exists("C:\\Program Files\\one.lnk"));
}

TEST(Startup, SpeaksGerman) {
    World w(versions::winxp, german);
    w.screen.expect_box("Kennwort festlegen...");
    w.start();
    EXPECT_EQ(w.program->loaded<setpass>()->caption(), "Neues Kennwort festlegen");
    MainForm& window = w.enter();
    EXPECT_EQ(window.cmd_set.text(), "&Setzen");
    EXPECT_EQ(window.tab.captions()[8], "&9.)");
    EXPECT_EQ(window.StatusBar.panels()[1].width, 3200);
    w.screen.act([&] { window.Timer1.tick(); });
    EXPECT_EQ(window.StatusBar.panel_text(5), "12:34:56");
}

TEST(Startup, ClosingTheWindowsEndsTheProcess) {
    World w;
    MainForm& window = w.enter();
    EXPECT_FALSE(w.screen.act([&] { window.close_by_frame(); }));

    World prompt;
    prompt.windows.registry.at(HKEY_LOCAL_MACHINE, product::key).set("UserPW", "x");
    prompt.start();
    EXPECT_FALSE(prompt.screen.act([&] { prompt.program->loaded<getpass>()->close_by_frame(); }))
        << "no form is left";
}

}  // namespace
}  // namespace britlock

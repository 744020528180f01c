#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "program/world.h"

namespace britlock {
namespace {

using namespace machine;
using testing::HasSubstr;

const std::string tool = "C:\\Program Files\\Brightlock Suite\\regg.exe";

TEST(Startup, AsksForANewPasswordUntilOneIsSet) {
    World w;
    for (int run = 0; run < 2; ++run) {
        w.expecting("Set a Password !").start();
        w.screen.act([&] { w.program->loaded<setpass>()->cmd_abbrechen.press_by_key(); });
        EXPECT_TRUE(w.window().shown());
        EXPECT_EQ(w.screen.forms().size(), 1u);
    }
    w.expecting("Set a Password !").start();
    EXPECT_EQ(w.program->loaded<getpass>(), nullptr);
    setpass& form = *w.program->loaded<setpass>();
    const char* const tries[][3] = {{"abc", "abd", "not the same"},  // looked at before the length
                                    {"1234", "1234", "5 or more"},
                                    {"1234567890123456", "1234567890123456", "5 or more"}};
    for (const auto& row : tries) {
        w.screen.expect_box("Sorry...");
        w.screen.act([&] {
            form.txt_newpw.type(row[0]);
            form.txt_wdh.type(row[1]);
            form.cmd_ok.click();
        });
        EXPECT_THAT(w.told(), HasSubstr(row[2]));
        EXPECT_EQ(form.txt_newpw.text() + form.txt_wdh.text(), "");
        EXPECT_EQ(w.screen.focus(), &form.txt_newpw);
    }
    // Each character meets its own digit of the key: five bytes 0, which must come back from the registry.
    w.expecting("Password...").set_password("73927");
    EXPECT_EQ(w.program->loaded<setpass>(), nullptr);
    EXPECT_TRUE(w.window().shown());

    w.start();
    for (const char* wrong : {"", "7392", "73928"}) {
        w.expecting("Incorrect Password...").give_password(wrong);
        EXPECT_EQ(w.program->loaded<getpass>()->txt_pw.text(), "");
    }
    w.give_password("73927");
    EXPECT_TRUE(w.window().shown());
}

TEST(Startup, APasswordIsStoredByTheKeysDigitsOrReportedAsSavedAllTheSame) {
    for (const auto& [password, stored] :
         {std::pair{"Hello", "\x7FVU^X"}, {"correct-horse15", "T\\K@RPM\x1F_\\KAR\x02\f"}, {"abcde", ""}}) {
        World w;
        auto& product = w.windows.registry.at(HKEY_LOCAL_MACHINE, product::key);
        if (!*stored) product.access = Access::read_only;
        w.expecting("Set a Password !").start();
        w.expecting("Password...").set_password(password);
        EXPECT_EQ(product.values["UserPW"], *stored ? text_value(stored) : RawValue{}) << password;
    }
}

TEST(Startup, RegistersTheUninstallCommandWhereTheKeyIs) {
    const std::string key = R"(Software\Microsoft\Windows\CurrentVersion\Uninstall\Brightlock Suite)";
    World w;
    w.enter();
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
        (void)w.windows.files.remove(tool);
        if (empty) w.windows.files.add_file(tool, "");
        EXPECT_FALSE(w.expecting("Required files are missing. Run Setup again !").start());
        EXPECT_FALSE(w.windows.files.exists(tool));
    }
}

TEST(Startup, WarnsWhoIsNoAdministratorOnTheNtFamilyOnly) {
    struct Case {
        Version version;
        std::optional<std::vector<std::string>> groups;
        const char* box;
    };
    const auto with_admin_after = [](size_t others) {
        std::vector<std::string> groups(others, "S-1-5-32-545");
        groups.push_back("S-1-5-32-544");
        return groups;
    };
    const char* const warning = "Admin privileges required !";
    const char* const error = "Brightlock Suite";  // run-time error 9, beyond the table of the groups
    const Case cases[] = {{versions::winxp, std::nullopt, warning},
                          {versions::win2k, {{"S-1-5-32-545"}}, warning},
                          {versions::winnt, std::vector<std::string>(20, "S-1-5-32-545"), warning},
                          {versions::winxp, with_admin_after(20), nullptr},
                          {versions::winxp, with_admin_after(21), error},
                          {versions::win98, std::nullopt, nullptr}};
    for (const Case& c : cases) {
        World w(c.version);
        w.have_password();
        w.windows.system.groups = c.groups;
        if (c.box) w.screen.expect_box(c.box);
        EXPECT_EQ(w.start(), c.box != error);
    }
}

struct IconRun : testing::Test {
    World w;
    MemoryKey& policies = w.windows.registry.at(HKEY_CURRENT_USER, key::explorer);

    void SetUp() override {
        w.have_password();
        w.windows.registry
            .at(HKEY_CURRENT_USER, R"(Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders)")
            .set("Desktop", "C:\\Desk");
        w.windows.files.add_file("C:\\Desk\\ONE.LNK", "old");
        w.windows.files.add_file("C:\\Desk\\own.txt", "kept");
    }
};

TEST_F(IconRun, IsStartedByTheExactWordOnly) {
    policies.set("FixedLNKUrl", "C:\\Icons");
    w.windows.files.add_file("C:\\Icons\\one.lnk", "new");
    EXPECT_FALSE(w.start("/icon")) << "without FixedLNK nothing happens";
    policies.set("FixedLNK", 1);
    for (const char* ordinary : {"/ICON", "/icon x", " /icon"})
        EXPECT_TRUE(w.start(ordinary));
    EXPECT_TRUE(w.windows.files.exists("C:\\Icons\\one.lnk"));

    w.windows.journal.clear();
    EXPECT_FALSE(w.start("/icon"));
    EXPECT_FALSE(w.windows.files.exists("C:\\Icons")) << "who may delete the source has lost it";
    EXPECT_EQ(w.content("C:\\Desk\\one.lnk"), "old");
    EXPECT_EQ(w.windows.journal.text(), "") << "no key, no password, no uninstall command is touched";
    EXPECT_FALSE(w.start("/icon")) << "and every later logon finds no folder, without a word";
    EXPECT_TRUE(w.windows.files.exists("C:\\Desk\\own.txt"));
}

TEST_F(IconRun, CopiesAFolderThatCannotBeDeleted) {
    policies.set("FixedLNK", 1).set("FixedLNKUrl", "C:\\Program Files");
    w.windows.files.add_file("C:\\Program Files\\one.lnk", "new");
    EXPECT_FALSE(w.start("/icon"));
    EXPECT_EQ(w.content("C:\\Desk\\one.lnk"), "new");
    EXPECT_TRUE(w.windows.files.exists("C:\\Program Files\\one.lnk"));
}

TEST(Startup, ClosingTheWindowsEndsTheProcess) {
    World w;
    MainForm& window = w.enter();
    EXPECT_FALSE(w.screen.act([&] { window.close_by_frame(); }));
    w.start();
    EXPECT_FALSE(w.screen.act([&] { w.program->loaded<getpass>()->close_by_frame(); })) << "no form is left";
}

}  // namespace
}  // namespace britlock

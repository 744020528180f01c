#include "program/world.h"

namespace britlock {
namespace {

struct Startup : Test, World {
    MemoryKey& product = windows.registry.at(HKEY_LOCAL_MACHINE, product::key);
};

TEST_F(Startup, AsksForANewPasswordUntilOneIsSet) {
    expecting("Set a Password !").start();
    click(form<setpass>().cmd_abbrechen);
    EXPECT_TRUE(window().shown());
    EXPECT_EQ(screen.forms().size(), 1u);

    expecting("Set a Password !").start();
    EXPECT_EQ(program->loaded<getpass>(), nullptr);
    setpass& asked = form<setpass>();
    for (const auto& [first, second, why] :
         {std::tuple{"abc", "abd", "not the same"},  // looked at before the length
          {"1234", "1234", "5 or more"},
          {"1234567890123456", "1234567890123456", "5 or more"}}) {
        type(asked.txt_newpw, first);
        type(asked.txt_wdh, second);
        expecting("Sorry...").click(asked.cmd_ok);
        EXPECT_THAT(told(), HasSubstr(why));
        EXPECT_EQ(asked.txt_newpw.text() + asked.txt_wdh.text(), "");
        EXPECT_EQ(screen.focus(), &asked.txt_newpw);
    }
    // Each character meets its own digit of the key: five bytes 0, which must come back from the registry.
    expecting("Password...").set_password("73927");
    EXPECT_EQ(program->loaded<setpass>(), nullptr);
    EXPECT_TRUE(window().shown());

    start();
    for (const char* wrong : {"", "7392", "73928"}) {
        expecting("Incorrect Password...").give_password(wrong);
        EXPECT_EQ(form<getpass>().txt_pw.text(), "");
    }
    give_password("73927");

    click(window().mm23);
    expecting("Password...").set_password("correct-horse15");
    const RawValue stored = text_value("T\\K@RPM\x1F_\\KAR\x02\f");
    EXPECT_EQ(product.values["UserPW"], stored);
    product.access = Access::read_only;
    click(window().mm23);
    expecting("Password...").set_password("abcde");
    EXPECT_EQ(product.values["UserPW"], stored) << "reported as saved all the same";
    EXPECT_FALSE(screen.act([&] { window().close_by_frame(); }));
    start();
    EXPECT_FALSE(screen.act([&] { form<getpass>().close_by_frame(); })) << "no form is left";
}

TEST_F(Startup, RegistersTheUninstallCommandAndWantsTheHiveTool) {
    const std::string key = R"(Software\Microsoft\Windows\CurrentVersion\Uninstall\Brightlock Suite)";
    enter();
    EXPECT_EQ(windows.registry.dump(HKEY_LOCAL_MACHINE, key), "(missing)");
    windows.registry.at(HKEY_LOCAL_MACHINE, key);
    enter();
    EXPECT_EQ(windows.registry.dump(HKEY_LOCAL_MACHINE, key),
              " : UninstallString = \"\"C:\\Program Files\\Brightlock Suite\\britlock.exe\" /uninstall\"\n");

    const std::string tool = "C:\\Program Files\\Brightlock Suite\\regg.exe";
    (void)windows.files.remove(tool);
    for (int times = 0; times < 2; ++times) {
        EXPECT_FALSE(expecting("Required files are missing. Run Setup again !").start());
        EXPECT_FALSE(windows.files.exists(tool));
        windows.files.add_file(tool, "");
    }
}

TEST_F(Startup, WarnsWhoIsNoAdministratorOnTheNtFamilyOnly) {
    const std::string user = "S-1-5-32-545", admin = "S-1-5-32-544";
    std::vector<std::string> many(20, user), within = many, beyond(21, user);
    within.push_back(admin);
    beyond.push_back(admin);
    const std::string warning = "Admin privileges required !", error = "Brightlock Suite";
    using Groups = std::optional<std::vector<std::string>>;
    for (const auto& [version, groups, box] :
         {std::tuple{versions::winxp, Groups(), warning},
          {versions::win2k, {{user}}, warning},
          {versions::winnt, many, warning},
          {versions::winxp, within, ""},
          {versions::winxp, beyond, error},  // 9, beyond the table of groups
          {versions::win98, Groups(), ""}}) {
        World w(version);
        w.have_password();
        w.windows.system.groups = groups;
        if (!box.empty()) w.expecting(box);
        EXPECT_EQ(w.start(), box != error);
    }
}

TEST_F(Startup, TheRunAtLogonIsStartedByTheExactWordAndBringsTheIcons) {
    have_password();
    auto& policies = windows.registry.at(HKEY_CURRENT_USER, key::explorer);
    windows.registry
        .at(HKEY_CURRENT_USER, R"(Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders)")
        .set("Desktop", "C:\\Desk");
    windows.files.add_file("C:\\Desk\\ONE.LNK", "old");
    windows.files.add_file("C:\\Desk\\own.txt", "kept");
    windows.files.add_file("C:\\Icons\\one.lnk", "new");
    windows.files.add_file("C:\\Program Files\\two.lnk", "new");
    policies.set("FixedLNKUrl", "C:\\Icons");
    EXPECT_FALSE(start("/icon")) << "without FixedLNK nothing happens";
    policies.set("FixedLNK", 1);
    for (const char* ordinary : {"/ICON", "/icon x", " /icon"})
        EXPECT_TRUE(start(ordinary));
    EXPECT_TRUE(windows.files.exists("C:\\Icons\\one.lnk"));

    windows.journal.clear();
    EXPECT_FALSE(start("/icon"));
    EXPECT_FALSE(windows.files.exists("C:\\Icons")) << "who may delete the source has lost it";
    EXPECT_EQ(content("C:\\Desk\\one.lnk"), "old");
    EXPECT_EQ(windows.journal.text(), "") << "no key, no password, no uninstall command is touched";
    EXPECT_FALSE(start("/icon")) << "and every later logon finds no folder, without a word";
    EXPECT_TRUE(windows.files.exists("C:\\Desk\\own.txt"));
    policies.set("FixedLNKUrl", "C:\\Program Files");  // which cannot be deleted
    EXPECT_FALSE(start("/icon"));
    EXPECT_EQ(content("C:\\Desk\\two.lnk") + content("C:\\Program Files\\two.lnk"), "newnew");
}

}  // namespace
}  // namespace britlock

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "e2e/installed.h"
#include "regf/bytes.h"
#include "regf/layout.h"

namespace britlock {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;
using Lines = std::multiset<std::string>;

/// The lines of a hive as another reader sees it: one for each key and each value. Empty where that reader is
/// missing.
Lines foreign_lines(const fs::path& hive) {
    Lines lines;
    std::istringstream in(regf::foreign_dump(hive.string()));
    for (std::string line; std::getline(in, line);)
        lines.insert(line);
    return lines;
}

Lines in_first_only(const Lines& first, const Lines& second) {
    Lines out;
    std::set_difference(first.begin(), first.end(), second.begin(), second.end(),
                        std::inserter(out, out.end()));
    return out;
}

/// How much of a hive its cells in use fill.
size_t bytes_in_use(const fs::path& hive) {
    const regf::Bytes bytes = regf::read_file(hive);
    const size_t end = regf::base_block_size + regf::get32(bytes, regf::base_block::bins_size);
    size_t used = 0, bin_end = regf::base_block_size;
    for (size_t at = bin_end; at < end;) {
        if (at == bin_end) {
            bin_end += regf::get32(bytes, at + regf::bin::size);
            at += regf::bin_header_size;
        }
        const auto size = static_cast<int32_t>(regf::get32(bytes, at));
        used += size < 0 ? static_cast<size_t>(-size) : 0;
        at += static_cast<size_t>(std::abs(size));
    }
    return used;
}

const fs::path made_hive = fs::path(MADE_HIVES) / "sound/xp-user.NTUSER.DAT";

/// A Windows XP with the hive of a user who has worked there for months: a made one, and that of a real user
/// where one is found.
struct Road : Installed, testing::TestWithParam<fs::path> {
    void SetUp() override {
        fs::copy_file(GetParam(), hive(), fs::copy_options::overwrite_existing);
        fs::permissions(hive(), fs::perms::owner_all);
    }
    void tick_the_set() {
        MainForm& window = person.window();
        for (auto* box : {&window.c11, &window.c16, &window.c90, &window.drive_boxes[3]})
            person.click(*box);
        person.click_applet(1);
        person.click_applet(31);
    }
};

std::vector<fs::path> each_hive() {
    std::vector<fs::path> hives{made_hive};
    if (const fs::path real = fs::path(REAL_HIVES) / "xp-user.NTUSER.DAT"; fs::exists(real))
        hives.push_back(real);
    return hives;
}

INSTANTIATE_TEST_SUITE_P(, Road, testing::ValuesIn(each_hive()),
                         [](const auto& hive) { return hive.param == made_hive ? "made" : "real"; });

const std::string policies = "/Software/Microsoft/Windows/CurrentVersion/Policies";

/// What an Apply of the set above writes: everything at zero but what is ticked.
Lines expected_lines() {
    Lines lines;
    const std::string zero = " 4 00000000", one = " 4 01000000", no = " 1 4e006f000000";
    const auto values = [&](const std::string& key, const std::string& data, const std::string& names) {
        std::istringstream words(names);
        for (std::string name; words >> name;)
            lines.insert("V " + key + " " + name + data);
    };
    const auto text = [](std::string_view letters) {
        std::string hex;
        for (const char c : letters)
            hex += {"0123456789abcdef"[c >> 4 & 15], "0123456789abcdef"[c & 15], '0', '0'};
        return " 1 " + hex + "0000";
    };
    const std::string explorer = policies + "/Explorer";
    values(explorer, one, "NoClose NoSetFolders NoSetTaskbar NoControlPanel ForceClassicControlPanel");
    values(explorer, zero,
           "NoLogOff NoRun NoFind NoHelp NoRecentDocsMenu NoFavoritesMenu NoCommonGroups NoChangeStartMenu "
           "NoDesktop NoNetHood NoStartBanner NoSaveSettings FixedWallpaper FixedLNK RestrictRun "
           "NoActiveDesktop ClassicShell NoViewContextMenu NoTrayContextMenu NoWindowsUpdate NoAddPrinter "
           "NoDeletePrinter");
    values(explorer, " 4 08000000", "NoDrives");
    values(policies + "/System", zero, "NoDispCpl DisableRegistryTools NoPwdPage DisableTaskMgr DisableCMD");
    values(policies + "/Network", zero,
           "NoNetSetup NoEntireNetwork NoWorkgroupContents NoFileSharingControl");
    values("/Software/Policies/Microsoft/Internet\\u0020Explorer/Restrictions", zero,
           "NoSelectDownloadDir NoBrowserContextMenu NoBrowserOptions NoViewSource NoFavorites NoFileNew "
           "NoFileOpen NoBrowserSaveAs NoPrinting NoBrowserClose");
    values("/Software/Policies/Microsoft/Windows/System", zero, "DisableCMD");
    // This key is in every real user's hive, so the registration data land in it, as numbers.
    values("/Software/Microsoft/Windows\\u0020NT/CurrentVersion", zero,
           "RegisteredOrganization RegisteredOwner");
    values("", zero, "NoPrintSharingControl");
    values("/Control\\u0020Panel/Sound", no, "Beep");
    values(explorer + "/Hide", zero, "A B C E F G H I J K L M N O P Q R S T U V W X Y Z");
    values(explorer + "/Hide", one, "D");
    // The user's own NCPA and ODBC were hidden before; the other two are new.
    values("/Control\\u0020Panel/don't\\u0020load", no,
           "APPWIZ.CPL ODBCCP32.CPL NCPA.CPL Drucker\\u0020und\\u0020Faxger\\u00e4te");
    values(explorer + "/DisallowCpl", text("APPWIZ.CPL"), "\\u00201");
    values(explorer + "/DisallowCpl", text("ODBCCP32.CPL"), "\\u00202");
    values(explorer + "/DisallowCpl", text("NCPA.CPL"), "\\u00203");
    values(explorer + "/DisallowCpl", text("Drucker und Faxger\xE4te"), "\\u00204");
    values(explorer + "/RestrictRun", text("BRITLOCK.EXE"), "\\u00200");
    values(explorer + "/RestrictRun", one, "Gesamt");
    return lines;
}

TEST_P(Road, FromTheFirstStartToTheChangedHive) {
    const auto before = foreign_lines(hive());
    ASSERT_FALSE(before.empty()) << "the other reader (python3-hivex) is needed";
    const fs::path software = windows.disk() / "WINDOWS/system32/config/software";
    const std::string software_before = bytes_of(software);
    enter();
    EXPECT_NE(bytes_of(software), software_before) << "the password is in it";
    const std::string untouched = bytes_of(hive());
    person.choose("Anna");
    EXPECT_EQ(bytes_of(hive()), untouched) << "choosing a user leaves the hive byte for byte";
    EXPECT_TRUE(person.window().lv1.rows()[26].checked) << "the user's own applets show";
    EXPECT_EQ(person.window().t31.text(), "C:\\WINDOWS\\web\\wallpaper\\Bliss.bmp");
    tick_the_set();
    person.apply();
    EXPECT_THAT(person.screen.boxes, testing::SizeIs(2)) << "no box but those of the password";

    const auto after = foreign_lines(hive());
    const Lines expected = expected_lines();
    // What the user's hive held already with the same data is no difference.
    const Lines wanted = in_first_only(expected, before);
    Lines come = in_first_only(after, before);
    EXPECT_THAT(in_first_only(wanted, come), IsEmpty()) << "is missing";
    std::erase_if(come, [&](const std::string& line) {
        return wanted.contains(line) || line.starts_with("K " + policies) ||
               line.starts_with("K /Software/Policies") || line == "K /Control\\u0020Panel/Sound";
    });
    EXPECT_THAT(come, IsEmpty()) << "nothing else is written";
    for (const std::string& line : in_first_only(before, after)) {
        // Replaced, or emptied with the key of the applets.
        const bool applets = line.starts_with("V /Control\\u0020Panel/don't\\u0020load ");
        const std::string name = line.substr(0, line.find(' ', line.find(' ', 2) + 1) + 1);
        const auto replaced = expected.lower_bound(name);
        EXPECT_TRUE(applets || (replaced != expected.end() && replaced->starts_with(name))) << line;
    }
    EXPECT_THAT(regf::validate(regf::read_file(hive())), IsEmpty());

    const MainForm& window = enter_again("Anna");
    for (auto* box : {&window.c11, &window.c16, &window.c31, &window.c90, &window.drive_boxes[3]})
        EXPECT_TRUE(box->ticked()) << box->name();
    EXPECT_FALSE(window.c12.ticked());
    for (const size_t row : {1, 17, 27, 31})
        EXPECT_TRUE(window.lv1.rows()[row - 1].checked) << row;
}

TEST_P(Road, NeedsNoMoreRoomForTheNextApplies) {
    enter();
    person.choose("Anna");
    tick_the_set();
    std::vector<size_t> used;
    for (int run = 0; run < 10; ++run) {
        person.click(person.window().c12);
        person.apply();
        used.push_back(bytes_in_use(hive()));
    }
    EXPECT_THAT(used, testing::Each(used.back()));
    EXPECT_FALSE(foreign_lines(hive()).empty());
}

/// With the small hives of the sample.
struct RoadOfTheSample : Installed, testing::Test {};

TEST_F(RoadOfTheSample, ASecondInstanceFindsTheHiveInUse) {
    enter();
    auto second = machine::OfflineMachine::open(windows.options);
    ASSERT_TRUE(second);
    Person other;
    other.start((*second)->machine());
    other.give_password("secret");
    const std::string before = bytes_of(hive());
    ASSERT_EQ(windows.load("Anna"), 0u);
    EXPECT_NE(REGISTRY_MOD(windows.machine(), english).reg_create_key(HKEY_USERS, "Anna\\Software"), 0);
    other.expecting("File in use...").choose("Anna");
    EXPECT_EQ(windows.unload("Anna"), 0u);
    other.choose("Anna");
    EXPECT_EQ(bytes_of(hive()), before);
    other.program.reset();
}

TEST_F(RoadOfTheSample, TheUninstallLeavesHivesMountedAndNothingLost) {
    enter();
    person.choose("Anna");
    person.click(person.window().c11);
    person.apply();
    const std::string restricted = bytes_of(hive());

    EXPECT_FALSE(person.expecting("Uninstall ?", toolkit::Answer::yes)
                     .expecting("Uninstall not found")
                     .click(person.window().mm132))
        << "the process ends";
    EXPECT_EQ(bytes_of(hive()), restricted);
    EXPECT_TRUE(windows.offline().mounts().find("Anna"));
    windows.offline().write_pending();

    EXPECT_TRUE(enter_again("Anna").c11.ticked());
    EXPECT_FALSE(windows.offline().mounts().find("Anna")) << "the next load cleans up";
    person.click(person.window().c11);
    person.apply();
    person.choose("Anna");
    EXPECT_FALSE(person.window().c11.ticked());
}

}  // namespace
}  // namespace britlock

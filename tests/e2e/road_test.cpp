#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "machine/offline_fixture.h"
#include "platform/product_setup.h"
#include "program/person.h"
#include "regf/bytes.h"
#include "regf/dump.h"
#include "regf/layout.h"

namespace britlock {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

/// The lines of a hive as another reader sees it: one for each key and each value. Empty where that reader is
/// missing.
std::multiset<std::string> foreign_lines(const fs::path& hive) {
    std::multiset<std::string> lines;
    std::istringstream in(regf::foreign_dump(hive.string()));
    for (std::string line; std::getline(in, line);)
        lines.insert(line);
    return lines;
}

std::vector<std::string> in_first_only(const std::multiset<std::string>& first,
                                       const std::multiset<std::string>& second) {
    std::vector<std::string> out;
    std::set_difference(first.begin(), first.end(), second.begin(), second.end(), std::back_inserter(out));
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

/// A Windows XP with the hive of a user who has worked there for months, and a drive D.
struct Road : testing::Test {
    OfflineFixture windows;
    Person person;

    void SetUp() override {
        fs::copy_file(users_hive(), windows.hive_of("Anna"), fs::copy_options::overwrite_existing);
        fs::permissions(windows.hive_of("Anna"), fs::perms::owner_all);
        fs::create_directories(windows.scratch() / "D");
        windows.options.drives['D'] = (windows.scratch() / "D").string();
        windows.open();
    }
    void TearDown() override { person.program.reset(); }
    virtual fs::path users_hive() const { return made_hive; }

    /// A first start: there is no password yet.
    void enter() {
        britlock::prepare_installation(windows.machine().registry);
        person.screen.expect_box("Set a Password !");
        person.start(windows.machine());
        person.screen.expect_box("Password...");
        person.set_password("secret");
    }
    void enter_again() {
        person.program.reset();
        windows.open();
        person.start(windows.machine());
        person.give_password("secret");
    }
    void tick_the_set() {
        MainForm& window = person.window();
        for (auto* box : {&window.c11, &window.c16, &window.c90, &window.drive_boxes[3]})
            person.click(*box);
        person.click_applet(1);
        person.click_applet(31);
    }
};

/// The same with the hive of a real user, where one is found.
struct RoadOfEachHive : Road, testing::WithParamInterface<fs::path> {
    fs::path users_hive() const override { return GetParam(); }
};

std::vector<fs::path> each_hive() {
    std::vector<fs::path> hives{made_hive};
    if (const fs::path real = fs::path(REAL_HIVES) / "xp-user.NTUSER.DAT"; fs::exists(real))
        hives.push_back(real);
    return hives;
}

INSTANTIATE_TEST_SUITE_P(, RoadOfEachHive, testing::ValuesIn(each_hive()),
                         [](const auto& hive) { return hive.param == made_hive ? "made" : "real"; });

constexpr const char* policies = "/Software/Microsoft/Windows/CurrentVersion/Policies";

/// What an Apply of the set above writes: everything at zero but what is ticked.
std::multiset<std::string> expected_lines() {
    std::multiset<std::string> lines;
    const std::string zero = " 4 00000000", one = " 4 01000000";
    auto values = [&](const std::string& key, std::initializer_list<const char*> names,
                      const std::string& data) {
        for (const char* name : names)
            lines.insert(std::string("V ").append(key).append(" ").append(name).append(data));
    };
    const std::string explorer = std::string(policies) + "/Explorer";
    values(explorer,
           {"NoClose", "NoSetFolders", "NoSetTaskbar", "NoControlPanel", "ForceClassicControlPanel"}, one);
    values(explorer,
           {"NoLogOff",
            "NoRun",
            "NoFind",
            "NoHelp",
            "NoRecentDocsMenu",
            "NoFavoritesMenu",
            "NoCommonGroups",
            "NoChangeStartMenu",
            "NoDesktop",
            "NoNetHood",
            "NoStartBanner",
            "NoSaveSettings",
            "FixedWallpaper",
            "FixedLNK",
            "RestrictRun",
            "NoActiveDesktop",
            "ClassicShell",
            "NoViewContextMenu",
            "NoTrayContextMenu",
            "NoWindowsUpdate",
            "NoAddPrinter",
            "NoDeletePrinter"},
           zero);
    values(explorer, {"NoDrives"}, " 4 08000000");
    values(std::string(policies) + "/System",
           {"NoDispCpl", "DisableRegistryTools", "NoPwdPage", "DisableTaskMgr", "DisableCMD"}, zero);
    values(std::string(policies) + "/Network",
           {"NoNetSetup", "NoEntireNetwork", "NoWorkgroupContents", "NoFileSharingControl"}, zero);
    values("/Software/Policies/Microsoft/Internet\\u0020Explorer/Restrictions",
           {"NoSelectDownloadDir", "NoBrowserContextMenu", "NoBrowserOptions", "NoViewSource", "NoFavorites",
            "NoFileNew", "NoFileOpen", "NoBrowserSaveAs", "NoPrinting", "NoBrowserClose"},
           zero);
    values("/Software/Policies/Microsoft/Windows/System", {"DisableCMD"}, zero);
    // This key is in every real user's hive, so the registration data land in it, as numbers.
    values("/Software/Microsoft/Windows\\u0020NT/CurrentVersion",
           {"RegisteredOrganization", "RegisteredOwner"}, zero);
    values("", {"NoPrintSharingControl"}, zero);
    values("/Control\\u0020Panel/Sound", {"Beep"}, " 1 4e006f000000");
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        values(explorer + "/Hide", {std::string(1, letter).c_str()}, letter == 'D' ? one : zero);
    }
    // The user's own NCPA and ODBC were hidden before; the other two are new.
    const std::string no = " 1 4e006f000000";
    values("/Control\\u0020Panel/don't\\u0020load",
           {"APPWIZ.CPL", "ODBCCP32.CPL", "NCPA.CPL", "Drucker\\u0020und\\u0020Faxger\\u00e4te"}, no);
    auto utf16 = [](std::string_view text) {
        std::string hex = " 1 ";
        for (char c : text)
            hex += std::string(1, "0123456789abcdef"[c >> 4 & 15]) + "0123456789abcdef"[c & 15] + "00";
        return hex + "0000";
    };
    const char* disallowed[] = {"APPWIZ.CPL", "ODBCCP32.CPL", "NCPA.CPL", "Drucker und Faxger\xE4te"};
    for (int i = 0; i < 4; ++i) {
        lines.insert("V " + explorer + "/DisallowCpl \\u0020" + std::to_string(i + 1) + utf16(disallowed[i]));
    }
    lines.insert("V " + explorer + "/RestrictRun \\u00200" + utf16("BRITLOCK.EXE"));
    values(explorer + "/RestrictRun", {"Gesamt"}, one);
    return lines;
}

TEST_P(RoadOfEachHive, FromTheFirstStartToTheChangedHive) {
    const fs::path hive = windows.hive_of("Anna");
    const auto before = foreign_lines(hive);
    ASSERT_FALSE(before.empty()) << "the other reader (python3-hivex) is needed";
    const std::string software_before = bytes_of(windows.disk() / "WINDOWS/system32/config/software");

    enter();
    EXPECT_NE(bytes_of(windows.disk() / "WINDOWS/system32/config/software"), software_before)
        << "the password is in it";
    const std::string untouched = bytes_of(hive);
    person.choose("Anna");
    EXPECT_EQ(bytes_of(hive), untouched) << "choosing a user leaves the hive byte for byte";
    EXPECT_TRUE(person.window().lv1.rows()[26].checked) << "the user's own applets show";
    EXPECT_EQ(person.window().t31.text(), "C:\\WINDOWS\\web\\wallpaper\\Bliss.bmp");
    tick_the_set();
    person.apply();
    EXPECT_THAT(person.screen.boxes, testing::SizeIs(2)) << "no box but those of the password";

    const auto after = foreign_lines(hive);
    const auto gone = in_first_only(before, after);
    const auto come = in_first_only(after, before);
    std::multiset<std::string> values, expected = expected_lines();
    std::vector<std::string> keys;
    for (const std::string& line : come) {
        if (line[0] == 'V') values.insert(line);
        if (line[0] == 'K') keys.push_back(line);
    }
    // What the user's hive held already with the same data is no difference.
    const auto wanted = in_first_only(expected, before);
    EXPECT_THAT(in_first_only(values, {wanted.begin(), wanted.end()}), IsEmpty())
        << "and nothing else is written";
    EXPECT_THAT(in_first_only({wanted.begin(), wanted.end()}, values), IsEmpty()) << "is missing";
    for (const std::string& key : keys) {
        const bool ours = key.starts_with("K " + std::string(policies)) ||
                          key.starts_with("K /Software/Policies") || key == "K /Control\\u0020Panel/Sound";
        EXPECT_TRUE(ours) << key;
    }
    for (const std::string& line : gone) {  // replaced, or emptied with the key of the applets
        const bool applets = line.starts_with("V /Control\\u0020Panel/don't\\u0020load ");
        const std::string name = line.substr(0, line.find(' ', line.find(' ', 2) + 1) + 1);
        const bool replaced = std::any_of(expected.begin(), expected.end(),
                                          [&](const std::string& e) { return e.starts_with(name); });
        EXPECT_TRUE(applets || replaced) << line;
    }
    EXPECT_THAT(
        regf::validate({reinterpret_cast<const uint8_t*>(bytes_of(hive).data()), bytes_of(hive).size()}),
        IsEmpty());

    enter_again();
    person.choose("Anna");
    MainForm& window = person.window();
    for (auto* box : {&window.c11, &window.c16, &window.c31, &window.c90, &window.drive_boxes[3]}) {
        EXPECT_TRUE(box->ticked()) << box->name();
    }
    EXPECT_FALSE(window.c12.ticked());
    for (const size_t row : {1, 17, 27, 31})
        EXPECT_TRUE(window.lv1.rows()[row - 1].checked) << row;
}

TEST_P(RoadOfEachHive, NeedsNoMoreRoomForTheNextApplies) {
    const fs::path hive = windows.hive_of("Anna");
    enter();
    person.choose("Anna");
    tick_the_set();
    std::vector<size_t> used;
    for (int run = 0; run < 10; ++run) {
        person.click(person.window().c12);
        person.apply();
        used.push_back(bytes_in_use(hive));
    }
    EXPECT_THAT(used, testing::Each(used.back()));
    EXPECT_FALSE(foreign_lines(hive).empty());
}

TEST_F(Road, ASecondInstanceFindsTheHiveInUse) {
    enter();
    Person other;
    machine::OfflineOptions options = windows.options;
    auto second = machine::OfflineMachine::open(options);
    ASSERT_TRUE(second);
    other.start((*second)->machine());
    other.give_password("secret");
    const std::string before = bytes_of(windows.hive_of("Anna"));
    ASSERT_EQ(windows.load("Anna"), 0u);
    machine::RawValue value;
    ASSERT_EQ(windows.machine()
                  .registry.query(HKEY_USERS, "Anna\\Control Panel\\Desktop", "Wallpaper", value)
                  .action,
              0u);
    other.screen.expect_box("File in use...");
    other.choose("Anna");
    EXPECT_EQ(windows.unload("Anna"), 0u);
    other.choose("Anna");
    EXPECT_EQ(bytes_of(windows.hive_of("Anna")), before);
    other.program.reset();
}

TEST_F(Road, TheUninstallLeavesHivesMountedAndNothingLost) {
    enter();
    person.choose("Anna");
    person.click(person.window().c11);
    person.apply();
    const std::string restricted = bytes_of(windows.hive_of("Anna"));

    person.screen.expect_box("Uninstall ?", toolkit::Answer::yes);
    person.screen.expect_box("Uninstall not found");
    EXPECT_FALSE(person.click(person.window().mm132)) << "the process ends";
    EXPECT_EQ(bytes_of(windows.hive_of("Anna")), restricted);
    EXPECT_TRUE(windows.offline().mounts().find("Anna"));
    windows.offline().write_pending();

    enter_again();
    person.choose("Anna");
    EXPECT_TRUE(person.window().c11.ticked());
    EXPECT_FALSE(windows.offline().mounts().find("Anna")) << "the next load cleans up";
    person.click(person.window().c11);
    person.apply();
    person.choose("Anna");
    EXPECT_FALSE(person.window().c11.ticked());
}

}  // namespace
}  // namespace britlock

#include "e2e/installed.h"
#include "hostfile/file_lock.h"
#include "program/world.h"

namespace {

using hostfile::FileLock;

/// A hive as text, what its keys and values are by their names.
using Dump = std::map<std::string, std::string>;

Dump dump_of(const std::string& text) {
    Dump dump;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const size_t name_end = line.starts_with("V ") ? line.find(' ', line.find(' ', 2) + 1) : line.size();
        dump[line.substr(0, name_end)] = line.substr(name_end);
    }
    return dump;
}

std::string text_of(const Dump& dump) {
    std::string text;
    for (const auto& [name, data] : dump)
        text += name + data + "\n";
    return text;
}

/// The same of a key in memory.
void add_dump(Dump& dump, const MemoryKey& key, const std::string& path = "") {
    const auto escaped = [](const std::string& name) { return regf::escaped(text::to_utf16(name)); };
    dump["K " + path];
    for (const auto& [name, value] : key.values) {
        std::string data;
        for (const char byte : value.data) {
            data += byte;
            if (value.type == reg_sz) data += '\0';  // UTF-16; no letter here is beyond Latin 1
        }
        dump["V " + path + " " + escaped(name)] =
            " " + std::to_string(value.type) + " " +
            regf::hex({reinterpret_cast<const uint8_t*>(data.data()), data.size()});
    }
    for (const auto& [name, below] : key.subkeys)
        add_dump(dump, *below, path + "/" + escaped(name));
}

const fs::path made_hive = fs::path(MADE_HIVES) / "sound/xp-user.NTUSER.DAT";
const fs::path real_hive = fs::path(REAL_HIVES) / "xp-user.NTUSER.DAT";

/// A Windows XP with the hive of a user who has worked there for months: a made one, and that of a real user
/// where one is found.
struct Road : Installed, TestWithParam<fs::path> {
    void SetUp() override {
        fs::copy_file(GetParam(), hive(), fs::copy_options::overwrite_existing);
        fs::permissions(hive(), fs::perms::owner_all);
    }
    Dump foreign_dump() { return dump_of(regf::foreign_dump(hive())); }
    static void tick_the_set(Person& person) {
        MainForm& window = person.window();
        for (auto* box : {&window.c11, &window.c16, &window.c90, &window.drive_boxes[3]})
            person.click(*box);
        person.click_applet(1);
        person.click_applet(31);
    }
};

INSTANTIATE_TEST_SUITE_P(, Road,
                         ValuesIn(fs::exists(real_hive) ? std::vector{made_hive, real_hive}
                                                        : std::vector{made_hive}),
                         [](const auto& hive) { return hive.param == made_hive ? "made" : "real"; });

/// What another reader finds in the user's hive must be what was there, and what the same marks leave in the
/// registry of a machine in memory.
TEST_P(Road, FromTheFirstStartToTheChangedHive) {
    const std::string applets = "V /Control\\u0020Panel/don't\\u0020load ";  // which are written anew
    Dump before = foreign_dump();
    ASSERT_FALSE(before.empty()) << "the other reader finds nothing";
    const fs::path software = windows.disk() / "WINDOWS/system32/config/software";
    const std::string software_before = bytes_of(software);
    enter();
    EXPECT_NE(bytes_of(software), software_before) << "the password is in it";
    const std::string untouched = bytes_of(hive());
    choose("Anna");
    EXPECT_EQ(bytes_of(hive()), untouched) << "choosing a user leaves the hive byte for byte";
    EXPECT_EQ(ticked(), " ODBCCP32.CPL NCPA.CPL") << "the user's own applets show";
    EXPECT_EQ(window().t31.text(), "C:\\WINDOWS\\web\\wallpaper\\Bliss.bmp");
    tick_the_set(*this);
    apply();
    EXPECT_THAT(screen.boxes, SizeIs(2)) << "no box but those of the password";

    WithAnna memory;
    // These keys are in every real user's hive.
    memory.anna()["Software\\Microsoft\\Windows NT\\CurrentVersion"];
    memory.anna()[key::dont_load].set("ODBCCP32.CPL", "No").set("NCPA.CPL", "No");
    memory.read();
    tick_the_set(memory);
    memory.apply();
    Dump wanted;
    add_dump(wanted, memory.anna());
    std::erase_if(before, [&](const auto& line) { return line.first.starts_with(applets); });
    wanted.merge(before);
    regf::expect_same(text_of(foreign_dump()), text_of(wanted), "the hive");
    EXPECT_THAT(regf::validate(regf::read_file(hive())), IsEmpty());

    enter_again("Anna");
    EXPECT_EQ(ticked(), " c11 c16 c31 c90 D: APPWIZ.CPL ODBCCP32.CPL NCPA.CPL Drucker und Faxger\xE4te");
}

TEST(RealHives, ARunTimeErrorAmidTheWritesLeavesThoseBeforeItOnTheDisk) {
    Installed w;
    w.enter();
    w.choose("Anna");
    w.click(w.window().c11);
    w.type(w.window().t81, "5000000000 AG");
    EXPECT_FALSE(w.expecting("Brightlock Suite").apply()) << "the process has ended";
    w.windows.offline().write_pending();
    EXPECT_TRUE(regf::validate(regf::read_file(w.hive())).empty());
    EXPECT_THAT(w.dump(), HasSubstr("NoClose 4 01000000"));
    EXPECT_TRUE(w.windows.offline().mounts().mounts()->empty());
    EXPECT_EQ(w.windows.troubles(), "");
}

/// Two instances that look at the hive tool or at a hive at the same moment, or that run the tool, must not
/// take each other for somebody who writes it.
TEST(RealHives, OnlyAFileThatSomebodyHoldsIsInUse) {
    Installed w;
    w.enter();
    const auto status = [&](const std::string& file) { return w.program->hiver.hive_file_status(file); };
    const auto look = must(FileLock::acquire(*hostfile::place_of(w.hive()), FileLock::Purpose::look));
    const auto other = must(FileLock::acquire(*hostfile::place_of(w.hive("Ben"))));
    EXPECT_EQ(status(w.windows.windows_hive_of("Anna")), HIVER_MOD::usable);
    EXPECT_EQ(status(w.windows.windows_hive_of("Ben")), HIVER_MOD::in_use);

    int looks = 0;
    w.screen.meanwhile = [&] {  // the tool runs
        ++looks;
        EXPECT_EQ(status("C:\\Program Files\\Brightlock Suite\\regg.exe"), HIVER_MOD::usable);
    };
    w.expecting("File in use...").choose("Ben");
    EXPECT_GT(looks, 0);
}

}  // namespace

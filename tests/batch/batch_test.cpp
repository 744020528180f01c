#include "batch/batch.h"

#include "app/linux/batch_command.h"
#include "batch/description.h"
#include "files/random_set.h"
#include "files/restriction_file.h"
#include "hostfile/file_lock.h"
#include "machine/offline_fixture.h"
#include "platform/product_setup.h"
#include "program/world.h"

namespace {

using Words = std::vector<std::string>;

/// A machine with users that are restricted already, each in another way.
struct School : World {
    std::map<std::string, MemoryKey*> users;

    School() {
        for (const std::string name : {"Anna", "Ben", "Carla"}) {
            MemoryKey& hive = *(users[name] = &windows.add_profile(name));
            hive[key::desktop].set("Wallpaper", "C:\\" + name + ".bmp");
            hive[key::explorer].set("FixedLNK", 1).set("FixedLNKUrl", "C:\\Icons of " + name);
            hive[key::restrict_run].set("Gesamt", 1).set(" 0", name + ".EXE");
        }
        windows.registry.at(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows NT\\CurrentVersion")
            .set("RegisteredOrganization", "12 Schools");
    }
    Batch batch(Language of = english, const std::string& trouble = "") {
        return Batch(windows.machine(), of, [trouble] { return trouble; });
    }
    std::string dump() const {
        return users.at("Anna")->dump() + users.at("Ben")->dump() + users.at("Carla")->dump();
    }
};

TEST(Batch, DoesWhatAPersonDoesInTheWindow) {
    std::mt19937 random(3);
    for (int i = 0; i < 20; ++i) {
        RestrictionSet set = random_set(random);
        set.machine.organisation = "7 Dwarfs";  // in the file it comes to stand where the owner is read
        const std::string file = brl_text(set);
        School by_hand, in_batch;
        by_hand.windows.files.add_file("C:\\set.brl", file);
        for (const char* name : {"Ben", "Anna"}) {
            MainForm& window = by_hand.enter();
            by_hand.choose(name);
            by_hand.choosing_file("C:\\set.brl").click(window.mm11);
            window.t810.set_text(by_hand.program->users.profile_base_path);
            by_hand.apply();
        }
        Batch batch = in_batch.batch();
        EXPECT_EQ(batch.apply("Anna", file) + batch.apply("BEN", file), "");
        ASSERT_EQ(in_batch.dump(), by_hand.dump()) << file;
    }
}

TEST(Batch, LeavesOneUserOutOfTheTroubleOfAnother) {
    School school;
    auto& files = school.windows.files;
    (*school.users["Ben"])[key::restrict_run].set("Gesamt", "99999");
    const std::string ben = school.users["Ben"]->dump();
    for (const char* name : {"Held", "Gone", "Administrator"})
        school.windows.add_profile(name);
    files.fail("C:\\Documents and Settings\\Held\\NTUSER.DAT", permission_denied);
    (void)files.remove("C:\\Documents and Settings\\Gone\\NTUSER.DAT");
    RestrictionSet set;
    set.boxes.set(11, 1);
    const std::string file = brl_text(set);

    Batch batch = school.batch();
    EXPECT_THAT(batch.users(), ElementsAre("Administrator", "Anna", "Ben", "Carla", "Gone", "Held"));
    for (const auto& [name, outcome] : {std::pair{"", "there is no such user here"},
                                        {"administrator", "the user who is logged on cannot be restricted"},
                                        {"Ben", "run-time error 6: Overflow"},
                                        {"Held", "the file NTUSER.DAT is in use or locked"},
                                        {"Gone", "the file NTUSER.DAT is missing or empty"},
                                        {"Carla", ""}})
        EXPECT_EQ(batch.apply(name, file), outcome) << name;
    EXPECT_EQ(school.users["Ben"]->dump(), ben);
    EXPECT_THAT(school.users["Carla"]->dump(), HasSubstr("NoClose = dword 1"));
    EXPECT_THAT(school.users["Carla"]->dump(), HasSubstr("FixedLNKUrl = \"C:\\Icons of Carla\""));
    EXPECT_FALSE(school.windows.registry.is_mounted(*school.users["Ben"]));

    EXPECT_EQ(batch.apply("Anna", "other,file"), "the file is not a Brightlock Suite file");
    EXPECT_EQ(school.batch(english, "the disk is full").apply("Anna", file),
              "the changes could not be saved (the disk is full)");
    school.windows.processes.failing_tool = 1;
    EXPECT_EQ(school.batch(german).apply("Anna", file), "die Datei NTUSER.DAT konnte nicht geladen werden");
    (void)files.remove("C:\\Program Files\\Brightlock Suite\\regg.exe");
    EXPECT_EQ(batch.apply("Anna", file), "run-time error 53: File not found");
}

struct Answer {
    int code;
    std::string out;
    std::string err;
};

/// A school's Windows: four more users, each with the hive of Anna.
struct BatchCommand : Test {
    OfflineFixture windows;
    Language language = english;
    const std::string file = windows.scratch() / "set.brl";
    const Words to_all = {"apply", file, "--all-users"};
    std::string password = "s\u00E4cret\n";  ///< as it is typed

    void SetUp() override {
        prepare_installation(windows.machine().registry);
        set_password("s\344cret");
        for (const char* user : {"pupil1", "pupil2", "pupil3", "pupil4"}) {
            fs::create_directories(windows.hive_of(user).parent_path());
            fs::copy_file(windows.hive_of("Anna"), windows.hive_of(user));
        }
        RestrictionSet set;
        for (const int box : {11, 37, 41, 610})
            set.boxes.set(box, 1);
        set.boxes.set(12, 2);
        set.hidden_applets[4] = set.hidden_applets[30] = true;
        set.programs = {"BRITLOCK.EXE", "\xDC.EXE"};
        set.drives['T' - 'A'] = 1;
        set.wallpaper = "C:\\x.bmp";
        write_bytes(file, brl_text(set));
    }

    void set_password(const std::string& one) {
        const std::string stored = encode_password(one, password_key);
        (void)windows.machine().registry.set(Root::local_machine, product::key, "UserPW",
                                             {reg_sz, stored + '\0'});
    }
    Answer run(Words words) const {
        const std::string input = windows.scratch() / "input";
        write_bytes(input, password);
        const int descriptor = open(input.c_str(), O_RDONLY);
        words.insert(words.end(),
                     {"--machine=" + windows.disk().string(), "--state=" + windows.options.state_folder,
                      "--password-fd=" + std::to_string(descriptor)});
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int code = run_batch(words, PROGRAM_FOLDER, language);
        close(descriptor);
        const std::string out = testing::internal::GetCapturedStdout();
        return {code, out, testing::internal::GetCapturedStderr()};
    }
    std::map<std::string, std::string> hives() const {
        std::map<std::string, std::string> out;
        for (const auto& profile : fs::directory_iterator(windows.disk() / "Documents and Settings"))
            out[profile.path().filename()] = bytes_of(profile.path() / "NTUSER.DAT");
        return out;
    }
};

TEST_F(BatchCommand, RestrictsAllUsersButThoseItCannot) {
    write_bytes(windows.hive_of("pupil3"), bytes_of(windows.hive_of("pupil3")).replace(0x1000, 4, "nope"));
    const auto lock = must(hostfile::FileLock::acquire(*hostfile::place_of(windows.hive_of("pupil4"))));
    const auto before = hives();
    const Answer first = run(to_all);
    EXPECT_EQ(first.code, 1);
    EXPECT_EQ(first.err, "");
    const auto after = hives();
    for (const auto& [name, bytes] : after)
        EXPECT_EQ(bytes != before.at(name), first.out.find(name + ": done\n") != std::string::npos) << name;
    EXPECT_EQ(std::count(first.out.begin(), first.out.end(), '\n'), 7) << first.out;
    EXPECT_THAT(first.out, HasSubstr("\npupil3: failed: the file NTUSER.DAT could not be loaded (HKU"));
    EXPECT_THAT(first.out, HasSubstr("\npupil4: failed: the file NTUSER.DAT "));
    EXPECT_EQ(run(to_all).out, first.out);
    EXPECT_TRUE(hives() == after) << "a second run changes nothing";
    EXPECT_TRUE(windows.offline().mounts().mounts()->empty());

    const Answer shown = run({"show", "--user", "pupil2", "--user=nobody", "--user", "ANNA"});
    EXPECT_EQ(shown.code, 1);
    const std::string marks =
        ":\n  Disable ShutDown\n  Fix your Background-Picture: C:\\x.bmp\n"
        "  Allow only these EXE-Files: BRITLOCK.EXE, \u00DC.EXE\n  Disable Printer-Sharing Settings\n"
        "  Hidden in the Control Panel: Game Controllers, Printers and Faxes (2000/XP)\n  Hidden drives: T\n";
    EXPECT_EQ(shown.out, "pupil2" + marks + "ANNA" + marks);
    EXPECT_EQ(shown.err, "nobody: failed: there is no such user here\n");
    EXPECT_EQ(run({"show", "--json", "--user", "Ben"}).out,
              "{\"user\": \"Ben\", \"ticked\": [\"c11\", \"c37\", \"c41\", \"c610\"], "
              "\"hidden_applets\": [\"JOY.CPL\", \"Drucker und Faxger\u00E4te\"], "
              "\"programs\": [\"BRITLOCK.EXE\", \"\u00DC.EXE\"], \"hidden_drives\": [\"T\"], "
              "\"wallpaper\": \"C:\\\\x.bmp\", \"icon_folder\": \"\"}\n");
    EXPECT_THAT(json_of("\\\"a\"\r", {}),
                StartsWith("{\"user\": \"\\\\\\\"a\\\"\\u000d\", \"ticked\": [], "));
    EXPECT_TRUE(hives() == after) << "nor does a look";
    language = german;
    EXPECT_THAT(run({"show", "--user", "pupil3"}).err,
                HasSubstr("(die Registrierungsdatei ist beschädigt (HKU"));
}

TEST_F(BatchCommand, SavesWhatItAppliesToOthers) {
    const std::string copy = windows.scratch() / "copy.brl";
    EXPECT_EQ(run({"show", "--user", "Ben"}).out, "Ben:\n  no restrictions\n");
    ASSERT_EQ(run({"apply", file, "--user", "Anna"}).code, 0);
    EXPECT_EQ(run({"save", copy, "--user", "Anna"}).out, "Anna: done\n");
    ASSERT_EQ(run({"apply", copy, "--user", "Ben", "--user", "pupil1"}).code, 0);
    const auto first = read_brl(bytes_of(file), {});
    auto second = read_brl(bytes_of(copy), {});
    ASSERT_TRUE(first && second);
    second->machine = first->machine;  // those of the machine it was saved on
    EXPECT_EQ(*first, *second);

    const std::string saved = bytes_of(copy);
    const Answer again = run({"save", copy, "--user", "Anna"});
    EXPECT_EQ(again.code, 3);
    EXPECT_EQ(again.err, "britlock: " + copy + " already exists\n");
    EXPECT_EQ(run({"save", copy, "--user", "pupil2", "--overwrite"}).code, 0);
    EXPECT_NE(bytes_of(copy), saved);
    EXPECT_THAT(run({"save", "/nowhere/x.brl", "--user", "Anna"}).out,
                HasSubstr("Anna: failed: /nowhere/x.brl cannot be written"));
}

TEST_F(BatchCommand, OpensNothingWithoutThePasswordOrTheFile) {
    const auto before = hives();
    const auto refusal = [&](const Words& words) {
        const Answer answer = run(words);
        EXPECT_EQ(answer.code, 3);
        EXPECT_EQ(answer.out, "");
        return answer.err;
    };
    for (const char* wrong : {"", "\n", "secret\n", "S\u00E4cret", "s\u00E4cret \u4E00\n"}) {
        password = wrong;
        EXPECT_EQ(refusal(to_all), "britlock: the password is incorrect\n") << wrong;
    }
    password = "s\u00E4cret";  // the line may end with the input
    const std::string cut = windows.scratch() / "cut.brl";
    write_bytes(cut, bytes_of(file).substr(0, 200));
    EXPECT_EQ(refusal({"apply", cut, "--all-users"}),
              "britlock: " + cut + " cannot be read: Input past end of file\n");
    write_bytes(cut, "PK,x");
    EXPECT_EQ(refusal({"apply", cut, "--all-users"}),
              "britlock: " + cut + " is not a Brightlock Suite file\n");
    EXPECT_THAT(refusal({"apply", "/nowhere.brl", "--all-users"}), HasSubstr("File not found"));
    set_password("");
    EXPECT_THAT(refusal(to_all), HasSubstr("no password has been set yet"));
    fs::remove_all(windows.disk() / "WINDOWS");
    EXPECT_THAT(refusal(to_all), HasSubstr("britlock: "));
    EXPECT_TRUE(hives() == before);
}

TEST_F(BatchCommand, TellsAWrongCall) {
    // clang-format off
    const std::pair<Words, const char*> calls[] = {
        {{"apply", "--all-users"}, "apply wants a file"}, {{"show", "x", "--all-users"}, "nothing is known of 'x'"},
        {{"apply", "x"}, "apply wants either --user or --all-users"}, {{"save", "x", "--all-users"}, "save wants one --user"},
        {{"show", "--user=A", "--all-users"}, "show wants either"}, {{"save", "x", "--user=A", "--user=B"}, "save wants one"},
        {{"apply", "x", "--all-users", "--json"}, "--json goes with show"}, {{"show", "--password=x"}, "unknown option"},
        {{"apply", "x", "--all-users", "--overwrite"}, "--overwrite goes with save"}, {{"show", "--user="}, "--user does not"},
        {{"show", "--all-users=yes"}, "--all-users takes no value"}, {{"show", "--drive", "C=/"}, "--machine does not take"},
        {{"show", "--password-fd", "-1"}, "--password-fd does not take the value '-1'"}};
    // clang-format on
    for (const auto& [words, text] : calls) {
        const Answer answer = run(words);
        EXPECT_EQ(answer.code, 2);
        EXPECT_THAT(answer.err, AllOf(StartsWith(std::string("britlock: ") + text), HasSubstr("Usage:")));
    }
    EXPECT_THAT(run({"show", "--help"}).out, StartsWith("Usage:"));
}

}  // namespace

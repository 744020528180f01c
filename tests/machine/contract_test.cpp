// What every machine promises, shown on each that this build has.

#include "machine/subject.h"

namespace {

class Contract : public TestWithParam<Implementation> {
  protected:
    std::unique_ptr<Subject> subject_ = GetParam().make();
    Registry& registry_ = subject_->machine().registry;
    Files& files_ = subject_->machine().files;

    uint32_t tool(const std::string& arguments) {
        return run_command(subject_->machine().processes, hive_tool + arguments);
    }
    uint32_t load_anna() { return tool("load \"C:\\Documents and Settings\\Anna\\NTUSER.DAT\" HKU\\Anna"); }

    std::string ask(Root root, std::string_view key, std::string_view name) {
        return ::ask(registry_, root, key, name);
    }
    std::string subkeys(Root root, std::string_view key) {
        std::string names;
        std::string name;
        uint32_t index = 0;
        WinCode code = success;
        while ((code = registry_.enum_key(root, key, index++, name)) == more_data)
            names += name + " ";
        return names + std::to_string(code);
    }
    /// All files below a folder: their paths and contents, in order.
    std::string tree(const std::string& folder) {
        std::string out;
        for (const FoundFile& found : files_.find(folder + "\\*").value_or(std::vector<FoundFile>())) {
            const std::string path = folder + "\\" + found.name;
            const bool is_folder = found.attributes & attribute_directory;
            out += path + (is_folder ? "\\\n" + tree(path) : "=" + content(files_, path) + "\n");
        }
        return out;
    }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Machines, Contract, ValuesIn(implementations()),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

TEST_P(Contract, RegistryWorksTheSameBelowEveryRoot) {
    ASSERT_EQ(load_anna(), 0u);
    const std::pair<Root, std::string> places[] = {
        {Root::current_user, ""}, {Root::local_machine, "Software\\"}, {Root::users, "Anna\\"}};
    for (const auto& [root_of_all, prefix] : places) {
        const Root root = root_of_all;
        SCOPED_TRACE(describe(root, prefix));
        const std::string key = prefix + U"Lock\\Übung\\C"_ansi;
        JournalRegistry journal(registry_);
        const auto set = [&](const std::string& name, const RawValue& value) {
            (void)journal.set(root, key, name, value);
            return ask(root, key, name);
        };

        EXPECT_EQ(set("a", dword_value(1)), "open 2") << "a missing key is not made by writing";
        EXPECT_EQ(journal.delete_value(root, key, "a").open, file_not_found);
        EXPECT_EQ(journal.delete_key(root, key), file_not_found);
        EXPECT_EQ(subkeys(root, key), "259");

        journal.clear();
        for (const std::string& spelling :
             {key, key + "\\", prefix + U"Lock\\\\ÜBUNG\\c"_ansi, key + std::string("\0\\x", 3), "\\" + key})
            (void)journal.create_key(root, spelling);
        EXPECT_EQ(std::count(journal.text().begin(), journal.text().end(), '1'), 1) << journal.text();
        EXPECT_EQ(std::count(journal.text().begin(), journal.text().end(), '2'), 3) << journal.text();
        EXPECT_TRUE(journal.text().ends_with("-> 0\n")) << "a leading backslash: " << journal.text();
        EXPECT_EQ(ask(root, "\\" + key, "a"), "open 161");

        EXPECT_EQ(set("number", dword_value(-1)), "dword -1");
        EXPECT_EQ(set("text", text_value(U"Größe €"_ansi)), std::string("\"") + U"Größe €"_ansi + "\"");
        EXPECT_EQ(set("text", text_value("")), "\"\"");
        EXPECT_EQ(set("open", {reg_sz, "abc"}), "\"abc\" without NUL");
        EXPECT_EQ(set("odd", {reg_sz, std::string("\x81\x8d\x9d?\0\0", 6)}), "\"\x81\x8d\x9d?\\0\"");
        EXPECT_EQ(set("binary", {3, std::string("\0\xff", 2)}), "type 3: 00 ff");
        EXPECT_EQ(set("short", {reg_dword, "ab"}), "type 4: 61 62");
        EXPECT_EQ(set("", text_value("the default one")), "\"the default one\"");
        EXPECT_EQ(ask(root, key, "NUMBER"), "dword -1");
        EXPECT_EQ(ask(root, key, "missing"), "action 2");

        EXPECT_EQ(registry_.delete_value(root, key, "Open").action, success);
        EXPECT_EQ(registry_.delete_value(root, key, "open").action, file_not_found);
        EXPECT_EQ(registry_.create_key(root, prefix + "Lock\\b"), Registry::Disposition::created);
        EXPECT_EQ(subkeys(root, prefix + "Lock"), std::string("b ") + U"Übung"_ansi + " 259");
        EXPECT_EQ(registry_.delete_key(root, prefix + "Lock"), access_denied);
        EXPECT_EQ(registry_.delete_key(root, key), success);
        EXPECT_EQ(ask(root, key, "number"), "open 2");
    }
}

TEST_P(Contract, UsersRootHoldsMountedHivesOnly) {
    if (!subject_->mounts_are_real()) GTEST_SKIP() << "keys can be made below HKEY_USERS here";
    EXPECT_EQ(registry_.create_key(Root::users, "Anna\\Software"), Registry::Disposition::failed);
    EXPECT_EQ(registry_.create_key(Root::users, ""), Registry::Disposition::opened);
    ASSERT_EQ(load_anna(), 0u);
    const std::string hive = "C:\\Documents and Settings\\Anna\\NTUSER.DAT";
    EXPECT_EQ(files_.open_binary(hive).error, permission_denied);
    EXPECT_EQ(content(files_, hive), "error 70") << "not even to look at";
    EXPECT_EQ(files_.write(hive, "x"), permission_denied);
    EXPECT_EQ(files_.remove(hive), permission_denied);
    EXPECT_EQ(registry_.create_key(Root::users, "anna\\software"), Registry::Disposition::opened);
    EXPECT_EQ(registry_.create_key(Root::users, "Ben\\Software"), Registry::Disposition::failed);
    EXPECT_EQ(registry_.delete_key(Root::users, "Anna"), access_denied);
    EXPECT_EQ(registry_.create_key(Root::users, "Anna\\Software\\Lock"), Registry::Disposition::created);
    EXPECT_EQ(registry_.set(Root::users, "Anna\\Software\\Lock", "a", dword_value(7)).action, success);
    EXPECT_NE(load_anna(), 0u) << "the name is taken";
    EXPECT_EQ(tool("unload HKU\\ANNA"), 0u);
    EXPECT_NE(tool("unload HKU\\Anna"), 0u);
    EXPECT_EQ(ask(Root::users, "Anna\\Software", ""), "open 2");
    EXPECT_EQ(files_.open_binary(hive).error, no_error);
    ASSERT_EQ(load_anna(), 0u);
    EXPECT_EQ(ask(Root::users, "Anna\\Software\\Lock", "a"), "dword 7") << "the changes came back";
}

TEST_P(Contract, HiveToolTakesItsTwoCommandsAndNothingElse) {
    const std::string load = "load \"C:\\Documents and Settings\\Anna\\NTUSER.DAT\" ";
    for (const std::string& wrong : {std::string("load"), load + "HKLM\\Anna", load + "Anna", load + "HKU\\",
                                     load + "HKU\\Anna\\Software", load + "HKU\\Anna more"}) {
        EXPECT_EQ(tool(wrong), 1u) << wrong;
        EXPECT_EQ(subkeys(Root::users, "Anna"), "259") << wrong;
    }
    EXPECT_EQ(tool(load + "hku\\Anna"), 0u);
    for (const char* wrong : {"unload HKU\\Other HKU\\Anna", "unload Anna", "unload", "load HKU\\Anna", ""}) {
        EXPECT_EQ(tool(wrong), 1u) << wrong;
        EXPECT_NE(ask(Root::users, "Anna\\Software", ""), "open 2") << wrong;
    }
    EXPECT_EQ(tool("unload \"HKU\\Anna\""), 0u);
    for (const char* wrong :
         {"unload HKU\\Anna", "load \"C:\\MSDOS.SYS\" HKU\\Anna", "load \"C:\\none\" HKU\\Anna"}) {
        EXPECT_EQ(tool(wrong), 1u) << wrong;
        EXPECT_EQ(subkeys(Root::users, "Anna"), "259") << wrong;
    }
    EXPECT_EQ(run_command(subject_->machine().processes, "\"C:\\none.exe\" x"), 1000u + no_such_file);
}

TEST_P(Contract, FilesAnswerWithWindowsErrors) {
    ASSERT_EQ(files_.write("C:\\old.txt", "abc"), no_error);
    ASSERT_EQ(files_.write("C:\\locked.txt", "abc"), no_error);
    ASSERT_EQ(files_.set_attributes("C:\\LOCKED.TXT", attribute_read_only), no_error);
    for (const auto& [path, look, change, length] :
         {std::tuple{"C:\\new.txt", no_error, no_error, 0},
          {"c:/OLD.txt", no_error, no_error, 3},
          {"C:\\locked.txt", no_error, permission_denied, 3},
          {"C:\\none\\x.txt", no_such_path, no_such_path, 0},
          {"Z:\\x.txt", no_such_path, no_such_path, 0},
          {"Anna\\NTUSER.DAT", no_such_path, no_such_path, 0},
          {"C:\\Documents and Settings", path_access, path_access, 0},
          {"C:\\", path_access, path_access, 0},
          {"", path_access, path_access, 0},
          {"C:\\nul", path_access, path_access, 0},
          {"C:\\a?b", bad_file_name, bad_file_name, 0}}) {
        SCOPED_TRACE(path);
        const auto opened = files_.open_binary(path);
        EXPECT_EQ(std::pair(opened.error, opened.length), std::pair(look, int64_t{length}));
        std::string bytes;
        EXPECT_EQ(files_.read(path, bytes), look);
        EXPECT_EQ(files_.write(path, "abcd"), change);
        EXPECT_EQ(files_.open_binary(path).length, change == no_error ? 4 : length);
        EXPECT_EQ(files_.remove(path), change);
        if (change != no_error) continue;
        EXPECT_EQ(files_.attributes(path), no_attributes);
        EXPECT_EQ(files_.remove(path), no_such_file);
        EXPECT_EQ(files_.set_attributes(path, attribute_normal), no_such_file);
    }
    EXPECT_EQ(files_.attributes("C:\\locked.txt") & attribute_read_only, attribute_read_only);
    EXPECT_EQ(files_.attributes("C:\\") & attribute_directory, attribute_directory);
    ASSERT_EQ(files_.set_attributes("C:\\locked.txt", attribute_normal), no_error);
    EXPECT_EQ(files_.write("C:\\locked.txt", "x"), no_error);
}

TEST_P(Contract, FilesGrowPieceByPiece) {
    for (const auto& [at, piece, whole] : {std::tuple{0, "", std::string()},
                                           {0, "abcdef", "abcdef"},
                                           {2, "XY", "abXYef"},
                                           {8, "Z", std::string("abXYef\0\0Z", 9)}}) {
        EXPECT_EQ(files_.write_at("C:\\GROW.bin", static_cast<uint32_t>(at), piece), no_error);
        EXPECT_EQ(content(files_, "C:\\grow.bin"), whole);
    }
    EXPECT_EQ(files_.write_at("C:\\nowhere\\x", 0, "a"), no_such_path);
    EXPECT_EQ(files_.write_at("C:\\WINDOWS", 0, "a"), path_access);
    ASSERT_EQ(files_.set_attributes("C:\\grow.bin", attribute_read_only), no_error);
    EXPECT_EQ(files_.write_at("C:\\grow.bin", 0, "a"), permission_denied);
}

TEST_P(Contract, SearchIsSortedAndFitsAsOnNT) {
    const std::string folder = "C:\\Documents and Settings\\Anna\\";
    for (const char* name : {"b.lnk", U"Ärger.LNK"_ansi, "A.Lnk", "Docs", "docs.txt"})
        ASSERT_EQ(files_.write(folder + name, "x"), no_error);
    for (const auto& [pattern, found] :
         {std::pair<const char*, std::string>{"*.lnk", std::string("A.Lnk b.lnk ") + U"Ärger.LNK "_ansi},
          {"Docs*.*", "Docs docs.txt "},
          {"DOCS", "Docs "},
          {"*.exe", "none"},
          {"none\\*", "none"},
          {"", "none"}})
        EXPECT_EQ(names(files_, folder + pattern), found) << pattern;
    const auto profiles = files_.find("C:\\Documents and Settings\\A*");
    ASSERT_TRUE(profiles);
    EXPECT_EQ(profiles->back().name, "Anna");
    EXPECT_EQ(profiles->back().attributes & attribute_directory, attribute_directory);
}

TEST_P(Contract, AnEmptyDriveIsThereAndALetterWithoutADriveIsNot) {
    subject_->add_empty_drive();
    const Machine machine = subject_->machine();
    EXPECT_EQ(machine.system.logical_drives() >> 3 & 1, 1u);
    EXPECT_EQ(machine.files.attributes("D:\\") & attribute_directory, attribute_directory);
    EXPECT_EQ(names(machine.files, "D:\\*"), "");
    EXPECT_EQ(names(machine.files, "D:\\*.lnk"), "none");
    EXPECT_EQ(names(machine.files, "Q:\\*"), "none");
    EXPECT_EQ(machine.files.attributes("Q:\\"), no_attributes);
}

TEST_P(Contract, FoldersAreCopiedAndDeletedAsAWhole) {
    for (const char* path : {"Icons/a.lnk", "Icons/Sub/b.lnk", "Icons/Sub/Deep/c.lnk"})
        subject_->add_file(path, path);
    subject_->add_file("Target/A.LNK", "old");
    subject_->add_file("Target/kept.txt", "kept");
    EXPECT_EQ(files_.copy_folder("C:\\icons", "C:\\target"), no_error);
    EXPECT_EQ(tree("C:\\Target"),
              "C:\\Target\\A.LNK=Icons/a.lnk\n"
              "C:\\Target\\kept.txt=kept\n"
              "C:\\Target\\Sub\\\n"
              "C:\\Target\\Sub\\b.lnk=Icons/Sub/b.lnk\n"
              "C:\\Target\\Sub\\Deep\\\n"
              "C:\\Target\\Sub\\Deep\\c.lnk=Icons/Sub/Deep/c.lnk\n");

    const std::string before = tree("C:\\Icons");
    EXPECT_EQ(files_.copy_folder("C:\\Icons", "C:\\ICONS"), permission_denied);
    EXPECT_EQ(files_.copy_folder("C:\\Icons", "C:\\Icons\\Sub\\New"), permission_denied);
    EXPECT_EQ(files_.copy_folder("C:\\Icons", "C:\\none\\New"), no_such_path);
    EXPECT_EQ(files_.copy_folder("C:\\Icons", "C:\\Target\\kept.txt"), path_access);
    EXPECT_EQ(tree("C:\\Icons"), before);

    EXPECT_EQ(files_.delete_folder("C:\\Icons"), no_error);
    EXPECT_EQ(files_.attributes("C:\\Icons"), no_attributes);
    EXPECT_EQ(files_.copy_folder("C:\\Icons", "C:\\Target"), no_such_path);
    EXPECT_EQ(files_.copy_folder("C:\\Target", "C:\\Icons"), no_error) << "a missing target is made";
    EXPECT_NE(tree("C:\\Icons"), "");
}

TEST_P(Contract, ProtectedFoldersAreNotDeleted) {
    for (const char* folder :
         {"C:\\", "C:\\windows", "C:\\WINDOWS\\system32", "C:\\Windows\\System32\\config", "C:\\WINDOWS\\..",
          "C:\\Documents and Settings", "C:\\Documents and Settings\\anna.", "C:\\Program Files",
          "C:\\Program Files\\Brightlock Suite"})
        EXPECT_NE(files_.delete_folder(folder), no_error) << folder;
    EXPECT_EQ(files_.delete_folder("C:\\none"), no_such_path);
    EXPECT_EQ(files_.delete_folder("C:\\Documents and Settings\\Anna\\NTUSER.DAT"), no_such_path);
    EXPECT_NE(files_.attributes("C:\\Documents and Settings\\Anna\\NTUSER.DAT"), no_attributes);
}

TEST_P(Contract, ProfileFilesAreMadeByWritingOnly) {
    EXPECT_TRUE(files_.write_profile("don't load", "desk.cpl", std::nullopt, "new.ini"));
    EXPECT_EQ(files_.attributes("C:\\WINDOWS\\new.ini"), no_attributes);
    EXPECT_EQ(files_.read_profile("don't load", "desk.cpl", "new.ini"), "");
    EXPECT_TRUE(files_.write_profile("don't load", "desk.cpl", "no", "new.ini"));
    EXPECT_EQ(files_.read_profile("DON'T LOAD", "DESK.CPL", "C:\\windows\\NEW.INI"), "no");
    EXPECT_FALSE(files_.write_profile("a", "b", "c", "C:\\none\\x.ini"));
    ASSERT_EQ(files_.set_attributes("C:\\WINDOWS\\new.ini", attribute_read_only), no_error);
    EXPECT_FALSE(files_.write_profile("don't load", "desk.cpl", std::nullopt, "new.ini"));
}

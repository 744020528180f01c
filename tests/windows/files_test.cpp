// What the promises of every machine leave to the running Windows: files in use, short names, network
// folders.

#include "machine/subject.h"
#include "machine/windows/windows_machine.h"
#include "windows/scene.h"

struct FilesOfWindows : Test {
    FilesOfWindows() {
        remove_folder("C:\\Tried");
        make_folder("C:\\Tried");
    }
    WindowsMachine windows;
    Files& files = windows.machine().files;
};

TEST_F(FilesOfWindows, AFileInUseIsTold) {
    const std::string file = "C:\\Tried\\NTUSER.DAT";
    ASSERT_EQ(files.write(file, "old"), no_error);
    {
        const HeldFile held(file, HeldFile::Against::everything);
        EXPECT_EQ(files.open_binary(file).error, permission_denied);
        EXPECT_EQ(content(files, file), "error 70");
        EXPECT_EQ(files.write(file, "new"), permission_denied);
        EXPECT_EQ(files.write_at(file, 0, "new"), permission_denied);
        EXPECT_EQ(files.remove(file), permission_denied);
        EXPECT_EQ(names(files, "C:\\Tried\\*"), "NTUSER.DAT ") << "what was begun is cleared away";
        EXPECT_NE(files.delete_folder("C:\\Tried"), no_error);
    }
    EXPECT_EQ(content(files, file), "old");
}

TEST_F(FilesOfWindows, MarksStayWithAFileAndProtectNoneFromTheFolder) {
    const std::string file = "C:\\Tried\\msdos.sys";
    ASSERT_EQ(files.write(file, "old"), no_error);
    EXPECT_EQ(files.attributes(file), attribute_archive);
    ASSERT_EQ(files.set_attributes(file, attribute_hidden | attribute_system), no_error);
    EXPECT_EQ(files.write(file, "new"), no_error);
    EXPECT_EQ(files.attributes(file) & ~attribute_archive, attribute_hidden | attribute_system);
    make_folder("C:\\Tried\\Inner");
    ASSERT_EQ(files.write("C:\\Tried\\Inner\\a.lnk", "a"), no_error);
    for (const char* path : {"C:\\Tried\\Inner\\a.lnk", "C:\\Tried\\Inner"})
        ASSERT_EQ(files.set_attributes(path, attribute_read_only), no_error);
    EXPECT_EQ(files.delete_folder("C:\\Tried"), no_error);
    EXPECT_EQ(files.attributes("C:\\Tried"), no_attributes);
}

TEST_F(FilesOfWindows, ProtectedFoldersAreKnownByTheirShortNamesToo) {
    const std::string name = short_name("C:\\Program Files");
    ASSERT_NE(name, "C:\\Program Files");
    EXPECT_EQ(files.delete_folder(name), permission_denied);
    EXPECT_EQ(files.copy_folder("C:\\Program Files", name + "\\Copy"), permission_denied);
}

TEST_F(FilesOfWindows, NetworkFoldersAreAskedForAndDevicesAreNot) {
    for (const char* path : {"\\\\127.0.0.1\\none\\x.txt", "\\\\127.0.0.1"})
        EXPECT_EQ(content(files, path), "error 76") << path;
    EXPECT_EQ(files.delete_folder("\\\\127.0.0.1\\none\\Icons"), no_such_path);
    for (const char* path :
         {"\\\\.\\C:", "\\\\?\\C:\\Tried\\x", "\\\\127.0.0.1\\none\\nul", "C:\\Tried\\x:stream"})
        EXPECT_NE(files.write(path, "x"), no_error) << path;
    EXPECT_EQ(names(files, "C:\\Tried\\*"), "");
}

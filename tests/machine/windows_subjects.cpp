#include <gtest/gtest.h>
#include <windows.h>

#include "machine/memory_subject.h"
#include "machine/windows/windows_machine.h"

namespace {

/// Another system that runs programs for Windows keeps hives in a format and a way of its own.
bool is_windows_itself() {
    return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") == nullptr;
}

/// The Windows that the tests run on, which is one made for them: what they leave behind is cleared away by
/// name.
struct WindowsSubject : Subject {
    WindowsSubject() {
        auto& files = windows.machine().files;
        for (const char* folder : {"C:\\Icons", "C:\\Target", "C:\\Documents and Settings\\Anna"})
            remove_folder(folder);
        for (const char* file :
             {"C:\\old.txt", "C:\\locked.txt", "C:\\new.txt", "C:\\grow.bin", "C:\\WINDOWS\\new.ini"}) {
            (void)files.set_attributes(file, machine::attribute_normal);
            (void)files.remove(file);
        }
        for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
            const std::string above = root == HKEY_LOCAL_MACHINE ? "Software\\" : "";
            for (const char* key : {"Lock\\\xDC"
                                    "bung\\C",
                                    "Lock\\\xDC"
                                    "bung",
                                    "Lock\\b", "Lock"})
                (void)RegDeleteKeyA(root, (above + key).c_str());
        }
        (void)run_command(windows.machine().processes,
                          "\"C:\\Program Files\\Brightlock Suite\\regg.exe\" unload HKU\\Anna");
        add_file("MSDOS.SYS", "[Options]\r\n");
        CreateDirectoryA("C:\\Documents and Settings", nullptr);
        CreateDirectoryA("C:\\Documents and Settings\\Anna", nullptr);
        save_hive("C:\\Documents and Settings\\Anna\\NTUSER.DAT");
    }

    machine::Machine machine() override { return windows.machine(); }
    void add_file(const std::string& path, const std::string& bytes) override {
        std::string place = "C:\\";
        for (const char c : path) {
            if (c == '/') CreateDirectoryA(place.c_str(), nullptr);
            place += c == '/' ? '\\' : c;
        }
        EXPECT_EQ(windows.machine().files.write(place, bytes), machine::no_error) << place;
    }
    void add_empty_drive() override {}  // it has one
    bool mounts_are_real() const override { return is_windows_itself(); }

    machine::WindowsMachine windows;

  private:
    /// By other calls than those that are tested.
    static void remove_folder(const std::string& folder) {
        WIN32_FIND_DATAA data{};
        const HANDLE search = FindFirstFileA((folder + "\\*").c_str(), &data);
        if (search == INVALID_HANDLE_VALUE) return;
        do {
            const std::string name = data.cFileName;
            const std::string path = folder + "\\" + name;
            if (name == "." || name == "..") continue;
            SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
            if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
                remove_folder(path);
            } else {
                DeleteFileA(path.c_str());
            }
        } while (FindNextFileA(search, &data));
        FindClose(search);
        RemoveDirectoryA(folder.c_str());
    }

    /// A hive with the one key that every hive has, in the format of the system that will load it.
    static void save_hive(const char* file) {
        HANDLE token = nullptr;
        ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &token));
        TOKEN_PRIVILEGES wanted{};
        wanted.PrivilegeCount = 1;
        wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
        ASSERT_TRUE(LookupPrivilegeValueA(nullptr, SE_BACKUP_NAME, &wanted.Privileges[0].Luid));
        ASSERT_TRUE(AdjustTokenPrivileges(token, FALSE, &wanted, 0, nullptr, nullptr));
        CloseHandle(token);
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, "Lock of the tests\\Software", &key), ERROR_SUCCESS);
        RegCloseKey(key);
        ASSERT_EQ(RegOpenKeyA(HKEY_CURRENT_USER, "Lock of the tests", &key), ERROR_SUCCESS);
        EXPECT_EQ(RegSaveKeyA(key, file, nullptr), ERROR_SUCCESS);
        RegDeleteKeyA(key, "Software");
        RegCloseKey(key);
        RegDeleteKeyA(HKEY_CURRENT_USER, "Lock of the tests");
    }
};

}  // namespace

std::vector<Implementation> implementations() {
    return {{"memory", make_subject<MemorySubject>}, {"windows", make_subject<WindowsSubject>}};
}

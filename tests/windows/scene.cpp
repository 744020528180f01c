#include "windows/scene.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>

namespace {

HKEY handle_of(machine::Root root) {
    return reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<uint32_t>(root)));
}

void enable_backup() {
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &token));
    TOKEN_PRIVILEGES wanted{};
    wanted.PrivilegeCount = 1;
    wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    ASSERT_TRUE(LookupPrivilegeValueA(nullptr, SE_BACKUP_NAME, &wanted.Privileges[0].Luid));
    ASSERT_TRUE(AdjustTokenPrivileges(token, FALSE, &wanted, 0, nullptr, nullptr));
    CloseHandle(token);
}

void remove_key_below(HKEY above, const char* name) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(above, name, 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    char below[256] = {};
    while (RegEnumKeyA(key, 0, below, sizeof below) == ERROR_SUCCESS)
        remove_key_below(key, below);
    RegCloseKey(key);
    EXPECT_EQ(RegDeleteKeyA(above, name), ERROR_SUCCESS) << name;
}

}  // namespace

void make_anna(const std::string& profiles) {
    make_folder(profiles);
    make_folder(profiles + "\\Anna");
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, "Lock of the tests\\Software", &key), ERROR_SUCCESS);
    RegCloseKey(key);
    save_key(machine::Root::current_user, "Lock of the tests", profiles + "\\Anna\\NTUSER.DAT");
    remove_key_below(HKEY_CURRENT_USER, "Lock of the tests");
}

void save_key(machine::Root root, const std::string& key, const std::string& file) {
    enable_backup();
    DeleteFileA(file.c_str());
    HKEY opened = nullptr;
    ASSERT_EQ(RegOpenKeyA(handle_of(root), key.c_str(), &opened), ERROR_SUCCESS) << key;
    EXPECT_EQ(RegSaveKeyA(opened, file.c_str(), nullptr), ERROR_SUCCESS) << file;
    RegCloseKey(opened);
}

void make_folder(const std::string& path) { CreateDirectoryA(path.c_str(), nullptr); }

void remove_folder(const std::string& path) {
    WIN32_FIND_DATAA data{};
    const HANDLE search = FindFirstFileA((path + "\\*").c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
        const std::string name = data.cFileName;
        const std::string below = path + "\\" + name;
        if (name == "." || name == "..") continue;
        SetFileAttributesA(below.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            remove_folder(below);
        } else {
            DeleteFileA(below.c_str());
        }
    } while (FindNextFileA(search, &data));
    FindClose(search);
    RemoveDirectoryA(path.c_str());
}

std::string stored(machine::Root root, const std::string& key, const char* value) {
    HKEY opened = nullptr;
    if (RegOpenKeyExA(handle_of(root), key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return "no key";
    BYTE data[512] = {};
    DWORD size = sizeof data;
    DWORD type = 0;
    const LONG code = RegQueryValueExA(opened, value, nullptr, &type, data, &size);
    RegCloseKey(opened);
    if (code != ERROR_SUCCESS) return "no value";
    DWORD number = 0;
    std::memcpy(&number, data, sizeof number);
    return type == REG_DWORD ? "dword " + std::to_string(number) : reinterpret_cast<const char*>(data);
}

void remove_key(machine::Root root, const std::string& key) {
    remove_key_below(handle_of(root), key.c_str());
}

std::string short_name(const std::string& path) {
    char buffer[MAX_PATH] = {};
    GetShortPathNameA(path.c_str(), buffer, sizeof buffer);
    return buffer;
}

HeldFile::HeldFile(const std::string& path, Against against)
    : handle_(CreateFileA(path.c_str(), GENERIC_READ, against == Against::deleting ? FILE_SHARE_READ : 0,
                          nullptr, OPEN_EXISTING, 0, nullptr)) {
    EXPECT_NE(handle_, INVALID_HANDLE_VALUE) << path;
}

HeldFile::~HeldFile() { CloseHandle(handle_); }

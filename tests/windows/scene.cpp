#include "windows/scene.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <shlwapi.h>

#include <cstring>
#include <filesystem>

namespace fs = std::filesystem;

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

}  // namespace

void make_anna(const std::string& profiles) {
    make_folder(profiles + "\\Anna");
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, "Lock of the tests\\Software", &key), ERROR_SUCCESS);
    RegCloseKey(key);
    save_key(machine::Root::current_user, "Lock of the tests", profiles + "\\Anna\\NTUSER.DAT");
    remove_key(machine::Root::current_user, "Lock of the tests");
}

void save_key(machine::Root root, const std::string& key, const std::string& file) {
    enable_backup();
    DeleteFileA(file.c_str());
    HKEY opened = nullptr;
    ASSERT_EQ(RegOpenKeyA(handle_of(root), key.c_str(), &opened), ERROR_SUCCESS) << key;
    EXPECT_EQ(RegSaveKeyA(opened, file.c_str(), nullptr), ERROR_SUCCESS) << file;
    RegCloseKey(opened);
}

void make_folder(const std::string& path) { fs::create_directories(path); }

void remove_folder(const std::string& path) {
    if (!fs::exists(path)) return;
    for (const auto& entry : fs::recursive_directory_iterator(path))
        fs::permissions(entry, fs::perms::owner_write, fs::perm_options::add);
    fs::remove_all(path);
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

void remove_key(machine::Root root, const std::string& key) { SHDeleteKeyA(handle_of(root), key.c_str()); }

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

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "machine/command_line.h"
#include "machine/tool_command.h"

/// The hive tool of the Windows edition: mounts a user's hive below HKEY_USERS, and unmounts it.
namespace {

/// What Windows says to a code, without its line end.
std::string reason(LONG code) {
    char words[512] = {};
    DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                  static_cast<DWORD>(code), 0, words, sizeof words, nullptr);
    while (length > 0 && static_cast<unsigned char>(words[length - 1]) <= ' ')
        --length;
    return std::string(words, length) + " (" + std::to_string(code) + ")";
}

int complain(const std::string& what) {
    const std::string line = "regg: " + what + "\r\n";
    DWORD written = 0;
    (void)WriteFile(GetStdHandle(STD_ERROR_HANDLE), line.data(), static_cast<DWORD>(line.size()), &written,
                    nullptr);
    return 1;
}

/// A privilege that the account has, but that is off in a process until it asks for it.
bool enable(HANDLE token, const char* privilege) {
    TOKEN_PRIVILEGES wanted{};
    wanted.PrivilegeCount = 1;
    wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    if (!LookupPrivilegeValueA(nullptr, privilege, &wanted.Privileges[0].Luid)) return false;
    if (!AdjustTokenPrivileges(token, FALSE, &wanted, 0, nullptr, nullptr)) return false;
    return GetLastError() == ERROR_SUCCESS;  // it also succeeds where the account lacks the privilege
}

bool enable_privileges() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token)) return false;
    const bool restore = enable(token, SE_RESTORE_NAME);
    const bool backup = enable(token, SE_BACKUP_NAME);
    CloseHandle(token);
    return restore && backup;
}

int run(const std::vector<std::string>& words) {
    const auto command = machine::parse_tool_command(words);
    if (!command) return complain(machine::ToolCommand::usage);
    const std::string name(machine::mount_name(command->key));
    if (name.empty()) return complain(command->key + machine::not_a_mount);
    if (!enable_privileges()) return complain("this account has no right to load and unload hives");
    const LONG code = command->loads ? RegLoadKeyA(HKEY_USERS, name.c_str(), command->file.c_str())
                                     : RegUnLoadKeyA(HKEY_USERS, name.c_str());
    return code == ERROR_SUCCESS ? 0 : complain("HKU\\" + name + ": " + reason(code));
}

}  // namespace

int main() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    // The words that the C library makes of the line would have their stars and question marks replaced by
    // file names.
    return run(machine::split_arguments(machine::parse_command_line(GetCommandLineA()).rest));
}

#include "machine/windows/windows_system.h"

#include <windows.h>

#include "machine/command_line.h"
#include "machine/windows/late_call.h"

namespace machine {

namespace {

constexpr DWORD buffer_size = 255;

std::string directory_of(UINT(WINAPI* ask)(LPSTR, UINT)) {
    char buffer[buffer_size] = {};
    const UINT length = ask(buffer, buffer_size);
    return length < buffer_size ? std::string(buffer, length) : "";
}

std::string module_path() {
    char buffer[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameA(nullptr, buffer, MAX_PATH);
    return {buffer, length};
}

/// S-1-5-32-544; empty for what is no SID. The call that would write it is younger than Windows NT 4.
std::string sid_text(PSID sid) {
    if (!IsValidSid(sid)) return "";
    const BYTE* authority = GetSidIdentifierAuthority(sid)->Value;
    uint64_t number = 0;
    for (int i = 0; i < 6; ++i)
        number = number << 8 | authority[i];
    std::string out = "S-" + std::to_string(*static_cast<const BYTE*>(sid)) + "-" + std::to_string(number);
    for (DWORD i = 0; i < *GetSidSubAuthorityCount(sid); ++i)
        out += "-" + std::to_string(*GetSidSubAuthority(sid, i));
    return out;
}

/// The groups in the answer of GetTokenInformation.
std::vector<std::string> group_texts(const std::vector<BYTE>& answer) {
    const auto* groups = reinterpret_cast<const TOKEN_GROUPS*>(answer.data());
    std::vector<std::string> out;
    for (DWORD i = 0; i < groups->GroupCount; ++i)
        out.push_back(sid_text(groups->Groups[i].Sid));
    return out;
}

}  // namespace

Version WindowsSystem::version() {
    OSVERSIONINFOA info{};
    info.dwOSVersionInfoSize = sizeof info;
    (void)GetVersionExA(&info);
    return {info.dwPlatformId, info.dwMajorVersion, info.dwMinorVersion, info.dwBuildNumber};
}

std::string WindowsSystem::windows_directory() { return directory_of(GetWindowsDirectoryA); }

std::string WindowsSystem::system_directory() { return directory_of(GetSystemDirectoryA); }

std::optional<std::string> WindowsSystem::profiles_directory() {
    // Neither Windows 9X nor Windows NT 4 has it.
    static const LateCall<BOOL(WINAPI*)(LPSTR, LPDWORD)> ask("userenv.dll", "GetProfilesDirectoryA");
    char buffer[buffer_size] = {};
    DWORD length = buffer_size;
    if (!ask || !(*ask)(buffer, &length)) return std::nullopt;
    return std::string(buffer);
}

std::optional<std::string> WindowsSystem::user_name() {
    char buffer[buffer_size] = {};
    DWORD length = buffer_size;
    if (!GetUserNameA(buffer, &length) || !*buffer) return std::nullopt;
    return std::string(buffer);
}

uint32_t WindowsSystem::logical_drives() { return GetLogicalDrives(); }

std::optional<std::vector<std::string>> WindowsSystem::token_groups() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return std::nullopt;
    DWORD size = 0;
    (void)GetTokenInformation(token, TokenGroups, nullptr, 0, &size);  // tells the size, and fails
    std::vector<BYTE> answer(size);
    const bool told =
        size >= sizeof(DWORD) && GetTokenInformation(token, TokenGroups, answer.data(), size, &size);
    CloseHandle(token);
    if (!told) return std::nullopt;
    return group_texts(answer);
}

void WindowsSystem::set_wallpaper(std::string_view path) {
    std::string text(path);
    (void)SystemParametersInfoA(SPI_SETDESKWALLPAPER, 0, text.data(), SPIF_UPDATEINIFILE | SPIF_SENDCHANGE);
}

ClockTime WindowsSystem::local_time() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return {now.wHour, now.wMinute, now.wSecond};
}

std::string WindowsSystem::long_time() {
    char buffer[64] = {};
    (void)GetTimeFormatA(LOCALE_USER_DEFAULT, 0, nullptr, nullptr, buffer, sizeof buffer);
    return buffer;
}

std::string WindowsSystem::program_directory() {
    const std::string path = module_path();
    return path.substr(0, path.rfind('\\'));
}

std::string WindowsSystem::program_stem() {
    const std::string path = module_path();
    const std::string name = path.substr(path.rfind('\\') + 1);
    return name.substr(0, name.rfind('.'));
}

std::string WindowsSystem::command_line() { return rest_of_command_line(GetCommandLineA(), module_path()); }

}  // namespace machine

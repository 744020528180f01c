#include <windows.h>

#include <cstdlib>
#include <fstream>

#include "machine/command_line.h"
#include "windows/scene.h"

/// What the road in the window needs on the other side of it. Called as "anna FOLDER" it makes a profile with
/// a hive, as "hold FILE" it holds a file until it is ended.
///
/// Else it stands in for regg.exe, calls the real one beside it, and does what Windows does and Wine does
/// not: a hive that is unloaded keeps its changes, and nobody makes keys directly below HKEY_USERS.
/// $BRITLOCK_PAUSE lets it take its time, in milliseconds. Each call is noted in C:\calls.txt when it is
/// over.
namespace {

constexpr const char* mounts = "C:\\mounts.ini";  // which file lies behind which key
constexpr const char* calls = "C:\\calls.txt";

std::string mounted_file(const std::string& name) {
    char file[MAX_PATH] = {};
    GetPrivateProfileStringA("mounts", name.c_str(), "", file, sizeof file, mounts);
    return file;
}

void note_mount(const std::string& name, const char* file) {
    WritePrivateProfileStringA("mounts", name.c_str(), file, mounts);
}

/// A key that lasts until Windows ends takes no lasting one below it. A load that failed has left an empty
/// one there.
void refuse_keys_below(const std::string& name) {
    HKEY key = nullptr;
    RegDeleteKeyA(HKEY_USERS, name.c_str());
    RegCreateKeyExA(HKEY_USERS, name.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &key,
                    nullptr);
    RegCloseKey(key);
}

int call_real_tool(const std::string& arguments) {
    std::string line = "regg-real.exe " + arguments;
    STARTUPINFOA how{};
    how.cb = sizeof how;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &how, &process))
        return 2;
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 2;
    GetExitCodeProcess(process.hProcess, &code);
    return static_cast<int>(code);
}

int load(const std::string& arguments, const std::string& file, const std::string& name) {
    const int code = call_real_tool(arguments);
    if (code == 0) {
        note_mount(name, file.c_str());
    } else {
        refuse_keys_below(name);
    }
    return code;
}

int unload(const std::string& arguments, const std::string& name) {
    const std::string file = mounted_file(name);
    if (file.empty()) return call_real_tool(arguments);
    const std::string saved = file + ".new";
    save_key(machine::Root::users, name, saved);
    const int code = call_real_tool(arguments);
    if (code == 0 && DeleteFileA(file.c_str()) && MoveFileA(saved.c_str(), file.c_str()))
        note_mount(name, nullptr);
    return code;
}

}  // namespace

int main() {
    const std::string arguments = machine::parse_command_line(GetCommandLineA()).rest;
    const std::vector<std::string> words = machine::split_arguments(arguments);
    if (words.size() < 2) return 2;
    if (words[0] == "anna") return make_anna(words[1]), 0;
    if (words[0] == "hold") {
        const HeldFile held(words[1], HeldFile::Against::everything);
        Sleep(INFINITE);
    }
    if (const char* pause = std::getenv("BRITLOCK_PAUSE")) Sleep(static_cast<DWORD>(std::atoi(pause)));
    const std::string name = words.back().substr(words.back().find('\\') + 1);
    const int code = words[0] == "load" ? load(arguments, words[1], name) : unload(arguments, name);
    std::ofstream(calls, std::ios::app | std::ios::binary) << words[0] << ' ' << name << ' ' << code << '\n';
    return code;
}

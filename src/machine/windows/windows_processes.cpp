#include "machine/windows/windows_processes.h"

#include <windows.h>

#include <shellapi.h>

#include "machine/windows/file_errors.h"

namespace machine {

namespace {

constexpr DWORD rest_milliseconds = 20;

WORD show_command(WindowStyle style) {
    switch (style) {
        case WindowStyle::hidden:
            return SW_HIDE;
        case WindowStyle::normal_focus:
            return SW_SHOWNORMAL;
        case WindowStyle::minimized_focus:
            return SW_SHOWMINIMIZED;
    }
    return SW_SHOWNORMAL;
}

}  // namespace

WindowsProcesses::~WindowsProcesses() {
    for (const auto& [id, handle] : running_)
        CloseHandle(handle);
}

Processes::Started WindowsProcesses::start(std::string_view command_line, WindowStyle style) {
    STARTUPINFOA how{};
    how.cb = sizeof how;
    how.dwFlags = STARTF_USESHOWWINDOW;
    how.wShowWindow = show_command(style);
    PROCESS_INFORMATION started{};
    std::string line(command_line);  // Windows writes into it
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &how, &started)) {
        const FileError error = file_error(GetLastError());
        return {error == no_such_path ? no_such_file : error, 0};
    }
    CloseHandle(started.hThread);
    running_[started.dwProcessId] = started.hProcess;
    return {no_error, started.dwProcessId};
}

uint32_t WindowsProcesses::exit_code(uint32_t id) {
    const auto process = running_.find(id);
    if (process == running_.end()) return 0;
    // The program asks again at once, and handles the events of its windows in between.
    (void)MsgWaitForMultipleObjects(1, &process->second, FALSE, rest_milliseconds, QS_ALLINPUT);
    DWORD code = 1;  // where nothing is known of its end it counts as failed
    (void)GetExitCodeProcess(process->second, &code);
    if (code != still_active) {
        CloseHandle(process->second);
        running_.erase(process);
    }
    return code;
}

void WindowsProcesses::open_address(std::string_view address) {
    (void)ShellExecuteA(nullptr, "open", std::string(address).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

}  // namespace machine

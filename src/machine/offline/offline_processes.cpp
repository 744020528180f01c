#include "machine/offline/offline_processes.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "base/text.h"
#include "machine/command_line.h"

namespace machine {

namespace {

constexpr auto desktop_opener = "xdg-open";
constexpr int poll_milliseconds = 5;

std::vector<char*> pointers(const std::vector<std::string>& texts) {
    std::vector<char*> out;
    out.reserve(texts.size() + 1);
    for (const std::string& text : texts)
        out.push_back(const_cast<char*>(text.c_str()));
    out.push_back(nullptr);
    return out;
}

/// The environment of a child, with what the hive tool must know.
std::vector<std::string> environment(const DriveMap& drives, const MountTable& mounts) {
    // Of two with one name the first counts.
    std::vector<std::string> out = {"BRIGHTLOCK_DRIVES=" + drives.text(),
                                    "BRIGHTLOCK_MOUNTS=" + mounts.folder()};
    for (char** entry = environ; *entry; ++entry)
        out.emplace_back(*entry);
    return out;
}

bool is_explorer(const std::string& program, System& system) {
    return text::equal_ignoring_case(program, "explorer.exe") ||
           text::equal_ignoring_case(program, system.windows_directory() + "\\explorer.exe");
}

}  // namespace

Processes::Started OfflineProcesses::start(std::string_view command_line, WindowStyle) {
    const CommandLine parsed = parse_command_line(command_line);
    if (is_explorer(parsed.program, system_)) return open_folder_window(parsed.rest);
    const auto path = parse_path(parsed.program);
    const auto tool = parse_path(system_.program_directory() + "\\regg.exe");
    if (!path || !tool || !(*path == *tool)) return {no_such_file, 0};
    const auto place = drives_.resolve(*path);
    if (!place || !place->exists) return {no_such_file, 0};
    return start_hive_tool(place->path(), parsed.rest);
}

Processes::Started OfflineProcesses::start_hive_tool(const std::string& host_program,
                                                     const std::string& arguments) {
    std::vector<std::string> words = {host_program};
    for (const std::string& argument : split_arguments(arguments))
        words.push_back(text::to_utf8(argument));

    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return {device_error, 0};
    Child child;
    child.messages = Descriptor(ends[0]);
    const Descriptor error_output(ends[1]);
    child.sealed = registry_.release_mounts();
    if (words.size() == 3 && words[1] == "unload") {
        const std::string user = words[2].substr(words[2].find('\\') + 1);
        const auto record = mounts_.find(text::from_utf8(user).value_or(""));
        child.nothing_to_do = !record;
        if (record && (record->unsealed || !record->sealed.empty())) child.changed_user = user;
    }
    return run(words, std::move(child), error_output.number());
}

Processes::Started OfflineProcesses::open_folder_window(const std::string& folder) {
    const auto path = parse_path(folder);
    const auto place = path ? drives_.resolve(*path) : FileResult<HostPlace>(path.error());
    // The explorer starts and says itself that there is no such folder; nothing here can say it.
    if (!place || !place->exists || !open_folder(place->folder.number(), place->name)) return {no_error, 0};
    return run({desktop_opener, place->path()}, {}, STDERR_FILENO);
}

Processes::Started OfflineProcesses::run(const std::vector<std::string>& arguments, Child child,
                                         int error_output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, error_output, STDERR_FILENO);
    const std::vector<std::string> variables = environment(drives_, mounts_);
    const int failed = posix_spawnp(&child.process, arguments[0].c_str(), &actions, nullptr,
                                    pointers(arguments).data(), pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) return {no_such_file, 0};
    children_.push_back(std::move(child));
    return {no_error, static_cast<uint32_t>(children_.size())};
}

uint32_t OfflineProcesses::exit_code(uint32_t id) {
    if (id == 0) return 0;
    Child& child = children_.at(id - 1);
    if (child.process == 0) return child.code;
    // The program asks again at once: a moment's rest here leaves it alive and the processor free.
    pollfd waiting{child.messages.number(), POLLIN, 0};
    (void)poll(&waiting, 1, poll_milliseconds);
    int status = 0;
    const pid_t ended = waitpid(child.process, &status, WNOHANG);
    if (ended == 0) return still_active;
    // Where nothing is known of its end it counts as failed.
    finish(child,
           ended == child.process && WIFEXITED(status) ? static_cast<uint32_t>(WEXITSTATUS(status)) : 1);
    return child.code;
}

void OfflineProcesses::finish(Child& child, uint32_t code) {
    child.process = 0;
    child.code = code;
    std::array<char, 4096> piece{};
    for (ssize_t size = 0; (size = read(child.messages.number(), piece.data(), piece.size())) > 0;)
        child.message.append(piece.data(), static_cast<size_t>(size));
    if (!child.nothing_to_do) (void)write_all(STDERR_FILENO, child.message);
    while (child.message.ends_with('\n'))
        child.message.pop_back();

    if (child.changed_user.empty() || !on_lost_changes_) return;
    // While one unload is waited for a person can ask for another: the last to end tells how it went for
    // both.
    for (Child& other : children_) {
        if (other.process == 0 || other.changed_user != child.changed_user) continue;
        if (child.code != 0) return;
        other.changed_user.clear();
    }
    if (child.sealed != success) {
        on_lost_changes_(child.changed_user,
                         "the changes could not be noted down: the disk is full or broken");
    } else if (child.code != 0) {
        on_lost_changes_(child.changed_user, child.message);
    }
}

void OfflineProcesses::open_address(std::string_view address) {
    const std::string lower = text::lower(address);
    if (!lower.starts_with("http://") && !lower.starts_with("https://")) return;
    (void)run({desktop_opener, text::to_utf8(address)}, {}, STDERR_FILENO);  // nothing is said of a failure
}

}  // namespace machine

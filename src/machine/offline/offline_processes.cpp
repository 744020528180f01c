#include "machine/offline/offline_processes.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "base/product.h"
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

std::vector<std::string> environment() {
    std::vector<std::string> out;
    for (char** entry = environ; *entry; ++entry)
        out.emplace_back(*entry);
    return out;
}

/// How a process ended, for people; empty where it ended well.
std::string end_of(pid_t ended, int status) {
    if (ended < 0) return "regg.exe ended, and nobody knows how";
    if (WIFSIGNALED(status)) return std::string("regg.exe was broken off: ") + strsignal(WTERMSIG(status));
    return WEXITSTATUS(status) == 0
               ? ""
               : "regg.exe ended with code " + std::to_string(WEXITSTATUS(status)) + " and gave no reason";
}

bool is_explorer(const std::string& program, System& system) {
    return text::equal_ignoring_case(program, "explorer.exe") ||
           text::equal_ignoring_case(program, system.windows_directory() + "\\explorer.exe");
}

}  // namespace

Processes::Started OfflineProcesses::start(std::string_view command_line, WindowStyle) {
    const CommandLine parsed = parse_command_line(command_line);
    if (is_explorer(parsed.program, system_) && !parsed.rest.empty()) return open_folder_window(parsed.rest);
    const auto path = parse_path(parsed.program);
    const auto tool = parse_path(system_.program_directory() + '\\' + product::hive_tool_file);
    if (!path || !tool || !(*path == *tool)) return {no_such_file, 0};
    const auto place = drives_.resolve(*path);
    if (!place || !place->exists) return {no_such_file, 0};
    return start_hive_tool(place->path(), parsed.rest);
}

Processes::Started OfflineProcesses::start_hive_tool(const std::string& host_program,
                                                     const std::string& arguments) {
    std::vector<std::string> words;
    for (const std::string& argument : split_arguments(arguments))
        words.push_back(text::to_utf8(argument));

    Child child;
    const bool unloads = !words.empty() && words[0] == "unload";
    child.known.verb = unloads ? ToolReport::Verb::unload : ToolReport::Verb::load;
    const std::string key = words.empty() ? "" : words.back();
    child.known.name = text::from_utf8(key.substr(key.find('\\') + 1)).value_or("");
    const auto released = registry_.release_mounts(unloads ? child.known.name : "");
    child.sealed = released.code;
    if (unloads && !released.hive && child.sealed == success && is_not_mounted(child.known.name)) {
        child.code = 1;  // as the tool would say; it takes its time to start
        return add(std::move(child));
    }
    if (unloads) take_leave(0);  // a file that was replaced leaves its room when its tool ends
    child.process = ask_tool(host_program, {drives_.text(), mounts_.folder(), words}, released.hive);
    if (child.process.id == 0) return {no_such_file, 0};
    return add(std::move(child));
}

OfflineProcesses::Process OfflineProcesses::ask_tool(const std::string& host_program,
                                                     const ToolRequest& request,
                                                     const std::optional<HandedHive>& hive) {
    const auto asks = [&](const Process& tool) {
        return tool.id != 0 && send(tool.channel.number(), encode(request), hive);
    };
    Process tool = std::exchange(next_tool_, {});
    if (!asks(tool)) {
        if (tool.id != 0) leaving_.push_back(tool.id);  // it was ended while it waited
        tool = start_tool(host_program);
        if (tool.id == 0) return tool;
        if (!asks(tool)) (void)shutdown(tool.channel.number(), SHUT_WR);  // it ends, and that is told
    }
    next_tool_ = start_tool(host_program);
    return tool;
}

OfflineProcesses::Process OfflineProcesses::start_tool(const std::string& host_program) {
    Channel channel = Channel::open();
    if (!channel.of_tool.is_open()) return {};
    Process tool = run({host_program}, channel.of_tool);
    tool.channel = std::move(channel.ours);
    return tool;
}

bool OfflineProcesses::is_not_mounted(const std::string& name) const {
    const auto record = mounts_.find(name);
    return !record && record.error().kind == base::ErrorKind::missing;
}

Processes::Started OfflineProcesses::open_folder_window(const std::string& folder) {
    const auto path = parse_path(folder);
    const auto place = path ? drives_.resolve(*path) : FileResult<HostPlace>(path.error());
    // The explorer starts and says itself that there is no such folder; nothing here can say it.
    if (!place || !place->exists || !open_folder(place->folder.number(), place->name)) return {no_error, 0};
    Child opener{run({desktop_opener, place->path()}), still_active, {}, success};
    return opener.process.id != 0 ? add(std::move(opener))
                                  : Started{no_error, 0};  // a system without a desktop
}

OfflineProcesses::~OfflineProcesses() {
    if (next_tool_.id != 0) leaving_.push_back(next_tool_.id);
    (void)shutdown(next_tool_.channel.number(), SHUT_WR);  // nobody is left to ask it, so it ends
    next_tool_ = Process();
    take_leave(0);
}

/// Of those whose end nobody asks for.
void OfflineProcesses::take_leave(int options) {
    std::erase_if(leaving_, [&](pid_t process) { return waitpid(process, nullptr, options) != 0; });
}

Processes::Started OfflineProcesses::add(Child child) {
    take_leave(WNOHANG);
    children_.push_back(std::move(child));
    return {no_error, static_cast<uint32_t>(children_.size())};
}

OfflineProcesses::Process OfflineProcesses::run(const std::vector<std::string>& arguments,
                                                const Descriptor& of_tool) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    std::vector<std::string> variables = environment();
    if (of_tool.is_open()) {
        posix_spawn_file_actions_adddup2(&actions, of_tool.number(), channel_of_tool);
        variables.push_back(std::string(channel_variable) + "=" + std::to_string(channel_of_tool));
    }
    Process started;
    const int failed = posix_spawnp(&started.id, arguments[0].c_str(), &actions, nullptr,
                                    pointers(arguments).data(), pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) return {};
    started.end = Descriptor(static_cast<int>(syscall(SYS_pidfd_open, started.id, 0)));
    return started;
}

uint32_t OfflineProcesses::exit_code(uint32_t id) {
    if (id == 0) return 0;
    Child& child = children_.at(id - 1);
    Process& process = child.process;
    if (process.id == 0) return child.code;
    // The program asks again at once: a moment's rest here leaves it alive and the processor free.
    std::array<pollfd, 2> waiting{{{process.channel.number(), POLLIN, 0},
                                   {process.end.number(), POLLIN, 0}}};  // closed ones are passed over
    (void)poll(waiting.data(), waiting.size(), poll_milliseconds);
    int status = 0;
    const pid_t ended = waitpid(process.id, &status, WNOHANG);
    // What the tool has told stands: clearing its memory away may take it longer than its work. One that has
    // ended has told all that it ever will.
    ToolReport told = child.known;
    std::optional<HandedHive> hive;
    const bool is_tool = process.channel.is_open();
    const bool is_told = is_tool && decode(receive(process.channel.number(), hive), told);
    if (ended == 0 && !is_told) return still_active;
    if (ended == 0) leaving_.push_back(process.id);
    process = Process();
    // Where nothing is known of its end it counts as failed.
    const bool known = ended > 0 && WIFEXITED(status);
    child.code = is_told ? !told.succeeded : known ? static_cast<uint32_t>(WEXITSTATUS(status)) : 1;
    if (!is_tool) return child.code;
    if (!is_told) {
        told.detail = end_of(ended, status);
        told.succeeded = told.detail.empty();
    }
    report(child, std::move(told), std::move(hive));
    return child.code;
}

void OfflineProcesses::report(Child& child, ToolReport told, std::optional<HandedHive> hive) {
    if (told.verb == ToolReport::Verb::unload && child.sealed != success) {
        told.succeeded = false;
        told.changes_lost = true;
        told.why = child.sealed == disk_full ? base::ErrorKind::no_space : base::ErrorKind::io;
        told.detail = "the changes could not be noted down: the disk is full or broken";
    }
    // To be on the safe side the program unmounts what is not mounted: no news.
    if (told.verb == ToolReport::Verb::unload && told.why == base::ErrorKind::missing && !told.changes_lost)
        return;
    // Another instance clears away what a crashed run may have left, and takes a mount that nobody holds for
    // it.
    if (told.verb == ToolReport::Verb::load && told.succeeded &&
        !registry_.hold(told.name, std::move(hive))) {
        told.succeeded = false;
        told.why = base::ErrorKind::in_use;
        told.detail = "another instance of the program works on this user";
        child.code = 1;
    }
    if (on_report_) return on_report_(told);
    if (!told.succeeded) (void)write_all(STDERR_FILENO, "regg: " + told.detail + "\n");
}

void OfflineProcesses::open_address(std::string_view address) {
    const std::string lower = text::lower(address);
    if (!lower.starts_with("http://") && !lower.starts_with("https://")) return;
    (void)run({desktop_opener, text::to_utf8(address)});  // nothing is said of a failure
}

}  // namespace machine

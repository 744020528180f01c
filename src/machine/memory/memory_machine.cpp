#include "machine/memory/memory_machine.h"

#include "base/product.h"
#include "base/text.h"
#include "machine/command_line.h"
#include "machine/tool_command.h"

namespace machine {

MemorySystem::MemorySystem(const Version& version) : windows(version) {
    const bool nt = version.platform == 2;
    const bool winnt_folder = nt && (version.major < 5 || (version.major == 5 && version.minor == 0));
    windows_folder = winnt_folder ? "C:\\WINNT" : "C:\\WINDOWS";
    system_folder = windows_folder + (nt ? "\\system32" : "\\SYSTEM");
    if (!nt) return;
    profiles_folder = version.major < 5 ? "C:\\WINNT\\Profiles" : "C:\\Documents and Settings";
    groups = {"S-1-1-0", "S-1-5-32-544", "S-1-5-32-545"};
}

std::string MemoryProcesses::find_program(const std::string& program) const {
    const size_t name_at = program.find_last_of("\\/") + 1;
    const std::string ending = program.find('.', name_at) == std::string::npos ? ".exe" : "";
    for (const std::string& folder : {std::string(), system_.program_folder + "\\",
                                      system_.system_folder + "\\", system_.windows_folder + "\\"}) {
        std::string path = folder;
        path.append(program).append(ending);
        if (files_.exists(path)) return path;
    }
    return "";
}

Processes::Started MemoryProcesses::start(std::string_view command_line, WindowStyle style) {
    const CommandLine parsed = parse_command_line(command_line);
    const std::string program = find_program(parsed.program);
    if (program.empty()) return {no_such_file, 0};
    started.push_back({std::string(command_line), style});
    running_.push_back({program, parsed.rest, polls_until_done, std::nullopt});
    return {no_error, static_cast<uint32_t>(running_.size())};
}

uint32_t MemoryProcesses::exit_code(uint32_t id) {
    if (running_.at(id - 1).polls_left-- > 0) {
        if (while_waiting) while_waiting();
        return still_active;
    }
    Running& process = running_.at(id - 1);
    if (!process.code) process.code = run(process);
    return *process.code;
}

uint32_t MemoryProcesses::run(const Running& process) {
    const std::string tool = system_.program_folder + '\\' + product::hive_tool_file;
    if (!text::equal_ignoring_case(process.program, tool)) return 0;
    return failing_tool != 0 ? failing_tool : run_hive_tool(split_arguments(process.arguments));
}

uint32_t MemoryProcesses::run_hive_tool(const std::vector<std::string>& arguments) {
    const auto command = parse_tool_command(arguments);
    if (!command) return 1;
    const std::string_view name = mount_name(command->key);
    if (name.empty()) return 1;
    if (!command->loads) return registry_.unmount(name) ? 0 : 1;
    const auto hive = files_.hive(command->file);
    const bool loadable =
        hive && !registry_.is_mounted(*hive) && files_.open_binary(command->file).error == no_error;
    return loadable && registry_.mount(name, hive) ? 0 : 1;
}

MemoryMachine::MemoryMachine(const Version& version) : system(version) {
    const bool nt = version.platform == 2;
    registry.users_root_open = !nt;
    registry.at(Root::users, ".DEFAULT\\Software");
    registry.at(Root::local_machine, "Software\\Microsoft\\Windows\\CurrentVersion");
    registry.at(Root::current_user, "Software\\Microsoft\\Windows\\CurrentVersion");
    files.add_folder(system.system_folder);
    files.add_file(system.windows_folder + "\\explorer.exe", "MZ");
    files.add_file(system.program_folder + '\\' + product::program_file, "MZ");
    files.add_file(system.program_folder + '\\' + product::hive_tool_file, "MZ");
    if (system.profiles_folder) files.add_folder(*system.profiles_folder);
}

MemoryKey& MemoryMachine::add_profile(std::string_view name) {
    const std::string folder =
        system.profiles_folder.value_or(system.windows_folder + "\\Profiles") + "\\" + std::string(name);
    MemoryKey& hive = files.add_hive(folder + "\\NTUSER.DAT");
    hive["Software"];
    return hive;
}

}  // namespace machine

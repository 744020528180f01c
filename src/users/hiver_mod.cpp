#include "users/hiver_mod.h"

#include "base/product.h"
#include "base/runtime_error.h"

namespace britlock {

namespace {

struct FileComplaint {
    HIVER_MOD::FileStatus status;
    HIVER_MOD::Complaint complaint;
};

constexpr FileComplaint file_complaints[] = {
    {HIVER_MOD::missing, HIVER_MOD::Complaint::file_missing},
    {HIVER_MOD::in_use, HIVER_MOD::Complaint::file_in_use},
    {HIVER_MOD::path_not_found, HIVER_MOD::Complaint::path_missing},
    {HIVER_MOD::other, HIVER_MOD::Complaint::unknown_error},
};

}  // namespace

std::string hive_file_of(std::string_view profiles, std::string_view user) {
    return std::string(profiles).append(user) + "\\NTUSER.DAT";
}

std::string HIVER_MOD::tool_path() {
    return machine_.system.program_directory() + '\\' + product::hive_tool_file;
}

HIVER_MOD::FileStatus HIVER_MOD::hive_file_status(std::string_view path) {
    const auto file = machine_.files.open_binary(path);
    if (file.error == machine::no_error && file.length > 0) return usable;
    const bool empty = file.error == machine::no_error;
    switch (empty ? machine_.files.remove(path) : file.error) {
        case machine::no_error:
            return missing;
        case machine::permission_denied:
        case machine::path_access:
            return in_use;
        case machine::no_such_path:
            return path_not_found;
        default:
            return other;
    }
}

/// None for a file that can be used. The status is asked anew for every complaint, as each is a test of its
/// own.
std::vector<HIVER_MOD::Complaint> HIVER_MOD::complaints_about(std::string_view file) {
    std::vector<Complaint> complaints;
    if (hive_file_status(file) == usable) return complaints;
    for (const FileComplaint& row : file_complaints) {
        if (hive_file_status(file) == row.status) complaints.push_back(row.complaint);
    }
    return complaints;
}

HIVER_MOD::Outcome HIVER_MOD::hive_tool(int mode, std::string_view file, std::string_view name) {
    const std::string hive_key =
        "HKU\\" + std::string(name);  // bare: a name with a blank breaks the command line
    if (mode == unload) {
        run_and_wait('"' + tool_path() + "\" unload " + hive_key, machine::WindowStyle::hidden, true);
        return {done, {}};
    }
    if (mode != load) return {};

    if (hive_file_status(tool_path()) != usable) return {failed, {Complaint::tool_missing}};
    if (!reg_.uninstall_running) {
        if (auto complaints = complaints_about(file); !complaints.empty()) return {failed, complaints};
    }
    run_and_wait('"' + tool_path() + "\" load \"" + std::string(file) + "\" " + hive_key,
                 machine::WindowStyle::hidden, true);
    // The exit code says nothing here. Every hive holds this key: that it can be made or opened proves the
    // load.
    const int disposition = reg_.reg_create_key(HKEY_USERS, std::string(name) + "\\Software");
    if (reg_.uninstall_running) return {};  // so that the uninstall never writes into the hive
    if (disposition == 1 || disposition == 2) return {done, {}};
    return {failed, {Complaint::no_write_access}};
}

HIVER_MOD::Outcome HIVER_MOD::visit(const Visit& visit, const std::function<void()>& work) {
    (void)hive_tool(unload, visit.file, visit.name);
    visit.before_load();
    Outcome loaded = hive_tool(load, visit.file, visit.name);
    if (loaded.result != done) return loaded;
    work();
    return hive_tool(unload, visit.file, visit.name);
}

uint32_t HIVER_MOD::run_and_wait(std::string_view command_line, machine::WindowStyle style, bool keep_alive) {
    const auto process = machine_.processes.start(command_line, style);
    if (process.error != machine::no_error) throw RuntimeError(process.error);
    uint32_t code = 0;
    do {
        if (keep_alive) handle_events_();
        code = machine_.processes.exit_code(process.id);
    } while (code == machine::still_active);
    return code;
}

}  // namespace britlock

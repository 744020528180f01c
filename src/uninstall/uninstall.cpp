#include "uninstall/uninstall.h"

#include "engine/catalogue.h"
#include "users/target.h"

namespace britlock {

namespace {

/// What a save clears, and its probe; but for the two values that every save clears and nothing ever sets.
bool is_lifted(const Restriction& row) {
    const bool is_probe = &row == &Get_CR().front();
    const bool can_be_set = row.box != 0 || row.step == Step::drives;
    return is_probe || (can_be_set && (row.roles & cleared) != 0);
}

}  // namespace

Engine::Written Deinstall_Registry(REGISTRY_MOD& reg, const std::string& user) {
    const Target to = target_of_reading(reg, user);
    make_regpaths(reg, to.root, to.prefix);
    for (const Restriction& row : Get_CR()) {
        if (!is_lifted(row)) continue;
        const WinCode code = reg.reg_write_dword(to.root, to.prefix + row.key, row.value_name, "0");
        if (&row == &Get_CR().front() && code != machine::success) return Engine::Written::refused;
    }
    return Engine::Written::done;
}

void remove_autostart(REGISTRY_MOD& reg) {
    (void)reg.reg_delete_value(HKEY_LOCAL_MACHINE, R"(Software\Microsoft\Windows\CurrentVersion\Run)",
                               "BritlockTray");
}

void remove_former_hive(const machine::Machine& machine, REGISTRY_MOD& reg) {
    machine::System& system = machine.system;
    const std::string hive = system.program_directory() + '\\' + system.program_stem() + ".HIV";
    if (reg.file_has_content(hive)) (void)machine.files.remove(hive);
}

std::string setup_program(REGISTRY_MOD& reg) {
    return reg.get_windows_dir() + R"(uninstall\brightlock suite\setup.exe)";
}

}  // namespace britlock

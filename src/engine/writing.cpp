#include "base/product.h"
#include "base/runtime_error.h"
#include "engine/engine.h"
#include "engine/keys.h"

namespace britlock {

namespace {

/// What an entry of an ini file is set to; none removes it.
using Entry = std::optional<std::string_view>;

const char* key_of(const Restriction& row, const WindowsFamily& family) {
    return row.key ? row.key : family.registration_key;
}

}  // namespace

Engine::Written Engine::write(const Target& to, const RestrictionSet& set) {
    make_regpaths(reg_, to.root, to.prefix);
    const Restriction& probe = restriction(11);
    if (reg_.reg_write_dword(to.root, to.prefix + probe.key, probe.value_name, "0") != machine::success)
        return Written::refused;
    clear_rows(to);
    reset_command_line(to);
    write_applets(to, set);
    for (const Step step : {Step::start_menu, Step::internet_explorer, Step::desktop})
        write_rows(to, step, set);
    write_icon_run(to, set);
    write_programs(to, set);
    write_rows(to, Step::allowed_programs, set);
    write_drives(to, set);
    write_start_options(set);
    write_rows(to, Step::network, set);
    write_own_values(to, set.machine);
    write_beep(to, set);
    write_rows(to, Step::shell, set);
    if (set.ticked(96)) {
        (void)reg_.reg_write_dword(to.root, to.prefix + to.family.command_line_key,
                                   to.family.command_line_value, "1");
    }
    write_rows(to, Step::printers, set);
    return Written::done;
}

void Engine::clear_rows(const Target& to) {
    for (const Restriction& row : Get_CR()) {
        const int times = (row.roles & cleared ? 1 : 0) + (row.roles & cleared_twice ? 1 : 0);
        for (int i = 0; i < times; ++i)
            (void)reg_.reg_write_dword(to.root, to.prefix + row.key, row.value_name, "0");
    }
}

void Engine::reset_command_line(const Target& to) {
    const std::string key = to.family.command_line_key;
    if (to.family.nt) {  // level by level
        for (size_t end = key.find('\\'); end != std::string::npos; end = key.find('\\', end + 1))
            reg_.reg_create_key(to.root, to.prefix + key.substr(0, end));
    }
    reg_.reg_create_key(to.root, to.prefix + key);
    (void)reg_.reg_write_dword(to.root, to.prefix + key, to.family.command_line_value, "0");
}

void Engine::write_rows(const Target& to, Step step, const RestrictionSet& set) {
    for (const Restriction& row : Get_CR()) {
        if (row.step != step || !(row.roles & plain)) continue;
        const bool ticked = set.ticked(row.box);
        if (ticked) (void)reg_.reg_write_dword(to.root, to.prefix + row.key, row.value_name, "1");
        if (row.text) write_text(to, *row.text, set, ticked);
    }
}

void Engine::write_text(const Target& to, const StoredText& text, const RestrictionSet& set, bool ticked) {
    const std::string& content = set.*text.text;
    const bool wanted = text.written == StoredText::When::ticked ? ticked : !content.empty();
    if (wanted) (void)reg_.reg_write_string(to.root, to.prefix + text.key, text.value_name, content);
}

/// What brings the icons to the desktop at the user's logon.
void Engine::write_icon_run(const Target& to, const RestrictionSet& set) {
    const std::string key = to.prefix + key::run;
    if (set.ticked(39)) {
        const std::string command =
            machine_.system.program_directory() + '\\' + product::program_file + " /icon";
        (void)reg_.reg_write_string(to.root, key, "System", command);
    } else {
        // Aims at a key, and the value of this name stays: only FixedLNK makes the run at logon do nothing.
        reg_.reg_delete_key(to.root, key + "\\System");
    }
}

void Engine::write_drives(const Target& to, const RestrictionSet& set) {
    int32_t drive_mask = 0;
    for (size_t k = 0; k < set.drives.size(); ++k) {
        const std::string letter(1, static_cast<char>('A' + k));
        const bool hidden = set.drives[k] == 1;
        if (hidden) drive_mask += 1 << k;
        (void)reg_.reg_write_dword(to.root, to.prefix + key::hide, letter, hidden ? "1" : "0");
    }
    (void)reg_.reg_write_dword(to.root, to.prefix + key::explorer, "NoDrives", std::to_string(drive_mask));
}

/// On every family and for every user: these two lie in a file of the machine.
void Engine::write_start_options(const RestrictionSet& set) {
    make_boot_file_writable();
    auto write = [&](const char* name, int box) {
        machine_.files.write_profile("Options", name, set.ticked(box) ? Entry("0") : Entry(), boot_file);
    };
    write("Autoscan", 61);
    write("Bootkeys", 62);
}

/// The texts become numbers in the user's own branch: a company's name becomes 0, and the machine's
/// registration is not touched.
void Engine::write_own_values(const Target& to, const MachineTexts& texts) {
    const std::pair<int, std::string> values[] = {{80, "1"}, {81, texts.organisation}, {82, texts.owner}};
    for (const auto& [index, number] : values) {
        const Restriction& row = restriction(index);
        (void)reg_.reg_write_dword(to.root, to.prefix + key_of(row, to.family), row.value_name, number);
    }
}

void Engine::write_beep(const Target& to, const RestrictionSet& set) {
    const Restriction& row = restriction(90);
    (void)reg_.reg_write_string(to.root, to.prefix + row.key, row.value_name, set.ticked(90) ? "No" : "Yes");
}

}  // namespace britlock

#include "base/runtime_error.h"
#include "base/text.h"
#include "engine/engine.h"
#include "engine/keys.h"
#include "platform/field_reader.h"

namespace britlock {

RestrictionSet Engine::read(const Target& from, const MachineTexts& texts) {
    RestrictionSet set;
    set.machine = texts;
    read_applets(from, set);
    for (const Step step : {Step::start_menu, Step::internet_explorer, Step::desktop})
        read_rows(from, step, set);
    read_programs(from, set);
    read_rows(from, Step::allowed_programs, set);
    read_drives(from.root, from.prefix + key::hide, set);
    read_start_options(set);
    read_rows(from, Step::network, set);
    const std::string beep = reg_.reg_read_string(from.root, from.prefix + key::sound, "Beep");
    set.boxes.set(90, beep == "No");
    read_rows(from, Step::shell, set);
    set.boxes.set(
        96, is_set(from.root, from.prefix + from.family.command_line_key, from.family.command_line_value));
    read_rows(from, Step::printers, set);
    return set;
}

std::string Engine::text_at(Root root, const std::string& key, const char* value_name) {
    return std::string(text::up_to_nul(reg_.reg_read_string(root, key, value_name)));
}

bool Engine::is_set(Root root, const std::string& key, const char* value_name) {
    return ticks(reg_.reg_read_value(root, key, value_name));
}

/// Of several rows of one box the last has the last word.
void Engine::read_rows(const Target& from, Step step, RestrictionSet& set) {
    for (const Restriction& row : Get_CR()) {
        if (row.step != step || !(row.roles & plain)) continue;
        set.boxes.set(row.box, is_set(from.root, from.prefix + row.key, row.value_name));
        if (row.text) {
            set.*row.text->text = text_at(from.root, from.prefix + row.text->key, row.text->value_name);
        }
    }
}

std::optional<std::string> Engine::picture(const std::string& path) {
    if (!reg_.file_has_content(path)) return std::nullopt;
    std::string bytes;
    if (const auto error = machine_.files.read(path, bytes)) throw RuntimeError(error);
    return bytes;
}

void Engine::read_start_options(RestrictionSet& set) {
    make_boot_file_writable();
    read_boot_file(set);
}

/// The attributes are not set back afterwards.
void Engine::make_boot_file_writable() {
    if (const auto error = machine_.files.set_attributes(boot_file, machine::attribute_normal))
        throw RuntimeError(error);
}

void Engine::read_boot_file(RestrictionSet& set) {
    constexpr size_t name_length = 8;
    std::string bytes;
    if (const auto error = machine_.files.read(boot_file, bytes)) throw RuntimeError(error);
    for (FieldReader fields(bytes); !fields.at_end();) {
        // What stands after the name does not count.
        const std::string name = fields.next().substr(0, name_length);
        if (name == "Autoscan") set.boxes.set(61, 1);
        if (name == "Bootkeys") set.boxes.set(62, 1);
    }
}

/// Reads the product's own record, a value for each letter: a NoDrives that somebody else has set is not
/// shown.
void Engine::read_drives(Root root, const std::string& key, RestrictionSet& set) {
    for (size_t k = 0; k < set.drives.size(); ++k) {
        const std::string letter(1, static_cast<char>('A' + k));
        set.drives[k] = is_set(root, key, letter.c_str());
    }
}

/// By names of the table in the root of the running account, since the paths were never filled in: these
/// boxes start clear, unless a value of that very name lies there. Internet Explorer's rows alone are read
/// where they are.
RestrictionSet Engine::at_start() {
    RestrictionSet set;
    for (const Restriction& row : Get_CR()) {
        if (!(row.roles & Role::at_start)) continue;
        const bool policy = row.step == Step::internet_explorer;
        set.boxes.set(row.box, policy ? ticks(reg_.ie_policy_read(row.value_name))
                                      : is_set(HKEY_CURRENT_USER, "", row.value_name));
    }
    set.wallpaper = set.ticked(37) ? text_at(HKEY_CURRENT_USER, "", "WallpaperName")
                                   : text_at(HKEY_CURRENT_USER, key::desktop, "Wallpaper");
    ignoring_errors([&] { make_boot_file_writable(); }, [&] { read_boot_file(set); });
    read_drives(HKEY_CURRENT_USER, std::string(key::explorer) + "\\Hide", set);
    set.machine = machine_texts();
    return set;
}

MachineTexts Engine::machine_texts() {
    const char* const registration = reg_.family().registration_key;
    return {.organisation = text_at(HKEY_LOCAL_MACHINE, registration, "RegisteredOrganization"),
            .owner = text_at(HKEY_LOCAL_MACHINE, registration, "RegisteredOwner"),
            .profiles_path = {}};
}

}  // namespace britlock

#include "platform/field_reader.h"
#include "ui/main.h"

namespace britlock {

main::Target main::target_of_reading() {
    if (program_.reg.is_nt_family()) return {HKEY_USERS, Combo_user.text() + '\\'};
    return {HKEY_CURRENT_USER, ""};
}

/// Fills the window from the chosen user's registry, and writes nothing there. Every box is set, in both
/// directions; a click that a box fires on the way is overtaken by the steps behind it, which is why the
/// order matters.
void main::REG_Load32() {
    const Target from = target_of_reading();
    const bool nt = program_.reg.is_nt_family();
    read_applets(from);
    read_rows(from, rows::start_menu);
    read_rows(from, rows::internet_explorer);
    read_rows(from, std::array{31, 32, 33, 34, 35, 36, 37});
    read_wallpaper(from);
    read_rows(from, std::array{38, 39});
    t32.set_text(program_.reg.reg_read_string(from.root, from.prefix + reg_key_path[39], "FixedLNKUrl"));
    read_allowed_programs(from);
    read_drives(from.root, from.prefix + key::hide);
    read_boot_options();
    read_rows(from, rows::system_and_network);
    const std::string beep = program_.reg.reg_read_string(from.root, from.prefix + key::sound, "Beep");
    c90.set_value(beep == "No" ? 1 : 0);
    read_rows(from, rows::shell);
    const std::string command_line = from.prefix + (nt ? key::command_line : key::win_old_app);
    c96.set_value(
        ticks(program_.reg.reg_read_value(from.root, command_line, nt ? "DisableCMD" : "Disabled")));
    read_rows(from, rows::printers);
}

void main::read_rows(const Target& from, std::span<const int> rows) {
    for (const int i : rows) {
        const std::string value =
            program_.reg.reg_read_value(from.root, from.prefix + reg_key_path[i], reg_value_name[i]);
        box_of(i).set_value(ticks(value) ? 1 : 0);
    }
}

void main::read_wallpaper(const Target& from) {
    t31.set_text(program_.reg.reg_read_string(from.root, from.prefix + key::desktop, "Wallpaper"));
    if (program_.reg.file_has_content(t31.text())) load_picture(t31.text());
}

void main::load_picture(const std::string& path) {
    std::string bytes;
    const machine::FileError error = program_.machine.files.read(path, bytes);
    if (error != machine::no_error) throw RuntimeError(error);
    pic31.load(std::move(bytes));
}

void main::read_boot_options() {
    c61.set_value(0);
    c62.set_value(0);
    make_boot_file_writable();
    read_boot_file();
}

/// The attributes are not set back afterwards.
void main::make_boot_file_writable() {
    if (const auto error = program_.machine.files.set_attributes(boot_file, machine::attribute_normal)) {
        throw RuntimeError(error);
    }
}

void main::read_boot_file() {
    constexpr size_t name_length = 8;
    std::string bytes;
    if (const auto error = program_.machine.files.read(boot_file, bytes)) throw RuntimeError(error);
    for (FieldReader fields(bytes); !fields.at_end();) {
        const std::string name =
            fields.next().substr(0, name_length);  // what stands behind the name does not count
        if (name == "Autoscan") c61.set_value(1);
        if (name == "Bootkeys") c62.set_value(1);
    }
}

}  // namespace britlock

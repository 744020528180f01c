#include "ui/main.h"

namespace britlock {

/// A drive that is not there cannot be marked; a mark from earlier stays and is written with the others.
void main::get_drives() {
    const uint32_t drives = program_.machine.system.logical_drives();
    for (size_t k = 0; k < drive_boxes.size(); ++k) {
        if (drives >> k & 1) drive_boxes[k].set_enabled(true);
    }
}

void main::settings_get_drives() { read_drives(HKEY_CURRENT_USER, std::string(key::explorer) + "\\Hide"); }

/// Reads the product's own record, a value for each letter: a NoDrives that somebody else has set is not
/// shown.
void main::read_drives(Root root, const std::string& key) {
    for (size_t k = 0; k < drive_boxes.size(); ++k) {
        const std::string letter(1, static_cast<char>('A' + k));
        drive_boxes[k].set_value(ticks(program_.reg.reg_read_value(root, key, letter)) ? 1 : 0);
    }
}

void main::write_drives(const Target& to) {
    int32_t drive_mask = 0;
    for (size_t k = 0; k < drive_boxes.size(); ++k) {
        const std::string letter(1, static_cast<char>('A' + k));
        if (drive_boxes[k].ticked()) drive_mask += 1 << k;
        (void)program_.reg.reg_write_dword(to.root, to.prefix + key::hide, letter,
                                           drive_boxes[k].ticked() ? "1" : "0");
    }
    (void)program_.reg.reg_write_dword(to.root, to.prefix + key::explorer, "NoDrives",
                                       std::to_string(drive_mask));
}

void main::cm51_Click() {
    for (auto& box : drive_boxes) {
        if (box.enabled()) box.set_value(1);
    }
}

void main::cm52_Click() {
    for (auto& box : drive_boxes)
        box.set_value(0);
}

}  // namespace britlock

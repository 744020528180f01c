#include "engine/marking.h"

#include "engine/catalogue.h"

namespace britlock {

namespace {

void set_boxes(RestrictionSet& set, Role role, int value) {
    for (const Restriction& row : Get_CR()) {
        if (row.roles & role) set.boxes.set(row.box, value);
    }
}

}  // namespace

void mark_all(RestrictionSet& set, uint32_t drives) {
    set_boxes(set, marked, 1);
    set.hidden_applets.fill(true);
    hide_drives(set, drives);
}

void unmark_all(RestrictionSet& set) {
    set_boxes(set, marked, 0);
    set.boxes.set(41, 0);
    set.hidden_applets.fill(false);
    show_all_drives(set);
}

void mark_suggested(RestrictionSet& set) { set_boxes(set, suggested, 1); }

void hide_drives(RestrictionSet& set, uint32_t drives) {
    for (size_t k = 0; k < set.drives.size(); ++k) {
        if (drives >> k & 1) set.drives[k] = 1;
    }
}

void show_all_drives(RestrictionSet& set) { set.drives.fill(0); }

}  // namespace britlock

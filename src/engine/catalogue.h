#pragma once

#include <functional>
#include <span>
#include <string>

#include "base/twin.h"
#include "engine/restriction_set.h"

namespace britlock {

/// When a row is read and written, beside the rows of its step.
enum class Step {
    start_menu,
    internet_explorer,
    desktop,
    allowed_programs,
    drives,
    boot_file,
    network,
    beep,
    shell,
    command_line,
    printers,
    own_values,
};

/// What is done with a row, apart from its place and its step.
enum Role : unsigned {
    plain = 1,          ///< a number that is 1 while the box is ticked; every other row has a way of its own
    cleared = 2,        ///< set to 0 before anything is written
    cleared_twice = 4,  ///< that, two times in a row
    marked = 8,         ///< among what "mark all" and "unmark all" reach
    suggested = 16,
    at_start = 32,  ///< read at the start, from the running account
    usual = plain | cleared | marked,
};

/// A text that is stored beside a row.
struct StoredText {
    enum class When { ticked, not_empty };
    const char* key;
    const char* value_name;
    std::string RestrictionSet::*text;
    When written;
};

/// One restriction with all its roles. The order of the rows is that of reading, clearing, writing within a
/// step, and of the boxes on a page.
struct Restriction {
    int index;  ///< of the row; its control's number, if it has one of its own
    int box;    ///< the number in the name of the check box; 0: none
    int page;   ///< where the box stands; 0: the row has no box of its own
    Step step;
    unsigned roles;
    Twin caption;
    const char* value_name;  ///< null: not a value of the registry
    const char* key;         ///< null: told by the family of Windows
    const StoredText* text = nullptr;
};

/// The catalogue of restrictions.
std::span<const Restriction> Get_CR();

const Restriction& restriction(int index);

/// The rows with a box on one page of the window, in their order.
std::vector<int> boxes_of_page(int page);

/// Holds `C:\MSDOS.SYS`' start options of Windows 9X in its section `Options`.
constexpr const char* boot_file = "C:\\MSDOS.SYS";

}  // namespace britlock

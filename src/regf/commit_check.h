#pragma once

#include <map>
#include <string>
#include <vector>

#include "regf/hive.h"
#include "regf/image.h"

namespace regf {

/// What a commit is about to write, and on what grounds.
struct Commit {
    const Image& opened;  ///< free of errors
    const Image& edited;
    const std::vector<uint32_t>& changed_pages;  ///< of the file; all others are as they were opened
    const std::vector<Change>& changes;
    /// Security records whose count of keys was wrong, with the right one.
    const std::map<CellOffset, uint32_t>& corrected_counts;
};

struct Verdict {
    std::string fault;    ///< why it may not be written; empty where it may
    int differences = 0;  ///< of values and keys
};

/// Whether the two images differ in what was asked for and in nothing else, and the edited one keeps every
/// rule of the format. Looks at what the changes could reach only: at the keys they name, and at every cell
/// of a changed bin. All else is the same bytes, and of those nothing is claimed by a key that had no claim
/// to it before.
Verdict judge(const Commit& commit);

}  // namespace regf

#pragma once

#include <memory>
#include <string>

#include "regf/bytes.h"
#include "regf/examine.h"
#include "regf/hive.h"
#include "regf/layout.h"
#include "regf/model.h"
#include "sealed_memory/sealed_memory.h"

namespace regf {

inline Image image_of(ByteView bytes) { return Image(std::make_shared<Memory>(Memory::holding(bytes))); }

/// Damage shall reach what lies beyond the checksum.
inline void repair_checksum(Bytes& image) {
    if (image.size() >= base_block::checksum + 4)
        put32(image, base_block::checksum, base_block_checksum(image));
}

/// The slow judge of a commit: all of the new image against the rules, and all of its tree against that of
/// the old one with the changes made. Empty, or what is wrong.
inline std::string whole_check(ByteView before, ByteView after, const std::vector<Change>& changes) {
    const Image opened = image_of(before);
    const Image image = image_of(after);
    const Examination examination = examine(image, 1);
    if (const Finding* error = examination.first_error()) return describe(*error);
    Model model(opened);
    for (const Change& change : changes) {
        if (!model.apply(change)) return "a change does not fit";
    }
    model.read_everything();
    return model.first_difference(image);
}

}  // namespace regf

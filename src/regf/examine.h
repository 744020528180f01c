#pragma once

#include <unordered_map>
#include <vector>

#include "regf/hive.h"
#include "regf/image.h"

namespace regf {

struct Examination {
    std::vector<Finding> findings;
    /// The tree of keys can be walked: it has a root, no cell is claimed twice, no key lies too deep.
    bool walkable = true;
    std::unordered_map<CellOffset, uint32_t> security_users;  ///< how many keys name each security record

    const Finding* first_error() const;
};

/// Holds an image against every rule of the format.
Examination examine(const Image& image, size_t limit);

struct KeyInTree {
    CellOffset key;
    CellOffset parent;  ///< nil: the root
};
/// Holds some keys alone against the rules: not what lies below them, nor how often the image names their
/// cells elsewhere. `cells` gets every cell that belongs to one of them.
Examination examine_keys(const Image& image, const std::vector<KeyInTree>& keys,
                         std::vector<CellOffset>& cells);
/// The rules for the base block alone.
std::optional<Finding> first_error_in_base_block(const Image& image);

/// "damaged at 0x1A40: ..."
std::string describe(const Finding& finding);

/// XOR of the first 127 words, with the two values that are never stored.
uint32_t base_block_checksum(std::span<const uint8_t> base_block);

}  // namespace regf

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "regf/bytes.h"
#include "regf/layout.h"

namespace regf {

/// Why bins and cells cannot be walked.
struct Problem {
    uint64_t file_offset;
    std::string text;
};

constexpr uint64_t in_file(uint32_t offset) { return base_block_size + uint64_t{offset}; }

/// Walks the bin that begins at `bin`, in bins that end at `end`. `see` is told of each cell: where it
/// begins, and its size, negative where it is in use.
template <class See>
std::optional<Problem> walk_bin(std::span<const uint8_t> file, uint32_t bin, uint32_t end, See see) {
    const auto header = file.subspan(in_file(bin), bin_header_size);
    const uint32_t size = get32(header, bin::size);
    if (!has_signature(header, "hbin")) return Problem{in_file(bin), "no hive bin begins here"};
    if (get32(header, bin::offset) != bin)
        return Problem{in_file(bin), "a hive bin tells another place than its own"};
    if (size == 0 || size % bin_unit != 0 || size > end - bin)
        return Problem{in_file(bin), "a hive bin of impossible size"};
    const uint32_t bin_end = bin + size;
    for (uint32_t at = bin + bin_header_size; at < bin_end;) {  // at least 8 bytes forward each turn
        const auto field = static_cast<int32_t>(get32(file, in_file(at)));
        const int64_t cell = field < 0 ? -int64_t{field} : field;
        if (cell < 8 || cell % 8 != 0 || cell > bin_end - at)
            return Problem{in_file(at), "a cell of impossible size"};
        see(at, field);
        at += static_cast<uint32_t>(cell);
    }
    return std::nullopt;
}

}  // namespace regf

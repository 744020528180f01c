#pragma once

#include <cstddef>
#include <cstdint>

/// Where things lie in a hive file. Positions of a record count from behind the size field of its cell.
namespace regf {

constexpr size_t base_block_size = 4096;
constexpr size_t bin_unit = 4096;
constexpr size_t bin_header_size = 32;
/// Offsets have 31 bits.
constexpr uint64_t largest_bins_size = 0x7FFFF000;
/// What is read at all. Users' hives have a few megabytes, worn-out software hives some hundred; more is made
/// to exhaust the memory.
constexpr uint64_t largest_file = uint64_t{1} << 30;

namespace base_block {
constexpr size_t primary_sequence = 4, secondary_sequence = 8, last_written = 12, major = 20, minor = 24,
                 type = 28, format = 32, root = 36, bins_size = 40, clustering = 44, file_name = 48,
                 file_name_size = 64, flags = 144, checksum = 508;
}

namespace bin {
constexpr size_t offset = 4, size = 8, timestamp = 20;
}

namespace nk {
constexpr size_t flags = 2, last_written = 4, parent = 16, subkey_count = 20, subkey_list = 28,
                 volatile_list = 32, value_count = 36, value_list = 40, security = 44, class_name = 48,
                 largest_subkey_name = 52, largest_class_name = 56, largest_value_name = 60,
                 largest_value_data = 64, name_length = 72, class_length = 74, name = 76;
enum Flags : uint16_t {
    is_volatile = 0x0001,
    is_mount_point = 0x0002,
    is_root = 0x0004,
    no_delete = 0x0008,
    compressed_name = 0x0020,
    predefined_handle = 0x0040,
};
}  // namespace nk

namespace vk {
constexpr size_t name_length = 2, data_size = 4, data = 8, type = 12, flags = 16, name = 20;
constexpr uint16_t compressed_name = 0x0001;
constexpr uint32_t resident = 0x80000000;
constexpr uint32_t most_resident = 4;
}  // namespace vk

namespace sk {
constexpr size_t next = 4, previous = 8, reference_count = 12, descriptor_size = 16, descriptor = 20;
}

namespace db {
constexpr size_t segment_count = 2, segment_list = 4, record_size = 12;
constexpr uint32_t segment_data = 16344;
constexpr uint32_t first_minor_version = 4;
}  // namespace db

constexpr uint32_t deepest_level = 512;
constexpr size_t longest_key_name = 255;         ///< characters
constexpr size_t longest_value_name = 16383;     ///< characters
constexpr size_t largest_single_cell = 1 << 20;  ///< data of a value before there was big data

}  // namespace regf

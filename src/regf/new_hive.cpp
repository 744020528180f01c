#include <algorithm>

#include "regf/bytes.h"
#include "regf/examine.h"
#include "regf/hive.h"
#include "regf/layout.h"
#include "regf/names.h"

namespace regf {

namespace {

/// Owner Administrators, group the system; full control, inherited by keys below, for both.
constexpr uint8_t administrators_only[] =
    {
        0x01, 0x00, 0x04, 0x80, 0x48, 0,    0,    0, 0x58, 0,    0,    0,    0,    0, 0,    0,
        0x14, 0,    0,    0,                          // where owner, group and list stand
        0x02, 0x00, 0x34, 0x00, 0x02, 0,    0,    0,  // a list of two entries
        0x00, 0x02, 0x18, 0x00, 0x3F, 0,    0x0F, 0, 0x01, 2,    0,    0,    0,    0, 0,    5,
        0x20, 0,    0,    0,    0x20, 0x02, 0,    0, 0x00, 0x02, 0x14, 0x00, 0x3F, 0, 0x0F, 0,
        0x01, 1,    0,    0,    0,    0,    0,    5, 0x12, 0,    0,    0,    0x01, 2, 0,    0,
        0,    0,    0,    5,    0x20, 0,    0,    0, 0x20, 0x02, 0,    0,  // S-1-5-32-544
        0x01, 1,    0,    0,    0,    0,    0,    5, 0x12, 0,    0,    0,  // S-1-5-18
};

void put_name(std::span<uint8_t> bytes, size_t at, std::u16string_view name) {
    for (size_t i = 0; i < name.size(); ++i)
        put16(bytes, at + 2 * i, name[i]);
}

}  // namespace

Hive Hive::create(const NewHive& what) {
    Bytes bytes(base_block_size + bin_unit);
    const std::span<uint8_t> all(bytes);
    std::copy_n("regf", 4, all.begin());
    put32(all, base_block::primary_sequence, 1);
    put32(all, base_block::secondary_sequence, 1);
    put64(all, base_block::last_written, what.now);
    put32(all, base_block::major, 1);
    put32(all, base_block::minor, what.minor_version);
    put32(all, base_block::format, 1);
    put32(all, base_block::root, bin_header_size);
    put32(all, base_block::bins_size, bin_unit);
    put32(all, base_block::clustering, 1);
    constexpr size_t longest_file_name = base_block::file_name_size / 2 - 1;
    const std::u16string_view file_name = what.file_name;
    put_name(all, base_block::file_name,
             file_name.substr(file_name.size() - std::min(file_name.size(), longest_file_name)));

    const auto bin = all.subspan(base_block_size);
    std::copy_n("hbin", 4, bin.begin());
    put32(bin, bin::size, bin_unit);
    put64(bin, bin::timestamp, what.now);

    const StoredName name = store_name(what.root_name);
    const auto root_size = static_cast<uint32_t>(cell_size_for(nk::name + name.bytes.size()));
    const auto security_at = static_cast<uint32_t>(bin_header_size) + root_size;
    const auto root = bin.subspan(bin_header_size + 4);
    put32(bin, bin_header_size, -root_size);
    std::copy_n("nk", 2, root.begin());
    put16(root, nk::flags, nk::is_root | nk::no_delete | (name.compressed ? nk::compressed_name : 0));
    put64(root, nk::last_written, what.now);
    for (const size_t list : {nk::subkey_list, nk::volatile_list, nk::value_list, nk::class_name})
        put_cell(root, list, nil);
    put32(root, nk::security, security_at);
    put16(root, nk::name_length, static_cast<uint16_t>(name.bytes.size()));
    std::copy(name.bytes.begin(), name.bytes.end(), root.begin() + nk::name);

    const auto security_size =
        static_cast<uint32_t>(cell_size_for(sk::descriptor + sizeof administrators_only));
    const auto security = bin.subspan(security_at + 4);
    put32(bin, security_at, -security_size);
    std::copy_n("sk", 2, security.begin());
    put32(security, sk::next, security_at);
    put32(security, sk::previous, security_at);
    put32(security, sk::reference_count, 1);
    put32(security, sk::descriptor_size, sizeof administrators_only);
    std::copy(std::begin(administrators_only), std::end(administrators_only),
              security.begin() + sk::descriptor);

    const uint32_t free_at = security_at + security_size;
    put32(bin, free_at, static_cast<uint32_t>(bin_unit) - free_at);
    put32(all, base_block::checksum, base_block_checksum(all));
    return std::move(*open(std::move(bytes)));
}

}  // namespace regf

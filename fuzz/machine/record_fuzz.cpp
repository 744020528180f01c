#include "machine/offline/mount_record.h"
#include "machine/offline/tool_report.h"
#include "regf/hive_check.h"

using namespace fuzz;

namespace {

uint32_t crc32(ByteView bytes) {
    uint32_t crc = 0xFFFFFFFF;
    for (const uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (crc % 2 * 0xEDB88320);
    }
    return ~crc;
}

/// Damage shall reach what lies behind the checksums of the frames.
void repair(Bytes& record) {
    for (std::span<uint8_t> rest(record); rest.size() > 8;) {
        const size_t size = regf::get32(rest, 0);
        if (size > rest.size() - 8) return;
        regf::put32(rest, 4, crc32(rest.subspan(8, size)));
        rest = rest.subspan(8 + size);
    }
}

}  // namespace

/// An input is the record of a mount. Its changes are made to a small hive.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Bytes bytes(data, data + size);
    repair(bytes);
    machine::ToolReport report;
    (void)machine::decode({reinterpret_cast<const char*>(data), size}, report);
    const auto record = machine::parse_record({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    if (!record) return 0;
    require(record->sealed_bytes <= bytes.size());
    regf::Hive hive = regf::Hive::create({.file_name = u"fuzz", .now = 1});
    require(hive.create(u"Software\\Policies", 2).ok());
    for (const regf::Change& change : record->sealed) {
        if (!hive.apply(change)) return 0;
    }
    require_sound_commit(hive);
    return 0;
}

#include "regf/hive_check.h"
#include "regf/recovery.h"

using namespace fuzz;

namespace {

constexpr size_t sector = 512;

/// Damage to an entry shall reach what lies behind its hashes.
void repair_entries(Bytes& log) {
    for (size_t at = sector; at + sector <= log.size();) {
        const std::span<uint8_t> rest = std::span(log).subspan(at);
        const size_t size = regf::get32(rest, 4);
        if (!regf::has_signature(rest, "HvLE") || size < sector || size > rest.size()) return;
        regf::put64(rest, 24, regf::log_entry_hash(rest.subspan(40, size - 40)));
        regf::put64(rest, 32, regf::log_entry_hash(rest.first(32)));
        at += size;
    }
}

}  // namespace

/// An input is a hive and its two logs: the sizes of the first and the second, four bytes each, then the
/// three.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 8) return 0;
    ByteView rest = ByteView(data, size).subspan(8);
    Bytes parts[3];
    for (size_t i = 0; i < 3; ++i) {
        const size_t told = i < 2 ? regf::get32(ByteView(data, size), 4 * i) : rest.size();
        const ByteView part = rest.first(std::min(told, rest.size()));
        parts[i].assign(part.begin(), part.end());
        rest = rest.subspan(part.size());
        if (data[0] % 16 != 15 || i > 0) repair_checksum(parts[i]);  // a hive's own may be wrong
        repair_entries(parts[i]);
    }
    auto opened = regf::Hive::open(parts[0], {{"LOG1", parts[1]}, {"LOG2", parts[2]}});
    if (!opened) return 0;
    regf::Hive& hive = *opened;
    (void)walk(hive, hive.root());
    if (!hive.read_only_reason().empty()) return 0;
    (void)hive.create(u"Fuzz\\Key", 5);
    (void)hive.set_value(hive.root(), u"value", {regf::REG_BINARY, Bytes(17000, 3)}, 5);
    require_sound_commit(hive);
    return 0;
}

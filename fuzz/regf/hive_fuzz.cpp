#include <cstdlib>

#include "regf/bytes.h"
#include "regf/examine.h"
#include "regf/hive.h"
#include "regf/layout.h"

namespace {

using regf::Bytes;

/// An input is a hive, or "join", the size of the hive, the hive, and its log.
struct Input {
    Bytes hive;
    std::vector<regf::Log> logs;
};

/// Damage shall reach what lies behind the checksum.
void repair_checksum(Bytes& file) {
    if (file.size() >= regf::base_block::checksum + 4)
        regf::put32(file, regf::base_block::checksum, regf::base_block_checksum(file));
}

Input take_apart(regf::ByteView bytes) {
    if (bytes.size() < 8 || !regf::has_signature(bytes, "join"))
        return {Bytes(bytes.begin(), bytes.end()), {}};
    const regf::ByteView rest = bytes.subspan(8);
    const size_t size = std::min<size_t>(regf::get32(bytes, 4), rest.size());
    Bytes log(rest.begin() + static_cast<std::ptrdiff_t>(size), rest.end());
    repair_checksum(log);
    return {Bytes(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(size)), {{"LOG", std::move(log)}}};
}

void require(bool holds) {
    if (!holds) std::abort();
}

/// A number that tells one content from another.
size_t walk(const regf::Hive& hive, regf::Key key) {
    size_t sum = hive.name(key).size() + hive.class_name(key).size() + hive.security(key).size();
    for (const auto& value : hive.values(key)) {
        sum = sum * 31 + value.name.size() * 7 + value.data.size() + value.type;
        (void)hive.value(key, value.name);
    }
    for (regf::Key child : hive.subkeys(key))
        sum = sum * 37 + walk(hive, child);
    return sum;
}

void edit(regf::Hive& hive) {
    const auto children = hive.subkeys(hive.root());
    (void)hive.create(u"Fuzz\\Key", 5);
    (void)hive.set_value(hive.root(), u"value", {regf::REG_BINARY, Bytes(17000, 3)}, 5);
    if (children.empty()) return;
    for (const auto& value : hive.values(children.front()))
        (void)hive.set_value(children.front(), value.name, {regf::REG_SZ, Bytes(value.data.size() + 9, 1)},
                             5);
    (void)hive.create_subkey(children.front(), u"M", 5);
    (void)hive.delete_key(children.back(), 5);
}

}  // namespace

// What the fuzzer calls is named by it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input = take_apart({data, size});
    repair_checksum(input.hive);
    (void)regf::validate(input.hive);
    auto opened = regf::Hive::open(std::move(input.hive), input.logs);
    if (!opened) return 0;
    regf::Hive& hive = *opened;
    (void)walk(hive, hive.root());
    const bool writable = hive.read_only_reason().empty();
    edit(hive);
    require(writable || hive.changes().empty());
    if (!writable) return 0;
    const auto sealed = hive.sealed_image(6);
    require(sealed.ok());
    const auto again = regf::Hive::open(*sealed);
    require(again.ok() && again->read_only_reason().empty());
    require(walk(*again, again->root()) == walk(hive, hive.root()));
    return 0;
}

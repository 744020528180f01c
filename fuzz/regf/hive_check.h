#pragma once

#include <cstdlib>

#include "regf/whole_check.h"

/// What the fuzzers demand of every hive.
namespace fuzz {

using regf::Bytes;
using regf::ByteView;
using regf::repair_checksum;

inline void require(bool holds) {
    if (!holds) std::abort();
}

/// A number that tells one content from another.
inline size_t walk(const regf::Hive& hive, regf::Key key) {
    size_t sum = hive.name(key).size() + hive.class_name(key).size() + hive.security(key).size();
    for (const auto& value : hive.values(key)) {
        sum = sum * 31 + value.name.size() * 7 + value.data.size() + value.type;
        (void)hive.value(key, value.name);
    }
    for (regf::Key child : hive.subkeys(key))
        sum = sum * 37 + walk(hive, child);
    return sum;
}

/// What is edited can be written, is sound then, and has the same content.
inline void require_sound_commit(regf::Hive& hive) {
    const auto sealed = hive.seal(6);
    require(sealed.ok());
    require(regf::whole_check(sealed->opened, sealed->image, hive.changes()).empty());
    const auto again = regf::Hive::open(sealed->image);
    require(again.ok() && again->read_only_reason().empty() && !again->recovered());
    require(walk(*again, again->root()) == walk(hive, hive.root()));
}

}  // namespace fuzz

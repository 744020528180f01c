#pragma once

#include <gmock/gmock.h>

#include "host.h"
#include "regf/bytes.h"
#include "regf/examine.h"
#include "regf/hive.h"
#include "regf/layout.h"
#include "regf_file/hive_file.h"

namespace regf {

using namespace testing;

/// A name and data as they stand in a dump.
std::string escaped(std::u16string_view name);
std::string hex(ByteView bytes);

/// Everything that a hive says, one line for each key and value, in the order of the file. Names are escaped
/// so that a line is ASCII whatever they hold.
std::string dump(const Hive& hive);
/// The same with time stamps, flags, class names and security descriptors.
std::string full_dump(const Hive& hive);

/// Why a call did not do it.
template <class Result>
std::optional<ErrorKind> failure(const Result& result) {
    return result ? std::nullopt : std::optional(result.error().kind);
}

/// The image that a commit would write. Fails the test where the judge of commits passed what the slow one
/// does not.
Result<Bytes> sealed_image(Hive& hive, FileTime now);

inline Bytes read_file(const fs::path& file) { return ::bytes_of<Bytes>(file); }
inline void write_file(const fs::path& file, const Bytes& bytes) {
    write_bytes(file, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

/// What another reader says of a hive file; empty where it cannot read it.
std::string foreign_dump(const fs::path& file);
/// Fails the test with the surroundings of the first difference.
void expect_same(const std::string& ours, const std::string& theirs, const std::string& what);

}  // namespace regf

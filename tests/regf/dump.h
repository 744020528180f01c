#pragma once

#include <string>

#include "regf/hive.h"
#include "temporary_folder.h"

namespace regf {

/// A name and data as they stand in a dump.
std::string escaped(std::u16string_view name);
std::string hex(ByteView bytes);

/// Everything that a hive says, one line for each key and value, in the order of the file. Names are escaped
/// so that a line is ASCII whatever they hold.
std::string dump(const Hive& hive);
/// The same with time stamps, flags, class names and security descriptors.
std::string full_dump(const Hive& hive);

/// The image that a commit would write. Fails the test where the judge of commits passed what the slow one
/// does not.
Result<Bytes> sealed_image(Hive& hive, FileTime now);

Bytes read_file(const std::string& path);
void write_file(const std::string& path, const Bytes& bytes);

/// What another reader says of a hive file; empty where it cannot read it.
std::string foreign_dump(const std::string& file);
/// Fails the test with the surroundings of the first difference.
void expect_same(const std::string& ours, const std::string& theirs, const std::string& what);

}  // namespace regf

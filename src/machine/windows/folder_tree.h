#pragma once

#include <functional>
#include <string>

#include "machine/codes.h"
#include "machine/files.h"

namespace machine {

/// Shows the entries of a search to `visit`, without "." and "..", until one answers with an error. The first
/// error; no_such_file where nothing fits, not even the dots.
FileError for_each_entry(const std::string& pattern, const std::function<FileError(const FoundFile&)>& visit);

/// Windows' attributes; no_attributes for what is not there.
uint32_t attributes_of(const std::string& path);
FileError set_attributes_of(const std::string& path, uint32_t attributes);

/// The path with each name as the disk spells it: PROGRA~1 is Program Files.
std::string long_path(const std::string& path);

/// A folder with all below it. Marks that protect a file do not hold it back; links are removed, never
/// followed.
FileError delete_tree(const std::string& folder);
/// What is in `folder` into another that exists; links are passed over.
FileError copy_tree(const std::string& folder, const std::string& target);

}  // namespace machine

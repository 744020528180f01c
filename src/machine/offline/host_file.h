#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "hostfile/place.h"
#include "machine/codes.h"

/// Files of the Linux system underneath, as the program's calls need them: names without regard to case,
/// errors as its run-time errors.
namespace machine {

using hostfile::Descriptor;
using hostfile::HostPlace;

template <class T>
using FileResult = BasicResult<T, FileError>;

/// The run-time error for a number of errno, or for an error of the libraries below.
FileError file_error(int number);
FileError file_error(base::ErrorKind kind);

/// Names of a folder, in the order of the disk, without "." and "..".
FileResult<std::vector<std::string>> names_in(int folder);

/// A link, or a folder that an NTFS driver shows as one though it is a junction.
bool is_link(const Descriptor& file, const struct stat& status);

/// The place of a name without regard to case; the exact spelling comes first.
FileResult<HostPlace> find_in(Descriptor folder, std::string_view ansi_name);

/// permission_denied for a link; no_such_path for what is no folder.
FileResult<Descriptor> open_folder(int folder, const std::string& name);
/// Opens a regular file: path_access for a folder, permission_denied for a link and for all else.
FileResult<Descriptor> open_file(const HostPlace& place, int flags);

/// Content beyond the limit is device_error: no file that the program reads is that large.
FileResult<std::string> read_all(int file, size_t limit = size_t{64} << 20);
FileError write_all(int file, std::string_view bytes);

/// Puts a new file in the place of an old one or of none: `fill` writes it beside, it takes over the marks of
/// the old one as far as they can be kept (the content matters more than, say, an index flag), and its name.
/// The old file or the new one, whole.
FileError replace_file(const HostPlace& place, const std::function<FileError(int)>& fill);

}  // namespace machine

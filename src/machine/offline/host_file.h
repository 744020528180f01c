#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "machine/codes.h"
#include "regf/file.h"

/// Files of the Linux system underneath, by open folders and names: no path is walked twice, no link is
/// followed, nothing but regular files and folders is opened.
namespace machine {

using regf::Descriptor;

template <class T>
using FileResult = BasicResult<T, FileError>;

/// A name in an open folder; "." is the folder itself.
struct HostPlace {
    Descriptor folder;
    std::string name;  ///< as on disk, or as it would be made; UTF-8
    bool exists = false;

    regf::FilePlace hive() const { return {folder.number(), name}; }
    /// The full path at this moment, for other programs and for people.
    std::string path() const;
};

/// The run-time error for a number of errno, or for a failure of the hive library.
FileError file_error(int number);
FileError file_error(regf::ErrorKind kind);

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

/// How long a person's hive is waited for.
constexpr std::chrono::milliseconds a_moment(300);

/// Another instance of the program holds the lock on a hive for some milliseconds, while it reads or commits:
/// that is waited for, since a refusal would read as if nothing were stored there.
regf::Result<regf::FileLock> lock_with_patience(
    const regf::FilePlace& place, regf::FileLock::Purpose purpose,
    std::chrono::milliseconds patience = std::chrono::milliseconds(2000));

/// Makes a folder and all above it, for this user alone.
regf::Result<Done> make_folders(const std::string& path);

}  // namespace machine

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/codes.h"

namespace machine {

/// Windows' attribute bits.
enum FileAttributes : uint32_t {
    attribute_normal = 0,
    attribute_read_only = 1,
    attribute_hidden = 2,
    attribute_system = 4,
    attribute_directory = 16,
    attribute_archive = 32,
    attribute_reparse_point = 0x400,  ///< a link or a junction
};
constexpr uint32_t no_attributes = 0xFFFFFFFF;  ///< what a missing file answers

struct FoundFile {
    std::string name;
    uint32_t attributes = 0;
};

/// The files of the machine being worked on. Paths are Windows paths with a drive letter, ANSI bytes,
/// compared without case. Only regular files and folders exist; a device, a pipe or a socket may not be
/// opened.
class Files {
  public:
    virtual ~Files() = default;

    struct Measured {
        FileError error = no_error;
        int64_t length = 0;
    };
    /// Opens for binary access, reads the length, closes: for reading and writing, else for reading alone. A
    /// missing file is made. permission_denied: another program holds it, and nothing else. path_access: a
    /// folder, the empty path, or what may not be opened or made. no_such_path.
    virtual Measured open_binary(std::string_view path) = 0;

    /// permission_denied where another program holds the file. A missing `C:\MSDOS.SYS` of an installation
    /// that is not running reads as empty, and takes attributes.
    virtual FileError read(std::string_view path, std::string& bytes) = 0;
    /// The old content or the new one, whole, whatever happens.
    virtual FileError write(std::string_view path, std::string_view bytes) = 0;
    /// Opens the file, makes it where it is missing, puts the bytes in at an offset from 0, closes it. What
    /// lies beyond stays, and a gap becomes zeros. Not whole whatever happens: for a file that grows piece by
    /// piece.
    virtual FileError write_at(std::string_view path, int64_t offset, std::string_view bytes) = 0;
    virtual FileError remove(std::string_view path) = 0;

    /// no_attributes for what is not there.
    virtual uint32_t attributes(std::string_view path) = 0;
    /// no_such_file for what is not there.
    virtual FileError set_attributes(std::string_view path, uint32_t attributes) = 0;

    /// What FindFirstFileA and its followers give for a path whose last part may hold `*` and `?`; sorted
    /// without case; "." and ".." are left out, but where they would fit ("*") an empty folder, or an empty
    /// drive, gives an empty list. None where the folder or the drive is missing, cannot be entered, or
    /// nothing fits (an invalid handle).
    virtual std::optional<std::vector<FoundFile>> find(std::string_view pattern) = 0;

    /// A folder and all below it; links in it are removed, never followed. A drive's root, the Windows,
    /// profile and program folders: permission_denied. no_such_path where it is missing.
    virtual FileError delete_folder(std::string_view path) = 0;
    /// Puts a copy of a folder's content into `target` (made where missing), overwriting what bears the same
    /// name.
    virtual FileError copy_folder(std::string_view path, std::string_view target) = 0;

    /// GetPrivateProfileStringA with an empty default: the text behind the equals sign without surrounding
    /// blanks and one pair of quotes. A file name without a folder lies in the Windows directory.
    virtual std::string read_profile(std::string_view section, std::string_view key,
                                     std::string_view file) = 0;
    /// WritePrivateProfileStringA: sets an entry, or removes it (no value). Sections and keys compare without
    /// case and keep the spelling found; comments and order stay. A missing file is made, but not by removing
    /// an entry.
    virtual bool write_profile(std::string_view section, std::string_view key,
                               std::optional<std::string_view> value, std::string_view file) = 0;
};

}  // namespace machine

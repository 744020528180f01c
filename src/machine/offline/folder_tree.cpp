#include "machine/offline/folder_tree.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "base/text.h"
#include "machine/offline/file_attributes.h"

namespace machine {

namespace {

/// The place for a copy: what bears its name there, without regard to case where Windows can spell it.
FileResult<HostPlace> place_in(const Descriptor& folder, const std::string& name) {
    if (const auto ansi = text::from_utf8(name)) return find_in(folder.duplicate(), *ansi);
    struct stat status {};
    const bool exists = fstatat(folder.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    return HostPlace{folder.duplicate(), name, exists};
}

FileError copy_bytes(int from, int to) {
    std::array<char, 65536> piece{};
    for (;;) {
        const ssize_t size = read(from, piece.data(), piece.size());
        if (size < 0) return file_error(errno);
        if (size == 0) return no_error;
        if (const FileError error = write_all(to, {piece.data(), static_cast<size_t>(size)})) return error;
    }
}

FileError copy_file(const HostPlace& source, const HostPlace& target) {
    const uint32_t old = attributes_of(target);
    if (old != no_attributes && (old & attribute_directory)) return path_access;
    if (old != no_attributes && (old & attribute_read_only)) return permission_denied;
    const auto file = open_file(source, O_RDONLY);
    if (!file) return file.error();
    struct stat status {};
    if (fstat(file->number(), &status) != 0) return file_error(errno);
    // The copy bears the marks of its source, not those of what it replaces.
    const HostPlace fresh{target.folder.duplicate(), target.name, false};
    const auto fill = [&](int to) {
        if (const FileError error = copy_bytes(file->number(), to)) return error;
        const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
        return futimens(to, times.data()) == 0 ? no_error : file_error(errno);
    };
    if (const FileError error = replace_file(fresh, fill)) return error;
    return set_attributes_of(fresh, attributes_of(source));
}

FileError copy_below(const Descriptor& from, const Descriptor& to, const struct stat& root_of_copy) {
    struct stat from_status {};
    if (fstat(from.number(), &from_status) != 0) return file_error(errno);
    const auto names = names_in(from.number());
    if (!names) return names.error();
    for (const std::string& name : *names) {
        const HostPlace source{from.duplicate(), name, true};
        const uint32_t attributes = attributes_of(source);
        if (attributes == no_attributes || (attributes & attribute_reparse_point)) continue;
        const auto target = place_in(to, name);
        if (!target) return target.error();
        if (!(attributes & attribute_directory)) {
            if (const FileError error = copy_file(source, *target)) return error;
            continue;
        }
        const auto folder = open_folder(from.number(), name);
        if (!folder) return folder.error();
        struct stat status {};
        if (fstat(folder->number(), &status) != 0) return file_error(errno);
        if (status.st_dev != from_status.st_dev || hostfile::is_same_file(status, root_of_copy)) continue;
        if (!target->exists && mkdirat(to.number(), target->name.c_str(), 0777) != 0)
            return file_error(errno);
        const auto copy = open_folder(to.number(), target->name);
        if (!copy) return copy.error();
        if (const FileError error = copy_below(*folder, *copy, root_of_copy)) return error;
    }
    return no_error;
}

}  // namespace

FileError delete_content(const Descriptor& folder) {
    struct stat above {};
    if (fstat(folder.number(), &above) != 0) return file_error(errno);
    const auto names = names_in(folder.number());
    if (!names) return names.error();
    for (const std::string& name : *names) {
        struct stat status {};
        if (fstatat(folder.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            return file_error(errno);
        if (S_ISDIR(status.st_mode)) {
            if (status.st_dev != above.st_dev) return permission_denied;  // another disk is mounted here
            const auto below = open_folder(folder.number(), name);
            // A junction is refused by open_folder; removing it removes the junction alone.
            if (!below && below.error() != permission_denied) return below.error();
            if (below) {
                if (const FileError error = delete_content(*below)) return error;
            }
        }
        if (unlinkat(folder.number(), name.c_str(), S_ISDIR(status.st_mode) ? AT_REMOVEDIR : 0) != 0)
            return file_error(errno);
    }
    return no_error;
}

FileError copy_content(const Descriptor& from, const Descriptor& to) {
    struct stat source {};
    struct stat target {};
    if (fstat(from.number(), &source) != 0 || fstat(to.number(), &target) != 0) return file_error(errno);
    if (hostfile::is_same_file(source, target)) return permission_denied;
    return copy_below(from, to, target);
}

}  // namespace machine

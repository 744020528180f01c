#include "machine/offline/offline_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "base/text.h"
#include "machine/offline/file_attributes.h"
#include "machine/offline/folder_tree.h"
#include "machine/profile_text.h"
#include "machine/protected_folders.h"

namespace machine {

namespace {

/// Windows has this file in any case; an installation on a disk of its own may lack it, and is worked on all
/// the same.
bool is_boot_options_file(std::string_view path) { return text::equal_ignoring_case(path, "C:\\MSDOS.SYS"); }

}  // namespace

bool OfflineFiles::is_in_use(const HostPlace& place) const {
    const auto lock = hostfile::FileLock::acquire(place, hostfile::FileLock::Purpose::look);
    if (!lock && lock.error().kind == base::ErrorKind::in_use) return true;
    const auto mounted = is_mounted(drives_, mounts_, place);
    return !mounted || *mounted;  // where that cannot be told it may be
}

FileError OfflineFiles::check_change(const HostPlace& place) const {
    const auto file = open_file(place, O_RDONLY);
    if (!file) return file.error();
    return is_in_use(place) || (attributes_of(place) & attribute_read_only) ? permission_denied : no_error;
}

Files::Measured OfflineFiles::open_binary(std::string_view path) {
    const auto refused = [](FileError error) {
        return Measured{error == permission_denied ? path_access : error, 0};
    };
    const auto place = drives_.resolve(path);
    if (!place) return refused(place.error());
    if (!place->exists) {
        const Descriptor made(openat(place->folder.number(), place->name.c_str(),
                                     O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
        return made.is_open() ? Measured{} : refused(file_error(errno));
    }
    const auto file = open_file(*place, O_RDONLY);  // a file that may not be written is opened all the same
    if (!file) return refused(file.error());
    if (is_in_use(*place)) return {permission_denied, 0};
    struct stat status {};
    if (fstat(file->number(), &status) != 0) return {file_error(errno), 0};
    return {no_error, status.st_size};
}

FileError OfflineFiles::read(std::string_view path, std::string& bytes) {
    const auto place = drives_.resolve(path);
    if (!place) return place.error();
    if (!place->exists && is_boot_options_file(path)) {
        bytes.clear();
        return no_error;
    }
    const auto file = open_file(*place, O_RDONLY);
    if (!file) return file.error();
    if (is_in_use(*place)) return permission_denied;
    auto content = read_all(file->number());
    if (!content) return content.error();
    bytes = std::move(*content);
    return no_error;
}

FileError OfflineFiles::write(std::string_view path, std::string_view bytes) {
    const auto place = drives_.resolve(path);
    if (!place) return place.error();
    if (place->exists) {
        if (const FileError error = check_change(*place)) return error;
    }
    return replace_file(*place, [&](int file) { return write_all(file, bytes); });
}

FileError OfflineFiles::write_at(std::string_view path, int64_t offset, std::string_view bytes) {
    if (const Measured made = open_binary(path); made.error != no_error) return made.error;
    const auto place = drives_.resolve(path);
    if (!place) return place.error();
    if (const FileError error = check_change(*place)) return error;
    const auto file = open_file(*place, O_WRONLY);
    if (!file) return file.error();
    if (lseek(file->number(), offset, SEEK_SET) < 0) return file_error(errno);
    return write_all(file->number(), bytes);
}

FileError OfflineFiles::remove(std::string_view path) {
    const auto place = drives_.resolve(path);
    if (!place) return place.error();
    if (const FileError error = check_change(*place)) return error;
    return unlinkat(place->folder.number(), place->name.c_str(), 0) == 0 ? no_error : file_error(errno);
}

uint32_t OfflineFiles::attributes(std::string_view path) {
    const auto place = drives_.resolve(path);
    return place ? attributes_of(*place) : no_attributes;
}

FileError OfflineFiles::set_attributes(std::string_view path, uint32_t attributes) {
    const auto place = drives_.resolve(path);
    if (!place) return place.error();
    if (!place->exists && is_boot_options_file(path)) return no_error;
    return set_attributes_of(*place, attributes);
}

std::optional<std::vector<FoundFile>> OfflineFiles::find(std::string_view pattern) {
    const auto search = parse_pattern(pattern);
    if (!search) return std::nullopt;
    const auto folder = drives_.open_folder(search->folder);
    if (!folder) return std::nullopt;
    const auto names = names_in(folder->number());
    if (!names) return std::nullopt;
    std::vector<FoundFile> found;
    for (const std::string& name : *names) {
        const auto ansi = text::from_utf8(name);
        if (!ansi || !is_plain_name(*ansi) || !fits(*ansi, search->names)) continue;
        const uint32_t attributes = attributes_of({folder->duplicate(), name, true});
        if (attributes != no_attributes) found.push_back({*ansi, attributes});
    }
    return search_result(*search, std::move(found));
}

bool OfflineFiles::is_kept(const Descriptor& folder, char drive) const {
    std::vector<struct stat> upwards;  // the folder, the one that holds it, and so on to the root
    for (Descriptor at = folder.duplicate();;
         at = Descriptor(openat(at.number(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC))) {
        struct stat status {};
        if (!at.is_open() || fstat(at.number(), &status) != 0) return true;  // nobody knows what it is
        if (!upwards.empty() && hostfile::is_same_file(upwards.back(), status)) break;
        upwards.push_back(status);
    }
    const auto is = [&](const struct stat& status, const WindowsPath& path) {
        const auto opened = drives_.open_folder(path);
        struct stat other {};
        return opened && fstat(opened->number(), &other) == 0 && hostfile::is_same_file(status, other);
    };
    const auto system = parse_path(system_.system_directory());
    const auto profiles = parse_path(system_.profiles_directory().value_or(""));
    if (profiles && upwards.size() > 1 && is(upwards[1], *profiles)) return true;
    if (system &&
        std::any_of(upwards.begin(), upwards.end(), [&](const auto& at) { return is(at, *system); }))
        return true;
    for (WindowsPath kept : kept_folders(drive, system_)) {
        for (;; kept = kept.parent()) {
            if (is(upwards[0], kept)) return true;
            if (kept.parts.empty()) break;
        }
    }
    return false;
}

FileError OfflineFiles::delete_folder(std::string_view path) {
    const auto parsed = parse_path(path);
    if (!parsed) return parsed.error();
    const auto place = drives_.resolve(*parsed);
    if (!place) return place.error();
    if (!place->exists) return no_such_path;
    if (is_protected(*parsed, system_)) return permission_denied;
    const auto folder = open_folder(place->folder.number(), place->name);
    if (!folder) return folder.error();
    if (is_kept(*folder, parsed->drive)) return permission_denied;
    if (const FileError error = delete_content(*folder)) return error;
    const bool removed = unlinkat(place->folder.number(), place->name.c_str(), AT_REMOVEDIR) == 0;
    return removed ? no_error : file_error(errno);
}

FileError OfflineFiles::copy_folder(std::string_view path, std::string_view target) {
    const auto source_path = parse_path(path);
    const auto target_path = parse_path(target);
    if (!source_path) return source_path.error();
    if (!target_path) return target_path.error();
    const auto source = drives_.open_folder(*source_path);
    if (!source) return source.error();
    if (target_path->lies_in(*source_path)) return permission_denied;
    const auto place = drives_.resolve(*target_path);
    if (!place) return place.error();
    if (!place->exists && mkdirat(place->folder.number(), place->name.c_str(), 0777) != 0)
        return file_error(errno);
    const auto folder = open_folder(place->folder.number(), place->name);
    if (!folder) return folder.error() == no_such_path ? path_access : folder.error();
    return copy_content(*source, *folder);
}

std::string OfflineFiles::read_profile(std::string_view section, std::string_view key,
                                       std::string_view file) {
    return read_profile_file(*this, system_.windows_directory(), section, key, file);
}

bool OfflineFiles::write_profile(std::string_view section, std::string_view key,
                                 std::optional<std::string_view> value, std::string_view file) {
    return write_profile_file(*this, system_.windows_directory(), section, key, value, file);
}

}  // namespace machine

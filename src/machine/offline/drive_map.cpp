#include "machine/offline/drive_map.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>

#include "base/text.h"

namespace machine {

namespace {

std::string escaped(std::string_view folder) {
    std::string out;
    for (char c : folder)
        out += c == '%' ? std::string("%25") : c == ';' ? std::string("%3B") : std::string(1, c);
    return out;
}

std::string unescaped(std::string_view folder) {
    std::string out;
    for (size_t i = 0; i < folder.size(); ++i) {
        const std::string_view code = folder.substr(i, 3);
        const bool known = code == "%25" || code == "%3B";
        out += code == "%25" ? '%' : code == "%3B" ? ';' : folder[i];
        if (known) i += 2;
    }
    return out;
}

}  // namespace

base::Result<Done> DriveMap::add(const WindowsPath& at, const std::string& host_folder) {
    Descriptor folder(open(host_folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.is_open()) {
        const auto kind = errno == ENOENT ? base::ErrorKind::missing : base::ErrorKind::refused;
        return base::Error{kind, "cannot open the folder " + host_folder + ": " + strerror(errno)};
    }
    entries_.push_back({at, host_folder, std::move(folder)});
    return Done{};
}

base::Result<Done> DriveMap::add_drive(char letter, const std::string& host_folder) {
    const char drive = text::upper(letter);
    if (drive < 'A' || drive > 'Z')
        return base::Error{base::ErrorKind::invalid, "a drive's letter is one from A to Z"};
    return add({drive, {}}, host_folder);
}

std::string DriveMap::text() const {
    std::string out;
    for (const Entry& entry : entries_) {
        if (!entry.at.parts.empty()) continue;
        if (!out.empty()) out += ';';
        out.append(1, entry.at.drive).append("=").append(escaped(entry.host_folder));
    }
    return out;
}

base::Result<DriveMap> DriveMap::parse(std::string_view text) {
    DriveMap map;
    while (!text.empty()) {
        const std::string_view drive = text.substr(0, text.find(';'));
        text.remove_prefix(std::min(drive.size() + 1, text.size()));
        if (drive.size() < 3 || drive[1] != '=')
            return base::Error{base::ErrorKind::invalid, "the list of drives cannot be read"};
        const auto added = map.add_drive(drive[0], unescaped(drive.substr(2)));
        if (!added) return added.error();
    }
    return map;
}

uint32_t DriveMap::letters() const {
    uint32_t bits = 0;
    for (const Entry& entry : entries_)
        bits |= 1u << (entry.at.drive - 'A');
    return bits;
}

const DriveMap::Entry* DriveMap::entry_of(const WindowsPath& path) const {
    const Entry* nearest = nullptr;
    for (const Entry& entry : entries_) {
        const bool nearer = !nearest || entry.at.parts.size() > nearest->at.parts.size();
        if (path.lies_in(entry.at) && nearer) nearest = &entry;
    }
    return nearest;
}

FileResult<HostPlace> DriveMap::resolve(const WindowsPath& path) const {
    const Entry* entry = entry_of(path);
    if (!entry) return no_such_path;
    HostPlace place{entry->folder.duplicate(), ".", true};
    for (size_t level = entry->at.parts.size(); level < path.parts.size(); ++level) {
        auto folder = machine::open_folder(place.folder.number(), place.name);
        if (!folder) return folder.error();
        auto next = find_in(std::move(*folder), path.parts[level]);
        if (!next) return next.error();
        place = std::move(*next);
    }
    return place;
}

FileResult<HostPlace> DriveMap::resolve(std::string_view path) const {
    const auto parsed = parse_path(path);
    if (!parsed) return parsed.error();
    return resolve(*parsed);
}

FileResult<Descriptor> DriveMap::open_folder(const WindowsPath& path) const {
    const auto place = resolve(path);
    if (!place) return place.error();
    return machine::open_folder(place->folder.number(), place->name);
}

std::string file_for_people(const std::string& file) {
    return file.starts_with('/') ? file : text::to_utf8(file);
}

base::Result<HostPlace> locate_hive(const DriveMap& drives, const std::string& file) {
    if (file.starts_with('/')) {
        if (!drives.is_empty())
            return base::Error{base::ErrorKind::refused, file + " is on no drive of this installation"};
        auto place = hostfile::place_of(file);
        if (place) return place;
        return base::Error{base::ErrorKind::io,
                           place.error().message};  // not `missing`: a disk may come back
    }
    auto place = drives.resolve(file);
    if (place && place->exists) return std::move(*place);
    const std::string name = file_for_people(file);
    if (place) return base::Error{base::ErrorKind::missing, name + " is not there"};
    if (place.error() == permission_denied)
        return base::Error{base::ErrorKind::refused, name + " may not be opened"};
    return base::Error{base::ErrorKind::io, name + " cannot be reached: its folder is not there"};
}

}  // namespace machine

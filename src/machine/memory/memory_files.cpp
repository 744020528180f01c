#include "machine/memory/memory_files.h"

#include <algorithm>

#include "base/text.h"
#include "machine/profile_text.h"
#include "machine/protected_folders.h"

namespace machine {

void MemoryFiles::add_folder(std::string_view path, uint32_t attributes) {
    const auto place = parse_path(path);
    if (!place->parts.empty()) add_folder(place->parent().text());
    Entry& entry = entries_[place->text()];
    entry.attributes |= attributes | attribute_directory;
}

void MemoryFiles::add_file(std::string_view path, std::string_view bytes, uint32_t attributes) {
    const auto place = parse_path(path);
    add_folder(place->parent().text());
    entries_.insert_or_assign(place->text(), Entry{attributes, std::string(bytes), nullptr});
}

MemoryKey& MemoryFiles::add_hive(std::string_view path) {
    add_file(path, "regf");
    Entry& entry = entries_[parse_path(path)->text()];
    entry.hive = std::make_shared<MemoryKey>();
    return *entry.hive;
}

std::shared_ptr<MemoryKey> MemoryFiles::hive(std::string_view path) const {
    const auto place = parse_path(path);
    if (!place) return nullptr;
    const auto entry = entries_.find(place->text());
    return entry == entries_.end() ? nullptr : entry->second.hive;
}

bool MemoryFiles::exists(std::string_view path) const {
    const auto place = parse_path(path);
    return place && entries_.contains(place->text());
}

void MemoryFiles::fail(std::string_view path, FileError error) {
    faults_.insert_or_assign(parse_path(path)->text(), error);
}

MemoryFiles::Found MemoryFiles::look(std::string_view path) {
    const auto place = parse_path(path);
    if (!place) return {place.error(), "", nullptr};
    Found found{no_error, place->text(), nullptr};
    const auto fault = faults_.find(found.path);
    if (fault != faults_.end()) found.error = fault->second;
    const auto folder = entries_.find(place->parent().text());
    if (folder == entries_.end() || !folder->second.is_folder()) found.error = no_such_path;
    const auto entry = entries_.find(found.path);
    if (found.error == no_error && entry != entries_.end()) found.entry = &entry->second;
    return found;
}

MemoryFiles::Found MemoryFiles::look_for_file(std::string_view path) {
    Found found = look(path);
    if (!found.entry) return found;
    if (found.entry->is_folder()) found.error = path_access;
    if (found.entry->hive && registry_.is_mounted(*found.entry->hive)) found.error = permission_denied;
    return found;
}

Files::Measured MemoryFiles::open_binary(std::string_view path) {
    const Found found = look_for_file(path);
    if (found.error != no_error) return {found.error, 0};
    if (!found.entry) add_file(found.path, "");
    return {no_error, found.entry ? static_cast<int64_t>(found.entry->bytes.size()) : 0};
}

FileError MemoryFiles::read(std::string_view path, std::string& bytes) {
    const Found found = look_for_file(path);
    if (found.error != no_error) return found.error;
    if (!found.entry) return no_such_file;
    bytes = found.entry->bytes;
    return no_error;
}

FileError MemoryFiles::write(std::string_view path, std::string_view bytes) {
    const Found found = look_for_file(path);
    if (found.error != no_error) return found.error;
    if (found.entry && (found.entry->attributes & attribute_read_only)) return permission_denied;
    add_file(found.path, bytes, found.entry ? found.entry->attributes : attribute_archive);
    return no_error;
}

FileError MemoryFiles::write_at(std::string_view path, int64_t offset, std::string_view bytes) {
    const Found found = look_for_file(path);
    if (found.error != no_error) return found.error;
    std::string content = found.entry ? found.entry->bytes : "";
    const auto start = static_cast<size_t>(offset);
    content.resize(std::max(content.size(), start + bytes.size()));
    content.replace(start, bytes.size(), bytes);
    return write(path, content);
}

FileError MemoryFiles::remove(std::string_view path) {
    const Found found = look_for_file(path);
    if (found.error != no_error) return found.error;
    if (!found.entry) return no_such_file;
    if (found.entry->attributes & attribute_read_only) return permission_denied;
    entries_.erase(found.path);
    return no_error;
}

uint32_t MemoryFiles::attributes(std::string_view path) {
    const Found found = look(path);
    return found.entry ? found.entry->attributes : no_attributes;
}

FileError MemoryFiles::set_attributes(std::string_view path, uint32_t attributes) {
    const Found found = look(path);
    if (found.error != no_error) return found.error;
    if (!found.entry) return no_such_file;
    // What a file is cannot be set, only what it bears.
    constexpr uint32_t fixed = attribute_directory | attribute_reparse_point;
    found.entry->attributes = (found.entry->attributes & fixed) | (attributes & ~fixed);
    return no_error;
}

std::optional<std::vector<FoundFile>> MemoryFiles::find(std::string_view pattern) {
    const auto search = parse_pattern(pattern);
    if (!search) return std::nullopt;
    const std::string folder = search->folder.text();
    if (!entries_.contains(folder) || faults_.contains(folder)) return std::nullopt;
    std::vector<FoundFile> found;
    for (const auto& [path, entry] : entries_) {
        const auto place = parse_path(path);
        if (place->parts.empty() || !(place->parent() == search->folder)) continue;
        if (fits(place->parts.back(), search->names))
            found.push_back({place->parts.back(), entry.attributes});
    }
    return search_result(*search, std::move(found));
}

FileError MemoryFiles::delete_folder(std::string_view path) {
    const Found found = look(path);
    if (found.error != no_error) return found.error;
    if (!found.entry || !found.entry->is_folder()) return no_such_path;
    const auto folder = parse_path(path);
    if (is_protected(*folder, system_)) return permission_denied;
    std::erase_if(entries_, [&](const auto& entry) { return parse_path(entry.first)->lies_in(*folder); });
    return no_error;
}

FileError MemoryFiles::copy_folder(std::string_view path, std::string_view target) {
    const Found from = look(path);
    const Found to = look(target);
    if (from.error != no_error) return from.error;
    if (to.error != no_error) return to.error;
    if (!from.entry || !from.entry->is_folder()) return no_such_path;
    if (to.entry && !to.entry->is_folder()) return path_access;
    const auto source_folder = parse_path(path);
    const auto target_folder = parse_path(target);
    if (target_folder->lies_in(*source_folder)) return permission_denied;
    add_folder(to.path);
    const auto before = entries_;
    for (const auto& [name, entry] : before) {
        const auto place = parse_path(name);
        if (!place->lies_in(*source_folder) || (entry.attributes & attribute_reparse_point)) continue;
        WindowsPath copy = *target_folder;
        copy.parts.insert(copy.parts.end(), place->parts.begin() + source_folder->parts.size(),
                          place->parts.end());
        if (entry.is_folder()) {
            add_folder(copy.text(), entry.attributes);
        } else {
            add_file(copy.text(), entry.bytes, entry.attributes);
        }
    }
    return no_error;
}

std::string MemoryFiles::read_profile(std::string_view section, std::string_view key, std::string_view file) {
    return read_profile_file(*this, system_.windows_directory(), section, key, file);
}

bool MemoryFiles::write_profile(std::string_view section, std::string_view key,
                                std::optional<std::string_view> value, std::string_view file) {
    return write_profile_file(*this, system_.windows_directory(), section, key, value, file);
}

}  // namespace machine

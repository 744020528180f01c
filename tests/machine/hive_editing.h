#pragma once

#include "machine/offline_fixture.h"
#include "regf_file/hive_file.h"

/// Looks into hive files and changes them, past every machine.

inline regf::HiveFile read_hive_file(const fs::path& path) {
    const auto place = *hostfile::place_of(path);
    return must(regf::read_hive(place, must(hostfile::FileLock::acquire(place))));
}

inline std::optional<regf::Value> read_value(const fs::path& path, std::u16string_view key,
                                             std::u16string_view name) {
    const regf::HiveFile file = read_hive_file(path);
    const auto found = file.hive.find(key);
    return found ? file.hive.value(*found, name) : std::nullopt;
}

inline void set_text(const fs::path& path, std::u16string_view key, std::u16string_view name,
                     std::u16string_view text) {
    regf::HiveFile file = read_hive_file(path);
    const regf::Value value{regf::REG_SZ, regf::bytes_of(std::u16string(text) + u'\0')};
    const regf::FileTime now = regf::current_file_time();
    must(file.hive.set_value(must(file.hive.create(key, now)), name, value, now));
    must(regf::commit(*hostfile::place_of(path), file.hive, file.identity, now));
}

/// What is wrong with a hive file: nothing, for a healthy one.
inline std::string findings(const fs::path& path) {
    std::string out;
    for (const regf::Finding& finding : regf::validate(bytes_of<regf::Bytes>(path)))
        out += std::to_string(finding.file_offset) + ": " + finding.text + "\n";
    return out;
}

#pragma once

#include "machine/offline_fixture.h"
#include "regf_file/hive_file.h"

/// Looks into hive files and changes them, past every machine.

inline regf::HiveFile read_hive_file(const fs::path& path) {
    const auto place = *hostfile::place_of(path);
    const auto lock = hostfile::FileLock::acquire(place);
    EXPECT_TRUE(lock) << lock.error().message;
    auto file = regf::read_hive(place, *lock);
    EXPECT_TRUE(file) << file.error().message;
    return std::move(*file);
}

inline std::optional<regf::Value> read_value(const fs::path& path, std::u16string_view key,
                                             std::u16string_view name) {
    const regf::HiveFile file = read_hive_file(path);
    const auto found = file.hive.find(key);
    return found ? file.hive.value(*found, name) : std::nullopt;
}

/// The text of a value without its closing NUL.
inline std::u16string text_of(const regf::Value& value) {
    const std::u16string text = regf::units_of(value.data);
    return text.substr(0, text.find(u'\0'));
}

inline void set_text(const fs::path& path, std::u16string_view key, std::u16string_view name,
                     std::u16string_view text) {
    regf::HiveFile file = read_hive_file(path);
    const regf::Value value{regf::REG_SZ, regf::bytes_of(std::u16string(text) + u'\0')};
    const regf::FileTime now = regf::current_file_time();
    const auto made = file.hive.create(key, now);
    ASSERT_TRUE(made) << made.error().message;
    const auto set = file.hive.set_value(*made, name, value, now);
    ASSERT_TRUE(set) << set.error().message;
    const auto written = regf::commit(*hostfile::place_of(path), file.hive, file.identity, now);
    ASSERT_TRUE(written) << written.error().message;
}

/// What is wrong with a hive file: nothing, for a healthy one.
inline std::string findings(const fs::path& path) {
    std::string out;
    for (const regf::Finding& finding : regf::validate(bytes_of<regf::Bytes>(path)))
        out += std::to_string(finding.file_offset) + ": " + finding.text + "\n";
    return out;
}

#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "base/text.h"
#include "machine/codes.h"

namespace machine {

/// The levels of a subkey. Empty ones (a closing or a doubled backslash) are passed over; bad_path_name for a
/// leading backslash.
inline BasicResult<std::vector<std::string_view>, WinCode> split_subkey(std::string_view subkey) {
    subkey = text::up_to_nul(subkey);
    if (subkey.starts_with('\\')) return bad_path_name;
    std::vector<std::string_view> levels;
    while (!subkey.empty()) {
        const std::string_view level = subkey.substr(0, subkey.find('\\'));
        subkey.remove_prefix(std::min(level.size() + 1, subkey.size()));
        if (!level.empty()) levels.push_back(level);
    }
    return levels;
}

/// The name in HKU\name, the key at which the hive tool mounts a hive; empty where it is none directly below
/// HKEY_USERS.
inline std::string_view mount_name(std::string_view key) {
    constexpr std::string_view root = "HKU\\";
    if (!text::equal_ignoring_case(key.substr(0, root.size()), root)) return "";
    const std::string_view name = key.substr(root.size());
    return name.find_first_of(std::string_view("\\\0", 2)) == std::string_view::npos ? name : "";
}

}  // namespace machine

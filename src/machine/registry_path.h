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

}  // namespace machine

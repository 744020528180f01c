#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"

namespace machine {

/// What the hive tool is asked for, on every system that it is made for.
struct ToolCommand {
    static constexpr auto usage = "the command is: load \"<file>\" HKU\\<name>, or: unload HKU\\<name>";

    bool loads;        ///< else it unloads
    std::string file;  ///< empty where it unloads
    std::string key;   ///< as it is written
};

/// Nothing where the words make none of the two commands.
inline std::optional<ToolCommand> parse_tool_command(const std::vector<std::string>& words) {
    if (words.size() == 3 && words[0] == "load") return ToolCommand{true, words[1], words[2]};
    if (words.size() == 2 && words[0] == "unload") return ToolCommand{false, "", words[1]};
    return std::nullopt;
}

/// The name in HKU\name, the key at which the tool mounts a hive; empty where it is none directly below
/// HKEY_USERS.
inline std::string_view mount_name(std::string_view key) {
    constexpr std::string_view root = "HKU\\";
    if (!text::equal_ignoring_case(key.substr(0, root.size()), root)) return "";
    const std::string_view name = key.substr(root.size());
    return name.find_first_of(std::string_view("\\\0", 2)) == std::string_view::npos ? name : "";
}
constexpr auto not_a_mount = " is not a key directly below HKU";  ///< after a key without such a name

}  // namespace machine

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace machine {

/// With this variable in its environment the hive tool takes its command from the program that started it,
/// through the descriptor of this number, and reports there. Without it, it takes the words of its command
/// line and tells people, on its standard error.
constexpr auto channel_variable = "BRIGHTLOCK_CHANNEL";
constexpr int channel_of_tool = 3;

/// What the program asks the hive tool to do.
struct ToolRequest {
    std::string drives;              ///< DriveMap::text
    std::string mounts;              ///< the folder of the table
    std::vector<std::string> words;  ///< of its command line, UTF-8
    bool operator==(const ToolRequest&) const = default;
};

/// As the bytes of one message, and back; none where they are no request.
std::string encode(const ToolRequest& request);
std::optional<ToolRequest> decode_request(std::string_view bytes);

}  // namespace machine

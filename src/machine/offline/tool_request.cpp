#include "machine/offline/tool_request.h"

#include "base/text.h"

namespace machine {

// Each text with a zero behind it, where a command line would end too.

std::string encode(const ToolRequest& request) {
    std::string bytes = request.drives + '\0' + request.mounts + '\0';
    for (const std::string& word : request.words)
        bytes.append(text::up_to_nul(word)) += '\0';
    return bytes;
}

std::optional<ToolRequest> decode_request(std::string_view bytes) {
    std::vector<std::string> texts;
    while (!bytes.empty()) {
        const size_t end = bytes.find('\0');
        if (end == std::string_view::npos) return std::nullopt;
        texts.emplace_back(bytes.substr(0, end));
        bytes.remove_prefix(end + 1);
    }
    if (texts.size() < 2) return std::nullopt;
    return ToolRequest{texts[0], texts[1], {texts.begin() + 2, texts.end()}};
}

}  // namespace machine

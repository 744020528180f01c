#include "machine/offline/tool_report.h"

#include <algorithm>
#include <cstdio>

namespace machine {

namespace {

constexpr int no_kind = -1;
constexpr auto last_kind = static_cast<int>(base::ErrorKind::invalid);

}  // namespace

std::string encode(const ToolReport& report) {
    const int why = report.why ? static_cast<int>(*report.why) : no_kind;
    return std::to_string(report.succeeded) + " " + std::to_string(why) + " " +
           std::to_string(report.changed) + " " + std::to_string(report.changes_lost) + " " + report.detail +
           "\n";
}

bool decode(std::string_view bytes, ToolReport& report) {
    if (!bytes.ends_with('\n')) return false;  // the tool died while it wrote
    const std::string line(bytes.substr(0, bytes.size() - 1));
    int succeeded = 0, why = 0, changed = 0, lost = 0, detail_at = 0;
    const int fields =
        std::sscanf(line.c_str(), "%d %d %d %d%n", &succeeded, &why, &changed, &lost, &detail_at);
    if (fields != 4 || why < no_kind || why > last_kind) return false;
    report.succeeded = succeeded != 0;
    report.why = why == no_kind ? std::nullopt : std::optional(static_cast<base::ErrorKind>(why));
    report.changed = changed;
    report.changes_lost = lost != 0;
    report.detail = line.substr(std::min(line.size(), static_cast<size_t>(detail_at) + 1));
    return true;
}

}  // namespace machine

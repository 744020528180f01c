#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/error.h"
#include "base/twin.h"
#include "machine/offline/tool_report.h"

/// The lines that the Linux edition shows below its windows. All texts are UTF-8.
namespace strip {

/// Which Windows is open: "Windows XP in /mnt/windows, read-only".
std::string open_windows(const std::string& family, const std::string& folder, bool read_only,
                         Language language);

/// What came of a run of the hive tool: "Anna: 5 values changed, saved 14:02". None where there is nothing
/// to tell yet: a hive was mounted.
std::optional<std::string> outcome(const machine::ToolReport& report, std::string_view clock,
                                   Language language);

/// Why something failed. `detail` is English; in German what it means comes first.
std::string reason(std::optional<base::ErrorKind> why, const std::string& detail, Language language);

}  // namespace strip

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/error.h"

namespace machine {

/// What came of one run of the hive tool.
struct ToolReport {
    enum class Verb { load, unload };
    Verb verb = Verb::load;
    std::string name;  ///< of the hive below HKEY_USERS, ANSI
    bool succeeded = false;
    std::optional<base::ErrorKind> why;  ///< none: it succeeded, or nobody knows (it was killed, say)
    std::string detail;                  ///< one line, English, UTF-8; never empty where it failed
    int changed = 0;                     ///< by an unload: values and keys that now differ in the file
    bool changes_lost = false;           ///< changes to the hive were dropped for good

    bool operator==(const ToolReport&) const = default;
};
using OnToolReport = std::function<void(const ToolReport&)>;

/// What the tool alone knows (all but verb and name) as the bytes that go through the descriptor, and back.
/// False where they are not whole; the report is as it was then.
std::string encode(const ToolReport& report);
bool decode(std::string_view bytes, ToolReport& report);

}  // namespace machine

#include "machine/protected_folders.h"

#include <algorithm>

namespace machine {

std::vector<WindowsPath> kept_folders(char drive, System& system) {
    const std::string root = {drive, ':', '\\'};
    std::vector<WindowsPath> kept;
    for (const std::string& path :
         {system.windows_directory(), system.system_directory(), system.profiles_directory().value_or(""),
          system.program_directory(), root + "Program Files", root + "Programme"}) {
        if (auto parsed = parse_path(path)) kept.push_back(std::move(*parsed));
    }
    return kept;
}

bool is_protected(const WindowsPath& folder, System& system) {
    if (folder.parts.empty()) return true;
    const auto system_directory = parse_path(system.system_directory());
    if (system_directory && folder.lies_in(*system_directory)) return true;
    const auto profiles = parse_path(system.profiles_directory().value_or(""));
    if (profiles && folder.parent() == *profiles) return true;
    const auto kept = kept_folders(folder.drive, system);
    return std::any_of(kept.begin(), kept.end(),
                       [&](const WindowsPath& path) { return path.lies_in(folder); });
}

}  // namespace machine

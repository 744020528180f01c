#include "machine/protected_folders.h"

namespace machine {

bool is_protected(const WindowsPath& folder, System& system) {
    if (folder.parts.empty()) return true;
    const auto system_directory = parse_path(system.system_directory());
    if (system_directory && folder.lies_in(*system_directory)) return true;
    const auto profiles = parse_path(system.profiles_directory().value_or(""));
    if (profiles && folder.parent() == *profiles) return true;

    const std::string drive = {folder.drive, ':', '\\'};
    for (const std::string& path :
         {system.windows_directory(), system.system_directory(), system.profiles_directory().value_or(""),
          system.program_directory(), drive + "Program Files", drive + "Programme"}) {
        const auto kept = parse_path(path);
        if (kept && kept->lies_in(folder)) return true;
    }
    return false;
}

}  // namespace machine

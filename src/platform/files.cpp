#include <limits>

#include "base/runtime_error.h"
#include "base/text.h"
#include "base/wildcards.h"
#include "platform/registry_mod.h"

namespace britlock {

bool REGISTRY_MOD::file_has_content(std::string_view path) {
    const auto file = machine_.files.open_binary(path);
    if (file.error == machine::permission_denied) return true;  // the NTUSER.DAT of somebody who is logged on
    if (file.error != machine::no_error) return false;
    if (file.length > 0) return true;
    (void)machine_.files.remove(path);  // what the opening has made, or an empty file that was there
    return false;
}

int REGISTRY_MOD::find_files(std::string_view directory, std::vector<std::string>& files,
                             std::string_view pattern, uint32_t attributes, bool recursive) {
    std::string folder(directory);
    if (!folder.ends_with('\\')) folder += '\\';
    const std::string wanted = text::lower(pattern);

    const auto found = machine_.files.find(folder + '*');
    if (!found) throw RuntimeError(76);
    int16_t count = 0;
    auto add = [&](int more) {
        if (count + more > std::numeric_limits<int16_t>::max()) throw RuntimeError(6);
        count = static_cast<int16_t>(count + more);
    };
    for (const machine::FoundFile& entry : *found) {
        const std::string path = folder + entry.name;
        const uint32_t its = machine_.files.attributes(path);
        if (its & machine::attribute_directory) {
            const bool real = its != machine::no_attributes && entry.name != "." && entry.name != "..";
            if (recursive && real) add(find_files(path, files, wanted, attributes, true));
        } else if ((its & attributes) == attributes && text::like(text::lower(entry.name), wanted)) {
            add(1);
            files.push_back(path);
        }
    }
    return count;
}

}  // namespace britlock

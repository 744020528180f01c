#include "users/user_directory.h"

#include <algorithm>

#include "base/product.h"
#include "base/text.h"

namespace britlock {

namespace {

/// Folders whose name holds one of these, in this case, belong to nobody.
constexpr const char* nobodys_folders[] = {"NetworkService", "LocalService", "Default User", "All Users"};

bool belongs_to_a_user(const machine::FoundFile& entry) {
    if (!(entry.attributes & machine::attribute_directory)) return false;
    if (entry.name == "." || entry.name == "..") return false;
    return std::none_of(std::begin(nobodys_folders), std::end(nobodys_folders),
                        [&](const char* part) { return entry.name.find(part) != std::string::npos; });
}

}  // namespace

std::string UserDirectory::find_base_path() {
    std::string set = reg_.reg_read_string(HKEY_LOCAL_MACHINE, product::key, "ProfileMainPath");
    if (!set.empty()) return set;  // as it stands: nobody adds a backslash
    const ProfileFallback fallback = reg_.family().profiles;
    if (fallback == ProfileFallback::none) return "";
    std::string told = reg_.get_profiles_dir();
    if (!told.empty()) return told;
    if (fallback == ProfileFallback::below_windows) return reg_.get_windows_dir() + "\\Profiles\\";
    return reg_.get_windows_dir().substr(0, 3) + "Dokumente und Einstellungen\\";
}

std::vector<std::string> UserDirectory::profiles_scan() {
    const std::string base_path = find_base_path();
    const auto found = machine_.files.find(base_path + "*.*");
    std::vector<std::string> unreadable;
    int count = 0;
    for (const machine::FoundFile& entry : found.value_or(std::vector<machine::FoundFile>{})) {
        if (!belongs_to_a_user(entry)) continue;
        ++count;
        profile_names[count] = entry.name;
        profile_hive_paths[count] = base_path + entry.name + "\\NTUSER.DAT";
        if (!reg_.file_has_content(profile_hive_paths[count]))
            unreadable.push_back(profile_hive_paths[count]);
    }
    profile_count = count;
    profile_base_path = base_path;
    return unreadable;
}

std::vector<SidProblem> UserDirectory::GET_SIDS() {
    std::vector<SidProblem> problems;
    int entries = 0;
    for_each_sid([&](const std::string& sid) {
        ++entries;
        sid_list[entries] = sid;
        const auto user = REG_GetUserProfileList(std::string(profile_list_key) + '\\' + sid);
        sid_user_list[entries] = user ? *user : "";
        if (!user) problems.push_back(user.error());
    });
    return problems;
}

void UserDirectory::for_each_sid(const std::function<void(const std::string&)>& visit) {
    constexpr size_t longest_well_known = 10;  // S-1-5-18 and its like are no people
    std::string name;
    machine::WinCode code = machine::success;
    for (uint32_t index = 0; code != machine::no_more_items; ++index) {
        code = machine_.registry.enum_key(HKEY_LOCAL_MACHINE, profile_list_key, index, name);
        if (code == machine::more_data && name.size() > longest_well_known) visit(name);
    }
}

BasicResult<std::string, SidProblem> UserDirectory::REG_GetUserProfileList(std::string_view sidname) {
    machine::RawValue image_path;
    const auto got = machine_.registry.query(HKEY_LOCAL_MACHINE, sidname, "ProfileImagePath", image_path);
    if (got.open != machine::success) return SidProblem::not_opened;
    constexpr size_t buffer_size = 255;  // a longer path does not fit, and counts as not read
    if (got.action != machine::success || image_path.data.size() > buffer_size) return SidProblem::not_read;
    const std::string path(text::up_to_nul(image_path.data));
    const size_t backslash = path.rfind('\\');
    return backslash == std::string::npos ? "" : path.substr(backslash + 1);
}

BasicResult<std::string, SidProblem> UserDirectory::NameToSID(std::string_view name) {
    for (int i = 1;; ++i) {
        if (sid_list[i].empty()) return SidProblem::not_found;
        if (sid_user_list[i] == name) return sid_list[i];
    }
}

}  // namespace britlock

#include "users/user_directory.h"

#include <algorithm>

#include "base/text.h"
#include "startup/program.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

/// Folders whose name holds one of these, in this case, belong to nobody.
constexpr const char* nobodys_folders[] = {"NetworkService", "LocalService", "Default User", "All Users"};

bool belongs_to_a_user(const machine::FoundFile& entry) {
    if (!(entry.attributes & machine::attribute_directory)) return false;
    if (entry.name == "." || entry.name == "..") return false;
    return std::none_of(std::begin(nobodys_folders), std::end(nobodys_folders),
                        [&](const char* part) { return entry.name.find(part) != std::string::npos; });
}

constexpr Twin unreadable_title{"Kann (einige) Profile nicht laden", "Sorry, could not load every files.."};
constexpr Twin unreadable_text{
    U"Auf die nachfolgenden Benutzerprofile konnte nicht zugegriffen werden. Entweder sind die Dateien beschädigt oder existieren nicht, oder Sie besitzen nicht die nötigen Zugriffsrechte auf diese Dateien. Einschränkungen für diese Benutzer sind nur bedingt möglich.\r\n\r\nZugriffsprobleme bei folgenden Profilen:\r\n"_ansi,
    "Sorry, I could not load the profiles below. Please make sure that you are logged in as an Administrator "
    "and make "
    "also sure that you have all the rights the acess the files below..."};

}  // namespace

std::string UserDirectory::find_base_path() {
    REGISTRY_MOD& reg = program_.reg;
    std::string set = reg.reg_read_string(HKEY_LOCAL_MACHINE, product_key, "ProfileMainPath");
    if (!set.empty()) return set;  // as it stands: nobody adds a backslash
    const std::string family = reg.get_os_name();
    const bool later_nt = family == "Win2K" || family == "WinXP";
    if (family != "WinNT" && !later_nt) return "";
    std::string told = reg.get_profiles_dir();
    if (!told.empty()) return told;
    if (later_nt) return reg.get_windows_dir().substr(0, 3) + "Dokumente und Einstellungen\\";
    return reg.get_windows_dir() + "\\Profiles\\";
}

void UserDirectory::profiles_scan(toolkit::TextBox& base_path_box) {
    const std::string base_path = find_base_path();
    const auto found = program_.machine.files.find(base_path + "*.*");
    std::string unreadable;
    int count = 0;
    for (const machine::FoundFile& entry : found.value_or(std::vector<machine::FoundFile>{})) {
        if (!belongs_to_a_user(entry)) continue;
        ++count;
        profile_names[count] = entry.name;
        profile_hive_paths[count] = base_path + entry.name + "\\NTUSER.DAT";
        // Offered all the same: a hive that is missing is told again when somebody wants to restrict that
        // user.
        if (!program_.reg.file_has_content(profile_hive_paths[count]))
            unreadable += profile_hive_paths[count] + "\r\n";
    }
    if (!unreadable.empty()) {
        // The English text promises a list below it, and has none.
        const bool list_them = program_.reg.get_language() == 0;
        program_.toolkit.message_box({.text = program_.pick(unreadable_text) + (list_them ? unreadable : ""),
                                      .title = program_.pick(unreadable_title),
                                      .icon = Icon::critical});
    }
    profile_count = count;
    profile_base_path = base_path;
    base_path_box.set_text(base_path);
}

void UserDirectory::GET_SIDS() {
    int entries = 0;
    for_each_sid([&](const std::string& sid) {
        ++entries;
        sid_list[entries] = sid;
        sid_user_list[entries] = REG_GetUserProfileList(std::string(profile_list_key) + '\\' + sid);
    });
}

void UserDirectory::for_each_sid(const std::function<void(const std::string&)>& visit) {
    constexpr size_t longest_well_known = 10;  // S-1-5-18 and its like are no people
    std::string name;
    machine::WinCode code = machine::success;
    for (uint32_t index = 0; code != machine::no_more_items; ++index) {
        code = program_.machine.registry.enum_key(HKEY_LOCAL_MACHINE, profile_list_key, index, name);
        if (code == machine::more_data && name.size() > longest_well_known) visit(name);
    }
}

std::string UserDirectory::REG_GetUserProfileList(std::string_view sidname) {
    machine::RawValue image_path;
    const auto got =
        program_.machine.registry.query(HKEY_LOCAL_MACHINE, sidname, "ProfileImagePath", image_path);
    if (got.open != machine::success) {
        plain_box(U"Der Registryeintrag konnte nicht geöffnet werden."_ansi, "Registry could not be opened.");
        return "";
    }
    constexpr size_t buffer_size = 255;  // a longer path does not fit, and counts as not read
    if (got.action != machine::success || image_path.data.size() > buffer_size) {
        plain_box("Der Registryeintrag konnte nicht gelesen oder gefunden werden.",
                  "Registry entry could not be read/found.");
        return "";
    }
    const std::string path(text::up_to_nul(image_path.data));
    const size_t backslash = path.rfind('\\');
    return backslash == std::string::npos ? "" : path.substr(backslash + 1);
}

std::string UserDirectory::NameToSID(std::string_view name) {
    for (int i = 1;; ++i) {
        if (sid_list[i].empty()) {
            program_.toolkit.message_box({.text = "SID not found.", .icon = Icon::critical});
            return "";
        }
        if (sid_user_list[i] == name) return sid_list[i];
    }
}

void UserDirectory::plain_box(const char* german, const char* english) {
    program_.toolkit.message_box({.text = program_.pick({german, english})});
}

}  // namespace britlock

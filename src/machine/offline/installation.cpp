#include "machine/offline/installation.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>

#include "base/text.h"
#include "machine/offline/hive_store.h"
#include "machine/offline/windows_family.h"

namespace machine {

namespace {

const WindowsPath drive_c{'C', {}};

base::Error not_served(const std::string& why) { return {base::ErrorKind::unsupported, why}; }

bool is_there(const DriveMap& drives, const std::string& path) {
    const auto place = drives.resolve(path);
    return place && place->exists && open_file(*place, O_RDONLY).ok();
}

/// The folder on C that holds a software hive; the usual names come first.
std::optional<std::string> find_windows(const DriveMap& drives) {
    std::vector<std::string> folders = {"WINDOWS", "WINNT"};
    if (const auto root = drives.open_folder(drive_c)) {
        auto names = names_in(root->number());
        if (names) std::sort((*names).begin(), (*names).end());
        for (const std::string& name : names ? *names : std::vector<std::string>()) {
            if (const auto ansi = text::from_utf8(name)) folders.push_back(*ansi);
        }
    }
    for (const std::string& folder : folders) {
        const std::string path = "C:\\" + folder;
        if (is_there(drives, path + "\\system32\\config\\software")) return path;
    }
    return std::nullopt;
}

base::Result<regf::HiveFile> read_hive(const DriveMap& drives, const std::string& path) {
    const auto place = locate_hive(drives, path);
    if (!place) return place.error();
    const auto lock = hostfile::lock_with_patience(*place, hostfile::FileLock::Purpose::look);
    if (!lock) return lock.error();
    return regf::read_hive(*place, *lock);
}

/// A text value; empty where it is missing, of another type, or beyond the code page.
std::string text_of(const regf::Hive& hive, std::u16string_view key, std::u16string_view name) {
    const auto found = hive.find(key);
    const auto value = found ? hive.value(*found, name) : std::nullopt;
    if (!value || (value->type != regf::REG_SZ && value->type != regf::REG_EXPAND_SZ)) return {};
    const std::u16string units = regf::units_of(value->data);
    return text::from_utf16(units.substr(0, units.find(u'\0'))).value_or("");
}

constexpr std::u16string_view windows_nt_key = u"Microsoft\\Windows NT\\CurrentVersion";
constexpr std::u16string_view profiles_key = u"Microsoft\\Windows NT\\CurrentVersion\\ProfileList";

std::string expanded(std::string path, const std::string& windows_directory) {
    for (const auto& [variable, value] : {std::pair<std::string, std::string>("%systemdrive%", "C:"),
                                          {"%systemroot%", windows_directory},
                                          {"%windir%", windows_directory}}) {
        const size_t at = text::lower(path).find(variable);
        if (at != std::string::npos) path.replace(at, variable.size(), value);
    }
    return path;
}

}  // namespace

bool hibernates(const DriveMap& drives) {
    const auto place = drives.resolve("C:\\hiberfil.sys");
    if (!place || !place->exists) return false;
    const auto file = open_file(*place, O_RDONLY);
    std::array<char, 4096> header{};
    const ssize_t size = file ? pread(file->number(), header.data(), header.size(), 0) : -1;
    // A system that has woken up clears the header.
    return size < 0 || std::any_of(header.begin(), header.end(), [](char c) { return c != '\0'; });
}

base::Result<Installation> describe_installation(const DriveMap& drives) {
    const auto windows = find_windows(drives);
    if (!windows) {
        const bool older =
            is_there(drives, "C:\\WINDOWS\\SYSTEM.DAT") || is_there(drives, "C:\\WINDOWS\\USER.DAT");
        return not_served(older ? "Windows 95, 98 and ME are not served from a disk, only NT 4, 2000 and XP"
                                : "there is no Windows NT 4, 2000 or XP in this folder");
    }
    if (hibernates(drives)) return not_served("this Windows hibernates: start it and shut it down first");

    const auto software = read_hive(drives, *windows + "\\system32\\config\\software");
    if (!software) return software.error();
    const std::string version = text_of(software->hive, windows_nt_key, u"CurrentVersion");
    const auto* family = std::find_if(windows_families.begin(), windows_families.end(),
                                      [&](const WindowsFamily& known) { return known.version == version; });
    if (family == windows_families.end())
        return not_served("only Windows NT 4, 2000 and XP are served, and this is version " +
                          (version.empty() ? "unknown" : text::to_utf8(version)));

    Installation found;
    found.family = family->name;
    found.version = {2, static_cast<uint32_t>(version[0] - '0'), static_cast<uint32_t>(version[2] - '0'), 0};
    const std::string build = text_of(software->hive, windows_nt_key, u"CurrentBuildNumber");
    found.version.build = static_cast<uint32_t>(std::strtoul(build.c_str(), nullptr, 10));
    found.windows_directory = *windows;
    found.system_directory = *windows + "\\system32";
    const std::string profiles = text_of(software->hive, profiles_key, u"ProfilesDirectory");
    found.profiles_directory = profiles.empty() ? *windows + "\\Profiles" : expanded(profiles, *windows);
    return found;
}

uint32_t mounted_letters(const DriveMap& drives, const Installation& installation) {
    constexpr std::u16string_view prefix = u"\\DosDevices\\";
    uint32_t bits = 0;
    const auto system = read_hive(drives, installation.system_directory + "\\config\\system");
    const auto key = system ? system->hive.find(u"MountedDevices") : std::nullopt;
    if (!key) return bits;
    for (const auto& value : system->hive.values(*key)) {
        const std::u16string_view name = value.name;
        const bool drive =
            name.size() == prefix.size() + 2 && name.starts_with(prefix) && name.back() == u':';
        const char16_t letter = drive ? name[prefix.size()] : u'\0';
        if (letter >= u'A' && letter <= u'Z') bits |= 1u << (letter - u'A');
    }
    return bits;
}

}  // namespace machine

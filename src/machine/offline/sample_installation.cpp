#include "machine/offline/sample_installation.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <span>

#include "base/text.h"
#include "machine/offline/host_file.h"
#include "machine/offline/windows_family.h"
#include "regf_file/hive_file.h"

namespace machine {

namespace {

using base::Result;
using regf::Hive;

/// A value for a hive; a row without a name makes the key alone.
struct Row {
    std::string key;
    std::string name;
    std::string text;
    uint32_t type = regf::REG_SZ;
    uint32_t number = 0;
};

Row dword(const std::string& key, const std::string& name, uint32_t number) {
    return {key, name, "", regf::REG_DWORD, number};
}

regf::Value value_of(const Row& row) {
    regf::Value value{row.type, {}};
    if (row.type == regf::REG_DWORD) {
        for (int shift = 0; shift < 32; shift += 8)
            value.data.push_back(static_cast<uint8_t>(row.number >> shift));
        return value;
    }
    value.data = regf::bytes_of(text::to_utf16(row.text + '\0'));
    return value;
}

Result<Done> write_hive(const std::string& path, uint32_t minor, const std::u16string& file_name,
                        std::span<const Row> rows) {
    const regf::FileTime now = regf::current_file_time();
    Hive::NewHive what;
    what.minor_version = minor;
    what.file_name = file_name;
    what.now = now;
    Hive hive = Hive::create(what);
    for (const Row& row : rows) {
        const auto key = hive.create(text::to_utf16(row.key), now);
        if (!key) return key.error();
        if (row.name.empty()) continue;
        auto set = hive.set_value(*key, text::to_utf16(row.name), value_of(row), now);
        if (!set) return set;
    }
    const auto place = hostfile::place_of(path);
    if (!place) return place.error();
    const auto written = regf::write_new(*place, hive, now);
    return written ? base::Result<Done>(Done{}) : written.error();
}

Result<Done> write_file(const std::string& path, std::string_view bytes) {
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    if (!file.is_open() || write_all(file.number(), bytes) != no_error)
        return base::Error{base::ErrorKind::refused, "cannot make " + path + ": " + strerror(errno)};
    return Done{};
}

void put(std::string& out, uint32_t number, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out += static_cast<char>((number >> (8 * i)) & 0xFF);
}

/// A bitmap of 24 bits a dot: evening sky.
std::string wallpaper() {
    constexpr uint32_t width = 160;
    constexpr uint32_t height = 120;
    constexpr uint32_t header = 54;
    constexpr uint32_t size = width * height * 3;
    std::string out = "BM";
    for (const uint32_t field : {header + size, 0u, header, 40u, width, height})
        put(out, field, 4);
    put(out, 1, 2);   // planes
    put(out, 24, 2);  // bits a dot
    for (const uint32_t field : {0u, size, 2835u, 2835u, 0u, 0u})
        put(out, field, 4);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            put(out, 90 + y, 1);
            put(out, 60 + x / 4 + y / 2, 1);
            put(out, 220 - y, 1);
        }
    }
    return out;
}

/// The head of a shortcut file; enough to be one by name and sign.
std::string shortcut() {
    std::string out;
    put(out, 76, 4);
    put(out, 0x00021401, 4);
    put(out, 0, 4);
    put(out, 0x000000C0, 4);
    put(out, 0x46000000, 4);
    return out + std::string(56, '\0');
}

constexpr auto windows_key = "Microsoft\\Windows\\CurrentVersion";
constexpr auto windows_nt_key = "Microsoft\\Windows NT\\CurrentVersion";
constexpr std::array people = {"Administrator", "Anna", "Ben"};
constexpr std::array nobody = {"All Users", "Default User", "LocalService", "NetworkService"};

Result<Done> make_machine_hives(const std::string& config, const WindowsFamily& family) {
    const std::string windows_nt = windows_nt_key;
    const std::string profile_list = windows_nt + "\\ProfileList";
    std::vector<Row> rows = {
        {windows_nt, "CurrentVersion", family.version},
        {windows_nt, "CurrentBuildNumber", family.build},
        {windows_nt, "ProductName", family.product},
        {windows_nt, "SystemRoot", std::string("C:\\") + family.folder},
        {windows_nt, "RegisteredOwner", "Computer room"},
        {windows_nt, "RegisteredOrganization", "Morvane Primary School"},
        {windows_key, "ProgramFilesDir", "C:\\Program Files"},
        {std::string(windows_key) + "\\Uninstall", "", ""},
        {"Policies", "", ""},
    };
    const std::string base = family.profiles_value ? family.profiles_value : "%SystemRoot%\\Profiles";
    if (family.profiles_value) rows.push_back({profile_list, "ProfilesDirectory", base, regf::REG_EXPAND_SZ});
    int account = 500;
    for (const char* person : people) {
        const std::string sid = "S-1-5-21-1645522239-1292428093-839522115-" + std::to_string(account);
        std::string key = profile_list;
        key.append("\\").append(sid);
        std::string image = base;
        image.append("\\").append(person);
        rows.push_back({key, "ProfileImagePath", image, regf::REG_EXPAND_SZ});
        account = account == 500 ? 1003 : account + 1;
    }
    if (auto made = write_hive(config + "/software", family.machine_minor,
                               u"emRoot\\System32\\Config\\SOFTWARE", rows);
        !made)
        return made;
    const std::vector<Row> system = {
        dword("Select", "Current", 1),
        dword("MountedDevices", "\\DosDevices\\C:", 0x7E00),
        dword("MountedDevices", "\\DosDevices\\E:", 0x8000),
    };
    return write_hive(config + "/system", family.machine_minor, u"SYSTEM", system);
}

Result<Done> make_user_hive(const std::string& file, const std::string& name,
                            const std::string& windows_profile) {
    const std::string current = "Software\\Microsoft\\Windows\\CurrentVersion";
    const std::string folders = current + "\\Explorer\\Shell Folders";
    const std::string control_panel = "Control Panel\\Desktop";
    const std::vector<Row> rows = {
        {control_panel, "Wallpaper", ""},
        {control_panel, "TileWallpaper", "0"},
        {control_panel, "ScreenSaveActive", "1"},
        {control_panel, "MenuShowDelay", "400"},
        {"Control Panel\\Sound", "Beep", "yes"},
        {"Control Panel\\International", "Locale", "00000409"},
        {"Environment", "TEMP", "%USERPROFILE%\\Local Settings\\Temp", regf::REG_EXPAND_SZ},
        {"Network", "", ""},
        {"Printers", "", ""},
        {folders, "Desktop", windows_profile + "\\Desktop"},
        {folders, "Start Menu", windows_profile + "\\Start Menu"},
        {folders, "Personal", windows_profile + "\\My Documents"},
        {current + "\\Run", "", ""},
        dword(current + "\\Policies\\Explorer", "NoDriveTypeAutoRun", 0x91),
        {current + "\\Internet Settings", "User Agent", "Mozilla/4.0 (compatible)"},
        {"Software\\Microsoft\\Internet Explorer\\Main", "Start Page", "about:blank"},
        {"Software\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon", "ExcludeProfileDirs", "Temp"},
    };
    return write_hive(file, 3, text::to_utf16(name + "\\NTUSER.DAT"), rows);
}

Result<Done> make_profiles(const std::string& folder, const WindowsFamily& family) {
    std::string windows_base = std::string("C:\\") + family.profiles;
    for (char& c : windows_base)
        if (c == '/') c = '\\';
    const std::string base = folder + "/" + family.profiles;
    for (const char* name : nobody) {
        if (auto made = hostfile::make_folders(base + "/" + name + "/Desktop"); !made) return made;
    }
    for (const char* name : people) {
        const std::string profile = base + "/" + name;
        for (const char* part : {"/Desktop", "/Start Menu", "/My Documents"}) {
            if (auto made = hostfile::make_folders(profile + part); !made) return made;
        }
        if (auto made = make_user_hive(profile + "/NTUSER.DAT", name, windows_base + "\\" + name); !made)
            return made;
    }
    return Done{};
}

Result<Done> make_plain_files(const std::string& folder, const WindowsFamily& family) {
    const std::string windows = folder + "/" + family.folder;
    const std::string program_files = folder + "/Program Files";
    const std::string icons = folder + "/School/Icons";
    for (const std::string& made_folder :
         {program_files + "/Accessories", program_files + "/Games", icons, windows + "/Web"}) {
        if (auto made = hostfile::make_folders(made_folder); !made) return made;
    }
    struct File {
        std::string path;
        std::string bytes;
    };
    const std::vector<File> files = {
        {folder + "/MSDOS.SYS",
         ";FORMAT\r\n[Paths]\r\nWinDir=C:\\" + std::string(family.folder) + "\r\n[Options]\r\nBootGUI=1\r\n"},
        {windows + "/control.ini", "[don't load]\r\n"},
        {windows + "/Evening.bmp", wallpaper()},
        {windows + "/explorer.exe", "MZ"},
        {windows + "/notepad.exe", "MZ"},
        {windows + "/system32/calc.exe", "MZ"},
        {program_files + "/Accessories/wordpad.exe", "MZ"},
        {program_files + "/Games/chess.exe", "MZ"},
        {icons + "/Notepad.lnk", shortcut()},
        {icons + "/Calculator.LNK", shortcut()},
        {icons + "/Readme.txt", "Shortcuts for the desktops of the computer room.\r\n"},
    };
    for (const File& file : files) {
        if (auto made = write_file(file.path, file.bytes); !made) return made;
    }
    return Done{};
}

}  // namespace

Result<Done> make_sample_installation(const std::string& folder, SampleFamily family) {
    const WindowsFamily& facts = windows_families.at(static_cast<size_t>(family));
    const std::string config = folder + "/" + facts.folder + "/system32/config";
    if (auto made = hostfile::make_folders(config); !made) return made;
    if (auto made = make_machine_hives(config, facts); !made) return made;
    if (auto made = make_profiles(folder, facts); !made) return made;
    return make_plain_files(folder, facts);
}

}  // namespace machine

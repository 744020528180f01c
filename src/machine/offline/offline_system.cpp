#include "machine/offline/offline_system.h"

#include <langinfo.h>
#include <pwd.h>
#include <unistd.h>

#include <array>
#include <clocale>
#include <ctime>

#include "base/text.h"
#include "machine/offline/file_attributes.h"

namespace machine {

namespace {

constexpr auto administrators = "S-1-5-32-544";
constexpr auto users = "S-1-5-32-545";

tm now() {
    const std::time_t seconds = std::time(nullptr);
    tm parts{};
    localtime_r(&seconds, &parts);
    return parts;
}

}  // namespace

std::optional<std::string> OfflineSystem::user_name() {
    const passwd* account = getpwuid(geteuid());
    return account ? text::from_utf8(account->pw_name) : std::nullopt;
}

uint32_t OfflineSystem::logical_drives() {
    return drives_.letters() | mounted_letters(drives_, installation_);
}

std::optional<std::vector<std::string>> OfflineSystem::token_groups() {
    const auto software = drives_.resolve(installation_.system_directory + "\\config\\software");
    const bool writable = software && software->exists && may_replace(*software);
    return std::vector<std::string>{writable ? administrators : users};
}

ClockTime OfflineSystem::local_time() {
    const tm time = now();
    return {time.tm_hour, time.tm_min, time.tm_sec};
}

std::string OfflineSystem::long_time() {
    constexpr auto plain = "%H:%M:%S";
    const tm time = now();
    std::array<char, 100> out{};
    const locale_t locale = newlocale(LC_TIME_MASK | LC_CTYPE_MASK, "", nullptr);
    if (locale) {
        std::string format = nl_langinfo_l(T_FMT, locale);
        for (const char* zone : {" %Z", " %z", "%Z", "%z"}) {
            if (const size_t at = format.find(zone); at != std::string::npos)
                format.erase(at, std::string_view(zone).size());
        }
        const size_t size = strftime_l(out.data(), out.size(), format.c_str(), &time, locale);
        freelocale(locale);
        if (const auto ansi = text::from_utf8({out.data(), size}); ansi && size > 0) return *ansi;
    }
    return {out.data(), strftime(out.data(), out.size(), plain, &time)};
}

}  // namespace machine

#pragma once

/// The product's own names: what it is called, the files it comes with, the keys it owns. Key paths lie under
/// HKEY_LOCAL_MACHINE.
namespace product {

constexpr const char* title = "Brightlock Suite";
/// Major, minor and revision, joined by points.
extern const char* const version;

constexpr const char* maker = "Morvane Computer";
constexpr const char* years = "1998-2003";
/// Settings of the build: hosts of plain HTTP, with a port if need be.
extern const char* const german_update_host;
extern const char* const update_host;
/// Without "http://".
constexpr const char* german_homepage = "www.brightlock.invalid/de";
constexpr const char* homepage = "www.brightlock.invalid";

/// The folder in which a set-up puts the program, as Windows names it.
constexpr const char* default_folder = R"(C:\Program Files\Brightlock Suite)";
constexpr const char* program_file = "britlock.exe";
constexpr const char* hive_tool_file = "regg.exe";
constexpr const char* help_file = "britlock.hlp";

/// The maker's key is made before the product's.
constexpr const char* maker_key = R"(Software\Morvane)";
constexpr const char* key = R"(Software\Morvane\BRLCK)";
/// What the control panel's list of installed programs shows. The doubled backslash is part of the text;
/// Windows takes it for one.
constexpr const char* uninstall_key =
    R"(Software\Microsoft\Windows\CurrentVersion\\Uninstall\Brightlock Suite)";

}  // namespace product

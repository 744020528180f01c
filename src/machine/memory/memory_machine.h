#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "base/product.h"
#include "machine/machine.h"
#include "machine/memory/journal.h"
#include "machine/memory/memory_files.h"
#include "machine/memory/memory_internet.h"
#include "machine/memory/memory_registry.h"

namespace machine {

/// One of each family that the program tells apart.
namespace versions {
constexpr Version win32s{0, 1, 30, 172};
constexpr Version win95{1, 4, 0, 950};
constexpr Version win98{1, 4, 10, 1998};
constexpr Version win98se{1, 4, 10, 2222};
constexpr Version winme{1, 4, 90, 3000};
constexpr Version winnt{2, 4, 0, 1381};
constexpr Version win2k{2, 5, 0, 2195};
constexpr Version winxp{2, 5, 1, 2600};
constexpr Version unknown{2, 6, 1, 7601};
}  // namespace versions

/// Facts to be set; they begin as those of a fresh Windows of that version with an administrator logged on.
struct MemorySystem : System {
    explicit MemorySystem(const Version& version);

    Version windows;
    std::string windows_folder;
    std::string system_folder;
    std::optional<std::string> profiles_folder;
    std::optional<std::string> user = "Administrator";
    uint32_t drives = 1u << 2;  ///< C
    std::optional<std::vector<std::string>> groups;
    ClockTime clock{12, 34, 56};
    std::string long_time_text = "12:34:56";
    std::string program_folder = product::default_folder;
    std::string stem = "britlock";
    std::string arguments;
    std::vector<std::string> wallpapers;  ///< what set_wallpaper was asked for

    Version version() override { return windows; }
    std::string windows_directory() override { return windows_folder; }
    std::string system_directory() override { return system_folder; }
    std::optional<std::string> profiles_directory() override { return profiles_folder; }
    std::optional<std::string> user_name() override { return user; }
    uint32_t logical_drives() override { return drives; }
    std::optional<std::vector<std::string>> token_groups() override { return groups; }
    void set_wallpaper(std::string_view path) override { wallpapers.emplace_back(path); }
    ClockTime local_time() override { return clock; }
    std::string long_time() override { return long_time_text; }
    std::string program_directory() override { return program_folder; }
    std::string program_stem() override { return stem; }
    std::string command_line() override { return arguments; }
};

/// Starts what lies in MemoryFiles: as named, or in the program's, the Windows or the system directory.
/// The hive tool does its work on the registry and the hives in memory; every other program ends at once
/// with 0.
class MemoryProcesses : public Processes {
  public:
    MemoryProcesses(MemorySystem& system, MemoryFiles& files, MemoryRegistry& registry)
        : system_(system), files_(files), registry_(registry) {}

    struct Record {
        std::string command_line;
        WindowStyle style;
    };
    std::vector<Record> started;
    std::vector<std::string> addresses;  ///< what open_address was asked for

    /// Every process started from now on does its work, and ends, at this poll after the first.
    int polls_until_done = 0;
    /// Runs at each poll that answers still_active.
    std::function<void()> while_waiting;
    /// The hive tool ends with this code and without any work, where it is not 0.
    uint32_t failing_tool = 0;

    Started start(std::string_view command_line, WindowStyle style) override;
    uint32_t exit_code(uint32_t id) override;
    void open_address(std::string_view address) override { addresses.emplace_back(address); }

  private:
    struct Running {
        std::string program;
        std::string arguments;
        int polls_left;
        std::optional<uint32_t> code;
    };
    std::string find_program(const std::string& program) const;
    uint32_t run(const Running& process);
    uint32_t run_hive_tool(const std::vector<std::string>& arguments);

    MemorySystem& system_;
    MemoryFiles& files_;
    MemoryRegistry& registry_;
    std::vector<Running> running_;  ///< by id, the first being 1
};

/// A whole machine for tests: Windows of any family, its registry and files, faults on demand, a journal of
/// all that is written to the registry.
class MemoryMachine {
  public:
    explicit MemoryMachine(const Version& version = versions::winxp);

    MemorySystem system;
    MemoryRegistry registry;
    JournalRegistry journal{registry};
    MemoryFiles files{system, registry};
    MemoryProcesses processes{system, files, registry};
    MemoryInternet internet;

    /// A profile folder with its hive, which is returned.
    MemoryKey& add_profile(std::string_view name);
    /// What the program is given.
    Machine machine() { return {journal, files, processes, system, internet}; }
};

}  // namespace machine

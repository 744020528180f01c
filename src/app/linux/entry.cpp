#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <iostream>

#include "app/linux/batch_command.h"
#include "app/linux/batch_options.h"
#include "app/linux/exit_code.h"

/// The entry of the Linux edition. What needs no window runs here, also on a server that has no library for
/// windows; for all else the program of the window takes the place of this one.
int main(int argc, char** argv) {
    (void)std::signal(SIGCHLD, SIG_DFL);  // ignored by who started us, the hive tool's end would be lost
    try {
        const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
        if (argc > 1 && is_batch_verb(argv[1]))
            return run_batch({argv + 1, argv + argc}, folder, static_cast<Language>(BRITLOCK_LANGUAGE));
        const std::filesystem::path window = folder / "britlock-window";
        (void)execv(window.c_str(), argv);
        std::cerr << "britlock: cannot start " << window.string() << ": " << std::strerror(errno) << "\n";
    } catch (const std::exception& error) {  // memory or the system ran out
        std::cerr << "britlock: " << error.what() << "\n";
        return exit_failed;
    }
    return exit_could_not_open;
}

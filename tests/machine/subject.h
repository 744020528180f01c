#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "machine/machine.h"

/// A machine with Windows XP and the profile of Anna.
struct Subject {
    virtual ~Subject() = default;
    virtual machine::Machine machine() = 0;
    /// `path` from the root of C, with slashes.
    virtual void add_file(const std::string& path, const std::string& bytes) = 0;
    /// A drive D with nothing on it.
    virtual void add_empty_drive() = 0;
    /// Hives are mounted as Windows NT does it: nothing else can be made below HKEY_USERS, a mounted file is
    /// held, and unloading writes it.
    virtual bool mounts_are_real() const { return true; }
};

struct Implementation {
    const char* name;
    std::function<std::unique_ptr<Subject>()> make;
};
inline void PrintTo(const Implementation& implementation, std::ostream* out) { *out << implementation.name; }

template <class Kind>
std::unique_ptr<Subject> make_subject() {
    return std::make_unique<Kind>();
}

/// Those that this build has.
std::vector<Implementation> implementations();

/// Starts a command line and waits for its end, as the program does it; the start's error counts as a code
/// beyond all others.
inline uint32_t run_command(machine::Processes& processes, const std::string& command_line) {
    const auto started = processes.start(command_line, machine::WindowStyle::hidden);
    if (started.error != machine::no_error) return 1000u + static_cast<uint32_t>(started.error);
    for (;;) {
        const uint32_t code = processes.exit_code(started.id);
        if (code != machine::still_active) return code;
    }
}

#pragma once

#include <gmock/gmock.h>

#include "base/text.h"
#include "machine/machine.h"
#include "machine/memory/journal.h"
#include "machine/memory/memory_registry.h"

using namespace machine;
using namespace testing;
using namespace text::literals;

/// A machine with Windows XP and the profile of Anna.
struct Subject {
    virtual ~Subject() = default;
    virtual Machine machine() = 0;
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

/// What a search finds, a blank after each name; "none" where it fails.
inline std::string names(Files& files, const std::string& pattern) {
    const auto found = files.find(pattern);
    std::string out = found ? "" : "none";
    for (const FoundFile& file : found.value_or(std::vector<FoundFile>()))
        out += file.name + " ";
    return out;
}

/// A value of the registry, as "dword 1"; "open 2" where its key and "action 2" where itself cannot be read.
inline std::string ask(Registry& registry, Root root, std::string_view key, std::string_view name) {
    RawValue value;
    const Outcome outcome = registry.query(root, key, name, value);
    if (outcome.open != success) return "open " + std::to_string(outcome.open);
    return outcome.action != success ? "action " + std::to_string(outcome.action) : describe(value);
}

/// The bytes of a file; "error 70" where it cannot be read.
inline std::string content(Files& files, const std::string& path) {
    std::string bytes;
    const FileError error = files.read(path, bytes);
    return error == no_error ? bytes : "error " + std::to_string(error);
}

constexpr auto hive_tool = "\"C:\\Program Files\\Brightlock Suite\\regg.exe\" ";

/// Starts a command line and waits for its end, as the program does it; the start's error counts as a code
/// beyond all others.
inline uint32_t run_command(Processes& processes, const std::string& command_line) {
    const auto started = processes.start(command_line, WindowStyle::hidden);
    if (started.error != no_error) return 1000u + static_cast<uint32_t>(started.error);
    for (;;) {
        const uint32_t code = processes.exit_code(started.id);
        if (code != still_active) return code;
    }
}

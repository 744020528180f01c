#pragma once

#include "engine/keys.h"
#include "machine/memory/memory_machine.h"
#include "program/person.h"
#include "startup/password.h"

namespace britlock {

/// A Windows machine in memory with the product set up on it, and a person in front of the program.
struct World : Person {
    explicit World(const Version& version = versions::winxp, Language its_language = english)
        : Person(its_language), windows(version) {
        windows.registry.at(HKEY_LOCAL_MACHINE, product::key);
        windows.files.add_file("C:\\MSDOS.SYS", "[Options]\r\nBootMulti=1\r\n");
        windows.system.drives = 0b1101;  // A, C, D
    }
    ~World() { program.reset(); }  // before the machine it works on

    bool nt() const { return windows.system.windows.platform == 2; }

    World& expecting(std::string title, Answer answer = Answer::ok) {
        screen.expect_box(std::move(title), answer);
        return *this;
    }
    bool start(const std::string& command_line = "") {
        windows.system.arguments = command_line;
        return Person::start(windows.machine());
    }
    void have_password() {
        windows.registry.at(HKEY_LOCAL_MACHINE, product::key)
            .set("UserPW", encode_password("secret", password_key));
    }
    /// Starts it with a password that is set, and passes the prompt.
    MainForm& enter() {
        have_password();
        start();
        give_password("secret");
        return window();
    }

    std::string content(const std::string& path) {
        std::string bytes;
        EXPECT_EQ(windows.files.read(path, bytes), no_error) << path;
        return bytes;
    }
    /// The command line of the last program that was started.
    const std::string& last_command() { return windows.processes.started.back().command_line; }

    MemoryMachine windows;
};

/// With one user who can be restricted: Anna, on Windows 9X the running account.
struct WithAnna : World {
    explicit WithAnna(const Version& version = versions::winxp) : World(version) {
        if (nt()) windows.add_profile("Anna");
        read();
    }
    /// Reads her into a program that is started anew.
    MainForm& read() {
        enter();
        if (nt()) choose("Anna");
        return window();
    }
    /// Her branch of the registry.
    MemoryKey& anna() {
        return nt() ? *windows.files.hive(*windows.system.profiles_folder + "\\Anna\\NTUSER.DAT")
                    : windows.registry.at(HKEY_CURRENT_USER);
    }
    std::string dump(const std::string& subkey = "") {
        const MemoryKey* key = anna().find(subkey);
        return key ? key->dump() : "(missing)";
    }
};

}  // namespace britlock

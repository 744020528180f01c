#pragma once

#include "engine/keys.h"
#include "machine/memory/memory_machine.h"
#include "program/person.h"
#include "startup/password.h"

namespace britlock {

/// A Windows machine in memory with the product set up on it, and a person in front of the program.
struct World : Person {
    explicit World(const machine::Version& version = machine::versions::winxp,
                   Language its_language = english)
        : Person(its_language), windows(version) {
        windows.registry.at(HKEY_LOCAL_MACHINE, product::key);
        windows.files.add_file("C:\\MSDOS.SYS", "[Options]\r\nBootMulti=1\r\n");
    }
    ~World() { program.reset(); }  // before the machine it works on

    bool nt() const { return windows.system.windows.platform == 2; }

    World& expecting(std::string title, toolkit::Answer answer = toolkit::Answer::ok) {
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
        EXPECT_EQ(windows.files.read(path, bytes), machine::no_error) << path;
        return bytes;
    }

    machine::MemoryMachine windows;
};

}  // namespace britlock

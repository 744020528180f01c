#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "machine/memory/memory_machine.h"
#include "startup/getpass.h"
#include "startup/password.h"
#include "startup/program.h"
#include "startup/setpass.h"
#include "toolkit/script/script_toolkit.h"
#include "ui/main.h"

namespace britlock {

enum Language { german = 0, english = 1 };

/// A Windows machine in memory with the product set up on it, and a person in front of the program.
struct World {
    explicit World(const machine::Version& version = machine::versions::winxp,
                   Language its_language = english)
        : windows(version), language(its_language) {
        windows.registry.at(HKEY_LOCAL_MACHINE, product_key);
        windows.files.add_file("C:\\MSDOS.SYS", "[Options]\r\nBootMulti=1\r\n");
    }
    ~World() { EXPECT_EQ(screen.left_over(), 0u) << "a question that never came"; }

    bool nt() const { return windows.system.windows.platform == 2; }

    /// Starts the process; a running one is forgotten, as by a kill.
    bool start(const std::string& command_line = "") {
        windows.system.arguments = command_line;
        screen.ended = false;
        program = std::make_unique<Program>(windows.machine(), screen, language);
        return screen.act([&] { program->start(); });
    }

    /// Starts it with a password that is set, and passes the prompt.
    main& enter() {
        const std::string password = encode_password("secret", password_key);
        windows.registry.at(HKEY_LOCAL_MACHINE, product_key).set("UserPW", password);
        start();
        screen.act([&] {
            program->loaded<getpass>()->txt_pw.type("secret");
            program->loaded<getpass>()->cmd_ok.click();
        });
        return window();
    }

    main& window() { return *program->loaded<main>(); }

    /// A person chooses a user in the list.
    void choose(std::string_view user) {
        auto& combo = window().Combo_user;
        const auto& names = combo.items();
        const auto at = std::find(names.begin(), names.end(), user);
        ASSERT_NE(at, names.end()) << user;
        screen.act([&] { combo.choose(static_cast<int>(at - names.begin())); });
    }

    /// A person turns to the page of a control and clicks it.
    template <class Clickable>
    bool click(Clickable& control) {
        return screen.act([&] {
            turn_to(control);
            EXPECT_TRUE(control.usable()) << control.name();
            control.click();
        });
    }
    bool click(toolkit::MenuItem& item) {
        return screen.act([&] { item.click(); });
    }
    bool apply() { return click(window().cmd_set); }

    void turn_to(const toolkit::Control& control) {
        for (const toolkit::Control* c = &control; c; c = c->parent()) {
            if (c->parent() == &window().tab) window().tab.click_tab(c->page());
        }
    }

    machine::MemoryMachine windows;
    Language language;
    toolkit::ScriptToolkit screen;
    std::unique_ptr<Program> program;
};

}  // namespace britlock

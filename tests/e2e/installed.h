#pragma once

#include "machine/offline_fixture.h"
#include "platform/product_setup.h"
#include "program/person.h"
#include "regf/dump.h"
#include "regf_file/hive_file.h"

namespace britlock {

/// A sample installation with a drive D, a person in front of the program, and the real hive tool.
struct Installed : Person {
    explicit Installed(SampleFamily family = SampleFamily::winxp) : windows(family) {
        fs::create_directories(windows.scratch() / "D");
        windows.options.drives['D'] = (windows.scratch() / "D").string();
        windows.open();
    }
    ~Installed() { program.reset(); }  // before the machine it works on

    /// A first start: there is no password yet.
    MainForm& enter() {
        prepare_installation(windows.machine().registry);
        expecting("Set a Password !").start(windows.machine());
        expecting("Password...").set_password("secret");
        return window();
    }
    /// Another run, which reads the user.
    MainForm& enter_again(const std::string& user) {
        program.reset();
        windows.open();
        start(windows.machine());
        give_password("secret");
        choose(user);
        return window();
    }

    fs::path hive(const std::string& user = "Anna") { return windows.hive_of(user); }
    std::string dump(const std::string& user = "Anna") {
        return regf::dump(must(regf::Hive::open(regf::read_file(hive(user)))));
    }

    OfflineFixture windows;
};

}  // namespace britlock

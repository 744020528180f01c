#pragma once

#include "machine/offline_fixture.h"
#include "platform/product_setup.h"
#include "program/person.h"
#include "regf/dump.h"
#include "regf_file/hive_file.h"

namespace britlock {

/// A sample installation with a drive D, a person in front of the program, and the real hive tool.
struct Installed {
    explicit Installed(machine::SampleFamily family = machine::SampleFamily::winxp) : windows(family) {
        std::filesystem::create_directories(windows.scratch() / "D");
        windows.options.drives['D'] = (windows.scratch() / "D").string();
        windows.open();
    }
    ~Installed() { person.program.reset(); }

    /// A first start: there is no password yet.
    MainForm& enter() {
        prepare_installation(windows.machine().registry);
        person.screen.expect_box("Set a Password !");
        person.start(windows.machine());
        person.screen.expect_box("Password...");
        person.set_password("secret");
        return person.window();
    }
    /// Another run, which reads the user.
    MainForm& enter_again(const std::string& user) {
        person.program.reset();
        windows.open();
        person.start(windows.machine());
        person.give_password("secret");
        person.choose(user);
        return person.window();
    }

    std::filesystem::path hive(const std::string& user = "Anna") {
        std::string folder = windows.offline().installation().profiles_directory.substr(2);  // without C:
        std::replace(folder.begin(), folder.end(), '\\', '/');
        return windows.disk().string() + folder + "/" + user + "/NTUSER.DAT";
    }
    std::string dump(const std::string& user = "Anna") {
        const auto opened = regf::Hive::open(regf::read_file(hive(user)));
        return opened ? regf::dump(*opened) : opened.error().message;
    }

    OfflineFixture windows;
    Person person;
};

}  // namespace britlock

#pragma once

#include <memory>

#include "machine/machine.h"
#include "platform/folder_browser.h"
#include "platform/registry_mod.h"
#include "toolkit/toolkit.h"
#include "users/hiver_mod.h"
#include "users/user_directory.h"

namespace britlock {

struct getpass;
struct setpass;
struct main;
struct verzeichnis;
struct profile;

/// A message of the program: an icon, and title and text in both languages.
struct Notice {
    toolkit::Icon icon;
    Twin title;
    Twin text;
};

/// The program: the machine it works on, the toolkit it shows itself with, its modules, and its forms, each
/// made at first use.
class Program {
  public:
    /// `language`: 0 German, 1 English.
    Program(const machine::Machine& its_machine, toolkit::Toolkit& its_toolkit, int language);
    ~Program();

    /// The true entry: the form `getpass` reads the command line and decides what this process does.
    void start();

    machine::Machine machine;
    toolkit::Toolkit& toolkit;
    REGISTRY_MOD reg;
    FolderBrowser folders;
    UserDirectory users;
    HIVER_MOD hiver;
    /// The uninstall runs: the logged-on user is not refused, the hive file is not tested.
    bool uninstall_running = false;

    const char* pick(const Twin& twin) const { return reg.pick(twin); }
    /// Shows a box with an OK button.
    void say(const Notice& notice);

    /// Shows the form; a form that is not there is made and loaded first.
    template <class F>
    void show();
    /// Takes the form away, if it is there.
    template <class F>
    void unload();
    /// Null while the form is not loaded.
    template <class F>
    F* loaded();

  private:
    template <class F>
    std::unique_ptr<F>& slot();

    std::unique_ptr<getpass> getpass_;
    std::unique_ptr<setpass> setpass_;
    std::unique_ptr<main> main_;
    std::unique_ptr<verzeichnis> verzeichnis_;
    std::unique_ptr<profile> profile_;
};

}  // namespace britlock

#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "engine/engine.h"
#include "machine/machine.h"
#include "platform/folder_browser.h"
#include "platform/registry_mod.h"
#include "toolkit/toolkit.h"
#include "users/hiver_mod.h"
#include "users/user_directory.h"

namespace britlock {

class Program;
class ProgramForm;

/// A message of the program: an icon, and title and text in both languages.
struct Notice {
    toolkit::Icon icon;
    Twin title;
    Twin text;
};

/// The forms of the program, by name: each is made at first use, and forms open each other without knowing
/// each other's types.
class FormRegistry {
  public:
    explicit FormRegistry(Program& program);
    ~FormRegistry();

    using Maker = std::function<std::unique_ptr<ProgramForm>(Program&)>;
    void add(const std::string& name, Maker maker);
    /// Shows the form; one that is not loaded is made and loaded first, and is not there if that fails.
    void show(const std::string& name);
    /// Called once, when the form has been shown for the first time.
    void when_shown(const std::string& name, std::function<void()> call) {
        slots_.at(name).when_shown = std::move(call);
    }
    /// Takes the form away, if it is there.
    void unload(const std::string& name);
    /// Null while the form is not loaded.
    ProgramForm* loaded(const std::string& name) const;

  private:
    struct Slot {
        Maker make;
        std::unique_ptr<ProgramForm> form;
        std::function<void()> when_shown;
    };
    Program& program_;
    std::map<std::string, Slot> slots_;
};

/// Names under which forms of another floor are opened.
namespace form {
constexpr const char* main = "main";
}

/// The program: the machine it works on, the toolkit it shows itself with, its modules and its forms.
class Program {
  public:
    Program(const machine::Machine& its_machine, toolkit::Toolkit& its_toolkit, int language);

    /// The true entry: the form `getpass` reads the command line and decides what this process does.
    void start();

    machine::Machine machine;
    toolkit::Toolkit& toolkit;
    REGISTRY_MOD reg;
    FolderBrowser folders;
    UserDirectory users;
    HIVER_MOD hiver;
    Engine engine;
    FormRegistry forms;

    const char* pick(const Twin& twin) const { return reg.pick(twin); }
    /// Shows a box with an OK button.
    void say(const Notice& notice);
    /// Asks for Yes or No, No being the default.
    bool confirm(const Notice& question);

    template <class F>
    void show() {
        forms.show(F::form_name);
    }
    template <class F>
    void unload() {
        forms.unload(F::form_name);
    }
    template <class F>
    F* loaded() const {
        return static_cast<F*>(forms.loaded(F::form_name));
    }
};

/// Makes one type of form known.
template <class F>
void add_form(Program& program) {
    program.forms.add(F::form_name, [](Program& its) { return std::make_unique<F>(its); });
}

}  // namespace britlock

#include "startup/program.h"

#include "startup/getpass.h"
#include "startup/setpass.h"
#include "ui/main.h"
#include "ui/profile.h"
#include "ui/verzeichnis.h"

namespace britlock {

Program::Program(const machine::Machine& its_machine, toolkit::Toolkit& its_toolkit, int language)
    : machine(its_machine),
      toolkit(its_toolkit),
      reg(machine, language),
      folders(machine),
      users(*this),
      hiver(*this) {}

Program::~Program() = default;

void Program::start() {
    getpass_ = std::make_unique<getpass>(*this);
    getpass_->Form_Load();
    if (getpass_) toolkit.show(*getpass_);  // without a password it has given way to setpass
}

void Program::say(const Notice& notice) {
    toolkit.message_box({.text = pick(notice.text), .title = pick(notice.title), .icon = notice.icon});
}

template <>
std::unique_ptr<getpass>& Program::slot() {
    return getpass_;
}
template <>
std::unique_ptr<setpass>& Program::slot() {
    return setpass_;
}
template <>
std::unique_ptr<main>& Program::slot() {
    return main_;
}
template <>
std::unique_ptr<verzeichnis>& Program::slot() {
    return verzeichnis_;
}
template <>
std::unique_ptr<profile>& Program::slot() {
    return profile_;
}

template <class F>
void Program::show() {
    auto& form = slot<F>();
    if (!form) {
        form = std::make_unique<F>(*this);
        try {
            form->Form_Load();
        } catch (const RuntimeError&) {
            form.reset();  // a form whose load failed is not loaded
            throw;
        }
    }
    if (form) toolkit.show(*form);
}

template <class F>
void Program::unload() {
    if (!slot<F>()) return;
    // It may be one of its own handlers that runs: the object lives until the event has ended.
    const std::shared_ptr<F> form = std::move(slot<F>());
    toolkit.unload(*form, [form] {});
}

template <class F>
F* Program::loaded() {
    return slot<F>().get();
}

template void Program::show<setpass>();
template void Program::show<main>();
template void Program::show<verzeichnis>();
template void Program::show<profile>();
template void Program::unload<getpass>();
template void Program::unload<setpass>();
template void Program::unload<verzeichnis>();
template void Program::unload<profile>();
template getpass* Program::loaded();
template setpass* Program::loaded();
template main* Program::loaded();
template verzeichnis* Program::loaded();
template profile* Program::loaded();

}  // namespace britlock

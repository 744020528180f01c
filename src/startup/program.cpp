#include "startup/program.h"

#include <utility>

#include "startup/getpass.h"
#include "startup/program_form.h"
#include "startup/setpass.h"

namespace britlock {

FormRegistry::FormRegistry(Program& program) : program_(program) {}

FormRegistry::~FormRegistry() = default;

void FormRegistry::add(const std::string& name, Maker maker) { slots_[name].make = std::move(maker); }

void FormRegistry::show(const std::string& name) {
    Slot& slot = slots_.at(name);
    if (!slot.form) {
        slot.form = slot.make(program_);
        try {
            slot.form->Form_Load();
        } catch (const RuntimeError&) {
            slot.form.reset();
            throw;
        }
    }
    if (!slot.form) return;  // its load has given way to another form
    program_.toolkit.show(*slot.form);
    if (const auto call = std::exchange(slot.when_shown, nullptr)) call();
}

void FormRegistry::unload(const std::string& name) {
    Slot& slot = slots_.at(name);
    if (!slot.form) return;
    // It may be one of its own handlers that runs: the object lives until the event has ended.
    const std::shared_ptr<ProgramForm> form = std::move(slot.form);
    program_.toolkit.unload(*form, [form] {});
}

ProgramForm* FormRegistry::loaded(const std::string& name) const { return slots_.at(name).form.get(); }

Program::Program(const machine::Machine& its_machine, toolkit::Toolkit& its_toolkit, int language)
    : machine(its_machine),
      toolkit(its_toolkit),
      reg(machine, language),
      folders(machine),
      users(machine, reg),
      hiver(machine, reg, [this] { toolkit.process_events(); }),
      engine(machine, reg),
      forms(*this) {
    add_form<getpass>(*this);
    add_form<setpass>(*this);
}

void Program::start() { show<getpass>(); }

void Program::say(const Notice& notice) {
    toolkit.message_box({.text = pick(notice.text), .title = pick(notice.title), .icon = notice.icon});
}

bool Program::confirm(const Notice& question) {
    return toolkit.message_box({.text = pick(question.text),
                                .title = pick(question.title),
                                .icon = question.icon,
                                .buttons = toolkit::Buttons::yes_no,
                                .default_answer = toolkit::Answer::no}) == toolkit::Answer::yes;
}

}  // namespace britlock

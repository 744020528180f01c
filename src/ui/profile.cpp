#include "ui/profile.h"

#include "ui/outcome_boxes.h"

namespace britlock {

profile::profile(Program& program) : ProgramForm(program, form_name) {
    set_caption("Form1");
    set_client_size(6000, 3900);
    Command1.set_text("Wert holen");
    Command1.on_click = [this] { Command1_Click(); };
    Command2.set_text("Command2");
    Command2.on_click = [this] { Command2_Click(); };
    Command3.set_text("Command3");
    lay_out({
        {List1, nullptr, {180, 180, 5640, 2880}},
        {Command1, nullptr, {180, 3300, 1500, 375}},
        {Command2, nullptr, {1860, 3300, 1500, 375}},
        {Command3, nullptr, {3540, 3300, 1500, 375}},
    });
}

void profile::Command1_Click() {
    std::string path;
    machine::RawValue value;
    const std::string local_system = std::string(profile_list_key) + "\\S-1-5-18";
    const auto got =
        program_.machine.registry.query(HKEY_LOCAL_MACHINE, local_system, "ProfileImagePath", value);
    if (got.open == machine::success && got.action == machine::success) path = value.data;
    program_.toolkit.message_box({.text = path});
}

void profile::Command2_Click() {
    program_.users.for_each_sid([&](const std::string& sid) {
        const auto user = program_.users.REG_GetUserProfileList(std::string(profile_list_key) + '\\' + sid);
        if (!user) say(program_, user.error());
        List1.add(sid);
        List1.add(user ? *user : "");
    });
    program_.toolkit.message_box({.text = "ende"});
}

void profile::close_by_frame() { program_.unload<profile>(); }

}  // namespace britlock

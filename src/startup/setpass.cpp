#include "startup/setpass.h"

#include "base/product.h"
#include "base/text.h"
#include "startup/password.h"
#include "startup/pictures.h"

namespace britlock {

using namespace text::literals;
using toolkit::Answer;
using toolkit::Icon;

namespace {

constexpr size_t shortest_password = 5;
constexpr size_t first_too_long = 16;

constexpr const char* support_contact = " (support@brightlock.invalid)";

constexpr Notice repetition_differs{
    Icon::information,
    {"Falsche Wiederholung", "Sorry..."},
    {U"Die Wiederholung stimmt nicht mit dem Kennwort überein."_ansi,
     "New Password and New Password (again) are not the same. Please try again !"}};

constexpr Notice wrong_length{
    Icon::information,
    {"Sorry...", "Sorry..."},
    {"Das Kennwort muss mindestens 5 Zeichen und darf maximal 15 Zeichen haben...",
     "Password must be 5 or more characters long. The password must be 15 or less characters long. "}};

constexpr Notice password_saved{
    Icon::information,
    {"Passwort...", "Password..."},
    {"Neues Passwort erfolgreich gesetzt.", "New Password was successfully saved."}};

}  // namespace

setpass::setpass(Program& program) : ProgramForm(program, form_name) {
    set_client_size(5250, 1935);
    set_icon(&pictures::lock);
    Image1.set_drawing(&pictures::key);
    for (toolkit::TextBox* box : {&txt_newpw, &txt_wdh}) {
        box->set_max_length(20);
        box->set_password_char('*');
    }
    cmd_ok.set_text("&OK");
    cmd_ok.is_default = true;
    cmd_ok.on_click = [this] { cmd_ok_Click(); };
    cmd_abbrechen.is_cancel = true;
    cmd_abbrechen.on_click = [this] { cmd_abbrechen_Click(); };
    lay_out({
        {Image1, nullptr, {180, 240, 600, 600}},
        {Label2, nullptr, {960, 300, 1560, 255}},
        {txt_newpw, nullptr, {2580, 240, 2490, 330}},
        {Label3, nullptr, {960, 780, 1560, 255}},
        {txt_wdh, nullptr, {2580, 720, 2490, 330}},
        {cmd_ok, nullptr, {2340, 1380, 1290, 375}},
        {cmd_abbrechen, nullptr, {3780, 1380, 1290, 375}},
    });
}

void setpass::Form_Load() {
    set_caption(program_.pick({"Neues Kennwort festlegen", "Set New Password"}));
    Label2.set_text(program_.pick({"Neues Passwort :", "New Password :"}));
    Label3.set_text(program_.pick({"Wiederholung :", "Password (again):"}));
    cmd_abbrechen.set_text(program_.pick({"&Abbrechen", "&Cancel"}));
    txt_newpw.set_text("");
    txt_wdh.set_text("");
}

void setpass::cmd_ok_Click() {
    if (txt_newpw.text() != txt_wdh.text()) return refuse(repetition_differs);
    if (txt_newpw.text().size() < shortest_password) return refuse(wrong_length);
    if (txt_newpw.text().size() >= first_too_long) return refuse(wrong_length);
    const std::string encoded = encode_password(txt_newpw.text(), password_key);
    // The box says "saved" whatever the write did.
    (void)program_.reg.reg_write_string(HKEY_LOCAL_MACHINE, product::key, "UserPW", encoded);
    program_.say(password_saved);
    program_.unload<setpass>();
    program_.forms.show(form::main);
}

void setpass::refuse(const Notice& why) {
    program_.say(why);
    txt_newpw.set_text("");
    txt_wdh.set_text("");
    program_.toolkit.set_focus(&txt_newpw);
}

/// Also without any password yet: the main window opens, and the next start asks again.
void setpass::cmd_abbrechen_Click() {
    const std::function<void()> statements[] = {[&] { program_.unload<setpass>(); },
                                                [&] { program_.forms.show(form::main); }};
    for (const auto& statement : statements) {
        for (bool again = true; again;) {
            again = false;
            try {
                statement();
            } catch (const RuntimeError& error) {
                again = handle_error(error);
            }
        }
    }
}

/// True: the failed statement is to run once more.
bool setpass::handle_error(const RuntimeError& error) {
    constexpr int no_line_numbers = 0;
    const std::string text =
        "Fehlercode: " + std::to_string(error.number()) + "/ " + error.text(program_.reg.get_language()) +
        "/Line:" + std::to_string(no_line_numbers) + "\r\nin Modul:: cmd_Abbrechen_Click\r\n\r\n" +
        U"Ggf. Hersteller verständigen."_ansi + support_contact;
    const Answer answer = program_.toolkit.message_box({.text = text,
                                                        .title = "Unerwarteter Fehler !",
                                                        .icon = Icon::exclamation,
                                                        .buttons = toolkit::Buttons::abort_retry_ignore,
                                                        .default_answer = Answer::abort});
    if (answer == Answer::abort) program_.toolkit.end_process();
    return answer == Answer::retry;
}

void setpass::close_by_frame() { program_.unload<setpass>(); }

}  // namespace britlock

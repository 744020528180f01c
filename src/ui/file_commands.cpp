#include "base/text.h"
#include "files/restriction_file.h"
#include "report/report.h"
#include "ui/main_form.h"

/// What the commands of the file menu do.
namespace britlock {

using namespace text::literals;
using toolkit::Answer;
using toolkit::Buttons;
using toolkit::Icon;

namespace {

constexpr const char* file_filter = "*.BRL (Brightlock)|*.brl";
constexpr Twin open_title{U"Datei öffnen..."_ansi, "Open File..."};
constexpr Twin save_title{"Einstellungen speichern...", "Save Settings"};

constexpr Notice no_restriction_file{
    Icon::critical,
    {"Fehler...", "Error..."},
    {"Dies ist keine Brightlock Suite Datei.", "This is not a Brightlock Suite-File."}};

constexpr Twin overwrite_title{U"Einschränkungen speichern"_ansi, "Save settings..."};
constexpr Twin overwrite_text{U"Diese Datei ist bereits vorhanden. \rBestehende Datei überschreiben ?"_ansi,
                              "This file already exists.\rOverwrite existing file ?"};

void check(machine::FileError error) {
    if (error != machine::no_error) throw RuntimeError(error);
}

}  // namespace

void MainForm::dateispeichern(const std::string& file) {
    check(program_.machine.files.write(file, brl_text(marks())));
}

/// The file is read to its end before the first control changes.
void MainForm::dateioeffnen(const std::string& file) {
    std::string bytes;
    check(program_.machine.files.read(file, bytes));
    show_file(bytes);
}

void MainForm::show_file(std::string_view bytes) {
    const auto set = read_brl(bytes, marks());
    if (!set) return program_.say(no_restriction_file);
    show(*set);
}

/// The file does not become the one that is saved to.
void MainForm::mm11_Click() {
    dialog = {.title = program_.pick(open_title), .filter = file_filter};
    const std::string file = program_.toolkit.ask_file(dialog);
    if (!file.empty()) dateioeffnen(file);
}

void MainForm::mm12_Click() { last_file_name.empty() ? mm13_Click() : dateispeichern(last_file_name); }

void MainForm::mm13_Click() {
    dialog = {.action = toolkit::FileDialog::Action::save,
              .title = program_.pick(save_title),
              .filter = file_filter};
    const std::string file = program_.toolkit.ask_file(dialog);
    if (file.empty() || !may_overwrite(file)) return;
    last_file_name = file;
    dateispeichern(file);
}

/// What is on show, applied or not.
void MainForm::mm14_Click() {
    const auto caption_of = [this](std::string_view control) { return find(control)->text(); };
    print_report(*program_.toolkit.open_printer(), marks(), caption_of, program_.reg.get_language());
}

/// Makes a missing file: whether it can be written shows before the question.
bool MainForm::may_overwrite(const std::string& file) {
    const auto measured = program_.machine.files.open_binary(file);
    check(measured.error);
    if (measured.length == 0) return true;
    program_.toolkit.beep();
    return program_.toolkit.message_box({.text = program_.pick(overwrite_text),
                                         .title = program_.pick(overwrite_title),
                                         .icon = Icon::exclamation,
                                         .buttons = Buttons::yes_no,
                                         .default_answer = Answer::yes}) == Answer::yes;
}

}  // namespace britlock

#include "base/product.h"
#include "base/text.h"
#include "ui/main_form.h"

/// The commands of the help menu. Help and homepage lie outside the program: where viewer, file or browser
/// are missing, nothing is said.
namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

constexpr Twin homepage_address{product::german_homepage, product::homepage};
constexpr Twin about_title{U"Über..."_ansi, "About..."};

}  // namespace

void MainForm::open_help(const std::string& topic) {
    const std::string file = program_.machine.system.program_directory() + '\\' + product::help_file;
    (void)program_.machine.processes.start("winhlp32.exe " + topic + file,
                                           machine::WindowStyle::normal_focus);
}

void MainForm::mm53_Click() {
    program_.machine.processes.open_address(std::string("http://") + program_.pick(homepage_address));
}

void MainForm::mm54_Click() {
    program_.toolkit.message_box(
        {.text = std::string(product::title) + "\r\n" + program_.machine.system.program_stem() +
                 "\r\n\r\nVersion: " + product::version + "\r\nWinVersion: " + program_.reg.get_os_name()});
}

void MainForm::mm57_Click() {
    program_.toolkit.message_box({.text = std::string(product::title) + "\r\n\r\n\r\n" + product::maker +
                                          "\r\n" + program_.pick(homepage_address) + "\r\n" + product::years +
                                          "\r\n\r\nRelease: " + product::version +
                                          "\r\n\r\nDedicated to all schools and parents.",
                                  .title = program_.pick(about_title),
                                  .icon = Icon::information});
}

}  // namespace britlock

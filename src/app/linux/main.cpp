#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>

#include "app/help/help_processes.h"
#include "app/help/help_window.h"
#include "app/linux/options.h"
#include "base/text.h"
#include "machine/offline/offline_machine.h"
#include "machine/offline/sample_installation.h"
#include "machine/qt_internet/qt_internet.h"
#include "platform/folder_browser.h"
#include "platform/product_setup.h"
#include "startup/program.h"
#include "toolkit/qt/qt_toolkit.h"
#include "ui/forms.h"
#include "ui/main_form.h"

using namespace text::literals;

/// The entry of the Linux edition: the only place that knows what stands behind the program's machine and
/// toolkit.
namespace {

int complain(const std::string& what) {
    std::cerr << "britlock: " << what << "\n";
    return 1;
}

/// A picture has nobody in front of it: what would be asked is told, and answered by default.
class PhotographedToolkit : public toolkit::QtToolkit {
  public:
    using QtToolkit::QtToolkit;

  protected:
    toolkit::Answer show_box(const toolkit::Box& box) override {
        std::cerr << "britlock: " << text::to_utf8(box.title + ": " + box.text) << "\n";
        return box.default_answer;
    }
};

std::string executables_folder() { return std::filesystem::read_symlink("/proc/self/exe").parent_path(); }

/// What is said around the name of the user whose changes did not reach the disk, by language.
struct LostChanges {
    std::string before;
    std::string behind;
};
const LostChanges lost_changes[] = {
    {U"Die Einschränkungen von "_ansi, " wurden nicht gespeichert: "},
    {"The restrictions of ", " were not saved: "},
};

bool has_display() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* value = std::getenv(name);
        if (value && *value) return true;
    }
    return false;
}

int make_sample(const std::string& folder) {
    const auto made = machine::make_sample_installation(folder, machine::SampleFamily::winxp);
    return made ? 0 : complain(made.error().message);
}

void choose_user(britlock::MainForm& window, const std::string& user) {
    const auto& names = window.Combo_user.items();
    for (size_t i = 0; i < names.size(); ++i) {
        if (names[i] == user) window.Combo_user.choose(static_cast<int>(i));
    }
}

/// Shows the main window and nothing else. No password is asked for, since nothing can be done in a picture.
void take_screenshot(britlock::Program& program, toolkit::QtToolkit& screen, const Options& options) {
    program.show<britlock::MainForm>();
    britlock::MainForm& window = *program.loaded<britlock::MainForm>();
    window.go_to_page(options.page);
    if (const auto user = text::from_utf8(options.user)) choose_user(window, *user);
    window.Timer1_Timer();
    screen.process_events();
    if (!screen.save_screenshot(window, options.screenshot))
        std::exit(complain("cannot write " + options.screenshot));
    screen.end_process();
}

int run(const Options& options) {
    const bool unseen = !options.screenshot.empty() || options.command_line == "/icon";
    if (unseen && !has_display()) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    if (!has_display()) {
        return complain(
            "there is no display; start it on a desktop, through ssh -X, or take a picture with --screenshot "
            "FILE");
    }
    toolkit::QtToolkit* screen = nullptr;
    machine::OfflineOptions wanted;
    wanted.drives = options.drives;
    wanted.executables = executables_folder();
    if (!options.program_directory.empty()) {
        const auto directory = text::from_utf8(options.program_directory);
        if (!directory) return complain("code page 1252 cannot spell the program directory");
        wanted.program_directory = *directory;
    }
    const auto command_line = text::from_utf8(options.command_line);
    wanted.command_line = command_line.value_or("");
    wanted.state_folder = options.state_folder;
    wanted.on_report = [&screen](const machine::ToolReport& report) {
        if (!report.changes_lost) return;
        if (!screen) return (void)complain(report.detail);  // the process ends: no box any more
        const LostChanges& says = lost_changes[BRITLOCK_LANGUAGE];
        screen->message_box({.text = says.before + report.name + says.behind +
                                     text::from_utf8(report.detail).value_or("regg.exe"),
                             .icon = toolkit::Icon::critical});
    };
    auto windows = machine::OfflineMachine::open(wanted);
    if (!windows) return complain(windows.error().message);

    const machine::Machine offline = (*windows)->machine();
    britlock::HelpProcesses processes(offline.processes,
                                      [](int topic) { britlock::show_help(topic, BRITLOCK_LANGUAGE); });
    machine::QtInternet internet;
    machine::Machine its{offline.registry, offline.files, processes, offline.system, internet};
    if (options.command_line != "/icon") britlock::prepare_installation(its.registry);
    britlock::FolderBrowser folders(its);
    static char name[] = "britlock";
    char* arguments[] = {name, nullptr};
    int count = 1;
    // Nothing runs behind the end of the process, so what is mounted still is settled here.
    const auto settle = [&windows, &screen] {
        screen = nullptr;
        (*windows)->write_pending();
        windows->reset();
    };
    std::unique_ptr<toolkit::QtToolkit> toolkit;
    if (options.screenshot.empty()) {
        toolkit = std::make_unique<toolkit::QtToolkit>(count, arguments, folders, settle);
    } else {
        toolkit = std::make_unique<PhotographedToolkit>(count, arguments, folders, settle);
    }
    screen = toolkit.get();
    britlock::Program program(its, *toolkit, BRITLOCK_LANGUAGE);
    britlock::add_forms(program);
    toolkit->run([&] {
        if (options.screenshot.empty()) return program.start();
        take_screenshot(program, *toolkit, options);
    });
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    (void)std::signal(SIGCHLD, SIG_DFL);  // ignored by who started us, the hive tool's end would be lost
    try {
        const auto parsed = parse_options(argc, argv);
        if (const auto* wrong = std::get_if<std::string>(&parsed)) {
            (void)complain(*wrong);
            std::cerr << "\n" << usage;
            return 2;
        }
        const auto& options = std::get<Options>(parsed);
        return options.make_sample.empty() ? run(options) : make_sample(options.make_sample);
    } catch (const std::exception& error) {  // memory or the system ran out on the way to the first window
        return complain(error.what());
    }
}

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <memory>

#include "app/help/help_processes.h"
#include "app/help/help_window.h"
#include "app/linux/exit_code.h"
#include "app/linux/host_text.h"
#include "app/linux/options.h"
#include "app/linux/strip.h"
#include "base/product.h"
#include "base/text.h"
#include "machine/offline/offline_machine.h"
#include "machine/offline/sample_installation.h"
#include "machine/qt_internet/qt_internet.h"
#include "platform/folder_browser.h"
#include "platform/product_setup.h"
#include "startup/pictures.h"
#include "startup/program.h"
#include "toolkit/qt/qt_toolkit.h"
#include "ui/forms.h"
#include "ui/main_form.h"

using namespace text::literals;

/// The entry of the Linux edition: the only place that knows what stands behind the program's machine and
/// toolkit.
namespace {

constexpr auto language = static_cast<Language>(BRITLOCK_LANGUAGE);

int complain(const std::string& what, ExitCode code) {
    std::cerr << "britlock: " << what << "\n";
    return code;
}

// Qt takes the process's arguments by reference, and ours are parsed already.
char program_name[] = "britlock";
char* qt_arguments[] = {program_name, nullptr};
int qt_argument_count = 1;

/// Where there is no Windows there are no folders.
class NoFolders : public toolkit::FolderSource {
  public:
    std::vector<char> drives() override { return {}; }
    std::string folder(std::string_view) override { throw RuntimeError(68); }
    std::vector<std::string> folders(std::string_view) override { return {}; }
    std::vector<std::string> files(std::string_view) override { return {}; }
};

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

std::string clock_time() {
    const std::time_t now = std::time(nullptr);
    char text[16] = "";
    (void)std::strftime(text, sizeof text, "%H:%M", std::localtime(&now));
    return text;
}

/// What is said around the name of the user whose changes did not reach the disk.
constexpr Twin before_name{U"Die Einschränkungen von "_ansi, "The restrictions of "};
constexpr Twin after_name{" wurden nicht gespeichert: ", " were not saved: "};

/// Nobody sees the windows of this start.
bool unseen(const Options& options) { return !options.screenshot.empty() || options.command_line == "/icon"; }

/// One start on one installation.
class Session {
  public:
    explicit Session(const Options& options) : options_(options) {}
    /// Gives the exit code where nothing could be started; else the process ends in it.
    int run();

  private:
    std::optional<machine::OfflineOptions> wanted();
    int refuse(const base::Error& why) const;
    void start_screen();
    void note(const machine::ToolReport& report);
    int settle(toolkit::Ending ending);
    void take_screenshot();
    void show_restriction_file();
    bool choose_user(britlock::MainForm& window) const;

    const Options& options_;
    std::string executables_ = executables_folder();
    std::unique_ptr<machine::OfflineMachine> windows_;
    std::unique_ptr<britlock::HelpProcesses> processes_;
    machine::QtInternet internet_;
    std::unique_ptr<britlock::FolderBrowser> folders_;
    std::unique_ptr<toolkit::QtToolkit> screen_;
    std::unique_ptr<britlock::Program> program_;
    std::vector<std::string> strip_;
    bool ending_ = false;        // no box any more
    bool changes_lost_ = false;  // at the last run of the hive tool
};

std::optional<machine::OfflineOptions> Session::wanted() {
    machine::OfflineOptions out;
    out.drives = options_.drives;
    out.executables = executables_;
    if (!options_.program_directory.empty()) {
        const auto directory = text::from_utf8(options_.program_directory);
        if (!directory) return std::nullopt;
        out.program_directory = *directory;
    }
    out.command_line = options_.command_line;
    out.state_folder = options_.state_folder;
    out.on_report = [this](const machine::ToolReport& report) { note(report); };
    return out;
}

/// On the standard error always, in a box where somebody sees it.
int Session::refuse(const base::Error& why) const {
    const std::string text = strip::reason(why.kind, why.message, language);
    if (!unseen(options_)) {
        NoFolders none;
        toolkit::QtToolkit screen(qt_argument_count, qt_arguments, none, language,
                                  [](toolkit::Ending) { return 0; });
        screen.set_icon(britlock::pictures::lock);
        const auto shown = text::from_utf8(options_.drives.at('C') + "\n\n" + text);
        screen.message_box({.text = shown.value_or(why.message), .icon = toolkit::Icon::critical});
    }
    return complain(text, exit_could_not_open);
}

void Session::start_screen() {
    const auto at_end = [this](toolkit::Ending ending) { return settle(ending); };
    if (options_.screenshot.empty()) {
        screen_ = std::make_unique<toolkit::QtToolkit>(qt_argument_count, qt_arguments, *folders_, language,
                                                       at_end);
    } else {
        screen_ = std::make_unique<PhotographedToolkit>(qt_argument_count, qt_arguments, *folders_, language,
                                                        at_end);
    }
    screen_->set_icon(britlock::pictures::lock);
    const std::string& folder = options_.drives.at('C');
    strip_ = {strip::open_windows(windows_->installation().family, folder, access(folder.c_str(), W_OK) != 0,
                                  language)};
    screen_->set_strip(strip_);
}

void Session::note(const machine::ToolReport& report) {
    changes_lost_ = report.changes_lost;
    const auto line = strip::outcome(report, clock_time(), language);
    if (!line) return;
    if (!report.succeeded) (void)complain(*line, exit_failed);
    strip_.resize(1);
    strip_.push_back(*line);
    screen_->set_strip(strip_);
    if (!report.changes_lost || ending_) return;
    const std::string why =
        text::from_utf8(strip::reason(report.why, report.detail, language)).value_or(product::hive_tool_file);
    screen_->message_box(
        {.text = pick(before_name, language) + report.name + pick(after_name, language) + why,
         .icon = toolkit::Icon::critical});
}

/// Nothing runs after the end of the process, so what is mounted still is settled here.
int Session::settle(toolkit::Ending ending) {
    ending_ = true;
    windows_->write_pending();
    windows_.reset();
    const bool has_tool = access((executables_ + '/' + product::hive_tool_file).c_str(), X_OK) == 0;
    return ending == toolkit::Ending::done && !changes_lost_ && has_tool ? exit_done : exit_failed;
}

bool Session::choose_user(britlock::MainForm& window) const {
    const auto user = text::from_utf8(options_.user);
    const auto& names = window.Combo_user.items();
    for (size_t i = 0; user && i < names.size(); ++i) {
        if (names[i] != *user) continue;
        window.Combo_user.choose(static_cast<int>(i));
        return true;
    }
    return options_.user.empty();
}

/// Shows the main window and nothing else. No password is asked for, since nothing can be done in a picture.
void Session::take_screenshot() {
    program_->show<britlock::MainForm>();
    britlock::MainForm& window = *program_->loaded<britlock::MainForm>();
    window.go_to_page(options_.page);
    const bool chosen = choose_user(window);
    window.Timer1_Timer();
    screen_->process_events();
    if (!chosen) {
        (void)complain("there is no user " + options_.user, exit_failed);
    } else if (!screen_->save_screenshot(window, options_.screenshot)) {
        (void)complain("cannot write " + options_.screenshot, exit_failed);
    } else {
        screen_->end_process();
    }
    screen_->end_process(toolkit::Ending::failed);
}

/// What the file holds stands in the window then; nothing is written before somebody applies it.
void Session::show_restriction_file() {
    const auto bytes = read_host_file(options_.restriction_file);
    if (!bytes) throw RuntimeError(bytes.error());
    program_->loaded<britlock::MainForm>()->show_file(*bytes);
}

int Session::run() {
    if (const std::string trouble = toolkit::QtToolkit::screen_trouble(unseen(options_)); !trouble.empty()) {
        return complain(
            trouble + "; start it on a desktop, through ssh -X, or take a picture with --screenshot FILE",
            exit_could_not_open);
    }
    const auto options = wanted();
    if (!options) return complain("code page 1252 cannot spell the program directory", exit_wrong_call);
    auto opened = machine::OfflineMachine::open(*options);
    if (!opened) return refuse(opened.error());
    windows_ = std::move(*opened);
    const machine::Machine offline = windows_->machine();
    processes_ = std::make_unique<britlock::HelpProcesses>(
        offline.processes, [](int topic) { britlock::show_help(topic, language); });
    machine::Machine its{offline.registry, offline.files, *processes_, offline.system, internet_};
    if (options_.command_line != "/icon") britlock::prepare_installation(its.registry);
    folders_ = std::make_unique<britlock::FolderBrowser>(its);
    start_screen();
    program_ = std::make_unique<britlock::Program>(its, *screen_, language);
    britlock::add_forms(*program_);
    if (!options_.restriction_file.empty())
        program_->forms.when_shown(britlock::form::main, [this] { show_restriction_file(); });
    screen_->run([this] { options_.screenshot.empty() ? program_->start() : take_screenshot(); });
    return exit_done;
}

int make_sample(const std::string& folder) {
    const auto made = machine::make_sample_installation(folder, machine::SampleFamily::winxp);
    return made ? exit_done : complain(made.error().message, exit_failed);
}

int run(const Options& options) {
    switch (options.tell) {
        case Options::Tell::help:
            std::cout << usage;
            return exit_done;
        case Options::Tell::version:
            std::cout << "britlock " << BRITLOCK_VERSION << "\n";
            return exit_done;
        case Options::Tell::nothing:
            break;
    }
    return options.make_sample.empty() ? Session(options).run() : make_sample(options.make_sample);
}

}  // namespace

int main(int argc, char** argv) {
    (void)std::signal(SIGCHLD, SIG_DFL);  // ignored by who started us, the hive tool's end would be lost
    try {
        const auto parsed = parse_options(argc, argv);
        if (const auto* wrong = std::get_if<std::string>(&parsed)) {
            (void)complain(*wrong, exit_wrong_call);
            std::cerr << "\n" << usage;
            return exit_wrong_call;
        }
        return run(std::get<Options>(parsed));
    } catch (const std::exception& error) {  // memory or the system ran out on the way to the first window
        return complain(error.what(), exit_failed);
    }
}

#include "app/linux/batch_command.h"

#include <unistd.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>

#include "app/linux/batch_options.h"
#include "app/linux/exit_code.h"
#include "app/linux/host_text.h"
#include "app/linux/password_line.h"
#include "app/linux/strip.h"
#include "base/product.h"
#include "base/text.h"
#include "batch/batch.h"
#include "batch/description.h"
#include "files/restriction_file.h"
#include "machine/offline/host_file.h"
#include "machine/offline/offline_machine.h"
#include "startup/password.h"

using namespace text::literals;
using britlock::Batch;
using britlock::Failure;
using britlock::REGISTRY_MOD;
using britlock::RestrictionSet;

namespace {

constexpr Twin done{"fertig", "done"};
constexpr Twin failed{"fehlgeschlagen: ", "failed: "};
constexpr Twin password_prompt{"Geben Sie das Kennwort ein:", "Enter your password:"};
constexpr Twin no_password_set{U"es ist noch kein Kennwort festgelegt; starten Sie zuerst das Fenster"_ansi,
                               "no password has been set yet; start the window first"};
constexpr Twin no_password_given{"es wurde kein Kennwort eingegeben", "no password was given"};
constexpr Twin wrong_password{"das Kennwort ist nicht korrekt", "the password is incorrect"};
constexpr Twin file_unreadable{" kann nicht gelesen werden: ", " cannot be read: "};
constexpr Twin file_unwritable{" kann nicht geschrieben werden: ", " cannot be written: "};
constexpr Twin no_restriction_file{" ist keine Brightlock Suite Datei", " is not a Brightlock Suite file"};
constexpr Twin file_exists{" ist bereits vorhanden", " already exists"};

/// Why the run ends before it comes to a user. UTF-8.
struct NotOpened {
    std::string why;
};

/// Trouble that the hive tool tells of, for the user whose turn it is.
class Troubles {
  public:
    explicit Troubles(Language language) : language_(language) {}
    void note(const machine::ToolReport& report) {
        // Before a hive is loaded, what an earlier run has left behind is cleared away: no trouble of this
        // one's.
        const bool earlier = report.verb == machine::ToolReport::Verb::unload && !loaded_;
        loaded_ = report.verb == machine::ToolReport::Verb::load && report.succeeded;
        // What the last unload has written is written, however the way there was.
        if (report.succeeded && report.verb == machine::ToolReport::Verb::unload) last_.clear();
        if (report.succeeded && !report.changes_lost) return;
        const std::string why = strip::reason(report.why, report.detail, language_);
        if (earlier || report.succeeded) {
            std::cerr << text::to_utf8(report.name) << ": " << why << std::endl;
        } else {
            last_ = text::from_utf8(why).value_or(product::hive_tool_file);
        }
    }
    std::string take() { return std::exchange(last_, ""); }

  private:
    const Language language_;
    bool loaded_ = false;
    std::string last_;
};

class BatchRun {
  public:
    BatchRun(const BatchOptions& options, std::string executables, Language language)
        : options_(options), executables_(std::move(executables)), language_(language), troubles_(language) {}

    int run();

  private:
    using Work = std::function<Failure(const std::string& user)>;

    std::string say(const Twin& twin) const { return text::to_utf8(pick(twin, language_)); }
    void open();
    void check_password();
    std::string password() const;
    std::string restriction_file() const;
    int for_each_user(const Work& work);
    int apply();
    int show();
    int save();
    Failure write_file(const RestrictionSet& set) const;

    const BatchOptions& options_;
    std::string executables_;
    const Language language_;
    Troubles troubles_;
    std::unique_ptr<machine::OfflineMachine> windows_;
    std::unique_ptr<Batch> batch_;
};

int BatchRun::run() {
    open();
    check_password();
    batch_ = std::make_unique<Batch>(windows_->machine(), language_, [this] { return troubles_.take(); });
    switch (options_.verb) {
        case BatchOptions::Verb::apply:
            return apply();
        case BatchOptions::Verb::save:
            return save();
        case BatchOptions::Verb::show:
            break;
    }
    return show();
}

void BatchRun::open() {
    machine::OfflineOptions wanted;
    wanted.drives = options_.drives;
    wanted.executables = executables_;
    if (!options_.program_directory.empty())
        wanted.program_directory = text::from_utf8(options_.program_directory).value_or("");
    wanted.state_folder = options_.state_folder;
    wanted.on_report = [this](const machine::ToolReport& report) { troubles_.note(report); };
    auto opened = machine::OfflineMachine::open(wanted);
    if (!opened) throw NotOpened{strip::reason(opened.error().kind, opened.error().message, language_)};
    windows_ = std::move(*opened);
}

void BatchRun::check_password() {
    REGISTRY_MOD reg(windows_->machine(), language_);
    const std::string stored = reg.reg_read_string(britlock::HKEY_LOCAL_MACHINE, product::key, "UserPW");
    if (stored.empty()) throw NotOpened{say(no_password_set)};
    const auto given = text::from_utf8(password());
    if (!given || britlock::encode_password(*given, britlock::password_key) != stored)
        throw NotOpened{say(wrong_password)};
}

std::string BatchRun::password() const {
    const auto line = options_.password_descriptor < 0 ? ask_on_terminal(say(password_prompt))
                                                       : read_line(options_.password_descriptor);
    if (!line) throw NotOpened{say(no_password_given)};
    return *line;
}

/// Read and judged before the first user's turn comes.
std::string BatchRun::restriction_file() const {
    const std::string& name = options_.file;
    const auto bytes = read_host_file(name);
    if (!bytes)
        throw NotOpened{name + say(file_unreadable) +
                        text::to_utf8(RuntimeError(bytes.error()).text(language_))};
    try {
        if (!britlock::read_brl(*bytes, {})) throw NotOpened{name + say(no_restriction_file)};
    } catch (const RuntimeError& error) {
        throw NotOpened{name + say(file_unreadable) + text::to_utf8(error.text(language_))};
    }
    return *bytes;
}

/// A line for each user goes to the standard output where there is no other output, at once.
int BatchRun::for_each_user(const Work& work) {
    std::vector<std::string> names = options_.users;
    if (options_.all_users) {
        for (const std::string& name : batch_->users())
            names.push_back(text::to_utf8(name));
    }
    const bool shows = options_.verb == BatchOptions::Verb::show;
    ExitCode code = exit_done;
    for (const std::string& name : names) {
        // No user has a name that the code page cannot spell.
        const Failure failure = work(text::from_utf8(name).value_or(""));
        if (!failure.empty()) code = exit_failed;
        if (failure.empty() && shows) continue;
        const std::string what = failure.empty() ? say(done) : say(failed) + text::to_utf8(failure);
        (shows ? std::cerr : std::cout) << name << ": " << what << std::endl;
    }
    return code;
}

int BatchRun::apply() {
    const std::string file = restriction_file();
    return for_each_user([&](const std::string& user) { return batch_->apply(user, file); });
}

int BatchRun::show() {
    return for_each_user([&](const std::string& user) {
        RestrictionSet set;
        Failure failure = batch_->read(user, set);
        if (!failure.empty()) return failure;
        std::cout << text::to_utf8(options_.json ? britlock::json_of(user, set)
                                                 : britlock::description_of(user, set, language_));
        return failure;
    });
}

int BatchRun::save() {
    if (!options_.overwrite && access(options_.file.c_str(), F_OK) == 0)
        throw NotOpened{options_.file + say(file_exists)};
    return for_each_user([&](const std::string& user) {
        RestrictionSet set;
        Failure failure = batch_->read(user, set);
        return failure.empty() ? write_file(set) : failure;
    });
}

Failure BatchRun::write_file(const RestrictionSet& set) const {
    const auto place = hostfile::place_of(options_.file);
    const machine::FileError error =
        place
            ? machine::replace_file(*place, [&](int file) { return machine::write_all(file, brl_text(set)); })
            : machine::file_error(place.error().kind);
    if (error == machine::no_error) return "";
    return text::from_utf8(options_.file + say(file_unwritable)).value_or("") +
           RuntimeError(error).text(language_);
}

}  // namespace

int run_batch(const std::vector<std::string>& words, const std::string& executables, Language language) {
    const auto complain = [](const std::string& why) { std::cerr << "britlock: " << why << "\n"; };
    if (std::find(words.begin(), words.end(), "--help") != words.end()) {
        std::cout << batch_usage;
        return exit_done;
    }
    const auto parsed = parse_batch_options(words);
    if (const auto* wrong = std::get_if<std::string>(&parsed)) {
        complain(*wrong);
        std::cerr << "\n" << batch_usage;
        return exit_wrong_call;
    }
    try {
        return BatchRun(std::get<BatchOptions>(parsed), executables, language).run();
    } catch (const NotOpened& end) {
        complain(end.why);
    } catch (const RuntimeError& error) {
        complain(text::to_utf8(error.text(language)));
    }
    return exit_could_not_open;
}

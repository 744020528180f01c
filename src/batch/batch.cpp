#include "batch/batch.h"

#include <algorithm>

#include "base/text.h"
#include "files/restriction_file.h"

namespace britlock {

using namespace text::literals;

namespace {

constexpr Twin no_such_user{"diesen Benutzer gibt es hier nicht", "there is no such user here"};
constexpr Twin logged_on{U"der angemeldete Benutzer kann nicht eingeschränkt werden"_ansi,
                         "the user who is logged on cannot be restricted"};
constexpr Twin no_restriction_file{"die Datei ist keine Brightlock Suite Datei",
                                   "the file is not a Brightlock Suite file"};
constexpr Twin not_written{U"die Einschränkungen konnten nicht gesetzt werden"_ansi,
                           "the restrictions could not be set"};
constexpr Twin not_saved{U"die Änderungen konnten nicht gespeichert werden"_ansi,
                         "the changes could not be saved"};
constexpr Twin run_time_error{"Laufzeitfehler ", "run-time error "};

struct Reason {
    HIVER_MOD::Complaint complaint;
    Twin text;
};

constexpr Reason reasons[] = {
    {HIVER_MOD::Complaint::tool_missing, {"regg.exe fehlt", "regg.exe is missing"}},
    {HIVER_MOD::Complaint::file_missing,
     {"die Datei NTUSER.DAT fehlt oder ist leer", "the file NTUSER.DAT is missing or empty"}},
    {HIVER_MOD::Complaint::file_in_use,
     {"die Datei NTUSER.DAT ist in Gebrauch oder gesperrt", "the file NTUSER.DAT is in use or locked"}},
    {HIVER_MOD::Complaint::path_missing,
     {"den Pfad der Datei NTUSER.DAT gibt es nicht", "there is no such path to the file NTUSER.DAT"}},
    {HIVER_MOD::Complaint::unknown_error,
     {"die Datei NTUSER.DAT ist nicht lesbar", "the file NTUSER.DAT cannot be read"}},
    {HIVER_MOD::Complaint::no_write_access,
     {"die Datei NTUSER.DAT konnte nicht geladen werden", "the file NTUSER.DAT could not be loaded"}},
};

Twin reason_of(const HIVER_MOD::Outcome& outcome) {
    for (const Reason& reason : reasons) {
        if (!outcome.complaints.empty() && outcome.complaints.front() == reason.complaint) return reason.text;
    }
    return not_written;
}

}  // namespace

Batch::Batch(const machine::Machine& machine, int language, ToolTrouble trouble)
    : reg_(machine, language),
      users_(machine, reg_),
      hiver_(machine, reg_, [] {}),
      engine_(machine, reg_),
      trouble_(std::move(trouble)) {
    (void)users_.profiles_scan();  // whose hive is missing is told when the turn comes to that user
}

std::vector<std::string> Batch::users() {
    std::vector<std::string> names;
    for (int i = 1; i <= users_.profile_count; ++i)
        names.push_back(users_.profile_names[i]);
    return names;
}

Failure Batch::apply(const std::string& user, std::string_view file) {
    return visit(user, [&](const std::string& name) -> Failure {
        const auto set = read_brl(file, stored(name));
        if (!set) return reg_.pick(no_restriction_file);
        const auto written = engine_.write(target_of_writing(reg_, name), *set);
        return written == Engine::Written::refused ? reg_.pick(not_written) : "";
    });
}

Failure Batch::read(const std::string& user, RestrictionSet& set) {
    return visit(user, [&](const std::string& name) -> Failure {
        set = stored(name);
        return "";
    });
}

RestrictionSet Batch::stored(const std::string& name) {
    MachineTexts texts = engine_.machine_texts();
    texts.profiles_path = users_.profile_base_path;
    return engine_.read(target_of_reading(reg_, name), texts);
}

Failure Batch::visit(const std::string& user, const Work& work) {
    const std::vector<std::string> names = users();
    const auto name = std::find_if(names.begin(), names.end(), [&](const std::string& known) {
        return text::equal_ignoring_case(known, user);
    });
    if (name == names.end()) return reg_.pick(no_such_user);
    if (is_logged_on(*name)) return reg_.pick(logged_on);
    Failure failure;
    try {
        failure = visit_hive(*name, work);
    } catch (const RuntimeError& error) {  // the hive tool went missing
        failure = told(error);
    }
    const std::string trouble = trouble_();
    if (trouble.empty()) return failure;
    return (failure.empty() ? reg_.pick(not_saved) : failure) + " (" + trouble + ")";
}

/// A run-time error of the work stays inside the visit, so that the hive is unmounted all the same.
Failure Batch::visit_hive(const std::string& name, const Work& work) {
    Failure failure;
    const auto outcome =
        hiver_.visit({.name = name, .file = hive_file_of(users_.profile_base_path, name)}, [&] {
            try {
                failure = work(name);
            } catch (const RuntimeError& error) {
                failure = told(error);
            }
        });
    return outcome.result == HIVER_MOD::done ? failure : reg_.pick(reason_of(outcome));
}

Failure Batch::told(const RuntimeError& error) const {
    return reg_.pick(run_time_error) + std::to_string(error.number()) + ": " +
           error.text(reg_.get_language());
}

bool Batch::is_logged_on(const std::string& name) {
    return text::equal_ignoring_case(REGISTRY_MOD::clean_reg_string(reg_.get_user_name()), name);
}

}  // namespace britlock

#include "app/linux/strip.h"

#include "base/text.h"

namespace strip {

using base::ErrorKind;

namespace {

constexpr Twin in{" in ", " in "};
constexpr Twin only_read{", nur lesbar", ", read-only"};
constexpr Twin one_changed{"1 Wert geändert, gespeichert ", "1 value changed, saved "};
constexpr Twin changed{" Werte geändert, gespeichert ", " values changed, saved "};
constexpr Twin unchanged{"nichts geändert, ", "nothing changed, "};
constexpr Twin lost{", die Änderungen sind verloren", ", the changes are lost"};
constexpr Twin nothing_written{", nichts geschrieben", ", nothing written"};

struct Meaning {
    ErrorKind kind;
    const char* german;
};

constexpr Meaning meanings[] = {
    {ErrorKind::missing, "die Datei oder der Ordner fehlt"},
    {ErrorKind::refused, "der Zugriff wurde verweigert"},
    {ErrorKind::in_use, "die Datei ist in Gebrauch"},
    {ErrorKind::no_space, "der Datenträger ist voll"},
    {ErrorKind::io, "der Datenträger antwortet nicht"},
    {ErrorKind::not_a_hive, "die Datei ist keine Registrierungsdatei"},
    {ErrorKind::damaged, "die Registrierungsdatei ist beschädigt"},
    {ErrorKind::dirty, "die Registrierungsdatei ist unvollständig geschrieben"},
    {ErrorKind::unsupported, "dieses Windows wird nicht bedient"},
    {ErrorKind::changed, "die Datei wurde inzwischen geändert"},
    {ErrorKind::invalid, "die Angabe ist ungültig"},
};

}  // namespace

std::string open_windows(const std::string& family, const std::string& folder, bool read_only,
                         Language language) {
    return family + pick(in, language) + folder + (read_only ? pick(only_read, language) : "");
}

std::optional<std::string> outcome(const machine::ToolReport& report, std::string_view clock,
                                   Language language) {
    const std::string name = text::to_utf8(report.name) + ": ";
    if (!report.succeeded) {
        return name + reason(report.why, report.detail, language) +
               pick(report.changes_lost ? lost : nothing_written, language);
    }
    if (report.verb == machine::ToolReport::Verb::load) return std::nullopt;
    if (report.changed == 0) return name + pick(unchanged, language) + std::string(clock);
    if (report.changed == 1) return name + pick(one_changed, language) + std::string(clock);
    return name + std::to_string(report.changed) + pick(changed, language) + std::string(clock);
}

std::string reason(std::optional<ErrorKind> why, const std::string& detail, Language language) {
    if (language == english || !why) return detail;
    for (const Meaning& meaning : meanings) {
        if (meaning.kind == *why) return std::string(meaning.german) + " (" + detail + ")";
    }
    return detail;
}

}  // namespace strip

#include "base/runtime_error.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"

using namespace text::literals;

namespace {

struct Known {
    int number;
    Twin text;
};

constexpr Known known_errors[] = {
    {5, {U"Ungültiger Prozeduraufruf oder ungültiges Argument"_ansi, "Invalid procedure call or argument"}},
    {6, {U"Überlauf"_ansi, "Overflow"}},
    {9, {U"Index außerhalb des gültigen Bereichs"_ansi, "Subscript out of range"}},
    {13, {U"Typen unverträglich"_ansi, "Type mismatch"}},
    {52, {"Dateiname oder Dateinummer falsch", "Bad file name or number"}},
    {53, {"Datei nicht gefunden", "File not found"}},
    {55, {U"Datei bereits geöffnet"_ansi, "File already open"}},
    {57, {U"Ein-/Ausgabefehler des Geräts"_ansi, "Device I/O error"}},
    {58, {"Datei bereits vorhanden", "File already exists"}},
    {61, {U"Datenträger voll"_ansi, "Disk full"}},
    {62, {U"Lesen über das Ende der Datei hinaus"_ansi, "Input past end of file"}},
    {68, {U"Gerät nicht verfügbar"_ansi, "Device unavailable"}},
    {70, {"Zugriff verweigert", "Permission denied"}},
    {71, {U"Datenträger nicht bereit"_ansi, "Disk not ready"}},
    {75, {"Fehler beim Zugriff auf Pfad oder Datei", "Path/File access error"}},
    {76, {"Pfad nicht gefunden", "Path not found"}},
    {93, {U"Ungültiges Muster"_ansi, "Invalid pattern string"}},
    {380, {U"Ungültiger Wert einer Eigenschaft"_ansi, "Invalid property value"}},
    {481, {U"Ungültiges Bild"_ansi, "Invalid picture"}},
    {482, {"Druckerfehler", "Printer error"}},
};

constexpr Twin unknown_error{"Anwendungs- oder objektdefinierter Fehler",
                             "Application-defined or object-defined error"};

Twin text_of(int number) {
    const auto* at = std::find_if(std::begin(known_errors), std::end(known_errors),
                                  [&](const Known& k) { return k.number == number; });
    return at == std::end(known_errors) ? unknown_error : at->text;
}

}  // namespace

RuntimeError::RuntimeError(int number) : number_(number), text_(text_of(number)) {}

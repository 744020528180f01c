#include "toolkit/words.h"

#include "base/text.h"

namespace toolkit {

using namespace text::literals;

namespace {

struct Row {
    Word word;
    Twin text;
};

constexpr Row rows[] = {
    {Word::ok, {"OK", "OK"}},
    {Word::cancel, {"Abbrechen", "Cancel"}},
    {Word::yes, {"&Ja", "&Yes"}},
    {Word::no, {"&Nein", "&No"}},
    {Word::abort, {"&Beenden", "&Abort"}},
    {Word::retry, {"&Wiederholen", "&Retry"}},
    {Word::ignore, {"&Ignorieren", "&Ignore"}},
    {Word::open, {U"Öffnen"_ansi, "Open"}},
    {Word::open_button, {U"Ö&ffnen"_ansi, "&Open"}},
    {Word::save_as, {"Speichern unter", "Save As"}},
    {Word::save_button, {"&Speichern", "&Save"}},
    {Word::file_name, {"Datei&name:", "File &name:"}},
    {Word::files, {"Date&ien:", "F&iles:"}},
    {Word::files_of_type, {"Datei&typ:", "Files of &type:"}},
    {Word::folders, {"&Ordner:", "&Folders:"}},
    {Word::drive, {"&Laufwerk:", "Dri&ve:"}},
    {Word::no_such_drive,
     {U" ist nicht zu erreichen. Geben Sie seinen Ordner beim Start mit --drive an."_ansi,
      " cannot be reached. Give its folder at the start, with --drive."}},
    {Word::print_setup, {"Drucker einrichten", "Print Setup"}},
    {Word::printer, {"&Drucker:", "&Printer:"}},
    {Word::pdf_file, {"PDF-Datei", "PDF file"}},
    {Word::file, {"Da&tei:", "&File:"}},
    {Word::browse, {"D&urchsuchen...", "&Browse..."}},
};

}  // namespace

const char* word(Word word, Language language) {
    for (const Row& row : rows) {
        if (row.word == word) return pick(row.text, language);
    }
    return "";
}

}  // namespace toolkit

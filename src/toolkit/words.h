#pragma once

#include "base/twin.h"

namespace toolkit {

/// The words that a renderer itself puts on the screen: buttons of boxes, the file dialog, the printer
/// set-up.
enum class Word {
    ok,
    cancel,
    yes,
    no,
    abort,
    retry,
    ignore,
    open,
    open_button,
    save_as,
    save_button,
    file_name,
    files,
    files_of_type,
    folders,
    drive,
    no_such_drive,  ///< after the drive's name
    print_setup,
    printer,
    pdf_file,
    file,
    browse,
};

/// ANSI, with the mark of the access key where it has one.
const char* word(Word word, Language language);

}  // namespace toolkit

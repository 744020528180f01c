#pragma once

#include <QString>
#include <memory>

#include "toolkit/printer.h"
#include "toolkit/words.h"

class QWidget;

namespace toolkit::qt {

/// Where documents go: to a printer of this system, or into a PDF file.
struct PrinterChoice {
    QString printer;   ///< a name; empty: none, or a file is meant
    QString pdf_file;  ///< empty: a printer is meant
    /// The default printer, else the first there is; none where there is none.
    static PrinterChoice usual();
};

/// RuntimeError 482 for a choice of nothing, or of what cannot be printed to.
std::unique_ptr<Printer> open_printer(const PrinterChoice& choice);

/// Lets a person choose anew; Cancel leaves the choice.
void ask_printer(PrinterChoice& choice, Language language, QWidget* parent);

}  // namespace toolkit::qt

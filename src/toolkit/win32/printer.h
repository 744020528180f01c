#pragma once

#include <memory>

#include "toolkit/printer.h"
#include "toolkit/win32/system.h"

namespace toolkit::win32 {

/// Which printer documents go to: the one chosen in this run, else the system's default one.
class PrinterChoice {
  public:
    PrinterChoice() = default;
    ~PrinterChoice();
    PrinterChoice(const PrinterChoice&) = delete;
    PrinterChoice& operator=(const PrinterChoice&) = delete;

    /// Lets a person choose, in Windows' own dialog; Cancel leaves the choice.
    void ask(HWND owner);
    /// RuntimeError 482 where there is no printer or it refuses.
    std::unique_ptr<Printer> open();

  private:
    HGLOBAL settings_ = nullptr;  // DEVMODE
    HGLOBAL names_ = nullptr;     // DEVNAMES
};

}  // namespace toolkit::win32

#include "machine/windows/windows_machine.h"

#include <windows.h>

namespace machine {

WindowsMachine::WindowsMachine() {
    // A drive without a disk answers with its error, and Windows asks for no disk.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
}

}  // namespace machine

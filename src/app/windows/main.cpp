#include <cstdlib>

#include "base/twin.h"
#include "machine/windows/windows_machine.h"
#include "startup/program.h"
#include "toolkit/win32/win32_toolkit.h"
#include "ui/forms.h"

/// The entry of the Windows edition: the only place that knows what stands behind the program's machine and
/// toolkit.
int main() {
    machine::WindowsMachine windows;
    const auto exit_code = [](toolkit::Ending ending) {
        return ending == toolkit::Ending::done ? EXIT_SUCCESS : EXIT_FAILURE;
    };
    toolkit::Win32Toolkit screen(static_cast<Language>(BRITLOCK_LANGUAGE), exit_code);
    britlock::Program program(windows.machine(), screen, BRITLOCK_LANGUAGE);
    britlock::add_forms(program);
    screen.run([&program] { program.start(); });
}

#include <cstdio>
#include <exception>
#include <fstream>
#include <sstream>

#include "program/world.h"

/// Prints what the program prints of a restriction file: it is the same in every edition.
///
/// usage: report_of FILE.brl OUT
int main(int, char** arguments) try {
    std::ostringstream bytes;
    bytes << std::ifstream(arguments[1], std::ios::binary).rdbuf();
    britlock::World w;
    britlock::MainForm& window = w.enter();
    w.windows.files.add_file("C:\\set.brl", bytes.str());
    w.screen.expect_file("C:\\set.brl");
    if (!w.click(window.mm11) || !w.click(window.mm14)) return 1;
    std::ofstream(arguments[2], std::ios::binary) << w.screen.printed;
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "report_of: %s\n", error.what());
    return 1;
}

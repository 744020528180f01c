#pragma once

/// What a start of the program answers to the shell.
enum ExitCode {
    exit_done = 0,
    exit_failed = 1,          ///< a run-time error, changes that did not reach the disk, a missing hive tool
    exit_wrong_call = 2,      ///< the command line
    exit_could_not_open = 3,  ///< the display, or the Windows in the folder
};

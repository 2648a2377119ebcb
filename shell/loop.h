// The interactive loop: brings the client up and announces the shell, runs one command per line, takes the
// client down.
#pragma once

#include "shell/instance.h"

// The instance holds the command line's values. False, with a log line, when there is no connection.
bool ROUTERShell_initialize(ROUTERShellInstance* self);
// Runs until the end flag is set: by an exit command, or where a command file cannot be read on: at its end,
// after an error, and when a signal interrupts the read.
void ROUTERShell_main(ROUTERShellInstance* self);
bool ROUTERShell_finalize(ROUTERShellInstance* self);

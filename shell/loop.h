// The interactive loop: brings the client up and announces the shell, runs one command per line, takes the
// client down.
#pragma once

#include "shell/instance.h"

// The instance holds the command line's values. False, with a log line, when there is no connection.
bool ROUTERShell_initialize(ROUTERShellInstance* self);
// Runs until the end flag is set: by an exit command, or at the end of a command file.
void ROUTERShell_main(ROUTERShellInstance* self);
bool ROUTERShell_finalize(ROUTERShellInstance* self);

// Reads the command line into the shell instance, with the defaults: domain 0, 15 seconds, standard input.
#pragma once

#include "shell/instance.h"

// The arguments are those after the program name. False, with a log line, for a bad option or a command file
// that cannot be opened. An opened command file stays open until the process ends.
bool ROUTERShell_getCommandLineParameters(ROUTERShellInstance* self, int argumentCount,
                                          const char* const* arguments);

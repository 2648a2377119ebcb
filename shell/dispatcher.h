// The dispatcher: recognises the command of a line, checks its words, calls the one sender that carries it
// out, and prints the outcome.
#pragma once

#include "shell/instance.h"

// The published list of command names, ended by an empty entry; the dispatcher does not read it (oddity 40).
extern const char* const ROUTERShell_g_commandList[];

// `wordCount` is at least 1. Everything is printed; nothing is returned. The words may be changed.
void ROUTERShell_parseCommand(ROUTERShellInstance* self, char** words, int wordCount);

void ROUTERShell_printHelp(); // to standard output: the commands with a line in the help

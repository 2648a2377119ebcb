// The help text of the interactive commands.
#pragma once

void ROUTERShell_printHelp(); // to standard output

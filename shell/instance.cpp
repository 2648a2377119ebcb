#include "shell/instance.h"

ROUTERShellInstance ROUTERShell_g_instance{};
int ROUTERShell_g_terminate = 0;

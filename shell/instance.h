// The shell instance: one per process, filled from the command line, and the end flag of its loop.
#pragma once

#include "remote_config/client.h"

#include <cstdio>

struct ROUTERShellInstance {
    std::int32_t domainId;
    std::int32_t timeout; // seconds to wait for a response
    std::FILE* input;     // standard input, or the command file
    ROUTERRemoteConfigClient client;
};

inline ROUTERShellInstance ROUTERShell_g_instance{};
inline int ROUTERShell_g_terminate = 0; // 1 ends the loop at the next turn

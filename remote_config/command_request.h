// What the senders share: checking the names of a command and filling the request, as the command's row in
// admin_types/commands.h says, and refusing an argument.
#pragma once

#include "admin_types/commands.h"
#include "remote_config/client.h"
#include "remote_config/result.h"

namespace zul::remote_config {

// One sender: what it sends, and the context of its log lines.
struct Sender {
    const char* context;
    const admin::Command& command;

    Sender(const char* name, std::int32_t kind) : context(name), command(*admin::findCommand(kind)) {}
};

// Reports a refused argument: a warning in the log, and the same text for the operator. Always false.
bool refuseArgument(const char* context, const char* message, ROUTERRemoteConfigResult* result);

// False: a name is too long, and refused. `name` is empty where the command carries none.
bool checkNames(const Sender& sender, const char* targetRouter, const char* name,
                ROUTERRemoteConfigResult* result);

// Checks the names, writes target, kind and name into the request, and counts `invocation` up.
bool prepareRequest(ROUTERRemoteConfigClient& client, const Sender& sender, const char* targetRouter,
                    const char* name, ROUTERRemoteConfigResult* result);

} // namespace zul::remote_config

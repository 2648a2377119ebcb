// Names are checked before anything of the request is written: a refused command leaves it as it was.
#include "remote_config/command_request.h"

#include "middleware/base/strings.h"
#include "remote_config/exchange.h"
#include "remote_config/log.h"

#include <cstring>

namespace zul::remote_config {

namespace {

bool isLongerThan(std::size_t longest, const char* name) {
    return strnlen(name, longest + 1) > longest;
}

void setName(char* member, const char* name) {
    ZULString_copyBounded(member, admin::ENTITY_NAME_BOUND + 1, name);
}

} // namespace

bool refuseArgument(const char* context, const char* message, ROUTERRemoteConfigResult* result) {
    remoteConfigWarning(context, ZUL_LOG_ANY_FAILURE_s, message);
    ZULString_copyBounded(result->textBuffer, sizeof(result->textBuffer), message);
    return false;
}

bool checkNames(const Sender& sender, const char* targetRouter, const char* name,
                ROUTERRemoteConfigResult* result) {
    if (isLongerThan(admin::SHORTER_NAME, targetRouter)) {
        return refuseArgument(sender.context, "target router name too long", result);
    }
    return !isLongerThan(sender.command.longestName, name) ||
           refuseArgument(sender.context, sender.command.nameTooLong, result);
}

void fillRequest(ROUTERRemoteConfigClient& client, const Sender& sender, const char* targetRouter,
                 const char* name) {
    auto& [kind, branches] = client.commandSample->command;
    setName(client.commandSample->target_router, targetRouter);
    kind = sender.command.kind;
    switch (sender.command.branch) {
    case admin::CommandBranch::ENTITY_DESC:
        setName(branches.entity_desc.name, name);
        break;
    case admin::CommandBranch::ENTITY_NAME:
        setName(branches.entity_name, name);
        break;
    case admin::CommandBranch::PEER_DESC:
        setName(branches.peer_desc.domain_route_name, name);
        break;
    case admin::CommandBranch::DUMMY:
        break;
    }
    ROUTERRemoteConfigClient_nextInvocation(&client);
}

bool prepareRequest(ROUTERRemoteConfigClient& client, const Sender& sender, const char* targetRouter,
                    const char* name, ROUTERRemoteConfigResult* result) {
    if (!checkNames(sender, targetRouter, name, result)) {
        return false;
    }
    fillRequest(client, sender, targetRouter, name);
    return true;
}

} // namespace zul::remote_config

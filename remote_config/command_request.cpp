// Names are checked before anything of the request is written: a refused command leaves it as it was.
#include "remote_config/command_request.h"

#include "middleware/base/strings.h"
#include "remote_config/exchange.h"
#include "remote_config/log.h"

#include <cstring>

namespace zul::remote_config {

bool refuseArgument(const char* context, const char* message, ROUTERRemoteConfigResult* result) {
    remoteConfigWarning(context, ZUL_LOG_ANY_FAILURE_s, message);
    ZULString_copyBounded(result->textBuffer, sizeof(result->textBuffer), message);
    return false;
}

bool checkNames(const Sender& sender, const char* targetRouter, const char* name,
                ROUTERRemoteConfigResult* result) {
    const auto isLongerThan = [](std::size_t longest, const char* text) {
        return strnlen(text, longest + 1) > longest;
    };
    if (isLongerThan(admin::SHORTER_NAME, targetRouter)) {
        return refuseArgument(sender.context, "target router name too long", result);
    }
    return !isLongerThan(sender.command.longestName, name) ||
           refuseArgument(sender.context, sender.command.nameTooLong, result);
}

bool prepareRequest(ROUTERRemoteConfigClient& client, const Sender& sender, const char* targetRouter,
                    const char* name, ROUTERRemoteConfigResult* result) {
    if (!checkNames(sender, targetRouter, name, result)) {
        return false;
    }
    auto& request = *client.commandSample;
    request.command._d = sender.command.kind;
    ZULString_copyBounded(request.target_router, admin::ENTITY_NAME_BOUND + 1, targetRouter);
    if (char* member = admin::findName(request.command._u, sender.command.branch)) {
        ZULString_copyBounded(member, admin::ENTITY_NAME_BOUND + 1, name);
    }
    ROUTERRemoteConfigClient_nextInvocation(&client);
    return true;
}

} // namespace zul::remote_config

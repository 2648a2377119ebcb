// Names are checked before any part of the request is written: a refused name leaves it as it was.
#include "remote_config/command_request.h"

#include "admin_types/requests.h"
#include "middleware/base/strings.h"
#include "remote_config/exchange.h"
#include "remote_config/log.h"

namespace zul::remote_config {

bool refuseArgument(const char* context, const char* message, ROUTERRemoteConfigResult* result) {
    remoteConfigWarning(context, ZUL_LOG_ANY_FAILURE_s, message);
    ZULString_copyBounded(result->textBuffer, sizeof(result->textBuffer), message);
    return false;
}

bool checkNames(const Sender& sender, const char* targetRouter, const char* name,
                ROUTERRemoteConfigResult* result) {
    const char* reason = admin::refuseNames(sender.command, targetRouter, name);
    return reason == nullptr || refuseArgument(sender.context, reason, result);
}

bool prepareRequest(ROUTERRemoteConfigClient& client, const Sender& sender, const char* targetRouter,
                    const char* name, ROUTERRemoteConfigResult* result) {
    if (!checkNames(sender, targetRouter, name, result)) {
        return false;
    }
    admin::fillNames(*client.commandSample, sender.command, targetRouter, name);
    ROUTERRemoteConfigClient_nextInvocation(&client);
    return true;
}

} // namespace zul::remote_config

// Log lines of this folder: gated by the remote-configuration submodule.
#pragma once

#include "product/log_masks.h"

template <class... Arguments>
void remoteConfigError(const char* context, const ZULLogTemplate& message, const Arguments&... arguments) {
    ROUTERLog_message(ZUL_LOG_LEVEL_ERROR, ROUTER_SUBMODULE_REMOTE_CONFIG, context, message, arguments...);
}

template <class... Arguments>
void remoteConfigWarning(const char* context, const ZULLogTemplate& message, const Arguments&... arguments) {
    ROUTERLog_message(ZUL_LOG_LEVEL_WARNING, ROUTER_SUBMODULE_REMOTE_CONFIG, context, message, arguments...);
}

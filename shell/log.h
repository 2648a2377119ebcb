// Log lines of the entry, the loop and the command-line reader: errors, gated by the shell submodule.
#pragma once

#include "product/log_masks.h"

template <class... Arguments>
void shellError(const char* context, const ZULLogTemplate& message, const Arguments&... arguments) {
    ROUTERLog_message(ZUL_LOG_LEVEL_ERROR, ROUTER_SUBMODULE_SHELL, context, message, arguments...);
}

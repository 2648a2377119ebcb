// The process-wide logging bitmaps of the shell, the client and the utilities. A message is emitted only if
// its level bit is set in the instrumentation mask and its submodule bit in the submodule mask. Any thread.
#pragma once

#include "middleware/base/log.h"

#include <atomic>
#include <cstdint>

constexpr std::uint32_t ROUTER_SUBMODULE_SHELL = 0x2000;
constexpr std::uint32_t ROUTER_SUBMODULE_REMOTE_CONFIG = 0x4000;
constexpr std::uint32_t ROUTER_SUBMODULE_UTILS = 0x3000; // either bit enables the service utilities

extern std::atomic<std::uint32_t> ROUTERLog_g_submoduleMask;       // initially 0xFFFF
extern std::atomic<std::uint32_t> ROUTERLog_g_instrumentationMask; // initially 1: errors

void ROUTERLog_setBitmaps(std::uint32_t submoduleMask, std::uint32_t instrumentationMask);
void ROUTERLog_getBitmaps(std::uint32_t* submoduleMask, std::uint32_t* instrumentationMask);
// Sets the instrumentation mask to 0 for a negative verbosity, else to the low verbosity + 1 bits. The shift
// is taken modulo 32, so verbosity 31 yields 0: oddity 33.
void ROUTERLog_setVerbosity(std::uint32_t submoduleMask, std::int32_t verbosity);

inline bool ROUTERLog_isEnabled(ZULLogLevel level, std::uint32_t submodule) {
    return (ROUTERLog_g_instrumentationMask.load() & level) != 0 &&
           (ROUTERLog_g_submoduleMask.load() & submodule) != 0;
}

template <class... Arguments>
void ROUTERLog_message(ZULLogLevel level, std::uint32_t submodule, const char* context,
                       const ZULLogTemplate& message, const Arguments&... arguments) {
    if (ROUTERLog_isEnabled(level, submodule)) {
        ZULLog_message(level, context, message, arguments...);
    }
}
template <class... Arguments>
void ROUTERLog_error(std::uint32_t submodule, const char* context, const ZULLogTemplate& message,
                     const Arguments&... arguments) {
    ROUTERLog_message(ZUL_LOG_LEVEL_ERROR, submodule, context, message, arguments...);
}

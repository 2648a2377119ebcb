#include "product/log_masks.h"

std::atomic<std::uint32_t> ROUTERLog_g_submoduleMask{0xFFFF};
std::atomic<std::uint32_t> ROUTERLog_g_instrumentationMask{ZUL_LOG_LEVEL_ERROR};

void ROUTERLog_setBitmaps(std::uint32_t submoduleMask, std::uint32_t instrumentationMask) {
    ROUTERLog_g_submoduleMask.store(submoduleMask);
    ROUTERLog_g_instrumentationMask.store(instrumentationMask);
}

void ROUTERLog_getBitmaps(std::uint32_t* submoduleMask, std::uint32_t* instrumentationMask) {
    *submoduleMask = ROUTERLog_g_submoduleMask.load();
    *instrumentationMask = ROUTERLog_g_instrumentationMask.load();
}

void ROUTERLog_setVerbosity(std::uint32_t submoduleMask, std::int32_t verbosity) {
    const std::uint32_t shift = (static_cast<std::uint32_t>(verbosity) + 1) % 32;
    ROUTERLog_setBitmaps(submoduleMask, verbosity < 0 ? 0 : (std::uint32_t{1} << shift) - 1);
}

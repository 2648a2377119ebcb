// The program's own message templates. Codes from 0x21C3000 are for parameters and configuration files; those
// from 0x21C2000 (service) and 0x21C4000 (remote configuration) are not used here.
#pragma once

#include "middleware/base/log.h"

inline constexpr ZULLogTemplate ROUTER_LOG_PARAMETER_MANAGER_REQUIRED_PARAMETER_s{
    0x21C3000, "command-line parameter '%s' is required\n"};
inline constexpr ZULLogTemplate ROUTER_LOG_PARAMETER_MANAGER_BAD_PARAMETERS{0x21C3001,
                                                                            "bad command-line parameters\n"};
inline constexpr ZULLogTemplate ROUTER_LOG_PARAMETER_MANAGER_BAD_PARAMETER_s{
    0x21C3002, "bad command-line parameter '%s'\n"};

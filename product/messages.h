// The program's own message templates. Codes run from 0x21C2000 (service), 0x21C3000 (parameters and
// configuration files) and 0x21C4000 (remote configuration).
#pragma once

#include "middleware/base/log.h"

extern const ZULLogTemplate ROUTER_LOG_PARAMETER_MANAGER_REQUIRED_PARAMETER_s; // parameter name
extern const ZULLogTemplate ROUTER_LOG_PARAMETER_MANAGER_BAD_PARAMETERS;
extern const ZULLogTemplate ROUTER_LOG_PARAMETER_MANAGER_BAD_PARAMETER_s; // parameter name or argument

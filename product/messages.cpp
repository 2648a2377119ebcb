#include "product/messages.h"

const ZULLogTemplate ROUTER_LOG_PARAMETER_MANAGER_REQUIRED_PARAMETER_s{
    0x21C3000, "command-line parameter '%s' is required\n"};
const ZULLogTemplate ROUTER_LOG_PARAMETER_MANAGER_BAD_PARAMETERS{0x21C3001, "bad command-line parameters\n"};
const ZULLogTemplate ROUTER_LOG_PARAMETER_MANAGER_BAD_PARAMETER_s{0x21C3002,
                                                                  "bad command-line parameter '%s'\n"};

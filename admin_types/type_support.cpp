#include "admin_types/type_support.h"

#include "admin_types/derive/define_type_support.h"
#include "admin_types/descriptions.h"
#include "admin_types/plugins.h"

ZUL_DEFINE_TYPE_SUPPORT(ZUL_RoutingService_Administration_CommandRequest,
                        "ZUL::RoutingService::Administration::CommandRequest")
ZUL_DEFINE_TYPE_SUPPORT(ZUL_RoutingService_Administration_CommandResponse,
                        "ZUL::RoutingService::Administration::CommandResponse")

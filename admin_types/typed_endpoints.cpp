#include "admin_types/typed_endpoints.h"

#include "admin_types/derive/define_typed_endpoints.h"
#include "admin_types/type_support.h"

#define ZUL_DEFINE_ENDPOINTS(Type, TypeName)                                                                 \
    ZUL_DEFINE_WRITER(Type, TypeName)                                                                        \
    ZUL_DEFINE_READER(Type, TypeName)

ZUL_DEFINE_ENDPOINTS(ZUL_RoutingService_Administration_CommandRequest,
                     ZUL_RoutingService_Administration_CommandRequestTypeSupport_get_type_name())
ZUL_DEFINE_ENDPOINTS(ZUL_RoutingService_Administration_CommandResponse,
                     ZUL_RoutingService_Administration_CommandResponseTypeSupport_get_type_name())

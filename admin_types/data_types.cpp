#include "admin_types/data_types.h"

#include "admin_types/derive/define_data_type.h"
#include "admin_types/descriptions.h"

ZUL_DEFINE_DATA_TYPE(ZUL_RoutingService_Administration_EntityName, admin::EntityName<admin::RoutingModule>)
ZUL_DEFINE_MODULE(ZUL_RoutingService_Administration_)
ZUL_DEFINE_MODULE(ZUL_FederationService_Administration_)

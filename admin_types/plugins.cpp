// The named operations of plugins.h: family/plugin.inc for every routing type, family/plugin_endpoint.inc for
// those with endpoints.
#include "admin_types/plugins.h"

#include "admin_types/descriptions.h"
#include "middleware/idl/plugin_operations.h"

#define ZUL_TEMPLATE "admin_types/family/plugin.inc"
#include "admin_types/family/routing_types.inc"
#undef ZUL_TEMPLATE

#define ZUL_TEMPLATE "admin_types/family/plugin_endpoint.inc"
#include "admin_types/family/sample_types.inc"

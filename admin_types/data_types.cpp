// The named operations of data_types.h, derived from the descriptions: family/data_type.inc for every type.
#include "admin_types/data_types.h"

#include "admin_types/descriptions.h"
#include "middleware/idl/data_operations.h"
#include "middleware/idl/type_code_of.h"

#define ZUL_TEMPLATE "admin_types/family/data_type.inc"
#include "admin_types/family/federation_types.inc"
#include "admin_types/family/routing_types.inc"

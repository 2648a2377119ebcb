// Type support and type plugins of the routing module's CommandRequest and CommandResponse, the two types
// that travel by themselves; family/type_support_decl.inc says what each operation does. The federation
// variant uses these too, with its own type codes in the plugins. Their typed writers and readers are in
// typed_endpoints.h, which this header brings along.
#pragma once

#include "admin_types/data_types.h"
#include "admin_types/typed_endpoints.h"
#include "middleware/dds/dds.h"

#define ZUL_TEMPLATE "admin_types/family/type_support_decl.inc"
#include "admin_types/family/sample_types.inc"
#undef ZUL_TEMPLATE

// Data-type operations of the administration types of both modules, under their C names: <type>_initialize,
// <type>_copy, ... family/data_type_decl.inc says what each does.
#pragma once

#include "admin_types/family/names.h"
#include "admin_types/records.h"
#include "middleware/idl/type_code.h"

#define ZUL_TEMPLATE "admin_types/family/data_type_decl.inc"
#include "admin_types/family/federation_types.inc"
#include "admin_types/family/routing_types.inc"
#undef ZUL_TEMPLATE

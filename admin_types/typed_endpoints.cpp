// The named operations of typed_endpoints.h: family/typed_writer.inc and family/typed_reader.inc for the two
// types that travel by themselves.
#include "admin_types/typed_endpoints.h"

#include "middleware/dds/typed_endpoints.h"

#define ZUL_TEMPLATE "admin_types/family/typed_writer.inc"
#include "admin_types/family/sample_types.inc"
#undef ZUL_TEMPLATE

#define ZUL_TEMPLATE "admin_types/family/typed_reader.inc"
#include "admin_types/family/sample_types.inc"

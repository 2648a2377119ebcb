// The named operations of type_support.h: family/type_support.inc for the two types that travel
// by themselves.
#include "admin_types/type_support.h"

#include "admin_types/descriptions.h"
#include "admin_types/plugins.h"
#include "middleware/idl/plugin_operations.h"

static DDS_ReturnCode_t returnCode(bool done) {
    return done ? DDS_RETCODE_OK : DDS_RETCODE_ERROR;
}

#define ZUL_TEMPLATE "admin_types/family/type_support.inc"
#include "admin_types/family/sample_types.inc"

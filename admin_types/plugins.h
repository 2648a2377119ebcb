// Plugin operations of every routing type, under their C names: <type>Plugin_serialize,
// <type>PluginSupport_create_data, ... family/plugin_decl.inc says what each does. Only the two types that
// travel by themselves also have endpoints; their plugin records are in type_support.h.
#pragma once

#include "admin_types/data_types.h"
#include "middleware/cdr/stream.h"
#include "middleware/idl/type_plugin.h"

#define ZUL_TEMPLATE "admin_types/family/plugin_decl.inc"
#include "admin_types/family/routing_types.inc"
#undef ZUL_TEMPLATE

#define ZUL_TEMPLATE "admin_types/family/plugin_endpoint_decl.inc"
#include "admin_types/family/sample_types.inc"
#undef ZUL_TEMPLATE

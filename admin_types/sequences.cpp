// The named operations of sequences.h: family/sequence.inc for every type.
#include "admin_types/sequences.h"

#include "admin_types/descriptions.h"
#include "middleware/idl/data_operations.h"

#define ZUL_TEMPLATE "admin_types/family/sequence.inc"
#include "admin_types/family/federation_types.inc"
#include "admin_types/family/routing_types.inc"

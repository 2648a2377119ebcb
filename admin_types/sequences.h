// Sequences of the administration types of both modules, under their C names: <type>Seq_get_length,
// <type>Seq_set_maximum, ... family/sequence_decl.inc says what each does.
#pragma once

#include "admin_types/data_types.h"
#include "middleware/idl/sequence.h"

// How a sequence treats one administration record: the type's data-type operations.
template <class Type>
struct ZULRecordElement {
    static bool initialize(Type& element, const DDS_TypeAllocationParams_t& params);
    static void finalize(Type& element, const DDS_TypeDeallocationParams_t& params);
    static bool prepare(Type& destination, const Type* source);
    static bool copy(Type& destination, const Type& source);
};

#define ZUL_TEMPLATE "admin_types/family/sequence_decl.inc"
#include "admin_types/family/federation_types.inc"
#include "admin_types/family/routing_types.inc"
#undef ZUL_TEMPLATE

// Data-type operations of the administration records, under their C names: <type>_initialize, <type>_copy,
// ... `initialize` and `initialize_ex` with allocateMemory take the record as raw memory; a record is
// released with `finalize` (owned strings and sequences, all union branches). Enumerations have the obvious
// reduced forms.
#pragma once

#include "admin_types/records.h"
#include "middleware/idl/type_code.h"

// False when memory is exhausted (nothing is then left allocated), or when a copy meets a missing buffer or a
// string longer than its bound. `get_typecode` is valid for ever. All fail on a null record.
#define ZUL_DECLARE_DATA_TYPE(Type)                                                                          \
    const DDS_TypeCode* Type##_get_typecode();                                                               \
    bool Type##_initialize(Type* self);                                                                      \
    bool Type##_initialize_ex(Type* self, bool allocatePointers, bool allocateMemory);                       \
    bool Type##_initialize_w_params(Type* self, const DDS_TypeAllocationParams_t* params);                   \
    void Type##_finalize(Type* self);                                                                        \
    void Type##_finalize_ex(Type* self, bool deletePointers);                                                \
    void Type##_finalize_w_params(Type* self, const DDS_TypeDeallocationParams_t* params);                   \
    void Type##_finalize_optional_members(Type* self, bool deletePointers);                                  \
    bool Type##_copy(Type* destination, const Type* source);

#define ZUL_FOR_EACH_STRUCT(X, prefix)                                                                       \
    X(prefix##XmlUrl)                                                                                        \
    X(prefix##EntityDescription)                                                                             \
    X(prefix##PeerUpdateDescription)                                                                         \
    X(prefix##CommandId)                                                                                     \
    X(prefix##CommandRequest)                                                                                \
    X(prefix##CommandResponse)
#define ZUL_FOR_EACH_RECORD(X, prefix)                                                                       \
    ZUL_FOR_EACH_STRUCT(X, prefix)                                                                           \
    X(prefix##Command)
#define ZUL_FOR_EACH_ENUMERATION(X, prefix)                                                                  \
    X(prefix##CommandKind)                                                                                   \
    X(prefix##CommandResponseKind)

ZUL_DECLARE_DATA_TYPE(ZUL_RoutingService_Administration_EntityName)
ZUL_FOR_EACH_RECORD(ZUL_DECLARE_DATA_TYPE, ZUL_RoutingService_Administration_)
ZUL_FOR_EACH_ENUMERATION(ZUL_DECLARE_DATA_TYPE, ZUL_RoutingService_Administration_)
ZUL_FOR_EACH_RECORD(ZUL_DECLARE_DATA_TYPE, ZUL_FederationService_Administration_)
ZUL_FOR_EACH_ENUMERATION(ZUL_DECLARE_DATA_TYPE, ZUL_FederationService_Administration_)

// The union's discriminator: the value of a fresh record, and whether a value selects a branch.
#define ZUL_DECLARE_UNION(prefix)                                                                            \
    prefix##CommandKind prefix##Command_getDefaultDiscriminator();                                           \
    bool prefix##Command_isCaseHandled(prefix##CommandKind discriminator);
ZUL_DECLARE_UNION(ZUL_RoutingService_Administration_)
ZUL_DECLARE_UNION(ZUL_FederationService_Administration_)

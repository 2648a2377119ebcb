// Sequences of the administration types of both modules, under their C names: <type>Seq_get_length,
// <type>Seq_set_maximum, ... What each does and refuses is told in middleware/idl/sequence.h; refusals are
// logged with the operation's full name. An owned sequence's elements are whole records, initialised with its
// element allocation parameters.
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

#define ZUL_DECLARE_SEQUENCE(Type)                                                                           \
    using Type##Seq = DDS_Sequence<Type, ZULRecordElement<Type>>;                                            \
    bool Type##Seq_initialize(Type##Seq* self);                                                              \
    bool Type##Seq_finalize(Type##Seq* self);                                                                \
    DDS_Long Type##Seq_get_maximum(const Type##Seq* self);                                                   \
    bool Type##Seq_set_maximum(Type##Seq* self, DDS_Long maximum);                                           \
    DDS_Long Type##Seq_get_length(const Type##Seq* self);                                                    \
    bool Type##Seq_set_length(Type##Seq* self, DDS_Long length);                                             \
    bool Type##Seq_ensure_length(Type##Seq* self, DDS_Long length, DDS_Long maximum);                        \
    Type Type##Seq_get(const Type##Seq* self, DDS_Long index);                                               \
    Type* Type##Seq_get_reference(const Type##Seq* self, DDS_Long index);                                    \
    Type##Seq* Type##Seq_copy(Type##Seq* self, const Type##Seq* source);          /* null on failure */      \
    Type##Seq* Type##Seq_copy_no_alloc(Type##Seq* self, const Type##Seq* source); /* null on failure */      \
    bool Type##Seq_from_array(Type##Seq* self, const Type* array, DDS_Long length);                          \
    bool Type##Seq_to_array(const Type##Seq* self, Type* array, DDS_Long length);                            \
    bool Type##Seq_loan_contiguous(Type##Seq* self, Type* buffer, DDS_Long length, DDS_Long maximum);        \
    bool Type##Seq_loan_discontiguous(Type##Seq* self, Type** buffer, DDS_Long length, DDS_Long maximum);    \
    bool Type##Seq_unloan(Type##Seq* self);                                                                  \
    bool Type##Seq_has_ownership(const Type##Seq* self);                                                     \
    Type* Type##Seq_get_contiguous_buffer(const Type##Seq* self);                                            \
    Type** Type##Seq_get_discontiguous_buffer(const Type##Seq* self);                                        \
    bool Type##Seq_get_element_allocation_params(const Type##Seq* self, DDS_TypeAllocationParams_t* params); \
    bool Type##Seq_set_element_allocation_params(Type##Seq* self, const DDS_TypeAllocationParams_t* params); \
    bool Type##Seq_get_element_deallocation_params(const Type##Seq* self,                                    \
                                                   DDS_TypeDeallocationParams_t* params);                    \
    bool Type##Seq_set_element_deallocation_params(Type##Seq* self,                                          \
                                                   const DDS_TypeDeallocationParams_t* params);              \
    bool Type##Seq_get_element_pointers_allocation(const Type##Seq* self);                                   \
    bool Type##Seq_set_element_pointers_allocation(Type##Seq* self, bool allocatePointers);                  \
    /* The middleware's, while a loan is outstanding. */                                                     \
    void Type##Seq_get_read_token(const Type##Seq* self, void** token1, void** token2);                      \
    void Type##Seq_set_read_token(Type##Seq* self, void* token1, void* token2);

ZUL_DECLARE_SEQUENCE(ZUL_RoutingService_Administration_EntityName)
ZUL_FOR_EACH_RECORD(ZUL_DECLARE_SEQUENCE, ZUL_RoutingService_Administration_)
ZUL_FOR_EACH_ENUMERATION(ZUL_DECLARE_SEQUENCE, ZUL_RoutingService_Administration_)
ZUL_FOR_EACH_RECORD(ZUL_DECLARE_SEQUENCE, ZUL_FederationService_Administration_)
ZUL_FOR_EACH_ENUMERATION(ZUL_DECLARE_SEQUENCE, ZUL_FederationService_Administration_)

// All values of an enumeration, in the order they are declared: maximum and length become their number.
#define ZUL_DECLARE_VALUES(Type) bool Type##_getValues(Type##Seq* values);
ZUL_FOR_EACH_ENUMERATION(ZUL_DECLARE_VALUES, ZUL_RoutingService_Administration_)
ZUL_FOR_EACH_ENUMERATION(ZUL_DECLARE_VALUES, ZUL_FederationService_Administration_)

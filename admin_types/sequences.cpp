#include "admin_types/sequences.h"

#include "admin_types/descriptions.h"
#include "middleware/idl/data_operations.h"

// The named operations only forward; `__func__` is the context of their refusals.
#define ZUL_DEFINE_SEQUENCE(Type, IdlType)                                                                   \
    template <>                                                                                              \
    bool ZULRecordElement<Type>::initialize(Type& element, const DDS_TypeAllocationParams_t& params) {       \
        return Type##_initialize_w_params(&element, &params);                                                \
    }                                                                                                        \
    template <>                                                                                              \
    void ZULRecordElement<Type>::finalize(Type& element, const DDS_TypeDeallocationParams_t& params) {       \
        Type##_finalize_w_params(&element, &params);                                                         \
    }                                                                                                        \
    template <>                                                                                              \
    bool ZULRecordElement<Type>::prepare(Type& destination, const Type* source) {                            \
        return zul::idl::prepare(IdlType{}, destination, source);                                            \
    }                                                                                                        \
    template <>                                                                                              \
    bool ZULRecordElement<Type>::copy(Type& destination, const Type& source) {                               \
        return Type##_copy(&destination, &source);                                                           \
    }                                                                                                        \
    bool Type##Seq_initialize(Type##Seq* self) {                                                             \
        return ZULSequence::initialize(self, __func__);                                                      \
    }                                                                                                        \
    bool Type##Seq_finalize(Type##Seq* self) {                                                               \
        return ZULSequence::finalize(self, __func__);                                                        \
    }                                                                                                        \
    DDS_Long Type##Seq_get_maximum(const Type##Seq* self) {                                                  \
        return ZULSequence::get_maximum(self, __func__);                                                     \
    }                                                                                                        \
    bool Type##Seq_set_maximum(Type##Seq* self, DDS_Long maximum) {                                          \
        return ZULSequence::set_maximum(self, maximum, __func__);                                            \
    }                                                                                                        \
    DDS_Long Type##Seq_get_length(const Type##Seq* self) {                                                   \
        return ZULSequence::get_length(self, __func__);                                                      \
    }                                                                                                        \
    bool Type##Seq_set_length(Type##Seq* self, DDS_Long length) {                                            \
        return ZULSequence::set_length(self, length, __func__);                                              \
    }                                                                                                        \
    bool Type##Seq_ensure_length(Type##Seq* self, DDS_Long length, DDS_Long maximum) {                       \
        return ZULSequence::ensure_length(self, length, maximum, __func__);                                  \
    }                                                                                                        \
    Type Type##Seq_get(const Type##Seq* self, DDS_Long index) {                                              \
        return ZULSequence::get(self, index, __func__);                                                      \
    }                                                                                                        \
    Type* Type##Seq_get_reference(const Type##Seq* self, DDS_Long index) {                                   \
        return ZULSequence::get_reference(self, index, __func__);                                            \
    }                                                                                                        \
    Type##Seq* Type##Seq_copy(Type##Seq* self, const Type##Seq* source) {                                    \
        return ZULSequence::copy(self, source, __func__) ? self : nullptr;                                   \
    }                                                                                                        \
    Type##Seq* Type##Seq_copy_no_alloc(Type##Seq* self, const Type##Seq* source) {                           \
        return ZULSequence::copy_no_alloc(self, source, __func__) ? self : nullptr;                          \
    }                                                                                                        \
    bool Type##Seq_from_array(Type##Seq* self, const Type* array, DDS_Long length) {                         \
        return ZULSequence::from_array(self, array, length, __func__);                                       \
    }                                                                                                        \
    bool Type##Seq_to_array(const Type##Seq* self, Type* array, DDS_Long length) {                           \
        return ZULSequence::to_array(self, array, length, __func__);                                         \
    }                                                                                                        \
    bool Type##Seq_loan_contiguous(Type##Seq* self, Type* buffer, DDS_Long length, DDS_Long maximum) {       \
        return ZULSequence::loan_contiguous(self, buffer, length, maximum, __func__);                        \
    }                                                                                                        \
    bool Type##Seq_loan_discontiguous(Type##Seq* self, Type** buffer, DDS_Long length, DDS_Long maximum) {   \
        return ZULSequence::loan_discontiguous(self, buffer, length, maximum, __func__);                     \
    }                                                                                                        \
    bool Type##Seq_unloan(Type##Seq* self) {                                                                 \
        return ZULSequence::unloan(self, __func__);                                                          \
    }                                                                                                        \
    bool Type##Seq_has_ownership(const Type##Seq* self) {                                                    \
        return ZULSequence::has_ownership(self, __func__);                                                   \
    }                                                                                                        \
    Type* Type##Seq_get_contiguous_buffer(const Type##Seq* self) {                                           \
        return ZULSequence::open(self, __func__) ? self->contiguous : nullptr;                               \
    }                                                                                                        \
    Type** Type##Seq_get_discontiguous_buffer(const Type##Seq* self) {                                       \
        return ZULSequence::open(self, __func__) ? self->discontiguous : nullptr;                            \
    }                                                                                                        \
    bool Type##Seq_get_element_allocation_params(const Type##Seq* self,                                      \
                                                 DDS_TypeAllocationParams_t* params) {                       \
        return ZULSequence::get_params(self, &Type##Seq::elementAllocation, params, __func__);               \
    }                                                                                                        \
    bool Type##Seq_set_element_allocation_params(Type##Seq* self,                                            \
                                                 const DDS_TypeAllocationParams_t* params) {                 \
        return ZULSequence::set_allocation_params(self, params, __func__);                                   \
    }                                                                                                        \
    bool Type##Seq_get_element_deallocation_params(const Type##Seq* self,                                    \
                                                   DDS_TypeDeallocationParams_t* params) {                   \
        return ZULSequence::get_params(self, &Type##Seq::elementDeallocation, params, __func__);             \
    }                                                                                                        \
    bool Type##Seq_set_element_deallocation_params(Type##Seq* self,                                          \
                                                   const DDS_TypeDeallocationParams_t* params) {             \
        return ZULSequence::set_deallocation_params(self, params, __func__);                                 \
    }                                                                                                        \
    bool Type##Seq_get_element_pointers_allocation(const Type##Seq* self) {                                  \
        return ZULSequence::open(self, __func__) && self->elementAllocation.allocate_pointers != 0;          \
    }                                                                                                        \
    bool Type##Seq_set_element_pointers_allocation(Type##Seq* self, bool allocatePointers) {                 \
        return ZULSequence::set_pointers_allocation(self, allocatePointers, __func__);                       \
    }                                                                                                        \
    void Type##Seq_get_read_token(const Type##Seq* self, void** token1, void** token2) {                     \
        if (ZULSequence::open(self, __func__)) {                                                             \
            *token1 = self->readToken1;                                                                      \
            *token2 = self->readToken2;                                                                      \
        }                                                                                                    \
    }                                                                                                        \
    void Type##Seq_set_read_token(Type##Seq* self, void* token1, void* token2) {                             \
        if (ZULSequence::open(self, __func__)) {                                                             \
            self->readToken1 = token1;                                                                       \
            self->readToken2 = token2;                                                                       \
        }                                                                                                    \
    }

#define ZUL_DEFINE_STRUCT_SEQUENCE(Type) ZUL_DEFINE_SEQUENCE(Type, zul::idl::Struct<Type>)
#define ZUL_DEFINE_ENUMERATION_SEQUENCE(Type) ZUL_DEFINE_SEQUENCE(Type, zul::idl::Enum<Type>)
#define ZUL_DEFINE_SEQUENCES(prefix)                                                                         \
    ZUL_FOR_EACH_STRUCT(ZUL_DEFINE_STRUCT_SEQUENCE, prefix)                                                  \
    ZUL_DEFINE_SEQUENCE(prefix##Command, zul::idl::Union<prefix##Command>)                                   \
    ZUL_FOR_EACH_ENUMERATION(ZUL_DEFINE_ENUMERATION_SEQUENCE, prefix)
ZUL_DEFINE_SEQUENCE(ZUL_RoutingService_Administration_EntityName, admin::EntityName<admin::RoutingModule>)
ZUL_DEFINE_SEQUENCES(ZUL_RoutingService_Administration_)
ZUL_DEFINE_SEQUENCES(ZUL_FederationService_Administration_)

#define ZUL_DEFINE_VALUES(Type)                                                                              \
    bool Type##_getValues(Type##Seq* values) {                                                               \
        constexpr auto& enumerators = zul::idl::Description<Type>::enumerators;                              \
        constexpr auto count = static_cast<DDS_Long>(std::size(enumerators));                                \
        if (!ZULSequence::set_maximum(values, count, __func__) ||                                            \
            !ZULSequence::set_length(values, count, __func__)) {                                             \
            return false;                                                                                    \
        }                                                                                                    \
        for (DDS_Long i = 0; i < count; ++i) {                                                               \
            ZULSequence::at(*values, i) = static_cast<Type>(enumerators[i].value);                           \
        }                                                                                                    \
        return true;                                                                                         \
    }
ZUL_FOR_EACH_ENUMERATION(ZUL_DEFINE_VALUES, ZUL_RoutingService_Administration_)
ZUL_FOR_EACH_ENUMERATION(ZUL_DEFINE_VALUES, ZUL_FederationService_Administration_)

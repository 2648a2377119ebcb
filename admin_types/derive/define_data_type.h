// Stamps the named data-type operations of one type (declared in data_types.h) from its IDL type. For source
// files only.
#pragma once

#include "admin_types/data_types.h"
#include "middleware/idl/data_operations.h"
#include "middleware/idl/type_code_of.h"

#define ZUL_DEFINE_DATA_TYPE(Type, IdlType)                                                                  \
    const DDS_TypeCode* Type##_get_typecode() {                                                              \
        return zul::idl::typeCode(IdlType{});                                                                \
    }                                                                                                        \
    bool Type##_initialize_w_params(Type* self, const DDS_TypeAllocationParams_t* params) {                  \
        return self != nullptr && params != nullptr && zul::idl::initialize(IdlType{}, *self, *params);      \
    }                                                                                                        \
    bool Type##_initialize_ex(Type* self, bool allocatePointers, bool allocateMemory) {                      \
        const DDS_TypeAllocationParams_t params{.allocate_pointers = allocatePointers,                       \
                                                .allocate_optional_members = 0,                              \
                                                .allocate_memory = allocateMemory};                          \
        return Type##_initialize_w_params(self, &params);                                                    \
    }                                                                                                        \
    bool Type##_initialize(Type* self) {                                                                     \
        return Type##_initialize_ex(self, true, true);                                                       \
    }                                                                                                        \
    void Type##_finalize_w_params(Type* self, const DDS_TypeDeallocationParams_t* params) {                  \
        if (self != nullptr && params != nullptr) {                                                          \
            zul::idl::finalize(IdlType{}, *self);                                                            \
        }                                                                                                    \
    }                                                                                                        \
    void Type##_finalize_ex(Type* self, bool deletePointers) {                                               \
        const DDS_TypeDeallocationParams_t params{.delete_pointers = deletePointers,                         \
                                                  .delete_optional_members = 1};                             \
        Type##_finalize_w_params(self, &params);                                                             \
    }                                                                                                        \
    void Type##_finalize(Type* self) {                                                                       \
        Type##_finalize_ex(self, true);                                                                      \
    }                                                                                                        \
    void Type##_finalize_optional_members(Type*, bool) {}                                                    \
    bool Type##_copy(Type* destination, const Type* source) {                                                \
        return destination != nullptr && source != nullptr &&                                                \
               zul::idl::copy(IdlType{}, *destination, *source);                                             \
    }

#define ZUL_DEFINE_RECORD(Type) ZUL_DEFINE_DATA_TYPE(Type, zul::idl::Struct<Type>)
#define ZUL_DEFINE_ENUMERATION(Type) ZUL_DEFINE_DATA_TYPE(Type, zul::idl::Enum<Type>)
#define ZUL_DEFINE_UNION(prefix)                                                                             \
    ZUL_DEFINE_DATA_TYPE(prefix##Command, zul::idl::Union<prefix##Command>)                                  \
    prefix##CommandKind prefix##Command_getDefaultDiscriminator() {                                          \
        return static_cast<prefix##CommandKind>(                                                             \
            zul::idl::Description<prefix##Command>::defaultDiscriminator);                                   \
    }                                                                                                        \
    bool prefix##Command_isCaseHandled(prefix##CommandKind discriminator) {                                  \
        return zul::idl::selectsBranch<prefix##Command>(discriminator);                                      \
    }

// All types of one module but its entity name.
#define ZUL_DEFINE_MODULE(prefix)                                                                            \
    ZUL_FOR_EACH_ENUMERATION(ZUL_DEFINE_ENUMERATION, prefix)                                                 \
    ZUL_FOR_EACH_STRUCT(ZUL_DEFINE_RECORD, prefix)                                                           \
    ZUL_DEFINE_UNION(prefix)

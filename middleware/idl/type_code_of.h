// Type codes, for every IDL type. Each is built on first use, links to those of its parts, and lives
// for ever.
#pragma once

#include "middleware/idl/type_code.h"
#include "middleware/idl/types.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace zul::idl {

inline const DDS_TypeCode* typeCode(Long) {
    return DDS_TypeCode_primitive(DDS_TK_LONG);
}
inline const DDS_TypeCode* typeCode(Boolean) {
    return DDS_TypeCode_primitive(DDS_TK_BOOLEAN);
}
template <std::uint32_t Bound>
const DDS_TypeCode* typeCode(String<Bound>) {
    static const DDS_TypeCode code{
        .kind = DDS_TK_STRING, .extensibility = DDS_FINAL_EXTENSIBILITY, .bound = Bound};
    return &code;
}
template <std::uint32_t Elements, std::uint32_t Bound>
const DDS_TypeCode* typeCode(StringSequence<Elements, Bound>) {
    static const DDS_TypeCode code{.kind = DDS_TK_SEQUENCE,
                                   .extensibility = DDS_FINAL_EXTENSIBILITY,
                                   .bound = Elements,
                                   .content = typeCode(String<Bound>{})};
    return &code;
}

// The code of a named type, still without its parts.
template <class Described>
DDS_TypeCode namedCode(DDS_TCKind kind) {
    return {.kind = kind, .name = std::string(Described::Module::scope) + "::" + Described::name};
}

template <class Alias, std::uint32_t Bound>
const DDS_TypeCode* typeCode(StringAlias<Alias, Bound>) {
    static const DDS_TypeCode code = [] {
        DDS_TypeCode built = namedCode<Alias>(DDS_TK_ALIAS);
        built.content = typeCode(String<Bound>{});
        return built;
    }();
    return &code;
}

template <class Described>
constexpr DDS_ExtensibilityKind announcedExtensibility() {
    if (!Described::Module::marksExtensibility || Described::form == WireForm::EXTENSIBLE) {
        return DDS_EXTENSIBLE_EXTENSIBILITY;
    }
    return Described::form == WireForm::FINAL ? DDS_FINAL_EXTENSIBILITY : DDS_MUTABLE_EXTENSIBILITY;
}

template <class E>
const DDS_TypeCode* typeCode(Enum<E>) {
    static const DDS_TypeCode code = [] {
        using Described = Description<E>;
        DDS_TypeCode built = namedCode<Described>(DDS_TK_ENUM);
        for (const Enumerator& enumerator : Described::enumerators) {
            built.members.push_back({.name = std::string(Described::Module::enumeratorPrefix) +
                                             Described::enumeratorInfix + enumerator.name,
                                     .id = static_cast<std::int32_t>(built.members.size()),
                                     .value = enumerator.value});
        }
        return built;
    }();
    return &code;
}
template <class Record>
const DDS_TypeCode* typeCode(Union<Record>);
template <class Record>
const DDS_TypeCode* typeCode(Struct<Record>) {
    static const DDS_TypeCode code = [] {
        using Described = Description<Record>;
        DDS_TypeCode built = namedCode<Described>(DDS_TK_STRUCT);
        built.extensibility = announcedExtensibility<Described>();
        forEachMember<Record>([&built](auto type, const auto& member) {
            built.members.push_back({.name = member.name,
                                     .id = static_cast<std::int32_t>(member.id),
                                     .type = typeCode(type),
                                     .isRequired = true});
        });
        return built;
    }();
    return &code;
}
template <class Record>
const DDS_TypeCode* typeCode(Union<Record>) {
    static const DDS_TypeCode code = [] {
        using Described = Description<Record>;
        DDS_TypeCode built = namedCode<Described>(DDS_TK_UNION);
        built.extensibility = announcedExtensibility<Described>();
        built.content = typeCode(typename Described::Discriminator{});
        forEachMember<Record>([&built](auto type, const auto& branch) {
            DDS_TypeCodeMember described{
                .name = branch.name, .id = static_cast<std::int32_t>(branch.id), .type = typeCode(type)};
            std::ranges::remove_copy(branch.labels, std::back_inserter(described.labels), 0);
            built.members.push_back(std::move(described));
        });
        return built;
    }();
    return &code;
}

// The same for whoever promises a failure instead of an exception: null when memory is exhausted.
template <class IdlType>
const DDS_TypeCode* typeCodeOrNull(IdlType type) {
    try {
        return typeCode(type);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace zul::idl

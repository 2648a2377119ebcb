// Type codes, for every IDL type. Each is built on first use, links to those of its parts, and lives
// for ever.
#pragma once

#include "middleware/idl/type_code.h"
#include "middleware/idl/types.h"

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

template <class Module>
std::string scopedName(const char* name) {
    return std::string(Module::scope) + "::" + name;
}

template <class Alias, std::uint32_t Bound>
const DDS_TypeCode* typeCode(StringAlias<Alias, Bound>) {
    static const DDS_TypeCode code{.kind = DDS_TK_ALIAS,
                                   .name = scopedName<typename Alias::Module>(Alias::name),
                                   .content = typeCode(String<Bound>{})};
    return &code;
}

template <class Module>
constexpr DDS_ExtensibilityKind announcedExtensibility(WireForm form) {
    if (!Module::marksExtensibility || form == WireForm::EXTENSIBLE) {
        return DDS_EXTENSIBLE_EXTENSIBILITY;
    }
    return form == WireForm::FINAL ? DDS_FINAL_EXTENSIBILITY : DDS_MUTABLE_EXTENSIBILITY;
}

template <class E>
const DDS_TypeCode* typeCode(Enum<E>) {
    static const DDS_TypeCode code = [] {
        using Described = Description<E>;
        DDS_TypeCode built{.kind = DDS_TK_ENUM,
                           .name = scopedName<typename Described::Module>(Described::name)};
        for (const Enumerator& enumerator : Described::enumerators) {
            const auto position = static_cast<std::int32_t>(built.members.size());
            built.members.push_back({.name = std::string(Described::Module::enumeratorPrefix) +
                                             Described::enumeratorInfix + enumerator.name,
                                     .id = position,
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
        DDS_TypeCode built{.kind = DDS_TK_STRUCT,
                           .name = scopedName<typename Described::Module>(Described::name),
                           .extensibility =
                               announcedExtensibility<typename Described::Module>(Described::form)};
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
        DDS_TypeCode built{.kind = DDS_TK_UNION,
                           .name = scopedName<typename Described::Module>(Described::name),
                           .extensibility =
                               announcedExtensibility<typename Described::Module>(Described::form),
                           .content = typeCode(typename Described::Discriminator{})};
        forEachMember<Record>([&built](auto type, const auto& branch) {
            DDS_TypeCodeMember described{
                .name = branch.name, .id = static_cast<std::int32_t>(branch.id), .type = typeCode(type)};
            for (const DDS_Long label : branch.labels) {
                if (label != 0) {
                    described.labels.push_back(label);
                }
            }
            built.members.push_back(std::move(described));
        });
        return built;
    }();
    return &code;
}

} // namespace zul::idl

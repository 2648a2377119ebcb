// The IDL types that data types are made of, as tags. Every operation (data_operations.h, codec.h, bounds.h,
// print.h, type_code_of.h) is one set of overloads on these tags; a record's operations follow from its
// Description. `Value` is the C++ type that holds a value.
#pragma once

#include "middleware/base/basic_types.h"
#include "middleware/idl/sequence.h"

#include <array>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

namespace zul::idl {

struct Long {
    using Value = DDS_Long;
};

struct Boolean {
    using Value = DDS_Boolean;
};

template <std::uint32_t Bound>
struct String {
    using Value = char*;
    static constexpr std::uint32_t bound = Bound;
};

// A typedef of a string: handled as the string it names, but for its type code. `Alias` gives its `name` and
// its `Module`.
template <class Alias, std::uint32_t Bound>
struct StringAlias : String<Bound> {};

template <std::uint32_t Elements, std::uint32_t Bound>
struct StringSequence {
    using Value = DDS_StringSeq;
    static constexpr std::uint32_t elements = Elements;
    static constexpr std::uint32_t bound = Bound;
};

// An enumeration, struct or union, as its Description says.
template <class Record>
struct Enum {
    using Value = Record;
};
template <class Record>
struct Struct {
    using Value = Record;
};
template <class Record>
struct Union {
    using Value = Record;
};

// A number or an enumerator: a value without memory of its own.
template <class IdlType>
concept Scalar = std::is_arithmetic_v<typename IdlType::Value> || std::is_enum_v<typename IdlType::Value>;

// How a struct travels.
enum class WireForm {
    FINAL,      // members in order, all of them
    EXTENSIBLE, // members in order; trailing ones may be missing
    MUTABLE,    // a parameter list
};

// What a type consists of, specialised for each. All have a `name` and a `Module`: its `scope`, the
// `enumeratorPrefix` of its literals, and `marksExtensibility`, whether it announces the extensibility that
// the encoding follows. An enumeration has `enumerators` and an `enumeratorInfix`; a struct a tuple of
// `members` and a `form`; a union, whose record holds the discriminator `_d`, also a `Discriminator` type and
// a `defaultDiscriminator`, and its members are branches.
template <class T>
struct Description;

// A struct or a union.
template <class IdlType>
concept Composite = requires {
    Description<typename IdlType::Value>::members;
};

// One member: its IDL type, and the path of member pointers that leads to it from the record. A struct's
// members count their ids from 0.
template <class IdlType, auto... Path>
struct Member {
    using Type = IdlType;
    std::uint32_t id;
    const char* name;

    template <class Record>
    static constexpr auto& of(Record& record) {
        return (record.*....*Path);
    }
};

// One union branch: a member with its labels, in the order in which its type code lists them. Ids count from
// 1: 0 is the discriminator's. `shortHeader` says that its parameter always goes under a short header.
constexpr std::size_t MAX_LABELS = 5;
template <class IdlType, auto... Path>
struct Branch : Member<IdlType, Path...> {
    std::array<DDS_Long, MAX_LABELS> labels; // 0 where unused: never a label
    bool shortHeader = false;

    constexpr bool isSelectedBy(DDS_Long discriminator) const {
        for (const DDS_Long label : labels) {
            if (label != 0 && label == discriminator) {
                return true;
            }
        }
        return false;
    }
};

struct Enumerator {
    const char* name; // without the module's prefix
    DDS_Long value;
};

// Calls a visitor and returns what it returns: false to stop. True for a visitor that returns nothing.
template <class Visit, class... Arguments>
constexpr bool visitAndGoOn(Visit& visit, Arguments&&... arguments) {
    if constexpr (std::is_void_v<std::invoke_result_t<Visit&, Arguments...>>) {
        visit(std::forward<Arguments>(arguments)...);
        return true;
    } else {
        return visit(std::forward<Arguments>(arguments)...);
    }
}

// Calls visit(type, member) for each member of a struct, or branch of a union, in the order of their
// description: `type` is the tag of the member's IDL type. False when a visit returned false, which is then
// the last one.
template <class Record, class Visit>
constexpr bool forEachMember(Visit&& visit) {
    const auto visitAll = [&visit]<class... Members>(const Members&... member) {
        return (visitAndGoOn(visit, typename Members::Type{}, member) && ...);
    };
    return std::apply(visitAll, Description<Record>::members);
}
// The same over a record: visit(type, member, value).
template <class Record, class Visit>
constexpr bool forEachMember(Record& record, Visit&& visit) {
    return forEachMember<std::remove_const_t<Record>>(
        [&](auto type, const auto& member) { return visitAndGoOn(visit, type, member, member.of(record)); });
}

// Calls visit(type, branch, value) for the branch that a union's discriminator selects, and returns what it
// returns; true when none is selected. The labels are compared as constants.
template <std::size_t Index = 0, class Record, class Visit>
constexpr bool forSelectedBranch(Record& record, Visit&& visit) {
    using Described = Description<std::remove_const_t<Record>>;
    if constexpr (Index == std::tuple_size_v<decltype(Described::members)>) {
        return true;
    } else {
        constexpr const auto& branch = std::get<Index>(Described::members);
        using Type = typename std::tuple_element_t<Index, decltype(Described::members)>::Type;
        return branch.isSelectedBy(record._d) ? visitAndGoOn(visit, Type{}, branch, branch.of(record))
                                              : forSelectedBranch<Index + 1>(record, visit);
    }
}
// Whether a discriminator selects a branch.
template <class Record>
constexpr bool selectsBranch(DDS_Long discriminator) {
    return !forEachMember<Record>(
        [discriminator](auto, const auto& branch) { return !branch.isSelectedBy(discriminator); });
}

} // namespace zul::idl

// The IDL types that administration types are made of, as tags. Every operation of the family (data.h,
// codec.h, bounds.h, print.h, type_codes.h) is one set of overloads on these tags; a record's operations
// follow from its Description. `Value` is the C++ type that holds a value.
#pragma once

#include "middleware/base/basic_types.h"
#include "middleware/idl/sequence.h"

#include <array>
#include <cstdint>
#include <tuple>
#include <utility>

namespace admin {

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

// A typedef that a module may declare for entity names. Handled as the string it names, but for its type
// code.
template <class Module, std::uint32_t Bound>
struct EntityNameOf : String<Bound> {};

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

// How a struct travels.
enum class WireForm {
    FINAL,      // members in order, all of them
    EXTENSIBLE, // members in order; trailing ones may be missing
    MUTABLE,    // a parameter list
};

template <class T>
struct Description; // specialised per record and enumeration, in descriptions.h

// One member: its IDL type, and the path of member pointers that leads to it from the record.
template <class IdlType, auto... Path>
struct Member {
    using Type = IdlType;
    const char* name;

    template <class Record>
    static auto& get(Record& record) {
        return follow(record, Path...);
    }

private:
    template <class Part, class First, class... Rest>
    static auto& follow(Part& part, First first, Rest... rest) {
        if constexpr (sizeof...(rest) == 0) {
            return part.*first;
        } else {
            return follow(part.*first, rest...);
        }
    }
};

// One union branch: a member with its id and labels, in the order in which its type code lists them.
// `shortHeader` says that its parameter always goes under a short header.
constexpr std::size_t MAX_LABELS = 5;
template <class IdlType, auto... Path>
struct Branch : Member<IdlType, Path...> {
    std::uint32_t id;
    std::array<DDS_Long, MAX_LABELS> labels; // 0 where unused: never a label
    bool shortHeader = false;
};

struct Enumerator {
    const char* name; // without the module's prefix
    DDS_Long value;
};

// Calls `visit(member, index)` for each member of a tuple until one returns false; says whether all returned
// true.
template <class Members, class Visit, std::size_t... Index>
constexpr bool visitWhile(const Members& members, Visit&& visit, std::index_sequence<Index...>) {
    return (visit(std::get<Index>(members), static_cast<std::uint32_t>(Index)) && ...);
}
template <class... Types, class Visit>
constexpr bool visitWhile(const std::tuple<Types...>& members, Visit&& visit) {
    return visitWhile(members, visit, std::index_sequence_for<Types...>{});
}
// Calls `visit(branch)` for the branch of the union that the discriminator selects; true when none is
// selected. The labels are compared as constants.
template <class Union, std::size_t Index = 0, class Visit>
constexpr bool visitSelected(DDS_Long discriminator, Visit&& visit) {
    if constexpr (Index == std::tuple_size_v<decltype(Description<Union>::branches)>) {
        return true;
    } else {
        constexpr const auto& branch = std::get<Index>(Description<Union>::branches);
        const bool isSelected = [discriminator]<std::size_t... Label>(std::index_sequence<Label...>) {
            return ((branch.labels[Label] != 0 && branch.labels[Label] == discriminator) || ...);
        }
        (std::make_index_sequence<MAX_LABELS>{});
        return isSelected ? visit(branch) : visitSelected<Union, Index + 1>(discriminator, visit);
    }
}

} // namespace admin

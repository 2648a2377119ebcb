// Data-type operations: initialise, finalise, prepare, copy, for every IDL type.
//
// initialize: with allocate_memory, takes the value as raw memory and allocates strings at their bound;
// without it, empties what is there. False when memory is exhausted; what was built is then released.
// finalize: releases strings and sequences.
// prepare: makes the destination ready for a copy of the source, or of any value when that is null; only the
// elements of a string list are allocated. False when a buffer is missing, a string is absent or longer than
// its bound, or memory is exhausted. The destination's value stays as it was. assign: copies into a
// destination that was prepared for it. copy: both; all or nothing.
#pragma once

#include "middleware/idl/types.h"

#include <cstring>
#include <utility>

namespace zul::idl {

using Allocation = DDS_TypeAllocationParams_t;
using Deallocation = DDS_TypeDeallocationParams_t;

constexpr const char* STRING_SEQUENCE = "DDS_StringSeq"; // context of what a string sequence refuses

template <Scalar IdlType>
bool initialize(IdlType, typename IdlType::Value& value, const Allocation&) {
    value = 0;
    return true;
}
template <class E>
bool initialize(Enum<E>, E& value, const Allocation&) {
    value = static_cast<E>(Description<E>::enumerators[0].value);
    return true;
}
template <std::uint32_t Bound>
bool initialize(String<Bound>, char*& value, const Allocation& params) {
    if (params.allocate_memory != 0) {
        value = DDS_String_alloc(Bound);
        return value != nullptr;
    }
    if (value != nullptr) {
        value[0] = '\0';
    }
    return true;
}
template <std::uint32_t Elements, std::uint32_t Bound>
bool initialize(StringSequence<Elements, Bound>, DDS_StringSeq& value, const Allocation& params) {
    if (params.allocate_memory == 0) {
        return ZULSequence::set_length(&value, 0, STRING_SEQUENCE);
    }
    ZULSequence::reset(value);
    if (!ZULSequence::set_maximum(&value, static_cast<DDS_Long>(Elements), STRING_SEQUENCE)) {
        return false;
    }
    for (std::uint32_t i = 0; i < Elements; ++i) {
        value.contiguous[i] = DDS_String_alloc(Bound);
        if (value.contiguous[i] == nullptr) {
            return false;
        }
    }
    return true;
}

template <Scalar IdlType>
void finalize(IdlType, typename IdlType::Value&) {}
template <std::uint32_t Bound>
void finalize(String<Bound>, char*& value) {
    DDS_String_free(value);
    value = nullptr;
}
template <std::uint32_t Elements, std::uint32_t Bound>
void finalize(StringSequence<Elements, Bound>, DDS_StringSeq& value) {
    ZULSequence::finalize(&value, STRING_SEQUENCE);
}
template <Composite IdlType>
void finalize(IdlType, typename IdlType::Value& record) {
    forEachMember(record, [](auto type, const auto&, auto& value) { finalize(type, value); });
}

// Of a union all branches are initialised, whichever the discriminator selects.
template <Composite IdlType>
bool initialize(IdlType type, typename IdlType::Value& record, const Allocation& params) {
    if (params.allocate_memory != 0) {
        record = {};
    }
    if constexpr (requires { record._d; }) {
        using Described = Description<typename IdlType::Value>;
        record._d = static_cast<decltype(record._d)>(Described::defaultDiscriminator);
    }
    const bool done = forEachMember(record, [&params](auto memberType, const auto&, auto& value) {
        return initialize(memberType, value, params);
    });
    if (!done) {
        finalize(type, record);
    }
    return done;
}

template <Scalar IdlType>
bool prepare(IdlType, typename IdlType::Value&, const typename IdlType::Value*) {
    return true;
}
template <std::uint32_t Bound>
bool prepare(String<Bound>, char*& destination, char* const* source) {
    return destination != nullptr &&
           (source == nullptr || (*source != nullptr && strnlen(*source, std::size_t{Bound} + 1) <= Bound));
}
// An element without room for its text gets a buffer of the full bound, so that any later text fits as well.
template <std::uint32_t Elements, std::uint32_t Bound>
bool prepare(StringSequence<Elements, Bound>, DDS_StringSeq& destination, const DDS_StringSeq* source) {
    constexpr auto all = static_cast<DDS_Long>(Elements);
    const DDS_Long count = source != nullptr ? ZULSequence::get_length(source, STRING_SEQUENCE) : all;
    if (count > all || (ZULSequence::get_maximum(&destination, STRING_SEQUENCE) < count &&
                        !ZULSequence::set_maximum(&destination, all, STRING_SEQUENCE))) {
        return false;
    }
    for (DDS_Long i = 0; i < count; ++i) {
        char* const text = source != nullptr ? ZULSequence::at(*source, i) : nullptr;
        const std::size_t length = text != nullptr ? strnlen(text, std::size_t{Bound} + 1) : Bound;
        char*& element = ZULSequence::at(destination, i);
        if (length > Bound || (source != nullptr && text == nullptr) ||
            ((element == nullptr || ZULString_room(element) < length) &&
             !ZULSequenceElement<char*>::makeRoom(element, Bound))) {
            return false;
        }
    }
    return true;
}
template <class Record>
bool prepare(Struct<Record>, Record& destination, const Record* source) {
    return forEachMember(destination, [source](auto type, const auto& member, auto& value) {
        return prepare(type, value, source != nullptr ? &member.of(*source) : nullptr);
    });
}
template <class Record>
bool prepare(Union<Record>, Record& destination, const Record* source) {
    if (source == nullptr) {
        return forEachMember(destination, []<class Type>(Type type, const auto&, auto& value) {
            return prepare(type, value, static_cast<const typename Type::Value*>(nullptr));
        });
    }
    return forSelectedBranch(*source, [&destination](auto type, const auto& branch, const auto& value) {
        return prepare(type, branch.of(destination), &value);
    });
}

template <Scalar IdlType>
void assign(IdlType, typename IdlType::Value& destination, const typename IdlType::Value& source) {
    destination = source;
}
template <std::uint32_t Bound>
void assign(String<Bound>, char*& destination, char* const& source) {
    std::memmove(destination, source, std::strlen(source) + 1);
}
template <std::uint32_t Elements, std::uint32_t Bound>
void assign(StringSequence<Elements, Bound>, DDS_StringSeq& destination, const DDS_StringSeq& source) {
    for (DDS_Long i = 0; i < source.length; ++i) {
        assign(String<Bound>{}, ZULSequence::at(destination, i), ZULSequence::at(source, i));
    }
    destination.length = source.length;
}
template <class Record>
void assign(Struct<Record>, Record& destination, const Record& source) {
    forEachMember(destination, [&source](auto type, const auto& member, auto& value) {
        assign(type, value, member.of(source));
    });
}
template <class Record>
void assign(Union<Record>, Record& destination, const Record& source) {
    destination._d = source._d;
    forSelectedBranch(source, [&destination](auto type, const auto& branch, const auto& value) {
        assign(type, branch.of(destination), value);
    });
}

template <class IdlType>
bool copy(IdlType type, typename IdlType::Value& destination, const typename IdlType::Value& source) {
    if (!prepare(type, destination, &source)) {
        return false;
    }
    assign(type, destination, source);
    return true;
}

} // namespace zul::idl

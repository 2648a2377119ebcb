// Data-type operations: initialise, finalise, copy, for every IDL type.
//
// initialize: with allocate_memory, takes the value as raw memory and allocates strings at their bound;
// without it, empties what is there. False when memory is exhausted; what was built is then released.
// finalize: releases strings and sequences. copy: into the destination's buffers; false when a buffer is
// missing or a string is longer than its bound.
#pragma once

#include "admin_types/derive/idl_types.h"

#include <cstring>
#include <utility>

namespace admin {

using Allocation = DDS_TypeAllocationParams_t;
using Deallocation = DDS_TypeDeallocationParams_t;

constexpr const char* STRING_SEQUENCE = "DDS_StringSeq"; // context of what a string sequence refuses

inline bool initialize(Long, DDS_Long& value, const Allocation&) {
    value = 0;
    return true;
}
inline bool initialize(Boolean, DDS_Boolean& value, const Allocation&) {
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

template <class IdlType>
requires std::is_arithmetic_v<typename IdlType::Value> || std::is_enum_v<typename IdlType::Value>
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
template <class Record>
void finalize(Struct<Record>, Record& record) {
    visitWhile(Description<Record>::members, [&record](const auto& member, std::uint32_t) {
        using Type = typename std::remove_cvref_t<decltype(member)>::Type;
        finalize(Type{}, member.get(record));
        return true;
    });
}
template <class Record>
void finalize(Union<Record>, Record& record) {
    visitWhile(Description<Record>::branches, [&record](const auto& branch, std::uint32_t) {
        using Type = typename std::remove_cvref_t<decltype(branch)>::Type;
        finalize(Type{}, branch.get(record));
        return true;
    });
}

template <class Members, class Record>
bool initializeAll(const Members& members, Record& record, const Allocation& params) {
    return visitWhile(members, [&](const auto& member, std::uint32_t) {
        using Type = typename std::remove_cvref_t<decltype(member)>::Type;
        return initialize(Type{}, member.get(record), params);
    });
}
template <class Record>
bool initialize(Struct<Record> type, Record& record, const Allocation& params) {
    if (params.allocate_memory != 0) {
        record = Record{};
    }
    if (initializeAll(Description<Record>::members, record, params)) {
        return true;
    }
    finalize(type, record);
    return false;
}
// All branches are prepared, whichever the discriminator selects.
template <class Record>
bool initialize(Union<Record> type, Record& record, const Allocation& params) {
    if (params.allocate_memory != 0) {
        record = Record{};
    }
    record._d = static_cast<decltype(record._d)>(Description<Record>::defaultDiscriminator);
    if (initializeAll(Description<Record>::branches, record, params)) {
        return true;
    }
    finalize(type, record);
    return false;
}

template <class IdlType>
requires std::is_arithmetic_v<typename IdlType::Value> || std::is_enum_v<typename IdlType::Value>
bool copy(IdlType, typename IdlType::Value& destination, const typename IdlType::Value& source) {
    destination = source;
    return true;
}
template <std::uint32_t Bound>
bool copy(String<Bound>, char*& destination, char* const& source) {
    if (destination == nullptr || source == nullptr) {
        return false;
    }
    const std::size_t length = strnlen(source, std::size_t{Bound} + 1);
    if (length > Bound) {
        return false;
    }
    std::memmove(destination, source, length);
    destination[length] = '\0';
    return true;
}
// A text goes into an element's buffer where the text before it shows that there is room, else into a new one
// of the full bound, so that a sample may later be decoded into.
template <std::uint32_t Elements, std::uint32_t Bound>
bool copy(StringSequence<Elements, Bound>, DDS_StringSeq& destination, const DDS_StringSeq& source) {
    const DDS_Long length = ZULSequence::get_length(&source, STRING_SEQUENCE);
    if (length > static_cast<DDS_Long>(Elements) ||
        !ZULSequence::ensure_length(&destination, length, static_cast<DDS_Long>(Elements), STRING_SEQUENCE)) {
        return false;
    }
    for (DDS_Long i = 0; i < length; ++i) {
        char*& element = ZULSequence::at(destination, i);
        const char* text = ZULSequence::at(source, i);
        if (text != nullptr && (element == nullptr || strnlen(element, Bound) < strnlen(text, Bound))) {
            char* roomy = DDS_String_alloc(Bound);
            if (roomy == nullptr) {
                return false;
            }
            DDS_String_free(std::exchange(element, roomy));
        }
        if (!copy(String<Bound>{}, element, ZULSequence::at(source, i))) {
            return false;
        }
    }
    return true;
}
template <class Record>
bool copy(Struct<Record>, Record& destination, const Record& source) {
    return visitWhile(Description<Record>::members, [&](const auto& member, std::uint32_t) {
        using Type = typename std::remove_cvref_t<decltype(member)>::Type;
        return copy(Type{}, member.get(destination), member.get(source));
    });
}
template <class Record>
bool copy(Union<Record>, Record& destination, const Record& source) {
    destination._d = source._d;
    return visitSelected<Record>(source._d, [&](const auto& branch) {
        using Type = typename std::remove_cvref_t<decltype(branch)>::Type;
        return copy(Type{}, branch.get(destination), branch.get(source));
    });
}

} // namespace admin

// Encoding and decoding, for every IDL type: plain CDR, and parameter lists for the mutable types. Pure:
// bytes in, record out; no I/O, no allocation. A decoded string goes into the buffer that initialisation
// prepared; one in a list, which any sequence operation may have replaced, only where it has room. An exact
// size is the position at which encoding into a counting stream ends. (OMG DDS XTypes 1.2, 7.4.1 and 7.4.3,
// version 1 encoding.)
#pragma once

#include "middleware/cdr/parameters.h"
#include "middleware/idl/data_operations.h"

namespace zul::idl {

// Bytes that may be left where a member is missing: they are padding, and the sender has fewer members.
constexpr std::size_t TOLERATED_REMAINDER = 3;

// Decoding resets a record without allocating.
constexpr Allocation RESET_ONLY{1, 0, 0};

// ---- encoding ----

// Enumerators are not checked on writing.
template <Scalar IdlType>
bool serialize(IdlType, ZULCdrOutput& stream, const typename IdlType::Value& value, ZULParameterForm) {
    return stream.put32(static_cast<std::uint32_t>(value));
}
inline bool serialize(Boolean, ZULCdrOutput& stream, const DDS_Boolean& value, ZULParameterForm) {
    return stream.put8(value != 0 ? 1 : 0);
}
template <std::uint32_t Bound>
bool serialize(String<Bound>, ZULCdrOutput& stream, char* const& value, ZULParameterForm) {
    if (value == nullptr) {
        return false;
    }
    const std::size_t length = strnlen(value, std::size_t{Bound} + 1);
    return length <= Bound && stream.putString({value, length});
}
template <std::uint32_t Elements, std::uint32_t Bound>
bool serialize(StringSequence<Elements, Bound>, ZULCdrOutput& stream, const DDS_StringSeq& value,
               ZULParameterForm form) {
    if (value.length > static_cast<DDS_Long>(Elements) ||
        !stream.put32(static_cast<std::uint32_t>(value.length))) {
        return false;
    }
    for (DDS_Long i = 0; i < value.length; ++i) {
        if (!serialize(String<Bound>{}, stream, ZULSequence::at(value, i), form)) {
            return false;
        }
    }
    return true;
}

template <class Type>
bool serializeParameter(Type type, ZULCdrOutput& stream, std::uint32_t id, const typename Type::Value& value,
                        ZULParameterForm headerForm, ZULParameterForm form) {
    return ZULCdrOutput_putParameter(stream, id, headerForm,
                                     [&] { return serialize(type, stream, value, form); });
}

template <class Record>
bool serialize(Struct<Record>, ZULCdrOutput& stream, const Record& record, ZULParameterForm form) {
    constexpr bool isMutable = Description<Record>::form == WireForm::MUTABLE;
    const bool written = forEachMember(record, [&](auto type, const auto& member, const auto& value) {
        return isMutable ? serializeParameter(type, stream, member.id, value, form, form)
                         : serialize(type, stream, value, form);
    });
    return written && (!isMutable || ZULCdrOutput_putListEnd(stream));
}
// A discriminator that selects no branch goes alone. It and the fixed-size branch always have short headers.
template <class Record>
bool serialize(Union<Record>, ZULCdrOutput& stream, const Record& record, ZULParameterForm form) {
    using Described = Description<Record>;
    return serializeParameter(typename Described::Discriminator{}, stream, 0, record._d, ZUL_PARAMETER_SHORT,
                              form) &&
           forSelectedBranch(record,
                             [&](auto type, const auto& branch, const auto& value) {
                                 return serializeParameter(type, stream, branch.id, value,
                                                           branch.shortHeader ? ZUL_PARAMETER_SHORT : form,
                                                           form);
                             }) &&
           ZULCdrOutput_putListEnd(stream);
}

// ---- decoding ----

inline bool deserialize(Long, ZULCdrInput& stream, DDS_Long& value) {
    std::uint32_t bits = 0;
    if (!stream.get32(bits)) {
        return false;
    }
    value = static_cast<DDS_Long>(bits);
    return true;
}
inline bool deserialize(Boolean, ZULCdrInput& stream, DDS_Boolean& value) {
    if (!stream.get8(value)) {
        return false;
    }
    value = value != 0 ? 1 : 0;
    return true;
}
template <class E>
bool deserialize(Enum<E>, ZULCdrInput& stream, E& value) {
    DDS_Long number = 0;
    if (!deserialize(Long{}, stream, number)) {
        return false;
    }
    for (const Enumerator& enumerator : Description<E>::enumerators) {
        if (enumerator.value == number) {
            value = static_cast<E>(number);
            return true;
        }
    }
    stream.unknownEnumerator = true;
    return false;
}
template <std::uint32_t Bound>
bool deserialize(String<Bound>, ZULCdrInput& stream, char*& value) {
    std::string_view bytes;
    if (value == nullptr || !stream.getString(bytes, std::size_t{Bound} + 1)) {
        return false;
    }
    ZULCdr_copyText(value, bytes.data(), bytes.size());
    return true;
}
template <std::uint32_t Elements, std::uint32_t Bound>
bool deserialize(StringSequence<Elements, Bound>, ZULCdrInput& stream, DDS_StringSeq& value) {
    std::uint32_t count = 0;
    if (!stream.get32(count) ||
        count > static_cast<std::uint32_t>(ZULSequence::get_maximum(&value, STRING_SEQUENCE))) {
        return false;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        // The element may be the caller's: its room is asked for, not taken for granted.
        char* const element = ZULSequence::at(value, static_cast<DDS_Long>(i));
        std::string_view bytes;
        if (element == nullptr || !stream.getString(bytes, std::size_t{Bound} + 1) ||
            bytes.size() > ZULString_room(element) + 1) {
            return false;
        }
        ZULCdr_copyText(element, bytes.data(), bytes.size());
    }
    value.length = static_cast<DDS_Long>(count);
    return true;
}

// What a list does with a member id that it does not know.
enum class UnknownMember { SKIP_UNLESS_MUST_UNDERSTAND, FAIL };

// Reads the member with this id by `read(type, member, value)`; leaves `known` false where there is none.
template <class Record, class MemberReader>
bool readMember(std::uint32_t id, ZULCdrInput& value, bool& known, MemberReader& read) {
    return forEachMember<Record>([&](auto type, const auto& member) {
        if (member.id != id) {
            return true;
        }
        known = true;
        return read(type, member, value);
    });
}

// Walks a parameter list. `member(id, value, known)` handles one member and leaves `known` false for an id it
// does not know; what it leaves unread of a value is passed over.
template <class MemberHandler>
bool walkParameters(ZULCdrInput& stream, UnknownMember unknown, MemberHandler member) {
    ZULParameter parameter{};
    for (;;) {
        switch (ZULCdrInput_nextParameter(stream, parameter)) {
        case ZUL_PARAMETER_END:
            return true;
        case ZUL_PARAMETER_BROKEN:
            return false;
        case ZUL_PARAMETER_MEMBER:
            break;
        }
        bool known = false;
        const bool handled = member(parameter.id, parameter.value, known);
        stream.unknownEnumerator = stream.unknownEnumerator || parameter.value.unknownEnumerator;
        if (!known && unknown == UnknownMember::SKIP_UNLESS_MUST_UNDERSTAND && !parameter.mustUnderstand) {
            continue;
        }
        if (!known || !handled) {
            return false;
        }
    }
}

// Reads the members of a struct, each by `read(type, member, source)`: in the order they are declared, or
// from a parameter list. Trailing members may be missing from an extensible one.
template <class Record, class MemberReader>
bool walkMembers(Struct<Record>, ZULCdrInput& stream, MemberReader read) {
    if constexpr (Description<Record>::form == WireForm::MUTABLE) {
        return walkParameters(stream, UnknownMember::SKIP_UNLESS_MUST_UNDERSTAND,
                              [&read](std::uint32_t id, ZULCdrInput& value, bool& known) {
                                  return readMember<Record>(id, value, known, read);
                              });
    } else {
        return forEachMember<Record>(
                   [&](auto type, const auto& member) { return read(type, member, stream); }) ||
               (Description<Record>::form == WireForm::EXTENSIBLE &&
                stream.remaining() <= TOLERATED_REMAINDER);
    }
}
// The same for a union, whose discriminator `readDiscriminator(type, source)` reads. Unlike a struct, a union
// fails on any id it does not know (oddity 21), and reads a branch that the discriminator does not select
// (oddity 23).
template <class Record, class DiscriminatorReader, class MemberReader>
bool walkMembers(Union<Record>, ZULCdrInput& stream, DiscriminatorReader readDiscriminator,
                 MemberReader read) {
    return walkParameters(
        stream, UnknownMember::FAIL, [&](std::uint32_t id, ZULCdrInput& value, bool& known) {
            if (id == 0) {
                known = true;
                return readDiscriminator(typename Description<Record>::Discriminator{}, value);
            }
            return readMember<Record>(id, value, known, read);
        });
}

template <class Record>
bool deserialize(Struct<Record> type, ZULCdrInput& stream, Record& record) {
    if (Description<Record>::form != WireForm::FINAL && !initialize(type, record, RESET_ONLY)) {
        return false;
    }
    return walkMembers(type, stream, [&record](auto memberType, const auto& member, ZULCdrInput& source) {
        return deserialize(memberType, source, member.of(record));
    });
}
template <class Record>
bool deserialize(Union<Record> type, ZULCdrInput& stream, Record& record) {
    return walkMembers(
        type, stream,
        [&record](auto kind, ZULCdrInput& source) { return deserialize(kind, source, record._d); },
        [&record](auto branchType, const auto& branch, ZULCdrInput& source) {
            return deserialize(branchType, source, branch.of(record));
        });
}

// ---- skipping ----

template <Scalar IdlType>
bool skip(IdlType, ZULCdrInput& stream) {
    std::uint32_t ignored = 0;
    return stream.get32(ignored);
}
inline bool skip(Boolean, ZULCdrInput& stream) {
    std::uint8_t ignored = 0;
    return stream.get8(ignored);
}
template <std::uint32_t Bound>
bool skip(String<Bound>, ZULCdrInput& stream) {
    std::string_view ignored;
    return stream.getString(ignored, std::size_t{Bound} + 1);
}
template <std::uint32_t Elements, std::uint32_t Bound>
bool skip(StringSequence<Elements, Bound>, ZULCdrInput& stream) {
    std::uint32_t count = 0;
    if (!stream.get32(count) || count > Elements) {
        return false;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        if (!skip(String<Bound>{}, stream)) {
            return false;
        }
    }
    return true;
}
template <class Record>
bool skip(Struct<Record> type, ZULCdrInput& stream) {
    return walkMembers(type, stream, [](auto memberType, const auto&, ZULCdrInput& source) {
        return skip(memberType, source);
    });
}
template <class Record>
bool skip(Union<Record> type, ZULCdrInput& stream) {
    return walkMembers(
        type, stream, [](auto kind, ZULCdrInput& source) { return skip(kind, source); },
        [](auto branchType, const auto&, ZULCdrInput& source) { return skip(branchType, source); });
}

} // namespace zul::idl

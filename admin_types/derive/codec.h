// Encoding and decoding, for every IDL type: plain CDR, and parameter lists for the mutable types. Pure:
// bytes in, record out; no I/O, no allocation. A decoded string goes into the buffer that initialisation
// prepared; one in a list, which any sequence operation may have replaced, only where it has room. An exact
// size is the position at which encoding into a counting stream ends. (OMG DDS XTypes 1.2, 7.4.1 and 7.4.3,
// version 1 encoding.)
#pragma once

#include "admin_types/derive/data.h"
#include "middleware/cdr/parameters.h"

namespace admin {

// A sample that ends after at most this many bytes beyond the member it stopped at came from a sender with
// fewer members.
constexpr std::size_t TOLERATED_REMAINDER = 3;

// What an instance of decoding without allocation resets to.
constexpr Allocation RESET_ONLY{1, 0, 0};

// ---- encoding ----

inline bool serialize(Long, ZULCdrOutput& stream, const DDS_Long& value, ZULParameterForm) {
    return stream.put32(static_cast<std::uint32_t>(value));
}
inline bool serialize(Boolean, ZULCdrOutput& stream, const DDS_Boolean& value, ZULParameterForm) {
    return stream.put8(value != 0 ? 1 : 0);
}
template <class E>
bool serialize(Enum<E>, ZULCdrOutput& stream, const E& value, ZULParameterForm) {
    return stream.put32(static_cast<std::uint32_t>(value)); // not checked on writing
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
    ZULParameterMark mark{};
    return ZULCdrOutput_beginParameter(stream, id, headerForm, mark) &&
           serialize(type, stream, value, form) && ZULCdrOutput_endParameter(stream, mark);
}

template <class Record>
bool serialize(Struct<Record>, ZULCdrOutput& stream, const Record& record, ZULParameterForm form) {
    const bool written = visitWhile(Description<Record>::members, [&](const auto& member, std::uint32_t id) {
        using Type = typename std::remove_cvref_t<decltype(member)>::Type;
        if constexpr (Description<Record>::form == WireForm::MUTABLE) {
            return serializeParameter(Type{}, stream, id, member.get(record), form, form);
        } else {
            return serialize(Type{}, stream, member.get(record), form);
        }
    });
    return written && (Description<Record>::form != WireForm::MUTABLE || ZULCdrOutput_putListEnd(stream));
}
// A discriminator that selects no branch goes alone. It and the fixed-size branch always have short headers.
template <class Record>
bool serialize(Union<Record>, ZULCdrOutput& stream, const Record& record, ZULParameterForm form) {
    using Described = Description<Record>;
    return serializeParameter(typename Described::Discriminator{}, stream, 0, record._d, ZUL_PARAMETER_SHORT,
                              form) &&
           visitSelected<Record>(record._d,
                                 [&](const auto& branch) {
                                     using Type = typename std::remove_cvref_t<decltype(branch)>::Type;
                                     return serializeParameter(
                                         Type{}, stream, branch.id, branch.get(record),
                                         branch.shortHeader ? ZUL_PARAMETER_SHORT : form, form);
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

// Decodes a struct whose members stand in order. Trailing members may be missing from an extensible one.
template <class Record, class MemberReader>
bool walkMembers(ZULCdrInput& stream, MemberReader read) {
    return visitWhile(Description<Record>::members, read) ||
           (Description<Record>::form == WireForm::EXTENSIBLE && stream.remaining() <= TOLERATED_REMAINDER);
}

template <class Record>
bool deserialize(Struct<Record> type, ZULCdrInput& stream, Record& record) {
    constexpr WireForm form = Description<Record>::form;
    if (form != WireForm::FINAL && !initialize(type, record, RESET_ONLY)) {
        return false;
    }
    const auto readMember = [&record](const auto& member, ZULCdrInput& source) {
        using Type = typename std::remove_cvref_t<decltype(member)>::Type;
        return deserialize(Type{}, source, member.get(record));
    };
    if constexpr (form == WireForm::MUTABLE) {
        return walkParameters(stream, UnknownMember::SKIP_UNLESS_MUST_UNDERSTAND,
                              [&](std::uint32_t id, ZULCdrInput& value, bool& known) {
                                  return visitWhile(Description<Record>::members,
                                                    [&](const auto& member, std::uint32_t memberId) {
                                                        if (memberId != id) {
                                                            return true;
                                                        }
                                                        known = true;
                                                        return readMember(member, value);
                                                    });
                              });
    } else {
        return walkMembers<Record>(
            stream, [&](const auto& member, std::uint32_t) { return readMember(member, stream); });
    }
}

// Unlike a struct, a union fails on any id it does not know, must-understand or not: deliberate. A branch is
// read into its storage whatever the discriminator says.
template <class Record>
bool deserialize(Union<Record>, ZULCdrInput& stream, Record& record) {
    using Described = Description<Record>;
    return walkParameters(stream, UnknownMember::FAIL,
                          [&](std::uint32_t id, ZULCdrInput& value, bool& known) {
                              if (id == 0) {
                                  known = true;
                                  return deserialize(typename Described::Discriminator{}, value, record._d);
                              }
                              return visitWhile(Described::branches, [&](const auto& branch, std::uint32_t) {
                                  if (branch.id != id) {
                                      return true;
                                  }
                                  known = true;
                                  using Type = typename std::remove_cvref_t<decltype(branch)>::Type;
                                  return deserialize(Type{}, value, branch.get(record));
                              });
                          });
}

// ---- skipping ----

inline bool skip(Long, ZULCdrInput& stream) {
    DDS_Long ignored = 0;
    return deserialize(Long{}, stream, ignored);
}
inline bool skip(Boolean, ZULCdrInput& stream) {
    DDS_Boolean ignored = 0;
    return deserialize(Boolean{}, stream, ignored);
}
template <class E>
bool skip(Enum<E>, ZULCdrInput& stream) {
    return skip(Long{}, stream);
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
bool skip(Struct<Record>, ZULCdrInput& stream) {
    using Described = Description<Record>;
    if constexpr (Described::form == WireForm::MUTABLE) {
        return walkParameters(
            stream, UnknownMember::SKIP_UNLESS_MUST_UNDERSTAND,
            [](std::uint32_t id, ZULCdrInput& value, bool& known) {
                return visitWhile(Described::members, [&](const auto& member, std::uint32_t memberId) {
                    return memberId != id ||
                           ((known = true) &&
                            skip(typename std::remove_cvref_t<decltype(member)>::Type{}, value));
                });
            });
    } else {
        return walkMembers<Record>(stream, [&stream](const auto& member, std::uint32_t) {
            return skip(typename std::remove_cvref_t<decltype(member)>::Type{}, stream);
        });
    }
}
template <class Record>
bool skip(Union<Record>, ZULCdrInput& stream) {
    using Described = Description<Record>;
    return walkParameters(stream, UnknownMember::FAIL, [](std::uint32_t id, ZULCdrInput& value, bool& known) {
        if (id == 0) {
            known = true;
            return skip(typename Described::Discriminator{}, value);
        }
        return visitWhile(Described::branches, [&](const auto& branch, std::uint32_t) {
            return branch.id != id ||
                   ((known = true) && skip(typename std::remove_cvref_t<decltype(branch)>::Type{}, value));
        });
    });
}

} // namespace admin

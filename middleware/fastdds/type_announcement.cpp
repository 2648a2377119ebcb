// The library's own builder of complete descriptions throws for unions, so the type objects are put together
// here. They follow OMG DDS XTypes 1.2, 7.3.4: a named type is identified by the first 14 bytes of the MD5
// hash of its encoded object.
#include "middleware/fastdds/type_announcement.h"

#include <algorithm>
#include <fastcdr/Cdr.h>
#include <fastcdr/FastBuffer.h>
#include <fastrtps/types/TypeIdentifier.h>
#include <fastrtps/types/TypeObject.h>
#include <fastrtps/types/TypeObjectFactory.h>
#include <fastrtps/utils/md5.h>
#include <optional>
#include <vector>

namespace zul {

namespace types = eprosima::fastrtps::types;

namespace {

constexpr std::size_t HASH_SIZE = 14;
constexpr std::uint32_t SMALL_BOUND_MAX = 255; // bounds up to here have a short form
constexpr std::uint16_t ENUM_BITS = 32;

// A kind that cannot be described gives none, and so does every type that contains it.
using Identifier = std::optional<types::TypeIdentifier>;
using Object = std::optional<types::TypeObject>;

// clang-format off
constexpr struct {
    DDS_TCKind kind;
    types::octet described;
} PRIMITIVES[] = {
    {DDS_TK_BOOLEAN, types::TK_BOOLEAN},
    {DDS_TK_OCTET, types::TK_BYTE},
    {DDS_TK_SHORT, types::TK_INT16},
    {DDS_TK_LONG, types::TK_INT32},
    {DDS_TK_LONGLONG, types::TK_INT64},
    {DDS_TK_USHORT, types::TK_UINT16},
    {DDS_TK_ULONG, types::TK_UINT32},
    {DDS_TK_ULONGLONG, types::TK_UINT64},
    {DDS_TK_FLOAT, types::TK_FLOAT32},
    {DDS_TK_DOUBLE, types::TK_FLOAT64},
    {DDS_TK_LONGDOUBLE, types::TK_FLOAT128},
    {DDS_TK_CHAR, types::TK_CHAR8},
    {DDS_TK_WCHAR, types::TK_CHAR16},
};
// clang-format on

types::TypeIdentifier identifyString(std::uint32_t bound) {
    types::TypeIdentifier identifier;
    if (bound <= SMALL_BOUND_MAX) {
        identifier._d(types::TI_STRING8_SMALL);
        identifier.string_sdefn().bound(static_cast<types::SBound>(bound));
    } else {
        identifier._d(types::TI_STRING8_LARGE);
        identifier.string_ldefn().bound(bound);
    }
    return identifier;
}

template <class Flags>
void setExtensibility(Flags& flags, DDS_ExtensibilityKind kind) {
    flags.IS_FINAL(kind == DDS_FINAL_EXTENSIBILITY);
    flags.IS_APPENDABLE(kind == DDS_EXTENSIBLE_EXTENSIBILITY);
    flags.IS_MUTABLE(kind == DDS_MUTABLE_EXTENSIBILITY);
}

bool fillEnum(types::CompleteTypeObject& object, const DDS_TypeCode& code) {
    object._d(types::TK_ENUM);
    auto& described = object.enumerated_type();
    described.header().common().bit_bound(ENUM_BITS);
    described.header().detail().type_name(code.name);
    for (const DDS_TypeCodeMember& enumerator : code.members) {
        types::CompleteEnumeratedLiteral literal;
        literal.common().value(enumerator.value);
        literal.detail().name(enumerator.name);
        described.literal_seq().push_back(literal);
    }
    return true;
}

types::TypeIdentifier hashOf(const types::TypeObject& object) {
    eprosima::fastcdr::FastBuffer buffer;
    eprosima::fastcdr::Cdr encoder(buffer, eprosima::fastcdr::Cdr::LITTLE_ENDIANNESS,
                                   eprosima::fastcdr::Cdr::DDS_CDR);
    object.serialize(encoder);
    MD5 hash;
    hash.update(buffer.getBuffer(), static_cast<MD5::size_type>(encoder.getSerializedDataLength()));
    hash.finalize();
    types::TypeIdentifier identifier;
    identifier._d(types::EK_COMPLETE);
    std::copy_n(hash.digest, HASH_SIZE, identifier.equivalence_hash());
    return identifier;
}

// Describes one type, and the types inside it.
class Describer {
public:
    Identifier identify(const DDS_TypeCode* code) {
        if (code == nullptr) {
            return std::nullopt;
        }
        if (code->kind == DDS_TK_STRING) {
            return identifyString(code->bound);
        }
        if (code->kind == DDS_TK_SEQUENCE) {
            return identifySequence(*code);
        }
        for (const auto& primitive : PRIMITIVES) {
            if (primitive.kind == code->kind) {
                types::TypeIdentifier identifier;
                identifier._d(primitive.described);
                return identifier;
            }
        }
        // A type that contains itself has no such description.
        if (std::find(describing_.begin(), describing_.end(), code) != describing_.end()) {
            return std::nullopt;
        }
        describing_.push_back(code);
        const Object object = describe(*code);
        describing_.pop_back();
        if (!object) {
            return std::nullopt;
        }
        const types::TypeIdentifier identifier = hashOf(*object);
        // Known to the library, a nested type can be asked for by its identifier.
        types::TypeObjectFactory::get_instance()->add_type_object(code->name, &identifier, &*object);
        return identifier;
    }

    Object describe(const DDS_TypeCode& code) {
        types::TypeObject object;
        object._d(types::EK_COMPLETE);
        auto& complete = object.complete();
        const bool filled = code.kind == DDS_TK_STRUCT  ? fillStruct(complete, code)
                            : code.kind == DDS_TK_UNION ? fillUnion(complete, code)
                            : code.kind == DDS_TK_ENUM  ? fillEnum(complete, code)
                            : code.kind == DDS_TK_ALIAS ? fillAlias(complete, code)
                                                        : false;
        return filled ? Object(object) : std::nullopt;
    }

private:
    // Sequences with a small bound, of types that are the same in every description (strings, primitives).
    Identifier identifySequence(const DDS_TypeCode& code) {
        Identifier element = identify(code.content);
        if (!element || element->_d() == types::EK_COMPLETE || code.bound > SMALL_BOUND_MAX) {
            return std::nullopt;
        }
        types::TypeIdentifier identifier;
        identifier._d(types::TI_PLAIN_SEQUENCE_SMALL);
        auto& sequence = identifier.seq_sdefn();
        sequence.header().equiv_kind(types::EK_BOTH);
        sequence.bound(static_cast<types::SBound>(code.bound));
        sequence.element_identifier(&*element);
        return identifier;
    }

    // Fills what members of structs and branches of unions share; false when the type cannot be described.
    template <class Member>
    bool fillMember(Member& described, const DDS_TypeCodeMember& member) {
        const Identifier type = identify(member.type);
        if (!type) {
            return false;
        }
        if constexpr (std::is_same_v<Member, types::CompleteUnionMember>) {
            described.common().type_id(*type);
            described.common().label_seq().assign(member.labels.begin(), member.labels.end());
            described.common().member_flags().IS_DEFAULT(member.isDefault);
        } else {
            described.common().member_type_id(*type);
            described.common().member_flags().IS_KEY(member.isKey);
        }
        described.common().member_id(static_cast<types::MemberId>(member.id));
        described.detail().name(member.name);
        return true;
    }

    template <class Member, class Members>
    bool fillMembers(Members& described, const std::vector<DDS_TypeCodeMember>& members) {
        return std::all_of(members.begin(), members.end(), [&](const DDS_TypeCodeMember& member) {
            Member entry;
            const bool filled = fillMember(entry, member);
            described.push_back(entry);
            return filled;
        });
    }

    bool fillStruct(types::CompleteTypeObject& object, const DDS_TypeCode& code) {
        object._d(types::TK_STRUCTURE);
        auto& described = object.struct_type();
        setExtensibility(described.struct_flags(), code.extensibility);
        described.header().detail().type_name(code.name);
        return fillMembers<types::CompleteStructMember>(described.member_seq(), code.members);
    }

    bool fillUnion(types::CompleteTypeObject& object, const DDS_TypeCode& code) {
        const Identifier discriminator = identify(code.content);
        if (!discriminator) {
            return false;
        }
        object._d(types::TK_UNION);
        auto& described = object.union_type();
        setExtensibility(described.union_flags(), code.extensibility);
        described.header().detail().type_name(code.name);
        described.discriminator().common().type_id(*discriminator);
        return fillMembers<types::CompleteUnionMember>(described.member_seq(), code.members);
    }

    bool fillAlias(types::CompleteTypeObject& object, const DDS_TypeCode& code) {
        const Identifier named = identify(code.content);
        if (!named) {
            return false;
        }
        object._d(types::TK_ALIAS);
        object.alias_type().header().detail().type_name(code.name);
        object.alias_type().body().common().related_type(*named);
        return true;
    }

    std::vector<const DDS_TypeCode*> describing_; // the named types that are being described, outermost first
};

} // namespace

void announceType(eprosima::fastdds::dds::TopicDataType& type, const DDS_TypeCode& code) {
    const Identifier identifier = Describer().identify(&code);
    const Object object = Describer().describe(code);
    if (identifier && object) {
        type.type_object(*object);
        type.type_identifier(*identifier);
    }
}

} // namespace zul

// Printing of values to standard output, for every IDL type: the indentation, "name:", and the value or, one
// level deeper, the members.
#pragma once

#include "middleware/idl/types.h"

#include <cstdio>

namespace zul::idl {

inline void printHead(const char* description, int indent) {
    std::printf("%*s", indent * 3, "");
    if (description != nullptr) {
        std::printf("%s:", description);
    }
}
// A line of its own; a bare line feed when there is no description.
inline void printTitle(const char* description, int indent) {
    printHead(description, indent);
    std::printf("\n");
}

inline void print(Long, const DDS_Long& value, const char* description, int indent) {
    printHead(description, indent);
    std::printf(" %d\n", value);
}
inline void print(Boolean, const DDS_Boolean& value, const char* description, int indent) {
    printHead(description, indent);
    std::printf(" %s\n", value != 0 ? "true" : "false");
}
template <class E>
void print(Enum<E>, const E& value, const char* description, int indent) {
    using Described = Description<E>;
    printHead(description, indent);
    for (const Enumerator& enumerator : Described::enumerators) {
        if (enumerator.value == value) {
            std::printf(" %s%s%s\n", Described::Module::enumeratorPrefix, Described::enumeratorInfix,
                        enumerator.name);
            return;
        }
    }
    std::printf(" %d\n", static_cast<int>(value));
}
template <std::uint32_t Bound>
void print(String<Bound>, char* const& value, const char* description, int indent) {
    printHead(description, indent);
    if (value == nullptr) {
        std::printf(" NULL\n");
    } else {
        std::printf(" \"%s\"\n", value);
    }
}
template <std::uint32_t Elements, std::uint32_t Bound>
void print(StringSequence<Elements, Bound>, const DDS_StringSeq& value, const char* description, int indent) {
    printTitle(description, indent);
    for (DDS_Long i = 0; i < value.length; ++i) {
        char position[16];
        std::snprintf(position, sizeof(position), "[%d]", i);
        print(String<Bound>{}, ZULSequence::at(value, i), position, indent + 1);
    }
}
template <class Record>
void print(Struct<Record>, const Record& record, const char* description, int indent) {
    printTitle(description, indent);
    forEachMember(record, [indent](auto type, const auto& member, const auto& value) {
        print(type, value, member.name, indent + 1);
    });
}
template <class Record>
void print(Union<Record>, const Record& record, const char* description, int indent) {
    using Described = Description<Record>;
    printTitle(description, indent);
    print(typename Described::Discriminator{}, record._d, "_d", indent + 1);
    forSelectedBranch(record, [indent](auto type, const auto& branch, const auto& value) {
        print(type, value, branch.name, indent + 1);
    });
}

} // namespace zul::idl

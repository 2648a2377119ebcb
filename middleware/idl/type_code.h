// Type codes: the description of a data type that is announced to the network and that service programs can
// inspect (OMG DDS XTypes 1.2, 7.2; the CORBA TypeCode model). A type code refers to its parts and does not
// own them: the codes of static types live for ever, others as long as whoever built them says.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

enum DDS_TCKind {
    DDS_TK_NULL,
    DDS_TK_SHORT,
    DDS_TK_LONG,
    DDS_TK_USHORT,
    DDS_TK_ULONG,
    DDS_TK_LONGLONG,
    DDS_TK_ULONGLONG,
    DDS_TK_FLOAT,
    DDS_TK_DOUBLE,
    DDS_TK_LONGDOUBLE,
    DDS_TK_BOOLEAN,
    DDS_TK_CHAR,
    DDS_TK_WCHAR,
    DDS_TK_OCTET,
    DDS_TK_STRING,   // bound = most characters, 0 = unbounded
    DDS_TK_WSTRING,  // the same
    DDS_TK_SEQUENCE, // bound = most elements, 0 = unbounded; content = element type
    DDS_TK_ARRAY,    // dimensions; content = element type
    DDS_TK_ALIAS,    // content = the type it names
    DDS_TK_ENUM,     // members carry the enumerators
    DDS_TK_STRUCT,   // content = base type or null
    DDS_TK_UNION,    // content = discriminator type
    DDS_TK_VALUE,
    DDS_TK_SPARSE,
};

enum DDS_ExtensibilityKind {
    DDS_FINAL_EXTENSIBILITY,
    DDS_EXTENSIBLE_EXTENSIBILITY,
    DDS_MUTABLE_EXTENSIBILITY
};

struct DDS_TypeCode;

struct DDS_TypeCodeMember {
    std::string name;
    std::int32_t id = 0;                // member id; position for structs
    const DDS_TypeCode* type = nullptr; // null for an enumerator
    std::vector<std::int32_t> labels{}; // union branch: its case labels, in the order they were declared
    bool isDefault = false;             // union branch: selected by every other discriminator
    std::int32_t value = 0;             // enumerator: its value
    bool isKey = false;
    bool isRequired = false;
};

struct DDS_TypeCode {
    DDS_TCKind kind = DDS_TK_NULL;
    std::string name{}; // scoped with "::"; empty for anonymous types
    DDS_ExtensibilityKind extensibility = DDS_EXTENSIBLE_EXTENSIBILITY;
    std::uint32_t bound = 0;
    std::vector<std::uint32_t> dimensions{};
    const DDS_TypeCode* content = nullptr;
    std::vector<DDS_TypeCodeMember> members{};
};

// The type code of a primitive kind (DDS_TK_SHORT to DDS_TK_OCTET); valid for ever. Null for another kind.
const DDS_TypeCode* DDS_TypeCode_primitive(DDS_TCKind kind);

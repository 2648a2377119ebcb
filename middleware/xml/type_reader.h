// The type reader: type codes from the types sections of a document. All basic types, bounded strings and
// sequences, arrays, typedefs, enums, unions, structs and value types with bases, modules, constants,
// announcements of types to come, and types sections of other local documents (include).
#pragma once

#include "middleware/xml/type_check.h"
#include "middleware/xml/type_grammar.h"

#include <deque>
#include <set>

// The type codes that were read; owns them and all they refer to but the basic types. Nothing in it moves.
struct ZULXMLTypeSet {
    std::deque<DDS_TypeCode> codes;
    std::map<std::string, const DDS_TypeCode*, std::less<>> byName; // by scoped name
};

// Reads all types sections of the document. False, with the line and what to do about it, when one is wrong.
bool ZULXMLTypeReader_read(const ZULXMLDocument* document, ZULXMLTypeSet* types, ZULXMLError* error);

enum ZULXMLTypesStatus { ZUL_XML_TYPES_OK, ZUL_XML_TYPES_BAD_DOCUMENT, ZUL_XML_TYPES_BAD_DEFINITION };
// Reads `size` bytes as a document and its types, and drops the result. Logs nothing and reads nothing else.
ZULXMLTypesStatus ZULXMLTypeReader_check(const void* data, std::size_t size, ZULXMLError* error);

namespace xml_types {

constexpr std::size_t INCLUDES_MAX = 64;        // documents taken in
constexpr std::size_t BASES_MAX = 32;           // types above each other in a chain of bases
constexpr std::uint64_t COUNT_MAX = 0x7FFFFFFF; // a bound, or all elements of an array
constexpr std::uint64_t MEMBER_ID_MAX = 0x0FFFFFFF;

// One run over a document and what it includes. Functions return false or null with the error set; each is
// given the scope ("" is the outermost) where its element stands.
class TypeReader {
public:
    TypeReader(ZULXMLTypeSet& types, ZULXMLError& error) : types_(types), error_(error) {}
    bool read(const ZULXMLDocument& document);

private:
    using Element = const ZULXMLObject&;
    using Scope = const std::string&;
    struct Definition {
        std::string_view tag;
        bool (TypeReader::*read)(Element, Scope);
        DDS_TCKind kind; // of a type that can be announced
    };
    static const Definition DEFINITIONS[];
    static const Definition* findDefinition(std::string_view tag);

    // What members of a struct or value type are there already, for those derived from it.
    struct Record {
        const Record* base = nullptr;
        std::size_t bases = 0; // above it
        std::set<std::string> names{};
        std::set<std::uint64_t> ids{};
        std::uint64_t nextId = 0;
    };
    struct Discriminator {
        const DDS_TypeCode* underlying;
        const TypeWord* word; // its range; null for an enum
        std::set<std::int32_t> labels{};
        bool hasDefault = false;
    };

    bool fail(Element at, std::string message) { return error_.set(at.line, std::move(message)); }

    // type_reader.cpp: sections, modules and small definitions
    bool readSections(const ZULXMLDocument& document, Scope scope);
    bool readDefinitions(Element parent, Scope scope);
    bool readInclude(Element element, Scope scope);
    bool readModule(Element element, Scope scope);
    bool readConstant(Element element, Scope scope);
    bool readForward(Element element, Scope scope);
    bool readTypedef(Element element, Scope scope);
    bool readEnum(Element element, Scope scope);
    // Introduces the type that the element names: a new one, or the one announced. Its code has kind, name
    // and extensibility.
    Symbol* beginType(Element element, Scope scope, DDS_TCKind kind);

    // type_members.cpp: the types of members, bounds and values
    DDS_TypeCode* newCode(DDS_TypeCode code) { return &types_.codes.emplace_back(std::move(code)); }
    const DDS_TypeCode* typeOf(Element element, Scope scope);
    const DDS_TypeCode* elementTypeOf(Element element, Scope scope);
    const DDS_TypeCode* namedType(Element element, Scope scope, std::string_view attributeName,
                                  bool mustBeDefined);
    std::optional<std::uint32_t> boundOf(Element element, Scope scope, std::string_view attributeName);
    std::optional<std::uint64_t> countOf(Element element, Scope scope, std::string_view text);
    bool addDimensions(Element element, Scope scope, DDS_TypeCode& array);
    std::optional<Integer> integerOf(Scope scope, std::string_view text);
    std::optional<Integer> valueOf(const TypeWord& type, Scope scope, std::string_view text);

    // type_records.cpp: structs, value types and unions
    bool readRecord(Element element, Scope scope);
    bool readBase(Element element, Scope scope, DDS_TypeCode& code, Record& record);
    bool readMember(Element element, Scope scope, DDS_TypeCode& code, Record& record);
    bool readUnion(Element element, Scope scope);
    bool readDiscriminator(Element element, Scope scope, DDS_TypeCode& code, Discriminator& discriminator);
    bool readCase(Element element, Scope scope, DDS_TypeCode& code, Discriminator& discriminator,
                  Record& record);
    bool readLabel(Element element, Scope scope, Discriminator& discriminator, DDS_TypeCodeMember& branch);

    ZULXMLTypeSet& types_;
    ZULXMLError& error_;
    Symbols symbols_;
    std::map<const DDS_TypeCode*, Record> records_;
    const ZULXMLDocument* document_ = nullptr; // the one being read
    std::set<std::string> included_;           // files
};

// The type behind the typedefs of `type`; null for null.
const DDS_TypeCode* underlyingType(const DDS_TypeCode* type);

} // namespace xml_types

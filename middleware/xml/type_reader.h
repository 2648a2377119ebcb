// The type reader: type codes from the types sections of a document. All basic types, bounded strings and
// sequences, arrays, typedefs, enums, unions, structs and value types with bases, modules, constants,
// announcements of types to come, and types sections of other local documents (include).
#pragma once

#include "middleware/xml/type_check.h"
#include "middleware/xml/type_grammar.h"

#include <deque>
#include <map>
#include <set>
#include <unordered_set>

// What a document says of one scoped name: the first element that defines it, or else announces it.
struct ZULXMLTypeEntry {
    std::string tag;            // of that element
    std::int32_t line;          // its line in the document asked for, or of the include that brought it
    std::string place{};        // put before the reason: the included files that lead to it
    std::string reason{};       // why there is no type; empty where nothing is wrong
    const DDS_TypeCode* code{}; // null where the element is wrong or no type
};

// The type codes that were read; owns them and all they refer to but the basic types. Nothing in it moves.
struct ZULXMLTypeSet {
    std::pmr::monotonic_buffer_resource memory{}; // freed as a whole
    std::pmr::deque<DDS_TypeCode> codes{&memory};
    zul::xml::ByName<ZULXMLTypeEntry> byName{&memory};
    ZULXMLError missing{}; // the first include that failed, or that the names are too long in all
};

namespace zul::xml {

constexpr std::size_t INCLUDES_MAX = 64;        // documents taken in
constexpr std::size_t BASES_MAX = 32;           // types above each other in a chain of bases
constexpr std::uint64_t COUNT_MAX = 0x7FFFFFFF; // a bound, or all elements of an array
constexpr std::size_t DIMENSIONS_MAX = 64;      // of an array; each may be a name to look up
constexpr std::uint64_t MEMBER_ID_MAX = 0x0FFFFFFF;

// One run over a document and what it includes. Functions that read one definition, or a part of it, throw
// what is wrong as a ZULXMLError; that becomes the definition's error, and reading goes on with the next.
// Each is given the scope that its element is in.
class TypeReader {
public:
    // Gets everything that is wrong, but for what only follows from something told before. The element is the
    // definition that it was found in, of whatever document; null where it was found at the end.
    using Observer = std::function<void(const TypeElement* definition, const ZULXMLError& error)>;

    // `first` gets the first thing that is wrong, with the line and what to do about it.
    TypeReader(ZULXMLTypeSet& types, ZULXMLError& first, Observer observer = {})
        : types_(types), first_(first), observer_(std::move(observer)) {}
    // Reads all types sections of a document. What is wrong is left out, and the result is false.
    bool read(const TypeSections& sections);
    bool read(const ZULXMLDocument& document) { return read(TypeSections(document)); }

private:
    using Element = const TypeElement&;
    using Scope = const std::string&; // its name; "" is the outermost
    using Name = const std::string&;  // the scoped one of a definition
    struct Definition {
        std::string_view tag;
        void (TypeReader::*read)(Element, Scope, Name);
        DDS_TCKind kind; // of the type; DDS_TK_NULL for what defines none
    };
    static const Definition DEFINITIONS[];
    static const Definition* findDefinition(std::string_view tag);

    // The names and ids that the members of a struct, value type or union take up; names are borrowed.
    struct Record {
        const Record* base = nullptr;
        std::size_t bases = 0; // above it
        std::unordered_set<std::string_view> names{};
        std::unordered_set<std::uint64_t> ids{};
        std::uint64_t nextId = 0;
        void deriveFrom(const Record& other) {
            base = &other;
            bases = other.bases + 1;
            nextId = other.nextId;
        }
        void add(std::string_view name, std::uint64_t id) {
            names.insert(name);
            ids.insert(id);
            nextId = id + 1;
        }
    };
    // What an enum has, for the unions that it selects the cases of.
    struct Enumerators {
        std::size_t count = 0; // of its members that are here: more come when a wrong enum is defined again
        ByName<std::int32_t> byName{};
        std::unordered_set<std::int32_t> values{};
    };
    struct Discriminator {
        const DDS_TypeCode* underlying;
        const TypeWord* word;           // its range; null for an enum
        const Enumerators* enumerators; // of an enum
        std::unordered_set<std::int32_t> labels{};
        bool hasDefault = false;
    };

    // What is wrong only because something else is.
    struct Consequence : ZULXMLError {};
    [[noreturn]] static void fail(Element at, std::string message) {
        throw ZULXMLError{at.line, std::move(message)};
    }

    // type_reader.cpp: sections, modules and small definitions
    void readSections(const TypeSections& sections, Scope scope);
    void readDefinitions(Element parent, Scope scope);
    // Counts the bytes of a name that is kept, and of where it is; refuses them when there are too many.
    void countName(Element element, std::size_t bytes);
    bool hasTooLongNames() const { return names_ > ZUL_XML_FULL_NAMES_MAX; }
    // The entry of the name that the element defines, if the element is the one that counts; otherwise null.
    ZULXMLTypeEntry* beginEntry(Element element, Name name, std::string place);
    void tell(Element element, Name name, ZULXMLTypeEntry* entry, ZULXMLError error,
              bool isConsequence = false);
    void observe(const TypeElement* definition, const ZULXMLError& error) const;
    // Reads the parts of a definition from `first` on, all of them even when some are wrong; then throws the
    // first error, having told the others.
    void readParts(Element definition, const TypeElement* first, const std::function<void(Element)>& read);
    // The error with the place that it has in the document asked for.
    ZULXMLError placed(Element element, const ZULXMLError& error) const;
    // That line of the document being read, or of the outermost include that led to it.
    std::int32_t lineOf(std::int32_t line) const { return includes_.empty() ? line : includes_.front().line; }
    std::string placeOf(std::int32_t line) const;
    void readInclude(Element element, Scope scope, Name);
    void readModule(Element element, Scope scope, Name name);
    void readConstant(Element element, Scope scope, Name name);
    void readForward(Element element, Scope scope, Name name);
    void readTypedef(Element element, Scope scope, Name name);
    void readEnum(Element element, Scope scope, Name name);
    // Introduces the type that the element defines: a new one, or the one announced. Its code has kind, name
    // and extensibility.
    Symbol& beginType(Element element, Name name, DDS_TCKind kind);

    // type_members.cpp: the types of members, bounds and values
    DDS_TypeCode* newCode(DDS_TypeCode&& code) { return &types_.codes.emplace_back(std::move(code)); }
    const DDS_TypeCode* typeOf(Element element, Scope scope);
    const DDS_TypeCode* elementTypeOf(Element element, Scope scope);
    const DDS_TypeCode* namedType(Element element, Scope scope, std::string_view attributeName,
                                  bool mustBeDefined);
    std::uint32_t boundOf(Element element, Scope scope, std::string_view attributeName);
    std::uint64_t countOf(Element element, Scope scope, std::string_view text);
    void addDimensions(Element element, Scope scope, DDS_TypeCode& array);
    std::optional<Integer> integerOf(Scope scope, std::string_view text);
    std::optional<Integer> valueOf(const TypeWord& type, Scope scope, std::string_view text);

    // type_records.cpp: structs, value types and unions
    void readRecord(Element element, Scope scope, Name name);
    void readBase(Element element, Scope scope, DDS_TypeCode& code, Record& record);
    const Record& recordOf(const DDS_TypeCode& base);
    void readMember(Element element, Scope scope, DDS_TypeCode& code, Record& record);
    void readUnion(Element element, Scope scope, Name name);
    Discriminator readDiscriminator(Element element, Scope scope, DDS_TypeCode& code);
    const Enumerators& enumeratorsOf(const DDS_TypeCode& enumeration);
    void readCase(Element element, Scope scope, DDS_TypeCode& code, Discriminator& discriminator,
                  Record& record);
    void readLabel(Element element, Scope scope, Discriminator& discriminator, DDS_TypeCodeMember& branch);

    struct Include {
        std::string file;
        std::int32_t line; // in the document that includes it
    };

    ZULXMLTypeSet& types_;
    ZULXMLError& first_;
    const Observer observer_;
    Symbols symbols_;
    std::map<const DDS_TypeCode*, Record> bases_;      // that a type is derived from
    std::map<const DDS_TypeCode*, Enumerators> enums_; // that select the cases of a union
    const TypeSections* sections_ = nullptr;           // those being read
    std::vector<Include> includes_;                    // that lead to it, from the outermost in
    std::set<std::string> included_;                   // files
    std::size_t names_ = 0; // bytes of the names that are kept, of all files, and of their places
};

// The type that `type` names through its typedefs; null for null.
const DDS_TypeCode* underlyingType(const DDS_TypeCode* type);

} // namespace zul::xml

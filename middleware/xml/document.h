// Documents: a configuration document read into a tree of objects, with the types that its types sections
// describe. A document owns its tree and its type codes. It belongs to one thread at a time.
#pragma once

#include "middleware/type_code.h"
#include "middleware/xml/object.h"

#include <memory>
#include <string>

// What a document may hold. More is refused, so that what is read stays within some 150 MB whatever comes.
constexpr std::size_t ZUL_XML_DOCUMENT_MAX = 4u << 20;    // bytes of the document
constexpr std::size_t ZUL_XML_MARKUP_MAX = 64u << 10;     // bytes of one tag, comment or CDATA section
constexpr std::size_t ZUL_XML_ELEMENTS_MAX = 128u << 10;  // elements
constexpr std::size_t ZUL_XML_DEPTH_MAX = 64;             // elements inside each other
constexpr std::size_t ZUL_XML_NAME_MAX = 255;             // characters of a tag name or an own name
constexpr std::size_t ZUL_XML_FULL_NAMES_MAX = 16u << 20; // bytes of all full names

// The first thing that was wrong.
struct ZULXMLError {
    std::int32_t line = 0; // from 1; 0 when no line is to blame (a file that cannot be opened)
    std::string text{};    // empty: nothing is wrong
    // Records it unless there is one already. Always false, so that a check can return it.
    bool set(std::int32_t atLine, std::string message) {
        if (text.empty()) {
            line = atLine;
            text = std::move(message);
        }
        return false;
    }
};

struct ZULXMLTypeSet;
struct ZULXMLTypeSetDeleter {
    void operator()(ZULXMLTypeSet* types) const;
};

struct ZULXMLDocument {
    ZULXMLObject* root = nullptr;                                 // null when the document could not be read
    std::string path{};                                           // of the file; empty when it came as text
    ZULXMLError error{};                                          // why there is no root, or no types
    std::unique_ptr<ZULXMLTypeSet, ZULXMLTypeSetDeleter> types{}; // once they were asked for
};

void ZULXMLDocument_delete(ZULXMLDocument* self); // null is ignored

// The element that defines the type of that scoped name ("Module::Type", without "::" in front) in a types
// section of the document, or null. An announcement (forward_dcl) is no definition. The first of several
// counts.
const ZULXMLObject* ZULXMLDocument_findDefinition(const ZULXMLDocument* self, std::string_view name);
// The type code of that scoped name, valid as long as the document. All types sections are read on first use.
// Null, with the reason in `error` and logged, when one is wrong; null when there is no such type.
const DDS_TypeCode* ZULXMLDocument_getTypeCode(ZULXMLDocument* self, std::string_view name);

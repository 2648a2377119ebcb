// Documents: a configuration document read into a tree of objects. A document owns its tree, and the type
// codes that were asked of it (document_types.h). It belongs to one thread at a time.
#pragma once

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
    // Records it unless there is one already.
    void set(std::int32_t atLine, std::string message) {
        if (text.empty()) {
            line = atLine;
            text = std::move(message);
        }
    }
};

struct ZULXMLTypeSet;

struct ZULXMLDocument {
    ZULXMLObject* root = nullptr;                 // null when the document could not be read
    std::string path{};                           // of the file; empty when it came as text
    ZULXMLError error{};                          // why there is no root, or not the type last asked for
    std::shared_ptr<const ZULXMLTypeSet> types{}; // read when the first one is asked for
};

void ZULXMLDocument_delete(ZULXMLDocument* self); // null is ignored

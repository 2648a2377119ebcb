// XML from outside: parsing within limits, and writing. Nothing is ever fetched: no network, no files, no
// external entities. A document type declaration that names a definition and the schema locations that XML
// editors write are kept, and neither is followed; declarations inside a document, entities among them, are
// refused. The library's messages are captured, never printed. A document belongs to one thread at a time.
#pragma once

#include "middleware/xml/guard.h"

namespace zul::plan {

constexpr std::size_t MAX_DOCUMENT_SIZE = 8U << 20; // bytes of one document
constexpr std::size_t MAX_NODES = 512U << 10;       // elements, attributes, comments and the like
constexpr int MAX_DEPTH = 64;                       // elements inside each other
constexpr std::size_t MAX_TAG = 64U << 10;          // bytes of one tag
constexpr int MAX_ATTRIBUTES = 64;                  // of one element
using xml::STOPPED;

inline std::string_view toView(const xmlChar* text) {
    return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}
inline const xmlChar* toXml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}
inline const xmlChar* toXml(const std::string& text) {
    return toXml(text.c_str());
}

struct XmlDeleter {
    void operator()(xmlDtd* dtd) const { xmlFreeDtd(dtd); }
    void operator()(xmlChar* text) const { xmlFree(text); }
    void operator()(xmlBuffer* buffer) const { xmlBufferFree(buffer); }
};
using XmlDocument = xml::DocumentPtr;

// The library returns a failure when memory runs out; here that becomes an exception.
inline void requireMemory(bool hasSufficed) {
    if (!hasSufficed) {
        throw std::bad_alloc();
    }
}

// Refuses what is wrong, with its line. In a parsed document only whole nodes may be replaced, as the
// library keeps short texts inside the nodes. Gives up soon when asked to stop. `names`, if not null, is the
// dictionary of another document, which nodes may then be moved to.
XmlDocument parseXml(std::string_view text, const std::stop_token& stop, xmlDict* names = nullptr);

// The same for a document that is only read: the blanks that lay out its elements are left out.
XmlDocument parseContent(std::string_view text, const std::stop_token& stop);

// Refuses what parseXml would, at a fraction of its cost in time and memory.
void checkXml(std::string_view text, const std::stop_token& stop);

// A copy of a whole document that may be changed.
XmlDocument copyXml(xmlDoc* document);

// The line of an element in the text that it was parsed from.
int lineOf(const xmlNode* element);

// Whether an attribute tells an XML editor where to find a schema.
bool isSchemaLocation(const xmlAttr* attribute);

// UTF-8, with an XML declaration if the document was read with one that names an encoding.
std::string writeXml(xmlDoc* document);

} // namespace zul::plan

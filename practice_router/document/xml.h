// XML from outside: parsing within limits, and writing. Nothing is ever fetched: no network, no files, no
// external entities. A document type declaration that names a definition and the schema locations that XML
// editors write are kept, and neither is followed; declarations inside the former, and with them every entity
// of one's own, are refused. The library's messages are captured, never printed. One thread at a time.
#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>

constexpr std::size_t PRACTICE_XML_MAX_SIZE = 8U << 20;    // bytes of one document
constexpr std::size_t PRACTICE_XML_MAX_NODES = 512U << 10; // elements, attributes, comments and the like
constexpr int PRACTICE_XML_MAX_DEPTH = 64;                 // elements inside each other
constexpr std::size_t PRACTICE_XML_MAX_TAG = 64U << 10;    // bytes of one tag
constexpr int PRACTICE_XML_MAX_ATTRIBUTES = 64;            // of one element
constexpr const char* PRACTICE_XML_STOPPED = "the program ends"; // the error of what was asked to stop

struct PracticeXmlDeleter {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    void operator()(xmlDtd* dtd) const { xmlFreeDtd(dtd); }
    void operator()(xmlChar* text) const { xmlFree(text); }
};
using PracticeXmlDocument = std::unique_ptr<xmlDoc, PracticeXmlDeleter>;

// Null on failure; `error` then says what is wrong, with its line. Of a parsed document only whole nodes may
// be changed, as the library keeps short texts inside theirs. Gives up soon when asked to stop. `names`, if
// not null, is the dictionary of another document, which nodes may then be moved to.
PracticeXmlDocument PracticeXml_parse(std::string_view text, const std::stop_token& stop, std::string& error,
                                      xmlDict* names = nullptr);

// Whether a text could be parsed; costs less.
bool PracticeXml_isReadable(std::string_view text, const std::stop_token& stop, std::string& error);

// A copy of a whole document that may be changed. Null when memory is exhausted.
PracticeXmlDocument PracticeXml_copy(xmlDoc* document);

// The line of an element in the text that it was parsed from.
int PracticeXml_lineOf(const xmlNode* element);

// Whether an attribute tells an XML editor where to find a schema; such ones stand in the outermost element.
bool PracticeXml_isSchemaLocation(const xmlAttr* attribute);

// UTF-8, with an XML declaration if the document was read with one that names an encoding.
std::string PracticeXml_write(xmlDoc* document);

// XML from outside: parsing within limits, checking against the product's document type definition, writing.
// Nothing is ever fetched: no network, no files, no external entities; a document type declaration, and with
// it every entity of one's own, is refused. The library's messages are captured, never printed. One thread at
// a time.
#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

constexpr std::size_t PRACTICE_XML_MAX_SIZE = 4U << 20; // bytes of one document
constexpr int PRACTICE_XML_MAX_DEPTH = 64;              // elements inside each other

struct PracticeXmlDeleter {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    void operator()(xmlDtd* dtd) const { xmlFreeDtd(dtd); }
    void operator()(xmlChar* text) const { xmlFree(text); }
};
using PracticeXmlDocument = std::unique_ptr<xmlDoc, PracticeXmlDeleter>;

// Null on failure; `error` then says what is wrong, with its line.
PracticeXmlDocument PracticeXml_parse(std::string_view text, std::string& error);

// Checks the form: the definition's content models and attributes. False with `error` filled: line and fault.
bool PracticeXml_followsDtd(xmlDoc* document, std::string& error);
// Whether the children of `element` are what the definition allows, whatever is inside them.
bool PracticeXml_childrenFollowDtd(xmlNode* element);
bool PracticeXml_isDeclared(const xmlChar* elementName);

// UTF-8, with an XML declaration if the document was read with one that names an encoding.
std::string PracticeXml_write(xmlDoc* document);

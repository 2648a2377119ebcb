// The parser pulls its input through a function of ours, piece by piece. There the limits are checked that
// must hold before the library works on what they limit, and there it is stopped.
#include "practice_router/document/xml.h"

#include "practice_router/document/text.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlsave.h>

#include <cstdint>

namespace zul::practice {

namespace {

constexpr std::string_view SCHEMA_INSTANCE = "http://www.w3.org/2001/XMLSchema-instance";

// One document being parsed; the library hands it to every event.
struct Reading {
    std::string_view rest;
    const std::stop_token& stop;
    bool buildsTree = true;
    std::string error{}; // the first; later ones mostly follow from it
    xmlParserCtxt* parser = nullptr;
    std::size_t nodes = 0;      // elements, comments and the like
    std::size_t sinceEvent = 0; // bytes handed out since the library last told of something

    void note(int line, std::string_view what) {
        if (error.empty()) {
            const std::string whole = "line " + std::to_string(line) + ": " + std::string(what);
            error = shortened(whole, MAX_FAILURE);
            while (error.ends_with(' ')) {
                error.pop_back();
            }
        }
    }
    int line() const { return parser->input != nullptr ? parser->input->line : 0; }
    void refuse(const std::string& what) {
        note(line(), what);
        xmlStopParser(parser);
    }
    void noteNodes(int count) {
        sinceEvent = 0;
        nodes += static_cast<std::size_t>(count);
        if (nodes > MAX_NODES) {
            refuse("there are more than " + std::to_string(MAX_NODES) +
                   " elements, attributes and comments; shorten the document");
        }
    }
};

Reading& readingOf(void* context) {
    return *static_cast<Reading*>(static_cast<xmlParserCtxt*>(context)->_private);
}

// The library's work on a tag grows with the square of its attributes, so a tag must not be long. A comment
// and the like may be: their cost grows with their length alone.
bool isInTag(const xmlParserCtxt* parser) {
    return parser->instate != XML_PARSER_COMMENT && parser->instate != XML_PARSER_PI &&
           parser->instate != XML_PARSER_CDATA_SECTION;
}

int handOut(void* context, char* buffer, int size) {
    auto& reading = *static_cast<Reading*>(context);
    if (reading.stop.stop_requested()) {
        reading.error = STOPPED;
        return -1;
    }
    if (reading.sinceEvent > MAX_TAG && isInTag(reading.parser)) {
        reading.note(reading.line(), "a tag has more than " + std::to_string(MAX_TAG) + " bytes; shorten it");
        return -1;
    }
    const std::size_t count = reading.rest.copy(buffer, static_cast<std::size_t>(size));
    reading.rest.remove_prefix(count);
    reading.sinceEvent += count;
    return static_cast<int>(count);
}

// Counts the nodes that an event stands for; the library's own handler then adds them to the tree.
template <auto handler, int nodes, class... Arguments>
void noting(void* context, Arguments... arguments) {
    Reading& reading = readingOf(context);
    reading.noteNodes(nodes);
    if (reading.buildsTree) {
        handler(context, arguments...);
    }
}

// Why an element cannot be accepted; empty when it can. Attributes come as local name, prefix, URI, begin and
// end of the value, declarations of namespaces as prefix and URI.
std::string refuseElement(const Reading& reading, const xmlChar* uri, int namespaceCount,
                          const xmlChar** namespaces, int attributeCount) {
    const int depth = reading.parser->nameNr;
    if (depth >= MAX_DEPTH) {
        return "elements stand more than " + std::to_string(MAX_DEPTH) +
               " deep in each other; flatten the document";
    }
    if (namespaceCount + attributeCount > MAX_ATTRIBUTES) {
        return "an element has more than " + std::to_string(MAX_ATTRIBUTES) + " attributes; take some out";
    }
    bool declaresOthers = namespaceCount > 0 && depth > 0;
    for (int i = 0; i < namespaceCount; ++i) {
        declaresOthers = declaresOthers || toView(namespaces[2 * i + 1]) != SCHEMA_INSTANCE;
    }
    return uri != nullptr || declaresOthers
               ? "the elements of a configuration are in no namespace; take out the xmlns attribute"
               : "";
}

void startElement(void* context, const xmlChar* localname, const xmlChar* prefix, const xmlChar* uri,
                  int namespaceCount, const xmlChar** namespaces, int attributeCount, int defaultedCount,
                  const xmlChar** attributes) {
    Reading& reading = readingOf(context);
    reading.noteNodes(1 + attributeCount);
    const std::string refusal = refuseElement(reading, uri, namespaceCount, namespaces, attributeCount);
    if (!refusal.empty()) {
        reading.refuse(refusal);
        return;
    }
    if (!reading.buildsTree) {
        return;
    }
    xmlSAX2StartElementNs(context, localname, prefix, uri, namespaceCount, namespaces, attributeCount,
                          defaultedCount, attributes);
    if (reading.parser->node != nullptr) {
        // The library's own line numbers end at 65535.
        reading.parser->node->psvi = reinterpret_cast<void*>(static_cast<std::intptr_t>(reading.line()));
    }
}

template <class... Arguments>
void refuseDeclaration(void* context, Arguments...) {
    readingOf(context).refuse(
        "declarations inside <!DOCTYPE ...> are not accepted; take out the part in [ ]");
}
void refuseAttributeDeclaration(void* context, const xmlChar*, const xmlChar*, int, int, const xmlChar*,
                                xmlEnumeration* words) {
    xmlFreeEnumeration(words);
    refuseDeclaration(context);
}

// An entity that only the definition, which nobody reads, could declare is no more than a warning to
// the library.
void noteError(void* context, xmlError* error) {
    if (error->level == XML_ERR_WARNING && error->code != XML_WAR_UNDECLARED_ENTITY) {
        return;
    }
    readingOf(context).note(error->line, error->message != nullptr ? error->message : "unknown error");
}

void setHandlers(xmlSAXHandler& events) {
    events.startElementNs = startElement;
    events.endElementNs = noting<xmlSAX2EndElementNs, 0>;
    events.characters = noting<xmlSAX2Characters, 0>;
    events.ignorableWhitespace = noting<xmlSAX2Characters, 0>;
    events.cdataBlock = noting<xmlSAX2CDataBlock, 1>;
    events.comment = noting<xmlSAX2Comment, 1>;
    events.processingInstruction = noting<xmlSAX2ProcessingInstruction, 1>;
    events.externalSubset = nullptr;
    events.resolveEntity = nullptr;
    events.elementDecl = refuseDeclaration;
    events.attributeDecl = refuseAttributeDeclaration;
    events.entityDecl = refuseDeclaration;
    events.unparsedEntityDecl = refuseDeclaration;
    events.notationDecl = refuseDeclaration;
    events.serror = noteError;
}

struct ParserDeleter {
    void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
};

// The document, without its elements where no tree is wanted; null on failure.
XmlDocument parse(std::string_view text, bool buildsTree, const std::stop_token& stop, std::string& error,
                  xmlDict* names) {
    if (text.empty()) {
        error = "the document is empty";
        return nullptr;
    }
    if (text.size() > MAX_DOCUMENT_SIZE) {
        error = "the document has " + std::to_string(text.size()) + " bytes; at most " +
                std::to_string(MAX_DOCUMENT_SIZE) + " are accepted";
        return nullptr;
    }
    const std::unique_ptr<xmlParserCtxt, ParserDeleter> parser(xmlNewParserCtxt());
    if (parser == nullptr) {
        error = "out of memory";
        return nullptr;
    }
    if (names != nullptr) {
        xmlDictFree(parser->dict);
        parser->dict = names;
        xmlDictReference(names);
    }
    Reading reading{.rest = text, .stop = stop, .buildsTree = buildsTree, .parser = parser.get()};
    parser->_private = &reading;
    setHandlers(*parser->sax);
    XmlDocument document(xmlCtxtReadIO(parser.get(), handOut, nullptr, &reading, nullptr, nullptr,
                                       XML_PARSE_NONET | XML_PARSE_COMPACT));
    if (document == nullptr || !reading.error.empty()) {
        error = reading.error.empty() ? "the document cannot be read" : reading.error;
        return nullptr;
    }
    return document;
}

} // namespace

XmlDocument parseXml(std::string_view text, const std::stop_token& stop, std::string& error, xmlDict* names) {
    return parse(text, true, stop, error, names);
}

bool isReadableXml(std::string_view text, const std::stop_token& stop, std::string& error) {
    return parse(text, false, stop, error, nullptr) != nullptr;
}

XmlDocument copyXml(xmlDoc* document) {
    XmlDocument copy(xmlCopyDoc(document, 0));
    // A dictionary of its own spares the copy an allocation for each name.
    if (copy == nullptr || (copy->dict = xmlDictCreate()) == nullptr) {
        return nullptr;
    }
    copy->children = xmlDocCopyNodeList(copy.get(), document->children);
    for (xmlNode* node = copy->children; node != nullptr; node = node->next) {
        node->parent = reinterpret_cast<xmlNode*>(copy.get());
        copy->last = node;
    }
    return xmlDocGetRootElement(copy.get()) != nullptr ? std::move(copy) : nullptr;
}

int lineOf(const xmlNode* element) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(element->psvi));
}

bool isSchemaLocation(const xmlAttr* attribute) {
    const std::string_view name = toView(attribute->name);
    return attribute->ns != nullptr && toView(attribute->ns->href) == SCHEMA_INSTANCE &&
           (name == "schemaLocation" || name == "noNamespaceSchemaLocation");
}

std::string writeXml(xmlDoc* document) {
    std::string text;
    const auto append = [](void* context, const char* bytes, int count) {
        static_cast<std::string*>(context)->append(bytes, static_cast<std::size_t>(count));
        return count;
    };
    const int options = document->encoding == nullptr ? XML_SAVE_NO_DECL : 0;
    xmlSaveCtxt* writer = xmlSaveToIO(append, nullptr, &text, "UTF-8", options);
    if (writer != nullptr) {
        xmlSaveDoc(writer, document);
        xmlSaveClose(writer);
    }
    return text;
}

} // namespace zul::practice

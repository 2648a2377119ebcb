// The tree grows while libxml2 reports elements, and the limits are checked at each. libxml2 is told to stop
// at the first failure and may still report something; the first error stays.
#include "middleware/xml/sax_reader.h"

#include "middleware/xml/text.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <vector>

namespace {

constexpr std::size_t MESSAGE_MAX = 256; // characters taken over from a message of the library

const char* chars(const xmlChar* text) {
    return reinterpret_cast<const char*>(text);
}

// One document being read; libxml2 hands it to every event.
struct Reader {
    ZULXMLDocument& document;
    const ZULXMLExtensionRegistry* registry;
    ZULXMLRead read;
    void* source;
    xmlParserCtxtPtr context = nullptr;
    ZULXMLObject* current = nullptr;  // the innermost open element
    std::vector<std::string> texts{}; // of the open elements
    std::size_t elements = 0;
    std::size_t fullNames = 0; // bytes
    std::size_t bytes = 0;     // read so far, and at the last event
    std::size_t bytesAtEvent = 0;

    std::int32_t line() const { return context != nullptr ? xmlSAX2GetLineNumber(context) : 1; }
    void fail(std::string message) {
        document.error.set(line(), std::move(message));
        xmlStopParser(context);
    }
    void noteEvent() { bytesAtEvent = bytes; }
};

Reader& readerOf(void* data) {
    return *static_cast<Reader*>(data);
}

// The library reads a few kilobytes ahead of what it parses; that much is allowed on top of the limits.
// Failures are only recorded: the parser is in the middle of its input here, and stops by itself.
int onRead(void* data, char* buffer, int size) {
    Reader& reader = readerOf(data);
    if (reader.bytes >= ZUL_XML_DOCUMENT_MAX) {
        char extra;
        if (reader.read(reader.source, &extra, 1) == 0) {
            return 0;
        }
        reader.document.error.set(reader.line(), "the document is longer than " +
                                                     std::to_string(ZUL_XML_DOCUMENT_MAX) +
                                                     " bytes; split it or shorten it");
        return -1;
    }
    if (reader.bytes - reader.bytesAtEvent > ZUL_XML_MARKUP_MAX) {
        reader.document.error.set(reader.line(), "a tag, comment or CDATA section is longer than " +
                                                     std::to_string(ZUL_XML_MARKUP_MAX) + " bytes");
        return -1;
    }
    const std::size_t wanted = std::min(static_cast<std::size_t>(size), ZUL_XML_DOCUMENT_MAX - reader.bytes);
    const int got = reader.read(reader.source, buffer, static_cast<int>(wanted));
    if (got < 0) {
        reader.document.error.set(reader.line(), "the file cannot be read further");
        return -1;
    }
    reader.bytes += static_cast<std::size_t>(got);
    return got;
}

std::string qualified(const xmlChar* prefix, const xmlChar* name) {
    return prefix != nullptr ? std::string(chars(prefix)) + ":" + chars(name) : std::string(chars(name));
}

// The own name: what the attribute says, if no sibling has it; otherwise one is made up. Empty, with the
// error set, when the attribute cannot be used.
std::string ownName(Reader& reader, const std::string& tag, const std::string* given) {
    if (given != nullptr && (given->empty() || given->size() > ZUL_XML_NAME_MAX)) {
        reader.fail("the attribute name of <" + tag + "> must have 1 to " + std::to_string(ZUL_XML_NAME_MAX) +
                    " characters");
        return {};
    }
    const ZULXMLObject* parent = reader.current;
    if (given != nullptr && (parent == nullptr || ZULXMLObject_findChild(parent, *given) == nullptr)) {
        return *given;
    }
    if (parent == nullptr) {
        return tag;
    }
    std::string made = (given != nullptr ? *given : tag) + "#" + std::to_string(parent->children.count + 1);
    // No two elements try the same names here, so each given name is met once at most.
    while (ZULXMLObject_findChild(parent, made) != nullptr) {
        made += '#';
    }
    return made;
}

ZULXMLObject* createObject(Reader& reader, const std::string& tag, const std::string& name,
                           std::span<const ZULXMLAttribute> attributes) {
    const ZULXMLExtensionClass* extensionClass =
        reader.registry != nullptr ? ZULXMLExtensionRegistry_find(reader.registry, tag.c_str()) : nullptr;
    ZULXMLObject* object =
        extensionClass != nullptr
            ? extensionClass->create(extensionClass, reader.current, name.c_str(), attributes)
            : ZULXMLObject_new(tag.c_str(), name.c_str(), reader.current, attributes);
    if (object == nullptr) {
        reader.fail("out of memory");
        return nullptr;
    }
    object->line = reader.line();
    object->context = &reader.document;
    if (reader.current == nullptr) {
        reader.document.root = object;
        return object;
    }
    const ZULXMLInsertion insertion = ZULXMLObject_insertChild(reader.current, object);
    if (insertion != ZUL_XML_INSERTED) {
        ZULXMLObject_delete(object);
        reader.fail(insertion == ZUL_XML_NAME_TAKEN ? "the name '" + name + "' is used twice"
                                                    : "out of memory");
        return nullptr;
    }
    return object;
}

void onStartElement(void* data, const xmlChar* localName, const xmlChar* prefix, const xmlChar*, int,
                    const xmlChar**, int attributeCount, int, const xmlChar** attributes) {
    Reader& reader = readerOf(data);
    reader.noteEvent();
    const std::string tag = qualified(prefix, localName);
    if (reader.texts.size() >= ZUL_XML_DEPTH_MAX) {
        return reader.fail("elements stand more than " + std::to_string(ZUL_XML_DEPTH_MAX) +
                           " levels inside each other");
    }
    if (++reader.elements > ZUL_XML_ELEMENTS_MAX) {
        return reader.fail("the document has more than " + std::to_string(ZUL_XML_ELEMENTS_MAX) +
                           " elements");
    }
    if (tag.size() > ZUL_XML_NAME_MAX) {
        return reader.fail("an element name is longer than " + std::to_string(ZUL_XML_NAME_MAX) +
                           " characters");
    }
    // Per attribute: local name, prefix, URI, begin and end of the value.
    std::vector<std::pair<std::string, std::string>> pairs;
    const std::string* given = nullptr;
    pairs.reserve(static_cast<std::size_t>(attributeCount));
    for (int i = 0; i < attributeCount; ++i, attributes += 5) {
        pairs.emplace_back(qualified(attributes[1], attributes[0]),
                           std::string(chars(attributes[3]), chars(attributes[4])));
        if (pairs.back().first == "name") {
            given = &pairs.back().second;
        }
    }
    std::vector<ZULXMLAttribute> borrowed;
    borrowed.reserve(pairs.size());
    for (const auto& [name, value] : pairs) {
        borrowed.push_back({name.c_str(), value.c_str()});
    }
    const std::string name = ownName(reader, tag, given);
    ZULXMLObject* object = name.empty() ? nullptr : createObject(reader, tag, name, borrowed);
    if (object == nullptr) {
        return;
    }
    reader.fullNames += std::char_traits<char>::length(object->fullName);
    if (reader.fullNames > ZUL_XML_FULL_NAMES_MAX) {
        return reader.fail("the names of nested elements are too long in all; shorten the outer ones");
    }
    reader.current = object;
    reader.texts.emplace_back();
}

void onEndElement(void* data, const xmlChar*, const xmlChar*, const xmlChar*) {
    Reader& reader = readerOf(data);
    reader.noteEvent();
    const std::string_view text = ZULXMLText_trim(reader.texts.back());
    if (!text.empty() && !ZULXMLObject_setText(reader.current, text)) {
        return reader.fail("out of memory");
    }
    reader.texts.pop_back();
    reader.current = reader.current->parent;
}

void onCharacters(void* data, const xmlChar* text, int length) {
    Reader& reader = readerOf(data);
    reader.noteEvent();
    if (!reader.texts.empty()) {
        reader.texts.back().append(chars(text), static_cast<std::size_t>(length));
    }
}

void onComment(void* data, const xmlChar*) {
    readerOf(data).noteEvent();
}

void refuseDeclaration(void* data) {
    readerOf(data).fail("a configuration document must not declare entities or attributes; write them out");
}
void onEntity(void* data, const xmlChar*, int, const xmlChar*, const xmlChar*, xmlChar*) {
    refuseDeclaration(data);
}
void onUnparsedEntity(void* data, const xmlChar*, const xmlChar*, const xmlChar*, const xmlChar*) {
    refuseDeclaration(data);
}
void onAttribute(void* data, const xmlChar*, const xmlChar*, int, int, const xmlChar*,
                 xmlEnumerationPtr values) {
    xmlFreeEnumeration(values);
    refuseDeclaration(data);
}

// An entity that only an unread external definition could declare is no more than a warning to the library.
void onError(void* data, xmlErrorPtr error) {
    if (error->level == XML_ERR_WARNING && error->code != XML_WAR_UNDECLARED_ENTITY) {
        return;
    }
    const std::string_view message = error->message != nullptr ? error->message : "not well-formed";
    Reader& reader = readerOf(data);
    reader.document.error.set(std::max(error->line, 1),
                              std::string(ZULXMLText_trim(message.substr(0, MESSAGE_MAX))));
    xmlStopParser(reader.context);
}

xmlSAXHandler handlers() {
    xmlSAXHandler events{};
    events.initialized = XML_SAX2_MAGIC;
    events.startElementNs = onStartElement;
    events.endElementNs = onEndElement;
    events.characters = onCharacters;
    events.ignorableWhitespace = onCharacters;
    events.cdataBlock = onCharacters;
    events.comment = onComment;
    events.entityDecl = onEntity;
    events.unparsedEntityDecl = onUnparsedEntity;
    events.attributeDecl = onAttribute;
    events.serror = onError;
    return events;
}

} // namespace

void ZULXMLSaxReader_read(ZULXMLDocument* document, const ZULXMLExtensionRegistry* registry, ZULXMLRead read,
                          void* source) {
    Reader reader{*document, registry, read, source};
    xmlSAXHandler events = handlers();
    xmlInitParser();
    reader.context =
        xmlCreateIOParserCtxt(&events, &reader, onRead, nullptr, &reader, XML_CHAR_ENCODING_NONE);
    if (reader.context == nullptr) {
        document->error.set(1, "out of memory");
        return;
    }
    xmlCtxtUseOptions(reader.context, XML_PARSE_NONET);
    xmlParseDocument(reader.context);
    if (reader.context->wellFormed == 0 || document->root == nullptr) {
        document->error.set(reader.line(), "the document is not well-formed");
    }
    xmlFreeDoc(reader.context->myDoc);
    reader.context->myDoc = nullptr;
    xmlFreeParserCtxt(reader.context);
    if (!document->error.text.empty()) {
        ZULXMLObject_delete(document->root);
        document->root = nullptr;
    }
}

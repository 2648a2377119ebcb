// The library builds its own tree; limits are checked before it grows.
#include "plan/document/xml.h"

#include "plan/document/text.h"

#include <libxml/SAX2.h>
#include <libxml/xmlsave.h>

#include <cstdint>

namespace zul::plan {

namespace {

constexpr std::string_view SCHEMA_INSTANCE = "http://www.w3.org/2001/XMLSchema-instance";

// clang-format off
constexpr xml::Rules RULES{
    .document               = {MAX_DOCUMENT_SIZE, ""}, // its size is known before
    .markup                 = {MAX_TAG, "a tag has more than % bytes; shorten it"},
    .limitsTagsOnly         = true,
    .declarationRefusal     = "declarations inside <!DOCTYPE ...> are not accepted; take out the part in [ ]",
    .refusesAllDeclarations = true,
    .messageMax             = std::string::npos, // all of them are shortened later
};
constexpr xml::Limit NODES{MAX_NODES, "there are more than % elements, attributes and comments; shorten the document"};
constexpr xml::Limit DEPTH{MAX_DEPTH, "elements stand more than % deep in each other; flatten the document"};
constexpr xml::Limit ATTRIBUTES{MAX_ATTRIBUTES, "an element has more than % attributes; take some out"};
// clang-format on

// What the library builds of its tree.
enum class Tree {
    NONE,    // nothing: what it would build is only counted
    CONTENT, // all but the blanks that lay out the elements
    WHOLE
};

class Reader : public xml::Guard {
public:
    Reader(std::string_view text, Tree tree, const std::stop_token& stop, xmlDict* names)
        : Guard(RULES, xml::textSource(text), stop), tree_(tree) {
        if (names != nullptr) {
            xmlDictFree(parser()->dict);
            parser()->dict = names;
            xmlDictReference(names);
        }
        xmlSAXHandler& events = *parser()->sax;
        events.startElementNs = startElement;
        events.endElementNs = count<xmlSAX2EndElementNs, 0>;
        events.characters = count<xmlSAX2Characters, 0>;
        events.ignorableWhitespace = events.characters; // the same: the library need not tell them apart
        if (tree == Tree::CONTENT) {
            events.ignorableWhitespace = leaveOut;
        }
        events.cdataBlock = count<xmlSAX2CDataBlock, 1>;
        events.comment = count<xmlSAX2Comment, 1>;
        events.processingInstruction = count<xmlSAX2ProcessingInstruction, 1>;
    }

    Refusal refusal() {
        const ZULXMLError error = takeError();
        if (error.text.empty()) {
            return {"the document cannot be read"};
        }
        std::string words = shortened(lineInWords(error.line) + error.text, MAX_FAILURE);
        while (words.ends_with(' ')) {
            words.pop_back();
        }
        return {.why = words, .line = error.line};
    }

private:
    // An event that adds so many nodes to the tree, by the library's own handler.
    template <auto handler, int nodes, class... Arguments>
    static void count(void* context, Arguments... arguments) {
        auto& reader = of<Reader>(context);
        if (reader.keepsNodes(nodes) && reader.tree_ != Tree::NONE) {
            handler(context, arguments...);
        }
    }

    // Blanks that the library takes for layout. After a comment and the like they may be part of a text.
    static void leaveOut(void* context, const xmlChar* blanks, int length) {
        auto& reader = of<Reader>(context);
        const xmlNode* before = reader.parser()->node->last;
        if (before == nullptr || before->type == XML_ELEMENT_NODE) {
            reader.noteEvent();
        } else {
            count<xmlSAX2Characters, 0>(context, blanks, length);
        }
    }

    static void startElement(void* context, const xmlChar* localname, const xmlChar* prefix,
                             const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                             int attributeCount, int defaultedCount, const xmlChar** attributes) {
        auto& reader = of<Reader>(context);
        const bool isAccepted = reader.keepsNodes(1 + attributeCount) &&
                                reader.keeps(DEPTH, static_cast<std::size_t>(reader.parser()->nameNr) + 1) &&
                                reader.keeps(ATTRIBUTES, static_cast<std::size_t>(namespaceCount) +
                                                             static_cast<std::size_t>(attributeCount)) &&
                                !reader.refusesNamespace(uri, namespaceCount, namespaces);
        if (!isAccepted || reader.tree_ == Tree::NONE) {
            return;
        }
        xmlSAX2StartElementNs(context, localname, prefix, uri, namespaceCount, namespaces, attributeCount,
                              defaultedCount, attributes);
        if (xmlNode* element = reader.parser()->node) {
            // The library's own line numbers end at 65535.
            element->psvi = reinterpret_cast<void*>(static_cast<std::intptr_t>(reader.line()));
        }
    }

    bool keepsNodes(int more) {
        noteEvent();
        nodes_ += static_cast<std::size_t>(more);
        return keeps(NODES, nodes_);
    }

    // Each namespace that the element declares comes as prefix and URI.
    bool refusesNamespace(const xmlChar* uri, int count, const xmlChar** namespaces) {
        bool declaresOthers = count > 0 && parser()->nameNr > 0;
        for (int i = 0; i < count; ++i) {
            declaresOthers = declaresOthers || toView(namespaces[2 * i + 1]) != SCHEMA_INSTANCE;
        }
        const bool isInNamespace = uri != nullptr || declaresOthers;
        if (isInNamespace) {
            protect([this] {
                refuse("the elements of a configuration are in no namespace; take out the xmlns attribute");
            });
        }
        return isInNamespace;
    }

    const Tree tree_;
    std::size_t nodes_ = 0; // elements, attributes, comments and the like
};

// The document, with as much of its tree as is wanted.
XmlDocument parse(std::string_view text, Tree tree, const std::stop_token& stop, xmlDict* names) {
    if (text.empty()) {
        throw Refusal{"the document is empty"};
    }
    if (text.size() > MAX_DOCUMENT_SIZE) {
        throw Refusal{"the document has " + std::to_string(text.size()) + " bytes; at most " +
                      std::to_string(MAX_DOCUMENT_SIZE) + " are accepted"};
    }
    Reader reader(text, tree, stop, names);
    XmlDocument document = reader.read();
    return document != nullptr ? std::move(document) : throw reader.refusal();
}

} // namespace

XmlDocument parseXml(std::string_view text, const std::stop_token& stop, xmlDict* names) {
    return parse(text, Tree::WHOLE, stop, names);
}

XmlDocument parseContent(std::string_view text, const std::stop_token& stop) {
    return parse(text, Tree::CONTENT, stop, nullptr);
}

void checkXml(std::string_view text, const std::stop_token& stop) {
    parse(text, Tree::NONE, stop, nullptr);
}

XmlDocument copyXml(xmlDoc* document) {
    XmlDocument copy(xmlCopyDoc(document, 0));
    // A dictionary of its own spares the copy an allocation for each name.
    if (copy != nullptr && (copy->dict = xmlDictCreate()) != nullptr) {
        copy->children = xmlDocCopyNodeList(copy.get(), document->children);
        for (xmlNode* node = copy->children; node != nullptr; node = node->next) {
            node->parent = reinterpret_cast<xmlNode*>(copy.get());
            copy->last = node;
        }
    }
    requireMemory(copy != nullptr && xmlDocGetRootElement(copy.get()) != nullptr);
    return copy;
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
    const std::unique_ptr<xmlBuffer, XmlDeleter> text(xmlBufferCreate());
    const int options = document->encoding == nullptr ? XML_SAVE_NO_DECL : 0;
    xmlSaveCtxt* writer = text != nullptr ? xmlSaveToBuffer(text.get(), "UTF-8", options) : nullptr;
    requireMemory(writer != nullptr && xmlSaveDoc(writer, document) >= 0 && xmlSaveClose(writer) >= 0);
    return std::string(toView(xmlBufferContent(text.get())));
}

} // namespace zul::plan

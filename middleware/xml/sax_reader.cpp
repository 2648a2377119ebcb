// The tree grows while libxml2 reports elements, and the limits are checked at each. The library's own tree
// stays empty.
#include "middleware/xml/sax_reader.h"

#include "middleware/xml/text.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace zul::xml {

namespace {

// clang-format off
constexpr Rules RULES{
    .document               = {ZUL_XML_DOCUMENT_MAX, "the document is longer than % bytes; split it or shorten it"},
    .markup                 = {ZUL_XML_MARKUP_MAX, "a tag, comment or CDATA section is longer than % bytes"},
    .limitsTagsOnly         = false,
    .declarationRefusal     = "a configuration document must not declare entities or attributes; write them out",
    .refusesAllDeclarations = false,
    .messageMax             = 256,
};
constexpr Limit DEPTH{ZUL_XML_DEPTH_MAX, "elements stand more than % levels inside each other"};
constexpr Limit ELEMENTS{ZUL_XML_ELEMENTS_MAX, "the document has more than % elements"};
constexpr Limit TAG{ZUL_XML_NAME_MAX, "an element name is longer than % characters"};
constexpr Limit FULL_NAMES{ZUL_XML_FULL_NAMES_MAX, "the names of nested elements are too long in all; shorten the outer ones"};
// clang-format on

const char* chars(const xmlChar* text) {
    return reinterpret_cast<const char*>(text);
}

std::string qualified(const xmlChar* prefix, const xmlChar* name) {
    return prefix != nullptr ? std::string(chars(prefix)) + ":" + chars(name) : std::string(chars(name));
}

class Reader : public Guard {
public:
    Reader(ZULXMLDocument& document, const ZULXMLExtensionRegistry* registry, Source source)
        : Guard(RULES, std::move(source)), document_(document), registry_(registry) {
        xmlSAXHandler& events = *parser()->sax;
        events.startElementNs = onStartElement;
        events.endElementNs = onEndElement;
        events.characters = onCharacters;
        events.ignorableWhitespace = onCharacters;
        events.cdataBlock = onCharacters;
        events.comment = [](void* context, const xmlChar*) {
            of<Reader>(context).noteEvent();
        };
        events.processingInstruction = nullptr;
        events.reference = nullptr;
        events.internalSubset = nullptr;
    }

private:
    static void onStartElement(void* context, const xmlChar* localName, const xmlChar* prefix, const xmlChar*,
                               int, const xmlChar**, int attributeCount, int, const xmlChar** attributes) {
        auto& reader = of<Reader>(context);
        reader.noteEvent();
        reader.protect(
            [&] { reader.startElement(qualified(prefix, localName), attributeCount, attributes); });
    }

    void startElement(const std::string& tag, int attributeCount, const xmlChar** attributes) {
        if (!keeps(DEPTH, texts_.size() + 1) || !keeps(ELEMENTS, ++elements_) || !keeps(TAG, tag.size())) {
            return;
        }
        // Per attribute: local name, prefix, URI, begin and end of the value.
        const auto count = static_cast<std::size_t>(attributeCount);
        std::vector<std::pair<std::string, std::string>> texts;
        std::vector<ZULXMLAttribute> borrowed;
        texts.reserve(count); // and none moves
        borrowed.reserve(count);
        const char* given = nullptr;
        for (std::size_t i = 0; i < count; ++i, attributes += 5) {
            const auto& [name, value] =
                texts.emplace_back(qualified(attributes[1], attributes[0]),
                                   std::string(chars(attributes[3]), chars(attributes[4])));
            borrowed.push_back({name.c_str(), value.c_str()});
            given = name == "name" ? value.c_str() : given;
        }
        const std::string name = ownName(tag, given);
        ZULXMLObject* object = name.empty() ? nullptr : createObject(tag, name, borrowed);
        if (object == nullptr) {
            return;
        }
        fullNames_ += std::string_view(object->fullName).size();
        if (keeps(FULL_NAMES, fullNames_)) {
            current_ = object;
            texts_.emplace_back();
        }
    }

    // The own name: what the attribute says, if no sibling has it; otherwise one is made up. Empty, after
    // refusing, when the attribute cannot be used.
    std::string ownName(const std::string& tag, const char* given) {
        if (given != nullptr && (*given == '\0' || std::string_view(given).size() > ZUL_XML_NAME_MAX)) {
            refuse("the attribute name of <" + tag + "> must have 1 to " + std::to_string(ZUL_XML_NAME_MAX) +
                   " characters");
            return {};
        }
        std::string name = given != nullptr ? given : tag;
        const bool isFree =
            current_ == nullptr || (given != nullptr && ZULXMLObject_findChild(current_, name) == nullptr);
        if (!isFree) {
            name += "#" + std::to_string(current_->children.count + 1);
            // No two elements try the same names here, so each given name is met once at most.
            while (ZULXMLObject_findChild(current_, name) != nullptr) {
                name += '#';
            }
        }
        return name;
    }

    ZULXMLObject* createObject(const std::string& tag, const std::string& name,
                               std::span<const ZULXMLAttribute> attributes) {
        const ZULXMLExtensionClass* extensionClass =
            registry_ != nullptr ? ZULXMLExtensionRegistry_find(registry_, tag.c_str()) : nullptr;
        ZULXMLObject* object =
            extensionClass != nullptr
                ? extensionClass->create(extensionClass, current_, name.c_str(), attributes)
                : ZULXMLObject_new(tag.c_str(), name.c_str(), current_, attributes);
        if (object == nullptr) {
            throw std::bad_alloc();
        }
        object->line = line();
        object->context = &document_;
        if (current_ == nullptr) {
            return document_.root = object;
        }
        const ZULXMLInsertion insertion = ZULXMLObject_insertChild(current_, object);
        if (insertion == ZUL_XML_INSERTED) {
            return object;
        }
        ZULXMLObject_delete(object);
        if (insertion == ZUL_XML_OUT_OF_MEMORY) {
            throw std::bad_alloc();
        }
        refuse("the name '" + name + "' is used twice");
        return nullptr;
    }

    static void onEndElement(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
        auto& reader = of<Reader>(context);
        reader.noteEvent();
        reader.protect([&reader] {
            const std::string_view text = trimmed(reader.texts_.back());
            if (!text.empty() && !ZULXMLObject_setText(reader.current_, text)) {
                throw std::bad_alloc();
            }
            reader.texts_.pop_back();
            reader.current_ = reader.current_->parent;
        });
    }

    static void onCharacters(void* context, const xmlChar* text, int length) {
        auto& reader = of<Reader>(context);
        reader.noteEvent();
        if (!reader.texts_.empty()) {
            reader.protect(
                [&] { reader.texts_.back().append(chars(text), static_cast<std::size_t>(length)); });
        }
    }

    ZULXMLDocument& document_;
    const ZULXMLExtensionRegistry* registry_;
    ZULXMLObject* current_ = nullptr; // the innermost open element
    std::vector<std::string> texts_;  // of the open elements
    std::size_t elements_ = 0;
    std::size_t fullNames_ = 0; // bytes
};

} // namespace

void readTree(ZULXMLDocument& document, const ZULXMLExtensionRegistry* registry, Source source) {
    Reader reader(document, registry, std::move(source));
    const bool isRead = reader.read() != nullptr && document.root != nullptr;
    if (!isRead) {
        ZULXMLObject_delete(std::exchange(document.root, nullptr));
        document.error = reader.takeError();
        document.error.text = trimmed(document.error.text);
        document.error.set(std::max(1, reader.line()), "the document is not well-formed");
    }
}

} // namespace zul::xml

// Sources of bytes (text, file) for the reader of events, and what becomes of its error: kept or logged.
// Memory that runs out says nothing of the document, so then there is none.
#include "middleware/xml/parser.h"

#include "middleware/base/log.h"
#include "middleware/xml/file.h"
#include "middleware/xml/sax_reader.h"

#include <new>
#include <system_error>

namespace {

const ZULXMLExtensionRegistry* registryOf(const ZULXMLParser* parser) {
    return parser != nullptr ? &parser->registry : nullptr;
}

// A document that `read` has filled; null when there is no memory for one.
template <class Read>
ZULXMLDocument* newDocument(const Read& read) {
    try {
        std::unique_ptr<ZULXMLDocument, void (*)(ZULXMLDocument*)> document(new ZULXMLDocument,
                                                                            ZULXMLDocument_delete);
        read(*document);
        return document.release();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

ZULXMLDocument* logged(ZULXMLDocument* document, const char* context) {
    if (document == nullptr || document->root == nullptr) {
        const std::string_view reason =
            document != nullptr ? std::string_view(document->error.text) : "out of memory";
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, ZUL_LOG_XML_PARSE_FAILURE_ds,
                          document != nullptr ? document->error.line : 0, reason);
    }
    return document;
}

} // namespace

bool ZULXMLParser_initialize(ZULXMLParser* self) {
    if (!ZULXMLExtensionRegistry_initialize(&self->registry)) {
        ZULXMLParser_finalize(self);
        return false;
    }
    return true;
}

void ZULXMLParser_finalize(ZULXMLParser* self) {
    ZULXMLExtensionRegistry_finalize(&self->registry);
}

ZULXMLDocument* ZULXMLParser_readText(const ZULXMLParser* self, std::string_view text) {
    return newDocument([self, text](ZULXMLDocument& document) {
        zul::xml::readTree(document, registryOf(self), zul::xml::textSource(text));
    });
}

ZULXMLDocument* ZULXMLParser_readFile(const ZULXMLParser* self, const char* path) {
    return newDocument([self, path](ZULXMLDocument& document) {
        document.path = path;
        const zul::xml::File file(path);
        if (file.isReadable()) {
            zul::xml::readTree(document, registryOf(self),
                               [&file](char* buffer, std::size_t size) { return file.read(buffer, size); });
        } else if (file.failure() != 0) {
            document.error.set(0, "cannot open '" + document.path +
                                      "': " + std::system_category().message(file.failure()));
        } else {
            document.error.set(0, "'" + document.path + "' is not a file");
        }
    });
}

ZULXMLDocument* ZULXMLParser_parseText(const ZULXMLParser* self, std::string_view text) {
    return logged(ZULXMLParser_readText(self, text), __func__);
}

ZULXMLDocument* ZULXMLParser_parseFile(const ZULXMLParser* self, const char* path) {
    return logged(ZULXMLParser_readFile(self, path), __func__);
}

void ZULXMLDocument_delete(ZULXMLDocument* self) {
    if (self != nullptr) {
        ZULXMLObject_delete(self->root);
        delete self;
    }
}

void ZULXMLParser_freeSubtree(ZULXMLParser*, ZULXMLObject* object) {
    ZULXMLObject_delete(object);
}

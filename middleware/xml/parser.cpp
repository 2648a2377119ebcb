// Sources of bytes (text, file) for the reader of events, and what becomes of its error: kept or logged.
#include "middleware/xml/parser.h"

#include "middleware/base/log.h"
#include "middleware/xml/sax_reader.h"

#include <cerrno>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

int readFromText(void* source, char* buffer, int size) {
    auto& rest = *static_cast<std::string_view*>(source);
    const std::size_t count = rest.copy(buffer, static_cast<std::size_t>(size));
    rest.remove_prefix(count);
    return static_cast<int>(count);
}

int readFromFile(void* source, char* buffer, int size) {
    ssize_t got;
    do {
        got = ::read(*static_cast<int*>(source), buffer, static_cast<std::size_t>(size));
    } while (got < 0 && errno == EINTR);
    return static_cast<int>(got);
}

const ZULXMLExtensionRegistry* registryOf(const ZULXMLParser* parser) {
    return parser != nullptr ? &parser->registry : nullptr;
}

ZULXMLDocument* logged(ZULXMLDocument* document, const char* context) {
    if (document != nullptr && document->root == nullptr) {
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, ZUL_LOG_XML_PARSE_FAILURE_ds, document->error.line,
                          std::string_view(document->error.text));
    }
    return document;
}

} // namespace

bool ZULXMLParser_initialize(ZULXMLParser* self) {
    ZULXMLExtensionRegistry_initialize(&self->registry);
    if (!ZULXMLExtensionRegistry_addBuiltin(&self->registry)) {
        ZULXMLParser_finalize(self);
        return false;
    }
    return true;
}

void ZULXMLParser_finalize(ZULXMLParser* self) {
    ZULXMLExtensionRegistry_finalize(&self->registry);
}

ZULXMLDocument* ZULXMLParser_readText(const ZULXMLParser* self, std::string_view text) {
    auto* document = new (std::nothrow) ZULXMLDocument;
    if (document != nullptr) {
        ZULXMLSaxReader_read(document, registryOf(self), readFromText, &text);
    }
    return document;
}

ZULXMLDocument* ZULXMLParser_readFile(const ZULXMLParser* self, const char* path) {
    auto* document = new (std::nothrow) ZULXMLDocument;
    if (document == nullptr) {
        return nullptr;
    }
    document->path = path;
    // Not blocking, so that a pipe cannot hold the program up before it is refused.
    int file = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat status {};
    if (file < 0) {
        document->error.set(0,
                            "cannot open '" + document->path + "': " + std::system_category().message(errno));
        return document;
    }
    if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
        document->error.set(0, "'" + document->path + "' is not a file");
    } else {
        ZULXMLSaxReader_read(document, registryOf(self), readFromFile, &file);
    }
    ::close(file);
    return document;
}

ZULXMLDocument* ZULXMLParser_parseText(const ZULXMLParser* self, std::string_view text) {
    return logged(ZULXMLParser_readText(self, text), __func__);
}

ZULXMLDocument* ZULXMLParser_parseFile(const ZULXMLParser* self, const char* path) {
    return logged(ZULXMLParser_readFile(self, path), __func__);
}

void ZULXMLParser_freeSubtree(ZULXMLParser*, ZULXMLObject* object) {
    ZULXMLObject_delete(object);
}

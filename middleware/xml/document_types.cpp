#include "middleware/xml/document_types.h"

#include "middleware/xml/type_reader.h"

#include <new>

void ZULXMLTypeSetDeleter::operator()(ZULXMLTypeSet* types) const {
    delete types;
}

ZULXMLTypeDefinition ZULXMLDocument_findType(ZULXMLDocument* self, std::string_view name) {
    if (self->root == nullptr) {
        return {};
    }
    self->error = {};
    if (self->types == nullptr) {
        self->types.reset(new (std::nothrow) ZULXMLTypeSet);
        if (self->types == nullptr) {
            self->error.set(0, "out of memory");
            return {};
        }
        ZULXMLError first; // of whatever type
        ZULXMLTypeReader_read(self, self->types.get(), &first);
    }
    const auto found = self->types->byName.find(name);
    if (found == self->types->byName.end()) {
        self->error = self->types->missing;
        return {.tag = {},
                .line = self->error.text.empty() ? self->root->line : self->error.line,
                .code = nullptr};
    }
    const ZULXMLTypeEntry& entry = found->second;
    if (!entry.reason.empty()) {
        self->error.set(entry.line, entry.reason);
    }
    return {.tag = entry.tag, .line = entry.line, .code = entry.code};
}

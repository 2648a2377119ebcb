// All types are read at once. When memory runs out meanwhile, none is kept, and the next call tries again.
#include "middleware/xml/document_types.h"

#include "middleware/xml/type_reader.h"

#include <new>

namespace {

ZULXMLTypeDefinition definitionOf(ZULXMLDocument* self, std::string_view name) {
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

} // namespace

ZULXMLTypeDefinition ZULXMLDocument_findType(ZULXMLDocument* self, std::string_view name) {
    if (self->root == nullptr) {
        return {};
    }
    self->error = {};
    try {
        if (self->types == nullptr) {
            const auto types = std::make_shared<ZULXMLTypeSet>();
            ZULXMLError first; // of whatever type
            zul::xml::TypeReader(*types, first).read(*self);
            self->types = types;
        }
        return definitionOf(self, name);
    } catch (const std::bad_alloc&) {
        self->error = {.line = 0, .text = "out of memory"};
        return {};
    }
}

#include "middleware/xml/document_types.h"

#include "middleware/log.h"
#include "middleware/xml/type_reader.h"

#include <cstring>

namespace {

const ZULXMLObject* findBelow(const ZULXMLObject& parent, std::string_view name) {
    const std::size_t scopeEnd = name.find("::");
    const std::string_view head = name.substr(0, scopeEnd);
    for (const ZULXMLObject* child = parent.children.first; child != nullptr; child = child->next) {
        if (xml_types::attribute(*child, "name") != head) {
            continue;
        }
        const bool isModule = std::strcmp(child->tagName, "module") == 0;
        const ZULXMLObject* found = child;
        if (scopeEnd != std::string_view::npos) {
            found = isModule ? findBelow(*child, name.substr(scopeEnd + 2)) : nullptr;
        } else if (std::strcmp(child->tagName, "forward_dcl") == 0) {
            found = nullptr;
        }
        if (found != nullptr) {
            return found;
        }
    }
    return nullptr;
}

} // namespace

void ZULXMLTypeSetDeleter::operator()(ZULXMLTypeSet* types) const {
    delete types;
}

// A module may be opened again, so the elements of one name are tried in turn.
const ZULXMLObject* ZULXMLDocument_findDefinition(const ZULXMLDocument* self, std::string_view name) {
    const ZULXMLObject* section = self->root != nullptr ? self->root->children.first : nullptr;
    for (; section != nullptr; section = section->next) {
        if (std::strcmp(section->tagName, "types") == 0) {
            const ZULXMLObject* found = findBelow(*section, name);
            if (found != nullptr) {
                return found;
            }
        }
    }
    return nullptr;
}

const DDS_TypeCode* ZULXMLDocument_getTypeCode(ZULXMLDocument* self, std::string_view name) {
    if (self->types == nullptr && self->root != nullptr) {
        std::unique_ptr<ZULXMLTypeSet, ZULXMLTypeSetDeleter> types(new (std::nothrow) ZULXMLTypeSet);
        self->error = {};
        if (types == nullptr || !ZULXMLTypeReader_read(self, types.get(), &self->error)) {
            self->error.set(0, "out of memory");
            ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, __func__, ZUL_LOG_XML_PARSE_FAILURE_ds, self->error.line,
                              std::string_view(self->error.text));
            return nullptr;
        }
        self->types = std::move(types);
    }
    if (self->types == nullptr) {
        return nullptr;
    }
    const auto found = self->types->byName.find(name);
    return found != self->types->byName.end() ? found->second : nullptr;
}

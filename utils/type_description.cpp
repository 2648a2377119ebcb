// The document finds the type; here it is told apart from what else a name may mean.
#include "utils/type_description.h"

#include "product/log_masks.h"
#include "utils/naming.h"

#include <algorithm>

namespace {

constexpr const char* CONTEXT = "ROUTERUtils_getTypeCodeFromXML";
constexpr std::string_view TYPE_ELEMENTS[] = {"struct", "union", "enum", "valuetype", "sparse_valuetype"};

const DDS_TypeCode* refuse(std::int32_t line, const char* text) {
    ROUTERLog_error(ROUTER_SUBMODULE_UTILS, CONTEXT, ZUL_LOG_XML_PARSE_FAILURE_ds, line, text);
    return nullptr;
}

} // namespace

const DDS_TypeCode* ROUTERUtils_getTypeCodeFromXML(ZULXMLDocument* document, const char* typeName, int) {
    if (document == nullptr || document->root == nullptr) {
        return refuse(document != nullptr ? document->error.line : 0, "Error getting DOM");
    }
    const char* name = ROUTERUtils_removeScopeChars(typeName);
    const ZULXMLTypeDefinition definition = ZULXMLDocument_findType(document, name != nullptr ? name : "");
    if (std::ranges::find(TYPE_ELEMENTS, definition.tag) == std::end(TYPE_ELEMENTS)) {
        return refuse(definition.line, "This is not a type definition");
    }
    return definition.code != nullptr ? definition.code : refuse(definition.line, "Bad type definition");
}

const DDS_TypeCode* ROUTERUtils_getTypeCodeFromXMLDom(ZULXMLDocument* document, const char* typeName) {
    return ROUTERUtils_getTypeCodeFromXML(document, typeName, 0);
}

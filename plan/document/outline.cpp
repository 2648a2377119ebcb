// What a router runs is shown as it is, so nothing is held against the definition here.
#include "plan/document/outline.h"

#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"
#include "product/product_info.h"

namespace zul::plan {

namespace {

// An entity and those inside it. Levels only deepen, so this ends after a few.
void add(std::vector<OutlineEntry>& entries, const xmlNode* entity, EntityLevel level,
         const std::string& path) {
    entries.push_back({.level = level,
                       .tag = std::string(tagOf(entity)),
                       .name = nameOf(entity),
                       .path = path,
                       .isEnabled = stateOf(entity).enabled});
    std::size_t last = 0;
    for (const xmlNode* child : elementsIn(entity)) {
        if (const auto inner = levelOf(child); inner && *inner > level) {
            last = entries.size();
            std::string inside = path.empty() ? "" : path + std::string(PATH_SEPARATOR);
            add(entries, child, *inner, inside + nameOf(child));
        }
    }
    if (last > 0) {
        entries[last].isLast = true;
    }
}

} // namespace

std::vector<OutlineEntry> outline(std::string_view xml) {
    const XmlDocument document = parseXml(xml, {});
    std::vector<OutlineEntry> entries;
    for (const xmlNode* node : elementsIn(xmlDocGetRootElement(document.get()))) {
        if (levelOf(node) == EntityLevel::SERVICE) {
            add(entries, node, EntityLevel::SERVICE, "");
        }
    }
    if (entries.empty()) {
        throw Refusal{std::string("the document has no ") + ROUTER_getProductInfo()->xmlTagName};
    }
    return entries;
}

} // namespace zul::plan

#include "practice_router/entity.h"

#include "practice_router/xml_nodes.h"
#include "product/product_info.h"

namespace {

struct EntityTag {
    std::string_view tag;
    PracticeEntityLevel level;
};
constexpr EntityTag ENTITY_TAGS[] = {
    {"domain_route", PracticeEntityLevel::DOMAIN_ROUTE}, {"session", PracticeEntityLevel::SESSION},
    {"polling_session", PracticeEntityLevel::SESSION},   {"topic_route", PracticeEntityLevel::ROUTE},
    {"auto_topic_route", PracticeEntityLevel::ROUTE},    {"route", PracticeEntityLevel::ROUTE},
    {"auto_route", PracticeEntityLevel::ROUTE},
};

xmlNode* walk(xmlNode* entity, std::string_view path) {
    while (entity != nullptr && !path.empty()) {
        const std::size_t end = path.find(PRACTICE_PATH_SEPARATOR);
        entity = PracticeEntity_findChild(entity, path.substr(0, end));
        path.remove_prefix(end == std::string_view::npos ? path.size()
                                                         : end + PRACTICE_PATH_SEPARATOR.size());
    }
    return entity;
}

} // namespace

std::optional<PracticeEntityLevel> PracticeEntity_level(std::string_view tag) {
    if (tag == ROUTER_getProductInfo()->xmlTagName) {
        return PracticeEntityLevel::SERVICE;
    }
    for (const EntityTag& entity : ENTITY_TAGS) {
        if (entity.tag == tag) {
            return entity.level;
        }
    }
    return std::nullopt;
}

std::string PracticeEntity_describeLevel(PracticeEntityLevel level) {
    if (level == PracticeEntityLevel::SERVICE) {
        return "the service";
    }
    std::string text;
    for (const EntityTag& entity : ENTITY_TAGS) {
        if (entity.level == level) {
            text.append(text.empty() ? "a " : " or ").append(entity.tag);
        }
    }
    return text;
}

xmlNode* PracticeEntity_findService(const xmlDoc* document, std::string_view name) {
    const xmlNode* root = xmlDocGetRootElement(document);
    for (xmlNode* node = root != nullptr ? PracticeNode_firstChild(root) : nullptr; node != nullptr;
         node = PracticeNode_next(node)) {
        if (PracticeNode_tag(node) == ROUTER_getProductInfo()->xmlTagName &&
            PracticeNode_name(node) == name) {
            return node;
        }
    }
    return nullptr;
}

xmlNode* PracticeEntity_firstService(const xmlDoc* document) {
    const xmlNode* root = xmlDocGetRootElement(document);
    xmlNode* node = root != nullptr ? PracticeNode_firstChild(root) : nullptr;
    while (node != nullptr && PracticeNode_tag(node) != ROUTER_getProductInfo()->xmlTagName) {
        node = PracticeNode_next(node);
    }
    return node;
}

xmlNode* PracticeEntity_findChild(const xmlNode* parent, std::string_view name) {
    for (xmlNode* node = PracticeNode_firstChild(parent); node != nullptr; node = PracticeNode_next(node)) {
        if (PracticeEntity_level(PracticeNode_tag(node)) && PracticeNode_name(node) == name) {
            return node;
        }
    }
    return nullptr;
}

xmlNode* PracticeEntity_find(xmlNode* service, std::string_view path) {
    if (xmlNode* found = walk(service, path)) {
        return found;
    }
    const std::string own = PracticeNode_name(service);
    if (path == own) {
        return service;
    }
    const std::string prefix = own + std::string(PRACTICE_PATH_SEPARATOR);
    return path.substr(0, prefix.size()) == prefix && path.size() > prefix.size()
               ? walk(service, path.substr(prefix.size()))
               : nullptr;
}

std::string PracticeEntity_path(const xmlNode* entity) {
    std::string path;
    while (PracticeEntity_level(PracticeNode_tag(entity)) != PracticeEntityLevel::SERVICE) {
        if (!path.empty()) {
            path.insert(0, PRACTICE_PATH_SEPARATOR);
        }
        path.insert(0, PracticeNode_name(entity));
        entity = entity->parent;
    }
    return path;
}

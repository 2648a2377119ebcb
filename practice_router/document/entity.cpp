#include "practice_router/document/entity.h"

#include "practice_router/document/xml_nodes.h"
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

// What a node's private pointer points to.
constexpr char PAUSED = 'p';
constexpr char DISABLED = 'd'; // only for the service, which has no attribute that says so

constexpr const char* ENABLED = "enabled";

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

PracticeEntityState PracticeEntity_state(const xmlNode* entity) {
    const bool enabled = entity->_private != &DISABLED && PracticeNode_attribute(entity, ENABLED) != "false";
    return {.enabled = enabled, .paused = enabled && entity->_private == &PAUSED};
}

bool PracticeEntity_setState(xmlNode* entity, PracticeEntityState state) {
    entity->_private = state.paused ? const_cast<char*>(&PAUSED) : nullptr;
    if (PracticeEntity_level(PracticeNode_tag(entity)) == PracticeEntityLevel::SERVICE) {
        if (!state.enabled) {
            entity->_private = const_cast<char*>(&DISABLED);
        }
        return true;
    }
    const auto* name = reinterpret_cast<const xmlChar*>(ENABLED);
    if (state.enabled) {
        // Enabled is the default: an entity that was disabled and enabled again reads as it did.
        xmlAttr* attribute = PracticeEntity_state(entity).enabled ? nullptr : xmlHasProp(entity, name);
        return attribute == nullptr || xmlRemoveProp(attribute) == 0;
    }
    return xmlSetProp(entity, name, reinterpret_cast<const xmlChar*>("false")) != nullptr;
}

void PracticeEntity_carryMarks(const xmlNode* from, xmlNode* to) {
    // What an update has disabled is no longer paused.
    const bool isEnded = from->_private == &PAUSED && !PracticeEntity_state(from).paused;
    to->_private = isEnded ? nullptr : from->_private;
    xmlNode* copy = PracticeNode_firstChild(to);
    for (const xmlNode* child = PracticeNode_firstChild(from); child != nullptr && copy != nullptr;
         child = PracticeNode_next(child)) {
        PracticeEntity_carryMarks(child, copy);
        copy = PracticeNode_next(copy);
    }
}

// The levels of elements, the walk along a path, and the state of one entity.
#include "plan/document/entity.h"

#include "plan/document/xml_nodes.h"
#include "product/product_info.h"

#include <algorithm>

namespace zul::plan {

namespace {

// What a node's private pointer points to.
constexpr char PAUSED = 'p';
constexpr char DISABLED = 'd'; // only for the service, which has no attribute that says so

constexpr const char* ENABLED = "enabled";

xmlNode* walk(xmlNode* entity, std::string_view path) {
    while (entity != nullptr && !path.empty()) {
        const std::size_t end = path.find(PATH_SEPARATOR);
        entity = findChild(entity, path.substr(0, end));
        path.remove_prefix(end == std::string_view::npos ? path.size() : end + PATH_SEPARATOR.size());
    }
    return entity;
}

} // namespace

std::optional<EntityLevel> levelOf(const xmlNode* element) {
    const std::string_view tag = tagOf(element);
    if (tag == ROUTER_getProductInfo()->xmlTagName) {
        return EntityLevel::SERVICE;
    }
    const auto* kind = std::ranges::find(product::ENTITY_KINDS, tag, &product::EntityKind::tag);
    return kind != std::end(product::ENTITY_KINDS) ? std::optional(kind->level) : std::nullopt;
}

std::string describeLevel(EntityLevel level) {
    if (level == EntityLevel::SERVICE) {
        return "the service";
    }
    std::string text;
    for (const auto& entity : product::ENTITY_KINDS) {
        if (entity.level == level) {
            text.append(text.empty() ? "a " : " or ").append(entity.tag);
        }
    }
    return text;
}

xmlNode* findService(const xmlDoc* document, std::string_view name) {
    for (xmlNode* node : elementsIn(xmlDocGetRootElement(document))) {
        if (levelOf(node) == EntityLevel::SERVICE && (name.empty() || nameOf(node) == name)) {
            return node;
        }
    }
    return nullptr;
}

xmlNode* findChild(const xmlNode* parent, std::string_view name) {
    for (xmlNode* node : elementsIn(parent)) {
        if (levelOf(node) && nameOf(node) == name) {
            return node;
        }
    }
    return nullptr;
}

xmlNode* findEntity(xmlNode* service, std::string_view path) {
    if (xmlNode* found = walk(service, path)) {
        return found;
    }
    const std::string own = nameOf(service);
    if (path == own) {
        return service;
    }
    const std::string prefix = own + std::string(PATH_SEPARATOR);
    return path.starts_with(prefix) && path.size() > prefix.size() ? walk(service, path.substr(prefix.size()))
                                                                   : nullptr;
}

std::string pathOf(const xmlNode* entity) {
    std::string path;
    while (levelOf(entity) != EntityLevel::SERVICE) {
        if (!path.empty()) {
            path.insert(0, PATH_SEPARATOR);
        }
        path.insert(0, nameOf(entity));
        entity = entity->parent;
    }
    return path;
}

EntityState stateOf(const xmlNode* entity) {
    const bool enabled = entity->_private != &DISABLED && attributeOf(entity, ENABLED) != "false";
    return {.enabled = enabled, .paused = enabled && entity->_private == &PAUSED};
}

void setState(xmlNode* entity, EntityState state) {
    entity->_private = state.paused ? const_cast<char*>(&PAUSED) : nullptr;
    if (levelOf(entity) == EntityLevel::SERVICE) {
        if (!state.enabled) {
            entity->_private = const_cast<char*>(&DISABLED);
        }
    } else if (!state.enabled) {
        requireMemory(xmlSetProp(entity, toXml(ENABLED), toXml("false")) != nullptr);
    } else if (!stateOf(entity).enabled) {
        // Enabled is the default: an entity that was disabled and enabled again reads as it did.
        xmlRemoveProp(xmlHasProp(entity, toXml(ENABLED)));
    }
}

void carryMarks(const xmlNode* from, xmlNode* to) {
    // What an update has disabled is no longer paused.
    const bool isEnded = from->_private == &PAUSED && !stateOf(from).paused;
    to->_private = isEnded ? nullptr : from->_private;
    xmlNode* copy = firstChild(to);
    for (const xmlNode* child = firstChild(from); child != nullptr && copy != nullptr;
         child = nextElement(child)) {
        carryMarks(child, copy);
        copy = nextElement(copy);
    }
}

} // namespace zul::plan

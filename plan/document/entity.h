// Entities: the elements of a configuration that commands act on, addressed from the service element by the
// path of their name attributes ("DomainRoute::Session::Route"). Nodes are borrowed from their document.
#pragma once

#include "product/vocabulary.h"

#include <libxml/tree.h>

#include <optional>
#include <string>
#include <string_view>

namespace zul::plan {

using product::EntityLevel; // the parent of an entity is one level above

constexpr std::string_view PATH_SEPARATOR = "::";
constexpr std::size_t MAX_ENTITY_NAME = 254; // characters

// The level of an element; nothing for one that is no entity.
std::optional<EntityLevel> levelOf(const xmlNode* element);
// "a session or polling_session": the tags of a level, for messages.
std::string describeLevel(EntityLevel level);

// The service element of that name in a document, or the first when none is named; null when there is none.
xmlNode* findService(const xmlDoc* document, std::string_view name = {});

// The entity directly inside `parent` with that name; null when there is none.
xmlNode* findChild(const xmlNode* parent, std::string_view name);
// The entity at a path, or null. A path may begin with the service's name; an empty one is the service.
xmlNode* findEntity(xmlNode* service, std::string_view path);
// The path of an entity, empty for the service.
std::string pathOf(const xmlNode* entity);

// What commands switch. It belongs to the element: the enabled attribute, where the definition has one, and
// for the rest a mark that only the tree in memory bears.
struct EntityState {
    bool enabled;
    bool paused; // only while enabled
};
EntityState stateOf(const xmlNode* entity);
void setState(xmlNode* entity, EntityState state);
// Gives the marks of all entities in `from` to their counterparts in `to`, a copy of it.
void carryMarks(const xmlNode* from, xmlNode* to);

} // namespace zul::plan

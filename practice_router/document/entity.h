// Entities: the elements of a configuration that commands act on, addressed from the service element by the
// path of their name attributes ("DomainRoute::Session::Route"). Nodes are borrowed from their document.
#pragma once

#include <libxml/tree.h>

#include <optional>
#include <string>
#include <string_view>

// How deep an entity stands; its parent stands one level above.
enum class PracticeEntityLevel { SERVICE, DOMAIN_ROUTE, SESSION, ROUTE };

constexpr std::string_view PRACTICE_PATH_SEPARATOR = "::";
constexpr std::size_t PRACTICE_ENTITY_NAME_MAX = 254; // characters

// The level of an element by its tag; nothing for an element that is no entity.
std::optional<PracticeEntityLevel> PracticeEntity_level(std::string_view tag);
// "a session or polling_session": the tags of a level, for messages.
std::string PracticeEntity_describeLevel(PracticeEntityLevel level);

// The service element of that name in a document, or the first of all; null when there is none.
xmlNode* PracticeEntity_findService(const xmlDoc* document, std::string_view name);
xmlNode* PracticeEntity_firstService(const xmlDoc* document);

// The entity directly inside `parent` with that name; null when there is none.
xmlNode* PracticeEntity_findChild(const xmlNode* parent, std::string_view name);
// The entity at a path. The service's own name may stand in front; an empty path is the service itself.
xmlNode* PracticeEntity_find(xmlNode* service, std::string_view path);
// The path of an entity, empty for the service.
std::string PracticeEntity_path(const xmlNode* entity);

// What commands switch. It belongs to the element: the enabled attribute, where the definition has one, and
// for the rest a mark that only the tree in memory bears.
struct PracticeEntityState {
    bool enabled;
    bool paused; // only while enabled
};
PracticeEntityState PracticeEntity_state(const xmlNode* entity);
// False when memory is exhausted.
bool PracticeEntity_setState(xmlNode* entity, PracticeEntityState state);
// Gives the marks of all entities in `from` to their counterparts in `to`, a copy of it.
void PracticeEntity_carryMarks(const xmlNode* from, xmlNode* to);

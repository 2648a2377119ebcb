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

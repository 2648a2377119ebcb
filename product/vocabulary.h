// The words that the shell and the routers share: the entities of a configuration document, and the
// beginnings of an XML URL.
#pragma once

#include <string_view>

namespace zul::product {

// Each level is an element inside one of the level before.
enum class EntityLevel { SERVICE, DOMAIN_ROUTE, SESSION, ROUTE };

// The service's own tag is the product's: see product_info.h.
struct EntityKind {
    std::string_view tag; // of its element in a document
    EntityLevel level;
    bool isKeyword = false; // the shell's create command knows it
};

// clang-format off
inline constexpr EntityKind ENTITY_KINDS[] = {
    {.tag = "domain_route",     .level = EntityLevel::DOMAIN_ROUTE, .isKeyword = true},
    {.tag = "session",          .level = EntityLevel::SESSION,      .isKeyword = true},
    {.tag = "polling_session",  .level = EntityLevel::SESSION},
    {.tag = "topic_route",      .level = EntityLevel::ROUTE,        .isKeyword = true},
    {.tag = "auto_topic_route", .level = EntityLevel::ROUTE},
    {.tag = "route",            .level = EntityLevel::ROUTE},
    {.tag = "auto_route",       .level = EntityLevel::ROUTE,        .isKeyword = true},
};
// clang-format on

inline constexpr std::string_view INLINE_SCHEME = "str://"; // then XML in double quotes
inline constexpr std::string_view FILE_SCHEME = "file://";  // then a path

} // namespace zul::product

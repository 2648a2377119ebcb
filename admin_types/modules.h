// The two administration modules: their enumerations, and what is particular to each. Everything else about
// the administration types is described once, for both, in records.h and descriptions.h.
#pragma once

#include "middleware/base/basic_types.h"

#include <algorithm>
#include <cstdint>
#include <span>

// Enumerators as (name, value) pairs. No command has the value 0, so that a record of zeroes holds no
// valid command.
#define ZUL_ADMINISTRATION_COMMAND_KINDS(X)                                                                  \
    X(LOAD, 1)                                                                                               \
    X(UNLOAD, 2)                                                                                             \
    X(INSERT, 3)                                                                                             \
    X(UPDATE, 4)                                                                                             \
    X(PAUSE, 5)                                                                                              \
    X(RESUME, 6)                                                                                             \
    X(ENABLE, 7)                                                                                             \
    X(DISABLE, 8)                                                                                            \
    X(ANNOUNCE, 9)                                                                                           \
    X(CREATE, 10)                                                                                            \
    X(DELETE, 11)                                                                                            \
    X(SAVE, 12)                                                                                              \
    X(GET, 13)                                                                                               \
    X(ADD_PEER, 14)

#define ZUL_ADMINISTRATION_RESPONSE_KINDS(X)                                                                 \
    X(OK, 0)                                                                                                 \
    X(ANNOUNCEMENT, 1)                                                                                       \
    X(ERROR, 2)                                                                                              \
    X(ENTITY_NOT_FOUND, 3)

// A value of these types may be any 32-bit number: decoding refuses an unknown one, encoding does not look.
enum ZUL_RoutingService_Administration_CommandKind : DDS_Long {
#define X(name, value) ZUL_ROUTING_SERVICE_COMMAND_##name = value,
    ZUL_ADMINISTRATION_COMMAND_KINDS(X)
#undef X
};
enum ZUL_RoutingService_Administration_CommandResponseKind : DDS_Long {
#define X(name, value) ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_##name = value,
    ZUL_ADMINISTRATION_RESPONSE_KINDS(X)
#undef X
};
enum ZUL_FederationService_Administration_CommandKind : DDS_Long {
#define X(name, value) ZUL_FEDERATION_SERVICE_COMMAND_##name = value,
    ZUL_ADMINISTRATION_COMMAND_KINDS(X)
#undef X
};
enum ZUL_FederationService_Administration_CommandResponseKind : DDS_Long {
#define X(name, value) ZUL_FEDERATION_SERVICE_COMMAND_RESPONSE_##name = value,
    ZUL_ADMINISTRATION_RESPONSE_KINDS(X)
#undef X
};

namespace admin {

struct KindName {
    DDS_Long kind;
    const char* name;
};
#define X(name, value) {value, #name},
inline constexpr KindName COMMAND_NAMES[] = {ZUL_ADMINISTRATION_COMMAND_KINDS(X)};
inline constexpr KindName RESPONSE_NAMES[] = {ZUL_ADMINISTRATION_RESPONSE_KINDS(X)};
#undef X

constexpr const char* nameIn(std::span<const KindName> names, DDS_Long kind) {
    const auto found = std::ranges::find(names, kind, &KindName::kind);
    return found != names.end() ? found->name : "UNKNOWN";
}
// "ADD_PEER", "ENTITY_NOT_FOUND" and so on; "UNKNOWN" for a value that is none.
constexpr const char* commandName(DDS_Long kind) {
    return nameIn(COMMAND_NAMES, kind);
}
constexpr const char* responseName(DDS_Long kind) {
    return nameIn(RESPONSE_NAMES, kind);
}

constexpr std::uint32_t ENTITY_NAME_BOUND = 255;  // characters
constexpr std::uint32_t XML_CONTENT_BOUND = 4096; // characters
constexpr std::uint32_t PEER_LIST_BOUND = 16;     // elements

struct RoutingModule {
    using CommandKind = ZUL_RoutingService_Administration_CommandKind;
    using CommandResponseKind = ZUL_RoutingService_Administration_CommandResponseKind;
    static constexpr const char* scope = "ZUL::RoutingService::Administration";
    static constexpr const char* enumeratorPrefix = "ZUL_ROUTING_SERVICE_COMMAND_";
    static constexpr bool declaresEntityName = true; // names entity names by a typedef
    static constexpr bool marksExtensibility = true; // announces the extensibility that the encoding follows
};

struct FederationModule {
    using CommandKind = ZUL_FederationService_Administration_CommandKind;
    using CommandResponseKind = ZUL_FederationService_Administration_CommandResponseKind;
    static constexpr const char* scope = "ZUL::FederationService::Administration";
    static constexpr const char* enumeratorPrefix = "ZUL_FEDERATION_SERVICE_COMMAND_";
    static constexpr bool declaresEntityName = false; // entity names are anonymous strings
    static constexpr bool marksExtensibility = false; // every type is announced as extensible
};

} // namespace admin

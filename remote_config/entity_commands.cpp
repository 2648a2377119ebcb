#include "remote_config/entity_commands.h"

#include "remote_config/command_request.h"
#include "remote_config/exchange.h"

#include <string_view>

namespace {

using Kind = ZUL_RoutingService_Administration_CommandKind;

// What one command of the common skeleton does.
struct EntityCommand {
    const char* context;
    Kind kind;
    bool carriesEntityName;
    std::size_t entityNameLimit; // a name of this length or more is refused
};

constexpr std::size_t NO_ENTITY = 0;
// Pause, resume, enable and disable take names up to the wire's bound; delete one character fewer,
// deliberately.
constexpr std::size_t WIRE_LIMIT = admin::ENTITY_NAME_BOUND + 1;

bool send(ROUTERRemoteConfigClient& client, const EntityCommand& command, const char* targetRouter,
          const char* entityName, ROUTERRemoteConfigResult* result) {
    if (isTooLong(targetRouter, ROUTER_NAME_LIMIT)) {
        return refuseArgument(command.context, "target router name too long", result);
    }
    if (command.carriesEntityName && isTooLong(entityName, command.entityNameLimit)) {
        return refuseArgument(command.context, "entityName too long", result);
    }
    auto& request = *client.commandSample;
    setName(request.target_router, targetRouter);
    request.command._d = command.kind;
    if (command.carriesEntityName) {
        setName(request.command._u.entity_name, entityName);
    }
    ROUTERRemoteConfigClient_nextInvocation(&client);
    return ROUTERRemoteConfigClient_sendCommandRequest(&client, result, true);
}

// Fills the request's peer list in place; its length is set only as elements are stored, so a list without
// any peer leaves the previous one. False when a piece is too long, there are too many, or memory is
// exhausted.
bool storePeer(DDS_StringSeq& peers, DDS_Long position, std::string_view peer) {
    constexpr const char* CONTEXT = "ROUTERRemoteConfigClient_sendCommandAddPeer";
    if (!ZULSequence::ensure_length(&peers, position, position, CONTEXT)) {
        return false;
    }
    char*& element = ZULSequence::at(peers, position - 1);
    if (element == nullptr) {
        element = DDS_String_alloc(admin::ENTITY_NAME_BOUND); // as large as any later peer
    }
    if (element == nullptr) {
        return false;
    }
    ZULString_copyBounded(element, admin::ENTITY_NAME_BOUND + 1, peer);
    return true;
}

bool parsePeers(DDS_StringSeq& peers, std::string_view list) {
    DDS_Long next = 1; // 1-based position of the next element to store
    for (;;) {
        const std::size_t comma = list.find(',');
        const bool isLastPiece = comma == std::string_view::npos;
        const std::string_view piece = list.substr(0, comma);
        // The count is checked before a piece is looked at: a comma behind the 16th peer is one too many,
        // deliberately.
        const bool isFull = next > static_cast<DDS_Long>(admin::PEER_LIST_BOUND);
        if (piece.size() >= ROUTER_NAME_LIMIT || isFull) {
            return false;
        }
        if (!piece.empty() && !storePeer(peers, next++, piece)) {
            return false;
        }
        if (isLastPiece) {
            return true;
        }
        list.remove_prefix(comma + 1);
    }
}

} // namespace

#define ZUL_ROUTER_COMMAND(Name, kind)                                                                       \
    bool ROUTERRemoteConfigClient_sendCommand##Name(                                                         \
        ROUTERRemoteConfigClient* self, const char* targetRouter, ROUTERRemoteConfigResult* result) {        \
        return send(*self, {__func__, kind, false, NO_ENTITY}, targetRouter, nullptr, result);               \
    }
#define ZUL_ENTITY_COMMAND(Name, kind, limit)                                                                \
    bool ROUTERRemoteConfigClient_sendCommand##Name(ROUTERRemoteConfigClient* self,                          \
                                                    const char* targetRouter, const char* entityName,        \
                                                    ROUTERRemoteConfigResult* result) {                      \
        return send(*self, {__func__, kind, true, limit}, targetRouter, entityName, result);                 \
    }

ZUL_ROUTER_COMMAND(Unload, ZUL_ROUTING_SERVICE_COMMAND_UNLOAD)
ZUL_ROUTER_COMMAND(Save, ZUL_ROUTING_SERVICE_COMMAND_SAVE)
ZUL_ROUTER_COMMAND(Get, ZUL_ROUTING_SERVICE_COMMAND_GET)
ZUL_ENTITY_COMMAND(Pause, ZUL_ROUTING_SERVICE_COMMAND_PAUSE, WIRE_LIMIT)
ZUL_ENTITY_COMMAND(Resume, ZUL_ROUTING_SERVICE_COMMAND_RESUME, WIRE_LIMIT)
ZUL_ENTITY_COMMAND(Enable, ZUL_ROUTING_SERVICE_COMMAND_ENABLE, WIRE_LIMIT)
ZUL_ENTITY_COMMAND(Disable, ZUL_ROUTING_SERVICE_COMMAND_DISABLE, WIRE_LIMIT)
ZUL_ENTITY_COMMAND(Delete, ZUL_ROUTING_SERVICE_COMMAND_DELETE, ROUTER_NAME_LIMIT)

bool ROUTERRemoteConfigClient_sendCommandAddPeer(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                 const char* domainRouteName, bool isFirstParticipant,
                                                 const char* peerList, ROUTERRemoteConfigResult* result) {
    if (isTooLong(targetRouter, ROUTER_NAME_LIMIT)) {
        return refuseArgument(__func__, "target router name too long", result);
    }
    if (isTooLong(domainRouteName, ROUTER_NAME_LIMIT)) {
        return refuseArgument(__func__, "domainRouteName too long", result);
    }
    auto& request = *self->commandSample;
    auto& peers = request.command._u.peer_desc;
    if (!parsePeers(peers.peer_list, peerList)) {
        return refuseArgument(__func__, "peerList too long", result);
    }
    setName(request.target_router, targetRouter);
    request.command._d = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER;
    setName(peers.domain_route_name, domainRouteName);
    peers.is_first_participant = isFirstParticipant ? 1 : 0;
    ROUTERRemoteConfigClient_nextInvocation(self);
    return ROUTERRemoteConfigClient_sendCommandRequest(self, result, true);
}

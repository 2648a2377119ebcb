// Each sender is one row of admin_types/commands.h; add_peer fills its list of peers besides.
#include "remote_config/entity_commands.h"

#include "middleware/base/strings.h"
#include "remote_config/command_request.h"
#include "remote_config/exchange.h"

#include <string_view>

using namespace zul::remote_config;

namespace {

bool send(ROUTERRemoteConfigClient& client, const Sender& sender, const char* targetRouter,
          const char* entityName, ROUTERRemoteConfigResult* result) {
    return prepareRequest(client, sender, targetRouter, entityName, result) &&
           ROUTERRemoteConfigClient_sendCommandRequest(&client, result, true);
}

// In place: the list's length is set only as elements are stored (oddity 31). False: memory is exhausted.
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
        // oddity 32: counted before the piece is looked at
        const bool isFull = next > static_cast<DDS_Long>(admin::PEER_LIST_BOUND);
        if (piece.size() > admin::SHORTER_NAME || isFull) {
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

bool ROUTERRemoteConfigClient_sendCommandUnload(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                ROUTERRemoteConfigResult* result) {
    return send(*self, {__func__, ZUL_ROUTING_SERVICE_COMMAND_UNLOAD}, targetRouter, "", result);
}
bool ROUTERRemoteConfigClient_sendCommandSave(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                              ROUTERRemoteConfigResult* result) {
    return send(*self, {__func__, ZUL_ROUTING_SERVICE_COMMAND_SAVE}, targetRouter, "", result);
}
bool ROUTERRemoteConfigClient_sendCommandGet(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                             ROUTERRemoteConfigResult* result) {
    return send(*self, {__func__, ZUL_ROUTING_SERVICE_COMMAND_GET}, targetRouter, "", result);
}
bool ROUTERRemoteConfigClient_sendCommandPause(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                               const char* entityName, ROUTERRemoteConfigResult* result) {
    return send(*self, {__func__, ZUL_ROUTING_SERVICE_COMMAND_PAUSE}, targetRouter, entityName, result);
}
bool ROUTERRemoteConfigClient_sendCommandResume(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                const char* entityName, ROUTERRemoteConfigResult* result) {
    return send(*self, {__func__, ZUL_ROUTING_SERVICE_COMMAND_RESUME}, targetRouter, entityName, result);
}
bool ROUTERRemoteConfigClient_sendCommandEnable(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                const char* entityName, ROUTERRemoteConfigResult* result) {
    return send(*self, {__func__, ZUL_ROUTING_SERVICE_COMMAND_ENABLE}, targetRouter, entityName, result);
}
bool ROUTERRemoteConfigClient_sendCommandDisable(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                 const char* entityName, ROUTERRemoteConfigResult* result) {
    return send(*self, {__func__, ZUL_ROUTING_SERVICE_COMMAND_DISABLE}, targetRouter, entityName, result);
}
bool ROUTERRemoteConfigClient_sendCommandDelete(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                const char* entityName, ROUTERRemoteConfigResult* result) {
    return send(*self, {__func__, ZUL_ROUTING_SERVICE_COMMAND_DELETE}, targetRouter, entityName, result);
}

bool ROUTERRemoteConfigClient_sendCommandAddPeer(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                 const char* domainRouteName, bool isFirstParticipant,
                                                 const char* peerList, ROUTERRemoteConfigResult* result) {
    const Sender sender(__func__, ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER);
    if (!checkNames(sender, targetRouter, domainRouteName, result)) {
        return false;
    }
    auto& peers = self->commandSample->command._u.peer_desc;
    if (!parsePeers(peers.peer_list, peerList)) {
        return refuseArgument(__func__, "peerList too long", result);
    }
    peers.is_first_participant = isFirstParticipant ? 1 : 0;
    return send(*self, sender, targetRouter, domainRouteName, result);
}

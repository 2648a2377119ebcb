// The administration records of both modules, under their C names. One shape serves both modules, so a record
// of one is laid out like its sibling of the other; the client relies on that. Strings are owned,
// NUL-terminated buffers of their bound plus the terminator; initialise and finalise records with the
// operations of data_types.h.
#pragma once

#include "admin_types/modules.h"
#include "middleware/idl/sequence.h"

namespace admin {

template <class Module>
struct XmlUrlRecord {
    DDS_Boolean is_final; // false on all pieces of a long text but the last
    char* content;        // at most 4096 characters
};

template <class Module>
struct EntityDescriptionRecord {
    char* name; // at most 255 characters
    XmlUrlRecord<Module> xml_url;
};

template <class Module>
struct PeerUpdateDescriptionRecord {
    char* domain_route_name; // at most 255 characters
    DDS_Boolean is_first_participant;
    DDS_StringSeq peer_list; // at most 16 elements; decoding needs room in each that it fills
};

// The branches are side by side: all are prepared and released, only the one that `_d` selects is copied
// or encoded.
template <class Module>
struct CommandRecord {
    typename Module::CommandKind _d;
    struct {
        EntityDescriptionRecord<Module> entity_desc;
        DDS_Long dummy;
        char* entity_name; // at most 255 characters
        PeerUpdateDescriptionRecord<Module> peer_desc;
    } _u;
};

template <class Module>
struct CommandIdRecord {
    DDS_Long host;
    DDS_Long app;
    DDS_Long invocation;
};

// The one record whose members are named differently.
template <class Module>
struct CommandRequestRecord {
    CommandIdRecord<Module> id;
    char* target_router; // at most 255 characters
    CommandRecord<Module> command;
};
template <>
struct CommandRequestRecord<FederationModule> {
    CommandIdRecord<FederationModule> id;
    char* target_service; // at most 255 characters
    CommandRecord<FederationModule> command;
};

template <class Module>
struct CommandResponseRecord {
    CommandIdRecord<Module> id;
    typename Module::CommandResponseKind kind;
    char* message; // at most 4096 characters
    DDS_Boolean is_final;
};

} // namespace admin

using ZUL_RoutingService_Administration_EntityName = char*;

using ZUL_RoutingService_Administration_XmlUrl = admin::XmlUrlRecord<admin::RoutingModule>;
using ZUL_RoutingService_Administration_EntityDescription =
    admin::EntityDescriptionRecord<admin::RoutingModule>;
using ZUL_RoutingService_Administration_PeerUpdateDescription =
    admin::PeerUpdateDescriptionRecord<admin::RoutingModule>;
using ZUL_RoutingService_Administration_Command = admin::CommandRecord<admin::RoutingModule>;
using ZUL_RoutingService_Administration_CommandId = admin::CommandIdRecord<admin::RoutingModule>;
using ZUL_RoutingService_Administration_CommandRequest = admin::CommandRequestRecord<admin::RoutingModule>;
using ZUL_RoutingService_Administration_CommandResponse = admin::CommandResponseRecord<admin::RoutingModule>;

using ZUL_FederationService_Administration_XmlUrl = admin::XmlUrlRecord<admin::FederationModule>;
using ZUL_FederationService_Administration_EntityDescription =
    admin::EntityDescriptionRecord<admin::FederationModule>;
using ZUL_FederationService_Administration_PeerUpdateDescription =
    admin::PeerUpdateDescriptionRecord<admin::FederationModule>;
using ZUL_FederationService_Administration_Command = admin::CommandRecord<admin::FederationModule>;
using ZUL_FederationService_Administration_CommandId = admin::CommandIdRecord<admin::FederationModule>;
using ZUL_FederationService_Administration_CommandRequest =
    admin::CommandRequestRecord<admin::FederationModule>;
using ZUL_FederationService_Administration_CommandResponse =
    admin::CommandResponseRecord<admin::FederationModule>;

static_assert(sizeof(ZUL_RoutingService_Administration_CommandRequest) ==
              sizeof(ZUL_FederationService_Administration_CommandRequest));
static_assert(sizeof(ZUL_RoutingService_Administration_CommandResponse) ==
              sizeof(ZUL_FederationService_Administration_CommandResponse));

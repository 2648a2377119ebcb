// What the administration types consist of: the one place where members, bounds, ids, labels and forms are
// written down.
#pragma once

#include "admin_types/derive/idl_types.h"
#include "admin_types/records.h"

namespace admin {

template <class Module>
using EntityName = EntityNameOf<Module, ENTITY_NAME_BOUND>;
using XmlContent = String<XML_CONTENT_BOUND>;
using PeerList = StringSequence<PEER_LIST_BOUND, ENTITY_NAME_BOUND>;

#define X(name, value) Enumerator{#name, value},
template <class ModuleOfKind>
struct CommandKindDescription {
    using Module = ModuleOfKind;
    static constexpr const char* name = "CommandKind";
    static constexpr const char* enumeratorInfix = "";
    static constexpr Enumerator enumerators[] = {ZUL_ADMINISTRATION_COMMAND_KINDS(X)};
};
template <class ModuleOfKind>
struct CommandResponseKindDescription {
    using Module = ModuleOfKind;
    static constexpr const char* name = "CommandResponseKind";
    static constexpr const char* enumeratorInfix = "RESPONSE_";
    static constexpr Enumerator enumerators[] = {ZUL_ADMINISTRATION_RESPONSE_KINDS(X)};
};
#undef X
template <>
struct Description<RoutingModule::CommandKind> : CommandKindDescription<RoutingModule> {};
template <>
struct Description<FederationModule::CommandKind> : CommandKindDescription<FederationModule> {};
template <>
struct Description<RoutingModule::CommandResponseKind> : CommandResponseKindDescription<RoutingModule> {};
template <>
struct Description<FederationModule::CommandResponseKind> : CommandResponseKindDescription<FederationModule> {
};

template <class ModuleOfRecord>
struct Description<XmlUrlRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = XmlUrlRecord<Module>;
    static constexpr const char* name = "XmlUrl";
    static constexpr WireForm form = WireForm::EXTENSIBLE;
    static constexpr auto members = std::tuple{
        Member<Boolean, &Record::is_final>{"is_final"},
        Member<XmlContent, &Record::content>{"content"},
    };
};

template <class ModuleOfRecord>
struct Description<EntityDescriptionRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = EntityDescriptionRecord<Module>;
    static constexpr const char* name = "EntityDescription";
    static constexpr WireForm form = WireForm::EXTENSIBLE;
    static constexpr auto members = std::tuple{
        Member<EntityName<Module>, &Record::name>{"name"},
        Member<Struct<XmlUrlRecord<Module>>, &Record::xml_url>{"xml_url"},
    };
};

template <class ModuleOfRecord>
struct Description<PeerUpdateDescriptionRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = PeerUpdateDescriptionRecord<Module>;
    static constexpr const char* name = "PeerUpdateDescription";
    static constexpr WireForm form = WireForm::EXTENSIBLE;
    static constexpr auto members = std::tuple{
        Member<EntityName<Module>, &Record::domain_route_name>{"domain_route_name"},
        Member<Boolean, &Record::is_first_participant>{"is_first_participant"},
        Member<PeerList, &Record::peer_list>{"peer_list"},
    };
};

template <class ModuleOfRecord>
struct Description<CommandRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = CommandRecord<Module>;
    using Discriminator = Enum<typename Module::CommandKind>;
    using Branches = decltype(Record::_u);
    static constexpr const char* name = "Command";
    static constexpr WireForm form = WireForm::MUTABLE;
    static constexpr DDS_Long defaultDiscriminator = 1; // LOAD
    // UNLOAD carries the dummy and no entity name, deliberately: routers decode by the same table.
    static constexpr auto branches = std::tuple{
        Branch<Struct<EntityDescriptionRecord<Module>>, &Record::_u, &Branches::entity_desc>{
            {"entity_desc"}, 1, {1, 3, 4, 10}},
        Branch<Long, &Record::_u, &Branches::dummy>{{"dummy"}, 2, {9, 2, 12, 13}, true},
        Branch<EntityName<Module>, &Record::_u, &Branches::entity_name>{{"entity_name"}, 3, {5, 6, 7, 8, 11}},
        Branch<Struct<PeerUpdateDescriptionRecord<Module>>, &Record::_u, &Branches::peer_desc>{
            {"peer_desc"}, 4, {14}},
    };
};

template <class ModuleOfRecord>
struct Description<CommandIdRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = CommandIdRecord<Module>;
    static constexpr const char* name = "CommandId";
    static constexpr WireForm form = WireForm::FINAL;
    static constexpr auto members = std::tuple{
        Member<Long, &Record::host>{"host"},
        Member<Long, &Record::app>{"app"},
        Member<Long, &Record::invocation>{"invocation"},
    };
};

template <class Module>
inline constexpr auto targetMember =
    Member<EntityName<Module>, &CommandRequestRecord<Module>::target_router>{"target_router"};
template <>
inline constexpr auto targetMember<FederationModule> =
    Member<EntityName<FederationModule>, &CommandRequestRecord<FederationModule>::target_service>{
        "target_service"};

template <class ModuleOfRecord>
struct Description<CommandRequestRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = CommandRequestRecord<Module>;
    static constexpr const char* name = "CommandRequest";
    static constexpr WireForm form = WireForm::MUTABLE;
    static constexpr auto members = std::tuple{
        Member<Struct<CommandIdRecord<Module>>, &Record::id>{"id"},
        targetMember<Module>,
        Member<Union<CommandRecord<Module>>, &Record::command>{"command"},
    };
};

template <class ModuleOfRecord>
struct Description<CommandResponseRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = CommandResponseRecord<Module>;
    static constexpr const char* name = "CommandResponse";
    static constexpr WireForm form = WireForm::EXTENSIBLE;
    static constexpr auto members = std::tuple{
        Member<Struct<CommandIdRecord<Module>>, &Record::id>{"id"},
        Member<Enum<typename Module::CommandResponseKind>, &Record::kind>{"kind"},
        Member<XmlContent, &Record::message>{"message"},
        Member<Boolean, &Record::is_final>{"is_final"},
    };
};

} // namespace admin

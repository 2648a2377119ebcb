// What the administration types consist of: the one place where members, bounds, ids, labels and forms are
// written down.
#pragma once

#include "admin_types/commands.h"
#include "admin_types/records.h"
#include "middleware/idl/types.h"

namespace admin {

// Only the routing module names entity names by a typedef.
struct EntityNameAlias {
    using Module = RoutingModule;
    static constexpr const char* name = "EntityName";
};
template <class Module>
using EntityName =
    std::conditional_t<Module::declaresEntityName, zul::idl::StringAlias<EntityNameAlias, ENTITY_NAME_BOUND>,
                       zul::idl::String<ENTITY_NAME_BOUND>>;
using XmlContent = zul::idl::String<XML_CONTENT_BOUND>;
using PeerList = zul::idl::StringSequence<PEER_LIST_BOUND, ENTITY_NAME_BOUND>;

#define X(name, value) zul::idl::Enumerator{#name, value},
template <class ModuleOfKind>
struct CommandKindDescription {
    using Module = ModuleOfKind;
    static constexpr const char* name = "CommandKind";
    static constexpr const char* enumeratorInfix = "";
    static constexpr zul::idl::Enumerator enumerators[] = {ZUL_ADMINISTRATION_COMMAND_KINDS(X)};
};
template <class ModuleOfKind>
struct CommandResponseKindDescription {
    using Module = ModuleOfKind;
    static constexpr const char* name = "CommandResponseKind";
    static constexpr const char* enumeratorInfix = "RESPONSE_";
    static constexpr zul::idl::Enumerator enumerators[] = {ZUL_ADMINISTRATION_RESPONSE_KINDS(X)};
};
#undef X

// The labels of a branch: the kinds of its commands, in the order of their rows.
constexpr std::array<DDS_Long, zul::idl::MAX_LABELS> labelsOf(CommandBranch branch) {
    std::array<DDS_Long, zul::idl::MAX_LABELS> labels{};
    std::size_t count = 0;
    for (const Command& command : COMMANDS) {
        if (command.branch == branch) {
            labels.at(count++) = command.kind;
        }
    }
    return labels;
}

// The one member that the modules name differently.
template <class Module>
inline constexpr auto targetMember =
    zul::idl::Member<EntityName<Module>, &CommandRequestRecord<Module>::target_router>{1, "target_router"};
template <>
inline constexpr auto targetMember<FederationModule> =
    zul::idl::Member<EntityName<FederationModule>, &CommandRequestRecord<FederationModule>::target_service>{
        1, "target_service"};

} // namespace admin

template <>
struct zul::idl::Description<admin::RoutingModule::CommandKind>
    : admin::CommandKindDescription<admin::RoutingModule> {};
template <>
struct zul::idl::Description<admin::FederationModule::CommandKind>
    : admin::CommandKindDescription<admin::FederationModule> {};
template <>
struct zul::idl::Description<admin::RoutingModule::CommandResponseKind>
    : admin::CommandResponseKindDescription<admin::RoutingModule> {};
template <>
struct zul::idl::Description<admin::FederationModule::CommandResponseKind>
    : admin::CommandResponseKindDescription<admin::FederationModule> {};

template <class ModuleOfRecord>
struct zul::idl::Description<admin::XmlUrlRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = admin::XmlUrlRecord<Module>;
    static constexpr const char* name = "XmlUrl";
    static constexpr WireForm form = WireForm::EXTENSIBLE;
    static constexpr auto members = std::tuple{
        Member<Boolean, &Record::is_final>{0, "is_final"},
        Member<admin::XmlContent, &Record::content>{1, "content"},
    };
};

template <class ModuleOfRecord>
struct zul::idl::Description<admin::EntityDescriptionRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = admin::EntityDescriptionRecord<Module>;
    static constexpr const char* name = "EntityDescription";
    static constexpr WireForm form = WireForm::EXTENSIBLE;
    static constexpr auto members = std::tuple{
        Member<admin::EntityName<Module>, &Record::name>{0, "name"},
        Member<Struct<admin::XmlUrlRecord<Module>>, &Record::xml_url>{1, "xml_url"},
    };
};

template <class ModuleOfRecord>
struct zul::idl::Description<admin::PeerUpdateDescriptionRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = admin::PeerUpdateDescriptionRecord<Module>;
    static constexpr const char* name = "PeerUpdateDescription";
    static constexpr WireForm form = WireForm::EXTENSIBLE;
    static constexpr auto members = std::tuple{
        Member<admin::EntityName<Module>, &Record::domain_route_name>{0, "domain_route_name"},
        Member<Boolean, &Record::is_first_participant>{1, "is_first_participant"},
        Member<admin::PeerList, &Record::peer_list>{2, "peer_list"},
    };
};

template <class ModuleOfRecord>
struct zul::idl::Description<admin::CommandRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = admin::CommandRecord<Module>;
    using Discriminator = Enum<typename Module::CommandKind>;
    using Branches = decltype(Record::_u);
    static constexpr const char* name = "Command";
    static constexpr WireForm form = WireForm::MUTABLE;
    static constexpr DDS_Long defaultDiscriminator = ZUL_ROUTING_SERVICE_COMMAND_LOAD;
    // Both modules number their commands alike.
    // clang-format off
    static constexpr auto members = std::tuple{
        Branch<Struct<admin::EntityDescriptionRecord<Module>>, &Record::_u, &Branches::entity_desc>{
            {1, "entity_desc"}, admin::labelsOf(admin::CommandBranch::ENTITY_DESC)},
        Branch<Long, &Record::_u, &Branches::dummy>{
            {2, "dummy"}, admin::labelsOf(admin::CommandBranch::DUMMY), true},
        Branch<admin::EntityName<Module>, &Record::_u, &Branches::entity_name>{
            {3, "entity_name"}, admin::labelsOf(admin::CommandBranch::ENTITY_NAME)},
        Branch<Struct<admin::PeerUpdateDescriptionRecord<Module>>, &Record::_u, &Branches::peer_desc>{
            {4, "peer_desc"}, admin::labelsOf(admin::CommandBranch::PEER_DESC)},
    };
    // clang-format on
};

template <class ModuleOfRecord>
struct zul::idl::Description<admin::CommandIdRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = admin::CommandIdRecord<Module>;
    static constexpr const char* name = "CommandId";
    static constexpr WireForm form = WireForm::FINAL;
    static constexpr auto members = std::tuple{
        Member<Long, &Record::host>{0, "host"},
        Member<Long, &Record::app>{1, "app"},
        Member<Long, &Record::invocation>{2, "invocation"},
    };
};

template <class ModuleOfRecord>
struct zul::idl::Description<admin::CommandRequestRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = admin::CommandRequestRecord<Module>;
    static constexpr const char* name = "CommandRequest";
    static constexpr WireForm form = WireForm::MUTABLE;
    static constexpr auto members = std::tuple{
        Member<Struct<admin::CommandIdRecord<Module>>, &Record::id>{0, "id"},
        admin::targetMember<Module>,
        Member<Union<admin::CommandRecord<Module>>, &Record::command>{2, "command"},
    };
};

template <class ModuleOfRecord>
struct zul::idl::Description<admin::CommandResponseRecord<ModuleOfRecord>> {
    using Module = ModuleOfRecord;
    using Record = admin::CommandResponseRecord<Module>;
    static constexpr const char* name = "CommandResponse";
    static constexpr WireForm form = WireForm::EXTENSIBLE;
    static constexpr auto members = std::tuple{
        Member<Struct<admin::CommandIdRecord<Module>>, &Record::id>{0, "id"},
        Member<Enum<typename Module::CommandResponseKind>, &Record::kind>{1, "kind"},
        Member<admin::XmlContent, &Record::message>{2, "message"},
        Member<Boolean, &Record::is_final>{3, "is_final"},
    };
};

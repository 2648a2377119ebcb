// The type codes of both modules: what is announced of each type, and how they link.
#include "admin_types/commands.h"
#include "admin_types/data_types.h"

#include <gtest/gtest.h>

namespace {

#define ZUL_CODES(prefix)                                                                                    \
    {                                                                                                        \
        prefix##XmlUrl_get_typecode(), prefix##EntityDescription_get_typecode(),                             \
            prefix##CommandKind_get_typecode(), prefix##PeerUpdateDescription_get_typecode(),                \
            prefix##CommandId_get_typecode(), prefix##CommandResponseKind_get_typecode(),                    \
            prefix##Command_get_typecode(), prefix##CommandRequest_get_typecode(),                           \
            prefix##CommandResponse_get_typecode()                                                           \
    }
const std::vector<const DDS_TypeCode*> ROUTING ZUL_CODES(ZUL_RoutingService_Administration_);
const std::vector<const DDS_TypeCode*> FEDERATION ZUL_CODES(ZUL_FederationService_Administration_);

// "name" for a named type, "string<255>" and the like for an anonymous one.
std::string reference(const DDS_TypeCode* code) {
    if (code == nullptr) {
        return "nothing";
    }
    switch (code->kind) {
    case DDS_TK_LONG:
        return "long";
    case DDS_TK_BOOLEAN:
        return "boolean";
    case DDS_TK_STRING:
        return "string<" + std::to_string(code->bound) + ">";
    case DDS_TK_SEQUENCE:
        return "sequence<" + reference(code->content) + "," + std::to_string(code->bound) + ">";
    case DDS_TK_ALIAS:
        return code->name + "=" + reference(code->content);
    default:
        return code->name;
    }
}
std::string render(const DDS_TypeCode& code) {
    constexpr const char* EXTENSIBILITY[] = {"final ", "", "mutable "};
    std::string out = EXTENSIBILITY[code.extensibility];
    out += code.kind == DDS_TK_STRUCT ? "struct " : code.kind == DDS_TK_UNION ? "union " : "enum ";
    out += code.name + (code.kind == DDS_TK_UNION ? " of " + reference(code.content) : "");
    for (const DDS_TypeCodeMember& member : code.members) {
        out += "; " + std::to_string(member.id) + " " + member.name;
        out += code.kind == DDS_TK_ENUM ? "=" + std::to_string(member.value) : " " + reference(member.type);
        for (const std::int32_t label : member.labels) {
            out += " " + std::to_string(label);
        }
        out += std::string(member.isRequired ? " required" : "") + (member.isKey ? " key" : "") +
               (member.isDefault ? " default" : "");
    }
    return out;
}
std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

// In the order of ZUL_CODES. $ is the module's scope, NAME its entity name, E_ the prefix of its enumerators.
const char* const TYPE_CODES[] = {
    "struct $XmlUrl; 0 is_final boolean required; 1 content string<4096> required",
    "struct $EntityDescription; 0 name NAME required; 1 xml_url $XmlUrl required",
    "enum $CommandKind; 0 E_LOAD=1; 1 E_UNLOAD=2; 2 E_INSERT=3; 3 E_UPDATE=4; 4 E_PAUSE=5; 5 E_RESUME=6; "
    "6 E_ENABLE=7; 7 E_DISABLE=8; 8 E_ANNOUNCE=9; 9 E_CREATE=10; 10 E_DELETE=11; 11 E_SAVE=12; 12 E_GET=13; "
    "13 E_ADD_PEER=14",
    "struct $PeerUpdateDescription; 0 domain_route_name NAME required; "
    "1 is_first_participant boolean required; 2 peer_list sequence<string<255>,16> required",
    "final struct $CommandId; 0 host long required; 1 app long required; 2 invocation long required",
    "enum $CommandResponseKind; 0 E_RESPONSE_OK=0; 1 E_RESPONSE_ANNOUNCEMENT=1; 2 E_RESPONSE_ERROR=2; "
    "3 E_RESPONSE_ENTITY_NOT_FOUND=3",
    "mutable union $Command of $CommandKind; 1 entity_desc $EntityDescription 1 3 4 10; "
    "2 dummy long 9 2 12 13; 3 entity_name NAME 5 6 7 8 11; 4 peer_desc $PeerUpdateDescription 14",
    "mutable struct $CommandRequest; 0 id $CommandId required; 1 target_router NAME required; "
    "2 command $Command required",
    "struct $CommandResponse; 0 id $CommandId required; 1 kind $CommandResponseKind required; "
    "2 message string<4096> required; 3 is_final boolean required",
};

TEST(TypeCodes, OfBothModules) {
    ASSERT_EQ(std::size(TYPE_CODES), ROUTING.size());
    for (std::size_t i = 0; i < std::size(TYPE_CODES); ++i) {
        std::string routing = replaced(TYPE_CODES[i], "NAME", "$EntityName=string<255>");
        routing = replaced(routing, " E_", " ZUL_ROUTING_SERVICE_COMMAND_");
        EXPECT_EQ(render(*ROUTING[i]), replaced(routing, "$", "ZUL::RoutingService::Administration::"));
        std::string federation = replaced(TYPE_CODES[i], "NAME", "string<255>");
        federation = replaced(federation, " E_", " ZUL_FEDERATION_SERVICE_COMMAND_");
        federation = replaced(federation, "target_router", "target_service");
        federation = replaced(replaced(federation, "mutable ", ""), "final struct", "struct");
        EXPECT_EQ(render(*FEDERATION[i]),
                  replaced(federation, "$", "ZUL::FederationService::Administration::"));
        EXPECT_FALSE(DDS_TypeCode_equals(ROUTING[i], FEDERATION[i]));
    }
    // Member types are linked, not described again.
    const DDS_TypeCode* request = ZUL_RoutingService_Administration_CommandRequest_get_typecode();
    EXPECT_EQ(request->members[2].type, ZUL_RoutingService_Administration_Command_get_typecode());
    EXPECT_EQ(request->members[1].type, ZUL_RoutingService_Administration_EntityName_get_typecode());
    EXPECT_EQ(request, ZUL_RoutingService_Administration_CommandRequest_get_typecode());
}

// What the senders fill in is what the codec writes.
TEST(TypeCodes, TheTableOfCommandsAgreesWithThem) {
    std::size_t labels = 0;
    for (const DDS_TypeCodeMember& branch :
         ZUL_RoutingService_Administration_Command_get_typecode()->members) {
        for (const std::int32_t label : branch.labels) {
            const admin::Command* command = admin::findCommand(label);
            ASSERT_NE(command, nullptr) << label;
            EXPECT_EQ(static_cast<std::uint32_t>(command->branch), branch.id) << command->name;
            const DDS_TypeCode* kinds = ZUL_RoutingService_Administration_CommandKind_get_typecode();
            EXPECT_EQ(kinds->members[static_cast<std::size_t>(label) - 1].name,
                      std::string("ZUL_ROUTING_SERVICE_COMMAND_") + command->name);
            ++labels;
        }
    }
    EXPECT_EQ(labels, std::size(admin::COMMANDS));
    EXPECT_EQ(admin::findCommand(0), nullptr);
}

} // namespace

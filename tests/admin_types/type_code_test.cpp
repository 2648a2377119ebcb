// The type codes of both modules: what is announced of each type, and how they link.
#include "admin_types/commands.h"
#include "admin_types/data_types.h"
#include "tests/middleware/type_code_text.h"

#include <gtest/gtest.h>
#include <map>

namespace {

// $ is the module's scope, NAME its entity name, E_ the prefix of its enumerators.
const std::pair<const char*, const char*> TYPE_CODES[] = {
    {"$XmlUrl", "struct is_final:0:boolean content:1:string(4096)"},
    {"$EntityDescription", "struct name:0:NAME xml_url:1:$XmlUrl"},
    {"$CommandKind",
     "enum E_LOAD:0=1? E_UNLOAD:1=2? E_INSERT:2=3? E_UPDATE:3=4? E_PAUSE:4=5? E_RESUME:5=6? E_ENABLE:6=7? "
     "E_DISABLE:7=8? E_ANNOUNCE:8=9? E_CREATE:9=10? E_DELETE:10=11? E_SAVE:11=12? E_GET:12=13? "
     "E_ADD_PEER:13=14?"},
    {"$PeerUpdateDescription", "struct domain_route_name:0:NAME is_first_participant:1:boolean "
                               "peer_list:2:seq(16)<string(255)>"},
    {"$CommandId", "struct final host:0:long app:1:long invocation:2:long"},
    {"$CommandResponseKind", "enum E_RESPONSE_OK:0=0? E_RESPONSE_ANNOUNCEMENT:1=1? E_RESPONSE_ERROR:2=2? "
                             "E_RESPONSE_ENTITY_NOT_FOUND:3=3?"},
    {"$Command",
     "union<$CommandKind> mutable entity_desc:1:$EntityDescription,1,3,4,10? "
     "dummy:2:long,9,2,12,13? entity_name:3:NAME,5,6,7,8,11? peer_desc:4:$PeerUpdateDescription,14?"},
    {"$CommandRequest", "struct mutable id:0:$CommandId target_router:1:NAME command:2:$Command"},
    {"$CommandResponse",
     "struct id:0:$CommandId kind:1:$CommandResponseKind message:2:string(4096) is_final:3:boolean"},
    {"$EntityName", "alias<string(255)>"},
};

using Replacements = std::vector<std::pair<std::string, std::string>>;

std::string replaced(std::string text, const Replacements& replacements) {
    for (const auto& [from, to] : replacements) {
        for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
            text.replace(at, from.size(), to);
        }
    }
    return text;
}

void expectCodes(const std::vector<const DDS_TypeCode*>& codes, const Replacements& replacements) {
    std::map<std::string, std::string> expected;
    for (const auto& [name, text] : TYPE_CODES) {
        expected.emplace(replaced(name, replacements), replaced(text, replacements));
    }
    for (const DDS_TypeCode* code : codes) {
        EXPECT_EQ(describe(code, true), expected[code->name]) << code->name;
    }
}

#define ZUL_TEMPLATE "tests/admin_types/type_code.inc"
TEST(TypeCodes, OneThatIsAnnouncedOtherwise) {
    std::vector<const DDS_TypeCode*> codes;
#include "admin_types/family/routing_types.inc"
    EXPECT_EQ(codes.size(), std::size(TYPE_CODES));
    const DDS_TypeCode* const command = codes[8];
    expectCodes(codes, {{"NAME", "$EntityName"},
                        {" E_", " ZUL_ROUTING_SERVICE_COMMAND_"},
                        {"$", "ZUL::RoutingService::Administration::"}});
    codes.clear();
#include "admin_types/family/federation_types.inc"
    expectCodes(codes, {{"NAME", "string(255)"},
                        {" E_", " ZUL_FEDERATION_SERVICE_COMMAND_"},
                        {" mutable", ""},
                        {" final", ""},
                        {"target_router", "target_service"},
                        {"$", "ZUL::FederationService::Administration::"}});
    EXPECT_FALSE(DDS_TypeCode_equals(command, codes[8]));
    // Member types are linked, not described again.
    EXPECT_EQ(ZUL_RoutingService_Administration_CommandRequest_get_typecode()->members[2].type, command);
}

// What the senders fill in is what the codec writes.
TEST(TypeCodes, ACommandWhoseRowSaysOtherwise) {
    std::size_t labels = 0;
    for (const DDS_TypeCodeMember& branch :
         ZUL_RoutingService_Administration_Command_get_typecode()->members) {
        for (const std::int32_t label : branch.labels) {
            const admin::Command* command = admin::findCommand(label);
            ASSERT_NE(command, nullptr) << label;
            EXPECT_EQ(static_cast<std::uint32_t>(command->branch), branch.id) << label;
            ++labels;
        }
    }
    EXPECT_EQ(labels, std::size(admin::COMMANDS));
    EXPECT_EQ(admin::findCommand(0), nullptr);
}

} // namespace

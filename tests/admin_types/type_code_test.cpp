// The type codes of both modules: what is announced of each type, and how they link.
#include "admin_types/data_types.h"
#include "tests/middleware/type_code_text.h"
#include "tests/support/failing_heap.h"
#include "tests/support/failing_new.h"

#include <gtest/gtest.h>

namespace {

// $ is the module's scope, NAME its entity name, E_ the prefix of its enumerators.
const std::string TYPE_CODES =
    "$CommandKind enum E_LOAD:0=1? E_UNLOAD:1=2? E_INSERT:2=3? E_UPDATE:3=4? E_PAUSE:4=5? E_RESUME:5=6? "
    "E_ENABLE:6=7? E_DISABLE:7=8? E_ANNOUNCE:8=9? E_CREATE:9=10? E_DELETE:10=11? E_SAVE:11=12? E_GET:12=13? "
    "E_ADD_PEER:13=14?\n"
    "$CommandResponseKind enum E_RESPONSE_OK:0=0? E_RESPONSE_ANNOUNCEMENT:1=1? E_RESPONSE_ERROR:2=2? "
    "E_RESPONSE_ENTITY_NOT_FOUND:3=3?\n"
    "$XmlUrl struct is_final:0:boolean content:1:string(4096)\n"
    "$EntityDescription struct name:0:NAME xml_url:1:$XmlUrl\n"
    "$PeerUpdateDescription struct domain_route_name:0:NAME is_first_participant:1:boolean "
    "peer_list:2:seq(16)<string(255)>\n"
    "$CommandId struct final host:0:long app:1:long invocation:2:long\n"
    "$CommandRequest struct mutable id:0:$CommandId target_router:1:NAME command:2:$Command\n"
    "$CommandResponse struct id:0:$CommandId kind:1:$CommandResponseKind message:2:string(4096) "
    "is_final:3:boolean\n"
    "$Command union<$CommandKind> mutable entity_desc:1:$EntityDescription,1,3,4,10? dummy:2:long,9,2,12,13? "
    "entity_name:3:NAME,5,6,7,8,11? peer_desc:4:$PeerUpdateDescription,14?\n";

std::string replaced(std::string text, const std::vector<std::pair<std::string, std::string>>& replacements) {
    for (const auto& [from, to] : replacements) {
        for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
            text.replace(at, from.size(), to);
        }
    }
    return text;
}

#define ZUL_TEMPLATE "tests/admin_types/type_code.inc"
TEST(TypeCodes, OneThatIsAnnouncedOtherwise) {
    g_newCanFail = true; // each is built once in a process, here
    static const long allocations = failEachAllocation(
        [] { return ZUL_FederationService_Administration_CommandRequest_get_typecode() != nullptr; });
    EXPECT_GT(allocations, 0);
    g_newCanFail = false;
    std::string announced;
#include "admin_types/family/routing_types.inc"
    EXPECT_EQ(announced, replaced(TYPE_CODES + "$EntityName alias<string(255)>\n",
                                  {{"NAME", "$EntityName"},
                                   {" E_", " ZUL_ROUTING_SERVICE_COMMAND_"},
                                   {"$", "ZUL::RoutingService::Administration::"}}));
    announced.clear();
#include "admin_types/family/federation_types.inc"
    EXPECT_EQ(announced, replaced(TYPE_CODES, {{"NAME", "string(255)"},
                                               {" E_", " ZUL_FEDERATION_SERVICE_COMMAND_"},
                                               {" mutable", ""},
                                               {" final", ""},
                                               {"target_router", "target_service"},
                                               {"$", "ZUL::FederationService::Administration::"}}));
    // Member types are linked, not described again.
    EXPECT_EQ(ZUL_RoutingService_Administration_CommandRequest_get_typecode()->members[2].type,
              ZUL_RoutingService_Administration_Command_get_typecode());
}

} // namespace

// The records of both modules: defaults, copies, exhausted memory, printing, plugins.
#include "tests/admin_types/samples.h"

#include <cstddef>
#include <gtest/gtest.h>

namespace {

// What the table-driven tests below call of a module, and what is particular to it.
#define ZUL_MODULE(Module, Prefix, Target)                                                                   \
    struct Module {                                                                                          \
        using Request = Prefix##CommandRequest;                                                              \
        using Response = Prefix##CommandResponse;                                                            \
        using Kind = Prefix##CommandKind;                                                                    \
        static constexpr auto initialize = Prefix##CommandRequest_initialize;                                \
        static constexpr auto initializeEx = Prefix##CommandRequest_initialize_ex;                           \
        static constexpr auto finalize = Prefix##CommandRequest_finalize;                                    \
        static constexpr auto copy = Prefix##CommandRequest_copy;                                            \
        static constexpr auto initializeResponse = Prefix##CommandResponse_initialize;                       \
        static constexpr auto finalizeResponse = Prefix##CommandResponse_finalize;                           \
        static constexpr auto isCaseHandled = Prefix##Command_isCaseHandled;                                 \
        static constexpr auto defaultDiscriminator = Prefix##Command_getDefaultDiscriminator;                \
        static constexpr auto target = &Request::Target;                                                     \
    };
ZUL_MODULE(Routing, ZUL_RoutingService_Administration_, target_router)
ZUL_MODULE(Federation, ZUL_FederationService_Administration_, target_service)

// The client fills a record of one module and lets the other describe it.
static_assert(offsetof(Routing::Request, target_router) == offsetof(Federation::Request, target_service));
static_assert(offsetof(Routing::Request, command) == offsetof(Federation::Request, command));
static_assert(offsetof(Routing::Request, command._u.dummy) ==
              offsetof(Federation::Request, command._u.dummy));
static_assert(offsetof(Routing::Request, command._u.peer_desc.peer_list) ==
              offsetof(Federation::Request, command._u.peer_desc.peer_list));
static_assert(offsetof(Routing::Response, message) == offsetof(Federation::Response, message));
static_assert(offsetof(Routing::Response, is_final) == offsetof(Federation::Response, is_final));

template <class Module>
class Records : public testing::Test {
protected:
    Records() { EXPECT_TRUE(Module::initialize(&a) && Module::initialize(&b)); }
    ~Records() override {
        Module::finalize(&a);
        Module::finalize(&b);
    }
    typename Module::Request a;
    typename Module::Request b;
};
using Modules = testing::Types<Routing, Federation>;
TYPED_TEST_SUITE(Records, Modules, );

TYPED_TEST(Records, StartAtTheirDefaultsWithRoomForTheirBounds) {
    auto& request = this->a;
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(request.id.host | request.id.app | request.id.invocation, 0);
        EXPECT_EQ(request.command._d, 1);
        auto& [desc, dummy, name, peer] = request.command._u;
        EXPECT_EQ(dummy | desc.xml_url.is_final | peer.is_first_participant, 0);
        EXPECT_EQ(peer.peer_list.length, 0);
        ASSERT_EQ(peer.peer_list.maximum, 16);
        const std::pair<char*, std::size_t> buffers[] = {{request.*TypeParam::target, 255},
                                                         {desc.name, 255},
                                                         {desc.xml_url.content, 4096},
                                                         {name, 255},
                                                         {peer.domain_route_name, 255}};
        for (const auto& [buffer, bound] : buffers) {
            EXPECT_STREQ(buffer, "");
            set(buffer, std::string(bound, 'n')); // the address sanitizer sees a buffer that is too small
        }
        for (DDS_Long i = 0; i < 16; ++i) {
            EXPECT_TRUE(round == 1 || *peer.peer_list.contiguous[i] == '\0');
            set(peer.peer_list.contiguous[i], std::string(255, 'n'));
        }
        // Without allocation a filled record is reset in the buffers that it has.
        request.id = {1, 2, 3};
        request.command._d = static_cast<typename TypeParam::Kind>(14);
        dummy = desc.xml_url.is_final = peer.is_first_participant = 1;
        peer.peer_list.length = 16;
        ASSERT_TRUE(TypeParam::initializeEx(&request, false, false));
        EXPECT_EQ(request.*TypeParam::target, buffers[0].first);
    }
    typename TypeParam::Response response;
    ASSERT_TRUE(TypeParam::initializeResponse(&response));
    EXPECT_TRUE(response.kind == 0 && *response.message == '\0' && response.is_final == 0);
    set(response.message, std::string(4096, 'n'));
    TypeParam::finalizeResponse(&response);
}

TYPED_TEST(Records, UnionSelectsByKind) {
    EXPECT_EQ(TypeParam::defaultDiscriminator(), 1);
    for (const int kind :
         {INT32_MIN, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, INT32_MAX}) {
        EXPECT_EQ(TypeParam::isCaseHandled(static_cast<typename TypeParam::Kind>(kind)),
                  kind >= 1 && kind <= 14)
            << kind;
    }
}

TYPED_TEST(Records, CopyTheSelectedBranchOrRefuse) {
    using Request = typename TypeParam::Request;
    static char longest[256]; // 255 characters
    static char overlong[257];
    static char overlongContent[4098];
    std::memset(longest, 'n', 255);
    std::memset(overlong, 'n', 256);
    std::memset(overlongContent, 'n', 4097);
    using Buffer = char*& (*)(Request&);
    const Buffer target = [](Request& r) -> char*& {
        return r.*TypeParam::target;
    };
    const Buffer name = [](Request& r) -> char*& {
        return r.command._u.entity_name;
    };
    const Buffer content = [](Request& r) -> char*& {
        return r.command._u.entity_desc.xml_url.content;
    };
    const Buffer peer = [](Request& r) -> char*& {
        return r.command._u.peer_desc.peer_list.contiguous[1];
    };
    const struct {
        const char* name;
        int kind;
        bool inDestination;
        Buffer buffer;
        char* replacement; // of that buffer
        bool copied;
    } rows[] = {
        {"longest target", 7, false, target, longest, true},
        {"target too long", 7, false, target, overlong, false},
        {"no target", 7, false, target, nullptr, false},
        {"no room for a target", 7, true, target, nullptr, false},
        {"name too long", 7, false, name, overlong, false},
        {"name of another branch too long", 9, false, name, overlong, true},
        {"content too long", 1, false, content, overlongContent, false},
        {"longest peer", 14, false, peer, longest, true},
        {"peer too long", 14, false, peer, overlong, false},
        {"kind without a branch", 15, false, name, nullptr, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto& source = this->a;
        auto& destination = this->b;
        source.command._d = static_cast<typename TypeParam::Kind>(row.kind);
        source.command._u.dummy = row.kind;
        source.command._u.peer_desc.peer_list.length = 2;
        destination.command._u.dummy = -1;
        destination.command._u.peer_desc.peer_list.length = 0;
        char*& buffer = row.buffer(row.inDestination ? destination : source);
        char* const own = std::exchange(buffer, row.replacement);
        EXPECT_EQ(TypeParam::copy(&destination, &source), row.copied);
        if (row.copied) {
            EXPECT_EQ(destination.command._d, row.kind);
            EXPECT_EQ(destination.command._u.dummy, row.kind == 9 ? 9 : -1);
            EXPECT_EQ(destination.command._u.peer_desc.peer_list.length, row.kind == 14 ? 2 : 0);
            EXPECT_STREQ(destination.*TypeParam::target, source.*TypeParam::target);
        }
        buffer = own;
    }
    EXPECT_FALSE(TypeParam::copy(nullptr, &this->a));
    EXPECT_FALSE(TypeParam::copy(&this->a, nullptr));
}

// Each allocation fails once, until there are none left to fail; nothing may leak or be used.
template <class Action>
long failEachAllocation(Action succeeds) {
    for (long n = 0;; ++n) {
        ZULHeap_failAfter(n);
        const bool done = succeeds();
        ZULHeap_failAfter(-1);
        if (done || n == 1000) {
            return n;
        }
    }
}

TEST(Memory, ExhaustedAnywhere) {
    EXPECT_EQ(failEachAllocation([] { return newSample<Response>() != nullptr; }), 2); // record, message
    // Record; target; name, content, entity name, route name; peer list and its 16 elements.
    EXPECT_EQ(failEachAllocation([] { return newSample<Request>() != nullptr; }), 23);
    EXPECT_EQ(failEachAllocation([] {
                  ZULTypePlugin* created = Named<Request>::newPlugin();
                  Named<Request>::deletePlugin(created);
                  return created != nullptr;
              }),
              1);
    // Endpoint data and the writer's first buffer.
    const ZULTypePlugin& record = plugin<Request>();
    EXPECT_EQ(failEachAllocation([&record] {
                  ZULEndpointData* data = record.onEndpointAttached(nullptr, {ZUL_ENDPOINT_WRITER});
                  record.onEndpointDetached(data);
                  return data != nullptr;
              }),
              2);
}

// A list with loose elements is filled up when it is copied into.
TEST(Memory, ExhaustedWhileCopyingPeers) {
    const auto source = newSample<Request>();
    const auto destination = newSample<Request>();
    source->command._d = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER;
    source->command._u.peer_desc.peer_list.length = 3;
    char** elements = destination->command._u.peer_desc.peer_list.contiguous;
    EXPECT_GE(failEachAllocation([&] {
                  for (DDS_Long i = 0; i < 3; ++i) {
                      DDS_String_free(std::exchange(elements[i], nullptr));
                  }
                  return ZUL_RoutingService_Administration_CommandRequest_copy(destination.get(),
                                                                               source.get());
              }),
              1);
    EXPECT_STREQ(elements[2], "");
}

TEST(Plugin, DescribesItsTypeAndPoolsSamples) {
    const ZULTypePlugin& record = plugin<Request>();
    EXPECT_STREQ(record.typeName, "ZUL::RoutingService::Administration::CommandRequest");
    EXPECT_EQ(record.typeCode, ZUL_RoutingService_Administration_CommandRequest_get_typecode());
    EXPECT_EQ(record.getKeyKind(), 0);
    EXPECT_TRUE(record.serializeKey == nullptr && record.deserializeKey == nullptr);

    ZULParticipantData* participant = record.onParticipantAttached();
    ZULEndpointData* writer = record.onEndpointAttached(participant, {ZUL_ENDPOINT_WRITER});
    ASSERT_NE(writer, nullptr);
    EXPECT_EQ(ZULEndpointData_maxSerializedSize(writer), 4788U);
    std::uint8_t* buffer = record.getBuffer(writer, 4792);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(record.getBuffer(writer, 4793), nullptr);
    record.returnBuffer(writer, buffer);
    EXPECT_EQ(record.getBuffer(writer, 100), buffer); // kept for reuse

    ZULEndpointData* reader = record.onEndpointAttached(participant, {ZUL_ENDPOINT_READER});
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(record.getBuffer(reader, 1), nullptr);
    void* first = record.getSample(reader);
    void* second = record.getSample(reader); // lent until the endpoint goes, which frees it
    EXPECT_TRUE(first != nullptr && second != nullptr && first != second);
    record.returnSample(reader, first);
    EXPECT_EQ(record.getSample(reader), first);
    EXPECT_EQ(text(*static_cast<Request*>(second)), "0.0.0  1");

    record.onEndpointDetached(reader);
    record.onEndpointDetached(writer);
    record.onParticipantDetached(participant);
    EXPECT_EQ(ZUL_RoutingService_Administration_CommandRequestTypeSupport_register_type(nullptr, "x"), 1);
    EXPECT_EQ(ZUL_RoutingService_Administration_CommandRequestTypeSupport_unregister_type(nullptr, "x"), 1);
}

TEST(Print, EachMemberUnderItsName) {
    const auto request = newSample<Request>();
    request->id = {1, -2, 3};
    set(request->target_router, "r1");
    request->command._d = ZUL_ROUTING_SERVICE_COMMAND_CREATE;
    set(request->command._u.entity_desc.name, "e");
    request->command._u.entity_desc.xml_url.is_final = 1;
    const auto print = ZUL_RoutingService_Administration_CommandRequestTypeSupport_print_data;
    testing::internal::CaptureStdout();
    print(request.get(), "sample", 1);
    print(nullptr, nullptr, 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), R"(   sample:
      id:
         host: 1
         app: -2
         invocation: 3
      target_router: "r1"
      command:
         _d: ZUL_ROUTING_SERVICE_COMMAND_CREATE
         entity_desc:
            name: "e"
            xml_url:
               is_final: true
               content: ""

NULL
)");
}

} // namespace

// The travelling records: copies and refusals, exhausted memory, printing, plugins.
#include "tests/admin_types/samples.h"
#include "tests/support/failing_heap.h"

#include <cstddef>

namespace {

// The client fills a record of one module and lets the other describe it.
using FederationRequest = ZUL_FederationService_Administration_CommandRequest;
static_assert(offsetof(Request, target_router) == offsetof(FederationRequest, target_service));
static_assert(offsetof(Request, command._u) == offsetof(FederationRequest, command._u));

constexpr auto copyRequest = ZUL_RoutingService_Administration_CommandRequest_copy;

TEST(Record, ATextBeyondItsBoundThatIsCopiedOrWritten) {
    std::string longest(255, 'n'), overlong(256, 'n');
    enum Buffer { TARGET, NAME, PEER };
    const struct {
        const char* name;
        int kind;
        Buffer buffer;
        char* replacement; // of that buffer of the source
        std::string copied;
    } rows[] = {
        {"longest target", 9, TARGET, longest.data(), "0.0.0 " + longest + " 9 dummy=5"},
        {"target too long", 9, TARGET, overlong.data(), ""},
        {"no target", 9, TARGET, nullptr, ""},
        {"name too long", 7, NAME, overlong.data(), ""},
        {"name of another branch too long", 9, NAME, overlong.data(), "0.0.0  9 dummy=5"},
        {"longest peer", 14, PEER, longest.data(), "0.0.0  14 peer{,0,," + longest + "}"},
        {"peer too long", 14, PEER, overlong.data(), ""},
        {"kind without a branch", 15, NAME, nullptr, "0.0.0  15"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto source = newSample<Request>();
        const auto destination = newSample<Request>();
        source->command._d = static_cast<ZUL_RoutingService_Administration_CommandKind>(row.kind);
        auto& [desc, dummy, entityName, peer] = source->command._u;
        char** const buffers[] = {&source->target_router, &entityName, &peer.peer_list.contiguous[1]};
        dummy = 5;
        peer.peer_list.length = 2;
        char* const own = std::exchange(*buffers[row.buffer], row.replacement);
        EXPECT_EQ(encode(*source, 1, 8192).has_value(), !row.copied.empty());
        ASSERT_EQ(copyRequest(destination.get(), source.get()), !row.copied.empty());
        EXPECT_TRUE(row.copied.empty() || text(*destination) == row.copied) << text(*destination);
        *buffers[row.buffer] = own;
    }
}

// Whatever has replaced the elements of a list, a copy makes room in them and decoding stays inside them.
TEST(Record, APeerListThatLosesItsRoomOrFailsUnreported) {
    const auto source = newSample<Request>();
    const auto destination = newSample<Request>();
    source->command._d = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER;
    auto& sent = source->command._u.peer_desc.peer_list;
    auto& received = destination->command._u.peer_desc.peer_list;
    char** const elements = received.contiguous;
    sent.length = 2;
    EXPECT_EQ(failEachAllocation([&] {
                  DDS_String_free(std::exchange(elements[0], nullptr));
                  DDS_String_free(std::exchange(elements[1], nullptr));
                  return copyRequest(destination.get(), source.get());
              }),
              2);
    DDS_String_free(std::exchange(elements[0], DDS_String_dup("p"))); // it has room for no more than that
    set(sent.contiguous[0], "qq");
    EXPECT_TRUE(copyRequest(destination.get(), source.get()));
    EXPECT_STREQ(elements[0], "qq");
    char one[] = "1";
    char* const texts[] = {one, one};
    EXPECT_TRUE(ZULSequence::from_array(&received, texts, 2, __func__));
    EXPECT_STREQ(elements[1], "1");
    // There is room for the longest again.
    set(sent.contiguous[0], std::string(255, 'a'));
    const Bytes wire = *encode(*source, 1, 8192);
    EXPECT_TRUE(decode(*destination, wire).accepted);
    EXPECT_STREQ(elements[0], sent.contiguous[0]);
    DDS_String_free(std::exchange(elements[0], DDS_String_dup("p")));
    EXPECT_FALSE(decode(*destination, wire).accepted);
}

TEST(Plugin, ABufferOrSampleThatIsLostLentTwiceOrTooSmall) {
    const ZULTypePlugin& record = plugin<Request>();
    EXPECT_STREQ(record.typeName, "ZUL::RoutingService::Administration::CommandRequest");
    ZULParticipantData* participant = record.onParticipantAttached();
    ZULEndpointData* writer = nullptr;
    EXPECT_EQ(failEachAllocation([&] {
                  writer = record.onEndpointAttached(participant, {ZUL_ENDPOINT_WRITER});
                  return writer != nullptr;
              }),
              3); // endpoint data, the first buffer, the pool's entry for it
    EXPECT_EQ(ZULEndpointData_maxSerializedSize(writer), 4788U);
    std::uint8_t* buffer = record.getBuffer(writer, 4792);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(record.getBuffer(writer, 4793), nullptr);
    record.returnBuffer(writer, buffer);
    EXPECT_EQ(record.getBuffer(writer, 100), buffer); // kept for reuse

    ZULEndpointData* reader = record.onEndpointAttached(participant, {ZUL_ENDPOINT_READER});
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(record.getBuffer(reader, 1), nullptr);
    // The pool's entry; record; target; name, content, entity name, route name; peer list; its 16 elements.
    void* first = nullptr;
    EXPECT_EQ(failEachAllocation([&] { return (first = record.getSample(reader)) != nullptr; }), 24);
    void* const second = record.getSample(reader); // lent until the endpoint goes, which frees it
    EXPECT_NE(first, second);
    ZULHeap_failAfter(0); // what has no use for memory cannot fail
    for (void* sample : {first, static_cast<void*>(nullptr), first}) {
        record.returnSample(reader, sample);
    }
    EXPECT_EQ(record.getSample(reader), first);
    EXPECT_EQ(record.getSample(reader), nullptr); // returned twice, it was not kept twice
    ZULHeap_failAfter(-1);
    EXPECT_EQ(text(*static_cast<Request*>(second)), "0.0.0  1");

    record.onEndpointDetached(reader);
    record.onEndpointDetached(writer);
    record.onParticipantDetached(participant);
}

TEST(Record, AMemberThatIsPrintedOtherwise) {
    const auto request = newSample<Request>();
    request->id.app = -2;
    set(request->target_router, "r1");
    set(request->command._u.entity_desc.name, "e");
    request->command._u.entity_desc.xml_url.is_final = 1;
    const auto print = ZUL_RoutingService_Administration_CommandRequestTypeSupport_print_data;
    testing::internal::CaptureStdout();
    print(request.get(), "sample", 1);
    print(nullptr, nullptr, 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "   sample:\n      id:\n         host: 0\n         app: -2\n         invocation: 0\n"
              "      target_router: \"r1\"\n      command:\n         _d: ZUL_ROUTING_SERVICE_COMMAND_LOAD\n"
              "         entity_desc:\n            name: \"e\"\n            xml_url:\n"
              "               is_final: true\n               content: \"\"\n\nNULL\n");
}

} // namespace

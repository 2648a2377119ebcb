// The wire encoding: value and exact bytes in one row, in both byte orders, then cut at every length and
// corrupted at every byte.
#include "tests/admin_types/samples.h"
#include "tests/admin_types/wire_text.h"

#include <gtest/gtest.h>

namespace {

template <class T>
struct Vector {
    const char* name;
    void (*fill)(T& sample);
    std::string wire;
    bool isReadable = true;
    std::size_t largestSample = 65535; // of the endpoint: one more takes extended headers
};

void fillHead(Request& request, DDS_Long kind) {
    request.id = {1, 2, 3};
    set(request.target_router, "r1");
    request.command._d = static_cast<ZUL_RoutingService_Administration_CommandKind>(kind);
}
const std::string HEAD = "^ 0000 000C | 00000001 00000002 00000003 ^ 0001 0007 | 00000003 'r1' 00 [00] ^";
const std::string EXTENDED_HEAD = "^ 7F01 0008 00000000 0000000C | 00000001 00000002 00000003 ^"
                                  "7F01 0008 00000001 00000007 | 00000003 'r1' 00 [00] ^";
const std::string END = "| 7F02 0000 ^ 7F02 0000";

const std::vector<Vector<Request>> REQUESTS{
    {"get, with a dummy and an empty target",
     [](Request& r) {
         fillHead(r, 13);
         r.id = {-1, 0x12345678, INT32_MIN};
         set(r.target_router, "");
         r.command._u.dummy = 0x01020304;
     },
     "^ 0000 000C | FFFFFFFF 12345678 80000000 ^ 0001 0005 | 00000001 00 [00 00 00] ^"
     "0002 0014 | 0000 0004 0000000D | 0002 0004 01020304" +
         END},
    {"create, by description",
     [](Request& r) {
         fillHead(r, 10);
         set(r.command._u.entity_desc.name, "e");
         r.command._u.entity_desc.xml_url.is_final = 1;
         set(r.command._u.entity_desc.xml_url.content, "str://");
     },
     HEAD + "0002 0024 | 0000 0004 0000000A | 0001 0013 | 00000002 'e' 00 | 01 00 00000007 'str://' 00 | 00" +
         END},
    {"add_peer, two peers",
     [](Request& r) {
         fillHead(r, 14);
         auto& peer = r.command._u.peer_desc;
         set(peer.domain_route_name, "dr");
         peer.is_first_participant = 1;
         peer.peer_list.length = 2;
         set(peer.peer_list.contiguous[0], "a");
         set(peer.peer_list.contiguous[1], "bc");
     },
     HEAD +
         "0002 002C | 0000 0004 0000000E |"
         "0004 001B | 00000003 'dr' 00 | 01 | 00000002 00000002 'a' 00 | 00 00 00000003 'bc' 00 | 00" +
         END},
    {"a kind of 15 selects no branch", [](Request& r) { fillHead(r, 15); },
     HEAD + "0002 000C | 0000 0004 0000000F" + END, false},
    {"extended headers; discriminator and dummy keep short ones", [](Request& r) { fillHead(r, 12); },
     EXTENDED_HEAD + "7F01 0008 00000002 00000014 | 0000 0004 0000000C | 0002 0004 00000000" + END, true,
     65536},
    {"extended header of a branch", [](Request& r) { fillHead(r, 5); },
     EXTENDED_HEAD +
         "7F01 0008 00000002 00000020 | 0000 0004 00000005 | 7F01 0008 00000003 00000005 | 00000001 00 |"
         "00 00 00" +
         END,
     true, 65536},
};

// A member that ends early fails; that is forgiven where at most three bytes are left.
const std::vector<Vector<Response>> RESPONSES{
    {"final answer",
     [](Response& r) {
         r.id = {1, 2, 3};
         set(r.message, "done");
         r.is_final = 1;
     },
     "[00000001 00000002 00000003 | 00000000 | 00000005] 'done' 00 ^ 01"},
    {"not found, empty and unfinished",
     [](Response& r) {
         r.id = {-1, 0x12345678, INT32_MIN};
         r.kind = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ENTITY_NOT_FOUND;
     },
     "[FFFFFFFF 12345678 80000000 | 00000003 | 00000001] 00 ^ 00"},
};

// `check(vector, sample, endpoint, identifier asked for, expected bytes)` for each vector in both
// byte orders.
template <class T, class Check>
void forEach(const std::vector<Vector<T>>& vectors, Check check) {
    for (const Vector<T>& vector : vectors) {
        const std::unique_ptr<ZULEndpointData, void (*)(ZULEndpointData*)> endpoint(
            plugin<T>().onEndpointAttached(nullptr, {}), plugin<T>().onEndpointDetached);
        ZULEndpointData_setMaxSerializedSize(endpoint.get(), vector.largestSample);
        for (const std::uint16_t id : {std::uint16_t{0}, std::uint16_t{1}}) {
            SCOPED_TRACE(std::string(vector.name) + (id == 0 ? ", big-endian" : ", little-endian"));
            const auto sample = newSample<T>();
            vector.fill(*sample);
            check(vector, *sample, endpoint.get(), id, assemble(vector.wire, isRequest<T> ? id + 2 : id + 0));
        }
    }
}
template <class Check>
void forEachVector(Check check) {
    forEach(REQUESTS, check);
    forEach(RESPONSES, check);
}

TEST(Wire, EncodesToTheBytesAndDecodesFromThemWhateverFollows) {
    forEachVector([]<class T>(const Vector<T>& vector, const T& sample, ZULEndpointData* endpoint,
                              std::uint16_t id, const WireBytes& wire) {
        const std::size_t size = wire.bytes.size();
        EXPECT_EQ(encode(sample, id, size, endpoint), wire.bytes);
        EXPECT_EQ(plugin<T>().getSerializedSampleSize(endpoint, true, id, 0, &sample), size);
        EXPECT_EQ(plugin<T>().getSerializedSampleSize(endpoint, false, id, 0, &sample), size - 4);
        for (std::size_t capacity = 0; capacity < size; ++capacity) {
            ASSERT_FALSE(encode(sample, id, capacity, endpoint)) << "into " << capacity << " bytes";
        }
        // Other stacks pad samples and count the padding in the options word.
        for (std::uint8_t padding = 0; padding < 4; ++padding) {
            Bytes bytes = wire.bytes;
            bytes[3] = padding;
            bytes.resize(size + padding);
            const auto decoded = newSample<T>();
            const Decoded result = decode(*decoded, bytes);
            ASSERT_EQ(result.accepted, vector.isReadable);
            if (result.accepted) {
                EXPECT_EQ(text(*decoded), text(sample));
                EXPECT_EQ(result.consumed, size);
            }
        }
    });
}

TEST(Wire, CutAtEveryLength) {
    forEachVector([]<class T>(const Vector<T>& vector, const T&, ZULEndpointData*, std::uint16_t,
                              const WireBytes& wire) {
        const auto decoded = newSample<T>();
        for (std::size_t size = 0; size < wire.bytes.size(); ++size) {
            const bool reachesTheKind = size + 4 >= wire.bytes.size(); // nothing but the last sentinel is cut
            const bool wanted = wire.cuts.contains(size) && (vector.isReadable || !reachesTheKind);
            ASSERT_EQ(decode(*decoded, std::span(wire.bytes).first(size)).accepted, wanted)
                << "cut at " << size;
        }
    });
}

TEST(Wire, CorruptedAtEveryByte) {
    std::size_t refused = 0;
    forEachVector([&refused]<class T>(const Vector<T>&, const T&, ZULEndpointData*, std::uint16_t,
                                      const WireBytes& wire) {
        const auto first = newSample<T>();
        const auto second = newSample<T>();
        Bytes bytes = wire.bytes;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const std::uint8_t original = bytes[i];
            for (const int value : {0, 1, 2, 0x3F, 0x7F, 0x80, 0xFF, original + 1, original ^ 0x40}) {
                bytes[i] = static_cast<std::uint8_t>(value);
                if (!decode(*first, bytes).accepted) {
                    ++refused;
                    continue;
                }
                // What is accepted is a sound sample: it goes out and comes back as it is.
                const auto encoded = encode(*first, 1, 8192);
                ASSERT_TRUE(encoded.has_value()) << "byte " << i << " = " << value;
                ASSERT_TRUE(decode(*second, *encoded).accepted) << "byte " << i << " = " << value;
                ASSERT_EQ(encode(*second, 1, 8192), encoded);
            }
            bytes[i] = original;
        }
    });
    EXPECT_GT(refused, 1000U);
}

TEST(Wire, EncapsulationIdentifiers) {
    for (const unsigned id : {0U, 1U, 2U, 3U, 4U, 0x0100U}) {
        SCOPED_TRACE(id);
        const auto expectAccepted = [id](auto& sample, std::string wire, unsigned written) {
            Bytes bytes = assemble(wire, static_cast<int>(id % 2)).bytes;
            bytes[0] = static_cast<std::uint8_t>(id >> 8);
            bytes[1] = static_cast<std::uint8_t>(id);
            EXPECT_EQ(decode(sample, bytes).accepted, id < 4);
            const auto encoded = encode(sample, static_cast<std::uint16_t>(id), 100);
            ASSERT_EQ(encoded.has_value(), id < 4);
            EXPECT_EQ(encoded.value_or(Bytes(2))[1], id < 4 ? written : 0);
        };
        // Plain types keep what is asked for; a request is a parameter list whatever is asked for.
        expectAccepted(*newSample<Response>(), RESPONSES[0].wire, id);
        expectAccepted(*newSample<Request>(), REQUESTS[0].wire, id | 2);
    }
}

} // namespace

// The wire encoding: value and exact bytes in one row, in both byte orders, then cut at every length and
// corrupted at every byte.
#include "tests/admin_types/samples.h"
#include "tests/admin_types/wire_text.h"

#include <gtest/gtest.h>

namespace {

void selectKind(Request& request, DDS_Long kind) {
    request.command._d = static_cast<ZUL_RoutingService_Administration_CommandKind>(kind);
}

template <class T>
struct Vector {
    const char* name;
    void (*fill)(T& sample);
    std::string wire;
    bool isReadable = true;
    ZULParameterForm form = ZUL_PARAMETER_SHORT;
};

void fillHead(Request& request, DDS_Long kind) {
    request.id = {1, 2, 3};
    set(request.target_router, "r1");
    selectKind(request, kind);
}
const std::string ID = "0000 000C | 00000001 00000002 00000003 ^";
const std::string TARGET = "0001 0007 | 00000003 'r1' 00 [00] ^";
const std::string END = "7F02 0000 |";
const std::string HEAD = "^" + ID + TARGET;

const std::vector<Vector<Request>> REQUESTS{
    {"announce", [](Request& r) { fillHead(r, 9); },
     HEAD + "0002 0014 | 0000 0004 00000009 | 0002 0004 00000000 | 7F02 0000 ^" + END},
    {"get, with a dummy and an empty target",
     [](Request& r) {
         r.id = {-1, 0x12345678, INT32_MIN};
         selectKind(r, 13);
         r.command._u.dummy = 0x01020304;
     },
     "^ 0000 000C | FFFFFFFF 12345678 80000000 ^ 0001 0005 | 00000001 00 [00 00 00] ^"
     "0002 0014 | 0000 0004 0000000D | 0002 0004 01020304 | 7F02 0000 ^" +
         END},
    {"enable, by entity name",
     [](Request& r) {
         fillHead(r, 7);
         set(r.command._u.entity_name, "dr1");
     },
     HEAD + "0002 0018 | 0000 0004 00000007 | 0003 0008 00000004 'dr1' 00 | 7F02 0000 ^" + END},
    {"create, by description",
     [](Request& r) {
         fillHead(r, 10);
         set(r.command._u.entity_desc.name, "e");
         r.command._u.entity_desc.xml_url.is_final = 1;
         set(r.command._u.entity_desc.xml_url.content, "str://");
     },
     HEAD +
         "0002 0024 | 0000 0004 0000000A |"
         "0001 0013 | 00000002 'e' 00 | 01 00 00000007 'str://' 00 | 00 | 7F02 0000 ^" +
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
         "0004 001B | 00000003 'dr' 00 | 01 | 00000002 00000002 'a' 00 | 00 00 00000003 'bc' 00 |"
         "00 | 7F02 0000 ^" +
         END},
    {"longest target",
     [](Request& r) {
         set(r.target_router, std::string(255, 'n'));
         selectKind(r, 2);
     },
     "^ 0000 000C | 00000000 00000000 00000000 ^ 0001 0104 | 00000100" + chars(255) +
         "00 ^ 0002 0014 | 0000 0004 00000002 | 0002 0004 00000000 | 7F02 0000 ^" + END},
    {"a kind of 0 selects no branch", [](Request& r) { fillHead(r, 0); },
     HEAD + "0002 000C | 0000 0004 00000000 | 7F02 0000 ^" + END, false},
    {"nor does a kind of 15", [](Request& r) { fillHead(r, 15); },
     HEAD + "0002 000C | 0000 0004 0000000F | 7F02 0000 ^" + END, false},
    {"extended headers; discriminator and dummy keep short ones", [](Request& r) { fillHead(r, 12); },
     "^ 7F01 0008 00000000 0000000C | 00000001 00000002 00000003 ^"
     "7F01 0008 00000001 00000007 | 00000003 'r1' 00 [00] ^"
     "7F01 0008 00000002 00000014 | 0000 0004 0000000C | 0002 0004 00000000 | 7F02 0000 ^" +
         END,
     true, ZUL_PARAMETER_LONG},
    {"extended header of a branch",
     [](Request& r) {
         fillHead(r, 5);
         set(r.command._u.entity_name, "d");
     },
     "^ 7F01 0008 00000000 0000000C | 00000001 00000002 00000003 ^"
     "7F01 0008 00000001 00000007 | 00000003 'r1' 00 [00] ^"
     "7F01 0008 00000002 00000020 | 0000 0004 00000005 |"
     "7F01 0008 00000003 00000006 | 00000002 'd' 00 | 00 00 | 7F02 0000 ^" +
         END,
     true, ZUL_PARAMETER_LONG},
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
    {"longest message",
     [](Response& r) {
         r.kind = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ERROR;
         set(r.message, std::string(4096, 'n'));
         r.is_final = 1;
     },
     "[00000000 00000000 00000000 | 00000002 | 00001001]" + chars(4096) + "00 ^ 01"},
};

// An endpoint whose samples may be so large that the given header form is the one to use.
struct Endpoint {
    explicit Endpoint(ZULParameterForm form) : data(plugin<Request>().onEndpointAttached(nullptr, {})) {
        ZULEndpointData_setMaxSerializedSize(data, form == ZUL_PARAMETER_SHORT ? 65535 : 65536);
    }
    ~Endpoint() { plugin<Request>().onEndpointDetached(data); }
    Endpoint(const Endpoint&) = delete;
    Endpoint& operator=(const Endpoint&) = delete;
    ZULEndpointData* data;
};

// `check(vector, sample, endpoint, identifier asked for, expected bytes)` for each vector in both byte
// orders.
template <class T, class Check>
void forEach(const std::vector<Vector<T>>& vectors, Check check) {
    for (const Vector<T>& vector : vectors) {
        const Endpoint endpoint(vector.form);
        for (const std::uint16_t id : {std::uint16_t{0}, std::uint16_t{1}}) {
            SCOPED_TRACE(std::string(vector.name) + (id == 0 ? ", big-endian" : ", little-endian"));
            const auto sample = newSample<T>();
            vector.fill(*sample);
            check(vector, *sample, endpoint.data, id, assemble(vector.wire, isRequest<T> ? id + 2 : id + 0));
        }
    }
}
template <class Check>
void forEachVector(Check check) {
    forEach(REQUESTS, check);
    forEach(RESPONSES, check);
}

TEST(Wire, EncodesToTheBytesAndCountsThem) {
    forEachVector([]<class T>(const Vector<T>&, const T& sample, ZULEndpointData* endpoint, std::uint16_t id,
                              const WireBytes& wire) {
        const std::size_t size = wire.bytes.size();
        // A request is a parameter list even where plain CDR is asked for.
        for (const int asked : {int{id}, isRequest<T> ? id + 2 : int{id}}) {
            const auto identifier = static_cast<std::uint16_t>(asked);
            EXPECT_EQ(encode(sample, identifier, size, endpoint), wire.bytes);
            EXPECT_EQ(plugin<T>().getSerializedSampleSize(endpoint, true, identifier, 0, &sample), size);
            EXPECT_EQ(plugin<T>().getSerializedSampleSize(endpoint, false, identifier, 0, &sample), size - 4);
        }
        for (std::size_t capacity = 0; capacity < size; ++capacity) {
            ASSERT_FALSE(encode(sample, id, capacity, endpoint)) << "into " << capacity << " bytes";
        }
    });
}

TEST(Wire, DecodesFromTheBytesWhateverFollows) {
    forEachVector([]<class T>(const Vector<T>& vector, const T& sample, ZULEndpointData*, std::uint16_t,
                              const WireBytes& wire) {
        // Other stacks pad samples and count the padding in the options word.
        for (std::uint8_t padding = 0; padding < 4; ++padding) {
            Bytes bytes = wire.bytes;
            bytes[3] = padding;
            bytes.resize(bytes.size() + padding);
            const auto decoded = newSample<T>();
            const Decoded result = decode(*decoded, bytes);
            ASSERT_EQ(result.accepted, vector.isReadable);
            if (result.accepted) {
                EXPECT_EQ(text(*decoded), text(sample));
                EXPECT_EQ(result.consumed, wire.bytes.size());
            }
        }
    });
}

TEST(Wire, LiteralBytes) {
    const auto request = newSample<Request>();
    REQUESTS[0].fill(*request);
    const Bytes littleEndian{0, 3, 0, 0, 0, 0, 12, 0, 1,   0,   0, 0, 2, 0,    0,  0, 3, 0,    0, 0,
                             1, 0, 7, 0, 3, 0, 0,  0, 'r', '1', 0, 0, 2, 0,    20, 0, 0, 0,    4, 0,
                             9, 0, 0, 0, 2, 0, 4,  0, 0,   0,   0, 0, 2, 0x7F, 0,  0, 2, 0x7F, 0, 0};
    EXPECT_EQ(encode(*request, 1, 100), littleEndian);
    const auto response = newSample<Response>();
    RESPONSES[0].fill(*response);
    const Bytes bigEndian{0, 0, 0, 0, 0, 0, 0, 1, 0, 0,   0,   2,   0,   0, 0,
                          3, 0, 0, 0, 0, 0, 0, 0, 5, 'd', 'o', 'n', 'e', 0, 1};
    EXPECT_EQ(encode(*response, 0, 100), bigEndian);
}

TEST(Wire, CutAtEveryLength) {
    forEachVector([]<class T>(const Vector<T>& vector, const T&, ZULEndpointData*, std::uint16_t,
                              const WireBytes& wire) {
        const auto decoded = newSample<T>();
        for (std::size_t size = 0; size < wire.bytes.size(); ++size) {
            const bool reachesTheKind = size + 4 >= wire.bytes.size(); // nothing but the last sentinel is cut
            const bool wanted = wire.mayBeCut[size] && (vector.isReadable || !reachesTheKind);
            ASSERT_EQ(decode(*decoded, wire.bytes.data(), size).accepted, wanted) << "cut at " << size;
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
            if (i == 64) {
                i = std::max(i, bytes.size() - 64); // the middle of the long texts is all alike
            }
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
                ASSERT_TRUE(decode(*second, *encoded).accepted);
                ASSERT_EQ(encode(*second, 1, 8192), encoded);
            }
            bytes[i] = original;
        }
    });
    EXPECT_GT(refused, 1000U);
}

TEST(Wire, EachKindWritesItsBranch) {
    constexpr std::uint8_t BRANCH_IDS[] = {1, 2, 1, 1, 3, 3, 3, 3, 2, 1, 3, 2, 2, 4}; // of kind 1, 2, ...
    const auto request = newSample<Request>();
    for (DDS_Long kind = 1; kind <= 14; ++kind) {
        selectKind(*request, kind);
        const auto bytes = encode(*request, 0, 200);
        // Behind header, id, empty target, command header and discriminator.
        ASSERT_TRUE(bytes && bytes->size() > 46);
        EXPECT_EQ((*bytes)[4 + 16 + 12 + 4 + 8 + 1], BRANCH_IDS[kind - 1]) << "kind " << kind;
    }
}

TEST(Wire, EncapsulationIdentifiers) {
    for (const unsigned id : {0U, 1U, 2U, 3U, 4U, 5U, 0x0100U, 0xFFFFU}) {
        SCOPED_TRACE(id);
        const auto identifier = static_cast<std::uint16_t>(id);
        const auto response = newSample<Response>();
        const auto request = newSample<Request>();
        Bytes wire = assemble(RESPONSES[0].wire, static_cast<int>(id % 2)).bytes;
        Bytes list = assemble(REQUESTS[0].wire, static_cast<int>(id % 2)).bytes;
        for (Bytes* bytes : {&wire, &list}) {
            (*bytes)[0] = static_cast<std::uint8_t>(id >> 8);
            (*bytes)[1] = static_cast<std::uint8_t>(id);
        }
        EXPECT_EQ(decode(*response, wire).accepted, id < 4);
        EXPECT_EQ(decode(*request, list).accepted, id < 4);
        ASSERT_EQ(encode(*response, identifier, 100).has_value(), id < 4);
        if (id < 4) {
            EXPECT_EQ((*encode(*response, identifier, 100))[1], id); // plain types keep what is asked for
        }
    }
}

} // namespace

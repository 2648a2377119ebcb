// What reading accepts and refuses, and what it then holds; skipping agrees.
#include "tests/admin_types/samples.h"
#include "tests/admin_types/wire_text.h"

#include <gtest/gtest.h>

namespace {

const std::string ID = "0000 000C | 00000001 00000002 00000003 |";
const std::string TARGET = "0001 0007 | 00000003 'r1' 00 00 |";
const std::string END = "7F02 0000 |";

template <class T>
struct Reading {
    const char* name;
    std::string wire;
    const char* expected; // null: refused
};

// The sample was full before: what does not arrive must be back at its default.
template <class T>
void expectReadings(const std::vector<Reading<T>>& readings, void (*fillBefore)(T& sample)) {
    for (const Reading<T>& reading : readings) {
        for (const int id : {isRequest<T> ? 2 : 0, isRequest<T> ? 3 : 1}) {
            SCOPED_TRACE(std::string(reading.name) + (id % 2 == 0 ? ", big-endian" : ", little-endian"));
            const WireBytes wire = assemble(reading.wire, id);
            const auto sample = newSample<T>();
            fillBefore(*sample);
            const Decoded result = decode(*sample, wire.bytes);
            ASSERT_EQ(result.accepted, reading.expected != nullptr);
            if (!result.accepted) {
                continue;
            }
            EXPECT_EQ(text(*sample), reading.expected);
            ZULCdrInput stream{.data = wire.bytes.data(), .size = wire.bytes.size()};
            EXPECT_TRUE(admin::PluginOperations<admin::Struct<T>>::skipSample(stream, true, true));
            EXPECT_EQ(stream.position, result.consumed) << "skipped";
        }
    }
}

const std::string GET = "0002 0014 | 0000 0004 0000000D | 0002 0004 00000000 | 7F02 0000 |";
// The rest of a request: its command, of the given parameters, and the list ends.
std::string command(const std::string& parameters) {
    char head[16];
    std::snprintf(head, sizeof(head), "0002 %04zX |", assemble(parameters, -1).bytes.size() + 4);
    return head + parameters + " |" + END + END;
}

TEST(Reading, Requests) {
    const auto fillBefore = [](Request& r) {
        r.id = {7, 7, 7};
        auto& [desc, dummy, name, peer] = r.command._u;
        for (char* buffer :
             {r.target_router, desc.name, desc.xml_url.content, name, peer.domain_route_name}) {
            set(buffer, "before");
        }
        desc.xml_url.is_final = 1;
        dummy = 7;
        peer.peer_list.length = 7;
    };
    const std::string longest(255, 'n');
    const std::string longestTarget = "0.0.0 " + longest + " 1";
    const std::vector<Reading<Request>> readings{
        {"nothing at all", "", "0.0.0  1"},
        {"an empty list", END, "0.0.0  1"},
        {"list end without its flag", "3F02 0000 |" + ID, "0.0.0  1"},
        {"list end under an extended header is an unknown member", "7F01 0008 00003F02 00000000 |" + ID + END,
         "1.2.3  1"},
        {"no list end", ID, "1.2.3  1"},
        {"stray bytes where a header should be", ID + "00", nullptr},
        {"the same, three", ID + "00 00 00", nullptr},
        {"another order", GET + TARGET + ID + END, "1.2.3 r1 13"},
        {"unknown member", "0007 0005 'hello' 00 00 00 |" + ID + END, "1.2.3  1"},
        {"unknown member to understand", "4007 0005 'hello' 00 00 00 |" + ID + END, nullptr},
        {"unknown member, extended", "7F01 0008 00010000 00000004 'abcd' |" + ID + END, "1.2.3  1"},
        {"unknown member to understand, extended", "7F01 0008 40010000 00000004 'abcd' |" + ID + END,
         nullptr},
        {"known member to understand", "4000 000C | 00000001 00000002 00000003 |" + END, "1.2.3  1"},
        {"entry to ignore", "3F03 0004 'abcd' |" + ID + END, "1.2.3  1"},
        {"the same with the flag", "7F03 0004 'abcd' |" + ID + END, "1.2.3  1"},
        {"entry to ignore at the very end", ID + "3F03 0000", "1.2.3  1"},
        {"entry to ignore that is longer than the rest", ID + "3F03 0008 'abcd'", nullptr},
        {"extended headers", "3F01 0008 00000000 0000000C | 00000001 00000002 00000003 |" + END, "1.2.3  1"},
        {"extended header cut short", "3F01 0008 00000000", nullptr},
        {"length that counts the padding", ID + "0001 0008 | 00000003 'r1' 00 00 |" + END, "1.2.3 r1 1"},
        {"member with unread bytes", "0000 0010 | 00000001 00000002 00000003 FFFFFFFF |" + TARGET + END,
         "1.2.3 r1 1"},
        {"member that is too short", "0000 0008 | 00000001 00000002 |" + END, nullptr},
        {"length beyond the end", ID + "0001 00FF | 00000003 'r1' 00 00 |" + END, nullptr},
        {"extended length beyond the end", "3F01 0008 00000001 FFFFFFFF | 00000003 'r1' 00 00", nullptr},
        {"string beyond its parameter", "0001 0004 | 00000003 'r1' 00 00 |" + END, nullptr},
        {"string length 0", "0001 0004 | 00000000 |" + END, nullptr},
        {"string without its end", "0001 0007 | 00000003 'r1x' 00 |" + END, nullptr},
        {"string length FFFFFFFF", "0001 0007 | FFFFFFFF 'r1' 00 00 |" + END, nullptr},
        {"longest string", "0001 0104 | 00000100" + chars(255) + "00 |" + END, longestTarget.c_str()},
        {"string one longer", "0001 0105 | 00000101" + chars(256) + "00 00 00 00 |" + END, nullptr},
        // Inside the command any unknown member fails, to be understood or not.
        {"unknown member of the command", command("0000 0004 00000009 | 0005 0000 |"), nullptr},
        {"the same, extended", command("0000 0004 00000009 | 3F01 0008 00000009 00000000 |"), nullptr},
        {"list end of the command under an extended header",
         command("0000 0004 00000009 | 3F01 0008 00003F02 00000000 |"), nullptr},
        {"entry to ignore in the command", command("0000 0004 00000009 | 3F03 0000 |"), "0.0.0  9"},
        {"empty command", "0002 0000 |" + ID + END, "1.2.3  1"},
        {"command without a kind", command("0003 000A 00000006 'other' 00 00 00 |"), "0.0.0  1 name=other"},
        {"branch of another kind", command("0000 0004 00000009 | 0003 0006 00000002 'x' 00 00 00 |"),
         "0.0.0  9 name=x"},
        {"kind of 0", command("0000 0004 00000000 |"), nullptr},
        {"kind of 15", command("0000 0004 0000000F |"), nullptr},
        {"kind of -1", command("0000 0004 FFFFFFFF |"), nullptr},
        {"description of a sender without xml_url",
         command("0000 0004 00000001 | 0001 0006 00000002 'e' 00 00 00 |"), "0.0.0  1 desc{e,0,}"},
        {"description with cut content",
         command("0000 0004 00000001 | 0001 0010 00000002 'e' 00 01 00 00000009 'str:' |"), nullptr},
    };
    expectReadings<Request>(readings, fillBefore);
}

TEST(Reading, PeerLists) {
    const auto request = newSample<Request>();
    const std::string longest = "00000100" + chars(255) + "00";
    const std::string tooLong = "00000101" + chars(256) + "00";
    const struct {
        const char* name;
        std::uint32_t count; // announced
        int elements;        // present
        std::string first;
        bool accepted;
    } rows[] = {
        {"none", 0, 0, "", true},
        {"sixteen, one of the longest", 16, 16, longest, true},
        {"one too long", 16, 16, tooLong, false},
        {"seventeen", 17, 17, "00000002 'p' 00 00 00", false},
        {"an element that is cut short", 2, 1, "00000100 'nnnnn'", false},
        {"a count that overflows", 0xFFFFFFFF, 1, longest, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        char count[9];
        std::snprintf(count, sizeof(count), "%08X", row.count);
        std::string list = std::string("00000003 'dr' 00 | 01 |") + count;
        for (int i = 0; i < row.elements; ++i) {
            list += i == 0 ? " " + row.first : " 00000002 'p' 00 | 00 00";
        }
        const std::size_t size = assemble(list, -1).bytes.size();
        for (std::size_t i = size; i % 4 != 0; ++i) {
            list += " 00";
        }
        char head[48];
        std::snprintf(head, sizeof(head), "0000 0004 0000000E | 0004 %04zX |", size);
        const Bytes bytes = assemble(command(head + list), 3).bytes;
        ASSERT_EQ(decode(*request, bytes).accepted, row.accepted);
        if (row.accepted) {
            const DDS_StringSeq& read = request->command._u.peer_desc.peer_list;
            ASSERT_EQ(read.length, static_cast<DDS_Long>(row.count));
            EXPECT_EQ(read.length == 0 ? 255 : std::strlen(read.contiguous[0]), 255U);
        }
    }
}

TEST(Reading, Responses) {
    const std::string head = "00000001 00000002 00000003 |";
    const std::string longest(4096, 'n');
    const std::string longestAnswer = "1.2.3 0 " + longest + " final";
    const std::vector<Reading<Response>> readings{
        {"nothing at all", "", "0.0.0 0 "},
        {"a sender without is_final", head + "00000001 00000003 'ok' 00", "1.2.3 1 ok"},
        {"the same, padded", head + "00000001 00000003 'ok' 00 00", "1.2.3 1 ok"},
        {"the same, padded by three", head + "00000001 00000006 'okok!' 00 00 00", "1.2.3 1 okok!"},
        {"a sender with further members", head + "00000002 00000002 'e' 00 01 'more and more'",
         "1.2.3 2 e final"},
        {"kind of 4", head + "00000004 00000003 'ok' 00 01", nullptr},
        {"kind of 4 as the last member", head + "00000004", nullptr},
        {"kind of -1", head + "FFFFFFFF 00000003 'ok' 00 01", nullptr},
        {"longest message", head + "00000000 00001001" + chars(4096) + "00 01", longestAnswer.c_str()},
        {"message one longer", head + "00000000 00001002" + chars(4097) + "00 01", nullptr},
        {"message longer than the rest", head + "00000000 00000100 'ok' 00 01", nullptr},
        {"message without its end", head + "00000000 00000002 'ok' 00 01", nullptr},
        {"message length 0", head + "00000000 00000000 01 00 00 00", nullptr},
    };
    expectReadings<Response>(readings, [](Response& r) {
        r.id = {7, 7, 7};
        r.kind = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ERROR;
        set(r.message, "before");
        r.is_final = 1;
    });
}

template <class IdlType>
bool skips(const std::string& wire) {
    const Bytes bytes = assemble(wire, -1).bytes;
    ZULCdrInput stream{.data = bytes.data(), .size = bytes.size()};
    return admin::PluginOperations<IdlType>::skipSample(stream, false, true);
}

TEST(Reading, SkippingRefusesTheSame) {
    using Command = admin::Union<ZUL_RoutingService_Administration_Command>;
    using Url = admin::Struct<ZUL_RoutingService_Administration_XmlUrl>;
    using Id = admin::Struct<ZUL_RoutingService_Administration_CommandId>;
    EXPECT_TRUE(skips<Command>("0000 0004 00000009 | 3F03 0000 | 3F02 0000"));
    EXPECT_FALSE(skips<Command>("0000 0004 00000009 | 0005 0000 | 3F02 0000"));
    EXPECT_TRUE(skips<admin::Struct<Request>>("0005 0000 | 7F02 0000"));
    EXPECT_FALSE(skips<admin::Struct<Request>>("4005 0000 | 7F02 0000"));
    EXPECT_TRUE(skips<Url>("01 00 00 00 00000003 'ok' 00"));
    EXPECT_TRUE(skips<Url>("01 00 00 00"));
    EXPECT_FALSE(skips<Url>("01 00 00 00 00000005 'ok' 00"));
    EXPECT_TRUE(skips<Id>("00000001 00000002 00000003"));
    EXPECT_FALSE(skips<Id>("00000001 00000002 00 00 00")); // a final type forgives nothing
}

} // namespace

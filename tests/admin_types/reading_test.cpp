// What reading accepts and refuses, and what it then holds; skipping agrees.
#include "tests/admin_types/samples.h"
#include "tests/admin_types/wire_text.h"
#include "tests/support/repeated.h"

#include <gtest/gtest.h>

namespace {

const std::string ID = "0000 000C | 00000001 00000002 00000003 |";
const std::string TARGET = "0001 0007 | 00000003 'r1' 00 00 |";
const std::string END = "7F02 0000 |";

struct Reading {
    std::string name, wire;
    std::optional<std::string> expected; // nothing: refused
};
constexpr std::nullopt_t REFUSED = std::nullopt;

// The sample was full before: what does not arrive must be back at its default.
template <class T>
void expectReadings(const std::string& full, const std::vector<Reading>& readings) {
    for (const Reading& reading : readings) {
        for (const int id : {isRequest<T> ? 2 : 0, isRequest<T> ? 3 : 1}) {
            SCOPED_TRACE(reading.name + (id % 2 == 0 ? ", big-endian" : ", little-endian"));
            const Bytes bytes = assemble(reading.wire, id).bytes;
            const auto sample = newSample<T>();
            ASSERT_TRUE(decode(*sample, assemble(full, id).bytes).accepted);
            const Decoded result = decode(*sample, bytes);
            ASSERT_EQ(result.accepted, reading.expected.has_value());
            EXPECT_EQ(result.accepted ? text(*sample) : "", reading.expected.value_or(""));
            // Skipping refuses the same, but for what it does not look at.
            ZULCdrInput stream{.data = bytes.data(), .size = bytes.size()};
            EXPECT_EQ(zul::idl::PluginOperations<zul::idl::Struct<T>>::skipSample(stream, true, true),
                      result.accepted || reading.name.starts_with("unknown kind"));
            EXPECT_TRUE(!result.accepted || stream.position == result.consumed);
        }
    }
}

// A request with a command of the given parameters alone.
std::string command(const std::string& parameters) {
    char header[16];
    std::snprintf(header, sizeof(header), "0002 %04zX |", assemble(parameters, -1).bytes.size() + 4);
    return header + parameters + " |" + END + END;
}
// One with a list of peers: how many it announces, and those that it has, of 4 n bytes.
std::string peers(const std::string& count, const std::string& elements) {
    const std::string list = "00000003 'dr' 00 | 01 |" + count + "|" + elements;
    char header[48];
    std::snprintf(header, sizeof(header), "0000 0004 0000000E | 0004 %04zX |",
                  assemble(list, -1).bytes.size());
    return command(header + list);
}
const std::string KIND_9 = "0000 0004 00000009 |";

// clang-format off
TEST(Reading, ARequestThatIsReadOtherwise) {
    const std::vector<Reading> readings{
        {"nothing at all", "", "0.0.0  1"},
        {"list end without its flag", "3F02 0000 |" + ID, "0.0.0  1"},
        {"list end under an extended header is an unknown member", "7F01 0008 00003F02 00000000 |" + ID + END, "1.2.3  1"},
        {"another order", "0002 0014 |" + KIND_9 + "0002 0004 00000000 | 7F02 0000 |" + TARGET + ID + END, "1.2.3 r1 9"},
        {"unknown member", "0007 0005 'hello' 00 00 00 |" + ID + END, "1.2.3  1"},
        {"unknown member to understand", "4007 0005 'hello' 00 00 00 |" + ID + END, REFUSED},
        {"unknown member to understand, extended", "7F01 0008 40010000 00000004 'abcd' |" + ID + END, REFUSED},
        {"known member to understand", "4000 000C | 00000001 00000002 00000003 |" + END, "1.2.3  1"},
        {"entry to ignore", "7F03 0004 'abcd' |" + ID + END, "1.2.3  1"},
        {"longer extended header", "3F01 000C 00000000 0000000C EEEEEEEE | 00000001 00000002 00000003 |" + END, "1.2.3  1"},
        {"extended header beyond the end", "3F01 0020 00000000 0000000C | 00000001 00000002 00000003 |", REFUSED},
        {"member with unread bytes", "0000 0010 | 00000001 00000002 00000003 FFFFFFFF |" + TARGET + END, "1.2.3 r1 1"},
        {"final member that ends early", "0000 000B | 00000001 00000002 00 00 00 00 |" + END, REFUSED},
        {"string beyond its parameter", "0001 0004 | 00000003 'r1' 00 00 |" + END, REFUSED},
        {"string length 0", "0001 0004 | 00000000 |" + END, REFUSED},
        {"string without its end", "0001 0007 | 00000003 'r1x' 00 |" + END, REFUSED},
        {"longest string", "0001 0104 | 00000100 '" + repeated("n", 255) + "' 00 |" + END, "0.0.0 " + std::string(255, 'n') + " 1"},
        {"string one longer", "0001 0105 | 00000101 '" + repeated("n", 256) + "' 00 00 00 00 |" + END, REFUSED},
        // Inside the command any unknown member fails, to be understood or not.
        {"unknown member of the command", command(KIND_9 + "0005 0000 |"), REFUSED},
        {"entry to ignore in the command", command(KIND_9 + "3F03 0000 |"), "0.0.0  9"},
        {"command without a kind", command("0003 000A 00000006 'other' 00 00 00 |"), "0.0.0  1 name=other"},
        {"branch of another kind", command(KIND_9 + "0003 0006 00000002 'x' 00 00 00 |"), "0.0.0  9 name=x"},
        {"unknown kind", command("0000 0004 0000000F |"), REFUSED},
        {"description of a sender without xml_url", command("0000 0004 00000001 | 0001 0006 00000002 'e' 00 00 00 |"), "0.0.0  1 desc{e,0,}"},
        {"no peers", peers("00000000", ""), "0.0.0  14 peer{dr,1}"},
        {"sixteen peers", peers("00000010", repeated("00000004 'abc' 00 |", 16)), "0.0.0  14 peer{dr,1" + repeated(",abc", 16) + "}"},
        {"seventeen peers", peers("00000011", repeated("00000004 'abc' 00 |", 17)), REFUSED},
        {"peer too long", peers("00000001", "00000101 '" + repeated("n", 256) + "' 00 00 00 00"), REFUSED},
        {"number of peers that overflows", peers("FFFFFFFF", "00000004 'abc' 00 |"), REFUSED},
    };
    const std::string full = "0001 000E | 00000002 'e' 00 | 01 00 | 00000002 'x' 00 00 00 | 0002 0004 00000007 |"
                             "0003 0006 00000002 'n' 00 00 00 |"
                             "0004 0012 | 00000003 'dr' 00 | 01 | 00000001 | 00000002 'a' 00 00 00 |";
    expectReadings<Request>(ID + TARGET + command(KIND_9 + full), readings);
}

TEST(Reading, AResponseThatIsReadOtherwise) {
    const std::string head = "00000001 00000002 00000003 |";
    const std::vector<Reading> readings{
        {"nothing at all", "", "0.0.0 0 "},
        {"a sender without is_final", head + "00000001 00000003 'ok' 00", "1.2.3 1 ok"},
        {"the same, padded by three", head + "00000001 00000006 'okok!' 00 00 00", "1.2.3 1 okok!"},
        {"a sender with further members", head + "00000002 00000002 'e' 00 01 'more and more'", "1.2.3 2 e final"},
        {"unknown kind", head + "00000004", REFUSED},
    };
    expectReadings<Response>(head + "00000002 00000002 'e' 00 01", readings);
}
// clang-format on

} // namespace

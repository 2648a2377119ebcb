// The wire encoding: value and exact bytes in one row, in both byte orders, then cut at every length and
// corrupted at every byte. The codec writes, reads and reports the examples and sizes of docs/wire.md.
#include "tests/admin_types/samples.h"
#include "tests/admin_types/wire_text.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

struct Vector {
    const char* value; // as text() has it
    std::string wire;
    const char* example = "";          // of docs/wire.md, which has it in one byte order
    std::size_t largestSample = 65535; // of the endpoint: one more takes extended headers
};

// clang-format off
const std::string HEAD = "^ 0000 000C | 01020304 0A0B0C0D 00000007 ^ 0001 0007 | 00000003 'r1' 00 [00] ^";
const std::string EXTENDED_HEAD = "^ 7F01 0008 00000000 0000000C | 01020304 0A0B0C0D 00000007 ^"
                                  "7F01 0008 00000001 00000007 | 00000003 'r1' 00 [00] ^";
const std::string END = "| 7F02 0000 ^ 7F02 0000";

const std::vector<Vector> REQUESTS{
    {"-1.305419896.-2147483648  13 dummy=16909060",
     "^ 0000 000C | FFFFFFFF 12345678 80000000 ^ 0001 0005 | 00000001 00 [00 00 00] ^"
     "0002 0014 | 0000 0004 0000000D | 0002 0004 01020304" + END},
    {"16909060.168496141.7 r1 13", HEAD + "0002 0014 | 0000 0004 0000000D | 0002 0004 00000000" + END, "get"},
    {"16909060.168496141.7 r1 7 name=dr1",
     HEAD + "0002 0018 | 0000 0004 00000007 | 0003 0008 | 00000004 'dr1' 00" + END, "enable"},
    {"16909060.168496141.7 r1 4 desc{dr1,1,str://\"<x/>\"}",
     HEAD + "0002 0030 | 0000 0004 00000004 | 0001 001D | 00000004 'dr1' 00 | 01 00 00 00 |"
            "0000000D 'str://\"<x/>\"' 00 | 00 00 00" + END, "update"},
    {"16909060.168496141.7 r1 14 peer{dr1,1,a,bc}",
     HEAD + "0002 0030 | 0000 0004 0000000E | 0004 001F | 00000004 'dr1' 00 | 01 00 00 00 |"
            "00000002 00000002 'a' 00 | 00 00 00000003 'bc' 00 | 00" + END, "add_peer"},
    // Under extended headers, discriminator and dummy keep short ones.
    {"16909060.168496141.7 r1 12",
     EXTENDED_HEAD + "7F01 0008 00000002 00000014 | 0000 0004 0000000C | 0002 0004 00000000" + END, "", 65536},
    {"16909060.168496141.7 r1 7 name=dr1",
     EXTENDED_HEAD + "7F01 0008 00000002 00000020 | 0000 0004 00000007 | 7F01 0008 00000003 00000008 |"
                     "00000004 'dr1' 00" + END, "enable-extended", 65536},
};
// A member that ends early fails; that is forgiven where at most three bytes are left.
const std::vector<Vector> RESPONSES{
    {"16909060.168496141.7 0 done final",
     "[01020304 0A0B0C0D 00000007 | 00000000 | 00000005] 'done' 00 ^ 01", "answer"},
    {"16909060.168496141.7 3 ", "[01020304 0A0B0C0D 00000007 | 00000003 | 00000001] 00 ^ 00", "answer-big-endian"},
};
// clang-format on

// Decodes the bytes, compares what they say, and encodes that again.
template <class T>
void expectCodec(const Bytes& wire, const char* value, std::uint16_t id, std::size_t largestSample) {
    SCOPED_TRACE(std::string(value) + ", encapsulation " + std::to_string(id));
    const std::unique_ptr<ZULEndpointData, void (*)(ZULEndpointData*)> endpoint(
        plugin<T>().onEndpointAttached(nullptr, {}), plugin<T>().onEndpointDetached);
    ZULEndpointData_setMaxSerializedSize(endpoint.get(), largestSample);
    const auto sample = newSample<T>();
    // Other stacks pad samples and count the padding in the options word.
    for (std::uint8_t padding = 0; padding < 4; ++padding) {
        Bytes bytes = wire;
        bytes.at(3) = padding;
        bytes.resize(wire.size() + padding);
        const Decoded result = decode(*sample, bytes);
        EXPECT_TRUE(result.accepted && result.consumed == wire.size());
        EXPECT_EQ(text(*sample), value);
    }
    EXPECT_EQ(encode(*sample, id, wire.size(), endpoint.get()), wire);
    EXPECT_EQ(plugin<T>().getSerializedSampleSize(endpoint.get(), true, id, 0, sample.get()), wire.size());
    for (std::size_t capacity = 0; capacity < wire.size(); ++capacity) {
        ASSERT_FALSE(encode(*sample, id, capacity, endpoint.get())) << "into " << capacity << " bytes";
    }
    // What may be read does not depend on the form that the identifier names, as long as it is one.
    for (const unsigned other : {id ^ 2U, id + 4U, id + 0x0100U}) {
        Bytes bytes = wire;
        bytes.at(0) = static_cast<std::uint8_t>(other >> 8);
        bytes.at(1) = static_cast<std::uint8_t>(other);
        EXPECT_EQ(decode(*sample, bytes).accepted, other < 4) << other;
        const auto encoded = encode(*sample, static_cast<std::uint16_t>(other), 8192);
        EXPECT_EQ(encoded.value_or(Bytes(2)).at(1), other < 4 ? other : 0) << other;
    }
}

// `check(sample, vector, identifier to ask for, bytes)` for each vector in both byte orders.
template <class Check>
void forEachVector(Check check) {
    for (const std::uint16_t id : {std::uint16_t{0}, std::uint16_t{1}}) {
        for (const Vector& vector : REQUESTS) {
            check(*newSample<Request>(), vector, id, assemble(vector.wire, id + 2));
        }
        for (const Vector& vector : RESPONSES) {
            check(*newSample<Response>(), vector, id, assemble(vector.wire, id));
        }
    }
}

TEST(Wire, AByteThatIsWrittenOrReadOtherwise) {
    forEachVector([]<class T>(T&, const Vector& vector, std::uint16_t id, const WireBytes& wire) {
        expectCodec<T>(wire.bytes, vector.value, id, vector.largestSample);
    });
}

TEST(Wire, ACutSampleThatIsTakenForAWholeOneOrACorruptOneThatDoesHarm) {
    forEachVector([]<class T>(T& first, const Vector& vector, std::uint16_t, const WireBytes& wire) {
        const auto second = newSample<T>();
        for (std::size_t i = 0; i < wire.bytes.size(); ++i) {
            ASSERT_EQ(decode(first, std::span(wire.bytes).first(i)).accepted, wire.cuts.contains(i))
                << vector.value << " cut at " << i;
            for (const int value :
                 {0, 1, 2, 0x3F, 0x7F, 0x80, 0xFF, wire.bytes[i] + 1, wire.bytes[i] ^ 0x40}) {
                Bytes bytes = wire.bytes;
                bytes[i] = static_cast<std::uint8_t>(value);
                if (decode(first, bytes).accepted) { // it goes out and comes back as it is
                    const auto encoded = encode(first, 1, 8192);
                    ASSERT_TRUE(encoded && decode(*second, *encoded).accepted) << i << " = " << value;
                    ASSERT_EQ(encode(*second, 1, 8192), encoded);
                }
            }
        }
    });
}

// Takes out what is between "```hex NAME" and "```". A line holds bytes, two blanks, and what they mean.
Bytes takeExample(std::string& document, const std::string& name) {
    const std::size_t begin = document.find("```hex " + name + "\n");
    const std::size_t end = document.find("\n```\n", begin);
    std::istringstream lines(document.substr(begin, end - begin));
    document.erase(begin, end - begin);
    Bytes bytes;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line.substr(0, line.find("  ")));
        for (unsigned byte = 0; words >> std::hex >> byte;) {
            bytes.push_back(static_cast<std::uint8_t>(byte));
        }
    }
    return bytes;
}

TEST(WireDocument, AnExampleOrASizeThatIsNotTheCodecs) {
    const char* source = std::getenv("ZUL_SOURCE");
    std::ifstream file(std::string(source != nullptr ? source : ".") + "/docs/wire.md");
    std::string document(std::istreambuf_iterator<char>(file), {});
    forEachVector([&](auto&, const Vector& vector, std::uint16_t id, const WireBytes& wire) {
        const std::string_view example = vector.example;
        if (!example.empty() && example.ends_with("big-endian") == (id == 0)) {
            EXPECT_EQ(takeExample(document, vector.example), wire.bytes) << example;
        }
    });
    EXPECT_EQ(document.find("```hex"), std::string::npos) << "an example of no vector";
    for (const char* row : {"| `CommandRequest` | 4792 | 92 |", "| `CommandResponse` | 4122 | 26 |"}) {
        EXPECT_NE(document.find(row), std::string::npos) << row; // as family_test.cpp, with encapsulation
    }
}

} // namespace

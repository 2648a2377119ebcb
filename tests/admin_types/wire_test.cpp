// The wire encoding: value and exact bytes in one row, in both byte orders, then cut at every length and
// corrupted at every byte. The codec writes, reads and reports the examples and sizes of docs/wire.md.
#include "tests/admin_types/samples.h"
#include "tests/admin_types/wire_text.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

namespace {

struct Vector {
    const char* value; // as text() has it
    std::string wire;
    std::size_t largestSample = 65535; // of the endpoint: one more takes extended headers
};

const std::string HEAD = "^ 0000 000C | 00000001 00000002 00000003 ^ 0001 0007 | 00000003 'r1' 00 [00] ^";
const std::string EXTENDED_HEAD = "^ 7F01 0008 00000000 0000000C | 00000001 00000002 00000003 ^"
                                  "7F01 0008 00000001 00000007 | 00000003 'r1' 00 [00] ^";
const std::string END = "| 7F02 0000 ^ 7F02 0000";

const std::vector<Vector> REQUESTS{
    {"-1.305419896.-2147483648  13 dummy=16909060",
     "^ 0000 000C | FFFFFFFF 12345678 80000000 ^ 0001 0005 | 00000001 00 [00 00 00] ^"
     "0002 0014 | 0000 0004 0000000D | 0002 0004 01020304" +
         END},
    {"1.2.3 r1 10 desc{e,1,str://}",
     HEAD + "0002 0024 | 0000 0004 0000000A | 0001 0013 | 00000002 'e' 00 | 01 00 00000007 'str://' 00 | 00" +
         END},
    {"1.2.3 r1 14 peer{dr,1,a,bc}", HEAD +
                                        "0002 002C | 0000 0004 0000000E | 0004 001B | 00000003 'dr' 00 | 01 |"
                                        "00000002 00000002 'a' 00 | 00 00 00000003 'bc' 00 | 00" +
                                        END},
    // Under extended headers, discriminator and dummy keep short ones.
    {"1.2.3 r1 12",
     EXTENDED_HEAD + "7F01 0008 00000002 00000014 | 0000 0004 0000000C | 0002 0004 00000000" + END, 65536},
    {"1.2.3 r1 5",
     EXTENDED_HEAD +
         "7F01 0008 00000002 00000020 | 0000 0004 00000005 | 7F01 0008 00000003 00000005 |"
         "00000001 00 | 00 00 00" +
         END,
     65536},
};
// A member that ends early fails; that is forgiven where at most three bytes are left.
const std::vector<Vector> RESPONSES{
    {"1.2.3 0 done final", "[00000001 00000002 00000003 | 00000000 | 00000005] 'done' 00 ^ 01"},
    {"-1.305419896.-2147483648 3 ", "[FFFFFFFF 12345678 80000000 | 00000003 | 00000001] 00 ^ 00"},
};

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
}

// `check(sample, vector, identifier to ask for, bytes)` for each vector in both byte orders.
template <class T, class Check>
void forEach(const std::vector<Vector>& vectors, Check check) {
    for (const Vector& vector : vectors) {
        for (const std::uint16_t id : {std::uint16_t{0}, std::uint16_t{1}}) {
            check(*newSample<T>(), vector, id, assemble(vector.wire, isRequest<T> ? id + 2 : id + 0));
        }
    }
}
template <class Check>
void forEachVector(Check check) {
    forEach<Request>(REQUESTS, check);
    forEach<Response>(RESPONSES, check);
}

TEST(Wire, AByteThatIsWrittenOrReadOtherwise) {
    forEachVector([]<class T>(T&, const Vector& vector, std::uint16_t id, const WireBytes& wire) {
        expectCodec<T>(wire.bytes, vector.value, id, vector.largestSample);
    });
}

TEST(Wire, ACutSampleThatIsTakenForAWholeOne) {
    forEachVector([]<class T>(T& sample, const Vector& vector, std::uint16_t, const WireBytes& wire) {
        for (std::size_t size = 0; size < wire.bytes.size(); ++size) {
            ASSERT_EQ(decode(sample, std::span(wire.bytes).first(size)).accepted, wire.cuts.contains(size))
                << vector.value << " cut at " << size;
        }
    });
}

TEST(Wire, ACorruptSampleThatDoesHarm) {
    std::size_t refused = 0;
    forEachVector([&refused]<class T>(T& first, const Vector&, std::uint16_t, const WireBytes& wire) {
        const auto second = newSample<T>();
        Bytes bytes = wire.bytes;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const std::uint8_t original = bytes[i];
            for (const int value : {0, 1, 2, 0x3F, 0x7F, 0x80, 0xFF, original + 1, original ^ 0x40}) {
                bytes[i] = static_cast<std::uint8_t>(value);
                if (!decode(first, bytes).accepted) {
                    ++refused;
                    continue;
                }
                // What is accepted is a sound sample: it goes out and comes back as it is.
                const auto encoded = encode(first, 1, 8192);
                ASSERT_TRUE(encoded && decode(*second, *encoded).accepted) << "byte " << i << " = " << value;
                ASSERT_EQ(encode(*second, 1, 8192), encoded);
            }
            bytes[i] = original;
        }
    });
    EXPECT_GT(refused, 1000U);
}

TEST(Wire, AnEncapsulationIdentifierThatIsNone) {
    forEachVector([]<class T>(T& sample, const Vector& vector, std::uint16_t order, const WireBytes& wire) {
        for (const unsigned id : {order + 0U, order + 2U, order + 4U, order + 0x0100U}) {
            Bytes bytes = wire.bytes;
            bytes[0] = static_cast<std::uint8_t>(id >> 8);
            bytes[1] = static_cast<std::uint8_t>(id);
            EXPECT_EQ(decode(sample, bytes).accepted, id < 4) << vector.value << " as " << id;
            const auto encoded = encode(sample, static_cast<std::uint16_t>(id), 100);
            ASSERT_EQ(encoded.has_value(), id < 4) << id;
            // Plain types keep what is asked for; a request is a parameter list whatever is asked for.
            EXPECT_EQ(encoded.value_or(Bytes(2))[1], id < 4 ? isRequest<T> ? id | 2 : id : 0);
        }
    });
}

// What is between "```hex NAME" and "```", by name. A line holds bytes, two blanks, and what they mean.
std::map<std::string, Bytes> readExamples(const std::string& document) {
    std::map<std::string, Bytes> examples;
    Bytes* example = nullptr;
    std::istringstream lines(document);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("```")) {
            example = line.starts_with("```hex ") ? &examples[line.substr(7)] : nullptr;
        } else if (example != nullptr) {
            std::istringstream bytes(line.substr(0, line.find("  ")));
            for (unsigned byte = 0; bytes >> std::hex >> byte;) {
                example->push_back(static_cast<std::uint8_t>(byte));
            }
        }
    }
    return examples;
}

TEST(WireDocument, AnExampleOrASizeThatIsNotTheCodecs) {
    const char* source = std::getenv("ZUL_SOURCE");
    std::ifstream file(std::string(source != nullptr ? source : ".") + "/docs/wire.md");
    const std::string document(std::istreambuf_iterator<char>(file), {});
    auto examples = readExamples(document);
    const auto take = [&examples](const char* name) {
        const Bytes bytes = examples.at(name);
        examples.erase(name);
        return bytes;
    };
    const char* const enable = "16909060.168496141.7 r1 7 name=dr1";
    expectCodec<Request>(take("enable"), enable, 1, 65535);
    expectCodec<Request>(take("enable-extended"), enable, 1, 65536);
    expectCodec<Request>(take("get"), "16909060.168496141.7 r1 13", 1, 65535);
    expectCodec<Request>(take("update"), "16909060.168496141.7 r1 4 desc{dr1,1,str://\"<x/>\"}", 1, 65535);
    expectCodec<Request>(take("add_peer"), "16909060.168496141.7 r1 14 peer{dr1,1,a,bc}", 1, 65535);
    expectCodec<Response>(take("answer"), "16909060.168496141.7 0 done final", 1, 65535);
    expectCodec<Response>(take("answer-big-endian"), "16909060.168496141.7 3 ", 0, 65535);
    EXPECT_TRUE(examples.empty()) << "not compared: " << examples.begin()->first;
    for (const char* row : {"| `CommandRequest` | 4792 | 92 |", "| `CommandResponse` | 4122 | 26 |"}) {
        EXPECT_NE(document.find(row), std::string::npos)
            << row; // family_test.cpp has them without the encapsulation
    }
}

} // namespace

// The examples and sizes in docs/wire.md are what the codec writes, reads and reports.
#include "tests/admin_types/samples.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

namespace {

std::string readDocument() {
    const char* source = std::getenv("ZUL_SOURCE");
    std::ifstream file(std::string(source != nullptr ? source : ".") + "/docs/wire.md");
    return {std::istreambuf_iterator<char>(file), {}};
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

const std::string DOCUMENT = readDocument();

struct Example {
    const char* name;
    const char* text;
    std::uint16_t encapsulation = 1;
    std::size_t largestSample = 65535;
};

// Decodes the example, compares what it says, and encodes that again.
template <class T>
void expectExample(const Example& example, const Bytes& bytes) {
    SCOPED_TRACE(example.name);
    const std::unique_ptr<ZULEndpointData, void (*)(ZULEndpointData*)> endpoint(
        plugin<T>().onEndpointAttached(nullptr, {}), plugin<T>().onEndpointDetached);
    ZULEndpointData_setMaxSerializedSize(endpoint.get(), example.largestSample);
    const auto sample = newSample<T>();
    EXPECT_TRUE(decode(*sample, bytes).accepted);
    EXPECT_EQ(text(*sample), example.text);
    EXPECT_EQ(encode(*sample, example.encapsulation, 1000, endpoint.get()), bytes);
}

TEST(WireDocument, AnExampleThatIsNotWhatTheCodecWritesAndReads) {
    auto examples = readExamples(DOCUMENT);
    for (const Example& example : {
             Example{"enable", "16909060.168496141.7 r1 7 name=dr1"},
             Example{"enable-extended", "16909060.168496141.7 r1 7 name=dr1", 1, 65536},
             Example{"get", "16909060.168496141.7 r1 13"},
             Example{"update", "16909060.168496141.7 r1 4 desc{dr1,1,str://\"<x/>\"}"},
             Example{"add_peer", "16909060.168496141.7 r1 14 peer{dr1,1,a,bc}"},
         }) {
        expectExample<Request>(example, examples[example.name]);
        examples.erase(example.name);
    }
    expectExample<Response>({"answer", "16909060.168496141.7 0 done final"}, examples["answer"]);
    expectExample<Response>({"answer-big-endian", "16909060.168496141.7 3 ", 0},
                            examples["answer-big-endian"]);
    EXPECT_EQ(examples.size(), 2U) << "not compared: " << examples.begin()->first;
}

template <class T>
void expectSizes(const std::string& type) {
    const auto size = [](auto operation) {
        return std::to_string(operation(nullptr, true, 1, 0));
    };
    const std::string row = "| `" + type + "` | " + size(plugin<T>().getSerializedSampleMaxSize) + " | " +
                            size(plugin<T>().getSerializedSampleMinSize) + " |";
    EXPECT_NE(DOCUMENT.find(row), std::string::npos) << row;
}

TEST(WireDocument, ASizeThatIsNotTheCodecs) {
    expectSizes<Request>("CommandRequest");
    expectSizes<Response>("CommandResponse");
}

} // namespace

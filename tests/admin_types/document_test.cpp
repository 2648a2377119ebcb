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

// What stands between "```hex NAME" and "```", by name: on each line bytes, then two blanks and their
// meaning.
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

class WireDocument : public testing::Test {
protected:
    template <class T>
    void expect(const char* name, const std::function<void(T&)>& fill, std::uint16_t encapsulation = 1,
                std::size_t largestSample = 65535) {
        SCOPED_TRACE(name);
        const std::unique_ptr<ZULEndpointData, void (*)(ZULEndpointData*)> endpoint(
            plugin<T>().onEndpointAttached(nullptr, {}), plugin<T>().onEndpointDetached);
        ZULEndpointData_setMaxSerializedSize(endpoint.get(), largestSample);
        const auto sample = newSample<T>();
        fill(*sample);
        EXPECT_EQ(encode(*sample, encapsulation, 1000, endpoint.get()), examples[name]);
        const auto decoded = newSample<T>();
        EXPECT_TRUE(decode(*decoded, examples[name]).accepted);
        EXPECT_EQ(text(*decoded), text(*sample));
        examples.erase(name);
    }
    template <class T>
    void expectSizes(const std::string& type) {
        const auto size = [](auto operation) {
            return std::to_string(operation(nullptr, true, 1, 0));
        };
        const std::string row = "| `" + type + "` | " + size(plugin<T>().getSerializedSampleMaxSize) + " | " +
                                size(plugin<T>().getSerializedSampleMinSize) + " |";
        EXPECT_NE(document.find(row), std::string::npos) << row;
    }

    const std::string document = readDocument();
    std::map<std::string, Bytes> examples = readExamples(document);
};

TEST_F(WireDocument, AnExampleOrSizeThatIsNotTheCodecs) {
    const auto request = [](DDS_Long kind, auto fillBranch) -> std::function<void(Request&)> {
        return [kind, fillBranch](Request& r) {
            r.id = {0x01020304, 0x0A0B0C0D, 7};
            set(r.target_router, "r1");
            r.command._d = static_cast<ZUL_RoutingService_Administration_CommandKind>(kind);
            fillBranch(r.command._u);
        };
    };
    const auto enable =
        request(ZUL_ROUTING_SERVICE_COMMAND_ENABLE, [](auto& u) { set(u.entity_name, "dr1"); });
    expect("enable", enable);
    expect("enable-extended", enable, 1, 65536);
    expect("get", request(ZUL_ROUTING_SERVICE_COMMAND_GET, [](auto&) {}));
    expect("update", request(ZUL_ROUTING_SERVICE_COMMAND_UPDATE, [](auto& u) {
               set(u.entity_desc.name, "dr1");
               u.entity_desc.xml_url.is_final = 1;
               set(u.entity_desc.xml_url.content, "str://\"<x/>\"");
           }));
    expect("add_peer", request(ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, [](auto& u) {
               set(u.peer_desc.domain_route_name, "dr1");
               u.peer_desc.is_first_participant = 1;
               u.peer_desc.peer_list.length = 2;
               set(u.peer_desc.peer_list.contiguous[0], "a");
               set(u.peer_desc.peer_list.contiguous[1], "bc");
           }));
    const auto response = [](DDS_Long kind, const char* message, bool isFinal) {
        return std::function<void(Response&)>([=](Response& r) {
            r.id = {0x01020304, 0x0A0B0C0D, 7};
            r.kind = static_cast<ZUL_RoutingService_Administration_CommandResponseKind>(kind);
            set(r.message, message);
            r.is_final = isFinal ? 1 : 0;
        });
    };
    expect("answer", response(ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK, "done", true));
    expect("answer-big-endian", response(ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ENTITY_NOT_FOUND, "", false),
           0);
    EXPECT_TRUE(examples.empty()) << "not compared: " << examples.begin()->first;
    expectSizes<Request>("CommandRequest");
    expectSizes<Response>("CommandResponse");
}

} // namespace

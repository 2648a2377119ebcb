// What the senders write: names up to their limits, peers, XML in pieces, snippets, local files, and
// dupdate's three requests.
#include "remote_config/assignment.h"
#include "remote_config/command_request.h"
#include "remote_config/entity_commands.h"
#include "remote_config/local_file.h"
#include "remote_config/url_commands.h"
#include "tests/remote_config/client_fixture.h"
#include "tests/support/repeated.h"

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string name(std::size_t length) {
    return std::string(length, 'n');
}
// Text whose pieces differ from each other.
std::string pattern(std::size_t length) {
    std::string text;
    while (text.size() < length) {
        text += std::to_string(text.size()) + ".";
    }
    return text.substr(0, length);
}

class Commands : public ConnectedClient {
protected:
    // Each request is answered, but for the first pieces of an upload.
    void SetUp() override {
        ConnectedClient::SetUp();
        fake_dds::world().router = [](const fake_dds::Request& request) -> std::vector<fake_dds::Answer> {
            const bool hasXml =
                admin::findCommand(request.command._d)->branch == admin::CommandBranch::ENTITY_DESC;
            if (hasXml && request.command._u.entity_desc.xml_url.is_final == 0) {
                return {};
            }
            return {{.message = "done"}};
        };
    }
    void TearDown() override {
        std::filesystem::remove(path);
        ConnectedClient::TearDown();
    }
    std::string write(const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    int load(const std::string& url, bool isRemote) {
        fake_dds::forget();
        return ROUTERRemoteConfigClient_sendCommandLoad(&client, "r1", "cfg", url.c_str(), isRemote, &result);
    }
    // The pieces written, which must all belong to the one request that the client holds.
    Lines pieces() {
        Lines contents;
        const auto& requests = fake_dds::world().written;
        for (const auto& request : requests) {
            const auto& xmlUrl = request->command._u.entity_desc.xml_url;
            EXPECT_EQ(request->id.invocation, client.commandSample->id.invocation);
            EXPECT_EQ(xmlUrl.is_final != 0, request == requests.back());
            contents.emplace_back(xmlUrl.content);
        }
        return contents;
    }
    const std::string path = testing::TempDir() + "commands_test." + std::to_string(getpid()) + ".xml";
};

TEST_F(Commands, SendNamesUpToTheirLimitAndRefuseLongerOnes) {
    for (const admin::Command& command : admin::COMMANDS) {
        SCOPED_TRACE(admin::commandName(command.kind));
        const auto prepare = [&](std::size_t target, std::size_t entity) {
            return zul::remote_config::prepareRequest(client, {"sender", command.kind}, name(target).c_str(),
                                                      name(entity).c_str(), &result);
        };
        const bool isShorter = command.kind == 10 || command.kind == 11 || command.kind == 14;
        const std::size_t longest = isShorter ? 254 : 255;
        EXPECT_TRUE(prepare(254, longest));
        // Refused: told to the operator and the log, and no number used.
        const DDS_Long invocation = client.commandSample->id.invocation;
        for (const auto& [target, entity] : {std::pair(255UL, 1UL), {1UL, longest + 1}}) {
            EXPECT_FALSE(prepare(target, entity));
            EXPECT_TRUE(std::string(result.textBuffer).ends_with(" too long")) << result.textBuffer;
            EXPECT_NE(log.take().find("[sender] failure: "), std::string::npos);
            EXPECT_EQ(client.commandSample->id.invocation, invocation);
        }
    }
}

TEST_F(Commands, TakeUpToSixteenPeersAndKeepTheLastOnesWithoutAny) {
    const auto sendPeers = [this](const std::string& list) {
        return ROUTERRemoteConfigClient_sendCommandAddPeer(&client, "r1", "d1", true, list.c_str(), &result);
    };
    const std::string sixteen = "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16";
    const auto& peers = client.commandSample->command._u.peer_desc.peer_list;
    EXPECT_TRUE(sendPeers(name(254) + ",,b"));
    EXPECT_TRUE(sendPeers(",,"));
    EXPECT_EQ(peers.length, 2);
    EXPECT_EQ(ZULSequence::at(peers, 0), name(254));
    EXPECT_TRUE(sendPeers(sixteen));
    EXPECT_EQ(peers.length, 16);
    // A comma after the 16th is one too many.
    for (const std::string& list : {sixteen + ",", "a," + name(255), name(255) + ",a"}) {
        EXPECT_FALSE(sendPeers(list));
        EXPECT_EQ(text(), "peerList too long");
    }
}

TEST_F(Commands, SendTextInPieces) {
    const std::string inlineText = "str://" + pattern(5000);
    const std::pair<std::string, Lines> cases[] = {
        {pattern(4089), {"file://" + pattern(4089)}},
        {pattern(4090), {}},                  // refused: too long with the scheme
        {pattern(4096), {pattern(4096), ""}}, // a bare path this long goes without the scheme
        {inlineText.substr(0, 4095), {inlineText.substr(0, 4095)}},
        {inlineText.substr(0, 4096), {inlineText.substr(0, 4096), ""}},
        {inlineText.substr(0, 4097), {inlineText.substr(0, 4096), inlineText.substr(4096, 1)}},
    };
    for (const auto& [url, expected] : cases) {
        SCOPED_TRACE(url.size());
        EXPECT_EQ(load(url, true), ROUTER_URL_COMMAND_OK);
        EXPECT_EQ(pieces(), expected);
        EXPECT_STREQ(result.text, expected.empty() ? "xmlUrl too long" : "done");
    }
    ZULHeap_failAfter(0);
    EXPECT_EQ(load("session.x=1", true), ROUTER_URL_COMMAND_SEND_ERROR); // not as a path
    ZULHeap_failAfter(-1);
}

TEST_F(Commands, SendALocalFileInPieces) {
    const std::string bytes = pattern(200000); // longer than what is read ahead
    EXPECT_EQ(load(write(bytes), false), ROUTER_URL_COMMAND_OK);
    std::string joined;
    for (const std::string& piece : pieces()) {
        joined += piece;
    }
    EXPECT_TRUE(joined == "str://\"" + bytes + "\"");
    // A NUL byte cuts its piece.
    EXPECT_EQ(load(write("a" + std::string(4088, '\0') + "rest"), false), ROUTER_URL_COMMAND_OK);
    EXPECT_EQ(pieces(), (Lines{"str://\"a", "rest\""}));
    // A pipe that nobody writes to is no empty file.
    std::filesystem::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), S_IRUSR), 0);
    EXPECT_EQ(load(path, false), ROUTER_URL_COMMAND_FILE_READ_ERROR);
}

TEST_F(Commands, AnUploadEndsAtAFailedWriteOrAnInterruptBetweenPieces) {
    const std::string inlineText = "str://" + pattern(12000);
    for (const std::string& url : {inlineText, write(pattern(12000))}) {
        for (const std::size_t piece : {1U, 2U, 3U}) { // the third is the last
            fake_dds::fail("write", static_cast<int>(piece));
            EXPECT_EQ(load(url, url == inlineText), ROUTER_URL_COMMAND_SEND_ERROR);
            EXPECT_EQ(fake_dds::world().written.size(), piece - 1);
        }
    }
    fake_dds::world().router = [this](const fake_dds::Request&) -> std::vector<fake_dds::Answer> {
        ROUTERRemoteConfigClient_abortResponseWait(&client);
        return {};
    };
    EXPECT_EQ(load(inlineText, true), ROUTER_URL_COMMAND_OK);
    EXPECT_EQ(fake_dds::world().written.size(), 1U);
    EXPECT_STREQ(result.textBuffer, "Response not received");
    EXPECT_EQ(result.kind, 0);
}

TEST_F(Commands, DupdateEnablesAgainWhateverBecameOfTheUpdate) {
    std::size_t interrupted = 0;
    std::vector<int> kinds;
    fake_dds::world().router = [&](const fake_dds::Request& request) -> std::vector<fake_dds::Answer> {
        kinds.push_back(request.command._d);
        if (kinds.size() == interrupted) {
            ROUTERRemoteConfigClient_abortResponseWait(&client);
        }
        if (kinds.back() == 4) {
            return {}; // nobody answers the update: it is not waited for
        }
        return {kinds.back() == 7 ? fake_dds::Answer{.message = "enabled"}
                                  : fake_dds::Answer{.message = "too early", .kind = 2}};
    };
    const std::string twoPieces = "str://" + pattern(5000);
    const std::tuple<std::string, int, std::size_t, std::vector<int>> cases[] = {
        // What it updates with, the write that fails, the one that is interrupted, the kinds that are sent.
        {twoPieces, 0, 0, {8, 4, 4, 7}},         // nothing goes wrong
        {path + "!", 0, 0, {8, 7}},              // there is no such file
        {"str://x", 1, 0, {4, 7}},               // the disable is not written
        {twoPieces, 0, 1, {8, 7}},               // interrupted before the update,
        {write(pattern(9000)), 0, 2, {8, 4, 7}}, // in the middle of it,
        {twoPieces, 0, 3, {8, 4, 4, 7}},         // and at its end
    };
    for (const auto& [url, failing, interruptedWrite, expected] : cases) {
        kinds.clear();
        interrupted = interruptedWrite;
        fake_dds::fail("write", failing);
        EXPECT_TRUE(
            ROUTERRemoteConfigClient_sendCommandsDUE(&client, "r1", "dr1", url.c_str(), false, &result));
        EXPECT_EQ(text(), "enabled");
        EXPECT_EQ(kinds, expected);
    }
}

TEST_F(Commands, ReadsAWholeFile) {
    write(pattern(100000));
    EXPECT_EQ(ZULStringPtr(ROUTERRemoteConfig_readFile(path.c_str())).get(), pattern(100000));
    ZULHeap_failAfter(0);
    EXPECT_EQ(ROUTERRemoteConfig_readFile(path.c_str()), nullptr);
    ZULHeap_failAfter(-1);
    EXPECT_EQ(ROUTERRemoteConfig_readFile((path + "!").c_str()), nullptr);
}

std::string convert(const std::string& text) {
    const ZULStringPtr snippet(ROUTERRemoteConfigClient_convertAssignmentToXmlSnippet(text.c_str()));
    return snippet != nullptr ? snippet.get() : "(null)";
}

TEST(Assignment, BecomesASnippet) {
    const std::string names = "session" + repeated(".c", 30);
    const std::pair<std::string, std::string> cases[] = {
        {"session.s1.property[buffer_size]=\"a<b\"",
         "<session><s1><property><value><element><name>buffer_size</name><value> a&lt;b "
         "</value></element></value></property></s1></session>"},
        {"polling_session \t\r\n=  \"q\" ", "<polling_session>   q  </polling_session>"},
        {"topic_route.x=\"", "<topic_route><x> </x></topic_route>"},
        {"auto_topic_route.x=<\"&=\">'\xE4",
         "<auto_topic_route><x>&lt;&quot;&amp;=&quot;&gt;&apos;\xE4</x></auto_topic_route>"},
        {"auto_route.b[]=a.b[c]", "<auto_route><b>a.b[c]</b></auto_route>"},
        {"routing_service.x=1", "<routing_service><x>1</x></routing_service>"},
        {"routes.x=1", "<routes><x>1</x></routes>"}, // a plain prefix test
        {names + "=v",
         "<session>" + repeated("<c>", 30) + "v" + repeated("</c>", 30) + "</session>"}, // 31 components
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(convert(text), "str://\"" + expected + "\"");
    }
    for (const std::string& text : Lines{names + ".c=v", "domain_route.x", " session.x=1"}) {
        EXPECT_EQ(convert(text), "(null)") << text;
    }
    for (const int allocations : {0, 1}) {
        ZULHeap_failAfter(allocations);
        EXPECT_EQ(convert("session.x=1"), "(null)");
    }
    ZULHeap_failAfter(-1);
}

} // namespace

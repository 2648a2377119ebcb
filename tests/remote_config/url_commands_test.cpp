// Configuration XML on its way out: pieces, snippets, local files and dupdate's three requests.
#include "remote_config/assignment.h"
#include "remote_config/local_file.h"
#include "remote_config/url_commands.h"
#include "tests/remote_config/client_fixture.h"

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr const char* SEND_URL = "ROUTERRemoteConfigClient_sendUrlCommand";

std::string run(std::size_t length, char c = 'x') {
    return std::string(length, c);
}
// Text whose pieces differ from each other.
std::string pattern(std::size_t length) {
    std::string text;
    while (text.size() < length) {
        text += std::to_string(text.size()) + ".";
    }
    return text.substr(0, length);
}
class UrlCommands : public ConnectedClient {
protected:
    void SetUp() override {
        ConnectedClient::SetUp();
        fake_dds::setHooks({.onWrite = [this](const fake_dds::Request& request) {
            if (request.command._u.entity_desc.xml_url.is_final != 0) {
                fake_dds::deliver({answer("done")});
            }
        }});
        char name[] = "/tmp/url_commands_test.XXXXXX";
        directory = mkdtemp(name);
    }
    void TearDown() override {
        std::filesystem::remove_all(directory);
        ConnectedClient::TearDown();
    }
    std::string write(const std::string& bytes) {
        const std::string path = directory + "/config.xml";
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    int load(const std::string& url, bool isRemote) {
        reset();
        return ROUTERRemoteConfigClient_sendCommandLoad(&client, "r1", "cfg", url.c_str(), isRemote, &result);
    }
    // The pieces written, which must all belong to the one request that the client holds.
    Lines pieces() {
        Lines contents;
        const auto requests = fake_dds::written();
        for (const fake_dds::Request* request : requests) {
            const auto& description = request->command._u.entity_desc;
            EXPECT_EQ(request->id.invocation, client.commandSample->id.invocation);
            EXPECT_EQ(request->command._d, 1);
            EXPECT_STREQ(request->target_router, "r1");
            EXPECT_STREQ(description.name, "cfg");
            EXPECT_EQ(description.xml_url.is_final != 0, request == requests.back());
            contents.emplace_back(description.xml_url.content);
        }
        return contents;
    }

    std::pair<std::string, std::vector<std::size_t>> joinedPieces() { // and their lengths
        std::pair<std::string, std::vector<std::size_t>> joined;
        for (const std::string& piece : pieces()) {
            joined.first += piece;
            joined.second.push_back(piece.size());
        }
        return joined;
    }

    std::string directory;
};

TEST_F(UrlCommands, SendTextInPieces) {
    const auto inlineText = [](std::size_t length) {
        return "str://" + pattern(length - 6);
    };
    struct Case {
        std::string url;
        bool isRemote;
        Lines expected; // none: refused
    };
    const Case cases[] = {
        {"str://\"<a/>\"", true, {"str://\"<a/>\""}},
        {"str://\"<a/>\"", false, {"str://\"<a/>\""}}, // inline whatever the last word says
        {"file://config.xml", true, {"file://config.xml"}},
        {"", true, {"file://"}},
        {"domain_route.d.x=5", false, {"str://\"<domain_route><d><x>5</x></d></domain_route>\""}},
        {run(4089), true, {"file://" + run(4089)}},
        {run(4090), true, {}},
        {run(4095), true, {}},
        {pattern(4096), true, {pattern(4096), ""}}, // a bare path this long goes without the scheme
        {inlineText(4095), true, {inlineText(4095)}},
        {inlineText(4096), true, {inlineText(4096), ""}},
        {inlineText(4097), true, {inlineText(4096), inlineText(4097).substr(4096)}},
        {inlineText(8192), true, {inlineText(4096), inlineText(8192).substr(4096), ""}},
    };
    DDS_Long invocation = 0;
    for (const Case& row : cases) {
        SCOPED_TRACE(row.url.substr(0, 40) + " " + std::to_string(row.url.size()));
        EXPECT_EQ(load(row.url, row.isRemote), 0);
        EXPECT_EQ(client.commandSample->id.invocation, ++invocation);
        EXPECT_EQ(pieces(), row.expected);
        if (row.expected.empty()) {
            EXPECT_STREQ(result.textBuffer, "xmlUrl too long");
        } else {
            EXPECT_EQ(text(), "done");
        }
    }
}

TEST_F(UrlCommands, SendALocalFileInPieces) {
    const std::pair<std::size_t, std::vector<std::size_t>> cases[] = {
        {0, {8}},             // opening and closing quote
        {4088, {4096}},       // the same, and the file
        {4089, {4096, 1}},    // the end shows only in the read that follows
        {4090, {4096, 2}},    // one byte, and the quote
        {8184, {4096, 4096}}, // full to the end
        {8185, {4096, 4096, 1}},
    };
    for (const auto& [size, expected] : cases) {
        for (const std::string scheme : {"", "file://"}) {
            SCOPED_TRACE(scheme + std::to_string(size));
            const std::string bytes = pattern(size);
            EXPECT_EQ(load(scheme + write(bytes), false), 0);
            const auto [whole, lengths] = joinedPieces();
            EXPECT_EQ(whole, "str://\"" + bytes + "\"");
            EXPECT_EQ(lengths, expected);
        }
    }
    // Longer than what is read ahead.
    const std::string bytes = pattern(200000);
    EXPECT_EQ(load(write(bytes), false), 0);
    EXPECT_TRUE(joinedPieces().first == "str://\"" + bytes + "\"");
    // The bytes go as they are, but a NUL byte cuts its piece.
    const std::string odd = "<a b='\"&\xFF\r\n'/>";
    EXPECT_EQ(load(write(odd + '\0' + run(10, 'z')), false), 0);
    EXPECT_EQ(pieces(), Lines{"str://\"" + odd + "\""});
    EXPECT_EQ(load(write("a" + std::string(1, '\0') + run(4087, 'z') + "rest"), false), 0);
    EXPECT_EQ(pieces(), (Lines{"str://\"a", "rest\""}));
}

TEST_F(UrlCommands, LocalFilesThatCannotBeRead) {
    const std::string missing = directory + "/missing";
    const Lines openFailure{warningLine(SEND_URL, "failure: open file"),
                            warningLine(SEND_URL, "failure: " + missing)};
    EXPECT_EQ(load("file://" + missing, false), ROUTER_URL_COMMAND_FILE_OPEN_ERROR);
    EXPECT_EQ(log.take(), openFailure);

    EXPECT_EQ(load(directory, false), ROUTER_URL_COMMAND_FILE_READ_ERROR);
    EXPECT_EQ(log.take(), Lines{}); // silent
    const std::string fifo = directory + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const int status = load(fifo, false); // nobody writes to it: an error, and no waiting
    EXPECT_TRUE(status == ROUTER_URL_COMMAND_FILE_OPEN_ERROR || status == ROUTER_URL_COMMAND_FILE_READ_ERROR);
    EXPECT_EQ(fake_dds::calls(), Lines{});
}

TEST_F(UrlCommands, EndAtAFailedWriteOrAnInterruptBetweenPieces) {
    const std::string inlineText = "str://" + pattern(12000);
    for (const std::string& url : {inlineText, write(pattern(12000))}) {
        for (const std::size_t piece : {1U, 2U, 3U}) { // the third is the last
            SCOPED_TRACE(url.substr(0, 20) + " " + std::to_string(piece));
            fake_dds::fail("write", static_cast<int>(piece));
            EXPECT_EQ(load(url, url == inlineText), ROUTER_URL_COMMAND_SEND_ERROR);
            EXPECT_EQ(fake_dds::written().size(), piece - 1);
        }
    }
    fake_dds::setHooks({.onWrite = [this](const fake_dds::Request&) {
        ROUTERRemoteConfigClient_abortResponseWait(&client);
    }});
    EXPECT_EQ(load(inlineText, true), 0);
    EXPECT_EQ(fake_dds::written().size(), 1U);
    EXPECT_STREQ(result.textBuffer, "Response not received");
    EXPECT_EQ(result.kind, 0);
    EXPECT_TRUE(fake_dds::awaitIdle()); // the listener reads the time-out too
    client.responseTimeout = {.sec = 0, .frac = 0};
    fake_dds::setHooks({});
    EXPECT_EQ(load(inlineText, true), ROUTER_URL_COMMAND_SEND_ERROR); // nobody answers
}

TEST_F(UrlCommands, TakeAnAnswerThatComesBeforeTheLastPiece) {
    fake_dds::setHooks({.onWrite = [this](const fake_dds::Request& request) {
        if (fake_dds::written().size() == 1) {
            EXPECT_EQ(request.command._u.entity_desc.xml_url.is_final, 0);
            fake_dds::deliver({answer("early", true, 2)});
        }
    }});
    EXPECT_EQ(load("str://" + pattern(12000), true), 0);
    EXPECT_EQ(fake_dds::written().size(), 3U);
    EXPECT_EQ(text(), "early");
    EXPECT_EQ(result.kind, 2);
}

TEST_F(UrlCommands, DupdateDisablesUpdatesAndEnables) {
    const auto dupdate = [this](const std::string& url) {
        reset();
        return ROUTERRemoteConfigClient_sendCommandsDUE(&client, "r1", "dr1", url.c_str(), false, &result);
    };
    // As "kind invocation name".
    const auto sent = [] {
        Lines lines;
        for (const fake_dds::Request* request : fake_dds::written()) {
            const auto& command = request->command;
            EXPECT_STREQ(request->target_router, "r1");
            lines.push_back(std::to_string(command._d) + " " + std::to_string(request->id.invocation) + " " +
                            (command._d == 4 ? command._u.entity_desc.name : command._u.entity_name));
        }
        return lines;
    };
    // Answers to the first two requests do not count.
    fake_dds::setHooks({.onWrite = [this](const fake_dds::Request& request) {
        const bool isEnable = request.command._d == 7;
        fake_dds::deliver({answer(isEnable ? "enabled" : "too early", true, isEnable ? 0 : 2)});
    }});
    EXPECT_TRUE(dupdate("str://" + pattern(5000)));
    EXPECT_EQ(text(), "enabled");
    EXPECT_EQ(result.kind, 0);
    EXPECT_EQ(sent(), (Lines{"8 1 dr1", "4 2 dr1", "4 2 dr1", "7 4 dr1"})); // 3 is never sent
    EXPECT_TRUE(fake_dds::awaitIdle());
    EXPECT_EQ(log.take(), Lines{});

    // Nor are they waited for.
    client.responseTimeout.sec = 0;
    fake_dds::setHooks({});
    EXPECT_FALSE(dupdate("str://x"));
    EXPECT_EQ(log.take().size(), 1U); // "No response received"
    client.responseTimeout.sec = ZUL_TIME_FOREVER_SEC;

    // No update does not keep the other two, and a failed disable none of the others.
    answerWith([this] { return std::vector{answer("enabled")}; });
    EXPECT_TRUE(dupdate(directory + "/missing"));
    EXPECT_EQ(sent(), (Lines{"8 9 dr1", "7 12 dr1"}));
    fake_dds::fail("write");
    EXPECT_TRUE(dupdate("str://x"));
    EXPECT_EQ(sent(), (Lines{"4 14 dr1", "7 16 dr1"}));
}

TEST_F(UrlCommands, ReadsAWholeFile) {
    constexpr const char* READ = "ROUTERRemoteConfig_readFile";
    for (const std::size_t size : {0U, 100000U}) {
        const ZULStringPtr read(ROUTERRemoteConfig_readFile(write(pattern(size)).c_str()));
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(read.get(), pattern(size));
    }
    const std::string path = write("twelve bytes");
    ZULHeap_failAfter(0);
    EXPECT_EQ(ROUTERRemoteConfig_readFile(path.c_str()), nullptr);
    EXPECT_EQ(log.take(), Lines{errorLine(READ, "out of memory for a string of 12 characters")});
    EXPECT_EQ(ROUTERRemoteConfig_readFile((path + "!").c_str()), nullptr);
    EXPECT_EQ(log.take(),
              (Lines{warningLine(READ, "failure: open file"), warningLine(READ, "failure: " + path + "!")}));
}

std::string convert(const std::string& text) {
    const ZULStringPtr snippet(ROUTERRemoteConfigClient_convertAssignmentToXmlSnippet(text.c_str()));
    return snippet != nullptr ? snippet.get() : "(null)";
}

TEST(Assignment, BecomesASnippet) {
    std::string names = "session", opening, closing;
    for (int i = 2; i <= 31; ++i) {
        names += ".c";
        opening += "<c>";
        closing += "</c>";
    }
    const std::pair<std::string, std::string> cases[] = {
        // without "str://" and the quotes; none: not converted
        {"session.s1.property[buffer_size]=\"a<b\"",
         "<session><s1><property><value><element><name>buffer_size</name><value> a&lt;b "
         "</value></element></value></property></s1></session>"},
        {"routing_service.x=", "<routing_service><x></x></routing_service>"},
        {"domain_route.d1.b[]=a=b", "<domain_route><d1><b>a=b</b></d1></domain_route>"},
        {"domain_route \t\r\n= 5 ", "<domain_route> 5 </domain_route>"},
        {"topic_route.x=  \"q\"  ", "<topic_route><x>   q   </x></topic_route>"},
        {"topic_route.x=\"", "<topic_route><x> </x></topic_route>"},
        {"topic_route.x=a\"b\"c", "<topic_route><x>a&quot;b&quot;c</x></topic_route>"},
        {"topic_route.x=<&>'\xE4", "<topic_route><x>&lt;&amp;&gt;&apos;\xE4</x></topic_route>"},
        {"topic_route.x=a.b[c]", "<topic_route><x>a.b[c]</x></topic_route>"},
        {"polling_session.x=1", "<polling_session><x>1</x></polling_session>"},
        {"auto_topic_route.x=1", "<auto_topic_route><x>1</x></auto_topic_route>"},
        {"auto_route.x=1", "<auto_route><x>1</x></auto_route>"},
        {"routes.x=1", "<routes><x>1</x></routes>"},                          // a plain prefix test
        {names + "=v", "<session>" + opening + "v" + closing + "</session>"}, // 31 components
        {names + ".c=v", ""},
        {"domain_route.x", ""},
        {"federation_service.x=1", ""}, // the other variant's element
        {" domain_route.x=1", ""},
        {"Domain_route.x=1", ""},
    };
    LogCapture log;
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(convert(text), expected.empty() ? "(null)" : "str://\"" + expected + "\"") << text;
    }
    EXPECT_EQ(log.take(), Lines{});
}

TEST(Assignment, ReportsExhaustedMemory) {
    constexpr const char* CONVERT = "ROUTERRemoteConfigClient_convertAssignmentToXmlSnippet";
    LogCapture log;
    const std::string text = "session.x=<";
    const std::size_t sizes[] = {text.size(), convert(text).size()};
    for (const int n : {0, 1}) {
        ZULHeap_failAfter(n);
        EXPECT_EQ(convert(text), "(null)");
        EXPECT_EQ(log.take(), Lines{errorLine(CONVERT, "out of memory for a string of " +
                                                           std::to_string(sizes[n]) + " characters")});
    }
    ZULHeap_failAfter(-1);
}

} // namespace

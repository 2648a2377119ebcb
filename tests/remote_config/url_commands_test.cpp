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
        answerFinalPieces();
        char name[] = "/tmp/url_commands_test.XXXXXX";
        directory = mkdtemp(name);
    }
    void TearDown() override {
        std::filesystem::remove_all(directory);
        ConnectedClient::TearDown();
    }
    void answerFinalPieces() {
        fake_dds::setHooks({.onWrite = [this](const fake_dds::Request& request) {
            if (request.command._d == ZUL_ROUTING_SERVICE_COMMAND_ENABLE ||
                request.command._u.entity_desc.xml_url.is_final != 0) {
                fake_dds::deliver({answer("done")});
            }
        }});
    }
    std::string write(const std::string& bytes) {
        const std::string path = directory + "/config.xml";
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    int load(const std::string& url, bool isRemote) {
        fake_dds::forget();
        ROUTERRemoteConfigResult_finalize(&result);
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

    std::string directory;
};

TEST_F(UrlCommands, SendsTextInPieces) {
    const auto inlineText = [](std::size_t length) {
        return "str://" + pattern(length - 6);
    };
    const auto cut = [](const std::string& text) { // whole pieces, then the rest, possibly empty
        Lines parts;
        std::size_t at = 0;
        for (; text.size() - at >= 4096; at += 4096) {
            parts.push_back(text.substr(at, 4096));
        }
        parts.push_back(text.substr(at));
        return parts;
    };
    struct Case {
        std::string url;
        bool isRemote;
        Lines expected;
    };
    const Case cases[] = {
        {"str://\"<a/>\"", true, {"str://\"<a/>\""}},
        {"str://\"<a/>\"", false, {"str://\"<a/>\""}}, // inline whatever the last word says
        {"str://", true, {"str://"}},
        {"config.xml", true, {"file://config.xml"}},
        {"file://config.xml", true, {"file://config.xml"}},
        {"", true, {"file://"}},
        {"domain_route.d.x=5", false, {"str://\"<domain_route><d><x>5</x></d></domain_route>\""}},
        {"domain_route.x", true, {"file://domain_route.x"}},
        {run(4089), true, {"file://" + run(4089)}},
        {inlineText(4095), true, {inlineText(4095)}},
        {inlineText(4096), true, {inlineText(4096), ""}},
        {inlineText(8191), true, cut(inlineText(8191))},
        {inlineText(8192), true, cut(inlineText(8192))}, // three pieces, the last one empty
        {pattern(4096), true, {pattern(4096), ""}},      // a bare path this long goes without the scheme
        {"domain_route.x=" + run(5000, '<'), true,
         cut("str://\"<domain_route><x>" +
             [] {
                 std::string escaped;
                 for (int i = 0; i < 5000; ++i) {
                     escaped += "&lt;";
                 }
                 return escaped;
             }() +
             "</x></domain_route>\"")},
    };
    DDS_Long invocation = 0;
    for (const Case& row : cases) {
        SCOPED_TRACE(row.url.substr(0, 40) + " " + std::to_string(row.url.size()));
        EXPECT_EQ(load(row.url, row.isRemote), 0);
        EXPECT_EQ(client.commandSample->id.invocation, ++invocation);
        EXPECT_EQ(pieces(), row.expected);
        EXPECT_EQ(text(), "done");
    }
    EXPECT_EQ(cut(inlineText(8192)).size(), 3U);
}

TEST_F(UrlCommands, RefusesABarePathThatDoesNotFit) {
    for (const std::size_t length : {4090U, 4095U}) {
        EXPECT_EQ(load(run(length), true), 0);
        EXPECT_EQ(fake_dds::calls(), Lines{});
        EXPECT_STREQ(result.textBuffer, "xmlUrl too long");
    }
}

TEST_F(UrlCommands, SendsALocalFileInPieces) {
    struct Case {
        std::size_t size;
        std::vector<std::size_t> lengths; // of the pieces
    };
    const Case cases[] = {
        {0, {8}},
        {1, {9}},
        {4088, {4096}},    // opening, file and closing quote
        {4089, {4096, 1}}, // the end shows only in the read that follows
        {4090, {4096, 2}},
        {8184, {4096, 4096}},
        {8185, {4096, 4096, 1}},
    };
    for (const Case& row : cases) {
        for (const std::string scheme : {"", "file://"}) {
            SCOPED_TRACE(scheme + std::to_string(row.size));
            const std::string bytes = pattern(row.size);
            EXPECT_EQ(load(scheme + write(bytes), false), 0);
            std::string whole;
            std::vector<std::size_t> lengths;
            for (const std::string& piece : pieces()) {
                whole += piece;
                lengths.push_back(piece.size());
            }
            EXPECT_EQ(whole, "str://\"" + bytes + "\"");
            EXPECT_EQ(lengths, row.lengths);
        }
    }
    // The bytes go as they are, but a NUL byte cuts its piece.
    const std::string odd = "<a b='\"&\xFF\r\n'/>";
    EXPECT_EQ(load(write(odd + '\0' + run(10, 'z')), false), 0);
    EXPECT_EQ(pieces(), Lines{"str://\"" + odd + "\""});
    EXPECT_EQ(load(write("a" + std::string(1, '\0') + run(4087, 'z') + "rest"), false), 0);
    EXPECT_EQ(pieces(), (Lines{"str://\"a", "rest\""}));
}

TEST_F(UrlCommands, LocalFilesThatCannotBeRead) {
    const std::string missing = directory + "/missing";
    EXPECT_EQ(load(missing, false), ROUTER_URL_COMMAND_FILE_OPEN_ERROR);
    EXPECT_EQ(fake_dds::calls(), Lines{});
    const Lines openFailure{warningLine(SEND_URL, ZUL_LOG_ANY_FAILURE_s, "open file"),
                            warningLine(SEND_URL, ZUL_LOG_ANY_FAILURE_s, missing)};
    EXPECT_EQ(log.take(), openFailure);
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

TEST_F(UrlCommands, AFileThatShrinksEndsWhereItEnds) {
    // Longer than what is read ahead, and cut behind it.
    const std::string path = write(pattern(200000));
    fake_dds::setHooks({.onWrite = [&](const fake_dds::Request& request) {
        std::filesystem::resize_file(path, 100000);
        if (request.command._u.entity_desc.xml_url.is_final != 0) {
            fake_dds::deliver({answer("done")});
        }
    }});
    EXPECT_EQ(load(path, false), 0);
    std::string whole;
    for (const std::string& piece : pieces()) {
        whole += piece;
    }
    EXPECT_TRUE(whole == "str://\"" + pattern(100000) + "\"") << whole.size();
}

TEST_F(UrlCommands, FailuresAndInterruptsOnTheWay) {
    const std::string text = "str://" + pattern(12000);
    for (const int piece : {1, 2, 3}) { // the third is the last
        SCOPED_TRACE(piece);
        fake_dds::fail("write", piece);
        EXPECT_EQ(load(text, true), ROUTER_URL_COMMAND_SEND_ERROR);
        EXPECT_EQ(fake_dds::written().size(), static_cast<std::size_t>(piece - 1));
        EXPECT_EQ(load(write(pattern(12000)), false), 0);
        fake_dds::fail("write", piece);
        EXPECT_EQ(load(directory + "/config.xml", false), ROUTER_URL_COMMAND_SEND_ERROR);
    }
    // An answer that comes before the last piece is the answer.
    fake_dds::setHooks({.onWrite = [this](const fake_dds::Request& request) {
        if (fake_dds::written().size() == 1) {
            EXPECT_EQ(request.command._u.entity_desc.xml_url.is_final, 0);
            fake_dds::deliver({answer("early", true, 2)});
        }
    }});
    EXPECT_EQ(load(text, true), 0);
    EXPECT_EQ(fake_dds::written().size(), 3U);
    EXPECT_EQ(ConnectedClient::text(), "early");
    EXPECT_EQ(result.kind, 2);
    // An interrupt after the first piece ends the upload.
    fake_dds::setHooks({.onWrite = [this](const fake_dds::Request&) {
        ROUTERRemoteConfigClient_abortResponseWait(&client);
    }});
    EXPECT_EQ(load(text, true), 0);
    EXPECT_EQ(fake_dds::written().size(), 1U);
    EXPECT_STREQ(result.textBuffer, "Response not received");
    EXPECT_EQ(result.kind, 0);
    EXPECT_TRUE(fake_dds::awaitIdle()); // the listener reads the time-out too
    client.responseTimeout = {.sec = 0, .frac = 0};
    fake_dds::setHooks({});
    EXPECT_EQ(load(text, true), ROUTER_URL_COMMAND_SEND_ERROR); // nobody answers
}

TEST_F(UrlCommands, KindsAndNamesOfTheFamily) {
    using Send = ROUTERUrlCommandStatus (*)(ROUTERRemoteConfigClient*, const char*, const char*, const char*,
                                            bool, ROUTERRemoteConfigResult*);
    struct Case {
        const char* name;
        Send send;
        int kind;
        std::size_t longestName;
        const char* refusal;
    };
    const Case cases[] = {
        {"Load", ROUTERRemoteConfigClient_sendCommandLoad, 1, 255, "cfgName too long"},
        {"Update", ROUTERRemoteConfigClient_sendCommandUpdate, 4, 255, "entityName too long"},
        {"Create", ROUTERRemoteConfigClient_sendCommandCreate, 10, 254, "parentEntityName too long"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const std::string name = run(row.longestName, 'n');
        ROUTERRemoteConfigResult_finalize(&result);
        fake_dds::forget();
        EXPECT_EQ(row.send(&client, run(254).c_str(), name.c_str(), "f", true, &result), 0);
        EXPECT_EQ(text(), "done");
        const auto& request = *fake_dds::written().back();
        EXPECT_EQ(request.command._d, row.kind);
        EXPECT_EQ(request.target_router, run(254));
        EXPECT_EQ(request.command._u.entity_desc.name, name);

        const std::pair<std::string, std::string> refused[] = {{run(255), "n"}, {"r", name + "n"}};
        for (const auto& [target, entity] : refused) {
            const char* message = target == "r" ? row.refusal : "target router name too long";
            const DDS_Long invocation = client.commandSample->id.invocation;
            fake_dds::forget();
            EXPECT_EQ(row.send(&client, target.c_str(), entity.c_str(), "f", true, &result), 0);
            EXPECT_STREQ(result.textBuffer, message);
            EXPECT_EQ(fake_dds::calls(), Lines{});
            EXPECT_EQ(client.commandSample->id.invocation, invocation);
            EXPECT_EQ(log.take(),
                      Lines{warningLine(std::string("ROUTERRemoteConfigClient_sendCommand") + row.name,
                                        ZUL_LOG_ANY_FAILURE_s, message)});
        }
    }
}

TEST_F(UrlCommands, DisablesUpdatesAndEnables) {
    const auto dupdate = [this](const std::string& target, const std::string& entity,
                                const std::string& url) {
        fake_dds::forget();
        ROUTERRemoteConfigResult_finalize(&result);
        return ROUTERRemoteConfigClient_sendCommandsDUE(&client, target.c_str(), entity.c_str(), url.c_str(),
                                                        false, &result);
    };
    const auto expectEnd = [](std::size_t count, DDS_Long first) {
        const auto requests = fake_dds::written();
        ASSERT_EQ(requests.size(), count);
        const auto& disable = *requests.front();
        const auto& enable = *requests.back();
        EXPECT_EQ(disable.command._d, 8);
        EXPECT_EQ(disable.id.invocation, first);
        EXPECT_EQ(enable.command._d, 7);
        EXPECT_EQ(enable.id.invocation, first + 3); // the number before is never sent
        for (const auto* request : {&disable, &enable}) {
            EXPECT_STREQ(request->target_router, "r1");
            EXPECT_STREQ(request->command._u.entity_name, "dr1");
        }
    };
    // Answers to the first two requests do not count.
    fake_dds::setHooks({.onWrite = [this](const fake_dds::Request& request) {
        const bool isEnable = request.command._d == 7;
        fake_dds::deliver({answer(isEnable ? "enabled" : "too early", true, isEnable ? 0 : 2)});
    }});
    EXPECT_TRUE(dupdate("r1", "dr1", "str://" + pattern(5000)));
    EXPECT_EQ(text(), "enabled");
    EXPECT_EQ(result.kind, 0);
    ASSERT_NO_FATAL_FAILURE(expectEnd(4, 1));
    for (const std::size_t piece : {1U, 2U}) {
        const auto& update = *fake_dds::written()[piece];
        EXPECT_EQ(update.command._d, 4);
        EXPECT_EQ(update.id.invocation, 2);
        EXPECT_STREQ(update.command._u.entity_desc.name, "dr1");
        EXPECT_EQ(update.command._u.entity_desc.xml_url.is_final, piece == 2);
    }
    EXPECT_TRUE(dupdate("r1", "dr1", directory + "/missing")); // no update, but the other two
    expectEnd(2, 5);
    fake_dds::fail("write", 1);
    EXPECT_TRUE(dupdate("r1", "dr1", "str://x")); // nor does a failed disable stop it
    EXPECT_EQ(fake_dds::written().size(), 2U);
    log.take();

    const std::pair<std::string, std::string> refused[] = {{run(255), "e"}, {"r", run(256)}};
    for (const auto& [target, entity] : refused) {
        const char* message = target == "r" ? "entityName too long" : "target router name too long";
        EXPECT_FALSE(dupdate(target, entity, "str://x"));
        EXPECT_STREQ(result.textBuffer, message);
        EXPECT_EQ(fake_dds::calls(), Lines{});
        EXPECT_EQ(log.take(), Lines{warningLine("ROUTERRemoteConfigClient_sendCommandsDUE",
                                                ZUL_LOG_ANY_FAILURE_s, message)});
    }
}

TEST_F(UrlCommands, ReadsAWholeFile) {
    constexpr const char* READ = "ROUTERRemoteConfig_readFile";
    for (const std::size_t size : {0U, 1U, 100000U}) {
        const ZULStringPtr read(ROUTERRemoteConfig_readFile(write(pattern(size)).c_str()));
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(read.get(), pattern(size));
    }
    const std::string path = write("twelve bytes");
    ZULHeap_failAfter(0);
    EXPECT_EQ(ROUTERRemoteConfig_readFile(path.c_str()), nullptr);
    EXPECT_EQ(log.take(), Lines{errorLine(READ, ZUL_LOG_OUT_OF_HEAP_STRING_d, "12")});
    EXPECT_EQ(ROUTERRemoteConfig_readFile((path + "!").c_str()), nullptr);
    EXPECT_EQ(log.take(), (Lines{warningLine(READ, ZUL_LOG_ANY_FAILURE_s, "open file"),
                                 warningLine(READ, ZUL_LOG_ANY_FAILURE_s, path + "!")}));
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
    struct Case {
        std::string text, expected; // without "str://" and the quotes; none: not converted
    };
    const Case cases[] = {
        {"domain_route.participant_1.domain_id=5",
         "<domain_route><participant_1><domain_id>5</domain_id></participant_1></domain_route>"},
        {"session.s1.property[buffer_size]=\"a<b\"",
         "<session><s1><property><value><element><name>buffer_size</name><value> a&lt;b "
         "</value></element></value></property></s1></session>"},
        {"routing_service.administration.domain_id = 7",
         "<routing_service><administration><domain_id> 7</domain_id></administration></routing_service>"},
        {"domain_route.x=", "<domain_route><x></x></domain_route>"},
        {"domain_route.x=a=b", "<domain_route><x>a=b</x></domain_route>"},
        {"domain_route.d1.b[]=1", "<domain_route><d1><b>1</b></d1></domain_route>"},
        {"domain_route=5", "<domain_route>5</domain_route>"},
        {"domain_route \t\r\n= 5 ", "<domain_route> 5 </domain_route>"},
        {"topic_route.x=  \"q\"  ", "<topic_route><x>   q   </x></topic_route>"},
        {"topic_route.x=\"", "<topic_route><x> </x></topic_route>"},
        {"topic_route.x=\"\"", "<topic_route><x>  </x></topic_route>"},
        {"topic_route.x=\"a\"b\"", "<topic_route><x> a&quot;b </x></topic_route>"},
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
        {"myfile.xml=1", ""},
        {" domain_route.x=1", ""},
        {"Domain_route.x=1", ""},
        {"", ""},
    };
    LogCapture log;
    for (const Case& row : cases) {
        EXPECT_EQ(convert(row.text), row.expected.empty() ? "(null)" : "str://\"" + row.expected + "\"")
            << row.text;
    }
    EXPECT_EQ(log.take(), Lines{});
    ROUTER_setProductId(ROUTER_PRODUCT_FEDERATION_SERVICE);
    EXPECT_EQ(convert("federation_service.x=1"),
              "str://\"<federation_service><x>1</x></federation_service>\"");
    EXPECT_EQ(convert("routing_service.x=1"), "(null)");
    ROUTER_setProductId(ROUTER_PRODUCT_ROUTING_SERVICE);
}

TEST(Assignment, OutOfMemory) {
    constexpr const char* CONVERT = "ROUTERRemoteConfigClient_convertAssignmentToXmlSnippet";
    LogCapture log;
    const std::string text = "session.x=<";
    const std::string snippet = convert(text);
    const std::size_t sizes[] = {text.size(), snippet.size()};
    for (int n = 0; n < 2; ++n) {
        ZULHeap_failAfter(n);
        EXPECT_EQ(convert(text), "(null)");
        EXPECT_EQ(log.take(),
                  Lines{errorLine(CONVERT, ZUL_LOG_OUT_OF_HEAP_STRING_d, std::to_string(sizes[n]))});
    }
    ZULHeap_failAfter(-1);
}

} // namespace

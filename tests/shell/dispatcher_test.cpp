// Commands, the requests they send, and what they print.
#include "shell/dispatcher.h"
#include "shell/splitter.h"
#include "tests/admin_types/samples.h"
#include "tests/remote_config/client_fixture.h"

namespace {

constexpr const char* SILENCE = "No response received\n";

class Dispatcher : public testing::Test {
protected:
    Dispatcher() {
        fake_dds::reset();
        EXPECT_TRUE(ROUTERRemoteConfigClient_initialize(&shell.client, 7, ZUL_TIME_FOREVER_SEC));
    }
    ~Dispatcher() override { EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&shell.client)); }

    // Runs a line whose requests are answered with the kind and the message.
    std::string run(std::string line, DDS_Long kind = 0, const std::string& message = "done") {
        fake_dds::forget();
        fake_dds::answerWith({{.message = message, .kind = kind}});
        char* words[ROUTER_SHELL_MAX_WORDS];
        int count = 0;
        ROUTERShell_createArgv(line.data(), words, &count);
        testing::internal::CaptureStdout();
        ROUTERShell_parseCommand(&shell, words, count);
        return testing::internal::GetCapturedStdout();
    }
    // What was written, but for its id.
    static Lines requests() {
        Lines all;
        for (const auto& request : fake_dds::world().written) {
            const std::string shown = text(*request);
            all.push_back(shown.substr(shown.find(' ') + 1));
        }
        return all;
    }
    ROUTERShellInstance shell{};
    CapturedLog log;
};

TEST_F(Dispatcher, SendsOneRequestAndPrintsItsAnswer) {
    const std::pair<const char*, const char*> cases[] = {
        {"ENABLE r1", "r1 7"},
        {"disable r1 Dr1::S extra words", "r1 8 name=Dr1::S"},
        {"Pause r1", "r1 5"},
        {"resume r1 dr1", "r1 6 name=dr1"},
        {"delete r1 dr1", "r1 11 name=dr1"},
        {"unload r1", "r1 2"},
        {"save r1 extra", "r1 12"},
        {"get r1 extra", "r1 13"},
        {"update r1 . file.xml", "r1 4 desc{,1,file://file.xml}"},
        {"update r1 file.xml", "r1 4 desc{,1,file://file.xml}"},
        {"update r1 .. file.xml REMOTE extra", "r1 4 desc{..,1,file://file.xml}"},
        {"update r1 dr1 str://x local", "r1 4 desc{dr1,1,str://x local}"},
        {"load r1 cfg file.xml", "r1 1 desc{cfg,1,file://file.xml}"},
        {"load r1 cfg file:///dev/null LOCAL", "r1 1 desc{cfg,1,str://\"\"}"},
        {"create r1 domain_route x.xml remote", "r1 10 desc{,1,file://x.xml}"},
        {"create r1 Session dr1 x.xml Remote", "r1 10 desc{dr1,1,file://x.xml}"},
        {"create r1 auto_route dr1::s /dev/null local", "r1 10 desc{dr1::s,1,str://\"\"}"},
        {"add_peer r1 dr1 P1 a,b extra", "r1 14 peer{dr1,1,a,b}"},
        {"add_peer r1 dr1 p2 a", "r1 14 peer{dr1,0,a}"},
    };
    for (const auto& [line, expected] : cases) {
        EXPECT_EQ(run(line), "Result: done\n") << line;
        EXPECT_EQ(requests(), Lines{expected}) << line;
        EXPECT_EQ(run(line, 3, ""), "Error: (null)\n") << line; // every kind but 0
        fake_dds::fail("write", 1);
        const bool hasStatus = *line == 'l' || std::string_view(line).starts_with("update");
        EXPECT_EQ(run(line), std::string(hasStatus ? "Error sending request\n" : "") + SILENCE) << line;
    }
}

TEST_F(Dispatcher, PrintsWhyItSendsNothing) {
    const std::string silence = SILENCE, syntax = "Command syntax: ";
    std::vector<std::pair<std::string, Lines>> cases = {
        {syntax + "update <target_router> [<entity_name>] <xml_url> [remote|local]\n",
         {"update r1", "dupdate r1", "update r1 x.xml remote here", "dupdate r1 . x.xml here"}},
        {syntax + "load <target_router> <cfg_name> <xml_url> [remote|local]\n",
         {"load r1 cfg", "load r1 cfg file.xml elsewhere"}},
        {syntax + "create <target_router> domain_route|session|topic_route|auto_route "
                  "[<parent_entity_name>] <xml_url> [remote|local]\n",
         {"create r1", "create r1 session dr1", "create r1 domain_route", "create r1 domain_route x.xml here",
          "create r1 participant dr1 x.xml", "create r1 polling_session dr1 x.xml"}},
        {syntax + "add_peer <target_router> <domain_route_name> p1|p2 <peer_list>\n",
         {"add_peer r1 dr1 p1", "add_peer r1 dr1 p3 list"}},
        {syntax + "unload <target_router>\n", {"unload", "unload r1 extra"}},
        {"Can't open local file /no/file\n" + silence, {"load r1 cfg /no/file LOCAL"}},
        {"Error reading local file\n" + silence, {"load r1 cfg /tmp local", "update r1 dr1 /tmp local"}},
        {"Error: cfgName too long\n", {"load r1 " + std::string(256, 'c') + " f"}},
        {silence, {"create r1 domain_route /no/file local", "enable " + std::string(255, 'r')}},
        {"Unknown command: foo\n", {"foo bar"}},
        {"", {"history", "CLEAR r1", "sleep x"}},
    };
    for (const std::string name : {"enable", "disable", "pause", "resume", "delete", "save", "get"}) {
        const bool hasEntity = name != "save" && name != "get";
        cases.push_back(
            {syntax + name + " <target_router>" + (hasEntity ? " [<entity_name>]\n" : "\n"), {name}});
    }
    for (const auto& [expected, lines] : cases) {
        for (const std::string& line : lines) {
            EXPECT_EQ(run(line), expected) << line;
            EXPECT_EQ(requests(), Lines{}) << line;
        }
    }
}

TEST_F(Dispatcher, PrintsADupdatesSuccessAsAStatus) {
    const Lines steps = {"r1 8 name=d", "r1 4 desc{d,1,file://x}", "r1 7 name=d"};
    for (const DDS_Long kind : {0, 2}) {
        EXPECT_EQ(run("DUPDATE r1 d x", kind), "Can't open local file x\n" + std::string(SILENCE));
        EXPECT_EQ(requests(), steps);
    }
    fake_dds::fail("write", 3);
    EXPECT_EQ(run("dupdate r1 x"), "Error: (null)\n");
}

TEST_F(Dispatcher, AnnouncesHelpsAndEndsWithoutAnOutcome) {
    EXPECT_EQ(run("hello"), "");
    EXPECT_EQ(requests(), Lines{"* 9"});
    EXPECT_EQ(run("HELP me"), R"(
ZUL Routing Service Shell, licensed under the Apache License, Version 2.0
--------------------------------------------
Commands:
load     - Load ZUL Routing Service XML configuration
unload   - Unload current ZUL Routing Service configuration
enable   - Enable an entity
disable  - Disable an entity
pause    - Pause an entity
resume   - Resume an entity
update   - Update the configuration of an entity
create   - Create an entity
delete   - Delete an entity
save     - Save ZUL Routing Service configuration to file
get      - Get  ZUL Routing Service configuration as a string
add_peer - Add discovery peer for domain participant
exit     - Exit the shell

)");
    for (const char* word : {"exit", "Quit", "q now"}) {
        ROUTERShell_g_terminate = 0;
        EXPECT_EQ(run(word), "");
        EXPECT_EQ(ROUTERShell_g_terminate, 1);
    }
}

} // namespace

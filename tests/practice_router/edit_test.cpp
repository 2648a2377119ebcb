// Commands on a configuration: what they change, what they answer, and that a refused one changes nothing.
#include "practice_router/actions/save_file.h"
#include "tests/practice_router/kinds.h"
#include "tests/support/failing_heap.h"
#include "tests/support/failing_new.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using namespace zul::practice;

constexpr const char* DOCUMENT = R"(<dds>
    <adapter_library name="A"><adapter_plugin name="P">
        <library_file>a.so</library_file><factory_function>make</factory_function></adapter_plugin></adapter_library>
    <transformation_library name="T"><transformation_plugin name="P">
        <library_file>t.so</library_file><factory_function>make</factory_function></transformation_plugin></transformation_library>
    <routing_service name="S">
        <domain_route name="D">
            <participant_1><domain_id>0</domain_id></participant_1>
            <participant_2><domain_id>1</domain_id></participant_2>
            <session name="s1">
                <topic_route name="T">
                    <input><topic_name>t</topic_name></input>
                    <output/>
                </topic_route>
            </session>
            <session name="s2">
                <property><value><element><name>size</name><value>8</value></element></value></property>
            </session>
        </domain_route>
        <domain_route name="E" enabled="false">
            <connection_1 plugin_name="A::P"/>
            <participant_2><domain_id>3</domain_id></participant_2>
        </domain_route>
    </routing_service>
</dds>
)";

struct Edit : testing::Test {
    Router router{"r1", testing::TempDir()};

    void SetUp() override { load(); }
    void load() { ASSERT_EQ(router.configuration().load(DOCUMENT, "S").kind, OK); }
    static Request request(Kind kind, const std::string& entity, const std::string& url) {
        Request request{};
        request.kind = kind;
        request.entity = entity;
        request.content = url;
        return request;
    }
    Answer sendUrl(Kind kind, const std::string& entity, const std::string& url) {
        return router.handle(request(kind, entity, url)).value_or(Answer::error("no answer"));
    }
    Answer send(Kind kind, const std::string& entity = {}, const std::string& xml = {}) {
        return sendUrl(kind, entity, "str://\"" + xml + "\"");
    }
    std::string text() { return router.configuration().text(); }
};

// Elements inside each other, the innermost one holding the text.
std::string nested(const std::string& tags, const std::string& text) {
    const std::size_t end = tags.find(' ');
    const std::string tag = tags.substr(0, end);
    return "<" + tag + ">" + (end != std::string::npos ? nested(tags.substr(end + 1), text) : text) + "</" +
           tag + ">";
}
std::string property(const std::string& name, const std::string& value) {
    return nested("property value element", nested("name", name) + nested("value", value));
}

// clang-format off
TEST_F(Edit, AnUpdateThatChangesSomethingElse) {
    const std::string line = "\n                "; // inside a session
    const std::tuple<const char*, std::string, std::string> rows[] = { // entity, snippet, what it leaves
        {"D", nested("participant_2 domain_id", " 7"), "<domain_id>7</domain_id>"},
        {"", nested("domain_route E participant_2 domain_id", "9"), "<domain_id>9</domain_id>"},
        {"S", nested("routing_service administration domain_id", " 8"),
         "<administration>\n            <domain_id>8</domain_id>\n        </administration>\n    </routing_service>"},
        // A name as a tag: after the entity's own tag, whether the entity is the target or inside it.
        {"D::s1", nested("session s1", property("a", " a&lt;b \n")),
         "<property>" + line + "    <value>" + line + "        <element><name>a</name><value>a&lt;b</value></element>" + line +
             "    </value>" + line + "</property>\n            </session>"},
        {"D", nested("session s2", property("size", "16")), property("size", "16") + "\n            </session>"},
        {"D", "<session name=\"s2\">" + property("new", "1") + "</session>",
         "<value>" + line + "        <element><name>size</name><value>8</value></element>" + line + "        <element><name>new</name>"},
        {"D", nested("session s2", property("", "1")), "<name>size</name><value>8</value></element>" + line + "        <element><name/>"},
        // Where the definition orders the elements, a new one goes where it belongs.
        {"D::s1::T", "<topic_route><transformation plugin_name=\"T::P\"/></topic_route>",
         "</input>" + line + "    <transformation plugin_name=\"T::P\"/>" + line + "    <output/>"},
        {"S::E", "<domain_route enabled=\"true\"/>", "<domain_route name=\"E\" enabled=\"true\">"},
        {"", "<dds><qos_library name=\"Q\"/></dds>", "<qos_library name=\"Q\"/>"},
    };
    for (const auto& [entity, snippet, shown] : rows) {
        load();
        const Answer answer = send(UPDATE, entity, snippet);
        EXPECT_EQ(answer.kind, OK) << snippet << ": " << answer.text;
        EXPECT_NE(text().find(shown), std::string::npos) << snippet << "\n" << text();
    }
    const std::string wide = std::string(DOCUMENT).insert(6, 17, ' '); // not a width to repeat at every depth
    ASSERT_EQ(router.configuration().load(wide, "S").kind, OK);
    EXPECT_EQ(send(UPDATE, "", "<dds><qos_library name=\"Q\"/></dds>").kind, OK);
    EXPECT_NE(text().find("\n    <qos_library name=\"Q\"/>"), std::string::npos) << text();
}

TEST_F(Edit, ARefusedCommandThatChangesSomethingOrDoesNotSayWhy) {
    const struct {
        Kind kind;
        const char* entity;
        std::string xml;
        const char* reason;
        int answer = ERROR;
    } rows[] = {
        {UPDATE, "D", nested("domain_route participant_1 domain_id", "500"), "from 0 to 232"},
        {UPDATE, "D::s1", nested("session s2 documentation", "1"), "s2 matches nothing"},
        {UPDATE, "D", "<session name=\"s9\"/>", "session \"s9\" matches nothing"},
        {UPDATE, "D", nested("routing_service administration", ""), "routing_service matches"},
        {UPDATE, "", nested("domain_route documentation", "1"), "several"},
        {UPDATE, "D", "<session enabled=\"false\"><s1/></session>", "several elements session match"},
        {UPDATE, "D", "<session>x<s1/></session>", "several elements session match"},
        {UPDATE, "D", nested("domain_route", "5"), "holds elements"},
        {UPDATE, "D", nested("domain_route participant_1", "<domain_id>1</domain_id><domain_id>2</domain_id>"),
         "a second domain_id in participant_1; expected one"},
        {UPDATE, "D", "<domain_route><property><x/></property><property><x><y/></x></property></domain_route>", "x is not known"},
        {UPDATE, "", "<routing_service><S name=\"\"/></routing_service>", "invalid: line 6"},
        {UPDATE, "D", nested("session s1", "<x/>" + std::string(1 << 20, 'y')), "x matches nothing"},
        {UPDATE, "D", "<" + std::string(40000, 'z') + "/>", "zzz... matches nothing"},
        {UPDATE, "D", "<connection_1 plugin_name=\"A::B\"/>", "connection_1 has no place in domain_route"},
        {UPDATE, "D", "<domain_route", "line 1"},
        {CREATE, "", "<session name=\"n\"/>", "its parent is a domain_route"},
        {CREATE, "D", "<domain_route name=\"n\"/>", "its parent is the service"},
        {CREATE, "", "<domain_route name=\"n\"/>", "invalid: line"},
        {CREATE, "D", "<session/>", "no name"},
        {CREATE, "D", "<session name=\"s1\"/>", "exists already"},
        {CREATE, "D", "<participant_1/>", "cannot be created"},
        {DELETE, "", "", "unload"},
        {DELETE, "D::participant_1", "", "D::participant_1", NOT_FOUND},
        {ZUL_ROUTING_SERVICE_COMMAND_INSERT, "D", "<session name=\"n\"/>", "not supported"},
        {RESUME, "D::s1", "", "not paused"},
        {ADD_PEER, "D::s1", "", "D::s1", NOT_FOUND},
        {ADD_PEER, "E", "", "no participant_1"},
        {ADD_PEER, "D", "", "name at least one"},
    };
    for (const auto& row : rows) {
        const Answer answer = send(row.kind, row.entity, row.xml);
        EXPECT_EQ(answer.kind, row.answer) << row.xml << ": " << answer.text;
        EXPECT_NE(answer.text.find(row.reason), std::string::npos) << row.xml << ": " << answer.text;
        EXPECT_EQ(text(), DOCUMENT) << row.xml;
    }
}
// clang-format on

TEST_F(Edit, AnEntityThatCannotBeCreatedOrLeavesTraces) {
    const auto entity = [](const std::string& tag, const std::string& name, const std::string& content) {
        return "<" + tag + " name=\"" + name + "\">" + content + "</" + tag + ">";
    };
    const auto route = [&entity](const std::string& tag) {
        return entity(tag, tag, "<input><topic_name>t</topic_name></input><output/>");
    };
    const std::string ends = "<connection_1 plugin_name=\"A::P\"/>" + nested("participant_2 domain_id", "5");
    EXPECT_EQ(send(CREATE, "", entity("domain_route", "C", ends)).text, "created C");
    EXPECT_EQ(send(CREATE, "C", "<session name=\"s\"/>").text, "created C::s");
    for (const std::string tag : {"route", "auto_route"}) {
        EXPECT_EQ(send(CREATE, "C::s", route(tag)).text, "created C::s::" + tag);
        EXPECT_EQ(send(DISABLE, "C::s::" + tag).text, "disabled C::s::" + tag);
    }
    EXPECT_EQ(send(DELETE, "C::s").text, "deleted C::s");
    EXPECT_EQ(send(ENABLE, "C::s::route").kind, NOT_FOUND);
    EXPECT_EQ(send(CREATE, "C", entity("session", "s", route("route"))).kind, OK);
    EXPECT_EQ(send(DISABLE, "C::s::route").kind, OK) << "a new entity knows nothing of the old one's state";
    EXPECT_EQ(send(DELETE, "S::C").text, "deleted C");
    EXPECT_EQ(text(), DOCUMENT);
}

TEST_F(Edit, AStateThatIsLostOrNotShown) {
    EXPECT_EQ(send(PAUSE, "D::s1").text, "paused D::s1");
    EXPECT_EQ(send(PAUSE, "D::s1").kind, ERROR);
    EXPECT_EQ(send(UPDATE, "D::s1", nested("session documentation", "x")).kind, OK);
    EXPECT_EQ(send(RESUME, "D::s1").text, "resumed D::s1") << "an update keeps the state";
    EXPECT_EQ(send(ENABLE, "E").text, "enabled E");
    EXPECT_EQ(send(DISABLE).text, "disabled the router");
    EXPECT_EQ(send(PAUSE, "D::s1").text, "the router is disabled; enable it first");
    EXPECT_EQ(send(DISABLE, "D").kind, OK);
    EXPECT_NE(text().find("<domain_route name=\"D\" enabled=\"false\">"), std::string::npos) << text();
    EXPECT_EQ(send(ENABLE).kind, OK);
    EXPECT_EQ(send(PAUSE, "D::s1").text, "D is disabled; enable it first");
    load();
    EXPECT_EQ(send(DISABLE, "D::s1::T").kind, OK);
    EXPECT_EQ(send(ENABLE, "D::s1::T").kind, OK);
    EXPECT_EQ(text(), DOCUMENT) << "enabled again, it reads as it did";
    EXPECT_EQ(send(PAUSE, "D::s1").kind, OK);
    EXPECT_EQ(send(UPDATE, "", "<domain_route><D enabled=\"false\"/></domain_route>").kind, OK);
    EXPECT_EQ(send(DISABLE, "D").text, "D is disabled already") << "by an update";
    EXPECT_EQ(send(ENABLE, "D").kind, OK);
    EXPECT_EQ(send(DISABLE, "D::s2").kind, OK);
    EXPECT_EQ(send(UPDATE, "D", "<session><s1 name=\"s3\"/><s2 name=\"s1\"/></session>").kind, OK);
    EXPECT_EQ(send(RESUME, "D::s3").kind, OK) << "a renamed entity takes its state along";
    EXPECT_EQ(send(ENABLE, "D::s1").text, "enabled D::s1");
    EXPECT_EQ(send(DISABLE).kind, OK);
    EXPECT_EQ(send(UPDATE, "", "<routing_service><S name=\"New\"/></routing_service>").kind, OK);
    EXPECT_EQ(send(ENABLE, "New").text, "enabled the router");
    EXPECT_EQ(send(DISABLE, "S").kind, NOT_FOUND);
    EXPECT_EQ(send(ZUL_ROUTING_SERVICE_COMMAND_UNLOAD).text, "unloaded New");
}

TEST_F(Edit, ACommandThatRunsOutOfMemoryAndChangesSomething) {
    const std::string change = nested("participant_1 domain_id", "7");
    const Request update =
        request(UPDATE, "D", "str://<domain_route enabled=\"false\">" + change + "</domain_route>");
    std::optional<Answer> answer;
    const auto handles = [&] {
        answer = router.handle(update);
        return answer->kind == OK;
    };
    g_newCanFail = true;
    failEachAllocation(handles, [&](bool isDone) {
        EXPECT_TRUE(isDone || answer->text.ends_with("out of memory")) << answer->text;
        EXPECT_EQ(text() == DOCUMENT, !isDone);
    });
    g_newCanFail = false;
}

TEST_F(Edit, APeerThatIsLostOrNotShown) {
    const auto addPeers = [this](const std::vector<std::string>& peers) {
        return router.configuration().addPeers("E", false, peers);
    };
    const std::string known = "peers of E participant_2: udpv4://10.0.0.1, a&b";
    EXPECT_EQ(addPeers({"udpv4://10.0.0.1", "a&b"}).text, known);
    EXPECT_EQ(addPeers({"c", "a&b"}).text, known + ", c");
    EXPECT_EQ(addPeers({"d\x01"}).kind, ERROR);
    EXPECT_EQ(addPeers({"d\xFF"}).kind, ERROR);
    std::vector<std::string> many(MAX_PEERS);
    std::ranges::generate(many, [i = 0]() mutable { return "p" + std::to_string(i++); });
    EXPECT_NE(addPeers(many).text.find("more than 256 peers"), std::string::npos);
    EXPECT_EQ(router.configuration().load(text(), "S").kind, OK);
    EXPECT_EQ(addPeers({"d"}).text, known + ", c, d") << "what is saved and loaded has them";
}

TEST_F(Edit, ASavedFileThatHarmsAnother) {
    EXPECT_EQ(saveFileName("..a/b"), "%2E.a%2Fb.xml");
    EXPECT_EQ(saveFileName("a_b%\xC3"), "a_b%25%C3.xml");
    EXPECT_EQ(saveFileName(std::string(251, 'n')).size(), 255U);
    EXPECT_EQ(saveFileName(std::string(252, 'n')), "") << "two such names could share a file";
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(testing::TempDir()) / ("save" + std::to_string(getpid()));
    fs::create_directory(folder);
    std::ofstream(folder / "victim") << "untouched";
    fs::create_symlink("victim", folder / "r1.xml");
    fs::create_symlink("victim", folder / "r1.xml.new");
    router = Router("r1", folder);
    load();
    EXPECT_EQ(send(ZUL_ROUTING_SERVICE_COMMAND_SAVE).kind, OK);
    EXPECT_EQ(fs::file_size(folder / "victim"), 9U);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "r1.xml")));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 3) << "nothing is left over";
    fs::remove_all(folder);
    EXPECT_EQ(send(ZUL_ROUTING_SERVICE_COMMAND_SAVE).kind, ERROR);
}

TEST_F(Edit, ACommandThatWorksWithoutAConfiguration) {
    const Answer saved = send(ZUL_ROUTING_SERVICE_COMMAND_SAVE);
    ASSERT_EQ(saved.kind, OK) << saved.text;
    const std::string path = saved.text.substr(saved.text.find('/'));
    EXPECT_EQ(send(ZUL_ROUTING_SERVICE_COMMAND_UNLOAD).text, "unloaded S");
    for (Kind kind = ZUL_ROUTING_SERVICE_COMMAND_UNLOAD; kind <= ADD_PEER;
         kind = static_cast<Kind>(kind + 1)) {
        const bool isAnnounce = kind == ZUL_ROUTING_SERVICE_COMMAND_ANNOUNCE;
        const Answer answer = send(kind, "D", "<session name=\"n\"/>");
        EXPECT_EQ(answer.kind, isAnnounce ? ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT : ERROR);
        EXPECT_EQ(answer.text, isAnnounce ? "r1" : "no configuration is loaded; load one first");
    }
    EXPECT_EQ(sendUrl(LOAD, "S", "file://" + path).text, "loaded S");
    EXPECT_EQ(text(), DOCUMENT);
    std::remove(path.c_str());
    EXPECT_EQ(sendUrl(LOAD, "S", "file://" + path).kind, ERROR);
}

} // namespace

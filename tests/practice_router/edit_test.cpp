// Commands on a configuration: what they change, what they answer, and that a refused one changes nothing.
#include "tests/practice_router/kinds.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* DOCUMENT = R"(<dds>
    <routing_service name="S">
        <domain_route name="D">
            <participant_1><domain_id>0</domain_id></participant_1>
            <participant_2><domain_id>1</domain_id></participant_2>
            <session name="s1">
                <topic_route name="T">
                    <input/>
                    <output/>
                </topic_route>
            </session>
            <session name="s2">
                <property><value><element><name>size</name><value>8</value></element></value></property>
            </session>
        </domain_route>
        <domain_route name="E" enabled="false">
            <connection_1 plugin_name="Files::Csv"/>
            <participant_2><domain_id>3</domain_id></participant_2>
        </domain_route>
    </routing_service>
</dds>
)";

struct Router : testing::Test {
    PracticeRouter router{
        .name = "r1", .saveDirectory = testing::TempDir(), .configuration = {}, .uploads = {}};
    std::int32_t invocation = 0;

    void SetUp() override { load(); }
    void load() { ASSERT_EQ(PracticeConfiguration_load(router.configuration, DOCUMENT, "S").kind, OK); }
    PracticeAnswer sendUrl(Kind kind, const std::string& entity, const std::string& url) {
        PracticeRequest request{.id = {1, 2, ++invocation},
                                .target = "r1",
                                .kind = kind,
                                .entity = entity,
                                .content = url,
                                .peers = {}};
        return PracticeRouter_handle(router, request).value_or(PracticeAnswer_error("no answer"));
    }
    PracticeAnswer send(Kind kind, const std::string& entity = {}, const std::string& xml = {}) {
        return sendUrl(kind, entity, "str://\"" + xml + "\"");
    }
    std::string text() { return PracticeConfiguration_text(router.configuration); }
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

TEST_F(Router, UpdatesWhatASnippetNames) {
    const struct {
        const char* entity;
        std::string snippet;
        std::string shown; // in the document afterwards
    } rows[] = {
        {"D", nested("domain_route participant_1 domain_id", "5"), "<domain_id>5</domain_id>"},
        {"D", nested("participant_2 domain_id", " 7"), "<domain_id>7</domain_id>"},
        {"", nested("domain_route E participant_2 domain_id", "9"), "<domain_id>9</domain_id>"},
        {"S", nested("routing_service administration domain_id", " 8"),
         "<administration><domain_id>8</domain_id></administration>"},
        // A name as a tag: behind the entity's own tag, whether the entity is the target or inside it.
        {"D::s1", nested("session s1", property("a", " a&lt;b \n")), property("a", "a&lt;b")},
        {"D", nested("session s2", property("size", "16")),
         property("size", "16") + "\n            </session>"},
        {"D", "<session name=\"s2\">" + property("new", "1") + "</session>",
         "<value>8</value></element><element><name>new</name><value>1</value></element>"},
        // Where the definition orders the elements, a new one goes where it belongs.
        {"D::s1::T", "<topic_route><transformation plugin_name=\"L::P\"/></topic_route>",
         "<input/>\n                    <transformation plugin_name=\"L::P\"/>\n                    "
         "<output/>"},
        {"S::E", "<domain_route enabled=\"true\"/>", "<domain_route name=\"E\" enabled=\"true\">"},
        {"", "<dds><qos_library name=\"Q\"/></dds>", "<qos_library name=\"Q\"/>"},
    };
    for (const auto& row : rows) {
        load();
        const PracticeAnswer answer = send(UPDATE, row.entity, row.snippet);
        EXPECT_EQ(answer.kind, OK) << row.snippet << ": " << answer.text;
        EXPECT_NE(text().find(row.shown), std::string::npos) << row.snippet << "\n" << text();
    }
}

TEST_F(Router, RefusesWhatMakesNoSenseAndChangesNothing) {
    const struct {
        Kind kind;
        const char* entity;
        std::string xml;
        int answer;
        const char* reason;
    } rows[] = {
        {UPDATE, "X", "<domain_route/>", NOT_FOUND, "X"},
        {UPDATE, "D", nested("domain_route participant_1 domain_id", "500"), ERROR, "from 0 to 232"},
        {UPDATE, "D", nested("domain_route participant_1 domain_id", ""), ERROR, "line 4"},
        {UPDATE, "D", nested("domain_route x", "1"), ERROR, "x matches nothing in domain_route \"D\""},
        {UPDATE, "D", nested("session s9 x", "1"), ERROR, "session"},
        {UPDATE, "D::s1", nested("session s2 documentation", "1"), ERROR, "s2 matches nothing"},
        {UPDATE, "D", "<session name=\"s9\"/>", ERROR, "session \"s9\" matches nothing"},
        {UPDATE, "D", nested("routing_service administration", ""), ERROR, "routing_service matches"},
        {UPDATE, "", nested("domain_route documentation", "1"), ERROR, "several"},
        {UPDATE, "D", nested("domain_route", "5"), ERROR, "holds elements"},
        {UPDATE, "D", nested("domain_route polling_period", ""), ERROR, "invalid: line 3"},
        {UPDATE, "D", "<domain_route", ERROR, "line 1"},
        {CREATE, "", "<session name=\"n\"/>", ERROR, "its parent is a domain_route"},
        {CREATE, "D", "<domain_route name=\"n\"/>", ERROR, "its parent is the service"},
        {CREATE, "", "<domain_route name=\"n\"/>", ERROR, "invalid: line"},
        {CREATE, "D", "<session/>", ERROR, "no name"},
        {CREATE, "D", "<session name=\"s1\"/>", ERROR, "exists already"},
        {CREATE, "X", "<session name=\"n\"/>", NOT_FOUND, "X"},
        {CREATE, "D", "<participant_1/>", ERROR, "cannot be created"},
        {DELETE, "", "", ERROR, "unload"},
        {DELETE, "D::s3", "", NOT_FOUND, "D::s3"},
        {DELETE, "D::participant_1", "", NOT_FOUND, "D::participant_1"},
        {ZUL_ROUTING_SERVICE_COMMAND_INSERT, "D", "<session name=\"n\"/>", ERROR, "not supported"},
        {ENABLE, "D", "", ERROR, "D is enabled already"},
        {RESUME, "D::s1", "", ERROR, "not paused"},
        {PAUSE, "E", "", ERROR, "disabled; enable it first"},
        {ADD_PEER, "D::s1", "", NOT_FOUND, "D::s1"},
        {ADD_PEER, "E", "", ERROR, "no participant_1"},
    };
    for (const auto& row : rows) {
        const PracticeAnswer answer = send(row.kind, row.entity, row.xml);
        EXPECT_EQ(answer.kind, row.answer) << row.xml << ": " << answer.text;
        EXPECT_NE(answer.text.find(row.reason), std::string::npos) << row.xml << ": " << answer.text;
        EXPECT_EQ(text(), DOCUMENT) << row.xml;
    }
}

TEST_F(Router, CreatesAndDeletesEntitiesOfEveryKind) {
    const auto route = [](const std::string& tag) {
        return "<" + tag + " name=\"" + tag + "\"><input/><output/></" + tag + ">";
    };
    const std::string participants =
        nested("participant_1 domain_id", "4") + nested("participant_2 domain_id", "5");
    EXPECT_EQ(send(CREATE, "", "<domain_route name=\"N\">" + participants + "</domain_route>").text,
              "created N");
    EXPECT_EQ(send(CREATE, "N", "<session name=\"s\"/>").text, "created N::s");
    for (const std::string tag : {"topic_route", "auto_topic_route", "route", "auto_route"}) {
        EXPECT_EQ(send(CREATE, "N::s", route(tag)).text, "created N::s::" + tag);
        EXPECT_EQ(send(DISABLE, "N::s::" + tag).text, "disabled N::s::" + tag);
    }
    EXPECT_EQ(send(DELETE, "N::s").text, "deleted N::s");
    EXPECT_EQ(send(ENABLE, "N::s::route").kind, NOT_FOUND);
    EXPECT_EQ(send(CREATE, "N", "<session name=\"s\">" + route("route") + "</session>").kind, OK);
    EXPECT_EQ(send(DISABLE, "N::s::route").kind, OK) << "a new entity knows nothing of the old one's state";
    EXPECT_EQ(send(DELETE, "S::N").text, "deleted N");
    EXPECT_EQ(text(), DOCUMENT);
}

TEST_F(Router, KeepsTheStateOfEntities) {
    EXPECT_EQ(send(PAUSE, "D::s1").text, "paused D::s1");
    EXPECT_EQ(send(PAUSE, "D::s1").kind, ERROR);
    EXPECT_EQ(send(UPDATE, "D::s1", nested("session documentation", "x")).kind, OK);
    EXPECT_EQ(send(RESUME, "D::s1").text, "resumed D::s1") << "an update keeps the state";
    EXPECT_EQ(send(ENABLE, "E").text, "enabled E");
    EXPECT_EQ(send(DISABLE).text, "disabled the router");
    EXPECT_NE(send(PAUSE, "D::s1").text.find("the router is disabled"), std::string::npos);
    EXPECT_EQ(send(DISABLE, "D").kind, OK);
    EXPECT_EQ(send(ENABLE).kind, OK);
    EXPECT_NE(send(PAUSE, "D::s1").text.find("D is disabled"), std::string::npos);
}

TEST_F(Router, WithoutAConfigurationOnlyLoadsAndAnnounces) {
    const PracticeAnswer saved = send(ZUL_ROUTING_SERVICE_COMMAND_SAVE);
    ASSERT_EQ(saved.kind, OK) << saved.text;
    const std::string path = saved.text.substr(saved.text.find('/'));
    EXPECT_EQ(send(ZUL_ROUTING_SERVICE_COMMAND_UNLOAD).text, "unloaded S");
    for (Kind kind = ZUL_ROUTING_SERVICE_COMMAND_UNLOAD; kind <= ADD_PEER;
         kind = static_cast<Kind>(kind + 1)) {
        const bool isAnnounce = kind == ZUL_ROUTING_SERVICE_COMMAND_ANNOUNCE;
        const PracticeAnswer answer = send(kind, "D", "<session name=\"n\"/>");
        EXPECT_EQ(answer.kind, isAnnounce ? ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT : ERROR);
        EXPECT_EQ(answer.text, isAnnounce ? "r1" : "no configuration is loaded; load one first");
    }
    EXPECT_EQ(sendUrl(LOAD, "S", "file://" + path).text, "loaded S");
    EXPECT_EQ(text(), DOCUMENT);
    std::remove(path.c_str());
    EXPECT_EQ(sendUrl(LOAD, "S", "file://" + path).kind, ERROR);
}

} // namespace

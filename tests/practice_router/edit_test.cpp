// Commands on a configuration: what they change, what they answer, and that a refused one changes nothing.
#include "practice_router/router.h"

#include <gtest/gtest.h>

namespace {

constexpr auto OK = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
constexpr auto ERROR = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ERROR;
constexpr auto NOT_FOUND = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ENTITY_NOT_FOUND;
using Kind = ZUL_RoutingService_Administration_CommandKind;
constexpr auto UPDATE = ZUL_ROUTING_SERVICE_COMMAND_UPDATE;
constexpr auto CREATE = ZUL_ROUTING_SERVICE_COMMAND_CREATE;
constexpr auto DELETE = ZUL_ROUTING_SERVICE_COMMAND_DELETE;
constexpr auto ENABLE = ZUL_ROUTING_SERVICE_COMMAND_ENABLE;
constexpr auto DISABLE = ZUL_ROUTING_SERVICE_COMMAND_DISABLE;
constexpr auto PAUSE = ZUL_ROUTING_SERVICE_COMMAND_PAUSE;
constexpr auto RESUME = ZUL_ROUTING_SERVICE_COMMAND_RESUME;

constexpr const char* DOCUMENT = R"(<dds>
    <routing_service name="S">
        <domain_route name="D">
            <participant_1>
                <domain_id>0</domain_id>
            </participant_1>
            <participant_2>
                <domain_id>1</domain_id>
            </participant_2>
            <session name="s1">
                <topic_route name="T">
                    <input participant="1">
                        <topic_name>Square</topic_name>
                    </input>
                    <output/>
                </topic_route>
            </session>
            <session name="s2">
                <property><value><element><name>size</name><value>8</value></element></value></property>
            </session>
        </domain_route>
        <domain_route name="E" enabled="false">
            <connection_1 plugin_name="Files::Csv"/>
            <participant_2>
                <domain_id>3</domain_id>
            </participant_2>
        </domain_route>
    </routing_service>
</dds>
)";

struct Router : testing::Test {
    PracticeRouter router{
        .name = "r1", .saveDirectory = testing::TempDir(), .configuration = {}, .uploads = {}};
    std::int32_t invocation = 0;

    void SetUp() override {
        ASSERT_EQ(PracticeConfiguration_load(router.configuration, DOCUMENT, "S").kind, OK);
    }
    PracticeAnswer send(Kind kind, const std::string& entity = {}, const std::string& xml = {}) {
        PracticeRequest request{.id = {1, 2, ++invocation},
                                .target = "r1",
                                .kind = kind,
                                .entity = entity,
                                .content = "str://\"" + xml + "\"",
                                .peers = {}};
        return PracticeRouter_handle(router, request).value_or(PracticeAnswer_error("no answer"));
    }
    std::string text() { return PracticeConfiguration_text(router.configuration); }
};

TEST_F(Router, UpdatesWhatASnippetNames) {
    struct Case {
        const char* entity;
        const char* snippet;
        const char* shown; // in the document afterwards
    };
    const Case cases[] = {
        {"D", "<domain_route><participant_1><domain_id>5</domain_id></participant_1></domain_route>",
         "<domain_id>5</domain_id>"},
        {"D", "<participant_2><domain_id> 7</domain_id></participant_2>", "<domain_id>7</domain_id>"},
        {"", "<domain_route><E><participant_2><domain_id>9</domain_id></participant_2></E></domain_route>",
         "<domain_id>9</domain_id>"},
        {"", "<routing_service><administration><domain_id> 8</domain_id></administration></routing_service>",
         "<administration><domain_id>8</domain_id></administration>"},
        // A name as a tag: behind the entity's own tag, whether the entity is the target or inside it.
        {"D::s1",
         "<session><s1><property><value><element><name>a</name><value> a&lt;b \n</value></element></value>"
         "</property></s1></session>",
         "<element><name>a</name><value>a&lt;b</value></element>"},
        {"D",
         "<session><s2><property><value><element><name>size</name><value>16</value></element></value></"
         "property>"
         "</s2></session>",
         "<element><name>size</name><value>16</value></element></value></property>\n            </session>"},
        {"D",
         "<session name=\"s2\"><property><value><element><name>new</name><value>1</value></element></value>"
         "</property></session>",
         "<value>16</value></element><element><name>new</name><value>1</value></element>"},
        {"D::s1::T", "<topic_route><input><topic_name>Circle</topic_name></input></topic_route>",
         "<topic_name>Circle</topic_name>"},
        // Where the definition orders the elements, a new one goes where it belongs.
        {"D::s1::T", "<topic_route><transformation plugin_name=\"L::P\"/></topic_route>",
         "</input>\n                    <transformation plugin_name=\"L::P\"/>\n                    "
         "<output/>"},
        {"S::E", "<domain_route enabled=\"true\"/>", "<domain_route name=\"E\" enabled=\"true\">"},
        {"", "<dds><qos_library name=\"Q\"/></dds>", "<qos_library name=\"Q\"/>"},
    };
    for (const Case& c : cases) {
        const PracticeAnswer answer = send(UPDATE, c.entity, c.snippet);
        EXPECT_EQ(answer.kind, OK) << c.snippet << ": " << answer.text;
        EXPECT_NE(text().find(c.shown), std::string::npos) << c.snippet << "\n" << text();
    }
}

TEST_F(Router, RefusesWhatMakesNoSenseAndChangesNothing) {
    struct Case {
        Kind kind;
        const char* entity;
        const char* xml;
        int answer;
        const char* reason;
    };
    const Case cases[] = {
        {UPDATE, "X", "<domain_route/>", NOT_FOUND, "X"},
        {UPDATE, "D",
         "<domain_route><participant_1><domain_id>500</domain_id></participant_1></domain_route>", ERROR,
         "from 0 to 232"},
        {UPDATE, "D", "<domain_route><participant_1><domain_id/></participant_1></domain_route>", ERROR,
         "line 5"},
        {UPDATE, "D", "<domain_route><x>1</x></domain_route>", ERROR,
         "x matches nothing in domain_route \"D\""},
        {UPDATE, "D", "<session><s9><x>1</x></s9></session>", ERROR, "session"},
        {UPDATE, "D::s1", "<session><s2><documentation>1</documentation></s2></session>", ERROR,
         "s2 matches nothing"},
        {UPDATE, "D", "<session name=\"s9\"/>", ERROR, "session \"s9\" matches nothing"},
        {UPDATE, "D", "<routing_service><administration/></routing_service>", ERROR,
         "routing_service matches"},
        {UPDATE, "", "<domain_route><documentation>1</documentation></domain_route>", ERROR, "several"},
        {UPDATE, "D", "<domain_route>5</domain_route>", ERROR, "holds elements"},
        {UPDATE, "D", "<domain_route><polling_period/></domain_route>", ERROR, "invalid: line 3"},
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
        {ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, "D::s1", "", NOT_FOUND, "D::s1"},
        {ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, "E", "", ERROR, "no participant_1"},
    };
    for (const Case& c : cases) {
        const PracticeAnswer answer = send(c.kind, c.entity, c.xml);
        EXPECT_EQ(answer.kind, c.answer) << c.xml << ": " << answer.text;
        EXPECT_NE(answer.text.find(c.reason), std::string::npos) << c.xml << ": " << answer.text;
        EXPECT_EQ(text(), DOCUMENT) << c.xml;
    }
}

TEST_F(Router, CreatesAndDeletesEntitiesOfEveryKind) {
    const std::string ends = "<input/><output/>";
    EXPECT_EQ(send(CREATE, "",
                   "<domain_route name=\"N\"><participant_1><domain_id>4</domain_id></participant_1>"
                   "<participant_2><domain_id>5</domain_id></participant_2></domain_route>")
                  .text,
              "created N");
    EXPECT_EQ(send(CREATE, "N", "<session name=\"s\"/>").text, "created N::s");
    for (const char* kind : {"topic_route", "auto_topic_route", "route", "auto_route"}) {
        const std::string tag = kind;
        const std::string path = "N::s::" + tag;
        EXPECT_EQ(send(CREATE, "N::s", "<" + tag + " name=\"" + tag + "\">" + ends + "</" + tag + ">").text,
                  "created " + path);
        EXPECT_EQ(send(DISABLE, path).text, "disabled " + path);
    }
    EXPECT_EQ(send(DELETE, "N::s").text, "deleted N::s");
    EXPECT_EQ(send(ENABLE, "N::s::route").kind, NOT_FOUND);
    EXPECT_EQ(
        send(CREATE, "N", "<session name=\"s\"><route name=\"route\">" + ends + "</route></session>").kind,
        OK);
    EXPECT_EQ(send(DISABLE, "N::s::route").kind, OK) << "a new entity knows nothing of the old one's state";
    EXPECT_EQ(send(DELETE, "S::N").text, "deleted N");
    EXPECT_EQ(text(), DOCUMENT);
}

TEST_F(Router, KeepsTheStateOfEntities) {
    EXPECT_EQ(send(PAUSE, "D::s1").text, "paused D::s1");
    EXPECT_EQ(send(PAUSE, "D::s1").kind, ERROR);
    EXPECT_EQ(send(UPDATE, "D::s1", "<session><documentation>x</documentation></session>").kind, OK);
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
    for (Kind kind = ZUL_ROUTING_SERVICE_COMMAND_UNLOAD; kind <= ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER;
         kind = static_cast<Kind>(kind + 1)) {
        const bool isAnnounce = kind == ZUL_ROUTING_SERVICE_COMMAND_ANNOUNCE;
        const PracticeAnswer answer = send(kind, "D", "<session name=\"n\"/>");
        EXPECT_EQ(answer.kind, isAnnounce ? ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT : ERROR);
        EXPECT_EQ(answer.text, isAnnounce ? "r1" : "no configuration is loaded; load one first");
    }
    PracticeRequest load{.id = {1, 2, 99},
                         .target = "r1",
                         .kind = ZUL_ROUTING_SERVICE_COMMAND_LOAD,
                         .entity = "S",
                         .content = "file://" + path,
                         .peers = {}};
    EXPECT_EQ(PracticeRouter_handle(router, load)->text, "loaded S");
    EXPECT_EQ(text(), DOCUMENT);
    std::remove(path.c_str());
    for (const std::string& url :
         {"file://" + path, std::string("file:///"), std::string("D.xml"), std::string()}) {
        load.content = url;
        EXPECT_EQ(PracticeRouter_handle(router, load)->kind, ERROR) << url;
    }
}

} // namespace

// Documents from outside: hostile ones are refused within bounds, faulty ones with the line, and none of them
// touches what is active.
#include "plan/document/entity.h"
#include "plan/document/merge.h"
#include "practice_router/actions/configuration.h"
#include "product/product_info.h"
#include "tests/practice_router/kinds.h"
#include "tests/support/repeated.h"

#include <chrono>
#include <gtest/gtest.h>

namespace {

using namespace zul::plan;
using namespace zul::practice;

const std::string BUILTIN = *ROUTER_g_productInfo[0].builtinDefaultConfiguration;

// clang-format off
TEST(Document, AFaultThatPassesOrIsToldOfAnotherLine) {
    const struct {
        std::string text; // of the builtin document; empty for all of it
        std::string replacement;
        std::string begin; // of the message
        const char* fault = "";
    } rows[] = {
        {"", "", "the document is empty"},
        {"", "hello", "line 1: ", "Start tag expected"},
        {"", BUILTIN.substr(0, BUILTIN.size() / 2), "line "},
        {"<session", std::string("\0<session", 9), "line 10: "},
        {"DefaultSession", "Default\xC3(Session", "line 10: ", "UTF-8"},
        {"", "<routing_service name=\"A\"/>", "line 1: ", "it must be dds"},
        {"<output/>", "", "line 11: ", "not complete; expected publish_with_original_info, "},
        {"<output/>", "<output><topic_name/><topic_name x=\"\"/></output>", "line 13: ", "expected no attribute"},
        {"participant=\"1\"", "side=\"1\"", "line 12: ", "no attribute side; expected participant or connection"},
        {"participant=\"1\"", "participant=\"3\"", "line 12: ", "is \"3\"; expected 1 or 2"},
        {"DefaultSession", std::string(60000, 'n'), "line 10: ", "n...\" of this session is not allowed; "},
        {"<output/>", repeated("\n", 70000) + "<outlet/>", "line 70013: ", "outlet"}, // beyond the library's numbers
        {"</session>", "</session><session name=\"DefaultSession\"/>", "line 15: ", "taken"},
        {"<dds>", "<!DOCTYPE dds SYSTEM \"http://127.0.0.1/x.dtd\"><dds>&x;", "line 1: ", "'x' not defined"},
        {"<dds>", "<!DOCTYPE dds SYSTEM \"x.dtd\" [%x;]><dds>", "line 1: ", "%x; not found"},
        {"<dds>", "<!DOCTYPE dds [<!ATTLIST dds a CDATA 'b'>]><dds>", "line 1: ", "take out the part in [ ]"},
        {"<dds>", "<dds xmlns=\"urn:x\">", "line 1: ", "in no namespace"},
        {"<routing", "<routing_service xmlns:x=\"http://www.w3.org/2001/XMLSchema-instance\"/><routing", "line 2: ", "xmlns"},
        {"<dds>", "<dds" + repeated(" a#=''", 65) + ">", "line 1: ", "more than 64 attributes"},
        {"<dds>", "<dds" + repeated(" a#=''", 500000) + ">", "line 1: ", "a tag has more than 65536 bytes"},
        {"<dds>", "<dds>" + repeated("<?a?>", MAX_NODES), "line 1: ", "shorten the document"},
        {"", repeated("<dds>\n", 10000) + repeated("</dds>", 10000), "line 65: ", "64 deep"},
        {"</dds>", "</dds>" + std::string(MAX_DOCUMENT_SIZE, ' '), "the document has ", "at most"},
    };
    Configuration configuration;
    ASSERT_EQ(configuration.load(BUILTIN, "BuiltinDefault").kind, OK);
    for (const auto& row : rows) {
        const std::string what = row.replacement.substr(0, 60);
        std::string xml = BUILTIN;
        const std::size_t at = xml.find(row.text);
        ASSERT_NE(at, std::string::npos) << what;
        xml.replace(at, row.text.empty() ? xml.size() : row.text.size(), row.replacement);
        const auto begin = std::chrono::steady_clock::now();
        testing::internal::CaptureStderr();
        const Answer answer = configuration.load(xml, "BuiltinDefault");
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << what;
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5)) << what;
        EXPECT_EQ(answer.kind, ERROR) << what;
        EXPECT_TRUE(answer.text.starts_with(row.begin)) << what << ": " << answer.text;
        EXPECT_NE(answer.text.find(row.fault), std::string::npos) << what << ": " << answer.text;
        EXPECT_LE(answer.text.size(), MAX_FAILURE + 3) << what;
        EXPECT_EQ(answer.text.find('\n'), std::string::npos) << what;
        EXPECT_EQ(configuration.text(), BUILTIN) << what;
    }
}

// clang-format on

TEST(Document, KeepsWhatEditorsWriteInItAndFollowsNoneOfIt) {
    const std::string head = "<!DOCTYPE dds PUBLIC \"-//x\" \"http://127.0.0.1/x.dtd\">\n"
                             "<?xml-model href=\"file:///x.dtd\"?>\n<dds xmlns:xsi=\"http://www.w3.org/2001/"
                             "XMLSchema-instance\" xsi:noNamespaceSchemaLocation=\"http://127.0.0.1/x.xsd\">";
    const std::string document = head + BUILTIN.substr(BUILTIN.find('>') + 1);
    Configuration configuration;
    const Answer answer = configuration.loadFirst(document);
    ASSERT_EQ(answer.kind, OK) << answer.text;
    EXPECT_EQ(configuration.text(), document);
    EXPECT_EQ(configuration.update("", document).text, "updated the router");
    EXPECT_EQ(configuration.text(), document);
}

TEST(Document, IsLeftAsItIsByWorkThatIsStopped) {
    std::stop_source ending;
    Configuration configuration(ending.get_token());
    ASSERT_EQ(configuration.loadFirst(BUILTIN).kind, OK);
    const XmlDocument document = parseXml(BUILTIN, ending.get_token());
    const XmlDocument snippet = parseXml(BUILTIN, ending.get_token(), document->dict);
    ending.request_stop();
    EXPECT_THROW(
        applySnippet(findService(document.get()), xmlDocGetRootElement(snippet.get()), ending.get_token()),
        Refusal);
    EXPECT_EQ(configuration.loadFirst(BUILTIN).text, STOPPED);
    EXPECT_EQ(configuration.changeState(StateChange::DISABLE, "DefaultDomainRoute").kind, ERROR);
    EXPECT_EQ(configuration.text(), BUILTIN);
}

TEST(Document, HoldsSeveralConfigurationsOfWhichOneIsInForce) {
    const std::string two = "<dds><routing_service name=\"North\"><domain_route name=\"N\">"
                            "<participant_1><domain_id>0x10</domain_id></participant_1>"
                            "<participant_2><domain_id> +1\n</domain_id></participant_2></domain_route>"
                            "</routing_service><routing_service name=\"South\"/></dds>\n";
    Configuration configuration;
    EXPECT_EQ(configuration.load(two, "").kind, ERROR);
    EXPECT_EQ(configuration.load(two, "East").kind, NOT_FOUND);
    EXPECT_FALSE(configuration.isLoaded());
    const auto disable = [&configuration](const char* path) {
        return configuration.changeState(StateChange::DISABLE, path).kind;
    };
    EXPECT_EQ(configuration.load(two, "North").kind, OK);
    EXPECT_EQ(disable("N"), OK);
    EXPECT_EQ(disable("N"), ERROR);
    EXPECT_EQ(configuration.load(two, "South").kind, OK);
    EXPECT_EQ(disable("N"), NOT_FOUND);
    EXPECT_EQ(configuration.load(two, "North").kind, OK);
    EXPECT_EQ(disable("North::N"), OK) << "a load starts with every state afresh";
}

} // namespace

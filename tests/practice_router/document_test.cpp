// Documents from outside: hostile ones are refused within bounds, faulty ones with the line, and none of them
// touches what is active.
#include "practice_router/configuration.h"
#include "practice_router/document.h"
#include "product/product_info.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

constexpr auto OK = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
constexpr auto ERROR = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ERROR;
constexpr auto NOT_FOUND = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ENTITY_NOT_FOUND;

std::string repeated(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

const std::string BUILTIN = *ROUTER_g_productInfo[0].builtinDefaultConfiguration;

// The builtin document with one text replaced.
std::string builtinWith(const std::string& text, const std::string& replacement) {
    std::string document = BUILTIN;
    const std::size_t at = document.find(text);
    EXPECT_NE(at, std::string::npos) << text;
    return document.replace(at, text.size(), replacement);
}

TEST(Document, OfTheProductLoadsAndReadsBackAsItIs) {
    for (const std::int32_t product : {ROUTER_PRODUCT_ROUTING_SERVICE, ROUTER_PRODUCT_FEDERATION_SERVICE}) {
        ROUTER_setProductId(product);
        const std::string document = *ROUTER_getProductInfo()->builtinDefaultConfiguration;
        PracticeConfiguration configuration;
        EXPECT_EQ(PracticeConfiguration_load(configuration, document, "BuiltinDefault").kind, OK);
        EXPECT_EQ(PracticeConfiguration_text(configuration), document);
        const std::string other = *ROUTER_g_productInfo[1 - product].builtinDefaultConfiguration;
        EXPECT_EQ(PracticeRouter_loadDocument(other, "BuiltinDefault").kind, ERROR);
    }
    ROUTER_setProductId(ROUTER_PRODUCT_ROUTING_SERVICE);
}

TEST(Document, IsRefusedForItsFirstFaultWithTheLine) {
    struct Case {
        const char* what;
        std::string xml;
        const char* line; // how the message begins
        const char* fault;
    };
    const Case cases[] = {
        {"nothing", "", "the document is empty", ""},
        {"no XML", "hello", "line 1: ", "Start tag expected"},
        {"not closed", BUILTIN.substr(0, BUILTIN.size() / 2), "line ", ""},
        {"NUL", builtinWith("<session", std::string("\0<session", 9)), "line 10: ", ""},
        {"broken UTF-8", builtinWith("DefaultSession", "Default\xC3(Session"), "line 10: ", "UTF-8"},
        {"unknown entity", builtinWith("<domain_id>0", "<domain_id>&zero;"), "line 5: ", "zero"},
        {"other root", "<routing_service name=\"A\"/>", "line 1: ", "it must be dds"},
        {"unknown element", builtinWith("<output/>", "<outlet/>"), "line 11: ", "auto_topic_route"},
        {"unknown attribute", builtinWith("participant=\"1\"", "side=\"1\""), "line 12: ", "side"},
        {"wrong order", builtinWith("<input participant=\"1\"/>", "<output/>"), "line 11: ", "content"},
        {"nameless session", builtinWith(" name=\"DefaultSession\"", ""), "line 10: ", "name"},
        {"separator in a name", builtinWith("DefaultSession", "A::B"), "line 10: ", "letters, digits"},
        {"name taken",
         builtinWith("</session>", "</session><polling_session name=\"DefaultSession\">"
                                   "<polling_period/></polling_session>"),
         "line 15: ", "taken"},
        {"domain id no number", builtinWith("<domain_id>0", "<domain_id>x"), "line 5: ", "from 0 to 232"},
        {"domain id out of range", builtinWith("<domain_id>1", "<domain_id>233"),
         "line 8: ", "from 0 to 232"},
        {"negative domain id", builtinWith("<domain_id>1", "<domain_id>-1"), "line 8: ", "from 0 to 232"},
        {"document type", "<!DOCTYPE dds>\n" + BUILTIN, "line 1: ", "take out the <!DOCTYPE"},
        {"external subset", "<!DOCTYPE dds SYSTEM \"http://127.0.0.1/x.dtd\">" + BUILTIN,
         "line 1: ", "DOCTYPE"},
        {"external entity",
         "<!DOCTYPE dds [<!ENTITY x SYSTEM \"file:///etc/passwd\">]>\n<dds><types>&x;</types></dds>",
         "line 1: ", "DOCTYPE"},
        {"entity bomb",
         "<!DOCTYPE dds [<!ENTITY a \"aaaaaaaaaa\">" +
             [] {
                 std::string bomb;
                 for (char name = 'b'; name <= 'z'; ++name) {
                     bomb += std::string("<!ENTITY ") + name + " \"" +
                             repeated(std::string("&") + static_cast<char>(name - 1) + ";", 10) + "\">";
                 }
                 return bomb;
             }() +
             "]><dds>&z;</dds>",
         "line 1: ", "DOCTYPE"},
        {"10000 nested elements", repeated("<dds>\n", 10000) + repeated("</dds>", 10000),
         "line 65: ", "64 deep"},
        {"too large", BUILTIN + std::string(PRACTICE_XML_MAX_SIZE, ' '), "the document has ", "at most"},
    };
    PracticeConfiguration configuration;
    ASSERT_EQ(PracticeConfiguration_load(configuration, BUILTIN, "BuiltinDefault").kind, OK);
    for (const Case& c : cases) {
        const auto begin = std::chrono::steady_clock::now();
        testing::internal::CaptureStderr();
        const PracticeAnswer answer = PracticeConfiguration_load(configuration, c.xml, "BuiltinDefault");
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << c.what;
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5)) << c.what;
        EXPECT_EQ(answer.kind, ERROR) << c.what;
        EXPECT_TRUE(answer.text.starts_with(c.line)) << c.what << ": " << answer.text;
        EXPECT_NE(answer.text.find(c.fault), std::string::npos) << c.what << ": " << answer.text;
        EXPECT_EQ(PracticeConfiguration_text(configuration), BUILTIN) << c.what;
    }
}

TEST(Document, HoldsSeveralConfigurationsOfWhichOneIsInForce) {
    const std::string two = "<dds><routing_service name=\"North\"><domain_route name=\"N\">"
                            "<participant_1><domain_id>0x10</domain_id></participant_1>"
                            "<participant_2><domain_id> +1\n</domain_id></participant_2></domain_route>"
                            "</routing_service><routing_service name=\"South\"/></dds>\n";
    PracticeConfiguration configuration;
    EXPECT_EQ(PracticeConfiguration_load(configuration, two, "").kind, ERROR);
    EXPECT_EQ(PracticeConfiguration_load(configuration, two, "East").kind, NOT_FOUND);
    EXPECT_EQ(configuration.document, nullptr);
    const auto disable = [&configuration](const char* path) {
        return PracticeConfiguration_changeState(configuration, PracticeStateChange::DISABLE, path).kind;
    };
    EXPECT_EQ(PracticeConfiguration_load(configuration, two, "North").kind, OK);
    EXPECT_EQ(disable("N"), OK);
    EXPECT_EQ(disable("N"), ERROR);
    EXPECT_EQ(PracticeConfiguration_load(configuration, two, "South").kind, OK);
    EXPECT_EQ(disable("N"), NOT_FOUND);
    EXPECT_EQ(PracticeConfiguration_load(configuration, two, "North").kind, OK);
    EXPECT_EQ(disable("North::N"), OK) << "a load starts with every state afresh";
}

} // namespace

// Documents: what the tree holds, and hostile ones: refused with a line.
#include "tests/middleware/captured_log.h"
#include "tests/support/failing_heap.h"
#include "tests/support/failing_new.h"
#include "tests/support/repeated.h"
#include "tests/utils/documents.h"
#include "utils/participant_qos.h"
#include "utils/type_description.h"
#include "utils/xml_tree.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

TEST(Documents, AnElementThatIsReadOrMadeOtherwise) {
    const ZULXMLExtensionClass quoted{"b", [](const ZULXMLExtensionClass* self, ZULXMLObject* parent,
                                              const char* name, std::span<const ZULXMLAttribute>) {
                                          const ZULXMLAttribute mark{"class", self->tagName};
                                          return ZULXMLObject_new(self->tagName, name, parent, {&mark, 1});
                                      }};
    ZULXMLParser parser;
    ASSERT_TRUE(ZULXMLParser_initialize(&parser) && ZULXMLExtensionRegistry_add(&parser.registry, &quoted));
    EXPECT_FALSE(ZULXMLExtensionRegistry_add(&parser.registry, &quoted));
    const DocumentPtr document(
        ZULXMLParser_parseText(&parser, "<?xml version='1.0' encoding='ISO-8859-1'?>\n"
                                        "<!DOCTYPE dds SYSTEM 'routing_service.dtd'>\n"
                                        "<dds xmlns:x='urn:x' x:note='1 &lt; 2'><!-- remark -->\n"
                                        "<a name='one'> some <b/>\n<![CDATA[<text>]]> \xE4&#33; </a><a/>\n"
                                        "<c name='one'/><a name='a#5'/><a/></dds>"),
        ZULXMLDocument_delete);
    ZULXMLParser_finalize(&parser);
    ASSERT_NE(document->root, nullptr) << document->error.text;
    const ZULXMLObject& root = *document->root;
    EXPECT_EQ(dump(root), "::dds{ ::dds::one 'some \n<text> \xC3\xA4!'{ ::dds::one::b#1{}} ::dds::a#2{}"
                          " ::dds::one#3{} ::dds::a#5{} ::dds::a#5#{}}"); // the name made up for it is taken
    EXPECT_EQ(root.context, document.get());
    EXPECT_STREQ(ZULXMLObject_getAttribute(&root, "x:note"), "1 < 2");
    EXPECT_STREQ(ZULXMLObject_getAttribute(root.children.first->children.first, "class"), "b");
    EXPECT_EQ(root.children.first->line, 4);
    EXPECT_EQ(root.children.last->line, 6);
}

TEST(Documents, EveryFailedAllocationIsTheFailureThatTheOperationPromises) {
    CapturedLog log;
    ZULXMLParser parser;
    ASSERT_TRUE(ZULXMLParser_initialize(&parser));
    const DocumentPtr document = readText(typesDocument(structOf(member(BYTE), "ANameThatNeedsMemory")));
    DDS_DomainParticipantQos qos;
    DDS_DomainParticipantQos_initialize(&qos);
    const std::function<bool()> operations[] = {
        [] {
            const DocumentPtr read = readText("<dds><a name='x' y='z'>a text that needs memory</a></dds>");
            return read != nullptr && read->root != nullptr;
        },
        [&] { return ROUTERUtils_getTypeCodeFromXMLDom(document.get(), "ANameThatNeedsMemory") != nullptr; },
        [&] { return ROUTERUtils_setParticipantName(&qos, "a long name of a router", "route", "1"); },
        [&] {
            return ROUTERUtils_createChildQosObject(&parser.registry, document->root, "topic_qos") != nullptr;
        },
    };
    g_newCanFail = true;
    for (const auto& operation : operations) {
        EXPECT_GT(failEachAllocation(operation), 0);
    }
    g_newCanFail = false;
    EXPECT_STREQ(qos.participant_name.name, "ZUL Routing Service: a long name of a router.route1");
    DDS_DomainParticipantQos_finalize(&qos);
    ZULXMLParser_finalize(&parser);
}

TEST(Documents, HostileOnesAreRefusedWithTheirLine) {
    CapturedLog log;
    const std::string open = "<dds>\n";
    const std::string longName(ZUL_XML_NAME_MAX + 1, 'n');
    const std::string mib(1 << 20, 'x');
    const std::tuple<std::string, int, const char*> rows[] = {
        {open + repeated("<a>\n", 10000) + repeated("</a>", 10000) + "</dds>", 65, "more than 64 levels"},
        {open + repeated(" ", 100u << 20), 2, "longer than 4194304 bytes"},
        {open + repeated("<a/>\n", ZUL_XML_ELEMENTS_MAX) + "</dds>", 131073, "more than 131072 elements"},
        {open + "<a b='" + mib + "'/></dds>", 2, "longer than 65536 bytes"},
        {open + "<!--" + mib + "--></dds>", 2, "longer than 65536 bytes"},
        {open + "<a " + repeated("b='' ", 12000) + "/></dds>", 2, "Attribute b redefined"},
        {open + "<a name='" + std::string(250, 'x') + "'>" + repeated("<b/>", 80000) + "</a></dds>", 2,
         "too long in all"},
        {"<!DOCTYPE dds [\n<!ENTITY a SYSTEM 'file:///etc/hostname'>]><dds>&a;</dds>", 2, "must not declare"},
        {"<!DOCTYPE dds [\n<!ATTLIST a b CDATA 'x'>]><dds/>", 2, "must not declare"},
        {"<!DOCTYPE dds SYSTEM 'x.dtd'>\n<dds>&a;</dds>", 2, "Entity 'a' not defined"},
        {open + "<a>\xC3\x28</a></dds>", 2, "UTF-8"},
        {open + "\n<a name='\xED\xA0\x80'/></dds>", 3, ""},
        {open + std::string("<a>\0</a></dds>", 15), 2, ""},
        {"<?xml version='1.0' encoding='SHIFT_JIS'?>\n<dds>\x81 x</dds>", 0, "input conversion failed"},
        {"<?xml version='1.0' encoding='SHIFT_JIS'?>\n<dds/>" + repeated(" ", 5000) + "\x81 x<", 0, "input"},
        {open + "<a>\n</b></dds>", 3, "mismatch"},
        {open + "<a name=''/></dds>", 2, "1 to 255 characters"},
        {open + "<a name='" + longName + "'/></dds>", 2, "1 to 255 characters"},
        {open + "<" + longName + "/></dds>", 2, "longer than 255"},
        {open, 2, "Premature end"},
        {"<dds/>\n<dds/>", 2, "Extra content"},
        {"", 1, ""},
    };
    testing::internal::CaptureStderr();
    for (const auto& [text, line, reason] : rows) {
        const std::string head = text.substr(0, 60);
        const DocumentPtr document = readText(text);
        ASSERT_EQ(document->root, nullptr) << head;
        EXPECT_EQ(document->error.line, line) << head << ": " << document->error.text;
        EXPECT_NE(document->error.text.find(reason), std::string::npos)
            << head << ": " << document->error.text;
        EXPECT_FALSE(document->error.text.empty());
        EXPECT_NE(log.take().find("XML line " + std::to_string(line)), std::string::npos);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), ""); // the library's words, too
    for (const char* path : {"/nonexistent/file.xml", "/dev/zero", "/"}) {
        const DocumentPtr document = readFile(path);
        EXPECT_EQ(document->root, nullptr);
        EXPECT_NE(document->error.text.find(path), std::string::npos);
    }
}

} // namespace

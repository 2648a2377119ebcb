// The object tree: moves that fail leave no trace, and what fails is reported.
#include "tests/middleware/captured_log.h"
#include "tests/support/failing_heap.h"
#include "tests/utils/documents.h"
#include "utils/xml_tree.h"

#include <functional>

namespace {

// Two documents, ::left with a, b and c, and ::right with b; a has a leaf.
class XmlTree : public testing::Test {
protected:
    XmlTree() { EXPECT_TRUE(ZULXMLParser_initialize(&parser)); }
    ~XmlTree() override { ZULXMLParser_finalize(&parser); }
    std::string trees() const { return dump(*left) + " " + dump(*right); }

    CapturedLog log;
    ZULXMLParser parser;
    const DocumentPtr documents[2] = {
        readText("<left><e name='a'><e name='leaf'/></e><e name='b'/><e name='c'/></left>"),
        readText("<right><e name='b'/></right>")};
    ZULXMLObject* const left = documents[0]->root;
    ZULXMLObject* const right = documents[1]->root;
};

TEST_F(XmlTree, AChangeThatFailsAndLeavesATraceOrSucceedsInPart) {
    std::string before =
        "::left{ ::left::a{ ::left::a::leaf{}} ::left::b{} ::left::c{}} ::right{ ::right::b{}}";
    // The name of b is taken there: it stays in its place, though memory runs out as well.
    for (long allocations = -1; allocations < 9; ++allocations) {
        ZULHeap_failAfter(allocations);
        EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(left->children.first->next, left, right));
        ZULHeap_failAfter(-1);
        EXPECT_EQ(trees(), before);
    }
    ZULXMLObject* const a = left->children.first;
    ZULXMLObject* const c = left->children.last;
    const std::pair<std::function<bool()>, const char*> changes[] = {
        {[&] { return ROUTERUtils_moveChildXmlObject(a, left, right); },
         "::left{ ::left::b{} ::left::c{}} ::right{ ::right::b{} ::right::a{ ::right::a::leaf{}}}"},
        {[&] { return ROUTERUtils_moveChildXmlObject(a, right, left); },
         "::left{ ::left::b{} ::left::c{} ::left::a{ ::left::a::leaf{}}} ::right{ ::right::b{}}"},
        {[&] { return ROUTERUtils_moveChildXmlObject(c, left, left); },
         "::left{ ::left::b{} ::left::a{ ::left::a::leaf{}} ::left::c{}} ::right{ ::right::b{}}"},
        {[&] { return ROUTERUtils_deleteXMLObject(&parser, a); },
         "::left{ ::left::b{} ::left::c{}} ::right{ ::right::b{}}"},
    };
    for (const auto& [change, after] : changes) {
        failEachAllocation(change, [&](bool isDone) { EXPECT_EQ(trees(), isDone ? after : before); });
        before = after;
    }
}

TEST_F(XmlTree, AFailureThatIsNotReported) {
    const auto createQos = [this](const char* tag) {
        return ROUTERUtils_createChildQosObject(&parser.registry, left, tag);
    };
    ROUTERUtils_g_uniqueNameSuffix = 0;
    ZULXMLObject* const child = createQos("topic_qos");
    ASSERT_NE(child, nullptr);
    EXPECT_STREQ(ZULXMLObject_getAttribute(child, "name"), "default_topic_qos_0");
    EXPECT_EQ(child->context, left->context);
    ROUTERUtils_g_uniqueNameSuffix = 0;
    EXPECT_EQ(createQos("topic_qos"), nullptr);
    EXPECT_STREQ(createQos("topic_qos")->name, "default_topic_qos_1");
    EXPECT_EQ(createQos("topic"), nullptr);
    EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(child, right, left));
    EXPECT_FALSE(ROUTERUtils_deleteXMLObject(&parser, left));
    const std::string exists = "ZULXMLObject_addChild: XML object with name '::left::default_topic_qos_0";
    EXPECT_EQ(log.take(),
              exists + "' already exists\n"
                       "ERROR [ROUTERUtils_createChildQosObject] failed to add child qos xml object\n"
                       "ERROR [ROUTERUtils_createChildQosObject] failure: find builtin extension class\n"
                       "ERROR [ROUTERUtils_removeChildXmlObject] failed to remove XML object\n"
                       "ERROR [ROUTERUtils_moveChildXmlObject] failure: removeChildXmlObject\n"
                       "ERROR [ROUTERUtils_deleteXMLObject] failed to get parent XML object\n");
    // What would tie the tree to a knot.
    ZULXMLObject* const below = ZULXMLObject_new("element", "below", child, {});
    EXPECT_TRUE(ROUTERUtils_addChildXMLObject(child, below));
    EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(child, left, below));
    EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(child, left, child));
    EXPECT_FALSE(ROUTERUtils_addChildXMLObject(child, below)); // it is there already
    const std::string moveFails = "ERROR [ROUTERUtils_moveChildXmlObject] failure: addChildXmlObject\n";
    EXPECT_EQ(log.take(), moveFails + moveFails + exists + "::below' already exists\n");
    EXPECT_FALSE(ROUTERUtils_addChildXMLObject(right, below)); // it has a place
    EXPECT_FALSE(ROUTERUtils_addChildXMLObject(left, left));
    EXPECT_STREQ(below->fullName, "::left::default_topic_qos_0::below");
}

} // namespace

// The object tree: moves that fail leave no trace, and what fails is reported.
#include "middleware/base/heap.h"
#include "tests/middleware/captured_log.h"
#include "utils/xml_tree.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

// The full names in a tree, "::root{ ::root::a{} ::root::b{}}"; what does not fit together is marked.
std::string dump(const ZULXMLObject& object) {
    std::string text = std::string(object.fullName) + "{";
    const ZULXMLObject* previous = nullptr;
    std::size_t count = 0;
    for (const ZULXMLObject* child = object.children.first; child != nullptr; child = child->next) {
        const bool isSound = child->previous == previous && child->parent == &object &&
                             child->list == &object.children && child->context == object.context &&
                             ZULXMLObject_findChild(&object, child->name) == child;
        text += (isSound ? " " : " UNSOUND ") + dump(*child);
        previous = child;
        ++count;
    }
    const bool isSound =
        object.children.last == previous && object.children.count == count && object.childSet.size() == count;
    return text + (isSound ? "}" : " UNSOUND}");
}

ZULXMLObject* make(ZULXMLObject* parent, const char* name) {
    ZULXMLObject* object = ZULXMLObject_new("element", name, parent, {});
    EXPECT_TRUE(parent == nullptr || ROUTERUtils_addChildXMLObject(parent, object));
    return object;
}

// Two documents, ::left with a, b and c, and ::right with b; each child has a leaf.
class XmlTree : public testing::Test {
protected:
    XmlTree() {
        EXPECT_TRUE(ZULXMLParser_initialize(&parser));
        left->context = &documents[0];
        right->context = &documents[1];
        for (const char* name : {"a", "b", "c"}) {
            make(make(left, name), "leaf");
        }
        make(make(right, "b"), "leaf");
    }
    ~XmlTree() override {
        ZULXMLObject_delete(left);
        ZULXMLObject_delete(right);
        ZULXMLParser_finalize(&parser);
    }
    std::string trees() const { return dump(*left) + " " + dump(*right); }

    CapturedLog log;
    ZULXMLParser parser;
    ZULXMLDocument documents[2];
    ZULXMLObject* left = make(nullptr, "left");
    ZULXMLObject* right = make(nullptr, "right");
};

TEST_F(XmlTree, AChangeThatFailsAndLeavesATraceOrSucceedsInPart) {
    ZULXMLObject* const c = left->children.last;
    const std::string start = "::left{ ::left::a{ ::left::a::leaf{}} ::left::b{ ::left::b::leaf{}} "
                              "::left::c{ ::left::c::leaf{}}} ::right{ ::right::b{ ::right::b::leaf{}}}";
    const std::pair<std::function<bool()>, const char*> changes[] = {
        {[&] { return ROUTERUtils_moveChildXmlObject(left->children.first, left, right); },
         "::left{ ::left::b{ ::left::b::leaf{}} ::left::c{ ::left::c::leaf{}}} "
         "::right{ ::right::b{ ::right::b::leaf{}} ::right::a{ ::right::a::leaf{}}}"},
        {[&] { return ROUTERUtils_moveChildXmlObject(right->children.last, right, left); },
         "::left{ ::left::b{ ::left::b::leaf{}} ::left::c{ ::left::c::leaf{}} ::left::a{ ::left::a::leaf{}}} "
         "::right{ ::right::b{ ::right::b::leaf{}}}"},
        {[&] { return ROUTERUtils_moveChildXmlObject(c, left, left); },
         "::left{ ::left::b{ ::left::b::leaf{}} ::left::a{ ::left::a::leaf{}} ::left::c{ ::left::c::leaf{}}} "
         "::right{ ::right::b{ ::right::b::leaf{}}}"},
        {[&] { return ROUTERUtils_deleteXMLObject(&parser, left->children.first->next); },
         "::left{ ::left::b{ ::left::b::leaf{}} ::left::c{ ::left::c::leaf{}}} ::right{ ::right::b{ "
         "::right::b::leaf{}}}"},
    };
    std::string before = trees();
    EXPECT_EQ(before, start);
    for (const auto& [change, after] : changes) {
        // The name of b is taken there: it stays in its place, though memory runs out as well.
        ZULXMLObject* const b = ZULXMLObject_findChild(left, "b");
        for (long allocations = 0; b != nullptr && allocations < 9; ++allocations) {
            ZULHeap_failAfter(allocations);
            EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(b, left, right));
            ZULHeap_failAfter(-1);
            EXPECT_EQ(trees(), before);
        }
        bool isDone = false;
        for (long allocations = 0; !isDone; ++allocations) {
            ASSERT_LT(allocations, 20);
            ZULHeap_failAfter(allocations);
            isDone = change();
            ZULHeap_failAfter(-1);
            EXPECT_EQ(trees(), isDone ? after : before);
        }
        before = after;
    }
}

TEST_F(XmlTree, AFailureThatIsNotReported) {
    const auto expectLogged = [this](const std::string& lines) {
        EXPECT_EQ(log.take(), lines);
    };
    const auto createQos = [this](const char* tag) {
        return ROUTERUtils_createChildQosObject(&parser.registry, left, tag);
    };
    ROUTERUtils_g_uniqueNameSuffix = 0;
    ZULXMLObject* const child = createQos("topic_qos");
    ASSERT_NE(child, nullptr);
    EXPECT_STREQ(ZULXMLObject_getAttribute(child, "name"), "default_topic_qos_0");
    ROUTERUtils_g_uniqueNameSuffix = 0;
    EXPECT_EQ(createQos("topic_qos"), nullptr);
    expectLogged("ZULXMLObject_addChild: XML object with name '::left::default_topic_qos_0' already exists\n"
                 "ERROR [ROUTERUtils_createChildQosObject] failed to add child qos xml object\n");
    EXPECT_STREQ(createQos("topic_qos")->name, "default_topic_qos_1");
    EXPECT_EQ(createQos("topic"), nullptr);
    expectLogged("ERROR [ROUTERUtils_createChildQosObject] failure: find builtin extension class\n");
    EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(child, right, left));
    expectLogged("ERROR [ROUTERUtils_removeChildXmlObject] failed to remove XML object\n"
                 "ERROR [ROUTERUtils_moveChildXmlObject] failure: removeChildXmlObject\n");
    EXPECT_FALSE(ROUTERUtils_deleteXMLObject(&parser, left));
    expectLogged("ERROR [ROUTERUtils_deleteXMLObject] failed to get parent XML object\n");
    // What would tie the tree to a knot.
    const std::string moveFails = "ERROR [ROUTERUtils_moveChildXmlObject] failure: addChildXmlObject\n";
    ZULXMLObject* const below = make(child, "below");
    EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(child, left, below));
    EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(child, left, child));
    expectLogged(moveFails + moveFails);
    EXPECT_FALSE(ROUTERUtils_addChildXMLObject(child, below)); // it is there already
    expectLogged(
        "ZULXMLObject_addChild: XML object with name '::left::default_topic_qos_0::below' already exists\n");
    EXPECT_FALSE(ROUTERUtils_addChildXMLObject(right, below)); // it has a place
    EXPECT_FALSE(ROUTERUtils_addChildXMLObject(left, left));
    EXPECT_STREQ(below->fullName, "::left::default_topic_qos_0::below");
}

} // namespace

// The object tree: its operations under random use, checked against a plain model, and what they report.
#include "middleware/heap.h"
#include "tests/middleware/captured_log.h"
#include "utils/xml_tree.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace {

struct Model {
    std::string name;
    std::vector<Model> children;
};

// The tree equals the model: order, links both ways, count, look-up of every child, full names, parents.
void expectEqual(const ZULXMLObject& object, const Model& model) {
    ASSERT_EQ(object.children.count, model.children.size());
    ASSERT_EQ(object.childSet.count, model.children.size());
    const ZULXMLObject* previous = nullptr;
    const ZULXMLObject* child = object.children.first;
    for (const Model& expected : model.children) {
        ASSERT_NE(child, nullptr);
        ASSERT_EQ(child->name, expected.name);
        ASSERT_EQ(child->fullName, std::string(object.fullName) + "::" + expected.name);
        ASSERT_EQ(child->formerFullName, nullptr);
        ASSERT_EQ(child->previous, previous);
        ASSERT_EQ(child->parent, &object);
        ASSERT_EQ(child->list, &object.children);
        ASSERT_EQ(ZULXMLObject_findChild(&object, expected.name), child);
        expectEqual(*child, expected);
        previous = child;
        child = child->next;
    }
    ASSERT_EQ(child, nullptr);
    ASSERT_EQ(object.children.last, previous);
}

class TreeUnderRandomUse {
public:
    TreeUnderRandomUse() { ZULXMLParser_initialize(&parser_); }
    ~TreeUnderRandomUse() {
        ZULXMLObject_delete(root_);
        ZULXMLParser_finalize(&parser_);
    }

    void step() {
        const std::size_t from = pick(2), to = pick(2);
        ZULXMLObject* source = branch(from);
        std::vector<Model>& here = model_.children[from].children;
        const std::size_t action = pick(4);
        // Now and then the n-th allocation of the step fails.
        ZULHeap_failAfter(pick(3) == 0 ? static_cast<long>(pick(9)) : -1);
        if (action == 0 || here.empty()) {
            add(source, here);
        } else if (action == 1) {
            remove(source, here, pick(here.size()));
        } else {
            move(from, to, pick(here.size()));
        }
        ZULHeap_failAfter(-1);
        expectEqual(*root_, model_);
    }
    int moves = 0;
    int failedMoves = 0;

private:
    std::size_t pick(std::size_t count) { return random_() % count; }
    static ZULXMLObject* make(ZULXMLObject* parent, const char* name) {
        return ZULXMLObject_new("element", name, parent, {});
    }
    ZULXMLObject* branch(std::size_t index) const {
        return index == 0 ? root_->children.first : root_->children.last;
    }
    static ZULXMLObject* childAt(ZULXMLObject* parent, std::size_t index) {
        ZULXMLObject* child = parent->children.first;
        for (; index > 0; --index) {
            child = child->next;
        }
        return child;
    }

    // Few names, so that they clash; each has a child, so that what is below follows.
    void add(ZULXMLObject* parent, std::vector<Model>& siblings) {
        const std::string name(1, static_cast<char>('a' + pick(12)));
        ZULXMLObject* child = make(parent, name.c_str());
        ZULXMLObject* leaf = child != nullptr ? make(child, "leaf") : nullptr;
        if (leaf == nullptr || !ROUTERUtils_addChildXMLObject(child, leaf)) {
            ZULXMLObject_delete(leaf);
            ZULXMLObject_delete(child);
        } else if (ROUTERUtils_addChildXMLObject(parent, child)) {
            siblings.push_back({name, {{"leaf", {}}}});
        } else {
            ZULXMLObject_delete(child);
        }
    }
    void remove(ZULXMLObject* parent, std::vector<Model>& siblings, std::size_t index) {
        ASSERT_TRUE(ROUTERUtils_deleteXMLObject(&parser_, childAt(parent, index)));
        siblings.erase(siblings.begin() + static_cast<std::ptrdiff_t>(index));
    }
    void move(std::size_t from, std::size_t to, std::size_t index) {
        std::vector<Model>& source = model_.children[from].children;
        std::vector<Model>& target = model_.children[to].children;
        ++moves;
        if (!ROUTERUtils_moveChildXmlObject(childAt(branch(from), index), branch(from), branch(to))) {
            ++failedMoves;
            return;
        }
        const auto place = source.begin() + static_cast<std::ptrdiff_t>(index);
        const Model moved = *place;
        source.erase(place);
        const auto isSame = [&moved](const Model& sibling) {
            return sibling.name == moved.name;
        };
        ASSERT_TRUE(std::none_of(target.begin(), target.end(), isSame));
        target.push_back(moved);
    }

    std::mt19937 random_{20260101};
    CapturedLog log_; // keeps the expected failures off the terminal
    ZULXMLParser parser_;
    ZULXMLObject* root_ = [] {
        ZULXMLObject* root = make(nullptr, "root");
        for (const char* name : {"left", "right"}) {
            ROUTERUtils_addChildXMLObject(root, make(root, name));
        }
        return root;
    }();
    Model model_{"root", {{"left", {}}, {"right", {}}}};
};

TEST(XmlTree, FollowsTheModelAndFailedMovesLeaveNoTrace) {
    TreeUnderRandomUse tree;
    for (int i = 0; i < 20000 && !testing::Test::HasFatalFailure(); ++i) {
        tree.step();
    }
    EXPECT_GT(tree.failedMoves, 1000);
    EXPECT_GT(tree.moves - tree.failedMoves, 1000);
}

TEST(XmlTree, FailuresAreReported) {
    ZULXMLParser parser;
    ASSERT_TRUE(ZULXMLParser_initialize(&parser));
    ZULXMLDocument left, right;
    left.root = ZULXMLObject_new("dds", "left", nullptr, {});
    right.root = ZULXMLObject_new("dds", "right", nullptr, {});
    left.root->context = &left;
    right.root->context = &right;
    CapturedLog log;
    ROUTERUtils_g_uniqueNameSuffix = 0;
    ZULXMLObject* child = ROUTERUtils_createChildQosObject(&parser.registry, left.root, "topic_qos");
    ASSERT_NE(child, nullptr);
    EXPECT_STREQ(child->fullName, "::left::default_topic_qos_0");
    EXPECT_STREQ(ZULXMLObject_getAttribute(child, "name"), "default_topic_qos_0");
    ROUTERUtils_g_uniqueNameSuffix = 0;
    EXPECT_EQ(ROUTERUtils_createChildQosObject(&parser.registry, left.root, "topic_qos"), nullptr);
    EXPECT_EQ(log.take(),
              "ZULXMLObject_addChild: XML object with name '::left::default_topic_qos_0' already exists\n"
              "ERROR [ROUTERUtils_createChildQosObject] failed to add child qos xml object\n");
    EXPECT_STREQ(ROUTERUtils_createChildQosObject(&parser.registry, left.root, "topic_qos")->name,
                 "default_topic_qos_1");
    EXPECT_EQ(ROUTERUtils_createChildQosObject(&parser.registry, left.root, "topic"), nullptr);
    EXPECT_EQ(log.take(), "ERROR [ROUTERUtils_createChildQosObject] failure: find builtin extension class\n");
    EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(child, right.root, left.root));
    EXPECT_EQ(log.take(), "ERROR [ROUTERUtils_removeChildXmlObject] failed to remove XML object\n"
                          "ERROR [ROUTERUtils_moveChildXmlObject] failure: removeChildXmlObject\n");
    EXPECT_FALSE(ROUTERUtils_deleteXMLObject(&parser, left.root));
    EXPECT_EQ(log.take(), "ERROR [ROUTERUtils_deleteXMLObject] failed to get parent XML object\n");
    ZULHeap_failAfter(1); // the name succeeds, the node of the set does not
    EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(child, left.root, right.root));
    EXPECT_EQ(log.take(), "ERROR [ZULXMLObject_addChild] failed to add XML object\n"
                          "ERROR [ROUTERUtils_moveChildXmlObject] failure: addChildXmlObject\n");
    EXPECT_EQ(left.root->children.first, child);
    EXPECT_STREQ(child->fullName, "::left::default_topic_qos_0");
    EXPECT_TRUE(ROUTERUtils_moveChildXmlObject(child, left.root, right.root));
    EXPECT_EQ(child->context, &right);
    EXPECT_EQ(child->parent, right.root);
    EXPECT_STREQ(child->fullName, "::right::default_topic_qos_0");
    EXPECT_EQ(log.take(), "");
    ZULXMLObject_delete(left.root);
    ZULXMLObject_delete(right.root);
    ZULXMLParser_finalize(&parser);
}

} // namespace

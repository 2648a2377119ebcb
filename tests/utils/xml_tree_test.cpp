// The object tree: its operations under random use, checked against a plain model, and what they report.
#include "middleware/base/heap.h"
#include "tests/middleware/captured_log.h"
#include "utils/xml_tree.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace {

using Names = std::vector<std::string>;

// The children are those of the model: order, links both ways, count, look-up, full names, parents. Each has
// one child itself, so that what is below is seen to follow.
void expectChildren(const ZULXMLObject& parent, const Names& model, bool areLeaves = false) {
    ASSERT_EQ(parent.children.count, model.size());
    ASSERT_EQ(parent.childSet.size(), model.size());
    const ZULXMLObject* previous = nullptr;
    const ZULXMLObject* child = parent.children.first;
    for (const std::string& name : model) {
        ASSERT_NE(child, nullptr);
        ASSERT_EQ(child->name, name);
        ASSERT_EQ(child->fullName, std::string(parent.fullName) + "::" + name);
        ASSERT_EQ(child->previous, previous);
        ASSERT_EQ(child->parent, &parent);
        ASSERT_EQ(child->list, &parent.children);
        ASSERT_EQ(ZULXMLObject_findChild(&parent, name), child);
        expectChildren(*child, areLeaves ? Names{} : Names{"leaf"}, true);
        previous = std::exchange(child, child->next);
    }
    ASSERT_EQ(child, nullptr);
    ASSERT_EQ(parent.children.last, previous);
}

ZULXMLObject* make(ZULXMLObject* parent, const char* name) {
    return ZULXMLObject_new("element", name, parent, {});
}

// Two branches of a tree, and the names of their children as they should be.
class TreeUnderRandomUse {
public:
    TreeUnderRandomUse() {
        ZULXMLParser_initialize(&parser_);
        for (const int side : {0, 1}) {
            branches_[side] = make(root_, side == 0 ? "left" : "right");
            ROUTERUtils_addChildXMLObject(root_, branches_[side]);
        }
    }
    ~TreeUnderRandomUse() {
        ZULXMLObject_delete(root_);
        ZULXMLParser_finalize(&parser_);
    }

    void step() {
        const std::size_t from = pick(2), to = pick(2), action = pick(4);
        // Now and then the n-th allocation of the step fails.
        ZULHeap_failAfter(pick(3) == 0 ? static_cast<long>(pick(9)) : -1);
        if (action == 0 || models_[from].empty()) {
            add(from);
        } else if (action == 1) {
            remove(from, pick(models_[from].size()));
        } else {
            move(from, to, pick(models_[from].size()));
        }
        ZULHeap_failAfter(-1);
        expectChildren(*branches_[0], models_[0]);
        expectChildren(*branches_[1], models_[1]);
    }
    int moves = 0;
    int failedMoves = 0;

private:
    std::size_t pick(std::size_t count) { return random_() % count; }
    ZULXMLObject* childAt(std::size_t side, std::size_t index) const {
        ZULXMLObject* child = branches_[side]->children.first;
        for (; index > 0; --index) {
            child = child->next;
        }
        return child;
    }

    void add(std::size_t side) {
        const std::string name(1, static_cast<char>('a' + pick(12))); // few names, so that they clash
        ZULXMLObject* child = make(branches_[side], name.c_str());
        ZULXMLObject* leaf = child != nullptr ? make(child, "leaf") : nullptr;
        if (leaf == nullptr || !ROUTERUtils_addChildXMLObject(child, leaf)) {
            ZULXMLObject_delete(leaf);
            ZULXMLObject_delete(child);
        } else if (ROUTERUtils_addChildXMLObject(branches_[side], child)) {
            models_[side].push_back(name);
        } else {
            ZULXMLObject_delete(child);
        }
    }
    void remove(std::size_t side, std::size_t index) {
        ASSERT_TRUE(ROUTERUtils_deleteXMLObject(&parser_, childAt(side, index)));
        models_[side].erase(models_[side].begin() + static_cast<std::ptrdiff_t>(index));
    }
    void move(std::size_t from, std::size_t to, std::size_t index) {
        ++moves;
        if (!ROUTERUtils_moveChildXmlObject(childAt(from, index), branches_[from], branches_[to])) {
            ++failedMoves;
            return;
        }
        const std::string name = models_[from][index];
        models_[from].erase(models_[from].begin() + static_cast<std::ptrdiff_t>(index));
        ASSERT_EQ(std::count(models_[to].begin(), models_[to].end(), name), 0);
        models_[to].push_back(name);
    }

    std::mt19937 random_{20260101};
    CapturedLog log_; // keeps the expected failures off the terminal
    ZULXMLParser parser_;
    ZULXMLObject* root_ = make(nullptr, "root");
    ZULXMLObject* branches_[2]{};
    Names models_[2];
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
    ZULXMLDocument documents[2];
    for (ZULXMLDocument& document : documents) {
        document.root = ZULXMLObject_new("dds", &document == documents ? "left" : "right", nullptr, {});
        document.root->context = &document;
    }
    ZULXMLObject* const left = documents[0].root;
    ZULXMLObject* const right = documents[1].root;
    CapturedLog log;
    const auto createQos = [&](const char* tag) {
        return ROUTERUtils_createChildQosObject(&parser.registry, left, tag);
    };
    ROUTERUtils_g_uniqueNameSuffix = 0;
    ZULXMLObject* child = createQos("topic_qos");
    ASSERT_NE(child, nullptr);
    EXPECT_STREQ(ZULXMLObject_getAttribute(child, "name"), "default_topic_qos_0");
    ROUTERUtils_g_uniqueNameSuffix = 0;
    EXPECT_EQ(createQos("topic_qos"), nullptr);
    EXPECT_EQ(log.take(),
              "ZULXMLObject_addChild: XML object with name '::left::default_topic_qos_0' already exists\n"
              "ERROR [ROUTERUtils_createChildQosObject] failed to add child qos xml object\n");
    EXPECT_STREQ(createQos("topic_qos")->name, "default_topic_qos_1");
    EXPECT_EQ(createQos("topic"), nullptr);
    EXPECT_EQ(log.take(), "ERROR [ROUTERUtils_createChildQosObject] failure: find builtin extension class\n");
    EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(child, right, left));
    EXPECT_EQ(log.take(), "ERROR [ROUTERUtils_removeChildXmlObject] failed to remove XML object\n"
                          "ERROR [ROUTERUtils_moveChildXmlObject] failure: removeChildXmlObject\n");
    EXPECT_FALSE(ROUTERUtils_deleteXMLObject(&parser, left));
    EXPECT_EQ(log.take(), "ERROR [ROUTERUtils_deleteXMLObject] failed to get parent XML object\n");
    ZULHeap_failAfter(1); // the look-up succeeds, the new names do not
    EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(child, left, right));
    EXPECT_EQ(log.take(), "ERROR [ROUTERUtils_moveChildXmlObject] failure: addChildXmlObject\n");
    EXPECT_TRUE(ROUTERUtils_moveChildXmlObject(child, left, right));
    EXPECT_EQ(child->context, &documents[1]);
    EXPECT_EQ(log.take(), "");
    // What would tie the tree to a knot.
    ZULXMLObject* const below = make(child, "below");
    ASSERT_TRUE(ROUTERUtils_addChildXMLObject(child, below));
    EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(child, right, below));
    EXPECT_FALSE(ROUTERUtils_moveChildXmlObject(child, right, child));
    EXPECT_EQ(log.take(), "ERROR [ROUTERUtils_moveChildXmlObject] failure: addChildXmlObject\n"
                          "ERROR [ROUTERUtils_moveChildXmlObject] failure: addChildXmlObject\n");
    EXPECT_FALSE(ROUTERUtils_addChildXMLObject(child, below)); // it is there already
    EXPECT_EQ(log.take(), "ZULXMLObject_addChild: XML object with name "
                          "'::right::default_topic_qos_0::below' already exists\n");
    EXPECT_FALSE(ROUTERUtils_addChildXMLObject(left, below)); // it has a place
    EXPECT_FALSE(ROUTERUtils_addChildXMLObject(left, left));
    EXPECT_STREQ(below->fullName, "::right::default_topic_qos_0::below");
    ZULXMLObject_delete(left);
    ZULXMLObject_delete(right);
    ZULXMLParser_finalize(&parser);
}

} // namespace

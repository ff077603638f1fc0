// SPDX-License-Identifier: Apache-2.0
// Tests of names, class names and the tree of logic objects.
#include "core/nested_object.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

#include "support/net.h"
#include "test_nodes.h"

using namespace weft;
using support::CallbackLog;
using support::Net;
using test_nodes::ScriptNode;

namespace {

std::string textOf(const Array<TM_String>& names) {
    std::string text;
    for (const TM_String& name : names) text += (text.empty() ? "" : " ") + name;
    return text;
}

// What `uniqueName` says, step by step.
TM_String literalUniqueName(const Node& parent, const NestedObject& self, TM_String wanted) {
    const auto isTaken = [&](const TM_String& name) {
        for (const NestedObject* child : parent.children()) {
            if (child != &self && child->name() == name) return true;
        }
        return false;
    };
    while (isTaken(wanted)) wanted = NestedObject::nextName(wanted);
    return wanted;
}

} // namespace

TEST(NextName, TableOfNames) {
    const std::map<TM_String, TM_String> table = {
        {"Add", "Add01"},    {"Node", "Node01"},  {"Add01", "Add02"},   {"Add1", "Add02"},
        {"Add09", "Add10"},  {"Add99", "Add100"}, {"Add100", "Add101"}, {"Add999", "Add1000"},
        {"Add007", "Add08"}, {"Add00", "Add01"},  {"10", "11"},         {"0", "01"},
        {"9", "10"},         {"", "01"},          {" ", " 01"},         {"1a", "1a01"},
        {"a1b", "a1b01"},
    };
    for (const auto& [name, next] : table) EXPECT_EQ(NestedObject::nextName(name), next) << name;
}

TEST(NextName, FinalDigitsAreCutOutWhereverTheyStand) {
    EXPECT_EQ(NestedObject::nextName("a1b1"), "ab02");
    EXPECT_EQ(NestedObject::nextName("a1b12"), "a1b13");
    EXPECT_EQ(NestedObject::nextName("a12b12"), "ab13");
    EXPECT_EQ(NestedObject::nextName("x010y01"), "x0y02");
    EXPECT_EQ(NestedObject::nextName("Add_01_01"), "Add__02");
    EXPECT_EQ(NestedObject::nextName("1a1"), "a02");
}

TEST(NextName, DigitRunsOfAnyLengthCountUp) {
    EXPECT_EQ(NestedObject::nextName("n4294967295"), "n4294967296");
    EXPECT_EQ(NestedObject::nextName("n18446744073709551615"), "n18446744073709551616");
    const TM_String nines(5000, '9');
    EXPECT_EQ(NestedObject::nextName("n" + nines), "n1" + TM_String(5000, '0'));
    const TM_String zeros(5000, '0');
    EXPECT_EQ(NestedObject::nextName("n" + zeros), "n01");
}

TEST(NextName, OnlyPlainDigitsCount) {
    EXPECT_EQ(NestedObject::nextName("n\xc2\xb2"), "n\xc2\xb2"
                                                   "01");
    EXPECT_EQ(NestedObject::nextName("n-1"), "n-02");
    EXPECT_EQ(NestedObject::nextName("n1.5"), "n1.06");
}

TEST(UniqueName, StandsWithoutParent) {
    NetworkManager manager;
    const Retained<Node> alone(new Node(&manager, "Add", nullptr));
    EXPECT_EQ(alone->uniqueName("Add"), "Add");
    EXPECT_EQ(alone->uniqueName(""), "");
    alone->setName("Other");
    EXPECT_EQ(alone->name(), "Other");
}

TEST(UniqueName, CountsUpAmongSiblings) {
    Net net;
    EXPECT_EQ(net.add<Node>("Add")->name(), "Add");
    EXPECT_EQ(net.add<Node>("Add")->name(), "Add01");
    EXPECT_EQ(net.add<Node>("Add")->name(), "Add02");
    EXPECT_EQ(net.add<Node>("Add01")->name(), "Add03");
    EXPECT_EQ(net.add<Node>("Add99")->name(), "Add99");
    EXPECT_EQ(net.add<Node>("Add99")->name(), "Add100");
    EXPECT_EQ(net.add<Node>("a1b1")->name(), "a1b1");
    EXPECT_EQ(net.add<Node>("a1b1")->name(), "ab02");
}

TEST(UniqueName, AttributesAndNodesShareTheNames) {
    Net net;
    auto* compound = net.add<ScriptNode>("C");
    auto* child = new Node(&net.manager, "v", compound);
    compound->addNode(child);
    EXPECT_EQ(compound->in("v")->name(), "v01");
    auto* second = new Node(&net.manager, "v01", compound);
    EXPECT_EQ(second->name(), "v02");
    compound->addNode(second);
    EXPECT_EQ(compound->out("v")->name(), "v03");
}

TEST(UniqueName, OwnNameIsFree) {
    Net net;
    net.add<Node>("Add");
    Node* second = net.add<Node>("Add");
    EXPECT_EQ(second->uniqueName("Add01"), "Add01");
    second->setName("Add");
    EXPECT_EQ(second->name(), "Add01");
    second->setName("Add01");
    EXPECT_EQ(second->name(), "Add01");
}

TEST(UniqueName, OwnNameIsFreeInLargeParentsToo) {
    Net net;
    for (int i = 0; i < 40; ++i) net.add<Node>("Add");
    Node* third = net.node("Add03");
    EXPECT_EQ(third->uniqueName("Add03"), "Add03");
    EXPECT_EQ(third->uniqueName("Add"), "Add03");
    EXPECT_EQ(net.node("Add07")->uniqueName("Add05"), "Add07");
    EXPECT_EQ(net.node("Add")->uniqueName("Add"), "Add");
}

TEST(UniqueName, TenThousandEqualNamesCountUpFast) {
    Net net;
    for (int i = 0; i < 10000; ++i) net.add<Node>("Add");
    EXPECT_EQ(net.root->refNodes().back()->name(), "Add9999");
    EXPECT_NE(net.root->findNode("Add5000"), nullptr);
    EXPECT_EQ(net.root->findNode("Add10000"), nullptr);
}

// Counting from a name that ends in digits must not walk over all that are taken each time.
TEST(UniqueName, ThirtyThousandNumberedNamesCountUpFast) {
    Net net;
    for (int i = 0; i < 30000; ++i) net.add<Node>("Add_01");
    EXPECT_EQ(net.root->refNodes().back()->name(), "Add_30000");
}

TEST(UniqueName, GapsAreFilledAfterRemoval) {
    Net net;
    for (int i = 0; i < 50; ++i) net.add<Node>("Add");
    net.root->removeNode(net.node("Add20"));
    net.root->removeNode(net.node("Add10"));
    EXPECT_EQ(net.add<Node>("Add")->name(), "Add10");
    EXPECT_EQ(net.add<Node>("Add")->name(), "Add20");
    EXPECT_EQ(net.add<Node>("Add")->name(), "Add50");
}

TEST(UniqueName, GapsAreFilledAfterRename) {
    Net net;
    for (int i = 0; i < 50; ++i) net.add<Node>("Add");
    net.node("Add15")->setName("Sub");
    EXPECT_EQ(net.add<Node>("Add")->name(), "Add15");
    EXPECT_EQ(net.add<Node>("Sub")->name(), "Sub01");
}

TEST(UniqueName, RandomNamesMatchTheStepByStepSearch) {
    std::mt19937 random(7);
    const std::vector<std::string> stems = {"Add", "Add01", "Add1", "a1b1",  "a1b",
                                            "9",   "",      "x_01", "Add20", "x_"};
    for (int round = 0; round < 20; ++round) {
        Net net;
        for (int step = 0; step < 300; ++step) {
            const auto& nodes = net.root->refNodes();
            const std::string wanted = stems[random() % stems.size()];
            const unsigned kind = random() % 10;
            if (kind < 6 || nodes.size() < 3) {
                Node* fresh = new Node(&net.manager, "", nullptr);
                fresh->setParent(net.root);
                const TM_String expected = literalUniqueName(*net.root, *fresh, wanted);
                fresh->setName(wanted);
                ASSERT_EQ(fresh->name(), expected);
                net.root->addNode(fresh);
            } else if (kind < 8) {
                Node* some = nodes[random() % nodes.size()];
                const TM_String target =
                    random() % 2 ? wanted : TM_String(nodes[random() % nodes.size()]->name());
                const TM_String expected = literalUniqueName(*net.root, *some, target);
                ASSERT_EQ(some->uniqueName(target), expected) << some->name() << " " << target;
                some->setName(target);
                ASSERT_EQ(some->name(), expected);
            } else {
                net.root->removeNode(nodes[random() % nodes.size()]);
            }
        }
    }
}

TEST(NestedObject, FindsTheFirstInChildOrderAmongEqualNames) {
    for (const int others : {0, 40}) {
        Net net;
        auto* outer = net.add<Node>("outer");
        auto* older = net.add<Node>("same"); // lower id
        auto* inner = new Node(&net.manager, "same", outer);
        outer->addNode(inner);
        for (int i = 0; i < others; ++i) {
            outer->addNode(new Node(&net.manager, "other", outer));
        }
        older->reparent(outer); // names are not compared here
        ASSERT_EQ(older->name(), inner->name());
        EXPECT_EQ(outer->findNode("same"), inner) << others;
        outer->removeNode(inner);
        EXPECT_EQ(outer->findNode("same"), older) << others;
        outer->removeNode(older);
        EXPECT_EQ(outer->findNode("same"), nullptr) << others;
    }
}

TEST(NestedObject, ReparentedNodeLeavesTheNamesOfItsOldParent) {
    Net net;
    auto* from = net.add<Node>("from");
    auto* to = net.add<Node>("to");
    for (int i = 0; i < 40; ++i) from->addNode(new Node(&net.manager, "n", from));
    for (int i = 0; i < 40; ++i) to->addNode(new Node(&net.manager, "n", to));
    Node* moved = from->findNode("n07");
    moved->reparent(to);
    EXPECT_EQ(from->findNode("n07"), nullptr);
    EXPECT_EQ(moved->parent(), to);
    EXPECT_EQ(to->refNodes().back(), moved);
    EXPECT_EQ(to->children().back(), moved);
    EXPECT_EQ(moved->refCount(), 1);
    to->removeNode(to->findNode("n07"));
    EXPECT_EQ(to->findNode("n07"), moved);
    to->removeNode(moved);
    EXPECT_EQ(to->findNode("n07"), nullptr);
}

TEST(NestedObject, FullNameJoinsTheNamesByPoints) {
    Net net;
    auto* outer = net.add<ScriptNode>("outer");
    auto* inner = new ScriptNode(&net.manager, "inner", outer);
    outer->addNode(inner);
    EXPECT_EQ(net.root->fullName(), "root");
    EXPECT_EQ(inner->in("x")->fullName(), "root.outer.inner.x");
}

TEST(NestedObject, ClassNamesRunFromTheBaseToTheMostDerived) {
    Net net;
    auto* node = net.add<ScriptNode>("n");
    EXPECT_EQ(node->className(), "Script");
    EXPECT_EQ(textOf(node->in("x")->typeNames()), "Attribute NumericAttribute");
    EXPECT_EQ(textOf(node->in<PassThroughAttribute>("p")->typeNames()),
              "Attribute PassThroughAttribute");
    EXPECT_EQ(textOf(node->in<Attribute>("a")->typeNames()), "Attribute");
    EXPECT_TRUE(net.at("n.x")->hasSameTypeNames(*node->in("y")));
    EXPECT_FALSE(net.at("n.x")->hasSameTypeNames(*net.at("n.a")));
    EXPECT_FALSE(net.at("n.a")->hasSameTypeNames(*net.at("n.x")));
}

TEST(NestedObject, ClassNameIsEmptyWithoutAClass) {
    NetworkManager manager;
    const Retained<NestedObject> bare(new NestedObject(&manager, nullptr));
    EXPECT_EQ(bare->className(), "");
    EXPECT_EQ(bare->typeNames().size(), 0u);
}

TEST(NestedObject, AddChildTakesOneReferenceAndIgnoresRepeats) {
    NetworkManager manager;
    const Retained<Node> parent(new Node(&manager, "parent", nullptr));
    const Retained<NestedObject> child(new NestedObject(&manager, nullptr));
    parent->addChild(child.get());
    EXPECT_EQ(child->refCount(), 2);
    EXPECT_EQ(child->parent(), nullptr);
    parent->addChild(child.get());
    EXPECT_EQ(child->refCount(), 2);
    EXPECT_EQ(parent->children().size(), 1u);
    parent->removeChild(child.get());
    EXPECT_EQ(child->refCount(), 1);
    parent->removeChild(child.get());
    EXPECT_EQ(child->refCount(), 1);
    EXPECT_EQ(parent->children().size(), 0u);
}

TEST(NestedObject, ChildrenAreReleasedWithTheirHolder) {
    NetworkManager manager;
    const Retained<NestedObject> child(new NestedObject(&manager, nullptr));
    {
        const Retained<Node> holder(new Node(&manager, "holder", nullptr));
        holder->addChild(child.get());
        EXPECT_EQ(child->refCount(), 2);
    }
    EXPECT_EQ(child->refCount(), 1);
}

TEST(NestedObject, OnlyNodesTakeChildren) {
    NetworkManager manager;
    const Retained<NestedObject> bare(new NestedObject(&manager, nullptr));
    const Retained<NestedObject> child(new NestedObject(&manager, nullptr));
    bare->addChild(child.get());
    bare->removeChild(child.get());
    EXPECT_EQ(bare->children().size(), 0u);
    EXPECT_EQ(child->refCount(), 1);
}

TEST(NestedObject, RemovingAChildKeepsTheOrderOfTheRest) {
    Net net;
    Node* a = net.add<Node>("a");
    Node* b = net.add<Node>("b");
    Node* c = net.add<Node>("c");
    net.root->removeNode(b);
    EXPECT_EQ(Net::namesOf(net.root->children()), "a c");
    net.root->removeNode(a);
    EXPECT_EQ(Net::namesOf(net.root->children()), "c");
    EXPECT_EQ(net.root->nodeAt(0), c);
}

TEST(NestedObject, RenameTellsTheSettledNameWhileMonitoring) {
    Net net;
    net.add<Node>("a");
    Node* b = net.add<Node>("b");
    CallbackLog log;
    b->setName("a");
    EXPECT_EQ(log.takeAll(), "renamed a01");
    net.manager.setMonitoring(false);
    b->setName("c");
    EXPECT_EQ(log.takeAll(), "");
    EXPECT_EQ(b->name(), "c");
}

TEST(NestedObject, DeletedObjectsTellNoRename) {
    Net net;
    Node* b = net.add<Node>("b");
    const Retained<Node> kept(b);
    b->deleteIt();
    CallbackLog log;
    b->setName("c");
    EXPECT_EQ(log.takeAll(), "");
    EXPECT_EQ(b->name(), "c");
}

TEST(NestedObject, AttributesAreRenamedTheSameWay) {
    Net net;
    auto* node = net.add<ScriptNode>("n");
    node->in("x");
    Attribute* y = node->in("y");
    CallbackLog log;
    y->setName("x");
    EXPECT_EQ(y->name(), "x01");
    EXPECT_EQ(log.takeAll(), "renamed x01");
    EXPECT_EQ(node->findAttribute("x01"), y);
}

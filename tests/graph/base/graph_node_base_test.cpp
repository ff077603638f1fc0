// SPDX-License-Identifier: Apache-2.0
// Tests of nodes: pins, tree, names, messages.
#include "graph/base/graph_node_base.h"

#include <gtest/gtest.h>

#include "small_scene.h"

using namespace tidemark;
using namespace tidemark::graph;
using namespace tidemark::graph::test;

TEST(GraphNodeBase, StaysSmall) { EXPECT_LE(sizeof(GraphNodeBase), 160u); }

TEST(GraphNodeBase, StartsEmpty) {
    const GraphNodeBase node;
    EXPECT_FALSE(node.isCompound());
    EXPECT_FALSE(node.isInterface());
    EXPECT_FALSE(node.isValid());
    EXPECT_FALSE(node.isRoot());
    EXPECT_FALSE(node.isEvaluator());
    EXPECT_FALSE(node.isIterator());
    EXPECT_FALSE(node.isPassThrough());
    EXPECT_FALSE(node.isDrawnAsPoint());
    EXPECT_FALSE(node.dynamicPinsAllowed());
    EXPECT_FALSE(node.hasMessages());
    EXPECT_EQ(node.getType() + node.getCategory() + node.getName() + node.getDescription(), "");
    EXPECT_EQ(node.getFullName(), "");
    EXPECT_EQ(node.getId(), 0u);
}

TEST(GraphNodeBase, KeepsItsTexts) {
    GraphNodeBase node;
    node.setType("Add");
    node.setCategory("Math");
    node.setDescription("Adds.");
    GraphNodeBase other;
    other.setType("Add");
    EXPECT_EQ(node.getType(), "Add");
    EXPECT_EQ(&node.getType(), &other.getType()) << "one text for all nodes of a type";
    EXPECT_EQ(node.getCategory(), "Math");
    EXPECT_EQ(node.getDescription(), "Adds.");
    node.setDescription("");
    EXPECT_EQ(node.getDescription(), "");
}

TEST(GraphNodeBase, ListsPinsBySide) {
    SmallScene scene;
    GraphNodeBase* node = scene.add("n", "a b > c");
    GraphNodeBase* bare = scene.add("bare");
    GraphScene::Pins inputs;
    GraphScene::Pins outputs;
    GraphScene::Pins all;
    node->getInputPins(inputs);
    node->getOutputPins(outputs);
    node->getPins(GraphNodePin::inputFlag | GraphNodePin::outputFlag, all);
    EXPECT_EQ(namesOf(inputs), (Names{"a", "b"}));
    EXPECT_EQ(namesOf(outputs), (Names{"c"}));
    EXPECT_EQ(namesOf(all), (Names{"a", "b", "c"}));
    EXPECT_TRUE(node->hasInputPins() && node->hasOutputPins());
    EXPECT_FALSE(bare->hasInputPins() || bare->hasOutputPins());
    EXPECT_TRUE(node->hasPin(inputs[0]));
    EXPECT_FALSE(bare->hasPin(inputs[0]));
    EXPECT_EQ(node->getPinByName("b"), inputs[1]);
    EXPECT_EQ(node->getPinByName("B"), nullptr);
    EXPECT_TRUE(node->hasPinWithName("c"));
    EXPECT_FALSE(node->isEditable());
}

TEST(GraphNodeBase, FindsPinsOfLongListsAfterRenaming) {
    SmallScene scene;
    GraphNodeBase* node = scene.add("n");
    for (int i = 0; i < 100; ++i) {
        scene.createNewPin(node, GraphNodePin::inputFlag, "p" + std::to_string(i));
    }
    GraphNodePin* pin = node->findPin("p50");
    ASSERT_NE(pin, nullptr);
    pin->setName("renamed");
    EXPECT_EQ(node->findPin("p50"), nullptr);
    EXPECT_EQ(node->findPin("renamed"), pin);
    EXPECT_TRUE(node->removeNodePin(pin));
    EXPECT_EQ(node->findPin("renamed"), nullptr);
    EXPECT_FALSE(node->removeNodePin(pin));
    scene.removeNodePin(pin);
    delete pin;
    EXPECT_EQ(node->pins().size(), 99u);
}

TEST(GraphNodeBase, InterfaceSidesFollowThePins) {
    SmallScene scene;
    GraphNodeBase* node = scene.add("i", "> x");
    EXPECT_FALSE(node->isInputInterface());
    node->setInterface(true);
    EXPECT_TRUE(node->isInputInterface());
    EXPECT_FALSE(node->isOutputInterface());
    scene.createNewPin(node, GraphNodePin::inputFlag, "y");
    EXPECT_TRUE(node->isOutputInterface());
}

TEST(GraphNodeBase, SameNodeMeansSameIdInOneScene) {
    SmallScene scene;
    SmallScene other;
    GraphNodeBase* a = scene.add("a");
    GraphNodeBase* b = scene.add("b");
    GraphNodeBase* twin = other.add("a");
    ASSERT_EQ(a->getId(), twin->getId());
    EXPECT_TRUE(a->isSameNodeAs(a));
    EXPECT_FALSE(a->isSameNodeAs(b));
    EXPECT_FALSE(a->isSameNodeAs(twin));
    EXPECT_FALSE(a->isSameNodeAs(nullptr));
}

TEST(GraphNodeBase, MovesThroughTheTree) {
    SmallScene scene;
    GraphNodeBase* root = scene.getRootNode();
    GraphNodeBase* c = scene.addCompound("C");
    GraphNodeBase* a = scene.add("a");
    EXPECT_EQ(namesOf(root->children()), (Names{"C", "a"}));
    c->addNode(a);
    EXPECT_EQ(namesOf(root->children()), (Names{"C"}));
    EXPECT_EQ(namesOf(c->children()), (Names{"a"}));
    EXPECT_EQ(a->getFullName(), "root.C.a");
    EXPECT_TRUE(a->isOwnedByNode(c, false));
    EXPECT_FALSE(a->isOwnedByNode(root, false));
    EXPECT_TRUE(a->isOwnedByNode(root, true));
    EXPECT_FALSE(a->isOwnedByNode(nullptr, true));
    EXPECT_FALSE(root->removeNode(a));
    EXPECT_TRUE(c->removeNode(a));
    EXPECT_EQ(a->getNodeOwner(), nullptr);
    EXPECT_EQ(a->getFullName(), "a");
    EXPECT_TRUE(root->isRoot());
    EXPECT_FALSE(a->isRoot());
}

TEST(GraphNodeBase, CannotComeBelowItself) {
    SmallScene scene;
    GraphNodeBase* outer = scene.addCompound("outer");
    GraphNodeBase* inner = scene.addCompound("inner", outer);
    outer->setNodeOwner(inner);
    outer->setNodeOwner(outer);
    EXPECT_EQ(outer->getNodeOwner(), scene.getRootNode());
    EXPECT_EQ(inner->getFullName(), "root.outer.inner");
}

TEST(GraphNodeBase, FirstChildOfANameWinsInLongAndShortLists) {
    SmallScene scene;
    GraphNodeBase* root = scene.getRootNode();
    GraphNodeBase* first = scene.add("same");
    GraphNodeBase* second = scene.add("same");
    EXPECT_EQ(root->findChild("same"), first);
    for (int i = 0; i < 50; ++i) scene.add("n" + std::to_string(i));
    EXPECT_EQ(root->findChild("same"), first);
    first->setName("away");
    EXPECT_EQ(root->findChild("same"), second);
    EXPECT_EQ(root->findChild("away"), first);
    root->clearNodesArray();
    EXPECT_EQ(root->findChild("same"), nullptr);
}

TEST(GraphNodeBase, ReadsItsTreeInPreorder) {
    SmallScene scene;
    GraphNodeBase* c = scene.addCompound("C");
    GraphNodeBase* d = scene.addCompound("D", c);
    scene.add("x", "", d);
    scene.add("y", "", c);
    scene.add("z");
    GraphScene::Nodes all;
    scene.getRootNode()->getNodesRecursively(all);
    EXPECT_EQ(namesOf(all), (Names{"C", "D", "x", "y", "z"}));
    GraphScene::Nodes compounds;
    scene.getRootNode()->getCompoundNodes(compounds);
    EXPECT_EQ(namesOf(compounds), (Names{"C"}));
    EXPECT_EQ(scene.getRootNode()->getNodeByName("x", false), nullptr);
    EXPECT_EQ(scene.getRootNode()->getNodeByName("x", true)->getFullName(), "root.C.D.x");
    EXPECT_EQ(scene.getRootNode()->getNodeByName("none", true), nullptr);
}

TEST(GraphNodeBase, SurvivesDeepNesting) {
    SmallScene scene;
    GraphNodeBase* owner = nullptr;
    for (int i = 0; i < 50000; ++i) owner = scene.addCompound("c", owner);
    EXPECT_EQ(owner->getFullName().size(), 4u + 50000 * 2);
    GraphScene::Nodes all;
    scene.getRootNode()->getNodesRecursively(all);
    EXPECT_EQ(all.size(), 50000u);
    scene.clear();
    EXPECT_TRUE(scene.nodesById().empty());
}

TEST(GraphNodeBase, FreeNodeNamesAreNumberedWithTwoDigits) {
    SmallScene scene;
    const GraphNodeBase* root = scene.getRootNode();
    EXPECT_EQ(root->getFreeNodeNameLikeThis("Add", nullptr), "Add");
    const GraphNodeBase* add = scene.add("Add");
    EXPECT_EQ(root->getFreeNodeNameLikeThis("Add", nullptr), "Add_01");
    EXPECT_EQ(root->getFreeNodeNameLikeThis("Add", add), "Add") << "its own name is free to it";
    scene.add("Add");
    EXPECT_EQ(root->getFreeNodeNameLikeThis("Add", add), "Add_01");
    scene.add("Add_01");
    scene.add("Add_03");
    EXPECT_EQ(root->getFreeNodeNameLikeThis("Add", nullptr), "Add_02");
    EXPECT_EQ(numberedNodeName("n", 9), "n_09");
    EXPECT_EQ(numberedNodeName("n", 10), "n_10");
    EXPECT_EQ(numberedNodeName("n", 12345), "n_12345");
}

TEST(GraphNodeBase, FreePinNamesAreNumberedPlainly) {
    SmallScene scene;
    GraphNodeBase* node = scene.add("n", "in in2 > in3");
    EXPECT_EQ(node->getFreePinNameLikeThis("in"), "in1");
    EXPECT_EQ(node->getFreePinNameLikeThis("out"), "out");
    EXPECT_EQ(node->addDynamicInputPin()->getName(), "in1");
    EXPECT_EQ(node->addDynamicInputPin()->getName(), "in4");
    EXPECT_EQ(node->addDynamicOutputPin()->getName(), "out");
    GraphNodeBase homeless;
    EXPECT_EQ(homeless.addDynamicInputPin(), nullptr);
}

TEST(GraphNodeBase, ReordersOneSideAndLeavesTheOther) {
    SmallScene scene;
    GraphNodeBase* node = scene.add("n", "a b > x");
    scene.createNewPin(node, GraphNodePin::inputFlag, "c");
    scene.createNewPin(node, GraphNodePin::outputFlag, "y");
    node->reorderInputPins(Array<TM_String>{"c", "missing", "x", "a"});
    EXPECT_EQ(namesOf(node->pins()), (Names{"c", "a", "x", "b", "y"}));
    node->reorderOutputPins(Array<TM_String>{"y"});
    EXPECT_EQ(namesOf(node->pins()), (Names{"c", "a", "y", "b", "x"}));
    EXPECT_EQ(node->findPin("b")->getName(), "b");
}

TEST(GraphNodeBase, FirstPinOfANameIsFirstAfterReordering) {
    SmallScene scene;
    GraphNodeBase* node = scene.add("n");
    for (int i = 0; i < 30; ++i) {
        scene.createNewPin(node, GraphNodePin::inputFlag, "i" + std::to_string(i));
    }
    GraphNodePin* output = scene.createNewPin(node, GraphNodePin::outputFlag, "i29");
    EXPECT_NE(node->findPin("i29"), output);
    node->reorderInputPins(Array<TM_String>{"i29"});
    EXPECT_EQ(node->findPin("i29"), node->pins()[0]);
}

TEST(GraphNodeBase, TellsWhichPinsAreConnected) {
    SmallScene scene;
    const GraphNodeBase* a = scene.add("a", "> out out2");
    const GraphNodeBase* b = scene.add("b", "in in2");
    const GraphNodeBase* c = scene.add("c", "in");
    GraphConnection* ab = scene.link("a.out", "b.in");
    scene.link("a.out", "c.in");
    GraphScene::Pins connected;
    GraphScene::Pins free;
    a->getConnectedPins(connected);
    a->getNotConnectedPins(free);
    EXPECT_EQ(namesOf(connected), (Names{"out"}));
    EXPECT_EQ(namesOf(free), (Names{"out2"}));
    GraphScene::Connections found;
    a->getConnections(found);
    EXPECT_EQ(textsOf(found), (Names{"a.out>b.in", "a.out>c.in"}));
    found.clear();
    b->getConnectionsWithNode(a, found);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0], ab);
    EXPECT_TRUE(a->hasConnectionsWithNode(b));
    EXPECT_FALSE(b->hasConnectionsWithNode(c));
}

TEST(GraphNodeBase, AsksAllPinsForPermission) {
    SmallScene scene;
    const GraphNodeBase* a = scene.add("a", "> out");
    const GraphNodeBase* b = scene.add("b", "x y > z");
    const GraphNodePin* out = a->findPin("out");
    GraphScene::Pins accepting;
    EXPECT_TRUE(b->allowsConnectionFrom(out));
    EXPECT_TRUE(b->allowsConnectionFrom(out, accepting));
    EXPECT_EQ(namesOf(accepting), (Names{"x", "y"}));
    EXPECT_TRUE(b->allowsConnectionFrom(a));
    EXPECT_FALSE(a->allowsConnectionFrom(b));
    EXPECT_TRUE(a->allowsConnectionTo(b));
    EXPECT_FALSE(b->allowsConnectionTo(a));
    accepting.clear();
    EXPECT_TRUE(a->allowsConnectionTo(b->findPin("x"), accepting));
    EXPECT_EQ(namesOf(accepting), (Names{"out"}));
    scene.link("a.out", "b.x");
    accepting.clear();
    EXPECT_TRUE(b->allowsConnectionFrom(a, accepting));
    EXPECT_EQ(namesOf(accepting), (Names{"y"}));
    scene.link("a.out", "b.y");
    EXPECT_FALSE(b->allowsConnectionFrom(a));
    EXPECT_FALSE(a->allowsConnectionTo(b));
    accepting.clear();
    EXPECT_FALSE(a->allowsConnectionTo(b, accepting));
    EXPECT_TRUE(accepting.empty());
    const GraphNodeBase* nobody = nullptr;
    EXPECT_FALSE(a->allowsConnectionTo(nobody));
    EXPECT_FALSE(a->allowsConnectionFrom(nobody));
}

TEST(GraphNodeBase, KeepsMessages) {
    GraphNodeBase node;
    EXPECT_TRUE(node.getMessages().isEmpty());
    node.refMessages().push(3, "w", "d");
    EXPECT_TRUE(node.hasWarnings());
    EXPECT_FALSE(node.hasErrors());
    node.refMessages().pushError("e", "");
    EXPECT_TRUE(node.hasErrors());
    EXPECT_TRUE(node.hasMessages());
    Array<Message> messages;
    node.getMessages(messages);
    EXPECT_EQ(messages.size(), 2u);
    Array<TM_String> strings;
    node.getMessagesAsStrings(strings);
    EXPECT_EQ(strings, (Array<TM_String>{"[warning] w - d", "[error] e"}));
    const GraphNodeBase copy(node);
    EXPECT_TRUE(copy.hasErrors());
    node.clearMessages();
    EXPECT_FALSE(node.hasMessages());
    EXPECT_TRUE(copy.hasMessages());
}

TEST(GraphNodeBase, ACopySharesPinsAndStandsInNoList) {
    SmallScene scene;
    GraphNodeBase* node = scene.add("n", "a > b");
    node->setDescription("text");
    {
        const GraphNodeBase copy(*node);
        EXPECT_EQ(copy.getName(), "n");
        EXPECT_EQ(copy.getDescription(), "text");
        EXPECT_EQ(copy.findPin("a"), node->findPin("a"));
        EXPECT_EQ(scene.getRootNode()->children().size(), 1u);
    }
    EXPECT_EQ(node->findPin("b")->getName(), "b");
}

namespace {

// A pin with one internal connection.
class InnerPin : public GraphNodePin {
public:
    using GraphNodePin::GraphNodePin;
    void internalConnections(ArrayOfPtr<GraphNodePin>& pins) const override { pins.append(end); }
    GraphNodePin* end = nullptr;
};

} // namespace

TEST(GraphNodeBase, GathersInternalConnectionsOfInputs) {
    GraphNodeBase node;
    InnerPin input(&node, 1, GraphNodePin::inputFlag);
    InnerPin output(&node, 2, GraphNodePin::outputFlag);
    input.end = &output;
    output.end = &input;
    node.addNodePin(&input);
    node.addNodePin(&output);
    Array<GraphConnection> connections;
    node.getInternalConnections(connections);
    ASSERT_EQ(connections.size(), 1u);
    EXPECT_EQ(connections[0].getSourcePin(), &input);
    EXPECT_EQ(connections[0].getTargetPin(), &output);
    EXPECT_EQ(connections[0].getSourceNode(), &node);
    node.getInternalConnectionsForPainting(connections);
    EXPECT_EQ(connections.size(), 2u);
}

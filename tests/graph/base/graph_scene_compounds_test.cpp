// SPDX-License-Identifier: Apache-2.0
// Tests of moving nodes through the walls of compounds.
#include <gtest/gtest.h>

#include <algorithm>

#include "small_scene.h"

using namespace tidemark;
using namespace tidemark::graph;
using namespace tidemark::graph::test;

TEST(Compounds, MovingInKeepsConnectionsAndTellsTheNewNames) {
    SmallScene scene;
    GraphNodeBase* a = scene.add("a", "> out");
    GraphNodeBase* c = scene.addCompound("C");
    GraphNodeBase* d = scene.addCompound("D");
    scene.add("x", "in", d);
    scene.link("a.out", "D.x.in");
    GraphScene::NameMap renamed;
    EXPECT_TRUE(scene.moveNodesToCompound(GraphScene::Nodes{a, d, c, nullptr}, c, renamed));
    EXPECT_EQ(renamed,
              (GraphScene::NameMap{
                  {"root.a", "root.C.a"}, {"root.D", "root.C.D"}, {"root.D.x", "root.C.D.x"}}));
    EXPECT_EQ(textsOf(scene.connections()), (Names{"C.a.out>C.D.x.in"}));
    EXPECT_EQ(c->getNodeOwner(), scene.getRootNode());
}

TEST(Compounds, OnlySiblingsMoveInAndOnlyChildrenMoveOut) {
    SmallScene scene;
    GraphNodeBase* a = scene.add("a");
    GraphNodeBase* c = scene.addCompound("C");
    GraphNodeBase* x = scene.add("x", "", c);
    GraphScene::NameMap renamed;
    EXPECT_FALSE(scene.moveNodesToCompound(GraphScene::Nodes{x}, c, renamed));
    EXPECT_FALSE(scene.removeNodesFromCompound(GraphScene::Nodes{a}, c, renamed));
    EXPECT_FALSE(scene.moveNodesToCompound(GraphScene::Nodes{c}, a, renamed)) << "no compound";
    EXPECT_FALSE(scene.removeNodesFromCompound(GraphScene::Nodes{c}, scene.getRootNode(), renamed));
    EXPECT_FALSE(scene.moveNodesToCompound(GraphScene::Nodes{a}, nullptr, renamed));
    EXPECT_TRUE(renamed.empty());
    EXPECT_TRUE(scene.removeNodesFromCompound(GraphScene::Nodes{x}, c, renamed));
    EXPECT_EQ(renamed, (GraphScene::NameMap{{"root.C.x", "root.x"}}));
}

TEST(Compounds, InterfacePinsComeInPairs) {
    SmallScene scene;
    GraphNodeBase* c = scene.addCompound("C");
    GraphNodeBase* node = scene.addCompoundInterfaceNode(c);
    ASSERT_NE(node, nullptr);
    EXPECT_TRUE(node->isInterface());
    EXPECT_EQ(node->getNodeOwner(), c);
    GraphNodePin* inner = nullptr;
    GraphNodePin* outer = nullptr;
    ASSERT_TRUE(scene.addCompoundInterfacePin(GraphNodePin::inputFlag, node, inner, outer));
    EXPECT_TRUE(inner->isOutput());
    EXPECT_TRUE(outer->isInput());
    EXPECT_EQ(inner->getName(), "input");
    EXPECT_EQ(outer->getFullName(), "root.C.input");
    EXPECT_EQ(outer->getChildGraphNodePinPtr(), inner);
    EXPECT_EQ(outer->getChildInterfaceNodePtr(), node);
    EXPECT_EQ(inner->getParentGraphNodePinPtr(), outer);
    EXPECT_TRUE(outer->isCompoundPin());
    EXPECT_TRUE(inner->isInterfacePin());
    ASSERT_TRUE(scene.addCompoundInterfacePin(GraphNodePin::outputFlag, node, inner, outer));
    EXPECT_TRUE(inner->isInput());
    EXPECT_TRUE(outer->isOutput());
    EXPECT_EQ(outer->getName(), "output");
    ASSERT_TRUE(scene.addCompoundInterfacePin(GraphNodePin::inputFlag, node, inner, outer));
    EXPECT_EQ(inner->getName(), "input1");
}

TEST(Compounds, AnInterfaceNodeOutsideHasNoCounterpart) {
    SmallScene scene;
    GraphNodeBase* lone = scene.add("lone", "in");
    lone->setNodeOwner(nullptr);
    GraphNodePin* inner = nullptr;
    GraphNodePin* outer = nullptr;
    EXPECT_FALSE(scene.addCompoundInterfacePin(GraphNodePin::inputFlag, lone, inner, outer));
    EXPECT_FALSE(scene.addCompoundInterfacePin(GraphNodePin::inputFlag, nullptr, inner, outer));
    EXPECT_EQ(scene.createCompoundPinForInterfacePin(lone->findPin("in")), nullptr);
    EXPECT_EQ(scene.createCompoundPinForInterfacePin(nullptr), nullptr);
    EXPECT_EQ(scene.addCompoundInterfaceNode(lone), nullptr);
    EXPECT_EQ(scene.addCompoundInterfaceNode(nullptr), nullptr);
    lone->setNodeOwner(scene.getRootNode());
}

// a > C[ m > n, m > k ], C.m > b ; m and then n move out
TEST(Compounds, MovingOutLeadsCrossingConnectionsThroughTheWall) {
    SmallScene scene;
    GraphNodeBase* c = scene.addCompound("C");
    GraphNodeBase* m = scene.add("m", "in > out", c);
    scene.add("n", "in > out", c);
    scene.add("k", "in", c);
    GraphNodeBase* p = scene.add("p", "in", c);
    scene.link("C.m.out", "C.n.in");
    scene.link("C.m.out", "C.k.in");
    scene.link("C.n.out", "C.p.in");
    GraphScene::NameMap renamed;
    ASSERT_TRUE(
        scene.removeNodesFromCompoundCreatingInterfaces(GraphScene::Nodes{m, p}, c, renamed));
    EXPECT_EQ(renamed, (GraphScene::NameMap{{"root.C.m", "root.m"}, {"root.C.p", "root.p"}}));
    Names texts = textsOf(scene.connections());
    std::sort(texts.begin(), texts.end());
    EXPECT_EQ(texts,
              (Names{"C.CompoundInterface.input>C.k.in", "C.CompoundInterface.input>C.n.in",
                     "C.n.out>C.CompoundInterface.output", "C.output>p.in", "m.out>C.input"}));
    EXPECT_EQ(c->pins().size(), 2u) << "connections of one source share the pin";
}

TEST(Compounds, MovingOutWithoutCrossingMakesNoInterface) {
    SmallScene scene;
    GraphNodeBase* c = scene.addCompound("C");
    GraphNodeBase* m = scene.add("m", "> out", c);
    GraphNodeBase* n = scene.add("n", "in", c);
    scene.link("C.m.out", "C.n.in");
    GraphScene::NameMap renamed;
    ASSERT_TRUE(
        scene.removeNodesFromCompoundCreatingInterfaces(GraphScene::Nodes{m, n}, c, renamed));
    EXPECT_EQ(textsOf(scene.connections()), (Names{"m.out>n.in"}));
    EXPECT_TRUE(c->children().empty());
    EXPECT_TRUE(c->pins().empty());
    EXPECT_FALSE(scene.removeNodesFromCompoundCreatingInterfaces(GraphScene::Nodes{m}, c, renamed));
}

namespace {

// A scene without interface nodes.
class WalledScene : public SmallScene {
public:
    GraphNodeBase* createNewInterfaceNode() override { return nullptr; }
};

} // namespace

TEST(Compounds, AConnectionThatCannotBeLedThroughStays) {
    WalledScene scene;
    GraphNodeBase* c = scene.addCompound("C");
    GraphNodeBase* m = scene.add("m", "> out", c);
    scene.add("n", "in", c);
    scene.link("C.m.out", "C.n.in");
    GraphScene::NameMap renamed;
    ASSERT_TRUE(scene.removeNodesFromCompoundCreatingInterfaces(GraphScene::Nodes{m}, c, renamed));
    EXPECT_EQ(textsOf(scene.connections()), (Names{"m.out>C.n.in"}));
}

// SPDX-License-Identifier: Apache-2.0
// Tests of what can be asked of a scene.
#include <gtest/gtest.h>

#include "small_scene.h"

using namespace tidemark;
using namespace tidemark::graph;
using namespace tidemark::graph::test;

namespace {

// a.out > b.x, a.out > C.I.x, b.z > c.x;  C holds I and J, I.z > J.x
class SceneQueries : public testing::Test {
protected:
    SceneQueries() {
        a = scene.add("a", "> out");
        b = scene.add("b", "x y > z");
        c = scene.add("c", "x");
        compound = scene.addCompound("C");
        inner = scene.add("I", "x > z", compound);
        other = scene.add("J", "x", compound);
        scene.link("a.out", "b.x");
        scene.link("a.out", "C.I.x");
        scene.link("b.z", "c.x");
        scene.link("C.I.z", "C.J.x");
    }

    SmallScene scene;
    GraphNodeBase* a;
    GraphNodeBase* b;
    GraphNodeBase* c;
    GraphNodeBase* compound;
    GraphNodeBase* inner;
    GraphNodeBase* other;
    GraphScene::Connections found;
    GraphScene::Pins pins;
    GraphScene::Nodes nodes;
};

class AlwaysEvaluator : public GraphNodeBase {
public:
    bool isEvaluator() const override { return true; }
};

} // namespace

TEST_F(SceneQueries, FindsNodesByFullName) {
    EXPECT_EQ(scene.getNodePtrByFullName("root"), scene.getRootNode());
    EXPECT_EQ(scene.getNodePtrByFullName("root.C.I"), inner);
    for (const char* name : {"", ".", "root.", "root..C", "C", "Root.C", "root.C.", "root.C.I.x",
                             "root.C.none", "root.none.I", "rootC", ".root"}) {
        EXPECT_EQ(scene.getNodePtrByFullName(name), nullptr) << name;
    }
}

TEST_F(SceneQueries, FindsPinsByFullName) {
    EXPECT_EQ(scene.getPinPtrByFullName("root.C.I.x"), inner->findPin("x"));
    for (const char* name : {"", "x", "root", "root.C.I", "root.C.I.none", "root.C.I.x.", ".x"}) {
        EXPECT_EQ(scene.getPinPtrByFullName(name), nullptr) << name;
    }
}

TEST_F(SceneQueries, NamesWithAPointAreNotFoundByPath) {
    GraphNodeBase* node = scene.add("with.point", "in");
    EXPECT_EQ(scene.getNodePtrByFullName("root.with.point"), nullptr);
    EXPECT_EQ(scene.getPinPtrByFullName(node->findPin("in")->getFullName()), nullptr);
}

TEST_F(SceneQueries, NamesWithBlanksAreFound) {
    GraphNodeBase* node = scene.add("two words", "a");
    node->findPin("a")->setName("current index");
    EXPECT_EQ(scene.getPinPtrByFullName("root.two words.current index"), node->pins()[0]);
}

TEST_F(SceneQueries, ListsCompounds) {
    scene.addCompound("D", compound);
    scene.getAllGraphCompounds(nodes);
    EXPECT_EQ(namesOf(nodes), (Names{"C", "D"}));
}

TEST_F(SceneQueries, FindsNeighbours) {
    scene.getNodesConnectedWithNode(b, nodes);
    EXPECT_EQ(namesOf(nodes), (Names{"a", "c"}));
    nodes.clear();
    scene.getNodesConnectedBase(b, GraphNodePin::outputFlag, nodes);
    EXPECT_EQ(namesOf(nodes), (Names{"c"}));
    nodes.clear();
    scene.link("a.out", "b.y");
    scene.getNodesConnectedWithNode(a, nodes);
    EXPECT_EQ(namesOf(nodes), (Names{"b", "I"})) << "each once";
    scene.getNodesConnectedWithNode(nullptr, nodes);
    EXPECT_EQ(nodes.size(), 2u);
    EXPECT_TRUE(scene.areNodesConnected(a, inner));
    EXPECT_FALSE(scene.areNodesConnected(a, c));
    EXPECT_FALSE(scene.areNodesConnected(a, nullptr));
}

TEST_F(SceneQueries, GivesConnectablePins) {
    scene.getConnectablePins(a->findPin("out"), b, pins);
    EXPECT_EQ(namesOf(pins), (Names{"y"}));
    pins.clear();
    scene.getConnectablePins(b->findPin("y"), a, pins);
    EXPECT_EQ(namesOf(pins), (Names{"out"}));
    pins.clear();
    scene.getConnectablePins(b->findPin("y"), GraphScene::Nodes{a, b, inner}, pins);
    EXPECT_EQ(namesOf(pins), (Names{"out", "z"}));
    pins.clear();
    scene.getConnectablePins(b->findPin("y"), pins);
    EXPECT_EQ(namesOf(pins), (Names{"out"})) << "nodes beside its own, not those inside C";
    pins.clear();
    scene.getConnectablePins(nullptr, pins);
    scene.getConnectablePins(nullptr, a, pins);
    EXPECT_TRUE(pins.empty());
}

TEST_F(SceneQueries, CountsConnectionsOfPins) {
    GraphNodePin* out = a->findPin("out");
    EXPECT_EQ(scene.getPinNumConnections(out), 2u);
    EXPECT_EQ(scene.getPinNumConnections(out->getId()), 2u);
    EXPECT_TRUE(scene.hasPinConnections(out));
    EXPECT_FALSE(scene.hasPinConnections(b->findPin("y")->getId()));
    EXPECT_FALSE(scene.hasPinConnections(nullptr));
    EXPECT_FALSE(scene.hasPinConnections(9999u));
    EXPECT_TRUE(scene.isPinFull(b->findPin("x")));
    EXPECT_FALSE(scene.isPinFull(out));
    EXPECT_FALSE(scene.isPinFull(nullptr));
    scene.getPinConnections(out->getId(), found);
    EXPECT_EQ(textsOf(found), (Names{"a.out>b.x", "a.out>C.I.x"}));
}

TEST_F(SceneQueries, FindsConnectionsByNodeAndPinName) {
    scene.getNodeConnectionsByPin(inner, "z", found);
    EXPECT_EQ(textsOf(found), (Names{"C.I.z>C.J.x"}));
    found.clear();
    scene.getNodeConnectionsByPin(b->getId(), "z", found);
    EXPECT_EQ(textsOf(found), (Names{"b.z>c.x"}));
    scene.getNodeConnectionsByPin(b, "none", found);
    scene.getNodeConnectionsByPin(9999u, "z", found);
    EXPECT_EQ(found.size(), 1u);
    found.clear();
    scene.getConnectionsWithNode(b->getId(), found);
    EXPECT_EQ(textsOf(found), (Names{"a.out>b.x", "b.z>c.x"}));
    found.clear();
    scene.getConnectionsBetweenNodes(c, b, found);
    EXPECT_EQ(textsOf(found), (Names{"b.z>c.x"}));
}

TEST_F(SceneQueries, FindsConnectionsOfOnePair) {
    const GraphConnection like(a->findPin("out"), b->findPin("x"));
    EXPECT_TRUE(scene.hasConnectionsLikeThis(like));
    scene.getConnectionsLikeThis(like, found);
    EXPECT_EQ(textsOf(found), (Names{"a.out>b.x"}));
    EXPECT_FALSE(scene.hasConnectionsLikeThis(GraphConnection()));
    EXPECT_FALSE(scene.hasConnectionsLikeThis(GraphConnection(a->findPin("out"), c->findPin("x"))));
}

TEST_F(SceneQueries, InvolvingCountsNodesBelow) {
    scene.getConnectionsInvolvingNodes(GraphScene::Nodes{compound}, found);
    EXPECT_EQ(textsOf(found), (Names{"a.out>C.I.x", "C.I.z>C.J.x"}));
    found.clear();
    scene.getConnectionsInvolvingOnlyNodes(GraphScene::Nodes{compound}, found);
    EXPECT_EQ(textsOf(found), (Names{"C.I.z>C.J.x"}));
    found.clear();
    scene.getConnectionsInvolvingOnlyNodes(GraphScene::Nodes{c, compound, inner, a, b, nullptr},
                                           found);
    EXPECT_EQ(textsOf(found), textsOf(scene.connections())) << "in the scene's order, each once";
    found.clear();
    scene.getConnectionsInvolvingOnlyNodes(GraphScene::Nodes{}, found);
    EXPECT_TRUE(found.empty());
}

TEST_F(SceneQueries, AsksForPermission) {
    const GraphNodePin* out = a->findPin("out");
    EXPECT_TRUE(scene.isConnectionAllowed(out, b->findPin("y")));
    EXPECT_FALSE(scene.isConnectionAllowed(out, b->findPin("x")));
    EXPECT_TRUE(scene.isConnectionAllowed(out, b));
    EXPECT_FALSE(scene.isConnectionAllowed(out, c));
    EXPECT_TRUE(scene.isConnectionAllowed(a, b->findPin("y")));
    EXPECT_TRUE(scene.isConnectionAllowed(a, b));
    EXPECT_FALSE(scene.isConnectionAllowed(b, a));
    EXPECT_TRUE(scene.isConnectionAllowed(GraphConnection(a->findPin("out"), b->findPin("y"))));
    EXPECT_FALSE(scene.isConnectionAllowed(GraphConnection()));
    const GraphNodePin* nothing = nullptr;
    EXPECT_FALSE(scene.isConnectionAllowed(nothing, b));
    EXPECT_FALSE(scene.isConnectionAllowed(out, nothing));
}

TEST_F(SceneQueries, EvaluablePinsAreInputsOfEvaluators) {
    scene.getEvaluablePins(pins);
    EXPECT_TRUE(pins.empty());
    auto* evaluator = new AlwaysEvaluator();
    scene.addNodeToGraph(evaluator);
    scene.createNewPin(evaluator, GraphNodePin::inputFlag, "evaluate");
    scene.createNewPin(evaluator, GraphNodePin::outputFlag, "o");
    scene.getEvaluablePins(pins);
    EXPECT_EQ(namesOf(pins), (Names{"evaluate"}));
    EXPECT_TRUE(pins[0]->isEvaluatorPin());
}

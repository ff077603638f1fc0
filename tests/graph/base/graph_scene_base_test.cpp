// SPDX-License-Identifier: Apache-2.0
// Tests of adding to a scene and removing from it.
#include "graph/base/graph_scene_base.h"

#include <gtest/gtest.h>

#include "small_scene.h"

using namespace tidemark;
using namespace tidemark::graph;
using namespace tidemark::graph::test;

namespace {

// What the static callbacks of scenes saw, as text; installed while it lives.
class CallbackLog {
public:
    CallbackLog() {
        lines.clear();
        GraphScene::addNodeCallback_ = [](GraphScene*, GraphNodeBase* owner, GraphNodeBase* node) {
            lines.push_back("+" + owner->getName() + "/" + node->getName());
        };
        GraphScene::addConnectionCallback_ = [](GraphScene*, GraphNodeBase* owner,
                                                GraphConnection* connection) {
            lines.push_back("+" + owner->getName() + ":" + textOf(connection));
        };
        GraphScene::removeConnectionCallback_ = [](GraphScene*, GraphNodeBase* owner,
                                                   GraphConnection* connection) {
            lines.push_back("-" + owner->getName() + ":" + textOf(connection));
        };
    }
    ~CallbackLog() {
        GraphScene::addNodeCallback_ = nullptr;
        GraphScene::addConnectionCallback_ = nullptr;
        GraphScene::removeConnectionCallback_ = nullptr;
    }

    static inline Names lines;
};

// A node that notes its removal.
class WatchedNode : public GraphNodeBase {
public:
    explicit WatchedNode(Names* log) : log_(log) {}
    ~WatchedNode() override { log_->push_back("deleted " + getName()); }

protected:
    void onRemovingFromScene() override {
        log_->push_back("removing " + getName());
        EXPECT_NE(getNodeOwner(), nullptr);
        EXPECT_FALSE(getGraphScene()->hasGraphNodeWithId(getId()));
    }

private:
    Names* log_;
};

} // namespace

TEST(GraphScene, StartsWithARootAlone) {
    SmallScene scene;
    SmallScene other;
    ASSERT_NE(scene.getRootNode(), nullptr);
    EXPECT_EQ(scene.getRootNode()->getFullName(), "root");
    EXPECT_TRUE(scene.getRootNode()->isRoot());
    EXPECT_TRUE(scene.getRootNode()->isCompound());
    EXPECT_TRUE(scene.nodesById().empty());
    EXPECT_GE(scene.getSceneId(), 1u);
    EXPECT_NE(scene.getSceneId(), other.getSceneId());
    EXPECT_EQ(scene.getGraphType(), 0u);
    EXPECT_FALSE(scene.allowsCompounds_);
    scene.graphKind_ = 3;
    EXPECT_EQ(scene.getGraphType(), 3u);
    EXPECT_EQ(scene.toXml(), "");
}

TEST(GraphScene, GivesNodesAnIdWhenTheyNeedOne) {
    SmallScene scene;
    GraphNodeBase* first = scene.add("a");
    EXPECT_EQ(first->getId(), 1u);
    auto* chosen = new GraphNodeBase();
    chosen->setId(40);
    scene.addNodeToGraph(chosen);
    EXPECT_EQ(chosen->getId(), 40u);
    auto* taken = new GraphNodeBase();
    taken->setId(40);
    scene.addNodeToGraph(taken);
    EXPECT_EQ(taken->getId(), 41u);
    EXPECT_EQ(scene.getNodePtrById(40), chosen);
    EXPECT_FALSE(scene.hasGraphNodeWithId(2));
    EXPECT_EQ(scene.getFreeNodeId(), 42u);
    EXPECT_FALSE(scene.addNodeToGraph(nullptr));
}

TEST(GraphScene, AddingANodeEntersItsPins) {
    SmallScene scene;
    auto* node = new GraphNodeBase();
    auto* pin = new GraphNodePin(node, 12, GraphNodePin::inputFlag);
    node->addNodePin(pin);
    scene.addNodeToGraph(node);
    EXPECT_EQ(scene.getPinPtrById(12), pin);
}

TEST(GraphScene, AddNodeCallbackNeedsAnOwner) {
    SmallScene scene;
    const CallbackLog log;
    scene.add("lone");
    EXPECT_TRUE(log.lines.empty());
    auto* owned = new GraphNodeBase();
    owned->setName("owned");
    owned->setNodeOwner(scene.getRootNode());
    scene.addNodeToGraph(owned);
    EXPECT_EQ(log.lines, (Names{"+root/owned"}));
}

TEST(GraphScene, ConnectsAndTellsWhoFollows) {
    SmallScene scene;
    scene.add("a", "> out");
    scene.add("b", "in in2");
    const CallbackLog log;
    const GraphConnection* connection = scene.link("a.out", "b.in");
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(log.lines, (Names{"+root:a.out>b.in"}));
    EXPECT_EQ(scene.link("a.out", "b.in"), nullptr) << "full";
    EXPECT_EQ(scene.link("a.out", "b.none"), nullptr);
    EXPECT_EQ(scene.link("none.out", "b.in2"), nullptr);
    const unsigned out = scene.getPinPtrByFullName("root.a.out")->getId();
    const unsigned in2 = scene.getPinPtrByFullName("root.b.in2")->getId();
    EXPECT_NE(scene.connect(out, in2), nullptr);
    EXPECT_EQ(scene.connect(out, 9999u), nullptr);
    EXPECT_EQ(log.lines.size(), 2u);
    EXPECT_EQ(scene.connections().size(), 2u);
}

TEST(GraphScene, ConnectsByNodeAndPinName) {
    SmallScene scene;
    GraphNodeBase* a = scene.add("a", "> out");
    GraphNodeBase* b = scene.add("b", "in");
    EXPECT_EQ(scene.connect(a, "none", b, "in"), nullptr);
    EXPECT_EQ(scene.connect(nullptr, "out", b, "in"), nullptr);
    EXPECT_NE(scene.connect(a, "out", b, "in"), nullptr);
}

TEST(GraphScene, ConnectBaseDoesNotAsk) {
    SmallScene scene;
    GraphNodeBase* a = scene.add("a", "in > out");
    EXPECT_EQ(scene.connectBase(a->findPin("out"), nullptr), nullptr);
    EXPECT_NE(scene.connectBase(a->findPin("out"), a->findPin("in")), nullptr);
    EXPECT_TRUE(a->findPin("in")->isFull());
    GraphScene::Connections found;
    scene.getConnectionsWithNode(a, found);
    EXPECT_EQ(textsOf(found), (Names{"a.out>a.in"})) << "once, though both ends are here";
    scene.removeConnectionsWithNode(a);
    EXPECT_TRUE(scene.connections().empty());
    EXPECT_FALSE(a->findPin("out")->isConnected());
}

TEST(GraphScene, CreatedConnectionIsListedButNotInItsPins) {
    SmallScene scene;
    GraphNodeBase* a = scene.add("a", "> out");
    GraphNodeBase* b = scene.add("b", "in");
    GraphConnection* made = scene.createGraphConnection(a->findPin("out"), b->findPin("in"));
    EXPECT_EQ(scene.connections().size(), 1u);
    EXPECT_FALSE(b->findPin("in")->isConnected());
    EXPECT_TRUE(scene.removeConnection(made));
    EXPECT_EQ(scene.createGraphConnection(nullptr, b->findPin("in")), nullptr);
}

TEST(GraphScene, RemovalFillsTheHoleWithTheLast) {
    SmallScene scene;
    scene.add("a", "> out");
    scene.add("b", "p q r s");
    GraphConnection* p = scene.link("a.out", "b.p");
    scene.link("a.out", "b.q");
    scene.link("a.out", "b.r");
    GraphConnection* s = scene.link("a.out", "b.s");
    const CallbackLog log;
    EXPECT_TRUE(scene.removeConnection(p));
    EXPECT_EQ(log.lines, (Names{"-root:a.out>b.p"}));
    EXPECT_EQ(textsOf(scene.connections()), (Names{"a.out>b.s", "a.out>b.q", "a.out>b.r"}));
    EXPECT_EQ(s->indexInScene(), 0u);
    EXPECT_TRUE(scene.removeConnection(s));
    EXPECT_EQ(textsOf(scene.connections()), (Names{"a.out>b.r", "a.out>b.q"}));
    EXPECT_FALSE(scene.removeConnection(nullptr));
}

TEST(GraphScene, RefusesConnectionsOfAnotherScene) {
    SmallScene scene;
    SmallScene other;
    for (SmallScene* each : {&scene, &other}) {
        each->add("a", "> out");
        each->add("b", "in");
    }
    GraphConnection* foreign = other.link("a.out", "b.in");
    scene.link("a.out", "b.in");
    EXPECT_FALSE(scene.removeConnection(foreign));
    EXPECT_EQ(scene.connections().size(), 1u);
    EXPECT_EQ(other.connections().size(), 1u);
}

TEST(GraphScene, RemovesConnectionsByNodePinAndPair) {
    SmallScene scene;
    GraphNodeBase* a = scene.add("a", "> out");
    GraphNodeBase* b = scene.add("b", "x y > z");
    GraphNodeBase* c = scene.add("c", "x y");
    const auto linkAll = [&scene] {
        scene.removeAllConnections();
        scene.link("a.out", "b.x");
        scene.link("a.out", "c.x");
        scene.link("b.z", "c.y");
    };
    linkAll();
    scene.removeConnectionsWithPin(a->findPin("out"));
    EXPECT_EQ(textsOf(scene.connections()), (Names{"b.z>c.y"}));
    linkAll();
    scene.removeConnectionsWithNode(b);
    EXPECT_EQ(textsOf(scene.connections()), (Names{"a.out>c.x"}));
    linkAll();
    scene.removeConnectionsWithNode(c->getId());
    EXPECT_EQ(textsOf(scene.connections()), (Names{"a.out>b.x"}));
    linkAll();
    scene.removeConnectionsBetweenNodes(a, c);
    EXPECT_EQ(textsOf(scene.connections()), (Names{"a.out>b.x", "b.z>c.y"}));
    scene.removeConnectionsWithNode(nullptr);
    scene.removeConnectionsWithNode(12345u);
    scene.removeConnectionsWithPin(nullptr);
    scene.removeConnectionsBetweenNodes(a, nullptr);
    EXPECT_EQ(scene.connections().size(), 2u);
}

TEST(GraphScene, ClearRemovesConnectionsFromTheEnd) {
    SmallScene scene;
    scene.add("a", "> out");
    scene.add("b", "x y z");
    for (const char* pin : {"b.x", "b.y", "b.z"}) scene.link("a.out", pin);
    scene.refMessages().pushError("m", "");
    const CallbackLog log;
    scene.clear();
    EXPECT_EQ(log.lines, (Names{"-root:a.out>b.z", "-root:a.out>b.y", "-root:a.out>b.x"}));
    EXPECT_TRUE(scene.getMessages().isEmpty());
    EXPECT_TRUE(scene.nodesById().empty());
    EXPECT_TRUE(scene.pinsById().empty());
    EXPECT_TRUE(scene.getRootNode()->children().empty());
    scene.add("again", "in");
    EXPECT_NE(scene.getNodePtrByFullName("root.again"), nullptr);
}

TEST(GraphScene, RemovesANodeWithAllThatHangsOnIt) {
    SmallScene scene;
    GraphNodeBase* a = scene.add("a", "> out");
    GraphNodeBase* b = scene.add("b", "in > out");
    scene.add("c", "in");
    scene.link("a.out", "b.in");
    scene.link("b.out", "c.in");
    const unsigned id = b->getId();
    const unsigned pin = b->findPin("in")->getId();
    EXPECT_TRUE(scene.removeNodeFromGraph(id));
    EXPECT_FALSE(scene.removeNodeFromGraph(id));
    EXPECT_EQ(scene.getPinPtrById(pin), nullptr);
    EXPECT_TRUE(scene.connections().empty());
    EXPECT_EQ(namesOf(scene.getRootNode()->children()), (Names{"a", "c"}));
    EXPECT_FALSE(a->findPin("out")->isConnected());
    EXPECT_FALSE(scene.removeNodeFromGraph(scene.getRootNode()));
    EXPECT_FALSE(scene.removeNodeFromGraph(nullptr));
    SmallScene other;
    EXPECT_FALSE(other.removeNodeFromGraph(a));
}

TEST(GraphScene, InnerNodesGoBeforeTheirCompound) {
    Names log;
    SmallScene scene;
    const auto add = [&](const char* name, GraphNodeBase* owner) {
        auto* node = new WatchedNode(&log);
        node->setName(name);
        scene.addNodeToGraph(node);
        node->setNodeOwner(owner);
        return node;
    };
    GraphNodeBase* c = add("C", scene.getRootNode());
    GraphNodeBase* d = add("D", c);
    add("x", d);
    add("y", c);
    scene.removeNodeFromGraph(c);
    EXPECT_EQ(log, (Names{"removing y", "deleted y", "removing x", "deleted x", "removing D",
                          "deleted D", "removing C", "deleted C"}));
    EXPECT_TRUE(scene.nodesById().empty());
}

TEST(GraphScene, RemovesOnlyWhatIsInACompound) {
    SmallScene scene;
    GraphNodeBase* c = scene.addCompound("C");
    scene.add("x", "in", c);
    scene.removeNodesInCompoundFromGraph(c);
    EXPECT_TRUE(c->children().empty());
    EXPECT_EQ(scene.nodesById().size(), 1u);
    scene.removeNodesInCompoundFromGraph(nullptr);
}

TEST(GraphScene, PinsLeaveTheMapWithTheirConnections) {
    SmallScene scene;
    GraphNodeBase* a = scene.add("a", "> out");
    GraphNodeBase* b = scene.add("b", "in");
    scene.link("a.out", "b.in");
    GraphNodePin* in = b->findPin("in");
    EXPECT_TRUE(scene.removeNodePin(in));
    EXPECT_FALSE(scene.removeNodePin(in));
    EXPECT_FALSE(scene.removeNodePin(nullptr));
    EXPECT_TRUE(scene.connections().empty());
    EXPECT_TRUE(b->hasPin(in));
    EXPECT_TRUE(scene.addNodePin(in));
    EXPECT_TRUE(scene.removeNodePinFromSceneAndNode(in));
    EXPECT_FALSE(b->hasPin(in));
    delete in;
    scene.removeNodePins(a);
    EXPECT_EQ(scene.pinsById().size(), 0u);
    EXPECT_EQ(a->pins().size(), 1u);
    EXPECT_FALSE(scene.addNodePin(nullptr));
    EXPECT_FALSE(scene.addNodePin(a, nullptr));
    EXPECT_FALSE(scene.removeNodePinFromSceneAndNode(nullptr));
}

TEST(GraphScene, AddsPinsInBulk) {
    SmallScene scene;
    GraphNodeBase* node = scene.add("n");
    GraphScene::Pins pins;
    for (unsigned id : {30u, 20u, 10u}) {
        pins.append(new GraphNodePin(node, id, GraphNodePin::inputFlag));
    }
    scene.addNodePins(node, pins);
    EXPECT_EQ(node->pins().size(), 3u);
    EXPECT_EQ(scene.getPinPtrById(20), pins[1]);
}

TEST(GraphScene, NewPinsTakeFreeIdsAndNames) {
    SmallScene scene;
    GraphNodeBase* node = scene.add("n");
    EXPECT_EQ(scene.createNewPin(node, GraphNodePin::inputFlag)->getName(), "in");
    EXPECT_EQ(scene.createNewPin(node, GraphNodePin::inputFlag)->getName(), "in1");
    EXPECT_EQ(scene.createNewPin(node, GraphNodePin::outputFlag)->getName(), "out");
    EXPECT_EQ(node->pins()[2]->getId(), 3u);
    EXPECT_EQ(scene.createNewPin(nullptr, GraphNodePin::inputFlag), nullptr);
    EXPECT_EQ(scene.createNewPin(nullptr, GraphNodePin::inputFlag, "x"), nullptr);
}

TEST(GraphScene, FreeNames) {
    SmallScene scene;
    GraphNodeBase* c = scene.addCompound("Compound");
    scene.add("n", "x x1 > x3");
    EXPECT_EQ(scene.getFreePinName("root.n", "x"), "x2");
    EXPECT_EQ(scene.getFreePinName("root.n", "y"), "y");
    EXPECT_EQ(scene.getFreePinName("root.none", "x"), "x");
    EXPECT_EQ(scene.getFreeNodeName(nullptr, "n"), "n_01");
    EXPECT_EQ(scene.getFreeNodeName(c, "n"), "n");
    EXPECT_EQ(scene.getFreeNodeCompoundName(nullptr), "Compound_01");
    EXPECT_EQ(scene.getFreeNodeCompoundName(c), "Compound");
    EXPECT_EQ(scene.getFreeInterfaceNodeName(c, GraphNodePin::inputFlag), "InputInterface");
    scene.add("OutputInterface", "", c);
    EXPECT_EQ(scene.getFreeInterfaceNodeName(c, GraphNodePin::outputFlag), "OutputInterface_01");
}

TEST(GraphScene, ColoursByTypeIgnoreLetterCase) {
    SmallScene scene;
    EXPECT_FALSE(scene.hasColorForNodeType("Add"));
    EXPECT_EQ(scene.getColorFromNodeType("Add"), Color4<float>(0, 0, 0, 1));
    scene.setColorForNodeType("Add", Color4<float>(1, 2, 3, 4));
    EXPECT_TRUE(scene.hasColorForNodeType("ADD"));
    GraphNodeBase* node = scene.add("n");
    node->setType("add");
    EXPECT_EQ(scene.getColorFromNodeType(node), Color4<float>(1, 2, 3, 4));
}

TEST(GraphScene, MakesTheFourKindsItNeeds) {
    SmallScene scene;
    GraphNodeBase* made[] = {scene.createNewCompound(), scene.createNewInterfaceNode(),
                             scene.createNewEvaluator(), scene.createNewPassThrough()};
    EXPECT_TRUE(made[0]->isCompound());
    EXPECT_TRUE(made[1]->isInterface());
    EXPECT_EQ(made[2]->getType(), "Evaluator");
    EXPECT_EQ(made[3]->getType(), "Pass");
    for (GraphNodeBase* node : made) {
        EXPECT_FALSE(node->isValid());
        delete node;
    }
}

TEST(GraphScene, AnotherRootReplacesTheFirst) {
    SmallScene scene;
    auto* root = new GraphNodeBase();
    root->setName("root");
    root->setGraphScene(&scene);
    scene.createNewPin(root, GraphNodePin::inputFlag, "p");
    scene.setRootNode(root);
    EXPECT_EQ(scene.getRootNode(), root);
    scene.setRootNode(nullptr);
    EXPECT_TRUE(scene.pinsById().empty());
    EXPECT_EQ(scene.getNodePtrByFullName("root"), nullptr);
    EXPECT_EQ(scene.getFreeNodeName(nullptr, "n"), "n");
}

TEST(GraphScene, BuildsAndClearsALargeFlatGraphInLinearTime) {
    constexpr int count = 100000;
    SmallScene scene;
    GraphNodePin* last = nullptr;
    for (int i = 0; i < count; ++i) {
        const GraphNodeBase* node = scene.add("n" + std::to_string(i), "in > out");
        if (last) scene.connect(last, node->findPin("in"));
        last = node->findPin("out");
    }
    EXPECT_EQ(scene.connections().size(), count - 1u);
    EXPECT_EQ(scene.getPinPtrByFullName("root.n77777.out")->getName(), "out");
    scene.clear();
    EXPECT_TRUE(scene.connections().empty());
}

TEST(GraphScene, AFanOfManyConnectionsClearsInLinearTime) {
    constexpr int count = 50000;
    SmallScene scene;
    const GraphNodeBase* source = scene.add("source", "> out");
    for (int i = 0; i < count; ++i) {
        scene.connect(source->findPin("out"), scene.add("n", "in")->findPin("in"));
    }
    EXPECT_EQ(source->findPin("out")->outputConnections().size(), unsigned(count));
    scene.clear();
    EXPECT_TRUE(scene.nodesById().empty());
}

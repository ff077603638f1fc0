// SPDX-License-Identifier: Apache-2.0
// Tests of scenes: nodes, names, connections, compounds and the scene as a whole.
#include "graph/graph_scene.h"

#include <chrono>
#include <cstring>

#include "core/bit_array.h"
#include "core/string_value.h"
#include "support/recording_host.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::LogicProbe;
using support::Names;
using support::ProbeNode;
using support::SceneBuilder;
using tidemark::graph::GraphConnection;
using tidemark::graph::GraphNodePin;
using tidemark::graph::GraphScene;
using weft::NumericAttribute;

namespace {

// What the static callbacks of scenes saw; installed while it lives.
class SceneLog {
public:
    SceneLog() {
        lines.clear();
        GraphScene::addNodeCallback_ = [](GraphScene*, GraphNodeBase* owner, GraphNodeBase* node) {
            const bool hasLogic = dynamic_cast<NodeBase*>(node)->getCoreNode() != nullptr;
            lines.push_back("+" + owner->getName() + "/" + node->getName() +
                            (hasLogic ? " late" : ""));
        };
        GraphScene::removeNodeCallback_ = [](GraphScene*, GraphNodeBase* owner,
                                             GraphNodeBase* node) {
            lines.push_back("-" + owner->getName() + "/" + node->getName());
        };
        GraphScene::addConnectionCallback_ = [](GraphScene*, GraphNodeBase* owner,
                                                GraphConnection* connection) {
            note("+", owner, connection);
        };
        GraphScene::removeConnectionCallback_ = [](GraphScene*, GraphNodeBase* owner,
                                                   GraphConnection* connection) {
            note("-", owner, connection);
        };
    }
    ~SceneLog() {
        GraphScene::addNodeCallback_ = nullptr;
        GraphScene::removeNodeCallback_ = nullptr;
        GraphScene::addConnectionCallback_ = nullptr;
        GraphScene::removeConnectionCallback_ = nullptr;
    }
    Names take() { return std::exchange(lines, {}); }

    static inline Names lines;

private:
    // With "*" when the attributes are connected at that moment.
    static void note(const char* sign, GraphNodeBase* owner, GraphConnection* connection) {
        auto* target = dynamic_cast<Pin*>(connection->getTargetPin());
        lines.push_back(sign + owner->getName() + ":" +
                        connection->getSourcePin()->getFullName().substr(5) + ">" +
                        target->getFullName().substr(5) +
                        (target->getWeftAttribute()->source() ? "*" : ""));
    }
};

double millisecondsOf(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
        .count();
}

Node* newNode(const char* type) {
    return static_cast<Node*>(SceneBuilder::manager().getNodeFactoryFromType(type)->createNode());
}

} // namespace

// --- adding ------------------------------------------------------------------------------------

TEST(Scene, StartsEmptyAndKnowsItsKind) {
    SL_GraphScene scene;
    SL_GraphScene other;
    EXPECT_EQ(scene.getGraphType(), 3u);
    EXPECT_TRUE(scene.nodesById().empty());
    EXPECT_TRUE(scene.getArrUpdateNodes().empty());
    EXPECT_EQ(scene.getLastExecutionTime(), 0.0);
    EXPECT_NE(scene.getSceneId(), other.getSceneId());
    EXPECT_GT(scene.getSceneId(), 0u);
    EXPECT_EQ(scene.getScenePrivate()->scene, &scene);
    EXPECT_EQ(scene.getScenePrivate()->rootNode.name(), "root");
    EXPECT_EQ(scene.networkManager().sceneMessages(), &scene.refMessages());
    EXPECT_TRUE(scene.networkManager().monitoring());
    EXPECT_FALSE(scene.networkManager().evaluating());
    EXPECT_EQ(SL_GraphScene::mainGraph_.getRootNode()->getName(), "root");
}

TEST(Scene, TellsOfAnAddedNodeThatHasAnOwner) {
    SceneLog log;
    SL_GraphScene scene;
    Node* free = newNode("Add");
    EXPECT_TRUE(scene.addNodeToGraph(free));
    EXPECT_EQ(log.take(), Names{});
    Node* owned = newNode("Real");
    owned->setNodeOwner(scene.getRootNode());
    EXPECT_TRUE(scene.addNodeToGraph(owned));
    EXPECT_EQ(log.take(), (Names{"+root/Real"}));
    EXPECT_EQ(owned->getGraphScene(), &scene);
}

TEST(Scene, RunStartsFromThreeTypesInOrderOfAdding) {
    SceneBuilder build;
    build.probe("Kernel", "K");
    build.add("Add", "A").add("Evaluator", "E");
    build.probe("For", "F");
    build.probe("for", "G");
    build.probe("EvaluatorX", "H");
    EXPECT_EQ(SceneBuilder::namesOf(build.scene.getArrUpdateNodes()), (Names{"K", "E", "F"}));
    build.scene.removeNodeFromGraph(build.node("E"));
    EXPECT_EQ(SceneBuilder::namesOf(build.scene.getArrUpdateNodes()), (Names{"K", "F"}));
    build.scene.removeNodeFromGraph(build.node("K"));
    EXPECT_EQ(SceneBuilder::namesOf(build.scene.getArrUpdateNodes()), (Names{"F"}));
    build.scene.removeFromUpdateNodes(build.node("F"));
    build.scene.removeFromUpdateNodes(build.node("F"));
    EXPECT_TRUE(build.scene.getArrUpdateNodes().empty());
    build.scene.setArrUpdateNodes({build.node("F")});
    EXPECT_EQ(build.scene.refArrUpdateNodes().size(), 1u);
}

TEST(Scene, WarnsOfAClassThatIsNotTheType) {
    SceneBuilder build;
    build.probe("Kernel", "K");
    EXPECT_EQ(build.messages("K"), (Names{"3 Class Name <Probe> and Node Type <Kernel> differ"}));
    build.probe("Probe", "P");
    EXPECT_EQ(build.messages("P"), Names{});
    EXPECT_NE(build.scene.getNodePtrById(build.node("K")->getId()), nullptr);
}

// --- unique names ------------------------------------------------------------------------------

namespace {

// The name that a new node called `name` gets in a scene with these nodes.
TM_String uniqueName(SceneBuilder& build, const TM_String& name) {
    ProbeNode node;
    node.setName(name);
    build.scene.assignUniqueName(&node);
    return node.getName();
}

TM_String uniqueAmong(const Names& taken, const TM_String& name) {
    SceneBuilder build;
    for (const std::string& other : taken) build.probe("Probe", other);
    return uniqueName(build, name);
}

} // namespace

TEST(Scene, UniqueNamesHaveASuffixAlways) {
    EXPECT_EQ(uniqueAmong({}, "Add"), "Add_01");
    EXPECT_EQ(uniqueAmong({"Add"}, "Add"), "Add_01");
    EXPECT_EQ(uniqueAmong({"Add_01", "Add_07"}, "Add"), "Add_08");
    EXPECT_EQ(uniqueAmong({"Add_07"}, "Add"), "Add_01"); // gaps are looked for at 1 alone
    EXPECT_EQ(uniqueAmong({"Add_01", "Add_02", "Add_04"}, "Add"), "Add_05");
    EXPECT_EQ(uniqueAmong({}, ""), "_01");
    EXPECT_EQ(uniqueAmong({"_01"}, ""), "_02");
}

TEST(Scene, UniqueNamesIgnoreCaseAtTheFirstLookOnly) {
    EXPECT_EQ(uniqueAmong({"ADD_01"}, "Add"), "Add_01"); // found, but no name begins with "Add"
    EXPECT_EQ(uniqueAmong({"ADD_01", "Add_03"}, "Add"), "Add_04");
    EXPECT_EQ(uniqueAmong({"ADD_01", "aDD_09"}, "Add"), "Add_01");
    EXPECT_EQ(uniqueAmong({"Add_01x"}, "Add"), "Add_01"); // a whole-name look
}

TEST(Scene, UniqueNamesReadNumbersBehindAnySeparator) {
    EXPECT_EQ(uniqueAmong({"Add_01", "Addition"}, "Add"), "Add_02");
    EXPECT_EQ(uniqueAmong({"Add_01", "Add-20"}, "Add"), "Add_21");
    EXPECT_EQ(uniqueAmong({"Add_01", "AddX9y"}, "Add"), "Add_10");
    EXPECT_EQ(uniqueAmong({"Add_01", "Add_-5"}, "Add"), "Add_02");
    EXPECT_EQ(uniqueAmong({"Add_01", "Add_ 30"}, "Add"), "Add_31");
    EXPECT_EQ(uniqueAmong({"Add_01", "Add123"}, "Add"), "Add_24");
}

TEST(Scene, SuffixesWidenWithTheNumber) {
    EXPECT_EQ(uniqueAmong({"A_01", "A_98"}, "A"), "A_99");
    EXPECT_EQ(uniqueAmong({"A_01", "A_99"}, "A"), "A_100");
    EXPECT_EQ(uniqueAmong({"A_01", "A_999"}, "A"), "A_1000");
    EXPECT_EQ(uniqueAmong({"A_01", "A_9999"}, "A"), "A_10000");
    EXPECT_EQ(uniqueAmong({"A_01", "A_123456"}, "A"), "A_123457");
}

TEST(Scene, NodesInDifferentCompoundsCollide) {
    SceneBuilder build;
    build.add("Compound", "C").add("Add", "C.Add_01");
    EXPECT_EQ(uniqueName(build, "Add"), "Add_02");
}

TEST(Scene, UniqueNamesFollowRenamesAndRemovals) {
    SceneBuilder build;
    build.add("Add", "Add_01").add("Add", "Add_05");
    EXPECT_EQ(uniqueName(build, "Add"), "Add_06");
    build.node("Add_05")->setName("Sum");
    EXPECT_EQ(uniqueName(build, "Add"), "Add_02");
    build.node("Sum")->setName("Add_20");
    EXPECT_EQ(uniqueName(build, "Add"), "Add_21");
    build.scene.removeNodeFromGraph(build.node("Add_20"));
    EXPECT_EQ(uniqueName(build, "Add"), "Add_02");
    build.scene.removeNodeFromGraph(build.node("Add_01"));
    EXPECT_EQ(uniqueName(build, "Add"), "Add_01");
    build.add("Add", "Add_03");
    build.scene.clear();
    build.add("Add", "Add_01");
    EXPECT_EQ(uniqueName(build, "Add"), "Add_02");
}

TEST(Scene, ANodeOfTheSceneMayBeNamedAnew) {
    SceneBuilder build;
    build.add("Add", "Add_01").add("Add", "Add");
    Node* node = build.node("Add");
    build.scene.assignUniqueName(node);
    EXPECT_EQ(node->getName(), "Add_02");
    EXPECT_EQ(node->getCoreNode()->name(), "Add_02");
    build.scene.assignUniqueName(node);
    EXPECT_EQ(node->getName(), "Add_02_01");
}

TEST(Scene, TenThousandUniqueNames) {
    SL_GraphScene scene;
    TM_String last;
    const double time = millisecondsOf([&] {
        for (int i = 0; i < 10000; ++i) {
            Node* node = newNode("Add");
            scene.assignUniqueName(node);
            scene.addNodeToGraph(node);
            node->setNodeOwner(scene.getRootNode());
            last = node->getName();
        }
    });
    EXPECT_EQ(last, "Add_10000");
    EXPECT_NE(scene.getNodePtrByFullName("root.Add_9999"), nullptr);
    EXPECT_LT(time, 20000.0); // looking through all names each time takes minutes
}

TEST(Scene, MakesTheNodesItNeedsItself) {
    SceneBuilder build;
    const auto check = [&](GraphNodeBase* node, const char* name, const char* type) {
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(node->getName(), name);
        EXPECT_EQ(node->getType(), type);
        build.scene.addNodeToGraph(node);
        node->setNodeOwner(build.scene.getRootNode());
    };
    check(build.scene.createNewCompound(), "Compound_01", "Compound");
    check(build.scene.createNewCompound(), "Compound_02", "Compound");
    check(build.scene.createNewInterfaceNode(), "CompoundInterface_01", "CompoundInterface");
    check(build.scene.createNewEvaluator(), "Evaluator_01", "Evaluator");
    EXPECT_EQ(build.scene.getArrUpdateNodes().size(), 1u);
    const bool hasPass = SceneBuilder::manager().getNodeFactoryFromType("Pass") != nullptr;
    GraphNodeBase* pass = build.scene.createNewPassThrough();
    EXPECT_EQ(pass != nullptr, hasPass);
    delete pass;
}

// --- connections -------------------------------------------------------------------------------

TEST(Scene, ConnectListsTellsAndLinks) {
    SceneBuilder build;
    build.add("Compound", "C").add("Real", "C.R").add("Add", "C.A");
    SceneLog log;
    GraphConnection* connection = build.link("C.R.real", "C.A.in0");
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(log.take(), (Names{"+C:C.R.real>C.A.in0"})); // before the attributes are connected
    EXPECT_EQ(connection->getSourcePin(), build.pin("C.R.real"));
    EXPECT_EQ(connection->getTargetPin(), build.pin("C.A.in0"));
    EXPECT_EQ(build.connections(), (Names{"C.R.real>C.A.in0"}));
    EXPECT_EQ(build.pin("C.R.real")->outputConnections().size(), 1u);
    EXPECT_EQ(build.pin("C.A.in0")->inputConnections().size(), 1u);
    EXPECT_EQ(build.at("C.A.in0")->source(), build.at("C.R.real"));
    EXPECT_EQ(build.pin("C.A.result")->getFirstSpecialization(), "Real");
    EXPECT_NE(build.scene.connect("root.C.R.real", "root.C.A.in1"), nullptr);
}

TEST(Scene, RefusedConnectionsLeaveNothingBehind) {
    SceneBuilder build;
    build.add("Real", "R").add("String", "S").add("Add", "A").connect("R.real", "A.in0");
    SceneLog log;
    EXPECT_EQ(build.link("S.out", "A.in1"), nullptr);    // types
    EXPECT_EQ(build.link("R.real", "A.in0"), nullptr);   // full
    EXPECT_EQ(build.link("A.result", "A.in1"), nullptr); // own node
    EXPECT_EQ(build.link("A.in1", "R.in"), nullptr);     // direction
    EXPECT_EQ(build.scene.connect(nullptr, build.pin("A.in1"), false), nullptr);
    EXPECT_EQ(build.scene.connect(build.pin("R.real"), nullptr, false), nullptr);
    EXPECT_EQ(log.take(), Names{});
    EXPECT_EQ(build.connections(), (Names{"R.real>A.in0"}));
    for (const char* node : {"R", "S", "A"}) EXPECT_EQ(build.messages(node), Names{});
    EXPECT_TRUE(build.scene.getMessages().isEmpty());
}

namespace {

// A pin that says yes to everything.
class EasyPin : public Pin {
public:
    using Pin::Pin;
    bool allowsConnectionFrom(const GraphNodePin*) const override { return true; }
};

} // namespace

TEST(Scene, ALinkThatTheLogicLayerRefusesLeavesTheConnectionAndAnError) {
    SceneBuilder build;
    build.add("Real", "R").add("String", "S");
    auto* easy = new EasyPin(build.node("S"), 0u, GraphNodePin::inputFlag);
    auto* attribute = build.logic("S")->inputAttributeAt(0);
    easy->setId(4000000000u);
    EXPECT_TRUE(build.scene.addNodePin(build.node("S"), easy));
    easy->setWeftAttribute(attribute);
    GraphConnection* connection = build.scene.connect(build.pin("R.real"), easy, true);
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(build.messages("R"), (Names{"2 types don't match"}));
    EXPECT_EQ(attribute->source(), nullptr);
    EXPECT_EQ(build.scene.connections().size(), 1u);
    EXPECT_TRUE(build.scene.removeConnection(connection));
    easy->setId(4000000000u);
}

TEST(Scene, RemovingAConnectionFillsTheHoleWithTheLast) {
    SceneBuilder build;
    build.add("Real", "R");
    for (const char* name : {"A", "B", "C", "D"}) {
        build.add("Add", name).connect("R.real", std::string(name) + ".in0");
    }
    SceneLog log;
    EXPECT_TRUE(build.scene.removeConnection(build.scene.connections()[1]));
    EXPECT_EQ(log.take(), (Names{"-root:R.real>B.in0"})); // the attributes are apart already
    EXPECT_EQ(build.connections(), (Names{"R.real>A.in0", "R.real>D.in0", "R.real>C.in0"}));
    EXPECT_EQ(build.at("B.in0")->source(), nullptr);
    EXPECT_EQ(build.pin("R.real")->outputConnections().size(), 3u);
    EXPECT_TRUE(build.scene.removeConnection(build.scene.connections()[2]));
    EXPECT_EQ(build.connections(), (Names{"R.real>A.in0", "R.real>D.in0"}));
    EXPECT_FALSE(build.scene.removeConnection(nullptr));
    GraphConnection loose(build.pin("R.real"), build.pin("B.in0"));
    EXPECT_FALSE(build.scene.removeConnection(&loose));
}

TEST(Scene, ARemovedConnectionGivesTheConstantBack) {
    SceneBuilder build;
    build.add("Real", "R").add("Real", "S");
    build.pin("S.in")->setFloatValue(3.0f);
    build.pin("R.in")->setFloatValue(9.0f);
    build.connect("R.real", "S.in").add("Evaluator", "E").connect("S.real", "E.evaluate");
    build.scene.run();
    EXPECT_EQ(build.seen<float>("S.real"), 9.0f);
    build.scene.removeConnection(build.scene.connections()[0]);
    build.scene.run();
    EXPECT_EQ(build.seen<float>("S.real"), 3.0f);
}

// --- compounds ---------------------------------------------------------------------------------

TEST(Scene, AnInterfacePinComesWithItsCounterpart) {
    SceneBuilder build;
    build.add("Compound", "C").add("CompoundInterface", "C.I");
    GraphNodePin* inner = nullptr;
    GraphNodePin* outer = nullptr;
    EXPECT_TRUE(build.scene.addCompoundInterfacePin(GraphNodePin::inputFlag, build.node("C.I"),
                                                    inner, outer));
    ASSERT_TRUE(inner && outer);
    EXPECT_TRUE(inner->isOutput() && outer->isInput());
    EXPECT_EQ(inner->getFullName(), "root.C.I.input");
    EXPECT_EQ(outer->getFullName(), "root.C.input");
    EXPECT_EQ(inner->getParentGraphNodePinPtr(), outer);
    EXPECT_EQ(outer->getChildGraphNodePinPtr(), inner);
    EXPECT_EQ(outer->getChildInterfaceNodePtr(), build.node("C.I"));
    EXPECT_EQ(build.at("C.I.input")->source(), build.at("C.input"));
    EXPECT_TRUE(build.scene.addCompoundInterfacePin(GraphNodePin::outputFlag, build.node("C.I"),
                                                    inner, outer));
    ASSERT_TRUE(inner && outer);
    EXPECT_TRUE(inner->isInput() && outer->isOutput());
    EXPECT_EQ(inner->getName(), "output");
    EXPECT_EQ(outer->getName(), "output");
    EXPECT_EQ(build.at("C.output")->source(), build.at("C.I.output"));
    EXPECT_TRUE(build.scene.connections().empty()); // the wall is the logic layer's alone
}

TEST(Scene, FurtherInterfacePinsHaveFreeNames) {
    SceneBuilder build;
    build.add("Compound", "C").add("CompoundInterface", "C.I").add("CompoundInterface", "C.J");
    GraphNodePin* inner = nullptr;
    GraphNodePin* outer = nullptr;
    for (const char* node : {"C.I", "C.J", "C.I"}) {
        build.scene.addCompoundInterfacePin(GraphNodePin::inputFlag, build.node(node), inner,
                                            outer);
        EXPECT_EQ(inner->getName(), outer->getName());
    }
    EXPECT_EQ(SceneBuilder::namesOf(build.node("C")->getArrInputPin()),
              (Names{"input", "input1", "input2"}));
}

TEST(Scene, InterfacePinsNeedACompound) {
    SceneBuilder build;
    GraphNodePin* inner = nullptr;
    GraphNodePin* outer = nullptr;
    EXPECT_TRUE(
        build.scene.addCompoundInterfacePin(GraphNodePin::inputFlag, nullptr, inner, outer));
    EXPECT_TRUE(!inner && !outer);
    Node* alone = newNode("CompoundInterface");
    build.scene.addNodeToGraph(alone);
    EXPECT_TRUE(build.scene.addCompoundInterfacePin(GraphNodePin::inputFlag, alone, inner, outer));
    EXPECT_NE(inner, nullptr);
    EXPECT_EQ(outer, nullptr);
    EXPECT_EQ(build.scene.createCompoundPinForInterfacePin(nullptr), nullptr);
    EXPECT_EQ(build.scene.createCompoundPinForInterfacePin(inner), nullptr);
}

TEST(Scene, RemovingAnInterfacePinRemovesTheCompoundsAndWhatHangsOnIt) {
    SceneBuilder build;
    build.add("Real", "R").add("Compound", "C").add("CompoundInterface", "C.I").add("Add", "C.A");
    GraphNodePin* inner = nullptr;
    GraphNodePin* outer = nullptr;
    build.scene.addCompoundInterfacePin(GraphNodePin::inputFlag, build.node("C.I"), inner, outer);
    build.connect("R.real", "C.input").connect("C.I.input", "C.A.in0");
    build.node("C.I")->removeNodePin(inner);
    EXPECT_TRUE(build.scene.connections().empty());
    EXPECT_TRUE(build.node("C")->getArrInputPin().empty());
    EXPECT_TRUE(build.logic("C")->refInputAttributes().empty());
    EXPECT_TRUE(build.logic("C.I")->refOutputAttributes().empty());
    EXPECT_EQ(build.at("C.A.in0")->source(), nullptr);
}

TEST(Scene, RemovingACompoundRemovesWhatIsInIt) {
    SceneBuilder build;
    build.add("Real", "R").add("Compound", "C").add("CompoundInterface", "C.I").add("Add", "C.A");
    build.add("Compound", "C.D").add("Evaluator", "E");
    GraphNodePin* inner = nullptr;
    GraphNodePin* outer = nullptr;
    build.scene.addCompoundInterfacePin(GraphNodePin::inputFlag, build.node("C.I"), inner, outer);
    build.connect("R.real", "C.input").connect("C.I.input", "C.A.in0");
    EXPECT_TRUE(build.scene.removeNodeFromGraph(build.node("C")));
    EXPECT_EQ(build.scene.nodesById().size(), 2u);
    EXPECT_FALSE(build.pin("R.real")->isConnected());
    EXPECT_EQ(build.scene.getRootNode()->children().size(), 2u);
}

TEST(Scene, AWholeGraphCrossesAWall) {
    SceneBuilder build;
    build.add("Integer", "S").add("Compound", "C").add("CompoundInterface", "C.I");
    build.add("Add", "C.A").add("Integer", "C.K").add("Evaluator", "E");
    GraphNodePin* inner = nullptr;
    GraphNodePin* outer = nullptr;
    build.scene.addCompoundInterfacePin(GraphNodePin::inputFlag, build.node("C.I"), inner, outer);
    build.scene.addCompoundInterfacePin(GraphNodePin::outputFlag, build.node("C.I"), inner, outer);
    build.pin("S.in")->setIntValue(3);
    build.pin("C.K.in")->setIntValue(10);
    build.connect("S.integer", "C.input").connect("C.I.input", "C.A.in0");
    build.connect("C.K.integer", "C.A.in1").connect("C.A.result", "C.I.output");
    build.connect("C.output", "E.evaluate");
    build.scene.run();
    EXPECT_EQ(build.seen<int32_t>("E.evaluate"), 13);
    EXPECT_EQ(build.at("E.evaluate")->currentValue(), build.at("C.A.result")->value());
    EXPECT_EQ(build.pin("C.output")->getValueAsString(false), "13");
}

// --- upstream and downstream -------------------------------------------------------------------

TEST(Scene, EvaluablePinsAreWhatEvaluatorsAskFor) {
    SceneBuilder build;
    build.add("Real", "R").add("Evaluator", "E").connect("R.real", "E.evaluate");
    build.probe("For", "F", [](LogicProbe& logic) { logic.input<NumericAttribute>("start"); });
    ArrayOfPtr<GraphNodePin> pins;
    build.scene.getEvaluablePins(pins);
    EXPECT_EQ(SceneBuilder::fullNamesOf(pins), (Names{"E.evaluate", "R.real", "R.in"}));
}

TEST(Scene, UpstreamNodesComeOncePerOutputOnTheWay) {
    SceneBuilder build;
    build.add("Real", "R").add("Add", "A").add("Evaluator", "E");
    build.connect("R.real", "A.in0").connect("R.real", "A.in1").connect("A.result", "E.evaluate");
    build.node("E")->addDynamicInputPin();
    build.connect("A.result", "E.in");
    Array<Node*> nodes;
    build.scene.addUpstreamNodes(build.node("E"), nodes);
    EXPECT_EQ(SceneBuilder::namesOf(nodes), (Names{"A", "R", "A", "R"}));
    nodes.clear();
    build.scene.addUpstreamNodes(build.node("A"), nodes);
    EXPECT_EQ(SceneBuilder::namesOf(nodes), (Names{"R", "R"}));
    nodes.clear();
    build.scene.addUpstreamNodes(build.node("R"), nodes);
    EXPECT_TRUE(nodes.empty());
}

namespace {

// A logic node whose class name is "For".
class ForLogic : public LogicProbe {
public:
    ForLogic(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)
        : LogicProbe(manager, name, parent) {
        appendClass<"For">();
        index = output<NumericAttribute>("index");
        setAttributeAllowedSpecialization(index, "Integer");
    }
    NumericAttribute* index;
};

class ForNode : public Node {
public:
    void createWeftNode() override {
        auto& scene = *getScenePrivatePtr();
        adoptWeftNode(new ForLogic(&scene.networkManager, getName(), &scene.rootNode));
    }
};

} // namespace

TEST(Scene, DownstreamEvaluatorsAndUpstreamForsAreFound) {
    SceneBuilder build;
    auto* loop = new ForNode;
    loop->setType("For");
    build.enter(loop, "F");
    build.add("Add", "A").add("Evaluator", "E").add("Evaluator", "Other");
    build.connect("F.index", "A.in0").connect("A.result", "E.evaluate");
    Array<Node*> evaluators;
    Array<Node*> fors;
    build.scene.addDownstream_EvaluatorAndFor_Nodes(build.node("A"), evaluators, fors);
    EXPECT_EQ(SceneBuilder::namesOf(evaluators), (Names{"E"}));
    EXPECT_EQ(SceneBuilder::namesOf(fors), (Names{"F"}));
    build.scene.addDownstream_EvaluatorAndFor_Nodes(build.node("F"), evaluators, fors);
    EXPECT_EQ(SceneBuilder::namesOf(evaluators), (Names{"E", "E"}));
    EXPECT_EQ(SceneBuilder::namesOf(fors), (Names{"F"})); // itself is left out
}

// --- the scene as a whole ----------------------------------------------------------------------

TEST(Scene, ClearKeepsTheRootAlone) {
    SceneBuilder build;
    build.add("Real", "R").add("Compound", "C").add("Add", "C.A").add("Evaluator", "E");
    build.connect("R.real", "E.evaluate");
    GraphNodeBase* const root = build.scene.getRootNode();
    build.scene.refMessages().pushError("old");
    SceneLog log;
    build.scene.clear();
    EXPECT_EQ(log.take(), (Names{"-root:R.real>E.evaluate", "-root/C"}));
    EXPECT_EQ(build.scene.getRootNode(), root);
    EXPECT_TRUE(root->children().empty());
    EXPECT_TRUE(build.scene.nodesById().empty() && build.scene.pinsById().empty());
    EXPECT_TRUE(build.scene.connections().empty());
    EXPECT_TRUE(build.scene.getArrUpdateNodes().empty());
    EXPECT_TRUE(build.scene.getMessages().isEmpty());
    EXPECT_TRUE(build.scene.getScenePrivate()->rootNode.refNodes().empty());
    EXPECT_EQ(build.scene.networkManager().objects().size(), 1u); // the logic root
    EXPECT_FALSE(build.scene.networkManager().cacheDisabled());
    EXPECT_FALSE(build.scene.networkManager().isTearingDown());
    build.scene.clear();
    build.add("Real", "R").add("Evaluator", "E").connect("R.real", "E.evaluate");
    build.pin("R.in")->setFloatValue(2.0f);
    build.scene.run();
    EXPECT_EQ(build.seen<float>("E.evaluate"), 2.0f);
}

TEST(Scene, ClearRemovesConnectionsFromTheEnd) {
    SceneBuilder build;
    build.add("Real", "R");
    for (const char* name : {"A", "B", "C"}) {
        build.add("Add", name).connect("R.real", std::string(name) + ".in0");
    }
    SceneLog log;
    build.scene.clear();
    EXPECT_EQ(log.take(),
              (Names{"-root:R.real>C.in0", "-root:R.real>B.in0", "-root:R.real>A.in0"}));
}

TEST(Scene, ClearIsLinear) {
    const auto timeFor = [](int count) {
        SL_GraphScene scene;
        GraphNodePin* end = nullptr;
        for (int i = 0; i < count; ++i) {
            Node* node = newNode(i % 2 ? "Evaluator" : "Add");
            scene.addNodeToGraph(node);
            node->setNodeOwner(scene.getRootNode());
            if (i % 2) {
                node->setName("E" + std::to_string(i));
            } else {
                node->setName("A" + std::to_string(i));
                if (end) scene.connect(end, node->getArrInputPin()[0], false);
                end = node->getArrOutputPin()[0];
            }
        }
        return millisecondsOf([&] { scene.clear(); });
    };
    const double small = timeFor(10000);
    const double large = timeFor(100000);
    EXPECT_LT(large, 60.0 * small + 500.0); // a tenfold scene; quadratic would be a hundredfold
    EXPECT_LT(large, 30000.0);
}

TEST(Scene, PurgeForgetsValuesMessagesAndTimes) {
    SceneBuilder build;
    build.add("Real", "R").add("Evaluator", "E").connect("R.real", "E.evaluate");
    build.pin("R.in")->setFloatValue(4.0f);
    build.scene.run();
    build.logic("R")->pushError("old");
    build.scene.refMessages().pushError("old");
    EXPECT_GT(build.logic("R")->getLastUpdateTime(), 0.0);
    EXPECT_GT(build.at("R.real")->accumulatedTime(), 0.0);
    build.scene.purge();
    EXPECT_EQ(build.pin("R.real")->getFloatValue(), 0.0f);
    EXPECT_EQ(build.pin("R.in")->getFloatValue(), 4.0f); // inputs keep theirs
    EXPECT_EQ(build.messages("R"), Names{});
    EXPECT_TRUE(build.scene.getMessages().isEmpty());
    EXPECT_EQ(build.logic("R")->getLastUpdateTime(), 0.0);
    EXPECT_EQ(build.at("R.real")->accumulatedTime(), 0.0);
    EXPECT_EQ(build.at("R.in")->accumulatedTime(), 0.0);
    build.scene.run();
    EXPECT_EQ(build.seen<float>("E.evaluate"), 4.0f);
}

TEST(Scene, DisabledCachesKeepChainsUntilTheyAreRecomputed) {
    SceneBuilder build;
    build.add("Real", "R").add("Add", "A");
    build.scene.setCacheDisabled(true, false);
    build.connect("R.real", "A.in0");
    EXPECT_EQ(build.at("R.in")->dirtyChain().size(), 2u);
    build.scene.recomputeCaches(); // does nothing while they are disabled
    EXPECT_EQ(build.at("R.in")->dirtyChain().size(), 2u);
    build.scene.setCacheDisabled(false, false);
    EXPECT_EQ(build.at("R.in")->dirtyChain().size(), 2u);
    build.scene.setCacheDisabled(false, true);
    EXPECT_EQ(build.at("R.in")->dirtyChain().size(), 4u);
}

TEST(Scene, DisplayNodesAreShownByCategory) {
    SceneBuilder build;
    auto* display = build.probe("Probe", "P");
    auto* other = build.probe("Probe", "Q");
    display->setCategory("Display");
    other->setCategory("Display.Deep");
    build.scene.updateNodes_notCleaning("Display");
    EXPECT_EQ(display->logic().displays, 1);
    EXPECT_EQ(other->logic().displays, 0);
}

TEST(Scene, RanksNodesByTimeAndBySize) {
    SceneBuilder build;
    build.add("Real", "R").add("Compound", "C").add("Add", "C.A").add("String", "S");
    build.pin("S.in")->setStringValue(TM_String(10000, 'x'));
    Array<TM_String> byTime{"left over"};
    Array<float> times;
    Array<TM_String> bySize;
    Array<uint64_t> sizes{7};
    build.scene.computeTimeAndMemoryRank(byTime, times, bySize, sizes);
    // No node has run: the order is that of the walk, a node before its children.
    EXPECT_EQ(byTime, (Array<TM_String>{"root", "R", "C", "A", "S"}));
    EXPECT_EQ(times, (Array<float>{0.0f, 0.0f, 0.0f, 0.0f, 0.0f}));
    ASSERT_EQ(bySize.size(), 5u);
    EXPECT_EQ(bySize[0], "root");
    EXPECT_EQ(bySize[1], "C");
    EXPECT_EQ(bySize[4], "S");
    for (uint32_t i = 0; i < sizes.size(); ++i) {
        const auto* node = bySize[i] == "root" ? &build.scene.getScenePrivate()->rootNode
                           : bySize[i] == "A"  ? build.logic("C.A")
                                               : build.logic(bySize[i]);
        EXPECT_EQ(sizes[i], node->estimatedSize()) << bySize[i];
        EXPECT_LE(sizes[i > 0 ? i - 1 : 0], sizes[i]);
    }
    build.add("Evaluator", "E").connect("R.real", "E.evaluate");
    build.scene.run();
    build.scene.computeTimeAndMemoryRank(byTime, times, bySize, sizes);
    ASSERT_EQ(byTime.size(), 6u);
    for (uint32_t i = 1; i < times.size(); ++i) EXPECT_LE(times[i - 1], times[i]);
    for (uint32_t i = 0; i < times.size(); ++i) {
        if (byTime[i] != "R") continue;
        EXPECT_EQ(times[i], static_cast<float>(build.logic("R")->getLastUpdateTime()));
        EXPECT_GE(i, 4u);
    }
}

// --- names and values --------------------------------------------------------------------------

TEST(Scene, NamesOfAFileAreTranslated) {
    SL_GraphScene scene;
    EXPECT_EQ(scene.translatePinName("root.A.in0"), "root.A.in0");
    scene.setXmlToImportedName({{"root.A", "root.A01"}, {"root.C.B", "root.C.B_02"}});
    scene.refXmlToImportedName()["plain"] = "other";
    EXPECT_EQ(scene.getXmlToImportedName().size(), 3u);
    EXPECT_EQ(scene.translateNodeName("root.A"), "root.A01");
    EXPECT_EQ(scene.translateNodeName("root.B"), "root.B");
    EXPECT_EQ(scene.translatePinName("root.A.in0"), "root.A01.in0");
    EXPECT_EQ(scene.translatePinName("root.C.B.x"), "root.C.B_02.x");
    EXPECT_EQ(scene.translatePinName("root.A"), "root.A"); // here "A" is the pin
    EXPECT_EQ(scene.translatePinName("plain"), "other");
    EXPECT_EQ(scene.translatePinName(""), "");
}

TEST(Scene, ValuesAreReachedByPinName) {
    SceneBuilder build;
    build.add("Real", "R").add("Integer", "I").add("String", "S").add("Vector3", "V");
    build.scene.setPinFloatValue("root.R.in", 1.5f);
    build.scene.setPinIntValue("root.I.in", 7);
    build.scene.setPinStringValue("root.S.in", "text");
    build.scene.setPinVector3Value("root.V.in", {1.0f, 2.0f, 3.0f});
    EXPECT_EQ(build.scene.getPinFloatValue("root.R.in"), 1.5f);
    EXPECT_EQ(build.scene.getPinIntValue("root.I.in"), 7);
    EXPECT_EQ(build.scene.getPinStringValue("root.S.in"), "text");
    EXPECT_EQ(build.scene.getPinVector3Value("root.V.in"), Vector3<float>(1.0f, 2.0f, 3.0f));
    for (const char* unknown : {"root.R.nothing", "R.in", "root", "", "root.X.in", "root..in"}) {
        build.scene.setPinFloatValue(unknown, 1.0f);
        build.scene.setPinIntValue(unknown, 1);
        build.scene.setPinStringValue(unknown, "x");
        build.scene.setPinVector3Value(unknown, Vector3<float>(1.0f));
        EXPECT_EQ(build.scene.getPinFloatValue(unknown), 0.0f);
        EXPECT_EQ(build.scene.getPinIntValue(unknown), 0);
        EXPECT_EQ(build.scene.getPinStringValue(unknown), "");
        EXPECT_EQ(build.scene.getPinVector3Value(unknown), Vector3<float>(0.0f));
    }
}

TEST(Scene, KeepsTheTimeAndTheLayoutItIsGiven) {
    SL_GraphScene scene;
    scene.setLastExecutionTime(2.0);
    scene.refLastExecutionTime() += 1.0;
    EXPECT_EQ(scene.getLastExecutionTime(), 3.0);
    GraphLayout layout;
    layout.insertNodeVisible("root.A", false);
    scene.setXmlImportedLayout(layout);
    scene.refXmlImportedLayout().insertNodeVisible("root.B", true);
    EXPECT_EQ(scene.getXmlImportedLayout().getVisibleByNodeName("root.A"), false);
    EXPECT_EQ(scene.getXmlImportedLayout().getVisibleByNodeName("root.B"), true);
}

TEST(Scene, ANoteKeepsItsPlaceWhenLayoutsAreAppliedToIt) {
    SL_GraphScene scene;
    GraphLayout shown;
    SceneBuilder::manager().setLayout(&scene, &shown);
    GraphLayout read;
    tidemark::graph::NoteDesc note;
    note.parentNode = "root";
    note.content = "look here";
    note.position = Tuple2<float, float>{3.0f, 4.0f};
    read.addNote(note);
    SceneBuilder::manager().addReadLayout(&scene, read);
    SceneBuilder::manager().applyReadLayouts();
    ASSERT_EQ(shown.notes().size(), 1u);
    EXPECT_EQ(shown.notes()[0].content, "look here");
    EXPECT_EQ(shown.notes()[0].position, (Tuple2<float, float>{3.0f, 4.0f}));
}

TEST(Scene, PlainPinsAreNoTrap) {
    SceneBuilder build;
    build.add("Real", "R").add("Add", "A");
    GraphNodePin* in = build.scene.createNewPin(build.node("A"), GraphNodePin::inputFlag, "plain");
    GraphNodePin* out =
        build.scene.createNewPin(build.node("R"), GraphNodePin::outputFlag, "plain");
    EXPECT_EQ(build.node("A")->getInputPinPtrByName("plain"), nullptr);
    EXPECT_EQ(build.node("R")->getOutputPinPtrByName("plain"), nullptr);
    EXPECT_EQ(build.scene.getPinFloatValue("root.A.plain"), 0.0f);
    EXPECT_NE(build.scene.connect(out, in, false), nullptr);
    EXPECT_EQ(build.link("R.real", "A.in0") != nullptr, true);
    EXPECT_TRUE(build.scene.removeConnection(build.scene.connections()[0]));
    EXPECT_TRUE(build.node("A")->removeNodePin(in));
    build.scene.run();
    EXPECT_TRUE(build.scene.removeNodeFromGraph(build.node("A")));
}

// SPDX-License-Identifier: Apache-2.0
// Tests of graph nodes: life, pins, names, messages and internal connections.
#include "graph/graph_node.h"

#include <chrono>
#include <thread>

#include "core/bit_array.h"
#include "core/evaluate_attribute.h"
#include "graph/scene_manager.h"
#include "support/recording_host.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::LogicProbe;
using support::Names;
using support::ProbeNode;
using support::RecordingHost;
using support::SceneBuilder;
using tidemark::graph::GraphNodePin;
using tidemark::graph::GraphScene;
using weft::NumericAttribute;
using weft::PassThroughAttribute;

namespace {

void threeInputsTwoOutputs(LogicProbe& logic) {
    logic.input<NumericAttribute>("a");
    logic.output<NumericAttribute>("x");
    logic.input<NumericAttribute>("b");
    logic.output<NumericAttribute>("y");
    logic.input<NumericAttribute>("c");
}

void dynamic(LogicProbe& logic) { logic.setAllowDynamicAttributes(true); }

} // namespace

// --- life --------------------------------------------------------------------------------------

TEST(GraphNode, HasNoLogicNodeAndNoPinsUntilItIsAdded) {
    ProbeNode node(threeInputsTwoOutputs);
    node.setName("P");
    EXPECT_EQ(node.getCoreNode(), nullptr);
    EXPECT_TRUE(node.getArrInputPin().empty());
    EXPECT_FALSE(node.hasInputPins());
    EXPECT_FALSE(node.isUpdating());
    EXPECT_FALSE(node.dynamicPinsAllowed());
    EXPECT_EQ(node.getNumberOfThreads(), 0);
    EXPECT_EQ(node.getDescription(), "");
    EXPECT_EQ(node.getScene(), nullptr);
    EXPECT_EQ(node.addDynamicInputPin(), nullptr);
    node.setNumberOfThreads(3);
    node.update();
    node.preUpdate();
    node.postUpdate();
    node.update_notCleaning();
}

TEST(GraphNode, SharesIdAndNameWithItsLogicNode) {
    SceneBuilder build;
    build.add("Add", "A");
    const Node* node = build.node("A");
    EXPECT_EQ(node->getId(), static_cast<unsigned>(node->getCoreNode()->id()));
    EXPECT_EQ(node->getName(), node->getCoreNode()->name());
    EXPECT_EQ(node->getCoreNode()->parent(), &build.scene.getScenePrivate()->rootNode);
    EXPECT_EQ(build.scene.getNodePtrById(node->getId()), node);
    EXPECT_EQ(node->getScenePrivatePtr(), build.scene.getScenePrivate());
    EXPECT_EQ(build.scene.nodeOf(node->getCoreNode()), node);
    EXPECT_EQ(node->getDescription(), node->getCoreNode()->getDescription());
    EXPECT_EQ(node->getInfo(), "");
}

TEST(GraphNode, PinsAreTheAttributesInTheirOrder) {
    SceneBuilder build;
    const auto* node = build.probe("Probe", "P", threeInputsTwoOutputs);
    EXPECT_EQ(SceneBuilder::namesOf(node->getArrInputPin()), (Names{"a", "b", "c"}));
    EXPECT_EQ(SceneBuilder::namesOf(node->getArrOutputPin()), (Names{"x", "y"}));
    EXPECT_EQ(SceneBuilder::namesOf(node->pins()), (Names{"a", "b", "c", "x", "y"}));
    EXPECT_TRUE(node->hasInputPins() && node->hasOutputPins());
    EXPECT_EQ(node->getInputPinPtrByName("b"), node->getArrInputPin()[1]);
    EXPECT_EQ(node->getInputPinPtrByName("x"), nullptr);
    EXPECT_EQ(node->getInputPinPtrByName("B"), nullptr);
    EXPECT_EQ(node->getOutputPinPtrByName("y"), node->getArrOutputPin()[1]);
    EXPECT_EQ(node->getOutputPinPtrByName("a"), nullptr);
}

TEST(GraphNode, AnInputAndAnOutputMayShareAName) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P", threeInputsTwoOutputs);
    build.pin("P.x")->setName("a");
    EXPECT_EQ(node->getInputPinPtrByName("a"), node->getArrInputPin()[0]);
    EXPECT_EQ(node->getOutputPinPtrByName("a"), node->getArrOutputPin()[0]);
}

TEST(GraphNode, WithoutAttributesHasEmptyListsAndNothingToEdit) {
    SceneBuilder build;
    const auto* node = build.probe("Probe", "P");
    EXPECT_TRUE(node->getArrInputPin().empty() && node->getArrOutputPin().empty());
    EXPECT_FALSE(node->hasInputPins() || node->hasOutputPins());
    EXPECT_FALSE(node->isEditable());
    build.add("Real", "R");
    EXPECT_TRUE(build.node("R")->isEditable());
}

TEST(GraphNode, AddingTwiceChangesNothing) {
    SceneBuilder build;
    auto* node = build.probe("For", "F", threeInputsTwoOutputs);
    const weft::Node* logic = node->getCoreNode();
    EXPECT_TRUE(build.scene.addNodeToGraph(node));
    EXPECT_EQ(node->getCoreNode(), logic);
    EXPECT_EQ(node->pins().size(), 5u);
    EXPECT_EQ(build.scene.getArrUpdateNodes().size(), 1u);
}

TEST(GraphNode, RemovalTearsDownLogicNodeAndPins) {
    SceneBuilder build;
    bool destroyed = false;
    auto* node = build.probe("Probe", "P", threeInputsTwoOutputs);
    node->logic().destroyed = &destroyed;
    build.add("Add", "A").connect("P.x", "A.in0");
    const unsigned id = node->getId();
    const uint32_t pins = build.scene.pinsById().size();
    EXPECT_TRUE(build.scene.removeNodeFromGraph(node));
    EXPECT_TRUE(destroyed);
    EXPECT_EQ(build.scene.getNodePtrById(id), nullptr);
    EXPECT_EQ(build.scene.pinsById().size(), pins - 5);
    EXPECT_TRUE(build.scene.connections().empty());
    EXPECT_EQ(build.at("A.in0")->source(), nullptr);
    EXPECT_EQ(build.scene.getScenePrivate()->rootNode.findNode("P"), nullptr);
    EXPECT_EQ(build.scene.getNodePtrByFullName("root.P"), nullptr);
}

TEST(GraphNode, ACopyIsATemplateWithoutAReference) {
    SceneBuilder build;
    bool destroyed = false;
    auto* node = build.probe("Probe", "P", threeInputsTwoOutputs);
    node->logic().destroyed = &destroyed;
    const int references = node->getCoreNode()->refCount();
    {
        const ProbeNode copy(*node);
        EXPECT_EQ(copy.getCoreNode(), node->getCoreNode());
        EXPECT_EQ(copy.getArrInputPin(), node->getArrInputPin());
        EXPECT_EQ(copy.getName(), "P");
        EXPECT_EQ(node->getCoreNode()->refCount(), references);
    }
    EXPECT_FALSE(destroyed);
    EXPECT_EQ(node->getCoreNode()->refCount(), references);
    EXPECT_EQ(build.pin("P.a"), node->getArrInputPin()[0]);
}

TEST(GraphNode, RemoveCallbackComesForCompoundsOnlyAndWithTheOwner) {
    static Names log;
    log.clear();
    GraphScene::removeNodeCallback_ = [](GraphScene* scene, GraphNodeBase* owner,
                                         GraphNodeBase* node) {
        // The logic node and the pins are gone by now.
        const bool isBare = !dynamic_cast<Node*>(node)->getCoreNode() && node->pins().empty();
        log.push_back(owner->getName() + "/" + node->getName() + (scene && isBare ? "" : "!"));
    };
    SceneBuilder build;
    build.add("Compound", "C").add("Add", "C.A").add("Compound", "C.D").add("Real", "R");
    build.scene.removeNodeFromGraph(build.node("R"));
    EXPECT_EQ(log, Names{});
    build.scene.removeNodeFromGraph(build.node("C"));
    GraphScene::removeNodeCallback_ = nullptr;
    EXPECT_EQ(log, (Names{"C/D", "root/C"}));
    EXPECT_TRUE(build.scene.nodesById().empty());
}

// --- names and the tree ------------------------------------------------------------------------

TEST(GraphNode, TakesTheNameThatTheLogicLayerSettlesOn) {
    SceneBuilder build;
    build.add("Add", "A").add("Add", "B");
    build.node("B")->setName("A");
    const Node* second = build.node("A01");
    EXPECT_EQ(second->getCoreNode()->name(), "A01");
    auto* stubborn = build.probe("Probe", "P");
    stubborn->logic().onlyName = "Fixed";
    stubborn->setName("Other");
    EXPECT_EQ(stubborn->getName(), "Fixed");
    EXPECT_EQ(stubborn->getCoreNode()->name(), "Fixed");
    EXPECT_EQ(build.scene.getNodePtrByFullName("root.Fixed"), stubborn);
}

TEST(GraphNode, TheHostIsToldOfEveryName) {
    static Names log;
    log.clear();
    SceneBuilder build;
    SceneManager::node_renamedCallback_ = [](const TM_String& name) { log.push_back(name); };
    ProbeNode loose;
    loose.setName("nobody hears this");
    build.add("Add", "A"); // once when its logic node comes, once by the test
    EXPECT_EQ(log, (Names{"Add", "A"}));
    build.node("A")->setName("B");
    SceneManager::node_renamedCallback_ = nullptr;
    EXPECT_EQ(log, (Names{"Add", "A", "B"}));
    build.node("B")->setName("C");
    EXPECT_EQ(log.size(), 3u);
}

TEST(GraphNode, AnOwnerMovesTheLogicNodeToo) {
    SceneBuilder build;
    build.add("Compound", "C").add("Add", "A");
    Node* node = build.node("A");
    node->setNodeOwner(build.node("C"));
    EXPECT_EQ(node->getFullName(), "root.C.A");
    EXPECT_EQ(node->getCoreNode()->parent(), build.logic("C"));
    EXPECT_EQ(node->getCoreNode()->fullName(), "root.C.A");
    EXPECT_EQ(build.scene.getScenePrivate()->rootNode.findNode("A"), nullptr);
    node->setNodeOwner(nullptr);
    EXPECT_EQ(node->getCoreNode()->parent(), build.logic("C"));
    node->setNodeOwner(build.scene.getRootNode());
    EXPECT_EQ(node->getCoreNode()->fullName(), "root.A");
}

TEST(GraphNode, MovingDoesNotChangeNames) {
    SceneBuilder build;
    build.add("Compound", "C").add("Add", "C.A").add("Add", "A");
    build.node("A")->setNodeOwner(build.node("C"));
    EXPECT_EQ(build.node("C")->children().size(), 2u);
    for (const auto* child : build.node("C")->children()) EXPECT_EQ(child->getName(), "A");
}

TEST(GraphNode, KindsAreTheTypesBusiness) {
    SceneBuilder build;
    build.add("Compound", "C")
        .add("CompoundInterface", "C.I")
        .add("Evaluator", "E")
        .add("Add", "A");
    EXPECT_TRUE(build.node("C")->isCompound());
    EXPECT_TRUE(build.node("C.I")->isInterface());
    EXPECT_TRUE(build.node("E")->isEvaluator());
    const Node* node = build.node("A");
    EXPECT_FALSE(node->isCompound() || node->isInterface() || node->isEvaluator());
    EXPECT_FALSE(node->isIterator() || node->isPassThrough() || node->hasPostUpdate());
    EXPECT_TRUE(build.scene.getRootNode()->isCompound());
}

// --- updates -----------------------------------------------------------------------------------

TEST(GraphNode, UpdateComputesEveryOutputInOrder) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P", threeInputsTwoOutputs);
    Names log;
    node->logic().onUpdate = [&](weft::Attribute* attribute) { log.push_back(attribute->name()); };
    node->update();
    EXPECT_EQ(log, (Names{"x", "y"}));
    EXPECT_GT(node->getCoreNode()->getLastUpdateTime(), 0.0);
}

TEST(GraphNode, UpdateTakesNoTimeWhileNobodyMonitors) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P", threeInputsTwoOutputs);
    build.scene.networkManager().setMonitoring(false);
    node->update();
    EXPECT_EQ(node->logic().updates, 2);
    EXPECT_EQ(node->getCoreNode()->getLastUpdateTime(), 0.0);
}

TEST(GraphNode, UpdateStartsItsTimerAnew) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P", threeInputsTwoOutputs);
    node->logic().onUpdate = [](weft::Attribute*) {
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    };
    node->update();
    const double slow = node->getCoreNode()->getLastUpdateTime();
    node->logic().onUpdate = {};
    node->update();
    EXPECT_LT(node->getCoreNode()->getLastUpdateTime(), slow);
}

TEST(GraphNode, EntryPointsReachTheLogicNode) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P");
    node->preUpdate();
    node->postUpdate();
    node->postUpdate();
    node->update_notCleaning();
    EXPECT_EQ(node->logic().preUpdates, 1);
    EXPECT_EQ(node->logic().postUpdates, 2);
    EXPECT_EQ(node->logic().displays, 1);
    EXPECT_EQ(node->logic().updates, 0);
}

TEST(GraphNode, IsUpdatingWhileItsLogicNodeRuns) {
    SceneBuilder build;
    build.add("Compound", "C");
    auto* node = build.probe("Probe", "C.P", threeInputsTwoOutputs);
    bool node_ = false;
    bool compound = false;
    node->logic().onUpdate = [&](weft::Attribute*) {
        node_ = node->isUpdating();
        compound = build.node("C")->isUpdating();
    };
    node->update();
    EXPECT_TRUE(node_ && compound);
    EXPECT_FALSE(node->isUpdating() || build.node("C")->isUpdating());
}

// --- dynamic pins ------------------------------------------------------------------------------

TEST(GraphNode, DynamicPinsHaveFreeNamesAndCountAsDynamic) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P", dynamic);
    EXPECT_TRUE(node->dynamicPinsAllowed());
    for (int i = 0; i < 3; ++i) node->addDynamicInputPin();
    for (int i = 0; i < 2; ++i) node->addDynamicOutputPin();
    EXPECT_EQ(SceneBuilder::namesOf(node->getArrInputPin()), (Names{"in", "in1", "in2"}));
    EXPECT_EQ(SceneBuilder::namesOf(node->getArrOutputPin()), (Names{"out", "out1"}));
    const Pin* pin = build.pin("P.in1");
    EXPECT_TRUE(pin->isDynamic() && pin->isInput() && pin->isPurePassThrough());
    EXPECT_EQ(pin->getWeftAttribute()->name(), "in1");
    EXPECT_EQ(build.scene.getPinPtrById(pin->getId()), pin);
}

TEST(GraphNode, ANameThatWasFreedIsTakenAgain) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P", dynamic);
    node->addDynamicInputPin();
    node->addDynamicInputPin();
    build.pin("P.in")->setName("first");
    EXPECT_EQ(node->addDynamicInputPin()->getName(), "in");
    node->removeNodePin(build.pin("P.in1"));
    EXPECT_EQ(node->addDynamicInputPin()->getName(), "in1");
}

TEST(GraphNode, AThousandDynamicPins) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P", dynamic);
    for (int i = 0; i < 1000; ++i) node->addDynamicInputPin();
    EXPECT_EQ(node->getArrInputPin().back()->getName(), "in999");
    EXPECT_EQ(node->getArrInputPin().back()->getWeftAttribute()->name(), "in999");
    EXPECT_EQ(node->getInputPinPtrByName("in500"), node->getArrInputPin()[500]);
}

TEST(GraphNode, RemovingADynamicPinRemovesItsAttribute) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P", [](LogicProbe& logic) {
        dynamic(logic);
        threeInputsTwoOutputs(logic);
    });
    GraphNodePin* pin = node->addDynamicInputPin();
    EXPECT_TRUE(node->removeNodePin(pin));
    EXPECT_EQ(node->getCoreNode()->findAttribute("in"), nullptr);
    EXPECT_EQ(node->getArrInputPin().size(), 3u);
    // A declared attribute stays, only its pin goes.
    EXPECT_TRUE(node->removeNodePin(build.pin("P.a")));
    EXPECT_NE(node->getCoreNode()->findAttribute("a"), nullptr);
    EXPECT_EQ(SceneBuilder::namesOf(node->getArrInputPin()), (Names{"b", "c"}));
    EXPECT_TRUE(node->removeNodePin(nullptr));
}

TEST(GraphNode, RemovingAPinOfAnotherNodeLeavesItAlone) {
    SceneBuilder build;
    build.add("Add", "A").add("Add", "B");
    EXPECT_TRUE(build.node("A")->removeNodePin(build.pin("B.in0")));
    EXPECT_EQ(build.node("B")->getArrInputPin().size(), 2u);
}

TEST(GraphNode, RemovingAPinRemovesItsConnections) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P", dynamic);
    node->addDynamicInputPin();
    build.add("Real", "R").connect("R.real", "P.in");
    node->removeNodePin(build.pin("P.in"));
    EXPECT_TRUE(build.scene.connections().empty());
    EXPECT_FALSE(build.pin("R.real")->isConnected());
}

TEST(GraphNode, AnInterfaceTakesNamesThatAreFreeOnItsCompound) {
    SceneBuilder build;
    build.add("Compound", "C").add("CompoundInterface", "C.I");
    GraphNodePin* first = build.node("C.I")->addDynamicInputPin();
    // The compound has no pin named "in" yet, so the logic layer keeps the two apart.
    GraphNodePin* second = build.node("C.I")->addDynamicInputPin();
    EXPECT_EQ(first->getName(), "in");
    EXPECT_EQ(second->getName(), "in01");
    build.node("C")->addDynamicOutputPin()->setName("in");
    EXPECT_EQ(build.node("C.I")->addDynamicInputPin()->getName(), "in1");
}

TEST(GraphNode, EvaluatorsMakeEvaluatePins) {
    SceneBuilder build;
    build.add("Evaluator", "E");
    build.node("E")->addDynamicInputPin();
    EXPECT_EQ(build.pin("E.in")->getAttributeClassName(), "EvaluateAttribute");
    EXPECT_TRUE(build.pin("E.in")->isDynamic());
    EXPECT_FALSE(build.pin("E.evaluate")->isDynamic());
}

TEST(GraphNode, ReorderingFollowsTheNamesInAllLists) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P", threeInputsTwoOutputs);
    node->reorderInputPins({"c", "x", "unknown", "a"});
    node->reorderOutputPins({"y"});
    EXPECT_EQ(SceneBuilder::namesOf(node->getArrInputPin()), (Names{"c", "a", "b"}));
    EXPECT_EQ(SceneBuilder::namesOf(node->getArrOutputPin()), (Names{"y", "x"}));
    EXPECT_EQ(SceneBuilder::namesOf(node->pins()), (Names{"c", "a", "b", "y", "x"}));
}

TEST(GraphNode, KeepsThePinOrderOfAFile) {
    SceneBuilder build;
    build.add("Add", "A");
    Node* node = build.node("A");
    node->setInputPinsOrder({"a"});
    node->refInputPinsOrder().append("b");
    node->setOutputPinsOrder({"x"});
    node->refOutputPinsOrder().append("y");
    EXPECT_EQ(node->getInputPinsOrder(), (Array<TM_String>{"a", "b"}));
    EXPECT_EQ(node->getOutputPinsOrder(), (Array<TM_String>{"x", "y"}));
}

TEST(GraphNode, PinOfAnAttributeIsFoundOnItsSide) {
    SceneBuilder build;
    build.add("Add", "A").add("Add", "B");
    EXPECT_EQ(build.node("A")->getPinForAttribute(build.at("A.in1")), build.pin("A.in1"));
    EXPECT_EQ(build.node("A")->getPinForAttribute(build.at("A.result")), build.pin("A.result"));
    EXPECT_EQ(build.node("A")->getPinForAttribute(build.at("B.in1")), nullptr);
    EXPECT_EQ(build.node("A")->getPinForAttribute(nullptr), nullptr);
}

// --- internal connections ----------------------------------------------------------------------

namespace {

Names textsOf(const Array<tidemark::graph::GraphConnection>& connections) {
    Names texts;
    for (const auto& connection : connections) {
        texts.push_back(connection.getSourcePin()->getName() + ">" +
                        connection.getTargetPin()->getName());
    }
    return texts;
}

} // namespace

TEST(GraphNode, InternalConnectionsAreListedFromTheInput) {
    SceneBuilder build;
    build.add("Add", "A").add("GraphCancel", "C");
    Array<tidemark::graph::GraphConnection> none;
    build.node("A")->getInternalConnections(none);
    build.node("A")->getInternalConnectionsForPainting(none);
    EXPECT_TRUE(none.empty());
    build.pin("A.in1")->addInternalConnection(build.pin("A.result"));
    Array<tidemark::graph::GraphConnection> found;
    build.node("A")->getInternalConnections(found);
    build.node("A")->getInternalConnectionsForPainting(found);
    EXPECT_EQ(textsOf(found), (Names{"in1>result", "in1>result"}));
    // A connection of the node's own is not in the lists, but painted.
    build.node("C")->getInternalConnections(none);
    EXPECT_TRUE(none.empty());
    build.node("C")->getInternalConnectionsForPainting(none);
    EXPECT_EQ(textsOf(none), (Names{"in>through"}));
}

TEST(GraphNode, PaintedConnectionsStayInsideTheNode) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P", dynamic);
    node->addDynamicInputPin();
    build.add("Add", "A");
    build.scene.networkManager().connect(build.at("P.in"), build.at("A.in0"), nullptr);
    Array<tidemark::graph::GraphConnection> found;
    node->getInternalConnectionsForPainting(found);
    EXPECT_TRUE(found.empty());
}

TEST(GraphNode, NamesThatWereReadBecomeInternalConnections) {
    SceneBuilder build;
    build.add("Add", "A");
    build.pin("A.in0")->addInternalConnection(build.pin("A.result"));
    build.pin("A.in1")->setInternalConnectionsFromImport({"result"});
    build.node("A")->applyInternalConnections();
    EXPECT_FALSE(build.pin("A.in0")->hasInternalConnections());
    EXPECT_TRUE(build.pin("A.in1")->hasInternalConnections());
    EXPECT_EQ(build.at("A.result")->source(), build.at("A.in1"));
    EXPECT_TRUE(build.messages("A").empty());
}

TEST(GraphNode, AMissingOutputIsReportedAndSkipped) {
    RecordingHost host;
    SceneBuilder build;
    build.add("Add", "A");
    build.pin("A.in0")->setInternalConnectionsFromImport({"nowhere", "in1", "result"});
    build.node("A")->applyInternalConnections();
    EXPECT_EQ(host.posts, (Names{"2261|A.nowhere", "2261|A.in1"}));
    EXPECT_TRUE(build.pin("A.in0")->hasInternalConnections());
}

TEST(GraphNode, AnOutputThatIsNotAllowedIsAnErrorAndConnectedAllTheSame) {
    SceneBuilder build;
    build.add("Real", "R");
    build.pin("R.in")->setInternalConnectionsFromImport({"real"});
    build.node("R")->applyInternalConnections();
    EXPECT_EQ(build.messages("R"), (Names{"2 Internal connection in->real not allowed"}));
    EXPECT_TRUE(build.pin("R.in")->hasInternalConnections());
    EXPECT_TRUE(build.pin("R.in")->allowsInternalConnections());
    EXPECT_EQ(build.at("R.real")->source(), build.at("R.in"));
    build.pin("R.in")->setFloatValue(4.0f);
    EXPECT_EQ(build.seen<float>("R.real"), 4.0f);
}

TEST(GraphNode, TwoInputsCannotShareAnOutput) {
    SceneBuilder build;
    build.add("Add", "A");
    build.pin("A.in0")->setInternalConnectionsFromImport({"result"});
    build.pin("A.in1")->setInternalConnectionsFromImport({"result"});
    build.node("A")->applyInternalConnections();
    EXPECT_EQ(build.messages("A"),
              (Names{"2 Trying to connect attribute 'in1' to 'result' which is already connected "
                     "to 'in0'"}));
    EXPECT_EQ(build.at("A.result")->source(), build.at("A.in0"));
}

// --- messages and threads ----------------------------------------------------------------------

TEST(GraphNode, MessagesAreThoseOfTheLogicNode) {
    SceneBuilder build;
    build.add("Add", "A");
    Node* node = build.node("A");
    EXPECT_FALSE(node->hasMessages() || node->hasErrors() || node->hasWarnings());
    node->getCoreNode()->pushWarning("careful", "very");
    EXPECT_TRUE(node->hasMessages() && node->hasWarnings());
    EXPECT_FALSE(node->hasErrors());
    node->getCoreNode()->pushCriticalNoException("over");
    EXPECT_TRUE(node->hasErrors());
    EXPECT_EQ(&node->getMessages(), &node->getCoreNode()->getMessages());
    EXPECT_EQ(&node->refMessages(), &node->getCoreNode()->refMessages());
    Array<tidemark::graph::Message> messages;
    Array<TM_String> texts;
    node->getMessages(messages);
    node->getMessagesAsStrings(texts);
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].text, "careful");
    EXPECT_EQ(texts, (Array<TM_String>{"[warning] careful - very", "[critical] over"}));
    node->clearMessages();
    EXPECT_FALSE(node->hasMessages());
    EXPECT_TRUE(node->getCoreNode()->getMessages().isEmpty());
}

TEST(GraphNode, AllOnesThreadsAreStoredAsInherit) {
    SceneBuilder build;
    build.add("Add", "A");
    Node* node = build.node("A");
    node->setNumberOfThreads(4);
    EXPECT_EQ(node->getNumberOfThreads(), 4);
    EXPECT_EQ(node->getCoreNode()->getStoredNumberOfThreads(), 4);
    node->setNumberOfThreads(~0u);
    EXPECT_EQ(node->getNumberOfThreads(), 0);
}

TEST(GraphNode, TheRootIsTheLogicRootForLife) {
    SceneBuilder build;
    auto* root = dynamic_cast<Node*>(build.scene.getRootNode());
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->getCoreNode(), &build.scene.getScenePrivate()->rootNode);
    EXPECT_EQ(root->getId(), static_cast<unsigned>(root->getCoreNode()->id()));
    EXPECT_EQ(root->getFullName(), "root");
    EXPECT_TRUE(root->isRoot());
    EXPECT_EQ(build.scene.getNodePtrById(root->getId()), nullptr);
    EXPECT_FALSE(build.scene.removeNodeFromGraph(root));
    EXPECT_EQ(root->getCoreNode()->refCount(), 1);
}

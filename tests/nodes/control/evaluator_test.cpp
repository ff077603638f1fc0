// SPDX-License-Identifier: Apache-2.0
// Evaluators: the three phases of a run, what they recompute, and their pins.
#include "nodes/control/evaluator.h"

#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <functional>
#include <new>
#include <stdexcept>

#include "control_scene.h"
#include "core/exceptions.h"
#include "iterators.h"
#include "support/net.h"

namespace control_tests {
namespace {

using tidemark::sluice::graph::Node_Evaluator;
using tidemark::sluice::graph::PropertyTree;
using weft::Attribute;
using weft::Evaluator;

/// Adds one to a counter per update, and then does what the test says.
class Acting : public weft::Node {
public:
    Acting(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)
        : Node(manager, name, parent) {
        appendClass<"Acting">();
        in = addInput<weft::PassThroughAttribute>("in");
        out = addOutput<weft::PassThroughAttribute>("out");
        setAttributeAffect(in, out);
    }
    void update(weft::Attribute*) override {
        ++updates;
        in->pull();
        if (act) act(*this);
    }

    Attribute* in;
    Attribute* out;
    int updates = 0;
    std::function<void(Acting&)> act;
};

class Node_Acting : public GraphNodeOf<Acting> {
public:
    Node_Acting() : GraphNodeOf("Acting") {}
    bool hasPostUpdate() const override { return true; }
    void preUpdate() override { ++preUpdates; }
    void postUpdate() override { ++postUpdates; }
    Acting& logic() const { return *static_cast<Acting*>(getCoreNode()); }

    int preUpdates = 0;
    int postUpdates = 0;
};

class EvaluatorScene : public ControlScene {
public:
    Node_Acting& addActing(const TM_String& name, GraphNodeBase* owner = nullptr) {
        auto* node = new Node_Acting;
        enter(node, name, owner);
        return *node;
    }
    Evaluator& evaluator(const TM_String& path) {
        return *static_cast<Evaluator*>(node(path)->getCoreNode());
    }
    GraphNodePin* addPin(const TM_String& path, const TM_String& name) {
        GraphNodePin* made = node(path)->addDynamicInputPin();
        made->setName(name);
        return made;
    }
    std::string inputs(const TM_String& path) {
        std::string text;
        for (const Pin* input : node(path)->getArrInputPin()) {
            text += (text.empty() ? "" : " ") + input->getName();
            EXPECT_EQ(input->getAttributeClassName(), "EvaluateAttribute");
        }
        return text;
    }
};

PropertyTree treeOfInputs(std::initializer_list<const char*> names) {
    PropertyTree tree;
    for (const char* name : names) {
        PropertyTree input;
        input.put("name", name);
        tree.put_child("inputs", tree.get_child("inputs", PropertyTree()))
            .add_child("input", input);
    }
    return tree;
}

TEST(Evaluator, IsDescribed) {
    EvaluatorScene net;
    Node* node = net.add("Evaluator", "E");
    EXPECT_TRUE(node->isEvaluator());
    EXPECT_TRUE(node->dynamicPinsAllowed());
    EXPECT_TRUE(node->hasPostUpdate());
    EXPECT_EQ(node->getCategory(), "Execution");
    EXPECT_EQ(
        node->getDescription(),
        "The Evaluator node is the terminal node that determines which nodes are actually "
        "evaluated at graph execution.\nAt graph execution, every Evaluator node pin computes "
        "the chain of nodes connected to it and executes them in the proper order.\nThis node "
        "accepts the creation of dynamic input/output pins with used-defined names.\nTake note "
        "that Evaluator nodes can only be located at the root level.");
    const Evaluator& logic = net.evaluator("E");
    EXPECT_EQ(logic.className(), "Evaluator");
    EXPECT_FALSE(logic.kernelMode);
    EXPECT_TRUE(logic.cacheIsStale);
    EXPECT_TRUE(logic.upstreamCache.empty());
    EXPECT_EQ(logic.evaluate, logic.inputAttributeAt(0));
    EXPECT_EQ(net.inputs("E"), "evaluate");
    EXPECT_EQ(logic.evaluate->getDescription(), "Whatever is connected here is computed.");
    EXPECT_EQ(logic.evaluate->allowedSpecializationsText(), "All");
}

TEST(Evaluator, WithoutOneNothingIsComputed) {
    EvaluatorScene net;
    const Node_Acting& node = net.addActing("A");
    net.scene.run();
    EXPECT_EQ(node.logic().updates, 0);
    EXPECT_FALSE(net.at("A.out")->isClean());
}

TEST(Evaluator, UnconnectedPinIsCleanAfterTheRun) {
    EvaluatorScene net;
    const Node_Acting& node = net.addActing("A");
    net.add("Evaluator", "E");
    EXPECT_FALSE(net.at("E.evaluate")->isClean());
    net.scene.run();
    EXPECT_TRUE(net.at("E.evaluate")->isClean());
    EXPECT_EQ(node.logic().updates, 0);
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
}

TEST(Evaluator, BelowRootLevelFails) {
    EvaluatorScene net;
    Node* compound = net.add("Compound", "C");
    net.add("Evaluator", "E", compound);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(net.messages("C.E"), "1 Evaluator nodes can be only at root level.");
    EXPECT_EQ(net.host.posts,
              (std::vector<std::string>{"2286|[E] Evaluator nodes can be only at root level.",
                                        "2262|[root.C.E] Evaluator nodes can be only at root "
                                        "level."}));
}

// Integer I > A.in0, A.in1, B.in1; A.result > B.in0; B.result > E
class SumScene : public EvaluatorScene {
public:
    SumScene() {
        add("Integer", "I");
        add("Add", "A");
        add("Add", "B");
        add("Evaluator", "E");
        for (const char* target : {"A.in0", "A.in1", "B.in1"}) link("I.integer", target);
        link("A.result", "B.in0");
        link("B.result", "E.evaluate");
        pin("I.in")->setIntValue(5);
    }
    std::string cleanOnes() {
        std::string text;
        for (const char* path : {"I.in", "I.integer", "A.in0", "A.in1", "A.result", "B.in0",
                                 "B.in1", "B.result", "E.evaluate"}) {
            if (at(path)->isClean()) text += std::string(text.empty() ? "" : " ") + path;
        }
        return text;
    }
};

TEST(Evaluator, EveryRunComputesTheWholeChainOnce) {
    SumScene net;
    for (int run = 0; run < 3; ++run) {
        EXPECT_EQ(net.updatesOfRun(), "I.integer, A.result, B.result, E.evaluate");
        EXPECT_EQ(net.integer("B.result"), 15);
        EXPECT_EQ(net.cleanOnes(), "I.in I.integer A.in0 A.in1 A.result B.in0 B.in1 B.result "
                                   "E.evaluate");
    }
    net.pin("I.in")->setIntValue(7);
    EXPECT_EQ(net.cleanOnes(), "");
    net.scene.run();
    EXPECT_EQ(net.integer("B.result"), 21);
}

TEST(Evaluator, RunTellsTheStateTwicePerDirtiedAndOncePerCleanedAttribute) {
    SumScene net;
    for (int run = 0; run < 2; ++run) {
        support::CallbackLog log;
        weft::Callbacks::nobodyListens = nullptr;
        net.scene.run();
        EXPECT_EQ(log.take("clean"),
                  "E.evaluate, E.evaluate, B.result, B.result, B.in0, B.in0, A.result, A.result, "
                  "A.in0, A.in0, I.integer, I.integer, I.in, I.in, A.in1, A.in1, B.in1, B.in1, "
                  "I.in, I.integer, A.in0, A.in1, A.result, B.in0, B.in1, B.result, E.evaluate");
    }
}

TEST(Evaluator, RunNodeReusesWhatIsClean) {
    SumScene net;
    net.scene.run();
    net.pin("I.in")->setIntValue(1);
    net.scene.runNode(net.node("B"));
    EXPECT_EQ(net.integer("B.result"), 3);
    EXPECT_EQ(net.cleanOnes(), "I.in I.integer A.in0 A.in1 A.result B.in0 B.in1");
}

TEST(Evaluator, RunNodeOfAnEvaluatorComputesItsChain) {
    SumScene net;
    net.scene.run();
    support::CallbackLog log;
    weft::Callbacks::nobodyListens = nullptr;
    net.scene.runNode(net.node("E"));
    EXPECT_EQ(log.take("update"), "I integer, A result, B result, E evaluate");
}

TEST(Evaluator, MarksTheChainAsWanted) {
    SumScene net;
    net.add("Integer", "other");
    net.at("other.integer")->setToBeEvaluated(true);
    net.node("I")->getCoreNode()->setUpdateEnabledPublic(true);
    net.scene.run();
    EXPECT_TRUE(net.at("E.evaluate")->toBeEvaluated());
    EXPECT_TRUE(net.at("I.integer")->toBeEvaluated());
    EXPECT_FALSE(net.at("other.integer")->toBeEvaluated());
}

TEST(Evaluator, TimesItself) {
    SumScene net;
    net.scene.networkManager().setMonitoring(true);
    net.scene.run();
    EXPECT_GT(net.evaluator("E").getLastUpdateTime(), 0.0);
    const double time = net.evaluator("E").getLastUpdateTime();
    EXPECT_LT(time, 10.0);
    net.evaluator("E").resetLastUpdateTime();
    net.scene.networkManager().setMonitoring(false);
    net.scene.run();
    EXPECT_EQ(net.evaluator("E").getLastUpdateTime(), 0.0);
}

TEST(Evaluator, DisabledUpdatesLeaveThePinsAlone) {
    SumScene net;
    net.evaluator("E").setUpdateEnabledPublic(false);
    EXPECT_EQ(net.updatesOfRun(), "");
    EXPECT_FALSE(net.at("E.evaluate")->isClean());
}

// Pins.

TEST(Evaluator, DynamicPinsTakeEveryTypeAndAreAskedInOrder) {
    EvaluatorScene net;
    net.add("Evaluator", "E");
    net.add("Integer", "I");
    net.add("Bit", "B");
    net.add("String", "S");
    net.addPin("E", "second");
    net.addPin("E", "third");
    EXPECT_EQ(net.inputs("E"), "evaluate second third");
    EXPECT_TRUE(net.pin("E.second")->isDynamic());
    EXPECT_FALSE(net.pin("E.evaluate")->isDynamic());
    net.link("B.bit", "E.third");
    net.link("S.out", "E.evaluate");
    net.link("I.integer", "E.second");
    EXPECT_EQ(net.at("E.third")->specialization(), "Bit");
    EXPECT_EQ(net.updatesOfRun(), "S.out, E.evaluate, I.integer, E.second, B.bit, E.third");
}

TEST(Evaluator, NewPinIsNamedInWithANumberWhenTaken) {
    EvaluatorScene net;
    Node* node = net.add("Evaluator", "E");
    EXPECT_EQ(node->addDynamicInputPin()->getName(), "in");
    EXPECT_EQ(node->addDynamicInputPin()->getName(), "in1");
    node->removeNodePin(net.pin("E.in"));
    EXPECT_EQ(net.inputs("E"), "evaluate in1");
    EXPECT_EQ(net.evaluator("E").refInputAttributes().size(), 2u);
}

TEST(Evaluator, DynamicOutputIsOfTheTypeEvaluate) {
    EvaluatorScene net;
    Node* node = net.add("Evaluator", "E");
    net.add("Evaluator", "F");
    node->addDynamicOutputPin()->setName("done");
    EXPECT_EQ(net.at("E.done")->specialization(), "Evaluate");
    net.link("E.done", "F.evaluate");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_TRUE(net.at("F.evaluate")->isClean());
}

TEST(Evaluator, StoredInputsRenameThePinsThatThereAreAndAddTheRest) {
    EvaluatorScene net;
    Node* node = net.add("Evaluator", "E");
    EXPECT_TRUE(node->readInputs_fromBoostPropertyTree(treeOfInputs({"a", "b", "c"})));
    EXPECT_EQ(net.inputs("E"), "a b c");
    EXPECT_EQ(net.evaluator("E").evaluate->name(), "a");
    EXPECT_EQ(net.evaluator("E").refDynamicAttributes().size(), 2u);
    EXPECT_TRUE(node->readInputs_fromBoostPropertyTree(treeOfInputs({"a", "b", "c"})));
    EXPECT_EQ(net.inputs("E"), "a b c");
}

TEST(Evaluator, StoredInputsThatExistAreSkippedButCounted) {
    EvaluatorScene net;
    Node* node = net.add("Evaluator", "E");
    EXPECT_TRUE(node->readInputs_fromBoostPropertyTree(treeOfInputs({"evaluate", "x", "x", "y"})));
    EXPECT_EQ(net.inputs("E"), "evaluate x y");
}

TEST(Evaluator, StoredInputsMayBeMissing) {
    EvaluatorScene net;
    Node* node = net.add("Evaluator", "E");
    EXPECT_TRUE(node->readInputs_fromBoostPropertyTree(PropertyTree()));
    EXPECT_EQ(net.inputs("E"), "evaluate");
}

// After the updates.

TEST(EvaluatorPhases, PostUpdateReachesEveryNodeUpstreamOnce) {
    EvaluatorScene net;
    net.add("Evaluator", "E");
    net.addPin("E", "second");
    Node_Acting& first = net.addActing("A");
    Node_Acting& second = net.addActing("B");
    Node_Acting& other = net.addActing("other");
    net.link("A.out", "B.in");
    net.link("B.out", "E.evaluate");
    net.link("A.out", "E.second");
    for (int run = 1; run <= 2; ++run) {
        net.scene.run();
        EXPECT_EQ(first.postUpdates, run);
        EXPECT_EQ(second.postUpdates, run);
    }
    EXPECT_EQ(first.preUpdates, 0) << "only the last phase fans out";
    EXPECT_EQ(other.postUpdates, 0);
    net.link("other.out", "A.in");
    net.scene.run();
    EXPECT_EQ(other.postUpdates, 1);
    net.cut("A.out", "B.in");
    net.cut("A.out", "E.second");
    net.scene.run();
    EXPECT_EQ(other.postUpdates, 1);
    EXPECT_EQ(second.postUpdates, 4);
}

TEST(EvaluatorPhases, PostUpdateForgetsARemovedNode) {
    EvaluatorScene net;
    net.add("Evaluator", "E");
    Node_Acting& first = net.addActing("A");
    Node_Acting& second = net.addActing("B");
    net.link("A.out", "B.in");
    net.link("B.out", "E.evaluate");
    net.scene.run();
    net.scene.removeNodeFromGraph(&first);
    net.scene.run();
    EXPECT_EQ(second.postUpdates, 2);
}

TEST(EvaluatorPhases, EvaluatorsThatFeedEachOtherInARingEnd) {
    EvaluatorScene net;
    Node_Acting& acting = net.addActing("A");
    for (const char* name : {"E", "F"}) {
        net.add("Evaluator", name)->addDynamicOutputPin()->setName("done");
        net.addPin(name, "more");
    }
    net.link("E.done", "F.evaluate");
    net.link("F.done", "E.evaluate");
    net.link("A.out", "F.more");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(acting.postUpdates, 2) << "once for each evaluator";
}

TEST(EvaluatorPhases, SecondEvaluatorIsNotRunAfterAFailureButPostUpdateIs) {
    EvaluatorScene net;
    net.add("Evaluator", "E");
    net.add("Evaluator", "F");
    Node_Acting& failing = net.addActing("A");
    Node_Acting& waiting = net.addActing("B");
    failing.logic().act = [](Acting& node) { node.pushCritical("out of order", "shut"); };
    net.link("A.out", "E.evaluate");
    net.link("B.out", "F.evaluate");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(waiting.logic().updates, 0);
    EXPECT_FALSE(net.at("B.out")->isClean());
    EXPECT_FALSE(net.at("F.evaluate")->isClean());
    EXPECT_FALSE(net.at("A.out")->isClean());
    EXPECT_EQ(failing.postUpdates, 1);
    EXPECT_EQ(waiting.postUpdates, 1);
    EXPECT_FALSE(net.scene.networkManager().evaluating());

    failing.logic().act = nullptr;
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(waiting.logic().updates, 1);
    EXPECT_TRUE(net.at("A.out")->isClean());
}

struct Failure {
    std::function<void(Acting&)> act;
    RunOutcome outcome;
    std::vector<std::string> posts;
    const char* messages;
};

class RunFailure : public ::testing::TestWithParam<int> {};

const Failure failures[] = {
    {[](Acting& node) { node.pushCritical("out of order", "shut"); },
     RunOutcome::exception,
     {"2286|[A] out of order - shut", "2262|[root.A] out of order - shut"},
     "1 out of order - shut"},
    {[](Acting&) {
         throw tidemark::sluice::graph::CancelGraphException(
             "hushed", tidemark::sluice::graph::cancelExceptionCode, true);
     },
     RunOutcome::quietCancel,
     {},
     ""},
    {[](Acting&) { throw std::bad_alloc(); }, RunOutcome::outOfMemory, {"2083"}, ""},
    {[](Acting&) { throw std::runtime_error("broken"); },
     RunOutcome::exception,
     {"2286|broken"},
     ""},
    {[](Acting&) { tidemark::sluice::graph::interruptGlobalGraph(); },
     RunOutcome::exception,
     {"2262|Graph execution cancelled"},
     ""},
};

TEST_P(RunFailure, IsReportedAndFollowedByPostUpdate) {
    const Failure& failure = failures[GetParam()];
    EvaluatorScene net;
    net.add("Evaluator", "E");
    Node_Acting& node = net.addActing("A");
    node.logic().refMessages().clear();
    node.logic().act = failure.act;
    net.link("A.out", "E.evaluate");
    net.host.posts.clear();
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), failure.outcome);
    EXPECT_EQ(net.host.posts, failure.posts);
    EXPECT_EQ(net.messages("A"), failure.messages);
    EXPECT_EQ(node.postUpdates, 1);
    EXPECT_FALSE(net.scene.networkManager().evaluating());
    EXPECT_EQ(net.scene.interruptedNodeName(), "root.A");
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, RunFailure,
                         ::testing::Range(0, static_cast<int>(std::size(failures))));

// In kernel mode: the evaluator of a private scene that runs once per element.

class KernelScene : public SumScene {
public:
    KernelScene() {
        addPin("E", "second");
        link("A.result", "E.second");
        evaluator("E").kernelMode = true;
    }
};

TEST(EvaluatorInKernelMode, FirstRunBuildsTheListWithoutRepeats) {
    KernelScene net;
    net.scene.run();
    EXPECT_FALSE(net.evaluator("E").cacheIsStale);
    EXPECT_EQ(support::Net::namesOf(net.evaluator("E").upstreamCache),
              "E.evaluate B.result B.in0 A.result A.in0 I.integer I.in A.in1 B.in1 E.second");
    EXPECT_EQ(net.integer("B.result"), 15);
}

TEST(EvaluatorInKernelMode, LaterRunsDirtyNothingThemselves) {
    KernelScene net;
    net.scene.run();
    EXPECT_EQ(net.updatesOfRun(), "E.evaluate, E.second");
    net.pin("I.in")->setIntValue(1);
    EXPECT_EQ(net.updatesOfRun(), "I.integer, A.result, B.result, E.evaluate, E.second");
    EXPECT_EQ(net.integer("B.result"), 3);
}

TEST(EvaluatorInKernelMode, StaleListIsBuiltAnewAndDirtied) {
    KernelScene net;
    net.scene.run();
    net.cut("A.result", "E.second");
    net.evaluator("E").cacheIsStale = true;
    EXPECT_EQ(net.updatesOfRun(), "I.integer, A.result, B.result, E.evaluate, E.second");
    EXPECT_EQ(net.evaluator("E").upstreamCache.size(), 10u);
}

// Large graphs.

TEST(Evaluator, ChainOfManyNodesIsRun) {
    constexpr int length = 5000;
    ControlScene net;
    net.add("Integer", "S");
    net.add("Evaluator", "E");
    GraphNodePin* from = net.pin("S.integer");
    for (int i = 0; i < length; ++i) {
        Node* node = net.add(i % 2 == 0 ? "Sleep" : "GraphCancel", "N");
        ASSERT_NE(net.connect(from, node->getInputPinPtrByName("in")), nullptr);
        from = node->getOutputPinPtrByName("through");
    }
    ASSERT_NE(net.connect(from, net.pin("E.evaluate")), nullptr);
    net.pin("S.in")->setIntValue(77);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.integer("E.evaluate"), 77);
}

} // namespace
} // namespace control_tests

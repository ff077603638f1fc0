// SPDX-License-Identifier: Apache-2.0
// Counting loops: iterations, what the body is, what survives, and how a loop ends.
#include "nodes/control/for.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <thread>

#include "core/exceptions.h"
#include "loop_scene.h"
#include "nodes/control/compound.h"

namespace control_tests {
namespace {

using Indices = std::vector<int32_t>;
using tidemark::sluice::graph::GenericGraphException;

// The node.

TEST(For, IsDescribed) {
    LoopScene net;
    Node* loop = net.node("C.F");
    EXPECT_TRUE(loop->isIterator());
    EXPECT_EQ(loop->getCategory(), "Execution");
    EXPECT_EQ(
        loop->getDescription(),
        "The For node is a special node that can be used to perform graph iterations.\nA For node "
        "must always be inside a Compound node. It cannot be located at the root level.\nNodes - "
        "at the same level as the For node - are evaluated as many times as the For condition "
        "requires. Thus, a node depending on the For 'currentIndex' output is evaluated for each "
        "iteration. If it is connected several times to an evaluator node, it is evaluated "
        "accordingly repetitively. This is a limitation yet to be solved.Only one single For node "
        "is allowed at the same graph level. Nested For iterations can be performed using nested "
        "Compounds, each containing a separate For node.");
    std::string pins;
    for (const Pin* pin : loop->getArrInputPin()) {
        const weft::Attribute* input = pin->getWeftAttribute();
        pins += pin->getName() + " " + input->specialization() + " " +
                std::to_string(input->elementCountRule()) + " " +
                std::to_string(pin->getIntValue()) + " > " + input->affects()[0]->name() + "; ";
        EXPECT_NE(pin->getDescription(), "");
    }
    EXPECT_EQ(pins, "start Integer 1 0 > current index; stop Integer 1 4 > current index; "
                    "step Integer 1 1 > current index; ");
    EXPECT_EQ(net.at("C.F.current index")->specialization(), "Integer");

    Node* fresh = net.add("For", "fresh", net.node("C"));
    EXPECT_EQ(fresh->getInputPinPtrByName("start")->getIntValue(), 0);
    EXPECT_EQ(fresh->getInputPinPtrByName("stop")->getIntValue(), 0);
    EXPECT_EQ(fresh->getInputPinPtrByName("step")->getIntValue(), 1);
}

TEST(For, AtRootLevelFails) {
    ControlScene net;
    net.add("For", "F");
    net.add("Evaluator", "E");
    net.link("F.current index", "E.evaluate");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(net.scene.interruptedNodeName(), "root.F");
    EXPECT_EQ(net.messages("F"), "1 For nodes cannot be at root level.");
    weft::Node* loop = net.node("F")->getCoreNode();
    EXPECT_THROW(loop->iterate(net.at("F.current index")), GenericGraphException);
    EXPECT_FALSE(loop->isUpdating());
}

TEST(For, AskingForTheIndexStartsNothing) {
    LoopScene net;
    net.ask();
    Tap* tap = net.tapIndex();
    weft::Attribute* index = net.at("C.F.current index");
    index->setClean(false);
    index->pull();
    EXPECT_TRUE(index->isClean());
    EXPECT_EQ(net.integer("C.F.current index"), 3);
    EXPECT_TRUE(tap->seen.empty());
}

TEST(For, UpdateOfAForeignAttributeChangesNothing) {
    LoopScene net;
    weft::Attribute* foreign = net.at("C.A.result");
    foreign->setClean(false);
    net.node("C.F")->getCoreNode()->update(foreign);
    EXPECT_FALSE(foreign->isClean());
}

// Counting.

struct Count {
    int start, stop, step;
    Indices indices;
    int lastIndex;
};

void expectCount(const Count& count) {
    SCOPED_TRACE(std::to_string(count.start) + " " + std::to_string(count.stop) + " " +
                 std::to_string(count.step));
    LoopScene net;
    Tap* tap = net.tapIndex();
    net.count(count.start, count.stop, count.step);
    net.ask();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(tap->seen, count.indices);
    EXPECT_EQ(net.integer("C.F.current index"), count.lastIndex);
    for (const char* output : {"C.y", "C.t"}) EXPECT_TRUE(net.at(output)->isClean());
    EXPECT_FALSE(net.node("C.F")->isUpdating());
}

TEST(For, CountsFromStartUpToStop) {
    expectCount({0, 3, 1, {0, 1, 2}, 2});
    expectCount({0, 5, 2, {0, 2, 4}, 4});
    expectCount({-2, 1, 1, {-2, -1, 0}, 0});
    expectCount({7, 8, 100, {7}, 7});
}

TEST(For, RunsNothingUnlessStartIsBelowStop) {
    expectCount({3, 3, 1, {}, 0});
    expectCount({5, 0, -1, {}, 0});
    expectCount({0, -1, 1, {}, 0});
    expectCount({0, 0, 0, {}, 0});
}

TEST(For, IndexWrapsBeyondTheLargestNumber) {
    // A step away from `stop` wraps round to the largest number, which is not below `stop`.
    expectCount({INT_MIN, 1, -1, {INT_MIN}, INT_MIN});
    expectCount({INT_MAX - 2, INT_MAX, 1, {INT_MAX - 2, INT_MAX - 1}, INT_MAX - 1});
    expectCount({0, INT_MAX, INT_MAX, {0}, 0});
}

TEST(For, EmptyBoundReadsAsZero) {
    LoopScene net;
    Tap* tap = net.tapIndex();
    const auto empty = [&](const char* bound) {
        static_cast<weft::NumericAttribute*>(net.at(bound))->ownNumeric().resize(0);
    };
    net.count(5, 2, 1);
    empty("C.F.start");
    net.ask();
    EXPECT_EQ(tap->seen, (Indices{0, 1}));
    EXPECT_EQ(
        net.messages("C.F"),
        "3 size of attribute 'start' is different than 1 (0). Extra elements will be ignored");
    tap->seen.clear();
    net.set("C.F.start", -2);
    empty("C.F.stop");
    net.ask();
    EXPECT_EQ(tap->seen, (Indices{-2, -1}));
}

TEST(For, BoundOfManyElementsCountsByTheFirst) {
    LoopScene net;
    Tap* tap = net.tapIndex();
    weft::Numeric& stop = static_cast<weft::NumericAttribute*>(net.at("C.F.stop"))->ownNumeric();
    stop.setValues<int32_t>({2, 100});
    net.ask();
    EXPECT_EQ(tap->seen, (Indices{0, 1}));
    EXPECT_EQ(net.messages("C.F"),
              "3 size of attribute 'stop' is different than 1 (2). Extra elements will be ignored");
}

TEST(For, EmptyIndexStaysEmpty) {
    LoopScene net;
    weft::Attribute* index = net.at("C.F.current index");
    static_cast<weft::NumericAttribute*>(index)->ownNumeric().resize(0);
    net.ask();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(index->value()->size(), 0u);
    EXPECT_EQ(net.at("C.A.in1")->currentValue()->size(), 0u);
}

// The body.

TEST(For, ComputesTheBodyOncePerIteration) {
    LoopScene net;
    EXPECT_EQ(net.updateCounts(), "A 4, C 1, E 1, IO 8, S 1");
    EXPECT_EQ(net.integer("E.evaluate"), 13);
    EXPECT_EQ(net.integer("C.F.current index"), 3);
    for (const char* path :
         {"C.y", "C.x", "S.integer", "S.in", "C.IO.y", "C.IO.x", "C.A.in0", "C.A.in1", "C.A.result",
          "C.F.current index", "C.F.start", "C.F.stop", "C.F.step", "E.evaluate"}) {
        EXPECT_TRUE(net.at(path)->isClean()) << path;
    }
}

TEST(For, OneLoopServesAllOutputs) {
    LoopScene net;
    Tap* tap = net.tapIndex();
    net.scene.runPin(net.pin("C.y"));
    EXPECT_EQ(tap->seen, (Indices{0, 1, 2, 3}));
    EXPECT_EQ(net.integer("C.t"), 3);
    net.at("C.t")->pull();
    EXPECT_EQ(tap->seen.size(), 4u) << "the other output is clean by then";
}

TEST(For, RunsABodyThatDoesNotDependOnTheIndex) {
    LoopScene net;
    Tap* tap = net.logic<Tap>("Tap", "T", "C");
    net.link("C.IO.x", "C.T.in");
    net.wall("C.IO", false, "t");
    net.link("C.T.out", "C.IO.t");
    net.ask();
    EXPECT_EQ(tap->seen, (Indices{10, 10, 10, 10}));
}

TEST(For, DoesNotRunWhatNoOutputDependsOn) {
    LoopScene net;
    Tap* tap = net.logic<Tap>("Tap", "T", "C");
    net.link("C.F.current index", "C.T.in");
    net.ask();
    EXPECT_TRUE(tap->seen.empty());
}

TEST(For, WhatLiesBeforeTheCompoundIsComputedOnce) {
    LoopScene net;
    Tap* outside = net.logic<Tap>("Tap", "O", "");
    net.cut("S.integer", "C.x");
    net.link("S.integer", "O.in");
    net.link("O.out", "C.x");
    EXPECT_EQ(net.ask(), 13);
    EXPECT_EQ(outside->seen, Indices{10});
}

// Two outputs, where the second one's nodes lie upstream of a part of the first one's.
TEST(For, BodyHoldsAllThatAnyOutputNeeds) {
    LoopScene net;
    net.add("Add", "B", net.node("C"));
    net.wall("C.IO", false, "y2");
    net.link("C.A.result", "C.B.in0");
    net.link("C.F.current index", "C.B.in1");
    net.link("C.B.result", "C.IO.y2");
    net.add("Evaluator", "E2");
    net.link("C.y2", "E2.evaluate");
    std::vector<int> second;
    Tap* tap = net.logic<Tap>("Tap", "T", "C");
    net.cut("C.B.result", "C.IO.y2");
    net.link("C.B.result", "C.T.in");
    net.link("C.T.out", "C.IO.y2");
    net.ask();
    EXPECT_EQ(tap->seen, (Indices{10, 12, 14, 16}));
}

TEST(For, EnablesTheUpdatesOfItsBody) {
    LoopScene net;
    Tap* tap = net.tapIndex();
    tap->onUpdate = [&](int32_t) { tap->setUpdateEnabled(false); };
    net.ask();
    EXPECT_EQ(tap->seen, (Indices{0, 1, 2, 3}));
}

TEST(For, LoopsAgainInEveryRun) {
    LoopScene net;
    Tap* tap = net.tapIndex();
    EXPECT_EQ(net.ask(), 13);
    net.set("S.in", 100);
    EXPECT_EQ(net.ask(), 103);
    net.set("C.F.stop", 2);
    EXPECT_EQ(net.ask(), 101);
    EXPECT_EQ(tap->seen, (Indices{0, 1, 2, 3, 0, 1, 2, 3, 0, 1}));
}

TEST(For, NoIterationLeavesTheOldValues) {
    LoopScene net;
    EXPECT_EQ(net.ask(), 13);
    net.set("C.F.stop", 0);
    EXPECT_EQ(net.updateCounts(), "C 1, E 1, S 1");
    EXPECT_EQ(net.integer("E.evaluate"), 13);
    EXPECT_EQ(net.integer("C.F.current index"), 3);
    EXPECT_TRUE(net.at("C.y")->isClean());
}

// What survives from one iteration to the next.

TEST(For, AccumulatesThroughAnObjectWrittenInPlace) {
    LoopScene net;
    net.at("C.A.in0")->addPassThrough(net.at("C.A.result"));
    EXPECT_EQ(net.ask(), 16);
    EXPECT_EQ(net.integer("S.integer"), 16) << "the same object";
    EXPECT_EQ(net.ask(), 16) << "a run begins with the constant again";
    net.set("S.in", 100);
    EXPECT_EQ(net.ask(), 106);
}

TEST(For, UnconnectedAccumulatorIsNeverReset) {
    LoopScene net;
    net.cut("C.IO.x", "C.A.in0");
    net.at("C.A.in0")->addPassThrough(net.at("C.A.result"));
    net.at("C.A.in0")->setSpecializationOverride("Integer");
    net.at("C.A.in0")->updateSpecializations(nullptr);
    net.set("C.A.in0", 0);
    EXPECT_EQ(net.ask(), 6);
    EXPECT_EQ(net.ask(), 12);
    EXPECT_EQ(net.ask(), 18);
}

TEST(For, ConstantInsideTheCompoundResetsEachTurn) {
    LoopScene net;
    Tap* tap = net.tapIndex();
    net.cut("C.F.current index", "C.T.in");
    net.cut("C.IO.x", "C.A.in0");
    net.add("Integer", "K", net.node("C"));
    net.set("C.K.in", 10);
    net.link("C.K.integer", "C.A.in0");
    net.at("C.A.in0")->addPassThrough(net.at("C.A.result"));
    net.link("C.A.result", "C.T.in");
    EXPECT_EQ(net.ask(), 13);
    EXPECT_EQ(tap->seen, (Indices{10, 11, 12, 13}));
}

TEST(For, FeedbackWireIsRefused) {
    LoopScene net;
    EXPECT_EQ(net.scene.connect("root.C.A.result", "root.C.A.in0"), nullptr);
    EXPECT_EQ(net.scene.connect("root.C.y", "root.C.x"), nullptr);
}

// Nesting.

/// In C a second compound D with a loop G whose bound is wired, seen by the tap D.T.
class NestedLoops : public LoopScene {
public:
    NestedLoops() {
        Node* inner = add("Compound", "D", node("C"));
        add("CompoundInterface", "IO", inner);
        add("For", "G", inner);
        count(0, 3, 1);
        count(0, 0, 1, "C.D.G");
        tap = logic<Tap>("Tap", "T", "C.D");
        link("C.D.G.current index", "C.D.T.in");
        wall("C.D.IO", false, "z");
        link("C.D.T.out", "C.D.IO.z");
        wall("C.IO", false, "z");
        link("C.D.z", "C.IO.z");
    }
    Tap* tap = nullptr;
};

TEST(For, InnerLoopRunsInEveryIteration) {
    NestedLoops net;
    net.set("C.D.G.stop", 2);
    EXPECT_EQ(net.ask(), 12);
    EXPECT_EQ(net.tap->seen, (Indices{0, 1, 0, 1, 0, 1}));
    EXPECT_EQ(net.integer("C.z"), 1);
}

TEST(For, BoundWiredToTheOuterIndexFollowsIt) {
    NestedLoops net;
    net.wall("C.D.IO", true, "n");
    net.link("C.F.current index", "C.D.n");
    net.link("C.D.IO.n", "C.D.G.stop");
    net.ask();
    EXPECT_EQ(net.tap->seen, (Indices{0, 0, 1}));
}

TEST(For, BoundComputedBeforeTheInnerCompoundFollowsTheIndex) {
    NestedLoops net;
    Tap* next = net.logic<Tap>("Tap", "N", "C");
    net.link("C.F.current index", "C.N.in");
    net.wall("C.D.IO", true, "n");
    net.link("C.N.out", "C.D.n");
    net.link("C.D.IO.n", "C.D.G.stop");
    net.ask();
    EXPECT_EQ(next->seen, (Indices{0, 1, 2}));
    EXPECT_EQ(net.tap->seen, (Indices{0, 0, 1}));
}

// What an inner loop's bound is computed from belongs to the inner loop, which asks for its bounds
// before it makes anything dirty.
TEST(For, BoundComputedInsideTheInnerCompoundStaysAsItWas) {
    NestedLoops net;
    Tap* next = net.logic<Tap>("Tap", "N", "C.D");
    net.wall("C.D.IO", true, "n");
    net.link("C.F.current index", "C.D.n");
    net.link("C.D.IO.n", "C.D.N.in");
    net.link("C.D.N.out", "C.D.G.stop");
    net.ask();
    EXPECT_EQ(next->seen, Indices{0});
    EXPECT_TRUE(net.tap->seen.empty());
}

TEST(For, CompoundWithoutALoopIsPartOfTheBody) {
    LoopScene net;
    Node* inner = net.add("Compound", "D", net.node("C"));
    net.add("CompoundInterface", "IO", inner);
    Tap* tap = net.logic<Tap>("Tap", "T", "C.D");
    net.wall("C.D.IO", true, "n");
    net.wall("C.D.IO", false, "m");
    net.link("C.F.current index", "C.D.n");
    net.link("C.D.IO.n", "C.D.T.in");
    net.link("C.D.T.out", "C.D.IO.m");
    net.cut("C.F.current index", "C.A.in1");
    net.link("C.D.m", "C.A.in1");
    EXPECT_EQ(net.ask(), 13);
    EXPECT_EQ(tap->seen, (Indices{0, 1, 2, 3}));
}

TEST(For, SecondIteratorInOneCompoundFails) {
    LoopScene net;
    net.add("For", "F2", net.node("C"));
    net.cut("C.IO.x", "C.A.in0");
    net.link("C.F2.current index", "C.A.in0");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(net.messages("C"), "1 Only one iterator node is allowed per compound level.");
}

// An output that comes back as an input is no ring of wires, but the loop needs all inputs first.
TEST(For, InputThatWaitsForAnOutputFails) {
    LoopScene net;
    Tap* outside = net.logic<Tap>("Tap", "O", "");
    net.tapIndex();
    net.cut("S.integer", "C.x");
    net.link("C.t", "O.in");
    net.link("O.out", "C.x");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(net.messages("C.F"), "1 an input of the compound depends on one of its outputs");
    EXPECT_FALSE(net.node("C.F")->isUpdating());
    EXPECT_TRUE(outside->seen.empty());
}

// How a loop ends early.

TEST(For, CancelLeavesTheOutputsDirty) {
    LoopScene net;
    Tap* tap = net.tapIndex();
    AtLeast* third = net.logic<AtLeast>("AtLeast", "L", "C");
    net.add("GraphCancel", "X", net.node("C"));
    net.cut("C.T.out", "C.IO.t");
    net.link("C.F.current index", "C.L.in");
    net.link("C.L.reached", "C.X.cancel");
    net.link("C.T.out", "C.X.in");
    net.link("C.X.through", "C.IO.t");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(net.scene.interruptedNodeName(), "root.C.X");
    EXPECT_EQ(tap->seen, (Indices{0, 1}));
    EXPECT_EQ(net.integer("C.F.current index"), 2);
    for (const char* output : {"C.y", "C.t"}) EXPECT_FALSE(net.at(output)->isClean());
    EXPECT_FALSE(net.node("C.F")->isUpdating());

    third->limit = 100;
    EXPECT_EQ(net.ask(), 13);
    EXPECT_EQ(tap->seen, (Indices{0, 1, 0, 1, 2, 3})) << "the next run begins with 'start' again";
}

TEST(For, EndlessLoopStopsAtAnInterrupt) {
    LoopScene net;
    net.count(0, 1, 0);
    std::chrono::steady_clock::time_point asked;
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        asked = std::chrono::steady_clock::now();
        net.scene.requestInterrupt();
    });
    net.scene.run();
    const auto ended = std::chrono::steady_clock::now();
    other.join();
    EXPECT_TRUE(net.scene.wasInterrupted());
    EXPECT_EQ(net.scene.interruptedNodeName().rfind("root.C.", 0), 0u)
        << net.scene.interruptedNodeName();
    EXPECT_FALSE(net.at("C.y")->isClean());
    EXPECT_LT(ended - asked, std::chrono::seconds(5));
}

// With nothing to compute in the body only the loop itself can notice.
TEST(For, EndlessLoopWithoutABodyStopsAtAnInterrupt) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    net.add("CompoundInterface", "IO", compound);
    net.add("For", "F", compound);
    net.add("Evaluator", "E");
    net.wall("C.IO", false, "y");
    net.link("C.F.current index", "C.IO.y");
    net.link("C.y", "E.evaluate");
    net.pin("C.F.stop")->setIntValue(1);
    net.pin("C.F.step")->setIntValue(0);
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        net.scene.requestInterrupt();
    });
    net.scene.run();
    other.join();
    EXPECT_TRUE(net.scene.wasInterrupted());
}

// Who follows the iterations.

Indices told;
Indices toldLate;

class IterationCallbacks {
public:
    IterationCallbacks() {
        told.clear();
        toldLate.clear();
        SceneManager::forNode_iterationCompletedCallback_ = [](const int& index) {
            told.push_back(index);
        };
    }
    ~IterationCallbacks() {
        SceneManager::forNode_iterationCompletedCallback_ = nullptr;
        SceneManager::instance().setupCallbacks();
    }
};

TEST(For, TellsEachIterationThroughBothSlots) {
    const IterationCallbacks callbacks;
    LoopScene net;
    SceneManager::instance().setupCallbacks();
    net.ask();
    EXPECT_EQ(told, (Indices{0, 0, 1, 1, 2, 2, 3, 3}));
    told.clear();
    SceneManager::instance().disconnectCallbacks();
    net.ask();
    EXPECT_EQ(told, (Indices{0, 1, 2, 3}));
}

TEST(For, ClassSlotIsToldFirst) {
    const IterationCallbacks callbacks;
    LoopScene net;
    SceneManager::instance().setupCallbacks();
    SceneManager::forNode_iterationCompletedCallback_ = [](const int& index) {
        told.push_back(index + 100);
    };
    net.count(0, 2, 1);
    net.ask();
    EXPECT_EQ(told, (Indices{0, 100, 1, 101}));
}

TEST(For, ClearingASceneConnectsTheClassSlot) {
    LoopScene net;
    const IterationCallbacks callbacks;
    net.ask();
    EXPECT_EQ(told, (Indices{0, 1, 2, 3}));
    SL_GraphScene().clear();
    told.clear();
    net.ask();
    EXPECT_EQ(told, (Indices{0, 0, 1, 1, 2, 2, 3, 3}));
}

TEST(For, IterationThatFailsIsNotTold) {
    const IterationCallbacks callbacks;
    LoopScene net;
    Tap* tap = net.tapIndex();
    tap->onUpdate = [&](int32_t index) {
        if (index == 2) tap->pushCritical("two");
    };
    net.scene.run();
    EXPECT_EQ(told, (Indices{0, 1}));
}

TEST(For, UnmonitoredNetworkTellsNobody) {
    const IterationCallbacks callbacks;
    LoopScene net;
    net.scene.networkManager().setMonitoring(false);
    EXPECT_EQ(net.ask(), 13);
    EXPECT_TRUE(told.empty());
    net.scene.networkManager().setMonitoring(true);
}

// Editing while the loop runs.

TEST(For, BodyFollowsAnEditBetweenIterations) {
    LoopScene net;
    Tap* tap = net.tapIndex();
    net.add("Integer", "K", net.node("C"));
    net.set("C.K.in", 1000);
    tap->onUpdate = [&](int32_t index) {
        if (index != 1) return;
        net.cut("C.IO.x", "C.A.in0");
        net.link("C.K.integer", "C.A.in0");
    };
    EXPECT_EQ(net.ask(), 1003);
}

LoopScene* edited = nullptr;

TEST(For, LoopMayBeRemovedByWhoFollowsIt) {
    LoopScene net;
    Tap* tap = net.tapIndex();
    edited = &net;
    SceneManager::forNode_iterationCompletedCallback_ = [](const int& index) {
        if (index == 1) edited->scene.removeNodeFromGraph(edited->node("C.F"));
    };
    net.scene.run();
    SceneManager::forNode_iterationCompletedCallback_ = nullptr;
    EXPECT_EQ(tap->seen, (Indices{0, 1}));
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
}

} // namespace
} // namespace control_tests

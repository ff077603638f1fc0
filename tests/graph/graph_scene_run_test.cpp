// SPDX-License-Identifier: Apache-2.0
// Tests of running: order, flags, times, failures and interrupts.
#include <chrono>
#include <stdexcept>
#include <thread>

#include "core/bit_array.h"
#include "core/callbacks.h"
#include "core/exceptions.h"
#include "graph/graph_scene.h"
#include "support/callback_log.h"
#include "support/recording_host.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::CallbackLog;
using support::LogicProbe;
using support::Names;
using support::ProbeNode;
using support::RecordingHost;
using support::SceneBuilder;
using weft::NumericAttribute;

namespace {

// Notes lines for the message window too.
class RunHost : public RecordingHost {
public:
    void message(const TM_String& line) override { lines.push_back(line); }
    Names lines;
};

class SceneRun : public testing::Test {
protected:
    // A source whose update does `work`, below an evaluator of its own.
    ProbeNode* source(const std::string& name, std::function<void()> work = {}) {
        auto* node = build.probe("Probe", name, [](LogicProbe& logic) {
            logic.output<NumericAttribute>("out")->setAllowedSpecializations({"Real"});
        });
        node->logic().onUpdate = [work](weft::Attribute*) {
            if (work) work();
        };
        build.add("Evaluator", "E" + name).connect(name + ".out", "E" + name + ".evaluate");
        return node;
    }
    weft::NetworkManager& network() { return build.scene.networkManager(); }

    RunHost host;
    SceneBuilder build;
};

// I=5 -> A.in0, A.in1, B.in1; A.result -> B.in0; B.result -> E.
void buildTwoAdds(SceneBuilder& build) {
    build.add("Integer", "I").add("Add", "A").add("Add", "B").add("Evaluator", "E");
    build.connect("I.integer", "A.in0").connect("I.integer", "A.in1");
    build.connect("I.integer", "B.in1").connect("A.result", "B.in0");
    build.connect("B.result", "E.evaluate");
    build.pin("I.in")->setIntValue(5);
}

constexpr const char* closureOfE[] = {"E.evaluate", "B.result", "B.in0", "A.result", "A.in0",
                                      "I.integer",  "I.in",     "A.in1", "B.in1"};

} // namespace

// --- what a run does ---------------------------------------------------------------------------

TEST_F(SceneRun, WithNothingToRunTouchesNothing) {
    build.add("Real", "R");
    build.scene.setLastExecutionTime(7.0);
    network().setDirtyHold(true);
    build.at("R.real")->setToBeEvaluated(true);
    build.scene.run();
    EXPECT_EQ(build.scene.getLastExecutionTime(), 7.0);
    EXPECT_TRUE(network().dirtyHold());
    EXPECT_TRUE(build.at("R.real")->toBeEvaluated());
    EXPECT_EQ(build.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_TRUE(host.posts.empty() && host.lines.empty());
}

TEST_F(SceneRun, ForNodesAloneAreFramedButNotUpdated) {
    const auto declare = [](LogicProbe& logic) { logic.output<NumericAttribute>("index"); };
    auto* loop = build.probe("For", "F", declare);
    auto* kernel = build.probe("Kernel", "K", declare);
    build.scene.run();
    for (const ProbeNode* node : {loop, kernel}) {
        EXPECT_EQ(node->logic().preUpdates, 1);
        EXPECT_EQ(node->logic().postUpdates, 1);
        EXPECT_EQ(node->logic().updates, 0);
    }
    EXPECT_GT(build.scene.getLastExecutionTime(), 0.0);
}

TEST_F(SceneRun, ComputesTheWholeChainOnce) {
    buildTwoAdds(build);
    build.scene.run(); // settles callbacks that first runs cause
    CallbackLog log;
    build.scene.run();
    EXPECT_EQ(log.take("update"), "I integer, A result, B result, E evaluate");
    EXPECT_EQ(build.seen<int32_t>("B.result"), 15);
    for (const char* path : closureOfE) EXPECT_FALSE(build.pin(path)->isDirty()) << path;
}

TEST_F(SceneRun, TellsOfEveryChangeOfCleanState) {
    buildTwoAdds(build);
    for (int run = 0; run < 2; ++run) {
        CallbackLog log;
        build.scene.run();
        EXPECT_EQ(log.take("clean"),
                  "E.evaluate, E.evaluate, B.result, B.result, B.in0, B.in0, A.result, A.result, "
                  "A.in0, A.in0, I.integer, I.integer, I.in, I.in, A.in1, A.in1, B.in1, B.in1, "
                  "I.in, I.integer, A.in0, A.in1, A.result, B.in0, B.in1, B.result, E.evaluate");
    }
}

TEST_F(SceneRun, ASetValueDirtiesAndTheNextRunFollows) {
    buildTwoAdds(build);
    build.scene.run();
    build.pin("I.in")->setIntValue(7);
    for (const char* path : closureOfE) EXPECT_TRUE(build.pin(path)->isDirty()) << path;
    build.scene.run();
    EXPECT_EQ(build.seen<int32_t>("B.result"), 21);
}

TEST_F(SceneRun, EvaluatorsRunInTheOrderTheyWereAdded) {
    Names log;
    source("P", [&] { log.push_back("P"); });
    source("Q", [&] { log.push_back("Q"); });
    build.node("EP")->addDynamicInputPin();
    auto* third =
        build.probe("Probe", "R", [](LogicProbe& logic) { logic.output<NumericAttribute>("out"); });
    third->logic().onUpdate = [&](weft::Attribute*) { log.push_back("R"); };
    build.connect("R.out", "EP.in");
    build.scene.run();
    EXPECT_EQ(log, (Names{"P", "R", "Q"}));
}

TEST_F(SceneRun, UnconnectedOutputsAreNotComputed) {
    auto* node =
        build.probe("Probe", "P", [](LogicProbe& logic) { logic.output<NumericAttribute>("out"); });
    build.add("Evaluator", "E");
    build.scene.run();
    EXPECT_EQ(node->logic().updates, 0);
    EXPECT_EQ(node->logic().preUpdates, 0);
}

TEST_F(SceneRun, FlagsHoldDuringTheRunOnly) {
    bool evaluating = false;
    auto* node = source("P", [&] { evaluating = network().evaluating(); });
    auto* loop = build.probe("For", "F");
    bool before = false;
    loop->logic().onPreUpdate = [&] { before = network().evaluating(); };
    network().setDirtyHold(true);
    build.scene.run();
    EXPECT_TRUE(evaluating && before);
    EXPECT_FALSE(network().evaluating());
    EXPECT_FALSE(network().dirtyHold());
    EXPECT_EQ(node->logic().updates, 1);
}

TEST_F(SceneRun, ValuesSetByNodesStartNoWalks) {
    build.add("Real", "R").add("Add", "A").connect("R.real", "A.in0");
    source("P", [&] {
        build.at("A.in0")->setClean(true);
        build.pin("R.in")->setFloatValue(3.0f);
    });
    build.at("R.in")->setClean(true);
    build.scene.run();
    EXPECT_TRUE(build.at("A.in0")->isClean());
    EXPECT_EQ(build.pin("R.in")->getFloatValue(), 3.0f);
}

TEST_F(SceneRun, OnlyWhatIsAskedForIsToBeEvaluated) {
    buildTwoAdds(build);
    build.add("Real", "R");
    build.scene.run();
    for (const char* path : closureOfE) EXPECT_TRUE(build.at(path)->toBeEvaluated()) << path;
    EXPECT_FALSE(build.at("R.real")->toBeEvaluated());
    EXPECT_FALSE(build.at("R.in")->toBeEvaluated());
}

TEST_F(SceneRun, WithoutMonitoringNoFlagIsClearedAndNoTimeTaken) {
    source("P");
    build.add("Real", "R");
    network().setMonitoring(false);
    build.scene.setLastExecutionTime(7.0);
    build.scene.run();
    EXPECT_TRUE(build.at("R.real")->toBeEvaluated());
    EXPECT_EQ(build.scene.getLastExecutionTime(), 7.0);
    EXPECT_EQ(build.logic("P")->getLastUpdateTime(), 0.0);
    build.scene.setAllAttributesNotToBeEvaluated();
    EXPECT_TRUE(build.at("R.real")->toBeEvaluated());
    network().setMonitoring(true);
    build.scene.setAllAttributesNotToBeEvaluated();
    EXPECT_FALSE(build.at("R.real")->toBeEvaluated());
}

TEST_F(SceneRun, TakesTheTimeOfTheWholeRun) {
    source("P", [] { std::this_thread::sleep_for(std::chrono::milliseconds(20)); });
    build.scene.run();
    EXPECT_GE(build.scene.getLastExecutionTime(), 0.019);
    EXPECT_LT(build.scene.getLastExecutionTime(), 20.0);
    EXPECT_GE(build.logic("P")->getLastUpdateTime(), 0.019);
    EXPECT_LT(build.logic("EP")->getLastUpdateTime(), 0.019); // it does not pay for what it waits
}

TEST_F(SceneRun, SendsNoTextOfItsOwn) {
    source("P");
    build.scene.refMessages().pushError("stays");
    build.scene.run();
    EXPECT_TRUE(host.posts.empty() && host.lines.empty());
    EXPECT_EQ(SceneBuilder::textsOf(build.scene.getMessages()), (Names{"2 stays"}));
}

TEST_F(SceneRun, ANodeMayAddAnEvaluatorWhileItRuns) {
    source("P", [&] {
        if (build.scene.getNodePtrByFullName("root.Late")) return;
        build.add("Evaluator", "Late");
    });
    build.scene.run();
    EXPECT_EQ(build.scene.getArrUpdateNodes().size(), 2u);
    EXPECT_EQ(build.scene.lastOutcome(), RunOutcome::finished);
}

// --- failures ----------------------------------------------------------------------------------

namespace {

struct Failure {
    const char* name;
    std::function<void()> raise;
    Names posts;
    RunOutcome outcome;
};

const Failure failures[] = {
    {"loud exception",
     [] { throw Exception("it broke", 1); },
     {"2262|it broke"},
     RunOutcome::exception},
    {"generic exception",
     [] { throw GenericGraphException("it broke", criticalExceptionCode); },
     {"2262|it broke"},
     RunOutcome::exception},
    {"quiet cancel",
     [] { throw CancelGraphException("hush", cancelExceptionCode, true); },
     {},
     RunOutcome::quietCancel},
    {"cancel by call",
     [] { interruptGlobalGraph(); },
     {"2262|Graph execution cancelled"},
     RunOutcome::exception},
    {"no memory", [] { throw std::bad_alloc(); }, {"2083"}, RunOutcome::outOfMemory},
    {"standard exception",
     [] { throw std::runtime_error("oh"); },
     {"2286|oh"},
     RunOutcome::exception},
    {"exception of the base",
     [] { throw TM_Exception("base", 5); },
     {"2286|base"},
     RunOutcome::exception},
};

} // namespace

TEST_F(SceneRun, AFailureEndsTheRunAndIsReported) {
    for (const Failure& failure : failures) {
        SCOPED_TRACE(failure.name);
        build.scene.clear();
        host.posts.clear();
        auto* first = source("P");
        source("Q", failure.raise);
        auto* last = source("R");
        auto* loop = build.probe("For", "F");
        build.scene.run();
        EXPECT_EQ(host.posts, failure.posts);
        EXPECT_TRUE(host.lines.empty());
        EXPECT_EQ(build.scene.lastOutcome(), failure.outcome);
        EXPECT_EQ(build.scene.interruptedNodeName(), "root.Q");
        EXPECT_FALSE(build.scene.wasInterrupted());
        EXPECT_EQ(first->logic().updates, 1);
        EXPECT_FALSE(build.pin("P.out")->isDirty());
        EXPECT_TRUE(build.pin("Q.out")->isDirty());
        EXPECT_EQ(last->logic().updates, 0);
        EXPECT_TRUE(build.pin("R.out")->isDirty());
        EXPECT_EQ(loop->logic().postUpdates, 1);
        EXPECT_FALSE(network().evaluating());
        EXPECT_FALSE(build.node("Q")->isUpdating());
        EXPECT_GT(build.scene.getLastExecutionTime(), 0.0);
    }
}

TEST_F(SceneRun, AfterAFailureTheNextRunIsAsTheFirst) {
    bool fails = true;
    source("P", [&] {
        if (fails) throw Exception("once", 1);
    });
    build.scene.run();
    EXPECT_EQ(build.scene.lastOutcome(), RunOutcome::exception);
    fails = false;
    build.scene.run();
    EXPECT_EQ(build.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(build.scene.interruptedNodeName(), "");
    EXPECT_FALSE(build.pin("P.out")->isDirty());
}

TEST_F(SceneRun, ACriticalMessageNamesItsNode) {
    build.add("Compound", "C");
    auto* inner = build.probe("Probe", "C.P",
                              [](LogicProbe& logic) { logic.output<NumericAttribute>("out"); });
    inner->logic().onUpdate = [&](weft::Attribute*) {
        inner->logic().pushCritical("cannot go on", "no way");
    };
    build.add("Evaluator", "E").connect("C.P.out", "E.evaluate");
    build.scene.run();
    EXPECT_EQ(host.posts,
              (Names{"2286|[P] cannot go on - no way", "2262|[root.C.P] cannot go on - no way"}));
    EXPECT_EQ(build.messages("C.P"), (Names{"1 cannot go on - no way"}));
    EXPECT_EQ(build.scene.interruptedNodeName(), "root.C.P");
}

TEST_F(SceneRun, WhatIsNoStandardExceptionGoesThrough) {
    source("P", [] { throw 42; });
    auto* loop = build.probe("For", "F");
    EXPECT_THROW(build.scene.run(), int);
    EXPECT_TRUE(network().evaluating());
    EXPECT_EQ(loop->logic().postUpdates, 0);
    EXPECT_EQ(build.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(build.scene.interruptedNodeName(), "root.P");
    EXPECT_TRUE(host.posts.empty());
    EXPECT_THROW(build.scene.runNode(build.node("P")), int);
    EXPECT_THROW(build.scene.runPin(build.pin("P.out")), int);
}

TEST_F(SceneRun, WhatComesBeforeTheUpdatesIsNotGuarded) {
    auto* loop = build.probe("For", "F");
    loop->logic().onPreUpdate = [] { throw Exception("early", 1); };
    EXPECT_THROW(build.scene.run(), Exception);
    EXPECT_THROW(build.scene.runNode(loop), Exception);
    EXPECT_EQ(loop->logic().postUpdates, 0);
    EXPECT_TRUE(host.posts.empty());
}

TEST_F(SceneRun, CancelNodesEndTheRunLoudlyOrQuietly) {
    build.add("Real", "R").add("GraphCancel", "C").add("Evaluator", "E");
    build.connect("R.real", "C.in").connect("C.through", "E.evaluate");
    build.scene.run();
    EXPECT_EQ(build.scene.lastOutcome(), RunOutcome::finished);
    build.pin("C.cancel")->setBitValue(true);
    build.scene.run();
    EXPECT_EQ(build.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(host.posts,
              (Names{"2286|[C] Execution cancelled by node", "2262|Graph execution cancelled"}));
    host.posts.clear();
    build.pin("C.quiet")->setBitValue(true);
    build.scene.run();
    EXPECT_EQ(build.scene.lastOutcome(), RunOutcome::quietCancel);
    EXPECT_TRUE(host.posts.empty());
    EXPECT_EQ(build.scene.interruptedNodeName(), "root.C");
}

// --- interrupts --------------------------------------------------------------------------------

TEST_F(SceneRun, ARequestEndsTheNextRunAtItsFirstPull) {
    auto* node = source("P");
    auto* other = source("Q");
    build.scene.requestInterrupt();
    build.scene.run();
    EXPECT_TRUE(build.scene.wasInterrupted());
    EXPECT_EQ(build.scene.lastOutcome(), RunOutcome::interrupted);
    EXPECT_EQ(host.posts, (Names{"2262|Graph execution cancelled"}));
    EXPECT_EQ(build.scene.interruptedNodeName(), "root.P");
    EXPECT_EQ(node->logic().updates, 0);
    EXPECT_EQ(other->logic().updates, 0);
    build.scene.run();
    EXPECT_FALSE(build.scene.wasInterrupted());
    EXPECT_EQ(build.scene.interruptedNodeName(), "");
    EXPECT_EQ(other->logic().updates, 1);
}

TEST_F(SceneRun, AnotherThreadEndsARunThatWouldNotEnd) {
    std::atomic<bool> isRunning{false};
    source("P", [&] {
        isRunning = true;
        for (;;) {
            network().pollInterrupt();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    std::chrono::steady_clock::time_point asked;
    std::thread user([&] {
        while (!isRunning) std::this_thread::yield();
        asked = std::chrono::steady_clock::now();
        build.scene.requestInterrupt();
    });
    build.scene.run();
    const auto answered = std::chrono::steady_clock::now();
    user.join();
    EXPECT_TRUE(build.scene.wasInterrupted());
    EXPECT_LT(std::chrono::duration<double>(answered - asked).count(), 1.0);
}

TEST_F(SceneRun, NodesAndPinsThatRunAloneAnswerRequestsToo) {
    source("P");
    build.scene.requestInterrupt();
    build.scene.runNode(build.node("EP"));
    EXPECT_TRUE(build.scene.wasInterrupted());
    build.scene.requestInterrupt();
    build.scene.runPin(build.pin("EP.evaluate"));
    EXPECT_TRUE(build.scene.wasInterrupted());
    build.scene.runPin(build.pin("EP.evaluate"));
    EXPECT_FALSE(build.scene.wasInterrupted());
}

// --- one node, one pin -------------------------------------------------------------------------

TEST_F(SceneRun, RunningANodeTellsTheMessageWindow) {
    auto* node = source("P", [] { std::this_thread::sleep_for(std::chrono::milliseconds(5)); });
    build.scene.refMessages().pushError("old");
    network().setMonitoring(false);
    network().setDirtyHold(true);
    build.scene.runNode(node);
    ASSERT_EQ(host.lines.size(), 2u);
    EXPECT_EQ(host.lines[0], "GRAPH RUN");
    EXPECT_EQ(host.lines[1],
              text::format("GRAPH RUN TIME: %f", build.scene.getLastExecutionTime()));
    EXPECT_GE(build.scene.getLastExecutionTime(), 0.004);
    EXPECT_TRUE(build.scene.getMessages().isEmpty());
    EXPECT_FALSE(network().evaluating());
    EXPECT_FALSE(network().dirtyHold());
    EXPECT_EQ(node->logic().preUpdates, 1);
    EXPECT_EQ(node->logic().updates, 1);
    EXPECT_EQ(node->logic().postUpdates, 0);
}

TEST_F(SceneRun, RunningANodeReusesWhatIsClean) {
    buildTwoAdds(build);
    build.scene.run();
    build.pin("I.in")->setIntValue(1);
    build.scene.runNode(build.node("B"));
    EXPECT_EQ(build.seen<int32_t>("B.result"), 3);
    for (const char* path : {"I.in", "I.integer", "A.in0", "A.in1", "A.result", "B.in0", "B.in1"}) {
        EXPECT_FALSE(build.pin(path)->isDirty()) << path;
    }
    EXPECT_TRUE(build.pin("B.result")->isDirty());
    EXPECT_TRUE(build.pin("E.evaluate")->isDirty());
    CallbackLog log;
    build.scene.runNode(build.node("B"));
    EXPECT_EQ(log.take("update"), "B result");
}

TEST_F(SceneRun, RunningANodeWantsItsOutputsAndWhatTheyNeed) {
    buildTwoAdds(build);
    build.add("Real", "R");
    build.scene.runNode(build.node("A"));
    for (const char* path : {"A.result", "A.in0", "A.in1", "I.integer", "I.in"}) {
        EXPECT_TRUE(build.at(path)->toBeEvaluated()) << path;
    }
    for (const char* path : {"B.result", "B.in0", "B.in1", "E.evaluate", "R.real"}) {
        EXPECT_FALSE(build.at(path)->toBeEvaluated()) << path;
    }
    EXPECT_EQ(build.seen<int32_t>("A.result"), 10);
}

TEST_F(SceneRun, RunningAnEvaluatorComputesItsChainAnew) {
    buildTwoAdds(build);
    build.scene.run();
    CallbackLog log;
    build.scene.runNode(build.node("E"));
    EXPECT_EQ(log.take("update"), "I integer, A result, B result, E evaluate");
}

TEST_F(SceneRun, FailuresOfASingleNodeAreReportedAlike) {
    for (const Failure& failure : failures) {
        SCOPED_TRACE(failure.name);
        build.scene.clear();
        auto* node = source("Q", failure.raise);
        for (const bool asPin : {false, true}) {
            host.posts.clear();
            host.lines.clear();
            asPin ? build.scene.runPin(build.pin("Q.out")) : build.scene.runNode(node);
            EXPECT_EQ(host.posts, failure.posts);
            EXPECT_EQ(host.lines.size(), 2u);
            EXPECT_EQ(build.scene.lastOutcome(), failure.outcome);
            EXPECT_EQ(build.scene.interruptedNodeName(), "root.Q");
            EXPECT_FALSE(network().evaluating());
            EXPECT_EQ(node->logic().postUpdates, 0);
        }
    }
}

TEST_F(SceneRun, RunningAnOutputPinComputesItAnew) {
    buildTwoAdds(build);
    build.scene.run();
    CallbackLog log;
    build.scene.runPin(build.pin("B.result"));
    EXPECT_EQ(log.take("update"), "I integer, A result, B result");
    EXPECT_EQ(host.lines.size(), 2u);
    EXPECT_TRUE(build.at("B.result")->toBeEvaluated());
    EXPECT_TRUE(build.at("I.in")->toBeEvaluated());
    EXPECT_FALSE(build.at("E.evaluate")->toBeEvaluated());
    // It was clean before and is not dirtied; what needs it stays as it was.
    EXPECT_FALSE(build.pin("B.result")->isDirty());
    EXPECT_FALSE(build.pin("E.evaluate")->isDirty());
}

TEST_F(SceneRun, RunningACleanInputPinComputesNothing) {
    buildTwoAdds(build);
    build.scene.run();
    CallbackLog log;
    build.scene.runPin(build.pin("E.evaluate"));
    EXPECT_EQ(log.take("update"), "E evaluate"); // which finds its input clean
    build.at("E.evaluate")->setClean(false);
    build.scene.runPin(build.pin("E.evaluate"));
    EXPECT_EQ(log.take("update"), "I integer, A result, B result, E evaluate");
}

TEST_F(SceneRun, NothingIsRunForNobody) {
    build.scene.runNode(nullptr);
    build.scene.runPin(nullptr);
    EXPECT_TRUE(host.lines.empty());
    Pin loose(nullptr, 0u, Pin::inputFlag);
    build.scene.runPin(&loose);
    EXPECT_EQ(host.lines.size(), 2u);
}

TEST_F(SceneRun, AChainOfTenThousandNodesRuns) {
    build.add("Integer", "I").add("Evaluator", "E");
    build.pin("I.in")->setIntValue(7);
    Pin* end = build.pin("I.integer");
    for (int i = 0; i < 10000; ++i) {
        auto* node =
            static_cast<Node*>(SceneBuilder::manager().getNodeFactoryFromType("Add")->createNode());
        build.enter(node, "A" + std::to_string(i));
        ASSERT_NE(build.scene.connect(end, node->getArrInputPin()[0], false), nullptr);
        end = node->getArrOutputPin()[0];
    }
    ASSERT_NE(build.scene.connect(end, build.pin("E.evaluate"), false), nullptr);
    build.scene.run();
    EXPECT_EQ(build.seen<int32_t>("E.evaluate"), 7);
}

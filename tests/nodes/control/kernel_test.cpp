// SPDX-License-Identifier: Apache-2.0
// Kernels: what runs for which element on which thread, what comes out, and how a kernel fails.
#include "nodes/control/kernel.h"

#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <thread>

#include "core/exceptions.h"
#include "kernel_scene.h"

namespace control_tests {
namespace {

using Indices = std::vector<int32_t>;
using Reals = std::vector<float>;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// The nodes.

std::string pinsOf(Node* node) {
    std::string text;
    for (const Pin* pin : node->getArrInputPin()) {
        const weft::Attribute* input = pin->getWeftAttribute();
        text += pin->getName() + " " + std::to_string(input->specializations().size()) + " " +
                std::to_string(input->elementCountRule()) + " >";
        for (const weft::Attribute* output : input->affects()) text += " " + output->name();
        text += "; ";
        EXPECT_NE(pin->getDescription(), "") << pin->getName();
    }
    for (const Pin* pin : node->getArrOutputPin()) {
        text += pin->getName() + " " + pin->getWeftAttribute()->specialization() + "; ";
        EXPECT_NE(pin->getDescription(), "") << pin->getName();
    }
    return text;
}

TEST(Kernel, IsDescribed) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    Node* kernel = net.add("Kernel", "K", compound);
    EXPECT_TRUE(kernel->isIterator());
    EXPECT_EQ(kernel->getCategory(), "Execution");
    EXPECT_EQ(kernel->getDescription(),
              "The Kernel node is a special node that can be used to perform graph iterations in "
              "parallel.\nIf the start value is larger than the stop value, the kernel is not "
              "executed (except, if the stop value is negative).\nA Kernel node must always be "
              "inside a Compound node. It cannot be created at root level.");
    EXPECT_EQ(pinsOf(kernel), "array 7 0 > element thread id index; "
                              "threads 1 1 > element thread id index; "
                              "start 1 1 > element thread id index; "
                              "stop 1 1 > element thread id index; "
                              "element ; thread id Integer; index Integer; ");
    EXPECT_EQ(net.pin("C.K.threads")->getIntValue(), 0);
    EXPECT_EQ(net.pin("C.K.start")->getIntValue(), 0);
    EXPECT_EQ(net.pin("C.K.stop")->getIntValue(), -1);
    EXPECT_EQ(net.pin("C.K.start")->getDescription(),
              "The index of the first element of the input to apply the kernel to. If negative, "
              "the array is processed from the first value.");
    EXPECT_EQ(net.pin("C.K.stop")->getDescription(),
              "The index of the last element of the input to apply the kernel to. If negative, the "
              "array is processed up to the last element.");
}

TEST(Kernel, ElementHasTheTypeOfTheArray) {
    KernelScene net;
    EXPECT_EQ(net.at("C.K.element")->specialization(), "Real");
    net.cut("S.real", "C.x");
    EXPECT_EQ(net.at("C.K.element")->specializations().size(), 7u);
}

TEST(Kernel, AskingForAnOutputRunsNothing) {
    KernelScene net;
    weft::Attribute* index = net.at("C.K.index");
    index->setClean(false);
    index->pull();
    EXPECT_TRUE(index->isClean());
    weft::Attribute* foreign = net.at("S.real");
    foreign->setClean(false);
    net.node("C.K")->getCoreNode()->update(foreign);
    EXPECT_FALSE(foreign->isClean());
}

TEST(Kernel, AtRootLevelFails) {
    ControlScene net;
    weft::Node* kernel = net.add("Kernel", "K")->getCoreNode();
    EXPECT_THROW(kernel->iterate(net.at("K.index")),
                 tidemark::sluice::graph::GenericGraphException);
    EXPECT_EQ(net.messages("K"), "1 Kernel nodes cannot be at root level.");
    EXPECT_FALSE(kernel->isUpdating());
    net.at("K.index")->pull();
    EXPECT_TRUE(net.at("K.index")->isClean()) << "an update says nothing";
}

TEST(KernelVars, HasThreeOutputsAndTakesMore) {
    ControlScene net;
    Node* vars = net.add("KernelVars", "V");
    EXPECT_EQ(pinsOf(vars), "element ; thread id Integer; index Integer; ");
    EXPECT_TRUE(vars->dynamicPinsAllowed());
    EXPECT_NE(vars->getDescription(), "");
    SL_GraphScene copy;
    TM_String text;
    vars->addDynamicOutputPin()->setName("wall");
    ASSERT_TRUE(net.scene.write_XML_toString(text));
    ASSERT_TRUE(copy.read_XML_fromString(text));
    auto* read = static_cast<Node*>(copy.getNodePtrByFullName("root.V"));
    ASSERT_NE(read, nullptr);
    ASSERT_EQ(read->getArrOutputPin().size(), 4u);
    EXPECT_EQ(read->getArrOutputPin()[3]->getName(), "wall");
}

// In place.

TEST(Kernel, ChangesEveryElementOfAnArray) {
    AddingKernel net;
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.reals("S.real"), (Reals{11, 12, 13, 14}));
    EXPECT_EQ(net.at("C.y")->currentValue(), net.at("S.real")->value());
    EXPECT_EQ(net.at("E.evaluate")->currentValue(), net.at("S.real")->value());
    EXPECT_TRUE(net.at("C.y")->isClean());
    EXPECT_EQ(net.messages("C.K"), "");
    net.scene.run();
    EXPECT_EQ(net.reals("E.evaluate"), (Reals{11, 12, 13, 14})) << "S begins anew";
    net.setArray({5});
    net.scene.run();
    EXPECT_EQ(net.reals("E.evaluate"), (Reals{15}));
}

TEST(Kernel, GivesTheSameWithAnyNumberOfThreads) {
    Reals elements;
    Reals expected;
    for (int i = 0; i < 200; ++i) {
        elements.push_back(static_cast<float>(i));
        expected.push_back(static_cast<float>(i + 10));
    }
    AddingKernel net(elements);
    for (const int threads : {1, 2, 3, 8, 64, 199, 200, 201, 1000000, INT_MAX, 0, -1, INT_MIN}) {
        net.set("C.K.threads", threads);
        net.scene.run();
        EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
        EXPECT_EQ(net.reals("E.evaluate"), expected) << threads;
    }
}

TEST(Kernel, LeavesNoCopyBehind) {
    AddingKernel net;
    net.scene.run();
    const int references = net.at("S.real")->value()->refCount();
    for (int i = 0; i < 3; ++i) net.scene.run();
    EXPECT_EQ(net.at("S.real")->value()->refCount(), references);
}

TEST(Kernel, CopiesEverythingTheOutputsNeed) {
    AddingKernel net;
    net.add("Add", "A2", net.node("C"));
    net.cut("C.A.result", "C.P.element");
    net.link("C.A.result", "C.A2.in0");
    net.link("C.K.index", "C.A2.in1");
    net.link("C.A2.result", "C.P.element");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.reals("E.evaluate"), (Reals{11, 13, 15, 17}));
}

// Which elements.

TEST(Kernel, RunsEveryElementByDefault) {
    KernelScene net;
    net.noteIndices();
    EXPECT_EQ(net.indicesOfRun(), (Indices{0, 1, 2, 3}));
    EXPECT_TRUE(net.at("C.y")->isClean());
}

TEST(Kernel, EmptyArrayRunsNothing) {
    KernelScene net(Reals{});
    net.noteIndices();
    for (const int threads : {-1, 0, 1, 64, 1000000}) {
        net.set("C.K.threads", threads);
        EXPECT_EQ(net.indicesOfRun(), Indices{});
        EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
        EXPECT_TRUE(net.at("C.y")->isClean());
    }
}

TEST(Kernel, ArrayWithoutATypeRunsNothing) {
    KernelScene net;
    net.noteIndices();
    net.cut("S.real", "C.x");
    EXPECT_EQ(net.indicesOfRun(), Indices{});
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_TRUE(net.host.posts.empty());
}

TEST(Kernel, RangeIsCappedAtTheLastElement) {
    KernelScene net(Reals{1, 2, 3, 4, 5, 6});
    net.noteIndices();
    struct Range {
        int start, stop;
        Indices indices;
    };
    for (const Range& range : std::vector<Range>{{0, 100, {0, 1, 2, 3, 4, 5}},
                                                 {4, -1, {4, 5}},
                                                 {4, INT_MIN, {4, 5}},
                                                 {4, 2, {}},
                                                 {2, 4, {2, 3, 4}},
                                                 {5, 5, {5}},
                                                 {6, -1, {}},
                                                 {INT_MAX, INT_MAX, {}}}) {
        net.split(2, range.start, range.stop);
        EXPECT_EQ(net.indicesOfRun(), range.indices) << range.start << " " << range.stop;
    }
}

// A negative start is counted without a sign: shares that pass zero run nothing.
TEST(Kernel, NegativeStartSkipsTheSharesThatPassZero) {
    KernelScene net;
    net.noteIndices();
    net.split(1, -2, -1);
    EXPECT_EQ(net.indicesOfRun(), Indices{});
    net.split(2, -2, -1);
    EXPECT_EQ(net.indicesOfRun(), (Indices{1, 2, 3}));
    net.split(3, -2, -1);
    EXPECT_EQ(net.indicesOfRun(), (Indices{0, 1, 2, 3}));
    net.split(6, -2, -1);
    EXPECT_EQ(net.indicesOfRun(), (Indices{-2, 0, 1, 2, 3}));
}

TEST(Kernel, ElementOutsideTheArrayIsADefault) {
    KernelScene net;
    net.add("GetElement", "G", net.node("C")); // holds the element's type
    net.add("Add", "A", net.node("C"));
    net.link("C.K.element", "C.A.in0");
    net.link("C.A.result", "C.IO.y");
    net.add("Real", "R", net.node("C"));
    net.link("C.R.real", "C.A.in1");
    net.pin("C.R.in")->setFloatValue(0.5f);
    net.split(6, -2, -2);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    net.split(8, -4, 0);
    net.scene.run();
    EXPECT_EQ(net.reals("E.evaluate").size(), 1u);
}

// Which thread.

std::multiset<int32_t> threadsOfRun(KernelScene& net, int threads) {
    net.split(threads, 0, -1);
    net.indicesOfRun();
    return Note::noted;
}

TEST(Kernel, SplitsTheElementsEvenlyAndTheRestToTheLastThread) {
    KernelScene net(Reals(10, 1.0f));
    net.noteOutput("thread id");
    EXPECT_EQ(threadsOfRun(net, 3), (std::multiset<int32_t>{0, 0, 0, 1, 1, 1, 2, 2, 2, 2}));
    net.setArray({1, 2});
    EXPECT_EQ(threadsOfRun(net, 8), (std::multiset<int32_t>{7, 7}));
    EXPECT_EQ(threadsOfRun(net, 1000000), (std::multiset<int32_t>{999999, 999999}));
    EXPECT_EQ(threadsOfRun(net, 2), (std::multiset<int32_t>{0, 1}));
}

TEST(Kernel, NumberOfThreadsComesFromTheNodeItsParentsOrTheHost) {
    class Host : public ControlHost {
    public:
        int numberOfThreads() const override { return 2; }
    };
    KernelScene net(Reals(8, 1.0f));
    net.noteOutput("thread id");
    const Host host;
    const auto last = [&](int threads) { return *threadsOfRun(net, threads).rbegin(); };
    EXPECT_EQ(last(0), 1);
    net.node("C")->setNumberOfThreads(3);
    EXPECT_EQ(last(0), 2);
    net.node("C.K")->setNumberOfThreads(4);
    EXPECT_EQ(last(0), 3);
    EXPECT_EQ(last(5), 4);
}

// Every index once, in order, on its own thread.
TEST(Kernel, EachThreadTakesItsElementsInOrder) {
    KernelScene net(Reals(10, 1.0f));
    net.add("Add", "A", net.node("C"));
    net.add("Note", "N", net.node("C"));
    net.add("Integer", "M", net.node("C"));
    net.link("C.K.index", "C.N.in");
    net.link("C.N.result", "C.IO.y");
    std::mutex mutex;
    std::map<std::thread::id, Indices> byThread;
    net.split(3, 0, -1);
    Note::onUpdate = [&](Note&, int32_t index) {
        const std::lock_guard<std::mutex> lock(mutex);
        byThread[std::this_thread::get_id()].push_back(index);
    };
    net.scene.run();
    std::set<Indices> shares;
    for (const auto& [thread, indices] : byThread) {
        EXPECT_NE(thread, std::this_thread::get_id());
        shares.insert(indices);
    }
    EXPECT_EQ(shares, (std::set<Indices>{{0, 1, 2}, {3, 4, 5}, {6, 7, 8, 9}}));
}

TEST(Kernel, WhatDoesNotDependOnTheElementIsComputedOncePerThread) {
    AddingKernel net;
    net.add("Note", "N", net.node("C"));
    net.add("Integer", "I", net.node("C"));
    net.link("C.I.integer", "C.N.in");
    net.wall("C.IO", false, "n");
    net.link("C.N.result", "C.IO.n");
    net.scene.run();
    EXPECT_EQ(Note::updates, 3);
    EXPECT_EQ(net.reals("E.evaluate"), (Reals{11, 12, 13, 14}));
}

// What comes out.

TEST(Kernel, ResultIsTheOneOfTheLastElement) {
    for (const int threads : {1, 2, 3, 4, 64}) {
        KernelScene net;
        net.noteIndices();
        net.set("C.K.threads", threads);
        net.scene.run();
        EXPECT_EQ(net.integer("E.evaluate"), 3) << threads;
        EXPECT_EQ(net.integer("C.N.result"), 3);
        net.scene.run();
        EXPECT_EQ(net.integer("E.evaluate"), 3) << threads;
    }
}

TEST(Kernel, ElementItselfMayBeTheResult) {
    for (const int threads : {1, 3}) {
        KernelScene net(Reals{5, 6, 7});
        net.link("C.K.element", "C.IO.y");
        net.set("C.K.threads", threads);
        net.scene.run();
        EXPECT_EQ(net.reals("E.evaluate"), (Reals{7})) << threads;
    }
}

TEST(Kernel, ResultOfAnyKindComesOut) {
    for (const int threads : {1, 2, 8}) {
        KernelScene net(Reals(100, 1.0f));
        net.add("Spell", "T", net.node("C"));
        net.link("C.K.index", "C.T.in");
        net.link("C.T.text", "C.IO.y");
        net.set("C.K.threads", threads);
        net.scene.run();
        const auto* text = weft::valueAs<weft::StringValue>(net.at("E.evaluate")->currentValue());
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(text->valueAt(0), "a text too long to lie in place 99") << threads;
    }
}

TEST(Kernel, ArrayAsAResultIsTheLastOne) {
    for (const int threads : {1, 2, 5}) {
        AddingKernel net;
        net.pin("C.P.array")->removeInternalConnection(net.pin("C.P.out array"));
        net.set("C.K.threads", threads);
        net.scene.run();
        EXPECT_EQ(net.reals("S.real"), (Reals{1, 2, 3, 4}));
        EXPECT_EQ(net.reals("E.evaluate"), (Reals{1, 2, 3, 14})) << threads;
    }
}

TEST(Kernel, ArrayThatThreadsShareCannotGrow) {
    AddingKernel net;
    net.add("Integer", "I", net.node("C"));
    net.set("C.I.in", 50);
    net.cut("C.K.index", "C.P.index");
    net.link("C.I.integer", "C.P.index");
    net.set("C.K.threads", 2);
    net.scene.run();
    EXPECT_EQ(net.reals("S.real").size(), 4u);
    ASSERT_FALSE(net.host.posts.empty());
    EXPECT_NE(net.host.posts[0].find("cannot change its size"), std::string::npos)
        << net.host.posts[0];
    net.set("C.K.threads", 1);
    net.scene.run();
    EXPECT_EQ(net.reals("S.real").size(), 51u);
}

TEST(Kernel, SecondRunSeesNewValues) {
    KernelScene net;
    net.noteIndices();
    net.scene.run();
    net.setArray(Reals(7, 0.0f));
    net.scene.run();
    EXPECT_EQ(net.integer("E.evaluate"), 6);
}

TEST(Kernel, WorksOutsideARun) {
    AddingKernel net;
    net.at("E.evaluate")->pull();
    EXPECT_EQ(net.reals("C.y"), (Reals{11, 12, 13, 14}));
}

TEST(Kernel, UnconnectedOutputOfTheCompoundIsLeftAlone) {
    AddingKernel net;
    net.wall("C.IO", false, "nothing");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.reals("E.evaluate"), (Reals{11, 12, 13, 14}));
}

TEST(Kernel, ValueThatPassesThroughComesOut) {
    AddingKernel net;
    Node* compound = net.node("C");
    net.add("CompoundInterface", "IO2", compound);
    net.wall("C.IO2", false, "again");
    net.link("C.IO.x", "C.IO2.again");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.reals("E.evaluate"), (Reals{11, 12, 13, 14}));
    EXPECT_EQ(net.at("C.again")->currentValue(), net.at("S.real")->value());
}

TEST(Kernel, ReadsInputsThatNoOutputIsSaidToDependOn) {
    KernelScene net(Reals(4, 1.0f));
    net.noteIndices();
    net.cut("C.N.result", "C.IO.y");
    net.add("GraphCancel", "X", net.node("C"));
    net.add("Bit", "yes", net.node("C"));
    net.pin("C.yes.in")->setBitValue(true);
    net.pin("C.X.cancel")->setBitValue(true);
    net.link("C.yes.bit", "C.X.quiet");
    net.link("C.N.result", "C.X.in");
    net.link("C.X.through", "C.IO.y");
    net.scene.run();
    EXPECT_TRUE(net.host.posts.empty()) << "a quiet cancellation: " << net.host.posts[0];
}

// Names.

TEST(Kernel, NamesMayHoldPointsAndBlanks) {
    AddingKernel net;
    net.node("C.A")->setName("a.b c");
    net.node("C.G")->setName("kernelEvaluator");
    net.node("C.K")->setName("my.kernel");
    net.pin("C.IO.x")->setName("in.x");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.reals("E.evaluate"), (Reals{11, 12, 13, 14}));
}

TEST(Kernel, VariablesMayBeNamedLikeTheKernelsOwnPins) {
    AddingKernel net;
    Node* compound = net.node("C");
    net.add("Real", "S2");
    net.pin("S2.in")->setFloatValue(100.0f);
    net.add("CompoundInterface", "IO2", compound);
    net.wall("C.IO2", true, "index");
    net.link("S2.real", "C.index");
    net.cut("C.R.real", "C.A.in1");
    net.link("C.IO2.index", "C.A.in1");
    net.scene.run();
    EXPECT_EQ(net.reals("E.evaluate"), (Reals{101, 102, 103, 104}));
}

// Nesting.

TEST(Kernel, CompoundsInsideAreCopiedWhole) {
    AddingKernel net;
    Node* inner = net.add("Compound", "D", net.node("C"));
    net.add("CompoundInterface", "IO", inner);
    net.add("Add", "B", inner);
    net.add("Real", "R", inner);
    net.pin("C.D.R.in")->setFloatValue(1000.0f);
    net.wall("C.D.IO", true, "in");
    net.wall("C.D.IO", false, "out");
    net.cut("C.A.result", "C.P.element");
    net.link("C.A.result", "C.D.in");
    net.link("C.D.IO.in", "C.D.B.in0");
    net.link("C.D.R.real", "C.D.B.in1");
    net.link("C.D.B.result", "C.D.IO.out");
    net.link("C.D.out", "C.P.element");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.reals("E.evaluate"), (Reals{1011, 1012, 1013, 1014}));
}

/// In C a compound D with a loop, whose output counts up to the kernel's index.
void addInnerLoop(KernelScene& net, const char* loopType) {
    Node* inner = net.add("Compound", "D", net.node("C"));
    net.add("CompoundInterface", "IO", inner);
    net.add(loopType, "F", inner);
    net.add("Note", "N", inner);
    net.wall("C.D.IO", true, "n");
    net.wall("C.D.IO", false, "m");
    net.link("C.K.index", "C.D.n");
    net.link("C.D.N.result", "C.D.IO.m");
    net.link("C.D.m", "C.IO.y");
}

TEST(Kernel, LoopInsideRunsForEveryElement) {
    KernelScene net;
    addInnerLoop(net, "For");
    net.link("C.D.F.current index", "C.D.N.in");
    net.link("C.D.IO.n", "C.D.F.stop");
    EXPECT_EQ(net.indicesOfRun(), (Indices{0, 0, 0, 1, 1, 2}));
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
}

TEST(Kernel, KernelInsideAKernelRunsForEveryElement) {
    KernelScene net;
    addInnerLoop(net, "Kernel");
    net.wall("C.D.IO", true, "a");
    net.link("C.IO.x", "C.D.a");
    net.link("C.D.IO.a", "C.D.F.array");
    net.link("C.D.F.index", "C.D.N.in");
    net.link("C.D.IO.n", "C.D.F.start");
    net.set("C.D.F.threads", 2);
    net.set("C.K.threads", 3);
    EXPECT_EQ(net.indicesOfRun(), (Indices{0, 1, 1, 2, 2, 2, 3, 3, 3, 3}));
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_TRUE(net.host.posts.empty());
}

// Failures.

TEST(Kernel, SecondKernelInTheCompoundFails) {
    AddingKernel net;
    net.add("Kernel", "K2", net.node("C"));
    net.wall("C.IO", false, "z");
    net.link("C.K2.index", "C.IO.z");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(net.messages("C"), "1 Only one kernel per compound is allowed");
    EXPECT_FALSE(net.node("C.K")->isUpdating());
}

TEST(Kernel, TwoOutputsOfTheKernelForOneOutputFail) {
    KernelScene net;
    net.add("Add", "A", net.node("C"));
    net.link("C.K.element", "C.A.in0");
    net.link("C.K.index", "C.A.in1");
    net.link("C.A.result", "C.IO.y");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(net.messages("C"), "1 Only one iterator node is allowed per compound level.");
}

TEST(Kernel, InputThatWaitsForAnOutputFails) {
    AddingKernel net;
    Node* compound = net.node("C");
    net.add("Real", "O");
    net.wall("C.IO", true, "back");
    net.add("Add", "A2", compound);
    net.wall("C.IO", false, "extra");
    net.link("C.R.real", "C.A2.in0");
    net.link("C.K.index", "C.A2.in1");
    net.link("C.A2.result", "C.IO.extra");
    net.link("C.extra", "O.in");
    net.link("O.real", "C.back");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(net.messages("C.K"), "1 an input of the compound depends on one of its outputs");
    EXPECT_FALSE(net.node("C.K")->isUpdating());
}

TEST(Kernel, FailureOfOneElementLeavesTheOthers) {
    KernelScene net(Reals(10, 1.0f));
    net.noteIndices();
    Note::onUpdate = [](Note& node, int32_t index) {
        if (index == 4) node.pushCritical("four", "is not allowed");
    };
    net.split(2, 0, -1);
    net.scene.run();
    EXPECT_EQ(Note::updates, 10);
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished) << "the kernel goes on";
    EXPECT_EQ(net.messages("C.N"), "1 four - is not allowed");
    EXPECT_NE(std::find(net.host.posts.begin(), net.host.posts.end(),
                        "2262|[root.C.N] four - is not allowed"),
              net.host.posts.end())
        << testing::PrintToString(net.host.posts);
}

TEST(Kernel, ExceptionsOfAnyKindStayOnTheirThread) {
    for (const int kind : {0, 1, 2}) {
        KernelScene net(Reals(6, 1.0f));
        net.noteIndices();
        Note::onUpdate = [kind](Note&, int32_t index) {
            if (index % 2 == 0) return;
            if (kind == 0) throw std::runtime_error("standard");
            if (kind == 1) throw std::bad_alloc();
            throw 42;
        };
        net.split(3, 0, -1);
        net.scene.run();
        EXPECT_EQ(Note::updates, 6) << kind;
        EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
        EXPECT_EQ(net.host.posts.size(), 3u) << testing::PrintToString(net.host.posts);
    }
}

TEST(Kernel, MessagesOfManyElementsAreToldOnce) {
    KernelScene net(Reals(1000, 1.0f));
    net.noteIndices();
    Note::onUpdate = [](Note& node, int32_t) { node.pushWarning("careful"); };
    net.split(4, 0, -1);
    net.scene.run();
    EXPECT_EQ(net.messages("C.N"), "3 careful");
}

TEST(Kernel, CancelEndsTheElementOnly) {
    KernelScene net(Reals(4, 1.0f));
    net.noteIndices();
    net.cut("C.N.result", "C.IO.y");
    net.add("GraphCancel", "X", net.node("C"));
    net.pin("C.X.cancel")->setBitValue(true);
    net.link("C.N.result", "C.X.in");
    net.link("C.X.through", "C.IO.y");
    net.split(2, 0, -1);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_TRUE(net.at("C.y")->isClean());
    EXPECT_EQ(net.messages("C.X"), "1 Execution cancelled by node");
}

// Interrupts.

void expectStops(KernelScene& net, const std::string& nodeName) {
    Clock::time_point asked;
    std::thread other([&] {
        std::this_thread::sleep_for(milliseconds(100));
        asked = Clock::now();
        net.scene.requestInterrupt();
    });
    net.scene.run();
    const auto took = Clock::now() - asked;
    other.join();
    EXPECT_TRUE(net.scene.wasInterrupted());
    EXPECT_EQ(net.scene.interruptedNodeName(), nodeName);
    EXPECT_LT(took, std::chrono::seconds(5));
    EXPECT_FALSE(net.at("C.y")->isClean());
    EXPECT_EQ(net.host.posts, (std::vector<std::string>{"2262|Graph execution cancelled"}));
    EXPECT_FALSE(net.node("C.K")->isUpdating());
}

TEST(Kernel, SleepOfAnHourStopsAtAnInterrupt) {
    KernelScene net;
    net.noteIndices();
    net.cut("C.N.result", "C.IO.y");
    net.add("Sleep", "Z", net.node("C"));
    net.set("C.Z.milisecs", 3600000);
    net.link("C.N.result", "C.Z.in");
    net.link("C.Z.through", "C.IO.y");
    net.split(2, 0, -1);
    expectStops(net, "root.C.Z");
}

TEST(Kernel, EndlessLoopInsideStopsAtAnInterrupt) {
    KernelScene net;
    addInnerLoop(net, "For");
    net.link("C.D.F.current index", "C.D.N.in");
    net.set("C.D.F.stop", 1);
    net.set("C.D.F.step", 0);
    net.add("Add", "A", net.node("C.D"));
    net.cut("C.D.N.result", "C.D.IO.m");
    net.link("C.D.N.result", "C.D.A.in0");
    net.link("C.D.IO.n", "C.D.A.in1");
    net.link("C.D.A.result", "C.D.IO.m");
    net.split(2, 0, -1);
    Clock::time_point asked;
    std::thread other([&] {
        std::this_thread::sleep_for(milliseconds(100));
        net.scene.requestInterrupt();
    });
    net.scene.run();
    other.join();
    EXPECT_TRUE(net.scene.wasInterrupted());
    EXPECT_EQ(net.scene.interruptedNodeName().rfind("root.C.D", 0), 0u)
        << net.scene.interruptedNodeName();
}

TEST(Kernel, ManyElementsStopAtAnInterrupt) {
    KernelScene net(Reals(1, 1.0f));
    net.noteIndices();
    net.split(4, INT_MIN, -1); // half a thousand million elements that the array has not got
    std::thread other([&] {
        std::this_thread::sleep_for(milliseconds(100));
        net.scene.requestInterrupt();
    });
    net.scene.run();
    other.join();
    EXPECT_TRUE(net.scene.wasInterrupted());
}

TEST(Kernel, RunAfterAnInterruptIsWhole) {
    AddingKernel net;
    net.scene.requestInterrupt();
    net.scene.run();
    EXPECT_TRUE(net.scene.wasInterrupted());
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.reals("E.evaluate"), (Reals{11, 12, 13, 14}));
}

// What the host sees of the copies: nothing.

int toldNodes = 0;

TEST(Kernel, CopiesAreToldToNobody) {
    AddingKernel net;
    toldNodes = 0;
    using tidemark::graph::GraphScene;
    GraphScene::addConnectionCallback_ = [](GraphScene*, GraphNodeBase*, GraphConnection*) {
        ++toldNodes;
    };
    GraphScene::removeConnectionCallback_ = GraphScene::addConnectionCallback_;
    GraphScene::addNodeCallback_ = [](GraphScene*, GraphNodeBase*, GraphNodeBase*) { ++toldNodes; };
    GraphScene::removeNodeCallback_ = GraphScene::addNodeCallback_;
    SceneManager::node_renamedCallback_ = [](const TM_String&) { ++toldNodes; };
    net.scene.run();
    GraphScene::addConnectionCallback_ = nullptr;
    GraphScene::removeConnectionCallback_ = nullptr;
    GraphScene::addNodeCallback_ = nullptr;
    GraphScene::removeNodeCallback_ = nullptr;
    SceneManager::node_renamedCallback_ = nullptr;
    EXPECT_EQ(toldNodes, 0);
    EXPECT_EQ(net.reals("E.evaluate"), (Reals{11, 12, 13, 14}));
}

// All element types.

struct ElementType {
    const char* name;
    weft::NumericType type;
};

class KernelElements : public testing::TestWithParam<ElementType> {};

TEST_P(KernelElements, AreHandedOver) {
    const KernelTypes types;
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    net.add("CompoundInterface", "IO", compound);
    net.add("Kernel", "K", compound);
    net.add("Evaluator", "E");
    net.wall("C.IO", false, "y");
    net.link("C.K.element", "C.IO.y");
    net.link("C.y", "E.evaluate");
    auto* array = static_cast<weft::NumericAttribute*>(net.at("C.K.array"));
    array->setSpecializationOverride(GetParam().name);
    array->updateSpecializations(nullptr);
    ASSERT_EQ(array->ownNumeric().type(), GetParam().type);
    weft::withElementType(GetParam().type, [&]<typename T>() {
        T last = tidemark::ElementDefault<T>::value();
        reinterpret_cast<unsigned char*>(&last)[0] = 1;
        array->ownNumeric().setValues<T>(
            {tidemark::ElementDefault<T>::value(), tidemark::ElementDefault<T>::value(), last});
        array->valueChanged();
        for (const int threads : {1, 2}) {
            net.pin("C.K.threads")->setIntValue(threads);
            net.scene.run();
            const auto* result = weft::valueAs<weft::Numeric>(net.at("E.evaluate")->currentValue());
            ASSERT_NE(result, nullptr);
            ASSERT_EQ(result->size(), 1u);
            EXPECT_TRUE(result->value<T>() == last) << threads;
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Types, KernelElements,
                         testing::Values(ElementType{"Integer", weft::NumericType::integer},
                                         ElementType{"Integer64", weft::NumericType::integer64},
                                         ElementType{"Real", weft::NumericType::real},
                                         ElementType{"Vector3", weft::NumericType::vector3},
                                         ElementType{"Color4", weft::NumericType::color4},
                                         ElementType{"Quaternion", weft::NumericType::quaternion},
                                         ElementType{"Matrix4", weft::NumericType::matrix4}),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace control_tests

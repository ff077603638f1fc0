// SPDX-License-Identifier: Apache-2.0
// Housekeeping nodes inside loops and kernels, where they meet values that others still use.
#include <gtest/gtest.h>

#include <algorithm>

#include "kernel_scene.h"

namespace control_tests {
namespace {

using Lines = std::vector<std::string>;

/// Takes what nodes print, from any thread.
class PrintedLines : public ControlHost {
public:
    void message(const TM_String& line) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        lines_.push_back(line);
    }
    Lines sorted() {
        const std::lock_guard<std::mutex> lock(mutex_);
        std::sort(lines_.begin(), lines_.end());
        return lines_;
    }

private:
    std::mutex mutex_;
    Lines lines_;
};

class PurgeInBody : public testing::TestWithParam<const char*> {};

// IO.x > X > G.array, K.index > G.index, G.element > IO.y: what all threads read is purged by each.
TEST_P(PurgeInBody, OfWhatThreadsShareIsRefusedAndOfOneThreadIsDone) {
    for (const int threads : {1, 3}) {
        KernelScene net;
        Node* compound = net.node("C");
        net.add(GetParam(), "X", compound);
        net.add("GetElement", "G", compound);
        net.link("C.IO.x", "C.X.in");
        net.link("C.X.through", "C.G.array");
        net.link("C.K.index", "C.G.index");
        net.link("C.G.element", "C.IO.y");
        net.set("C.K.threads", threads);
        net.scene.run();
        EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
        const std::string refusal =
            "2286|an array that the threads of a kernel share cannot change its size";
        const bool isShared = threads > 1;
        EXPECT_EQ(net.host.posts, Lines(isShared ? 4 : 0, refusal)) << "one for each element";
        EXPECT_EQ(net.reals("S.real").size(), isShared ? 4u : 1u);
        net.cut("C.IO.x", "C.X.in");
        net.cut("C.X.through", "C.G.array");
        net.link("C.IO.x", "C.G.array");
        net.scene.run();
        EXPECT_EQ(net.reals("E.evaluate"), std::vector<float>{4.0f}) << "the next run is whole";
    }
}

// K.index > N > X > IO.y: what is purged belongs to the thread, but for the scene's purge, which
// meets the shared array as well.
TEST_P(PurgeInBody, OfAThreadsOwnValuesGoesOn) {
    const bool isOfScene = std::string(GetParam()) == "GraphPurgeMemory";
    for (const int threads : {1, 3}) {
        KernelScene net;
        Node* compound = net.node("C");
        net.add("Note", "N", compound);
        net.add(GetParam(), "X", compound);
        net.link("C.K.index", "C.N.in");
        net.link("C.N.result", "C.X.in");
        net.link("C.X.through", "C.IO.y");
        net.set("C.K.threads", threads);
        EXPECT_EQ(net.indicesOfRun(), (std::vector<int32_t>{0, 1, 2, 3}));
        EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
        EXPECT_EQ(net.reals("S.real").size(), isOfScene && threads == 1 ? 1u : 4u);
        EXPECT_EQ(net.host.posts.empty(), !isOfScene || threads == 1);
    }
}

// F.current index > X > T.in: the counter itself is purged.
TEST_P(PurgeInBody, OfTheCounterDoesNotStopTheLoop) {
    LoopScene net;
    net.add(GetParam(), "X", net.node("C"));
    Tap* tap = net.logic<Tap>("Tap", "T", "C");
    net.wall("C.IO", false, "t");
    net.link("C.F.current index", "C.X.in");
    net.link("C.X.through", "C.T.in");
    net.link("C.T.out", "C.IO.t");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(tap->seen, (std::vector<int32_t>{0, 0, 0, 0}));
}

INSTANTIATE_TEST_SUITE_P(Types, PurgeInBody,
                         testing::Values("PinPurgeMemory", "NodePurgeMemory", "GraphPurgeMemory"),
                         [](const auto& info) { return std::string(info.param); });

TEST(SetGraphNumberOfThreads, InAKernelActsOnTheCopiesAlone) {
    KernelScene net;
    Node* compound = net.node("C");
    net.add("SetGraphNumberOfThreads", "X", compound);
    net.add("GetGraphNumberOfThreads", "G", compound);
    net.add("Note", "N", compound);
    net.link("C.K.index", "C.X.in");
    net.link("C.X.through", "C.G.in");
    net.link("C.G.threads", "C.N.in");
    net.link("C.N.result", "C.IO.y");
    net.set("C.X.threads", 9);
    net.set("C.K.threads", 2);
    EXPECT_EQ(net.indicesOfRun(), (std::vector<int32_t>{9, 9, 9, 9}));
    EXPECT_EQ(compound->getNumberOfThreads(), 0);
    EXPECT_EQ(net.scene.getScenePrivate()->rootNode.getStoredNumberOfThreads(), 0);
    EXPECT_EQ(net.integer("E.evaluate"), 9);
}

TEST(SetGraphNumberOfThreads, IsThereForTheLoopThatComesAfter) {
    LoopScene net;
    net.add("SetGraphNumberOfThreads", "X", net.node("C"));
    net.add("GetGraphNumberOfThreads", "G", net.node("C"));
    Tap* tap = net.logic<Tap>("Tap", "T", "C");
    net.wall("C.IO", false, "t");
    net.link("C.F.current index", "C.X.threads");
    net.link("C.F.current index", "C.X.in");
    net.link("C.X.through", "C.G.in");
    net.link("C.G.threads", "C.T.in");
    net.link("C.T.out", "C.IO.t");
    net.scene.run();
    EXPECT_EQ(tap->seen, (std::vector<int32_t>{0, 1, 2, 3})) << "set anew in each iteration";
    EXPECT_EQ(net.node("C")->getNumberOfThreads(), 3);
}

TEST(MessagePrint, PrintsOnceForEachIterationAndElement) {
    for (const int threads : {1, 3}) {
        KernelScene net;
        net.add("MessagePrint", "P", net.node("C"));
        net.link("C.K.index", "C.P.value");
        net.link("C.P.through", "C.IO.y");
        net.set("C.K.threads", threads);
        PrintedLines host;
        net.scene.run();
        EXPECT_EQ(host.sorted(), (Lines{"P: 0", "P: 1", "P: 2", "P: 3"})) << threads;
    }
    LoopScene net;
    net.add("MessagePrint", "P", net.node("C"));
    net.wall("C.IO", false, "t");
    net.link("C.F.current index", "C.P.value");
    net.link("C.P.through", "C.IO.t");
    PrintedLines host;
    net.scene.run();
    EXPECT_EQ(host.sorted(), (Lines{"P: 0", "P: 1", "P: 2", "P: 3"}));
}

TEST(MemoryUsageInfo, MayStandInAKernel) {
    KernelScene net;
    Node* compound = net.node("C");
    net.add("MemoryUsageInfo", "M", compound);
    net.link("C.K.index", "C.M.in");
    net.link("C.M.graph kb", "C.IO.y");
    net.set("C.K.threads", 2);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_GT(net.reals("E.evaluate").at(0), 0.0f);
}

} // namespace
} // namespace control_tests

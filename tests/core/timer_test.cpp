// SPDX-License-Identifier: Apache-2.0
// Tests of the stop watch and of what nodes measure with it.
#include "core/timer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "support/callback_log.h"
#include "support/net.h"
#include "test_nodes.h"

using namespace weft;
using support::CallbackLog;
using support::Net;
using test_nodes::ScriptNode;

namespace {

void nap(int milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

} // namespace

TEST(Timer, FreshOneShowsNothing) {
    const Timer timer;
    EXPECT_FALSE(timer.isRunning());
    EXPECT_EQ(timer.getTime(), 0.0);
}

TEST(Timer, AgreesWithTheSteadyClock) {
    Timer timer;
    const auto begin = std::chrono::steady_clock::now();
    timer.start();
    EXPECT_TRUE(timer.isRunning());
    nap(300);
    const double measured = timer.getTime();
    const double expected =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_NEAR(measured, expected, 0.02);
    EXPECT_GE(measured, 0.29);
}

TEST(Timer, StoppedTimeDoesNotCount) {
    Timer timer;
    timer.start();
    nap(20);
    timer.stop();
    EXPECT_FALSE(timer.isRunning());
    const double stopped = timer.getTime();
    EXPECT_GE(stopped, 0.018);
    nap(30);
    EXPECT_NEAR(timer.getTime(), stopped, 1e-3);
    timer.resume();
    timer.resume();
    nap(20);
    timer.stop();
    timer.stop();
    EXPECT_GE(timer.getTime(), stopped + 0.018);
}

TEST(Timer, StartingAnewForgetsTheSum) {
    Timer timer;
    timer.start();
    nap(50);
    timer.start();
    EXPECT_LT(timer.getTime(), 0.045);
}

TEST(NodeTimer, StartsOnceAndResumesAfterwards) {
    Net net;
    Node* node = net.add<Node>("N");
    EXPECT_FALSE(node->stopNodeTimer(true));
    EXPECT_EQ(node->getLastUpdateTime(), 0.0);
    node->startNodeTimer();
    nap(20);
    EXPECT_TRUE(node->stopNodeTimer(true));
    const double first = node->getLastUpdateTime();
    EXPECT_GE(first, 0.018);
    node->startNodeTimer();
    nap(20);
    EXPECT_TRUE(node->stopNodeTimer(false)); // not stored
    EXPECT_EQ(node->getLastUpdateTime(), first);
    EXPECT_FALSE(node->stopNodeTimer(true));
    EXPECT_GE(node->getLastUpdateTime(), first + 0.018);
    node->resumeNodeTimer();
    EXPECT_TRUE(node->stopNodeTimer(false));
}

TEST(NodeTimer, ResetStartsFromZeroAndMayTakeTheAttributesAlong) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    a->onUpdate = [](Attribute*) { nap(10); };
    net.at("B.in")->pull();
    EXPECT_GT(net.at("A.out")->accumulatedTime(), 0.0);
    EXPECT_GT(a->getLastUpdateTime(), 0.0);
    a->resetNodeTimer(false);
    EXPECT_GT(net.at("A.out")->accumulatedTime(), 0.0);
    EXPECT_GT(a->getLastUpdateTime(), 0.0);
    a->resetNodeTimer(true);
    EXPECT_EQ(net.at("A.out")->accumulatedTime(), 0.0);
    a->resetLastUpdateTime();
    EXPECT_EQ(a->getLastUpdateTime(), 0.0);
    EXPECT_FALSE(a->stopNodeTimer(false));
}

TEST(NodeTimer, ReaderIsNotChargedForWhatItPulls) {
    // A takes 40 ms, B 10 ms of its own.
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    auto* b = net.add<ScriptNode>("B")->ports({"in"}, {"out"});
    net.add<ScriptNode>("C")->ports({"in"}, {});
    net.link("A.out", "B.in");
    net.link("B.out", "C.in");
    a->onUpdate = [](Attribute*) { nap(200); };
    b->onUpdate = [&](Attribute*) {
        nap(20);
        net.at("B.in")->pull();
    };
    CallbackLog log;
    net.at("C.in")->pull();
    EXPECT_GE(a->getLastUpdateTime(), 0.19);
    EXPECT_GE(b->getLastUpdateTime(), 0.018);
    EXPECT_LT(b->getLastUpdateTime(), 0.15);
    // The output's own account holds everything, the isolated time takes it apart.
    EXPECT_GE(net.at("B.out")->accumulatedTime(), 0.21);
    EXPECT_LT(b->getIsolatedTime(), 0.15f);
    EXPECT_GE(b->getIsolatedTime(), 0.015f);
    EXPECT_GE(a->getIsolatedTime(), 0.19f);
    EXPECT_NEAR(log.updateSeconds, b->getLastUpdateTime(), 1e-9);
}

TEST(NodeTimer, LastUpdateTimeGrowsFromUpdateToUpdate) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    a->onUpdate = [](Attribute*) { nap(10); };
    a->doUpdate(net.at("A.out"));
    const double once = a->getLastUpdateTime();
    EXPECT_GE(once, 0.009);
    a->doUpdate(net.at("A.out"));
    EXPECT_GE(a->getLastUpdateTime(), once + 0.009);
    a->forgetLastUpdateTime();
    EXPECT_EQ(a->getLastUpdateTime(), 0.0);
}

TEST(NodeTimer, StopsWhereAnUpdateIsLeftByAnException) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    a->onUpdate = [](Attribute*) { throw 1; };
    EXPECT_THROW(a->doUpdate(net.at("A.out")), int);
    EXPECT_FALSE(a->stopNodeTimer(false));
}

TEST(NodeTimer, OutputsWithoutReadersAreNoPartOfTheIsolatedTime) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    a->onUpdate = [](Attribute*) { nap(10); };
    net.at("B.in")->pull();
    EXPECT_GT(a->getIsolatedTime(), 0.0f);
    net.cut("B.in");
    EXPECT_EQ(a->getIsolatedTime(), 0.0f);
}

TEST(NodeTimer, StoredComputeTimesAreZero) {
    Net net;
    const Node* node = net.add<Node>("N");
    EXPECT_EQ(node->computeTimeSeconds(), 0);
    EXPECT_EQ(node->computeTimeMilliseconds(), 0);
    EXPECT_EQ(node->computeTimeTicks(), 0);
}

// SPDX-License-Identifier: Apache-2.0
// Limits and signals: how a run that goes on too long, or takes too much, ends.
#include <signal.h>

#include "tool/program.h"

namespace sluice_test {
namespace {

class LimitsTest : public ProgramTest {
protected:
    LimitsTest() {
        file("sleep.xml", sleepingGraph(60000));
        file("sum.xml", sumGraph());
    }

    Ended interrupted(int signal, int count = 1, Words arguments = {}) {
        arguments.insert(arguments.begin(), {"run", "sleep.xml"});
        return sluice(Start{
            .arguments = arguments, .signal = signal, .signalAfter = 1.5, .signalCount = count});
    }
};

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST_F(LimitsTest, TimeoutEndsTheRunAndNamesTheNode) {
    const Ended ended = sluice({"run", "sleep.xml", "--timeout", "0.5"});
    EXPECT_EQ(ended.status, 124);
    EXPECT_LT(ended.seconds, 30.0);
    EXPECT_TRUE(holds(ended.err, "time limit")) << ended.err;
    EXPECT_TRUE(holds(ended.err, "root.Rest")) << ended.err;
}

TEST_F(LimitsTest, TimeoutStillGivesADocumentAndSaves) {
    const Ended ended =
        sluice({"run", "sleep.xml", "--timeout", "0.5", "--json", "--save", "out.xml"});
    EXPECT_EQ(ended.status, 124);
    const Json json = ended.json();
    EXPECT_EQ(json["ok"], false);
    EXPECT_EQ(json["ended"]["node"], "root.Rest");
    EXPECT_TRUE(exists("out.xml"));
}

TEST_F(LimitsTest, TimeoutEndsALongListOfFrames) {
    const Ended ended =
        sluice({"run", "sum.xml", "--timeout", "0.5", "-f", "1-2000000000", "--progress", "none"});
    EXPECT_EQ(ended.status, 124);
    EXPECT_LT(ended.seconds, 30.0);
}

TEST_F(LimitsTest, TimeThatSufficesChangesNothing) {
    EXPECT_EQ(sluice({"run", "sum.xml", "--timeout", "60"}).status, 0);
}

TEST_F(LimitsTest, ElementLimitRefusesLargeArrays) {
    std::string list = "[0";
    for (int i = 1; i < 100; ++i) list += "," + std::to_string(i);
    list += "]";
    EXPECT_EQ(
        sluice({"run", "sum.xml", "--max-elements", "99", "--set", "root.A.in=" + list}).status, 3);
    EXPECT_EQ(
        sluice({"run", "sum.xml", "--max-elements", "100", "--set", "root.A.in=" + list}).status,
        0);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// An instrumented program takes more than any sensible limit by itself.

TEST_F(LimitsTest, MemoryLimitEndsTheRun) {
    const Ended ended = sluice({"run", "sleep.xml", "--max-memory", "1M"});
    EXPECT_EQ(ended.status, 3);
    EXPECT_LT(ended.seconds, 30.0);
    EXPECT_TRUE(holds(ended.err, "memory limit")) << ended.err;
}

TEST_F(LimitsTest, MemoryThatSufficesChangesNothing) {
    EXPECT_EQ(sluice({"run", "sum.xml", "--max-memory", "2G"}).status, 0);
    EXPECT_EQ(sluice({"run", "sum.xml", "--max-memory", "2000000000"}).status, 0);
    EXPECT_EQ(sluice({"run", "sum.xml", "--max-memory", "512m"}).status, 0);
}
#endif

TEST_F(LimitsTest, InterruptEndsTheRunCleanly) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const Ended ended = interrupted(signal);
        EXPECT_EQ(ended.status, 130);
        EXPECT_LT(ended.seconds, 30.0);
        EXPECT_TRUE(holds(ended.err, "interrupted in node \"root.Rest\"")) << ended.err;
        EXPECT_TRUE(holds(ended.err, "3 nodes, 1 evaluator")) << ended.err;
    }
}

TEST_F(LimitsTest, InterruptedRunGivesADocument) {
    const Ended ended = interrupted(SIGINT, 1, {"--json"});
    EXPECT_EQ(ended.status, 130);
    EXPECT_EQ(ended.json()["ok"], false);
    EXPECT_EQ(ended.json()["ended"]["node"], "root.Rest");
}

TEST_F(LimitsTest, InterruptEndsTheFrames) {
    const Ended ended = interrupted(SIGINT, 1, {"-f", "1-100", "--keep-going", "--json"});
    EXPECT_EQ(ended.status, 130);
    EXPECT_EQ(ended.json()["frames"].size(), 1u);
}

TEST_F(LimitsTest, SecondInterruptEndsTheProgramAtOnce) {
    EXPECT_EQ(interrupted(SIGINT, 2).status, 130);
}

// --- files ---------------------------------------------------------------------------------------

TEST_F(LimitsTest, FileOptionsAreAccepted) {
    EXPECT_EQ(sluice({"run", "sum.xml", "--root", "."}).status, 0);
    EXPECT_EQ(sluice({"run", "sum.xml", "--no-write"}).status, 0);
    EXPECT_EQ(sluice({"run", "sum.xml", "--trust"}).status, 0);
    EXPECT_EQ(sluice({"run", "sum.xml", "--root", "missing", "--no-write"}).status, 0);
}

} // namespace
} // namespace sluice_test

// SPDX-License-Identifier: Apache-2.0
// `sluice run --frames`.
#include "tool/program.h"

namespace sluice_test {
namespace {

class FramesTest : public ProgramTest {
protected:
    FramesTest() {
        file("sum.xml", sumGraph());
        file("cancel.xml", GraphText()
                               .node("A", "Real")
                               .node("Stop", "GraphCancel", {{"cancel", "bit", "true"}})
                               .node("E", "Evaluator", {{"evaluate", "", ""}})
                               .link("A.real", "Stop.in")
                               .link("Stop.through", "E.evaluate")
                               .text());
        file("unknown.xml", GraphText().node("X", "NoSuchType").text());
    }

    std::vector<int> framesOf(const std::string& range) {
        const Ended ended = sluice({"run", "sum.xml", "--json", "--frames", range});
        EXPECT_EQ(ended.status, 0) << ended.err;
        const Json json = ended.json();
        std::vector<int> frames;
        for (const Json& frame : json["frames"]) frames.push_back(frame["frame"]);
        return frames;
    }
};

using Numbers = std::vector<int>;

TEST_F(FramesTest, RangesAreRead) {
    EXPECT_EQ(framesOf("7"), (Numbers{7}));
    EXPECT_EQ(framesOf("1-4"), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(framesOf("1-10x4"), (Numbers{1, 5, 9}));
    EXPECT_EQ(framesOf("1,5,9"), (Numbers{1, 5, 9}));
    EXPECT_EQ(framesOf("3,1-2,3"), (Numbers{3, 1, 2, 3}));
}

TEST_F(FramesTest, NegativeFramesAreRead) {
    EXPECT_EQ(framesOf("-3"), (Numbers{-3}));
    EXPECT_EQ(framesOf("-3--1"), (Numbers{-3, -2, -1}));
    EXPECT_EQ(framesOf("-2-2x2"), (Numbers{-2, 0, 2}));
    EXPECT_EQ(framesOf("-1,4"), (Numbers{-1, 4}));
}

TEST_F(FramesTest, BackwardRangesCountDown) {
    EXPECT_EQ(framesOf("3-1"), (Numbers{3, 2, 1}));
    EXPECT_EQ(framesOf("10-1x5"), (Numbers{10, 5}));
}

TEST_F(FramesTest, RangeUpToTheLargestNumberEnds) {
    EXPECT_EQ(framesOf("2147483646-2147483647"), (Numbers{2147483646, 2147483647}));
}

TEST_F(FramesTest, DocumentCarriesEachFrame) {
    const Ended ended =
        sluice({"run", "sum.xml", "--json", "-f", "1-2", "--get", "root.Sum.result"});
    const Json json = ended.json();
    EXPECT_FALSE(json.contains("pins"));
    EXPECT_FALSE(json.contains("messages"));
    EXPECT_FALSE(json.contains("host"));
    ASSERT_EQ(json["frames"].size(), 2u);
    for (const Json& frame : json["frames"]) {
        EXPECT_EQ(frame["pins"][0]["value"], Json::array({5.5}));
        EXPECT_EQ(frame["messages"], Json::array());
        EXPECT_EQ(frame["host"], Json::array());
        EXPECT_TRUE(frame["seconds"].is_number());
    }
}

TEST_F(FramesTest, ResultsCarryTheFrame) {
    const Ended ended = sluice({"run", "sum.xml", "-f", "1,9", "--get", "root.B.in"});
    EXPECT_EQ(ended.out, "frame 1: root.B.in = [3]\nframe 9: root.B.in = [3]\n");
}

TEST_F(FramesTest, FailingFrameEndsTheRunUnlessToldOtherwise) {
    const Ended first = sluice({"run", "cancel.xml", "--json", "-f", "1-3"});
    EXPECT_EQ(first.status, 1);
    EXPECT_EQ(first.json()["frames"].size(), 1u);
    const Ended all = sluice({"run", "cancel.xml", "--json", "-f", "1-3", "--keep-going"});
    EXPECT_EQ(all.status, 1);
    ASSERT_EQ(all.json()["frames"].size(), 3u);
}

TEST_F(FramesTest, MessagesBelongToTheirFrame) {
    const Ended ended = sluice({"run", "cancel.xml", "--json", "-f", "1-3", "--keep-going"});
    const Json json = ended.json();
    for (const Json& frame : json["frames"]) EXPECT_EQ(frame["messages"].size(), 1u);
}

TEST_F(FramesTest, ReadingErrorsAreToldOnceAndEndNothing) {
    const Ended ended = sluice({"run", "unknown.xml", "--json", "-f", "1-2"});
    EXPECT_EQ(ended.status, 1);
    const Json json = ended.json();
    ASSERT_EQ(json["frames"].size(), 2u);
    EXPECT_EQ(json["frames"][0]["host"].size(), 1u);
    EXPECT_EQ(json["frames"][1]["host"].size(), 0u);
}

/// What a terminal shows in the end, line by line: what stood before a carriage return is gone.
Words shown(const std::string& written) {
    Words lines(1);
    for (std::size_t i = 0; i < written.size(); ++i) {
        if (written.compare(i, 2, "\r\n") == 0) {
            lines.emplace_back();
            ++i;
        } else if (written.compare(i, 4, "\r\033[K") == 0) {
            lines.back().clear();
            i += 3;
        } else {
            lines.back() += written[i];
        }
    }
    return lines;
}

TEST_F(FramesTest, ProgressIsOneLineOfATerminal) {
    file("slow.xml", sleepingGraph(250));
    Start start{{"run", "slow.xml", "-f", "4-7", "--get", "root.Rest.through"}};
    start.terminal = true;
    const Ended ended = sluice(start);
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out,
              "frame 4: root.Rest.through = [1.0]\nframe 5: root.Rest.through = [1.0]\n"
              "frame 6: root.Rest.through = [1.0]\nframe 7: root.Rest.through = [1.0]\n");
    EXPECT_NE(ended.err.find("\r\033[Kframe 5 (2 of 4), "), std::string::npos) << ended.err;
    const Words lines = shown(ended.err);
    ASSERT_EQ(lines.size(), 2u) << ended.err;
    EXPECT_EQ(lines[0].rfind("3 nodes, 1 evaluator, ", 0), 0u) << lines[0];
    EXPECT_EQ(lines[1], "");
}

TEST_F(FramesTest, ProgressStaysOutOfResultsOnTheSameTerminal) {
    file("slow.xml", sleepingGraph(250));
    Start start{{"run", "slow.xml", "-f", "1-4", "--get", "root.Rest.through"}};
    start.terminal = true;
    start.sameTerminal = true;
    const Ended ended = sluice(start);
    EXPECT_NE(ended.err.find("frame 2 (2 of 4), "), std::string::npos) << ended.err;
    const Words lines = shown(ended.err);
    ASSERT_EQ(lines.size(), 6u) << ended.err;
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(lines[i], "frame " + std::to_string(i + 1) + ": root.Rest.through = [1.0]");
    }
}

TEST_F(FramesTest, ProgressFormsThatWereAskedForHoldOnATerminal) {
    file("slow.xml", sleepingGraph(250));
    Start start{{"run", "slow.xml", "-f", "1-2", "--progress", "plain"}};
    start.terminal = true;
    const Ended plain = sluice(start);
    EXPECT_EQ(plain.err.find('\033'), std::string::npos) << plain.err;
    EXPECT_NE(plain.err.find("frame 2 (2 of 2): "), std::string::npos) << plain.err;
    start.arguments.back() = "none";
    const Ended none = sluice(start);
    EXPECT_EQ(shown(none.err).size(), 2u) << none.err;
    EXPECT_EQ(none.err.find("frame"), std::string::npos) << none.err;
}

TEST_F(FramesTest, NodeThatStopsTheSimulationEndsTheFrames) {
    file("stop.xml", GraphText()
                         .node("A", "Real")
                         .node("Stop", "SimulationStop", {{"stop", "bit", "true"}})
                         .node("E", "Evaluator", {{"evaluate", "", ""}})
                         .link("A.real", "Stop.in")
                         .link("Stop.through", "E.evaluate")
                         .text());
    const Ended ended = sluice({"run", "stop.xml", "--json", "-f", "1-5"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.json()["frames"].size(), 1u);
}

} // namespace
} // namespace sluice_test

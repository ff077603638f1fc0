// SPDX-License-Identifier: Apache-2.0
// `sluice run --profile` and `--trace`: what is counted, what the files hold, and failures.
#include <algorithm>
#include <map>
#include <regex>
#include <set>

#include "tool/program.h"

namespace sluice_test {
namespace {

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string nodeText(const std::string& name, const std::string& type, const std::string& pins) {
    return "<node><name>" + name + "</name><type>" + type + "</type>" + pins + "</node>";
}

std::string input(const std::string& name, const std::string& type, const std::string& value) {
    return "<input><name>" + name + "</name><type>" + type + "</type><value>" + value +
           "</value></input>";
}

std::string link(const std::string& source, const std::string& target) {
    return "<connection><source>root." + source + "</source><target>root." + target +
           "</target></connection>";
}

/// S.real > C.x; in the compound C an iterator feeds A.in1 from its output `index`, A.in0 is x and
/// A.result is y; C.y > E.evaluate.
std::string iteratedGraph(const std::string& iterator, const std::string& index,
                          const std::string& links) {
    return "<scene><nodes><node><name>root</name><type/><inputs/><nodes>" +
           nodeText("S", "Real", "<inputs>" + input("in", "real", "10") + "</inputs>") +
           nodeText("C", "Compound",
                    "<inputs/><outputs/><nodes>" +
                        nodeText("IO", "CompoundInterface",
                                 "<inputs><input><name>y</name></input></inputs>"
                                 "<outputs><output><name>x</name></output></outputs>") +
                        nodeText("A", "Add", "<inputs/>") + iterator + "</nodes>") +
           nodeText("E", "Evaluator", "<inputs><input><name>evaluate</name></input></inputs>") +
           "</nodes></node></nodes><connections>" + link("S.real", "C.x") +
           link("C.IO.x", "C.A.in0") + link(index, "C.A.in1") + link("C.A.result", "C.IO.y") +
           link("C.y", "E.evaluate") + links + "</connections></scene>";
}

std::string loopGraph(int count) {
    const std::string loop = nodeText(
        "F", "For", "<inputs>" + input("stop", "integer", std::to_string(count)) + "</inputs>");
    return iteratedGraph(loop, "C.F.current index", "");
}

/// Elements 0 to `last` of an array of one; those beyond are default numbers.
std::string kernelGraph(int threads) {
    const std::string kernel =
        nodeText("K", "Kernel",
                 "<inputs>" + input("threads", "integer", std::to_string(threads)) +
                     input("start", "integer", "-8") + "</inputs>");
    return iteratedGraph(kernel, "C.K.index", link("C.IO.x", "C.K.array"));
}

class ProfileTest : public ProgramTest {
protected:
    /// The rows of the profile by node.
    std::map<std::string, Json> profile(const Words& words) {
        Start start{{"run", "--json", "--profile"}};
        start.arguments.insert(start.arguments.end(), words.begin(), words.end());
        const Json json = sluice(start).json();
        std::map<std::string, Json> rows;
        for (const Json& row : json["profile"]) {
            EXPECT_TRUE(rows.emplace(row["node"].get<std::string>(), row).second) << row;
        }
        return rows;
    }

    Json trace(const std::string& name) {
        Json json = Json::parse(read(name), nullptr, false);
        EXPECT_FALSE(json.is_discarded()) << "no JSON: " << read(name).substr(0, 1000);
        return json;
    }
};

/// The events of computations and phases, by name.
std::multimap<std::string, Json> eventsOf(const Json& trace) {
    std::multimap<std::string, Json> events;
    for (const Json& event : trace["traceEvents"]) {
        if (event["ph"] == "X") events.emplace(event["name"], event);
    }
    return events;
}

std::set<std::string> keysOf(const std::map<std::string, Json>& rows) {
    std::set<std::string> keys;
    for (const auto& row : rows) keys.insert(row.first);
    return keys;
}

// Profiles.

TEST_F(ProfileTest, EveryNodeThatComputedIsListed) {
    file("g.xml", sumGraph());
    const auto rows = profile({"g.xml"});
    EXPECT_EQ(keysOf(rows), (std::set<std::string>{"root.A", "root.B", "root.Sum", "root.E"}));
    for (const auto& [node, row] : rows) EXPECT_EQ(row["calls"], 1) << node;
    EXPECT_EQ(rows.at("root.Sum")["type"], "Add");
    EXPECT_GT(rows.at("root.Sum")["memory"], 0);
}

TEST_F(ProfileTest, RowsFallByOwnTime) {
    file("g.xml", sumGraph());
    const Json list = sluice({"run", "g.xml", "--json", "--profile"}).json()["profile"];
    ASSERT_EQ(list.size(), 4u);
    for (std::size_t i = 1; i < list.size(); ++i) EXPECT_GE(list[i - 1]["own"], list[i]["own"]);
}

TEST_F(ProfileTest, OwnTimeIsWithoutWhatWasPulled) {
    file("g.xml", sleepingGraph(100));
    const auto rows = profile({"g.xml"});
    EXPECT_GE(rows.at("root.Rest")["own"], 0.1);
    EXPECT_GE(rows.at("root.Rest")["percent"], 50.0);
    EXPECT_GE(rows.at("root.E")["total"], 0.1);
    EXPECT_LT(rows.at("root.E")["own"], 0.1);
}

TEST_F(ProfileTest, FramesAddUp) {
    file("g.xml", sumGraph());
    for (const auto& [node, row] : profile({"g.xml", "-f", "1-7"})) {
        EXPECT_EQ(row["calls"], 7) << node;
    }
}

TEST_F(ProfileTest, EvaluatorOfThePullsIsNotListed) {
    file("g.xml", GraphText().node("A", "Real").text());
    EXPECT_EQ(keysOf(profile({"g.xml", "--pull", "root.A.real"})),
              (std::set<std::string>{"root.A"}));
}

TEST_F(ProfileTest, BodiesOfLoopsCountPerIteration) {
    file("g.xml", loopGraph(25));
    const auto rows = profile({"g.xml", "--get", "root.C.A.result"});
    EXPECT_EQ(rows.at("root.C.A")["calls"], 25);
    EXPECT_EQ(rows.at("root.S")["calls"], 1);
    EXPECT_EQ(rows.at("root.C.F")["calls"], 1);
    // The loop runs inside of the compound, and both inside of the evaluator.
    EXPECT_GE(rows.at("root.C")["total"], rows.at("root.C.F")["total"]);
    EXPECT_GE(rows.at("root.E")["total"], rows.at("root.C")["total"]);
}

TEST_F(ProfileTest, ThreadsOfAKernelCountForTheNodesTheyCopy) {
    file("g.xml", kernelGraph(3));
    const auto rows = profile({"g.xml"});
    // Elements -8 to 0 but for what wraps around.
    EXPECT_GE(rows.at("root.C.A")["calls"], 3);
    EXPECT_EQ(rows.at("root.C.A")["type"], "Add");
    EXPECT_EQ(rows.at("root.C.K")["calls"], 1);
}

TEST_F(ProfileTest, FailingRunIsProfiledToo) {
    file("g.xml", GraphText()
                      .node("A", "Real")
                      .node("Stop", "GraphCancel", {{"cancel", "bit", "true"}})
                      .node("E", "Evaluator", {{"evaluate", "", ""}})
                      .link("A.real", "Stop.in")
                      .link("Stop.through", "E.evaluate")
                      .text());
    const Ended ended = sluice({"run", "g.xml", "--json", "--profile", "--trace", "t.json"});
    EXPECT_EQ(ended.status, 1);
    std::set<std::string> nodes;
    const Json json = ended.json();
    for (const Json& row : json["profile"]) nodes.insert(row["node"].get<std::string>());
    EXPECT_EQ(nodes.count("root.Stop"), 1u);
    EXPECT_EQ(eventsOf(trace("t.json")).count("root.Stop"), 1u);
}

TEST_F(ProfileTest, InterruptedRunIsProfiledToo) {
    file("g.xml", sleepingGraph(20000));
    Start start{{"run", "g.xml", "--json", "--profile", "--trace", "t.json", "--timeout", "0.3"}};
    const Ended ended = sluice(start);
    EXPECT_EQ(ended.status, 124);
    EXPECT_LT(ended.seconds, 10.0);
    EXPECT_EQ(ended.json()["profile"][0]["node"], "root.Rest");
    EXPECT_EQ(eventsOf(trace("t.json")).count("root.Rest"), 1u);
}

TEST_F(ProfileTest, TableStandsBehindThePins) {
    file("g.xml", sumGraph());
    const Ended ended = sluice({"run", "g.xml", "--profile", "--get", "root.Sum.result"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out.rfind("root.Sum.result = [5.5]\n    own ms", 0), 0u) << ended.out;
    for (const char* row : {" root.A (Real)\n", " root.Sum (Add)\n", " root.E (Evaluator)\n",
                            " outside of nodes\n"}) {
        EXPECT_TRUE(holds(ended.out, row)) << ended.out;
    }
}

TEST_F(ProfileTest, LongTableSaysWhatItLeavesOut) {
    GraphText graph;
    graph.node("E", "Evaluator", {{"evaluate", "", ""}}).node("A0", "Add");
    for (int i = 1; i < 60; ++i) {
        const std::string number = std::to_string(i);
        graph.node("A" + number, "Add")
            .link("A" + std::to_string(i - 1) + ".result", "A" + number + ".in0");
    }
    file("g.xml", graph.link("A59.result", "E.evaluate").text());
    const Ended ended = sluice({"run", "g.xml", "--profile", "--set", "root.A0.in0:Real=1"});
    EXPECT_EQ(std::count(ended.out.begin(), ended.out.end(), '\n'), 53) << ended.out;
    EXPECT_TRUE(holds(ended.out, "in all of 11 more\n")) << ended.out;
}

TEST_F(ProfileTest, NothingIsListedWithoutTheOption) {
    file("g.xml", sumGraph());
    EXPECT_FALSE(sluice({"run", "g.xml", "--json"}).json().contains("profile"));
}

TEST_F(ProfileTest, DryRunHasNothingToTell) {
    file("g.xml", sumGraph());
    EXPECT_EQ(sluice({"run", "g.xml", "--dry-run", "--profile"}).status, 2);
    EXPECT_EQ(sluice({"run", "g.xml", "--dry-run", "--trace", "t.json"}).status, 2);
    EXPECT_FALSE(exists("t.json"));
}

// Traces.

TEST_F(ProfileTest, TraceHoldsEveryComputation) {
    file("g.xml", loopGraph(5));
    EXPECT_EQ(sluice({"run", "g.xml", "--trace", "t.json"}).status, 0);
    const Json json = trace("t.json");
    EXPECT_EQ(json["otherData"]["graph"], "g.xml");
    EXPECT_EQ(json["otherData"]["droppedEvents"], 0);
    const auto events = eventsOf(json);
    EXPECT_EQ(events.count("root.C.A"), 5u);
    EXPECT_EQ(events.count("root.S"), 1u);
    EXPECT_EQ(events.count("run"), 1u);
    EXPECT_EQ(events.find("root.C.A")->second["cat"], "Add");
}

TEST_F(ProfileTest, EventsOfAThreadNestAndStandInOrder) {
    file("g.xml", loopGraph(5));
    EXPECT_EQ(sluice({"run", "g.xml", "--trace", "t.json"}).status, 0);
    constexpr double rounding = 0.01; // microseconds
    std::vector<double> ends;         // of the events around
    double last = 0.0;
    std::size_t deepest = 0;
    const Json json = trace("t.json");
    for (const Json& event : json["traceEvents"]) {
        if (event["ph"] != "X") continue;
        const double begin = event["ts"];
        const double end = begin + event["dur"].get<double>();
        EXPECT_GE(begin + rounding, last) << event;
        last = begin;
        while (!ends.empty() && ends.back() <= begin + rounding) ends.pop_back();
        EXPECT_LE(end, ends.empty() ? end : ends.back() + rounding) << event;
        ends.push_back(end);
        deepest = std::max(deepest, ends.size());
    }
    EXPECT_GE(deepest, 5u); // run, E, C, IO, A
}

TEST_F(ProfileTest, ThreadsHaveRowsOfTheirOwn) {
    file("g.xml", kernelGraph(3));
    EXPECT_EQ(sluice({"run", "g.xml", "--trace", "t.json"}).status, 0);
    const Json json = trace("t.json");
    std::set<int> named;
    std::set<int> used;
    for (const Json& event : json["traceEvents"]) {
        (event["ph"] == "M" ? named : used).insert(event["tid"].get<int>());
    }
    EXPECT_EQ(named, used);
    EXPECT_GE(used.size(), 2u);
    const auto events = eventsOf(json);
    EXPECT_EQ(events.count("waiting for threads"), 1u);
    const auto adds = events.equal_range("root.C.A");
    ASSERT_NE(adds.first, adds.second);
    for (auto add = adds.first; add != adds.second; ++add) EXPECT_NE(add->second["tid"], 0);
}

TEST_F(ProfileTest, FramesArePhasesOfTheTrace) {
    file("g.xml", sumGraph());
    EXPECT_EQ(sluice({"run", "g.xml", "-f", "3,5", "--trace", "t.json"}).status, 0);
    const auto events = eventsOf(trace("t.json"));
    EXPECT_EQ(events.count("frame 3"), 1u);
    EXPECT_EQ(events.count("frame 5"), 1u);
    EXPECT_EQ(events.count("root.Sum"), 2u);
}

TEST_F(ProfileTest, AnyNameMakesAValidTrace) {
    file("g.xml", std::regex_replace(sumGraph(), std::regex("Sum"), "S\"m\\ \n\xc3\xbc"));
    EXPECT_EQ(sluice({"run", "g.xml", "--trace", "t.json"}).status, 0);
    EXPECT_EQ(eventsOf(trace("t.json")).count("root.S\"m\\ \n\xc3\xbc"), 1u);
}

TEST_F(ProfileTest, LongTraceIsCutAndSaysSo) {
    file("g.xml", loopGraph(400000));
    const Ended ended = sluice({"run", "g.xml", "--trace", "t.json"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_TRUE(holds(ended.err, "the trace holds the first 1000000 events; ")) << ended.err;
    const Json json = trace("t.json");
    EXPECT_GT(json["otherData"]["droppedEvents"], 0);
    const auto events = eventsOf(json);
    EXPECT_EQ(events.size(), 1000000u);
    // What began early is whole although it ends late.
    EXPECT_GT(events.find("root.E")->second["dur"], 0.0);
}

TEST_F(ProfileTest, TraceThatCanNotBeWrittenIsStatusTwo) {
    file("g.xml", sumGraph());
    const Ended ended = sluice({"run", "g.xml", "--trace", "missing/t.json"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_TRUE(holds(ended.err, "missing/t.json")) << ended.err;
    std::filesystem::create_directory(folder_ / "dir");
    EXPECT_EQ(sluice({"run", "g.xml", "--trace", "dir"}).status, 2);
}

TEST_F(ProfileTest, TraceDoesNotReplaceTheGraph) {
    file("g.xml", sumGraph());
    const Ended ended = sluice({"run", "g.xml", "--trace", "./g.xml"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_EQ(read("g.xml"), sumGraph());
}

} // namespace
} // namespace sluice_test

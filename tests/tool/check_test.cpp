// SPDX-License-Identifier: Apache-2.0
// `sluice check` and `sluice convert`.
#include "tool/program.h"

namespace sluice_test {
namespace {

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class CheckTest : public ProgramTest {
protected:
    /// The findings of one kind.
    Json found(const std::string& graph, const std::string& kind) {
        file("g.xml", graph);
        const Json json = sluice({"check", "g.xml", "--json"}).json();
        Json list = Json::array();
        for (const Json& finding : json["findings"]) {
            if (finding["kind"] == kind) list.push_back(finding);
        }
        return list;
    }
};

TEST_F(CheckTest, GoodGraphHasNoFindings) {
    file("g.xml", sumGraph());
    const Ended ended = sluice({"check", "g.xml"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out, "");
    EXPECT_TRUE(holds(ended.err, "nothing found"));
    const Json json = sluice({"check", "g.xml", "--json"}).json();
    EXPECT_EQ(json["schema"], "sluice.check/1");
    EXPECT_EQ(json["ok"], true);
    EXPECT_EQ(json["findings"], Json::array());
}

TEST_F(CheckTest, ReadingFailuresComeWithTheirIds) {
    file("g.xml", GraphText()
                      .node("X", "NoSuchType")
                      .node("A", "Real", {{"inn", "real", "1"}, {"in", "matrix4", ""}})
                      .node("IO", "CompoundInterface")
                      .node("E", "Evaluator", {{"evaluate", "", ""}})
                      .link("A.real", "E.evaluate")
                      .link("X.out", "A.in")
                      .text());
    const Ended ended = sluice({"check", "g.xml"});
    EXPECT_EQ(ended.status, 1);
    for (const char* part : {"error 2255: ", "NoSuchType", "error 2261: ", "A.inn", "error 2264: ",
                             "matrix4", "error 2256: ", "error 2260: ", "root.X.out"}) {
        EXPECT_TRUE(holds(ended.out, part)) << part << "\n" << ended.out;
    }
}

TEST_F(CheckTest, FailLevelDecidesTheStatus) {
    file("bad.xml", GraphText().node("X", "NoSuchType").text());
    EXPECT_EQ(sluice({"check", "bad.xml"}).status, 1);
    EXPECT_EQ(sluice({"check", "bad.xml", "--fail-on", "critical"}).status, 0);
    file("loose.xml", GraphText().node("A", "Real").text());
    EXPECT_EQ(sluice({"check", "loose.xml"}).status, 0);
    EXPECT_EQ(sluice({"check", "loose.xml", "--fail-on", "warning"}).status, 1);
}

TEST_F(CheckTest, UnreachedNodesAreWarnedOf) {
    const std::string graph = GraphText()
                                  .node("A", "Real")
                                  .node("Loose", "Real")
                                  .node("E", "Evaluator", {{"evaluate", "", ""}})
                                  .link("A.real", "E.evaluate")
                                  .text();
    const Json list = found(graph, "unreached");
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0]["node"], "root.Loose");
    EXPECT_EQ(list[0]["level"], 3);
    const Json outputs = found(graph, "unconnected output");
    ASSERT_EQ(outputs.size(), 1u);
    EXPECT_EQ(outputs[0]["node"], "root.Loose");
    EXPECT_EQ(outputs[0]["level"], 4);
}

TEST_F(CheckTest, GraphWithoutEvaluatorIsWarnedOf) {
    EXPECT_EQ(found(GraphText().node("A", "Real").text(), "no evaluator").size(), 1u);
}

TEST_F(CheckTest, OldTypesAreToldWithWhatTheyBecame) {
    const Json list = found(GraphText().node("Old", "SaveMeshBin").text(), "legacy");
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0]["node"], "root.Old");
    EXPECT_TRUE(holds(list[0]["text"], "SaveMeshBin")) << list;
    EXPECT_TRUE(holds(list[0]["text"], "MeshSaveBin")) << list;
}

TEST_F(CheckTest, RefusedConnectionIsAMessage) {
    const Json list = found(GraphText()
                                .node("A", "Real")
                                .node("B", "Real")
                                .node("S", "Add")
                                .link("A.real", "S.in0")
                                .link("B.real", "S.in0")
                                .text(),
                            "message");
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0]["node"], "scene");
    EXPECT_EQ(list[0]["level"], 2);
}

TEST_F(CheckTest, NothingIsRun) {
    file("sleep.xml", sleepingGraph(60000));
    const Ended ended = sluice({"check", "sleep.xml"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_LT(ended.seconds, 30.0);
}

// --- convert -------------------------------------------------------------------------------------

class ConvertTest : public ProgramTest {};

TEST_F(ConvertTest, WritesTheSameGraph) {
    file("in.xml", sumGraph());
    const Ended ended = sluice({"convert", "in.xml", "out.xml"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out, "");
    EXPECT_EQ(sluice({"run", "out.xml", "--get", "root.Sum.result"}).out,
              "root.Sum.result = [5.5]\n");
}

TEST_F(ConvertTest, SecondConversionChangesNothing) {
    file("in.xml", sumGraph());
    ASSERT_EQ(sluice({"convert", "in.xml", "once.xml"}).status, 0);
    ASSERT_EQ(sluice({"convert", "once.xml", "twice.xml"}).status, 0);
    EXPECT_EQ(read("once.xml"), read("twice.xml"));
}

TEST_F(ConvertTest, KeepsTheLayout) {
    std::string text = sumGraph();
    text.insert(text.find("</scene>"),
                "<layout><nodes><node><name>root.A</name><position>1.5,2.5</position></node>"
                "</nodes></layout>");
    file("in.xml", text);
    ASSERT_EQ(sluice({"convert", "in.xml", "out.xml"}).status, 0);
    EXPECT_TRUE(holds(read("out.xml"), "<position>1.5"));
}

TEST_F(ConvertTest, FileCanBeConvertedInPlace) {
    file("in.xml", sumGraph());
    EXPECT_EQ(sluice({"convert", "in.xml", "in.xml"}).status, 0);
    EXPECT_EQ(sluice({"run", "in.xml"}).status, 0);
}

TEST_F(ConvertTest, LossesAreReportedAndNeverOverwriteTheSource) {
    const std::string text = GraphText().node("X", "NoSuchType").node("A", "Real").text();
    file("in.xml", text);
    EXPECT_EQ(sluice({"convert", "in.xml", "out.xml"}).status, 1);
    EXPECT_TRUE(holds(read("out.xml"), "<name>A</name>"));
    const Ended same = sluice({"convert", "in.xml", "in.xml"});
    EXPECT_EQ(same.status, 2);
    EXPECT_TRUE(holds(same.err, "would be lost")) << same.err;
    EXPECT_EQ(read("in.xml"), text);
}

TEST_F(ConvertTest, TargetThatCanNotBeWrittenIsStatusTwo) {
    file("in.xml", sumGraph());
    EXPECT_EQ(sluice({"convert", "in.xml", "no/folder/out.xml"}).status, 2);
    EXPECT_EQ(sluice({"convert", "in.xml", "."}).status, 2);
    EXPECT_EQ(sluice({"convert", "in.xml", "/proc/out.xml"}).status, 2);
}

} // namespace
} // namespace sluice_test

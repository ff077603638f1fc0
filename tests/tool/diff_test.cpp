// SPDX-License-Identifier: Apache-2.0
// `sluice diff`: what is told of nodes, values, connections and layouts, and the exit status.
#include "tool/program.h"

namespace sluice_test {
namespace {

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string replaced(std::string text, const std::string& before, const std::string& after) {
    const std::size_t at = text.find(before);
    EXPECT_NE(at, std::string::npos) << before;
    return text.replace(at, before.size(), after);
}

/// The compound C passes x on to y; `inside` stands in it beside its interfaces.
std::string compoundGraph(const std::string& inside) {
    return "<scene><nodes><node><name>root</name><type/><inputs/><nodes>"
           "<node><name>C</name><type>Compound</type><inputs/><outputs/><nodes>"
           "<node><name>IO</name><type>CompoundInterface</type><inputs><input><name>y</name>"
           "</input></inputs><outputs><output><name>x</name></output></outputs></node>" +
           inside + "</nodes></node></nodes></node></nodes><connections/></scene>";
}

constexpr char realInside[] = "<node><name>K</name><type>Real</type><inputs/></node>";

std::string withLayout(const std::string& graph, const std::string& layout) {
    return replaced(graph, "</scene>", "<layout>" + layout + "</layout></scene>");
}

std::string positionOf(const std::string& node, const std::string& position) {
    return "<nodes><node><name>" + node + "</name><position>" + position +
           "</position></node></nodes>";
}

std::string noteOf(const std::string& content) {
    return "<notes><note><parentNode>root</parentNode><content>" + content +
           "</content><position>1,2</position><size>3,4</size><textColor>0,0,0</textColor>"
           "<backgroundColor>1,1,1,1</backgroundColor></note></notes>";
}

class DiffTest : public ProgramTest {
protected:
    Ended diff(const std::string& a, const std::string& b, const Words& options = {}) {
        file("a.xml", a);
        file("b.xml", b);
        Words words{"diff", "a.xml", "b.xml"};
        words.insert(words.end(), options.begin(), options.end());
        return sluice(Start{words});
    }
};

TEST_F(DiffTest, EqualGraphsAreStatusZeroAndSilentOnStdout) {
    const Ended ended = diff(sumGraph(), sumGraph());
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out, "");
    EXPECT_EQ(ended.err, "equal\n");
}

TEST_F(DiffTest, FormOfTheFileIsNoDifference) {
    file("a.xml", sumGraph());
    EXPECT_EQ(sluice({"convert", "a.xml", "c.xml"}).status, 0);
    EXPECT_NE(read("a.xml"), read("c.xml"));
    EXPECT_EQ(sluice({"diff", "a.xml", "c.xml"}).status, 0);
}

TEST_F(DiffTest, OldTypeNamesAreTheirSuccessors) {
    const std::string old = GraphText().node("A", "Concat2").text();
    const std::string now = GraphText().node("A", "StringConcat2").text();
    EXPECT_EQ(diff(old, now).status, 0);
}

TEST_F(DiffTest, ChangedValueShowsTypeAndBothValues) {
    const Ended ended = diff(sumGraph(), replaced(sumGraph(), "2.5", "-0.1"));
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.out, "~ value root.A.in: Real [2.5] -> Real [-0.1]\n");
    EXPECT_EQ(ended.err, "1 difference\n");
}

TEST_F(DiffTest, DocumentHoldsBothSides) {
    const Ended ended = diff(sumGraph(), replaced(sumGraph(), "2.5", "4"), {"--json"});
    EXPECT_EQ(ended.status, 1);
    const Json json = ended.json();
    EXPECT_EQ(json["schema"], "sluice.diff/1");
    EXPECT_EQ(json["a"], "a.xml");
    EXPECT_EQ(json["b"], "b.xml");
    EXPECT_EQ(json["equal"], false);
    EXPECT_EQ(json["differences"],
              Json::parse(R"([{"kind": "value", "change": "changed", "name": "root.A.in",
                               "a": {"type": "Real", "value": [2.5]},
                               "b": {"type": "Real", "value": [4.0]}}])"));
    const Json equal = diff(sumGraph(), sumGraph(), {"--json"}).json();
    EXPECT_EQ(equal["equal"], true);
    EXPECT_EQ(equal["differences"], Json::array());
}

TEST_F(DiffTest, MissingNodeIsToldWithItsConnections) {
    const std::string more = GraphText()
                                 .node("A", "Real")
                                 .node("B", "Real")
                                 .node("Sum", "Add")
                                 .link("A.real", "Sum.in0")
                                 .link("B.real", "Sum.in1")
                                 .text();
    const std::string less =
        GraphText().node("A", "Real").node("Sum", "Add").link("A.real", "Sum.in0").text();
    EXPECT_EQ(diff(more, less).out, "- node root.B (Real)\n"
                                    "- connection root.B.real > root.Sum.in1\n");
    EXPECT_EQ(diff(less, more).out, "+ node root.B (Real)\n"
                                    "+ connection root.B.real > root.Sum.in1\n");
}

TEST_F(DiffTest, ConnectionFromAnotherSourceIsOneLessAndOneMore) {
    const Ended ended = diff(sumGraph(), replaced(sumGraph(), "<source>root.A.real</source>",
                                                  "<source>root.B.integer</source>"));
    EXPECT_EQ(ended.out, "- connection root.A.real > root.Sum.in0\n"
                         "+ connection root.B.integer > root.Sum.in0\n");
}

TEST_F(DiffTest, OrderOfConnectionsDoesNotMatter) {
    const GraphText nodes = GraphText().node("A", "Real").node("Sum", "Add").node("Sum2", "Add");
    const std::string one =
        GraphText(nodes).link("A.real", "Sum.in0").link("A.real", "Sum2.in0").text();
    const std::string other =
        GraphText(nodes).link("A.real", "Sum2.in0").link("A.real", "Sum.in0").text();
    EXPECT_EQ(diff(one, other).status, 0);
}

TEST_F(DiffTest, AnotherTypeIsToldWithoutItsPins) {
    const Ended ended =
        diff(GraphText().node("N", "Real").text(), GraphText().node("N", "Integer").text());
    EXPECT_TRUE(holds(ended.out, "~ type root.N: Real -> Integer\n")) << ended.out;
    EXPECT_FALSE(holds(ended.out, "pin")) << ended.out;
}

TEST_F(DiffTest, OrderOfNodesIsTold) {
    const std::string one = GraphText().node("E", "Evaluator").node("F", "Evaluator").text();
    const std::string other = GraphText().node("F", "Evaluator").node("E", "Evaluator").text();
    EXPECT_EQ(diff(one, other).out, "~ order root: E at 0 -> F at 0\n");
}

TEST_F(DiffTest, PinsThatUsersAddedAreCompared) {
    const std::string one = GraphText().node("E", "Evaluator", {{"evaluate", "", ""}}).text();
    const std::string two =
        GraphText().node("E", "Evaluator", {{"evaluate", "", ""}, {"more", "", ""}}).text();
    EXPECT_EQ(diff(one, two).out, "+ pin root.E.more: input\n");
    EXPECT_EQ(diff(two, one).out, "- pin root.E.more: input\n");
}

TEST_F(DiffTest, CompoundPinsAreToldOnce) {
    const std::string one = compoundGraph(realInside);
    const std::string two = replaced(one, "<output><name>x</name></output>",
                                     "<output><name>x</name></output>"
                                     "<output><name>z</name></output>");
    EXPECT_EQ(diff(one, two).out, "+ pin root.C.z: input\n");
}

TEST_F(DiffTest, WhatIsInsideOfCompoundsIsCompared) {
    const std::string seven = "<node><name>K</name><type>Real</type><inputs><input><name>in</name>"
                              "<type>real</type><value>7</value></input></inputs></node>";
    EXPECT_EQ(diff(compoundGraph(realInside), compoundGraph(seven)).out,
              "~ value root.C.K.in: Real [0.0] -> Real [7.0]\n");
    EXPECT_EQ(diff(compoundGraph(realInside), compoundGraph("")).out, "- node root.C.K (Real)\n");
}

TEST_F(DiffTest, MissingCompoundIsToldAsOne) {
    const std::string empty = GraphText().text();
    EXPECT_EQ(diff(compoundGraph(realInside), empty).out, "- node root.C (Compound, 2 nodes)\n");
    const Json json = diff(empty, compoundGraph(realInside), {"--json"}).json();
    EXPECT_EQ(json["differences"],
              Json::parse(R"([{"kind": "node", "change": "added", "name": "root.C",
                               "b": {"type": "Compound", "nodes": 2}}])"));
}

TEST_F(DiffTest, NamesWithPointsAreNotPaths) {
    const std::string pointed =
        replaced(compoundGraph(realInside), "</nodes></node></nodes></node></nodes>",
                 "</nodes></node><node><name>C.K</name><type>Integer</type><inputs/></node>"
                 "</nodes></node></nodes>");
    EXPECT_EQ(diff(compoundGraph(realInside), pointed).out, "+ node root.C.K (Integer)\n");
    EXPECT_EQ(diff(pointed, pointed).status, 0);
}

TEST_F(DiffTest, LayoutIsComparedUnlessToldOtherwise) {
    const std::string here = withLayout(sumGraph(), positionOf("root.A", "10,0.1"));
    const std::string there = withLayout(sumGraph(), positionOf("root.A", "10,20"));
    EXPECT_EQ(diff(here, there).out, "~ layout root.A position: [10.0, 0.1] -> [10.0, 20.0]\n");
    EXPECT_EQ(diff(sumGraph(), there).out, "+ layout root.A position: [10.0, 20.0]\n");
    EXPECT_EQ(diff(here, there, {"--no-layout"}).status, 0);
    const Json json = diff(here, there, {"--json"}).json();
    EXPECT_EQ(json["differences"][0]["what"], "position");
}

TEST_F(DiffTest, LayoutOfAMissingNodeIsNotTold) {
    const std::string one =
        withLayout(GraphText().node("A", "Real").text(), positionOf("root.A", "1,2"));
    EXPECT_EQ(diff(one, GraphText().text()).out, "- node root.A (Real)\n");
}

TEST_F(DiffTest, NotesAreCompared) {
    const std::string one = withLayout(sumGraph(), noteOf("first"));
    const std::string two = withLayout(sumGraph(), noteOf("second"));
    const Ended ended = diff(one, two);
    EXPECT_EQ(ended.err, "2 differences\n");
    EXPECT_TRUE(holds(ended.out, "- note root: {\"content\": \"first\"")) << ended.out;
    EXPECT_TRUE(holds(ended.out, "+ note root: {\"content\": \"second\"")) << ended.out;
}

TEST_F(DiffTest, WhatCouldNotBeReadCountsUnlessTheFilesAreTheSame) {
    const std::string one = GraphText().node("A", "NoSuchType", {{"in", "real", "1"}}).text();
    const std::string two = GraphText().node("A", "NoSuchType", {{"in", "real", "2"}}).text();
    EXPECT_EQ(diff(one, one).status, 0);
    const Ended ended = diff(one, two);
    EXPECT_EQ(ended.status, 1);
    EXPECT_TRUE(holds(ended.out, "reading")) << ended.out;
    EXPECT_TRUE(holds(ended.err, "error: b.xml: Unknown node type \"NoSuchType\"")) << ended.err;
}

TEST_F(DiffTest, FilesThatAreNoGraphsAreStatusTwo) {
    file("a.xml", sumGraph());
    file("broken.xml", "<scene><nodes>");
    EXPECT_EQ(sluice({"diff", "a.xml", "missing.xml"}).status, 2);
    EXPECT_EQ(sluice({"diff", "missing.xml", "a.xml"}).status, 2);
    const Ended broken = sluice({"diff", "a.xml", "broken.xml", "--json"});
    EXPECT_EQ(broken.status, 2);
    EXPECT_EQ(broken.json()["equal"], false);
    EXPECT_EQ(broken.json()["differences"][0]["kind"], "reading");
    EXPECT_EQ(sluice({"diff", "a.xml"}).status, 2);
}

TEST_F(DiffTest, EachDifferenceIsOneLine) {
    const Ended ended = diff(GraphText().text(), GraphText().node("a\nb", "Real").text());
    EXPECT_EQ(ended.out, "+ node root.a\\nb (Real)\n");
}

} // namespace
} // namespace sluice_test

// SPDX-License-Identifier: Apache-2.0
// Tests of layouts in files: text forms, the readers' reports, and round trips.
#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>

#include "persistence/files.h"
#include "persistence/graph_parsing_helper.h"
#include "persistence/tree_access.h"
#include "support/recording_host.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::RecordingHost;
using support::SceneBuilder;
using Helper = GraphParsingHelper;
using Position = Tuple2<float, float>;
using Color = Color4<float>;
using Posts = std::vector<std::string>;

namespace {

std::string layoutDocument(const std::string& content) {
    return "<scene><layout>" + content + "</layout></scene>";
}

GraphLayout layoutOf(const std::string& content) {
    GraphLayout layout;
    EXPECT_TRUE(Helper::readLayout_XML_fromString(layoutDocument(content), layout));
    return layout;
}

std::string valuesOf(const GraphLayout& layout) {
    TM_String text;
    layout.printValues(text);
    return text;
}

} // namespace

TEST(LayoutText, PairsOfNumbers) {
    EXPECT_EQ(Helper::tuple2_FLOAT_asString({1.5f, -2.0f}), "1.500000,-2.000000");
    EXPECT_EQ(Helper::convertTo_Tuple2_FLOAT("1.5,-2"), (Position{1.5f, -2.0f}));
    EXPECT_EQ(Helper::convertTo_Tuple2_FLOAT(" 1e2x,y"), (Position{100.0f, 0.0f}));
    EXPECT_EQ(Helper::convertTo_Tuple2_FLOAT(","), (Position{0.0f, 0.0f}));
    for (const char* text : {"", "1", "1,2,3", "1;2"}) {
        EXPECT_FALSE(Helper::convertTo_Tuple2_FLOAT(text)) << text;
    }
}

TEST(LayoutText, Colours) {
    EXPECT_EQ(Helper::color4F_asString3(Color(0.5f, 1, 0, 0.25f)), "0.500000,1.000000,0.000000");
    EXPECT_EQ(Helper::color4F_asString4(Color(0.5f, 1, 0, 0.25f)),
              "0.500000,1.000000,0.000000,0.250000");
    EXPECT_EQ(Helper::convertTo_Color4F("0.5,1,0", 3), Color(0.5f, 1, 0, 1));
    EXPECT_EQ(Helper::convertTo_Color4F("0.5,1,0,0.25", 4), Color(0.5f, 1, 0, 0.25f));
    EXPECT_FALSE(Helper::convertTo_Color4F("0.5,1,0", 4));
    EXPECT_FALSE(Helper::convertTo_Color4F("0.5,1,0,1", 3));
    EXPECT_FALSE(Helper::convertTo_Color4F("", 3));
    EXPECT_FALSE(Helper::convertTo_Color4F("", 1));
}

TEST(LayoutText, TruthValues) {
    EXPECT_EQ(Helper::bool_asString(true), "true");
    EXPECT_EQ(Helper::bool_asString(false), "false");
    for (const char* text : {"true", "Yes", "enable", "ENABLED", "on", "1"}) {
        EXPECT_EQ(Helper::convertTo_Bool(text), true) << text;
    }
    for (const char* text : {"false", "NO", "disabled", "off", "0"}) {
        EXPECT_EQ(Helper::convertTo_Bool(text), false) << text;
    }
    for (const char* text : {"disable", "", "2", " true", "tru"}) {
        EXPECT_FALSE(Helper::convertTo_Bool(text)) << text;
    }
}

TEST(LayoutChildren, AreReadOrReported) {
    RecordingHost host;
    PropertyTree tree;
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(
        "<a><p>1,2</p><q>1</q><b>on</b><c>disable</c><s>text</s><d>1,2,3</d><e>1</e></a>", tree));
    const PropertyTree& a = *tree::child(tree, "a");
    EXPECT_EQ(Helper::readTuple2_FLOAT_fromBoostPropertyTree(a, "p", "X"), (Position{1, 2}));
    EXPECT_FALSE(Helper::readTuple2_FLOAT_fromBoostPropertyTree(a, "q", "X"));
    EXPECT_EQ(Helper::readBool_fromBoostPropertyTree(a, "b", "X"), true);
    EXPECT_FALSE(Helper::readBool_fromBoostPropertyTree(a, "c", ""));
    EXPECT_EQ(Helper::readStr_fromBoostPropertyTree(a, "s", "X"), "text");
    EXPECT_EQ(Helper::readColor_fromBoostPropertyTree(a, "d", 3, "X"), Color(1, 2, 3, 1));
    EXPECT_FALSE(Helper::readColor_fromBoostPropertyTree(a, "e", 3, "root.Y"));
    EXPECT_EQ(host.posts, (Posts{"2266|X|q", "2267|c", "2266|root.Y|e"}));
}

TEST(LayoutChildren, ThatAreMissingAreNoFailure) {
    RecordingHost host;
    const PropertyTree empty;
    EXPECT_FALSE(Helper::readTuple2_FLOAT_fromBoostPropertyTree(empty, "p", "X"));
    EXPECT_FALSE(Helper::readBool_fromBoostPropertyTree(empty, "p", "X"));
    EXPECT_FALSE(Helper::readStr_fromBoostPropertyTree(empty, "p", "X"));
    EXPECT_FALSE(Helper::readColor_fromBoostPropertyTree(empty, "p", 4, ""));
    EXPECT_EQ(host.posts, Posts());
}

TEST(LayoutReading, OfNodes) {
    const GraphLayout layout =
        layoutOf("<nodes><node><name>root.A</name><position>1,2</position><color>1,0.5,0</color>"
                 "<collapsed>no</collapsed><horizontal_inputs>true</horizontal_inputs>"
                 "<horizontal_outputs>false</horizontal_outputs></node>"
                 "<node><name>root.B</name></node><node><position>5,5</position></node></nodes>");
    EXPECT_EQ(layout.getPositionByNodeName("root.A"), (Position{1, 2}));
    EXPECT_EQ(layout.getColorByNodeName("root.A"), Color(1, 0.5f, 0, 1));
    EXPECT_EQ(layout.getCollapsedByNodeName("root.A"), false);
    EXPECT_EQ(layout.getHorizontalInputsByNodeName("root.A"), true);
    EXPECT_EQ(layout.getHorizontalOutputsByNodeName("root.A"), false);
    EXPECT_FALSE(layout.getVisibleByNodeName("root.A"));
    EXPECT_FALSE(layout.getPositionByNodeName("root.B"));
    EXPECT_FALSE(layout.getPositionByNodeName(""));
}

TEST(LayoutReading, PutsBezierWhereVisibleGoes) {
    const GraphLayout layout = layoutOf(
        "<connections><connection><name>a</name><visible>true</visible></connection>"
        "<connection><name>b</name><visible>true</visible><bezier>false</bezier></connection>"
        "<connection><name>c</name><bezier>true</bezier></connection></connections>");
    EXPECT_EQ(layout.getVisibleByConnectionName("a"), true);
    EXPECT_EQ(layout.getVisibleByConnectionName("b"), false);
    EXPECT_EQ(layout.getVisibleByConnectionName("c"), true);
    for (const char* name : {"a", "b", "c"}) {
        EXPECT_FALSE(layout.getBezierByConnectionName(name)) << name;
    }
}

TEST(LayoutReading, OfNotes) {
    RecordingHost host;
    const GraphLayout layout =
        layoutOf("<notes><note><parentNode>root</parentNode><content>two\nlines</content>"
                 "<position>1,2</position><size>30,40</size><textColor>1,0,0</textColor>"
                 "<backgroundColor>0,1,0,0.5</backgroundColor></note>"
                 "<note><content>bare</content><size>1</size></note></notes>");
    ASSERT_EQ(layout.notes().size(), 2u);
    EXPECT_EQ(
        layout.notes()[0],
        (tidemark::graph::NoteDesc{
            "root", "two\nlines", {1, 2}, {30, 40}, Color(1, 0, 0, 1), Color(0, 1, 0, 0.5f)}));
    EXPECT_EQ(layout.notes()[1].content, "bare");
    EXPECT_EQ(host.posts, Posts{"2267|size"});
}

TEST(LayoutReading, ReportsTheNodeAndTheKey) {
    RecordingHost host;
    const GraphLayout layout =
        layoutOf("<nodes><node><name>root.A</name><position>1;2</position><color>1</color>"
                 "<collapsed>maybe</collapsed></node></nodes>"
                 "<connections><connection><name>k</name><visible/></connection></connections>");
    EXPECT_EQ(host.posts, (Posts{"2266|root.A|position", "2266|root.A|color",
                                 "2266|root.A|collapsed", "2266|k|visible"}));
    EXPECT_FALSE(layout.getPositionByNodeName("root.A"));
}

TEST(LayoutReading, AnswersFalseForMissingElements) {
    PropertyTree tree;
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(layoutDocument("<notes/>"), tree));
    GraphLayout layout;
    EXPECT_FALSE(Helper::readNodesLayout_fromBoostPropertyTree(tree, layout));
    EXPECT_FALSE(Helper::readConnectionsLayout_fromBoostPropertyTree(tree, layout));
    EXPECT_TRUE(Helper::readNotesLayout_fromBoostPropertyTree(tree, layout));
    EXPECT_TRUE(Helper::readLayout_XML(tree, layout));
    EXPECT_FALSE(Helper::readLayout_XML_fromString("<scene/>", layout));
    EXPECT_FALSE(Helper::readLayout_XML_fromString("<scene>", layout));
}

TEST(LayoutWriting, HoldsNodesInOrderAndNotesButNoConnections) {
    SceneBuilder build;
    build.add("Compound", "C").add("Add", "C.A").add("Add", "B");
    GraphLayout layout;
    layout.insertNodePosition("root.B", {1, 2});
    layout.insertNodeColor("root.C.A", Color(1, 0, 0, 1));
    layout.insertNodeCollapsed("root.C.A", true);
    layout.insertNodeVisible("root.C", true);
    layout.insertNodePosition("root.gone", {1, 2});
    layout.insertConnectionVisible("k", true);
    layout.addNote("root", "n", {1, 2}, {3, 4}, Color(0, 0, 0, 1), Color(1, 1, 1, 0));
    PropertyTree scene;
    Helper::writeLayout_toBoostPropertyTree(scene, build.scene, layout);
    PropertyTree expected;
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(
        "<layout><nodes>"
        "<node><name>root.C.A</name><color>1.000000,0.000000,0.000000</color>"
        "<collapsed>true</collapsed></node>"
        "<node><name>root.B</name><position>1.000000,2.000000</position></node></nodes>"
        "<notes><note><parentNode>root</parentNode><content>n</content>"
        "<position>1.000000,2.000000</position><size>3.000000,4.000000</size>"
        "<textColor>0.000000,0.000000,0.000000</textColor>"
        "<backgroundColor>1.000000,1.000000,1.000000,0.000000</backgroundColor></note></notes>"
        "</layout>",
        expected));
    EXPECT_EQ(scene, expected);
}

TEST(LayoutWriting, GivesNamesRelativeToTheOwner) {
    SceneBuilder build;
    build.add("Compound", "C").add("Compound", "C.D").add("Add", "C.D.A");
    GraphLayout layout;
    layout.insertNodePosition("root.C.D", {1, 2});
    layout.insertNodePosition("root.C.D.A", {3, 4});
    PropertyTree element;
    Helper::writeNodeLayout_toBoostPropertyTree(element, {build.node("C.D")}, layout);
    std::string names;
    tree::forEachNamed(element, "nodes", "node",
                       [&](const TM_String& name, const PropertyTree&) { names += name + " "; });
    EXPECT_EQ(names, "root.D root.D.A ");
}

TEST(LayoutWriting, BasicFormReadsBackButForConnections) {
    GraphLayout layout;
    layout.insertNodePosition("root.B", {1.5f, 2});
    layout.insertNodeHorizontalInputs("root.A", true);
    layout.insertNodeHorizontalOutputs("root.A", false);
    layout.insertConnectionVisible("k", true);
    layout.addNote("root", "", {1, 2}, {3, 4}, Color(0, 0, 0, 1), Color(1, 1, 1, 0));
    PropertyTree document;
    Helper::writeLayoutBasic_toBoostPropertyTree(document.add_child("scene", PropertyTree()),
                                                 layout);
    EXPECT_EQ(document.get<std::string>("scene.layout.connections.connection.name"), "k");
    GraphLayout read;
    EXPECT_TRUE(Helper::readLayout_XML(document, read));
    read.insertConnectionVisible("k", true);
    EXPECT_EQ(valuesOf(read), valuesOf(layout));
}

TEST(LayoutOfAScene, IsKeyedByTheNamesThatNodesReallyHave) {
    SceneBuilder build;
    build.add("Add", "A");
    const std::string text = support::document(support::node("Add", "A"));
    GraphLayout layout;
    layout.insertNodePosition("root.old", {9, 9});
    const std::string withLayout =
        text.substr(0, text.size() - 8) +
        "<layout><nodes><node><name>root.A</name><position>1,2</position></node></nodes></layout>"
        "</scene>";
    ASSERT_TRUE(Helper::read_XML_base_static(false, withLayout, build.scene, layout));
    EXPECT_EQ(layout.getPositionByNodeName("root.A01"), (Position{1, 2}));
    EXPECT_FALSE(layout.getPositionByNodeName("root.A"));
    EXPECT_FALSE(layout.getPositionByNodeName("root.old"));

    SceneBuilder second;
    second.add("Add", "A");
    PropertyTree document;
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(withLayout, document));
    GraphLayout fromTree;
    ASSERT_TRUE(Helper::read_XML_base_static(document, second.scene, fromTree));
    EXPECT_EQ(valuesOf(fromTree), valuesOf(layout));
}

TEST(LayoutOfAScene, IsWrittenAndReadWithIt) {
    const support::TemporaryFolder folder;
    SceneBuilder build;
    build.add("Compound", "C").add("Add", "C.A");
    GraphLayout layout;
    layout.insertNodePosition("root.C.A", {0.1f, -2});
    layout.addNote("root.C", "a < b", {1, 2}, {3, 4}, Color(0, 0, 0, 1), Color(1, 1, 1, 0.5f));
    TM_String text;
    ASSERT_TRUE(
        Helper::write_XML_base_static(true, folder.file("x.xml"), build.scene, layout, text));
    ASSERT_TRUE(Helper::write_XML_base_static(false, "", build.scene, layout, text));
    EXPECT_EQ(support::contentOf(folder.file("x.xml")), text);
    SL_GraphScene scene;
    GraphLayout read;
    ASSERT_TRUE(Helper::read_XML_base_static(true, folder.file("x.xml"), scene, read));
    EXPECT_EQ(valuesOf(read), valuesOf(layout));
    GraphLayout alone;
    ASSERT_TRUE(Helper::readLayout_XML(folder.file("x.xml"), alone));
    EXPECT_EQ(valuesOf(alone), valuesOf(layout));
}

// SPDX-License-Identifier: Apache-2.0
// Tests of reading and writing scenes: forms of nodes, names, reports, selections.
#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>

#include "core/evaluate_attribute.h"
#include "core/limits.h"
#include "core/string_value.h"
#include "graph/node_factory.h"
#include "persistence/files.h"
#include "persistence/graph_parsing_helper.h"
#include "persistence/tree_access.h"
#include "support/net.h"
#include "support/recording_host.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::document;
using support::input;
using support::inputs;
using support::LogicProbe;
using support::Names;
using support::node;
using support::ProbeNode;
using support::RecordingHost;
using support::SceneBuilder;
using Helper = GraphParsingHelper;
using Posts = std::vector<std::string>;

namespace {

const std::string rootBegin = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                              "<scene>\n    <nodes>\n        <node>\n"
                              "            <name>root</name>\n            <type/>\n"
                              "            <inputs/>\n            <outputs/>\n";

// A registered type whose nodes are probes, for as long as it lives.
class ProbeType : public NodeFactory {
public:
    explicit ProbeType(ProbeNode::Declare declare)
        : NodeFactory("Probe", {"Test"}), declare_(std::move(declare)) {
        SceneManager::instance().registerNodeFactory(this);
    }
    ~ProbeType() override { SceneManager::instance().unregisterNodeFactory(this); }
    NodeBase* createNode() override { return prepare(new ProbeNode(declare_)); }

private:
    ProbeNode::Declare declare_;
};

std::string pinElement(const std::string& kind, const std::string& name) {
    return "<" + kind + "><name>" + name + "</name></" + kind + ">";
}

std::string lists(const std::string& in, const std::string& out, const std::string& nodes = "") {
    return "<inputs>" + in + "</inputs><outputs>" + out + "</outputs>" +
           (nodes.empty() ? "" : "<nodes>" + nodes + "</nodes>");
}

// Trace: a compound that adds 10 to what comes in.
std::string compoundDocument(const std::string& addType) {
    const std::string inner = node("CompoundInterface", "IO",
                                   lists(pinElement("input", "y"), pinElement("output", "x"))) +
                              node(addType, "A") +
                              node("Integer", "K", inputs(input("in", "integer", "10")));
    return document(
        node("Integer", "S", inputs(input("in", "integer", "3"))) +
            node("Compound", "C",
                 lists(pinElement("input", "x"), pinElement("output", "y"), inner)) +
            node("Evaluator", "E", lists(pinElement("input", "evaluate"), "")),
        "S.integer>C.x C.IO.x>C.A.in0 C.K.integer>C.A.in1 C.A.result>C.IO.y C.y>E.evaluate");
}

Names namesOf(const Array<NodeBase*>& nodes) {
    Names names;
    for (const NodeBase* node : nodes) names.push_back(node->getName());
    return names;
}

std::string saved(SL_GraphScene& scene) {
    TM_String text;
    EXPECT_TRUE(scene.write_XML_toString(text));
    return text;
}

} // namespace

// Writing.

TEST(SceneWriting, AnEmptySceneIsItsRoot) {
    SL_GraphScene scene;
    EXPECT_EQ(saved(scene), rootBegin + "            <nodes/>\n        </node>\n    </nodes>\n"
                                        "    <connections/>\n</scene>\n");
}

TEST(SceneWriting, WritesValuesOfUnconnectedInputsAndConnections) {
    SceneBuilder build;
    build.add("Integer", "S").add("Add", "A").connect("S.integer", "A.in0");
    build.pin("S.in")->setIntValue(3);
    EXPECT_EQ(saved(build.scene), rootBegin + R"(            <nodes>
                <node>
                    <name>S</name>
                    <type>Integer</type>
                    <inputs>
                        <input>
                            <name>in</name>
                            <type>integer</type>
                            <value>3</value>
                        </input>
                    </inputs>
                </node>
                <node>
                    <name>A</name>
                    <type>Add</type>
                    <inputs>
                        <input>
                            <name>in1</name>
                            <type>polymorphic</type>
                            <value/>
                        </input>
                    </inputs>
                </node>
            </nodes>
        </node>
    </nodes>
    <connections>
        <connection>
            <source>root.S.integer</source>
            <target>root.A.in0</target>
        </connection>
    </connections>
</scene>
)");
}

TEST(SceneWriting, NodesWithPinsOfTheirOwnHaveThemInTheShortForm) {
    SceneBuilder build;
    build.add("Evaluator", "E").add("Integer", "S").add("Compound", "C");
    build.node("E")->addDynamicInputPin();
    build.connect("S.integer", "E.evaluate");
    PropertyTree tree;
    build.node("E")->write_toBoostPropertyTree(tree);
    build.node("C")->write_toBoostPropertyTree(tree);
    PropertyTree expected;
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(
        node("Evaluator", "E",
             lists(pinElement("input", "evaluate") + pinElement("input", "in"), "")) +
            node("Compound", "C", "<inputs/><outputs/><nodes/>"),
        expected));
    EXPECT_EQ(tree, expected);
}

TEST(SceneWriting, AConnectedInputIsWrittenForItsInternalConnections) {
    SceneBuilder build;
    build.add("Integer", "S");
    auto* probe = build.probe("Probe", "P", [](LogicProbe& logic) {
        logic.input<weft::NumericAttribute>("a")->setAllowedSpecializations({"Integer"});
        logic.input<weft::NumericAttribute>("b")->setAllowedSpecializations({"Integer"});
        logic.output<weft::NumericAttribute>("out")->setAllowedSpecializations({"Integer"});
    });
    probe->logic().addAttributeAllowedPassThrough(build.at("P.a"), build.at("P.out"));
    build.at("P.a")->addPassThrough(build.at("P.out"));
    build.connect("S.integer", "P.a").connect("S.integer", "P.b");
    PropertyTree tree;
    probe->write_toBoostPropertyTree(tree);
    PropertyTree expected;
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(
        node("Probe", "P",
             inputs(input("a", "integer", "0",
                          "<internal-connections><output>out</output></internal-connections>"))),
        expected));
    EXPECT_EQ(tree, expected);
}

TEST(SceneWriting, AFilteredNodeHoldsTheChildrenOfTheListWhole) {
    SceneBuilder build;
    build.add("Compound", "C").add("Compound", "C.D").add("Add", "C.D.A").add("Add", "C.B");
    PropertyTree tree;
    build.node("C")->write_toBoostPropertyTree(tree, {build.node("C.D")}, true);
    EXPECT_EQ(tree.get<std::string>("node.nodes.node.nodes.node.name"), "A");
    EXPECT_EQ(tree.get_child("node.nodes").size(), 1u);
    PropertyTree none;
    build.node("C")->write_toBoostPropertyTree(none, {}, true);
    EXPECT_EQ(none.get_child("node.nodes").size(), 0u);
    PropertyTree all;
    build.node("C")->write_toBoostPropertyTree(all, {}, false);
    EXPECT_EQ(all.get_child("node.nodes").size(), 2u);
}

TEST(SceneWriting, TreeAndTextAreTheSame) {
    SL_GraphScene scene;
    ASSERT_TRUE(scene.read_XML_fromString(compoundDocument("Add")));
    PropertyTree tree;
    scene.write_toBoostPropertyTree(tree.add_child("scene", PropertyTree()));
    PropertyTree parsed;
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(saved(scene), parsed));
    EXPECT_EQ(tree, parsed);
}

TEST(SceneWriting, RefusesTextThatIsNotUtf8AndNamesThePin) {
    const support::TemporaryFolder folder;
    const std::string path = folder.write("x.xml", "old");
    SceneBuilder build;
    build.add("Compound", "C").add("String", "C.S");
    build.pin("C.S.in")->setStringValue("caf\xe9");
    RecordingHost host;
    EXPECT_FALSE(build.scene.write_XML(path));
    TM_String text = "x";
    EXPECT_FALSE(build.scene.write_XML_toString(text));
    EXPECT_EQ(text, "");
    const std::string reason =
        "cannot be written: the \"value\" of pin \"in\" of node \"S\" is not UTF-8|0";
    EXPECT_EQ(host.posts, (Posts{"2263|" + path + "|" + reason, "2263||" + reason}));
    EXPECT_EQ(support::contentOf(path), "old");
    EXPECT_EQ(folder.countOfFiles(), 1u);
}

TEST(SceneWriting, RefusesCompoundsNestedDeeperThanCanBeRead) {
    SceneBuilder build;
    std::string path = "C";
    for (int depth = 1; depth <= 508; ++depth, path += ".C") build.add("Compound", path);
    TM_String text;
    ASSERT_TRUE(build.scene.write_XML_toString(text));
    SL_GraphScene scene;
    EXPECT_TRUE(scene.read_XML_fromString(text));
    EXPECT_EQ(scene.nodesById().size(), 508u);
    build.add("Compound", path);
    RecordingHost host;
    EXPECT_FALSE(build.scene.write_XML_toString(text));
    EXPECT_EQ(host.posts,
              Posts{"2263||cannot be written: compounds are nested deeper than can be read|0"});
}

TEST(SceneWriting, AFailedSaveIsReported) {
    const support::TemporaryFolder folder;
    SL_GraphScene scene;
    RecordingHost host;
    EXPECT_FALSE(scene.write_XML(folder.file("")));
    EXPECT_FALSE(scene.write_XML(folder.file("none/x.xml")));
    EXPECT_EQ(host.posts,
              (Posts{"2263|" + folder.file("") + "|cannot be written: a folder, not a file|0",
                     "2263|" + folder.file("none/x.xml") +
                         "|cannot be written: No such file or directory|0"}));
}

// Reading.

TEST(SceneReading, OfACompoundFollowsTheTrace) {
    SL_GraphScene scene;
    RecordingHost host;
    ASSERT_TRUE(scene.read_XML_fromString(compoundDocument("Add")));
    EXPECT_EQ(host.posts, Posts());
    EXPECT_EQ(namesOf(scene.getArrImportedNodes()), (Names{"S", "C", "IO", "A", "K", "E"}));
    EXPECT_EQ(namesOf(scene.getArrUpdateNodes()), Names{"E"});
    EXPECT_TRUE(scene.getXmlToImportedName().empty());
    EXPECT_EQ(scene.connections().size(), 5u);
    EXPECT_EQ(scene.getArrImportedConnections().size(), 5u);
    for (const auto entry : scene.pinsById()) {
        const weft::Attribute* attribute = static_cast<Pin*>(entry.value)->getWeftAttribute();
        EXPECT_EQ(attribute->specialization(), "Integer") << entry.value->getFullName();
    }
    const auto at = [&](const char* name) {
        return static_cast<Pin*>(scene.getPinPtrByFullName(name))->getWeftAttribute();
    };
    EXPECT_EQ(at("root.C.y")->source(), at("root.C.IO.y"));
    EXPECT_EQ(at("root.C.IO.x")->source(), at("root.C.x"));

    scene.run();
    EXPECT_EQ(at("root.E.evaluate")->currentValue(), at("root.C.A.result")->value());
    EXPECT_EQ(at("root.C.y")->currentValue(), at("root.C.A.result")->value());
    EXPECT_EQ(at("root.C.x")->currentValue(), at("root.S.integer")->value());
    EXPECT_EQ(weft::valueAs<weft::Numeric>(at("root.E.evaluate")->currentValue())->value<int>(),
              13);
}

TEST(SceneReading, OfANodeMakesPinsInTheOrderOfTheFile) {
    SL_GraphScene scene;
    ASSERT_TRUE(scene.read_XML_fromString(document(
        node("Compound", "C",
             lists(pinElement("input", "b") + pinElement("input", "a"), pinElement("output", "y"),
                   node("CompoundInterface", "IO",
                        lists(pinElement("input", "y"),
                              pinElement("output", "a") + pinElement("output", "b"))))))));
    const auto* compound = static_cast<NodeBase*>(scene.getNodePtrByFullName("root.C"));
    EXPECT_EQ(SceneBuilder::namesOf(compound->getArrInputPin()), (Names{"b", "a"}));
}

TEST(SceneReading, AnUnknownTypeIsReportedWithEveryConnectionToIt) {
    SL_GraphScene scene;
    RecordingHost host;
    EXPECT_TRUE(scene.read_XML_fromString(compoundDocument("Ad")));
    EXPECT_EQ(host.posts, (Posts{"2255|Ad|root.C.A|Add", "2260|root.C.A.in0|", "2260|root.C.A.in1|",
                                 "2260|root.C.A.result|"}));
    EXPECT_EQ(scene.nodesById().size(), 5u);
    EXPECT_EQ(scene.connections().size(), 2u);
}

TEST(SceneReading, WhatLiesBelowAnUnknownTypeIsSkipped) {
    SL_GraphScene scene;
    RecordingHost host;
    EXPECT_TRUE(scene.read_XML_fromString(document(
        node("Xyzzy", "X", "<nodes>" + node("Add", "A") + "</nodes>") + node("Add", "B"))));
    EXPECT_EQ(host.posts, Posts{"2255|Xyzzy|root.X|"});
    EXPECT_EQ(namesOf(scene.getArrImportedNodes()), Names{"B"});
}

TEST(SceneReading, AMissingPinIsReportedWithTheNearest) {
    SL_GraphScene scene;
    RecordingHost host;
    EXPECT_TRUE(scene.read_XML_fromString(document(node("Integer", "S") + node("Add", "Sum_01"),
                                                   "S.intger>Sum_01.in0 S.integer>Sum_1.in0 "
                                                   "S.integer>Sum_01 x>y")));
    EXPECT_EQ(host.posts,
              (Posts{"2260|root.S.intger|root.S.integer", "2260|root.Sum_1.in0|root.Sum_01.in0",
                     "2260|root.Sum_01|", "2260|root.x|", "2260|root.y|"}));
    EXPECT_EQ(scene.connections().size(), 0u);
}

TEST(SceneReading, AnUnknownInputIsReportedAndSkipped) {
    SL_GraphScene scene;
    RecordingHost host;
    EXPECT_TRUE(scene.read_XML_fromString(document(
        node("Integer", "S", inputs(input("inn", "integer", "1") + input("in", "integer", "2"))))));
    EXPECT_EQ(host.posts, Posts{"2261|S.inn|in"});
    EXPECT_EQ(scene.getPinIntValue("root.S.in"), 2);
}

TEST(SceneReading, InterfaceNodesOutsideOfCompoundsAreRefused) {
    SL_GraphScene scene;
    RecordingHost host;
    const std::string child = "<nodes>" + node("Add", "A") + "</nodes>";
    EXPECT_TRUE(scene.read_XML_fromString(document(node("CompoundInterface", "I", child) +
                                                   node("INPUTINTERFACE", "J", child) +
                                                   node("outputInterface", "K", child))));
    EXPECT_EQ(host.posts, (Posts{"2256|root.I|CompoundInterface", "2256|root.J|INPUTINTERFACE",
                                 "2256|root.K|outputInterface"}));
    EXPECT_EQ(scene.nodesById().size(), 0u);
}

TEST(SceneReading, AnEvaluatorInACompoundIsAnInterfaceNode) {
    SL_GraphScene scene;
    ASSERT_TRUE(scene.read_XML_fromString(
        document(node("Compound", "C", "<nodes>" + node("EVALUATOR", "E") + "</nodes>") +
                 node("Evaluator", "E"))));
    EXPECT_EQ(scene.getNodePtrByFullName("root.C.E")->getType(), "CompoundInterface");
    EXPECT_EQ(scene.getNodePtrByFullName("root.E")->getType(), "Evaluator");
}

TEST(SceneReading, LegacyTypesBecomeCurrentOnes) {
    SL_GraphScene scene;
    ASSERT_TRUE(scene.read_XML_fromString(document(node("Concatenate", "X"))));
    EXPECT_EQ(scene.getNodePtrByFullName("root.X")->getType(), "StringConcatenate");
}

TEST(SceneReading, ANameThatIsTakenIsChangedAndConnectionsFollow) {
    SceneBuilder build;
    build.add("Integer", "S").add("Add", "A");
    RecordingHost host;
    ASSERT_TRUE(build.scene.read_XML_fromString(
        document(node("Integer", "S") + node("Add", "A"), "S.integer>A.in0")));
    EXPECT_EQ(host.posts, Posts());
    EXPECT_EQ(build.connections(), Names{"S01.integer>A01.in0"});
    const auto& names = build.scene.getXmlToImportedName();
    EXPECT_EQ(names,
              (std::map<TM_String, TM_String>{{"root.S", "root.S01"}, {"root.A", "root.A01"}}));
}

TEST(SceneReading, OfTwoEqualNamesTheLaterNodeGetsTheConnections) {
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(
        document(node("Integer", "S") + node("Add", "A") + node("Add", "A"), "S.integer>A.in0")));
    EXPECT_EQ(build.connections(), Names{"S.integer>A01.in0"});
}

TEST(SceneReading, AnUntypedNodeAtTheTopIsTheRoot) {
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(
        "<scene><nodes><node><name>top</name><nodes>" + node("Integer", "S") + node("Add", "A") +
        "</nodes></node></nodes><connections><connection><source>root.top.S.integer</source>"
        "<target>root.top.A.in0</target></connection></connections></scene>"));
    EXPECT_EQ(build.connections(), Names{"S.integer>A.in0"});
}

TEST(SceneReading, NodesMayStandWithoutARoot) {
    SceneBuilder build;
    ASSERT_TRUE(
        build.scene.read_XML_fromString("<scene><nodes>" + node("Add", "A") + "</nodes></scene>"));
    EXPECT_NE(build.node("A"), nullptr);
}

TEST(SceneReading, WithoutConnectionsTheNodesAreRead) {
    SL_GraphScene scene;
    PropertyTree tree;
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(
        "<scene><nodes>" + node("Add", "A") + "</nodes></scene>", tree));
    EXPECT_TRUE(scene.readNodes_fromBoostPropertyTree(tree, nullptr, true));
    EXPECT_FALSE(scene.readConnections_fromBoostPropertyTree(tree));
    EXPECT_EQ(scene.nodesById().size(), 1u);
    EXPECT_FALSE(scene.readNodes_fromBoostPropertyTree(PropertyTree(), nullptr, true));
}

TEST(SceneReading, ElementsMayComeInAnyOrder) {
    SceneBuilder build;
    RecordingHost host;
    ASSERT_TRUE(build.scene.read_XML_fromString(
        "<scene><connections><connection><target>root.A.in0</target>"
        "<source>root.S.integer</source></connection></connections><nodes><node><nodes><node>"
        "<inputs><input><value>4</value><type>integer</type><name>in</name></input></inputs>"
        "<type>Integer</type><name>S</name></node>" +
        node("Add", "A") + "</nodes><type/><name>root</name></node></nodes></scene>"));
    EXPECT_EQ(host.posts, Posts());
    EXPECT_EQ(build.connections(), Names{"S.integer>A.in0"});
    EXPECT_EQ(build.scene.getPinIntValue("root.S.in"), 4);
}

TEST(SceneReading, ARefusedConnectionIsAnErrorOfTheScene) {
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(
        document(node("Integer", "S") + node("Add", "A") + node("Add", "B") + node("String", "T"),
                 "S.integer>A.in0 S.integer>A.in0 A.result>B.in0 B.result>A.in1 T.out>B.in1 "
                 "A.in0>B.in1")));
    EXPECT_EQ(build.connections(), (Names{"S.integer>A.in0", "A.result>B.in0"}));
    EXPECT_EQ(SceneBuilder::textsOf(build.scene.getMessages()),
              (Names{"2 Unable to connect 'root.S.integer' to 'root.A.in0'",
                     "2 Unable to connect 'root.B.result' to 'root.A.in1'",
                     "2 Unable to connect 'root.T.out' to 'root.B.in1'",
                     "2 Unable to connect 'root.A.in0' to 'root.B.in1'"}));
    EXPECT_EQ(build.scene.getArrImportedConnections().size(), 2u);
}

TEST(SceneReading, AConnectedInputComesBackWithItsDefault) {
    SceneBuilder first;
    first.add("Integer", "S").add("Integer", "T");
    first.pin("S.in")->setIntValue(3);
    first.pin("T.in")->setIntValue(5);
    first.connect("S.integer", "T.in");
    SceneBuilder second;
    ASSERT_TRUE(second.scene.read_XML_fromString(saved(first.scene)));
    EXPECT_EQ(second.connections(), Names{"S.integer>T.in"});
    second.scene.removeConnection(second.scene.connections()[0]);
    EXPECT_EQ(second.pin("T.in")->getIntValue(), 0);
    EXPECT_EQ(second.pin("S.in")->getIntValue(), 3);
}

TEST(SceneReading, AppliesInternalConnections) {
    ProbeType type([](LogicProbe& logic) {
        auto* in = logic.input<weft::NumericAttribute>("in");
        auto* out = logic.output<weft::NumericAttribute>("out");
        auto* other = logic.output<weft::NumericAttribute>("other");
        for (weft::Attribute* attribute : {in, out, other}) {
            attribute->setAllowedSpecializations({"Vector3"});
        }
        logic.addAttributeAllowedPassThrough(in, out);
        logic.addAttributePassThrough(in, out);
    });
    const std::string other =
        "<internal-connections><output>other</output><output>none</output></internal-connections>";
    const std::string out = "<internal-connections><output>out</output></internal-connections>";
    {
        SceneBuilder build;
        RecordingHost host;
        ASSERT_TRUE(build.scene.read_XML_fromString(
            document(node("Probe", "P", inputs(input("in", "vector3", "1,2,3", other))) +
                     node("Probe", "Q", inputs(input("in", "vector3", "1,2,3", out))) +
                     node("Probe", "R", inputs(input("in", "vector3", "1,2", out))))));
        const auto ends = [&](const char* pin) {
            return support::Net::namesOf(build.at(pin)->passThroughs());
        };
        EXPECT_EQ(ends("P.in"), "P.other");
        EXPECT_EQ(build.messages("P"), Names{"2 Internal connection in->other not allowed"});
        EXPECT_EQ(ends("Q.in"), "Q.out");
        EXPECT_EQ(build.messages("Q"), Names());
        EXPECT_EQ(ends("R.in"), "");
        EXPECT_EQ(build.seen<Vector3<float>>("R.in"), Vector3<float>(0, 0, 0));
        EXPECT_EQ(host.posts,
                  (Posts{"2286|[P] Internal connection in->other not allowed", "2261|P.none"}));
    }
}

TEST(SceneReading, IntoASceneKeepsWhatIsThere) {
    SceneBuilder build;
    build.add("Add", "A");
    EXPECT_TRUE(build.scene.read_XML_fromString(document(node("Add", "B"))));
    EXPECT_FALSE(build.scene.read_XML_fromString("<scene><nodes>" + node("Add", "C")));
    EXPECT_EQ(build.scene.nodesById().size(), 2u);
    EXPECT_EQ(namesOf(build.scene.getArrImportedNodes()), Names{"B"});
}

TEST(SceneReading, NamesWithPointsAndBlanksAreKept) {
    SceneBuilder build;
    RecordingHost host;
    ASSERT_TRUE(build.scene.read_XML_fromString(
        document(node("Integer", "a b ") + node("Integer", "a.b") + node("Integer", "  ") +
                     node("Integer", "") + node("Add", "A"),
                 "a_b")));
    Names names;
    for (const auto* child : build.scene.getRootNode()->children()) {
        names.push_back(child->getName());
    }
    EXPECT_EQ(names, (Names{"a b ", "a.b", "  ", "", "A"}));
    const std::string text = saved(build.scene);
    SL_GraphScene again;
    ASSERT_TRUE(again.read_XML_fromString(text));
    EXPECT_EQ(saved(again), text);
    EXPECT_NE(again.getPinPtrByFullName("root.a b .integer"), nullptr);
    EXPECT_EQ(again.getPinPtrByFullName("root.a.b.integer"), nullptr);
}

TEST(SceneReading, StopsAtTheLimitOfNodes) {
    limits::Limits few;
    few.maxNodes = 2;
    limits::set(few);
    const std::string text = document(node("Add", "A") + node("Add", "B") + node("Add", "C"));
    RecordingHost host;
    SL_GraphScene scene;
    EXPECT_FALSE(scene.read_XML_fromString(text));
    EXPECT_EQ(scene.nodesById().size(), 2u);
    PropertyTree tree;
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(text, tree));
    SL_GraphScene second;
    EXPECT_FALSE(second.read_fromBoostPropertyTree(tree));
    EXPECT_EQ(second.nodesById().size(), 2u);
    limits::set({});
    EXPECT_EQ(host.posts, (Posts{"2263||more nodes than the limit of 2|0",
                                 "2263||more nodes than the limit of 2|0"}));
    EXPECT_TRUE(second.read_fromBoostPropertyTree(tree));
}

TEST(SceneReading, AnInterruptEndsIt) {
    SL_GraphScene scene;
    scene.requestInterrupt();
    EXPECT_FALSE(scene.read_XML_fromString(document(node("Add", "A"))));
    EXPECT_EQ(scene.nodesById().size(), 0u);
}

// Selections.

TEST(SceneSelection, IsWrittenWithNamesRelativeToItsParent) {
    SceneBuilder build;
    build.add("Compound", "C").add("Integer", "C.S").add("Add", "C.A").add("Compound", "C.D");
    build.add("Integer", "C.D.T").add("Add", "C.D.B").add("Add", "C.other");
    build.connect("C.S.integer", "C.A.in0").connect("C.D.T.integer", "C.D.B.in0");
    build.connect("C.S.integer", "C.other.in0");
    PropertyTree tree;
    build.scene.write_toBoostPropertyTree(
        tree.add_child("scene", PropertyTree()), build.node("C"),
        {build.node("C.D"), build.node("C.S"), build.node("C.A")});
    std::string names;
    tree::forEachNamed(*tree::child(tree, "scene"), "nodes", "node",
                       [&](const TM_String& name, const PropertyTree&) { names += name + " "; });
    EXPECT_EQ(names, "S A D ");
    std::string ends;
    tree::forEach(tree.get_child("scene.connections"), "connection",
                  [&](const PropertyTree& connection) {
                      ends += tree::childText(connection, "source") + ">" +
                              tree::childText(connection, "target") + " ";
                  });
    EXPECT_EQ(ends, "root.S.integer>root.A.in0 root.D.T.integer>root.D.B.in0 ");
}

TEST(SceneSelection, IsReadIntoAnotherParent) {
    SceneBuilder build;
    build.add("Integer", "S").add("Add", "A").connect("S.integer", "A.in0");
    build.pin("S.in")->setIntValue(7);
    build.add("Compound", "C").add("Integer", "C.S");
    PropertyTree tree;
    build.scene.write_toBoostPropertyTree(tree.add_child("scene", PropertyTree()),
                                          static_cast<NodeBase*>(build.scene.getRootNode()),
                                          {build.node("S"), build.node("A")});
    RecordingHost host;
    EXPECT_TRUE(build.scene.read_fromBoostPropertyTree(tree, build.node("C")));
    EXPECT_EQ(host.posts, Posts());
    EXPECT_EQ(build.connections(), (Names{"S.integer>A.in0", "C.S01.integer>C.A.in0"}));
    EXPECT_EQ(build.pin("C.S01.in")->getIntValue(), 7);
}

TEST(SceneSelection, AWholeDocumentGoesIntoTheParentToo) {
    SceneBuilder build;
    build.add("Compound", "C");
    PropertyTree tree;
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(
        document(node("Integer", "S") + node("Add", "A"), "S.integer>A.in0"), tree));
    EXPECT_TRUE(build.scene.read_fromBoostPropertyTree(tree, build.node("C")));
    EXPECT_EQ(build.connections(), Names{"C.S.integer>C.A.in0"});
}

TEST(SceneSelection, OneNodeIsReadByItself) {
    SceneBuilder build;
    PropertyTree tree;
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(node("Add", "A"), tree));
    const PropertyTree& element = *tree::child(tree, "node");
    const Optional<NodeBase*> made =
        build.scene.readNode_fromBoostPropertyTree(element, "", nullptr);
    ASSERT_TRUE(made);
    EXPECT_EQ((*made)->getFullName(), "root.A");
    EXPECT_EQ(build.scene.getXmlToImportedName().at("A"), "root.A");
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(node("Xyzzy", "A"), tree));
    EXPECT_FALSE(
        build.scene.readNode_fromBoostPropertyTree(*tree::child(tree, "node"), "root", nullptr));
}

// Large files.

namespace {

uint64_t progressCalls = 0;
uint64_t lastDone = 0;
uint64_t lastTotal = 0;

// Compounds of `width` adders each, one in the other.
std::string largeDocument(int depth, int width) {
    std::string nodes;
    std::string connections;
    for (int d = depth; d >= 0; --d) {
        std::string path;
        for (int i = 0; i < d; ++i) path += "C.";
        std::string level;
        for (int i = 0; i < width; ++i) {
            level +=
                node("Add", "A" + std::to_string(i) + "x", inputs(input("in1", "polymorphic", "")));
            if (i > 0) {
                connections += path + "A" + std::to_string(i - 1) + "x.result>" + path + "A" +
                               std::to_string(i) + "x.in0 ";
            }
        }
        nodes =
            nodes.empty() ? level : level + node("Compound", "C", "<nodes>" + nodes + "</nodes>");
    }
    return document(nodes, connections.substr(0, connections.size() - 1));
}

} // namespace

TEST(SceneReading, OfALargeFileInPiecesGivesTheSameAsAsATree) {
    const std::string text = largeDocument(3, 800);
    ASSERT_GT(text.size(), 700000u);
    SL_GraphScene inPieces;
    RecordingHost host;
    ASSERT_TRUE(inPieces.read_XML_fromString(text));
    PropertyTree tree;
    ASSERT_TRUE(Helper::XML_stringToPropertyTree(text, tree));
    SL_GraphScene asTree;
    ASSERT_TRUE(asTree.read_fromBoostPropertyTree(tree));
    EXPECT_EQ(host.posts, Posts());
    EXPECT_EQ(inPieces.nodesById().size(), 3203u);
    EXPECT_EQ(inPieces.connections().size(), 3196u);
    EXPECT_EQ(saved(inPieces), saved(asTree));
}

TEST(SceneReading, TellsItsProgressAboutOneHundredTimes) {
    const std::string text = largeDocument(3, 800);
    progressCalls = 0;
    Helper::readProgress_ = [](const char*, uint64_t done, uint64_t total) {
        EXPECT_GE(done, lastDone);
        ++progressCalls;
        lastDone = done;
        lastTotal = total;
    };
    lastDone = 0;
    SL_GraphScene scene;
    scene.read_XML_fromString(text);
    Helper::readProgress_ = nullptr;
    EXPECT_GT(progressCalls, 5u);
    EXPECT_LE(progressCalls, 101u);
    EXPECT_GT(lastDone, 0u);
    EXPECT_EQ(lastDone, lastTotal);
}

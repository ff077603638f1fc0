// SPDX-License-Identifier: Apache-2.0
// Pins of compounds, interface nodes and evaluators that come from a file.
#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>

#include "control_scene.h"
#include "graph/property_tree_fwd.h"

namespace control_tests {
namespace {

using tidemark::sluice::graph::PropertyTree;

PropertyTree treeOf(const char* list, const char* item, std::initializer_list<const char*> names) {
    PropertyTree tree;
    PropertyTree& items = tree.add_child(list, PropertyTree());
    for (const char* name : names) items.add_child(item, PropertyTree()).put("name", name);
    return tree;
}
PropertyTree inputsOf(std::initializer_list<const char*> names) {
    return treeOf("inputs", "input", names);
}
PropertyTree outputsOf(std::initializer_list<const char*> names) {
    return treeOf("outputs", "output", names);
}

std::string names(const Array<Pin*>& pins) {
    std::string text;
    for (const Pin* pin : pins) text += (text.empty() ? "" : " ") + pin->getName();
    return text;
}
std::string names(const Array<TM_String>& list) {
    std::string text;
    for (const TM_String& name : list) text += (text.empty() ? "" : " ") + name;
    return text;
}

std::string node(const char* name, const char* type, const std::string& rest = "") {
    return std::string("<node><name>") + name + "</name><type>" + type + "</type>" + rest +
           "</node>";
}
std::string pins(const char* list, const char* item, std::initializer_list<const char*> given) {
    std::string text = std::string("<") + list + ">";
    for (const char* name : given) {
        text += std::string("<") + item + "><name>" + name + "</name></" + item + ">";
    }
    return text + "</" + list + ">";
}
std::string inputs(std::initializer_list<const char*> given) {
    return pins("inputs", "input", given);
}
std::string outputs(std::initializer_list<const char*> given) {
    return pins("outputs", "output", given);
}
std::string connection(const char* source, const char* target) {
    return std::string("<connection><source>root.") + source + "</source><target>root." + target +
           "</target></connection>";
}
std::string integer(const char* name, int value) {
    return node(name, "Integer",
                "<inputs><input><name>in</name><type>integer</type><value>" +
                    std::to_string(value) + "</value></input></inputs>");
}
std::string scene(const std::string& nodes, const std::string& connections = "") {
    return "<scene><nodes>" + node("root", "", "<nodes>" + nodes + "</nodes>") +
           "</nodes><connections>" + connections + "</connections></scene>";
}

TEST(StoredCompoundPins, AreKeptAsAnOrderEachNameOnce) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    EXPECT_TRUE(compound->readInputs_fromBoostPropertyTree(inputsOf({"b", "a", "b"})));
    EXPECT_TRUE(compound->readInputs_fromBoostPropertyTree(inputsOf({"a", "c"})));
    EXPECT_TRUE(compound->readOutputs_fromBoostPropertyTree(outputsOf({"y", "y"})));
    EXPECT_EQ(names(compound->getInputPinsOrder()), "b a c");
    EXPECT_EQ(names(compound->getOutputPinsOrder()), "y");
    EXPECT_FALSE(compound->hasInputPins());
    EXPECT_TRUE(compound->readInputs_fromBoostPropertyTree(PropertyTree()));
    EXPECT_TRUE(compound->readOutputs_fromBoostPropertyTree(PropertyTree()));
    EXPECT_EQ(names(compound->getInputPinsOrder()), "b a c");
}

TEST(StoredInterfacePins, MakeBothSidesOfTheWall) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    Node* interface = net.add("CompoundInterface", "IO", compound);
    EXPECT_TRUE(interface->readInputs_fromBoostPropertyTree(inputsOf({"y", "in"})));
    EXPECT_TRUE(interface->readOutputs_fromBoostPropertyTree(outputsOf({"x"})));
    EXPECT_EQ(names(interface->getArrInputPin()), "y in");
    EXPECT_EQ(names(compound->getArrOutputPin()), "y in");
    EXPECT_EQ(names(interface->getArrOutputPin()), "x");
    EXPECT_EQ(names(compound->getArrInputPin()), "x");
    EXPECT_EQ(net.at("C.y")->source(), net.at("C.IO.y"));
    EXPECT_EQ(net.at("C.IO.x")->source(), net.at("C.x"));
    EXPECT_EQ(net.pin("C.IO.x")->getParentGraphNodePinPtr(), net.pin("C.x"));
    EXPECT_EQ(net.at("C.IO.y")->name(), "y");
    EXPECT_TRUE(interface->readInputs_fromBoostPropertyTree(PropertyTree()));
    EXPECT_TRUE(interface->readOutputs_fromBoostPropertyTree(PropertyTree()));
    EXPECT_EQ(names(interface->getArrInputPin()), "y in");
}

TEST(StoredInterfacePins, TakenNameIsMadeFreeOnBothSides) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    Node* first = net.add("CompoundInterface", "IO", compound);
    Node* second = net.add("CompoundInterface", "IO2", compound);
    first->readInputs_fromBoostPropertyTree(inputsOf({"y"}));
    second->readInputs_fromBoostPropertyTree(inputsOf({"y", "y"}));
    second->readOutputs_fromBoostPropertyTree(outputsOf({"y"}));
    EXPECT_EQ(names(first->getArrInputPin()), "y");
    EXPECT_EQ(names(second->getArrInputPin()), "y1 y2");
    EXPECT_EQ(names(compound->getArrOutputPin()), "y y1 y2");
    EXPECT_EQ(names(second->getArrOutputPin()), "y3");
    EXPECT_EQ(names(compound->getArrInputPin()), "y3");
}

const char* const wallNodes[] = {"S", "C", "IO", "A", "K", "E"};

std::string wallScene(bool withSum) {
    return scene(integer("S", 3) +
                     node("C", "Compound",
                          inputs({"x"}) + outputs({"y"}) + "<nodes>" +
                              node("IO", "CompoundInterface", inputs({"y"}) + outputs({"x"})) +
                              node("A", withSum ? "Add" : "NoSuchType") + integer("K", 10) +
                              "</nodes>") +
                     node("E", "Evaluator", inputs({"evaluate"})),
                 connection("S.integer", "C.x") + connection("C.IO.x", "C.A.in0") +
                     connection("C.K.integer", "C.A.in1") + connection("C.A.result", "C.IO.y") +
                     connection("C.y", "E.evaluate"));
}

TEST(StoredCompound, IsReadConnectedAndRun) {
    ControlScene net;
    ASSERT_TRUE(net.scene.read_XML_fromString(wallScene(true)));
    EXPECT_TRUE(net.host.posts.empty());
    EXPECT_TRUE(net.scene.getXmlToImportedName().empty());
    ASSERT_EQ(net.scene.getArrImportedNodes().size(), std::size(wallNodes));
    for (std::size_t i = 0; i < std::size(wallNodes); ++i) {
        EXPECT_EQ(net.scene.getArrImportedNodes()[i]->getName(), wallNodes[i]);
    }
    ASSERT_EQ(net.scene.getArrUpdateNodes().size(), 1u);
    EXPECT_EQ(net.scene.getArrUpdateNodes()[0], net.node("E"));
    EXPECT_EQ(net.scene.connections().size(), 5u);
    EXPECT_EQ(net.updatesOfRun(), "S.integer, IO.x, K.integer, A.result, IO.y, C.y, E.evaluate");
    EXPECT_EQ(net.integer("E.evaluate"), 13);
    EXPECT_EQ(net.at("E.evaluate")->currentValue(), net.at("C.A.result")->value());
}

TEST(StoredCompound, WithAnUnknownTypeInItReportsTypeAndConnections) {
    ControlScene net;
    ASSERT_TRUE(net.scene.read_XML_fromString(wallScene(false)));
    ASSERT_EQ(net.host.posts.size(), 4u);
    EXPECT_EQ(net.host.posts[0].rfind("2255|NoSuchType", 0), 0u) << net.host.posts[0];
    EXPECT_EQ(net.host.posts[1].rfind("2260|root.C.A.in0", 0), 0u) << net.host.posts[1];
    EXPECT_EQ(net.host.posts[2].rfind("2260|root.C.A.in1", 0), 0u) << net.host.posts[2];
    EXPECT_EQ(net.host.posts[3].rfind("2260|root.C.A.result", 0), 0u) << net.host.posts[3];
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
}

TEST(StoredCompound, GetsItsPinsInTheStoredOrder) {
    ControlScene net;
    ASSERT_TRUE(net.scene.read_XML_fromString(scene(
        node("C", "Compound",
             inputs({"c", "a", "b"}) + outputs({"z", "y"}) + "<nodes>" +
                 node("IO", "CompoundInterface", inputs({"y"}) + outputs({"a", "b"})) +
                 node("IO2", "CompoundInterface", inputs({"z"}) + outputs({"c"})) + "</nodes>"))));
    EXPECT_EQ(names(net.node("C")->getArrInputPin()), "c a b");
    EXPECT_EQ(names(net.node("C")->getArrOutputPin()), "z y");
}

TEST(StoredCompound, InterfaceNodeAtRootLevelIsRefused) {
    ControlScene net;
    ASSERT_TRUE(
        net.scene.read_XML_fromString(scene(node("IO", "CompoundInterface", inputs({"y"})))));
    ASSERT_EQ(net.host.posts.size(), 1u);
    EXPECT_EQ(net.host.posts[0].rfind("2256", 0), 0u) << net.host.posts[0];
    EXPECT_EQ(net.scene.nodesById().size(), 0u);
}

TEST(StoredEvaluator, HasItsPinsAfterAReadAndAfterASave) {
    ControlScene net;
    ASSERT_TRUE(net.scene.read_XML_fromString(
        scene(integer("S", 4) + node("E", "Evaluator", inputs({"a", "b", "c"})),
              connection("S.integer", "E.c"))));
    EXPECT_EQ(names(net.node("E")->getArrInputPin()), "a b c");
    net.scene.run();
    EXPECT_EQ(net.integer("E.c"), 4);
    TM_String text;
    ASSERT_TRUE(net.scene.write_XML_toString(text));
    ControlScene again;
    ASSERT_TRUE(again.scene.read_XML_fromString(text));
    EXPECT_EQ(names(again.node("E")->getArrInputPin()), "a b c");
    again.scene.run();
    EXPECT_EQ(again.integer("E.c"), 4);
}

TEST(StoredRunControl, KeepsItsInternalConnectionAndValues) {
    ControlScene net;
    for (const char* type : {"GraphCancel", "SimulationStop", "Sleep"}) net.add(type, type);
    net.pin("GraphCancel.quiet")->setBitValue(true);
    net.pin("Sleep.milisecs")->setIntValue(2);
    TM_String text;
    ASSERT_TRUE(net.scene.write_XML_toString(text));
    ControlScene again;
    ASSERT_TRUE(again.scene.read_XML_fromString(text));
    EXPECT_TRUE(again.host.posts.empty());
    EXPECT_TRUE(again.pin("GraphCancel.quiet")->getBitValue());
    EXPECT_FALSE(again.pin("GraphCancel.cancel")->getBitValue());
    EXPECT_EQ(again.pin("Sleep.milisecs")->getIntValue(), 2);
    for (const TM_String type : {"GraphCancel", "SimulationStop", "Sleep"}) {
        EXPECT_EQ(again.at(type + ".through")->source(), again.at(type + ".in"));
        EXPECT_EQ(again.messages(type), "");
    }
}

} // namespace
} // namespace control_tests

// SPDX-License-Identifier: Apache-2.0
// Pass, Concentrator and Selector: what they compute, their pins, and what survives a file.
#include "nodes/control/pass.h"

#include <gtest/gtest.h>

#include "loop_scene.h"

namespace control_tests {
namespace {

/// Taps A, B, C, D behind Integers, all telling the order in which they are computed.
class RoutingScene : public ControlScene {
public:
    Tap* tap(const TM_String& name, int number) {
        add("Integer", "I" + name);
        pin("I" + name + ".in")->setIntValue(number);
        auto* logic = static_cast<Tap*>(enter(new GraphNodeOf<Tap>("Tap"), name)->getCoreNode());
        logic->onUpdate = [this, name](int32_t) { order += name; };
        link("I" + name + ".integer", name + ".in");
        return logic;
    }
    Pin* input(const TM_String& nodeName, const TM_String& name) {
        auto* added = static_cast<Pin*>(node(nodeName)->addDynamicInputPin());
        added->setName(name);
        return added;
    }
    Pin* output(const TM_String& nodeName, const TM_String& name) {
        auto* added = static_cast<Pin*>(node(nodeName)->addDynamicOutputPin());
        added->setName(name);
        return added;
    }
    std::string orderOfRun() {
        order.clear();
        scene.run();
        return order;
    }
    std::string order;
};

std::string describe(const char* type) {
    ControlScene net;
    Node* node = net.add(type, "X");
    std::string text = node->getCategory() + ": " + node->getDescription();
    EXPECT_TRUE(node->dynamicPinsAllowed());
    for (const auto* pins : {&node->getArrInputPin(), &node->getArrOutputPin()}) {
        for (const Pin* pin : *pins) {
            text += "\n" + pin->getName() + " " + pin->getAttributeClassName();
            EXPECT_NE(pin->getDescription(), "");
            EXPECT_TRUE(pin->allowsInternalConnections());
        }
    }
    return text;
}

TEST(Routing, NodesAreDescribed) {
    EXPECT_EQ(describe("Pass"),
              "Execution: This node acts as a passthrough node. The output value is exactly the "
              "same as the input. No copy is performed.\nA common use of Pass nodes is the "
              "reduction of graph cluttering.\nin PassThroughAttribute\nthrough "
              "PassThroughAttribute");
    EXPECT_EQ(describe("Concentrator"),
              "Execution: This node acts as a passthrough node for as many inputs as desired. "
              "However, ALL inputs are ALWAYS evaluated. Evaluation order of the inputs is top to "
              "bottom.Take care, that all outputs have an associated input to avoid evaluation "
              "time errors.\nin PassThroughAttribute\nout PassThroughAttribute");
    EXPECT_EQ(describe("Selector"),
              "Execution: This node allows the user to freely connect its passthrough inputs to "
              "its passthrough outputs. Keep in mind that all outputs should have an associated "
              "input to avoid evaluation time errors.\nin PassThroughAttribute\nout "
              "PassThroughAttribute");
}

// Pass.

TEST(Pass, IsInvisible) {
    RoutingScene net;
    net.tap("A", 5);
    net.add("Pass", "P");
    net.add("Evaluator", "E");
    net.link("A.out", "P.in");
    net.link("P.through", "E.evaluate");
    EXPECT_EQ(net.orderOfRun(), "A");
    EXPECT_EQ(net.at("E.evaluate")->currentValue(), net.at("A.out")->value());
    EXPECT_EQ(net.integer("E.evaluate"), 5);
    EXPECT_TRUE(net.at("E.evaluate")->isClean());
    net.pin("IA.in")->setIntValue(6);
    EXPECT_FALSE(net.at("E.evaluate")->isClean());
    net.scene.run();
    EXPECT_EQ(net.integer("E.evaluate"), 6);
    EXPECT_EQ(net.messages("P"), "");
}

TEST(Pass, ChainOfManyShowsTheFirst) {
    RoutingScene net;
    net.tap("A", 5);
    net.add("Evaluator", "E");
    TM_String before = "A.out";
    for (int i = 0; i < 20; ++i) {
        const TM_String name = "P" + std::to_string(i);
        net.add("Pass", name);
        net.link(before, name + ".in");
        before = name + ".through";
    }
    net.link(before, "E.evaluate");
    net.scene.run();
    EXPECT_EQ(net.integer("E.evaluate"), 5);
    EXPECT_EQ(net.at("E.evaluate")->specialization(), "Integer");
}

TEST(Pass, UnconnectedOneHasNothing) {
    RoutingScene net;
    net.add("Pass", "P");
    net.add("Evaluator", "E");
    net.link("P.through", "E.evaluate");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.at("E.evaluate")->currentValue(), nullptr);
    EXPECT_EQ(net.messages("P"), "");
}

// Concentrator.

class ThreeBranches : public RoutingScene {
public:
    explicit ThreeBranches(const char* type) {
        tap("A", 1);
        tap("B", 2);
        tap("C", 3);
        add(type, "X");
        add("Evaluator", "E");
        input("X", "in2");
        input("X", "in3");
        link("A.out", "X.in");
        link("B.out", "X.in2");
        link("C.out", "X.in3");
        link("X.out", "E.evaluate");
    }
};

TEST(Concentrator, ComputesAllInputsFromTopToBottom) {
    for (const char* wired : {"X.in", "X.in2", "X.in3"}) {
        ThreeBranches net("Concentrator");
        EXPECT_TRUE(net.pin(wired)->addInternalConnection(net.pin("X.out")));
        EXPECT_EQ(net.orderOfRun(), "ABC") << wired;
        EXPECT_EQ(net.at("E.evaluate")->currentValue(), net.at(wired)->currentValue());
        EXPECT_EQ(net.messages("X"), "");
    }
}

TEST(Concentrator, OutputWithoutAnInputIsAnErrorAndAllIsComputed) {
    ThreeBranches net("Concentrator");
    EXPECT_EQ(net.orderOfRun(), "ABC");
    EXPECT_EQ(net.messages("X"), "2 Output pin 'out' has no associated input for pass through.");
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.at("E.evaluate")->currentValue(), nullptr);
}

TEST(Concentrator, EveryInputMakesEveryOutputDirty) {
    ThreeBranches net("Concentrator");
    net.output("X", "second");
    EXPECT_TRUE(net.pin("X.in")->addInternalConnection(net.pin("X.out")));
    net.scene.run();
    net.at("X.second")->setClean(true);
    net.pin("IC.in")->setIntValue(9);
    EXPECT_FALSE(net.at("E.evaluate")->isClean());
    EXPECT_FALSE(net.at("X.second")->isClean());
}

// Selector.

TEST(Selector, ComputesWhatTheOutputIsWiredTo) {
    ThreeBranches net("Selector");
    net.output("X", "second");
    net.add("Evaluator", "E2");
    net.link("X.second", "E2.evaluate");
    EXPECT_TRUE(net.pin("X.in3")->addInternalConnection(net.pin("X.out")));
    EXPECT_TRUE(net.pin("X.in")->addInternalConnection(net.pin("X.second")));
    EXPECT_EQ(net.orderOfRun(), "CA");
    EXPECT_EQ(net.integer("E.evaluate"), 3);
    EXPECT_EQ(net.integer("E2.evaluate"), 1);
    net.pin("IB.in")->setIntValue(9);
    EXPECT_TRUE(net.at("E.evaluate")->isClean()) << "wired to another input";
    net.pin("IC.in")->setIntValue(9);
    EXPECT_FALSE(net.at("E.evaluate")->isClean());
    EXPECT_TRUE(net.at("E2.evaluate")->isClean());
}

TEST(Selector, OutputWithoutAnInputIsAWarning) {
    ThreeBranches net("Selector");
    EXPECT_EQ(net.orderOfRun(), "");
    EXPECT_EQ(net.messages("X"), "3 Output pin 'out' has no associated input for pass through.");
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
}

TEST(Selector, NewPinsMayBeWiredToAllOthers) {
    RoutingScene net;
    Node* selector = net.add("Selector", "X");
    net.input("X", "a");
    net.output("X", "b");
    for (Pin* input : selector->getArrInputPin()) {
        for (Pin* output : selector->getArrOutputPin()) {
            EXPECT_TRUE(input->addInternalConnection(output));
            EXPECT_TRUE(input->removeInternalConnection(output));
        }
    }
}

TEST(Selector, NameThatIsTakenIsChanged) {
    RoutingScene net;
    Node* selector = net.add("Selector", "X");
    auto* first = static_cast<Pin*>(selector->addDynamicInputPin());
    auto* second = static_cast<Pin*>(selector->addDynamicInputPin());
    EXPECT_EQ(first->getName(), "in1");
    EXPECT_EQ(second->getName(), "in2");
    second->setName("in1");
    EXPECT_NE(second->getWeftAttribute()->name(), first->getWeftAttribute()->name());
    TM_String text;
    ASSERT_TRUE(net.scene.write_XML_toString(text));
    SL_GraphScene copy;
    EXPECT_TRUE(copy.read_XML_fromString(text));
}

TEST(Selector, RemovedPinTakesItsWireWithIt) {
    ThreeBranches net("Selector");
    EXPECT_TRUE(net.pin("X.in3")->addInternalConnection(net.pin("X.out")));
    net.scene.removeNodePinFromSceneAndNode(net.pin("X.in3"));
    EXPECT_EQ(net.at("X.out")->source(), nullptr);
    EXPECT_EQ(net.orderOfRun(), "");
}

// Files.

std::string textOf(SL_GraphScene& scene) {
    TM_String text;
    EXPECT_TRUE(scene.write_XML_toString(text));
    return text;
}

std::string wiresOf(const SL_GraphScene& scene, const TM_String& path) {
    const auto* node = static_cast<const Node*>(scene.getNodePtrByFullName(path));
    Array<GraphConnection> wires;
    node->getInternalConnections(wires);
    std::string text;
    for (const GraphConnection& wire : wires) {
        text += wire.getSourcePin()->getName() + ">" + wire.getTargetPin()->getName() + " ";
    }
    return text;
}

class RoutingFiles : public testing::TestWithParam<const char*> {};

TEST_P(RoutingFiles, PinsAndWiresSurvive) {
    RoutingScene net;
    net.add(GetParam(), "X");
    net.add("Integer", "S");
    net.add("Evaluator", "E");
    net.input("X", "second");
    const bool isPass = std::string(GetParam()) == "Pass";
    net.link("S.integer", isPass ? "X.in" : "X.second");
    if (isPass) {
        net.pin("X.through")->setName("out");
    } else {
        net.output("X", "other");
        EXPECT_TRUE(net.pin("X.second")->addInternalConnection(net.pin("X.out")));
        EXPECT_TRUE(net.pin("X.in")->addInternalConnection(net.pin("X.other")));
    }
    net.link("X.out", "E.evaluate");
    net.pin("S.in")->setIntValue(7);
    const std::string text = textOf(net.scene);

    SL_GraphScene copy;
    ASSERT_TRUE(copy.read_XML_fromString(text));
    EXPECT_EQ(textOf(copy), text);
    EXPECT_EQ(wiresOf(copy, "root.X"), wiresOf(net.scene, "root.X"));
    EXPECT_NE(wiresOf(copy, "root.X"), "");
    copy.run();
    const auto* result =
        weft::valueAs<weft::Numeric>(static_cast<Pin*>(copy.getPinPtrByFullName("root.E.evaluate"))
                                         ->getWeftAttribute()
                                         ->currentValue());
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->value<int32_t>(), 7);
    EXPECT_EQ(net.host.posts, std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Types, RoutingFiles, testing::Values("Pass", "Concentrator", "Selector"),
                         [](const auto& info) { return std::string(info.param); });

const char* const head = "<scene><nodes><node><name>root</name><type/><nodes><node><name>X</name>";
const char* const foot = "</node></nodes></node></nodes><connections/></scene>";

TEST(Pass, FileWithoutInternalConnectionsGivesTheOneBack) {
    const ControlHost host;
    SL_GraphScene scene;
    ASSERT_TRUE(
        scene.read_XML_fromString(std::string(head) +
                                  "<type>Pass</type><inputs><input><name>in</name></input></inputs>"
                                  "<outputs><output><name>renamed</name></output></outputs>" +
                                  foot));
    EXPECT_EQ(wiresOf(scene, "root.X"), "in>renamed ");
}

TEST(Pass, MoreOutputsThanItHasAreAnError) {
    const ControlHost host;
    SL_GraphScene scene;
    ASSERT_TRUE(
        scene.read_XML_fromString(std::string(head) +
                                  "<type>Pass</type><outputs><output><name>a</name></output>"
                                  "<output><name>b</name></output></outputs>" +
                                  foot));
    auto* node = static_cast<Node*>(scene.getNodePtrByFullName("root.X"));
    ASSERT_EQ(node->getMessages().messages().size(), 1u);
    EXPECT_EQ(node->getMessages().messages()[0],
              (Message{2, "Number of read outputs is larger that number of outputs in node.", ""}));
    EXPECT_EQ(node->getArrOutputPin().size(), 1u);
}

TEST(Selector, WireToAPinThatIsGoneIsReported) {
    ControlHost host;
    SL_GraphScene scene;
    ASSERT_TRUE(scene.read_XML_fromString(
        std::string(head) +
        "<type>Selector</type><inputs><input><name>in</name><internal-connections>"
        "<output>gone</output><output>out</output></internal-connections></input></inputs>"
        "<outputs><output><name>out</name></output></outputs>" +
        foot));
    EXPECT_EQ(host.posts, (std::vector<std::string>{"2261|X.gone"}));
    EXPECT_EQ(wiresOf(scene, "root.X"), "in>out ");
}

} // namespace
} // namespace control_tests

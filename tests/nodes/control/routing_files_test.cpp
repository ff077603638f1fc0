// SPDX-License-Identifier: Apache-2.0
// Pins and wires of routing nodes in files that are unusual or wrong: what is kept and reported.
#include <gtest/gtest.h>

#include <memory>

#include "control_scene.h"

namespace control_tests {
namespace {

std::string textOf(SL_GraphScene& scene) {
    TM_String text;
    EXPECT_TRUE(scene.write_XML_toString(text));
    return text;
}

/// A scene that was read, with one routing node below the root; "X" unless it is in a compound.
class ReadScene : public ControlScene {
public:
    /// `pins` holds the elements after the node's type.
    ReadScene(const std::string& type, const std::string& pins) {
        EXPECT_TRUE(scene.read_XML_fromString(
            "<scene><nodes><node><name>root</name><type/><nodes><node><name>X</name><type>" + type +
            "</type>" + pins + "</node></nodes></node></nodes><connections/></scene>"));
    }
    explicit ReadScene(const std::string& text) { EXPECT_TRUE(scene.read_XML_fromString(text)); }

    /// "a b|c; a>c": inputs, outputs and wires.
    std::string told(const TM_String& path = "X") {
        std::string text;
        for (const Pin* pin : node(path)->getArrInputPin()) text += pin->getName() + " ";
        text += "|";
        for (const Pin* pin : node(path)->getArrOutputPin()) text += " " + pin->getName();
        Array<GraphConnection> wires;
        node(path)->getInternalConnections(wires);
        for (const GraphConnection& wire : wires) {
            text += "; " + wire.getSourcePin()->getName() + ">" + wire.getTargetPin()->getName();
        }
        return text;
    }
    void expectSameAfterAFile(const TM_String& path = "X") {
        const std::string text = textOf(scene);
        ReadScene copy(text);
        EXPECT_EQ(copy.told(path), told(path));
        EXPECT_EQ(textOf(copy.scene), text);
    }
};

std::string inputs(std::initializer_list<std::pair<const char*, const char*>> pins) {
    std::string text = "<inputs>";
    for (const auto& [name, wire] : pins) {
        text += std::string("<input><name>") + name + "</name>";
        if (*wire) {
            text += std::string("<internal-connections><output>") + wire +
                    "</output></internal-connections>";
        }
        text += "</input>";
    }
    return text + "</inputs>";
}

std::string outputs(std::initializer_list<const char*> names) {
    std::string text = "<outputs>";
    for (const char* name : names) {
        text += std::string("<output><name>") + name + "</name></output>";
    }
    return text + "</outputs>";
}

class Routers : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Types, Routers, testing::Values("Concentrator", "Selector"),
                         [](const auto& info) { return std::string(info.param); });

TEST_P(Routers, ReadTheirPinsInOrderAndWireThemBothWays) {
    ReadScene net(GetParam(), inputs({{"in", "right"}, {"b", ""}, {"c", "left"}}) +
                                  outputs({"left", "right", "none"}));
    EXPECT_EQ(net.told(), "in b c | left right none; in>right; c>left");
    EXPECT_EQ(net.at("X.left")->source(), net.at("X.c"));
    EXPECT_EQ(net.at("X.right")->source(), net.at("X.in"));
    EXPECT_EQ(net.at("X.none")->source(), nullptr);
    EXPECT_EQ(net.messages("X"), "");
    net.expectSameAfterAFile();
}

TEST_P(Routers, OneInputMayFeedSeveralOutputs) {
    ReadScene net(GetParam(), "<inputs><input><name>in</name><internal-connections>"
                              "<output>b</output><output>a</output></internal-connections></input>"
                              "</inputs>" +
                                  outputs({"a", "b"}));
    EXPECT_EQ(net.told(), "in | a b; in>b; in>a");
    net.expectSameAfterAFile();
}

TEST_P(Routers, SecondInputOfAnOutputIsAnErrorOnTheNode) {
    ReadScene net(GetParam(), inputs({{"in", "out"}, {"b", "out"}}) + outputs({"out"}));
    EXPECT_EQ(net.messages("X"),
              "2 Trying to connect attribute 'b' to 'out' which is already connected to 'in'");
    EXPECT_EQ(net.at("X.out")->source(), net.at("X.in"));
    net.expectSameAfterAFile();
}

TEST_P(Routers, WithoutPinsInTheFileKeepTheirOwn) {
    ReadScene net(GetParam(), "");
    EXPECT_EQ(net.told(), "in | out");
    net.expectSameAfterAFile();
}

TEST_P(Routers, AnyCharactersInNamesSurvive) {
    ReadScene net(GetParam(), inputs({{"a.b", "x &lt;y&gt;"}, {" blank ", ""}, {"", ""}}) +
                                  outputs({"x &lt;y&gt;"}));
    EXPECT_EQ(net.told(), "in a.b  blank   | x <y>; a.b>x <y>");
    net.expectSameAfterAFile();
}

TEST_P(Routers, InputNamedAsAnOutputIsAPinOfItsOwn) {
    ReadScene net(GetParam(), inputs({{"in", ""}, {"out", "out"}}) + outputs({"out"}));
    EXPECT_EQ(net.told(), "in out | out; out>out");
    net.expectSameAfterAFile();
}

TEST_P(Routers, PinsOfTheSameNameSurvive) {
    ReadScene net(GetParam(), inputs({{"in", ""}, {"b", "out"}, {"b", ""}}) + outputs({"out"}));
    EXPECT_EQ(net.told(), "in b b | out; b>out");
    net.expectSameAfterAFile();
}

TEST_P(Routers, ConnectionToTheSecondPinOfANameIsReportedOnceRead) {
    ControlScene net;
    net.add(GetParam(), "X");
    for (const char* name : {"A", "B"}) {
        net.add("Integer", name);
        auto* pin = static_cast<Pin*>(net.node("X")->addDynamicInputPin());
        pin->setName("same");
        EXPECT_NE(net.connect(net.pin(TM_String(name) + ".integer"), pin), nullptr);
    }
    ReadScene copy(textOf(net.scene));
    EXPECT_EQ(copy.told(), "in same same | out");
    EXPECT_EQ(copy.at("X.same")->source(), copy.at("A.integer"));
    ASSERT_EQ(copy.scene.getMessages().messages().size(), 1u);
    EXPECT_EQ(copy.scene.getMessages().messages()[0],
              (Message{2, "Unable to connect 'root.B.integer' to 'root.X.same'", ""}));
}

TEST_P(Routers, KeepTheirWiresInsideACompound) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    net.add("CompoundInterface", "IO", compound);
    net.add(GetParam(), "X", compound);
    net.add("Integer", "S");
    net.add("Evaluator", "E");
    net.wall("C.IO", true, "x");
    net.wall("C.IO", false, "y");
    net.node("C.X")->addDynamicInputPin();
    net.link("S.integer", "C.x");
    net.link("C.IO.x", "C.X.in1");
    net.link("C.X.out", "C.IO.y");
    net.link("C.y", "E.evaluate");
    EXPECT_TRUE(net.pin("C.X.in1")->addInternalConnection(net.pin("C.X.out")));
    net.pin("S.in")->setIntValue(8);
    ReadScene copy(textOf(net.scene));
    EXPECT_EQ(copy.told("C.X"), "in in1 | out; in1>out");
    copy.scene.run();
    EXPECT_EQ(copy.integer("E.evaluate"), 8);
    EXPECT_EQ(copy.at("E.evaluate")->currentValue(), copy.at("S.integer")->value());
    copy.expectSameAfterAFile("C.X");
}

// Pass.

TEST(PassInFiles, WireOfAnotherInputIsAnErrorAndStandsInPlaceOfTheFirst) {
    ReadScene net("Pass", inputs({{"in", ""}, {"b", "through"}}) + outputs({"through"}));
    EXPECT_EQ(net.messages("X"), "2 Internal connection b->through not allowed");
    EXPECT_EQ(net.told(), "in b | through; b>through");
    EXPECT_EQ(net.at("X.through")->source(), net.at("X.b"));
    net.expectSameAfterAFile();
}

TEST(PassInFiles, WithoutPinsIsAWireAllTheSame) {
    ReadScene net("Pass", "");
    EXPECT_EQ(net.told(), "in | through; in>through");
    net.expectSameAfterAFile();
}

TEST(PassInFiles, InputNamedAsTheOutputIsAPinOfItsOwn) {
    ReadScene net("Pass",
                  inputs({{"in", "through"}, {"through", ""}, {"in", ""}}) + outputs({"through"}));
    EXPECT_EQ(net.told(), "in through in | through; in>through");
    EXPECT_EQ(net.at("X.in")->name(), "in");
    EXPECT_EQ(net.messages("X"), "");
    net.expectSameAfterAFile();
}

TEST(PassInFiles, SeveralInputsMayLeaveTheWireToTheFirst) {
    ReadScene net("Pass", inputs({{"in", "through"}, {"b", ""}}) + outputs({"through"}));
    EXPECT_EQ(net.told(), "in b | through; in>through");
    EXPECT_EQ(net.messages("X"), "");
    net.expectSameAfterAFile();
}

} // namespace
} // namespace control_tests

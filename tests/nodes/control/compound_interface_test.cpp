// SPDX-License-Identifier: Apache-2.0
// Interface nodes: names of their pins, the two sides of a wall, and moving nodes through it.
#include "nodes/control/compound_interface.h"

#include <gtest/gtest.h>

#include <map>

#include "control_scene.h"
#include "core/exceptions.h"
#include "iterators.h"
#include "nodes/control/compound.h"
#include "support/net.h"

namespace control_tests {
namespace {

using weft::Attribute;
using weft::CompoundInterface;

TEST(CompoundInterface, IsDescribed) {
    support::Net net;
    auto* interface = net.add<CompoundInterface>("IO");
    EXPECT_EQ(interface->className(), "CompoundInterface");
    EXPECT_EQ(
        interface->getDescription(),
        "This node acts as an interface between a compound and its containing graphs.\n"
        "The CompoundInterface node allows the creation of dynamic input/output pins with "
        "user-defined names.\nIf a pin is added to the CompoundInterface node, a pin with the "
        "same name is created in its parent compound.\nWhen a pin is added to the Compound, an "
        "equivalent interface node is created in its contained graph.");
}

TEST(CompoundInterface, NumbersItsAttributesByTheirCount) {
    support::Net net;
    auto* interface = net.add<CompoundInterface>("IO");
    EXPECT_EQ(interface->addDynamicInputAttribute()->name(), "in00");
    EXPECT_EQ(interface->addDynamicOutputAttribute()->name(), "out00");
    Attribute* second = interface->addDynamicInputAttribute();
    EXPECT_EQ(second->name(), "in01");
    EXPECT_TRUE(second->isInput());
    EXPECT_EQ(second->className(), "PassThroughAttribute");
    EXPECT_EQ(interface->refDynamicAttributes().size(), 3u);
    second->renameTo("mine");
    EXPECT_EQ(interface->addDynamicInputAttribute()->name(), "in02");
}

TEST(CompoundInterface, SecondNodeOfACompoundHasItsOwnNumbers) {
    support::Net net;
    auto* compound = net.add<weft::Compound>("C");
    for (const char* name : {"IO", "IO2"}) {
        auto* interface = new CompoundInterface(&net.manager, name, compound);
        compound->addNode(interface);
        EXPECT_EQ(interface->addDynamicInputAttribute()->name(), "in00");
        EXPECT_EQ(interface->addDynamicOutputAttribute()->name(), "out00");
    }
}

TEST(CompoundInterface, AtRootLevelFails) {
    support::Net net;
    auto* interface = net.add<CompoundInterface>("IO");
    Attribute* input = interface->addDynamicInputAttribute();
    Attribute* output = interface->addDynamicOutputAttribute();
    for (Attribute* attribute : {input, output}) {
        try {
            interface->doUpdate(attribute);
            FAIL() << "an interface node at root level was updated";
        } catch (const tidemark::sluice::graph::GenericGraphException& exception) {
            EXPECT_EQ(exception.message(),
                      "[root.IO] Compound Interface nodes cannot be at root level.");
            EXPECT_EQ(exception.code(), 0x80010001u);
        }
    }
    ASSERT_EQ(interface->getMessages().messages().size(), 2u);
    EXPECT_EQ(interface->getMessages().messages()[0],
              (Message{1, "Compound Interface nodes cannot be at root level.", ""}));
}

TEST(CompoundInterface, AtRootLevelEndsTheRun) {
    ControlScene net;
    Node* interface = net.add("CompoundInterface", "IO");
    net.add("Evaluator", "E");
    interface->addDynamicOutputPin()->setName("x");
    net.link("IO.x", "E.evaluate");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(net.messages("IO"), "1 Compound Interface nodes cannot be at root level.");
    EXPECT_EQ(net.host.posts.back(),
              "2262|[root.IO] Compound Interface nodes cannot be at root level.");
}

// An unconnected input has nothing behind it, an unconnected output passes nothing on.
TEST(CompoundInterface, UnconnectedPinsAreCleanAfterAnUpdate) {
    support::Net net;
    auto* compound = net.add<weft::Compound>("C");
    auto* interface = new CompoundInterface(&net.manager, "IO", compound);
    compound->addNode(interface);
    Attribute* input = interface->addDynamicInputAttribute();
    interface->doUpdate(input);
    EXPECT_TRUE(input->isClean());
    interface->addDynamicOutputAttribute()->pull();
    EXPECT_TRUE(interface->getMessages().isEmpty());
}

TEST(NodeCompoundInterface, AnswersForItsKind) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    Node* interface = net.add("CompoundInterface", "IO", compound);
    EXPECT_TRUE(interface->isInterface());
    EXPECT_FALSE(interface->isCompound());
    EXPECT_TRUE(interface->dynamicPinsAllowed());
    net.wall("C.IO", true, "x");
    EXPECT_TRUE(interface->isInputInterface());
    EXPECT_FALSE(interface->isOutputInterface());
}

TEST(NodeCompoundInterface, PinOfAWallHasACounterpartOfTheOtherDirection) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    Node* interface = net.add("CompoundInterface", "IO", compound);
    GraphNodePin* inner = nullptr;
    GraphNodePin* outer = nullptr;

    net.scene.addCompoundInterfacePin(GraphNodePin::inputFlag, interface, inner, outer);
    EXPECT_EQ(inner->getFullName(), "root.C.IO.input");
    EXPECT_EQ(outer->getFullName(), "root.C.input");
    EXPECT_TRUE(inner->isOutput());
    EXPECT_TRUE(outer->isInput());
    EXPECT_EQ(net.at("C.IO.input")->source(), net.at("C.input"));
    EXPECT_EQ(inner->getParentGraphNodePinPtr(), outer);
    EXPECT_EQ(outer->getChildGraphNodePinPtr(), inner);

    net.scene.addCompoundInterfacePin(GraphNodePin::outputFlag, interface, inner, outer);
    EXPECT_EQ(inner->getFullName(), "root.C.IO.output");
    EXPECT_EQ(outer->getFullName(), "root.C.output");
    EXPECT_TRUE(inner->isInput());
    EXPECT_TRUE(outer->isOutput());
    EXPECT_EQ(net.at("C.output")->source(), net.at("C.IO.output"));
    EXPECT_TRUE(net.pin("C.output")->isDynamic());
    EXPECT_EQ(compound->getArrInputPin().size(), 1u);
    EXPECT_EQ(compound->getArrOutputPin().size(), 1u);
}

TEST(NodeCompoundInterface, DynamicPinTakesANameThatIsFreeOnTheCompound) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    Node* first = net.add("CompoundInterface", "IO", compound);
    Node* second = net.add("CompoundInterface", "IO2", compound);
    net.scene.createCompoundPinForInterfacePin(first->addDynamicInputPin());
    EXPECT_EQ(first->getArrInputPin()[0]->getName(), "in");
    EXPECT_EQ(second->addDynamicInputPin()->getName(), "in1");
}

TEST(NodeCompoundInterface, RemovingAPinRemovesItsCounterpart) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    Node* interface = net.add("CompoundInterface", "IO", compound);
    net.add("Integer", "S");
    net.add("Evaluator", "E");
    net.wall("C.IO", true, "x");
    net.wall("C.IO", false, "y");
    net.link("S.integer", "C.x");
    net.link("C.y", "E.evaluate");

    interface->removeNodePin(net.pin("C.IO.y"));
    EXPECT_EQ(net.scene.getPinPtrByFullName("root.C.y"), nullptr);
    EXPECT_EQ(net.scene.getPinPtrByFullName("root.C.IO.y"), nullptr);
    EXPECT_EQ(compound->getCoreNode()->refOutputAttributes().size(), 0u);
    EXPECT_EQ(net.at("E.evaluate")->source(), nullptr);
    EXPECT_EQ(net.scene.connections().size(), 1u);

    interface->removeNodePin(net.pin("C.IO.x"));
    EXPECT_EQ(net.scene.getPinPtrByFullName("root.C.x"), nullptr);
    EXPECT_TRUE(net.scene.connections().empty());
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
}

TEST(NodeCompoundInterface, RemovingTheNodeRemovesTheCounterparts) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    Node* first = net.add("CompoundInterface", "IO", compound);
    net.add("CompoundInterface", "IO2", compound);
    net.add("Integer", "S");
    net.wall("C.IO", true, "x");
    net.wall("C.IO", false, "y");
    net.wall("C.IO2", true, "kept");
    net.link("S.integer", "C.x");
    net.scene.removeNodeFromGraph(first);
    ASSERT_EQ(compound->getArrInputPin().size(), 1u);
    EXPECT_EQ(compound->getArrInputPin()[0]->getName(), "kept");
    EXPECT_TRUE(compound->getArrOutputPin().empty());
    EXPECT_TRUE(net.scene.connections().empty());
    net.scene.removeNodeFromGraph(compound);
    EXPECT_EQ(net.scene.nodesById().size(), 1u);
}

// S > C.x, C.IO.x > C.A.in0, C.K > C.A.in1, C.A.result > C.IO.y, C.y > E
class WallScene : public ControlScene {
public:
    WallScene() {
        add("Integer", "S");
        Node* compound = add("Compound", "C");
        add("CompoundInterface", "IO", compound);
        add("Add", "A", compound);
        add("Integer", "K", compound);
        add("Evaluator", "E");
        wall("C.IO", false, "y");
        wall("C.IO", true, "x");
        link("S.integer", "C.x");
        link("C.IO.x", "C.A.in0");
        link("C.K.integer", "C.A.in1");
        link("C.A.result", "C.IO.y");
        link("C.y", "E.evaluate");
        pin("S.in")->setIntValue(3);
        pin("C.K.in")->setIntValue(10);
    }
};

TEST(NodeCompoundInterface, ARunCrossesTheWallBothWays) {
    WallScene net;
    EXPECT_EQ(net.scene.connections().size(), 5u);
    for (const char* path : {"C.x", "C.y", "C.IO.x", "C.IO.y", "E.evaluate", "C.A.result"}) {
        EXPECT_EQ(net.at(path)->specialization(), "Integer") << path;
    }
    EXPECT_EQ(net.updatesOfRun(), "S.integer, IO.x, K.integer, A.result, IO.y, C.y, E.evaluate");
    EXPECT_EQ(net.integer("E.evaluate"), 13);
    EXPECT_EQ(net.at("E.evaluate")->currentValue(), net.at("C.y")->currentValue());
    EXPECT_EQ(net.at("C.y")->currentValue(), net.at("C.A.result")->value());
    EXPECT_EQ(net.at("C.x")->currentValue(), net.at("S.integer")->value());
}

TEST(NodeCompoundInterface, DirtinessCrossesTheWall) {
    WallScene net;
    net.scene.run();
    EXPECT_TRUE(net.at("E.evaluate")->isClean());
    net.pin("S.in")->setIntValue(4);
    for (const char* path : {"C.x", "C.IO.x", "C.A.result", "C.IO.y", "C.y", "E.evaluate"}) {
        EXPECT_FALSE(net.at(path)->isClean()) << path;
    }
    EXPECT_TRUE(net.at("C.K.integer")->isClean());
    net.scene.run();
    EXPECT_EQ(net.integer("E.evaluate"), 14);
}

TEST(NodeCompoundInterface, CycleThroughAWallIsRefused) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    net.add("CompoundInterface", "IO", compound);
    net.add("CompoundInterface", "IO2", compound);
    net.add("Add", "X");
    net.wall("C.IO", true, "x");
    net.wall("C.IO2", false, "y");
    net.link("C.IO.x", "C.IO2.y");
    net.link("C.y", "X.in0");
    EXPECT_EQ(net.scene.connect(TM_String("root.X.result"), TM_String("root.C.x")), nullptr);
}

TEST(NodeCompoundInterface, CompoundInsideACompoundIsTransparent) {
    ControlScene net;
    net.add("Integer", "S");
    net.add("Evaluator", "E");
    Node* outer = net.add("Compound", "C");
    net.add("CompoundInterface", "IO", outer);
    Node* inner = net.add("Compound", "D", outer);
    net.add("CompoundInterface", "IO", inner);
    net.add("Add", "A", inner);
    net.wall("C.IO", true, "x");
    net.wall("C.IO", false, "y");
    net.wall("C.D.IO", true, "x");
    net.wall("C.D.IO", false, "y");
    net.link("S.integer", "C.x");
    net.link("C.IO.x", "C.D.x");
    net.link("C.D.IO.x", "C.D.A.in0");
    net.link("C.D.IO.x", "C.D.A.in1");
    net.link("C.D.A.result", "C.D.IO.y");
    net.link("C.D.y", "C.IO.y");
    net.link("C.y", "E.evaluate");
    net.pin("S.in")->setIntValue(21);
    net.scene.run();
    EXPECT_EQ(net.integer("E.evaluate"), 42);
    EXPECT_EQ(net.at("E.evaluate")->currentValue(), net.at("C.D.A.result")->value());
    EXPECT_EQ(net.at("C.D.IO.x")->currentValue(), net.at("S.integer")->value());
}

TEST(NodeCompoundInterface, AThousandWallsAreCrossed) {
    constexpr int depth = 1000;
    ControlScene net;
    net.add("Integer", "S");
    net.add("Evaluator", "E");
    GraphNodeBase* owner = nullptr;
    GraphNodePin* into = net.pin("S.integer");
    std::vector<GraphNodePin*> innerExits;
    std::vector<GraphNodePin*> outerExits;
    for (int level = 0; level < depth; ++level) {
        Node* compound = net.add("Compound", "C", owner);
        Node* interface = net.add("CompoundInterface", "IO", compound);
        GraphNodePin* inner = nullptr;
        GraphNodePin* outer = nullptr;
        net.scene.addCompoundInterfacePin(GraphNodePin::inputFlag, interface, inner, outer);
        ASSERT_NE(net.connect(into, outer), nullptr);
        into = inner;
        net.scene.addCompoundInterfacePin(GraphNodePin::outputFlag, interface, inner, outer);
        innerExits.push_back(inner);
        outerExits.push_back(outer);
        owner = compound;
    }
    Node* sum = net.add("Add", "A", owner);
    for (const char* name : {"in0", "in1"}) {
        ASSERT_NE(net.connect(into, sum->getInputPinPtrByName(name)), nullptr);
    }
    GraphNodePin* exit = sum->getOutputPinPtrByName("result");
    for (int level = depth; level-- > 0;) {
        ASSERT_NE(net.connect(exit, innerExits[level]), nullptr);
        exit = outerExits[level];
    }
    ASSERT_NE(net.connect(exit, net.pin("E.evaluate")), nullptr);
    net.pin("S.in")->setIntValue(8);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.integer("E.evaluate"), 16);
}

TEST(MoveNodes, IntoACompoundAndBackKeepsTheResult) {
    ControlScene net;
    net.add("Integer", "S");
    net.add("Add", "A");
    net.add("Add", "B");
    net.add("Evaluator", "E");
    Node* compound = net.add("Compound", "C");
    net.link("S.integer", "A.in0");
    net.link("S.integer", "A.in1");
    net.link("A.result", "B.in0");
    net.link("S.integer", "B.in1");
    net.link("B.result", "E.evaluate");
    net.pin("S.in")->setIntValue(7);
    net.scene.run();
    EXPECT_EQ(net.integer("E.evaluate"), 21);

    std::map<TM_String, TM_String> renamed;
    ASSERT_TRUE(net.scene.moveNodesToCompound({net.node("A"), net.node("B")}, compound, renamed));
    EXPECT_EQ(renamed["root.A"], "root.C.A");
    EXPECT_EQ(renamed["root.B"], "root.C.B");
    EXPECT_EQ(net.node("C.A")->getCoreNode()->parent(), compound->getCoreNode());
    net.pin("S.in")->setIntValue(8);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.integer("E.evaluate"), 24);

    renamed.clear();
    ASSERT_TRUE(
        net.scene.removeNodesFromCompoundCreatingInterfaces({net.node("C.B")}, compound, renamed));
    EXPECT_EQ(renamed["root.C.B"], "root.B");
    EXPECT_EQ(compound->getArrOutputPin().size(), 1u) << "A.result > B.in0 crosses the wall";
    net.pin("S.in")->setIntValue(9);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.integer("E.evaluate"), 27);
}

// A loop node that comes into a compound by being moved, with all its connections as they were.
TEST(MoveNodes, IteratorIsNoticedByTheCompoundItMovesTo) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    net.add("CompoundInterface", "IO", compound);
    net.enter(new GraphNodeOf<FakeFor>("FakeFor"), "F");
    net.add("Evaluator", "E");
    net.wall("C.IO", false, "y");
    net.link("F.index", "C.IO.y");
    net.link("C.y", "E.evaluate");
    const auto* loop = static_cast<FakeFor*>(net.node("F")->getCoreNode());
    net.scene.run();
    EXPECT_EQ(loop->updates, 1);
    EXPECT_TRUE(loop->iterated.empty());
    std::map<TM_String, TM_String> renamed;
    ASSERT_TRUE(net.scene.moveNodesToCompound({net.node("F")}, compound, renamed));
    net.scene.run();
    EXPECT_EQ(loop->updates, 1);
    EXPECT_EQ(loop->iterated, std::vector<Attribute*>{net.at("C.y")});
}

} // namespace
} // namespace control_tests

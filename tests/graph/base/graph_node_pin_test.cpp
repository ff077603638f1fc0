// SPDX-License-Identifier: Apache-2.0
// Tests of pins.
#include "graph/base/graph_node_pin.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "graph/base/pin_order.h"
#include "small_scene.h"

using namespace tidemark;
using namespace tidemark::graph;
using namespace tidemark::graph::test;

TEST(GraphNodePin, StaysSmall) {
    EXPECT_LE(sizeof(GraphNodePin), 120u);
    EXPECT_LE(sizeof(GraphConnection), 32u);
}

TEST(PinFlags, HaveTheStatedBits) {
    EXPECT_EQ(GraphNodePin::inputFlag.bits(), 1u);
    EXPECT_EQ(GraphNodePin::outputFlag.bits(), 2u);
    EXPECT_FALSE(GraphNodePin::inputFlag & GraphNodePin::outputFlag);
    EXPECT_EQ((GraphNodePin::inputFlag | GraphNodePin::outputFlag).bits(), 3u);
    EXPECT_FALSE(PinFlags());
}

TEST(GraphNodePin, IsOneOfTheTwoSides) {
    const GraphNodePin input(nullptr, 1, GraphNodePin::inputFlag);
    const GraphNodePin output(nullptr, 2, GraphNodePin::outputFlag);
    EXPECT_TRUE(input.isInput());
    EXPECT_FALSE(input.isOutput());
    EXPECT_FALSE(output.isInput());
    EXPECT_TRUE(output.isOutput());
    EXPECT_EQ(output.getId(), 2u);
}

TEST(GraphNodePin, WithoutNodeAnswersNo) {
    GraphNodePin pin(nullptr, 1, GraphNodePin::inputFlag);
    pin.setName("lone");
    EXPECT_FALSE(pin.isCompoundPin());
    EXPECT_FALSE(pin.isInterfacePin());
    EXPECT_FALSE(pin.isEvaluatorPin());
    EXPECT_FALSE(pin.isPassThroughPin());
    EXPECT_EQ(pin.getParentGraphScenePtr(), nullptr);
    EXPECT_EQ(pin.getChildInterfaceNodePtr(), nullptr);
    EXPECT_EQ(pin.getFullName(), "lone");
}

TEST(GraphNodePin, BaseKnowsNoValues) {
    GraphNodePin pin(nullptr, 1, GraphNodePin::inputFlag);
    EXPECT_FALSE(pin.isDirty());
    EXPECT_FALSE(pin.isUpdating());
    EXPECT_FALSE(pin.isDynamic());
    EXPECT_FALSE(pin.isEditable());
    EXPECT_FALSE(pin.allowsInternalConnections());
    EXPECT_FALSE(pin.hasInternalConnections());
    EXPECT_FALSE(pin.allowsNewOrRemovalOfInternalConnections());
    EXPECT_FALSE(pin.addInternalConnection(&pin));
    EXPECT_FALSE(pin.removeInternalConnection(&pin));
    EXPECT_EQ(pin.forcedInternalConnection(), nullptr);
    GraphScene::Pins pins;
    pin.internalConnections(pins);
    pin.allowedInternalConnections(pins);
    pin.forcedInternalConnections(pins);
    EXPECT_TRUE(pins.empty());
    EXPECT_EQ(pin.toXml() + pin.getInfo() + pin.getDescription() + pin.asHTML(), "");
}

TEST(GraphNodePin, FullNameGoesFromTheRoot) {
    SmallScene scene;
    GraphNodeBase* compound = scene.addCompound("C");
    GraphNodeBase* node = scene.add("Add", "in > out", compound);
    EXPECT_EQ(node->findPin("out")->getFullName(), "root.C.Add.out");
    EXPECT_EQ(node->findPin("out")->getParentGraphScenePtr(), &scene);
}

TEST(GraphNodePin, TakesAfterItsNode) {
    SmallScene scene;
    GraphNodeBase* node = scene.add("n", "in");
    EXPECT_FALSE(node->findPin("in")->isCompoundPin());
    node->setCompound(true);
    node->setInterface(true);
    EXPECT_TRUE(node->findPin("in")->isCompoundPin());
    EXPECT_TRUE(node->findPin("in")->isInterfacePin());
}

TEST(GraphNodePin, RefusesWhatCannotBeConnected) {
    SmallScene scene;
    GraphNodeBase* a = scene.add("a", "in > out");
    GraphNodeBase* b = scene.add("b", "in in2 > out");
    const GraphNodePin* out = a->findPin("out");
    EXPECT_TRUE(b->findPin("in")->allowsConnectionFrom(out));
    EXPECT_TRUE(out->allowsConnectionTo(b->findPin("in")));
    EXPECT_FALSE(b->findPin("in")->allowsConnectionFrom(nullptr));
    EXPECT_FALSE(out->allowsConnectionTo(nullptr));
    EXPECT_FALSE(b->findPin("out")->allowsConnectionFrom(out)) << "two outputs";
    EXPECT_FALSE(b->findPin("in")->allowsConnectionFrom(a->findPin("in"))) << "two inputs";
    EXPECT_FALSE(a->findPin("in")->allowsConnectionFrom(out)) << "one node";
    EXPECT_FALSE(out->allowsConnectionFrom(b->findPin("in"))) << "backwards";
    ASSERT_NE(scene.link("a.out", "b.in"), nullptr);
    EXPECT_FALSE(b->findPin("in")->allowsConnectionFrom(out)) << "full";
    EXPECT_TRUE(b->findPin("in2")->allowsConnectionFrom(out)) << "outputs take any number";
}

TEST(GraphNodePin, ConnectionListsKeepTheirOrder) {
    GraphNodePin pin(nullptr, 1, GraphNodePin::outputFlag);
    GraphConnection first;
    GraphConnection second;
    GraphConnection third;
    pin.addOutputConnection(&first);
    pin.addOutputConnection(&second);
    pin.addOutputConnection(&third);
    EXPECT_FALSE(pin.removeInputConnection(&second));
    EXPECT_TRUE(pin.removeOutputConnection(&second));
    EXPECT_FALSE(pin.removeOutputConnection(&second));
    ASSERT_EQ(pin.outputConnections().size(), 2u);
    EXPECT_EQ(pin.outputConnections()[0], &first);
    EXPECT_EQ(pin.outputConnections()[1], &third);
    EXPECT_TRUE(pin.isConnected());
    EXPECT_FALSE(pin.isFull()) << "only inputs are full";
}

TEST(GraphNodePin, ADyingPinLeavesItsCounterpart) {
    GraphNodePin outer(nullptr, 1, GraphNodePin::inputFlag);
    {
        GraphNodePin inner(nullptr, 2, GraphNodePin::outputFlag);
        outer.setChildGraphNodePinPtr(&inner);
        inner.setParentGraphNodePinPtr(&outer);
        EXPECT_EQ(outer.getChildGraphNodePinPtr(), &inner);
        EXPECT_EQ(inner.getParentGraphNodePinPtr(), &outer);
    }
    EXPECT_EQ(outer.getChildGraphNodePinPtr(), nullptr);
}

TEST(GraphNodePin, ACopyHasItsOwnViewState) {
    GraphNodePin pin(nullptr, 7, GraphNodePin::inputFlag);
    pin.setName("n");
    pin.setUserWord(5);
    pin.viewState().bytes[3] = 9;
    GraphNodePin copy(pin);
    EXPECT_EQ(copy.getId(), 7u);
    EXPECT_EQ(copy.getName(), "n");
    EXPECT_EQ(copy.userWord(), 5u);
    EXPECT_EQ(copy.viewState().bytes[3], 9);
    EXPECT_NE(&copy.viewState(), &pin.viewState());

    GraphNodePin assigned(nullptr, 8, GraphNodePin::outputFlag);
    assigned.viewState().bytes[0] = 1;
    assigned = copy;
    EXPECT_EQ(assigned.getId(), 7u);
    EXPECT_TRUE(assigned.isInput());
    EXPECT_EQ(assigned.viewState().bytes[0], 0);
    EXPECT_EQ(assigned.viewState().bytes[3], 9);
}

TEST(GraphNodePin, ViewStateIsMadeOnceAcrossThreads) {
    GraphNodePin pin(nullptr, 1, GraphNodePin::inputFlag);
    std::vector<PinViewState*> seen(8);
    std::vector<std::thread> threads;
    for (auto& state : seen) threads.emplace_back([&] { state = &pin.viewState(); });
    for (auto& thread : threads) thread.join();
    for (const PinViewState* state : seen) EXPECT_EQ(state, seen[0]);
}

TEST(OrderPinsByNames, SkipsUnknownNamesAndKeepsTheRestBehind) {
    GraphScene::Pins pins;
    for (const char* name : {"a", "b", "c", "d"}) {
        pins.append(new GraphNodePin(nullptr, 0, GraphNodePin::inputFlag));
        pins.back()->setName(name);
    }
    orderPinsByNames(pins, Array<TM_String>{"d", "none", "b"});
    EXPECT_EQ(namesOf(pins), (Names{"d", "b", "a", "c"}));
    orderPinsByNames(pins, Array<TM_String>{});
    EXPECT_EQ(namesOf(pins), (Names{"d", "b", "a", "c"}));
    for (GraphNodePin* pin : pins) delete pin;
}

TEST(OrderPinsByNames, EqualNamesAreTakenInTheirOrder) {
    GraphScene::Pins pins;
    for (unsigned id = 0; id < 3; ++id) {
        pins.append(new GraphNodePin(nullptr, id, GraphNodePin::inputFlag));
        pins.back()->setName(id == 1 ? "other" : "same");
    }
    orderPinsByNames(pins, Array<TM_String>{"same", "same", "same", "other"});
    EXPECT_EQ(pins[0]->getId(), 0u);
    EXPECT_EQ(pins[1]->getId(), 2u);
    EXPECT_EQ(pins[2]->getId(), 1u);
    for (GraphNodePin* pin : pins) delete pin;
}

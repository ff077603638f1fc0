// SPDX-License-Identifier: Apache-2.0
// Copies of values that hold their elements, and of objects behind pointers.
#include "nodes/values/copies/copy_nodes.h"

#include <gtest/gtest.h>

#include <new>
#include <utility>

#include "core/exceptions.h"
#include "core/limits.h"
#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"
#include "nodes/values/test_element.h"

namespace {

using namespace weft;
using sluice_tests::declared;
using sluice_tests::LogicNet;
using sluice_tests::Probe;
using sluice_tests::ProbeAttribute;
using sluice_tests::ProbeTypes;
using tidemark::TM_String;

const TM_String numbers = "\"Integer\", \"Integer64\", \"Real\", \"Vector3\", \"Color4\", "
                          "\"Quaternion\", \"Matrix4\"";

TEST(Copies, DeclareTheirPins) {
    EXPECT_EQ(declared("NumCopy"),
              "NumCopy\n"
              "in in NumericAttribute " +
                  numbers +
                  " = Integer:0 Integer64:0 Real:0 Vector3:0 Color4:(0,0,0,1) "
                  "Quaternion:(1,0,0,0) Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)\n"
                  "out out NumericAttribute " +
                  numbers + "\n");
    EXPECT_EQ(declared("StringCopy"), "StringCopy\n"
                                      "in in StringAttribute \"String\" = \n"
                                      "out out StringAttribute \"String\"\n");
    for (const char* type : {"NumCopy", "StringCopy"}) {
        EXPECT_EQ(sluice_tests::missingTexts(type), "") << type;
        EXPECT_EQ(sluice_tests::missingAffects(type), "") << type;
        LogicNet net;
        EXPECT_EQ(net.add(type, "c").findAttribute("out")->getDescription(), "A copy of the input");
    }
}

TEST(Copies, OfNumbersKeepTypeAndElements) {
    LogicNet net;
    net.add("Vector3", "v");
    net.add("NumCopy", "c");
    net.link("v.vector", "c.in");
    net.numbers<Vector3<float>>("v.in", {{1, 2, 3}, {4, 5, 6}});
    EXPECT_EQ(net.text("c.out"), "[4] (1,2,3),(4,5,6)");
    EXPECT_EQ(net.pin("c.out").specialization(), "Vector3");
    EXPECT_NE(net.pin("c.out").currentValue(), net.pin("v.vector").currentValue());
    EXPECT_TRUE(net.pin("c.out").isClean());
    net.as<NumericAttribute>("v.vector").ownNumeric().setValue(Vector3<float>(9, 9, 9));
    EXPECT_EQ(net.text("c.out"), "[4] (1,2,3),(4,5,6)");
}

TEST(Copies, OfEmptyArraysAndOfUntypedInputs) {
    LogicNet net;
    net.add("NumCopy", "c");
    EXPECT_EQ(net.text("c.out"), "");
    net.type("c.in", "Real");
    net.numbers<float>("c.in", {});
    EXPECT_EQ(net.text("c.out"), "[3] ");
    Retained<StringValue> other(new StringValue(&net.manager()));
    net.pin("c.in").setValue(other.get());
    net.pin("c.out").markDirty(true);
    EXPECT_EQ(net.text("c.out"), "[3] ");
    EXPECT_EQ(net.messages("c"), "");
}

TEST(Copies, OfStrings) {
    LogicNet net;
    net.add("StringCopy", "c");
    net.strings("c.in", {"one", "", "%n%s"});
    EXPECT_EQ(net.list("c.out"), "one||%n%s");
    net.strings("c.in", {});
    EXPECT_EQ(net.list("c.out"), "");
    EXPECT_EQ(net.pin("c.out").currentValue()->size(), 0u);
}

TEST(Copies, WithoutMemoryPurgeTheNodeAndEndTheRun) {
    LogicNet net;
    net.add("NumCopy", "c");
    net.type("c.in", "Real");
    net.numbers<float>("c.in", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    tidemark::limits::set({.maxElements = 8});
    EXPECT_THROW(net.refresh("c.out"), tidemark::sluice::graph::GenericGraphException);
    tidemark::limits::set({});
    EXPECT_EQ(net.messages("c"),
              "[critical] Unable to allocate the necessary memory to copy data at position 0.\n");
    EXPECT_EQ(net.pin("c.out").currentValue()->asString(), "[3] 0");
    net.node("c").refMessages().clear();
    net.refresh("c.out");
    EXPECT_EQ(net.pin("c.out").currentValue()->size(), 16u);
}

// Objects behind pointers, with an element type of the test.

/// P > C: objects of the test into a node that copies them.
class ProbeNet : public LogicNet {
public:
    ProbeNet() {
        add("ProbeSource", "p");
        add("ProbeCopy", "c");
        EXPECT_TRUE(link("p.out", "c.in"));
    }
    void give(std::initializer_list<Probe*> probes) {
        auto& value = as<ProbeAttribute>("p.out").ownPointers();
        value.setSize(static_cast<uint32_t>(probes.size()));
        uint32_t i = 0;
        for (Probe* probe : probes) value.setValueAt(i++, probe);
        pin("c.out").markDirty(true);
    }
    Probe* copied(uint32_t index) { return pointerAt<Probe>(as<ProbeAttribute>("c.out"), index); }
};

class CopiesOfObjects : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(Probe::alive, 0); }
    ProbeTypes types;
};

TEST_F(CopiesOfObjects, AreNewObjectsInTheSamePlaces) {
    Probe a{1};
    Probe b{2};
    {
        ProbeNet net;
        net.give({&a, nullptr, &b, &a});
        net.refresh("c.out");
        ASSERT_EQ(net.pin("c.out").currentValue()->size(), 4u);
        EXPECT_EQ(Probe::alive, 5);
        EXPECT_EQ(net.copied(1), nullptr);
        for (const auto& [index, original] : {std::pair{0u, &a}, {2u, &b}, {3u, &a}}) {
            ASSERT_NE(net.copied(index), nullptr);
            EXPECT_NE(net.copied(index), original);
            EXPECT_EQ(net.copied(index)->number, original->number);
        }
        EXPECT_NE(net.copied(0), net.copied(3));
    }
    EXPECT_EQ(Probe::alive, 2);
}

TEST_F(CopiesOfObjects, GoWhenTheyAreMadeAnew) {
    Probe a{1};
    ProbeNet net;
    net.give({&a, &a});
    net.refresh("c.out");
    EXPECT_EQ(Probe::alive, 3);
    a.number = 7;
    net.give({&a});
    net.refresh("c.out");
    EXPECT_EQ(Probe::alive, 2);
    EXPECT_EQ(net.copied(0)->number, 7);
}

TEST_F(CopiesOfObjects, AreBlankedEverywhereBeforeTheyGo) {
    Probe a{1};
    LogicNet other;
    other.add("ProbeSource", "p");
    auto& elsewhere = other.as<ProbeAttribute>("p.out").ownPointers();
    ProbeNet net;
    net.give({&a});
    net.refresh("c.out");
    elsewhere.setSize(2);
    elsewhere.setValueAt(0, net.copied(0));
    elsewhere.setValueAt(1, &a);
    net.node("c").purge();
    EXPECT_EQ(Probe::alive, 1);
    EXPECT_EQ(elsewhere.valueAt(0), nullptr);
    EXPECT_EQ(elsewhere.valueAt(1), &a);
    EXPECT_EQ(net.copied(0), nullptr);
}

TEST_F(CopiesOfObjects, GoWithTheirNode) {
    Probe a{1};
    LogicNet other;
    other.add("ProbeSource", "p");
    auto& elsewhere = other.as<ProbeAttribute>("p.out").ownPointers();
    {
        ProbeNet net;
        net.give({&a});
        net.refresh("c.out");
        elsewhere.setValueAt(0, net.copied(0));
    }
    EXPECT_EQ(Probe::alive, 1);
    EXPECT_EQ(elsewhere.valueAt(0), nullptr);
}

TEST_F(CopiesOfObjects, WithoutMemoryNameThePosition) {
    Probe a{1};
    Probe bad{Probe::uncopyable};
    ProbeNet net;
    net.give({&a, nullptr, &bad, &a});
    EXPECT_THROW(net.refresh("c.out"), tidemark::sluice::graph::GenericGraphException);
    EXPECT_EQ(net.messages("c"),
              "[critical] Unable to allocate the necessary memory to copy data at position 2.\n");
    EXPECT_EQ(Probe::alive, 2);
    EXPECT_EQ(net.pin("c.out").currentValue()->size(), 1u);
    EXPECT_EQ(net.copied(0), nullptr);
    net.node("c").refMessages().clear();
    net.give({&a});
    net.refresh("c.out");
    EXPECT_EQ(net.copied(0)->number, 1);
}

TEST_F(CopiesOfObjects, InterruptedCopiesAreNotShown) {
    Probe a{1};
    ProbeNet net;
    net.give({&a, &a, &a});
    net.refresh("c.out");
    EXPECT_EQ(Probe::alive, 4);
    net.manager().setEvaluating(true);
    net.manager().requestInterrupt();
    EXPECT_THROW(net.node("c").update(&net.pin("c.out")), tidemark::TM_Exception);
    EXPECT_EQ(Probe::alive, 1);
    EXPECT_EQ(net.pin("c.out").currentValue()->size(), 0u);
    net.manager().clearInterrupt();
    net.node("c").update(&net.pin("c.out"));
    net.manager().setEvaluating(false);
    EXPECT_EQ(Probe::alive, 4);
    EXPECT_EQ(net.copied(2)->number, 1);
}

TEST_F(CopiesOfObjects, OfNoElements) {
    ProbeNet net;
    net.give({});
    net.refresh("c.out");
    EXPECT_EQ(net.pin("c.out").currentValue()->size(), 0u);
}

} // namespace

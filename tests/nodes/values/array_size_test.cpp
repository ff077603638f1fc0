// SPDX-License-Identifier: Apache-2.0
// Sizes and nulls of values of any class.
#include <gtest/gtest.h>

#include "core/pointer_value.h"
#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace sluice_tests;

TEST(ArraySize, Declares) {
    EXPECT_EQ("ArraySize\n"
              "in array AnyAttribute All = none\n"
              "out size NumericAttribute \"Integer\"\n",
              declared("ArraySize"));
    EXPECT_EQ("", missingTexts("ArraySize"));
    EXPECT_EQ("", missingAffects("ArraySize"));
    LogicNet net;
    EXPECT_EQ("This node returns the size of the input 'array'.",
              net.add("ArraySize", "n").getDescription());
}

TEST(ArraySize, IsZeroWithoutAValue) {
    LogicNet net;
    net.add("ArraySize", "n");
    EXPECT_EQ("[1] 0", net.text("n.size"));
}

TEST(ArraySize, CountsWhateverIsConnected) {
    LogicNet net;
    net.add("ArraySize", "n");
    net.add("Real", "number");
    net.add("Bit", "bit");
    net.add("StringSplit", "string");
    ASSERT_TRUE(net.link("number.real", "n.array"));
    net.numbers<float>("number.in", {1, 2, 3});
    EXPECT_EQ("[1] 3", net.text("n.size"));
    net.numbers<float>("number.in", {});
    EXPECT_EQ("[1] 0", net.text("n.size"));
    net.pin("n.array").disconnectSource();
    ASSERT_TRUE(net.link("bit.bit", "n.array"));
    net.bits("bit.in", {true, false});
    EXPECT_EQ("[1] 2", net.text("n.size"));
    net.pin("n.array").disconnectSource();
    ASSERT_TRUE(net.link("string.array", "n.array"));
    net.strings("string.in", {"abcd"});
    EXPECT_EQ("[1] 4", net.text("n.size"));
    net.pin("n.array").disconnectSource();
    EXPECT_EQ("[1] 0", net.text("n.size"));
}

TEST(IsNull, Declares) {
    EXPECT_EQ("IsNull\n"
              "in value AnyAttribute All = none\n"
              "out mask BitArrayAttribute \"Bit\"\n",
              declared("IsNull"));
    EXPECT_EQ("", missingTexts("IsNull"));
    EXPECT_EQ("", missingAffects("IsNull"));
    LogicNet net;
    EXPECT_EQ("This node returns a mask with a bit set for every null element of the input.",
              net.add("IsNull", "n").getDescription());
}

TEST(IsNull, HasNoBitsWithoutAValue) {
    LogicNet net;
    net.add("IsNull", "n");
    EXPECT_EQ("", net.text("n.mask"));
}

TEST(IsNull, NumbersAreNeverNull) {
    LogicNet net;
    net.add("IsNull", "n");
    net.add("Real", "number");
    ASSERT_TRUE(net.link("number.real", "n.value"));
    net.numbers<float>("number.in", {0, 1, 2});
    EXPECT_EQ("000", net.text("n.mask"));
}

struct Anchor {};
class AnchorAttribute : public weft::PointerAttribute {
public:
    AnchorAttribute(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)
        : PointerAttribute(manager, name, parent, new weft::PointerValue<Anchor>(manager),
                           weft::PointerValue<Anchor>::kind) {
        initializeSpecializations({"Mesh"});
    }
};
class Anchors : public weft::Node {
public:
    Anchors(weft::NetworkManager* manager, weft::Node* parent) : Node(manager, "anchors", parent) {
        out = addOutput<AnchorAttribute>("out");
    }
    AnchorAttribute* out;
};

TEST(IsNull, MarksNullPointers) {
    LogicNet net;
    weft::Node& node = net.add("IsNull", "n");
    auto* anchors = new Anchors(&net.manager(), node.parent());
    node.parent()->addNode(anchors);
    Anchor anchor;
    auto* value = weft::valueAs<weft::PointerValue<Anchor>>(anchors->out->value());
    ASSERT_NE(nullptr, value);
    value->setSize(3);
    value->setValueAt(1, &anchor);
    ASSERT_TRUE(net.manager().connect(anchors->out, &net.pin("n.value"), nullptr));
    EXPECT_EQ("101", net.text("n.mask"));
}

} // namespace

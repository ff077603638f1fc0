// SPDX-License-Identifier: Apache-2.0
// Constants of numbers, vectors, colours and bits.
#include "nodes/values/constants.h"

#include <gtest/gtest.h>

#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;

struct Row {
    const char* type;
    const char* output;
    const char* kind;
    const char* specialization;
    const char* content;
    const char* description;
};

const Row rows[] = {
    {"Integer", "integer", "NumericAttribute", "Integer", "[1] 0",
     "An integer constant. Suitable for direct user input."},
    {"Integer64", "integer64", "NumericAttribute", "Integer64", "[2] 0",
     "A 64 bit integer constant. Suitable for direct user input."},
    {"Real", "real", "NumericAttribute", "Real", "[3] 0",
     "A float constant. Suitable for direct user input."},
    {"Vector3", "vector", "NumericAttribute", "Vector3", "[4] (0,0,0)",
     "A three component float vector constant.\nSuitable for direct user input."},
    {"Color4", "color", "NumericAttribute", "Color4", "[5] (0,0,0,1)",
     "A four component float color constant. Component values vary from 0.0 to 1.0.\nSuitable for "
     "direct user input."},
    {"Bit", "bit", "BitArrayAttribute", "Bit", "0",
     "A bit constant. Suitable for direct user input."},
};

TEST(Constants, DeclareOneInputAndOneOutput) {
    for (const Row& row : rows) {
        LogicNet net;
        Node& node = net.add(row.type, "c");
        EXPECT_EQ(row.type, node.className());
        ASSERT_EQ(1u, node.refInputAttributes().size());
        ASSERT_EQ(1u, node.refOutputAttributes().size());
        for (Attribute* pin : {node.inputAttributeAt(0), node.outputAttributeAt(0)}) {
            EXPECT_EQ(row.kind, pin->className());
            EXPECT_EQ(1u, pin->allowedSpecializations().size());
            EXPECT_EQ(row.specialization, pin->specialization());
            EXPECT_EQ(row.content, pin->value()->asString());
            EXPECT_NE("", pin->getDescription());
        }
        EXPECT_EQ("in", node.inputAttributeAt(0)->name());
        EXPECT_EQ(row.output, node.outputAttributeAt(0)->name());
        EXPECT_TRUE(node.inputAttributeAt(0)->affects().contains(node.outputAttributeAt(0)));
        // The 64-bit one has a sentence more.
        EXPECT_EQ(0u, node.getDescription().find(row.description)) << node.getDescription();
        if (TM_String(row.type) == "Integer64") continue;
        EXPECT_EQ(row.description, node.getDescription());
    }
}

TEST(Constants, OutputGivesWhatTheInputHolds) {
    LogicNet net;
    for (const Row& row : rows) net.add(row.type, row.type);
    net.numbers("Integer.in", {int32_t(-7)});
    net.numbers("Integer64.in", {int64_t(1) << 40});
    net.numbers("Real.in", {0.1f});
    net.numbers("Vector3.in", {Vector3<float>(1, 2, 3)});
    net.numbers("Color4.in", {Color4<float>(0.25f, 0.5f, 0.75f, 0.5f)});
    net.bits("Bit.in", {true});
    EXPECT_EQ("[1] -7", net.text("Integer.integer"));
    EXPECT_EQ("[2] 1099511627776", net.text("Integer64.integer64"));
    EXPECT_EQ("[3] 0.1", net.text("Real.real"));
    EXPECT_EQ("[4] (1,2,3)", net.text("Vector3.vector"));
    EXPECT_EQ("[5] (0.25,0.5,0.75,0.5)", net.text("Color4.color"));
    EXPECT_EQ("1", net.text("Bit.bit"));
}

TEST(Constants, ArraysPassAsTheyAre) {
    LogicNet net;
    net.add("Real", "r");
    net.numbers("r.in", {1.0f, 2.0f, 3.0f});
    EXPECT_EQ("[3] 1,2,3", net.text("r.real"));
    net.numbers<float>("r.in", {});
    EXPECT_EQ("[3] ", net.text("r.real"));
}

TEST(Constants, ChangingTheInputDirtiesTheOutput) {
    LogicNet net;
    net.add("Real", "r");
    net.text("r.real");
    EXPECT_TRUE(net.pin("r.real").isClean());
    net.numbers("r.in", {4.0f});
    EXPECT_FALSE(net.pin("r.real").isClean());
    EXPECT_EQ("[3] 4", net.text("r.real"));
}

TEST(Constants, ASourceOfAnotherClassLeavesTheOutput) {
    LogicNet net;
    net.add("Real", "r");
    net.add("Bit", "b");
    net.add("Real", "other");
    net.numbers("r.in", {4.0f});
    EXPECT_EQ("[3] 4", net.text("r.real"));
    net.pin("other.real").setValue(net.pin("b.bit").value());
    ASSERT_TRUE(net.link("other.real", "r.in"));
    EXPECT_EQ("[3] 4", net.text("r.real"));
}

} // namespace

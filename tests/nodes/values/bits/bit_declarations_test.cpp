// SPDX-License-Identifier: Apache-2.0
// The bit nodes as users see them: pins, types, defaults, help and descriptions.
#include <gtest/gtest.h>

#include <vector>

#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"

namespace {

using sluice_tests::LogicNet;
using tidemark::TM_String;

const TM_String bit = " BitArrayAttribute \"Bit\"";
const TM_String integer = " NumericAttribute \"Integer\"";
const TM_String integer64 = " NumericAttribute \"Integer64\"";
const TM_String anyInteger = " NumericAttribute \"Integer\", \"Integer64\"";
const TM_String string = " StringAttribute \"String\"";
const TM_String operations =
    " EnumAttribute \"List\", \"Integer\", \"String\" = "
    "[{0:\"and\",1:\"or\",2:\"negate\",3:\"xor\",4:\"nor\",5:\"xnor\",6:\"nand\","
    "7:\"implication\",8:\"equal\",},0";
const TM_String through = "out through PassThroughAttribute \"Bit\"\n";
const TM_String operands = "in in0" + bit + " = 0\nin in1" + bit + " = 0\n";

TM_String answering(const TM_String& out, const TM_String& type) {
    return "in in" + bit + " = 0\nout " + out + type + "\n";
}

struct Row {
    TM_String type;
    TM_String pins;
    TM_String description;
};

const std::vector<Row> rows = {
    {"ArrayBitConstant",
     "in bit!" + bit + " = 0\nin size!" + integer + " = 1\nout array" + bit + "\n",
     "This node returns a constant bit array."},
    {"GetArrayBitElement",
     "in array" + bit + " = 0\nin index" + integer + " = 0\nout out" + bit + "\n",
     "This node returns the elements of the input 'array' at given positions, which are specified "
     "by the 'index' parameter."},
    {"SetArrayBitElement",
     "in array" + bit + " = 0\nin index" + integer + " = 0\nin value" + bit +
         " = 0\nout out array" + bit + "\n",
     "This node sets the elements of the input 'array' at given positions, which are specified by "
     "the 'index' parameter. The new value is specified by the 'value' input."},
    {"ArrayBitSetAll",
     "in array" + bit + " = 0\nin value!" + bit + " = 0\nout out array" + bit + "\n",
     "This node sets all elements of the input 'array' to the given input 'value'."},
    {"ArrayBitFilterByMask",
     "in array" + bit + " = 0\nin mask" + bit + " = 0\nout out array" + bit + "\n",
     "This node returns the elements of the input 'array' at positions specified by the 'mask' "
     "parameter."},
    {"ArrayIndexBuildFromMask", "in mask" + bit + " = 0\nout index" + integer + "\n" + through,
     "This node returns an array containing the positions of the input 'mask' with a value of 1."},
    {"ArrayBitBuildByIndex", "in index array" + integer + " = 0\nout mask" + bit + "\n",
     "Given an array of indices this node returns a mask whereas each index included in the "
     "index-array is set to 1."},
    {"ArrayBitResize",
     "in array" + bit + " = 0\nin size!" + integer + " = 1\nout out array" + bit + "\n",
     "This node resizes the input 'array'. If the new size is bigger than the original array-size, "
     "the last array-value is used to fill up the array."},
    {"ArrayBitRandom",
     "in size!" + integer + " = 1\nin seed!" + integer + " = 0\nout array" + bit + "\n",
     "This node returns a random bit array of the size specified by the 'size' input."},
    {"ArrayBitRemoveIndex",
     "in array" + bit + " = 0\nin index" + integer + " = 0\nout out array" + bit + "\n",
     "This node removes all the input array positions indicated by the 'index' input. "},
    {"ArrayBitReverse", "in array" + bit + " = 0\nout out array" + bit + "\n",
     "This node reverses the order of the input array. "},
    {"BitOperation", operands + "in op!" + operations + "\nout result" + bit + "\n",
     "This node computes a binary operation between the two input arrays."},
    {"BitAnd", operands + "out result" + bit + "\n",
     "This node returns the AND operation between the input bit arrays."},
    {"BitOr", operands + "out result" + bit + "\n",
     "This node returns the OR operation between the input bit arrays."},
    {"BitXor", operands + "out result" + bit + "\n",
     "This node returns the XOR operation between the input bit arrays."},
    {"BitNor", operands + "out result" + bit + "\n",
     "This node returns the NOR operation between the input bit arrays."},
    {"BitXnor", operands + "out result" + bit + "\n",
     "This node returns the XNOR operation between the input bit arrays."},
    {"BitNand", operands + "out result" + bit + "\n",
     "This node returns the NAND operation between the input bit arrays."},
    {"BitImplication", operands + "out result" + bit + "\n",
     "This node returns the IMPLICATION operation between the input bit arrays."},
    {"BitEqual", operands + "out result" + bit + "\n",
     "This node returns the EQUAL operation between the input bit arrays."},
    {"BitNegate", answering("result", bit),
     "This node inverts all the values of the input bit array"},
    {"ArrayBitInfo",
     "in in" + bit + " = 0\nout size" + integer + "\nout all true" + bit + "\nout all false" + bit +
         "\nout any true" + bit + "\nout any false" + bit + "\nout count true" + integer +
         "\nout count false" + integer + "\nout first true" + integer + "\nout first false" +
         integer + "\nout last true" + integer + "\nout last false" + integer + "\nout negated" +
         bit + "\n" + through,
     "Returns several information about the input bit array."},
    {"ArrayBitCountTrue", answering("count", integer),
     "This node returns the number of bits set to 1 in the input bit array."},
    {"ArrayBitCountFalse", answering("count", integer),
     "This node returns the number of bits set to 0 in the input bit array."},
    {"ArrayBitFirstTrue", answering("first", integer),
     "This node returns the position of the first bit set to 1 in the input bit array or -1 if all "
     "bits are false."},
    {"ArrayBitFirstFalse", answering("first", integer),
     "This node returns the position of the first bit set to 0 in the input bit array or -1 if all "
     "bits are true."},
    {"ArrayBitLastTrue", answering("last", integer),
     "This node returns the position of the last bit set to 1 in the input bit array or -1 if all "
     "bits are false."},
    {"ArrayBitLastFalse", answering("last", integer),
     "This node returns the position of the last bit set to 0 in the input bit array or -1 if all "
     "bits are true."},
    {"ArrayBitAnyTrue", answering("any", bit),
     "This node returns true if the input contains at least one bit equal to 1. False otherwise."},
    {"ArrayBitAnyFalse", answering("any", bit),
     "This node returns true if the input contains at least one bit equal to 0. False otherwise."},
    {"ArrayBitAllTrue", answering("all", bit),
     "This node returns true if all the input bits are set to 0. False otherwise."},
    {"ArrayBitAllFalse", answering("all", bit),
     "This node returns true if all the input bits are set to 1. False otherwise."},
    {"ArrayBitToString",
     "in array" + bit + " = 0\nin first!" + integer + " = 0\nin size!" + integer +
         " = -1\nout string" + string + "\n" + through,
     "This node returns a string version of the input bit array in a form similar like: "
     "\"01001011\"."},
    {"ArrayBitFromString", "in string!" + string + " = \nout bit array" + bit + "\n",
     "This node returns a bit array using the input string characters as a reference."},
    {"IntegerToArrayBit", "in integer!" + anyInteger + " = 0\nout bit" + bit + "\n",
     "This node returns the binary representation of the input integer value."},
    {"IntegerBitValue",
     "in integer" + anyInteger + " = 0\nin bit index" + integer + " = 0\nout bit" + bit + "\n",
     "This node returns the value of the bit at position 'index' of the binary representation of "
     "the input 'integer'."},
    {"IntegerSetBitValue",
     "in integer" + anyInteger + " = 0\nin bit index" + integer + " = 0\nin bit value" + bit +
         " = 1\nout result" + anyInteger + "\n",
     "This node returns the input 'integer' value with its bit at position 'bit index' modified "
     "according to 'bit value'."},
    {"ArrayBitToInteger", "in bit" + bit + " = 0\nout integer" + integer + "\n",
     "This node converts the binary representation of the input into a 32 bit integer value. If "
     "the input bit array is smaller than 32 bit, the rest of the left bits are treated as 0."},
    {"ArrayBitToInteger64", "in bit" + bit + " = 0\nout integer64" + integer64 + "\n",
     "This node converts the binary representation of the input into a 64 bit integer value. If "
     "the input bit array is smaller than 64 bit, the rest of the left bits are treated as 0."},
};

TEST(BitDeclarations, PinsAndDescriptions) {
    for (const Row& row : rows) {
        EXPECT_EQ(row.type + "\n" + row.pins, sluice_tests::declared(row.type));
        LogicNet net;
        EXPECT_EQ(row.description, net.add(row.type, "n").getDescription()) << row.type;
    }
}

TEST(BitDeclarations, EverythingIsExplainedAndAffects) {
    for (const Row& row : rows) {
        EXPECT_EQ("", sluice_tests::missingTexts(row.type)) << row.type;
        EXPECT_EQ("", sluice_tests::missingAffects(row.type)) << row.type;
    }
}

TEST(BitDeclarations, ArraysMayBeChangedInPlace) {
    const std::vector<std::pair<TM_String, TM_String>> changing = {
        {"GetArrayBitElement", "n.out"},    {"SetArrayBitElement", "n.out array"},
        {"ArrayBitSetAll", "n.out array"},  {"ArrayBitFilterByMask", "n.out array"},
        {"ArrayBitResize", "n.out array"},  {"ArrayBitRemoveIndex", "n.out array"},
        {"ArrayBitReverse", "n.out array"},
    };
    for (const auto& [type, out] : changing) {
        LogicNet net;
        net.add(type, "n");
        EXPECT_TRUE(net.pin("n.array").allowedPassThroughs().contains(&net.pin(out))) << type;
    }
}

TEST(BitDeclarations, ResultOfSettingABitFollowsTheInteger) {
    LogicNet net;
    net.add("IntegerSetBitValue", "n");
    EXPECT_FALSE(net.pin("n.result").isSpecialized());
    net.type("n.integer", "Integer64");
    EXPECT_EQ("Integer64", net.pin("n.result").specialization());
}

} // namespace

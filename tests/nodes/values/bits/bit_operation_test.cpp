// SPDX-License-Identifier: Apache-2.0
// Logical operations: the truth tables, operands of unequal length, shared values.
#include <gtest/gtest.h>

#include "nodes/values/bits/bit_node.h"

namespace {

using namespace weft;
using sluice_tests::BitNode;
using sluice_tests::randomDigits;
using sluice_tests::telltaleSizes;
using tidemark::TM_String;

// The outcome for the operand pairs (1, 1), (1, 0), (0, 1), (0, 0).
struct Row {
    int32_t key;
    const char* label;
    const char* type;
    const char* outcome;
};
const std::vector<Row> rows = {
    {0, "and", "BitAnd", "1000"},     {1, "or", "BitOr", "1110"},
    {2, "negate", nullptr, "0011"},   {3, "xor", "BitXor", "0110"},
    {4, "nor", "BitNor", "0001"},     {5, "xnor", "BitXnor", "1001"},
    {6, "nand", "BitNand", "0111"},   {7, "implication", "BitImplication", "1011"},
    {8, "equal", "BitEqual", "1001"},
};

TM_String computed(BitNode& n, const TM_String& in0, const TM_String& in1) {
    n.set("in0", in0);
    n.set("in1", in1);
    return n.get("result");
}

void choose(BitNode& n, int32_t key) {
    auto& op = n.as<EnumAttribute>("n.op");
    op.ownEnum().setKey(key);
    op.valueChanged();
}

// By one element after the other, the last one of `in1` repeated.
TM_String expected(const TM_String& outcome, const TM_String& in0, const TM_String& in1) {
    TM_String out;
    for (std::size_t i = 0; i < in0.size(); ++i) {
        const char b = in1.empty() ? '0' : i < in1.size() ? in1[i] : in1.back();
        out += outcome[(in0[i] == '1' ? 0 : 2) + (b == '1' ? 0 : 1)];
    }
    return out;
}

TEST(BitOperation, TruthTables) {
    for (const Row& row : rows) {
        BitNode all("BitOperation");
        choose(all, row.key);
        EXPECT_EQ(row.outcome, computed(all, "1100", "1010")) << row.label;
        EXPECT_EQ(row.label, all.as<EnumAttribute>("n.op").ownEnum().label(row.key));
        if (!row.type) continue;
        BitNode one(row.type);
        EXPECT_EQ(row.outcome, computed(one, "1100", "1010")) << row.type;
    }
}

TEST(BitOperation, BeginsWithAnd) {
    BitNode n("BitOperation");
    EXPECT_EQ("1000", computed(n, "1100", "1010"));
}

TEST(BitOperation, ResultHasTheSizeOfTheFirstOperand) {
    BitNode n("BitAnd");
    EXPECT_EQ("1000", computed(n, "1111", "10")) << "the last element is repeated";
    EXPECT_EQ("10", computed(n, "11", "1011"));
    EXPECT_EQ("1011001110", computed(n, "1011001110", "1"));
    EXPECT_EQ("000", computed(n, "111", "")) << "an empty operand is extended by false";
    EXPECT_EQ("", computed(n, "", "1"));
    EXPECT_EQ("", n.messages());
}

TEST(BitOperation, NegateDoesNotLookAtTheSecondOperand) {
    BitNode n("BitOperation");
    choose(n, 2);
    EXPECT_EQ("0101", computed(n, "1010", ""));
    EXPECT_EQ("0101", computed(n, "1010", "1"));
}

TEST(BitOperation, UnknownKeyIsReportedAndCopiesTheFirstOperand) {
    BitNode n("BitOperation");
    choose(n, 9);
    EXPECT_EQ("1100", computed(n, "1100", "1010"));
    EXPECT_EQ("[error] Unknown operation\n", n.messages());
    choose(n, -1);
    EXPECT_EQ("01", computed(n, "01", "1010"));
}

TEST(BitOperation, NoKeyIsAnUnknownOne) {
    BitNode n("BitOperation");
    n.as<EnumAttribute>("n.op").ownEnum().refKeys().clear();
    n.pin("n.op").valueChanged();
    EXPECT_EQ("1100", computed(n, "1100", "1010"));
    EXPECT_NE(TM_String::npos, n.messages().find("[error] Unknown operation\n")) << n.messages();
}

TEST(BitOperation, TakesKeysFromIntegers) {
    BitNode n("BitOperation");
    n.add("Integer", "i");
    ASSERT_TRUE(n.link("i.integer", "n.op"));
    n.numbers<int32_t>("i.in", {3});
    EXPECT_EQ("0110", computed(n, "1100", "1010"));
    EXPECT_EQ("", n.messages());
}

TEST(BitOperation, TakesLabelsFromStrings) {
    BitNode n("BitOperation");
    n.add("String", "s");
    ASSERT_TRUE(n.link("s.out", "n.op"));
    n.strings("s.in", {"implication"});
    EXPECT_EQ("1011", computed(n, "1100", "1010"));
    EXPECT_EQ("", n.messages());
    n.strings("s.in", {"%n%s"});
    EXPECT_EQ("1100", computed(n, "1100", "1010"));
    EXPECT_EQ("[error] Unknown operation\n", n.messages());
}

TEST(BitOperation, SeveralChosenOperationsWarn) {
    BitNode n("BitOperation");
    n.as<EnumAttribute>("n.op").ownEnum().refKeys() = {1, 0};
    n.pin("n.op").valueChanged();
    EXPECT_EQ("1110", computed(n, "1100", "1010"));
    EXPECT_EQ("[warning] size of attribute 'op' is different than 1 (2). Extra elements will be "
              "ignored\n",
              n.messages());
}

TEST(BitOperation, AgreesWithAPlainLoop) {
    std::mt19937 random(8);
    for (const Row& row : rows) {
        BitNode n("BitOperation");
        BitNode overFirst("BitOperation", "in0", "result");
        BitNode overSecond("BitOperation", "in1", "result");
        for (BitNode* node : {&n, &overFirst, &overSecond}) choose(*node, row.key);
        for (const uint32_t size0 : telltaleSizes()) {
            for (const uint32_t size1 : telltaleSizes()) {
                const TM_String in0 = randomDigits(random, size0);
                const TM_String in1 = randomDigits(random, size1);
                for (BitNode* node : {&n, &overFirst, &overSecond}) {
                    ASSERT_EQ(expected(row.outcome, in0, in1), computed(*node, in0, in1))
                        << row.label << " " << size0 << " " << size1;
                }
            }
        }
    }
}

TEST(BitOperation, LongRepetition) {
    std::mt19937 random(9);
    const TM_String in0 = randomDigits(random, 5'000'011);
    BitNode n("BitXor");
    EXPECT_TRUE(computed(n, in0, "01") == expected("0110", in0, "01"));
}

TEST(BitOperation, OneSourceForBothOperands) {
    BitNode n("BitXor", "in0", "result");
    ASSERT_TRUE(n.link("b.bit", "n.in1"));
    n.set("in0", "101");
    EXPECT_EQ("000", n.get("result"));
}

TEST(BitNegate, InvertsEveryElement) {
    std::mt19937 random(10);
    BitNode apart("BitNegate");
    BitNode sharing("BitNegate", "in", "result");
    for (const uint32_t size : telltaleSizes()) {
        const TM_String in = randomDigits(random, size);
        TM_String inverted = in;
        for (char& digit : inverted) digit = digit == '1' ? '0' : '1';
        for (BitNode* n : {&apart, &sharing}) {
            n->set("in", in);
            ASSERT_EQ(inverted, n->get("result")) << size;
        }
    }
}

} // namespace

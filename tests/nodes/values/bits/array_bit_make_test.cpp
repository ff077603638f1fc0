// SPDX-License-Identifier: Apache-2.0
// Bit arrays of a size: constants, filling, resizing, random bits.
#include <gtest/gtest.h>

#include "nodes/values/bits/bit_node.h"
#include "nodes/values/random_steps.h"

namespace {

using namespace weft;
using sluice_tests::BitNode;
using sluice_tests::LogicNet;
using sluice_tests::randomDigits;
using sluice_tests::telltaleSizes;
using tidemark::TM_String;
using tidemark::sluice::graph::RandomSteps;

constexpr const char* negativeSize = "[error] Input size is lower than 0\n";

// ArrayBitConstant.

TEST(ArrayBitConstant, RepeatsTheBit) {
    BitNode n("ArrayBitConstant");
    EXPECT_EQ("0", n.get("array"));
    n.set("bit", "1");
    for (const uint32_t size : telltaleSizes()) {
        n.integer("size", static_cast<int32_t>(size));
        EXPECT_EQ(TM_String(size, '1'), n.get("array"));
    }
    n.set("bit", "0");
    n.integer("size", 70);
    EXPECT_EQ(TM_String(70, '0'), n.get("array"));
    EXPECT_EQ("", n.messages());
}

TEST(ArrayBitConstant, ReadsTheLastElementOfTheBit) {
    BitNode n("ArrayBitConstant");
    n.integer("size", 3);
    n.set("bit", "01");
    EXPECT_EQ("111", n.get("array"));
    EXPECT_EQ("[warning] size of attribute 'bit' is different than 1 (2). Extra elements will be "
              "ignored\n",
              n.messages());
    n.set("bit", "");
    EXPECT_EQ("000", n.get("array"));
}

TEST(ArrayBitConstant, NegativeSizeIsReportedAndChangesNothing) {
    BitNode n("ArrayBitConstant");
    n.integer("size", 3);
    EXPECT_EQ("000", n.get("array"));
    n.integer("size", -1);
    n.set("bit", "1");
    EXPECT_EQ("000", n.get("array"));
    EXPECT_EQ(negativeSize, n.messages());
}

TEST(ArrayBitConstant, EmptySizeIsZero) {
    BitNode n("ArrayBitConstant");
    n.integers("size", {});
    EXPECT_EQ("", n.get("array"));
}

// ArrayBitSetAll.

TEST(ArrayBitSetAll, KeepsTheSizeAndTakesTheLastValue) {
    BitNode n("ArrayBitSetAll");
    n.set("array", "01010");
    n.set("value", "1");
    EXPECT_EQ("11111", n.get("out array"));
    n.set("value", "10");
    EXPECT_EQ("00000", n.get("out array"));
    n.set("value", "");
    EXPECT_EQ("00000", n.get("out array"));
    n.set("array", "");
    EXPECT_EQ("", n.get("out array"));
}

TEST(ArrayBitSetAll, WorksInPlace) {
    BitNode n("ArrayBitSetAll", "array", "out array");
    n.set("array", "010");
    n.set("value", "1");
    EXPECT_EQ("111", n.get("out array"));
    EXPECT_EQ("111", n.pin("b.bit").value()->asString());
}

TEST(ArrayBitSetAll, OneSourceForBothInputs) {
    LogicNet net;
    net.add("Bit", "b");
    net.add("ArrayBitSetAll", "n");
    net.link("b.bit", "n.array");
    net.link("b.bit", "n.value");
    net.pin("n.array").addPassThrough(&net.pin("n.out array"));
    net.bits("b.in", {false, false, true});
    EXPECT_EQ("111", net.text("n.out array"));
}

// ArrayBitResize.

TEST(ArrayBitResize, RepeatsTheLastElement) {
    std::mt19937 random(1);
    BitNode n("ArrayBitResize");
    for (const uint32_t from : telltaleSizes()) {
        const TM_String digits = randomDigits(random, from);
        n.set("array", digits);
        for (const uint32_t to : telltaleSizes()) {
            n.integer("size", static_cast<int32_t>(to));
            TM_String expected = digits.substr(0, to);
            expected.resize(to, from > 0 ? digits.back() : '0');
            ASSERT_EQ(expected, n.get("out array")) << from << " to " << to;
        }
    }
    EXPECT_EQ("", n.messages());
}

TEST(ArrayBitResize, WorksInPlace) {
    BitNode n("ArrayBitResize", "array", "out array");
    n.set("array", "01");
    n.integer("size", 40);
    EXPECT_EQ("0" + TM_String(39, '1'), n.get("out array"));
    n.set("array", TM_String(70, '1'));
    n.integer("size", 3);
    EXPECT_EQ("111", n.get("out array"));
}

TEST(ArrayBitResize, NegativeSizeIsReportedAndChangesNothing) {
    BitNode n("ArrayBitResize");
    n.set("array", "10");
    n.integer("size", 3);
    EXPECT_EQ("100", n.get("out array"));
    n.integer("size", -2147483647 - 1);
    EXPECT_EQ("100", n.get("out array"));
    EXPECT_EQ(negativeSize, n.messages());
}

TEST(ArrayBitsOfASize, NegativeSizeIsNotMarkedClean) {
    for (const auto& [type, out] : {std::pair("ArrayBitResize", "n.out array"),
                                    {"ArrayBitConstant", "n.array"},
                                    {"ArrayBitRandom", "n.array"}}) {
        BitNode n(type);
        n.integer("size", -1);
        n.node("n").doUpdate(&n.pin(out));
        EXPECT_FALSE(n.pin(out).isClean()) << type;
    }
}

TEST(ArrayBitsOfASize, LargestArraysWork) {
    BitNode n("ArrayBitConstant");
    n.set("bit", "1");
    n.integer("size", 2147483647);
    n.add("ArrayBitInfo", "info");
    ASSERT_TRUE(n.link("n.array", "info.in"));
    EXPECT_EQ("[1] 2147483647", n.text("info.size"));
    EXPECT_EQ("[1] 2147483647", n.text("info.count true"));
    EXPECT_EQ("[1] 2147483646", n.text("info.last true"));
    EXPECT_EQ("[1] -1", n.text("info.last false"));
}

// ArrayBitRandom.

TEST(ArrayBitRandom, KnownBits) {
    BitNode n("ArrayBitRandom");
    n.integer("size", 3);
    EXPECT_EQ("000", n.get("array"));
    n.integer("size", 16);
    EXPECT_EQ("0000011101000111", n.get("array"));
    n.integer("seed", 1);
    EXPECT_EQ("0010010100001000", n.get("array"));
    n.integer("size", 3);
    EXPECT_EQ("001", n.get("array"));
}

TEST(ArrayBitRandom, OneStepPerBit) {
    BitNode n("ArrayBitRandom");
    for (const int32_t seed : {0, 1, -1, 12345, -2147483647 - 1}) {
        n.integer("seed", seed);
        for (const uint32_t size : telltaleSizes()) {
            n.integer("size", static_cast<int32_t>(size));
            RandomSteps steps(seed);
            TM_String expected(size, '0');
            for (char& digit : expected) digit = steps.next() > 0x7fffffffu ? '1' : '0';
            ASSERT_EQ(expected, n.get("array")) << seed << " " << size;
        }
    }
}

TEST(ArrayBitRandom, ReadsElementZero) {
    BitNode n("ArrayBitRandom");
    n.integers("size", {16, 5});
    n.integers("seed", {1, 7, 8});
    EXPECT_EQ("0010010100001000", n.get("array"));
    EXPECT_EQ("[warning] size of attribute 'size' is different than 1 (2). Extra elements will be "
              "ignored\n"
              "[warning] size of attribute 'seed' is different than 1 (3). Extra elements will be "
              "ignored\n",
              n.messages());
}

TEST(ArrayBitRandom, NegativeSizeIsReportedAndChangesNothing) {
    BitNode n("ArrayBitRandom");
    n.integer("size", 16);
    n.get("array");
    n.integer("size", -7);
    EXPECT_EQ("0000011101000111", n.get("array"));
    EXPECT_EQ(negativeSize, n.messages());
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Bit arrays as strings and integers, and back.
#include <gtest/gtest.h>

#include "nodes/values/bits/bit_node.h"

namespace {

using namespace weft;
using sluice_tests::BitNode;
using sluice_tests::LogicNet;
using sluice_tests::randomDigits;
using sluice_tests::telltaleSizes;
using tidemark::TM_String;

// ArrayBitToString.

TM_String written(BitNode& n, int32_t first, int32_t size) {
    n.integer("first", first);
    n.integer("size", size);
    return n.get("string");
}

TEST(ArrayBitToString, WritesAStretch) {
    BitNode n("ArrayBitToString", "array");
    n.set("array", "1011");
    EXPECT_EQ("1011", n.get("string")) << "all of it by default";
    EXPECT_EQ("01", written(n, 1, 2));
    EXPECT_EQ("1011", written(n, 0, -1));
    EXPECT_EQ("11", written(n, 2, -7));
    EXPECT_EQ("", written(n, 3, 0));
    EXPECT_EQ("101", written(n, -5, 3)) << "a negative first counts as 0";
    EXPECT_EQ("1011", n.get("through"));
    EXPECT_EQ("", n.messages());
}

TEST(ArrayBitToString, OutOfRangeIsReportedAndChangesNothing) {
    BitNode n("ArrayBitToString", "array");
    n.set("array", "1011");
    EXPECT_EQ("1011", n.get("string"));
    EXPECT_EQ("1011", written(n, 4, 1));
    EXPECT_EQ("1011", written(n, 2, 3));
    EXPECT_EQ("1011", written(n, 2147483647, -1));
    EXPECT_EQ("1011", written(n, 3, 2147483647));
    EXPECT_EQ("[error] Input 'first' is out of range: 4\n"
              "[error] Input 'size' is out of range: 3\n"
              "[error] Input 'first' is out of range: 2147483647\n"
              "[error] Input 'size' is out of range: 2147483647\n",
              n.messages());
}

TEST(ArrayBitToString, OutOfRangeIsNotMarkedClean) {
    BitNode n("ArrayBitToString");
    n.set("array", "1011");
    n.integer("first", 4);
    n.node("n").doUpdate(&n.pin("n.string"));
    EXPECT_FALSE(n.pin("n.string").isClean());
    n.integer("first", 0);
    n.integer("size", 5);
    n.node("n").doUpdate(&n.pin("n.string"));
    EXPECT_FALSE(n.pin("n.string").isClean());
}

TEST(ArrayBitToString, EmptyArrayHasNoFirstElement) {
    BitNode n("ArrayBitToString", "array");
    n.set("array", "");
    EXPECT_EQ("", n.get("string"));
    EXPECT_EQ("[error] Input 'first' is out of range: 0\n", n.messages());
}

TEST(ArrayBitToString, AnyStretch) {
    std::mt19937 random(12);
    BitNode n("ArrayBitToString", "array");
    for (const uint32_t size : telltaleSizes()) {
        const TM_String digits = randomDigits(random, size);
        n.set("array", digits);
        for (uint32_t first = 0; first < std::min(size, 70u); ++first) {
            const uint32_t length = random() % (size - first + 1);
            ASSERT_EQ(digits.substr(first, length),
                      written(n, static_cast<int32_t>(first), static_cast<int32_t>(length)));
            ASSERT_EQ(digits.substr(first), written(n, static_cast<int32_t>(first), -1));
        }
    }
    EXPECT_EQ("", n.messages());
}

TEST(ArrayBitToString, ReplacesEverythingInItsOutput) {
    BitNode n("ArrayBitToString", "array");
    n.as<StringAttribute>("n.string").ownStrings().append("left over");
    n.set("array", "10");
    EXPECT_EQ("10", n.list("n.string"));
}

TEST(ArrayBitToString, ThroughIsTheInputsValue) {
    LogicNet net;
    net.add("Bit", "b");
    net.add("ArrayBitToString", "n");
    net.link("b.bit", "n.array");
    net.bits("b.in", {true, false});
    EXPECT_EQ("10", net.text("n.through"));
    EXPECT_EQ(net.pin("b.bit").value(), net.pin("n.through").currentValue());
    EXPECT_FALSE(net.pin("n.string").isClean());
}

// ArrayBitFromString.

TEST(ArrayBitFromString, EveryOtherCharacterIsOne) {
    BitNode n("ArrayBitFromString");
    n.strings("n.string", {"0x1"});
    EXPECT_EQ("011", n.get("bit array"));
    n.strings("n.string", {"%n%s 0\xc3\xa4O"});
    EXPECT_EQ("111110111", n.get("bit array"));
    n.strings("n.string", {""});
    EXPECT_EQ("", n.get("bit array"));
}

TEST(ArrayBitFromString, NoStringIsAnEmptyOne) {
    BitNode n("ArrayBitFromString");
    n.strings("n.string", {});
    EXPECT_EQ("", n.get("bit array"));
}

TEST(ArrayBitFromString, EveryCharacterCode) {
    BitNode n("ArrayBitFromString");
    TM_String all;
    for (int code = 0; code < 256; ++code) all += static_cast<char>(code);
    all += all;
    n.as<StringAttribute>("n.string").ownStrings().setValue(all);
    n.pin("n.string").valueChanged();
    TM_String expected(512, '1');
    expected['0'] = expected[256 + '0'] = '0';
    EXPECT_EQ(expected, n.get("bit array"));
}

TEST(ArrayBitFromString, ReadsWhatToStringWrites) {
    std::mt19937 random(13);
    BitNode n("ArrayBitFromString");
    for (const uint32_t size : telltaleSizes()) {
        const TM_String digits = randomDigits(random, size);
        n.as<StringAttribute>("n.string").ownStrings().setValue(digits);
        n.pin("n.string").valueChanged();
        ASSERT_EQ(digits, n.get("bit array"));
    }
}

TEST(ArrayBitFromString, ReadsTheFirstString) {
    BitNode n("ArrayBitFromString");
    n.strings("n.string", {"10", "0000"});
    EXPECT_EQ("10", n.get("bit array"));
    EXPECT_EQ("[warning] size of attribute 'string' is different than 1 (2). Extra elements will "
              "be ignored\n",
              n.messages());
}

// IntegerToArrayBit.

TEST(IntegerToArrayBit, MostSignificantBitFirst) {
    BitNode n("IntegerToArrayBit");
    n.type("n.integer", "Integer");
    n.integer("integer", 5);
    EXPECT_EQ(TM_String(29, '0') + "101", n.get("bit"));
    n.integer("integer", 1);
    EXPECT_EQ(TM_String(31, '0') + "1", n.get("bit"));
    n.integer("integer", -1);
    EXPECT_EQ(TM_String(32, '1'), n.get("bit"));
    n.integer("integer", -2147483647 - 1);
    EXPECT_EQ("1" + TM_String(31, '0'), n.get("bit"));
    n.integers("integer", {});
    EXPECT_EQ(TM_String(32, '0'), n.get("bit"));
}

TEST(IntegerToArrayBit, SixtyFourBits) {
    BitNode n("IntegerToArrayBit");
    n.type("n.integer", "Integer64");
    n.numbers<int64_t>("n.integer", {(int64_t(1) << 40) + 3});
    EXPECT_EQ(TM_String(23, '0') + "1" + TM_String(38, '0') + "11", n.get("bit"));
    n.numbers<int64_t>("n.integer", {-1});
    EXPECT_EQ(TM_String(64, '1'), n.get("bit"));
}

TEST(IntegerToArrayBit, UsesElementZero) {
    BitNode n("IntegerToArrayBit");
    n.type("n.integer", "Integer");
    n.integers("integer", {1, 2, 3});
    EXPECT_EQ(TM_String(31, '0') + "1", n.get("bit"));
    EXPECT_EQ("[warning] size of attribute 'integer' is different than 1 (3). Extra elements will "
              "be ignored\n",
              n.messages());
}

TEST(IntegerToArrayBit, WithoutATypeNothingHappens) {
    BitNode n("IntegerToArrayBit");
    EXPECT_EQ("0", n.get("bit"));
    EXPECT_EQ("[error] input 'integer' not specialized\n", n.messages());
}

// ArrayBitToInteger and ArrayBitToInteger64.

TEST(ArrayBitToInteger, ElementZeroIsTheMostSignificant) {
    BitNode n("ArrayBitToInteger");
    n.set("bit", "101");
    EXPECT_EQ("[1] 5", n.get("integer"));
    n.set("bit", "1000");
    EXPECT_EQ("[1] 8", n.get("integer"));
    n.set("bit", "");
    EXPECT_EQ("[1] 0", n.get("integer"));
    n.set("bit", TM_String(32, '1'));
    EXPECT_EQ("[1] -1", n.get("integer"));
    EXPECT_EQ("", n.messages());
}

TEST(ArrayBitToInteger, OnlyTheFirstElementsCount) {
    BitNode n("ArrayBitToInteger");
    n.set("bit", "1" + TM_String(39, '0'));
    EXPECT_EQ("[1] -2147483648", n.get("integer"));
    EXPECT_EQ("[warning] Input size is bigger than 32 (40). Leftmost extra bits will be ignored.\n",
              n.messages());
}

TEST(ArrayBitToInteger64, SixtyFourElements) {
    BitNode n("ArrayBitToInteger64");
    n.set("bit", "101");
    EXPECT_EQ("[2] 5", n.get("integer64"));
    n.set("bit", "1" + TM_String(40, '0'));
    EXPECT_EQ("[2] 1099511627776", n.get("integer64"));
    n.set("bit", TM_String(64, '1'));
    EXPECT_EQ("[2] -1", n.get("integer64"));
    n.set("bit", "");
    EXPECT_EQ("[2] 0", n.get("integer64"));
    EXPECT_EQ("", n.messages());
    n.set("bit", "01" + TM_String(63, '1'));
    EXPECT_EQ("[2] 9223372036854775807", n.get("integer64"));
    EXPECT_EQ("[warning] Input size is bigger than 64 (65). Leftmost extra bits will be ignored.\n",
              n.messages());
}

TEST(ArrayBitToInteger, TakesBackWhatIntegersGive) {
    std::mt19937_64 random(14);
    for (const bool isWide : {false, true}) {
        LogicNet net;
        net.add("IntegerToArrayBit", "to");
        net.add(isWide ? "ArrayBitToInteger64" : "ArrayBitToInteger", "from");
        net.type("to.integer", isWide ? "Integer64" : "Integer");
        ASSERT_TRUE(net.link("to.bit", "from.bit"));
        for (int i = 0; i < 200; ++i) {
            const auto number = static_cast<int64_t>(random());
            if (isWide) {
                net.numbers<int64_t>("to.integer", {number});
                EXPECT_EQ("[2] " + std::to_string(number), net.text("from.integer64"));
            } else {
                net.numbers<int32_t>("to.integer", {static_cast<int32_t>(number)});
                EXPECT_EQ("[1] " + std::to_string(static_cast<int32_t>(number)),
                          net.text("from.integer"));
            }
        }
    }
}

} // namespace

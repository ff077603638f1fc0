// SPDX-License-Identifier: Apache-2.0
// Elements of bit arrays by index.
#include <gtest/gtest.h>

#include "nodes/values/bits/bit_node.h"

namespace {

using namespace weft;
using sluice_tests::BitNode;
using sluice_tests::LogicNet;
using sluice_tests::randomDigits;
using sluice_tests::telltaleSizes;
using tidemark::TM_String;

constexpr int32_t lowest = -2147483647 - 1;

// GetArrayBitElement.

TEST(GetArrayBitElement, OneElementPerIndex) {
    BitNode n("GetArrayBitElement");
    n.set("array", "1011");
    n.integers("index", {1, 0, 0, 3, 1});
    EXPECT_EQ("01110", n.get("out"));
    n.integers("index", {});
    EXPECT_EQ("", n.get("out"));
    EXPECT_EQ("", n.messages());
}

TEST(GetArrayBitElement, IndicesOutOfRangeStayFalseAndAreReported) {
    BitNode n("GetArrayBitElement");
    n.set("array", "1111");
    n.integers("index", {3, 4, -1, 0, lowest, 2147483647});
    EXPECT_EQ("100100", n.get("out"));
    EXPECT_EQ("[error] index is out of range: 4\n"
              "[error] index is out of range: -1\n"
              "[error] index is out of range: -2147483648\n"
              "[error] index is out of range: 2147483647\n",
              n.messages());
}

TEST(GetArrayBitElement, EmptyArrayHasNoElements) {
    BitNode n("GetArrayBitElement");
    n.set("array", "");
    EXPECT_EQ("0", n.get("out"));
    EXPECT_EQ("[error] index is out of range: 0\n", n.messages());
}

TEST(GetArrayBitElement, AgreesWithPlainLookUp) {
    std::mt19937 random(2);
    BitNode apart("GetArrayBitElement");
    BitNode sharing("GetArrayBitElement", "array", "out");
    for (const uint32_t size : telltaleSizes()) {
        if (size == 0) continue;
        const TM_String digits = randomDigits(random, size);
        for (const uint32_t count : {0u, 1u, 31u, 32u, 33u, 200u}) {
            std::vector<int32_t> indices(count);
            TM_String expected;
            for (int32_t& index : indices) {
                index = static_cast<int32_t>(random() % size);
                expected += digits[static_cast<std::size_t>(index)];
            }
            for (BitNode* n : {&apart, &sharing}) {
                n->set("array", digits);
                n->integers("index", indices);
                ASSERT_EQ(expected, n->get("out")) << size << " " << count;
            }
        }
    }
}

// SetArrayBitElement.

TEST(SetArrayBitElement, WritesInOrderAndRepeatsTheLastValue) {
    BitNode n("SetArrayBitElement");
    n.set("array", "0000");
    n.integers("index", {0, 1, 3});
    n.set("value", "01");
    EXPECT_EQ("0101", n.get("out array"));
    n.integers("index", {2, 2});
    n.set("value", "10");
    EXPECT_EQ("0000", n.get("out array"));
    n.set("value", "011111");
    EXPECT_EQ("0010", n.get("out array"));
    EXPECT_EQ("", n.messages()) << "sizes may differ";
}

TEST(SetArrayBitElement, EmptyValueIsFalse) {
    BitNode n("SetArrayBitElement");
    n.set("array", "111");
    n.integers("index", {0, 2});
    n.set("value", "");
    EXPECT_EQ("010", n.get("out array"));
}

TEST(SetArrayBitElement, IndicesOutOfRangeAreReported) {
    BitNode n("SetArrayBitElement");
    n.set("array", "000");
    n.set("value", "1");
    n.integers("index", {3, 1, -1});
    EXPECT_EQ("010", n.get("out array"));
    EXPECT_EQ("[error] index is out of range: 3\n[error] index is out of range: -1\n",
              n.messages());
}

TEST(SetArrayBitElement, LeavesItsInputAlone) {
    BitNode n("SetArrayBitElement");
    n.set("array", "000");
    n.set("value", "1");
    EXPECT_EQ("100", n.get("out array"));
    EXPECT_EQ("000", n.get("array"));
}

TEST(SetArrayBitElement, WorksInPlace) {
    BitNode n("SetArrayBitElement", "array", "out array");
    n.set("array", "000");
    n.set("value", "1");
    n.integers("index", {2});
    EXPECT_EQ("001", n.get("out array"));
    EXPECT_EQ("001", n.pin("b.bit").value()->asString());
}

TEST(SetArrayBitElement, ValuesThatAreTheResultAreReadBeforeItIsWritten) {
    LogicNet net;
    net.add("Bit", "b");
    net.add("SetArrayBitElement", "n");
    net.link("b.bit", "n.array");
    net.link("b.bit", "n.value");
    net.pin("n.array").addPassThrough(&net.pin("n.out array"));
    net.bits("b.in", {true, false, false});
    net.numbers<int32_t>("n.index", {1, 0, 2});
    EXPECT_EQ("010", net.text("n.out array"));
}

// ArrayBitBuildByIndex.

TEST(ArrayBitBuildByIndex, EndsBehindTheLargestIndex) {
    BitNode n("ArrayBitBuildByIndex");
    n.integers("index array", {0, 3});
    EXPECT_EQ("1001", n.get("mask"));
    n.integers("index array", {5, 1, 5});
    EXPECT_EQ("010001", n.get("mask"));
    n.integers("index array", {64});
    EXPECT_EQ(TM_String(64, '0') + "1", n.get("mask"));
    n.integers("index array", {2});
    EXPECT_EQ("001", n.get("mask")) << "nothing of the longer mask is left";
    EXPECT_EQ("", n.messages());
}

// One element more than an "Integer" can count.
TEST(ArrayBitBuildByIndex, LargestIndex) {
    BitNode n("ArrayBitBuildByIndex");
    n.integers("index array", {2147483647, 7});
    n.refresh("n.mask");
    const BitArrayValue& mask = n.as<BitArrayAttribute>("n.mask").bits();
    EXPECT_EQ(2147483648u, mask.size());
    EXPECT_EQ(2u, mask.count());
    n.add("ArrayBitInfo", "info");
    ASSERT_TRUE(n.link("n.mask", "info.in"));
    EXPECT_EQ("[1] 2147483647", n.text("info.size")) << "the nearest there is";
    EXPECT_EQ("[1] 2147483646", n.text("info.count false"));
    EXPECT_EQ("[1] 7", n.text("info.first true"));
    EXPECT_EQ("[1] 2147483647", n.text("info.last true"));
    n.add("ArrayIndexBuildFromMask", "positions");
    ASSERT_TRUE(n.link("n.mask", "positions.mask"));
    EXPECT_EQ("[1] 7,2147483647", n.text("positions.index"));
}

TEST(ArrayBitBuildByIndex, NoIndicesGiveNoMask) {
    BitNode n("ArrayBitBuildByIndex");
    n.integers("index array", {});
    EXPECT_EQ("", n.get("mask"));
    EXPECT_EQ("", n.messages());
}

TEST(ArrayBitBuildByIndex, NegativeIndicesAreReportedAndSkipped) {
    BitNode n("ArrayBitBuildByIndex");
    n.integers("index array", {-1, 2, lowest});
    EXPECT_EQ("001", n.get("mask"));
    EXPECT_EQ("[error] index is out of range: -1\n[error] index is out of range: -2147483648\n",
              n.messages());
    n.integers("index array", {-5});
    EXPECT_EQ("", n.get("mask"));
}

} // namespace

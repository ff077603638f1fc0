// SPDX-License-Identifier: Apache-2.0
// Elements of bit arrays by mask, without some positions and backwards, held against plain loops.
#include <gtest/gtest.h>

#include <algorithm>

#include "nodes/values/bits/bit_node.h"

namespace {

using namespace weft;
using sluice_tests::BitNode;
using sluice_tests::LogicNet;
using sluice_tests::randomDigits;
using sluice_tests::telltaleSizes;
using tidemark::TM_String;

// ArrayBitFilterByMask.

TM_String filtered(const TM_String& array, const TM_String& mask) {
    const auto set = static_cast<std::size_t>(std::count(mask.begin(), mask.end(), '1'));
    TM_String out;
    for (std::size_t i = 0; i < std::min(array.size(), mask.size()); ++i) {
        if (mask[i] == '1') out += array[i];
    }
    out.resize(std::min(set, array.size()), '0');
    return out;
}

TEST(ArrayBitFilterByMask, TakesWhereTheMaskIsSet) {
    BitNode n("ArrayBitFilterByMask");
    n.set("array", "1011");
    n.set("mask", "0110");
    EXPECT_EQ("01", n.get("out array"));
    n.set("mask", "0000");
    EXPECT_EQ("", n.get("out array"));
    n.set("mask", "1111");
    EXPECT_EQ("1011", n.get("out array"));
}

TEST(ArrayBitFilterByMask, SizesMayDiffer) {
    BitNode n("ArrayBitFilterByMask");
    n.set("array", "1011");
    n.set("mask", "101");
    EXPECT_EQ("11", n.get("out array"));
    n.set("mask", "");
    EXPECT_EQ("", n.get("out array"));
    n.set("array", "111");
    n.set("mask", "110011");
    EXPECT_EQ("110", n.get("out array")) << "set bits beyond the array find no element";
    n.set("array", "");
    EXPECT_EQ("", n.get("out array"));
    EXPECT_EQ("", n.messages());
}

TEST(ArrayBitFilterByMask, AgreesWithAPlainLoop) {
    std::mt19937 random(3);
    BitNode apart("ArrayBitFilterByMask");
    BitNode overArray("ArrayBitFilterByMask", "array", "out array");
    BitNode overMask("ArrayBitFilterByMask", "mask", "out array");
    for (const uint32_t arraySize : telltaleSizes()) {
        for (const uint32_t maskSize : telltaleSizes()) {
            for (const uint32_t percent : {0u, 3u, 50u, 97u, 100u}) {
                const TM_String array = randomDigits(random, arraySize);
                const TM_String mask = randomDigits(random, maskSize, percent);
                for (BitNode* n : {&apart, &overArray, &overMask}) {
                    n->set("array", array);
                    n->set("mask", mask);
                    ASSERT_EQ(filtered(array, mask), n->get("out array"))
                        << arraySize << " " << maskSize << " " << percent;
                }
            }
        }
    }
}

// ArrayBitRemoveIndex.

TEST(ArrayBitRemoveIndex, RemovesEachPositionOnce) {
    BitNode n("ArrayBitRemoveIndex");
    n.set("array", "10110");
    n.integers("index", {1, 1, 3});
    EXPECT_EQ("110", n.get("out array"));
    n.integers("index", {});
    EXPECT_EQ("10110", n.get("out array"));
    n.integers("index", {4, 3, 2, 1, 0});
    EXPECT_EQ("", n.get("out array"));
    EXPECT_EQ("", n.messages());
}

TEST(ArrayBitRemoveIndex, IndicesOutOfRangeAreReported) {
    BitNode n("ArrayBitRemoveIndex");
    n.set("array", "101");
    n.integers("index", {0, 3, -1});
    EXPECT_EQ("01", n.get("out array"));
    EXPECT_EQ("[error] index is out of range: 3\n[error] index is out of range: -1\n",
              n.messages());
}

TEST(ArrayBitRemoveIndex, AgreesWithAPlainLoop) {
    std::mt19937 random(4);
    BitNode apart("ArrayBitRemoveIndex");
    BitNode sharing("ArrayBitRemoveIndex", "array", "out array");
    for (const uint32_t size : telltaleSizes()) {
        if (size == 0) continue;
        const TM_String array = randomDigits(random, size);
        TM_String keep(size, '1');
        std::vector<int32_t> indices(random() % size);
        for (int32_t& index : indices) {
            index = static_cast<int32_t>(random() % size);
            keep[static_cast<std::size_t>(index)] = '0';
        }
        for (BitNode* n : {&apart, &sharing}) {
            n->set("array", array);
            n->integers("index", indices);
            ASSERT_EQ(filtered(array, keep), n->get("out array")) << size;
        }
    }
}

// ArrayBitReverse.

TEST(ArrayBitReverse, TurnsAnyLengthRound) {
    std::mt19937 random(5);
    BitNode apart("ArrayBitReverse");
    BitNode sharing("ArrayBitReverse", "array", "out array");
    for (uint32_t size = 0; size < 300; ++size) {
        const TM_String array = randomDigits(random, size);
        for (BitNode* n : {&apart, &sharing}) {
            n->set("array", array);
            ASSERT_EQ(TM_String(array.rbegin(), array.rend()), n->get("out array")) << size;
        }
    }
}

// More words than one stretch of work holds.
TEST(ArrayBitReverse, LongArrays) {
    std::mt19937 random(6);
    const TM_String array = randomDigits(random, (3u << 16) * 32 / 2 + 77);
    BitNode n("ArrayBitReverse");
    n.set("array", array);
    EXPECT_TRUE(n.get("out array") == TM_String(array.rbegin(), array.rend()));
    BitNode filter("ArrayBitFilterByMask");
    const TM_String mask = randomDigits(random, static_cast<uint32_t>(array.size()), 30);
    filter.set("array", array);
    filter.set("mask", mask);
    EXPECT_TRUE(filter.get("out array") == filtered(array, mask));
}

// ArrayIndexBuildFromMask.

TEST(ArrayIndexBuildFromMask, PositionsOfOnes) {
    BitNode n("ArrayIndexBuildFromMask", "mask");
    n.set("mask", "1010");
    EXPECT_EQ("[1] 0,2", n.get("index"));
    EXPECT_EQ("1010", n.get("through"));
    n.set("mask", "000");
    EXPECT_EQ("[1] ", n.get("index"));
    n.set("mask", "");
    EXPECT_EQ("[1] ", n.get("index"));
    EXPECT_EQ("", n.get("through"));
}

TEST(ArrayIndexBuildFromMask, AgreesWithAPlainLoop) {
    std::mt19937 random(7);
    BitNode n("ArrayIndexBuildFromMask", "mask");
    for (const uint32_t size : telltaleSizes()) {
        for (const uint32_t percent : {3u, 50u, 100u}) {
            const TM_String mask = randomDigits(random, size, percent);
            n.set("mask", mask);
            n.refresh("n.index");
            const Numeric& index = n.as<NumericAttribute>("n.index").numeric();
            std::vector<int32_t> expected;
            for (uint32_t i = 0; i < size; ++i) {
                if (mask[i] == '1') expected.push_back(static_cast<int32_t>(i));
            }
            const auto& values = index.values<int32_t>();
            EXPECT_EQ(expected.size(), index.size());
            ASSERT_EQ(expected, std::vector<int32_t>(values.begin(), values.end())) << size;
        }
    }
}

TEST(ArrayIndexBuildFromMask, ThroughIsTheInputsValueAndComputesNoIndex) {
    LogicNet net;
    net.add("Bit", "b");
    net.add("ArrayIndexBuildFromMask", "n");
    net.link("b.bit", "n.mask");
    net.bits("b.in", {true, true});
    EXPECT_EQ("11", net.text("n.through"));
    EXPECT_EQ(net.pin("b.bit").value(), net.pin("n.through").currentValue());
    EXPECT_FALSE(net.pin("n.index").isClean());
}

} // namespace

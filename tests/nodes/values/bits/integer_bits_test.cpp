// SPDX-License-Identifier: Apache-2.0
// Single bits of integers.
#include <gtest/gtest.h>

#include <limits>

#include "nodes/values/bits/bit_node.h"

namespace {

using namespace weft;
using sluice_tests::BitNode;
using tidemark::TM_String;

constexpr const char* longerIndices =
    "[warning] size of attribute 'bit index' is different than size of 'integer' (3, 1). Extra "
    "elements will be ignored\n";

// IntegerBitValue.

TEST(IntegerBitValue, CountsFromTheLeastSignificantBit) {
    BitNode n("IntegerBitValue");
    n.type("n.integer", "Integer");
    n.integers("integer", {5, 5, 5});
    n.integers("bit index", {0, 1, 2});
    EXPECT_EQ("101", n.get("bit"));
    EXPECT_EQ("", n.messages());
}

TEST(IntegerBitValue, ShortIndicesRepeatTheLast) {
    BitNode n("IntegerBitValue");
    n.type("n.integer", "Integer");
    n.integers("integer", {1, 2, 3, 4});
    n.integers("bit index", {0, 1});
    EXPECT_EQ("1110", n.get("bit"));
    n.integers("bit index", {});
    EXPECT_EQ("1010", n.get("bit")) << "no index counts as 0";
    EXPECT_EQ("", n.messages());
}

TEST(IntegerBitValue, LongIndicesAreCutWithAWarning) {
    BitNode n("IntegerBitValue");
    n.type("n.integer", "Integer");
    n.integers("integer", {5});
    n.integers("bit index", {0, 1, 2});
    EXPECT_EQ("1", n.get("bit"));
    EXPECT_EQ(longerIndices, n.messages());
}

TEST(IntegerBitValue, IndicesWrapAtTheWidth) {
    BitNode n("IntegerBitValue");
    n.type("n.integer", "Integer");
    n.integers("integer", {1, 1, -2147483647 - 1, -2147483647 - 1});
    n.integers("bit index", {32, 33, -1, 31});
    EXPECT_EQ("1011", n.get("bit"));
}

TEST(IntegerBitValue, SixtyFourBits) {
    BitNode n("IntegerBitValue");
    n.type("n.integer", "Integer64");
    n.numbers<int64_t>("n.integer", {int64_t(1) << 40, int64_t(1) << 40, -1, 1});
    n.integers("bit index", {40, 8, 63, 64});
    EXPECT_EQ("1011", n.get("bit"));
    n.numbers<int64_t>("n.integer", {std::numeric_limits<int64_t>::min(), 1});
    n.integers("bit index", {-1, -64});
    EXPECT_EQ("11", n.get("bit")) << "negative indices wrap too";
}

TEST(IntegerBitValue, ManyIntegers) {
    std::mt19937 random(15);
    BitNode n("IntegerBitValue");
    n.type("n.integer", "Integer");
    for (const uint32_t size : {0u, 1u, 31u, 32u, 33u, 100u}) {
        std::vector<int32_t> integers(size), indices(size);
        TM_String expected;
        for (uint32_t i = 0; i < size; ++i) {
            integers[i] = static_cast<int32_t>(random());
            indices[i] = static_cast<int32_t>(random() % 32);
            expected += (static_cast<uint32_t>(integers[i]) >> indices[i] & 1) != 0 ? '1' : '0';
        }
        n.integers("integer", integers);
        n.integers("bit index", indices);
        ASSERT_EQ(expected, n.get("bit")) << size;
    }
}

TEST(IntegerBitValue, WithoutATypeNothingHappens) {
    BitNode n("IntegerBitValue");
    EXPECT_EQ("0", n.get("bit"));
    EXPECT_EQ("[error] input 'integer' not specialized\n", n.messages());
}

// IntegerSetBitValue.

TEST(IntegerSetBitValue, SetsAndClears) {
    BitNode n("IntegerSetBitValue");
    n.type("n.integer", "Integer");
    n.integers("integer", {5});
    n.integers("bit index", {1});
    EXPECT_EQ("[1] 7", n.get("result")) << "the value is true by default";
    n.integers("integer", {-1});
    n.integers("bit index", {31});
    n.set("bit value", "0");
    EXPECT_EQ("[1] 2147483647", n.get("result"));
    n.integers("bit index", {-1});
    EXPECT_EQ("[1] 2147483647", n.get("result")) << "indices wrap at the width";
    n.integers("bit index", {32});
    EXPECT_EQ("[1] -2", n.get("result"));
    EXPECT_EQ("", n.messages());
}

TEST(IntegerSetBitValue, ShortInputsRepeatTheLast) {
    BitNode n("IntegerSetBitValue");
    n.type("n.integer", "Integer");
    n.integers("integer", {0, 0, 7, 7});
    n.integers("bit index", {0, 1});
    n.set("bit value", "10");
    EXPECT_EQ("[1] 1,0,5,5", n.get("result"));
    n.set("bit value", "");
    EXPECT_EQ("[1] 0,0,5,5", n.get("result"));
    n.integers("integer", {});
    EXPECT_EQ("[1] ", n.get("result"));
}

TEST(IntegerSetBitValue, LongInputsAreCutWithAWarning) {
    BitNode n("IntegerSetBitValue");
    n.type("n.integer", "Integer");
    n.integers("integer", {0});
    n.integers("bit index", {3, 1, 2});
    n.set("bit value", "10");
    EXPECT_EQ("[1] 8", n.get("result"));
    EXPECT_EQ(longerIndices +
                  TM_String("[warning] size of attribute 'bit value' is different than size of "
                            "'integer' (2, 1). Extra elements will be ignored\n"),
              n.messages());
}

TEST(IntegerSetBitValue, SixtyFourBits) {
    BitNode n("IntegerSetBitValue");
    n.type("n.integer", "Integer64");
    n.numbers<int64_t>("n.integer", {0, -1, 0});
    n.integers("bit index", {40, 63, 64});
    n.set("bit value", "101");
    EXPECT_EQ("[2] 1099511627776,9223372036854775807,1", n.get("result"));
}

TEST(IntegerSetBitValue, WorksInPlace) {
    BitNode n("IntegerSetBitValue");
    n.add("Integer", "i");
    ASSERT_TRUE(n.link("i.integer", "n.integer"));
    n.pin("n.integer").addAllowedPassThrough(&n.pin("n.result"));
    n.pin("n.integer").addPassThrough(&n.pin("n.result"));
    n.numbers<int32_t>("i.in", {4, 5});
    n.integers("bit index", {0});
    EXPECT_EQ("[1] 5,5", n.get("result"));
    EXPECT_EQ("[1] 5,5", n.pin("i.integer").value()->asString());
}

TEST(IntegerSetBitValue, WithoutATypeNothingHappens) {
    BitNode n("IntegerSetBitValue");
    n.refresh("n.result");
    EXPECT_EQ("[error] input 'integer' not specialized\n", n.messages());
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Bit arrays: sizes, words, counts and positions, compared with plain arrays of booleans.
#include "core/bit_array.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "core/limits.h"
#include "core/network_manager.h"
#include "core/node.h"
#include "core/string_value.h"

namespace {

using namespace weft;
using tidemark::TM_String;

class BitArrayTest : public testing::Test {
protected:
    void set(const TM_String& text) {
        bits_.resize(static_cast<uint32_t>(text.size()), false);
        for (uint32_t i = 0; i < text.size(); ++i) bits_.setBit(i, text[i] == '1');
    }

    NetworkManager manager_;
    Retained<BitArrayValue> holder_{new BitArrayValue(&manager_)};
    BitArrayValue& bits_ = *holder_;
};

TEST_F(BitArrayTest, FreshValueIsOneFalse) {
    EXPECT_EQ(1u, bits_.size());
    EXPECT_FALSE(bits_.testBit(0));
    EXPECT_EQ("0", bits_.asString());
    EXPECT_EQ(32u, bits_.bitCapacity());
    EXPECT_EQ(4u, bits_.estimatedSize());
    EXPECT_EQ(1u, bits_.checkSum());
}

TEST_F(BitArrayTest, TextIsOneCharacterPerElement) {
    set("101");
    EXPECT_EQ("101", bits_.asString());
    bits_.resize(0, false);
    EXPECT_EQ("", bits_.asString());
}

TEST_F(BitArrayTest, TextIsNotReadBack) {
    set("101");
    bits_.fromString("000000");
    EXPECT_EQ("101", bits_.asString());
}

TEST_F(BitArrayTest, PurgeLeavesNothing) {
    set("111");
    bits_.purge();
    EXPECT_EQ(0u, bits_.size());
    EXPECT_EQ(0u, bits_.bitCapacity());
    EXPECT_EQ(0u, bits_.estimatedSize());
    EXPECT_FALSE(bits_.valueAt(0));
    EXPECT_TRUE(bits_.none());
    EXPECT_EQ(-1, bits_.firstFalse());
    bits_.resize(2, true);
    EXPECT_EQ("11", bits_.asString());
}

TEST_F(BitArrayTest, ResizeFillsNewElementsWithinAndBeyondAWord) {
    set("101");
    bits_.resize(6, true);
    EXPECT_EQ("101111", bits_.asString());
    bits_.resize(3, true);
    bits_.resize(6, false);
    EXPECT_EQ("101000", bits_.asString());
    bits_.resize(70, true);
    EXPECT_EQ("101000" + TM_String(64, '1'), bits_.asString());
    EXPECT_EQ(3u, bits_.words().size());
    bits_.resize(32, false);
    bits_.resize(64, false);
    EXPECT_EQ("101000" + TM_String(26, '1') + TM_String(32, '0'), bits_.asString());
}

TEST_F(BitArrayTest, IndexPastTheEndRepeatsTheLastElement) {
    set("101");
    EXPECT_FALSE(bits_.valueAt(1));
    EXPECT_TRUE(bits_.valueAt(2));
    EXPECT_TRUE(bits_.valueAt(1000));
}

TEST_F(BitArrayTest, WholeWordOperationsIgnoreTheTail) {
    set("000");
    bits_.wordData()[0] |= 0xfffffff8u;
    EXPECT_EQ(0u, bits_.count());
    EXPECT_EQ(3u, bits_.countFalse());
    EXPECT_TRUE(bits_.none());
    EXPECT_FALSE(bits_.any());
    EXPECT_EQ(-1, bits_.firstTrue());
    EXPECT_EQ(-1, bits_.lastTrue());
    bits_.set(true);
    bits_.wordData()[0] &= 7u;
    EXPECT_EQ(-1, bits_.firstFalse());
    EXPECT_EQ(-1, bits_.lastFalse());
    EXPECT_EQ(3u, bits_.count());
}

TEST_F(BitArrayTest, AgreesWithPlainBooleans) {
    std::mt19937 random(7);
    for (const uint32_t size : {0u, 1u, 31u, 32u, 33u, 63u, 64u, 65u, 100u, 1000u}) {
        for (const unsigned odds : {0u, 1u, 50u, 99u, 100u}) {
            std::vector<bool> plain(size);
            bits_.resize(0, false);
            bits_.resize(size, random() % 2);
            for (uint32_t i = 0; i < size; ++i) {
                plain[i] = random() % 100 < odds;
                bits_.setBit(i, plain[i]);
            }
            const auto trues = std::count(plain.begin(), plain.end(), true);
            EXPECT_EQ(trues, bits_.count());
            EXPECT_EQ(size - trues, bits_.countFalse());
            EXPECT_EQ(trues > 0, bits_.any());
            for (const bool wanted : {true, false}) {
                const auto first = std::find(plain.begin(), plain.end(), wanted);
                const auto last = std::find(plain.rbegin(), plain.rend(), wanted);
                EXPECT_EQ(first == plain.end() ? -1 : first - plain.begin(),
                          wanted ? bits_.firstTrue() : bits_.firstFalse());
                EXPECT_EQ(last == plain.rend() ? -1 : plain.rend() - last - 1,
                          wanted ? bits_.lastTrue() : bits_.lastFalse());
            }
        }
    }
}

TEST_F(BitArrayTest, CopyTakesTheElementsOver) {
    set("1010");
    const Retained<BitArrayValue> copy(new BitArrayValue(&manager_));
    copy->copyFrom(&bits_);
    bits_.setBit(0, false);
    EXPECT_EQ("1010", copy->asString());
    copy->copyFrom(copy.get());
    EXPECT_EQ("1010", copy->asString());
    const Retained<StringValue> text(new StringValue(&manager_));
    copy->copyFrom(text.get());
    copy->copyFrom(nullptr);
    EXPECT_EQ("1010", copy->asString());
    bits_.purge();
    copy->copyFrom(&bits_);
    EXPECT_EQ(0u, copy->size());
}

TEST_F(BitArrayTest, NullMaskOfValuesWithoutNullsIsAllFalse) {
    const Retained<StringValue> text(new StringValue(&manager_));
    text->setSize(3);
    set("11111");
    text->nullMask(bits_);
    EXPECT_EQ("000", bits_.asString());
    text->setSize(0);
    text->nullMask(bits_);
    EXPECT_EQ(0u, bits_.size());
}

TEST_F(BitArrayTest, NullMaskIsAsLongAndAllFalse) {
    set("1101");
    const Retained<BitArrayValue> mask(new BitArrayValue(&manager_));
    bits_.nullMask(*mask);
    EXPECT_EQ("0000", mask->asString());
    EXPECT_EQ("1101", bits_.asString());
}

TEST_F(BitArrayTest, EstimatedSizeIsThatOfTheWords) {
    bits_.resize(1000, false);
    EXPECT_EQ(32u, bits_.words().size());
    EXPECT_GE(bits_.bitCapacity(), 1000u);
    EXPECT_EQ(0u, bits_.bitCapacity() % 32);
    EXPECT_EQ(bits_.bitCapacity() / 8, bits_.estimatedSize());
}

TEST_F(BitArrayTest, ElementLimitCountsBits) {
    tidemark::limits::set({.maxElements = 100});
    EXPECT_NO_THROW(bits_.resize(100, false));
    EXPECT_THROW(bits_.resize(101, false), std::bad_alloc);
    EXPECT_EQ(100u, bits_.size());
    EXPECT_TRUE(tidemark::limits::wasHit());
    tidemark::limits::set({});
}

TEST(BitArrayAttribute, IsABitAndReadsFirstAndLast) {
    NetworkManager manager;
    const Retained<Node> node(new Node(&manager, "n", nullptr));
    auto* pin = new BitArrayAttribute(&manager, "bit", node.get());
    auto* text = new StringAttribute(&manager, "text", node.get());
    node->addInputAttribute(pin);
    node->addInputAttribute(text);
    EXPECT_EQ("BitArrayAttribute", pin->className());
    EXPECT_EQ("\"Bit\"", pin->allowedSpecializationsText());
    EXPECT_EQ("Bit", pin->specialization());
    pin->ownBits().resize(2, false);
    pin->ownBits().setBit(1, true);
    EXPECT_FALSE(pin->firstBit());
    EXPECT_TRUE(pin->lastBit());
    pin->ownBits().purge();
    EXPECT_FALSE(pin->firstBit());
    EXPECT_FALSE(pin->lastBit());
    pin->ownBits().resize(1, true);
    text->connectTo(pin, nullptr);
    ASSERT_EQ(text->value(), pin->currentValue());
    EXPECT_FALSE(pin->firstBit()) << "a source of another class reads false";
    EXPECT_FALSE(pin->lastBit());
    pin->setPassThrough(true);
    EXPECT_EQ(nullptr, pin->bitsTarget());
    node->deleteIt();
}

} // namespace

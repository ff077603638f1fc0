// SPDX-License-Identifier: Apache-2.0
// Arrays that are pinned: their elements stay where they are.
#include "core/array.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using tidemark::Array;
using tidemark::PinnedArray;

class PinnedArrayTest : public testing::Test {
protected:
    PinnedArrayTest() {
        array.reserve(4);
        array.append(1);
        array.append(2);
        block = array.data();
        array.pin(true);
    }
    ~PinnedArrayTest() override {
        EXPECT_EQ(array.data(), block);
        EXPECT_TRUE(array.isPinned());
    }
    Array<int> array;
    const int* block = nullptr;
};

TEST_F(PinnedArrayTest, ChangesWithinItsCapacity) {
    array[0] = 7;
    array.append(3);
    array.resize(4);
    array.removeAt(1);
    const Array<int> other{5, 6, 7, 8};
    array = other;
    array.clear();
    EXPECT_TRUE(array.empty());
    EXPECT_EQ(array.capacity(), 4u);
}

TEST_F(PinnedArrayTest, RefusesToGrowBeyondIt) {
    EXPECT_THROW(array.resize(5), PinnedArray);
    EXPECT_THROW(array.reserve(5), PinnedArray);
    array.resize(4);
    EXPECT_THROW(array.append(5), PinnedArray);
    const Array<int> longer{1, 2, 3, 4, 5};
    EXPECT_THROW(array = longer, PinnedArray);
    EXPECT_EQ(array.size(), 4u);
}

TEST_F(PinnedArrayTest, RefusesToGiveItsMemoryAway) {
    Array<int> other{9};
    EXPECT_THROW(array.reset(), PinnedArray);
    EXPECT_THROW(array = std::move(other), PinnedArray);
    int buffer[1] = {0};
    EXPECT_THROW(array.borrow(buffer, 0, 1), PinnedArray);
    EXPECT_EQ(other.size(), 1u);
    const Array<int> taken(std::move(array));
    EXPECT_EQ(taken, (Array<int>{1, 2}));
    EXPECT_NE(taken.data(), block);
}

TEST_F(PinnedArrayTest, CopyIsNotPinned) {
    Array<int> copy(array);
    copy.resize(100);
    EXPECT_EQ(copy[1], 2);
    EXPECT_FALSE(copy.isPinned());
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Tests of the process limits.
#include "core/limits.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <new>

#include "core/array.h"

using namespace tidemark;

namespace {

// Puts the limits back to none.
class Limited {
public:
    explicit Limited(const limits::Limits& limits) { limits::set(limits); }
    ~Limited() { limits::set({}); }
};

} // namespace

TEST(Limits, NoneUnlessSet) {
    EXPECT_EQ(limits::current().maxElements, 0u);
    EXPECT_EQ(limits::current().maxMemory, 0u);
    EXPECT_EQ(limits::current().maxNodes, 0u);
    EXPECT_FALSE(limits::wasHit());
    EXPECT_NO_THROW(limits::checkElements(uint64_t(1) << 40, 64));
}

TEST(Limits, ElementsUpToTheLimitAreGranted) {
    const Limited limited({.maxElements = 1000});
    EXPECT_EQ(limits::current().maxElements, 1000u);
    EXPECT_NO_THROW(limits::checkElements(1000, 4));
    EXPECT_FALSE(limits::wasHit());
    EXPECT_THROW(limits::checkElements(1001, 4), std::bad_alloc);
    EXPECT_TRUE(limits::wasHit());
}

TEST(Limits, SettingForgetsThatOneWasHit) {
    const Limited limited({.maxElements = 10});
    EXPECT_THROW(limits::checkElements(11, 1), std::bad_alloc);
    limits::set({.maxElements = 20});
    EXPECT_FALSE(limits::wasHit());
    EXPECT_NO_THROW(limits::checkElements(11, 1));
}

TEST(Limits, LargeElementLimitIsKeptToo) {
    const Limited limited({.maxElements = 5000000});
    EXPECT_NO_THROW(limits::checkElements(5000000, 1));
    EXPECT_THROW(limits::checkElements(5000001, 1), std::bad_alloc);
}

TEST(Limits, ArraysAskBeforeTheyAllocate) {
    const Limited limited({.maxElements = 100});
    Array<float> values(100);
    EXPECT_THROW(values.resize(101), std::bad_alloc);
    EXPECT_EQ(values.size(), 100u);
    EXPECT_THROW(Array<int32_t>(200), std::bad_alloc);
}

TEST(Limits, SingleRequestBeyondMemoryIsRefused) {
    const Limited limited({.maxMemory = uint64_t(1) << 40});
    EXPECT_NO_THROW(limits::checkElements(uint64_t(1) << 20, 4));
    EXPECT_THROW(limits::checkElements(uint64_t(1) << 41, 1), std::bad_alloc);
    EXPECT_TRUE(limits::wasHit());
}

TEST(Limits, MemoryCountsWhatTheProcessHoldsAlready) {
    const uint64_t held = limits::residentBytes();
    ASSERT_GT(held, 0u);
    const Limited limited({.maxMemory = held + limits::largeRequest});
    EXPECT_THROW(limits::checkElements(held / 2 + 64 * limits::largeRequest, 1), std::bad_alloc);
}

TEST(Limits, SmallRequestsAreNotHeldAgainstMemory) {
    const Limited limited({.maxMemory = 1});
    EXPECT_NO_THROW(limits::checkElements(limits::largeRequest - 1, 1));
    EXPECT_THROW(limits::checkElements(limits::largeRequest, 1), std::bad_alloc);
}

TEST(Limits, SizesThatOverflowAreRefused) {
    const Limited limited({.maxMemory = uint64_t(1) << 30});
    EXPECT_THROW(limits::checkElements(UINT64_MAX / 16, 64), std::bad_alloc);
    EXPECT_THROW(limits::checkElements(uint64_t(1) << 58, 64), std::bad_alloc);
}

// SPDX-License-Identifier: Apache-2.0
// The generator of the nodes that make random values.
#include "nodes/values/random_steps.h"

#include <gtest/gtest.h>

namespace {

using tidemark::sluice::graph::RandomSteps;

TEST(RandomSteps, FirstStatesOfSeedZeroAndOne) {
    RandomSteps zero(0);
    EXPECT_EQ(0x3f1e269cu, zero.next());
    EXPECT_EQ(0x3995114bu, zero.next());
    EXPECT_EQ(0x3e37b62eu, zero.next());
    RandomSteps one(1);
    EXPECT_EQ(0x12a28689u, one.next());
    EXPECT_EQ(0x13ab5e54u, one.next());
    EXPECT_EQ(0xb9ec35a3u, one.next());
}

TEST(RandomSteps, NegativeSeedCountsAsUnsigned) {
    RandomSteps steps(-1);
    EXPECT_FLOAT_EQ(0.991391838f, static_cast<float>(steps.next() & 0xffffffu) * 0x1p-24f);
}

} // namespace

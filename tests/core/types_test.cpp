// SPDX-License-Identifier: Apache-2.0
// Tests of what arrays of the value records hold before anything is written.
#include "core/types.h"

#include <gtest/gtest.h>

using namespace tidemark;

TEST(Types, NewElementsHoldTheNeutralValue) {
    EXPECT_EQ(Array<Vector3<float>>(1)[0], Vector3<float>(0, 0, 0));
    EXPECT_EQ(Array<Color4<float>>(1)[0], Color4<float>(0, 0, 0, 1));
    EXPECT_EQ(Array<Quaternion<float>>(1)[0], (Quaternion<float>{0, 0, 0, 1}));
    EXPECT_EQ(Array<Matrix4<float>>(1)[0], Matrix4<float>());
    EXPECT_EQ(Array<Matrix4<float>>(1)[0][3][3], 1.0f);
    EXPECT_EQ(Array<float>(1)[0], 0.0f);
}

TEST(Types, QuaternionIsStoredXyzw) {
    const Quaternion<float> q{1, 2, 3, 4};
    const float* storage = &q.x;
    EXPECT_EQ(storage[3], q.w);
    EXPECT_EQ(sizeof(q), 4 * sizeof(float));
}

TEST(Types, TheRecordsCountAsPayload) {
    EXPECT_TRUE(isPayloadElement<Vector3<float>>);
    EXPECT_TRUE(isPayloadElement<Color4<float>>);
    EXPECT_TRUE(isPayloadElement<Quaternion<float>>);
    EXPECT_TRUE(isPayloadElement<Matrix4<float>>);
    EXPECT_FALSE(isPayloadElement<void*>);
}

// SPDX-License-Identifier: Apache-2.0
// Formulas on quaternions.
#include "nodes/values/vectors/quaternion_math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace tidemark::sluice::graph::vectors;
using Q = tidemark::Quaternion<float>;
using Vector = tidemark::Vector3<float>;

const Q identity;
const Q zero(0, 0, 0, 0);
const Q quarterAboutZ(0, 0, 0.70710678f, 0.70710678f);

void expectNear(const Q& expected, const Q& actual, float tolerance = 1e-6f) {
    EXPECT_NEAR(expected.x, actual.x, tolerance);
    EXPECT_NEAR(expected.y, actual.y, tolerance);
    EXPECT_NEAR(expected.z, actual.z, tolerance);
    EXPECT_NEAR(expected.w, actual.w, tolerance);
}

float lengthOf(const Q& q) { return std::sqrt(quaternionDot(q, q)); }

TEST(QuaternionMath, UnitOfZeroIsTheIdentity) {
    EXPECT_EQ(identity, unitQuaternion(zero));
    expectNear({0.5f, -0.5f, 0.5f, -0.5f}, unitQuaternion({3, -3, 3, -3}));
    EXPECT_EQ(Q(0, 0, 0, 1), unitQuaternion({0, 0, 0, 3e38f}));
    EXPECT_EQ(Q(1, 0, 0, 0), unitQuaternion({1e-42f, 0, 0, 0}));
}

TEST(QuaternionMath, InverseOfZeroIsZero) {
    EXPECT_EQ(Q(0, 0, 0, 0.5f), inverseQuaternion({0, 0, 0, 2}));
    EXPECT_EQ(zero, inverseQuaternion(zero));
    EXPECT_EQ(Q(-0.1f, 0.1f, -0.7f, 0.7f), inverseQuaternion({0.1f, -0.1f, 0.7f, 0.7f}));
    EXPECT_FALSE(std::signbit(inverseQuaternion({0, 0, 0, 2}).x));
}

TEST(QuaternionMath, ConjugateAndNegativeWithoutNegativeZeros) {
    EXPECT_EQ(Q(-1, 2, -3, 4), conjugateOf({1, -2, 3, 4}));
    EXPECT_EQ(Q(-1, 2, -3, -4), negativeOf({1, -2, 3, 4}));
    EXPECT_FALSE(std::signbit(conjugateOf(identity).x));
    EXPECT_FALSE(std::signbit(negativeOf(identity).z));
    EXPECT_TRUE(std::isnan(negativeOf({NAN, 0, 0, 0}).x));
}

TEST(QuaternionMath, SlerpKeepsItsPace) {
    expectNear({0, 0, 0.38268343f, 0.92387953f}, slerped(identity, quarterAboutZ, 0.5f));
    expectNear({0, 0, 0.19509032f, 0.98078528f}, slerped(identity, quarterAboutZ, 0.25f));
    expectNear(identity, slerped(identity, quarterAboutZ, 0));
    expectNear(quarterAboutZ, slerped(identity, quarterAboutZ, 1));
    expectNear({0, 0, 1, 0}, slerped(identity, quarterAboutZ, 2)); // goes on outside
}

TEST(QuaternionMath, SlerpTakesTheShorterWay) {
    const Q turned = negativeOf(quarterAboutZ);
    expectNear({0, 0, 0.38268343f, 0.92387953f}, slerped(identity, turned, 0.5f));
    EXPECT_EQ(identity, slerped(identity, negativeOf(identity), 0.5f));
}

TEST(QuaternionMath, SlerpOfNearlyEqualIsNormalized) {
    const Q near = quaternionOfAxisAngle({0, 1, 0}, 0.5f);
    const Q half = slerped(identity, near, 0.5f);
    expectNear(quaternionOfAxisAngle({0, 1, 0}, 0.25f), half, 1e-7f);
    EXPECT_NEAR(1, lengthOf(half), 1e-7f);
    expectNear(half, slerped(identity, negativeOf(near), 0.5f), 1e-7f);
    EXPECT_EQ(identity, slerped(identity, identity, 0.3f));
}

// 3.6 degrees between the rotations is where chord and arc meet: cosine 0.9995 at 1.81.
TEST(QuaternionMath, SlerpIsContinuousWhereTheChordTakesOver) {
    const Q below = slerped(identity, quaternionOfAxisAngle({0, 0, 1}, 3.62f), 0.3f);
    const Q above = slerped(identity, quaternionOfAxisAngle({0, 0, 1}, 3.63f), 0.3f);
    expectNear(quaternionOfAxisAngle({0, 0, 1}, 3.62f * 0.3f), below, 1e-6f);
    expectNear(quaternionOfAxisAngle({0, 0, 1}, 3.63f * 0.3f), above, 1e-6f);
}

TEST(QuaternionMath, AxisAngle) {
    expectNear(quarterAboutZ, quaternionOfAxisAngle({0, 0, 1}, 90));
    expectNear(quarterAboutZ, quaternionOfAxisAngle({0, 0, 1e-30f}, 90));
    EXPECT_EQ(Q(0, 1, 0, 0), quaternionOfAxisAngle({0, 7, 0}, 180));
    EXPECT_EQ(identity, quaternionOfAxisAngle({0, 0, 0}, 90));
    EXPECT_EQ(identity, quaternionOfAxisAngle({0, 1, 0}, 0));
    EXPECT_FALSE(std::signbit(quaternionOfAxisAngle({0, -1, 0}, 0).y));
    EXPECT_TRUE(
        std::isnan(quaternionOfAxisAngle({0, 1, 0}, std::numeric_limits<float>::infinity()).w));
}

TEST(QuaternionMath, AxisAndAngleBack) {
    EXPECT_EQ(Vector(0, 0, 1), axisOf(quarterAboutZ));
    EXPECT_EQ(90.0f, degreesOf(quarterAboutZ));
    EXPECT_EQ(Vector(0, 0, 1), axisOf({0, 0, 5, 5}));
    EXPECT_EQ(90.0f, degreesOf({0, 0, 5, 5}));
    EXPECT_EQ(270.0f, degreesOf({0, 0, 1, -1}));
    EXPECT_EQ(180.0f, degreesOf({1, 0, 0, 0}));
}

TEST(QuaternionMath, WhereNothingTurnsTheAxisIsX) {
    for (const Q& q : {identity, zero, Q(0, 0, 0, -1)}) {
        EXPECT_EQ(Vector(1, 0, 0), axisOf(q));
        EXPECT_EQ(0.0f, degreesOf(q));
    }
}

TEST(QuaternionMath, SmallAnglesSurvive) {
    const Q q = quaternionOfAxisAngle({1, 0, 0}, 1e-5f);
    EXPECT_FLOAT_EQ(1e-5f, degreesOf(q));
    EXPECT_EQ(Vector(1, 0, 0), axisOf(q));
}

} // namespace

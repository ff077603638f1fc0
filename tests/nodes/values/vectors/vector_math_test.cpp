// SPDX-License-Identifier: Apache-2.0
// Formulas on vectors, and sines and cosines of degrees.
#include "nodes/values/vectors/vector_math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "nodes/values/vectors/angles.h"

namespace {

using namespace tidemark::sluice::graph::vectors;
using Vector = tidemark::Vector3<float>;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr auto pi = std::numbers::pi_v<float>;
const Vector zero(0.0f);

TEST(VectorMath, LengthsOfExtremeVectors) {
    EXPECT_EQ(5.0f, lengthOf({3, 4, 0}));
    EXPECT_EQ(5e30f, lengthOf({3e30f, 0, 4e30f}));
    EXPECT_EQ(5e-40f, lengthOf({3e-40f, 4e-40f, 0}));
    EXPECT_EQ(infinity, lengthOf({0, -infinity, 1}));
    EXPECT_EQ(29.0f, squaredLengthOf({2, -3, 4}));
    EXPECT_EQ(infinity, squaredLengthOf({3e30f, 0, 0}));
}

TEST(VectorMath, UnitVectorKeepsZero) {
    EXPECT_EQ(zero, unitVector(zero));
    EXPECT_EQ(Vector(0.6f, 0, -0.8f), unitVector({3, 0, -4}));
    EXPECT_EQ(Vector(0, 1, 0), unitVector({0, 1e-42f, 0}));
    EXPECT_EQ(Vector(0, 0, -1), unitVector({0, 0, -3e38f}));
    EXPECT_TRUE(std::isnan(unitVector({infinity, 0, 0}).x));
}

TEST(VectorMath, DistanceDoesNotOverflow) {
    EXPECT_EQ(13.0f, distanceBetween({1, 2, 3}, {4, 6, 15}));
    EXPECT_EQ(3e38f, distanceBetween({1.5e38f, 0, 0}, {-1.5e38f, 0, 0}));
    EXPECT_EQ(0.0f, distanceBetween(zero, zero));
}

TEST(VectorMath, AngleIsRight) {
    EXPECT_FLOAT_EQ(0.785398163f, angleBetween({1, 0, 0}, {1, 1, 0}));
    EXPECT_EQ(pi / 2, angleBetween({0, 2, 0}, {0, 0, 1e-20f}));
    EXPECT_EQ(pi, angleBetween({1, 2, 3}, {-2, -4, -6}));
    EXPECT_EQ(0.0f, angleBetween({1, 2, 3}, {2, 4, 6}));
    EXPECT_FLOAT_EQ(1e-6f, angleBetween({1, 0, 0}, {1, 1e-6f, 0})) << "the cosine is 1 in float";
}

TEST(VectorMath, AngleToZeroIsZero) {
    EXPECT_EQ(0.0f, angleBetween(zero, {1, 2, 3}));
    EXPECT_EQ(0.0f, angleBetween({-1, -2, -3}, zero));
    EXPECT_EQ(0.0f, angleBetween({-0.0f, 0, 0}, {1, 0, 0}));
    EXPECT_EQ(0.0f, angleBetween(zero, zero));
    EXPECT_TRUE(std::isnan(angleBetween({NAN, 0, 0}, {1, 0, 0})));
}

TEST(VectorMath, Projection) {
    EXPECT_EQ(Vector(2, 0, 0), projectedOnto({2, 3, 0}, {5, 0, 0}));
    EXPECT_EQ(Vector(1, 1, 0), projectedOnto({2, 0, 7}, {-3, -3, 0}));
    EXPECT_EQ(zero, projectedOnto({2, 3, 0}, zero));
    EXPECT_EQ(Vector(2, 0, 0), projectedOnto({2, 3, 0}, {1e-40f, 0, 0}));
    EXPECT_EQ(Vector(2, 0, 0), projectedOnto({2, 3, 0}, {3e38f, 0, 0}));
}

TEST(VectorMath, ParallelWithoutRegardOfDirection) {
    EXPECT_TRUE(areParallel({1, 2, 3}, {-2, -4, -6}));
    EXPECT_FALSE(areParallel({1, 0, 0}, {1, 0.001f, 0}));
    EXPECT_TRUE(areParallel({1, 0, 0}, {1, 0.0003f, 0})) << "squared 9e-8";
    EXPECT_FALSE(areParallel({1, 0, 0}, {1, 0.0004f, 0})) << "squared 1.6e-7";
    EXPECT_TRUE(areParallel({1e20f, 1e20f, 0}, {1e20f, 1e20f, 0}));
    EXPECT_FALSE(areParallel({NAN, 0, 0}, {1, 0, 0}));
}

TEST(VectorMath, PerpendicularByTheDotProduct) {
    EXPECT_TRUE(arePerpendicular({1, 0, 0}, {0, 5, 5}));
    EXPECT_TRUE(arePerpendicular({1, 0, 0}, {-1.19e-7f, 1, 0}));
    EXPECT_FALSE(arePerpendicular({1, 0, 0}, {-1.2e-7f, 1, 0}));
    EXPECT_FALSE(arePerpendicular({1, 0, 0}, {NAN, 1, 0}));
}

// Exactly the single-precision epsilon is not below it.
TEST(VectorMath, BoundOfBothIsTheEpsilon) {
    constexpr float epsilon = std::numeric_limits<float>::epsilon();
    EXPECT_FALSE(arePerpendicular({1, 0, 0}, {epsilon, 1, 0}));
    EXPECT_TRUE(arePerpendicular({1, 0, 0}, {std::nextafter(epsilon, 0.0f), 1, 0}));
    constexpr float half = 0x1p-12f; // of two equal parts of the cross product, squared
    EXPECT_FALSE(areParallel({1, 0, 0}, {1, half, half}));
    EXPECT_TRUE(areParallel({1, 0, 0}, {1, half, std::nextafter(half, 0.0f)}));
}

TEST(VectorMath, ShortVectorsAreBoth) {
    EXPECT_TRUE(areParallel(zero, zero));
    EXPECT_TRUE(arePerpendicular(zero, zero));
    EXPECT_TRUE(areParallel({1e-4f, 0, 0}, {0, 1e-4f, 0}));
    EXPECT_TRUE(arePerpendicular({1e-4f, 0, 0}, {0, 1e-4f, 0}));
}

TEST(Angles, ExactAtQuarters) {
    const double expected[][2] = {{0, 1}, {1, 0}, {0, -1}, {-1, 0}};
    for (int quarter = -9; quarter <= 9; ++quarter) {
        const auto [sine, cosine] = sineCosineOfDegrees(90.0 * quarter);
        EXPECT_EQ(expected[quarter & 3][0], sine) << quarter;
        EXPECT_EQ(expected[quarter & 3][1], cosine) << quarter;
    }
    EXPECT_EQ(1.0, sineCosineOfDegrees(90 + 360.0 * 1e12).sine);
}

TEST(Angles, NearTheLibrary) {
    for (double degrees = -720; degrees <= 720; degrees += 7.3) {
        const auto [sine, cosine] = sineCosineOfDegrees(degrees);
        EXPECT_NEAR(std::sin(degrees / degreesPerRadian), sine, 4e-15) << degrees;
        EXPECT_NEAR(std::cos(degrees / degreesPerRadian), cosine, 4e-15) << degrees;
    }
    EXPECT_TRUE(std::isnan(sineCosineOfDegrees(std::numeric_limits<double>::infinity()).sine));
    EXPECT_TRUE(std::isnan(sineCosineOfDegrees(NAN).cosine));
}

TEST(Angles, SettledHasNoNegativeZero) {
    EXPECT_FALSE(std::signbit(settled(-0.0)));
    EXPECT_EQ(-1.5f, settled(-1.5));
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// The curves by themselves: formulas, ends, exact passage through the points, even steps.
#include "nodes/values/arrays/interpolation_curves.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using namespace tidemark::sluice::graph;
using tidemark::Color4;
using tidemark::Matrix4;
using tidemark::Vector3;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

float hermite(std::vector<float> points, float t, float tension = 0, float bias = 0) {
    return HermiteCurve<float>(points, tension, bias).at(curvePosition(t, points.size()));
}

float bezier(std::vector<float> points, std::vector<float> tangents, float t, float influence) {
    return BezierCurve<float>(points, tangents, influence).at(curvePosition(t, points.size()));
}

TEST(CurvePosition, SharesTheParameterEvenly) {
    const auto expect = [](float t, std::size_t points, uint32_t segment, float fraction) {
        const CurvePosition position = curvePosition(t, points);
        EXPECT_EQ(segment, position.segment) << t;
        EXPECT_EQ(fraction, position.fraction) << t;
    };
    expect(0, 5, 0, 0);
    expect(0.125f, 5, 0, 0.5f);
    expect(0.25f, 5, 1, 0);
    expect(0.9375f, 5, 3, 0.75f);
    expect(1, 5, 4, 0);
    expect(0.7f, 1, 0, 0);
}

TEST(CurvePosition, IsHeldOnTheCurve) {
    for (const float t : {-1.0f, -0.0f, -infinity, notANumber}) {
        EXPECT_EQ(0u, curvePosition(t, 4).segment) << t;
        EXPECT_EQ(0.0f, curvePosition(t, 4).fraction) << t;
    }
    for (const float t : {1.5f, 3e38f, infinity}) {
        EXPECT_EQ(3u, curvePosition(t, 4).segment) << t;
        EXPECT_EQ(0.0f, curvePosition(t, 4).fraction) << t;
    }
    EXPECT_LT(curvePosition(std::nextafter(1.0f, 0.0f), 2147483647).segment, 2147483646u);
}

TEST(LinearlyBetween, GoesStraightOnUnlessHeld) {
    EXPECT_EQ(15, linearlyBetween(0, 10, 1.5f));
    EXPECT_EQ(10, heldBetween(0, 10, 1.5f));
    EXPECT_EQ(0, heldBetween(0, 10, -1));
    EXPECT_EQ(0, heldBetween(10, 0, 2));
    EXPECT_EQ(2.5f, heldBetween(0, 10, 0.25f));
    EXPECT_TRUE(std::isnan(heldBetween(0, 10, notANumber)));
}

TEST(HermiteCurve, WorkedExamples) {
    const std::vector<float> squares = {0, 1, 4, 9};
    struct Row {
        float t, cubic, tight, biased, biasedBack, loose;
    };
    for (const Row& row : {Row{0.25f, 0.5859375f, 0.84375f, 0.703125f, 0.46875f, 0.328125f},
                           Row{0.5f, 2.25f, 2.5f, 2.25f, 2.25f, 2.0f},
                           Row{0.75f, 5.2265625f, 4.78125f, 4.96875f, 5.484375f, 5.671875f}}) {
        EXPECT_EQ(row.cubic, hermite(squares, row.t));
        EXPECT_EQ(row.tight, hermite(squares, row.t, 1, 0));
        EXPECT_EQ(row.biased, hermite(squares, row.t, 0, 1));
        EXPECT_EQ(row.biasedBack, hermite(squares, row.t, 0, -1));
        EXPECT_EQ(row.loose, hermite(squares, row.t, -1, 0));
    }
    EXPECT_EQ(2.03125f, hermite({0, 10}, 0.25f));
    EXPECT_EQ(1.5625f, hermite({0, 10}, 0.25f, 1, 0));
    EXPECT_EQ(0.375f, hermite({0, 1, 3}, 0.25f));
    EXPECT_EQ(1.0f, hermite({0, 1, 3}, 0.5f));
}

// The polynomial from its four conditions: values and tangents at both ends.
double polynomial(double y0, double y1, double y2, double y3, double s, double tension,
                  double bias) {
    const double m1 = (1 - tension) * ((1 + bias) * (y1 - y0) + (1 - bias) * (y2 - y1)) / 2;
    const double m2 = (1 - tension) * ((1 + bias) * (y2 - y1) + (1 - bias) * (y3 - y2)) / 2;
    const double a = 2 * y1 - 2 * y2 + m1 + m2;
    const double b = -3 * y1 + 3 * y2 - 2 * m1 - m2;
    return ((a * s + b) * s + m1) * s + y1;
}

TEST(HermiteCurve, IsThePolynomialOfItsEndsAndTangents) {
    const std::vector<float> points = {0.3f, -1.7f, 2.9f, 0.1f};
    for (const float tension : {-1.0f, 0.0f, 0.4f}) {
        for (const float bias : {-0.7f, 0.0f, 1.0f}) {
            const HermiteCurve<float> curve(points, tension, bias);
            for (float s = 0; s < 1; s += 0.0625f) {
                EXPECT_NEAR(polynomial(0.3, -1.7, 2.9, 0.1, s, tension, bias), curve.at({1, s}),
                            2e-6)
                    << s;
            }
        }
    }
}

TEST(HermiteCurve, PassesExactlyThroughItsPoints) {
    const std::vector<float> points = {0.1f, 1e6f, -3.3f, 7e-5f, 0.7f};
    for (uint32_t k = 0; k < points.size(); ++k) {
        const float t = static_cast<float>(k) / 4;
        EXPECT_EQ(points[k], hermite(points, t, 0.3f, -0.2f));
        EXPECT_EQ(points[k], bezier(points, {0.9f}, t, 0.4f));
    }
    EXPECT_EQ(points[0], hermite(points, -3));
    EXPECT_EQ(points[4], hermite(points, 9));
}

TEST(HermiteCurve, OnePointAndEqualPointsGiveThatPoint) {
    for (float t = -0.5f; t < 1.5f; t += 0.01f) {
        EXPECT_EQ(0.1f, hermite({0.1f}, t));
        EXPECT_EQ(0.1f, hermite({0.1f, 0.1f, 0.1f}, t, 0.7f, 0.3f));
        EXPECT_EQ(0.1f, bezier({0.1f}, {0}, t, 1));
    }
}

TEST(HermiteCurve, EveryComponentForItself) {
    const std::vector<Vector3<float>> points = {{0, 0, 5}, {1, 10, 5}, {4, 20, 5}, {9, 30, 5}};
    const HermiteCurve<Vector3<float>> curve(points, 0, 0);
    const Vector3<float> middle = curve.at(curvePosition(0.5f, 4));
    EXPECT_EQ((Vector3<float>{2.25f, 15, 5}), middle);
    const std::vector<Matrix4<float>> matrices = {Matrix4<float>(0.0f), Matrix4<float>(10.0f)};
    EXPECT_EQ(Matrix4<float>(2.03125f),
              HermiteCurve<Matrix4<float>>(matrices, 0, 0).at(curvePosition(0.25f, 2)));
}

TEST(BezierCurve, WorkedExamples) {
    constexpr float third = 1.0f / 3.0f;
    EXPECT_FLOAT_EQ(1.84375f, bezier({0, 10}, {3, 3}, 0.25f, third));
    EXPECT_FLOAT_EQ(5, bezier({0, 10}, {3, 3}, 0.5f, third));
    EXPECT_EQ(1.5625f, bezier({0, 10}, {3, 3}, 0.25f, 0));
    EXPECT_EQ(2.40625f, bezier({0, 10}, {3, 3}, 0.25f, 1));
    EXPECT_EQ(bezier({0, 10, 5}, {3, 2, 2}, 0.9f, 1), bezier({0, 10, 5}, {3, 2}, 0.9f, 1))
        << "the last tangent repeats";
    EXPECT_EQ(bezier({0, 10}, {3, 2}, 0.4f, 1), bezier({0, 10}, {3, 2, 77}, 0.4f, 1));
}

TEST(BezierCurve, IsTheBernsteinForm) {
    for (double s = 0; s < 1; s += 0.0625) {
        const double r = 1 - s;
        const double expected =
            r * r * r * 2 + 3 * r * r * s * (2 + 0.5) + 3 * r * s * s * (-4 - 1.5) + s * s * s * -4;
        EXPECT_NEAR(expected, bezier({2, -4}, {1, 3}, static_cast<float>(s), 0.5f), 2e-6) << s;
    }
}

TEST(DistanceBetween, GoesOverAllComponents) {
    EXPECT_EQ(7, distanceBetween(3.0f, -4.0f));
    EXPECT_EQ(3, distanceBetween(Vector3<float>(1, 1, 1), Vector3<float>(2, 3, 3)));
    EXPECT_EQ(2, distanceBetween(Color4<float>(0, 0, 0, 0), Color4<float>(1, 1, 1, 1)));
    EXPECT_EQ(8, distanceBetween(Matrix4<float>(1.0f), Matrix4<float>(3.0f)));
    EXPECT_EQ(3e38f, distanceBetween(Vector3<float>(0, 0, 0), Vector3<float>(3e38f, 0, 0)));
}

TEST(ArcLengthTable, FindsPlacesByDistance) {
    const std::vector<float> lengths = {0, 1, 1, 4, 8}; // two steps on each of two segments
    const ArcLengthTable table(lengths, 2);
    ASSERT_TRUE(table.isUsable());
    const auto along = [&](float t) {
        const CurvePosition position = table.at(t);
        return static_cast<float>(position.segment) + position.fraction;
    };
    EXPECT_EQ(0, along(0));
    EXPECT_EQ(0.25f, along(0.0625f));
    EXPECT_EQ(1, along(0.125f)) << "beyond the step of no length";
    EXPECT_EQ(1.25f, along(0.3125f));
    EXPECT_EQ(1.5f, along(0.5f));
    EXPECT_EQ(1.75f, along(0.75f));
    EXPECT_EQ(2, along(1));
    EXPECT_EQ(2, along(7));
    EXPECT_EQ(0, along(-1));
    EXPECT_EQ(0, along(notANumber));
}

TEST(ArcLengthTable, NeedsALength) {
    EXPECT_FALSE(ArcLengthTable(std::vector<float>{0, 0, 0}, 1).isUsable());
    EXPECT_FALSE(ArcLengthTable(std::vector<float>{0, notANumber}, 1).isUsable());
    EXPECT_FALSE(ArcLengthTable(std::vector<float>{0, infinity}, 1).isUsable());
    EXPECT_TRUE(ArcLengthTable(std::vector<float>{0, 1e-30f}, 1).isUsable());
}

} // namespace

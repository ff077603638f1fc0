// SPDX-License-Identifier: Apache-2.0
// Hue, saturation and value, both ways.
#include "nodes/values/vectors/color_math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace tidemark::sluice::graph::vectors;
using Color = tidemark::Color4<float>;
using Vector = tidemark::Vector3<float>;

constexpr float infinity = std::numeric_limits<float>::infinity();

void expectColor(const Color& expected, const Color& actual) {
    EXPECT_NEAR(expected.r, actual.r, 1e-6f);
    EXPECT_NEAR(expected.g, actual.g, 1e-6f);
    EXPECT_NEAR(expected.b, actual.b, 1e-6f);
    EXPECT_EQ(expected.a, actual.a);
}

TEST(ColorMath, HsvOfColors) {
    EXPECT_EQ(Vector(0, 1, 1), hsvOf({1, 0, 0, 1}));
    EXPECT_EQ(Vector(120, 1, 1), hsvOf({0, 1, 0, 1}));
    EXPECT_EQ(Vector(240, 1, 1), hsvOf({0, 0, 1, 0}));
    EXPECT_EQ(Vector(60, 1, 1), hsvOf({1, 1, 0, 1}));
    EXPECT_EQ(Vector(330, 1, 1), hsvOf({1, 0, 0.5f, 1}));
    EXPECT_EQ(Vector(300, 0.5f, 2), hsvOf({2, 1, 2, 1}));
    const Vector hsv = hsvOf({0.2f, 0.4f, 0.6f, 1});
    EXPECT_NEAR(210, hsv.x, 1e-4f);
    EXPECT_NEAR(2.0f / 3, hsv.y, 1e-6f);
    EXPECT_EQ(0.6f, hsv.z);
}

TEST(ColorMath, GreyHasNeitherHueNorSaturation) {
    EXPECT_EQ(Vector(0, 0, 0.5f), hsvOf({0.5f, 0.5f, 0.5f, 1}));
    EXPECT_EQ(Vector(0, 0, 0), hsvOf({0, 0, 0, 1}));
    EXPECT_EQ(0.0f, saturationOf({0, -1, -2, 1})) << "largest of the three is 0";
}

TEST(ColorMath, HueStaysWithinTheCircle) {
    for (const float blue : {1e-30f, 1e-7f, 0.25f, 0.999999f}) {
        const float hue = hueOf({1, 0, blue, 1});
        EXPECT_GE(hue, 300.0f);
        EXPECT_LE(hue, 360.0f);
    }
}

TEST(ColorMath, ColorsOfHsv) {
    expectColor({0.2f, 0.4f, 0.6f, 1}, colorOfHsv(210, 2.0f / 3, 0.6f));
    expectColor({0.8f, 0.4f, 0.6f, 1}, colorOfHsv(330, 0.5f, 0.8f));
    const float hues[] = {0, 60, 120, 180, 240, 300};
    const Color pure[] = {{1, 0, 0, 1}, {1, 1, 0, 1}, {0, 1, 0, 1},
                          {0, 1, 1, 1}, {0, 0, 1, 1}, {1, 0, 1, 1}};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(pure[i], colorOfHsv(hues[i], 1, 1)) << hues[i];
}

TEST(ColorMath, HuesRepeat) {
    const Color red(1, 0, 0, 1);
    EXPECT_EQ(red, colorOfHsv(720, 1, 1));
    EXPECT_EQ(red, colorOfHsv(360, 1, 1));
    EXPECT_EQ(red, colorOfHsv(-360, 1, 1));
    EXPECT_EQ(red, colorOfHsv(-1e-30f, 1, 1)) << "rounds up to the whole circle";
    expectColor({1, 0, 0.5f, 1}, colorOfHsv(-30, 1, 1));
    EXPECT_EQ(colorOfHsv(std::fmod(3e38f, 360.0f), 1, 1), colorOfHsv(3e38f, 1, 1));
}

TEST(ColorMath, HueThatIsNotFiniteIsRed) {
    for (const float hue : {infinity, -infinity, std::nanf("")}) {
        EXPECT_EQ(Color(1, 0, 0, 1), colorOfHsv(hue, 1, 1));
    }
}

TEST(ColorMath, WithoutValueBlackWithoutSaturationGrey) {
    EXPECT_EQ(Color(0, 0, 0, 1), colorOfHsv(90, 1, -1));
    EXPECT_EQ(Color(0, 0, 0, 1), colorOfHsv(90, -1, 0));
    EXPECT_EQ(Color(0.3f, 0.3f, 0.3f, 1), colorOfHsv(90, 0, 0.3f));
    EXPECT_EQ(Color(0.3f, 0.3f, 0.3f, 1), colorOfHsv(90, -2, 0.3f));
}

TEST(ColorMath, ThereAndBack) {
    for (float r = 0; r <= 1; r += 0.25f) {
        for (float g = 0; g <= 1; g += 0.25f) {
            for (float b = 0; b <= 1; b += 0.25f) {
                const Vector hsv = hsvOf({r, g, b, 1});
                expectColor({r, g, b, 1}, colorOfHsv(hsv.x, hsv.y, hsv.z));
            }
        }
    }
}

} // namespace

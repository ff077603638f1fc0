// SPDX-License-Identifier: Apache-2.0
// How close the elementary functions come to the exact results, and their special values.
#include "nodes/values/functions/real_functions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

namespace real = tidemark::sluice::graph::real_functions;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float least = std::numeric_limits<float>::denorm_min();

using Function = void (*)(const float*, float*, std::size_t);
using Exact = double (*)(double);

// Distance from the exact result in units of the last place of a float there.
double errorIn(float found, double exact) {
    constexpr double wrong = 1e9;
    if (std::isnan(exact)) return std::isnan(found) ? 0.0 : wrong;
    if (std::isinf(static_cast<float>(exact)))
        return found == static_cast<float>(exact) ? 0 : wrong;
    if (!std::isfinite(found)) return wrong;
    int exponent = 0;
    std::frexp(exact, &exponent);
    return std::fabs(found - exact) / std::ldexp(1.0, std::max(exponent - 24, -149));
}

double worstError(Function function, Exact exact, const std::vector<float>& arguments) {
    std::vector<float> results(arguments.size());
    function(arguments.data(), results.data(), arguments.size());
    double worst = 0;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        worst = std::max(worst, errorIn(results[i], exact(arguments[i])));
    }
    return worst;
}

// Floats of all exponents and both signs, infinities and not-a-number among them.
std::vector<float> floatsOfAllSizes() {
    std::vector<float> all;
    for (uint64_t bits = 0; bits < uint64_t(1) << 32; bits += 4093) {
        all.push_back(std::bit_cast<float>(static_cast<uint32_t>(bits)));
    }
    return all;
}

// Where arguments usually are.
std::vector<float> floatsBetween(float low, float high) {
    std::vector<float> all;
    for (int i = 0; i <= 200'000; ++i) all.push_back(low + (high - low) * float(i) / 200'000.0f);
    return all;
}

TEST(RealFunctions, AreWithinOneUnitInTheLastPlace) {
    const struct {
        const char* name;
        Function function;
        Exact exact;
        float low, high;
    } all[] = {{"sin", real::sin, std::sin, -10.0f, 10.0f},
               {"cos", real::cos, std::cos, -10.0f, 10.0f},
               {"exp", real::exp, std::exp, -110.0f, 95.0f},
               {"log", real::log, std::log, 0.0f, 4.0f}};
    for (const auto& [name, function, exact, low, high] : all) {
        EXPECT_LE(worstError(function, exact, floatsOfAllSizes()), 1.0) << name;
        EXPECT_LE(worstError(function, exact, floatsBetween(low, high)), 1.0) << name;
    }
}

TEST(RealFunctions, PowersAreWithinOneUnitInTheLastPlace) {
    std::mt19937 random(11);
    for (int i = 0; i < 1'000'000; ++i) {
        float base = std::bit_cast<float>(static_cast<uint32_t>(random()));
        float exponent = std::bit_cast<float>(static_cast<uint32_t>(random()));
        // Half of them where the result is neither 0 nor infinity.
        if (i % 2 == 0) {
            base = std::fabs(base);
            exponent = std::ldexp(static_cast<float>(static_cast<int32_t>(random())), -26);
        }
        float found;
        real::pow(&base, &exponent, &found, 1);
        const double exact = std::pow(static_cast<double>(base), static_cast<double>(exponent));
        ASSERT_LE(errorIn(found, exact), 1.0) << base << " ^ " << exponent;
    }
}

TEST(RealFunctions, SpecialValuesAreThoseOfTheCLibrary) {
    const std::vector<float> special = {
        0.0f,  -0.0f,  1.0f,    -1.0f,     infinity,        -infinity,
        nan,   least,  -least,  0x1p-126f, 0x1.fffffep127f, -0x1.fffffep127f,
        1e30f, -1e30f, 0x1p20f, 88.8f,     -104.0f,         2.0f};
    const auto expectSame = [](float found, float expected, const char* name, float argument) {
        EXPECT_EQ(std::isnan(found), std::isnan(expected)) << name << " of " << argument;
        if (std::isnan(expected)) return;
        EXPECT_FLOAT_EQ(found, expected) << name << " of " << argument;
        EXPECT_EQ(std::signbit(found), std::signbit(expected)) << name << " of " << argument;
    };
    for (const float x : special) {
        float found;
        real::sin(&x, &found, 1);
        expectSame(found, std::sin(x), "sin", x);
        real::cos(&x, &found, 1);
        expectSame(found, std::cos(x), "cos", x);
        real::exp(&x, &found, 1);
        expectSame(found, std::exp(x), "exp", x);
        real::log(&x, &found, 1);
        expectSame(found, std::log(x), "log", x);
        for (const float y : special) {
            real::pow(&x, &y, &found, 1);
            expectSame(found, std::pow(x, y), "pow", x);
        }
    }
}

TEST(RealFunctions, ExactResultsAreExact) {
    const float bases[] = {2, 3, 10, 0.5f, 7, 1};
    const float exponents[] = {10, 4, 3, -3, 0, 100};
    const float expected[] = {1024, 81, 1000, 8, 1, 1};
    float found[6];
    real::pow(bases, exponents, found, 6);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(found[i], expected[i]);
    const float zero = 0;
    float one;
    real::exp(&zero, &one, 1);
    EXPECT_EQ(one, 1.0f);
}

// Threads cut arrays at any place, so the place must not matter.
TEST(RealFunctions, ResultsDoNotDependOnThePlace) {
    std::mt19937 random(5);
    std::vector<float> arguments;
    for (int i = 0; i < 1500; ++i) {
        const auto bits = static_cast<uint32_t>(random());
        arguments.push_back(i % 300 == 7 ? 1e9f : std::ldexp(float(bits), -30) - 1.0f);
    }
    const std::vector<float> powers(arguments.rbegin(), arguments.rend());
    for (const Function function : {real::sin, real::cos, real::exp, real::log}) {
        std::vector<float> whole(arguments.size());
        function(arguments.data(), whole.data(), arguments.size());
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            float alone;
            function(&arguments[i], &alone, 1);
            ASSERT_EQ(std::bit_cast<uint32_t>(alone), std::bit_cast<uint32_t>(whole[i]));
        }
    }
    std::vector<float> whole(arguments.size());
    real::pow(arguments.data(), powers.data(), whole.data(), arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        float alone;
        real::pow(&arguments[i], &powers[i], &alone, 1);
        ASSERT_EQ(std::bit_cast<uint32_t>(alone), std::bit_cast<uint32_t>(whole[i]));
    }
}

} // namespace

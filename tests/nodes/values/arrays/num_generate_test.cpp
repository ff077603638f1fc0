// SPDX-License-Identifier: Apache-2.0
// Numeric arrays out of nothing: random values, constants, even steps, positions.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <new>
#include <vector>

#include "core/limits.h"
#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::declared;
using sluice_tests::LogicNet;
using sluice_tests::missingAffects;
using sluice_tests::missingTexts;
using tidemark::TM_String;

constexpr int32_t smallest = std::numeric_limits<int32_t>::min();
constexpr int32_t largest = std::numeric_limits<int32_t>::max();

// One node called "n".
class Maker : public LogicNet {
public:
    explicit Maker(const TM_String& type) { add(type, "n"); }
    Maker(const TM_String& type, const TM_String& element) : Maker(type) {
        this->type("n.array", element);
    }
    void integer(const TM_String& pin, int32_t value) { numbers<int32_t>("n." + pin, {value}); }
    template <typename T>
    std::vector<T> elements(const TM_String& pin = "n.array") {
        refresh(pin);
        const Numeric& number = as<NumericAttribute>(pin).numeric();
        EXPECT_EQ(number.size(), number.values<T>().size());
        return std::vector<T>(number.values<T>().begin(), number.values<T>().end());
    }
};

// Declarations.

TEST(NumGenerators, AreDeclaredAsTold) {
    EXPECT_EQ(declared("ArrayNumRandom"),
              "ArrayNumRandom\n"
              "in size! NumericAttribute \"Integer\" = 1\n"
              "in min! NumericAttribute \"Integer\", \"Real\", \"Vector3\", \"Color4\" = 0\n"
              "in max! NumericAttribute \"Integer\", \"Real\", \"Vector3\", \"Color4\" = 1\n"
              "in seed! NumericAttribute \"Integer\" = 0\n"
              "out array NumericAttribute \"Integer\", \"Real\", \"Vector3\", \"Color4\"\n");
    const TM_String all = "\"Integer\", \"Integer64\", \"Real\", \"Vector3\", \"Color4\", "
                          "\"Quaternion\", \"Matrix4\"";
    EXPECT_EQ(declared("ArrayNumConstant"),
              "ArrayNumConstant\n"
              "in size! NumericAttribute \"Integer\" = 1\n"
              "in constant! NumericAttribute " +
                  all +
                  " = Integer:0 Integer64:0 Real:0 Vector3:0 Color4:0 Quaternion:(1,0,0,0) "
                  "Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)\n"
                  "out array NumericAttribute " +
                  all + "\n");
    const TM_String ranged =
        "NumericAttribute \"Integer\", \"Integer64\", \"Real\", \"Vector3\", \"Color4\"";
    EXPECT_EQ(declared("ArrayNumRange"), "ArrayNumRange\n"
                                         "in start! " +
                                             ranged + " = 0\nin end! " + ranged +
                                             " = 1\nin steps! NumericAttribute \"Integer\" = 2\n"
                                             "out array " +
                                             ranged + "\n");
    EXPECT_EQ(declared("ArrayNumIndices"),
              "ArrayNumIndices\nin array NumericAttribute " + all +
                  " = Integer:0 Integer64:0 Real:0 Vector3:0 Color4:(0,0,0,1) "
                  "Quaternion:(1,0,0,0) Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)\n"
                  "out indices NumericAttribute \"Integer\"\n");
}

TEST(NumGenerators, AreDescribedAndAffected) {
    for (const char* type :
         {"ArrayNumRandom", "ArrayNumConstant", "ArrayNumRange", "ArrayNumIndices"}) {
        EXPECT_EQ("", missingTexts(type)) << type;
        EXPECT_EQ("", missingAffects(type)) << type;
    }
    EXPECT_EQ("Computes an array of the given input 'size' filled with random values in range from "
              "'min' to 'max'",
              Maker("ArrayNumRandom").node("n").getDescription());
    EXPECT_EQ("Returns an array of size 'size' for which all elements have 'constant' as value",
              Maker("ArrayNumConstant").node("n").getDescription());
    EXPECT_EQ("Creates an array of size 'steps' which values are increased uniformly from 'start' "
              "to 'end'.\nIf 'steps' is 1 the single element of the output 'array' is 'start'.",
              Maker("ArrayNumRange").node("n").getDescription());
    EXPECT_EQ("This node returns an array filled with integers from 0 to the size of the input "
              "array",
              Maker("ArrayNumIndices").node("n").getDescription());
}

TEST(NumGenerators, InputAndArrayAreOfOneType) {
    for (const auto& [type, input] :
         {std::pair("ArrayNumRandom", "max"), std::pair("ArrayNumConstant", "constant"),
          std::pair("ArrayNumRange", "end")}) {
        Maker n(type);
        n.add("Color4", "c");
        ASSERT_TRUE(n.link("c.color", TM_String("n.") + input)) << type;
        EXPECT_EQ("Color4", n.pin("n.array").specialization()) << type;
    }
    Maker indices("ArrayNumIndices");
    indices.type("n.array", "Color4");
    EXPECT_EQ("Integer", indices.pin("n.indices").specialization());
}

// ArrayNumRandom.

std::vector<float> randomReals(int32_t seed, float min, float max) {
    Maker n("ArrayNumRandom", "Real");
    n.integer("size", 3);
    n.integer("seed", seed);
    n.numbers<float>("n.min", {min});
    n.numbers<float>("n.max", {max});
    return n.elements<float>();
}

TEST(ArrayNumRandom, Reals) {
    using List = std::vector<float>;
    EXPECT_EQ((List{0.117776632f, 0.58229512f, 0.217623591f}), randomReals(0, 0, 1));
    EXPECT_EQ((List{0.634865344f, 0.669408083f, 0.922693431f}), randomReals(1, 0, 1));
    EXPECT_EQ((List{-0.764446735f, 0.16459024f, -0.564752817f}), randomReals(0, -1, 1));
    EXPECT_EQ((List{0.269730687f, 0.338816166f, 0.845386863f}), randomReals(1, -1, 1));
    EXPECT_EQ((List{11.1777668f, 15.8229513f, 12.1762362f}), randomReals(0, 10, 20));
    EXPECT_EQ((List{16.3486538f, 16.6940804f, 19.2269344f}), randomReals(1, 10, 20));
    EXPECT_EQ(0.991391838f, randomReals(-1, 0, 1)[0]);
}

std::vector<int32_t> randomIntegers(int32_t seed, int32_t min, int32_t max, int32_t size = 3) {
    Maker n("ArrayNumRandom", "Integer");
    n.integer("size", size);
    n.integer("seed", seed);
    n.integer("min", min);
    n.integer("max", max);
    return n.elements<int32_t>();
}

TEST(ArrayNumRandom, IntegersReachBothEnds) {
    using List = std::vector<int32_t>;
    EXPECT_EQ((List{1, 6, 2}), randomIntegers(0, 0, 10));
    EXPECT_EQ((List{6, 7, 10}), randomIntegers(1, 0, 10));
    EXPECT_EQ((List{1, 4, 2}), randomIntegers(0, 1, 6));
    EXPECT_EQ((List{4, 5, 6}), randomIntegers(1, 1, 6));
    EXPECT_EQ((List{-4, 1, -3}), randomIntegers(0, -5, 5));
    EXPECT_EQ((List{1, 2, 5}), randomIntegers(1, -5, 5));
    EXPECT_EQ((List{4, -1, 3}), randomIntegers(0, 5, -5)) << "mirrored";
    std::vector<int> seen(7, 0);
    for (const int32_t value : randomIntegers(3, 1, 6, 600)) {
        ASSERT_GE(value, 1);
        ASSERT_LE(value, 6);
        ++seen[static_cast<std::size_t>(value)];
    }
    for (std::size_t value = 1; value <= 6; ++value) EXPECT_GT(seen[value], 60) << value;
}

TEST(ArrayNumRandom, ExtremeIntegersStayInRange) {
    for (const int32_t value : randomIntegers(0, smallest, largest, 100)) EXPECT_NE(0, value);
    for (const int32_t value : randomIntegers(0, largest, largest, 5)) EXPECT_EQ(largest, value);
    for (const int32_t value : randomIntegers(7, largest, largest - 1, 50)) {
        EXPECT_GE(value, largest - 1);
    }
}

TEST(ArrayNumRandom, OneStepPerComponent) {
    const auto vectors = [](int32_t seed) {
        Maker n("ArrayNumRandom", "Vector3");
        n.integer("size", 3);
        n.integer("seed", seed);
        n.numbers<Vector3<float>>("n.min", {{0, 0, 0}});
        n.numbers<Vector3<float>>("n.max", {{1, 10, 100}});
        return n.elements<Vector3<float>>();
    };
    using List = std::vector<Vector3<float>>;
    EXPECT_EQ((List{{0.117776632f, 5.82295132f, 21.7623596f},
                    {0.341914475f, 6.24840736f, 46.0139198f},
                    {0.660236478f, 5.56697416f, 22.0119705f}}),
              vectors(0));
    EXPECT_EQ((List{{0.634865344f, 6.69408083f, 92.2693405f},
                    {0.717264533f, 1.80264294f, 85.7616882f},
                    {0.206200063f, 5.93646622f, 11.6078434f}}),
              vectors(1));
    Maker n("ArrayNumRandom", "Color4");
    EXPECT_EQ((std::vector<Color4<float>>{{0.117776632f, 0.58229512f, 0.217623591f, 0.341914475f}}),
              n.elements<Color4<float>>());
    n.integer("seed", 1);
    EXPECT_EQ(
        (std::vector<Color4<float>>{{0.634865344f, 0.669408083f, 0.922693431f, 0.717264533f}}),
        n.elements<Color4<float>>());
}

TEST(ArrayNumRandom, SameSeedSameArrayAndALongerOneBeginsAlike) {
    Maker n("ArrayNumRandom", "Real");
    n.integer("size", 1000);
    n.integer("seed", 42);
    const std::vector<float> first = n.elements<float>();
    n.integer("seed", 43);
    EXPECT_NE(first, n.elements<float>());
    n.integer("seed", 42);
    EXPECT_EQ(first, n.elements<float>());
    n.integer("size", 600000);
    const std::vector<float> longer = n.elements<float>();
    ASSERT_EQ(600000u, longer.size());
    EXPECT_TRUE(std::equal(first.begin(), first.end(), longer.begin()));
    for (const float value : longer) ASSERT_TRUE(value >= 0 && value < 1) << value;
}

TEST(ArrayNumRandom, WithoutATypeNothingIsComputed) {
    Maker n("ArrayNumRandom");
    n.integer("size", 5);
    n.pin("n.array").setClean(true);
    n.node("n").update(&n.pin("n.array"));
    EXPECT_FALSE(n.pin("n.array").isClean());
    EXPECT_EQ("", n.text("n.array"));
    EXPECT_EQ(1u, n.pin("n.array").value()->size());
    EXPECT_EQ("", n.messages("n"));
}

TEST(ArrayNumRandom, NegativeSizeLeavesTheOutput) {
    Maker n("ArrayNumRandom", "Real");
    n.integer("size", 2);
    const std::vector<float> before = n.elements<float>();
    n.integer("size", -1);
    EXPECT_EQ(before, n.elements<float>());
    n.integer("size", smallest);
    EXPECT_EQ(before, n.elements<float>());
    EXPECT_EQ("", n.messages("n"));
    n.integer("size", 0);
    EXPECT_EQ("[3] ", n.text("n.array"));
}

// ArrayNumConstant.

TEST(ArrayNumConstant, RepeatsTheFirstElement) {
    Maker n("ArrayNumConstant", "Real");
    EXPECT_EQ("[3] 0", n.text("n.array"));
    n.integer("size", 3);
    n.numbers<float>("n.constant", {2.5f, 7});
    EXPECT_EQ("[3] 2.5,2.5,2.5", n.text("n.array"));
    n.integer("size", 1);
    EXPECT_EQ("[3] 2.5", n.text("n.array"));
    n.integer("size", 0);
    EXPECT_EQ("[3] ", n.text("n.array"));
}

TEST(ArrayNumConstant, KnowsEveryType) {
    const std::vector<std::pair<const char*, TM_String>> expected = {
        {"Integer", "[1] 0,0"},
        {"Integer64", "[2] 0,0"},
        {"Real", "[3] 0,0"},
        {"Vector3", "[4] (0,0,0),(0,0,0)"},
        {"Color4", "[5] (0,0,0,0),(0,0,0,0)"},
        {"Quaternion", "[6] (1,0,0,0),(1,0,0,0)"},
        {"Matrix4", "[7] (1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)"}};
    for (const auto& [type, text] : expected) {
        Maker n("ArrayNumConstant", type);
        n.integer("size", 2);
        EXPECT_EQ(text, n.text("n.array"));
    }
}

TEST(ArrayNumConstant, NegativeSizeLeavesTheOutput) {
    Maker n("ArrayNumConstant", "Integer");
    n.integer("constant", 4);
    n.integer("size", 2);
    EXPECT_EQ("[1] 4,4", n.text("n.array"));
    n.integer("size", -7);
    n.integer("constant", 5);
    EXPECT_EQ("[1] 4,4", n.text("n.array"));
    EXPECT_EQ("", n.messages("n"));
}

TEST(ArrayNumConstant, EmptyConstantCountsAsTheDefaultElement) {
    Maker n("ArrayNumConstant", "Color4");
    n.integer("size", 2);
    n.numbers<Color4<float>>("n.constant", {});
    EXPECT_EQ("[5] (0,0,0,1),(0,0,0,1)", n.text("n.array"));
}

TEST(ArrayNumConstant, WhatDoesNotFitIsReportedAndTheNodeStaysUsable) {
    Maker n("ArrayNumConstant", "Real");
    n.integer("size", largest);
    tidemark::limits::set({.maxElements = 1000});
    EXPECT_THROW(n.refresh("n.array"), std::bad_alloc);
    tidemark::limits::set({});
    n.integer("size", 2);
    EXPECT_EQ("[3] 0,0", n.text("n.array"));
}

// ArrayNumRange.

TM_String integerRange(int32_t start, int32_t end, int32_t steps) {
    Maker n("ArrayNumRange", "Integer");
    n.integer("start", start);
    n.integer("end", end);
    n.integer("steps", steps);
    return n.text("n.array");
}

TEST(ArrayNumRange, IntegersAreTruncatedTowardZero) {
    EXPECT_EQ("[1] 0,3,6,10", integerRange(0, 10, 4));
    EXPECT_EQ("[1] 0,-3,-6,-10", integerRange(0, -10, 4));
    EXPECT_EQ("[1] 10,7,4,0", integerRange(10, 0, 4));
    EXPECT_EQ("[1] 5,5,5", integerRange(5, 5, 3));
    EXPECT_EQ("[1] 1,6", integerRange(1, 6, 2));
    EXPECT_EQ("[1] 0,0,0,0,1", integerRange(0, 1, 5));
}

TEST(ArrayNumRange, ExtremeIntegersDoNotOverflow) {
    EXPECT_EQ("[1] -2147483648,-1,2147483647", integerRange(smallest, largest, 3));
    EXPECT_EQ("[1] 2147483647,0,-2147483648", integerRange(largest, smallest, 3));
    Maker n("ArrayNumRange", "Integer64");
    n.numbers<int64_t>("n.start", {std::numeric_limits<int64_t>::min()});
    n.numbers<int64_t>("n.end", {std::numeric_limits<int64_t>::max()});
    n.integer("steps", 6);
    EXPECT_EQ("[2] -9223372036854775808,-5534023222112865485,-1844674407370955162,"
              "1844674407370955161,5534023222112865484,9223372036854775807",
              n.text("n.array"));
}

TEST(ArrayNumRange, Reals) {
    Maker n("ArrayNumRange", "Real");
    n.numbers<float>("n.start", {0});
    n.numbers<float>("n.end", {10});
    n.integer("steps", 5);
    EXPECT_EQ("[3] 0,2.5,5,7.5,10", n.text("n.array"));
    n.numbers<float>("n.start", {-3e38f});
    n.numbers<float>("n.end", {3e38f});
    n.integer("steps", 3);
    EXPECT_EQ((std::vector<float>{-3e38f, 0, 3e38f}), n.elements<float>());
    n.numbers<float>("n.start", {0.1f});
    n.numbers<float>("n.end", {0.7f});
    n.integer("steps", 1000003);
    const std::vector<float> many = n.elements<float>();
    EXPECT_EQ(0.1f, many.front());
    EXPECT_EQ(0.7f, many.back());
    EXPECT_TRUE(std::is_sorted(many.begin(), many.end()));
}

TEST(ArrayNumRange, VectorsAndColorsPerComponent) {
    Maker v("ArrayNumRange", "Vector3");
    v.numbers<Vector3<float>>("n.start", {{0, 1, 2}});
    v.numbers<Vector3<float>>("n.end", {{2, 1, 0}});
    v.integer("steps", 3);
    EXPECT_EQ("[4] (0,1,2),(1,1,1),(2,1,0)", v.text("n.array"));
    Maker c("ArrayNumRange", "Color4");
    EXPECT_EQ("[5] (0,0,0,0),(1,1,1,1)", c.text("n.array"));
}

TEST(ArrayNumRange, FewSteps) {
    EXPECT_EQ("[1] 7", integerRange(7, 9, 1));
    EXPECT_EQ("[1] ", integerRange(7, 9, 0));
    Maker n("ArrayNumRange", "Real");
    n.integer("steps", 1);
    n.numbers<float>("n.start", {3.5f});
    EXPECT_EQ("[3] 3.5", n.text("n.array"));
    n.numbers<float>("n.end", {std::numeric_limits<float>::infinity()});
    EXPECT_EQ("[3] 3.5", n.text("n.array")) << "wherever the end is";
    n.integer("steps", -1);
    n.numbers<float>("n.start", {4});
    EXPECT_EQ("[3] 3.5", n.text("n.array")) << "left alone";
    EXPECT_EQ("", n.messages("n"));
}

TEST(ArrayNumRange, WithoutATypeNothingIsComputed) {
    Maker n("ArrayNumRange");
    EXPECT_EQ("", n.text("n.array"));
    EXPECT_EQ("", n.messages("n"));
}

// ArrayNumIndices.

TEST(ArrayNumIndices, CountsAnyType) {
    Maker n("ArrayNumIndices");
    EXPECT_EQ("[1] 0", n.text("n.indices")) << "one element, whatever it will be";
    n.type("n.array", "Vector3");
    n.numbers<Vector3<float>>("n.array", {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    EXPECT_EQ("[1] 0,1,2", n.text("n.indices"));
    n.numbers<Vector3<float>>("n.array", {});
    EXPECT_EQ("[1] ", n.text("n.indices"));
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// NumConvert: every pair of types, the edges of each, and strings.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;
using Vector = tidemark::Vector3<float>;
using Color = tidemark::Color4<float>;

const TM_String outputs[] = {"integer", "integer64", "real", "vector3", "color4", "string"};

class NumConvert : public testing::Test {
protected:
    NumConvert() { net.add("NumConvert", "n"); }

    template <typename T>
    void give(std::initializer_list<T> values) {
        net.type("n.input", nameOf(numericTypeFor<T>));
        net.numbers<T>("n.input", values);
    }
    TM_String text(const TM_String& output) { return net.text("n." + output); }
    TM_String list() { return net.list("n.string"); }
    template <typename T>
    std::vector<T> results(const TM_String& output) {
        net.refresh("n." + output);
        const auto& array = net.as<NumericAttribute>("n." + output).numeric().values<T>();
        return std::vector<T>(array.begin(), array.end());
    }

    LogicNet net;
};

TEST_F(NumConvert, DeclaresItsPins) {
    EXPECT_EQ(sluice_tests::declared("NumConvert"),
              "NumConvert\n"
              "in input NumericAttribute \"Integer\", \"Integer64\", \"Real\", \"Vector3\", "
              "\"Color4\" = Integer:0 Integer64:0 Real:0 Vector3:0 Color4:(0,0,0,1)\n"
              "out integer NumericAttribute \"Integer\"\n"
              "out integer64 NumericAttribute \"Integer64\"\n"
              "out real NumericAttribute \"Real\"\n"
              "out vector3 NumericAttribute \"Vector3\"\n"
              "out color4 NumericAttribute \"Color4\"\n"
              "out string StringAttribute \"String\"\n");
    EXPECT_EQ(sluice_tests::missingTexts("NumConvert"), "");
    EXPECT_EQ(sluice_tests::missingAffects("NumConvert"), "");
    EXPECT_EQ(net.pin("n.input").getDescription(), "Input value to convert");
    EXPECT_EQ(net.pin("n.integer").getDescription(), "Input converted to Integer");
    EXPECT_EQ(net.pin("n.integer64").getDescription(), "Input converted to Integer64");
    EXPECT_EQ(net.pin("n.real").getDescription(), "Input converted to Real");
    EXPECT_EQ(net.pin("n.vector3").getDescription(), "Input converted to Vector3");
    EXPECT_EQ(net.pin("n.color4").getDescription(), "Input converted to Color4");
    EXPECT_EQ(net.pin("n.string").getDescription(), "Input converted to String");
}

TEST_F(NumConvert, Integers) {
    give<int32_t>({128});
    EXPECT_EQ(text("integer"), "[1] 128");
    EXPECT_EQ(text("integer64"), "[2] 128");
    EXPECT_EQ(text("real"), "[3] 128");
    EXPECT_EQ(text("vector3"), "[4] (128,128,128)");
    const Color color = results<Color>("color4")[0];
    for (const float part : {color.r, color.g, color.b}) EXPECT_NEAR(part, 0.00195315, 1e-8);
    EXPECT_EQ(color.a, 1.0f);
    EXPECT_EQ(list(), "128");
}

TEST_F(NumConvert, Integers64) {
    give<int64_t>({128, (int64_t(1) << 32) + 5, -1});
    EXPECT_EQ(text("integer"), "[1] 128,5,-1");
    EXPECT_EQ(text("integer64"), "[2] 128,4294967301,-1");
    EXPECT_EQ(results<float>("real"), (std::vector<float>{128.0f, 4294967301.0f, -1.0f}));
    EXPECT_EQ(results<Vector>("vector3")[2], Vector(-1, -1, -1));
    EXPECT_NEAR(results<Color>("color4")[0].r, 0.00195315, 1e-8);
    EXPECT_EQ(results<Color>("color4")[1], Color(1, 1, 1, 1));
    EXPECT_EQ(results<Color>("color4")[2], Color(0, 0, 0, 1));
    EXPECT_EQ(list(), "128|4294967301|-1");
}

TEST_F(NumConvert, IntegersBecomeShadesOf16Bits) {
    give<int32_t>({65535, 70000, -5, 0, 2147483647, -2147483647 - 1});
    const auto colors = results<Color>("color4");
    const float shades[] = {1, 1, 0, 0, 1, 0};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(colors[i], Color(shades[i], shades[i], shades[i], 1)) << i;
    }
}

TEST_F(NumConvert, Reals) {
    give<float>({0.7f});
    EXPECT_EQ(text("integer"), "[1] 0");
    EXPECT_EQ(text("integer64"), "[2] 0");
    EXPECT_EQ(text("real"), "[3] 0.7");
    EXPECT_EQ(text("vector3"), "[4] (0.7,0.7,0.7)");
    EXPECT_EQ(text("color4"), "[5] (0.7,0.7,0.7,1)");
    EXPECT_EQ(list(), "0.700000");
}

TEST_F(NumConvert, ArraysOfReals) {
    give<float>({2.1f, 0.4f});
    EXPECT_EQ(text("integer"), "[1] 2,0");
    EXPECT_EQ(text("real"), "[3] 2.1,0.4");
    EXPECT_EQ(text("vector3"), "[4] (2.1,2.1,2.1),(0.4,0.4,0.4)");
    EXPECT_EQ(text("color4"), "[5] (1,1,1,1),(0.4,0.4,0.4,1)");
    EXPECT_EQ(list(), "2.100000|0.400000");
}

TEST_F(NumConvert, RealsLoseTheirDecimalPart) {
    give<float>({-1.5f, 1.999f, -0.9f, 1e9f});
    EXPECT_EQ(text("integer"), "[1] -1,1,0,1000000000");
    EXPECT_EQ(text("integer64"), "[2] -1,1,0,1000000000");
}

TEST_F(NumConvert, RealsThatNoIntegerHolds) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    give<float>({1e20f, -1e20f, infinity, -infinity, nan});
    const auto integers = results<int32_t>("integer");
    const auto integers64 = results<int64_t>("integer64");
    using Limits = std::numeric_limits<int32_t>;
    using Limits64 = std::numeric_limits<int64_t>;
    EXPECT_EQ(integers, (std::vector<int32_t>{Limits::max(), Limits::min(), Limits::max(),
                                              Limits::min(), 0}));
    EXPECT_EQ(integers64, (std::vector<int64_t>{Limits64::max(), Limits64::min(), Limits64::max(),
                                                Limits64::min(), 0}));
    const auto colors = results<Color>("color4");
    EXPECT_EQ(colors[2], Color(1, 1, 1, 1));
    EXPECT_EQ(colors[3], Color(0, 0, 0, 1));
    EXPECT_TRUE(std::isnan(colors[4].r));
    EXPECT_EQ(colors[4].a, 1.0f);
    EXPECT_EQ(list(), "100000002004087734272.000000|-100000002004087734272.000000|inf|-inf|nan");
}

TEST_F(NumConvert, Vectors) {
    give<Vector>({{0.1f, 0.2f, 0.3f}});
    EXPECT_EQ(text("integer"), "[1] 0");
    EXPECT_EQ(text("integer64"), "[2] 0");
    EXPECT_EQ(text("real"), "[3] 0.1");
    EXPECT_EQ(text("vector3"), "[4] (0.1,0.2,0.3)");
    EXPECT_EQ(text("color4"), "[5] (0.1,0.2,0.3,1)");
    EXPECT_EQ(list(), "0.100000 0.200000 0.300000");
}

TEST_F(NumConvert, VectorsAreClampedToColors) {
    give<Vector>({{-2, 0.5f, 3}});
    EXPECT_EQ(text("color4"), "[5] (0,0.5,1,1)");
    EXPECT_EQ(text("integer"), "[1] -2");
}

TEST_F(NumConvert, Colors) {
    give<Color>({{0.5f, 0.6f, 0.7f, 0.9f}});
    EXPECT_EQ(text("integer"), "[1] 32767");
    EXPECT_EQ(text("integer64"), "[2] 32767");
    EXPECT_EQ(text("real"), "[3] 0.5");
    EXPECT_EQ(text("vector3"), "[4] (0.5,0.6,0.7)");
    EXPECT_EQ(text("color4"), "[5] (0.5,0.6,0.7,0.9)");
    EXPECT_EQ(list(), "0.500000 0.600000 0.700000 0.900000");
}

TEST_F(NumConvert, ColorsOutsideOfZeroToOne) {
    give<Color>({{2, 0, 0, 0.5f}, {-0.5f, 0, 0, 7}, {1e6f, 3, -4, -1}});
    EXPECT_EQ(text("integer"), "[1] 131070,-32767,2147483647");
    EXPECT_EQ(text("integer64"), "[2] 131070,-32767,65535000576");
    EXPECT_EQ(results<float>("real"), (std::vector<float>{2, -0.5f, 1e6f}));
    EXPECT_EQ(results<Color>("color4")[1], Color(-0.5f, 0, 0, 7));
    EXPECT_EQ(results<Vector>("vector3")[2], Vector(1e6f, 3, -4));
}

// What was not computed is not shown.
TEST_F(NumConvert, InterruptedResultsAreEmpty) {
    give<float>({1});
    auto& number = net.as<NumericAttribute>("n.input").ownNumeric();
    number.resize(200000);
    Node& node = net.node("n");
    net.manager().setEvaluating(true);
    for (const TM_String& output : outputs) {
        Attribute& pin = net.pin("n." + output);
        EXPECT_NO_THROW(node.update(&pin));
        EXPECT_EQ(pin.currentValue()->size(), 200000u) << output;
        net.manager().requestInterrupt();
        EXPECT_ANY_THROW(node.update(&pin)) << output;
        net.manager().clearInterrupt();
        EXPECT_EQ(pin.currentValue()->size(), 0u) << output;
    }
    net.manager().setEvaluating(false);
}

TEST_F(NumConvert, AnInputWithoutATypeIsReported) {
    for (const TM_String& output : outputs) {
        net.node("n").refMessages().clear();
        Attribute& pin = net.pin("n." + output);
        const TM_String before = pin.currentValue()->asString();
        net.node("n").doUpdate(&pin);
        EXPECT_EQ(net.messages("n"), "[error] input 'input' not specialized\n");
        EXPECT_EQ(pin.currentValue()->asString(), before);
        EXPECT_FALSE(pin.isClean());
    }
}

TEST_F(NumConvert, EmptyArraysStayEmpty) {
    give<float>({});
    for (const TM_String& output : outputs) {
        net.refresh("n." + output);
        EXPECT_EQ(net.pin("n." + output).currentValue()->size(), 0u) << output;
    }
    give<float>({1.0f});
    EXPECT_EQ(text("integer"), "[1] 1");
}

TEST_F(NumConvert, OnlyTheOutputThatIsAskedForIsComputed) {
    give<float>({3.5f});
    EXPECT_EQ(text("integer"), "[1] 3");
    EXPECT_TRUE(net.pin("n.integer").isClean());
    EXPECT_FALSE(net.pin("n.real").isClean());
}

TEST_F(NumConvert, RefusesQuaternionsAndMatrices) {
    net.add("NumCopy", "c");
    net.type("c.in", "Quaternion");
    EXPECT_FALSE(net.canLink("c.out", "n.input"));
    net.type("c.in", "Real");
    EXPECT_TRUE(net.canLink("c.out", "n.input"));
}

// A value that has another type than the pin: what it holds of the pin's type is repeated.
TEST_F(NumConvert, AValueOfAnotherType) {
    give<float>({5.5f});
    auto& number = net.as<NumericAttribute>("n.input").ownNumeric();
    number.setType(NumericType::integer);
    number.resize(3);
    for (const TM_String& output : outputs) net.pin("n." + output).markDirty(true);
    EXPECT_EQ(text("real"), "[3] 5.5,5.5,5.5");
    EXPECT_EQ(list(), "5.500000|5.500000|5.500000");
    number.setValues<float>({});
    number.setSize(2);
    net.pin("n.color4").markDirty(true);
    EXPECT_EQ(text("color4"), "[5] (0,0,0,1),(0,0,0,1)");
    Retained<StringValue> other(new StringValue(&net.manager()));
    net.pin("n.input").setValue(other.get());
    for (const TM_String& output : outputs) {
        net.pin("n." + output).markDirty(true);
        net.refresh("n." + output);
        EXPECT_EQ(net.pin("n." + output).currentValue()->size(), 1u) << output;
    }
}

TEST_F(NumConvert, AMillionElementsOfEveryType) {
    constexpr uint32_t count = 1000000;
    give<float>({0.25f});
    auto& number = net.as<NumericAttribute>("n.input").ownNumeric();
    tidemark::Array<float> reals;
    reals.resize(count);
    for (uint32_t i = 0; i < count; ++i) reals[i] = static_cast<float>(i) + 0.25f;
    number.setValues(reals);
    const auto begin = std::chrono::steady_clock::now();
    for (const TM_String& output : outputs) {
        net.pin("n." + output).markDirty(true);
        net.refresh("n." + output);
        EXPECT_EQ(net.pin("n." + output).currentValue()->size(), count);
    }
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(results<int32_t>("integer")[count - 1], 999999);
    EXPECT_EQ(net.as<StringAttribute>("n.string").strings().valueAt(count - 1), "999999.250000");
    // Far above what it takes; a search through the array for every element would not do.
    EXPECT_LT(time.count(), 30.0);
}

} // namespace

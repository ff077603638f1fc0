// SPDX-License-Identifier: Apache-2.0
// Testing for zero.
#include <gtest/gtest.h>

#include <limits>

#include "core/network_manager.h"
#include "nodes/values/conditions/condition_net.h"

namespace {

using namespace sluice_tests;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

class ConditionIsZero : public testing::Test {
protected:
    ConditionIsZero() { net.add("ConditionIsZero", "z"); }
    TM_String mask(const TM_String& values, std::initializer_list<float> tolerances) {
        net.numbers<float>("z.tolerance", tolerances);
        net.set("z.value", values);
        return net.text("z.mask");
    }
    ConditionNet net;
};

TEST_F(ConditionIsZero, LooksWithinTheTolerance) {
    EXPECT_EQ("111", mask("[1] 0,1,-1", {1}));
    EXPECT_EQ("10", mask("[3] -0.1,0.2", {0.1f}));
    EXPECT_EQ("101", mask("[1] 1,2,-1", {1}));
}

TEST_F(ConditionIsZero, StandardToleranceIsSmall) {
    net.set("z.value", "[3] 0,1.1920929e-5,-1.1920929e-5,1.2e-5,-1.2e-5,-0");
    EXPECT_EQ("111001", net.text("z.mask"));
}

TEST_F(ConditionIsZero, AllComponentsCount) {
    EXPECT_EQ("10", mask("[4] (0.5,-0.5,0),(0.5,-0.6,0)", {0.5f}));
    EXPECT_EQ("10", mask("[5] (0,0,0,0),(0,0,0,1)", {0.5f}));
    EXPECT_EQ("10", mask("[7] (0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0)", {0.5f}) +
                        mask("[7] (0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1)", {0.5f}));
}

TEST_F(ConditionIsZero, TolerancesGoWithTheElements) {
    EXPECT_EQ("0110", mask("[3] 1,1,2,3", {0, 1, 2}));
}

TEST_F(ConditionIsZero, EmptyToleranceIsZero) { EXPECT_EQ("100", mask("[3] 0,1e-30,-1e-30", {})); }

TEST_F(ConditionIsZero, EmptyValueHasNoBitsAndTellsSo) {
    net.add("ArraySize", "n");
    net.link("z.mask", "n.array");
    net.set("z.value", "[3] 1,2");
    EXPECT_EQ("[1] 2", net.text("n.size"));
    net.numbers<float>("z.value", {});
    EXPECT_EQ("[1] 0", net.text("n.size"));
}

TEST_F(ConditionIsZero, SpecialNumbers) {
    net.set("z.value", "[3] 0");
    net.numbers<float>("z.value", {notANumber, infinite, -infinite});
    EXPECT_EQ("000", net.text("z.mask"));
    net.numbers<float>("z.tolerance", {infinite});
    EXPECT_EQ("010", net.text("z.mask"));
    net.numbers<float>("z.tolerance", {notANumber});
    EXPECT_EQ("000", net.text("z.mask"));
    net.numbers<float>("z.tolerance", {-1.0f});
    net.numbers<float>("z.value", {0.0f, -1.0f, -2.0f});
    EXPECT_EQ("000", net.text("z.mask"));
}

TEST_F(ConditionIsZero, IntegersCompareAsReals) {
    net.set("z.value", "[1] 16777217,16777218");
    net.numbers<float>("z.tolerance", {16777216.0f});
    EXPECT_EQ("10", net.text("z.mask"));
    net.set("z.value", "[1] -2147483648,2147483647");
    net.numbers<float>("z.tolerance", {2147483648.0f});
    EXPECT_EQ("11", net.text("z.mask"));
}

TEST_F(ConditionIsZero, LongArrays) {
    tidemark::Array<float> values;
    std::string expected;
    for (int i = 0; i < 3333; ++i) {
        values.append(static_cast<float>(i % 7 - 3) * 0.01f);
        expected += i % 7 >= 2 && i % 7 <= 4 ? '1' : '0';
    }
    net.set("z.value", "[3] 0");
    net.as<weft::NumericAttribute>("z.value").ownNumeric().setValues(values);
    net.numbers<float>("z.tolerance", {0.015f});
    EXPECT_EQ(expected, net.text("z.mask"));
}

TEST_F(ConditionIsZero, OnlyAWrittenMaskIsClean) {
    net.node("z").doUpdate(&net.pin("z.mask"));
    EXPECT_FALSE(net.pin("z.mask").isClean());
    net.set("z.value", "[3] 0");
    net.node("z").doUpdate(&net.pin("z.mask"));
    EXPECT_TRUE(net.pin("z.mask").isClean());
}

TEST_F(ConditionIsZero, OtherNumbersAreLeftAlone) {
    EXPECT_EQ("10", mask("[1] 0,1", {0}));
    auto& number = net.as<weft::NumericAttribute>("z.value").ownNumeric();
    for (const auto type : {weft::NumericType::integer64, weft::NumericType::quaternion}) {
        number.setType(type);
        net.pin("z.value").markDirty(true);
        EXPECT_EQ("10", net.text("z.mask"));
    }
    EXPECT_EQ("", net.messages("z"));
}

TEST_F(ConditionIsZero, LongWorkAnswersAnInterrupt) {
    net.type("z.value", "Real");
    net.as<weft::NumericAttribute>("z.value").ownNumeric().resize(3000000);
    net.manager().setEvaluating(true);
    net.manager().requestInterrupt();
    EXPECT_THROW(net.node("z").doUpdate(&net.pin("z.mask")), std::exception);
    EXPECT_EQ(0u, net.pin("z.mask").value()->size());
    net.manager().clearInterrupt();
    net.manager().setEvaluating(false);
}

TEST_F(ConditionIsZero, UnspecializedValueIsReported) {
    net.refresh("z.mask");
    EXPECT_EQ("[error] input 'value' not specialized\n", net.messages("z"));
    EXPECT_EQ("0", net.pin("z.mask").value()->asString());
}

} // namespace

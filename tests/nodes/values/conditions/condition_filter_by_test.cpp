// SPDX-License-Identifier: Apache-2.0
// Filtering by a condition.
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

#include "core/exceptions.h"
#include "core/network_manager.h"
#include "nodes/values/conditions/condition_net.h"

namespace {

using namespace sluice_tests;
using tidemark::Array;
using tidemark::Color4;
using tidemark::Matrix4;
using tidemark::Vector3;
using Type = ConditionValue::ConditionType;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

TM_String filtered(const TM_String& maker, const TM_String& right, const TM_String& values) {
    ConditionNet net;
    net.filterBy(maker);
    const TM_String shown = net.filtered(right, values);
    EXPECT_EQ("", net.messages("f"));
    return shown;
}

// --- values --------------------------------------------------------------------------------------

TEST(ConditionFilterBy, KeepsWhatHolds) {
    EXPECT_EQ("[3] 3 001", filtered("ConditionGreaterThan", "[3] 2", "[3] 1,2,3"));
    EXPECT_EQ("[3] 2,3 011", filtered("ConditionGreaterOrEqual", "[3] 2", "[3] 1,2,3"));
    EXPECT_EQ("[3] 1 100", filtered("ConditionLessThan", "[3] 2", "[3] 1,2,3"));
    EXPECT_EQ("[3] 1,2 110", filtered("ConditionLessOrEqual", "[3] 2", "[3] 1,2,3"));
    EXPECT_EQ("[3] 2 010", filtered("ConditionEqualTo", "[3] 2", "[3] 1,2,3"));
    EXPECT_EQ("[3] 1,3 101", filtered("ConditionNotEqualTo", "[3] 2", "[3] 1,2,3"));
}

TEST(ConditionFilterBy, ConstantsCompareAlike) {
    EXPECT_EQ("[3] 3 001", filtered("ConditionGreaterThanConstant", "[3] 2", "[3] 1,2,3"));
    EXPECT_EQ("[3] 2,3 011", filtered("ConditionGreaterOrEqualConstant", "[3] 2", "[3] 1,2,3"));
    EXPECT_EQ("[3] 1 100", filtered("ConditionLessThanConstant", "[3] 2", "[3] 1,2,3"));
    EXPECT_EQ("[3] 1,2 110", filtered("ConditionLessOrEqualConstant", "[3] 2", "[3] 1,2,3"));
    EXPECT_EQ("[3] 2 010", filtered("ConditionEqualToConstant", "[3] 2", "[3] 1,2,3"));
    EXPECT_EQ("[3] 1,3 101", filtered("ConditionNotEqualToConstant", "[3] 2", "[3] 1,2,3"));
}

TEST(ConditionFilterBy, RealsAreEqualWithinATolerance) {
    EXPECT_EQ("[3] 1.000009 10",
              filtered("ConditionEqualToConstant", "[3] 1", "[3] 1.000009,1.00002"));
    const auto mask = [](const TM_String& right, const TM_String& value) {
        return filtered("ConditionEqualTo", right, value).back() == '1';
    };
    for (const bool isSwapped : {false, true}) {
        const auto equal = [&](const TM_String& a, const TM_String& b) {
            return isSwapped ? mask("[3] " + b, "[3] " + a) : mask("[3] " + a, "[3] " + b);
        };
        EXPECT_TRUE(equal("1", "1.000009"));
        EXPECT_TRUE(equal("1", "1.000011"));
        EXPECT_FALSE(equal("1", "1.000012"));
        EXPECT_TRUE(equal("0", "1.1920929e-5"));
        EXPECT_FALSE(equal("0", "1.1920931e-5"));
        EXPECT_FALSE(equal("1000", "1000.0001"));
        EXPECT_TRUE(equal("-1", "-1.000009"));
    }
}

TEST(ConditionFilterBy, UnequalIsTheOpposite) {
    EXPECT_EQ("[3] 1.00002 01",
              filtered("ConditionNotEqualToConstant", "[3] 1", "[3] 1.000009,1.00002"));
}

TEST(ConditionFilterBy, OrdersAreExact) {
    EXPECT_EQ("[3] 1.000009 01", filtered("ConditionGreaterThan", "[3] 1", "[3] 1,1.000009"));
    EXPECT_EQ("[3] 1 10", filtered("ConditionLessOrEqual", "[3] 1", "[3] 1,1.000009"));
}

TEST(ConditionFilterBy, NotANumberIsUnequalAndUnordered) {
    for (int code = 0; code < 6; ++code) {
        ConditionNet net;
        net.filterBy("ConditionGeneric");
        net.as<weft::EnumAttribute>("c.type").ownEnum().setKey(code);
        net.set("c.value", "[3] 1");
        net.set("f.value", "[3] 1");
        net.numbers<float>("f.value", {notANumber});
        EXPECT_EQ(code == 1 ? "1" : "0", net.text("f.mask")) << code;
        net.numbers<float>("c.value", {notANumber});
        EXPECT_EQ(code == 1 ? "1" : "0", net.text("f.mask")) << code;
    }
}

TEST(ConditionFilterBy, InfinityEqualsItself) {
    ConditionNet net;
    net.filterBy("ConditionEqualTo");
    net.set("c.value", "[3] 1");
    net.set("f.value", "[3] 1");
    net.numbers<float>("c.value", {infinite});
    net.numbers<float>("f.value", {infinite, -infinite, 3.4e38f, -0.0f});
    EXPECT_EQ("1000", net.text("f.mask"));
    net.numbers<float>("c.value", {0.0f});
    EXPECT_EQ("0001", net.text("f.mask"));
}

TEST(ConditionFilterBy, VectorsCompareInAllComponents) {
    EXPECT_EQ("[4]  0", filtered("ConditionLessThan", "[4] (2,4,0)", "[4] (1,5,0)"));
    EXPECT_EQ("[4]  0", filtered("ConditionGreaterThan", "[4] (2,4,0)", "[4] (1,5,0)"));
    EXPECT_EQ("[4] (1,3,-1) 100",
              filtered("ConditionLessThan", "[4] (2,4,0)", "[4] (1,3,-1),(1,4,-1),(2,3,-1)"));
    EXPECT_EQ("[4] (1,4,-1) 10",
              filtered("ConditionLessOrEqual", "[4] (2,4,0)", "[4] (1,4,-1),(1,4,1)"));
    const TM_String values = "[4] (2,4,1.1e-05),(2,4,0.1),(2.1,4,0)";
    EXPECT_EQ("[4] (2,4,1.1e-05) 100", filtered("ConditionEqualTo", "[4] (2,4,0)", values));
    EXPECT_EQ("[4] (2,4,0.1),(2.1,4,0) 011",
              filtered("ConditionNotEqualTo", "[4] (2,4,0)", values));
}

TEST(ConditionFilterBy, ColorsAndMatricesToo) {
    EXPECT_EQ("[5] (1,1,1,1) 10",
              filtered("ConditionGreaterThan", "[5] (0,0,0,0)", "[5] (1,1,1,1),(1,1,1,0)"));
    const TM_String ones = "(1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1)";
    const TM_String last = "(1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,2)";
    EXPECT_EQ("[7] " + ones + " 1", filtered("ConditionEqualTo", "[7] " + ones, "[7] " + ones));
    EXPECT_EQ("[7]  0", filtered("ConditionEqualTo", "[7] " + ones, "[7] " + last));
    EXPECT_EQ("[7]  0", filtered("ConditionLessThan", "[7] " + last, "[7] " + ones));
}

TEST(ConditionFilterBy, RightSideRepeatsItsLastElement) {
    EXPECT_EQ("[3] 1,5,9 1011", filtered("ConditionGreaterThan", "[3] 0,2,4", "[3] 1,2,5,9"));
    EXPECT_EQ("[3] 1 10", filtered("ConditionGreaterThan", "[3] 0,3,4", "[3] 1,2"));
}

TEST(ConditionFilterBy, EmptyRightSideIsTheDefault) {
    ConditionNet net;
    net.filterBy("ConditionEqualTo");
    net.type("c.value", "Color4");
    net.numbers<Color4<float>>("c.value", {});
    net.set("f.value", "[5] (0,0,0,1),(0,0,0,0)");
    EXPECT_EQ("[5] (0,0,0,1) 10", net.filtered());
}

TEST(ConditionFilterBy, EmptyValueGivesNothing) {
    ConditionNet net;
    net.filterBy("ConditionEqualTo");
    net.set("c.value", "[3] 1");
    net.type("f.value", "Real");
    net.numbers<float>("f.value", {});
    EXPECT_EQ("[3]  ", net.filtered());
    EXPECT_EQ("", net.messages("f"));
}

TEST(ConditionFilterBy, WithoutAConditionItIsEqualToTheDefault) {
    ConditionNet net;
    net.add("ConditionFilterBy", "f");
    net.set("f.value", "[1] 0,1,0");
    EXPECT_EQ("[1] 0,0 101", net.filtered());
    EXPECT_EQ("", net.messages("f"));
}

// --- conversions ---------------------------------------------------------------------------------

TEST(ConditionFilterBy, IntegersCompareWithTheCutReal) {
    EXPECT_EQ("[1] 2 010", filtered("ConditionEqualToConstant", "[3] 2.9", "[1] 1,2,3"));
    EXPECT_EQ("[1] 2 010", filtered("ConditionEqualTo", "[3] 2.9", "[1] 1,2,3"));
    EXPECT_EQ("[1] -2 01", filtered("ConditionEqualTo", "[3] -2.9", "[1] -3,-2"));
}

TEST(ConditionFilterBy, RealsCompareWithIntegers) {
    EXPECT_EQ("[3] 2.5 01", filtered("ConditionGreaterThanConstant", "[1] 2", "[3] 2,2.5"));
    EXPECT_EQ("[3] 2.5,7 011", filtered("ConditionGreaterThan", "[1] 2,1,6", "[3] 2,2.5,7"));
}

TEST(ConditionFilterBy, RealsCompareWithInteger64Constants) {
    ConditionNet net;
    net.filterBy("ConditionGreaterThanConstant");
    net.set("f.value", "[3] 2,2.5");
    net.set("c.value", "[1] 2");
    net.condition("f.condition").setInteger64Value(2);
    net.node("c").setUpdateEnabledPublic(false);
    EXPECT_EQ("[3] 2.5 01", net.filtered());
}

TEST(ConditionFilterBy, VectorsAndColorsCompareWithEachOther) {
    const TM_String colors = "[5] (1,2,3,1),(1,2,3,0.5)";
    EXPECT_EQ("[5] (1,2,3,1) 10", filtered("ConditionEqualToConstant", "[4] (1,2,3)", colors));
    EXPECT_EQ("[5] (1,2,3,1) 10", filtered("ConditionEqualTo", "[4] (1,2,3)", colors));
    EXPECT_EQ("[4] (1,2,3) 10",
              filtered("ConditionEqualToConstant", "[5] (1,2,3,9)", "[4] (1,2,3),(1,2,4)"));
    EXPECT_EQ("[4] (1,2,3),(4,5,6) 110", filtered("ConditionEqualTo", "[5] (1,2,3,9),(4,5,6,9)",
                                                  "[4] (1,2,3),(4,5,6),(1,2,3)"));
}

TEST(ConditionFilterBy, OtherTypesDoNotCompare) {
    const std::vector<std::vector<TM_String>> families = {
        {"[1] 1", "[3] 1"},
        {"[4] (1,1,1)", "[5] (1,1,1,1)"},
        {"[7] (1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)"},
    };
    const auto messages = [](const TM_String& maker, const TM_String& right,
                             const TM_String& value) {
        ConditionNet net;
        net.filterBy(maker);
        net.set("c.value", right);
        net.set("f.value", value);
        net.refresh("f.result");
        return net.messages("f");
    };
    for (const TM_String maker : {"ConditionEqualTo", "ConditionEqualToConstant"}) {
        for (const auto& rights : families) {
            for (const auto& values : families) {
                const TM_String expected =
                    &rights == &values ? "" : "[error] Condition value type not compatible\n";
                EXPECT_EQ(expected, messages(maker, rights.front(), values.back()));
                EXPECT_EQ(expected, messages(maker, rights.back(), values.front()));
            }
        }
    }
}

TEST(ConditionFilterBy, NumbersOf64BitsCompareByTheirLowHalf) {
    ConditionNet net;
    net.filterBy("ConditionEqualTo");
    net.set("f.value", "[1] 3,4,5");
    net.set("c.value", "[1] 0");
    net.as<weft::NumericAttribute>("c.value").ownNumeric().setType(weft::NumericType::integer64);
    net.numbers<int64_t>("c.value", {3, (int64_t(1) << 32) + 4, 6});
    EXPECT_EQ("[1] 3,4 110", net.filtered());
    net.set("f.value", "[3] 3,4,6");
    EXPECT_EQ("[3] 3,6 101", net.filtered());
    EXPECT_EQ("", net.messages("f"));
}

TEST(ConditionFilterBy, QuaternionsDoNotCompare) {
    ConditionNet net;
    net.filterBy("ConditionEqualTo");
    net.set("c.value", "[5] (0,0,0,1)");
    net.as<weft::NumericAttribute>("c.value").ownNumeric().setType(weft::NumericType::quaternion);
    net.set("f.value", "[5] (0,0,0,1)");
    net.refresh("f.result");
    EXPECT_EQ("[error] Condition value type not compatible\n", net.messages("f"));
}

TEST(ConditionFilterBy, ExtremesOfIntegersCompareExactly) {
    const TM_String values = "[1] -2147483648,2147483646,2147483647";
    EXPECT_EQ("[1] 2147483647 001", filtered("ConditionEqualTo", "[1] 2147483647", values));
    EXPECT_EQ("[1] -2147483648 100", filtered("ConditionLessThan", "[1] 0", values));
    EXPECT_EQ("[1] 2147483646,2147483647 011",
              filtered("ConditionGreaterThan", "[1] -2147483648", values));
}

TEST(ConditionFilterBy, OneComponentThatIsNoNumberFailsTheElement) {
    for (int code = 0; code < 6; ++code) {
        ConditionNet net;
        net.filterBy("ConditionGeneric");
        net.as<weft::EnumAttribute>("c.type").ownEnum().setKey(code);
        net.set("c.value", "[4] (1,1,1)");
        net.set("f.value", "[4] (1,1,1)");
        net.numbers<Vector3<float>>("f.value", {{1, notANumber, 1}, {1, 1, notANumber}});
        EXPECT_EQ(code == 1 ? "11" : "00", net.text("f.mask")) << code;
    }
}

// Such a number holds one element of 32 bits, which stands for all.
TEST(ConditionFilterBy, NumbersOf64BitsAreReadAsIntegers) {
    ConditionNet net;
    net.filterBy("ConditionEqualToConstant");
    net.set("c.value", "[1] 7");
    net.set("f.value", "[1] 7");
    auto& number = net.as<weft::NumericAttribute>("f.value").ownNumeric();
    number.setType(weft::NumericType::integer64);
    number.setValues(Array<int64_t>{1, 2, 3});
    net.pin("f.value").markDirty(true);
    EXPECT_EQ("[1] 7,7,7 111", net.filtered());
    EXPECT_EQ("", net.messages("f"));
}

TEST(ConditionFilterBy, OtherNumbersAreLeftAlone) {
    ConditionNet net;
    net.filterBy("ConditionEqualTo");
    EXPECT_EQ("[3] 2 01", net.filtered("[3] 2", "[3] 1,2"));
    auto& number = net.as<weft::NumericAttribute>("f.value").ownNumeric();
    for (const auto type : {weft::NumericType::quaternion, weft::NumericType::none}) {
        number.setType(type);
        net.pin("f.value").markDirty(true);
        net.node("f").doUpdate(&net.pin("f.result"));
        EXPECT_FALSE(net.pin("f.result").isClean());
        EXPECT_FALSE(net.pin("f.mask").isClean());
        EXPECT_EQ("[3] 2", net.pin("f.result").value()->asString());
        EXPECT_EQ("01", net.pin("f.mask").value()->asString());
    }
    EXPECT_EQ("", net.messages("f"));
}

TEST(ConditionFilterBy, RefusalLeavesTheOutputsAsTheyWere) {
    ConditionNet net;
    net.filterBy("ConditionEqualToConstant");
    EXPECT_EQ("[3] 2 01", net.filtered("[3] 2", "[3] 1,2"));
    net.set("c.value", "[4] (1,2,3)");
    net.node("f").doUpdate(&net.pin("f.result"));
    EXPECT_FALSE(net.pin("f.result").isClean());
    EXPECT_FALSE(net.pin("f.mask").isClean());
    EXPECT_EQ("[error] Condition value type not compatible\n", net.messages("f"));
    EXPECT_EQ("[3] 2", net.pin("f.result").value()->asString());
    EXPECT_EQ("01", net.pin("f.mask").value()->asString());
}

TEST(ConditionFilterBy, UnspecializedValueIsReported) {
    ConditionNet net;
    net.add("ConditionFilterBy", "f");
    net.refresh("f.mask");
    EXPECT_EQ("[error] input 'value' not specialized\n", net.messages("f"));
}

TEST(ConditionFilterBy, SomethingElseOnThePinIsRefused) {
    ConditionNet net;
    net.add("Real", "r");
    net.add("ConditionEqualTo", "c");
    net.add("ConditionIf", "i");
    net.add("ConditionFilterBy", "f");
    net.set("f.value", "[3] 1");
    ASSERT_TRUE(net.link("c.condition", "i.true value"));
    ASSERT_TRUE(net.link("r.real", "i.false value"));
    ASSERT_TRUE(net.link("i.value", "f.condition"));
    net.refresh("f.mask");
    EXPECT_EQ("[error] Condition value type not compatible\n", net.messages("f"));
}

// --- outputs -------------------------------------------------------------------------------------

TEST(ConditionFilterBy, ResultFollowsTheTypeOfTheValue) {
    ConditionNet net;
    net.add("ConditionFilterBy", "f");
    net.add("Vector3", "v");
    ASSERT_TRUE(net.link("v.vector", "f.value"));
    EXPECT_EQ("Vector3", net.pin("f.result").specialization());
}

TEST(ConditionFilterBy, OneUpdateServesBothOutputs) {
    ConditionNet net;
    net.filterBy("ConditionEqualTo");
    net.set("c.value", "[3] 1");
    net.set("f.value", "[3] 1");
    net.refresh("f.result");
    EXPECT_TRUE(net.pin("f.result").isClean());
    EXPECT_TRUE(net.pin("f.mask").isClean());
    net.set("f.value", "[3] 2");
    net.node("f").doUpdate(&net.pin("f.mask"));
    EXPECT_TRUE(net.pin("f.result").isClean());
    EXPECT_TRUE(net.pin("f.mask").isClean());
}

TEST(ConditionFilterBy, UnwantedOutputsAreNotComputed) {
    ConditionNet net;
    net.filterBy("ConditionEqualTo");
    net.set("c.value", "[3] 1");
    net.set("f.value", "[3] 1,2,1");
    net.pin("f.mask").setToBeEvaluated(false);
    EXPECT_EQ("[3] 1,1", net.text("f.result"));
    EXPECT_FALSE(net.pin("f.mask").isClean());
    EXPECT_EQ("0", net.pin("f.mask").value()->asString());
    net.pin("f.result").setToBeEvaluated(false);
    net.set("f.value", "[3] 2,1");
    EXPECT_EQ("01", net.text("f.mask"));
    EXPECT_FALSE(net.pin("f.result").isClean());
    EXPECT_EQ("[3] 1,1", net.pin("f.result").value()->asString());
}

TEST(ConditionFilterBy, AnOutputThatIsAskedForIsComputed) {
    ConditionNet net;
    net.filterBy("ConditionEqualTo");
    net.set("c.value", "[3] 1");
    net.set("f.value", "[3] 1,2,1");
    net.pin("f.mask").setToBeEvaluated(false);
    net.pin("f.result").setToBeEvaluated(false);
    EXPECT_EQ("101", net.text("f.mask"));
    EXPECT_EQ("[3] 1,1", net.text("f.result"));
}

TEST(ConditionFilterBy, MaskFiltersOtherArraysAlike) {
    ConditionNet net;
    net.filterBy("ConditionGreaterThan");
    net.add("Vector3", "v");
    net.add("ArrayNumFilterByMask", "m");
    ASSERT_TRUE(net.link("v.vector", "m.array"));
    ASSERT_TRUE(net.link("f.mask", "m.mask"));
    net.set("c.value", "[3] 2");
    net.set("f.value", "[3] 3,1,5");
    net.numbers<Vector3<float>>("v.in", {{1, 1, 1}, {2, 2, 2}, {3, 3, 3}});
    EXPECT_EQ("[4] (1,1,1),(3,3,3)", net.text("m.result"));
}

TEST(ConditionFilterBy, ReadersHearOfTheResult) {
    ConditionNet net;
    net.filterBy("ConditionEqualTo");
    net.add("ArraySize", "n");
    net.link("f.result", "n.array");
    net.set("c.value", "[3] 1");
    net.set("f.value", "[3] 1,2,1");
    EXPECT_EQ("[1] 2", net.text("n.size"));
    net.set("f.value", "[3] 1");
    EXPECT_EQ("[1] 1", net.text("n.size"));
}

// --- in place ------------------------------------------------------------------------------------

class InPlace : public testing::Test {
protected:
    InPlace() {
        net.filterBy("ConditionGreaterThan");
        net.add("Real", "r");
        net.link("r.real", "f.value");
        net.pin("f.value").addPassThrough(&net.pin("f.result"));
        net.set("c.value", "[3] 2");
    }
    ConditionNet net;
};

TEST_F(InPlace, WhatFailsStays) {
    net.numbers<float>("r.in", {1, 2, 3});
    EXPECT_EQ("[3] 1,2", net.text("f.result"));
    EXPECT_EQ("001", net.pin("f.mask").value()->asString());
    EXPECT_EQ("[3] 1,2", net.pin("r.real").value()->asString());
}

TEST_F(InPlace, HappensOncePerRun) {
    net.add("ArraySize", "of result");
    net.add("ArraySize", "of mask");
    net.link("f.result", "of result.array");
    net.link("f.mask", "of mask.array");
    net.numbers<float>("r.in", {1, 5, 2, 7, 3});
    EXPECT_EQ("[1] 2", net.text("of result.size"));
    EXPECT_EQ("[1] 5", net.text("of mask.size"));
    EXPECT_EQ("[3] 1,2", net.pin("f.result").currentValue()->asString());
    net.numbers<float>("r.in", {1, 5, 2, 7, 3});
    EXPECT_EQ("[1] 5", net.text("of mask.size"));
    EXPECT_EQ("[1] 2", net.text("of result.size"));
}

TEST_F(InPlace, MaskAloneRemovesNothing) {
    net.numbers<float>("r.in", {1, 2, 3});
    net.pin("f.result").setToBeEvaluated(false);
    EXPECT_EQ("001", net.text("f.mask"));
    EXPECT_EQ("[3] 1,2,3", net.pin("r.real").value()->asString());
}

TEST_F(InPlace, WithoutTheMaskToo) {
    net.numbers<float>("r.in", {1, 5, 2, 7, 3});
    net.pin("f.mask").setToBeEvaluated(false);
    EXPECT_EQ("[3] 1,2", net.text("f.result"));
}

TEST_F(InPlace, ComparesWithWhatTheArrayWas) {
    net.link("r.real", "c.value");
    net.numbers<float>("r.in", {1, 2, 3});
    EXPECT_EQ("[3] 1,2,3", net.text("f.result"));
    EXPECT_EQ("000", net.pin("f.mask").value()->asString());
}

TEST_F(InPlace, WhatIsNoComparisonKeepsAll) {
    net.numbers<float>("r.in", {1, 2, 3});
    net.condition("c.condition").setConditionType(static_cast<Type>(12));
    EXPECT_EQ("[3] 1,2,3", net.text("f.result"));
    EXPECT_EQ("000", net.pin("f.mask").value()->asString());
}

TEST_F(InPlace, LongArraysKeepTheirOrder) {
    std::vector<float> kept;
    Array<float> values;
    for (int i = 0; i < 3000; ++i) {
        values.append(static_cast<float>(i * 7 % 5));
        if (values.back() <= 2.0f) kept.push_back(values.back());
    }
    auto& in = net.as<weft::NumericAttribute>("r.in");
    in.ownNumeric().setValues(values);
    in.valueChanged();
    net.refresh("f.result");
    const auto& result = net.as<weft::NumericAttribute>("f.result").numeric().values<float>();
    EXPECT_EQ(kept, std::vector<float>(result.begin(), result.end()));
}

TEST(ConditionFilterByInPlace, IntegersToo) {
    ConditionNet net;
    net.filterBy("ConditionGreaterThan");
    net.set("c.value", "[1] 2");
    net.set("f.value", "[1] 1,3,2,4");
    net.pin("f.value").addPassThrough(&net.pin("f.result"));
    EXPECT_EQ("[1] 1,2", net.text("f.result"));
}

TEST(ConditionFilterByInPlace, BehindAChoice) {
    ConditionNet net;
    net.filterBy("ConditionGreaterThan");
    net.set("c.value", "[3] 2");
    net.add("ConditionIf", "i");
    net.add("Real", "yes");
    net.add("Real", "no");
    net.link("yes.real", "i.true value");
    net.link("no.real", "i.false value");
    net.link("i.value", "f.value");
    net.pin("f.value").addPassThrough(&net.pin("f.result"));
    net.numbers<float>("yes.in", {1, 2, 3});
    net.numbers<float>("no.in", {0, 9});
    EXPECT_EQ("[3] 0", net.text("f.result"));
    net.bits("i.condition", {true});
    EXPECT_EQ("[3] 1,2", net.text("f.result"));
    EXPECT_EQ("[3] 1,2", net.pin("yes.real").value()->asString());
}

TEST(ConditionFilterByInPlace, StructuredElementsToo) {
    ConditionNet net;
    net.filterBy("ConditionGreaterThan");
    net.set("c.value", "[4] (0,0,0)");
    net.set("f.value", "[4] (1,1,1),(0,1,1),(2,2,2),(3,0,3)");
    net.pin("f.value").addPassThrough(&net.pin("f.result"));
    EXPECT_EQ("[4] (0,1,1),(3,0,3)", net.text("f.result"));
}

// --- against the plain loop ----------------------------------------------------------------------

bool holds(int code, int32_t a, int32_t b) {
    const bool outcomes[] = {a == b, a != b, a<b, a <= b, a> b, a >= b};
    return outcomes[code];
}
bool holds(int code, float a, float b) {
    const float tolerance = 1.1920929e-5f;
    const bool equal = a < b ? a + tolerance >= b : b + tolerance >= a;
    const bool outcomes[] = {equal, !equal, a<b, a <= b, a> b, a >= b};
    return outcomes[code];
}
template <typename T>
bool holds(int code, const T& a, const T& b) {
    const auto* left = reinterpret_cast<const float*>(&a);
    const auto* right = reinterpret_cast<const float*>(&b);
    bool all = true;
    for (std::size_t i = 0; i < sizeof(T) / sizeof(float); ++i) {
        all = all && holds(code == 1 ? 0 : code, left[i], right[i]);
    }
    return code == 1 ? !all : all;
}

// Few different numbers, so that equal ones meet; some of them only nearly equal.
template <typename T>
T randomElement(std::mt19937& random) {
    const auto component = [&] {
        return static_cast<float>(random() % 3) + static_cast<float>(random() % 3) * 9e-6f;
    };
    if constexpr (std::is_arithmetic_v<T>) {
        return static_cast<T>(component());
    } else {
        T element;
        for (std::size_t i = 0; i < sizeof(T) / sizeof(float); ++i) {
            reinterpret_cast<float*>(&element)[i] = i % 3 == 0 ? component() : 1.0f;
        }
        return element;
    }
}

template <typename T>
class Comparisons : public testing::Test {};
using ElementTypes = testing::Types<int32_t, float, Vector3<float>, Color4<float>, Matrix4<float>>;
TYPED_TEST_SUITE(Comparisons, ElementTypes);

template <typename T>
void expectPlain(uint32_t count, uint32_t rightCount, int code, std::mt19937& random) {
    Array<T> values;
    Array<T> right;
    for (uint32_t i = 0; i < count; ++i) values.append(randomElement<T>(random));
    for (uint32_t i = 0; i < rightCount; ++i) right.append(randomElement<T>(random));
    std::string mask;
    std::vector<T> kept;
    for (uint32_t i = 0; i < count; ++i) {
        const bool holding = holds(code, values[i], right[std::min(i, rightCount - 1)]);
        mask += holding ? '1' : '0';
        if (holding) kept.push_back(values[i]);
    }
    ConditionNet net;
    net.filterBy("ConditionGeneric");
    net.as<weft::EnumAttribute>("c.type").ownEnum().setKey(code);
    for (const auto& [pin, elements] : {std::pair("c.value", &right), {"f.value", &values}}) {
        net.type(pin, weft::nameOf(weft::numericTypeFor<T>));
        net.as<weft::NumericAttribute>(pin).ownNumeric().setValues(*elements);
        net.pin(pin).valueChanged();
    }
    EXPECT_EQ(mask, net.text("f.mask")) << count << " against " << rightCount;
    const auto& result = net.as<weft::NumericAttribute>("f.result").numeric();
    EXPECT_EQ(kept.size(), result.size());
    const auto& elements = result.values<T>();
    EXPECT_TRUE(std::equal(kept.begin(), kept.end(), elements.begin(), elements.end()));
}

TYPED_TEST(Comparisons, AgreeWithThePlainLoop) {
    std::mt19937 random(7);
    for (const uint32_t count : {1u, 31u, 32u, 33u, 127u, 129u, 1023u, 1025u, 2100u}) {
        for (int code = 0; code < 6; ++code) {
            expectPlain<TypeParam>(count, 1, code, random);
            expectPlain<TypeParam>(count, count, code, random);
            expectPlain<TypeParam>(count, 1 + random() % count, code, random);
            expectPlain<TypeParam>(count, count + 5, code, random);
        }
    }
}

TEST(ConditionFilterBy, ConvertedRightSidesRepeatToo) {
    ConditionNet net;
    net.filterBy("ConditionEqualTo");
    net.type("c.value", "Real");
    net.type("f.value", "Integer");
    for (const uint32_t rightCount : {1u, 2u, 700u, 1024u, 1025u, 2000u, 5000u}) {
        Array<float> right;
        Array<int32_t> values;
        std::string mask;
        for (uint32_t i = 0; i < rightCount; ++i) right.append(static_cast<float>(i % 5) + 0.7f);
        for (uint32_t i = 0; i < 3000; ++i) {
            values.append(static_cast<int32_t>(i % 7));
            const float other = right[std::min(i, rightCount - 1)];
            mask += values.back() == static_cast<int32_t>(other) ? '1' : '0';
        }
        net.as<weft::NumericAttribute>("c.value").ownNumeric().setValues(right);
        net.as<weft::NumericAttribute>("f.value").ownNumeric().setValues(values);
        net.pin("c.value").markDirty(true);
        net.pin("f.value").markDirty(true);
        EXPECT_EQ(mask, net.text("f.mask")) << rightCount;
    }
}

TEST(ConditionFilterBy, MayWriteWhereTheConditionReads) {
    ConditionNet net;
    net.add("ConditionFilterBy", "f");
    net.set("f.value", "[3] 5,1,7,9");
    auto& own = net.as<ConditionAttribute>("f.condition").ownCondition();
    auto& result = net.as<weft::NumericAttribute>("f.result").ownNumeric();
    result.setValues(Array<float>{4, 4, 8, 8});
    own.setConditionType(Type::greaterThan);
    own.setNumericValue(&result);
    EXPECT_EQ("[3] 5,9 1001", net.filtered());
}

// --- limits --------------------------------------------------------------------------------------

TEST(ConditionFilterBy, LongWorkAnswersAnInterrupt) {
    ConditionNet net;
    net.filterBy("ConditionEqualTo");
    net.set("c.value", "[3] 0");
    net.type("f.value", "Real");
    net.as<weft::NumericAttribute>("f.value").ownNumeric().resize(3000000);
    net.pin("f.value").valueChanged();
    net.refresh("c.condition");
    net.pin("f.condition").pull();
    net.pin("f.value").pull();
    net.manager().setEvaluating(true);
    net.manager().requestInterrupt();
    EXPECT_THROW(net.node("f").doUpdate(&net.pin("f.result")), std::exception);
    net.manager().clearInterrupt();
    net.manager().setEvaluating(false);
    const auto& result = net.as<weft::NumericAttribute>("f.result").numeric();
    EXPECT_EQ(result.size(), result.values<float>().size());
    EXPECT_EQ("[3] ", result.asString()) << "what was not computed is not shown";
    EXPECT_EQ("", net.pin("f.mask").value()->asString());
    EXPECT_FALSE(net.pin("f.result").isClean());
}

TEST(ConditionFilterBy, PinnedResultsStayWhereTheyAre) {
    ConditionNet net;
    net.filterBy("ConditionGreaterThan");
    net.set("c.value", "[3] 2");
    net.set("f.value", "[3] 1,2,3");
    auto& result = net.as<weft::NumericAttribute>("f.result").ownNumeric();
    result.resize(10);
    const float* const place = result.refValues<float>().data();
    result.pin(true);
    EXPECT_EQ("[3] 3 001", net.filtered());
    EXPECT_EQ(place, result.values<float>().data());
    result.pin(false);
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Nodes that make conditions.
#include <gtest/gtest.h>

#include "nodes/values/conditions/condition_net.h"

namespace {

using namespace sluice_tests;
using Type = ConditionValue::ConditionType;

const char* const operators[] = {"EqualTo",     "NotEqualTo",  "LessThan",
                                 "LessOrEqual", "GreaterThan", "GreaterOrEqual"};

TEST(ConditionMakers, EachStoresItsCode) {
    for (int code = 0; code < 6; ++code) {
        ConditionNet net;
        net.add(TM_String("Condition") + operators[code], "number");
        net.add(TM_String("Condition") + operators[code] + "Constant", "constant");
        net.set("number.value", "[3] 1,2");
        net.set("constant.value", "[3] 1");
        const ConditionValue& number = net.condition("number.condition");
        EXPECT_EQ(code, static_cast<int>(number.getConditionType()));
        EXPECT_EQ(net.pin("number.value").currentValue(), number.getNumericValue());
        EXPECT_FALSE(number.isConstant());
        const ConditionValue& constant = net.condition("constant.condition");
        EXPECT_EQ(code + 6, static_cast<int>(constant.getConditionType()));
        EXPECT_EQ(nullptr, constant.getNumericValue());
        EXPECT_TRUE(constant.isConstant());
    }
}

TEST(ConditionMakers, OnlyAMadeConditionIsClean) {
    for (const char* type : {"ConditionLessThan", "ConditionLessThanConstant"}) {
        ConditionNet net;
        net.add(type, "c");
        net.node("c").doUpdate(&net.pin("c.condition"));
        EXPECT_FALSE(net.pin("c.condition").isClean()) << type;
        net.set("c.value", "[3] 1");
        net.node("c").doUpdate(&net.pin("c.condition"));
        EXPECT_TRUE(net.pin("c.condition").isClean()) << type;
    }
}

TEST(ConditionMakers, UnspecializedOneStoresItsCodeAlone) {
    for (const char* type : {"ConditionLessThan", "ConditionLessThanConstant"}) {
        ConditionNet net;
        net.add(type, "c");
        const ConditionValue& condition = net.condition("c.condition");
        EXPECT_EQ("less than", condition.asString());
        EXPECT_EQ("[error] input 'value' not specialized\n", net.messages("c"));
    }
}

TEST(ConditionMakers, ConstantIsTheFirstElementOfEveryType) {
    for (const TM_String text : {"[1] 7", "[3] 2.5", "[4] (1,2,3)", "[5] (1,2,3,4)",
                                 "[7] (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16)"}) {
        ConditionNet net;
        net.add("ConditionEqualToConstant", "c");
        net.set("c.value", text);
        EXPECT_EQ("equal to " + text, net.text("c.condition"));
        EXPECT_EQ("", net.messages("c"));
    }
}

TEST(ConditionMakers, ConstantOfAnEmptyArrayIsTheDefault) {
    ConditionNet net;
    net.add("ConditionEqualToConstant", "c");
    net.type("c.value", "Color4");
    net.as<weft::NumericAttribute>("c.value").ownNumeric().setValue(
        tidemark::Color4<float>(1, 2, 3, 4));
    net.numbers<tidemark::Color4<float>>("c.value", {});
    EXPECT_EQ("equal to [5] (0,0,0,1)", net.text("c.condition"));
}

TEST(ConditionMakers, NumbersThatNoConditionComparesLeaveTheConstant) {
    for (const auto type : {weft::NumericType::integer64, weft::NumericType::quaternion}) {
        ConditionNet net;
        net.add("ConditionEqualToConstant", "c");
        net.set("c.value", "[3] 2.5");
        EXPECT_EQ("equal to [3] 2.5", net.text("c.condition"));
        const weft::Retained<weft::Numeric> held(new weft::Numeric(&net.manager()));
        ConditionValue& condition = net.condition("c.condition");
        condition.setNumericValue(held.get());
        condition.setConstant(false);
        net.as<weft::NumericAttribute>("c.value").ownNumeric().setType(type);
        net.pin("c.value").markDirty(true);
        EXPECT_EQ("equal to [3] 2.5", net.text("c.condition"));
        EXPECT_TRUE(condition.isConstant());
        EXPECT_EQ(nullptr, condition.getNumericValue());
    }
}

TEST(ConditionMakers, LosingTheTypeLeavesTheRightSide) {
    for (const TM_String type : {"ConditionLessThan", "ConditionLessThanConstant"}) {
        ConditionNet net;
        net.add("Real", "r");
        net.add(type, "c");
        net.link("r.real", "c.value");
        net.numbers<float>("r.in", {2.5f});
        EXPECT_EQ("less than [3] 2.5", net.text("c.condition"));
        ConditionValue& condition = net.as<ConditionAttribute>("c.condition").ownCondition();
        const bool isConstant = condition.isConstant();
        net.pin("c.value").disconnectSource();
        condition.setConditionType(Type::equalTo);
        net.node("c").doUpdate(&net.pin("c.condition"));
        EXPECT_EQ("[error] input 'value' not specialized\n", net.messages("c"));
        EXPECT_EQ("less than [3] 2.5", condition.asString()) << "the code is stored all the same";
        EXPECT_FALSE(net.pin("c.condition").isClean());
        EXPECT_EQ(isConstant, condition.isConstant());
        EXPECT_EQ(isConstant, condition.getNumericValue() == nullptr);
    }
}

TEST(ConditionMakers, ConstantOfManyWarnsAndTakesTheFirst) {
    ConditionNet net;
    net.add("Real", "r");
    net.add("ConditionEqualToConstant", "c");
    net.link("r.real", "c.value");
    net.numbers<float>("r.in", {1, 2});
    EXPECT_EQ("equal to [3] 1", net.text("c.condition"));
    EXPECT_EQ("[warning] size of attribute 'value' is different than 1 (2). Extra elements will be "
              "ignored\n",
              net.messages("c"));
}

TEST(ConditionMakers, ConstantIsTakenWhenTheConditionIsMade) {
    ConditionNet net;
    net.add("Real", "r");
    net.add("ConditionEqualToConstant", "c");
    net.link("r.real", "c.value");
    net.numbers<float>("r.in", {1});
    EXPECT_EQ("equal to [3] 1", net.text("c.condition"));
    net.as<weft::NumericAttribute>("r.real").ownNumeric().setValue(5.0f);
    EXPECT_EQ("equal to [3] 1", net.pin("c.condition").currentValue()->asString());
}

TEST(ConditionMakers, NumberIsReadWhenTheConditionIsApplied) {
    ConditionNet net;
    net.add("Real", "r");
    net.filterBy("ConditionEqualTo");
    net.link("r.real", "c.value");
    net.numbers<float>("r.in", {1});
    net.set("f.value", "[3] 1,5");
    EXPECT_EQ("[3] 1 10", net.filtered());
    net.as<weft::NumericAttribute>("r.real").ownNumeric().setValue(5.0f);
    net.pin("f.value").valueChanged();
    EXPECT_EQ("[3] 5 01", net.filtered());
}

TEST(ConditionMakers, NumberOutlivesItsNode) {
    ConditionNet net;
    net.add("Real", "r");
    net.filterBy("ConditionEqualTo");
    net.link("r.real", "c.value");
    net.numbers<float>("r.in", {5});
    net.set("f.value", "[3] 1,5");
    EXPECT_EQ("[3] 5 01", net.filtered());
    // Nobody asks the maker again: it goes on showing what it showed.
    net.node("c").setUpdateEnabledPublic(false);
    net.pin("r.real").deleteIt();
    EXPECT_EQ("[3] 5 01", net.filtered());
    EXPECT_EQ("equal to [3] 5", net.text("c.condition"));
}

TEST(ConditionMakers, DisconnectedNumberIsTheOwnOne) {
    ConditionNet net;
    net.add("Real", "r");
    net.filterBy("ConditionEqualTo");
    net.link("r.real", "c.value");
    net.numbers<float>("r.in", {5});
    net.set("f.value", "[3] 0,5");
    EXPECT_EQ("[3] 5 01", net.filtered());
    net.pin("c.value").disconnectSource();
    net.set("c.value", "[3] 0");
    EXPECT_EQ("[3] 0 10", net.filtered());
}

TEST(ConditionGeneric, ActsAsGreaterThanByDefault) {
    ConditionNet net;
    net.filterBy("ConditionGeneric");
    EXPECT_EQ("[3] 3 001", net.filtered("[3] 2", "[3] 1,2,3"));
    EXPECT_EQ(Type::greaterThan, net.condition("c.condition").getConditionType());
}

TEST(ConditionGeneric, TakesTheChosenComparison) {
    const TM_String masks[] = {"010", "101", "100", "110", "001", "011"};
    for (int key = 0; key < 6; ++key) {
        ConditionNet net;
        net.filterBy("ConditionGeneric");
        net.as<weft::EnumAttribute>("c.type").ownEnum().setKey(key);
        net.filtered("[3] 2", "[3] 1,2,3");
        EXPECT_EQ(masks[key], net.text("f.mask")) << key;
    }
}

TEST(ConditionGeneric, LabelsBelongToTheirKeys) {
    ConditionNet net;
    net.add("ConditionGeneric", "c");
    const weft::Enum& options = net.as<weft::EnumAttribute>("c.type").ownEnum();
    EXPECT_EQ(0, options.keyOf("equal to"));
    EXPECT_EQ(1, options.keyOf("not equal to"));
    EXPECT_EQ(2, options.keyOf("less than"));
    EXPECT_EQ(3, options.keyOf("less or equal than"));
    EXPECT_EQ(4, options.keyOf("greater than"));
    EXPECT_EQ(5, options.keyOf("greater or equal than"));
    EXPECT_EQ(6u, options.options().size());
}

TEST(ConditionGeneric, TakesNumbersAndLabels) {
    ConditionNet net;
    net.filterBy("ConditionGeneric");
    net.add("Integer", "i");
    net.add("String", "s");
    ASSERT_TRUE(net.link("i.integer", "c.type"));
    net.numbers<int32_t>("i.in", {2});
    EXPECT_EQ("[3] 1 100", net.filtered("[3] 2", "[3] 1,2,3"));
    net.pin("c.type").disconnectSource();
    ASSERT_TRUE(net.link("s.out", "c.type"));
    net.strings("s.in", {"greater or equal than"});
    EXPECT_EQ("[3] 2,3 011", net.filtered());
}

TEST(ConditionGeneric, StoresItsCodeWithoutATypeToo) {
    ConditionNet net;
    net.add("ConditionGeneric", "c");
    net.as<weft::EnumAttribute>("c.type").ownEnum().setKey(3);
    EXPECT_EQ("less or equal than", net.text("c.condition"));
    EXPECT_EQ("[error] input 'value' not specialized\n", net.messages("c"));
}

TEST(ConditionGeneric, CodesOfConstantsCompareWithTheNumber) {
    const TM_String masks[] = {"010", "101", "100", "110", "001", "011"};
    ConditionNet net;
    net.filterBy("ConditionGeneric");
    net.add("Integer", "i");
    net.link("i.integer", "c.type");
    for (int32_t code = 6; code < 12; ++code) {
        net.numbers<int32_t>("i.in", {code});
        net.filtered("[3] 2", "[3] 1,2,3");
        EXPECT_EQ(masks[code - 6], net.text("f.mask")) << code;
    }
}

TEST(ConditionGeneric, TakesTheFirstOfManyCodes) {
    ConditionNet net;
    net.filterBy("ConditionGeneric");
    net.as<weft::EnumAttribute>("c.type").ownEnum().refKeys() = {2, 5};
    net.pin("c.type").valueChanged();
    EXPECT_EQ("[3] 1 100", net.filtered("[3] 2", "[3] 1,2,3"));
    EXPECT_EQ("[warning] size of attribute 'type' is different than 1 (2). Extra elements will be "
              "ignored\n",
              net.messages("c"));
}

TEST(ConditionGeneric, UnknownCodesHoldForNothing) {
    ConditionNet net;
    net.filterBy("ConditionGeneric");
    net.add("Integer", "i");
    net.link("i.integer", "c.type");
    for (const int32_t code : {12, 1000, -1, -2147483647}) {
        net.numbers<int32_t>("i.in", {code});
        EXPECT_EQ("[3]  000", net.filtered("[3] 2", "[3] 1,2,3")) << code;
    }
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Choosing between two values.
#include <gtest/gtest.h>

#include "core/exceptions.h"
#include "core/network_manager.h"
#include "nodes/values/conditions/condition_net.h"

namespace {

using namespace sluice_tests;

class ConditionIf : public testing::Test {
protected:
    ConditionIf() {
        net.add("ConditionIf", "i");
        net.add("Real", "yes");
        net.add("Real", "no");
        net.numbers<float>("yes.in", {1, 2});
        net.numbers<float>("no.in", {3});
    }
    void linkBoth() {
        ASSERT_TRUE(net.link("yes.real", "i.true value"));
        ASSERT_TRUE(net.link("no.real", "i.false value"));
    }
    ConditionNet net;
};

TEST_F(ConditionIf, TakesOneOfTheTwo) {
    linkBoth();
    EXPECT_EQ("[3] 3", net.text("i.value"));
    net.bits("i.condition", {true});
    EXPECT_EQ("[3] 1,2", net.text("i.value"));
}

TEST_F(ConditionIf, SharesTheObject) {
    linkBoth();
    net.refresh("i.value");
    EXPECT_EQ(net.pin("no.real").value(), net.pin("i.value").value());
}

TEST_F(ConditionIf, ReadersSeeTheObjectToo) {
    linkBoth();
    net.add("Add", "a");
    ASSERT_TRUE(net.link("i.value", "a.in0"));
    net.set("a.in1", "[3] 10");
    EXPECT_EQ("[3] 13", net.text("a.result"));
    EXPECT_EQ(net.pin("no.real").value(), net.pin("a.in0").currentValue());
    net.bits("i.condition", {true});
    EXPECT_EQ("[3] 11,12", net.text("a.result"));
    net.numbers<float>("yes.in", {5});
    EXPECT_EQ("[3] 15", net.text("a.result"));
}

TEST_F(ConditionIf, WhatWasChosenIsClean) {
    linkBoth();
    net.node("i").doUpdate(&net.pin("i.value"));
    EXPECT_TRUE(net.pin("i.value").isClean());
}

TEST_F(ConditionIf, PullsTheChosenOneOnly) {
    linkBoth();
    net.refresh("i.value");
    EXPECT_TRUE(net.pin("no.real").isClean());
    EXPECT_FALSE(net.pin("yes.real").isClean());
}

TEST_F(ConditionIf, ReadsTheFirstBit) {
    linkBoth();
    net.add("Bit", "b");
    net.link("b.bit", "i.condition");
    net.bits("b.in", {true, false});
    EXPECT_EQ("[3] 1,2", net.text("i.value"));
    EXPECT_EQ("[warning] size of attribute 'condition' is different than 1 (2). Extra elements "
              "will be ignored\n",
              net.messages("i"));
    net.bits("b.in", {});
    EXPECT_EQ("[3] 3", net.text("i.value"));
}

TEST_F(ConditionIf, EmptyChoiceStops) {
    EXPECT_THROW(net.refresh("i.value"), tidemark::sluice::graph::GenericGraphException);
    EXPECT_EQ("[critical] Input is empty\n", net.messages("i"));
    ASSERT_TRUE(net.link("no.real", "i.false value"));
    EXPECT_EQ("[3] 3", net.text("i.value"));
    net.bits("i.condition", {true});
    EXPECT_THROW(net.refresh("i.value"), tidemark::sluice::graph::GenericGraphException);
}

TEST_F(ConditionIf, MayCarryEveryType) {
    EXPECT_EQ(68u, net.pin("i.value").allowedSpecializations().size());
    EXPECT_TRUE(net.pin("i.value").allowedSpecializations() ==
                net.pin("i.true value").allowedSpecializations());
}

TEST_F(ConditionIf, OutputIsOfTheTypeOfTheTrueValue) {
    ASSERT_TRUE(net.link("yes.real", "i.true value"));
    EXPECT_EQ("Real", net.pin("i.value").specialization());
    net.pin("i.true value").disconnectSource();
    EXPECT_EQ(68u, net.pin("i.value").specializations().size());
}

TEST_F(ConditionIf, FalseValueHasNoSayInTheType) {
    net.add("String", "s");
    ASSERT_TRUE(net.link("s.out", "i.false value"));
    EXPECT_EQ(68u, net.pin("i.value").specializations().size());
    ASSERT_TRUE(net.link("yes.real", "i.true value"));
    EXPECT_EQ("Real", net.pin("i.value").specialization());
}

TEST_F(ConditionIf, AllowedTypesFollowTheTrueValue) {
    net.pin("i.true value").setAllowedSpecializations({"Real", "Integer"});
    ASSERT_TRUE(net.link("no.real", "i.false value"));
    EXPECT_EQ("\"Real\", \"Integer\"", [&] {
        TM_String text;
        for (const TM_String& name : net.pin("i.value").allowedSpecializations().names()) {
            text += (text.empty() ? "\"" : ", \"") + name + "\"";
        }
        return text;
    }());
    EXPECT_EQ(2u, net.pin("i.value").specializations().size());
}

TEST_F(ConditionIf, AllowedTypesFollowAChoiceOfType) {
    net.pin("i.true value").setAllowedSpecializations({"Real", "Integer"});
    net.type("i.true value", "Integer");
    EXPECT_EQ(2u, net.pin("i.value").allowedSpecializations().size());
    EXPECT_EQ("Integer", net.pin("i.value").specialization());
}

TEST_F(ConditionIf, ChoosesAmongChoices) {
    linkBoth();
    net.add("ConditionIf", "outer");
    net.add("Real", "other");
    net.numbers<float>("other.in", {7});
    ASSERT_TRUE(net.link("i.value", "outer.true value"));
    ASSERT_TRUE(net.link("other.real", "outer.false value"));
    EXPECT_EQ("Real", net.pin("outer.value").specialization());
    EXPECT_EQ("[3] 7", net.text("outer.value"));
    net.bits("outer.condition", {true});
    EXPECT_EQ("[3] 3", net.text("outer.value"));
    net.bits("i.condition", {true});
    EXPECT_EQ("[3] 1,2", net.text("outer.value"));
    EXPECT_EQ(net.pin("yes.real").value(), net.pin("outer.value").value());
}

TEST_F(ConditionIf, ReaderOfAnotherTypeSeesItsFallback) {
    net.add("String", "s");
    net.add("StringInfo", "n");
    ASSERT_TRUE(net.link("s.out", "i.true value"));
    ASSERT_TRUE(net.link("no.real", "i.false value"));
    ASSERT_TRUE(net.link("i.value", "n.string"));
    EXPECT_EQ("[1] 0", net.text("n.length"));
    net.bits("i.condition", {true});
    net.strings("s.in", {"four"});
    EXPECT_EQ("[1] 4", net.text("n.length"));
}

TEST_F(ConditionIf, ValueOutlivesItsSource) {
    linkBoth();
    net.refresh("i.value");
    net.pin("no.real").deleteIt();
    EXPECT_EQ("[3] 3", net.pin("i.value").value()->asString());
    EXPECT_THROW(net.refresh("i.value"), tidemark::sluice::graph::GenericGraphException);
}

TEST_F(ConditionIf, ChoosesConditions) {
    net.add("ConditionLessThanConstant", "less");
    net.add("ConditionGreaterThanConstant", "greater");
    net.add("ConditionFilterBy", "f");
    net.set("less.value", "[3] 2");
    net.set("greater.value", "[3] 2");
    ASSERT_TRUE(net.link("less.condition", "i.true value"));
    ASSERT_TRUE(net.link("greater.condition", "i.false value"));
    ASSERT_TRUE(net.link("i.value", "f.condition"));
    net.set("f.value", "[3] 1,2,3");
    EXPECT_EQ("[3] 3 001", net.filtered());
    net.bits("i.condition", {true});
    EXPECT_EQ("[3] 1 100", net.filtered());
}

} // namespace

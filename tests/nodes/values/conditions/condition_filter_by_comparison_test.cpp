// SPDX-License-Identifier: Apache-2.0
// Filters that compare two arrays.
#include <gtest/gtest.h>

#include "core/network_manager.h"
#include "nodes/values/conditions/condition_net.h"

namespace {

using namespace sluice_tests;

const char* const types[] = {"ConditionFilterByEqualTo",     "ConditionFilterByNotEqualTo",
                             "ConditionFilterByLessThan",    "ConditionFilterByLessOrEqual",
                             "ConditionFilterByGreaterThan", "ConditionFilterByGreaterOrEqual"};

TEST(ConditionFilterByComparison, EachComparesTheFirstWithTheSecond) {
    const TM_String expected[] = {"2 010", "1,3 101", "1 100", "1,2 110", "3 001", "2,3 011"};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ("[1] " + expected[i], filteredBy(types[i], "[1] 1,2,3", "[1] 2"));
        EXPECT_EQ("[3] " + expected[i], filteredBy(types[i], "[3] 1,2,3", "[3] 2"));
    }
}

TEST(ConditionFilterByComparison, VectorsCompareInAllComponents) {
    EXPECT_EQ("[4] (1,1,1) 10",
              filteredBy("ConditionFilterByLessThan", "[4] (1,1,1),(1,2,1)", "[4] (2,2,2)"));
    EXPECT_EQ("[4] (1,1,1),(1,2,1) 11",
              filteredBy("ConditionFilterByLessOrEqual", "[4] (1,1,1),(1,2,1)", "[4] (2,2,2)"));
    EXPECT_EQ("[4]  0", filteredBy("ConditionFilterByGreaterThan", "[4] (1,5,0)", "[4] (2,4,0)"));
}

TEST(ConditionFilterByComparison, ColorsAndMatricesToo) {
    EXPECT_EQ("[5] (1,2,3,4) 10",
              filteredBy("ConditionFilterByEqualTo", "[5] (1,2,3,4),(1,2,3,5)", "[5] (1,2,3,4)"));
    const TM_String matrix = "[7] (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16)";
    EXPECT_EQ(matrix + " 1", filteredBy("ConditionFilterByEqualTo", matrix, matrix));
    EXPECT_EQ("[7]  0", filteredBy("ConditionFilterByNotEqualTo", matrix, matrix));
}

TEST(ConditionFilterByComparison, RealsAreEqualWithinATolerance) {
    EXPECT_EQ("[3] 1.000009 10",
              filteredBy("ConditionFilterByEqualTo", "[3] 1.000009,1.00002", "[3] 1"));
}

TEST(ConditionFilterByComparison, OneElementServesAllAndTheLastRepeats) {
    EXPECT_EQ("[1] 3,4 0011", filteredBy("ConditionFilterByGreaterThan", "[1] 1,2,3,4", "[1] 2"));
    EXPECT_EQ("[1] 1,4 1001", filteredBy("ConditionFilterByGreaterThan", "[1] 1,2,3,4", "[1] 0,3"));
}

TEST(ConditionFilterByComparison, MoreOnTheRightDoNotCount) {
    EXPECT_EQ("[1] 1 1", filteredBy("ConditionFilterByEqualTo", "[1] 1", "[1] 1,2,3"));
}

template <typename T>
TM_String filteredByNothing(const TM_String& value0) {
    ConditionNet net;
    net.add("ConditionFilterByEqualTo", "f");
    net.set("f.value0", value0);
    net.type("f.value1", weft::nameOf(weft::numericTypeFor<T>));
    net.numbers<T>("f.value1", {});
    return net.filtered();
}

TEST(ConditionFilterByComparison, EmptySecondIsTheDefault) {
    EXPECT_EQ("[1] 0 10", filteredByNothing<int32_t>("[1] 0,1"));
    EXPECT_EQ("[3] 0 01", filteredByNothing<float>("[3] 1,0"));
    EXPECT_EQ("[4] (0,0,0) 01", filteredByNothing<tidemark::Vector3<float>>("[4] (0,0,1),(0,0,0)"));
    EXPECT_EQ("[5] (0,0,0,1) 01",
              filteredByNothing<tidemark::Color4<float>>("[5] (0,0,0,0),(0,0,0,1)"));
    const TM_String identity = "[7] (1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)";
    EXPECT_EQ(identity + " 1", filteredByNothing<tidemark::Matrix4<float>>(identity));
}

TEST(ConditionFilterByComparison, EmptyFirstGivesNothing) {
    ConditionNet net;
    net.add("ConditionFilterByEqualTo", "f");
    net.type("f.value0", "Real");
    net.numbers<float>("f.value0", {});
    net.set("f.value1", "[3] 1");
    EXPECT_EQ("[3]  ", net.filtered());
}

TEST(ConditionFilterByComparison, NoInteger64Passes) {
    for (const char* type : types) {
        EXPECT_EQ("[2]  00", filteredBy(type, "[2] 1,2", "[2] 1")) << type;
    }
}

TEST(ConditionFilterByComparison, TypesHaveToAgree) {
    ConditionNet net;
    net.add("ConditionFilterByEqualTo", "f");
    net.set("f.value0", "[3] 1");
    net.set("f.value1", "[3] 1");
    EXPECT_EQ("[3] 1 1", net.filtered());
    net.set("f.value1", "[1] 1");
    net.node("f").doUpdate(&net.pin("f.result"));
    EXPECT_EQ("[error] input 'value0' and 'value1' specialization differs\n", net.messages("f"));
    EXPECT_FALSE(net.pin("f.result").isClean());
    EXPECT_FALSE(net.pin("f.mask").isClean());
    EXPECT_EQ("[3] 1", net.pin("f.result").value()->asString());
}

TEST(ConditionFilterByComparison, BothHaveToBeSpecialized) {
    ConditionNet net;
    net.add("ConditionFilterByEqualTo", "f");
    net.refresh("f.result");
    EXPECT_EQ("[error] input 'value0' not specialized\n", net.messages("f"));
    net.set("f.value0", "[3] 1");
    net.refresh("f.result");
    EXPECT_EQ("[error] input 'value0' not specialized\n[error] input 'value1' not specialized\n",
              net.messages("f"));
}

TEST(ConditionFilterByComparison, BothInputsAreBroughtUpToDate) {
    ConditionNet net;
    net.add("ConditionFilterByEqualTo", "f");
    net.add("Real", "a");
    net.add("Real", "b");
    net.link("a.real", "f.value0");
    net.link("b.real", "f.value1");
    net.numbers<float>("a.in", {1, 2});
    net.numbers<float>("b.in", {2});
    EXPECT_EQ("[3] 2 01", net.filtered());
    net.numbers<float>("b.in", {1});
    EXPECT_EQ("[3] 1 10", net.filtered());
}

TEST(ConditionFilterByComparison, OneUpdateServesBothOutputs) {
    ConditionNet net;
    net.add("ConditionFilterByEqualTo", "f");
    net.set("f.value0", "[3] 1");
    net.set("f.value1", "[3] 1");
    net.refresh("f.mask");
    EXPECT_TRUE(net.pin("f.result").isClean());
    net.set("f.value0", "[3] 1,1");
    net.pin("f.mask").setToBeEvaluated(false);
    EXPECT_EQ("[3] 1,1", net.text("f.result"));
    EXPECT_FALSE(net.pin("f.mask").isClean());
    EXPECT_EQ("1", net.pin("f.mask").value()->asString());
}

TEST(ConditionFilterByComparison, UnwantedResultIsNotComputed) {
    ConditionNet net;
    net.add("ConditionFilterByEqualTo", "f");
    net.set("f.value0", "[3] 1,2");
    net.set("f.value1", "[3] 2");
    net.pin("f.result").setToBeEvaluated(false);
    EXPECT_EQ("01", net.text("f.mask"));
    EXPECT_FALSE(net.pin("f.result").isClean());
    EXPECT_EQ("[3] 0", net.pin("f.result").value()->asString());
}

TEST(ConditionFilterByComparison, ReadersHearOfBothOutputs) {
    ConditionNet net;
    net.add("ConditionFilterByEqualTo", "f");
    net.add("ArraySize", "of result");
    net.add("ArraySize", "of mask");
    net.link("f.result", "of result.array");
    net.link("f.mask", "of mask.array");
    net.set("f.value0", "[3] 1,2,1");
    net.set("f.value1", "[3] 1");
    EXPECT_EQ("[1] 2", net.text("of result.size"));
    EXPECT_EQ("[1] 3", net.text("of mask.size"));
    net.set("f.value0", "[3] 2,1");
    EXPECT_EQ("[1] 1", net.text("of result.size"));
    EXPECT_EQ("[1] 2", net.text("of mask.size"));
}

TEST(ConditionFilterByComparison, ResultFollowsTheTypeOfTheFirst) {
    ConditionNet net;
    net.add("ConditionFilterByEqualTo", "f");
    net.add("Vector3", "v");
    ASSERT_TRUE(net.link("v.vector", "f.value1"));
    EXPECT_FALSE(net.pin("f.result").isSpecialized());
    ASSERT_TRUE(net.link("v.vector", "f.value0"));
    EXPECT_EQ("Vector3", net.pin("f.result").specialization());
}

TEST(ConditionFilterByComparison, SomethingElseOnThePinIsLeftAlone) {
    ConditionNet net;
    net.add("Real", "r");
    net.add("String", "s");
    net.add("ConditionIf", "i");
    net.add("ConditionFilterByEqualTo", "f");
    ASSERT_TRUE(net.link("r.real", "i.true value"));
    ASSERT_TRUE(net.link("s.out", "i.false value"));
    ASSERT_TRUE(net.link("i.value", "f.value0"));
    net.set("f.value1", "[3] 0");
    net.refresh("f.value0");
    net.node("f").doUpdate(&net.pin("f.mask"));
    EXPECT_FALSE(net.pin("f.mask").isClean());
    net.bits("i.condition", {true});
    EXPECT_EQ("[3] 0 1", net.filtered());
    EXPECT_EQ("", net.messages("f"));
}

TEST(ConditionFilterByComparison, LongWorkAnswersAnInterrupt) {
    ConditionNet net;
    net.add("ConditionFilterByLessThan", "f");
    net.type("f.value0", "Real");
    net.set("f.value1", "[3] 1");
    net.as<weft::NumericAttribute>("f.value0").ownNumeric().resize(3000000);
    net.manager().setEvaluating(true);
    for (const bool isResultWanted : {false, true}) {
        net.pin("f.result").setToBeEvaluated(isResultWanted);
        net.manager().requestInterrupt();
        EXPECT_THROW(net.node("f").doUpdate(&net.pin("f.mask")), std::exception);
        net.manager().clearInterrupt();
        EXPECT_EQ(0u, net.pin("f.mask").value()->size());
        EXPECT_EQ(isResultWanted ? 0u : 1u, net.pin("f.result").value()->size());
        EXPECT_NO_THROW(net.node("f").doUpdate(&net.pin("f.mask")));
    }
    net.manager().setEvaluating(false);
}

TEST(ConditionFilterByComparison, InPlaceItKeepsWhatHolds) {
    ConditionNet net;
    net.add("Real", "r");
    net.add("ConditionFilterByGreaterThan", "f");
    net.link("r.real", "f.value0");
    net.pin("f.value0").addPassThrough(&net.pin("f.result"));
    net.set("f.value1", "[3] 2");
    net.numbers<float>("r.in", {1, 2, 3});
    EXPECT_EQ("[3] 3", net.text("f.result"));
    EXPECT_EQ("001", net.pin("f.mask").value()->asString());
    EXPECT_EQ("[3] 3", net.pin("r.real").value()->asString());
}

TEST(ConditionFilterByComparison, InPlaceOfBothSides) {
    ConditionNet net;
    net.add("Real", "r");
    net.add("ConditionFilterByEqualTo", "f");
    net.link("r.real", "f.value0");
    net.link("r.real", "f.value1");
    net.pin("f.value0").addPassThrough(&net.pin("f.result"));
    net.numbers<float>("r.in", {1, 2, 3});
    EXPECT_EQ("[3] 1,2,3", net.text("f.result"));
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Sum, average, minimum and maximum of numeric arrays.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::declared;
using sluice_tests::LogicNet;
using sluice_tests::missingAffects;
using sluice_tests::missingTexts;
using tidemark::TM_String;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

// One node called "n" over elements of one type.
class Reducer : public LogicNet {
public:
    Reducer(const TM_String& type, const TM_String& element) {
        add(type, "n");
        this->type("n.array", element);
    }
    template <typename T>
    Reducer& over(std::initializer_list<T> elements) {
        numbers<T>("n.array", elements);
        return *this;
    }
    TM_String message() {
        const TM_String all = messages("n");
        node("n").refMessages().clear();
        return all;
    }
};

const TM_String all = "NumericAttribute \"Integer\", \"Integer64\", \"Real\", \"Vector3\", "
                      "\"Color4\", \"Quaternion\", \"Matrix4\"";
const TM_String allDefaults = " = Integer:0 Integer64:0 Real:0 Vector3:0 Color4:(0,0,0,1) "
                              "Quaternion:(1,0,0,0) Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)\n";

TEST(NumReductions, AreDeclaredAsTold) {
    EXPECT_EQ("ArrayNumSum\nin array " + all + allDefaults + "out sum " + all + "\n",
              declared("ArrayNumSum"));
    EXPECT_EQ("ArrayNumAverage\nin array " + all + allDefaults + "out average " + all + "\n",
              declared("ArrayNumAverage"));
    const TM_String ordered =
        "NumericAttribute \"Integer\", \"Integer64\", \"Real\", \"Vector3\", \"Color4\"";
    const TM_String integer = "NumericAttribute \"Integer\"\n";
    EXPECT_EQ("ArrayNumMinMax\nin array " + ordered +
                  " = Integer:0 Integer64:0 Real:0 Vector3:0 Color4:(0,0,0,1)\nout min " + ordered +
                  "\nout max " + ordered + "\nout index min " + integer + "out index max " +
                  integer,
              declared("ArrayNumMinMax"));
}

TEST(NumReductions, AreDescribedAndAffected) {
    LogicNet net;
    EXPECT_EQ("Returns the summation of all the elements of the input 'array'",
              net.add("ArrayNumSum", "s").getDescription());
    EXPECT_EQ("Computes the average value of all the input array elements",
              net.add("ArrayNumAverage", "a").getDescription());
    EXPECT_EQ("Computes the minimum/maximum values of all the input array elements.",
              net.add("ArrayNumMinMax", "m").getDescription());
    EXPECT_EQ("The position of the maximum value of the input 'array'. For vector types, it "
              "returns the index of the maximum of the first component!",
              net.pin("m.index max").getDescription());
    EXPECT_EQ("The position of the minimum value of the input 'array'. For vector types, it "
              "returns the index of the minimum of the first component!",
              net.pin("m.index min").getDescription());
    for (const char* type : {"ArrayNumSum", "ArrayNumAverage", "ArrayNumMinMax"}) {
        EXPECT_EQ("", missingTexts(type)) << type;
        EXPECT_EQ("", missingAffects(type)) << type;
    }
}

TEST(NumReductions, ResultFollowsTheArraysType) {
    for (const auto& [type, output] :
         {std::pair("ArrayNumSum", "sum"), std::pair("ArrayNumAverage", "average"),
          std::pair("ArrayNumMinMax", "min"), std::pair("ArrayNumMinMax", "max")}) {
        LogicNet net;
        net.add(type, "n");
        net.add("Vector3", "v");
        ASSERT_TRUE(net.link("v.vector", "n.array"));
        EXPECT_EQ("Vector3", net.pin(TM_String("n.") + output).specialization()) << type;
    }
}

TEST(NumReductions, MissingInputIsAnErrorAndTheOutputStays) {
    for (const auto& [type, output] :
         {std::pair("ArrayNumSum", "n.sum"), std::pair("ArrayNumAverage", "n.average"),
          std::pair("ArrayNumMinMax", "n.min"), std::pair("ArrayNumMinMax", "n.index max")}) {
        Reducer n(type, "Real");
        n.over<float>({4});
        const TM_String before = n.text(output);
        n.over<float>({});
        EXPECT_EQ(before, n.text(output)) << type;
        EXPECT_EQ("[error] Missing Input...\n", n.message()) << type;
    }
}

TEST(NumReductions, WithoutATypeNothingIsComputed) {
    for (const auto& [type, output] :
         {std::pair("ArrayNumSum", "n.sum"), std::pair("ArrayNumAverage", "n.average"),
          std::pair("ArrayNumMinMax", "n.max")}) {
        LogicNet net;
        net.add(type, "n");
        EXPECT_EQ("", net.text(output));
        EXPECT_EQ("", net.messages("n"));
    }
}

TEST(ArrayNumSum, IntegersWrap) {
    EXPECT_EQ("[1] 6", Reducer("ArrayNumSum", "Integer").over<int32_t>({1, 2, 3}).text("n.sum"));
    EXPECT_EQ("[1] -2147483648",
              Reducer("ArrayNumSum", "Integer").over<int32_t>({2147483647, 1}).text("n.sum"));
    EXPECT_EQ("[2] 4294967296",
              Reducer("ArrayNumSum", "Integer64").over<int64_t>({4294967295, 1}).text("n.sum"));
    EXPECT_EQ("[2] -9223372036854775808",
              Reducer("ArrayNumSum", "Integer64")
                  .over<int64_t>({std::numeric_limits<int64_t>::max(), 1})
                  .text("n.sum"));
}

TEST(ArrayNumSum, RealsAreAddedInIndexOrder) {
    Reducer n("ArrayNumSum", "Real");
    EXPECT_EQ("[3] 6.5", n.over<float>({1, 2, 3.5f}).text("n.sum"));
    EXPECT_EQ("[3] 0", n.over<float>({16777216, 1, -16777216}).text("n.sum"));
    EXPECT_EQ("[3] 1", n.over<float>({16777216, -16777216, 1}).text("n.sum"));
    auto& values = n.as<NumericAttribute>("n.array").ownNumeric();
    Array<float> many;
    float expected = 0;
    for (uint32_t i = 0; i < 700001; ++i) {
        many.append(0.1f + static_cast<float>(i % 7));
        expected += many.back();
    }
    values.setValues(many);
    n.pin("n.array").valueChanged();
    n.refresh("n.sum");
    EXPECT_EQ(expected, n.as<NumericAttribute>("n.sum").numeric().value<float>());
}

TEST(ArrayNumSum, StructuredTypesPerComponent) {
    EXPECT_EQ("[4] (5,7,9)", Reducer("ArrayNumSum", "Vector3")
                                 .over<Vector3<float>>({{1, 2, 3}, {4, 5, 6}})
                                 .text("n.sum"));
    EXPECT_EQ("[5] (1,1,1,2)", Reducer("ArrayNumSum", "Color4")
                                   .over<Color4<float>>({{1, 0, 0, 1}, {0, 1, 1, 1}})
                                   .text("n.sum"));
    EXPECT_EQ("[6] (1,3,0,0)", Reducer("ArrayNumSum", "Quaternion")
                                   .over<Quaternion<float>>({{1, 0, 0, 1}, {2, 0, 0, 0}})
                                   .text("n.sum"));
    Reducer n("ArrayNumSum", "Matrix4");
    n.over<Matrix4<float>>({Matrix4<float>(), Matrix4<float>(2.0f)});
    EXPECT_EQ("[7] (3,2,2,2,2,3,2,2,2,2,3,2,2,2,2,3)", n.text("n.sum"));
}

TEST(ArrayNumAverage, DividesTheSum) {
    EXPECT_EQ("[1] 1",
              Reducer("ArrayNumAverage", "Integer").over<int32_t>({1, 2}).text("n.average"));
    EXPECT_EQ("[1] -1",
              Reducer("ArrayNumAverage", "Integer").over<int32_t>({-1, -2}).text("n.average"));
    EXPECT_EQ("[2] 3000000000", Reducer("ArrayNumAverage", "Integer64")
                                    .over<int64_t>({2000000000, 4000000000})
                                    .text("n.average"));
    EXPECT_EQ("[3] 1.5", Reducer("ArrayNumAverage", "Real").over<float>({1, 2}).text("n.average"));
    EXPECT_EQ("[4] (2,3,4)", Reducer("ArrayNumAverage", "Vector3")
                                 .over<Vector3<float>>({{1, 2, 3}, {3, 4, 5}})
                                 .text("n.average"));
    EXPECT_EQ("[5] (0.5,0.5,0,1)", Reducer("ArrayNumAverage", "Color4")
                                       .over<Color4<float>>({{1, 0, 0, 1}, {0, 1, 0, 1}})
                                       .text("n.average"));
    EXPECT_EQ("[6] (0.5,1,0,0)", Reducer("ArrayNumAverage", "Quaternion")
                                     .over<Quaternion<float>>({{2, 0, 0, 1}, {0, 0, 0, 0}})
                                     .text("n.average"));
    EXPECT_EQ("[7] (1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)",
              Reducer("ArrayNumAverage", "Matrix4")
                  .over<Matrix4<float>>({Matrix4<float>(), Matrix4<float>()})
                  .text("n.average"));
}

TM_String extremes(Reducer& n) {
    return n.text("n.min") + " " + n.text("n.max") + " " + n.text("n.index min") + " " +
           n.text("n.index max");
}

TEST(ArrayNumMinMax, FindsValuesAndPositions) {
    EXPECT_EQ("[1] -4 [1] 9 [1] 1 [1] 3",
              extremes(Reducer("ArrayNumMinMax", "Integer").over<int32_t>({3, -4, 0, 9, 8})));
    EXPECT_EQ(
        "[2] -4294967296 [2] 4294967296 [1] 0 [1] 1",
        extremes(Reducer("ArrayNumMinMax", "Integer64").over<int64_t>({-4294967296, 4294967296})));
    EXPECT_EQ("[3] -0.5 [3] 2.5 [1] 2 [1] 0",
              extremes(Reducer("ArrayNumMinMax", "Real").over<float>({2.5f, 1, -0.5f})));
}

TEST(ArrayNumMinMax, FirstElementWinsATie) {
    EXPECT_EQ("[1] 5 [1] 5 [1] 0 [1] 0",
              extremes(Reducer("ArrayNumMinMax", "Integer").over<int32_t>({5, 5, 5})));
    EXPECT_EQ("[3] 1 [3] 2 [1] 1 [1] 0",
              extremes(Reducer("ArrayNumMinMax", "Real").over<float>({2, 1, 2, 1})));
}

TEST(ArrayNumMinMax, VectorsGoByTheFirstComponent) {
    EXPECT_EQ("[4] (1,9,9) [4] (3,0,0) [1] 1 [1] 0",
              extremes(Reducer("ArrayNumMinMax", "Vector3")
                           .over<Vector3<float>>({{3, 0, 0}, {1, 9, 9}, {1, 0, 0}})));
    EXPECT_EQ("[5] (0,1,1,1) [5] (2,0,0,0) [1] 0 [1] 2",
              extremes(Reducer("ArrayNumMinMax", "Color4")
                           .over<Color4<float>>({{0, 1, 1, 1}, {1, 5, 5, 5}, {2, 0, 0, 0}})));
}

TEST(ArrayNumMinMax, NotANumberIsNeitherSmallerNorLarger) {
    Reducer n("ArrayNumMinMax", "Real");
    n.over<float>({1, notANumber, 3});
    EXPECT_EQ("[3] 1 [3] 3 [1] 0 [1] 2", extremes(n));
    n.over<float>({notANumber, 3});
    EXPECT_EQ("[3] nan [3] nan [1] 0 [1] 0", extremes(n)) << "as the first element it stays";
    n.over<float>(
        {-std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity()});
    EXPECT_EQ("[1] 0", n.text("n.index min"));
    EXPECT_EQ("[1] 1", n.text("n.index max"));
}

TEST(ArrayNumMinMax, OnePassAnswersEveryWantedOutput) {
    Reducer n("ArrayNumMinMax", "Integer");
    n.over<int32_t>({3, 1, 2});
    n.refresh("n.min");
    for (const char* pin : {"n.min", "n.max", "n.index min", "n.index max"}) {
        EXPECT_TRUE(n.pin(pin).isClean()) << pin;
    }
    n.over<int32_t>({5, 4});
    for (const char* pin : {"n.min", "n.index min", "n.index max"}) {
        n.pin(pin).setToBeEvaluated(false);
    }
    n.refresh("n.max");
    EXPECT_EQ("[1] 5", n.pin("n.max").value()->asString());
    EXPECT_FALSE(n.pin("n.min").isClean());
    EXPECT_EQ("[1] 1", n.pin("n.min").value()->asString()) << "not wanted";
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Arithmetic nodes: types, results of every allowed pair, array lengths, overflow and divisions by
// 0.
#include "nodes/values/arithmetic.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <random>
#include <set>
#include <vector>

#include "core/exceptions.h"
#include "core/network_manager.h"
#include "nodes/values/arithmetic_kernels.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;

const char* const typeNames[] = {"Integer", "Integer64",  "Real",   "Vector3",
                                 "Color4",  "Quaternion", "Matrix4"};

// Runs one operation on values given as text: "[1] 1,2,3".
class Sum {
public:
    explicit Sum(const TM_String& operation) { net.add(operation, "op"); }

    TM_String of(const TM_String& in0, const TM_String& in1) {
        set("op.in0", in0);
        set("op.in1", in1);
        return net.text("op.result");
    }
    void set(const TM_String& pin, const TM_String& text) {
        net.type(pin, nameOf(static_cast<NumericType>(text[1] - '0')));
        net.as<NumericAttribute>(pin).ownNumeric().fromString(text);
        net.pin(pin).valueChanged();
    }

    LogicNet net;
};

TM_String result(const TM_String& operation, const TM_String& in0, const TM_String& in1) {
    return Sum(operation).of(in0, in1);
}

// What may stand beside each type, told once more here, word for word.
const std::map<TM_String, std::map<TM_String, TM_String>> allowedTable = {
    {"Add",
     {{"Integer", "Integer, Integer64, Real"},
      {"Integer64", "Integer64, Integer, Real"},
      {"Real", "Real, Integer, Integer64"},
      {"Vector3", "Vector3"},
      {"Color4", "Color4"},
      {"Quaternion", "Quaternion"},
      {"Matrix4", "Matrix4"}}},
    {"Mul",
     {{"Integer", "Integer, Integer64, Real"},
      {"Integer64", "Integer64, Integer, Real"},
      {"Real", "Real, Integer, Integer64"},
      {"Vector3", "Vector3, Real, Integer, Integer64, Matrix4"},
      {"Color4", "Color4, Real, Integer, Integer64"},
      {"Quaternion", "Quaternion"},
      {"Matrix4", "Matrix4"}}},
    {"Div",
     {{"Integer", "Integer, Integer64, Real"},
      {"Integer64", "Integer64, Integer, Real"},
      {"Real", "Real, Integer, Integer64"},
      {"Vector3", "Vector3, Real, Integer, Integer64"},
      {"Color4", "Color4, Real, Integer, Integer64"},
      {"Quaternion", ""},
      {"Matrix4", ""}}}};

TM_String allowedText(const TM_String& operation, const TM_String& type) {
    return allowedTable.at(operation == "Sub" ? "Add" : operation).at(type);
}

TM_String joined(const SpecializationList& list) {
    TM_String out;
    for (const TM_String& name : list.names()) out += (out.empty() ? "" : ", ") + name;
    return out;
}

class ArithmeticOperations : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(All, ArithmeticOperations, testing::Values("Add", "Sub", "Mul", "Div"));

TEST_P(ArithmeticOperations, HasItsPins) {
    LogicNet net;
    Node& node = net.add(GetParam(), "op");
    EXPECT_EQ(GetParam(), node.className());
    ASSERT_EQ(2u, node.refInputAttributes().size());
    ASSERT_EQ(1u, node.refOutputAttributes().size());
    EXPECT_EQ("in0", node.inputAttributeAt(0)->name());
    EXPECT_EQ("in1", node.inputAttributeAt(1)->name());
    EXPECT_EQ("result", node.outputAttributeAt(0)->name());
    EXPECT_EQ("First operator", node.inputAttributeAt(0)->getDescription());
    EXPECT_EQ("Second operator", node.inputAttributeAt(1)->getDescription());
    EXPECT_EQ("Operation result", node.outputAttributeAt(0)->getDescription());
    for (const char* pin : {"op.in0", "op.in1", "op.result"}) {
        EXPECT_EQ(7u, net.pin(pin).specializations().size());
        EXPECT_EQ(NumericType::none, net.as<NumericAttribute>(pin).ownNumeric().type());
    }
    for (const char* pin : {"op.in0", "op.in1"}) {
        EXPECT_TRUE(net.pin(pin).affects().contains(&net.pin("op.result")));
        EXPECT_TRUE(net.pin(pin).allowedPassThroughs().contains(&net.pin("op.result")));
        EXPECT_TRUE(net.pin(pin).passThroughs().empty());
        EXPECT_EQ(1u, net.pin(pin).specializationLinks().size());
    }
}

TEST_P(ArithmeticOperations, SecondTypesFollowTheFirst) {
    for (const char* type : typeNames) {
        LogicNet net;
        net.add(GetParam(), "op");
        net.type("op.in0", type);
        const TM_String allowed = allowedText(GetParam(), type);
        EXPECT_EQ(allowed, joined(net.pin("op.in1").specializations())) << type;
        EXPECT_EQ(allowed.empty() ? "" : type, joined(net.pin("op.result").specializations()))
            << type;
    }
}

TEST_P(ArithmeticOperations, KernelsExistForExactlyTheAllowedPairs) {
    const std::map<TM_String, Arithmetic> codes = {{"Add", Arithmetic::add},
                                                   {"Sub", Arithmetic::sub},
                                                   {"Mul", Arithmetic::mul},
                                                   {"Div", Arithmetic::div}};
    for (const char* a : typeNames) {
        const TM_String allowed = ", " + allowedText(GetParam(), a) + ",";
        for (const char* b : typeNames) {
            const bool isAllowed = allowed.find(TM_String(" ") + b + ",") != TM_String::npos;
            EXPECT_EQ(isAllowed, arithmeticKernel(codes.at(GetParam()), numericTypeOf(a),
                                                  numericTypeOf(b)) != nullptr)
                << a << " " << b;
        }
        EXPECT_NE(nullptr,
                  arithmeticKernel(codes.at(GetParam()), numericTypeOf(a), NumericType::none));
    }
    EXPECT_EQ(nullptr,
              arithmeticKernel(codes.at(GetParam()), NumericType::none, NumericType::none));
    EXPECT_EQ(nullptr,
              arithmeticKernel(codes.at(GetParam()), NumericType::none, NumericType::real));
}

TEST_P(ArithmeticOperations, UnspecializedDoesNotCompute) {
    LogicNet net;
    net.add(GetParam(), "op");
    net.pin("op.result").computeNow();
    EXPECT_TRUE(net.pin("op.result").isClean());
    EXPECT_EQ("", net.text("op.result"));
    EXPECT_EQ("", net.messages("op"));
}

TEST_P(ArithmeticOperations, CopiesTheFirstWhileTheSecondIsOpen) {
    for (const char* type : {"Integer", "Integer64", "Real", "Vector3", "Color4"}) {
        LogicNet net;
        net.add(GetParam(), "op");
        net.add(type, "c");
        auto& in = net.as<NumericAttribute>("c.in").ownNumeric();
        in.resize(3);
        withElementType(in.type(), [&]<typename T>() { in.setValueAt(1, T(5)); });
        Attribute& out = *net.node("c").outputAttributeAt(0);
        ASSERT_TRUE(net.manager().connect(&out, &net.pin("op.in0"), nullptr));
        if (net.pin("op.in1").isSpecialized()) continue; // one second type only: computed
        EXPECT_EQ(in.asString(), net.text("op.result")) << type;
    }
}

struct Case {
    const char* operation;
    const char* in0;
    const char* in1;
    const char* expected;
};

// One row per operation and allowed pair of types.
const Case pairs[] = {
    {"Add", "[1] 7", "[1] 2", "[1] 9"},
    {"Add", "[1] 7", "[2] 4294967298", "[1] 9"},
    {"Add", "[1] 7", "[3] 0.9", "[1] 7"},
    {"Add", "[2] 4294967296", "[1] 2", "[2] 4294967298"},
    {"Add", "[2] 7", "[2] 8589934592", "[2] 8589934599"},
    {"Add", "[2] -7", "[3] 0.9", "[2] -6"},
    {"Add", "[3] 0.5", "[1] 2", "[3] 2.5"},
    {"Add", "[3] 0.5", "[2] 2", "[3] 2.5"},
    {"Add", "[3] 0.5", "[3] 0.25", "[3] 0.75"},
    {"Add", "[4] (1,2,3)", "[4] (10,20,30)", "[4] (11,22,33)"},
    {"Add", "[5] (1,2,3,4)", "[5] (10,20,30,40)", "[5] (11,22,33,44)"},
    {"Add", "[6] (1,2,3,4)", "[6] (10,20,30,40)", "[6] (11,22,33,44)"},
    {"Add", "[7] (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16)", "[7] (1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1)",
     "[7] (2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17)"},
    {"Sub", "[1] 7", "[1] 2", "[1] 5"},
    {"Sub", "[1] 7", "[2] 4294967298", "[1] 5"},
    {"Sub", "[1] 7", "[3] 0.9", "[1] 6"},
    {"Sub", "[2] 4294967296", "[1] 2", "[2] 4294967294"},
    {"Sub", "[2] 7", "[2] 8589934592", "[2] -8589934585"},
    {"Sub", "[2] -7", "[3] 0.9", "[2] -7"},
    {"Sub", "[3] 0.5", "[1] 2", "[3] -1.5"},
    {"Sub", "[3] 0.5", "[2] 2", "[3] -1.5"},
    {"Sub", "[3] 0.5", "[3] 0.25", "[3] 0.25"},
    {"Sub", "[4] (1,2,3)", "[4] (10,20,30)", "[4] (-9,-18,-27)"},
    {"Sub", "[5] (1,2,3,4)", "[5] (10,20,30,40)", "[5] (-9,-18,-27,-36)"},
    {"Sub", "[6] (1,2,3,4)", "[6] (10,20,30,40)", "[6] (-9,-18,-27,-36)"},
    {"Sub", "[7] (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16)", "[7] (1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1)",
     "[7] (0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15)"},
    {"Mul", "[1] 7", "[1] -2", "[1] -14"},
    {"Mul", "[1] 7", "[2] 4294967298", "[1] 14"},
    {"Mul", "[1] 7", "[3] 0.9", "[1] 6"},
    {"Mul", "[2] 4294967296", "[1] 2", "[2] 8589934592"},
    {"Mul", "[2] 7", "[2] 8589934592", "[2] 60129542144"},
    {"Mul", "[2] -7", "[3] 0.9", "[2] -6"},
    {"Mul", "[3] 0.5", "[1] 2", "[3] 1"},
    {"Mul", "[3] 0.5", "[2] 2", "[3] 1"},
    {"Mul", "[3] 0.5", "[3] 0.25", "[3] 0.125"},
    {"Mul", "[4] (1,2,3)", "[4] (10,20,30)", "[4] (10,40,90)"},
    {"Mul", "[4] (1,2,3)", "[3] 0.5", "[4] (0.5,1,1.5)"},
    {"Mul", "[4] (1,2,3)", "[1] 2", "[4] (2,4,6)"},
    {"Mul", "[4] (1,2,3)", "[2] 2", "[4] (2,4,6)"},
    {"Mul", "[4] (1,2,3)", "[7] (1,0,0,9,0,2,0,9,0,0,3,9,100,200,300,9)", "[4] (101,204,309)"},
    {"Mul", "[4] (1,2,3)", "[7] (1,2,3,0,4,5,6,0,7,8,9,0,0,0,0,1)", "[4] (30,36,42)"},
    {"Mul", "[5] (1,2,3,4)", "[5] (10,20,30,40)", "[5] (10,40,90,160)"},
    {"Mul", "[5] (1,2,3,4)", "[3] 0.5", "[5] (0.5,1,1.5,2)"},
    {"Mul", "[5] (1,2,3,4)", "[1] 2", "[5] (2,4,6,8)"},
    {"Mul", "[5] (1,2,3,4)", "[2] 2", "[5] (2,4,6,8)"},
    // w first in the text: i * j = k.
    {"Mul", "[6] (0,1,0,0)", "[6] (0,0,1,0)", "[6] (0,0,0,1)"},
    {"Mul", "[6] (0,0,1,0)", "[6] (0,1,0,0)", "[6] (0,0,0,-1)"},
    {"Mul", "[6] (1,2,3,4)", "[6] (5,6,7,8)", "[6] (-60,12,30,24)"},
    {"Mul", "[7] (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16)", "[7] (1,0,0,0,0,2,0,0,0,0,3,0,1,1,1,1)",
     "[7] (5,8,13,4,13,20,29,8,21,32,45,12,29,44,61,16)"},
    {"Div", "[1] 7", "[1] 2", "[1] 3"},
    {"Div", "[1] -7", "[1] 2", "[1] -3"},
    {"Div", "[1] 7", "[2] 2", "[1] 3"},
    {"Div", "[1] 7", "[3] 0.5", "[1] 14"},
    {"Div", "[2] 8589934592", "[1] 2", "[2] 4294967296"},
    {"Div", "[2] 8589934592", "[2] 4294967296", "[2] 2"},
    {"Div", "[2] -7", "[3] 2", "[2] -3"},
    {"Div", "[3] 0.5", "[1] 2", "[3] 0.25"},
    {"Div", "[3] 0.5", "[2] 2", "[3] 0.25"},
    {"Div", "[3] 0.5", "[3] 0.25", "[3] 2"},
    {"Div", "[4] (10,20,30)", "[4] (1,2,4)", "[4] (10,10,7.5)"},
    {"Div", "[4] (1,2,3)", "[3] 0.5", "[4] (2,4,6)"},
    {"Div", "[4] (1,2,3)", "[1] 2", "[4] (0.5,1,1.5)"},
    {"Div", "[4] (1,2,3)", "[2] 2", "[4] (0.5,1,1.5)"},
    {"Div", "[5] (10,20,30,40)", "[5] (1,2,4,8)", "[5] (10,10,7.5,5)"},
    {"Div", "[5] (1,2,3,4)", "[3] 0.5", "[5] (2,4,6,8)"},
    {"Div", "[5] (1,2,3,4)", "[1] 2", "[5] (0.5,1,1.5,2)"},
    {"Div", "[5] (1,2,3,4)", "[2] 2", "[5] (0.5,1,1.5,2)"},
};

TEST(Arithmetic, ResultsOfEveryAllowedPair) {
    std::set<TM_String> seen;
    for (const Case& pair : pairs) {
        EXPECT_EQ(pair.expected, result(pair.operation, pair.in0, pair.in1))
            << pair.operation << " " << pair.in0 << " and " << pair.in1;
        seen.insert(TM_String(pair.operation) + pair.in0[1] + pair.in1[1]);
    }
    EXPECT_EQ(13u + 13u + 20u + 17u, seen.size()) << "a pair of the table has no row";
}

TEST(Arithmetic, VectorDividedByNumberUsesTheReciprocal) {
    const float reciprocal = 1.0f / 3.0f;
    Sum sum("Div");
    sum.of("[4] (7,8,10)", "[3] 3");
    const auto vector = sum.net.as<NumericAttribute>("op.result").numeric().value<Vector3<float>>();
    EXPECT_EQ(7.0f * reciprocal, vector.x);
    EXPECT_EQ(8.0f * reciprocal, vector.y);
    EXPECT_EQ(10.0f * reciprocal, vector.z);
}

TEST(Arithmetic, ShorterArraysRepeatTheirLastElement) {
    EXPECT_EQ("[1] 11,12,13", result("Add", "[1] 1,2,3", "[1] 10"));
    EXPECT_EQ("[1] 11,22,23", result("Add", "[1] 1,2,3", "[1] 10,20"));
    EXPECT_EQ("[1] 11,21,31", result("Add", "[1] 1", "[1] 10,20,30"));
    EXPECT_EQ("[1] 11,22,32", result("Add", "[1] 1,2", "[1] 10,20,30"));
    EXPECT_EQ("[3] 10,20,20", result("Mul", "[3] 1,2", "[1] 10,10,10"));
    EXPECT_EQ("[4] (1,1,1),(2,2,2),(4,4,4)", result("Mul", "[4] (1,1,1),(2,2,2)", "[3] 1,1,2"));
}

TEST(Arithmetic, AnEmptyArrayGivesAnEmptyResult) {
    for (const char* operation : {"Add", "Sub", "Mul", "Div"}) {
        EXPECT_EQ("[1] ", result(operation, "[1] ", "[1] 10,20"));
        EXPECT_EQ("[3] ", result(operation, "[3] 1,2", "[3] "));
        EXPECT_EQ("[2] ", result(operation, "[2] ", "[2] "));
        EXPECT_EQ("[4] ", result(operation, "[4] ", "[4] (1,2,3)"));
    }
}

TEST(Arithmetic, ResultShrinksAndGrowsAgain) {
    Sum sum("Add");
    EXPECT_EQ("[1] 2,3,4", sum.of("[1] 1,2,3", "[1] 1"));
    EXPECT_EQ("[1] 6", sum.of("[1] 5", "[1] 1"));
    EXPECT_EQ("[1] ", sum.of("[1] ", "[1] 1"));
    EXPECT_EQ("[1] 2,3", sum.of("[1] 1,2", "[1] 1"));
}

TEST(Arithmetic, IntegersWrap) {
    EXPECT_EQ("[1] -2147483648", result("Add", "[1] 2147483647", "[1] 1"));
    EXPECT_EQ("[1] 2147483647", result("Sub", "[1] -2147483648", "[1] 1"));
    EXPECT_EQ("[1] 1", result("Mul", "[1] 2147483647", "[1] 2147483647"));
    EXPECT_EQ("[1] 0", result("Mul", "[1] 65536", "[1] 65536"));
    EXPECT_EQ("[2] -9223372036854775808", result("Add", "[2] 9223372036854775807", "[2] 1"));
    EXPECT_EQ("[2] 0", result("Mul", "[2] 4294967296", "[2] 4294967296"));
    EXPECT_EQ("[1] -2147483648", result("Div", "[1] -2147483648", "[1] -1"));
    EXPECT_EQ("[2] -9223372036854775808", result("Div", "[2] -9223372036854775808", "[2] -1"));
    EXPECT_EQ("[2] -9223372036854775808", result("Div", "[2] -9223372036854775808", "[1] -1"));
}

TEST(Arithmetic, RealResultsOutsideTheIntegersSaturate) {
    EXPECT_EQ("[1] 2147483647", result("Mul", "[1] 2", "[3] 1e20"));
    EXPECT_EQ("[1] -2147483648", result("Mul", "[1] 2", "[3] -1e20"));
    EXPECT_EQ("[1] 0", result("Add", "[1] 2", "[3] nan"));
    EXPECT_EQ("[2] 9223372036854775807", result("Add", "[2] 2", "[3] inf"));
    EXPECT_EQ("[1] 2147483647", result("Div", "[1] 1", "[3] 0"));
    EXPECT_EQ("[1] 0", result("Div", "[1] 0", "[3] 0"));
}

TEST(Arithmetic, FloatDivisionByZeroGivesInfinityOrNoNumber) {
    EXPECT_EQ("[3] inf,-inf,nan", result("Div", "[3] 1,-1,0", "[3] 0"));
    EXPECT_EQ("[3] inf", result("Div", "[3] 1", "[1] 0"));
    EXPECT_EQ("[4] (inf,-inf,inf)", result("Div", "[4] (1,-1,2)", "[1] 0"));
}

TEST(Arithmetic, IntegerDivisionByZeroLeavesTheElement) {
    Sum sum("Div");
    EXPECT_EQ("[1] 0", sum.of("[1] 5", "[1] 0")) << "a new element holds its default";
    EXPECT_EQ("[1] 3,4", sum.of("[1] 6,8", "[1] 2"));
    EXPECT_EQ("[1] 5,4,0", sum.of("[1] 10,5,7", "[1] 2,0,0"));
    EXPECT_EQ("", sum.net.messages("op"));
}

TEST(Arithmetic, DivisionByZeroIn64BitsEndsTheRun) {
    const char* cases[][2] = {{"[2] 5,6,7,8", "[2] 1,1,0"},
                              {"[2] 5,6,7,8", "[1] 1,1,0"},
                              {"[1] 5,6,7,8", "[2] 1,1,0"},
                              {"[2] 5", "[2] 1,2,0,1"}};
    for (const auto& [in0, in1] : cases) {
        Sum sum("Div");
        try {
            sum.of(in0, in1);
            ADD_FAILURE() << "no exception";
        } catch (const tidemark::sluice::graph::GenericGraphException& exception) {
            EXPECT_STREQ("[root.op] Division by zero - element 2", exception.what());
            EXPECT_EQ(tidemark::sluice::graph::criticalExceptionCode, exception.code());
        }
        EXPECT_EQ("[critical] Division by zero - element 2\n", sum.net.messages("op"));
        EXPECT_FALSE(sum.net.pin("op.result").isClean());
        EXPECT_FALSE(sum.net.node("op").isUpdating());
        EXPECT_NO_THROW(sum.of("[2] 8", "[2] 2"));
    }
}

TEST(Arithmetic, DivisionByZeroInARepeatedLastElementNamesItsIndex) {
    Sum sum("Div");
    std::string in0 = "[2] 1";
    for (int i = 0; i < 200; ++i) in0 += ",1";
    EXPECT_THROW(sum.of(in0, "[2] 1,0"), tidemark::TM_Exception);
    EXPECT_EQ("[critical] Division by zero - element 1\n", sum.net.messages("op"));
}

// T1: the types while one connection after the other is made.
TEST(Arithmetic, TypesNarrowAsConnectionsAreMade) {
    LogicNet net;
    net.add("Real", "r");
    net.add("Add", "a");
    net.add("Integer", "i");
    ASSERT_TRUE(net.link("r.real", "a.in0"));
    EXPECT_EQ("Real", joined(net.pin("a.in0").specializations()));
    EXPECT_EQ("Real", joined(net.pin("a.result").specializations()));
    EXPECT_EQ("Real, Integer, Integer64", joined(net.pin("a.in1").specializations()));
    EXPECT_EQ(NumericType::none, net.as<NumericAttribute>("a.in1").ownNumeric().type());
    EXPECT_FALSE(net.canLink("a.result", "r.in"));
    EXPECT_FALSE(net.canLink("a.result", "a.in1"));

    net.numbers("r.in", {2.5f});
    EXPECT_EQ("[3] 2.5", net.text("a.result")) << "a copy of the first operand";
    net.numbers("i.in", {int32_t(3)});
    ASSERT_TRUE(net.link("i.integer", "a.in1"));
    EXPECT_EQ("Integer", joined(net.pin("a.in1").specializations()));
    EXPECT_EQ("[3] 5.5", net.text("a.result"));
    net.numbers("r.in", {4.0f});
    EXPECT_FALSE(net.pin("a.result").isClean());
    EXPECT_TRUE(net.pin("i.integer").isClean());
    EXPECT_EQ("[3] 7", net.text("a.result"));
    net.numbers("r.in", {5.0f});
    net.numbers("r.in", {6.0f});
    EXPECT_EQ("[3] 9", net.text("a.result"));

    net.pin("a.in0").disconnectSource();
    EXPECT_EQ("Integer, Integer64, Real", joined(net.pin("a.result").specializations()));
    EXPECT_EQ("Integer", joined(net.pin("a.in1").specializations()));
    EXPECT_EQ(NumericType::none, net.as<NumericAttribute>("a.result").ownNumeric().type());
}

TEST(Arithmetic, ResultConnectedFirstNarrowsTheOperands) {
    LogicNet net;
    net.add("Add", "a");
    net.add("StringSubString", "s");
    ASSERT_TRUE(net.link("a.result", "s.first"));
    EXPECT_EQ("Integer", joined(net.pin("a.in0").specializations()));
    EXPECT_EQ("Integer, Integer64, Real", joined(net.pin("a.in1").specializations()));
}

TEST(Arithmetic, NewlyOpenedNodeHasFilteredListsAtTheFirstSettling) {
    LogicNet net;
    net.add("Div", "d");
    net.pin("d.result").updateSpecializations(nullptr);
    EXPECT_EQ("Integer, Integer64, Real, Vector3, Color4",
              joined(net.pin("d.result").specializations()));
    EXPECT_EQ("Integer, Integer64, Real, Vector3, Color4",
              joined(net.pin("d.in1").specializations()));
}

// In place: the result is the object of the first operand's source.
TEST(Arithmetic, InPlaceReadsWhatItWrote) {
    LogicNet net;
    net.add("Integer", "x");
    net.add("Integer", "y");
    net.add("Add", "a");
    net.numbers("x.in", {int32_t(1)});
    net.numbers("y.in", {int32_t(10), int32_t(20)});
    ASSERT_TRUE(net.link("x.integer", "a.in0"));
    ASSERT_TRUE(net.link("y.integer", "a.in1"));
    net.pin("a.in0").addPassThrough(&net.pin("a.result"));
    ASSERT_EQ(net.pin("x.integer").value(), net.pin("a.result").writeTarget());
    EXPECT_EQ("[1] 11,31", net.text("a.result"));
    EXPECT_EQ("[1] 11,31", net.pin("x.integer").value()->asString());
}

TEST(Arithmetic, KernelsAgreeWithTheLiteralLoopAlsoInPlace) {
    NetworkManager manager;
    std::mt19937 random(3);
    const ArithmeticKernel kernel =
        arithmeticKernel(Arithmetic::mul, NumericType::integer, NumericType::integer);
    for (int round = 0; round < 300; ++round) {
        const Retained<Numeric> a(new Numeric(&manager));
        const Retained<Numeric> b(new Numeric(&manager));
        const Retained<Numeric> r(new Numeric(&manager));
        const uint32_t na = 1 + random() % 200;
        const uint32_t nb = 1 + random() % 200;
        for (Numeric* number : {a.get(), b.get()}) {
            number->setType(NumericType::integer);
            number->resize(number == a.get() ? na : nb);
            for (int32_t& x : number->refValues<int32_t>()) x = int32_t(random());
        }
        Numeric& target = round % 3 == 0 ? *r : round % 3 == 1 ? *a : *b;
        std::vector<int32_t> x(a->values<int32_t>().begin(), a->values<int32_t>().end());
        std::vector<int32_t> y(b->values<int32_t>().begin(), b->values<int32_t>().end());
        const uint32_t n = std::max(na, nb);
        std::vector<int32_t> z(n);
        std::vector<int32_t>& out = round % 3 == 0 ? z : round % 3 == 1 ? x : y;
        out.resize(n);
        for (uint32_t i = 0; i < n; ++i) {
            out[i] = int32_t(uint32_t(x[std::min(i, na - 1)]) * uint32_t(y[std::min(i, nb - 1)]));
        }
        EXPECT_EQ(-1, kernel(*a, *b, target));
        const Array<int32_t>& got = target.values<int32_t>();
        EXPECT_EQ(out, std::vector<int32_t>(got.begin(), got.end())) << round;
        EXPECT_EQ(n, target.size());
    }
}

TEST(Arithmetic, LongVectorsTakeTheWidePathWithTheSameResults) {
    LogicNet net;
    NetworkManager& manager = net.manager();
    for (const uint32_t count : {63u, 64u, 65u, 1000u, 1u << 21}) {
        const Retained<Numeric> a(new Numeric(&manager));
        const Retained<Numeric> b(new Numeric(&manager));
        const Retained<Numeric> r(new Numeric(&manager));
        a->setType(NumericType::vector3);
        a->resize(count);
        for (uint32_t i = 0; i < count; ++i) {
            a->refValues<Vector3<float>>()[i] = Vector3<float>(float(i), 1.0f, -0.5f);
        }
        b->setValues(Array<Vector3<float>>{Vector3<float>(1, 2, 3), Vector3<float>(4, 5, 6)});
        const auto kernel =
            arithmeticKernel(Arithmetic::sub, NumericType::vector3, NumericType::vector3);
        ASSERT_EQ(-1, kernel(*a, *b, *r));
        ASSERT_EQ(count, r->size());
        EXPECT_EQ(Vector3<float>(-1, -1, -3.5f), r->valueAt<Vector3<float>>(0));
        for (uint32_t i = 1; i < count; ++i) {
            ASSERT_EQ(Vector3<float>(float(i) - 4.0f, -4, -6.5f), r->valueAt<Vector3<float>>(i));
        }
    }
}

TEST(Arithmetic, AValueOfAnotherClassIsLeftAlone) {
    LogicNet net;
    net.add("Add", "a");
    net.add("Real", "r");
    net.add("String", "s");
    ASSERT_TRUE(net.link("r.real", "a.in0"));
    net.numbers("r.in", {2.0f});
    EXPECT_EQ("[3] 2", net.text("a.result"));
    net.pin("r.real").setValue(net.pin("s.out").value());
    net.pin("a.in0").markDirty(true);
    EXPECT_EQ("[3] 2", net.text("a.result"));
}

} // namespace

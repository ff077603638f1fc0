// SPDX-License-Identifier: Apache-2.0
// The nodes that apply a formula to each element.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "nodes/values/declarations.h"
#include "nodes/values/element_loop.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::declared;
using sluice_tests::LogicNet;
using tidemark::TM_String;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

// One node "n" whose pins are all of one type.
class Formula : public LogicNet {
public:
    explicit Formula(const TM_String& type, const TM_String& specialization = "Real") {
        Node& node = add(type, "n");
        for (const Attribute* pin : node.refInputAttributes()) {
            if (pin->className() == "NumericAttribute") {
                this->type("n." + pin->name(), specialization);
            }
        }
    }
    TM_String result() { return text("n.result"); }
    template <typename T>
    T value(std::initializer_list<std::pair<const char*, T>> inputs) {
        for (const auto& [pin, number] : inputs) numbers<T>(TM_String("n.") + pin, {number});
        refresh("n.result");
        return as<NumericAttribute>("n.result").numeric().value<T>();
    }
};

float of(const TM_String& type, float in) { return Formula(type).value<float>({{"in", in}}); }

TEST(Functions, DeclareTheirPins) {
    const TM_String real = "NumericAttribute \"Real\"";
    const TM_String realOrVector = "NumericAttribute \"Real\", \"Vector3\"";
    for (const TM_String type : {"Sin", "Cos", "Tan", "Exp"}) {
        EXPECT_EQ(declared(type), type + "\nin in " + real + " = 0\nout result " + real + "\n");
    }
    for (const TM_String type : {"Log", "Log10"}) {
        EXPECT_EQ(declared(type), type + "\nin in " + real + " = 1\nout result " + real + "\n");
    }
    for (const TM_String type : {"Floor", "Ceil", "Round", "Radians", "Degrees"}) {
        EXPECT_EQ(declared(type),
                  type + "\nin in " + realOrVector + " = 0\nout result " + realOrVector + "\n");
    }
    const TM_String signedTypes =
        "NumericAttribute \"Integer\", \"Integer64\", \"Real\", \"Vector3\"";
    EXPECT_EQ(declared("Abs"),
              "Abs\nin in " + signedTypes + " = 0\nout result " + signedTypes + "\n");
    EXPECT_EQ(declared("Sqrt"), "Sqrt\nin in NumericAttribute \"Real\", \"Integer\" = 0\n"
                                "out result " +
                                    real + "\n");
    EXPECT_EQ(declared("Pow"), "Pow\nin base " + real + " = 1\nin exponent " + real +
                                   " = 1\nout result " + real + "\n");
    EXPECT_EQ(declared("Atan2"),
              "Atan2\nin y " + real + " = 0\nin x " + real + " = 1\nout result " + real + "\n");
    const TM_String clamped = "NumericAttribute \"Real\", \"Integer\"";
    EXPECT_EQ(declared("Clamp"), "Clamp\nin in " + clamped + " = 0\nin max " + clamped +
                                     " = 1\nin min " + clamped + " = 0\nout result " + clamped +
                                     "\n");
    const TM_String divided = "NumericAttribute \"Integer\", \"Real\", \"Vector3\", \"Color4\"";
    EXPECT_EQ(declared("Mod"), "Mod\nin in " + divided + " = 0\nin mod " + divided +
                                   " = 1\nout result " + divided + "\n");
    const TM_String mapped = "NumericAttribute \"Real\", \"Vector3\", \"Color4\"";
    EXPECT_EQ(declared("NumMapRange"),
              "NumMapRange\nin value " + mapped + " = 0\nin in range min " + mapped +
                  " = 0\nin in range max " + mapped + " = 1\nin out range min " + mapped +
                  " = 0\nin out range max " + mapped + " = 1\nout result " + mapped + "\n");
    EXPECT_EQ(declared("TrigonometricFunctions"),
              "TrigonometricFunctions\n"
              "in function! EnumAttribute \"List\", \"Integer\", \"String\" = "
              "[{0:\"cos\",1:\"sin\",2:\"tan\",3:\"acos\",4:\"asin\",5:\"atan\",6:\"cosh\","
              "7:\"sinh\",8:\"tanh\",},0\n"
              "in in " +
                  real + " = 0\nout result " + real + "\n");
}

TEST(Functions, HaveTextsAndAffects) {
    for (const char* type : {"Abs", "Sin", "Cos", "Tan", "Exp", "Log", "Log10", "Sqrt", "Floor",
                             "Ceil", "Round", "Radians", "Degrees", "Pow", "Atan2", "Clamp", "Mod",
                             "NumMapRange", "TrigonometricFunctions"}) {
        EXPECT_EQ(sluice_tests::missingTexts(type), "") << type;
        EXPECT_EQ(sluice_tests::missingAffects(type), "") << type;
    }
}

TEST(Functions, DescriptionsAndHelp) {
    LogicNet net;
    const auto description = [&](const char* type) { return net.add(type, type).getDescription(); };
    EXPECT_EQ(description("Floor"),
              "Computes the floor value of the input. Examples: floor(2.3)=2; floor(-1.3)=-2");
    EXPECT_EQ(description("Round"),
              "Computes the round value of the input. Example: round(2.3)=2; round(2.7)=3");
    EXPECT_EQ(description("Clamp"),
              "Clamps the input value according to the given min and max values.");
    EXPECT_EQ(description("Pow"), "Computes the base raised to the power exponent.");
    EXPECT_EQ(description("Atan2"),
              "Computes the principal value of the arc tangent of y/x (in radians [-pi,+pi]).");
    EXPECT_EQ(description("Mod"), "Computes module of the input value.");
    EXPECT_EQ(description("Sin"), "Evaluates the sin-function.");
    EXPECT_EQ(net.pin("Pow.base").getDescription(), "Base");
    EXPECT_EQ(net.pin("Pow.exponent").getDescription(), "Exponent");
    EXPECT_EQ(net.pin("Pow.result").getDescription(), "Power");
    EXPECT_EQ(net.pin("Atan2.y").getDescription(), "Y-Coordinate");
    EXPECT_EQ(net.pin("Atan2.x").getDescription(), "X-Coordinate");
}

// Types.

TEST(Functions, OutputFollowsTheTypeOfTheInput) {
    LogicNet net;
    net.add("Vector3", "v");
    net.add("Floor", "n");
    net.link("v.vector", "n.in");
    EXPECT_EQ(net.pin("n.result").specialization(), "Vector3");
    net.numbers<Vector3<float>>("v.in", {{1.5f, -1.5f, 2.0f}});
    EXPECT_EQ(net.text("n.result"), "[4] (1,-2,2)");
}

TEST(Functions, OpenTypesComputeNothing) {
    for (const char* type : {"Abs", "Floor", "Clamp", "Mod", "NumMapRange"}) {
        LogicNet net;
        net.add(type, "n");
        EXPECT_EQ(net.text("n.result"), "") << type;
        EXPECT_EQ(net.messages("n"), "") << type;
    }
}

TEST(Sqrt, TakesIntegersAndGivesReals) {
    LogicNet net;
    net.add("Integer", "i");
    net.add("Sqrt", "n");
    ASSERT_TRUE(net.link("i.integer", "n.in"));
    EXPECT_EQ(net.pin("n.result").specialization(), "Real");
    net.numbers<int32_t>("i.in", {9, 2, -1});
    net.refresh("n.result");
    const Numeric& roots = net.as<NumericAttribute>("n.result").numeric();
    EXPECT_EQ(roots.type(), NumericType::real);
    EXPECT_EQ(roots.valueAt<float>(0), 3.0f);
    EXPECT_EQ(roots.valueAt<float>(1), std::sqrt(2.0f));
    EXPECT_TRUE(std::isnan(roots.valueAt<float>(2)));
}

// Values.

TEST(Functions, OfOneNumber) {
    EXPECT_EQ(of("Abs", -2.5f), 2.5f);
    EXPECT_FALSE(std::signbit(of("Abs", -0.0f)));
    EXPECT_EQ(of("Floor", -1.3f), -2.0f);
    EXPECT_EQ(of("Ceil", 2.3f), 3.0f);
    EXPECT_EQ(of("Ceil", -1.3f), -1.0f);
    EXPECT_EQ(of("Sin", 0.0f), 0.0f);
    EXPECT_EQ(of("Cos", 0.0f), 1.0f);
    EXPECT_EQ(of("Tan", 1.0f), std::tan(1.0f));
    EXPECT_EQ(of("Exp", 0.0f), 1.0f);
    EXPECT_EQ(of("Exp", -infinity), 0.0f);
    EXPECT_EQ(of("Log", 1.0f), 0.0f);
    EXPECT_EQ(of("Log", 0.0f), -infinity);
    EXPECT_EQ(of("Log10", 1000.0f), 3.0f);
    EXPECT_EQ(of("Sqrt", 2.25f), 1.5f);
    EXPECT_TRUE(std::isnan(of("Sqrt", -1.0f)));
    EXPECT_TRUE(std::isnan(of("Sin", infinity)));
}

TEST(Functions, LogOfANegativeNumberIsSilent) {
    Formula n("Log");
    EXPECT_TRUE(std::isnan(n.value<float>({{"in", -1.0f}})));
    EXPECT_EQ(n.messages("n"), "");
}

TEST(Round, HalvesGoUp) {
    EXPECT_EQ(of("Round", -2.5f), -2.0f);
    EXPECT_EQ(of("Round", -1.5f), -1.0f);
    EXPECT_EQ(of("Round", -0.5f), 0.0f);
    EXPECT_EQ(of("Round", 2.5f), 3.0f);
    EXPECT_EQ(of("Round", 0.49999997f), 1.0f) << "the sum is rounded before the floor is taken";
    EXPECT_EQ(of("Round", 8388609.0f), 8388610.0f);
}

TEST(Radians, MultiplyBeforeTheyDivide) {
    EXPECT_EQ(of("Radians", 180.0f), 3.14159274f);
    EXPECT_EQ(of("Radians", 90.0f), 1.57079637f);
    EXPECT_EQ(of("Degrees", 3.14159274f), 180.0f);
}

TEST(Abs, OfIntegers) {
    EXPECT_EQ(Formula("Abs", "Integer").value<int32_t>({{"in", -7}}), 7);
    constexpr int32_t lowest = std::numeric_limits<int32_t>::min();
    EXPECT_EQ(Formula("Abs", "Integer").value<int32_t>({{"in", lowest}}), lowest);
    EXPECT_EQ(Formula("Abs", "Integer64").value<int64_t>({{"in", -5'000'000'000}}), 5'000'000'000);
}

TEST(Clamp, UpperBoundWins) {
    EXPECT_EQ(Formula("Clamp").value<float>({{"in", 7}, {"max", 5}, {"min", 0}}), 5.0f);
    EXPECT_EQ(Formula("Clamp").value<float>({{"in", -7}, {"max", 5}, {"min", 0}}), 0.0f);
    for (const float in : {-10.0f, 0.0f, 3.0f, 10.0f}) {
        EXPECT_EQ(Formula("Clamp").value<float>({{"in", in}, {"max", 1}, {"min", 5}}), 1.0f);
    }
    EXPECT_EQ(Formula("Clamp", "Integer").value<int32_t>({{"in", 7}, {"max", 5}, {"min", 0}}), 5);
    EXPECT_EQ(Formula("Clamp").value<float>({{"in", 0.5f}}), 0.5f) << "0 to 1 unless set";
    EXPECT_EQ(Formula("Clamp").value<float>({{"in", 1.5f}}), 1.0f);
    EXPECT_EQ(Formula("Clamp", "Integer").value<int32_t>({{"in", 3}}), 1);
}

TEST(NumMapRange, MapsWithoutBounds) {
    const auto mapped = [](float value, float inMin, float inMax, float outMin, float outMax) {
        return Formula("NumMapRange")
            .value<float>({{"value", value},
                           {"in range min", inMin},
                           {"in range max", inMax},
                           {"out range min", outMin},
                           {"out range max", outMax}});
    };
    EXPECT_EQ(mapped(5, 0, 10, 100, 200), 150.0f);
    EXPECT_EQ(mapped(15, 0, 10, 100, 200), 250.0f);
    EXPECT_EQ(mapped(0.25f, 0, 1, -1, 1), -0.5f);
    EXPECT_TRUE(std::isnan(mapped(1, 1, 1, 0, 1)));
    EXPECT_EQ(mapped(2, 1, 1, 0, 5), infinity);
    Formula vectors("NumMapRange", "Vector3");
    vectors.numbers<Vector3<float>>("n.value", {{0, 1, 2}, {4, 4, 4}});
    vectors.numbers<Vector3<float>>("n.out range max", {{10, 20, 30}});
    EXPECT_EQ(vectors.result(), "[4] (0,20,60),(40,80,120)");
    Formula colors("NumMapRange", "Color4");
    colors.numbers<Color4<float>>("n.value", {{0, 0.5f, 1, 1}});
    colors.numbers<Color4<float>>("n.out range max", {{2, 2, 2, 2}});
    EXPECT_EQ(colors.result(), "[5] (0,1,2,2)");
}

TEST(PowAndAtan2, TakeTwoReals) {
    EXPECT_EQ(Formula("Pow").value<float>({{"base", 2}, {"exponent", 10}}), 1024.0f);
    EXPECT_TRUE(std::isnan(Formula("Pow").value<float>({{"base", -2}, {"exponent", 0.5f}})));
    EXPECT_EQ(Formula("Pow").value<float>({{"base", 0}, {"exponent", -1}}), infinity);
    EXPECT_EQ(Formula("Pow").value<float>({{"base", nan}, {"exponent", 0}}), 1.0f);
    EXPECT_EQ(Formula("Atan2").value<float>({{"y", 1}, {"x", 0}}), std::atan2(1.0f, 0.0f));
    EXPECT_EQ(Formula("Atan2").value<float>({{"y", 0}, {"x", -1}}), std::atan2(0.0f, -1.0f));
}

// Remainders.

TEST(Mod, HasTheSignOfTheDividedNumber) {
    const auto mod = [](float x, float y) {
        return Formula("Mod").value<float>({{"in", x}, {"mod", y}});
    };
    EXPECT_EQ(mod(5.5f, 2), 1.5f);
    EXPECT_EQ(mod(-5.5f, 2), -1.5f);
    EXPECT_EQ(mod(5.5f, -2), 1.5f);
    EXPECT_TRUE(std::isnan(mod(1, 0)));
}

TEST(Mod, OfIntegersNeverTraps) {
    const auto mod = [](int32_t x, int32_t y) {
        return Formula("Mod", "Integer").value<int32_t>({{"in", x}, {"mod", y}});
    };
    EXPECT_EQ(mod(-7, 3), -1);
    EXPECT_EQ(mod(7, -3), 1);
    EXPECT_EQ(mod(7, 0), 0);
    EXPECT_EQ(mod(std::numeric_limits<int32_t>::min(), -1), 0);
}

TEST(Mod, OfVectorsAndColors) {
    LogicNet net;
    net.add("Mod", "n");
    net.type("n.in", "Vector3");
    net.type("n.mod", "Real");
    net.numbers<Vector3<float>>("n.in", {{5.5f, -5.5f, 7}});
    net.numbers<float>("n.mod", {2});
    EXPECT_EQ(net.text("n.result"), "[4] (1.5,-1.5,1)");
    net.type("n.mod", "Vector3");
    net.numbers<Vector3<float>>("n.mod", {{5, 5, 4}});
    EXPECT_EQ(net.text("n.result"), "[4] (0.5,-0.5,3)");
    LogicNet colors;
    colors.add("Mod", "n");
    colors.type("n.in", "Color4");
    colors.type("n.mod", "Real");
    colors.numbers<Color4<float>>("n.in", {{1, 2, 3, 4}});
    colors.numbers<float>("n.mod", {1.5f});
    EXPECT_EQ(colors.text("n.result"), "[5] (1,0.5,0,1)");
}

TEST(Mod, KeepsThePairsThatGoTogether) {
    LogicNet net;
    net.add("Mod", "n");
    net.type("n.in", "Vector3");
    EXPECT_EQ(net.pin("n.mod").specializations(), (SpecializationList{"Vector3", "Real"}));
    net.add("Integer", "i");
    net.add("Vector3", "v");
    net.add("Mod", "m");
    net.link("i.integer", "m.mod");
    EXPECT_EQ(net.pin("m.in").specialization(), "Integer");
    EXPECT_FALSE(net.canLink("v.vector", "m.in"));
}

// Choices.

TEST(TrigonometricFunctions, EvaluatesTheChosenOne) {
    using Function = float (*)(float);
    const std::pair<const char*, Function> functions[] = {
        {"cos", std::cos},   {"sin", std::sin},   {"tan", std::tan},
        {"acos", std::acos}, {"asin", std::asin}, {"atan", std::atan},
        {"cosh", std::cosh}, {"sinh", std::sinh}, {"tanh", std::tanh}};
    int32_t key = 0;
    for (const auto& [label, function] : functions) {
        Formula n("TrigonometricFunctions");
        Enum& choice = n.as<EnumAttribute>("n.function").ownEnum();
        EXPECT_EQ(choice.label(key), label);
        choice.setKey(key++);
        EXPECT_FLOAT_EQ(n.value<float>({{"in", 0.5f}}), function(0.5f)) << label;
    }
}

TEST(TrigonometricFunctions, UnknownChoiceComputesNothing) {
    LogicNet net;
    net.add("TrigonometricFunctions", "n");
    net.add("String", "s");
    net.strings("s.in", {"cotangent"});
    net.numbers<float>("n.in", {0.5f});
    net.link("s.out", "n.function");
    EXPECT_EQ(net.text("n.result"), "[3] 0");
    net.strings("s.in", {"tanh"});
    net.refresh("n.result");
    EXPECT_EQ(net.as<NumericAttribute>("n.result").numeric().value<float>(), std::tanh(0.5f));
}

// Arrays.

TEST(Functions, EmptyInputGivesAnEmptyResult) {
    for (const char* type : {"Sin", "Floor", "Abs", "Sqrt"}) {
        Formula n(type);
        n.numbers<float>("n.in", {});
        EXPECT_EQ(n.result(), "[3] ") << type;
    }
    Formula clamp("Clamp");
    clamp.numbers<float>("n.in", {1, 2, 3});
    clamp.numbers<float>("n.min", {});
    EXPECT_EQ(clamp.result(), "[3] ");
}

TEST(Functions, ShorterInputsRepeatTheirLastElement) {
    Formula n("Clamp");
    n.numbers<float>("n.in", {5, 5, 5, 5});
    n.numbers<float>("n.max", {1, 2, 3});
    EXPECT_EQ(n.result(), "[3] 1,2,3,3");
    Formula longer("Pow");
    longer.numbers<float>("n.base", {2});
    longer.numbers<float>("n.exponent", {1, 2, 3});
    EXPECT_EQ(longer.result(), "[3] 2,4,8");
}

TEST(Functions, ThreadsGiveTheSameNumbers) {
    for (const char* type : {"Sin", "Exp", "Round"}) {
        TM_String results[3];
        int run = 0;
        for (const int threads : {1, 3, 64}) {
            tidemark::sluice::graph::setThreadForEveryRecord(threads > 1);
            Formula n(type);
            n.node("n").setNumberOfThreads(threads);
            Array<float> values;
            for (int i = 0; i < 1000; ++i) values.append(0.37f * static_cast<float>(i) - 100.0f);
            n.as<NumericAttribute>("n.in").ownNumeric().setValues(values);
            results[run++] = n.result();
        }
        tidemark::sluice::graph::setThreadForEveryRecord(false);
        EXPECT_EQ(results[0], results[1]) << type;
        EXPECT_EQ(results[0], results[2]) << type;
    }
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// The interpolating nodes: pins, types, worked examples, even steps, threads, missing input.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>
#include <vector>

#include "core/limits.h"
#include "nodes/values/declarations.h"
#include "nodes/values/element_loop.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::declared;
using sluice_tests::LogicNet;
using sluice_tests::missingAffects;
using sluice_tests::missingTexts;
using tidemark::TM_String;

// One node called "n" of one type.
class Interpolation : public LogicNet {
public:
    Interpolation(const TM_String& type, const TM_String& element) {
        add(type, "n");
        this->type("n.result", element);
    }
    Interpolation& real(const TM_String& pin, float value) {
        numbers<float>("n." + pin, {value});
        return *this;
    }
    template <typename T>
    Interpolation& points(std::initializer_list<T> values) {
        numbers<T>("n.array", values);
        return *this;
    }
    Interpolation& at(std::initializer_list<float> t) {
        numbers<float>("n.t", t);
        return *this;
    }
    Interpolation& evenly(int32_t param) {
        bits("n.equal stepping", {true});
        numbers<int32_t>("n.equal stepping param", {param});
        return *this;
    }
    std::vector<float> reals() {
        refresh("n.result");
        const Array<float>& all = as<NumericAttribute>("n.result").numeric().values<float>();
        return std::vector<float>(all.begin(), all.end());
    }
    TM_String text() { return LogicNet::text("n.result"); }
    TM_String message() {
        const TM_String all = messages("n");
        node("n").refMessages().clear();
        return all;
    }
};

const TM_String curve = "NumericAttribute \"Real\", \"Vector3\", \"Color4\", \"Matrix4\"";
const TM_String curveDefaults =
    " = Real:0 Vector3:0 Color4:(0,0,0,1) Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)\n";
const TM_String real = " NumericAttribute \"Real\"";
const TM_String stepping = "in equal stepping! BitArrayAttribute \"Bit\" = 0\n"
                           "in equal stepping param! NumericAttribute \"Integer\" = 100\n";
const char* const curveNodes[] = {"NumInterpolateCubic", "NumInterpolateHermite",
                                  "NumInterpolateBezier"};

TEST(NumInterpolate, AreDeclaredAsTold) {
    const TM_String all =
        "NumericAttribute \"Real\", \"Vector3\", \"Color4\", \"Matrix4\", \"Quaternion\"";
    const TM_String structured =
        " Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1) Quaternion:(1,0,0,0)\n";
    EXPECT_EQ("NumInterpolateLinear\nin first " + all + " = Real:0 Vector3:0 Color4:0" +
                  structured + "in second " + all + " = Real:1 Vector3:1 Color4:1" + structured +
                  "in blend" + real +
                  " = 0.5\nin clamp! BitArrayAttribute \"Bit\" = 0\nout result " + all + "\n",
              declared("NumInterpolateLinear"));
    EXPECT_EQ("NumInterpolateCubic\nin array " + curve + curveDefaults + "in t" + real + " = 0\n" +
                  stepping + "out result " + curve + "\n",
              declared("NumInterpolateCubic"));
    EXPECT_EQ("NumInterpolateHermite\nin array " + curve + curveDefaults + "in t" + real +
                  " = 0\nin tension!" + real + " = 0\nin bias!" + real + " = 0\n" + stepping +
                  "out result " + curve + "\n",
              declared("NumInterpolateHermite"));
    EXPECT_EQ("NumInterpolateBezier\nin array " + curve + curveDefaults + "in tangents " + curve +
                  curveDefaults + "in t" + real + " = 0\nin tangent influence!" + real +
                  " = 0.33333334\nout result " + curve + "\n",
              declared("NumInterpolateBezier"));
}

TEST(NumInterpolate, AreDescribedAndAffected) {
    LogicNet net;
    EXPECT_EQ("Computes linearly interpolated value between the first and second value given by "
              "the blend value. If the clamp value is set, the result is clamped according to the "
              "first and second value, otherwise not.",
              net.add("NumInterpolateLinear", "l").getDescription());
    EXPECT_EQ("Computes cubic interpolated value between the array of supporting points.",
              net.add("NumInterpolateCubic", "c").getDescription());
    EXPECT_EQ("Computes hermite interpolated value between the array of supporting points.",
              net.add("NumInterpolateHermite", "h").getDescription());
    EXPECT_EQ("Computes bezier interpolated value between the array of supporting points.",
              net.add("NumInterpolateBezier", "b").getDescription());
    for (const char* type : {"NumInterpolateLinear", curveNodes[0], curveNodes[1], curveNodes[2]}) {
        EXPECT_EQ("", missingTexts(type)) << type;
        EXPECT_EQ("", missingAffects(type)) << type;
    }
}

TEST(NumInterpolate, HelpTextsThatCarryBehaviour) {
    LogicNet net;
    net.add("NumInterpolateHermite", "h");
    net.add("NumInterpolateCubic", "c");
    net.add("NumInterpolateBezier", "b");
    for (const char* node : {"h", "c"}) {
        const TM_String pin = node;
        EXPECT_EQ("Parameter to access he curve (0..1)", net.pin(pin + ".t").getDescription());
        EXPECT_EQ("Enables constant distances within the discretization of the curve. See also the "
                  "following parameter, to tweak quality of equal distances...",
                  net.pin(pin + ".equal stepping").getDescription());
        EXPECT_EQ("No of discretization steps to determine constant distances. Good values lie "
                  "between (50...2000), depending on the length of the curve. Higher values mean "
                  "higher precision, but may slow down the calculation.",
                  net.pin(pin + ".equal stepping param").getDescription());
    }
    EXPECT_EQ("Tension can be used to tighten up the curvature at the supporting points. 1 is "
              "high, 0 normal, -1 is low.",
              net.pin("h.tension").getDescription());
    EXPECT_EQ("The bias can be used to twist the curve about the known points. 0 is even, >0 is "
              "towards first segment, <0 towards the other.",
              net.pin("h.bias").getDescription());
    EXPECT_EQ("Parameter to access the curve (0..1)", net.pin("b.t").getDescription());
    EXPECT_EQ("Array of same size as supporting points, defining the tangent per point.",
              net.pin("b.tangents").getDescription());
}

TEST(NumInterpolate, IntegersAreRefused) {
    for (const auto& [type, input] :
         {std::pair("NumInterpolateLinear", "n.first"), std::pair("NumInterpolateCubic", "n.array"),
          std::pair("NumInterpolateHermite", "n.array"),
          std::pair("NumInterpolateBezier", "n.tangents")}) {
        LogicNet net;
        net.add(type, "n");
        net.add("Integer", "i");
        net.add("Color4", "c");
        EXPECT_FALSE(net.canLink("i.integer", input)) << type;
        ASSERT_TRUE(net.link("c.color", input)) << type;
        EXPECT_EQ("Color4", net.pin("n.result").specialization()) << type;
    }
}

TEST(NumInterpolate, WithoutATypeNothingIsComputed) {
    for (const char* type : {"NumInterpolateLinear", curveNodes[0], curveNodes[1], curveNodes[2]}) {
        LogicNet net;
        net.add(type, "n");
        EXPECT_EQ("", net.text("n.result")) << type;
        EXPECT_EQ("", net.messages("n")) << type;
    }
}

// NumInterpolateLinear.

TEST(NumInterpolateLinear, WorkedExamples) {
    Interpolation n("NumInterpolateLinear", "Real");
    EXPECT_EQ("[3] 0.5", n.text());
    n.real("first", 0).real("second", 10).real("blend", 1.5f);
    EXPECT_EQ("[3] 15", n.text());
    n.bits("n.clamp", {true});
    EXPECT_EQ("[3] 10", n.text());
    n.real("blend", -1);
    EXPECT_EQ("[3] 0", n.text());
    n.real("first", 10).real("second", 0).real("blend", 2);
    EXPECT_EQ("[3] 0", n.text());
    n.bits("n.clamp", {true, false});
    EXPECT_EQ("[3] -10", n.text()) << "the last bit counts";
}

TEST(NumInterpolateLinear, ShorterInputsRepeatTheirLastElement) {
    Interpolation n("NumInterpolateLinear", "Real");
    n.numbers<float>("n.first", {0, 100});
    n.numbers<float>("n.second", {10, 200, 300});
    n.numbers<float>("n.blend", {0, 0.5f, 0.25f, 1});
    EXPECT_EQ("[3] 0,150,150,300", n.text());
    n.numbers<float>("n.blend", {});
    EXPECT_EQ("[3] ", n.text());
    EXPECT_EQ("", n.message());
}

TEST(NumInterpolateLinear, EveryComponentOfEveryType) {
    Interpolation v("NumInterpolateLinear", "Vector3");
    v.numbers<Vector3<float>>("n.first", {{0, 0, 0}});
    v.numbers<Vector3<float>>("n.second", {{10, -20, 30}});
    v.numbers<float>("n.blend", {0.5f, 1.5f});
    EXPECT_EQ("[4] (5,-10,15),(15,-30,45)", v.text());
    v.bits("n.clamp", {true});
    EXPECT_EQ("[4] (5,-10,15),(10,-20,30)", v.text());
    EXPECT_EQ("[5] (0.5,0.5,0.5,0.5)", Interpolation("NumInterpolateLinear", "Color4").text());
    Interpolation q("NumInterpolateLinear", "Quaternion");
    q.numbers<Quaternion<float>>("n.first", {{0, 0, 0, 1}});
    q.numbers<Quaternion<float>>("n.second", {{1, 2, 3, 0}});
    EXPECT_EQ("[6] (0.5,0.5,1,1.5)", q.text());
    Interpolation m("NumInterpolateLinear", "Matrix4");
    m.numbers<Matrix4<float>>("n.second", {Matrix4<float>(2.0f)});
    EXPECT_EQ("[7] (1.5,1,1,1,1,1.5,1,1,1,1,1.5,1,1,1,1,1.5)", m.text());
}

// Curves.

TEST(NumInterpolateCubic, WorkedExamples) {
    Interpolation n("NumInterpolateCubic", "Real");
    n.points<float>({0, 1, 4, 9}).at({0, 0.25f, 0.5f, 0.75f, 1});
    EXPECT_EQ("[3] 0,0.5859375,2.25,5.2265625,9", n.text());
    n.points<float>({0, 10}).at({0.25f});
    EXPECT_EQ("[3] 2.03125", n.text());
    n.points<float>({0, 1, 3}).at({0.5f, 0.25f});
    EXPECT_EQ("[3] 1,0.375", n.text());
    n.points<float>({7}).at({-1, 0, 0.3f, 2});
    EXPECT_EQ("[3] 7,7,7,7", n.text());
}

TEST(NumInterpolateHermite, WorkedExamples) {
    Interpolation n("NumInterpolateHermite", "Real");
    n.points<float>({0, 1, 4, 9}).at({0.25f, 0.5f, 0.75f});
    EXPECT_EQ("[3] 0.5859375,2.25,5.2265625", n.text());
    n.real("tension", 1);
    EXPECT_EQ("[3] 0.84375,2.5,4.78125", n.text());
    n.real("tension", -1);
    EXPECT_EQ("[3] 0.328125,2,5.671875", n.text());
    n.real("tension", 0).real("bias", 1);
    EXPECT_EQ("[3] 0.703125,2.25,4.96875", n.text());
    n.real("bias", -1);
    EXPECT_EQ("[3] 0.46875,2.25,5.484375", n.text());
}

TEST(NumInterpolateBezier, WorkedExamples) {
    Interpolation n("NumInterpolateBezier", "Real");
    n.points<float>({0, 10}).at({0.25f, 0.5f});
    n.numbers<float>("n.tangents", {3, 3});
    EXPECT_EQ("[3] 1.84375,5", n.text());
    n.real("tangent influence", 0);
    EXPECT_EQ("[3] 1.5625,5", n.text());
    n.real("tangent influence", 1).at({0.25f});
    EXPECT_EQ("[3] 2.40625", n.text());
    n.numbers<float>("n.tangents", {3});
    EXPECT_EQ("[3] 2.40625", n.text()) << "the last tangent repeats";
}

TEST(CurveNodes, KnowEveryType) {
    for (const char* type : curveNodes) {
        Interpolation v(type, "Vector3");
        v.points<Vector3<float>>({{0, 2, 8}, {4, 2, 0}}).at({0.5f});
        EXPECT_EQ("[4] (2,2,4)", v.text()) << type;
        Interpolation m(type, "Matrix4");
        m.points<Matrix4<float>>({Matrix4<float>(1.0f), Matrix4<float>(3.0f)}).at({0.5f});
        if (type == TM_String("NumInterpolateBezier")) {
            m.numbers<Matrix4<float>>("n.tangents", {Matrix4<float>(0.0f)});
        }
        EXPECT_EQ("[7] (2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2)", m.text()) << type;
        Interpolation c(type, "Color4");
        c.points<Color4<float>>({{0, 2, 8, 1}, {4, 2, 0, 1}}).at({0, 1});
        EXPECT_EQ("[5] (0,2,8,1),(4,2,0,1)", c.text()) << type;
    }
}

TEST(CurveNodes, OnePointIsThatPointWhateverItIs) {
    for (const char* type : curveNodes) {
        Interpolation n(type, "Real");
        const float infinity = std::numeric_limits<float>::infinity();
        n.points<float>({infinity}).at({0, 0.5f, 1});
        EXPECT_EQ((std::vector<float>{infinity, infinity, infinity}), n.reals()) << type;
    }
}

TEST(CurveNodes, MissingInputIsAnErrorAndTheOutputStays) {
    for (const char* type : curveNodes) {
        Interpolation n(type, "Real");
        n.points<float>({5, 6});
        EXPECT_EQ("[3] 5", n.text()) << type;
        n.at({});
        EXPECT_EQ("[3] 5", n.text()) << type;
        EXPECT_EQ("[error] Missing Input...\n", n.message()) << type;
        n.at({1}).points<float>({});
        EXPECT_EQ("[3] 5", n.text()) << type;
        EXPECT_EQ("[error] Missing Input...\n", n.message()) << type;
    }
    Interpolation n("NumInterpolateBezier", "Real");
    n.points<float>({5, 6});
    n.numbers<float>("n.tangents", {});
    EXPECT_EQ("[3] 0", n.text());
    EXPECT_EQ("[error] Missing Input...\n", n.message());
}

TEST(EqualStepping, WorkedExample) {
    for (const char* type : {"NumInterpolateCubic", "NumInterpolateHermite"}) {
        Interpolation n(type, "Real");
        n.points<float>({0, 1, 3}).at({0.25f, 0.5f, 0.75f, 0, 1}).evenly(100);
        const std::vector<float> reals = n.reals();
        EXPECT_NEAR(0.750f, reals[0], 1e-4) << type;
        EXPECT_NEAR(1.500f, reals[1], 1e-4) << type;
        EXPECT_NEAR(2.250f, reals[2], 1e-4) << type;
        EXPECT_EQ(0, reals[3]);
        EXPECT_EQ(3, reals[4]);
        n.bits("n.equal stepping", {false});
        EXPECT_EQ(1, n.reals()[1]) << "off again";
    }
}

TEST(EqualStepping, EvenStepsLieAtEqualDistances) {
    Interpolation n("NumInterpolateHermite", "Vector3");
    n.points<Vector3<float>>({{0, 0, 0}, {1, 5, 0}, {1.5f, 5, 2}, {9, -3, 4}});
    n.real("tension", -0.5f).evenly(2000);
    Array<float> t;
    for (int i = 0; i <= 200; ++i) t.append(static_cast<float>(i) / 200);
    n.as<NumericAttribute>("n.t").ownNumeric().setValues(t);
    n.pin("n.t").valueChanged();
    n.refresh("n.result");
    const auto& made = n.as<NumericAttribute>("n.result").numeric().values<Vector3<float>>();
    ASSERT_EQ(201u, made.size());
    EXPECT_EQ((Vector3<float>{9, -3, 4}), made[200]);
    std::vector<float> chords;
    float sum = 0;
    for (uint32_t i = 0; i < 200; ++i) chords.push_back((made[i + 1] - made[i]).length());
    for (const float chord : chords) sum += chord / 200;
    for (const float chord : chords) EXPECT_NEAR(sum, chord, sum * 0.02f);
}

TEST(EqualStepping, CoarseTablesAreStillTables) {
    Interpolation n("NumInterpolateCubic", "Real");
    n.points<float>({0, 1, 3}).at({0, 0.5f, 1}).evenly(1);
    // Samples 0, 1, 3: half the length lies a quarter into the second segment.
    const float quarter = n.reals()[1];
    n.bits("n.equal stepping", {false});
    n.at({0.625f});
    EXPECT_EQ(n.reals()[0], quarter);
    for (const int32_t param : {0, -1, std::numeric_limits<int32_t>::min()}) {
        n.at({0, 0.5f, 1}).evenly(param);
        EXPECT_EQ(quarter, n.reals()[1]) << "at least one step";
    }
}

TEST(EqualStepping, CurvesWithoutALengthKeepTheirParameter) {
    Interpolation n("NumInterpolateCubic", "Real");
    n.points<float>({4}).at({0.5f}).evenly(10);
    EXPECT_EQ("[3] 4", n.text());
    n.points<float>({4, 4, 4});
    EXPECT_EQ("[3] 4", n.text());
    const float infinity = std::numeric_limits<float>::infinity();
    n.points<float>({0, 1, 2, 3, 4, infinity}).at({0.25f});
    const std::vector<float> even = n.reals();
    n.bits("n.equal stepping", {false});
    EXPECT_EQ(n.reals(), even);
    EXPECT_TRUE(std::isfinite(even[0]));
}

TEST(EqualStepping, WhatDoesNotFitIsReportedAndTheNodeStaysUsable) {
    Interpolation n("NumInterpolateCubic", "Real");
    n.points<float>({0, 1, 2}).at({0.5f}).evenly(std::numeric_limits<int32_t>::max());
    EXPECT_THROW(n.refresh("n.result"), std::bad_alloc);
    tidemark::limits::set({.maxElements = 100});
    n.evenly(50);
    EXPECT_THROW(n.refresh("n.result"), std::bad_alloc);
    tidemark::limits::set({});
    n.evenly(49);
    EXPECT_NEAR(1, n.reals()[0], 1e-4);
}

// While it lives, every record has a thread of its own.
struct RealThreads {
    RealThreads() { tidemark::sluice::graph::setThreadForEveryRecord(true); }
    ~RealThreads() { tidemark::sluice::graph::setThreadForEveryRecord(false); }
};

TEST(NumInterpolate, ThreadsGiveTheSameNumbers) {
    Array<float> t;
    for (int i = 0; i < 1001; ++i) t.append(static_cast<float>(i * 37 % 1001) / 1000);
    for (const char* type : {"NumInterpolateLinear", curveNodes[0], curveNodes[1], curveNodes[2]}) {
        const bool isLinear = type == TM_String("NumInterpolateLinear");
        const auto made = [&](int threads) {
            Interpolation n(type, "Real");
            n.node("n").setNumberOfThreads(threads);
            if (!isLinear) n.points<float>({0, 3, -1, 8, 8, 2, 4});
            if (type == TM_String(curveNodes[0])) n.evenly(33);
            const TM_String pin = isLinear ? "n.blend" : "n.t";
            n.as<NumericAttribute>(pin).ownNumeric().setValues(t);
            n.pin(pin).valueChanged();
            return n.reals();
        };
        const std::vector<float> serial = made(1);
        ASSERT_EQ(1001u, serial.size());
        const RealThreads real;
        for (const int threads : {2, 3, 8}) EXPECT_EQ(serial, made(threads)) << type << threads;
    }
}

} // namespace

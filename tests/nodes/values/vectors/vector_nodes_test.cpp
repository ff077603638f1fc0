// SPDX-License-Identifier: Apache-2.0
// What the nodes over vectors and colours compute, and what they report.
#include <gtest/gtest.h>

#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;
using C4 = Color4<float>;
using V3 = Vector3<float>;

// One node called "n".
class OneNode : public LogicNet {
public:
    explicit OneNode(const TM_String& type) { add(type, "n"); }
    template <typename T>
    OneNode& with(const TM_String& pin, std::initializer_list<T> values) {
        numbers("n." + pin, values);
        return *this;
    }
    TM_String result() { return text("n.result"); }
    TM_String messages() { return LogicNet::messages("n"); }
};

// Two vectors into a node of `type`, its result as text.
TM_String ofPair(const TM_String& type, std::initializer_list<V3> first,
                 std::initializer_list<V3> second) {
    OneNode n(type);
    return n.with("first", first).with("second", second).result();
}

TEST(VectorNodes, Measures) {
    OneNode length("Vector3Length");
    EXPECT_EQ("[3] 0", length.result());
    length.with("vector", {V3(3, 4, 0), V3(0, 0, -2)});
    EXPECT_EQ("[3] 5,2", length.result());
    OneNode squared("Vector3LengthSquared");
    EXPECT_EQ("[3] 25,4", squared.with("vector", {V3(3, 4, 0), V3(0, 0, -2)}).result());
    OneNode unit("Vector3Normalize");
    EXPECT_EQ("[4] (0,0,0)", unit.result());
    EXPECT_EQ("[4] (0,1,0),(0,0,-1)", unit.with("vector", {V3(0, 4, 0), V3(0, 0, -2)}).result());
}

TEST(VectorNodes, Pairs) {
    EXPECT_EQ("[3] 32", ofPair("Vector3Dot", {{1, 2, 3}}, {{4, 5, 6}}));
    EXPECT_EQ("[4] (0,0,1)", ofPair("Vector3Cross", {{1, 0, 0}}, {{0, 1, 0}}));
    EXPECT_EQ("[3] 5", ofPair("Vector3Distance", {{1, 1, 1}}, {{4, 5, 1}}));
    EXPECT_EQ("[3] 0.785398", ofPair("Vector3Angle", {{1, 0, 0}}, {{1, 1, 0}}).substr(0, 12));
    EXPECT_EQ("[3] 0", ofPair("Vector3Angle", {{0, 0, 0}}, {{-1, 1, 0}}));
    EXPECT_EQ("[4] (2,0,0)", ofPair("Vector3Project", {{2, 3, 0}}, {{5, 0, 0}}));
    EXPECT_EQ("[4] (0,0,0)", ofPair("Vector3Project", {{2, 3, 0}}, {{0, 0, 0}}));
    EXPECT_EQ("101", ofPair("Vector3AreParallel", {{1, 0, 0}}, {{-2, 0, 0}, {0, 1, 0}, {0, 0, 0}}));
    EXPECT_EQ("011",
              ofPair("Vector3ArePerpendicular", {{1, 0, 0}}, {{-2, 0, 0}, {0, 1, 0}, {0, 0, 0}}));
}

TEST(VectorNodes, TwoZeroVectorsAreParallelAndPerpendicular) {
    EXPECT_EQ("1", OneNode("Vector3AreParallel").result());
    EXPECT_EQ("1", OneNode("Vector3ArePerpendicular").result());
    EXPECT_EQ("1", ofPair("Vector3AreParallel", {{1e-4f, 0, 0}}, {{0, 1e-4f, 0}}));
    EXPECT_EQ("1", ofPair("Vector3ArePerpendicular", {{1e-4f, 0, 0}}, {{0, 1e-4f, 0}}));
}

TEST(VectorNodes, DifferentSizesAreReportedAndTheLastRepeats) {
    for (const char* type : {"Vector3Dot", "Vector3Cross", "Vector3Distance", "Vector3Angle",
                             "Vector3Project", "Vector3AreParallel", "Vector3ArePerpendicular"}) {
        SCOPED_TRACE(type);
        OneNode n(type);
        n.with("first", {V3(1, 0, 0), V3(0, 1, 0)});
        n.with("second", {V3(2, 0, 0), V3(0, 3, 0), V3(0, 4, 0)});
        n.refresh("n.result");
        EXPECT_EQ("[error] input attributes size differs: (2, 3)\n", n.messages());
        EXPECT_EQ(3u, n.pin("n.result").value()->size());
    }
    EXPECT_EQ("[3] 2,3,4",
              ofPair("Vector3Dot", {{1, 0, 0}, {0, 1, 0}}, {{2, 0, 0}, {0, 3, 0}, {0, 4, 0}}));
}

TEST(VectorNodes, OneForAllAndEqualSizesAreNotReported) {
    for (const char* type : {"Vector3Dot", "Vector3AreParallel"}) {
        OneNode n(type);
        n.with("second", {V3(2, 0, 0), V3(0, 3, 0)});
        n.refresh("n.result");
        n.with("first", {V3(1, 0, 0), V3(0, 1, 0)});
        n.refresh("n.result");
        n.with("second", {V3(1, 1, 1)});
        n.refresh("n.result");
        EXPECT_EQ("", n.messages()) << type;
    }
}

TEST(VectorNodes, NothingAgainstSeveralIsReportedToo) {
    OneNode n("Vector3Cross");
    n.with<V3>("first", {}).with("second", {V3(2, 0, 0), V3(0, 3, 0)});
    EXPECT_EQ("[4] ", n.result());
    EXPECT_EQ("[error] input attributes size differs: (0, 2)\n", n.messages());
}

TEST(VectorNodes, NothingAgainstOneIsNotReported) {
    OneNode n("Vector3Dot");
    n.with<V3>("first", {});
    EXPECT_EQ("[3] ", n.result());
    OneNode blend("Vector3Interpolate");
    blend.with<V3>("second", {});
    EXPECT_EQ("[4] ", blend.result());
    EXPECT_EQ("", n.messages() + blend.messages());
}

// Vector3Interpolate.

TEST(Vector3Interpolate, GoesOnOutsideUnlessClamped) {
    OneNode n("Vector3Interpolate");
    EXPECT_EQ("[4] (0.5,0.5,0.5)", n.result());
    n.with("second", {V3(10, 20, 30)}).with("blend", {1.5f, 0.5f, -1.0f});
    EXPECT_EQ("[4] (15,30,45),(5,10,15),(-10,-20,-30)", n.result());
    n.bits("n.clamp", {true});
    EXPECT_EQ("[4] (10,20,30),(5,10,15),(0,0,0)", n.result());
    EXPECT_EQ("", n.messages());
}

TEST(Vector3Interpolate, LastBitOfClampCounts) {
    OneNode n("Vector3Interpolate");
    n.with("blend", {2.0f});
    n.bits("n.clamp", {true, false});
    EXPECT_EQ("[4] (2,2,2)", n.result());
    EXPECT_EQ("[warning] size of attribute 'clamp' is different than 1 (2). Extra elements will be "
              "ignored\n",
              n.messages());
}

TEST(Vector3Interpolate, ReportsDifferentSizesUnderItsName) {
    OneNode n("Vector3Interpolate");
    n.with("first", {V3(1, 0, 0), V3(0, 1, 0)});
    n.with("second", {V3(2, 0, 0), V3(0, 3, 0), V3(0, 5, 0)});
    EXPECT_EQ("[4] (1.5,0,0),(0,2,0),(0,3,0)", n.result());
    EXPECT_EQ("[error] [n] input attributes size differs. (2, 3)\n", n.messages());
}

TEST(Vector3Interpolate, SizeOfBlendIsFree) {
    OneNode n("Vector3Interpolate");
    n.with("first", {V3(0, 0, 0), V3(1, 1, 1)}).with("second", {V3(2, 2, 2), V3(2, 2, 2)});
    n.with("blend", {0.0f, 0.5f, 1.0f});
    EXPECT_EQ("[4] (0,0,0),(1.5,1.5,1.5),(2,2,2)", n.result());
    EXPECT_EQ("", n.messages());
}

// Vector3Reorder.

TEST(Vector3Reorder, PermutesComponents) {
    OneNode n("Vector3Reorder");
    n.with("vector", {V3(1, 2, 3)});
    const char* results[] = {"[4] (1,3,2)", "[4] (2,1,3)", "[4] (2,3,1)", "[4] (3,1,2)",
                             "[4] (3,2,1)"};
    for (int key = 0; key < 5; ++key) {
        n.as<EnumAttribute>("n.reorder").ownEnum().setKey(key);
        n.pin("n.reorder").valueChanged();
        EXPECT_EQ(results[key], n.result());
    }
}

TEST(Vector3Reorder, UnknownOrderLeavesTheVector) {
    for (const int key : {-1, 5, 2147483647, -2147483647 - 1}) {
        OneNode n("Vector3Reorder");
        n.add("Integer", "i");
        n.numbers("i.in", {key});
        ASSERT_TRUE(n.link("i.integer", "n.reorder"));
        EXPECT_EQ("[4] (1,2,3)", n.with("vector", {V3(1, 2, 3)}).result());
    }
}

TEST(Vector3Reorder, TakesTheOrderByName) {
    OneNode n("Vector3Reorder");
    n.add("String", "s");
    n.strings("s.in", {"ZXY"});
    ASSERT_TRUE(n.link("s.out", "n.reorder"));
    EXPECT_EQ("[4] (3,1,2)", n.with("vector", {V3(1, 2, 3)}).result());
}

// Components.

TEST(ComponentNodes, VectorsThereAndBack) {
    OneNode n("Vector3FromComponents");
    n.with("x", {1.0f, 2.0f}).with("z", {5.0f, 6.0f, 7.0f});
    EXPECT_EQ("[4] (1,0,5),(2,0,6),(2,0,7)", n.text("n.vector"));
    EXPECT_EQ("", n.messages()) << "every input has a length of its own";
    n.add("Vector3ToComponents", "t");
    ASSERT_TRUE(n.link("n.vector", "t.vector"));
    EXPECT_EQ("[3] 1,2,2", n.text("t.x"));
    EXPECT_EQ("[3] 0,0,0", n.text("t.y"));
    EXPECT_EQ("[3] 5,6,7", n.text("t.z"));
}

TEST(ComponentNodes, ColorsThereAndBack) {
    OneNode n("Color4FromComponents");
    EXPECT_EQ("[5] (0,0,0,1)", n.text("n.color"));
    n.with("red", {0.5f}).with("green", {2.0f, 3.0f}).with("blue", {4.0f});
    EXPECT_EQ("[5] (0.5,2,4,1),(0.5,3,4,1)", n.text("n.color"));
    n.add("Color4ToComponents", "t");
    ASSERT_TRUE(n.link("n.color", "t.color"));
    EXPECT_EQ("[3] 0.5,0.5", n.text("t.red"));
    EXPECT_EQ("[3] 2,3", n.text("t.green"));
    EXPECT_EQ("[3] 4,4", n.text("t.blue"));
    EXPECT_EQ("[3] 1,1", n.text("t.alpha"));
}

TEST(ComponentNodes, VectorsAndColors) {
    OneNode n("Vector3ToColor4");
    n.with("vector", {V3(1, 2, 3), V3(4, 5, 6)});
    EXPECT_EQ("[5] (1,2,3,1),(4,5,6,1)", n.text("n.color"));
    OneNode back("Color4ToVector3");
    back.with("color", {C4(1, 2, 3, 0.5f)});
    EXPECT_EQ("[4] (1,2,3)", back.text("n.vector"));
}

// One output asked for brings the others that are wanted up to date as well.
TEST(ComponentNodes, WantedOutputsAreWrittenTogether) {
    OneNode n("Vector3ToComponents");
    n.with("vector", {V3(1, 2, 3)});
    n.pin("n.z").setToBeEvaluated(false);
    n.refresh("n.x");
    EXPECT_TRUE(n.pin("n.x").isClean());
    EXPECT_TRUE(n.pin("n.y").isClean());
    EXPECT_EQ("[3] 2", n.pin("n.y").value()->asString());
    EXPECT_FALSE(n.pin("n.z").isClean());
    EXPECT_EQ("[3] 0", n.pin("n.z").value()->asString());
    EXPECT_EQ("[3] 3", n.text("n.z")) << "asked for";
}

// Hue, saturation, value.

TEST(ColorNodes, RgbToHsv) {
    OneNode n("Color4RgbToHsv");
    n.with("color", {C4(0, 1, 0, 1), C4(1, 0, 0.5f, 1), C4(0.5f, 0.5f, 0.5f, 1)});
    EXPECT_EQ("[3] 120,330,0", n.text("n.hue"));
    EXPECT_EQ("[3] 1,1,0", n.text("n.saturation"));
    EXPECT_EQ("[3] 1,1,0.5", n.text("n.value"));
}

TEST(ColorNodes, RgbFromHsv) {
    OneNode n("Color4RgbFromHsv");
    EXPECT_EQ("[5] (1,0,0,1)", n.text("n.color"));
    n.with("hue", {720.0f, -30.0f, 360.0f});
    EXPECT_EQ("[5] (1,0,0,1),(1,0,0.5,1),(1,0,0,1)", n.text("n.color"));
    n.with("saturation", {0.0f}).with("value", {0.5f, -1.0f});
    EXPECT_EQ("[5] (0.5,0.5,0.5,1),(0,0,0,1),(0,0,0,1)", n.text("n.color"));
}

TEST(ColorNodes, InfoTellsAll) {
    OneNode n("Color4Info");
    n.with("color", {C4(0, 0.25f, 0.5f, 0.75f), C4(1, 0, 0, 1)});
    EXPECT_EQ("[3] 0,1", n.text("n.red"));
    EXPECT_EQ("[3] 0.25,0", n.text("n.green"));
    EXPECT_EQ("[3] 0.5,0", n.text("n.blue"));
    EXPECT_EQ("[3] 0.75,1", n.text("n.alpha"));
    EXPECT_EQ("[3] 210,0", n.text("n.hue"));
    EXPECT_EQ("[3] 1,1", n.text("n.saturation"));
    EXPECT_EQ("[3] 0.5,1", n.text("n.value"));
    EXPECT_EQ("[4] (0,0.25,0.5),(1,0,0)", n.text("n.vector rgb"));
    EXPECT_EQ("[4] (210,1,0.5),(0,1,1)", n.text("n.vector hsv"));
}

TEST(ColorNodes, OnlyNeededOutputsAreComputed) {
    OneNode n("Color4Info");
    for (Attribute* out : n.node("n").refOutputAttributes()) out->setToBeEvaluated(false);
    n.with("color", {C4(1, 1, 0, 1)});
    EXPECT_EQ("[3] 60", n.text("n.hue"));
    for (const Attribute* out : n.node("n").refOutputAttributes()) {
        EXPECT_EQ(out->name() == "hue", out->isClean()) << out->name();
    }
}

} // namespace

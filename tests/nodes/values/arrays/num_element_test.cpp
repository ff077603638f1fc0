// SPDX-License-Identifier: Apache-2.0
// Reading and writing elements of numeric arrays: by index, in a grid, between grid elements.
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

constexpr int32_t smallest = std::numeric_limits<int32_t>::min();
constexpr int32_t largest = std::numeric_limits<int32_t>::max();

// One node called "n" over elements of one type.
class Grid : public LogicNet {
public:
    Grid(const TM_String& type, const TM_String& element) {
        add(type, "n");
        this->type("n.array", element);
    }
    template <typename T>
    Grid& over(std::initializer_list<T> elements) {
        numbers<T>("n.array", elements);
        return *this;
    }
    Grid& width(int32_t value) {
        numbers<int32_t>("n.width", {value});
        return *this;
    }
    Grid& at(std::initializer_list<int32_t> x, std::initializer_list<int32_t> y) {
        numbers<int32_t>("n.x", x);
        numbers<int32_t>("n.y", y);
        return *this;
    }
    Grid& uv(std::initializer_list<float> x, std::initializer_list<float> y) {
        numbers<float>("n.x", x);
        numbers<float>("n.y", y);
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
const TM_String integer = " NumericAttribute \"Integer\"";
const TM_String real = " NumericAttribute \"Real\"";

TEST(NumElements, AreDeclaredAsTold) {
    EXPECT_EQ("GetArrayNumElement\nin array " + all + allDefaults + "in index" + integer +
                  " = 0\nout element " + all + "\n",
              declared("GetArrayNumElement"));
    EXPECT_EQ("SetArrayNumElement\nin array " + all + allDefaults + "in index" + integer +
                  " = 0\nin element " + all + allDefaults + "out out array " + all + "\n",
              declared("SetArrayNumElement"));
    EXPECT_EQ("GetArrayNum2DElement\nin array " + all + allDefaults + "in width!" + integer +
                  " = 1\nin x" + integer + " = 0\nin y" + integer + " = 0\nout element " + all +
                  "\nout index" + integer + "\n",
              declared("GetArrayNum2DElement"));
    const TM_String smooth = "NumericAttribute \"Real\", \"Vector3\", \"Color4\"";
    EXPECT_EQ("GetArrayNum2DElementByUV\nin array " + smooth +
                  " = Real:0 Vector3:0 Color4:(0,0,0,1)\nin width!" + integer + " = 1\nin x" +
                  real + " = 0\nin y" + real + " = 0\nout element " + smooth + "\n",
              declared("GetArrayNum2DElementByUV"));
}

TEST(NumElements, AreDescribedAndAffected) {
    const std::vector<std::pair<const char*, const char*>> descriptions = {
        {"GetArrayNumElement", "This node returns the elements of the input 'array' at positions "
                               "specified by the 'index' parameter."},
        {"GetArrayNum2DElement", "This node returns the elements of the 2D input 'array' at "
                                 "positions specified by the x and y parameters."},
        {"GetArrayNum2DElementByUV",
         "This node returns the bilinearly interpolated element of the 2D-input 'array' with the "
         "given width at the normalized coordinates x,y (0<x<1, 0<y<1)."},
        {"SetArrayNumElement",
         "Returns an array equal to the input 'array' but changing the element at position 'index' "
         "to the value of 'element'.\nIf input 'array' is not internally connected to the output, "
         "the output 'outArray' is a copy of the input."}};
    for (const auto& [type, description] : descriptions) {
        LogicNet net;
        EXPECT_EQ(description, net.add(type, "n").getDescription());
        EXPECT_EQ("", missingTexts(type)) << type;
        EXPECT_EQ("", missingAffects(type)) << type;
    }
}

TEST(NumElements, ElementFollowsTheArraysType) {
    for (const char* type : {"GetArrayNumElement", "GetArrayNum2DElement",
                             "GetArrayNum2DElementByUV", "SetArrayNumElement"}) {
        LogicNet net;
        net.add(type, "n");
        net.add("Vector3", "v");
        ASSERT_TRUE(net.link("v.vector", "n.array"));
        EXPECT_EQ("Vector3", net.pin("n.element").specialization()) << type;
    }
}

TEST(NumElements, WithoutATypeNothingIsComputed) {
    for (const auto& [type, output] : {std::pair("GetArrayNumElement", "n.element"),
                                       std::pair("GetArrayNum2DElement", "n.element"),
                                       std::pair("GetArrayNum2DElementByUV", "n.element"),
                                       std::pair("SetArrayNumElement", "n.out array")}) {
        LogicNet net;
        net.add(type, "n");
        EXPECT_EQ("", net.text(output)) << type;
        EXPECT_EQ("", net.messages("n")) << type;
    }
}

// GetArrayNumElement.

TEST(GetArrayNumElement, OneElementPerIndex) {
    Grid n("GetArrayNumElement", "Real");
    n.over<float>({1.5f, 2.5f, 3.5f});
    EXPECT_EQ("[3] 1.5", n.text("n.element"));
    n.numbers<int32_t>("n.index", {2, 0, 1, 1});
    EXPECT_EQ("[3] 3.5,1.5,2.5,2.5", n.text("n.element"));
    n.numbers<int32_t>("n.index", {});
    EXPECT_EQ("[3] ", n.text("n.element"));
    EXPECT_EQ("", n.message());
}

TEST(GetArrayNumElement, BeyondTheEndIsTheLast) {
    Grid n("GetArrayNumElement", "Integer");
    n.over<int32_t>({7, 8, 9});
    n.numbers<int32_t>("n.index", {3, 100, largest, -1, smallest, 2});
    EXPECT_EQ("[1] 9,9,9,9,9,9", n.text("n.element"));
    EXPECT_EQ("", n.message());
}

TEST(GetArrayNumElement, OfAnEmptyArrayTheDefault) {
    Grid n("GetArrayNumElement", "Color4");
    n.over<Color4<float>>({});
    n.numbers<int32_t>("n.index", {0, 5});
    EXPECT_EQ("[5] (0,0,0,1),(0,0,0,1)", n.text("n.element"));
}

TEST(GetArrayNumElement, KnowsEveryType) {
    const auto second = [](const TM_String& type, const TM_String& array) {
        Grid n("GetArrayNumElement", type);
        n.as<NumericAttribute>("n.array").ownNumeric().fromString(array);
        n.pin("n.array").valueChanged();
        n.numbers<int32_t>("n.index", {1});
        return n.text("n.element");
    };
    EXPECT_EQ("[1] 2", second("Integer", "[1] 1,2"));
    EXPECT_EQ("[2] 4294967296", second("Integer64", "[2] 1,4294967296"));
    EXPECT_EQ("[3] 2.5", second("Real", "[3] 1,2.5"));
    EXPECT_EQ("[4] (4,5,6)", second("Vector3", "[4] (1,2,3),(4,5,6)"));
    EXPECT_EQ("[5] (5,6,7,8)", second("Color4", "[5] (1,2,3,4),(5,6,7,8)"));
    EXPECT_EQ("[6] (5,6,7,8)", second("Quaternion", "[6] (1,2,3,4),(5,6,7,8)"));
    EXPECT_EQ("[7] (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,17)",
              second("Matrix4", "[7] (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16),"
                                "(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,17)"));
}

TEST(GetArrayNumElement, LongIndexArrays) {
    constexpr uint32_t count = 300007;
    Grid n("GetArrayNumElement", "Real");
    Array<float> array;
    Array<int32_t> index;
    for (uint32_t i = 0; i < count; ++i) {
        array.append(static_cast<float>(i) * 0.5f);
        index.append(static_cast<int32_t>(i * 7919u % (count + 10)));
    }
    n.as<NumericAttribute>("n.array").ownNumeric().setValues(array);
    n.pin("n.array").valueChanged();
    n.as<NumericAttribute>("n.index").ownNumeric().setValues(index);
    n.pin("n.index").valueChanged();
    n.refresh("n.element");
    const Array<float>& found = n.as<NumericAttribute>("n.element").numeric().values<float>();
    ASSERT_EQ(count, found.size());
    for (uint32_t i = 0; i < count; ++i) {
        const auto at = std::min(static_cast<uint32_t>(index[i]), count - 1);
        ASSERT_EQ(array[at], found[i]) << i;
    }
}

// SetArrayNumElement.

TEST(SetArrayNumElement, WritesACopy) {
    Grid n("SetArrayNumElement", "Real");
    n.over<float>({1, 2, 3});
    n.numbers<int32_t>("n.index", {2, 0});
    n.numbers<float>("n.element", {30, 10});
    EXPECT_EQ("[3] 10,2,30", n.text("n.out array"));
    EXPECT_EQ("[3] 1,2,3", n.text("n.array"));
    EXPECT_EQ("", n.message());
}

TEST(SetArrayNumElement, LastElementRepeatsWithoutAMessage) {
    Grid n("SetArrayNumElement", "Integer");
    n.over<int32_t>({1, 2, 3, 4});
    n.numbers<int32_t>("n.index", {0, 1, 3});
    n.numbers<int32_t>("n.element", {7, 8});
    EXPECT_EQ("[1] 7,8,3,8", n.text("n.out array"));
    n.numbers<int32_t>("n.index", {1});
    EXPECT_EQ("[1] 1,7,3,4", n.text("n.out array"));
    EXPECT_EQ("", n.message());
}

TEST(SetArrayNumElement, OutsideIsPassedOver) {
    Grid n("SetArrayNumElement", "Vector3");
    n.over<Vector3<float>>({{1, 2, 3}, {4, 5, 6}});
    n.numbers<int32_t>("n.index", {2, -1, largest, smallest, 1});
    n.numbers<Vector3<float>>("n.element", {{9, 9, 9}});
    EXPECT_EQ("[4] (1,2,3),(9,9,9)", n.text("n.out array"));
    EXPECT_EQ("", n.message());
}

TEST(SetArrayNumElement, EmptyInputs) {
    Grid n("SetArrayNumElement", "Color4");
    n.over<Color4<float>>({{1, 2, 3, 4}, {5, 6, 7, 8}});
    n.numbers<Color4<float>>("n.element", {});
    EXPECT_EQ("[5] (0,0,0,1),(5,6,7,8)", n.text("n.out array")) << "a default element";
    n.numbers<int32_t>("n.index", {});
    EXPECT_EQ("[5] (1,2,3,4),(5,6,7,8)", n.text("n.out array"));
    n.over<Color4<float>>({});
    n.numbers<int32_t>("n.index", {0});
    EXPECT_EQ("[5] ", n.text("n.out array"));
}

TEST(SetArrayNumElement, InternallyConnectedItWritesInPlace) {
    LogicNet net;
    net.add("ArrayNumRange", "r");
    net.add("SetArrayNumElement", "n");
    net.type("r.array", "Integer");
    net.numbers<int32_t>("r.end", {3});
    net.numbers<int32_t>("r.steps", {4});
    ASSERT_TRUE(net.link("r.array", "n.array"));
    net.pin("n.array").addPassThrough(&net.pin("n.out array"));
    ASSERT_TRUE(net.pin("n.out array").isPassThrough());
    net.numbers<int32_t>("n.index", {1});
    net.numbers<int32_t>("n.element", {-5});
    net.refresh("n.out array");
    EXPECT_EQ("[1] 0,-5,2,3", net.pin("r.array").value()->asString());
    EXPECT_EQ(net.pin("r.array").value(), net.pin("n.out array").currentValue());
}

TEST(SetArrayNumElement, InPlaceFromItsOwnElements) {
    LogicNet net;
    net.add("ArrayNumRange", "r");
    net.add("SetArrayNumElement", "n");
    net.type("r.array", "Integer");
    net.numbers<int32_t>("r.end", {3});
    net.numbers<int32_t>("r.steps", {4});
    for (const char* input : {"n.array", "n.index", "n.element"}) {
        ASSERT_TRUE(net.link("r.array", input));
    }
    net.pin("n.array").addPassThrough(&net.pin("n.out array"));
    net.refresh("n.out array");
    EXPECT_EQ("[1] 0,1,2,3", net.pin("r.array").value()->asString());
}

// GetArrayNum2DElement.

TEST(GetArrayNum2DElement, RowAfterRow) {
    Grid n("GetArrayNum2DElement", "Integer");
    n.over<int32_t>({0, 1, 2, 3, 4, 5}).width(3).at({1}, {1});
    EXPECT_EQ("[1] 4", n.text("n.element"));
    EXPECT_EQ("[1] 4", n.text("n.index"));
    n.at({0, 1, 2}, {0, 1});
    EXPECT_EQ("[1] 0,4,5", n.text("n.element")) << "the last row repeats";
    EXPECT_EQ("[1] 0,4,5", n.text("n.index"));
    n.at({}, {0, 1});
    EXPECT_EQ("[1] ", n.text("n.element"));
    EXPECT_EQ("[1] ", n.text("n.index"));
    EXPECT_EQ("", n.message());
}

TEST(GetArrayNum2DElement, OutOfBoundsIsAMessagePerPair) {
    Grid n("GetArrayNum2DElement", "Color4");
    n.over<Color4<float>>({{1, 1, 1, 1}, {2, 2, 2, 2}, {3, 3, 3, 3}, {4, 4, 4, 4}}).width(2);
    n.at({1, 2, 0, -1, 0}, {1, 0, 2, 0, -1});
    EXPECT_EQ("[5] (4,4,4,4),(0,0,0,0),(0,0,0,0),(0,0,0,0),(0,0,0,0)", n.text("n.element"));
    const TM_String text = "[error] Index out of bounds...\n";
    EXPECT_EQ(text + text + text + text, n.message());
    EXPECT_EQ("[1] 3,2,4,-1,-2", n.text("n.index"));
}

TEST(GetArrayNum2DElement, ExtremePositionsWrap) {
    Grid n("GetArrayNum2DElement", "Real");
    n.over<float>({1, 2, 3, 4}).width(2).at({smallest, largest, 0}, {largest, smallest, smallest});
    EXPECT_EQ("[3] 0,0,0", n.text("n.element"));
    EXPECT_EQ("[1] 2147483646,2147483647,0", n.text("n.index"));
}

TEST(GetArrayNum2DElement, WidthIsChecked) {
    Grid n("GetArrayNum2DElement", "Real");
    n.over<float>({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}).width(5).at({4}, {1});
    EXPECT_EQ("[3] 9", n.text("n.element"));
    n.width(3);
    EXPECT_EQ("[3] 9", n.text("n.element")) << "the output stays";
    EXPECT_EQ("[error] Cannot detect array height. Check width...\n", n.message());
    for (const int32_t width : {0, -1, smallest}) {
        n.width(width);
        EXPECT_EQ("[3] 9", n.text("n.element"));
        EXPECT_EQ("[error] Error: Width <= 0...\n", n.message()) << width;
    }
    n.width(largest);
    EXPECT_EQ("[1] 9", n.text("n.index"));
    EXPECT_EQ("[error] Cannot detect array height. Check width...\n", n.message());
}

TEST(GetArrayNum2DElement, NothingLiesInAnEmptyArray) {
    Grid n("GetArrayNum2DElement", "Integer");
    n.over<int32_t>({}).width(4).at({0}, {0});
    EXPECT_EQ("[1] 0", n.text("n.element"));
    EXPECT_EQ("[error] Index out of bounds...\n", n.message());
}

TEST(GetArrayNum2DElement, KnowsEveryType) {
    const auto last = [](const TM_String& type, const TM_String& array) {
        Grid n("GetArrayNum2DElement", type);
        n.as<NumericAttribute>("n.array").ownNumeric().fromString(array);
        n.pin("n.array").valueChanged();
        n.at({0}, {1});
        return n.text("n.element");
    };
    EXPECT_EQ("[2] 4294967296", last("Integer64", "[2] 1,4294967296"));
    EXPECT_EQ("[4] (4,5,6)", last("Vector3", "[4] (1,2,3),(4,5,6)"));
    EXPECT_EQ("[6] (5,6,7,8)", last("Quaternion", "[6] (1,2,3,4),(5,6,7,8)"));
    EXPECT_EQ("[7] (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,17)",
              last("Matrix4", "[7] (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16),"
                              "(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,17)"));
}

TEST(GetArrayNum2DElement, OnePassAnswersTheWantedOutputs) {
    Grid n("GetArrayNum2DElement", "Integer");
    n.over<int32_t>({5, 6}).width(2).at({1}, {0});
    n.refresh("n.index");
    EXPECT_TRUE(n.pin("n.element").isClean());
    EXPECT_EQ("[1] 6", n.pin("n.element").value()->asString());
    n.at({0}, {0});
    n.pin("n.element").setToBeEvaluated(false);
    n.refresh("n.index");
    EXPECT_FALSE(n.pin("n.element").isClean());
    EXPECT_EQ("[1] 6", n.pin("n.element").value()->asString()) << "not wanted";
}

// GetArrayNum2DElementByUV.

TEST(GetArrayNum2DElementByUV, MixesFourNeighbours) {
    Grid n("GetArrayNum2DElementByUV", "Real");
    n.over<float>({0, 1, 2, 3}).width(2);
    n.uv({0.5f, 1, 0, 0, 1, 0.25f}, {0.5f, 0, 0, 1, 1, 0.5f});
    EXPECT_EQ("[3] 1.5,1,0,2,3,1.25", n.text("n.element"));
    EXPECT_EQ("", n.message());
}

TEST(GetArrayNum2DElementByUV, CoordinatesAreHeldInTheGrid) {
    Grid n("GetArrayNum2DElementByUV", "Real");
    n.over<float>({0, 1, 2, 3, 4, 5}).width(3);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    n.uv({-1, 2, infinity, -infinity, nan, 0.5f}, {-1, 2, infinity, 0, nan, 1e30f});
    EXPECT_EQ("[3] 0,5,5,0,0,4", n.text("n.element"));
    n.uv({0.5f}, {});
    EXPECT_EQ("[3] ", n.text("n.element"));
}

TEST(GetArrayNum2DElementByUV, OneRowAndOneColumn) {
    Grid n("GetArrayNum2DElementByUV", "Real");
    n.over<float>({0, 1, 2, 3}).width(4).uv({0.5f}, {0.7f});
    EXPECT_EQ("[3] 1.5", n.text("n.element"));
    n.width(1).uv({0.7f}, {0.5f});
    EXPECT_EQ("[3] 1.5", n.text("n.element"));
    n.over<float>({8}).uv({0.3f}, {0.9f});
    EXPECT_EQ("[3] 8", n.text("n.element"));
}

TEST(GetArrayNum2DElementByUV, VectorsAndColors) {
    Grid v("GetArrayNum2DElementByUV", "Vector3");
    v.over<Vector3<float>>({{0, 0, 2}, {2, 4, 2}}).width(2).uv({0.5f}, {0});
    EXPECT_EQ("[4] (1,2,2)", v.text("n.element"));
    Grid c("GetArrayNum2DElementByUV", "Color4");
    c.over<Color4<float>>({{0, 0, 0, 1}, {1, 0, 1, 0}}).width(1).uv({0}, {0.25f});
    EXPECT_EQ("[5] (0.25,0,0.25,0.75)", c.text("n.element"));
}

TEST(GetArrayNum2DElementByUV, WidthIsChecked) {
    Grid n("GetArrayNum2DElementByUV", "Real");
    n.over<float>({0, 1, 2}).width(3).uv({1}, {0});
    EXPECT_EQ("[3] 2", n.text("n.element"));
    n.width(2);
    EXPECT_EQ("[3] 2", n.text("n.element"));
    EXPECT_EQ("[error] Cannot detect array height. Check width...\n", n.message());
    n.width(0);
    EXPECT_EQ("[3] 2", n.text("n.element"));
    EXPECT_EQ("[error] Error: Width <= 0...\n", n.message());
    n.width(1).over<float>({});
    EXPECT_EQ("[3] 2", n.text("n.element"));
    EXPECT_EQ("[error] Missing Input...\n", n.message());
}

} // namespace

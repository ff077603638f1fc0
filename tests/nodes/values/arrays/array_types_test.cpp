// SPDX-License-Identifier: Apache-2.0
// What is peculiar to the array operations on numbers and on bits.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using namespace tidemark::sluice::graph;
using sluice_tests::declared;
using sluice_tests::LogicNet;
using tidemark::TM_String;

// Numbers.

class Numbers : public LogicNet {
public:
    Numbers(const TM_String& type, const TM_String& specialization) {
        Node& node = add(type, "n");
        const char* first = node.findAttribute("array") ? "n.array" : "n.array0";
        this->type(first, specialization);
    }
    TM_String out() { return text("n.out array"); }
};

TEST(NumberArrays, AreOfOneType) {
    const TM_String seven = "NumericAttribute \"Integer\", \"Integer64\", \"Real\", \"Vector3\", "
                            "\"Color4\", \"Quaternion\", \"Matrix4\"";
    const TM_String defaults = " = Integer:0 Integer64:0 Real:0 Vector3:0 Color4:(0,0,0,1) "
                               "Quaternion:(1,0,0,0) Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)\n";
    EXPECT_EQ(declared("ArrayNumPushElement"), "ArrayNumPushElement\nin array " + seven + defaults +
                                                   "in element " + seven + defaults +
                                                   "out out array " + seven + "\n");
    LogicNet net;
    net.add("ArrayNumPushElement", "n");
    net.add("Vector3", "v");
    ASSERT_TRUE(net.link("v.vector", "n.element"));
    EXPECT_EQ(net.pin("n.array").specialization(), "Vector3");
    EXPECT_EQ(net.pin("n.out array").specialization(), "Vector3");
    net.add("ArrayNumFindElement", "f");
    net.add("Integer", "i");
    net.link("v.vector", "f.array");
    EXPECT_FALSE(net.canLink("i.integer", "f.element"));
}

TEST(NumberArrays, OpenTypesComputeNothing) {
    for (const char* type :
         {"ArrayNumFilterByMask", "ArrayNumResize", "ArrayNumConcat", "ArrayNumSlice",
          "ArrayNumMix", "ArrayNumSort", "ArrayNumReverse", "ArrayNumFindElement",
          "ArrayNumFindAllElementIndices", "ArrayNumInsertElement", "ArrayNumPushElement",
          "ArrayNumRemoveElement", "ArrayNumRemoveIndex", "ArrayNumRemoveRepeatedElements"}) {
        LogicNet net;
        Node& node = net.add(type, "n");
        for (Attribute* out : node.refOutputAttributes()) EXPECT_NO_THROW(out->computeNow());
        EXPECT_EQ(sluice_tests::missingTexts(type), "") << type;
        EXPECT_EQ(sluice_tests::missingAffects(type), "") << type;
    }
}

TEST(NumberArrays, EveryTypeConcatenates) {
    const auto concat = [](const TM_String& type, auto first, auto second) {
        Numbers n("ArrayNumConcat", type);
        n.numbers<decltype(first)>("n.array0", {first});
        n.numbers<decltype(first)>("n.array1", {second});
        return n.out();
    };
    EXPECT_EQ(concat("Integer", int32_t(1), int32_t(2)), "[1] 1,2");
    EXPECT_EQ(concat("Integer64", int64_t(1), int64_t(5'000'000'000)), "[2] 1,5000000000");
    EXPECT_EQ(concat("Real", 0.5f, 1.5f), "[3] 0.5,1.5");
    EXPECT_EQ(concat("Vector3", Vector3<float>(1, 2, 3), Vector3<float>(4, 5, 6)),
              "[4] (1,2,3),(4,5,6)");
    EXPECT_EQ(concat("Color4", Color4<float>(1, 0, 0, 1), Color4<float>(0, 1, 0, 0)),
              "[5] (1,0,0,1),(0,1,0,0)");
    EXPECT_EQ(concat("Quaternion", Quaternion<float>{1, 2, 3, 4}, Quaternion<float>()),
              "[6] (4,1,2,3),(1,0,0,0)");
    EXPECT_EQ(concat("Matrix4", Matrix4<float>(), Matrix4<float>()).substr(0, 11), "[7] (1,0,0,");
}

TEST(NumberArrays, ResizeAndSlice) {
    Numbers resize("ArrayNumResize", "Real");
    resize.numbers<float>("n.array", {1, 2});
    resize.numbers<int32_t>("n.size", {4});
    EXPECT_EQ(resize.out(), "[3] 1,2,2,2");
    resize.numbers<float>("n.array", {});
    EXPECT_EQ(resize.out(), "[3] 0,0,0,0");
    Numbers slice("ArrayNumSlice", "Integer");
    slice.numbers<int32_t>("n.array", {1, 2, 3, 4, 5});
    slice.numbers<int32_t>("n.first", {2});
    EXPECT_EQ(slice.out(), "[1] 3,4,5");
}

TEST(NumberArrays, SortPutsNotANumberLast) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    Numbers n("ArrayNumSort", "Real");
    n.numbers<float>("n.array", {nan, 0.0f, -1.0f, infinity, -0.0f, -infinity, nan, 2.5f});
    n.refresh("n.out array");
    EXPECT_EQ(n.text("n.new to old"), "[1] 5,2,1,4,7,3,0,6") << "0 and -0 keep their order";
    EXPECT_EQ(n.text("n.old to new"), "[1] 6,2,1,5,3,0,7,4");
}

TEST(NumberArrays, SortOfTuplesIsLexicographic) {
    Numbers n("ArrayNumSort", "Vector3");
    n.numbers<Vector3<float>>("n.array", {{1, 2, 3}, {1, 0, 9}, {0, 9, 9}, {1, 2, -3}, {1, 2, 3}});
    EXPECT_EQ(n.out(), "[4] (0,9,9),(1,0,9),(1,2,-3),(1,2,3),(1,2,3)");
    EXPECT_EQ(n.text("n.new to old"), "[1] 2,1,3,0,4");
    Numbers m("ArrayNumSort", "Matrix4");
    Matrix4<float> larger;
    larger[3][3] = 2;
    m.numbers<Matrix4<float>>("n.array", {larger, Matrix4<float>()});
    EXPECT_EQ(m.text("n.new to old"), "[1] 1,0");
}

// By components in storage order, the first that differs decides: 0 is no less than -0, and
// not-a-number stands behind everything, in whichever component.
template <typename T>
void expectOrderOfTuples(const TM_String& type) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr std::size_t parts = sizeof(T) / sizeof(float);
    const auto filled = [](float number) {
        T element;
        std::fill_n(reinterpret_cast<float*>(&element), parts, number);
        return element;
    };
    for (std::size_t part = 0; part < parts; ++part) {
        const auto with = [&](float number) {
            T element = filled(1);
            auto* floats = reinterpret_cast<float*>(&element);
            floats[part] = number;
            // What follows is against it.
            for (std::size_t k = part + 1; k < parts; ++k) floats[k] = -number;
            return element;
        };
        Numbers n("ArrayNumSort", type);
        n.numbers<T>("n.array", {with(nan), with(2), with(-infinity), with(-0.0f), with(infinity),
                                 with(0.0f), with(-3), with(nan), with(2)});
        EXPECT_EQ(n.text("n.new to old"), "[1] 2,6,3,5,1,8,4,0,7") << type << " " << part;
        EXPECT_EQ(n.text("n.old to new"), "[1] 7,4,0,2,6,3,1,8,5") << type << " " << part;
        const T first = n.as<NumericAttribute>("n.out array").numeric().valueAt<T>(0);
        EXPECT_EQ(reinterpret_cast<const float*>(&first)[part], -infinity) << type << " " << part;
    }
}

TEST(NumberArrays, SortOfTuplesByEveryComponent) {
    expectOrderOfTuples<Vector3<float>>("Vector3");
    expectOrderOfTuples<Color4<float>>("Color4");
    expectOrderOfTuples<Quaternion<float>>("Quaternion");
    expectOrderOfTuples<Matrix4<float>>("Matrix4");
}

TEST(NumberArrays, SortOfQuaternionsBeginsWithX) {
    Numbers n("ArrayNumSort", "Quaternion");
    n.numbers<Quaternion<float>>("n.array",
                                 {{2, 0, 0, 0}, {1, 9, 9, 9}, {1, 0, 9, 9}, {1, 0, 0, 9}});
    EXPECT_EQ(n.text("n.new to old"), "[1] 3,2,1,0");
}

template <typename T>
void expectSorted(const TM_String& type, uint32_t count, T (*make)(std::mt19937&)) {
    std::mt19937 random(count);
    tidemark::Array<T> values;
    for (uint32_t i = 0; i < count; ++i) values.append(make(random));
    Numbers n("ArrayNumSort", type);
    n.as<NumericAttribute>("n.array").ownNumeric().setValues(values);
    n.refresh("n.out array");
    const Numeric& sorted = n.as<NumericAttribute>("n.out array").numeric();
    const Numeric& order = n.as<NumericAttribute>("n.new to old").numeric();
    const Numeric& places = n.as<NumericAttribute>("n.old to new").numeric();
    ASSERT_EQ(sorted.size(), count);
    ASSERT_EQ(order.size(), count);
    for (uint32_t k = 0; k < count; ++k) {
        const auto old = static_cast<uint32_t>(order.values<int32_t>()[k]);
        ASSERT_LT(old, count);
        ASSERT_EQ(sorted.values<T>()[k], values[old]);
        ASSERT_EQ(places.values<int32_t>()[old], static_cast<int32_t>(k));
        if (k == 0) continue;
        const auto before = static_cast<uint32_t>(order.values<int32_t>()[k - 1]);
        ASSERT_FALSE(values[old] < values[before]);
        if (values[old] == values[before]) {
            ASSERT_LT(before, old) << "equal elements keep their order";
        }
    }
}

TEST(NumberArrays, SortOfManyNumbers) {
    for (const uint32_t count : {1u, 2u, 511u, 512u, 5000u, 70000u}) {
        expectSorted<int32_t>("Integer", count,
                              [](std::mt19937& random) { return static_cast<int32_t>(random()); });
        expectSorted<int32_t>("Integer", count, [](std::mt19937& random) {
            return static_cast<int32_t>(random() % 7) - 3;
        });
        expectSorted<int64_t>("Integer64", count, [](std::mt19937& random) {
            return static_cast<int64_t>(uint64_t(random()) << 32 | random());
        });
        expectSorted<float>("Real", count, [](std::mt19937& random) {
            return std::ldexp(static_cast<float>(static_cast<int32_t>(random())),
                              static_cast<int>(random() % 60) - 30);
        });
    }
}

// Few different components, so that all of them decide now and then.
TEST(NumberArrays, SortOfManyTuples) {
    const auto expectStable = []<typename T>(const TM_String& type, T) {
        constexpr std::size_t parts = sizeof(T) / sizeof(float);
        constexpr uint32_t count = 3000;
        std::mt19937 random(5);
        tidemark::Array<T> values(count);
        auto* const floats = reinterpret_cast<float*>(values.data());
        for (std::size_t i = 0; i < count * parts; ++i) {
            floats[i] = static_cast<float>(random() % (i % parts == 0 ? 20 : 2));
        }
        std::vector<int32_t> expected(count);
        std::iota(expected.begin(), expected.end(), 0);
        std::stable_sort(expected.begin(), expected.end(), [&](int32_t a, int32_t b) {
            const float* first = floats + static_cast<std::size_t>(a) * parts;
            const float* second = floats + static_cast<std::size_t>(b) * parts;
            return std::lexicographical_compare(first, first + parts, second, second + parts);
        });
        Numbers n("ArrayNumSort", type);
        n.as<NumericAttribute>("n.array").ownNumeric().setValues(values);
        n.refresh("n.new to old");
        const auto& order = n.as<NumericAttribute>("n.new to old").numeric().values<int32_t>();
        ASSERT_EQ(std::vector<int32_t>(order.begin(), order.end()), expected) << type;
    };
    expectStable("Vector3", Vector3<float>());
    expectStable("Color4", Color4<float>());
    expectStable("Quaternion", Quaternion<float>());
    expectStable("Matrix4", Matrix4<float>());
}

TEST(NumberArrays, NotANumberEqualsNothing) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    Numbers repeated("ArrayNumRemoveRepeatedElements", "Real");
    repeated.numbers<float>("n.array", {nan, 0.0f, nan, -0.0f, 1.0f});
    EXPECT_EQ(repeated.text("n.new to old"), "[1] 0,1,2,1,3");
    EXPECT_EQ(repeated.text("n.mask"), "11101");
    for (const auto& wanted : {std::initializer_list<float>{nan, 0.0f},
                               std::initializer_list<float>{nan, 0.0f, 7, 8, 9, 10}}) {
        Numbers find("ArrayNumFindElement", "Real");
        find.numbers<float>("n.array", {nan, -0.0f});
        find.numbers<float>("n.element", wanted);
        EXPECT_EQ(find.text("n.index").substr(0, 8), "[1] -1,1");
        Numbers all("ArrayNumFindAllElementIndices", "Real");
        all.numbers<float>("n.array", {nan, -0.0f});
        all.numbers<float>("n.element", wanted);
        EXPECT_EQ(all.text("n.mask"), "01");
    }
}

// Against the plain algorithms, on many small random arrays.
TEST(NumberArrays, SearchesAgreeWithPlainLoops) {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        const auto numbersOf = [&](uint32_t most) {
            tidemark::Array<int32_t> made;
            for (uint32_t i = random() % (most + 1); i > 0; --i) {
                made.append(static_cast<int32_t>(random() % 12));
            }
            return made;
        };
        const auto array = numbersOf(100);
        const auto element = numbersOf(12);
        const auto starts = numbersOf(12);
        Numbers find("ArrayNumFindElement", "Integer");
        find.as<NumericAttribute>("n.array").ownNumeric().setValues(array);
        find.as<NumericAttribute>("n.element").ownNumeric().setValues(element);
        find.as<NumericAttribute>("n.start index").ownNumeric().setValues(starts);
        find.refresh("n.index");
        const auto& found = find.as<NumericAttribute>("n.index").numeric().values<int32_t>();
        ASSERT_EQ(found.size(), element.size());
        for (uint32_t i = 0; i < element.size(); ++i) {
            uint32_t k = starts.empty() ? 0 : uint32_t(starts[std::min(i, starts.size() - 1)]);
            while (k < array.size() && array[k] != element[i]) ++k;
            ASSERT_EQ(found[i], k < array.size() ? static_cast<int32_t>(k) : -1);
        }
        Numbers remove("ArrayNumRemoveElement", "Integer");
        remove.as<NumericAttribute>("n.array").ownNumeric().setValues(array);
        remove.as<NumericAttribute>("n.element").ownNumeric().setValues(element);
        remove.refresh("n.out array");
        tidemark::Array<int32_t> left;
        for (const int32_t number : array) {
            if (!element.contains(number)) left.append(number);
        }
        ASSERT_EQ(remove.as<NumericAttribute>("n.out array").numeric().values<int32_t>(), left);
    }
}

TEST(NumberArrays, SizesBeyondMemoryAreBadAllocAndTheGraphStaysUsable) {
    tidemark::limits::Limits small;
    small.maxElements = 1000;
    const tidemark::limits::Limits before = tidemark::limits::current();
    tidemark::limits::set(small);
    Numbers n("ArrayNumResize", "Real");
    n.numbers<float>("n.array", {1});
    n.numbers<int32_t>("n.size", {2147483647});
    EXPECT_THROW(n.refresh("n.out array"), std::bad_alloc);
    n.numbers<int32_t>("n.size", {2});
    EXPECT_EQ(n.out(), "[3] 1,1");
    tidemark::limits::set(before);
}

// Bits.

TEST(BitArrays, Concatenate) {
    LogicNet net;
    net.add("ArrayBitConcat", "n");
    net.bits("n.array0", {true, false, true});
    net.bits("n.array1", {false, true});
    EXPECT_EQ(net.text("n.out array"), "10101");
}

TEST(BitArrays, SliceAndReport) {
    LogicNet net;
    net.add("ArrayBitSlice", "n");
    net.bits("n.array", {true, false, true, true});
    net.numbers<int32_t>("n.first", {1});
    net.numbers<int32_t>("n.size", {2});
    EXPECT_EQ(net.text("n.out array"), "01");
    net.numbers<int32_t>("n.size", {-1});
    EXPECT_EQ(net.text("n.out array"), "011");
    net.numbers<int32_t>("n.first", {4});
    EXPECT_EQ(net.text("n.out array"), "011");
    EXPECT_EQ(net.messages("n"), "[error] Input 'first' is out of range: 4\n");
}

TEST(BitArrays, MixAndInsert) {
    LogicNet net;
    net.add("ArrayBitMix", "m");
    net.bits("m.array0", {true, true, false});
    net.bits("m.array1", {false});
    net.bits("m.mask", {false, true, false, true, false});
    EXPECT_EQ(net.text("m.out array"), "10000");
    net.bits("m.array0", {});
    EXPECT_EQ(net.text("m.out array"), "00000");
    net.bits("m.mask", {});
    EXPECT_EQ(net.text("m.out array"), "");
    net.add("ArrayBitInsertElement", "i");
    net.bits("i.array", {false, false});
    net.bits("i.element", {true, true});
    net.numbers<int32_t>("i.index", {1});
    EXPECT_EQ(net.text("i.out array"), "0110");
    net.numbers<int32_t>("i.index", {-5});
    EXPECT_EQ(net.text("i.out array"), "1100");
    net.numbers<int32_t>("i.index", {99});
    EXPECT_EQ(net.text("i.out array"), "0011");
}

TEST(BitArrays, LongOnesAcrossWords) {
    std::mt19937 random(3);
    const auto bitsOf = [&](uint32_t count) {
        TM_String made;
        for (uint32_t i = 0; i < count; ++i) made += random() % 2 ? '1' : '0';
        return made;
    };
    const auto give = [](LogicNet& net, const char* pin, const TM_String& text) {
        BitArrayValue& bits = net.as<BitArrayAttribute>(pin).ownBits();
        bits.resize(static_cast<uint32_t>(text.size()), false);
        for (uint32_t i = 0; i < text.size(); ++i) bits.setBit(i, text[i] == '1');
        net.pin(pin).valueChanged();
    };
    LogicNet net;
    net.add("ArrayBitInsertElement", "i");
    net.add("ArrayBitSlice", "s");
    for (int round = 0; round < 100; ++round) {
        const TM_String array = bitsOf(random() % 150);
        const TM_String element = bitsOf(random() % 150);
        const auto at = static_cast<int32_t>(random() % (array.size() + 1));
        give(net, "i.array", array);
        give(net, "i.element", element);
        net.numbers<int32_t>("i.index", {at});
        ASSERT_EQ(net.text("i.out array"), TM_String(array).insert(std::size_t(at), element));
        if (array.empty()) continue;
        const auto first = random() % array.size();
        const auto size = random() % (array.size() - first + 1);
        give(net, "s.array", array);
        net.numbers<int32_t>("s.first", {static_cast<int32_t>(first)});
        net.numbers<int32_t>("s.size", {static_cast<int32_t>(size)});
        ASSERT_EQ(net.text("s.out array"), array.substr(first, size));
    }
}

TEST(BitArrays, WorkInPlace) {
    LogicNet net;
    Node& node = net.add("ArrayBitMix", "n");
    ASSERT_TRUE(node.connectInternalAttributes(&net.pin("n.array1"), &net.pin("n.out array")));
    net.bits("n.array0", {false, false, true});
    net.bits("n.array1", {true, true});
    net.bits("n.mask", {true, false, false});
    EXPECT_EQ(net.text("n.out array"), "101");
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// The array operations that all element types share, on strings.
#include "nodes/values/arrays/array_nodes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::declared;
using sluice_tests::LogicNet;
using tidemark::TM_String;

// One operation on strings, as node "n" with "array" set to a, b, c, b.
class Strings : public LogicNet {
public:
    explicit Strings(const TM_String& type) {
        Node& node = add(type, "n");
        for (const char* pin : {"array", "array0"}) {
            if (node.findAttribute(pin)) strings(TM_String("n.") + pin, {"a", "b", "c", "b"});
        }
    }
    void mask(std::initializer_list<bool> bits) { this->bits("n.mask", bits); }
    void integers(const char* pin, std::initializer_list<int32_t> values) {
        numbers<int32_t>(TM_String("n.") + pin, values);
    }
    TM_String out() { return list("n.out array"); }
    TM_String result() { return list("n.result"); }
    TM_String said() { return messages("n"); }
};

const TM_String strings = "StringAttribute \"String\"";
const TM_String integer = "NumericAttribute \"Integer\"";
const TM_String bits = "BitArrayAttribute \"Bit\"";

TEST(ArrayNodes, DeclareTheirPins) {
    const TM_String array = "in array " + strings + " = \n";
    const TM_String element = "in element " + strings + " = \n";
    const TM_String outArray = "out out array " + strings + "\n";
    const TM_String maskOut = "out mask " + bits + "\n";
    const std::pair<const char*, TM_String> expected[] = {
        {"GetArrayStringElement",
         array + "in index " + integer + " = 0\nout result " + strings + "\n"},
        {"SetArrayStringElement", array + "in index " + integer + " = 0\n" + element + outArray},
        {"ArrayStringFilterByMask",
         array + "in mask " + bits + " = 0\nout result " + strings + "\n"},
        {"ArrayStringConstant",
         "in constant! " + strings + " = \nin size! " + integer + " = 1\n" + outArray},
        {"ArrayStringResize", array + "in size! " + integer + " = 1\n" + outArray},
        {"ArrayStringConcat",
         "in array0 " + strings + " = \nin array1 " + strings + " = \n" + outArray},
        {"ArrayStringSlice",
         array + "in first! " + integer + " = 0\nin size! " + integer + " = -1\n" + outArray},
        {"ArrayStringMix", "in array0 " + strings + " = \nin array1 " + strings + " = \nin mask " +
                               bits + " = 0\n" + outArray},
        {"ArrayStringSort",
         array + "out old to new " + integer + "\nout new to old " + integer + "\n" + outArray},
        {"ArrayStringReverse", array + outArray},
        {"ArrayStringFindElement",
         array + element + "in start index " + integer + " = 0\nout index " + integer + "\n"},
        {"ArrayStringFindAllElementIndices",
         array + element + "out index " + integer + "\n" + maskOut},
        {"ArrayStringInsertElement",
         array + element + "in index! " + integer + " = 0\n" + outArray},
        {"ArrayStringPushElement", array + element + outArray},
        {"ArrayStringRemoveElement", array + element + outArray + maskOut},
        {"ArrayStringRemoveIndex", array + "in index " + integer + " = 0\n" + outArray + maskOut},
        {"ArrayStringRemoveRepeatedElements",
         array + "out new to old " + integer + "\n" + maskOut + outArray}};
    for (const auto& [type, pins] : expected) {
        EXPECT_EQ(declared(type), TM_String(type) + "\n" + pins);
        EXPECT_EQ(sluice_tests::missingTexts(type), "") << type;
        EXPECT_EQ(sluice_tests::missingAffects(type), "") << type;
    }
}

TEST(ArrayNodes, DescriptionsAndHelp) {
    LogicNet net;
    const auto description = [&](const char* type) { return net.add(type, type).getDescription(); };
    const auto help = [&](const char* pin) { return net.pin(pin).getDescription(); };
    EXPECT_EQ(description("GetArrayStringElement"),
              "This node returns the elements of the input 'array' at positions specified by the "
              "'index' parameter.");
    EXPECT_EQ(description("ArrayStringFilterByMask"),
              "This node returns the elements of the input 'array' at positions specified by the "
              "'mask' parameter.");
    EXPECT_EQ(description("ArrayStringConstant"), "This node returns a constant array.");
    EXPECT_EQ(description("ArrayStringResize"),
              "This node resizes the input 'array'. If the result is bigger than the input array, "
              "the last value is repeated accordingly.");
    EXPECT_EQ(description("ArrayStringConcat"),
              "This node concatenates the inputs 'array0' and 'array1' into a single 'out' array.");
    EXPECT_EQ(description("ArrayStringSlice"),
              "This node returns an array containing the range of the input 'array' from the "
              "'first' position with the given input 'size'.Thus, the output array is a subarray "
              "or slice of the input.");
    EXPECT_EQ(description("ArrayStringMix"),
              "This node creates an output array based on the two inputs 'array0' and 'array1' and "
              "the input mask. If the mask value equals 0 then the value of 'array0' is used, if "
              "the mask value is 1 the value of 'array1' is used.\nThe size of the output is the "
              "same as mask's size.");
    EXPECT_EQ(description("ArrayStringSort"),
              "This node sorts the input 'array'. The 'old_to_new' array can be used as 'index' "
              "input of a GetArrayElement to sort a different array of the same size. The "
              "'new_to_old' array can be used as 'index' input of a GetArrayElement to get the "
              "original array order if applied to the sorted one. to apply to other arrays of the "
              "same size.");
    EXPECT_EQ(description("ArrayStringReverse"),
              "This node reverses the order of the input 'array'.");
    EXPECT_EQ(description("ArrayStringFindElement"),
              "This node returns the first position of appearance of the input 'element' within "
              "the input 'array'. If the array does not contain the element, -1 is returned.");
    EXPECT_EQ(description("ArrayStringFindAllElementIndices"),
              "This node returns all positions in the input 'array', which fit to the input "
              "'element' values. ");
    EXPECT_EQ(description("ArrayStringInsertElement"),
              "This node inserts all elements from the 'element' input into the input 'array' at "
              "the position specified by 'position'. If 'position' is equal or lower than 0 then "
              "the elements are inserted at the beginning of the array. If 'position' is greater "
              "or equal than the inputs 'array' size, elements are appended at the end.");
    EXPECT_EQ(description("ArrayStringPushElement"),
              "This node appends all the elements from the 'element' at the end of the input "
              "'array'");
    EXPECT_EQ(description("ArrayStringRemoveElement"),
              "This node removes all elements of the 'by_value' from the input 'array'. The "
              "returned mask has the same size as the input 'array' and is set to 0 at removed "
              "positions.");
    EXPECT_EQ(description("ArrayStringRemoveIndex"),
              "This node removes all input array positions by the 'index' input. ");
    EXPECT_EQ(description("ArrayStringRemoveRepeatedElements"),
              "This node removes all repetitions of elements from the input 'array'. The "
              "'new_to_old' array can be used as an 'index' input for a GetArrayElement-Node to "
              "restore the original array. The returned mask has the same size as the input "
              "'array' and is set to 0 at removed positions.");
    EXPECT_EQ(help("ArrayStringSlice.size"),
              "The total number of elements to copy from the input array. If value is negative, "
              "all the elements from 'first' are copied to the output array.");
    EXPECT_EQ(help("ArrayStringSlice.first"),
              "The position of the element that will be the first of the output array");
    EXPECT_EQ(help("ArrayStringFindElement.start index"),
              "The first index to search the element from");
    EXPECT_EQ(help("ArrayStringFindElement.element"), "The value to find in the input array");
    EXPECT_EQ(help("ArrayStringInsertElement.element"), "The value to insert");
    EXPECT_EQ(help("ArrayStringInsertElement.index"),
              "The position to insert the input element on");
    EXPECT_EQ(help("ArrayStringPushElement.element"), "The value to append at the end");
    EXPECT_EQ(help("ArrayStringRemoveElement.element"),
              "The value to remove all its instances from the input array");
    EXPECT_EQ(help("ArrayStringRemoveIndex.index"), "The positions of the input array to remove");
}

// By index.

TEST(GetArrayElement, BadIndicesAreReportedAndTheRestGoesOn) {
    Strings n("GetArrayStringElement");
    n.integers("index", {3, 0, 9});
    EXPECT_EQ(n.result(), "b|a|");
    EXPECT_EQ(n.said(), "[error] index is out of range: 9\n");
    n.integers("index", {-1});
    n.refresh("n.result");
    EXPECT_NE(n.said().find("index is out of range: -1"), TM_String::npos);
}

TEST(GetArrayElement, UnsetElementsKeepWhatTheOutputHeld) {
    Strings n("GetArrayStringElement");
    n.integers("index", {0, 1});
    EXPECT_EQ(n.result(), "a|b");
    n.integers("index", {9, 2});
    EXPECT_EQ(n.result(), "a|c");
}

TEST(GetArrayElement, RepeatedAndNoIndices) {
    Strings n("GetArrayStringElement");
    n.integers("index", {0, 0, 0});
    EXPECT_EQ(n.result(), "a|a|a");
    n.integers("index", {});
    EXPECT_EQ(n.result(), "");
    EXPECT_EQ(n.as<StringAttribute>("n.result").strings().size(), 0u);
}

TEST(GetArrayElement, UnsetElementsInPlaceKeepTheArraysOwn) {
    Strings n("GetArrayStringElement");
    ASSERT_TRUE(n.node("n").connectInternalAttributes(&n.pin("n.array"), &n.pin("n.result")));
    n.integers("index", {9, 0});
    EXPECT_EQ(n.result(), "a|a");
}

TEST(SetArrayElement, HandlesPairsOnly) {
    Strings n("SetArrayStringElement");
    n.integers("index", {0, 1});
    n.strings("n.element", {"z"});
    EXPECT_EQ(n.out(), "z|b|c|b");
    EXPECT_EQ(n.said(), "[error] Attributes 'index' and 'element' size differs. (2, 1)\n");
}

TEST(SetArrayElement, StoresInOrderAndReportsBadIndices) {
    Strings n("SetArrayStringElement");
    n.integers("index", {3, 7, 3});
    n.strings("n.element", {"x", "y", "z"});
    EXPECT_EQ(n.out(), "a|b|c|z");
    EXPECT_EQ(n.said(), "[error] index is out of range: 7\n");
    EXPECT_EQ(n.list("n.array"), "a|b|c|b") << "the input is not touched";
}

// By mask.

TEST(ArrayFilterByMask, KeepsSetElements) {
    Strings n("ArrayStringFilterByMask");
    n.mask({true, false, true, false});
    EXPECT_EQ(n.result(), "a|c");
    EXPECT_EQ(n.said(), "");
    n.mask({true, false, true});
    EXPECT_EQ(n.result(), "a|c");
    EXPECT_EQ(n.said(), "[error] input attributes size differs: (4, 3)\n");
}

TEST(ArrayFilterByMask, LongerMaskIsCut) {
    Strings n("ArrayStringFilterByMask");
    n.mask({true, true, true, true, true});
    EXPECT_EQ(n.result(), "a|b|c|b");
    EXPECT_EQ(n.said(), "[error] input attributes size differs: (4, 5)\n");
}

TEST(ArrayMix, HasTheSizeOfTheMask) {
    Strings n("ArrayStringMix");
    n.strings("n.array1", {"x"});
    n.mask({false, true, true, false});
    EXPECT_EQ(n.out(), "a|x|x|b");
    n.mask({false, true, false, false, false, false});
    EXPECT_EQ(n.out(), "a|x|c|b|b|b") << "the last element goes on";
    n.bits("n.mask", {});
    EXPECT_EQ(n.as<StringAttribute>("n.out array").strings().size(), 4u + 2u) << "not yet pulled";
    n.refresh("n.out array");
    EXPECT_EQ(n.as<StringAttribute>("n.out array").strings().size(), 0u);
}

TEST(ArrayMix, EmptyArraysGiveDefaults) {
    Strings n("ArrayStringMix");
    n.strings("n.array1", {});
    n.mask({false, true});
    EXPECT_EQ(n.out(), "a|");
}

// Sizes.

TEST(ArrayConstant, RepeatsTheFirstElement) {
    Strings n("ArrayStringConstant");
    n.strings("n.constant", {"k"});
    n.integers("size", {3});
    EXPECT_EQ(n.out(), "k|k|k");
    n.integers("size", {0});
    n.refresh("n.out array");
    EXPECT_EQ(n.as<StringAttribute>("n.out array").strings().size(), 0u);
    n.integers("size", {-1});
    n.refresh("n.out array");
    EXPECT_EQ(n.said(), "[error] Input size is lower than 0\n");
}

TEST(ArrayResize, RepeatsTheLastElement) {
    Strings n("ArrayStringResize");
    n.integers("size", {6});
    EXPECT_EQ(n.out(), "a|b|c|b|b|b");
    n.strings("n.array", {"a", "b"});
    n.integers("size", {4});
    EXPECT_EQ(n.out(), "a|b|b|b");
    n.integers("size", {1});
    EXPECT_EQ(n.out(), "a");
    n.strings("n.array", {});
    n.integers("size", {2});
    EXPECT_EQ(n.out(), "|");
}

TEST(ArrayResize, NegativeSizeLeavesTheOutput) {
    Strings n("ArrayStringResize");
    n.integers("size", {2});
    EXPECT_EQ(n.out(), "a|b");
    n.integers("size", {-1});
    EXPECT_EQ(n.out(), "a|b");
    EXPECT_EQ(n.said(), "[error] Input size is lower than 0\n");
}

TEST(ArraySlice, TakesARange) {
    Strings n("ArrayStringSlice");
    n.integers("first", {1});
    n.integers("size", {2});
    EXPECT_EQ(n.out(), "b|c");
    n.integers("first", {2});
    n.integers("size", {-1});
    EXPECT_EQ(n.out(), "c|b");
    n.integers("size", {0});
    n.refresh("n.out array");
    EXPECT_EQ(n.as<StringAttribute>("n.out array").strings().size(), 0u);
    EXPECT_EQ(n.said(), "");
    n.strings("n.array", {"a", "b", "c", "d", "e"});
    n.integers("size", {-1});
    EXPECT_EQ(n.out(), "c|d|e");
}

TEST(ArraySlice, OutOfRangeLeavesTheOutput) {
    Strings n("ArrayStringSlice");
    n.integers("first", {1});
    n.integers("size", {1});
    EXPECT_EQ(n.out(), "b");
    n.integers("first", {3});
    n.integers("size", {2});
    EXPECT_EQ(n.out(), "b");
    EXPECT_EQ(n.said(), "[error] Input 'size' is out of range: 2\n");
}

TEST(ArraySlice, FirstEqualToTheSizeIsReported) {
    Strings n("ArrayStringSlice");
    n.integers("first", {4});
    n.integers("size", {0});
    n.refresh("n.out array");
    EXPECT_EQ(n.said(), "[error] Input 'first' is out of range: 4\n");
    Strings empty("ArrayStringSlice");
    empty.strings("n.array", {});
    empty.refresh("n.out array");
    EXPECT_EQ(empty.said(), "[error] Input 'first' is out of range: 0\n");
    Strings negative("ArrayStringSlice");
    negative.integers("first", {-1});
    negative.refresh("n.out array");
    EXPECT_EQ(negative.said(), "[error] Input 'first' is out of range: -1\n");
    Strings huge("ArrayStringSlice");
    huge.integers("first", {3});
    huge.integers("size", {2147483647});
    huge.refresh("n.out array");
    EXPECT_EQ(huge.said(), "[error] Input 'size' is out of range: 2147483647\n");
}

// Joining and turning round.

TEST(ArrayConcat, AppendsTheSecond) {
    Strings n("ArrayStringConcat");
    n.strings("n.array1", {"x"});
    EXPECT_EQ(n.out(), "a|b|c|b|x");
    n.strings("n.array0", {});
    EXPECT_EQ(n.out(), "x");
}

TEST(ArrayPushElement, AppendsAll) {
    Strings n("ArrayStringPushElement");
    n.strings("n.element", {"x", "y"});
    EXPECT_EQ(n.out(), "a|b|c|b|x|y");
}

TEST(ArrayInsertElement, ClampsThePosition) {
    const auto inserted = [](int32_t index) {
        Strings n("ArrayStringInsertElement");
        n.strings("n.element", {"x", "y"});
        n.integers("index", {index});
        return n.out();
    };
    EXPECT_EQ(inserted(1), "a|x|y|b|c|b");
    EXPECT_EQ(inserted(-5), "x|y|a|b|c|b");
    EXPECT_EQ(inserted(0), "x|y|a|b|c|b");
    EXPECT_EQ(inserted(4), "a|b|c|b|x|y");
    EXPECT_EQ(inserted(99), "a|b|c|b|x|y");
}

TEST(ArrayReverse, TurnsTheOrderRound) {
    Strings n("ArrayStringReverse");
    EXPECT_EQ(n.out(), "b|c|b|a");
    n.strings("n.array", {});
    n.refresh("n.out array");
    EXPECT_EQ(n.as<StringAttribute>("n.out array").strings().size(), 0u);
}

TEST(ArraySort, IsStableAndMapsBothWays) {
    Strings n("ArrayStringSort");
    EXPECT_EQ(n.out(), "a|b|b|c");
    EXPECT_EQ(n.text("n.new to old"), "[1] 0,1,3,2");
    EXPECT_EQ(n.text("n.old to new"), "[1] 0,1,3,2");
    n.strings("n.array", {"c", "a", "b"});
    EXPECT_EQ(n.out(), "a|b|c");
    EXPECT_EQ(n.text("n.new to old"), "[1] 1,2,0");
    EXPECT_EQ(n.text("n.old to new"), "[1] 2,0,1");
}

TEST(ArraySort, StringsGoByTheirBytes) {
    Strings n("ArrayStringSort");
    n.strings("n.array", {"longprefix2", "longprefix", "Z", "\xc3\xa4", "a", "", "longprefix10"});
    EXPECT_EQ(n.out(), "|Z|a|longprefix|longprefix10|longprefix2|\xc3\xa4");
}

// Equal beginnings, zeros inside, and enough of them to be sorted by digits.
TEST(ArraySort, ManyStringsGoAsAStableSortPutsThem) {
    std::mt19937 random(21);
    for (const uint32_t count : {511u, 512u, 5000u}) {
        std::vector<TM_String> words;
        for (uint32_t i = 0; i < count; ++i) {
            TM_String word = "common/";
            for (uint32_t k = random() % 12; k > 0; --k) word += "ab\0z"[random() % 4];
            words.push_back(word);
        }
        Strings n("ArrayStringSort");
        StringValue& array = n.as<StringAttribute>("n.array").ownStrings();
        array.setSize(count);
        for (uint32_t i = 0; i < count; ++i) array.setValueAt(i, words[i]);
        n.refresh("n.out array");
        std::vector<int32_t> expected(count);
        for (uint32_t i = 0; i < count; ++i) expected[i] = static_cast<int32_t>(i);
        std::stable_sort(expected.begin(), expected.end(), [&](int32_t a, int32_t b) {
            return words[static_cast<uint32_t>(a)] < words[static_cast<uint32_t>(b)];
        });
        const auto& order = n.as<NumericAttribute>("n.new to old").numeric().values<int32_t>();
        ASSERT_EQ(order.size(), count);
        for (uint32_t k = 0; k < count; ++k) ASSERT_EQ(order[k], expected[k]) << k;
    }
}

// Searching.

TEST(ArrayFindElement, FindsTheFirstFromTheStart) {
    Strings n("ArrayStringFindElement");
    n.strings("n.element", {"b", "q"});
    n.integers("start index", {2});
    EXPECT_EQ(n.text("n.index"), "[1] 3,-1");
    n.integers("start index", {9});
    EXPECT_EQ(n.text("n.index"), "[1] -1,-1");
    n.integers("start index", {-1});
    EXPECT_EQ(n.text("n.index"), "[1] -1,-1") << "as unsigned numbers";
    n.integers("start index", {});
    EXPECT_EQ(n.text("n.index"), "[1] 1,-1");
    n.integers("start index", {0, 2});
    n.strings("n.element", {"b", "b", "b"});
    EXPECT_EQ(n.text("n.index"), "[1] 1,3,3") << "the last start goes on";
}

TEST(ArrayFindElement, ManyElementsGiveTheSamePositions) {
    Strings n("ArrayStringFindElement");
    n.strings("n.element", {"a", "b", "c", "q", "", "b", "a"});
    n.integers("start index", {0, 2, 2, 0, 0, 0, 1});
    EXPECT_EQ(n.text("n.index"), "[1] 0,3,2,-1,-1,1,-1");
}

TEST(ArrayFindAll, TellsEachPositionOnce) {
    Strings n("ArrayStringFindAllElementIndices");
    n.strings("n.element", {"b"});
    EXPECT_EQ(n.text("n.index"), "[1] 1,3");
    EXPECT_EQ(n.text("n.mask"), "0101");
    n.strings("n.element", {"b", "a", "b", "x", "y", "z"});
    EXPECT_EQ(n.text("n.index"), "[1] 0,1,3");
    EXPECT_EQ(n.text("n.mask"), "1101");
    n.strings("n.element", {});
    EXPECT_EQ(n.text("n.index"), "[1] ");
    EXPECT_EQ(n.text("n.mask"), "0000");
}

// Removing.

TEST(ArrayRemoveElement, MaskShowsWhatIsLeft) {
    Strings n("ArrayStringRemoveElement");
    n.strings("n.element", {"b"});
    EXPECT_EQ(n.out(), "a|c");
    EXPECT_EQ(n.text("n.mask"), "1010");
    n.strings("n.element", {});
    EXPECT_EQ(n.out(), "a|b|c|b");
    EXPECT_EQ(n.text("n.mask"), "1111");
    n.strings("n.array", {});
    n.refresh("n.out array");
    EXPECT_EQ(n.text("n.mask"), "");
}

TEST(ArrayRemoveIndex, RepeatedIndicesRemoveOnce) {
    Strings n("ArrayStringRemoveIndex");
    n.integers("index", {1, 1, 7});
    EXPECT_EQ(n.out(), "a|c|b");
    EXPECT_EQ(n.said(), "[error] index is out of range: 7\n");
    EXPECT_EQ(n.text("n.mask"), "1011");
}

TEST(ArrayRemoveRepeated, KeepsFirstOccurrences) {
    Strings n("ArrayStringRemoveRepeatedElements");
    EXPECT_EQ(n.out(), "a|b|c");
    EXPECT_EQ(n.text("n.new to old"), "[1] 0,1,2,1");
    EXPECT_EQ(n.text("n.mask"), "1110");
}

TEST(ArrayNodes, OutputsBesideTheArrayAreClean) {
    Strings n("ArrayStringRemoveElement");
    n.strings("n.element", {"b"});
    n.refresh("n.out array");
    EXPECT_TRUE(n.pin("n.mask").isClean()) << "it is wanted unless a run says otherwise";
    EXPECT_EQ(n.as<BitArrayAttribute>("n.mask").ownBits().asString(), "1010");
}

TEST(ArrayNodes, UnwantedOutputsAreNotComputed) {
    Strings n("ArrayStringRemoveElement");
    n.strings("n.element", {"b"});
    n.pin("n.mask").setToBeEvaluated(false);
    n.refresh("n.out array");
    EXPECT_FALSE(n.pin("n.mask").isClean());
    EXPECT_EQ(n.as<BitArrayAttribute>("n.mask").ownBits().asString(), "0");
    n.refresh("n.mask");
    EXPECT_EQ(n.as<BitArrayAttribute>("n.mask").ownBits().asString(), "1010");
}

// An update that gives up marks nothing clean.
TEST(ArrayNodes, OutputsThatAreRefusedStayDirty) {
    Strings resize("ArrayStringResize");
    resize.integers("size", {-1});
    resize.node("n").doUpdate(&resize.pin("n.out array"));
    EXPECT_FALSE(resize.pin("n.out array").isClean());
    Strings constant("ArrayStringConstant");
    constant.integers("size", {-1});
    constant.node("n").doUpdate(&constant.pin("n.out array"));
    EXPECT_FALSE(constant.pin("n.out array").isClean());
    Strings first("ArrayStringSlice");
    first.integers("first", {4});
    first.node("n").doUpdate(&first.pin("n.out array"));
    EXPECT_FALSE(first.pin("n.out array").isClean());
    Strings size("ArrayStringSlice");
    size.integers("size", {5});
    size.node("n").doUpdate(&size.pin("n.out array"));
    EXPECT_FALSE(size.pin("n.out array").isClean());
    size.integers("size", {2});
    size.node("n").doUpdate(&size.pin("n.out array"));
    EXPECT_TRUE(size.pin("n.out array").isClean());
}

// In place.

class InPlace : public Strings {
public:
    InPlace(const TM_String& type, const TM_String& in, const TM_String& out) : Strings(type) {
        EXPECT_TRUE(node("n").connectInternalAttributes(&pin("n." + in), &pin("n." + out)));
    }
};

TEST(ArrayNodes, WorkInPlace) {
    InPlace slice("ArrayStringSlice", "array", "out array");
    slice.integers("first", {1});
    slice.integers("size", {2});
    EXPECT_EQ(slice.out(), "b|c");
    EXPECT_EQ(slice.list("n.array"), "b|c") << "the array itself was cut";

    InPlace concat("ArrayStringConcat", "array1", "out array");
    concat.strings("n.array1", {"x", "y"});
    EXPECT_EQ(concat.out(), "a|b|c|b|x|y");

    InPlace front("ArrayStringConcat", "array0", "out array");
    front.strings("n.array1", {"x", "y"});
    EXPECT_EQ(front.out(), "a|b|c|b|x|y");

    InPlace get("GetArrayStringElement", "array", "result");
    get.integers("index", {2, 0});
    EXPECT_EQ(get.result(), "c|a");

    InPlace filter("ArrayStringFilterByMask", "array", "result");
    filter.mask({false, true, true, false});
    EXPECT_EQ(filter.result(), "b|c");

    InPlace reverse("ArrayStringReverse", "array", "out array");
    EXPECT_EQ(reverse.out(), "b|c|b|a");

    InPlace remove("ArrayStringRemoveElement", "array", "out array");
    remove.strings("n.element", {"b"});
    EXPECT_EQ(remove.out(), "a|c");
    EXPECT_EQ(remove.text("n.mask"), "1010") << "computed together with the array";

    InPlace repeated("ArrayStringRemoveRepeatedElements", "array", "out array");
    EXPECT_EQ(repeated.out(), "a|b|c");
    EXPECT_EQ(repeated.text("n.new to old"), "[1] 0,1,2,1");

    InPlace insert("ArrayStringInsertElement", "array", "out array");
    insert.strings("n.element", {"x"});
    insert.integers("index", {1});
    EXPECT_EQ(insert.out(), "a|x|b|c|b");

    InPlace mix("ArrayStringMix", "array0", "out array");
    mix.strings("n.array1", {"x"});
    mix.mask({true, false, true, false});
    EXPECT_EQ(mix.out(), "x|b|x|b");

    InPlace set("SetArrayStringElement", "array", "out array");
    set.integers("index", {1});
    set.strings("n.element", {"z"});
    EXPECT_EQ(set.out(), "a|z|c|b");
    EXPECT_EQ(set.list("n.array"), "a|z|c|b");

    InPlace sort("ArrayStringSort", "array", "out array");
    EXPECT_EQ(sort.out(), "a|b|b|c");
    EXPECT_EQ(sort.text("n.new to old"), "[1] 0,1,3,2");
}

} // namespace

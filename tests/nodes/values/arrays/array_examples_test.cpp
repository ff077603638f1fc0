// SPDX-License-Identifier: Apache-2.0
// One table of examples for the array operations of every element type: beside the array, in place,
// in place where the elements may not move, and with arrays that are the same.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "graph/node_factory.h"
#include "graph/scene_manager.h"
#include "nodes/values/arrays/array_words.h"
#include "nodes/values/logic_net.h"
#include "nodes/values/trial_types.h"

namespace {

using namespace weft;
using sluice_tests::ArrayWord;
using sluice_tests::arrayWords;
using sluice_tests::lettersAs;
using sluice_tests::lettersIn;
using sluice_tests::LogicNet;
using sluice_tests::putLetters;
using sluice_tests::roomOf;
using sluice_tests::typeOf;
using tidemark::TM_String;

using Pins = std::vector<std::pair<const char*, TM_String>>;

// Elements as letters, integers as "1,2", bits as "01". The first output is the array if there is
// one. `inPlace` is what that shows in place, when something else.
struct Example {
    const char* operation;
    Pins inputs;
    Pins outputs;
    TM_String message = "";
    const char* inPlace = nullptr;
};

const char* const noRange = "index is out of range: ";
const char* const negative = "Input size is lower than 0";

const std::vector<Example> examples = {
    {"GetArray*Element", {{"array", "abcb"}, {"index", "3,0"}}, {{"result", "ba"}}},
    {"GetArray*Element", {{"array", "abcb"}, {"index", "0,0,0"}}, {{"result", "aaa"}}},
    {"GetArray*Element", {{"array", "abcb"}, {"index", ""}}, {{"result", ""}}},
    {"GetArray*Element",
     {{"array", "abcb"}, {"index", "3,0,9"}},
     {{"result", "ba."}},
     noRange + TM_String("9"),
     "bac"},
    {"GetArray*Element",
     {{"array", "abcb"}, {"index", "-1"}},
     {{"result", "."}},
     noRange + TM_String("-1"),
     "a"},
    {"SetArray*Element",
     {{"array", "abcb"}, {"index", "0,1"}, {"element", "z"}},
     {{"out array", "zbcb"}},
     "Attributes 'index' and 'element' size differs. (2, 1)"},
    {"SetArray*Element",
     {{"array", "abcb"}, {"index", "3,7,3"}, {"element", "xyz"}},
     {{"out array", "abcz"}},
     noRange + TM_String("7")},
    {"SetArray*Element",
     {{"array", "abcb"}, {"index", ""}, {"element", ""}},
     {{"out array", "abcb"}}},
    {"Array*FilterByMask", {{"array", "abcb"}, {"mask", "1010"}}, {{"result", "ac"}}},
    {"Array*FilterByMask",
     {{"array", "abcb"}, {"mask", "101"}},
     {{"result", "ac"}},
     "input attributes size differs: (4, 3)"},
    {"Array*FilterByMask",
     {{"array", ""}, {"mask", "11"}},
     {{"result", ""}},
     "input attributes size differs: (0, 2)"},
    {"Array*Constant", {{"constant", "k"}, {"size", "3"}}, {{"out array", "kkk"}}},
    {"Array*Constant", {{"constant", "k"}, {"size", "0"}}, {{"out array", ""}}},
    {"Array*Constant", {{"constant", "k"}, {"size", "-1"}}, {{"out array", "."}}, negative},
    {"Array*Resize", {{"array", "abcb"}, {"size", "6"}}, {{"out array", "abcbbb"}}},
    {"Array*Resize", {{"array", "ab"}, {"size", "4"}}, {{"out array", "abbb"}}},
    {"Array*Resize", {{"array", "abcb"}, {"size", "1"}}, {{"out array", "a"}}},
    {"Array*Resize", {{"array", "abcb"}, {"size", "0"}}, {{"out array", ""}}},
    {"Array*Resize", {{"array", ""}, {"size", "2"}}, {{"out array", ".."}}},
    {"Array*Resize", {{"array", "abcb"}, {"size", "-1"}}, {{"out array", "."}}, negative, "abcb"},
    {"Array*Concat", {{"array0", "abcb"}, {"array1", "x"}}, {{"out array", "abcbx"}}},
    {"Array*Concat", {{"array0", ""}, {"array1", "x"}}, {{"out array", "x"}}},
    {"Array*Concat", {{"array0", "abc"}, {"array1", ""}}, {{"out array", "abc"}}},
    {"Array*Slice", {{"array", "abcb"}, {"first", "1"}, {"size", "2"}}, {{"out array", "bc"}}},
    {"Array*Slice", {{"array", "abcb"}, {"first", "2"}, {"size", "-1"}}, {{"out array", "cb"}}},
    {"Array*Slice", {{"array", "abcde"}, {"first", "2"}, {"size", "-1"}}, {{"out array", "cde"}}},
    {"Array*Slice", {{"array", "abcb"}, {"first", "2"}, {"size", "0"}}, {{"out array", ""}}},
    {"Array*Slice",
     {{"array", "abcb"}, {"first", "3"}, {"size", "2"}},
     {{"out array", "."}},
     "Input 'size' is out of range: 2",
     "abcb"},
    {"Array*Slice",
     {{"array", "abcb"}, {"first", "4"}, {"size", "0"}},
     {{"out array", "."}},
     "Input 'first' is out of range: 4",
     "abcb"},
    {"Array*Slice",
     {{"array", ""}, {"first", "0"}, {"size", "0"}},
     {{"out array", "."}},
     "Input 'first' is out of range: 0",
     ""},
    {"Array*Mix", {{"array0", "abcb"}, {"array1", "x"}, {"mask", "0110"}}, {{"out array", "axxb"}}},
    {"Array*Mix",
     {{"array0", "ab"}, {"array1", "xyz"}, {"mask", "01001"}},
     {{"out array", "aybbz"}}},
    {"Array*Mix", {{"array0", "ab"}, {"array1", "xy"}, {"mask", ""}}, {{"out array", ""}}},
    {"Array*Mix", {{"array0", ""}, {"array1", "xy"}, {"mask", "01"}}, {{"out array", ".y"}}},
    {"Array*Sort",
     {{"array", "abcb"}},
     {{"out array", "abbc"}, {"new to old", "0,1,3,2"}, {"old to new", "0,1,3,2"}}},
    {"Array*Sort",
     {{"array", "cab"}},
     {{"out array", "abc"}, {"new to old", "1,2,0"}, {"old to new", "2,0,1"}}},
    {"Array*Sort", {{"array", ""}}, {{"out array", ""}, {"new to old", ""}, {"old to new", ""}}},
    {"Array*Reverse", {{"array", "abcb"}}, {{"out array", "bcba"}}},
    {"Array*Reverse", {{"array", ""}}, {{"out array", ""}}},
    {"Array*FindElement",
     {{"array", "abcb"}, {"element", "bq"}, {"start index", "2"}},
     {{"index", "3,-1"}}},
    {"Array*FindElement",
     {{"array", "abcb"}, {"element", "b"}, {"start index", "9"}},
     {{"index", "-1"}}},
    {"Array*FindElement",
     {{"array", "abcb"}, {"element", "bca"}, {"start index", ""}},
     {{"index", "1,2,0"}}},
    {"Array*FindElement",
     {{"array", "ab.b"}, {"element", "."}, {"start index", "-1"}},
     {{"index", "-1"}}},
    {"Array*FindElement",
     {{"array", "ab.b"}, {"element", "."}, {"start index", "0"}},
     {{"index", "2"}}},
    {"Array*FindAllElementIndices",
     {{"array", "abcb"}, {"element", "b"}},
     {{"index", "1,3"}, {"mask", "0101"}}},
    {"Array*FindAllElementIndices",
     {{"array", "abcb"}, {"element", "cbbxyz"}},
     {{"index", "1,2,3"}, {"mask", "0111"}}},
    {"Array*FindAllElementIndices",
     {{"array", "abcb"}, {"element", ""}},
     {{"index", ""}, {"mask", "0000"}}},
    {"Array*InsertElement",
     {{"array", "abcb"}, {"element", "xy"}, {"index", "1"}},
     {{"out array", "axybcb"}}},
    {"Array*InsertElement",
     {{"array", "abcb"}, {"element", "xy"}, {"index", "-5"}},
     {{"out array", "xyabcb"}}},
    {"Array*InsertElement",
     {{"array", "abcb"}, {"element", "xy"}, {"index", "99"}},
     {{"out array", "abcbxy"}}},
    {"Array*PushElement", {{"array", "abcb"}, {"element", "xy"}}, {{"out array", "abcbxy"}}},
    {"Array*RemoveElement",
     {{"array", "abcb"}, {"element", "b"}},
     {{"out array", "ac"}, {"mask", "1010"}}},
    {"Array*RemoveElement",
     {{"array", "abcb"}, {"element", ""}},
     {{"out array", "abcb"}, {"mask", "1111"}}},
    {"Array*RemoveElement", {{"array", ""}, {"element", "b"}}, {{"out array", ""}, {"mask", ""}}},
    {"Array*RemoveElement",
     {{"array", ".a.b"}, {"element", "."}},
     {{"out array", "ab"}, {"mask", "0101"}}},
    {"Array*RemoveIndex",
     {{"array", "abcb"}, {"index", "1,1,7"}},
     {{"out array", "acb"}, {"mask", "1011"}},
     noRange + TM_String("7")},
    {"Array*RemoveIndex",
     {{"array", "abcb"}, {"index", "-1"}},
     {{"out array", "abcb"}, {"mask", "1111"}},
     noRange + TM_String("-1")},
    {"Array*RemoveRepeatedElements",
     {{"array", "abcb"}},
     {{"out array", "abc"}, {"new to old", "0,1,2,1"}, {"mask", "1110"}}},
    {"Array*RemoveRepeatedElements",
     {{"array", ".a..b"}},
     {{"out array", ".ab"}, {"new to old", "0,1,0,0,2"}, {"mask", "11001"}}},
};

bool holdsElements(const TM_String& pin) {
    static const std::set<TM_String> others = {"index", "size",       "first",     "start index",
                                               "mask",  "new to old", "old to new"};
    return !others.count(pin);
}

// One operation on one element type, as node "n".
class Operation {
public:
    Operation(const TM_String& pattern, const ArrayWord& word) : node_(add(pattern, "n", word)) {}

    Node& node() { return node_; }
    LogicNet& net() { return net_; }
    Attribute& pin(const char* name) { return net_.pin(TM_String("n.") + name); }

    /// A further operation of the element type.
    Node& add(const TM_String& pattern, const TM_String& name, const ArrayWord& word) {
        Node& made = net_.add(typeOf(pattern, word.word), name);
        if (*word.specialization) {
            net_.type(name + "." + made.inputAttributeAt(0)->name(), word.specialization);
        }
        return made;
    }
    void give(const Pins& inputs) {
        for (const auto& [name, text] : inputs) {
            Attribute& input = pin(name);
            if (holdsElements(name)) {
                putLetters(input, text);
            } else if (auto* bits = valueAs<BitArrayValue>(input.value())) {
                bits->resize(static_cast<uint32_t>(text.size()), false);
                for (uint32_t i = 0; i < text.size(); ++i) bits->setBit(i, text[i] == '1');
            } else {
                input.value()->fromString("[1] " + text);
                if (text.empty()) static_cast<Numeric&>(*input.value()).resize(0);
            }
            input.valueChanged();
        }
    }
    void connectInside(const char* in, const char* out) {
        ASSERT_TRUE(node_.connectInternalAttributes(&pin(in), &pin(out)));
    }
    void compute(const char* out) { net_.refresh(TM_String("n.") + out); }
    TM_String shown(const char* name) {
        const Attribute& output = pin(name);
        if (holdsElements(name)) return lettersIn(output);
        const TM_String text = output.currentValue()->asString();
        return text.substr(0, 4) == "[1] " ? text.substr(4) : text;
    }
    TM_String said() {
        const TM_String all = net_.messages("n");
        return all.empty() ? all : all.substr(0, all.size() - 1);
    }
    void expectOutputs(const Example& example, const char* array) {
        compute(example.outputs[0].first);
        EXPECT_EQ(said(), example.message.empty() ? "" : "[error] " + example.message);
        for (const auto& [name, text] : example.outputs) {
            compute(name);
            const TM_String& expected = array && name == example.outputs[0].first ? array : text;
            EXPECT_EQ(shown(name), holdsElements(name) ? lettersAs(pin(name), expected) : expected)
                << name;
        }
    }

private:
    LogicNet net_;
    Node& node_;
};

class ArrayExamples : public testing::TestWithParam<ArrayWord> {
protected:
    // The type is registered and has all pins of the example. Setting numbers by position has rules
    // of its own.
    bool isMeaningful(const Example& example) const {
        const TM_String type = typeOf(example.operation, GetParam().word);
        const auto& manager = tidemark::sluice::graph::SceneManager::instance();
        if (type == "SetArrayNumElement" || !manager.getNodeFactoryFromType(type)) return false;
        Operation operation(example.operation, GetParam());
        for (const Pins& pins : {example.inputs, example.outputs}) {
            for (const auto& [name, text] : pins) {
                if (!operation.node().findAttribute(name)) return false;
            }
        }
        return true;
    }
    template <typename Visit>
    void forEachExample(Visit visit) {
        for (const Example& example : examples) {
            if (!isMeaningful(example)) continue;
            TM_String what = example.operation;
            for (const auto& [name, text] : example.inputs) {
                what.append(" ").append(name).append("=").append(text);
            }
            SCOPED_TRACE(what);
            visit(example);
        }
    }
    // For every input that may be the output by an internal connection.
    template <typename Visit>
    void forEachInPlace(Visit visit) {
        forEachExample([&](const Example& example) {
            const char* const out = example.outputs[0].first;
            for (const auto& [in, text] : example.inputs) {
                Operation operation(example.operation, GetParam());
                const auto& allowed = operation.pin(in).allowedPassThroughs();
                if (std::find(allowed.begin(), allowed.end(), &operation.pin(out)) == allowed.end())
                    continue;
                SCOPED_TRACE(TM_String("in place of ") + in);
                operation.connectInside(in, out);
                operation.give(example.inputs);
                visit(operation, example, in, out);
            }
        });
    }

private:
    sluice_tests::TrialTypes trialTypes_;
};

TEST_P(ArrayExamples, BesideTheArray) {
    std::set<TM_String> operations;
    forEachExample([&](const Example& example) {
        operations.insert(example.operation);
        Operation operation(example.operation, GetParam());
        operation.give(example.inputs);
        operation.expectOutputs(example, nullptr);
        for (const auto& [name, text] : example.inputs) {
            if (holdsElements(name)) {
                EXPECT_EQ(lettersIn(operation.pin(name)), lettersAs(operation.pin(name), text))
                    << "the input is not touched";
            }
        }
    });
    const std::map<TM_String, std::size_t> expected = {{"Num", 14},   {"String", 17}, {"Bit", 6},
                                                       {"Curve", 16}, {"Key", 16},    {"Tag", 16},
                                                       {"Anchor", 16}};
    EXPECT_EQ(operations.size(), expected.at(GetParam().word));
}

TEST_P(ArrayExamples, InPlace) {
    int count = 0;
    forEachInPlace(
        [&](Operation& operation, const Example& example, const char* in, const char* out) {
            ++count;
            operation.expectOutputs(example, example.inPlace);
            EXPECT_EQ(operation.pin(in).currentValue(), operation.pin(out).currentValue());
        });
    EXPECT_GT(count, 10);
}

// Where threads share the array its elements stay where they are: what does not fit is refused as a
// whole.
TEST_P(ArrayExamples, InPlaceWhereElementsMayNotMove) {
    int done = 0;
    int refused = 0;
    for (const uint32_t more : {0u, 100u}) {
        forEachInPlace([&](Operation& operation, const Example& example, const char* in,
                           const char* out) {
            Attribute& array = operation.pin(in);
            if (more > 0) sluice_tests::makeRoom(array, more);
            array.value()->pin(true);
            const auto before = roomOf(array);
            const TM_String held = lettersIn(array);
            const TM_String& text = example.inPlace ? example.inPlace : example.outputs[0].second;
            if (text.size() <= before.capacity) {
                EXPECT_NO_THROW(operation.node().update(&operation.pin(out)));
                EXPECT_EQ(operation.shown(out), lettersAs(array, text));
                ++done;
            } else {
                EXPECT_THROW(operation.node().update(&operation.pin(out)), tidemark::PinnedArray);
                EXPECT_EQ(lettersIn(array), held);
                ++refused;
            }
            EXPECT_EQ(roomOf(array).place, before.place);
            array.value()->pin(false);
        });
    }
    EXPECT_GT(done, 20);
    if (GetParam().word != TM_String("Bit")) {
        EXPECT_GT(refused, 3);
    }
}

// An update that refuses its input marks nothing clean, any other all that it wrote.
TEST_P(ArrayExamples, RefusedOutputsStayDirty) {
    forEachExample([&](const Example& example) {
        const bool isRefused = example.message.rfind("Input ", 0) == 0;
        Operation operation(example.operation, GetParam());
        const TM_String type = operation.node().className();
        // These two are of another family.
        if (type == "ArrayBitResize" || type == "ArrayBitReverse") return;
        operation.give(example.inputs);
        operation.node().doUpdate(&operation.pin(example.outputs[0].first));
        for (const auto& [name, text] : example.outputs) {
            EXPECT_EQ(operation.pin(name).isClean(), !isRefused) << name;
        }
    });
}

// Masks, indices and maps cost something, so only who wants them gets them. What works in place
// cannot be done again.
TEST_P(ArrayExamples, UnwantedOutputsAreComputedInPlaceOnly) {
    int left = 0;
    const auto leaveOut = [&](Operation& operation, const Example& example, bool computed) {
        for (std::size_t i = 1; i < example.outputs.size(); ++i) {
            operation.pin(example.outputs[i].first).setToBeEvaluated(false);
        }
        operation.compute(example.outputs[0].first);
        for (std::size_t i = 1; i < example.outputs.size(); ++i) {
            const auto& [name, text] = example.outputs[i];
            EXPECT_EQ(operation.pin(name).isClean(), computed) << name;
            EXPECT_EQ(operation.shown(name), computed ? text : "0") << name;
            ++left;
            if (computed) continue;
            operation.compute(name);
            EXPECT_EQ(operation.shown(name), text) << name;
        }
    };
    forEachExample([&](const Example& example) {
        Operation operation(example.operation, GetParam());
        operation.give(example.inputs);
        leaveOut(operation, example, false);
    });
    forEachInPlace([&](Operation& operation, const Example& example, const char*, const char*) {
        leaveOut(operation, example, true);
    });
    EXPECT_EQ(left > 0, GetParam().word != TM_String("Bit"));
}

// Several inputs from one source, S: a, b, c.
struct SameArrays {
    const char* operation;
    std::vector<const char*> fromSource;
    Pins inputs;
    Pins outputs;
};
const std::vector<SameArrays> sameArrays = {
    {"SetArray*Element", {"array", "element"}, {{"index", "2,0,1"}}, {{"out array", "bca"}}},
    {"Array*Concat", {"array0", "array1"}, {}, {{"out array", "abcabc"}}},
    {"Array*Mix", {"array0", "array1"}, {{"mask", "01011"}}, {{"out array", "abccc"}}},
    {"Array*Mix", {"array0", "array1"}, {{"mask", "1"}}, {{"out array", "a"}}},
    {"Array*FindElement", {"array", "element"}, {}, {{"index", "0,1,2"}}},
    {"Array*FindAllElementIndices",
     {"array", "element"},
     {},
     {{"index", "0,1,2"}, {"mask", "111"}}},
    {"Array*InsertElement", {"array", "element"}, {{"index", "1"}}, {{"out array", "aabcbc"}}},
    {"Array*PushElement", {"array", "element"}, {}, {{"out array", "abcabc"}}},
    {"Array*RemoveElement", {"array", "element"}, {}, {{"out array", ""}, {"mask", "000"}}},
};

TEST_P(ArrayExamples, ArraysThatAreTheSame) {
    const ArrayWord& word = GetParam();
    for (const SameArrays& same : sameArrays) {
        const Example example{same.operation, same.inputs, same.outputs};
        Example allPins = example;
        for (const char* pin : same.fromSource) allPins.inputs.emplace_back(pin, "");
        if (!isMeaningful(allPins)) continue;
        std::vector<const char*> places = same.fromSource; // and null: beside them
        if (!holdsElements(same.outputs[0].first)) places.clear();
        places.push_back(nullptr);
        for (const char* place : places) {
            SCOPED_TRACE(TM_String(same.operation) + " in place of " + (place ? place : "none"));
            Operation operation(same.operation, word);
            const char* const out = same.outputs[0].first;
            if (place) {
                const auto& allowed = operation.pin(place).allowedPassThroughs();
                if (std::find(allowed.begin(), allowed.end(), &operation.pin(out)) == allowed.end())
                    continue;
                operation.connectInside(place, out);
            }
            operation.add("Array*Reverse", "s", word);
            putLetters(operation.net().pin("s.array"), "cba");
            for (const char* pin : same.fromSource) {
                ASSERT_TRUE(operation.net().link("s.out array", TM_String("n.") + pin));
            }
            operation.give(same.inputs);
            operation.expectOutputs(example, nullptr);
            Attribute& source = operation.net().pin("s.out array");
            EXPECT_EQ(lettersIn(source), lettersAs(source, place ? same.outputs[0].second : "abc"))
                << "who works in place changes what the source's other readers see";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryElement, ArrayExamples, testing::ValuesIn(arrayWords()),
                         [](const auto& each) {
                             return TM_String(each.param.word) + each.param.specialization;
                         });

} // namespace

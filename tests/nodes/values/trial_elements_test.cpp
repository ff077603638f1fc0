// SPDX-License-Identifier: Apache-2.0
// What an element type gets for the few lines that it takes, beside the array operations, which
// arrays/array_examples_test.cpp holds against those of every type.
#include <gtest/gtest.h>

#include <fstream>

#include "nodes/values/declarations.h"
#include "nodes/values/globals/common_storage.h"
#include "nodes/values/logic_net.h"
#include "nodes/values/pointed_element.h"
#include "nodes/values/stored_element.h"
#include "nodes/values/trial_types.h"

namespace {

using namespace weft;
using sluice_tests::declared;
using sluice_tests::LogicNet;
using sluice_tests::TagAttribute;
using sluice_tests::TagValue;
using sluice_tests::TrialTypes;
using tidemark::TM_String;

int linesOfCode(const TM_String& file) {
    std::ifstream in(TM_String(SLUICE_TESTS_DIR "/nodes/values/") + file);
    EXPECT_TRUE(in) << file;
    int count = 0;
    for (std::string line; std::getline(in, line);) {
        const std::size_t first = line.find_first_not_of(' ');
        if (first != std::string::npos && line.compare(first, 2, "//") != 0) ++count;
    }
    return count;
}

class TrialElements : public testing::Test {
protected:
    TrialElements() { CommonStorage::instance().removeAll(); }
    ~TrialElements() override { CommonStorage::instance().removeAll(); }

    static void putTags(LogicNet& net, const TM_String& pin,
                        std::initializer_list<const char*> words) {
        TagValue& value = static_cast<TagValue&>(*net.pin(pin).value());
        value.setSize(0);
        for (const char* word : words) value.append({word});
        net.pin(pin).valueChanged();
    }
    static TM_String words(LogicNet& net, const TM_String& pin) {
        net.refresh(pin);
        TM_String all;
        for (const auto& tag : net.as<TagAttribute>(pin).tags().values()) all += tag.word + ";";
        return all;
    }

    TrialTypes types_;
};

TEST_F(TrialElements, JoinInUnderSixtyLines) {
    for (const TM_String element : {"stored_element", "pointed_element"}) {
        const int lines = linesOfCode(element + ".h") + linesOfCode(element + ".cpp");
        EXPECT_GT(lines, 10);
        EXPECT_LT(lines, 60);
    }
}

TEST_F(TrialElements, OperationsHaveTheirPins) {
    EXPECT_EQ(declared("ArrayTagRemoveElement"), "ArrayTagRemoveElement\n"
                                                 "in array TagAttribute \"Tag\" = \n"
                                                 "in element TagAttribute \"Tag\" = \n"
                                                 "out out array TagAttribute \"Tag\"\n"
                                                 "out mask BitArrayAttribute \"Bit\"\n");
    for (const char* type : {"GetArrayTagElement", "SetArrayTagElement", "ArrayTagMix",
                             "ArrayTagRemoveRepeatedElements", "TagCopy", "SetTagGlobalVariable",
                             "GetTagGlobalVariable"}) {
        EXPECT_EQ(sluice_tests::missingTexts(type), "") << type;
    }
}

TEST_F(TrialElements, StoredOnesAreCopied) {
    LogicNet net;
    net.add("ArrayTagReverse", "s");
    net.add("TagCopy", "c");
    ASSERT_TRUE(net.link("s.out array", "c.in"));
    putTags(net, "s.array", {"one", "two"});
    EXPECT_EQ(words(net, "c.out"), "two;one;");
    EXPECT_NE(net.pin("c.out").currentValue(), net.pin("s.out array").currentValue());
    putTags(net, "s.array", {});
    EXPECT_EQ(words(net, "c.out"), "");
}

TEST_F(TrialElements, StoredOnesAreGlobalVariables) {
    LogicNet net;
    LogicNet other;
    net.add("SetTagGlobalVariable", "s");
    other.add("GetTagGlobalVariable", "g");
    net.strings("s.name", {"v"});
    other.strings("g.name", {"v"});
    putTags(net, "s.in", {"one", "two"});
    net.refresh("s.through");
    EXPECT_EQ(CommonStorage::instance().names("Tag").size(), 1u);
    EXPECT_EQ(words(other, "g.out"), "one;two;");
    putTags(net, "s.in", {"three"});
    EXPECT_EQ(words(other, "g.out"), "one;two;") << "a copy was stored";
    net.bits("s.store copy", {false});
    net.refresh("s.through");
    other.pin("g.out").markDirty(true);
    EXPECT_EQ(words(other, "g.out"), "three;");
}

TEST_F(TrialElements, OtherValuesReadAsOneNeutralElement) {
    LogicNet net;
    net.add("ArrayTagConcat", "n");
    net.add("Real", "r");
    putTags(net, "n.array1", {"x"});
    net.pin("r.real").connectTo(&net.pin("n.array0"), nullptr);
    EXPECT_EQ(words(net, "n.out array"), "none;x;");
}

// Anchors.

void put(LogicNet& net, const TM_String& pin, std::initializer_list<Anchor*> anchors) {
    PointerValueBase& value = net.as<AnchorAttribute>(pin).ownPointers();
    value.setSize(0);
    for (Anchor* anchor : anchors) value.append(anchor);
    net.pin(pin).valueChanged();
}

Anchor* at(LogicNet& net, const TM_String& pin, uint32_t index) {
    return pointerAt<Anchor>(net.as<AnchorAttribute>(pin), index);
}

TEST_F(TrialElements, PointersAreFoundByIdentity) {
    Anchor a{1};
    Anchor equal{1};
    LogicNet net;
    net.add("ArrayAnchorFindElement", "n");
    put(net, "n.array", {&a, nullptr});
    put(net, "n.element", {&equal, &a, nullptr});
    EXPECT_EQ(net.text("n.index"), "[1] -1,0,1");
}

TEST_F(TrialElements, UnsetPointersKeepWhatTheOutputHeld) {
    Anchor a{1};
    Anchor b{2};
    LogicNet net;
    net.add("GetArrayAnchorElement", "n");
    put(net, "n.array", {&a, &b});
    net.numbers<int32_t>("n.index", {1, 1});
    net.refresh("n.result");
    net.numbers<int32_t>("n.index", {-1, 0, 9});
    net.refresh("n.result");
    EXPECT_EQ(at(net, "n.result", 0), &b);
    EXPECT_EQ(at(net, "n.result", 1), &a);
    EXPECT_EQ(at(net, "n.result", 2), nullptr);
}

TEST_F(TrialElements, ObjectsBehindPointersAreCopied) {
    Anchor a{1.5f};
    LogicNet net;
    net.add("ArrayAnchorReverse", "s");
    net.add("AnchorCopy", "c");
    ASSERT_TRUE(net.link("s.out array", "c.in"));
    put(net, "s.array", {nullptr, &a});
    net.refresh("c.out");
    ASSERT_NE(at(net, "c.out", 0), nullptr);
    EXPECT_NE(at(net, "c.out", 0), &a);
    EXPECT_EQ(at(net, "c.out", 0)->depth, 1.5f);
    EXPECT_EQ(at(net, "c.out", 1), nullptr);
}

TEST_F(TrialElements, PointersAreGlobalVariables) {
    Anchor a{1.5f};
    LogicNet net;
    LogicNet other;
    net.add("SetAnchorGlobalVariable", "s");
    other.add("GetAnchorGlobalVariable", "g");
    other.add("ArrayAnchorPushElement", "p");
    ASSERT_TRUE(other.link("g.out", "p.array"));
    net.strings("s.name", {"v"});
    net.bits("s.store copy", {false});
    other.strings("g.name", {"v"});
    put(net, "s.in", {&a});
    net.refresh("s.through");
    other.refresh("p.out array");
    EXPECT_EQ(at(other, "p.out array", 0), &a);
    EXPECT_EQ(net.messages("s") + other.messages("g"), "");
}

} // namespace

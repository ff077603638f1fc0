// SPDX-License-Identifier: Apache-2.0
// Bit nodes on what no graph should hold: values of other classes, missing targets, sizes beyond
// the limits, and interrupts.
#include <gtest/gtest.h>

#include "core/exceptions.h"
#include "core/limits.h"
#include "nodes/values/bits/bit_node.h"

namespace {

using namespace weft;
using sluice_tests::BitNode;
using tidemark::TM_String;
namespace limits = tidemark::limits;

const std::vector<TM_String> types = {
    "ArrayBitConstant",
    "ArrayBitBuildByIndex",
    "ArrayBitFilterByMask",
    "GetArrayBitElement",
    "SetArrayBitElement",
    "ArrayBitRandom",
    "ArrayBitResize",
    "ArrayBitReverse",
    "ArrayBitRemoveIndex",
    "ArrayBitSetAll",
    "ArrayBitInfo",
    "ArrayBitAllTrue",
    "ArrayBitAllFalse",
    "ArrayBitAnyTrue",
    "ArrayBitAnyFalse",
    "ArrayBitCountTrue",
    "ArrayBitCountFalse",
    "ArrayBitFirstTrue",
    "ArrayBitFirstFalse",
    "ArrayBitLastTrue",
    "ArrayBitLastFalse",
    "IntegerBitValue",
    "IntegerSetBitValue",
    "BitOperation",
    "BitAnd",
    "BitOr",
    "BitNegate",
    "BitXor",
    "BitNor",
    "BitXnor",
    "BitNand",
    "BitImplication",
    "BitEqual",
    "ArrayBitToString",
    "ArrayBitFromString",
    "ArrayBitToInteger",
    "ArrayBitToInteger64",
    "IntegerToArrayBit",
    "ArrayIndexBuildFromMask",
};

void updateAll(Node& node) {
    for (Attribute* out : node.refOutputAttributes()) node.doUpdate(out);
}

class OneElementLimit {
public:
    explicit OneElementLimit(uint64_t elements) { limits::set({.maxElements = elements}); }
    ~OneElementLimit() { limits::set({}); }
};

TEST(BitFaults, ValuesOfAnotherClassReadAsDefaults) {
    for (const TM_String& type : types) {
        BitNode n(type);
        Node& node = n.node("n");
        for (Attribute* in : node.refInputAttributes()) {
            const bool holdsBits = in->value()->isKind(BitArrayValue::kind);
            Retained<Value> other(holdsBits ? static_cast<Value*>(new StringValue(&n.manager()))
                                            : new BitArrayValue(&n.manager()));
            in->setValue(other.get());
        }
        EXPECT_NO_THROW(updateAll(node)) << type;
    }
}

TEST(BitFaults, MissingValuesReadAsDefaults) {
    for (const TM_String& type : types) {
        for (const bool isTargetMissing : {false, true}) {
            BitNode n(type);
            Node& node = n.node("n");
            if (type.find("Integer") == 0) n.type("n.integer", "Integer");
            for (Attribute* in : node.refInputAttributes()) in->setValue(nullptr);
            for (Attribute* out : node.refOutputAttributes()) {
                if (isTargetMissing && !out->isPurePassThrough()) out->setValue(nullptr);
            }
            EXPECT_NO_THROW(updateAll(node)) << type;
        }
    }
}

TEST(BitFaults, TargetsOfAnotherClassStayAsTheyAre) {
    for (const TM_String& type : types) {
        BitNode n(type);
        Node& node = n.node("n");
        Retained<Value> other(new Enum(&n.manager()));
        for (Attribute* out : node.refOutputAttributes()) {
            if (!out->isPurePassThrough()) out->setValue(other.get());
        }
        if (type.find("Integer") == 0) n.type("n.integer", "Integer");
        EXPECT_NO_THROW(updateAll(node)) << type;
        EXPECT_EQ(1u, other->size()) << type;
    }
}

TEST(BitFaults, EmptyInputsAreHarmless) {
    for (const TM_String& type : types) {
        BitNode n(type);
        Node& node = n.node("n");
        if (type.find("Integer") == 0) n.type("n.integer", "Integer64");
        for (Attribute* in : node.refInputAttributes()) {
            if (auto* bits = valueAs<BitArrayValue>(in->value())) bits->purge();
            if (auto* number = valueAs<Numeric>(in->value())) number->resize(0);
            if (auto* strings = valueAs<StringValue>(in->value())) strings->setSize(0);
            if (auto* choice = valueAs<Enum>(in->value())) choice->refKeys().clear();
        }
        EXPECT_NO_THROW(updateAll(node)) << type;
    }
}

TEST(BitFaults, SizesBeyondTheLimitAreRefused) {
    for (const TM_String type : {"ArrayBitConstant", "ArrayBitResize", "ArrayBitRandom"}) {
        BitNode n(type);
        n.integer("size", 2147483647);
        const OneElementLimit limit(1'000'000);
        EXPECT_THROW(updateAll(n.node("n")), std::bad_alloc) << type;
        n.integer("size", 5);
        EXPECT_NO_THROW(updateAll(n.node("n"))) << type;
    }
    BitNode mask("ArrayBitBuildByIndex");
    mask.integer("index array", 2147483647);
    const OneElementLimit limit(1'000'000);
    EXPECT_THROW(updateAll(mask.node("n")), std::bad_alloc);
}

TEST(BitFaults, WhatWasWrittenIsClean) {
    for (const TM_String& type : types) {
        BitNode n(type);
        if (type.find("Integer") == 0) n.type("n.integer", "Integer");
        for (Attribute* out : n.node("n").refOutputAttributes()) {
            n.node("n").doUpdate(out);
            EXPECT_EQ(!out->isPurePassThrough(), out->isClean()) << type << " " << out->name();
        }
        EXPECT_EQ("", n.messages()) << type;
    }
}

TEST(BitFaults, InterruptedWorkInPlaceKeepsTheElements) {
    constexpr uint32_t bitCount = 70'000'000;
    for (const TM_String type : {"ArrayBitReverse", "ArrayBitFilterByMask"}) {
        BitNode n(type, "array", "out array");
        n.as<BitArrayAttribute>("b.in").ownBits().resize(bitCount, true);
        if (type == "ArrayBitFilterByMask") {
            n.as<BitArrayAttribute>("n.mask").ownBits().resize(bitCount, true);
        }
        n.refresh("n.array");
        n.manager().setEvaluating(true);
        n.manager().requestInterrupt();
        EXPECT_THROW(n.node("n").update(&n.pin("n.out array")), tidemark::TM_Exception) << type;
        n.manager().clearInterrupt();
        n.manager().setEvaluating(false);
        EXPECT_EQ(bitCount, n.pin("b.bit").value()->size()) << type;
    }
}

TEST(BitFaults, MessagesAnswerInterrupts) {
    const std::vector<std::pair<TM_String, TM_String>> reporting = {
        {"GetArrayBitElement", "out"},
        {"SetArrayBitElement", "out array"},
        {"ArrayBitRemoveIndex", "out array"},
        {"ArrayBitBuildByIndex", "mask"},
    };
    for (const auto& [type, out] : reporting) {
        BitNode n(type);
        n.integers(type == "ArrayBitBuildByIndex" ? "index array" : "index", {-1, -2, -3});
        n.manager().setEvaluating(true);
        n.manager().requestInterrupt();
        EXPECT_THROW(n.node("n").update(&n.pin("n." + out)), tidemark::TM_Exception) << type;
        n.manager().clearInterrupt();
        n.manager().setEvaluating(false);
        EXPECT_EQ("[error] index is out of range: -1\n", n.messages()) << type;
        EXPECT_EQ(0u, n.pin("n." + out).value()->size()) << type;
    }
}

// As kernels have them, whose threads share what lies outside.
TEST(BitFaults, OutputsThatMayNotMoveAreWrittenWhereTheyAre) {
    for (const TM_String& type : types) {
        BitNode n(type);
        if (type.find("Integer") == 0) n.type("n.integer", "Integer");
        for (Attribute* out : n.node("n").refOutputAttributes()) {
            if (out->isPurePassThrough()) continue;
            n.node("n").doUpdate(out);
            const TM_String text = out->value()->asString();
            out->value()->pin(true);
            EXPECT_NO_THROW(n.node("n").doUpdate(out)) << type << " " << out->name();
            EXPECT_EQ(text, out->value()->asString()) << type << " " << out->name();
            out->value()->pin(false);
        }
    }
}

// Long enough that each of them asks for interrupts, whatever it counts.
TEST(BitFaults, LongWorkAnswersInterrupts) {
    constexpr uint32_t bitCount = 70'000'000;
    const std::vector<std::pair<TM_String, TM_String>> longWork = {
        {"BitAnd", "result"},
        {"BitNegate", "result"},
        {"ArrayBitInfo", "negated"},
        {"ArrayBitFilterByMask", "out array"},
        {"ArrayBitReverse", "out array"},
        {"ArrayBitRemoveIndex", "out array"},
        {"ArrayBitRandom", "array"},
        {"ArrayIndexBuildFromMask", "index"},
        {"ArrayBitToString", "string"},
        {"ArrayBitFromString", "bit array"},
        {"GetArrayBitElement", "out"},
        {"SetArrayBitElement", "out array"},
        {"ArrayBitBuildByIndex", "mask"},
        {"IntegerBitValue", "bit"},
        {"IntegerSetBitValue", "result"},
    };
    for (const auto& [type, out] : longWork) {
        BitNode n(type);
        Node& node = n.node("n");
        if (type.find("Integer") == 0) n.type("n.integer", "Integer");
        for (Attribute* in : node.refInputAttributes()) {
            if (auto* bits = valueAs<BitArrayValue>(in->value())) bits->resize(bitCount, true);
            if (auto* text = valueAs<StringValue>(in->value())) {
                text->setValue(TM_String(bitCount, '1'));
            }
            // The size of the random array; elsewhere indices, integers and a first position.
            const bool isSize = in->name() == "size" && type == "ArrayBitRandom";
            auto* number = valueAs<Numeric>(in->value());
            if (isSize) number->setValue(static_cast<int32_t>(bitCount));
            if (number && !isSize && in->elementCountRule() != 1) number->resize(2'000'000);
        }
        n.manager().setEvaluating(true);
        n.manager().requestInterrupt();
        Attribute& written = n.pin("n." + out);
        EXPECT_THROW(node.update(&written), tidemark::TM_Exception) << type;
        n.manager().clearInterrupt();
        // Made aside, so that nothing was written yet.
        const uint32_t left = type == "IntegerSetBitValue" ? 1 : 0;
        EXPECT_EQ(left, written.value()->size()) << type << " shows what was not computed";
        EXPECT_FALSE(written.isClean()) << type;
        EXPECT_NO_THROW(node.update(&written)) << type;
        EXPECT_GT(written.value()->size(), 0u) << type;
        n.manager().setEvaluating(false);
    }
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Long work on arrays answers interrupts, and leaves a node that can be used.
#include <gtest/gtest.h>

#include "core/exceptions.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;

// More than is done between two questions for an interrupt.
constexpr uint32_t count = 3'000'000;

// Each output in turn, in a run that was interrupted before it began.
void expectAnswers(LogicNet& net, const TM_String& what) {
    Node& node = net.node("n");
    net.manager().setEvaluating(true);
    for (Attribute* output : node.refOutputAttributes()) {
        net.manager().requestInterrupt();
        EXPECT_THROW(node.update(output), tidemark::TM_Exception) << what << " " << output->name();
        net.manager().clearInterrupt();
        EXPECT_NO_THROW(node.update(output)) << what << " " << output->name();
    }
    net.manager().setEvaluating(false);
}

void fill(Attribute& pin) {
    if (auto* bits = valueAs<BitArrayValue>(pin.value())) {
        bits->resize(count, true);
    } else if (auto* strings = valueAs<StringValue>(pin.value())) {
        strings->setSize(pin.name() == "constant" ? 1 : count);
    } else if (auto* number = valueAs<Numeric>(pin.value())) {
        if (pin.name() == "size") {
            number->setValue<int32_t>(count);
        } else if (pin.name() == "first" || pin.elementCountRule() == 1) {
            number->setValue<int32_t>(0);
        } else {
            number->resize(count);
        }
    }
}

TEST(ArrayInterrupts, EveryOperationAnswers) {
    const char* const operations[] = {"Array*FilterByMask",
                                      "Array*Resize",
                                      "Array*Concat",
                                      "Array*Slice",
                                      "Array*Mix",
                                      "Array*Sort",
                                      "Array*Reverse",
                                      "Array*FindElement",
                                      "Array*FindAllElementIndices",
                                      "Array*InsertElement",
                                      "Array*PushElement",
                                      "Array*RemoveElement",
                                      "Array*RemoveIndex",
                                      "Array*RemoveRepeatedElements"};
    for (const TM_String word : {"Num", "String"}) {
        for (TM_String type : operations) {
            type.replace(type.find('*'), 1, word);
            LogicNet net;
            Node& node = net.add(type, "n");
            Attribute& first = *node.inputAttributeAt(0);
            if (word == "Num") net.type("n." + first.name(), "Real");
            for (Attribute* input : node.refInputAttributes()) fill(*input);
            expectAnswers(net, type);
        }
    }
}

TEST(ArrayInterrupts, StringsByPositionAnswer) {
    for (const TM_String type :
         {"GetArrayStringElement", "SetArrayStringElement", "ArrayStringConstant"}) {
        LogicNet net;
        Node& node = net.add(type, "n");
        for (Attribute* input : node.refInputAttributes()) fill(*input);
        expectAnswers(net, type);
    }
}

TEST(ArrayInterrupts, MessagesAnswer) {
    for (const TM_String type : {"GetArrayStringElement", "SetArrayStringElement",
                                 "ArrayStringRemoveIndex", "ArrayNumRemoveIndex"}) {
        LogicNet net;
        Node& node = net.add(type, "n");
        if (type == "ArrayNumRemoveIndex") net.type("n.array", "Real");
        if (type == "SetArrayStringElement") net.strings("n.element", {"x", "y", "z"});
        net.numbers<int32_t>("n.index", {-1, -2, -3});
        net.manager().setEvaluating(true);
        net.manager().requestInterrupt();
        EXPECT_THROW(node.update(node.outputAttributeAt(0)), tidemark::TM_Exception) << type;
        net.manager().clearInterrupt();
        net.manager().setEvaluating(false);
        EXPECT_EQ("[error] index is out of range: -1\n", net.messages("n")) << type;
    }
}

TEST(ArrayInterrupts, FormulasAnswerOnAnyThread) {
    for (const int threads : {1, 4}) {
        LogicNet net;
        net.add("Sin", "n").setNumberOfThreads(threads);
        fill(net.pin("n.in"));
        expectAnswers(net, "Sin");
    }
}

// What was not computed is not shown.
TEST(ArrayInterrupts, InterruptedResultIsEmpty) {
    LogicNet net;
    net.add("Sin", "n").setNumberOfThreads(1);
    fill(net.pin("n.in"));
    net.manager().setEvaluating(true);
    net.manager().requestInterrupt();
    EXPECT_THROW(net.node("n").update(&net.pin("n.result")), tidemark::TM_Exception);
    net.manager().clearInterrupt();
    net.manager().setEvaluating(false);
    const Numeric& result = net.as<NumericAttribute>("n.result").ownNumeric();
    EXPECT_EQ(result.size(), 0u);
    EXPECT_EQ(result.values<float>().size(), 0u);
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Long work of the nodes over numeric arrays: on threads, and ended by an interrupt.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "bridge/host.h"
#include "core/exceptions.h"
#include "nodes/values/element_loop.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;

// More than is done between two questions for an interrupt.
constexpr uint32_t count = 2'000'000;

void lengthen(LogicNet& net, std::initializer_list<const char*> pins) {
    for (const char* pin : pins) {
        net.as<NumericAttribute>(pin).ownNumeric().resize(count);
        net.pin(pin).valueChanged();
    }
}

// A node called "n", an input that chooses the type of all, and what makes it work long.
struct Row {
    const char* type;
    const char* typedPin;
    std::function<void(LogicNet&)> lengthen;
};

const std::vector<Row> makers = {
    {"ArrayNumRandom", "n.min",
     [](LogicNet& net) { net.numbers<int32_t>("n.size", {int32_t(count)}); }},
    {"ArrayNumConstant", "n.constant",
     [](LogicNet& net) { net.numbers<int32_t>("n.size", {int32_t(count)}); }},
    {"ArrayNumRange", "n.start",
     [](LogicNet& net) { net.numbers<int32_t>("n.steps", {int32_t(count)}); }},
    {"ArrayNumIndices", "n.array", [](LogicNet& net) { lengthen(net, {"n.array"}); }},
    {"GetArrayNumElement", "n.array", [](LogicNet& net) { lengthen(net, {"n.index"}); }},
    {"SetArrayNumElement", "n.array",
     [](LogicNet& net) {
         lengthen(net, {"n.array", "n.index"});
     }},
    {"GetArrayNum2DElement", "n.array", [](LogicNet& net) { lengthen(net, {"n.x"}); }},
    {"GetArrayNum2DElementByUV", "n.array", [](LogicNet& net) { lengthen(net, {"n.y"}); }},
    {"NumInterpolateLinear", "n.first", [](LogicNet& net) { lengthen(net, {"n.blend"}); }},
    {"NumInterpolateCubic", "n.array", [](LogicNet& net) { lengthen(net, {"n.t"}); }},
    {"NumInterpolateHermite", "n.array", [](LogicNet& net) { lengthen(net, {"n.t"}); }},
    {"NumInterpolateBezier", "n.array", [](LogicNet& net) { lengthen(net, {"n.t"}); }},
};

const std::vector<Row> reductions = {
    {"ArrayNumSum", "n.array", [](LogicNet& net) { lengthen(net, {"n.array"}); }},
    {"ArrayNumAverage", "n.array", [](LogicNet& net) { lengthen(net, {"n.array"}); }},
    {"ArrayNumMinMax", "n.array", [](LogicNet& net) { lengthen(net, {"n.array"}); }},
};

Node& makeNode(LogicNet& net, const Row& row) {
    Node& node = net.add(row.type, "n");
    node.setNumberOfThreads(1);
    net.type(row.typedPin, "Real");
    return node;
}

// A run that is interrupted before it begins.
void updateInterrupted(LogicNet& net, Attribute* output) {
    net.manager().setEvaluating(true);
    net.manager().requestInterrupt();
    EXPECT_THROW(net.node("n").update(output), tidemark::TM_Exception) << output->name();
    net.manager().clearInterrupt();
    net.manager().setEvaluating(false);
}

TEST(NumLongWork, InterruptedArraysAreEmpty) {
    for (const Row& row : makers) {
        SCOPED_TRACE(row.type);
        LogicNet net;
        Node& node = makeNode(net, row);
        for (Attribute* output : node.refOutputAttributes()) output->computeNow();
        row.lengthen(net);
        for (Attribute* output : node.refOutputAttributes()) {
            updateInterrupted(net, output);
            for (const Attribute* each : node.refOutputAttributes()) {
                EXPECT_EQ(0u, each->value()->size()) << each->name();
            }
            EXPECT_NO_THROW(node.update(output));
            EXPECT_EQ(count, output->value()->size());
        }
    }
}

TEST(NumLongWork, InterruptedReductionsKeepTheirResult) {
    for (const Row& row : reductions) {
        SCOPED_TRACE(row.type);
        LogicNet net;
        Node& node = makeNode(net, row);
        net.numbers<float>("n.array", {3, 4});
        for (Attribute* output : node.refOutputAttributes()) {
            output->computeNow();
            const TM_String before = output->value()->asString();
            row.lengthen(net);
            updateInterrupted(net, output);
            EXPECT_EQ(before, output->value()->asString());
            net.numbers<float>("n.array", {3, 4});
        }
    }
}

// In place the array belongs to another node: what was written so far stays.
TEST(NumLongWork, InterruptedInPlaceTheArrayStays) {
    LogicNet net;
    net.add("ArrayNumConstant", "source");
    net.add("SetArrayNumElement", "n");
    net.type("source.constant", "Real");
    net.numbers<int32_t>("source.size", {7});
    ASSERT_TRUE(net.link("source.array", "n.array"));
    net.pin("n.array").addPassThrough(&net.pin("n.out array"));
    net.refresh("n.array");
    lengthen(net, {"n.index"});
    updateInterrupted(net, &net.pin("n.out array"));
    EXPECT_EQ(7u, net.pin("source.array").value()->size());
}

// An application that has enough after one message.
struct ImpatientHost : tidemark::bridge::Host {
    explicit ImpatientHost(NetworkManager& network) : manager(network) {
        tidemark::bridge::setHost(this);
    }
    ~ImpatientHost() override { tidemark::bridge::setHost(nullptr); }
    void post(int, const Array<TM_String>&) override {
        ++posts;
        manager.requestInterrupt();
    }
    NetworkManager& manager;
    int posts = 0;
};

TEST(NumLongWork, InterruptsAreAnsweredBetweenMessages) {
    for (const char* type : {"GetArrayNum2DElement", "Matrix4Inverse"}) {
        LogicNet net;
        Node& node = net.add(type, "n");
        node.setMessagePanelVerbosityLevel(tidemark::graph::messageLevelWarning);
        if (type == TM_String("Matrix4Inverse")) {
            const Matrix4<float> singular(0.0f);
            net.numbers<Matrix4<float>>("n.matrix", {singular, singular, singular});
        } else {
            net.type("n.array", "Real");
            net.numbers<int32_t>("n.x", {1, 2, 3});
        }
        ImpatientHost host(net.manager());
        net.manager().setEvaluating(true);
        EXPECT_THROW(node.update(node.outputAttributeAt(0)), tidemark::TM_Exception) << type;
        net.manager().setEvaluating(false);
        EXPECT_EQ(1, host.posts) << type;
    }
}

// While it lives, every record has a thread of its own.
struct RealThreads {
    RealThreads() { tidemark::sluice::graph::setThreadForEveryRecord(true); }
    ~RealThreads() { tidemark::sluice::graph::setThreadForEveryRecord(false); }
};

TEST(NumLongWork, PositionsOnThreadsGiveTheSameElements) {
    const auto made = [](const TM_String& type, const TM_String& pin, const auto& places,
                         int threads) {
        LogicNet net;
        net.add(type, "n").setNumberOfThreads(threads);
        net.type("n.array", "Real");
        net.numbers<float>("n.array", {0, 3, -1, 8, 8, 2, 4});
        net.as<NumericAttribute>("n." + pin).ownNumeric().setValues(places);
        net.pin("n." + pin).valueChanged();
        return net.text("n.element");
    };
    Array<int32_t> indices;
    Array<float> shares;
    for (int32_t i = 0; i < 1001; ++i) {
        indices.append(i * 37 % 9 - 1);
        shares.append(static_cast<float>(i * 37 % 1001) / 1000);
    }
    const TM_String elements = made("GetArrayNumElement", "index", indices, 1);
    const TM_String mixed = made("GetArrayNum2DElementByUV", "y", shares, 1);
    const RealThreads real;
    for (const int threads : {2, 3, 8}) {
        EXPECT_EQ(elements, made("GetArrayNumElement", "index", indices, threads));
        EXPECT_EQ(mixed, made("GetArrayNum2DElementByUV", "y", shares, threads));
    }
}

// Those that deal their elements out to threads say so.
TEST(NumLongWork, HintsOfThreading) {
    const auto hintOf = [](const TM_String& type) {
        LogicNet net;
        return net.add(type, "n").getThreadingModeHint();
    };
    for (const char* type :
         {"GetArrayNumElement", "GetArrayNum2DElementByUV", "NumInterpolateLinear",
          "NumInterpolateCubic", "NumInterpolateHermite", "NumInterpolateBezier"}) {
        EXPECT_EQ(2, hintOf(type)) << type;
    }
    for (const char* type : {"ArrayNumRandom", "SetArrayNumElement", "ArrayNumMinMax"}) {
        EXPECT_EQ(0, hintOf(type)) << type;
    }
}

} // namespace

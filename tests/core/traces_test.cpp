// SPDX-License-Identifier: Apache-2.0
// Small networks followed step by step: every flag, every callback, every value.
#include <gtest/gtest.h>

#include <string>

#include "core/network_manager.h"
#include "nodes/values/arithmetic.h"
#include "nodes/values/constants.h"
#include "support/callback_log.h"
#include "support/net.h"
#include "test_nodes.h"

using namespace weft;
using support::CallbackLog;
using support::Net;
using test_nodes::AskNode;

namespace {

// Constants and sums that write "run ..." and "valueChanged ..." into the log.
template <typename Base>
struct Traced : Base {
    using Base::Base;
    void update(Attribute* attribute) override {
        CallbackLog::add("run " + this->name() + " " + attribute->name());
        Base::update(attribute);
    }
    void onValueChanged(Attribute* attribute) override {
        CallbackLog::add("valueChanged " + Net::nameOf(attribute));
    }
};

// Only what the clean callback, the nodes and the setters say.
std::string told(CallbackLog& log) {
    std::string text;
    for (const std::string& line : log.lines) {
        const std::string word = line.substr(0, line.find(' '));
        if (word != "clean" && word != "run" && word != "valueChanged") continue;
        const std::string entry = word == "clean" ? line.substr(6) : line;
        text += (text.empty() ? "" : ", ") + entry;
    }
    log.lines.clear();
    return text;
}

// A run of the scene that asks `evaluate`, as far as the network is concerned.
void run(Net& net, Node* evaluator) {
    Attribute* evaluate = evaluator->inputAttributeAt(0);
    net.manager.setEvaluating(true);
    net.manager.clearToBeEvaluatedFlags();
    Array<Attribute*> closure;
    net.manager.collectUpstream(evaluate, closure);
    net.manager.markAllDirtyForRun(closure);
    evaluator->doUpdate(evaluate);
    net.manager.setEvaluating(false);
}

// R.real > A.in0, A.result > E.evaluate
struct Sum : Net {
    Sum() {
        add<Traced<RealNode>>("R");
        add<Traced<AddNode>>("A");
        add<AskNode>("E");
    }
    NumericType operandType(const char* path) const {
        return static_cast<NumericAttribute*>(at(path))->numeric().type();
    }
};

} // namespace

TEST(Trace, BeforeAnyConnection) {
    Sum net;
    EXPECT_EQ(net.clean(), "");
    for (const char* path : {"A.in0", "A.in1", "A.result"}) {
        EXPECT_EQ(net.at(path)->specializations().size(), 7u) << path;
        EXPECT_EQ(net.operandType(path), NumericType::none) << path;
    }
    EXPECT_EQ(Net::namesOf(net.at("A.in0")->dirtyChain()), "A.in0 A.result");
    EXPECT_EQ(Net::namesOf(net.at("R.real")->dirtyChain()), "R.real");
}

TEST(Trace, Connecting) {
    Sum net;
    CallbackLog log;
    EXPECT_TRUE(net.link("R.real", "A.in0"));
    EXPECT_EQ(told(log), "A.in0, A.in0, R.real, R.real, A.in0, A.in0, A.in1, A.in1, "
                         "A.result, A.result");
    EXPECT_EQ(net.types("A.in0"), "Real");
    EXPECT_EQ(net.types("A.result"), "Real");
    EXPECT_EQ(net.types("A.in1"), "Real Integer Integer64");
    EXPECT_EQ(net.operandType("A.in1"), NumericType::none);
    EXPECT_EQ(Net::namesOf(net.at("R.in")->dirtyChain()), "R.in R.real A.in0 A.result");
    EXPECT_EQ(net.refusal("A.result", "R.in"), "cycle");
    EXPECT_EQ(net.refusal("A.result", "A.in1"), "cycle");
    EXPECT_TRUE(net.link("A.result", "E.evaluate"));
    EXPECT_EQ(net.types("E.evaluate"), "Real");
}

TEST(Trace, SettingAndPulling) {
    Sum net;
    net.link("R.real", "A.in0");
    net.link("A.result", "E.evaluate");
    CallbackLog log;
    net.set<float>("R.in", 2.5f);
    EXPECT_EQ(told(log), "R.in, R.in, valueChanged R.in");
    net.at("E.evaluate")->pull();
    EXPECT_EQ(told(log), "run A result, run R real, R.in, R.real, R.real, valueChanged R.real, "
                         "R.real, A.in0, A.in1, A.result, E.evaluate");
    EXPECT_EQ(net.seen<float>("A.result"), 2.5f);
    EXPECT_EQ(net.operandType("A.result"), NumericType::real);
    EXPECT_EQ(net.dirty(), "");
    net.at("E.evaluate")->pull();
    EXPECT_EQ(told(log), "");
}

TEST(Trace, InARunWritesStartNoWalks) {
    Sum net;
    net.link("R.real", "A.in0");
    net.link("A.result", "E.evaluate");
    net.set<float>("R.in", 2.5f);
    net.manager.setEvaluating(true);
    CallbackLog log;
    net.at("E.evaluate")->pull();
    EXPECT_EQ(told(log), "run A result, run R real, R.in, R.real, A.in0, A.in1, A.result, "
                         "E.evaluate");
    EXPECT_EQ(net.seen<float>("A.result"), 2.5f);
}

TEST(Trace, SecondOperandAndLaterValues) {
    Sum net;
    net.link("R.real", "A.in0");
    net.link("A.result", "E.evaluate");
    net.set<float>("R.in", 2.5f);
    net.at("E.evaluate")->pull();
    net.add<Traced<IntegerNode>>("I");
    net.set<int32_t>("I.in", 3);
    net.link("I.integer", "A.in1");
    EXPECT_EQ(net.types("A.in1"), "Integer");
    EXPECT_EQ(net.clean(), "R.in");
    net.at("E.evaluate")->pull();
    const auto& result = static_cast<NumericAttribute*>(net.at("A.result"))->numeric();
    EXPECT_EQ(result.value<float>(), 5.5f);

    net.set<float>("R.in", 4.0f);
    EXPECT_EQ(net.clean(), "A.in1 I.in I.integer");
    net.at("E.evaluate")->pull();
    EXPECT_EQ(result.value<float>(), 7.0f);

    net.set<float>("R.in", 5.0f);
    net.at("A.result")->setClean(true); // shows whether the second change walks
    net.set<float>("R.in", 6.0f);
    EXPECT_TRUE(net.at("A.result")->isClean());
    net.at("A.result")->setClean(false);
    net.at("E.evaluate")->pull();
    EXPECT_EQ(result.value<float>(), 9.0f);

    net.cut("A.in0");
    for (const char* path : {"A.in0", "A.result", "E.evaluate"}) {
        EXPECT_EQ(net.types(path), "Integer Integer64 Real") << path;
        EXPECT_FALSE(net.at(path)->isClean()) << path;
    }
    EXPECT_EQ(net.types("A.in1"), "Integer");
    EXPECT_EQ(net.operandType("A.result"), NumericType::none);
    // Without a type of the first operand nothing is computed.
    net.at("E.evaluate")->pull();
    EXPECT_EQ(result.size(), 1u);
    EXPECT_EQ(net.operandType("A.result"), NumericType::none);
}

// I=5 > A.in0, A.in1, B.in1; A.result > B.in0; B.result > E
namespace {

struct Diamond : Net {
    Diamond() {
        add<Traced<IntegerNode>>("I");
        add<Traced<AddNode>>("A");
        add<Traced<AddNode>>("B");
        evaluator = add<Traced<AskNode>>("E");
        link("I.integer", "A.in0");
        link("I.integer", "A.in1");
        link("I.integer", "B.in1");
        link("A.result", "B.in0");
        link("B.result", "E.evaluate");
        set<int32_t>("I.in", 5);
    }
    Node* evaluator;
};

} // namespace

TEST(Trace, ClosureOfTheEvaluator) {
    Diamond net;
    Array<Attribute*> closure;
    net.manager.collectUpstream(net.at("E.evaluate"), closure);
    EXPECT_EQ(Net::namesOf(closure), "E.evaluate B.result B.in0 A.result A.in0 I.integer I.in "
                                     "A.in1 B.in1");
}

TEST(Trace, RunComputesEachNodeOnceAndRepeatsItAll) {
    Diamond net;
    CallbackLog log;
    for (int turn = 0; turn < 3; ++turn) {
        run(net, net.evaluator);
        EXPECT_EQ(told(log), "E.evaluate, E.evaluate, B.result, B.result, B.in0, B.in0, "
                             "A.result, A.result, A.in0, A.in0, I.integer, I.integer, I.in, I.in, "
                             "A.in1, A.in1, B.in1, B.in1, "
                             "run E evaluate, run B result, run A result, run I integer, "
                             "I.in, I.integer, A.in0, A.in1, A.result, B.in0, B.in1, B.result, "
                             "E.evaluate")
            << turn;
        EXPECT_EQ(net.seen<int32_t>("B.result"), 15);
        EXPECT_EQ(net.dirty(), "");
    }
}

TEST(Trace, RunAfterAChange) {
    Diamond net;
    run(net, net.evaluator);
    net.set<int32_t>("I.in", 7);
    EXPECT_EQ(net.clean(), "");
    run(net, net.evaluator);
    EXPECT_EQ(net.seen<int32_t>("B.result"), 21);
}

TEST(Trace, RunOfOneNodeInTheMiddle) {
    Diamond net;
    run(net, net.evaluator);
    net.set<int32_t>("I.in", 1);
    net.manager.setEvaluating(true);
    net.node("B")->doUpdate(net.at("B.result"));
    net.manager.setEvaluating(false);
    EXPECT_EQ(net.seen<int32_t>("B.result"), 3);
    EXPECT_EQ(net.dirty(), "B.result E.evaluate");
}

// SPDX-License-Identifier: Apache-2.0
// Tests of the observer of computations: nesting, and ends by exceptions.
#include "core/update_observer.h"

#include <gtest/gtest.h>

#include <string>

#include "support/net.h"
#include "test_nodes.h"

using namespace weft;
using support::Net;
using test_nodes::ScriptNode;

namespace {

/// "A(B())": A began, B began and ended, A ended.
class Nesting : public UpdateObserver {
public:
    Nesting() { install(this); }
    ~Nesting() override { install(nullptr); }
    void updateBegins(const Node& node) noexcept override { text += node.name() + "("; }
    void updateEnds() noexcept override { text += ")"; }
    void waitBegins() noexcept override { text += "wait("; }
    void waitEnds() noexcept override { text += ")"; }

    std::string text;
};

/// S -> A, where A pulls before it computes.
struct Pair : Net {
    Pair() : s(add<ScriptNode>("S")), a(add<ScriptNode>("A")) {
        s->out("out");
        NumericAttribute* in = a->in("in");
        NumericAttribute* out = a->out("out");
        a->setAttributeAffectPublic(in, out);
        for (const char* path : {"S.out", "A.in", "A.out"}) {
            at(path)->setAllowedSpecializations(test_nodes::realOnly());
        }
        link("S.out", "A.in");
        a->onUpdate = [in](Attribute*) { in->pull(); };
    }
    ScriptNode* s;
    ScriptNode* a;
};

} // namespace

TEST(UpdateObserver, WhatANodePullsLiesInsideOfIt) {
    for (const bool monitoring : {true, false}) {
        Pair net;
        net.manager.setMonitoring(monitoring);
        const Nesting nesting;
        net.at("A.out")->computeNow();
        EXPECT_EQ(nesting.text, "A(S())");
    }
}

TEST(UpdateObserver, CleanAttributesAreNotHeardOf) {
    Pair net;
    net.at("A.out")->computeNow();
    const Nesting nesting;
    net.at("A.out")->computeNow();
    EXPECT_EQ(nesting.text, "");
}

TEST(UpdateObserver, ExceptionsEndComputations) {
    for (const bool monitoring : {true, false}) {
        Pair net;
        net.manager.setMonitoring(monitoring);
        net.s->onUpdate = [](Attribute*) { throw 1; };
        const Nesting nesting;
        EXPECT_THROW(net.at("A.out")->computeNow(), int);
        EXPECT_EQ(nesting.text, "A(S())");
    }
}

TEST(UpdateObserver, DirectUpdatesAreHeardOf) {
    Pair net;
    const Nesting nesting;
    net.s->doUpdate(net.at("S.out"));
    EXPECT_EQ(nesting.text, "S()");
}

TEST(UpdateObserver, NobodyIsToldAfterItsEnd) {
    Pair net;
    { const Nesting nesting; }
    EXPECT_EQ(UpdateObserver::installed(), nullptr);
    net.at("A.out")->computeNow();
    EXPECT_EQ(net.a->updates, 1);
}

TEST(UpdateObserver, WaitsAreScopes) {
    const Nesting nesting;
    {
        const UpdateObserver::Waiting waiting;
        EXPECT_EQ(nesting.text, "wait(");
    }
    EXPECT_EQ(nesting.text, "wait()");
}

// SPDX-License-Identifier: Apache-2.0
// Tests of pass-throughs: outputs that carry an input's value, and chains of them.
#include <gtest/gtest.h>

#include <string>

#include "core/network_manager.h"
#include "nodes/values/constants.h"
#include "support/callback_log.h"
#include "support/net.h"
#include "support/recording_host.h"
#include "test_nodes.h"

using namespace weft;
using support::CallbackLog;
using support::Net;
using test_nodes::PassNode;
using test_nodes::ScriptNode;

namespace {

// One node "N" with the inputs a and b and the outputs x and y, all of type Real.
struct Tied : Net {
    Tied() {
        node = add<ScriptNode>("N");
        for (const char* name : {"a", "b"}) node->in(name);
        for (const char* name : {"x", "y"}) node->out(name);
        node->setAttributeAffectAllOutputsByAllInputs();
        for (const char* path : {"N.a", "N.b", "N.x", "N.y"}) {
            node->setAttributeAllowedSpecializations(at(path), test_nodes::realOnly());
        }
    }
    void allow(const char* in, const char* out) {
        node->addAttributeAllowedPassThrough(at(in), at(out));
    }
    ScriptNode* node;
};

// R.real > P0 > P1 > ... > B.in
struct PassChain : Net {
    explicit PassChain(int length) {
        add<RealNode>("R");
        std::string from = "R.real";
        for (int i = 0; i < length; ++i) {
            const std::string name = "P" + std::to_string(i);
            add<PassNode>(name);
            link(from, name + ".in");
            from = name + ".out";
        }
        add<ScriptNode>("B")->ports({"in", "late"}, {});
        link(from, "B.in");
        end = from;
    }
    std::string end;
};

} // namespace

TEST(PassThrough, AllowedOnesAreSymmetricalAndListedOnce) {
    Tied net;
    net.allow("N.a", "N.x");
    net.allow("N.x", "N.a");
    net.allow("N.a", "N.x");
    EXPECT_EQ(Net::namesOf(net.at("N.a")->allowedPassThroughs()), "N.x");
    EXPECT_EQ(Net::namesOf(net.at("N.x")->allowedPassThroughs()), "N.a");
    net.at("N.a")->addAllowedPassThrough(nullptr);
    EXPECT_FALSE(net.at("N.a")->isPassThrough());
}

TEST(PassThrough, OnesThatAreNotAllowedAreIgnored) {
    Tied net;
    net.at("N.a")->addPassThrough(net.at("N.x"));
    net.at("N.a")->addPassThrough(nullptr);
    net.at("N.a")->removePassThrough(net.at("N.x"));
    net.at("N.a")->removePassThrough(nullptr);
    EXPECT_FALSE(net.at("N.a")->isPassThrough());
    EXPECT_FALSE(net.at("N.x")->isPassThrough());
    EXPECT_EQ(net.at("N.x")->source(), nullptr);
    EXPECT_TRUE(net.node->getMessages().isEmpty());
}

TEST(PassThrough, TiesTheOutputToTheInputFromEitherSide) {
    for (const bool fromInput : {true, false}) {
        Tied net;
        net.allow("N.a", "N.x");
        Attribute* a = net.at("N.a");
        Attribute* x = net.at("N.x");
        fromInput ? a->addPassThrough(x) : x->addPassThrough(a);
        EXPECT_TRUE(a->isPassThrough());
        EXPECT_TRUE(x->isPassThrough());
        EXPECT_EQ(Net::namesOf(a->passThroughs()), "N.x");
        EXPECT_EQ(Net::namesOf(x->passThroughs()), "N.a");
        EXPECT_EQ(x->source(), a);
        EXPECT_EQ(x->currentValue(), a->value());
        EXPECT_EQ(x->writeTarget(), a->value());
        EXPECT_NE(x->value(), a->value());
        EXPECT_TRUE(a->affects().contains(x));
        EXPECT_EQ(Net::namesOf(a->dirtyChain()), "N.a N.y N.x");
    }
}

TEST(PassThrough, WritesOfTheInputReachTheOutputsReaders) {
    Tied net;
    net.allow("N.a", "N.x");
    net.at("N.a")->addPassThrough(net.at("N.x"));
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("N.x", "B.in");
    static_cast<NumericAttribute*>(net.at("N.a"))->ownNumeric().setValue<float>(3.0f);
    EXPECT_EQ(net.seen<float>("B.in"), 3.0f);
    net.add<RealNode>("R");
    net.set<float>("R.in", 8.0f);
    net.link("R.real", "N.a");
    net.node->onUpdate = [&](Attribute*) { net.at("N.a")->pull(); };
    net.at("B.in")->pull();
    EXPECT_EQ(net.seen<float>("B.in"), 8.0f);
    net.cut("N.a");
    EXPECT_EQ(net.seen<float>("B.in"), 3.0f);
}

TEST(PassThrough, RemovingGivesTheOutputItsOwnValueBack) {
    for (const bool fromInput : {true, false}) {
        Tied net;
        net.allow("N.a", "N.x");
        net.add<ScriptNode>("B")->ports({"in"}, {});
        net.link("N.x", "B.in");
        Attribute* a = net.at("N.a");
        Attribute* x = net.at("N.x");
        a->addPassThrough(x);
        EXPECT_EQ(net.at("B.in")->currentValue(), a->value());
        fromInput ? a->removePassThrough(x) : x->removePassThrough(a);
        EXPECT_FALSE(a->isPassThrough());
        EXPECT_FALSE(x->isPassThrough());
        EXPECT_EQ(a->passThroughs().size(), 0u);
        EXPECT_EQ(x->passThroughs().size(), 0u);
        EXPECT_EQ(x->source(), nullptr);
        EXPECT_EQ(x->currentValue(), x->value());
        EXPECT_EQ(net.at("B.in")->currentValue(), x->value());
        EXPECT_TRUE(a->affects().contains(x)); // dirtiness still follows
    }
}

TEST(PassThrough, AnInputMayFeedSeveralOutputs) {
    Tied net;
    net.allow("N.a", "N.x");
    net.allow("N.a", "N.y");
    net.at("N.a")->addPassThrough(net.at("N.x"));
    net.at("N.a")->addPassThrough(net.at("N.y"));
    EXPECT_EQ(net.at("N.y")->currentValue(), net.at("N.a")->value());
    net.at("N.a")->removePassThrough(net.at("N.x"));
    EXPECT_TRUE(net.at("N.a")->isPassThrough()); // one is left
    net.at("N.a")->removePassThrough(net.at("N.y"));
    EXPECT_FALSE(net.at("N.a")->isPassThrough());
}

TEST(PassThrough, AnOutputTakesOnlyOneInput) {
    Tied net;
    net.allow("N.a", "N.x");
    net.allow("N.b", "N.x");
    net.at("N.a")->addPassThrough(net.at("N.x"));
    net.at("N.x")->addPassThrough(net.at("N.b"));
    ASSERT_EQ(net.node->getMessages().messages().size(), 1u);
    EXPECT_EQ(net.node->getMessages().messages()[0],
              (tidemark::graph::Message{2,
                                        "Trying to connect attribute 'b' to 'x' which is already "
                                        "connected to 'a'",
                                        ""}));
    EXPECT_EQ(net.at("N.x")->source(), net.at("N.a"));
    EXPECT_FALSE(net.at("N.b")->isPassThrough());
}

TEST(PassThrough, InternalConnectionThatMayNotBeMadeIsAnError) {
    Tied net;
    net.node->setAttributeAllowedSpecializations(net.at("N.x"), SpecializationList{"Mesh"});
    EXPECT_FALSE(net.node->connectInternalAttributes(net.at("N.a"), net.at("N.x")));
    ASSERT_EQ(net.node->getMessages().messages().size(), 1u);
    EXPECT_EQ(net.node->getMessages().messages()[0].level, 2);
    EXPECT_EQ(net.node->getMessages().messages()[0].text, "types don't match");
    EXPECT_EQ(net.node->getMessages().messages()[0].detail, "");
    EXPECT_TRUE(net.at("N.a")->isPassThrough());
    EXPECT_EQ(net.at("N.x")->source(), nullptr);
}

TEST(PassThrough, InternalConnectionForGoodIsNoPassThroughOfTheLists) {
    Tied net;
    EXPECT_TRUE(net.node->connectInternalAttributes(net.at("N.a"), net.at("N.x")));
    EXPECT_TRUE(net.at("N.a")->isPassThrough());
    EXPECT_TRUE(net.at("N.x")->isPassThrough());
    EXPECT_EQ(net.at("N.a")->passThroughs().size(), 0u);
    EXPECT_EQ(net.at("N.x")->source(), net.at("N.a"));
    EXPECT_TRUE(net.node->getMessages().isEmpty());
}

TEST(PassThrough, PureOnesStayPassThroughs) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    auto* in = node->in<PassThroughAttribute>("in");
    auto* out = node->out<PassThroughAttribute>("out");
    node->addAttributeAllowedPassThrough(in, out);
    node->addAttributePassThrough(in, out);
    node->removeAttributePassThrough(in, out);
    EXPECT_TRUE(in->isPassThrough());
    EXPECT_TRUE(out->isPassThrough());
    EXPECT_EQ(out->source(), nullptr);
}

TEST(PassThrough, TextOfTypesIsTheSourcesForOutputs) {
    Net net;
    net.add<RealNode>("R");
    auto* node = net.add<ScriptNode>("N");
    auto* in = node->in<PassThroughAttribute>("in");
    auto* out = node->out<PassThroughAttribute>("out");
    EXPECT_EQ(in->allowedSpecializationsText(), "All");
    EXPECT_EQ(out->allowedSpecializationsText(), "All");
    net.link("R.real", "N.in");
    EXPECT_EQ(in->allowedSpecializationsText(), "All");
    net.link("R.real", "N.out");
    EXPECT_EQ(out->allowedSpecializationsText(), "\"Real\"");
}

TEST(PassThrough, AnEndThatDiesFreesTheOther) {
    for (const char* gone : {"N.a", "N.x"}) {
        Tied net;
        net.allow("N.a", "N.x");
        net.at("N.a")->addPassThrough(net.at("N.x"));
        Attribute* other = net.at(gone == std::string("N.a") ? "N.x" : "N.a");
        net.at(gone)->deleteIt();
        EXPECT_FALSE(other->isPassThrough());
        EXPECT_EQ(other->passThroughs().size(), 0u);
        EXPECT_EQ(other->allowedPassThroughs().size(), 0u);
        EXPECT_EQ(other->source(), nullptr);
        EXPECT_EQ(other->currentValue(), other->value());
    }
}

TEST(PassThrough, AValueGoesThroughChainsOfOneToFive) {
    for (int length = 1; length <= 5; ++length) {
        PassChain net(length);
        Attribute* source = net.at("R.real");
        EXPECT_EQ(net.at("B.in")->currentValue(), source->value()) << length;
        const Retained<Numeric> fresh(new Numeric(&net.manager));
        fresh->setType(NumericType::real);
        fresh->setValue<float>(6.0f);
        source->setValue(fresh.get());
        EXPECT_EQ(net.at("B.in")->currentValue(), fresh.get()) << length;
        EXPECT_EQ(net.at(net.end)->currentValue(), fresh.get()) << length;
        EXPECT_EQ(net.seen<float>("B.in"), 6.0f);
        source->setValue(new Numeric(&net.manager));
        EXPECT_EQ(net.at("B.in")->currentValue(), source->value()) << length;
    }
}

TEST(PassThrough, ConnectingTheFrontReachesTheFarReader) {
    for (int length = 1; length <= 5; ++length) {
        PassChain net(length);
        net.cut("P0.in");
        EXPECT_EQ(net.at("B.in")->currentValue(), net.at("B.in")->value()) << length;
        EXPECT_EQ(net.at(net.end)->currentValue(), nullptr) << length;
        net.link("R.real", "P0.in");
        EXPECT_EQ(net.at("B.in")->currentValue(), net.at("R.real")->value()) << length;
    }
}

TEST(PassThrough, PullsThroughChainsOfOneToFive) {
    for (int length = 1; length <= 5; ++length) {
        PassChain net(length);
        net.set<float>("R.in", 2.5f);
        net.at("B.in")->pull();
        EXPECT_EQ(net.seen<float>("B.in"), 2.5f) << length;
        net.set<float>("R.in", 3.5f);
        EXPECT_FALSE(net.at("B.in")->isClean());
        net.at("B.in")->pull();
        EXPECT_EQ(net.seen<float>("B.in"), 3.5f) << length;
    }
}

// P.out without a source feeds B.first; B.late comes later and gets what B.first holds.
TEST(LateConnection, GetsTheContentThatTheFirstReaderSees) {
    Net net;
    auto* p = net.add<ScriptNode>("P");
    p->out<PassThroughAttribute>("out");
    auto* b = net.add<ScriptNode>("B")->ports({"first", "late"}, {});
    for (const char* path : {"B.first", "B.late"}) {
        b->setAttributeAllowedSpecializations(net.at(path), test_nodes::realOnly());
    }
    net.set<float>("B.first", 5.0f);
    net.set<float>("B.late", 9.0f);
    net.link("P.out", "B.first");
    EXPECT_EQ(net.seen<float>("B.first"), 5.0f);
    net.link("P.out", "B.late");
    EXPECT_EQ(net.seen<float>("B.late"), 5.0f);
    net.cut("B.late");
    EXPECT_EQ(net.seen<float>("B.late"), 5.0f); // copied, its old constant is gone
}

TEST(LateConnection, LooksBeyondPassThroughs) {
    Net net;
    auto* p = net.add<ScriptNode>("P");
    p->out<PassThroughAttribute>("out");
    auto* q = net.add<ScriptNode>("Q");
    q->in<PassThroughAttribute>("in");
    auto* b = net.add<ScriptNode>("B")->ports({"first", "late"}, {});
    for (const char* path : {"B.first", "B.late"}) {
        b->setAttributeAllowedSpecializations(net.at(path), test_nodes::realOnly());
    }
    net.set<float>("B.first", 5.0f);
    net.link("Q.in", "B.first");
    net.link("P.out", "Q.in");
    net.link("P.out", "B.late");
    EXPECT_EQ(net.seen<float>("B.late"), 5.0f);
}

TEST(LateConnection, CopiesNothingFromASourceThatHasOne) {
    Net net;
    net.add<RealNode>("R");
    auto* p = net.add<ScriptNode>("P");
    p->in<PassThroughAttribute>("in");
    auto* b = net.add<ScriptNode>("B")->ports({"first", "late"}, {});
    for (const char* path : {"B.first", "B.late"}) {
        b->setAttributeAllowedSpecializations(net.at(path), test_nodes::realOnly());
    }
    net.set<float>("B.first", 5.0f);
    net.set<float>("B.late", 9.0f);
    net.link("R.real", "P.in");
    net.link("P.in", "B.first");
    net.link("P.in", "B.late");
    net.cut("B.late");
    EXPECT_EQ(net.seen<float>("B.late"), 9.0f);
}

TEST(LateConnection, CopiesNothingWhereAllReadersArePassThroughs) {
    Net net;
    net.add<ScriptNode>("P")->out<PassThroughAttribute>("out");
    net.add<ScriptNode>("Q")->in<PassThroughAttribute>("in");
    auto* b = net.add<ScriptNode>("B")->ports({"late"}, {});
    b->setAttributeAllowedSpecializations(net.at("B.late"), test_nodes::realOnly());
    net.set<float>("B.late", 9.0f);
    net.link("P.out", "Q.in");
    net.link("P.out", "B.late");
    EXPECT_EQ(net.seen<float>("B.late"), 9.0f);
}

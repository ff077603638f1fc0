// SPDX-License-Identifier: Apache-2.0
// Tests of connections: what may be connected, what a connection does, and how it ends.
#include "core/network_manager.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

#include "nodes/values/arithmetic.h"
#include "nodes/values/constants.h"
#include "support/callback_log.h"
#include "support/net.h"
#include "test_nodes.h"

using namespace weft;
using support::CallbackLog;
using support::Net;
using test_nodes::ScriptNode;

namespace {

std::string withoutTypesAndClean(CallbackLog& log) {
    std::string text;
    for (const std::string& line : log.lines) {
        if (line.rfind("clean", 0) == 0 || line.rfind("types", 0) == 0) continue;
        text += (text.empty() ? "" : ", ") + line;
    }
    log.lines.clear();
    return text;
}

} // namespace

// Refusals, in the order of the checks.

TEST(CanConnect, NoSource) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {});
    EXPECT_EQ(net.refusal(nullptr, net.at("A.in")), " is not a valid object");
    EXPECT_EQ(net.refusal(static_cast<Attribute*>(nullptr), nullptr), " is not a valid object");
}

TEST(CanConnect, NoDestination) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    EXPECT_EQ(net.refusal(net.at("A.out"), nullptr), " is is not a valid object");
}

TEST(CanConnect, ItselfIsRefused) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    EXPECT_EQ(net.refusal("A.out", "A.out"), "root.A.out can't be connected to itself");
}

TEST(CanConnect, SourceWithoutNodeIsRefused) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {});
    const Retained<Attribute> loose(new NumericAttribute(&net.manager, "loose", nullptr));
    EXPECT_EQ(net.refusal(loose.get(), net.at("A.in")), "no parent node found for loose");
    // A parent alone is not enough: it has to list the attribute.
    const Retained<Attribute> unlisted(new NumericAttribute(&net.manager, "unlisted", a));
    EXPECT_EQ(net.refusal(unlisted.get(), net.at("A.in")),
              "no parent node found for root.A.unlisted");
}

TEST(CanConnect, DestinationWithoutNodeIsRefused) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    const Retained<Attribute> loose(new NumericAttribute(&net.manager, "loose", nullptr));
    EXPECT_EQ(net.refusal(net.at("A.out"), loose.get()), "no parent node found for loose");
}

TEST(CanConnect, RemovedAttributesAreRefused) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    const Retained<Attribute> kept(net.at("A.out"));
    a->removeAttribute(kept.get());
    EXPECT_EQ(net.refusal(kept.get(), net.at("B.in")), "no parent node found for out");
}

TEST(CanConnect, AttributesOfADeletedNodeAreRefused) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    const Retained<Attribute> kept(net.at("A.out"));
    a->deleteIt();
    kept->setParent(net.node("B")); // a parent that does not list it
    EXPECT_EQ(net.refusal(kept.get(), net.at("B.in")), "no parent node found for root.B.out");
    kept->setParent(nullptr);
}

TEST(CanConnect, RepeatedConnectionIsRefused) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    EXPECT_EQ(net.refusal("A.out", "B.in"), "root.A.out already connected to root.B.in");
    EXPECT_FALSE(net.manager.connect(net.at("A.out"), net.at("B.in"), nullptr));
    EXPECT_EQ(net.at("A.out")->destinations().size(), 1u);
}

TEST(CanConnect, OutputAsDestinationIsRefused) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({}, {"out"});
    EXPECT_EQ(net.refusal("A.out", "B.out"), "root.B.out is output");
}

TEST(CanConnect, PassThroughOutputCanBeFed) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->out<PassThroughAttribute>("out");
    EXPECT_EQ(net.refusal("A.out", "B.out"), "");
}

TEST(CanConnect, InputMayFeedAnInput) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    EXPECT_EQ(net.refusal("A.in", "B.in"), "");
}

TEST(CanConnect, CycleThroughConnectionsIsRefused) {
    Net net;
    for (const char* name : {"A", "B", "C"}) net.add<ScriptNode>(name)->ports({"in"}, {"out"});
    net.link("A.out", "B.in");
    net.link("B.out", "C.in");
    EXPECT_EQ(net.refusal("C.out", "A.in"), "cycle");
    EXPECT_EQ(net.refusal("B.out", "A.in"), "cycle");
    EXPECT_EQ(net.refusal("C.in", "A.in"), "cycle");
    EXPECT_EQ(net.refusal("A.out", "C.in"), "");
}

TEST(CanConnect, CycleThroughAffectsOfOneNodeIsRefused) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    auto* b = net.add<ScriptNode>("B");
    b->in("in");
    b->out("out");
    EXPECT_EQ(net.refusal("A.out", "A.in"), "cycle");
    EXPECT_EQ(net.refusal("B.out", "B.in"), "");
}

TEST(CanConnect, CycleThroughTheSourceOfAnOutputIsRefused) {
    // C.x > I.in > (through) I.out > C.y > X.in, X.out may not go back to C.x
    Net net;
    auto* c = net.add<ScriptNode>("C");
    c->in<PassThroughAttribute>("x");
    c->out<PassThroughAttribute>("y");
    net.add<ScriptNode>("X")->ports({"in"}, {"out"});
    net.link("C.x", "C.y");
    net.link("C.y", "X.in");
    EXPECT_EQ(net.refusal("X.out", "C.x"), "cycle");
}

TEST(CanConnect, ClosedWayIsFoundOverManyNodes) {
    Net net;
    constexpr int count = 20000;
    std::vector<ScriptNode*> nodes;
    net.manager.setMonitoring(false);
    for (int i = 0; i < count; ++i) {
        nodes.push_back(net.add<ScriptNode>("N" + std::to_string(i))->ports({"in"}, {"out"}));
    }
    for (int i = 1; i < count; ++i) {
        nodes[i - 1]->outputAttributeAt(0)->connectTo(nodes[i]->inputAttributeAt(0), nullptr);
    }
    EXPECT_EQ(net.refusal(nodes[count - 1]->outputAttributeAt(0), nodes[0]->inputAttributeAt(0)),
              "cycle");
    net.manager.setTearingDown(true);
}

TEST(CanConnect, TypesWithoutANameInCommonAreRefused) {
    Net net;
    net.add<RealNode>("R");
    auto* b = net.add<ScriptNode>("B")->ports({"in"}, {});
    b->setAttributeAllowedSpecializations(net.at("B.in"), SpecializationList{"Integer", "Mesh"});
    EXPECT_EQ(net.refusal("R.real", "B.in"), "types don't match");
    b->setAttributeAllowedSpecializations(net.at("B.in"), SpecializationList{"Mesh", "Real"});
    EXPECT_EQ(net.refusal("R.real", "B.in"), "");
}

TEST(CanConnect, CurrentTypesDecideNotTheAllowedOnes) {
    Net net;
    net.add<RealNode>("R");
    net.add<IntegerNode>("I");
    auto* b = net.add<ScriptNode>("B")->ports({"in"}, {"out"});
    b->addAttributeSpecializationLink(net.at("B.in"), net.at("B.out"));
    auto* c = net.add<ScriptNode>("C")->ports({"in"}, {});
    c->setAttributeAllowedSpecializations(net.at("C.in"), SpecializationList{"Integer"});
    net.link("B.out", "C.in");
    EXPECT_EQ(net.types("B.in"), "Integer");
    EXPECT_EQ(net.refusal("R.real", "B.in"), "types don't match");
    EXPECT_EQ(net.refusal("I.integer", "B.in"), "");
}

TEST(CanConnect, WithoutTypesTheClassesMustBeEqual) {
    Net net;
    auto* a = net.add<ScriptNode>("A");
    auto* b = net.add<ScriptNode>("B");
    a->out<Attribute>("plain");
    a->out("number");
    b->in<Attribute>("plain");
    b->in("number");
    EXPECT_EQ(net.refusal("A.plain", "B.plain"), "");
    EXPECT_EQ(net.refusal("A.plain", "B.number"), "types don't match");
    EXPECT_EQ(net.refusal("A.number", "B.plain"), "types don't match");
    EXPECT_EQ(net.refusal("A.number", "B.number"), "");
}

TEST(CanConnect, PassThroughWithoutTypesTakesAnything) {
    Net net;
    net.add<RealNode>("R");
    auto* p = net.add<ScriptNode>("P");
    p->in<PassThroughAttribute>("in");
    p->out<PassThroughAttribute>("out");
    auto* b = net.add<ScriptNode>("B");
    b->in<Attribute>("plain");
    b->in("number");
    for (const char* to : {"B.plain", "B.number"}) EXPECT_EQ(net.refusal("P.out", to), "") << to;
    EXPECT_EQ(net.refusal("R.real", "P.in"), "");
}

TEST(CanConnect, PassThroughWithTypesIsTestedByThem) {
    Net net;
    net.add<RealNode>("R");
    net.add<IntegerNode>("I");
    net.add<test_nodes::PassNode>("P");
    auto* c = net.add<ScriptNode>("C")->ports({"in"}, {});
    c->setAttributeAllowedSpecializations(net.at("C.in"), SpecializationList{"Integer"});
    net.link("R.real", "P.in");
    EXPECT_EQ(net.types("P.out"), "Real");
    EXPECT_EQ(net.refusal("P.out", "C.in"), "types don't match");
    EXPECT_EQ(net.refusal("I.integer", "P.in"), "types don't match");
}

TEST(CanConnect, AnswersWithoutAnErrorObjectToo) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    EXPECT_FALSE(net.manager.canConnect(net.at("A.out"), net.at("A.in"), nullptr));
    EXPECT_FALSE(net.manager.canConnect(nullptr, nullptr, nullptr));
    EXPECT_FALSE(net.manager.connect(nullptr, nullptr, nullptr));
}

TEST(Connect, RefusalIsWrittenIntoTheGivenObjectAndChangesNothing) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.setAllClean(true);
    const Retained<ErrorObject> error(new ErrorObject(&net.manager));
    CallbackLog log;
    EXPECT_FALSE(net.manager.connect(net.at("A.out"), net.at("A.in"), error.get()));
    EXPECT_EQ(error->message(), "cycle");
    EXPECT_EQ(error->refCount(), 1);
    EXPECT_EQ(net.dirty(), "");
    EXPECT_EQ(log.takeAll(), "");
}

// What a connection does.

TEST(Connect, InputReadsTheSourcesValue) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    EXPECT_TRUE(net.link("A.out", "B.in"));
    EXPECT_EQ(net.at("B.in")->source(), net.at("A.out"));
    EXPECT_EQ(Net::namesOf(net.at("A.out")->destinations()), "B.in");
    EXPECT_EQ(net.at("B.in")->currentValue(), net.at("A.out")->value());
    EXPECT_NE(net.at("B.in")->value(), net.at("A.out")->value());
}

TEST(Connect, RemovingBringsBackTheConstant) {
    Net net;
    net.add<RealNode>("R");
    auto* b = net.add<ScriptNode>("B")->ports({"in"}, {});
    b->setAttributeAllowedSpecializations(net.at("B.in"), test_nodes::realOnly());
    net.set<float>("B.in", 42.0f);
    net.set<float>("R.in", 1.5f);
    net.link("R.real", "B.in");
    net.at("B.in")->pull();
    EXPECT_EQ(net.seen<float>("B.in"), 1.5f);
    net.cut("B.in");
    EXPECT_EQ(net.at("B.in")->source(), nullptr);
    EXPECT_EQ(net.at("R.real")->destinations().size(), 0u);
    EXPECT_EQ(net.seen<float>("B.in"), 42.0f);
    EXPECT_FALSE(net.at("B.in")->isClean());
}

TEST(Connect, NewSourceReplacesTheOld) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({}, {"out"});
    net.add<ScriptNode>("C")->ports({"in"}, {});
    net.link("A.out", "C.in");
    net.link("B.out", "C.in");
    EXPECT_EQ(net.at("C.in")->source(), net.at("B.out"));
    EXPECT_EQ(net.at("A.out")->destinations().size(), 0u);
    EXPECT_EQ(net.at("C.in")->currentValue(), net.at("B.out")->value());
    EXPECT_EQ(Net::namesOf(net.at("A.out")->dirtyChain()), "A.out");
    EXPECT_EQ(Net::namesOf(net.at("B.out")->dirtyChain()), "B.out C.in");
}

TEST(Connect, DestinationsStandInOrderOfConnection) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"x", "y", "z"}, {});
    net.link("A.out", "B.z");
    net.link("A.out", "B.x");
    net.link("A.out", "B.y");
    EXPECT_EQ(Net::namesOf(net.at("A.out")->destinations()), "B.z B.x B.y");
    net.cut("B.x");
    EXPECT_EQ(Net::namesOf(net.at("A.out")->destinations()), "B.z B.y");
}

TEST(Connect, MarksTheDestinationsChainDirty) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {"out"});
    net.add<ScriptNode>("C")->ports({"in"}, {});
    net.link("B.out", "C.in");
    net.setAllClean(true);
    net.at("C.in")->setClean(true);
    net.link("A.out", "B.in");
    // A.out as a member of the group whose types settle anew, A.in is no part of it.
    EXPECT_EQ(net.clean(), "A.in");
}

TEST(Connect, TellsSourceThenDestinationThenTheListener) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    auto* a = static_cast<ScriptNode*>(net.node("A"));
    auto* b = static_cast<ScriptNode*>(net.node("B"));
    CallbackLog log;
    a->onConnectionChanged = [](Attribute* x) { CallbackLog::add("virtual " + x->name()); };
    b->onConnectionChanged = a->onConnectionChanged;
    net.link("A.out", "B.in");
    EXPECT_EQ(withoutTypesAndClean(log),
              "virtual out, connectionChanged A out, virtual in, connectionChanged B in, "
              "connected A.out B.in");
    net.cut("B.in");
    EXPECT_EQ(withoutTypesAndClean(log),
              "virtual out, connectionChanged A out, virtual in, connectionChanged B in, "
              "disconnected B.in");
}

TEST(Connect, RemovingFromTheSourceSideDoesTheSame) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    net.setAllClean(true);
    CallbackLog log;
    net.at("A.out")->removeDestination(net.at("B.in"));
    EXPECT_EQ(withoutTypesAndClean(log),
              "connectionChanged B in, disconnected B.in, connectionChanged A out");
    EXPECT_EQ(net.at("B.in")->source(), nullptr);
    EXPECT_EQ(net.clean(), "");
}

TEST(Connect, UnknownDestinationsAreIgnored) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    CallbackLog log;
    net.at("A.out")->removeDestination(nullptr);
    net.at("A.out")->removeDestination(net.at("B.in"));
    net.at("B.in")->disconnectSource();
    EXPECT_EQ(log.takeAll(), "");
}

TEST(Connect, WithoutMonitoringOnlyTheNodesAreTold) {
    int told = 0;
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    a->onConnectionChanged = [&](Attribute*) { ++told; };
    net.manager.setMonitoring(false);
    CallbackLog log;
    net.link("A.out", "B.in");
    net.cut("B.in");
    EXPECT_EQ(log.takeAll(), "");
    EXPECT_EQ(told, 2);
}

TEST(Connect, ADirectRepeatIsListedTwiceWithOneEdge) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    net.at("A.out")->connectTo(net.at("B.in"), nullptr);
    EXPECT_EQ(Net::namesOf(net.at("A.out")->destinations()), "B.in B.in");
    net.cut("B.in");
    EXPECT_EQ(net.at("A.out")->destinations().size(), 1u);
    EXPECT_EQ(Net::namesOf(net.at("A.out")->dirtyChain()), "A.out");
    net.at("A.out")->removeDestination(net.at("B.in"));
    EXPECT_EQ(net.at("A.out")->destinations().size(), 0u);
}

TEST(Connect, TearingDownGoesWithoutWalksTypesAndNews) {
    Net net;
    net.add<RealNode>("R");
    net.add<AddNode>("A");
    net.link("R.real", "A.in0");
    net.setAllClean(true);
    net.manager.setTearingDown(true);
    CallbackLog log;
    net.cut("A.in0");
    EXPECT_EQ(net.at("A.in0")->source(), nullptr);
    EXPECT_EQ(net.types("A.in0"), "Real");
    EXPECT_EQ(net.dirty(), "");
    EXPECT_EQ(log.takeAll(), "");
}

TEST(Connect, ANodeMayDropTheAttributeThatWasCut) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    auto* b = net.add<ScriptNode>("B")->ports({"in", "other"}, {"out"});
    net.link("A.out", "B.in");
    b->onConnectionChanged = [&](Attribute* a) {
        if (!a->source()) a->deleteIt();
    };
    CallbackLog log;
    net.cut("B.in");
    EXPECT_EQ(b->findAttribute("in"), nullptr);
    EXPECT_EQ(net.at("A.out")->destinations().size(), 0u);
}

TEST(Connect, ANodeMayDropTheOutputThatLostItsReader) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    a->onConnectionChanged = [&](Attribute* x) {
        if (x->destinations().empty()) x->deleteIt();
    };
    net.at("A.out")->removeDestination(net.at("B.in"));
    EXPECT_EQ(a->findAttribute("out"), nullptr);
    EXPECT_EQ(net.at("B.in")->source(), nullptr);
}

TEST(Connect, ANodeMayDropTheInputThatWasJustConnected) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    auto* b = net.add<ScriptNode>("B")->ports({"in"}, {});
    b->onConnectionChanged = [&](Attribute* x) {
        if (x->source()) x->deleteIt();
    };
    CallbackLog log;
    net.link("A.out", "B.in");
    EXPECT_EQ(b->findAttribute("in"), nullptr);
    EXPECT_EQ(log.take("connected"), "");
    EXPECT_EQ(net.at("A.out")->destinations().size(), 0u);
}

// Reachability.

TEST(IsUpstream, FollowsSourcesAndAffectsAgainstTheFlow) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"x", "y"}, {"out"});
    net.link("A.out", "B.x");
    EXPECT_TRUE(net.manager.isUpstream(net.at("B.out"), net.at("A.in")));
    EXPECT_TRUE(net.manager.isUpstream(net.at("B.x"), net.at("A.out")));
    EXPECT_FALSE(net.manager.isUpstream(net.at("B.y"), net.at("A.out")));
    EXPECT_FALSE(net.manager.isUpstream(net.at("A.in"), net.at("B.out")));
    EXPECT_TRUE(net.manager.isUpstream(net.at("A.in"), net.at("A.in")));
}

TEST(IsUpstream, MatchesAPlainSearchOnRandomNetworks) {
    std::mt19937 random(11);
    for (int round = 0; round < 40; ++round) {
        Net net;
        const int count = 4 + static_cast<int>(random() % 12);
        for (int i = 0; i < count; ++i) {
            auto* node = net.add<ScriptNode>("N" + std::to_string(i));
            for (const char* name : {"a", "b"}) {
                random() % 4 ? (Attribute*)node->in(name) : node->in<PassThroughAttribute>(name);
            }
            node->out<PassThroughAttribute>("p");
            node->out("x");
            if (random() % 3) node->setAttributeAffectAllOutputsByAllInputs();
        }
        const std::vector<Attribute*> all = net.all();
        for (int step = 0; step < 60; ++step) {
            Attribute* from = all[random() % all.size()];
            Attribute* to = all[random() % all.size()];
            net.manager.connect(from, to, nullptr);
        }
        for (Attribute* from : all) {
            std::set<const Attribute*> above{from};
            std::vector<const Attribute*> pending{from};
            while (!pending.empty()) {
                const Attribute* step = pending.back();
                pending.pop_back();
                if (step->source() && above.insert(step->source()).second) {
                    pending.push_back(step->source());
                }
                if (!step->isOutput()) continue;
                for (const Attribute* input : step->affectedBy()) {
                    if (above.insert(input).second) pending.push_back(input);
                }
            }
            for (Attribute* target : all) {
                ASSERT_EQ(net.manager.isUpstream(from, target), above.count(target) > 0)
                    << Net::nameOf(from) << " " << Net::nameOf(target);
            }
        }
    }
}

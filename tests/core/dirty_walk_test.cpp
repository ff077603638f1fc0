// SPDX-License-Identifier: Apache-2.0
// Tests of dirty chains and walks, against a literal model as well.
#include "core/network_manager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "literal_network.h"
#include "support/callback_log.h"
#include "support/net.h"
#include "test_nodes.h"

using namespace weft;
using support::CallbackLog;
using support::Net;
using test_nodes::ScriptNode;

namespace {

std::string chainOf(const Net& net, const char* path) {
    return Net::namesOf(net.at(path)->dirtyChain());
}

// Counts its marks and does what the test wants.
struct ListeningAttribute : NumericAttribute {
    ListeningAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericAttribute(manager, name, parent) {
        appendClass<"ListeningAttribute">();
        listenToDirtied();
        listenToDirtied(); // once is enough
    }
    void onDirtied() override {
        CallbackLog::add("onDirtied " + Net::nameOf(this));
        if (then) then();
    }
    std::function<void()> then;
};

// A > B > C, each with an input and an output.
struct Row : Net {
    Row() {
        for (const char* name : {"A", "B", "C"}) add<ScriptNode>(name)->ports({"in"}, {"out"});
        link("A.out", "B.in");
        link("B.out", "C.in");
    }
};

} // namespace

TEST(DirtyChain, IsItselfThenWhatLiesDownstreamDepthFirst) {
    //        /> B.x  B.out > C.in
    //  A.out
    //        \> D.in
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"x", "y"}, {"out"});
    net.add<ScriptNode>("C")->ports({"in"}, {});
    net.add<ScriptNode>("D")->ports({"in"}, {});
    net.link("A.out", "B.x");
    net.link("A.out", "D.in");
    net.link("B.out", "C.in");
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.x B.out C.in D.in");
    EXPECT_EQ(chainOf(net, "B.y"), "B.y B.out C.in");
    EXPECT_EQ(chainOf(net, "D.in"), "D.in");
}

TEST(DirtyChain, SharedPartsStandWhereTheyAreFoundFirst) {
    // A.out > B.in, C.in; B.out and C.out > D
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {"out"});
    net.add<ScriptNode>("C")->ports({"in"}, {"out"});
    net.add<ScriptNode>("D")->ports({"x", "y"}, {"out"});
    net.link("B.out", "D.x");
    net.link("C.out", "D.y");
    net.link("A.out", "C.in");
    net.link("A.out", "B.in");
    EXPECT_EQ(chainOf(net, "A.out"), "A.out C.in C.out D.y D.out B.in B.out D.x");
}

TEST(Closure, UpstreamIsItselfThenAgainstTheFlow) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"x", "y"}, {"out"});
    net.link("A.out", "B.y");
    Array<Attribute*> list;
    net.manager.collectUpstream(net.at("B.out"), list);
    EXPECT_EQ(Net::namesOf(list), "B.out B.x B.y A.out A.in");
    net.manager.collectDownstream(net.at("A.in"), list);
    EXPECT_EQ(Net::namesOf(list), "A.in A.out B.y B.out");
}

TEST(Closure, WithoutAnyEdgeTheListStaysAsItIs) {
    Net net;
    net.add<ScriptNode>("A")->in("alone");
    net.add<ScriptNode>("B")->ports({"in"}, {});
    Array<Attribute*> list{net.at("B.in")};
    net.manager.collectUpstream(net.at("A.alone"), list);
    net.manager.collectDownstream(net.at("A.alone"), list);
    EXPECT_EQ(Net::namesOf(list), "B.in");
    // One that had an edge once answers with itself.
    net.add<ScriptNode>("C")->ports({}, {"out"});
    net.link("C.out", "A.alone");
    net.cut("A.alone");
    net.manager.collectUpstream(net.at("A.alone"), list);
    EXPECT_EQ(Net::namesOf(list), "A.alone");
}

TEST(Edges, EachAddedOneIsRemovedAlone) {
    Net net;
    auto* a = net.add<ScriptNode>("A");
    a->in("x");
    a->out("y");
    net.manager.addEdge(net.at("A.x"), net.at("A.y"));
    net.manager.addEdge(net.at("A.x"), net.at("A.y"));
    EXPECT_EQ(chainOf(net, "A.x"), "A.x A.y");
    net.manager.removeEdge(net.at("A.x"), net.at("A.y"));
    EXPECT_EQ(chainOf(net, "A.x"), "A.x A.y");
    net.manager.removeEdge(net.at("A.x"), net.at("A.y"));
    EXPECT_EQ(chainOf(net, "A.x"), "A.x");
    net.manager.removeEdge(net.at("A.x"), net.at("A.y"));
    EXPECT_EQ(chainOf(net, "A.x"), "A.x");
}

TEST(Edges, TopologyEpochRisesWithEveryChange) {
    Row net;
    const uint32_t before = net.manager.topologyEpoch();
    net.cut("C.in");
    const uint32_t cut = net.manager.topologyEpoch();
    EXPECT_GT(cut, before);
    net.link("B.out", "C.in");
    EXPECT_GT(net.manager.topologyEpoch(), cut);
}

TEST(DirtyWalk, StopsAtADirtyStartOnly) {
    Row net;
    net.setAllClean(true);
    net.at("B.in")->setClean(false);
    net.at("A.in")->markDirty(false);
    EXPECT_EQ(net.clean(), "");
    net.at("C.out")->setClean(true);
    net.at("B.in")->markDirty(false);
    EXPECT_EQ(net.clean(), "C.out");
}

TEST(DirtyWalk, TellsTwiceWithoutAndOnceWithHold) {
    Row net;
    net.setAllClean(true);
    CallbackLog log;
    net.at("B.in")->markDirty(false);
    EXPECT_EQ(log.takeAll(), "clean B.in, clean B.in");
    net.at("B.in")->markDirty(false);
    EXPECT_EQ(log.takeAll(), "clean B.in, clean B.in");
    net.manager.setDirtyHold(true);
    net.at("B.in")->markDirty(true);
    EXPECT_EQ(log.takeAll(), "clean B.in");
    net.manager.setMonitoring(false);
    net.at("B.in")->markDirty(true);
    net.manager.setDirtyHold(false);
    net.at("B.in")->markDirty(true);
    EXPECT_EQ(log.takeAll(), "");
}

TEST(DirtyWalk, RepeatedWalksKeepTheChainUntilTheTopologyChanges) {
    Row net;
    for (int turn = 0; turn < 4; ++turn) {
        net.setAllClean(true);
        net.at("A.in")->markDirty(false);
        EXPECT_EQ(net.clean(), "") << turn;
    }
    net.cut("C.in");
    net.setAllClean(true);
    net.at("A.in")->markDirty(false);
    EXPECT_EQ(net.clean(), "C.in C.out");
    net.add<ScriptNode>("D")->ports({"in"}, {});
    net.link("B.out", "D.in");
    for (int turn = 0; turn < 3; ++turn) {
        net.setAllClean(true);
        net.at("A.in")->markDirty(false);
        EXPECT_EQ(net.clean(), "C.in C.out") << turn;
    }
    net.at("D.in")->deleteIt();
    net.setAllClean(true);
    net.at("A.in")->markDirty(false);
    EXPECT_EQ(net.clean(), "C.in C.out");
}

TEST(DirtyHooks, RunOnceAfterAWalkWithItsStart) {
    Row net;
    net.setAllClean(true);
    CallbackLog log;
    static int runs = 0;
    runs = 0;
    const auto hook = [](Attribute* start) {
        ++runs;
        CallbackLog::add("hook " + Net::nameOf(start));
    };
    net.manager.setMonitoring(false); // hooks do not ask
    Callbacks::pendingDirtyHooks.append(hook);
    Callbacks::pendingDirtyHooks.append(hook);
    net.manager.setDirtyHold(true);
    net.at("B.in")->markDirty(true);
    net.manager.setDirtyHold(false);
    EXPECT_EQ(runs, 0); // nothing was walked
    net.at("B.in")->setClean(false);
    net.at("B.in")->markDirty(false);
    EXPECT_EQ(runs, 0);
    net.at("B.in")->markDirty(true);
    EXPECT_EQ(log.takeAll(), "hook B.in, hook B.in");
    EXPECT_TRUE(Callbacks::pendingDirtyHooks.empty());
    net.at("B.in")->markDirty(true);
    EXPECT_EQ(runs, 2);
}

TEST(DirtyHooks, OneThatIsAddedByAHookWaitsForTheNextWalk) {
    Row net;
    static int runs = 0;
    runs = 0;
    Callbacks::pendingDirtyHooks.append([](Attribute*) {
        ++runs;
        Callbacks::pendingDirtyHooks.append([](Attribute*) { runs += 10; });
    });
    net.at("A.in")->markDirty(true);
    EXPECT_EQ(runs, 1);
    net.at("A.in")->markDirty(true);
    EXPECT_EQ(runs, 11);
    CallbackLog::clearSlots();
}

TEST(DirtyHooks, MarkingManyRunsThemWithTheFirst) {
    Row net;
    CallbackLog log;
    net.manager.setMonitoring(false);
    Callbacks::pendingDirtyHooks.append(
        [](Attribute* start) { CallbackLog::add("hook " + Net::nameOf(start)); });
    net.manager.markAllDirty({net.at("B.in"), net.at("A.in")});
    EXPECT_EQ(log.takeAll(), "hook B.in");
}

// Listeners.

TEST(Listeners, AreCalledJustAfterTheirMarkInOrderOfTheChain) {
    Net net;
    auto* a = net.add<ScriptNode>("A");
    a->in("in");
    auto* first = a->out<ListeningAttribute>("first");
    a->out("second")->setNotifiesDirty(true);
    a->setAttributeAffectAllOutputsByAllInputs();
    net.setAllClean(true);
    std::string seen;
    first->then = [&] { seen = net.clean(); };
    CallbackLog log;
    net.at("A.in")->markDirty(false);
    EXPECT_EQ(log.takeAll(), "onDirtied A.first, dirtied A.second, clean A.in, clean A.in");
    EXPECT_EQ(seen, "A.second");
    net.manager.setMonitoring(false);
    net.at("A.in")->markDirty(true);
    EXPECT_EQ(log.takeAll(), "onDirtied A.first");
}

TEST(Listeners, OnesWithoutTheFlagAreNotTold) {
    Row net;
    net.setAllClean(true);
    net.at("C.in")->setNotifiesDirty(true);
    CallbackLog log;
    net.at("A.in")->markDirty(false);
    EXPECT_EQ(log.take("dirtied"), "C.in");
    net.at("C.in")->setNotifiesDirty(false);
    net.at("A.in")->markDirty(true);
    EXPECT_EQ(log.take("dirtied"), "");
}

TEST(Listeners, MayDeleteWhatTheChainStillHolds) {
    Net net;
    auto* a = net.add<ScriptNode>("A");
    a->in("in");
    auto* first = a->out<ListeningAttribute>("first");
    a->out<ListeningAttribute>("second");
    a->out("third")->setNotifiesDirty(true);
    a->setAttributeAffectAllOutputsByAllInputs();
    first->then = [&] { net.at("A.second")->deleteIt(); };
    net.setAllClean(true);
    CallbackLog log;
    net.at("A.in")->markDirty(false);
    const std::string told = log.take("onDirtied");
    EXPECT_EQ(told, "A.first");
    EXPECT_EQ(net.clean(), "");
    EXPECT_EQ(a->findAttribute("second"), nullptr);
}

TEST(Listeners, MayDeleteThemselves) {
    Net net;
    auto* a = net.add<ScriptNode>("A");
    a->in("in");
    auto* first = a->out<ListeningAttribute>("first");
    first->setNotifiesDirty(true);
    a->out("last")->setNotifiesDirty(true);
    a->setAttributeAffectAllOutputsByAllInputs();
    first->then = [&] { first->deleteIt(); };
    CallbackLog log;
    net.at("A.in")->markDirty(true);
    EXPECT_EQ(log.take("dirtied"), "A.last");
    EXPECT_EQ(a->findAttribute("first"), nullptr);
}

TEST(Listeners, MayDeleteWhereTheWalkBegan) {
    static Net* current = nullptr;
    Net net;
    current = &net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.at("A.out")->setNotifiesDirty(true);
    net.setAllClean(true);
    CallbackLog log;
    Callbacks::_attributeDirtiedCallback = [](Attribute*) { current->at("A.in")->deleteIt(); };
    net.at("A.in")->valueChanged();
    EXPECT_EQ(a->findAttribute("in"), nullptr);
    EXPECT_EQ(log.take("valueChanged"), "");
}

TEST(Listeners, CleanCallbackMayDeleteItsAttribute) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    CallbackLog log;
    Callbacks::_attributeCleanCallback = [](Attribute* attribute) {
        CallbackLog::add("gone " + attribute->name());
        Callbacks::_attributeCleanCallback = nullptr;
        attribute->deleteIt();
    };
    net.at("A.in")->valueChanged();
    EXPECT_EQ(log.take("gone"), "in");
    EXPECT_EQ(a->findAttribute("in"), nullptr);
}

TEST(Listeners, MayDeleteEntriesOfAListThatIsMarked) {
    for (const bool oneByOne : {false, true}) {
        Net net;
        net.add<ScriptNode>("A")->ports({"x", "y", "z"}, {"out"});
        net.at("A.z")->setNotifiesDirty(oneByOne);
        net.setAllClean(true);
        CallbackLog log;
        Callbacks::_attributeCleanCallback = [](Attribute* attribute) {
            CallbackLog::add("told " + attribute->name());
            Attribute* y = attribute->parent()->findAttribute("y");
            if (y) y->deleteIt();
        };
        net.manager.markAllDirty({net.at("A.x"), net.at("A.y"), net.at("A.z")});
        EXPECT_EQ(log.take("told"), "x, x, z, z") << oneByOne;
        EXPECT_EQ(net.clean(), "");
    }
}

// Marking many at once.

TEST(MarkAllDirty, MarksEveryChainAndTellsTwicePerEntry) {
    Row net;
    net.setAllClean(true);
    CallbackLog log;
    net.manager.markAllDirty({net.at("C.in"), net.at("B.in")});
    EXPECT_EQ(net.clean(), "A.in A.out");
    EXPECT_EQ(log.takeAll(), "clean C.in, clean C.in, clean B.in, clean B.in");
}

TEST(MarkAllDirty, ForARunMarksTheListAsWanted) {
    Row net;
    net.manager.clearToBeEvaluatedFlags();
    EXPECT_FALSE(net.at("A.in")->toBeEvaluated());
    net.manager.markAllDirtyForRun({net.at("A.in"), net.at("A.out")});
    EXPECT_TRUE(net.at("A.in")->toBeEvaluated());
    EXPECT_TRUE(net.at("A.out")->toBeEvaluated());
    EXPECT_FALSE(net.at("B.in")->toBeEvaluated());
}

TEST(MarkAllDirty, SeesWhatTheCallbackMadeClean) {
    static Net* current = nullptr;
    for (const bool byFlag : {false, true}) {
        static bool flagOnly;
        flagOnly = byFlag;
        Row net;
        current = &net;
        net.setAllClean(true);
        CallbackLog log;
        Callbacks::_attributeCleanCallback = [](Attribute* attribute) {
            if (attribute->name() != "in" || attribute->parent()->name() != "A") return;
            if (flagOnly) {
                current->at("C.out")->setClean(true);
            } else {
                current->at("C.out")->clean();
            }
        };
        net.manager.markAllDirty({net.at("A.in"), net.at("B.in")});
        EXPECT_FALSE(net.at("C.out")->isClean()) << byFlag;
    }
}

TEST(MarkAllDirty, SeesWhatTheCallbackConnected) {
    static Net* current = nullptr;
    Net net;
    current = &net;
    auto* a = net.add<ScriptNode>("A");
    for (const char* name : {"x", "y"}) a->in(name);
    a->out("out");
    net.add<ScriptNode>("B")->out("out");
    a->setAttributeAffect(net.at("A.x"), net.at("A.out"));
    a->setAttributeAffect(net.at("A.y"), net.at("A.out"));
    net.setAllClean(true);
    CallbackLog log;
    Callbacks::_attributeCleanCallback = [](Attribute* attribute) {
        if (attribute->name() == "x") current->at("A.out")->addAffect(current->at("B.out"));
    };
    net.manager.markAllDirty({net.at("A.x"), net.at("A.y")});
    EXPECT_FALSE(net.at("B.out")->isClean());
}

TEST(ClearToBeEvaluated, OnlyWhileMonitoring) {
    Row net;
    net.manager.setMonitoring(false);
    net.manager.clearToBeEvaluatedFlags();
    EXPECT_TRUE(net.at("A.in")->toBeEvaluated());
    net.manager.setMonitoring(true);
    net.manager.clearToBeEvaluatedFlags();
    for (const Attribute* attribute : net.all()) EXPECT_FALSE(attribute->toBeEvaluated());
}

// Chains that are not kept current.

TEST(CacheDisabled, ChainsStayAsTheyWere) {
    Row net;
    net.manager.setCacheDisabled(true);
    net.cut("C.in");
    net.add<ScriptNode>("D")->ports({"in"}, {"out"});
    net.link("B.out", "D.in");
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in B.out C.in C.out");
    EXPECT_EQ(chainOf(net, "D.in"), "D.in");
    net.setAllClean(true);
    net.at("A.in")->markDirty(false);
    EXPECT_EQ(net.clean(), "D.in D.out");
    net.manager.setCacheDisabled(false);
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in B.out C.in C.out");
    net.setAllClean(true);
    net.at("A.in")->markDirty(false);
    EXPECT_EQ(net.clean(), "D.in D.out");
}

TEST(CacheDisabled, RebuildingOneReachesWhatLiesUpstream) {
    Row net;
    net.manager.setCacheDisabled(true);
    net.cut("C.in");
    net.manager.rebuildDirtyChains(net.at("B.out"));
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in B.out");
    EXPECT_EQ(chainOf(net, "B.out"), "B.out");
    net.link("B.out", "C.in");
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in B.out");
    net.manager.setCacheDisabled(false);
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in B.out");
    net.manager.rebuildDirtyChains(net.at("B.out"));
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in B.out C.in C.out");
}

TEST(CacheDisabled, RebuildingAllBringsEveryChainUpToDate) {
    Row net;
    net.manager.setCacheDisabled(true);
    net.cut("C.in");
    net.manager.setCacheDisabled(false);
    net.manager.rebuildAllDirtyChains();
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in B.out");
    net.link("B.out", "C.in");
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in B.out C.in C.out");
}

TEST(CacheDisabled, ALaterConnectionRebuildsWhatItReaches) {
    Row net;
    net.manager.setCacheDisabled(true);
    net.cut("C.in");
    net.cut("B.in");
    net.manager.setCacheDisabled(false);
    net.link("A.out", "B.in"); // A and what lies above it
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in B.out");
    EXPECT_EQ(chainOf(net, "B.in"), "B.in B.out C.in C.out");
}

TEST(RemoveAffect, ChainsShowItUntilTheyAreRebuilt) {
    Row net;
    net.at("B.in")->removeAffect(net.at("B.out"));
    EXPECT_EQ(net.at("B.in")->affects().size(), 0u);
    EXPECT_EQ(net.at("B.out")->affectedBy().size(), 0u);
    EXPECT_EQ(chainOf(net, "B.in"), "B.in B.out C.in C.out");
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in B.out C.in C.out");
    net.setAllClean(true);
    net.at("A.in")->markDirty(false);
    EXPECT_EQ(net.clean(), "");
    Array<Attribute*> list;
    net.manager.collectDownstream(net.at("A.in"), list); // the graph itself knows
    EXPECT_EQ(Net::namesOf(list), "A.in A.out B.in");
    net.manager.rebuildDirtyChains(net.at("B.in"));
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in");
}

TEST(RemoveAffect, UnknownOnesAreIgnored) {
    Row net;
    net.at("A.in")->removeAffect(nullptr);
    net.at("A.in")->removeAffect(net.at("B.out"));
    net.at("A.in")->addAffect(nullptr);
    net.at("A.in")->addAffect(net.at("A.out"));
    EXPECT_EQ(net.at("A.in")->affects().size(), 1u);
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in B.out C.in C.out");
}

TEST(StaleChains, DropAnAttributeThatDies) {
    Row net;
    net.at("B.in")->removeAffect(net.at("B.out"));
    net.at("B.out")->deleteIt();
    // What lay behind it is out of reach as well.
    EXPECT_EQ(chainOf(net, "A.in"), "A.in A.out B.in");
    net.at("A.in")->markDirty(true);
    Row other;
    other.manager.setCacheDisabled(true);
    other.cut("C.in");
    other.at("B.in")->deleteIt();
    EXPECT_EQ(chainOf(other, "A.in"), "A.in A.out");
    EXPECT_EQ(chainOf(other, "B.out"), "B.out C.in C.out");
    other.at("C.in")->deleteIt();
    EXPECT_EQ(chainOf(other, "B.out"), "B.out");
    other.manager.setCacheDisabled(false);
    other.at("A.in")->markDirty(true);
}

// Random networks against the model.

namespace {

class Comparison {
public:
    Comparison(unsigned seed, bool listening, bool cacheSwitches)
        : random_(seed), listening_(listening), cacheSwitches_(cacheSwitches) {
        current() = this;
        Callbacks::_attributeCleanCallback = [](Attribute* a) { current()->note("clean ", a); };
        Callbacks::_attributeDirtiedCallback = [](Attribute* a) { current()->note("dirty ", a); };
        const int count = 3 + static_cast<int>(random_() % 8);
        for (int i = 0; i < count; ++i) addNode("N" + std::to_string(i));
    }
    ~Comparison() { CallbackLog::clearSlots(); }

    void run(int steps) {
        for (int step = 0; step < steps && !::testing::Test::HasFatalFailure(); ++step) {
            log_.clear();
            model_.log.clear();
            change();
            ASSERT_EQ(log_, model_.log) << "step " << step << ": " << what_;
            ASSERT_EQ(flags(), model_.flags()) << "step " << step << ": " << what_;
            compareChain(pick());
        }
    }

private:
    static Comparison*& current() {
        static Comparison* comparison = nullptr;
        return comparison;
    }

    void addNode(const std::string& name) {
        auto* node = net_.add<Node>(name);
        for (const char* input : {"a", "b"}) {
            auto* a = new Attribute(&net_.manager, input, node);
            node->addInputAttribute(a);
            note(a, false);
        }
        for (const char* output : {"x", "y"}) {
            auto* a = new Attribute(&net_.manager, output, node);
            node->addOutputAttribute(a);
            note(a, true);
        }
    }
    void note(Attribute* attribute, bool isOutput) {
        if (listening_ && random_() % 3 == 0) attribute->setNotifiesDirty(true);
        model_.add(attribute->id(), attribute->parent()->id(), isOutput,
                   attribute->notifiesDirty());
        all_.push_back(attribute);
    }
    void note(const char* word, Attribute* attribute) {
        log_.push_back(word + std::to_string(attribute->id()) + " " + flags());
    }

    std::string flags() const {
        std::string text;
        for (const Attribute* attribute : all_) text += attribute->isClean() ? 'c' : 'd';
        return text;
    }
    Attribute* pick() { return all_[random_() % all_.size()]; }

    void compareChain(Attribute* attribute) {
        std::vector<int> ids;
        for (const Attribute* entry : attribute->dirtyChain()) ids.push_back(entry->id());
        ASSERT_EQ(ids, model_.chainOf(attribute->id())) << what_;
    }

    void change() {
        Attribute* const a = pick();
        Attribute* const b = pick();
        const std::string pair = std::to_string(a->id()) + " " + std::to_string(b->id());
        const unsigned kind = random_() % 100;
        NetworkManager& manager = net_.manager;
        if (kind < 22) {
            what_ = "connect " + pair;
            const bool done = manager.connect(a, b, nullptr);
            ASSERT_EQ(done, model_.connect(a->id(), b->id())) << what_;
        } else if (kind < 30) {
            what_ = "cut " + pair;
            a->disconnectSource();
            model_.disconnectSource(a->id());
        } else if (kind < 34) {
            what_ = "remove destination " + pair;
            a->removeDestination(b);
            model_.removeDestination(a->id(), b->id());
        } else if (kind < 44) {
            what_ = "affect " + pair;
            a->parent()->setAttributeAffectPublic(a, b);
            model_.setAffect(a->id(), b->id());
        } else if (kind < 48) {
            what_ = "remove affect " + pair;
            a->removeAffect(b);
            model_.removeAffect(a->id(), b->id());
        } else if (kind < 66) {
            what_ = "pull " + pair;
            a->pull();
            model_.pull(a->id());
        } else if (kind < 76) {
            const bool force = random_() % 2 == 0;
            what_ = "mark " + pair;
            a->markDirty(force);
            model_.walk(a->id(), force);
        } else if (kind < 82) {
            what_ = "value " + pair;
            a->valueChanged();
            model_.walk(a->id(), false);
        } else if (kind < 88) {
            markMany();
        } else if (kind < 90) {
            what_ = "hold";
            manager.setDirtyHold(!manager.dirtyHold());
            model_.dirtyHold = manager.dirtyHold();
        } else if (kind < 92) {
            what_ = "rebuild " + pair;
            manager.rebuildDirtyChains(a);
            model_.rebuild(a->id());
        } else if (kind < 96 && cacheSwitches_) {
            what_ = "cache";
            manager.setCacheDisabled(!manager.cacheDisabled());
            model_.cacheDisabled = manager.cacheDisabled();
        } else if (kind < 97 && !manager.cacheDisabled()) {
            what_ = "rebuild all";
            manager.rebuildAllDirtyChains();
            model_.rebuildAll();
        }
    }

    void markMany() {
        what_ = "mark many";
        Array<Attribute*> list;
        for (unsigned i = 0; i < 1 + random_() % 6; ++i) list.append(pick());
        net_.manager.markAllDirty(list);
        for (const Attribute* attribute : list) model_.walk(attribute->id(), true);
    }

    std::mt19937 random_;
    const bool listening_;
    const bool cacheSwitches_;
    Net net_;
    LiteralNetwork model_;
    std::vector<Attribute*> all_;
    std::vector<std::string> log_;
    std::string what_;
};

} // namespace

TEST(DirtyWalk, FlagsEqualTheLiteralModelAtEveryCallback) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        Comparison(seed, false, false).run(250);
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
}

TEST(DirtyWalk, FlagsEqualTheLiteralModelWithListeners) {
    for (unsigned seed = 101; seed <= 140; ++seed) {
        Comparison(seed, true, false).run(250);
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
}

TEST(DirtyWalk, FlagsEqualTheLiteralModelWithStaleChains) {
    for (unsigned seed = 201; seed <= 280; ++seed) {
        Comparison(seed, seed % 2 == 0, true).run(300);
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
}

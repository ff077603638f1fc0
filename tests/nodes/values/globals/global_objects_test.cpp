// SPDX-License-Identifier: Apache-2.0
// Global variables of objects behind pointers, with an element type of the test: who owns copies,
// and what happens when an object dies.
#include <gtest/gtest.h>

#include "core/exceptions.h"
#include "graph/graph_scene.h"
#include "graph/scene_manager.h"
#include "nodes/values/globals/common_storage.h"
#include "nodes/values/logic_net.h"
#include "nodes/values/test_element.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using sluice_tests::Probe;
using sluice_tests::ProbeAttribute;
using tidemark::TM_String;
using tidemark::sluice::graph::SceneManager;

/// A source of probes, and nodes that set and get them: p > s, g.
class ProbeNet : public LogicNet {
public:
    explicit ProbeNet(const TM_String& word = "Probe") {
        add("ProbeSource", "p");
        add("Set" + word + "GlobalVariable", "s");
        add("Get" + word + "GlobalVariable", "g");
        EXPECT_TRUE(link("p.out", "s.in"));
        strings("s.name", {"v"});
        strings("g.name", {"v"});
    }
    void set(std::initializer_list<Probe*> probes) {
        auto& value = as<ProbeAttribute>("p.out").ownPointers();
        value.setSize(static_cast<uint32_t>(probes.size()));
        uint32_t i = 0;
        for (Probe* probe : probes) value.setValueAt(i++, probe);
        pin("s.through").markDirty(true);
        refresh("s.through");
    }
    const PointerValueBase& get() {
        pin("g.out").markDirty(true);
        refresh("g.out");
        return as<ProbeAttribute>("g.out").pointers();
    }
    Probe* at(uint32_t index) { return static_cast<Probe*>(get().valueAt(index)); }
};

class GlobalObjects : public testing::Test {
protected:
    GlobalObjects() { CommonStorage::instance().removeAll(); }
    ~GlobalObjects() override {
        CommonStorage::instance().removeAll();
        EXPECT_EQ(Probe::alive, 0);
    }
    sluice_tests::ProbeTypes types;
};

TEST_F(GlobalObjects, JoinWithTheirOwnNamesAndPins) {
    ProbeNet net;
    EXPECT_EQ(net.node("s").className(), "SetProbeGlobalVariable");
    EXPECT_EQ(net.node("g").className(), "GetProbeGlobalVariable");
    EXPECT_EQ(net.pin("g.out").className(), "ProbeAttribute");
    EXPECT_EQ(net.node("s").refInputAttributes().size(), 3u);
    Probe probe(1);
    net.set({&probe});
    EXPECT_EQ(CommonStorage::instance().names("Probe").size(), 1u);
    EXPECT_EQ(CommonStorage::instance().names("Num").size(), 0u);
}

TEST_F(GlobalObjects, TheFormWithoutCopiesHasNoPinsForThem) {
    ProbeNet net("PlainProbe");
    EXPECT_EQ(net.node("s").refInputAttributes().size(), 2u);
    EXPECT_EQ(net.node("s").refOutputAttributes().size(), 1u);
    EXPECT_EQ(net.node("s").getDescription(),
              "This node creates a reference to the input pin in global memory to be used within "
              "other Sluice graphs through the GetGlobalVariable nodes.");
    Probe probe(1);
    net.set({&probe});
    EXPECT_EQ(net.at(0), &probe);
}

TEST_F(GlobalObjects, ACopyOwnsObjectsOfItsOwn) {
    ProbeNet net;
    Probe a(1);
    net.set({&a, nullptr});
    EXPECT_EQ(Probe::alive, 2);
    ASSERT_NE(net.at(0), nullptr);
    EXPECT_NE(net.at(0), &a);
    EXPECT_EQ(net.at(0)->number, 1);
    EXPECT_EQ(net.at(1), nullptr);
    net.refresh("s.out copy");
    EXPECT_EQ(net.pin("s.out copy").currentValue(), &net.get());
}

TEST_F(GlobalObjects, AReplacedCopyFreesItsObjectsAndReadersFindNull) {
    ProbeNet net;
    Probe a(1);
    net.set({&a});
    const PointerValueBase& before = net.get();
    net.set({&a, &a});
    EXPECT_EQ(Probe::alive, 3);
    EXPECT_EQ(&net.as<ProbeAttribute>("g.out").pointers(), &before);
    EXPECT_EQ(before.valueAt(0), nullptr);
    EXPECT_EQ(net.at(1)->number, 1);
    CommonStorage::instance().removeAll();
    EXPECT_EQ(Probe::alive, 1);
}

TEST_F(GlobalObjects, ACopyThatFailsFreesWhatItMade) {
    ProbeNet net;
    Probe a(1);
    Probe bad(Probe::uncopyable);
    net.set({&a});
    EXPECT_THROW(net.set({&a, &a, &bad}), tidemark::sluice::graph::GenericGraphException);
    EXPECT_EQ(net.messages("s"),
              "[critical] Unable to allocate the necessary memory to copy data at position 2.\n");
    EXPECT_EQ(Probe::alive, 3);
    EXPECT_EQ(net.at(0)->number, 1);
}

TEST_F(GlobalObjects, AnInterruptedCopyLeavesTheVariable) {
    ProbeNet net;
    Probe a(1);
    Probe b(2);
    net.set({&a});
    net.as<ProbeAttribute>("p.out").ownPointers().setValue(&b);
    net.manager().setEvaluating(true);
    net.manager().requestInterrupt();
    EXPECT_THROW(net.node("s").update(&net.pin("s.through")), tidemark::TM_Exception);
    net.manager().clearInterrupt();
    net.manager().setEvaluating(false);
    EXPECT_EQ(Probe::alive, 3);
    EXPECT_EQ(net.at(0)->number, 1);
}

TEST_F(GlobalObjects, NoVariableOutlivesAnObjectThatItsMakerDeletes) {
    for (const bool byManager : {true, false}) {
        ProbeNet net;
        net.bits("s.store copy", {false});
        LogicNet unrelated;
        auto dying = std::make_unique<Probe>(1);
        Probe staying(2);
        {
            ProbeNet maker;
            maker.bits("s.store copy", {false});
            maker.set({dying.get(), &staying});
        }
        tidemark::sluice::graph::SL_GraphScene scene;
        if (byManager) {
            SceneManager::instance().removeAllReferencesToPointers<ProbeAttribute>({dying.get()});
        } else {
            scene.removeAllReferencesToPointer<ProbeAttribute>(dying.get());
        }
        dying.reset();
        EXPECT_EQ(net.at(0), nullptr);
        EXPECT_EQ(net.at(1), &staying);
    }
}

TEST_F(GlobalObjects, ACopyingNodeThatGoesTakesItsObjectsOutOfVariables) {
    Probe a(1);
    ProbeNet reader;
    {
        LogicNet maker;
        maker.add("ProbeSource", "p");
        maker.add("ProbeCopy", "c");
        maker.add("SetProbeGlobalVariable", "s");
        maker.link("p.out", "c.in");
        maker.link("c.out", "s.in");
        maker.strings("s.name", {"v"});
        maker.bits("s.store copy", {false});
        maker.as<ProbeAttribute>("p.out").ownPointers().setValueAt(0, &a);
        maker.refresh("s.through");
        ASSERT_NE(reader.at(0), nullptr);
        EXPECT_EQ(reader.at(0)->number, 1);
    }
    EXPECT_EQ(Probe::alive, 1);
    EXPECT_EQ(reader.at(0), nullptr);
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Global variables set and read by the threads of a kernel: whose value counts is up to their
// order, but it is always one that somebody set.
#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "nodes/control/kernel_scene.h"
#include "nodes/values/globals/common_storage.h"
#include "nodes/values/logic_net.h"
#include "nodes/values/test_element.h"

namespace {

using namespace control_tests;
using weft::CommonStorage;

using Reals = std::vector<float>;

constexpr int elements = 400;

class GlobalThreads : public testing::Test {
protected:
    GlobalThreads() { CommonStorage::instance().removeAll(); }
    ~GlobalThreads() override { CommonStorage::instance().removeAll(); }

    static TM_String stored(const char* element) {
        const weft::GlobalVariable found = CommonStorage::instance().find(element, "shared");
        return found.value ? found.value->asString() : "nothing";
    }
};

/// In C, on four threads: what `source` gives is set as a variable, which is read as well; both are
/// joined to IO.y.
class SharingKernel : public KernelScene {
public:
    explicit SharingKernel(bool storesCopy) : KernelScene(std::vector<float>(elements, 1.0f)) {
        set("C.K.threads", 4);
        storesCopy_ = storesCopy;
    }
    void addVariable(const TM_String& word, const TM_String& source) {
        Node* compound = node("C");
        add(("Set" + word + "GlobalVariable").c_str(), "Set", compound);
        add(("Get" + word + "GlobalVariable").c_str(), "Get", compound);
        pin("C.Set.name")->setStringValue("shared");
        pin("C.Get.name")->setStringValue("shared");
        pin("C.Set.store copy")->setBitValue(storesCopy_);
        link(source, "C.Set.in");
    }
    /// "shared", or what `name` says, computed anew for every element.
    void addChangingName(const TM_String& name, const TM_String& pinName) {
        Node* compound = node("C");
        add("IntegerToString", "Digits", compound);
        add("StringReplace", "Name", compound);
        pin("C.Name.string")->setStringValue(name);
        link("C.K.index", "C.Digits.integer");
        link("C.Digits.string", "C.Name.before");
        link("C.Name.result", pinName);
    }

private:
    bool storesCopy_ = true;
};

TEST_F(GlobalThreads, NumbersAreAlwaysOnesThatWereSet) {
    for (const bool copy : {true, false}) {
        SharingKernel net(copy);
        net.addVariable("Num", "C.K.index");
        net.addChangingName("shared", "C.Get.name");
        Node* compound = net.node("C");
        net.add("NumDemux", "Type", compound);
        net.add("Note", "Seen", compound);
        net.add("Add", "Both", compound);
        net.link("C.Get.out", "C.Type.input");
        net.link("C.Type.integer", "C.Seen.in");
        net.link("C.Set.through", "C.Both.in0");
        net.link("C.Seen.result", "C.Both.in1");
        net.link("C.Both.result", "C.IO.y");
        const std::vector<int32_t> seen = net.indicesOfRun();
        EXPECT_EQ(seen.size(), static_cast<std::size_t>(elements));
        for (const int32_t number : seen) EXPECT_TRUE(number >= 0 && number < elements) << number;
        EXPECT_EQ(stored("Num").substr(0, 4), "[1] ");
        EXPECT_TRUE(net.host.posts.empty());
    }
}

TEST_F(GlobalThreads, StringsAreAlwaysOnesThatWereSet) {
    for (const bool copy : {true, false}) {
        SharingKernel net(copy);
        Node* compound = net.node("C");
        net.add("Spell", "Words", compound);
        net.link("C.K.index", "C.Words.in");
        net.addVariable("String", "C.Words.text");
        net.add("StringConcat2", "Both", compound);
        net.link("C.Set.out copy", "C.Both.left");
        net.link("C.Get.out", "C.Both.right");
        net.link("C.Both.out", "C.IO.y");
        net.scene.run();
        const TM_String words = "a text too long to lie in place ";
        EXPECT_EQ(stored("String").substr(0, words.size()), words);
        const TM_String both = net.at("E.evaluate")->currentValue()->asString();
        EXPECT_EQ(both.substr(0, words.size()), words);
        EXPECT_NE(both.find(words, 1), TM_String::npos) << both;
        EXPECT_TRUE(net.host.posts.empty());
    }
}

// The value of the kernel's output is the variable itself: nothing of the thread's copy stays.
TEST_F(GlobalThreads, WhatIsReadCanLeaveTheKernel) {
    for (const int threads : {1, 4}) {
        SharingKernel net(true);
        net.set("C.K.threads", threads);
        net.addVariable("Num", "C.K.index");
        net.link("C.Get.out", "C.IO.y");
        sluice_tests::LogicNet other;
        other.add("SetNumGlobalVariable", "s");
        other.add("Real", "r");
        other.link("r.real", "s.in");
        other.strings("s.name", {"shared"});
        other.numbers<float>("r.in", {7, 8});
        other.refresh("s.through");
        net.scene.run();
        EXPECT_EQ(net.reals("E.evaluate"), (Reals{7, 8})) << threads;
        other.numbers<float>("r.in", {9});
        other.refresh("s.through");
        net.scene.run();
        EXPECT_EQ(net.reals("E.evaluate"), (Reals{9})) << threads;
    }
}

// Objects that a thread stored die when no thread can use them any more.
TEST_F(GlobalThreads, CopiedObjectsOfReplacedVariablesWaitForTheEnd) {
    sluice_tests::ProbeTypes types;
    {
        sluice_tests::Probe probe(3);
        sluice_tests::LogicNet outer;
        outer.add("ProbeSource", "p");
        outer.as<sluice_tests::ProbeAttribute>("p.out").ownPointers().setValueAt(0, &probe);
        outer.add("SetProbeGlobalVariable", "s");
        outer.strings("s.name", {"source"});
        outer.link("p.out", "s.in");
        outer.refresh("s.through");
        SharingKernel net(true);
        Node* compound = net.node("C");
        net.add("GetProbeGlobalVariable", "Source", compound);
        net.addChangingName("source", "C.Source.name");
        net.addVariable("Probe", "C.Source.out");
        net.add("ArraySize", "Size", compound);
        net.link("C.Set.through", "C.Size.array");
        net.link("C.Size.size", "C.IO.y");
        net.scene.run();
        EXPECT_EQ(net.integer("E.evaluate"), 1);
        EXPECT_EQ(sluice_tests::Probe::alive, 2 + elements);
        outer.pin("s.through").markDirty(true);
        outer.refresh("s.through");
        EXPECT_EQ(sluice_tests::Probe::alive, 3);
        CommonStorage::instance().removeAll();
        EXPECT_EQ(sluice_tests::Probe::alive, 1);
    }
}

// Without a kernel: graphs on threads of their own that exchange copies.
TEST_F(GlobalThreads, GraphsOnThreadsOfTheirOwnExchangeCopies) {
    const auto prepare = [](sluice_tests::LogicNet& net) {
        net.add("SetNumGlobalVariable", "s");
        net.add("GetNumGlobalVariable", "g");
        net.type("s.in", "Real");
        net.strings("s.name", {"shared"});
        net.strings("g.name", {"shared"});
    };
    const auto work = [](sluice_tests::LogicNet& net, float number) {
        for (int i = 0; i < 300; ++i) {
            net.numbers<float>("s.in", {number, number, number});
            net.refresh("s.out copy");
            net.pin("g.out").markDirty(true);
            const TM_String read = net.text("g.out");
            ASSERT_TRUE(read == "[3] 1,1,1" || read == "[3] 2,2,2") << read;
        }
    };
    // Scenes come and go on one thread: each takes the process's callbacks off for a moment.
    sluice_tests::LogicNet one;
    sluice_tests::LogicNet two;
    prepare(one);
    prepare(two);
    std::thread first(work, std::ref(one), 1.0f);
    std::thread second(work, std::ref(two), 2.0f);
    first.join();
    second.join();
}

} // namespace

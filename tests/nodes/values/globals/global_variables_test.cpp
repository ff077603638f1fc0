// SPDX-License-Identifier: Apache-2.0
// Global variables: setting, getting, copies and references, types, and what stays behind.
#include "nodes/values/globals/global_variables.h"

#include <gtest/gtest.h>

#include "core/exceptions.h"
#include "core/limits.h"
#include "core/numeric.h"
#include "graph/scene_manager.h"
#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::declared;
using sluice_tests::LogicNet;
using tidemark::TM_String;

const TM_String numbers = "\"Integer\", \"Integer64\", \"Real\", \"Vector3\", \"Color4\", "
                          "\"Quaternion\", \"Matrix4\"";

CommonStorage& globals() { return CommonStorage::instance(); }

TM_String namesOf(const TM_String& element) {
    TM_String list;
    for (const TM_String& name : globals().names(element)) list += name + " ";
    return list;
}

class GlobalVariables : public testing::Test {
protected:
    void SetUp() override { globals().removeAll(); }
    void TearDown() override {
        tidemark::limits::set({});
        globals().removeAll();
    }
};

/// A Real set as a variable: R > S.
class SettingNet : public LogicNet {
public:
    explicit SettingNet(const char* variable, std::initializer_list<float> values = {1.5f}) {
        add("Real", "r");
        add("SetNumGlobalVariable", "s");
        link("r.real", "s.in");
        strings("s.name", {variable});
        numbers<float>("r.in", values);
    }
    void set() { refresh("s.through"); }
};

class GettingNet : public LogicNet {
public:
    explicit GettingNet(const char* variable) {
        add("GetNumGlobalVariable", "g");
        strings("g.name", {variable});
    }
    TM_String get() {
        pin("g.out").markDirty(true);
        return text("g.out");
    }
};

// Declarations.

TEST_F(GlobalVariables, DeclareTheirPins) {
    EXPECT_EQ(declared("SetNumGlobalVariable"),
              "SetNumGlobalVariable\n"
              "in name! StringAttribute \"String\" = \n"
              "in in NumericAttribute " +
                  numbers +
                  " = Integer:0 Integer64:0 Real:0 Vector3:0 Color4:(0,0,0,1) "
                  "Quaternion:(1,0,0,0) Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)\n"
                  "in store copy! BitArrayAttribute \"Bit\" = 1\n"
                  "out through PassThroughAttribute " +
                  numbers +
                  "\n"
                  "out out copy NumericAttribute " +
                  numbers + "\n");
    EXPECT_EQ(declared("GetNumGlobalVariable"), "GetNumGlobalVariable\n"
                                                "in name! StringAttribute \"String\" = \n"
                                                "out out NumericAttribute " +
                                                    numbers + "\n");
    EXPECT_EQ(declared("SetStringGlobalVariable"), "SetStringGlobalVariable\n"
                                                   "in name! StringAttribute \"String\" = \n"
                                                   "in in StringAttribute \"String\" = \n"
                                                   "in store copy! BitArrayAttribute \"Bit\" = 1\n"
                                                   "out through PassThroughAttribute \"String\"\n"
                                                   "out out copy StringAttribute \"String\"\n");
    EXPECT_EQ(declared("GetStringGlobalVariable"), "GetStringGlobalVariable\n"
                                                   "in name! StringAttribute \"String\" = \n"
                                                   "out out StringAttribute \"String\"\n");
    for (const char* type : {"SetNumGlobalVariable", "GetNumGlobalVariable",
                             "SetStringGlobalVariable", "GetStringGlobalVariable"}) {
        EXPECT_EQ(sluice_tests::missingTexts(type), "") << type;
        EXPECT_EQ(sluice_tests::missingAffects(type), "") << type;
    }
}

TEST_F(GlobalVariables, DescribeThemselves) {
    LogicNet net;
    for (const char* type : {"SetNumGlobalVariable", "SetStringGlobalVariable"}) {
        const Node& set = net.add(type, type);
        EXPECT_EQ(set.getDescription(),
                  "This node allows the user to create a reference or a copy of the input pin in "
                  "global memory to be used within other Sluice graph through the "
                  "GetGlobalVariable nodes.");
        EXPECT_EQ(set.findAttribute("in")->getDescription(), "The value connected to the input");
        EXPECT_EQ(set.findAttribute("out copy")->getDescription(),
                  "The value copied in memory in case a copy has been performed. The same input "
                  "value otherwise.");
    }
    for (const char* type : {"GetNumGlobalVariable", "GetStringGlobalVariable"}) {
        EXPECT_EQ(net.add(type, type).getDescription(),
                  "This node returns a reference to previously stored variables in global memory "
                  "(using the SetGlobalVariable-Nodes).");
    }
}

TEST_F(GlobalVariables, StandInTwoCategories) {
    auto& manager = tidemark::sluice::graph::SceneManager::instance();
    const auto categories = [&](const char* type) {
        return manager.getNodeFactoryFromType(type)->getDescriptor().getAllowedCategories();
    };
    using Names = tidemark::Array<TM_String>;
    for (const char* type : {"SetNumGlobalVariable", "GetNumGlobalVariable"}) {
        EXPECT_EQ(categories(type), (Names{"Math", "Execution.Global Variable"}));
    }
    for (const char* type : {"SetStringGlobalVariable", "GetStringGlobalVariable"}) {
        EXPECT_EQ(categories(type), (Names{"String", "Execution.Global Variable"}));
    }
    EXPECT_EQ(categories("GetAllGlobalVariableNames"), (Names{"Execution.Global Variable"}));
}

// Setting and getting.

TEST_F(GlobalVariables, OneGraphReadsWhatAnotherSet) {
    SettingNet setting("height", {1.5f, 2.5f});
    GettingNet getting("height");
    setting.set();
    EXPECT_EQ(getting.get(), "[3] 1.5,2.5");
    EXPECT_TRUE(getting.pin("g.out").isClean());
}

TEST_F(GlobalVariables, StringsAreVariablesOfTheirOwn) {
    SettingNet numbers("same");
    LogicNet texts;
    texts.add("SetStringGlobalVariable", "s");
    texts.add("GetStringGlobalVariable", "g");
    texts.strings("s.name", {"same"});
    texts.strings("g.name", {"same"});
    texts.strings("s.in", {"one", "two"});
    numbers.set();
    EXPECT_EQ(texts.list("g.out"), "");
    texts.refresh("s.through");
    texts.pin("g.out").markDirty(true);
    EXPECT_EQ(texts.list("g.out"), "one|two");
    EXPECT_EQ(GettingNet("same").get(), "[3] 1.5");
}

TEST_F(GlobalVariables, ThroughIsTheInput) {
    SettingNet net("v");
    EXPECT_EQ(net.text("s.through"), "[3] 1.5");
    EXPECT_EQ(net.pin("s.through").currentValue(), net.pin("r.real").value());
}

TEST_F(GlobalVariables, EveryOutputOfASettingNodeSetsAndOnceIsEnough) {
    SettingNet net("v");
    EXPECT_EQ(net.text("s.out copy"), "[3] 1.5");
    EXPECT_EQ(namesOf("Num"), "v ");
    EXPECT_TRUE(net.pin("s.through").isClean());
    const Value* const stored = globals().find("Num", "v").value.get();
    net.refresh("s.through");
    EXPECT_EQ(globals().find("Num", "v").value.get(), stored);
}

TEST_F(GlobalVariables, SettingTwiceReplaces) {
    SettingNet first("v", {1.0f});
    SettingNet second("v", {2.0f, 3.0f});
    first.set();
    second.set();
    EXPECT_EQ(GettingNet("v").get(), "[3] 2,3");
    EXPECT_EQ(namesOf("Num"), "v ");
}

TEST_F(GlobalVariables, GettingBeforeSettingLeavesTheOutputWithoutAMessage) {
    GettingNet net("nobody set it");
    EXPECT_EQ(net.get(), "");
    EXPECT_EQ(net.messages("g"), "");
    SettingNet setting("v", {4.0f});
    setting.set();
    net.strings("g.name", {"v"});
    EXPECT_EQ(net.get(), "[3] 4");
    net.strings("g.name", {"nobody"});
    EXPECT_EQ(net.get(), "[3] 4");
    EXPECT_EQ(net.messages("g"), "");
}

TEST_F(GlobalVariables, AnEmptyNameIsReportedAndNothingHappens) {
    SettingNet setting("");
    setting.set();
    EXPECT_EQ(setting.messages("s"), "[error] Name left empty\n");
    EXPECT_EQ(namesOf("Num"), "");
    EXPECT_EQ(setting.text("s.through"), "[3] 1.5");
    GettingNet getting("");
    EXPECT_EQ(getting.get(), "");
    EXPECT_EQ(getting.messages("g"), "[error] Name left empty\n");
    GettingNet none("x");
    none.strings("g.name", {});
    none.get();
    EXPECT_EQ(none.messages("g"), "[warning] size of attribute 'name' is different than 1 (0). "
                                  "Extra elements will be ignored\n[error] Name left empty\n");
}

TEST_F(GlobalVariables, AnEmptyNameLeavesTheOutputsToBeComputed) {
    SettingNet setting("");
    GettingNet getting("");
    for (const bool quiet : {false, true}) {
        for (const auto& [net, name] :
             {std::pair<LogicNet*, const char*>{&setting, "s"}, {&getting, "g"}}) {
            Node& node = net->node(name);
            node.refMessages().clear();
            node.refMessages().setVerbosityLevel(quiet ? 1 : 3);
            for (Attribute* output : node.refOutputAttributes()) {
                node.doUpdate(output);
                EXPECT_FALSE(output->isClean()) << output->name();
            }
            EXPECT_EQ(net->messages(name).empty(), quiet);
        }
    }
}

TEST_F(GlobalVariables, OnlyTheFirstNameCounts) {
    SettingNet net("a");
    net.strings("s.name", {"a", "b"});
    net.set();
    EXPECT_EQ(namesOf("Num"), "a ");
    EXPECT_EQ(net.messages("s"), "[warning] size of attribute 'name' is different than 1 (2). "
                                 "Extra elements will be ignored\n");
}

TEST_F(GlobalVariables, NamesAreTakenAsTheyAre) {
    for (const char* name : {"%n%s", "with blank.and point", "\xc3\xa4", "01"}) {
        SettingNet net(name);
        net.set();
        EXPECT_EQ(GettingNet(name).get(), "[3] 1.5");
    }
    EXPECT_EQ(globals().names("Num").size(), 4u);
}

// Copies and references.

TEST_F(GlobalVariables, ACopyStaysWhenTheInputChanges) {
    SettingNet setting("v", {1.0f});
    GettingNet getting("v");
    setting.set();
    setting.numbers<float>("r.in", {9.0f});
    setting.refresh("r.real");
    EXPECT_EQ(getting.get(), "[3] 1");
}

TEST_F(GlobalVariables, AReferenceFollowsTheInput) {
    SettingNet setting("v", {1.0f});
    setting.bits("s.store copy", {false});
    GettingNet getting("v");
    setting.set();
    EXPECT_EQ(getting.get(), "[3] 1");
    EXPECT_EQ(getting.pin("g.out").currentValue(), setting.pin("r.real").value());
    setting.numbers<float>("r.in", {9.0f, 8.0f});
    setting.refresh("r.real");
    EXPECT_EQ(getting.text("g.out"), "[3] 9,8");
}

TEST_F(GlobalVariables, TheLastBitDecidesAboutTheCopy) {
    SettingNet net("v");
    net.bits("s.store copy", {true, false});
    net.set();
    EXPECT_EQ(globals().find("Num", "v").value.get(), net.pin("r.real").value());
    net.bits("s.store copy", {});
    net.set();
    EXPECT_EQ(globals().find("Num", "v").value.get(), net.pin("r.real").value());
}

TEST_F(GlobalVariables, OutCopyShowsTheCopyOrTheInput) {
    SettingNet net("v", {1.0f});
    EXPECT_EQ(net.text("s.out copy"), "[3] 1");
    EXPECT_EQ(net.pin("s.out copy").currentValue(), globals().find("Num", "v").value.get());
    EXPECT_NE(net.pin("s.out copy").currentValue(), net.pin("r.real").value());
    net.bits("s.store copy", {false});
    EXPECT_EQ(net.text("s.out copy"), "[3] 1");
    EXPECT_EQ(net.pin("s.out copy").currentValue(), net.pin("r.real").value());
}

TEST_F(GlobalVariables, VariablesOutliveTheGraphThatSetThem) {
    for (const bool copy : {true, false}) {
        auto setting = std::make_unique<SettingNet>("v");
        setting->numbers<float>("r.in", {copy ? 1.0f : 2.0f});
        setting->bits("s.store copy", {copy});
        setting->set();
        GettingNet getting("v");
        EXPECT_EQ(getting.get(), copy ? "[3] 1" : "[3] 2");
        setting.reset();
        EXPECT_EQ(getting.get(), copy ? "[3] 1" : "[3] 2");
    }
    EXPECT_EQ(GettingNet("v").get(), "[3] 2");
}

TEST_F(GlobalVariables, AReaderKeepsAValueThatWasReplacedOrForgotten) {
    SettingNet setting("v", {1.0f});
    setting.set();
    GettingNet getting("v");
    EXPECT_EQ(getting.get(), "[3] 1");
    setting.numbers<float>("r.in", {2.0f});
    setting.set();
    EXPECT_EQ(getting.text("g.out"), "[3] 1");
    globals().removeAll();
    EXPECT_EQ(getting.get(), "[3] 1");
    EXPECT_EQ(namesOf("Num"), "");
}

// Types.

TEST_F(GlobalVariables, SettingLeavesTheTypeOfAReferencedValueAlone) {
    SettingNet net("v");
    net.bits("s.store copy", {false});
    net.set();
    EXPECT_EQ(net.text("r.real"), "[3] 1.5");
}

TEST_F(GlobalVariables, AReaderTakesTheAllowedTypesOfTheInput) {
    SettingNet setting("v");
    setting.pin("s.in").setAllowedSpecializations({"Real", "Vector3"});
    GettingNet getting("v");
    setting.set();
    EXPECT_EQ(getting.get(), "[3] 1.5");
    EXPECT_EQ(getting.pin("g.out").allowedSpecializationsText(), "\"Real\", \"Vector3\"");
}

TEST_F(GlobalVariables, AChangeOfTypeAtAReaderDoesNotReachTheVariable) {
    SettingNet setting("v");
    setting.set();
    GettingNet getting("v");
    getting.get();
    getting.type("g.out", "Integer");
    EXPECT_EQ(getting.pin("g.out").currentValue()->asString(), "[1] 0");
    EXPECT_EQ(GettingNet("v").get(), "[3] 1.5");
    EXPECT_EQ(getting.get(), "[3] 1.5");
}

TEST_F(GlobalVariables, APurgeOfAReaderOrSetterDoesNotReachTheVariable) {
    SettingNet setting("v");
    setting.refresh("s.out copy");
    GettingNet getting("v");
    getting.get();
    getting.node("g").purge();
    EXPECT_NE(getting.pin("g.out").currentValue(), globals().find("Num", "v").value.get());
    setting.node("s").purge();
    EXPECT_EQ(GettingNet("v").get(), "[3] 1.5");
}

TEST_F(GlobalVariables, ValuesOfAnotherClassAreNotStored) {
    SettingNet setting("v");
    setting.set();
    LogicNet net;
    net.add("SetNumGlobalVariable", "s");
    net.strings("s.name", {"v"});
    Retained<StringValue> other(new StringValue(&net.manager()));
    net.pin("s.in").setValue(other.get());
    net.refresh("s.through");
    net.refresh("s.out copy");
    EXPECT_EQ(GettingNet("v").get(), "[3] 1.5");
}

// Failures.

TEST_F(GlobalVariables, ACopyWithoutMemoryPurgesAndEndsTheRun) {
    SettingNet net("v", {1.0f});
    net.refresh("s.out copy");
    net.numbers<float>("r.in", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    net.refresh("r.real");
    tidemark::limits::set({.maxElements = 8});
    EXPECT_THROW(net.refresh("s.through"), tidemark::sluice::graph::GenericGraphException);
    EXPECT_EQ(net.messages("s"),
              "[critical] Unable to allocate the necessary memory to copy data at position 0.\n");
    EXPECT_EQ(net.pin("s.out copy").currentValue()->size(), 1u);
    EXPECT_EQ(GettingNet("v").get(), "[3] 1");
    tidemark::limits::set({});
    net.node("s").refMessages().clear();
    net.refresh("s.through");
    EXPECT_EQ(globals().find("Num", "v").value->size(), 16u);
}

// All names.

TEST_F(GlobalVariables, NamesDeclareThirteenOutputsInOrder) {
    EXPECT_EQ(declared("GetAllGlobalVariableNames"),
              "GetAllGlobalVariableNames\n"
              "out box names StringAttribute \"String\"\n"
              "out distance field names StringAttribute \"String\"\n"
              "out image names StringAttribute \"String\"\n"
              "out mesh names StringAttribute \"String\"\n"
              "out mesh voxelization names StringAttribute \"String\"\n"
              "out num names StringAttribute \"String\"\n"
              "out scene node names StringAttribute \"String\"\n"
              "out string names StringAttribute \"String\"\n"
              "out vector3 field names StringAttribute \"String\"\n"
              "out graph particles names StringAttribute \"String\"\n"
              "out real field names StringAttribute \"String\"\n"
              "out key names StringAttribute \"String\"\n"
              "out curve names StringAttribute \"String\"\n");
    EXPECT_EQ(sluice_tests::missingTexts("GetAllGlobalVariableNames"), "");
    LogicNet net;
    EXPECT_EQ(
        net.add("GetAllGlobalVariableNames", "n").getDescription(),
        "This node returns all names of actual defined global variables. The result is stored "
        "for every allowed type separately.");
}

TEST_F(GlobalVariables, NamesAreListedByTypeInTheOrderOfBytes) {
    for (const char* name : {"b", "a", "Z", "\xc3\xa4", "10", "9"}) SettingNet(name).set();
    LogicNet net;
    net.add("SetStringGlobalVariable", "s");
    net.strings("s.name", {"text"});
    net.refresh("s.through");
    net.add("GetAllGlobalVariableNames", "n");
    EXPECT_EQ(net.list("n.num names"), "10|9|Z|a|b|\xc3\xa4");
    EXPECT_EQ(net.list("n.string names"), "text");
    const Node& all = net.node("n");
    for (Attribute* output : all.refOutputAttributes()) {
        output->computeNow();
        if (output->name() == "num names" || output->name() == "string names") continue;
        EXPECT_EQ(output->currentValue()->size(), 0u) << output->name();
    }
    globals().removeAll();
    net.pin("n.num names").markDirty(true);
    EXPECT_EQ(net.list("n.num names"), "");
}

TEST_F(GlobalVariables, NamesOfOneOutputLeaveTheOthersDirty) {
    LogicNet net;
    Node& names = net.add("GetAllGlobalVariableNames", "n");
    names.update(names.findAttribute("num names"));
    EXPECT_TRUE(net.pin("n.num names").isClean());
    EXPECT_FALSE(net.pin("n.curve names").isClean());
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Global variables of keys and curves, and copies of keys.
#include <gtest/gtest.h>

#include <memory>

#include "graph/scene_manager.h"
#include "nodes/values/copies/point_info_copy.h"
#include "nodes/values/declarations.h"
#include "nodes/values/globals/common_storage.h"
#include "nodes/values/logic_net.h"
#include "platform/curve.h"

namespace {

using namespace weft;
using sluice_tests::declared;
using sluice_tests::LogicNet;
using tidemark::PointInfo;
using tidemark::TM_String;

class CurveGlobals : public testing::Test {
protected:
    CurveGlobals() { CommonStorage::instance().removeAll(); }
    ~CurveGlobals() override { CommonStorage::instance().removeAll(); }

    /// A variable "v" of the word, set from the output and read: s and g.
    static void addVariable(LogicNet& net, const TM_String& word, const TM_String& source) {
        net.add("Set" + word + "GlobalVariable", "s");
        net.add("Get" + word + "GlobalVariable", "g");
        net.strings("s.name", {"v"});
        net.strings("g.name", {"v"});
        if (source.empty()) return;
        EXPECT_TRUE(net.link(source, "s.in"));
    }
    static PointInfo* keyRead(LogicNet& net) {
        net.pin("g.out").markDirty(true);
        net.refresh("g.out");
        return net.as<KeyAttribute>("g.out").keyAt(0);
    }
};

TEST_F(CurveGlobals, DeclareTheirPins) {
    EXPECT_EQ(declared("SetKeyGlobalVariable"), "SetKeyGlobalVariable\n"
                                                "in name! StringAttribute \"String\" = \n"
                                                "in in KeyAttribute \"Key\" = \n"
                                                "in store copy! BitArrayAttribute \"Bit\" = 1\n"
                                                "out through PassThroughAttribute \"Key\"\n"
                                                "out out copy KeyAttribute \"Key\"\n");
    EXPECT_EQ(declared("GetKeyGlobalVariable"), "GetKeyGlobalVariable\n"
                                                "in name! StringAttribute \"String\" = \n"
                                                "out out KeyAttribute \"Key\"\n");
    EXPECT_EQ(declared("SetCurveGlobalVariable"), "SetCurveGlobalVariable\n"
                                                  "in name! StringAttribute \"String\" = \n"
                                                  "in in CurveAttribute \"Curve\" = \n"
                                                  "out through PassThroughAttribute \"Curve\"\n");
    EXPECT_EQ(declared("GetCurveGlobalVariable"), "GetCurveGlobalVariable\n"
                                                  "in name! StringAttribute \"String\" = \n"
                                                  "out out CurveAttribute \"Curve\"\n");
    auto& manager = tidemark::sluice::graph::SceneManager::instance();
    for (const char* type : {"SetKeyGlobalVariable", "GetKeyGlobalVariable",
                             "SetCurveGlobalVariable", "GetCurveGlobalVariable"}) {
        EXPECT_EQ(sluice_tests::missingTexts(type), "") << type;
        EXPECT_EQ(sluice_tests::missingAffects(type), "") << type;
        EXPECT_EQ(manager.getNodeFactoryFromType(type)->getDescriptor().getAllowedCategories(),
                  (tidemark::Array<TM_String>{"Curve", "Execution.Global Variable"}));
    }
}

TEST_F(CurveGlobals, ACopyOfAKeyIsAKeyOfItsOwn) {
    LogicNet net;
    net.add("Key", "k");
    addVariable(net, "Key", "k.key");
    net.refresh("k.key");
    PointInfo* const original = net.as<KeyAttribute>("k.key").keyAt(0);
    original->setY(2.0);
    net.refresh("s.through");
    PointInfo* const copy = keyRead(net);
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, original);
    original->setY(3.0);
    EXPECT_EQ(copy->y(), 2.0);
}

TEST_F(CurveGlobals, AKeyByReferenceGoesWithItsNodeAndACopyStays) {
    for (const bool copy : {true, false}) {
        LogicNet reader;
        addVariable(reader, "Key", "");
        {
            LogicNet net;
            net.add("Key", "k");
            addVariable(net, "Key", "k.key");
            net.bits("s.store copy", {copy});
            net.refresh("s.through");
            ASSERT_NE(keyRead(reader), nullptr);
        }
        EXPECT_EQ(keyRead(reader) != nullptr, copy);
    }
}

TEST_F(CurveGlobals, ACurveIsReadByReferenceUntilItGoes) {
    LogicNet net;
    addVariable(net, "Curve", "");
    auto curve = std::make_unique<tidemark::ANIFloatBase>();
    net.as<CurveAttribute>("s.in").ownPointers().setValue(curve.get());
    net.refresh("s.through");
    net.refresh("g.out");
    EXPECT_EQ(net.as<CurveAttribute>("g.out").curveAt(0), curve.get());
    net.add("GetAllGlobalVariableNames", "n");
    EXPECT_EQ(net.list("n.curve names"), "v");
    EXPECT_EQ(net.list("n.key names"), "");
    curve.reset();
    EXPECT_EQ(net.as<CurveAttribute>("g.out").curveAt(0), nullptr);
    net.pin("g.out").markDirty(true);
    net.refresh("g.out");
    EXPECT_EQ(net.as<CurveAttribute>("g.out").curveAt(0), nullptr);
}

TEST_F(CurveGlobals, KeysAreCopiedByALogicNodeWithoutAType) {
    LogicNet net;
    Retained<PointInfoCopy> copy(new PointInfoCopy(&net.manager(), "c", nullptr));
    EXPECT_EQ(copy->className(), "PointInfoCopy");
    auto* const in = static_cast<KeyAttribute*>(copy->findAttribute("in"));
    auto* const out = static_cast<KeyAttribute*>(copy->findAttribute("out"));
    PointInfo key(1.0, 2.0);
    in->ownPointers().setSize(2);
    in->ownPointers().setValueAt(0, &key);
    out->computeNow();
    ASSERT_NE(out->keyAt(0), nullptr);
    EXPECT_NE(out->keyAt(0), &key);
    EXPECT_EQ(out->keyAt(0)->y(), 2.0);
    EXPECT_EQ(out->keyAt(1), nullptr);
    EXPECT_EQ(out->currentValue()->size(), 2u);
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Arrays of curves and keys as users wire them.
#include <gtest/gtest.h>

#include "nodes/values/curves/curve_attributes.h"
#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::declared;
using sluice_tests::LogicNet;
using tidemark::TM_String;

const char* const operations[] = {"GetArray*Element",
                                  "SetArray*Element",
                                  "Array*FilterByMask",
                                  "Array*Constant",
                                  "Array*Resize",
                                  "Array*Concat",
                                  "Array*Slice",
                                  "Array*Mix",
                                  "Array*Reverse",
                                  "Array*FindElement",
                                  "Array*FindAllElementIndices",
                                  "Array*InsertElement",
                                  "Array*PushElement",
                                  "Array*RemoveElement",
                                  "Array*RemoveIndex",
                                  "Array*RemoveRepeatedElements"};

TM_String typeOf(TM_String operation, const TM_String& word) {
    return operation.replace(operation.find('*'), 1, word);
}

TEST(CurveArrays, EveryOperationCarriesItsOwnType) {
    for (const TM_String word : {"Curve", "Key"}) {
        for (const char* operation : operations) {
            const TM_String type = typeOf(operation, word);
            const TM_String pins = declared(type);
            EXPECT_EQ(pins.rfind(type + "\n", 0), 0u) << pins;
            EXPECT_NE(pins.find(word + "Attribute \"" + word + "\""), TM_String::npos) << pins;
            EXPECT_EQ(sluice_tests::missingTexts(type), "") << type;
            EXPECT_EQ(sluice_tests::missingAffects(type), "") << type;
        }
    }
}

TEST(CurveArrays, KeysOfACurveInReverse) {
    tidemark::ANIFloatBase curve;
    for (const double x : {1.0, 2.0, 3.0}) {
        curve.refSpline().addPoint({x, 10 * x, tidemark::tm_spline::linear});
    }
    LogicNet net;
    net.add("GetCurveKeys", "k");
    net.add("ArrayKeyReverse", "r");
    net.add("GetKeyProperties", "p");
    net.as<CurveAttribute>("k.curve").ownPointers().setValue(&curve);
    ASSERT_TRUE(net.link("k.keys", "r.array"));
    ASSERT_TRUE(net.link("r.out array", "p.key"));
    net.add("ArrayNumSum", "s");
    net.link("p.x", "s.array");
    EXPECT_EQ(net.text("p.x"), "[3] 3,2,1");
    net.add("Real", "other");
    EXPECT_FALSE(net.canLink("other.real", "r.array"));
}

} // namespace

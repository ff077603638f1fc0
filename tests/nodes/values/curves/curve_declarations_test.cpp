// SPDX-License-Identifier: Apache-2.0
// Declarations of the nodes over curves and keys.
#include <gtest/gtest.h>

#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace sluice_tests;

const char* const types[] = {
    "CurveEval",   "GetCurveKeys",   "GetKeyProperties", "SetKeyProperties",   "CurveRemoveKeysAll",
    "CurveAddKey", "CurveRemoveKey", "CurveEulerFilter", "GetCurveProperties", "SetCurveProperties",
    "Key"};

TEST(CurveDeclarations, PinsAreInOrderWithTypesAndDefaults) {
    EXPECT_EQ(declared("Key"), "Key\n"
                               "out key KeyAttribute \"Key\"\n");
    EXPECT_EQ(declared("GetCurveKeys"), "GetCurveKeys\n"
                                        "in curve CurveAttribute \"Curve\" = \n"
                                        "out keys KeyAttribute \"Key\"\n");
    for (const TM_String type : {"CurveRemoveKeysAll", "CurveEulerFilter"}) {
        EXPECT_EQ(declared(type), type + "\n"
                                         "in curve CurveAttribute \"Curve\" = \n"
                                         "out out curve CurveAttribute \"Curve\"\n");
    }
    for (const TM_String type : {"CurveAddKey", "CurveRemoveKey"}) {
        EXPECT_EQ(declared(type), type + "\n"
                                         "in curve CurveAttribute \"Curve\" = \n"
                                         "in key KeyAttribute \"Key\" = \n"
                                         "out out curve CurveAttribute \"Curve\"\n");
    }
    EXPECT_EQ(declared("CurveEval"), "CurveEval\n"
                                     "in curve CurveAttribute \"Curve\" = \n"
                                     "in time NumericAttribute \"Real\" = 0\n"
                                     "out result NumericAttribute \"Real\"\n");
}

TEST(CurveDeclarations, PropertiesOfCurves) {
    EXPECT_EQ(declared("GetCurveProperties"),
              "GetCurveProperties\n"
              "in curve CurveAttribute \"Curve\" = \n"
              "out has expression BitArrayAttribute \"Bit\"\n"
              "out expression StringAttribute \"String\"\n"
              "out expression plus spline BitArrayAttribute \"Bit\"\n"
              "out key count NumericAttribute \"Integer\"\n"
              "out pre behaviour NumericAttribute \"Integer\"\n"
              "out post behaviour NumericAttribute \"Integer\"\n");
    EXPECT_EQ(declared("SetCurveProperties"),
              "SetCurveProperties\n"
              "in curve CurveAttribute \"Curve\" = \n"
              "in expression StringAttribute \"String\" = \n"
              "in expression plus spline BitArrayAttribute \"Bit\" = 0\n"
              "in pre behaviour NumericAttribute \"Integer\" = 1\n"
              "in post behaviour NumericAttribute \"Integer\" = 1\n"
              "out out curve CurveAttribute \"Curve\"\n");
}

TEST(CurveDeclarations, PropertiesOfKeys) {
    EXPECT_EQ(declared("GetKeyProperties"), "GetKeyProperties\n"
                                            "in key KeyAttribute \"Key\" = \n"
                                            "out x NumericAttribute \"Real\"\n"
                                            "out y NumericAttribute \"Real\"\n"
                                            "out type NumericAttribute \"Integer\"\n"
                                            "out ease from NumericAttribute \"Real\"\n"
                                            "out ease to NumericAttribute \"Real\"\n"
                                            "out incoming NumericAttribute \"Real\"\n"
                                            "out outgoing NumericAttribute \"Real\"\n"
                                            "out t NumericAttribute \"Real\"\n"
                                            "out c NumericAttribute \"Real\"\n"
                                            "out b NumericAttribute \"Real\"\n"
                                            "out unify tan BitArrayAttribute \"Bit\"\n");
    EXPECT_EQ(declared("SetKeyProperties"), "SetKeyProperties\n"
                                            "in key KeyAttribute \"Key\" = \n"
                                            "in x NumericAttribute \"Real\" = 0\n"
                                            "in y NumericAttribute \"Real\" = 0\n"
                                            "in type NumericAttribute \"Integer\" = 1\n"
                                            "in ease from NumericAttribute \"Real\" = 0\n"
                                            "in ease to NumericAttribute \"Real\" = 0\n"
                                            "in incoming NumericAttribute \"Real\" = 0\n"
                                            "in outgoing NumericAttribute \"Real\" = 0\n"
                                            "in t NumericAttribute \"Real\" = 0\n"
                                            "in c NumericAttribute \"Real\" = 0\n"
                                            "in b NumericAttribute \"Real\" = 0\n"
                                            "in unify tan BitArrayAttribute \"Bit\" = 0\n"
                                            "out out key KeyAttribute \"Key\"\n");
}

TEST(CurveDeclarations, EveryTextAndAffectIsThere) {
    for (const char* type : types) {
        EXPECT_EQ("", missingTexts(type)) << type;
        EXPECT_EQ("", missingAffects(type)) << type;
    }
}

TEST(CurveDeclarations, TextsAreTheSystemsOwn) {
    LogicNet net;
    for (const char* type : types) net.add(type, type);
    const auto description = [&](const char* type) { return net.node(type).getDescription(); };
    EXPECT_EQ(description("CurveEval"), "This node returns all the keys stored in the curve.");
    EXPECT_EQ(description("GetCurveKeys"), "This node returns all the keys stored in the curve.");
    EXPECT_EQ(description("Key"),
              "This node creates a Key element to be added to a Curve later. The created key has "
              "initially all its values set to 0 and is of type TCB.");
    EXPECT_EQ(description("CurveRemoveKeysAll"),
              "This node removes all keys from the input 'curve'.");
    EXPECT_EQ(description("CurveEulerFilter"),
              "This node applies the Euler filter to the input 'curve'.");
    EXPECT_EQ(description("CurveAddKey"),
              "This node adds a copy of the input keys to the input 'curve'.");
    EXPECT_EQ(description("CurveRemoveKey"),
              "This node removes the input keys from the input 'curve'.");
    EXPECT_EQ(description("GetCurveProperties"),
              "This node returns information about the input 'curve' properties.");
    EXPECT_EQ(description("SetCurveProperties"),
              "This node changes properties of the input 'curve'.");
    EXPECT_EQ(description("GetKeyProperties"), "This node returns all the input'key' properties.");
    EXPECT_EQ(description("SetKeyProperties"),
              "This node sets the input 'key' properties. Only the properties related to input "
              "pins with an input connection are modified for the keys.");

    const auto help = [&](const char* pin) { return net.pin(pin).getDescription(); };
    for (const TM_String node : {"GetKeyProperties.", "SetKeyProperties."}) {
        const auto text = [&](const char* pin) { return help((node + pin).c_str()); };
        EXPECT_EQ(text("x"), "The x coordinate of the key. It is the time value, in seconds.");
        EXPECT_EQ(text("y"), "The y coordinate of the key. It is the value at position x.");
        EXPECT_EQ(text("type"), "The type of the key. 'linear', 'tcb', 'bezier' or 'step'.");
        EXPECT_EQ(text("ease from"),
                  "The Ease From value. To smooth the way the curve arrives at this key.");
        EXPECT_EQ(text("ease to"),
                  "The Ease From value. To smooth the way the curve exits this key.");
        EXPECT_EQ(text("incoming"), "The Incoming value. For Bezier type keys, it changes the "
                                    "angle of the tangent at the left of the key.");
        EXPECT_EQ(text("outgoing"), "The Outgoing value. For Bezier type keys, it changes the "
                                    "angle of the tangent at the right of the key.");
        EXPECT_EQ(text("t"), "The Tension of a TCB key.");
        EXPECT_EQ(text("c"), "The Continuity of a TCB key.");
        EXPECT_EQ(text("b"), "The Bias of a TCB key.");
        EXPECT_EQ(text("unify tan"),
                  "True to unify the tangent at both sides of the key in Bezier and TCB mode.");
    }
    EXPECT_EQ(help("GetCurveProperties.has expression"), "True if the curve has an expression.");
    EXPECT_EQ(help("GetCurveProperties.expression"),
              "The expression stored in the curve. Or an empty string if there is no expression "
              "for this curve.");
    EXPECT_EQ(help("SetCurveProperties.expression"),
              "The expression to store in the curve. If left empty, the existing expression is "
              "removed.");
    EXPECT_EQ(help("GetCurveProperties.key count"), "The number of keys.");
    for (const TM_String node : {"GetCurveProperties.", "SetCurveProperties."}) {
        EXPECT_EQ(help((node + "expression plus spline").c_str()),
                  "True if the evaluation of the curve implies adding the expression and the "
                  "spline values.");
        EXPECT_EQ(help((node + "pre behaviour").c_str()),
                  "The behaviour of the curve before its first key: 'zero'(0) or 'constant'(1)");
        EXPECT_EQ(help((node + "post behaviour").c_str()),
                  "The behaviour of the curve after its last key: 'zero'(0), 'constant'(1), "
                  "'loop'(2), 'loop-offset'(3)");
    }
    EXPECT_EQ(help("CurveAddKey.key"),
              "The key to add to the curve. It is copied before being added.");
    EXPECT_EQ(help("CurveRemoveKey.key"),
              "The key to remove from the curve. It must belong to it.");
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Nodes over curves and keys with nulls, interrupts and values of another class: what they say,
// what they leave, and which outputs are clean.
#include "nodes/values/curves/curve_nodes_fixture.h"

namespace {

using namespace sluice_tests;

// Each node with one output, and what it says of an input that is null.
struct Said {
    const char* type;
    const char* output;
    const char* message;
    bool goesOn;
};
constexpr Said saidOfNull[] = {
    {"GetCurveKeys", "keys", "Input Curve is null", false},
    {"CurveEval", "result", "Input Curve is null", false},
    {"CurveAddKey", "out curve", "Input 'curve' is null", false},
    {"CurveRemoveKey", "out curve", "Input 'curve' is null", false},
    {"CurveRemoveKeysAll", "out curve", "Input is null at position 0", true},
    {"CurveEulerFilter", "out curve", "Input is null at position 0", true},
    {"GetCurveProperties", "key count", "Input is null at position 0", true},
    {"SetCurveProperties", "out curve", "Input is null at position 0", true},
    {"GetKeyProperties", "x", "Input is null at position 0", true},
    {"SetKeyProperties", "out key", "Input is null at position 0", true},
};

TEST_F(CurveNodesTest, NullsAreErrorsInTheSystemsWords) {
    for (const auto& [type, output, message, goesOn] : saidOfNull) {
        net_.add(type, type);
        weft::Attribute& pin = net_.pin(TM_String(type) + "." + output);
        net_.node(type).doUpdate(&pin);
        EXPECT_EQ(TM_String("[error] ") + message + "\n", net_.messages(type)) << type;
        EXPECT_EQ(goesOn, pin.isClean()) << type;
    }
    for (const char* type : {"CurveAddKey", "CurveRemoveKey"}) {
        net_.node(type).refMessages().clear();
        curves(TM_String(type) + ".curve", {&first_});
        net_.node(type).doUpdate(&net_.pin(TM_String(type) + ".out curve"));
        EXPECT_EQ("[error] Input 'key' is null at position 0\n", net_.messages(type)) << type;
    }
}

TEST_F(CurveNodesTest, WrittenOutputsAreClean) {
    PointInfo key(1, 2);
    for (const Said& node : saidOfNull) {
        net_.add(node.type, node.type);
        weft::Attribute& in = *net_.node(node.type).inputAttributeAt(0);
        if (in.name() == "key") {
            keys(TM_String(node.type) + ".key", {&key});
        } else {
            curves(TM_String(node.type) + ".curve", {&first_});
        }
        weft::Attribute& pin = net_.pin(TM_String(node.type) + "." + node.output);
        net_.node(node.type).doUpdate(&pin);
        EXPECT_TRUE(pin.isClean()) << node.type;
    }
    net_.add("Key", "k");
    net_.node("k").doUpdate(&net_.pin("k.key"));
    EXPECT_TRUE(net_.pin("k.key").isClean());
}

TEST_F(CurveNodesTest, AReaderBehindAnUpdateDoesNotRepeatIt) {
    net_.add("Key", "k");
    net_.add("CurveAddKey", "a");
    net_.add("GetCurveProperties", "g");
    curves("a.curve", {&first_});
    ASSERT_TRUE(net_.link("k.key", "a.key"));
    ASSERT_TRUE(net_.link("a.out curve", "g.curve"));
    net_.node("a").doUpdate(&net_.pin("a.out curve"));
    EXPECT_EQ("[1] 1", net_.text("g.key count"));
    EXPECT_EQ("0 ", times(first_));
}

TEST_F(CurveNodesTest, NullsLeaveTheirEntriesAsTheyWere) {
    net_.add("GetCurveProperties", "c");
    add(first_, {{0, 0}, {1, 1}});
    ASSERT_TRUE(first_.setExpression("t"));
    curves("c.curve", {&first_, &second_});
    EXPECT_EQ("[1] 2,0", net_.text("c.key count"));
    EXPECT_EQ("t|", net_.list("c.expression"));
    EXPECT_EQ("10", net_.text("c.has expression"));
    curves("c.curve", {nullptr, &first_});
    EXPECT_EQ("[1] 2,2", net_.text("c.key count"));
    EXPECT_EQ("t|t", net_.list("c.expression"));
    EXPECT_EQ("11", net_.text("c.has expression"));
    net_.add("GetKeyProperties", "k");
    PointInfo a(1, 2), b(3, 4);
    keys("k.key", {&a, &b});
    EXPECT_EQ("[3] 1,3", net_.text("k.x"));
    keys("k.key", {nullptr, &a});
    EXPECT_EQ("[3] 1,1", net_.text("k.x"));
}

// What was not computed is not shown.
TEST_F(CurveNodesTest, InterruptedResultsAreEmpty) {
    constexpr uint32_t count = 600000;
    PointInfo key(1, 2);
    net_.add("CurveEval", "CurveEval");
    net_.add("GetCurveProperties", "GetCurveProperties");
    net_.add("GetKeyProperties", "GetKeyProperties");
    curves("CurveEval.curve", {&first_});
    net_.as<weft::NumericAttribute>("CurveEval.time").ownNumeric().resize(count);
    auto& many = net_.as<weft::CurveAttribute>("GetCurveProperties.curve").ownPointers();
    auto& manyKeys = net_.as<weft::KeyAttribute>("GetKeyProperties.key").ownPointers();
    many.refValues().resize(count, &first_);
    manyKeys.refValues().resize(count, &key);
    net_.manager().setEvaluating(true);
    for (const char* type : {"CurveEval", "GetCurveProperties", "GetKeyProperties"}) {
        weft::Node& node = net_.node(type);
        for (weft::Attribute* output : node.refOutputAttributes()) {
            EXPECT_NO_THROW(node.update(output));
            EXPECT_EQ(count, output->currentValue()->size()) << output->name();
            net_.manager().requestInterrupt();
            EXPECT_ANY_THROW(node.update(output)) << output->name();
            net_.manager().clearInterrupt();
            EXPECT_EQ(0u, output->currentValue()->size()) << output->name();
        }
    }
    net_.manager().setEvaluating(false);
}

// --- bad input -----------------------------------------------------------------------------------

TEST_F(CurveNodesTest, ValuesOfAnotherClassCountAsNull) {
    for (const char* type : {"GetCurveKeys", "CurveRemoveKeysAll", "CurveAddKey", "CurveRemoveKey",
                             "CurveEulerFilter", "GetCurveProperties", "SetCurveProperties",
                             "CurveEval", "GetKeyProperties", "SetKeyProperties"}) {
        net_.add(type, type);
        const weft::Retained<weft::Numeric> number(new weft::Numeric(&net_.manager()));
        net_.node(type).inputAttributeAt(0)->setValue(number.get());
        net_.refresh(TM_String(type) + "." + net_.node(type).outputAttributeAt(0)->name());
        EXPECT_NE(TM_String::npos, net_.messages(type).find(" is null")) << type;
    }
}

TEST_F(CurveNodesTest, PortsOfOtherTypesDoNotConnect) {
    net_.add("Real", "r");
    net_.add("Key", "k");
    net_.add("CurveEval", "e");
    net_.add("GetKeyProperties", "g");
    EXPECT_FALSE(net_.canLink("r.real", "e.curve"));
    EXPECT_FALSE(net_.canLink("k.key", "e.curve"));
    EXPECT_TRUE(net_.canLink("k.key", "g.key"));
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Nodes over curves and keys: what they change, what they say, what they leave alone.
#include <limits>
#include <memory>

#include "graph/graph_scene.h"
#include "nodes/values/curves/curve_nodes_fixture.h"
#include "support/scene_builder.h"

namespace {

using namespace sluice_tests;
namespace tm_spline = tidemark::tm_spline;

constexpr float infinity = std::numeric_limits<float>::infinity();

// --- Key, GetCurveKeys ---------------------------------------------------------------------------

TEST_F(CurveNodesTest, KeyMakesOneZeroTcbKey) {
    net_.add("Key", "k");
    const Array<void*> made = pointers("k.key");
    ASSERT_EQ(1u, made.size());
    const auto* key = static_cast<const PointInfo*>(made[0]);
    ASSERT_NE(nullptr, key);
    EXPECT_EQ(0.0, key->x());
    EXPECT_EQ(0.0, key->y());
    EXPECT_EQ(tm_spline::tcb, key->type());
}

TEST_F(CurveNodesTest, KeyIsThereAgainAfterAPurge) {
    net_.add("Key", "k");
    const Array<void*> made = pointers("k.key");
    net_.node("k").purge();
    net_.pin("k.key").markDirty(true);
    EXPECT_TRUE(made == pointers("k.key"));
}

// A scene with a key node that feeds G, and an H with a copy of the pointer.
class DeadKeyTest : public CurveNodesTest {
protected:
    DeadKeyTest() : shared_((build_.add("Key", "K"), build_.at("K.key")->value())) {
        build_.add("GetKeyProperties", "G").add("GetKeyProperties", "H").connect("K.key", "G.key");
        net_.add("GetKeyProperties", "other");
        void* const key = weft::valueAs<weft::KeyValue>(shared_.get())->at(0);
        EXPECT_NE(nullptr, key);
        for (weft::Attribute* in : {build_.at("H.key"), &net_.pin("other.key")}) {
            static_cast<weft::KeyAttribute*>(in)->ownPointers().setValue(key);
        }
    }
    void* held(weft::Attribute* in) {
        return static_cast<weft::KeyAttribute*>(in)->ownPointers().valueAt(0);
    }

    support::SceneBuilder build_;
    weft::Retained<weft::Value> shared_; // as somebody keeps it who has read it
};

TEST_F(DeadKeyTest, ReferencesAreBlankInAllScenes) {
    build_.scene.removeNodeFromGraph(build_.node("K"));
    EXPECT_EQ(nullptr, weft::valueAs<weft::KeyValue>(shared_.get())->at(0));
    EXPECT_EQ(nullptr, held(build_.at("H.key")));
    EXPECT_EQ(nullptr, held(&net_.pin("other.key")));
}

// A host may read the key without a connection, and hand it on.
TEST_F(DeadKeyTest, ReferencesToAKeyWithoutReadersAreBlank) {
    build_.add("Key", "Alone");
    build_.at("Alone.key")->computeNow();
    void* const key = static_cast<weft::KeyAttribute*>(build_.at("Alone.key"))->firstPointer();
    ASSERT_NE(nullptr, key);
    auto& other = static_cast<weft::KeyAttribute&>(net_.pin("other.key"));
    other.ownPointers().setValue(key);
    build_.scene.removeNodeFromGraph(build_.node("Alone"));
    EXPECT_EQ(nullptr, held(&other));
}

TEST_F(DeadKeyTest, AClearedSceneLeavesNoReferencesElsewhere) {
    build_.scene.clear();
    EXPECT_EQ(nullptr, weft::valueAs<weft::KeyValue>(shared_.get())->at(0));
    EXPECT_EQ(nullptr, held(&net_.pin("other.key")));
}

TEST_F(CurveNodesTest, KeysAreTheCurvesOwn) {
    net_.add("GetCurveKeys", "g");
    add(first_, {{2, 1}, {0, 5}, {1, 7}});
    curves("g.curve", {&first_, &second_});
    const Array<void*> shown = pointers("g.keys");
    ASSERT_EQ(3u, shown.size());
    for (uint32_t i = 0; i < 3; ++i) EXPECT_EQ(first_.spline().points()[i], shown[i]);
    EXPECT_EQ("", net_.messages("g"));
}

TEST_F(CurveNodesTest, CurveWithoutKeysGivesNoneAndNoMessage) {
    net_.add("GetCurveKeys", "g");
    curves("g.curve", {&first_});
    EXPECT_EQ(0u, pointers("g.keys").size());
    EXPECT_EQ("", net_.messages("g"));
}

TEST_F(CurveNodesTest, NullCurveIsReportedAndLeavesKeysAsTheyWere) {
    net_.add("GetCurveKeys", "g");
    add(first_, {{0, 0}, {1, 1}});
    curves("g.curve", {&first_});
    pointers("g.keys");
    for (const bool isEmpty : {false, true}) {
        net_.node("g").refMessages().clear();
        if (isEmpty) {
            curves("g.curve", {});
        } else {
            curves("g.curve", {nullptr, &first_});
        }
        EXPECT_EQ(2u, pointers("g.keys").size());
        EXPECT_NE(TM_String::npos, net_.messages("g").find("Input Curve is null"));
    }
}

TEST_F(CurveNodesTest, KeysThatGoAreBlankWhereverTheyStand) {
    net_.add("GetCurveKeys", "g");
    add(first_, {{0, 0}, {1, 1}, {2, 2}});
    curves("g.curve", {&first_});
    const Array<void*> before = pointers("g.keys");
    first_.refSpline().remove(first_.spline().points()[1]);
    const auto& shown = net_.as<weft::KeyAttribute>("g.keys");
    EXPECT_EQ(before[0], shown.keyAt(0));
    EXPECT_EQ(nullptr, shown.keyAt(1));
    EXPECT_EQ(before[2], shown.keyAt(2));
    first_.refSpline().removeAllControlPoints();
    EXPECT_EQ(nullptr, shown.keyAt(0));
    EXPECT_EQ(3u, shown.pointers().size());
}

TEST_F(CurveNodesTest, CurvesThatGoAreBlankWhereverTheyStand) {
    net_.add("CurveEval", "e");
    auto curve = std::make_unique<ANIFloatBase>();
    curves("e.curve", {curve.get(), &first_});
    curve.reset();
    EXPECT_EQ(nullptr, net_.as<weft::CurveAttribute>("e.curve").curveAt(0));
    EXPECT_EQ(&first_, net_.as<weft::CurveAttribute>("e.curve").curveAt(1));
    net_.refresh("e.result");
    EXPECT_NE("", net_.messages("e"));
}

// --- whole curves --------------------------------------------------------------------------------

TEST_F(CurveNodesTest, RemovesAllKeysOfEveryCurve) {
    net_.add("CurveRemoveKeysAll", "r");
    add(first_, {{0, 0}, {1, 1}});
    add(second_, {{0, 0}});
    curves("r.curve", {&first_, nullptr, &second_, nullptr});
    EXPECT_EQ(4u, pointers("r.out curve").size());
    EXPECT_EQ("", times(first_));
    EXPECT_EQ("", times(second_));
    const TM_String messages = net_.messages("r");
    EXPECT_NE(TM_String::npos, messages.find("Input is null at position 1"));
    EXPECT_NE(TM_String::npos, messages.find("Input is null at position 3"));
}

TEST_F(CurveNodesTest, FiltersEveryCurve) {
    net_.add("CurveEulerFilter", "f");
    add(first_, {{0, 0}, {1, 350}});
    add(second_, {{0, 170}, {1, -170}});
    curves("f.curve", {&first_, &second_, nullptr});
    EXPECT_EQ(&second_, pointers("f.out curve")[1]);
    EXPECT_EQ(-10.0, first_.spline().points()[1]->y());
    EXPECT_EQ(190.0, second_.spline().points()[1]->y());
    EXPECT_NE(TM_String::npos, net_.messages("f").find("Input is null at position 2"));
}

TEST_F(CurveNodesTest, OutputsPassTheInputOn) {
    for (const char* type : {"CurveRemoveKeysAll", "CurveAddKey", "CurveRemoveKey",
                             "CurveEulerFilter", "SetCurveProperties", "SetKeyProperties"}) {
        const TM_String name = TM_String("n") + type;
        net_.add(type, name);
        const bool isKey = TM_String(type) == "SetKeyProperties";
        const weft::Attribute& in = net_.pin(name + (isKey ? ".key" : ".curve"));
        const weft::Attribute& out = net_.pin(name + (isKey ? ".out key" : ".out curve"));
        EXPECT_TRUE(out.isPassThrough()) << type;
        EXPECT_EQ(in.currentValue(), out.currentValue()) << type;
        EXPECT_EQ(&in, out.source()) << type;
    }
}

// --- CurveAddKey, CurveRemoveKey -----------------------------------------------------------------

TEST_F(CurveNodesTest, AddsCopiesToTheFirstCurveOnly) {
    net_.add("CurveAddKey", "a");
    PointInfo one(1, 5), two(2, 6);
    curves("a.curve", {&first_, &second_});
    keys("a.key", {&two, &one, &two});
    EXPECT_EQ(&first_, pointers("a.out curve")[0]);
    EXPECT_EQ("1 2 2 ", times(first_));
    EXPECT_EQ("", times(second_));
    EXPECT_EQ("", net_.messages("a"));
    one.setX(9);
    EXPECT_EQ("1 2 2 ", times(first_));
    EXPECT_EQ(5.0, first_.spline().points()[0]->y());
}

TEST_F(CurveNodesTest, NullKeysAreReportedAndTheOthersAdded) {
    net_.add("CurveAddKey", "a");
    PointInfo one(1, 5);
    curves("a.curve", {&first_});
    keys("a.key", {nullptr, &one, nullptr});
    pointers("a.out curve");
    EXPECT_EQ("1 ", times(first_));
    const TM_String messages = net_.messages("a");
    EXPECT_NE(TM_String::npos, messages.find("Input 'key' is null at position 0"));
    EXPECT_NE(TM_String::npos, messages.find("Input 'key' is null at position 2"));
}

TEST_F(CurveNodesTest, NullCurveIsNamedByThePin) {
    for (const char* type : {"CurveAddKey", "CurveRemoveKey"}) {
        net_.add(type, type);
        PointInfo one(1, 5);
        keys(TM_String(type) + ".key", {&one});
        pointers(TM_String(type) + ".out curve");
        EXPECT_NE(TM_String::npos, net_.messages(type).find("Input 'curve' is null")) << type;
        EXPECT_EQ(TM_String::npos, net_.messages(type).find("position")) << type;
    }
}

TEST_F(CurveNodesTest, OneKeyFeedsManyCurves) {
    net_.add("Key", "k");
    for (const auto& [name, curve] : {std::pair{"a", &first_}, std::pair{"b", &second_}}) {
        net_.add("CurveAddKey", name);
        curves(TM_String(name) + ".curve", {curve});
        ASSERT_TRUE(net_.link("k.key", TM_String(name) + ".key"));
        pointers(TM_String(name) + ".out curve");
    }
    EXPECT_EQ("0 ", times(first_));
    EXPECT_EQ("0 ", times(second_));
}

TEST_F(CurveNodesTest, RemovesTheCurvesOwnKeys) {
    net_.add("GetCurveKeys", "g");
    net_.add("CurveRemoveKey", "r");
    add(first_, {{0, 0}, {1, 1}, {2, 2}});
    curves("g.curve", {&first_});
    curves("r.curve", {&first_});
    ASSERT_TRUE(net_.link("g.keys", "r.key"));
    pointers("r.out curve");
    EXPECT_EQ("", times(first_));
    EXPECT_EQ("", net_.messages("r"));
    for (void* key : net_.as<weft::KeyAttribute>("g.keys").pointers().values()) {
        EXPECT_EQ(nullptr, key);
    }
}

TEST_F(CurveNodesTest, KeysOfOtherCurvesAndNullsAreNotRemoved) {
    net_.add("CurveRemoveKey", "r");
    add(first_, {{0, 0}, {1, 1}});
    add(second_, {{0, 0}});
    curves("r.curve", {&first_});
    PointInfo* const mine = first_.spline().points()[1];
    keys("r.key", {second_.spline().points()[0], nullptr, mine, mine});
    pointers("r.out curve");
    EXPECT_EQ("0 ", times(first_));
    EXPECT_EQ("0 ", times(second_));
    EXPECT_NE(TM_String::npos, net_.messages("r").find("Input 'key' is null at position 1"));
}

// --- CurveEval -----------------------------------------------------------------------------------

TEST_F(CurveNodesTest, EvaluatesTheFirstCurveAtEachTime) {
    net_.add("CurveEval", "e");
    add(first_, {{0, 0, tm_spline::linear}, {2, 10, tm_spline::linear}});
    curves("e.curve", {&first_, &second_});
    net_.numbers("e.time", {-1.0f, 0.5f, 1.0f, 9.0f});
    EXPECT_EQ("[3] 0,2.5,5,10", net_.text("e.result"));
    EXPECT_EQ("", net_.messages("e"));
}

TEST_F(CurveNodesTest, NoTimesGiveNoResults) {
    net_.add("CurveEval", "e");
    curves("e.curve", {&first_});
    net_.numbers<float>("e.time", {});
    EXPECT_EQ("[3] ", net_.text("e.result"));
    EXPECT_EQ("", net_.messages("e"));
}

TEST_F(CurveNodesTest, NullCurveSizesTheResultAndIsReported) {
    net_.add("CurveEval", "e");
    net_.numbers("e.time", {1.0f, 2.0f, 3.0f});
    net_.refresh("e.result");
    EXPECT_EQ(3u, net_.pin("e.result").currentValue()->size());
    EXPECT_NE(TM_String::npos, net_.messages("e").find("Input Curve is null"));
}

TEST_F(CurveNodesTest, ManyTimesGoThroughInBlocks) {
    net_.add("CurveEval", "e");
    ASSERT_TRUE(first_.setExpression("t*2"));
    curves("e.curve", {&first_});
    auto& time = net_.as<weft::NumericAttribute>("e.time");
    constexpr uint32_t count = 100003;
    time.ownNumeric().resize(count);
    for (uint32_t i = 0; i < count; ++i) time.ownNumeric().setValueAt<float>(i, float(i));
    time.valueChanged();
    net_.refresh("e.result");
    const weft::Numeric& result = net_.as<weft::NumericAttribute>("e.result").numeric();
    ASSERT_EQ(count, result.size());
    for (uint32_t i = 0; i < count; ++i) ASSERT_EQ(2.0f * float(i), result.valueAt<float>(i));
}

TEST_F(CurveNodesTest, LongWorkAnswersAnInterrupt) {
    net_.add("CurveEval", "e");
    add(first_, {{0, 0}});
    curves("e.curve", {&first_});
    net_.manager().setEvaluating(true);
    net_.manager().requestInterrupt();
    EXPECT_ANY_THROW(net_.node("e").doUpdate(&net_.pin("e.result")));
    net_.manager().clearInterrupt();
    net_.manager().setEvaluating(false);
}

TEST_F(CurveNodesTest, AChangedKeyShowsInTheNextEvaluation) {
    net_.add("SetKeyProperties", "s");
    net_.add("CurveEval", "e");
    add(first_, {{0, 1}, {1, 1}});
    curves("e.curve", {&first_});
    net_.numbers("e.time", {0.0f});
    EXPECT_EQ("[3] 1", net_.text("e.result"));
    keys("s.key", {first_.spline().points()[0]});
    reals("s.y", {7.0f});
    pointers("s.out key");
    net_.pin("e.result").markDirty(true);
    EXPECT_EQ("[3] 7", net_.text("e.result"));
}

// --- properties of curves ------------------------------------------------------------------------

TEST_F(CurveNodesTest, TellsThePropertiesOfEachCurve) {
    net_.add("GetCurveProperties", "g");
    add(first_, {{0, 0}, {1, 1}});
    first_.setPreBehaviour(0);
    first_.setPostBehaviour(3);
    ASSERT_TRUE(second_.setExpression("t+1"));
    second_.setExpressionPlusSpline(true);
    second_.setPostBehaviour(-1);
    curves("g.curve", {&first_, &second_});
    EXPECT_EQ("01", net_.text("g.has expression"));
    EXPECT_EQ("|t+1", net_.list("g.expression"));
    EXPECT_EQ("01", net_.text("g.expression plus spline"));
    EXPECT_EQ("[1] 2,0", net_.text("g.key count"));
    EXPECT_EQ("[1] 0,1", net_.text("g.pre behaviour"));
    EXPECT_EQ("[1] 3,-1", net_.text("g.post behaviour"));
    EXPECT_EQ("", net_.messages("g"));
}

TEST_F(CurveNodesTest, OneUpdateFillsTheConnectedOutputsAndNoOther) {
    net_.add("GetCurveProperties", "g");
    net_.add("CurveEval", "e");
    net_.add("Integer", "count");
    net_.add("String", "text");
    add(first_, {{0, 0}, {1, 1}});
    ASSERT_TRUE(first_.setExpression("t"));
    curves("g.curve", {&first_, &second_, &first_});
    ASSERT_TRUE(net_.link("g.key count", "count.in"));
    ASSERT_TRUE(net_.link("g.expression", "text.in"));
    net_.refresh("g.key count");
    EXPECT_EQ("[1] 2,0,2", net_.pin("g.key count").value()->asString());
    EXPECT_EQ("t\n\nt", net_.pin("g.expression").value()->asString());
    EXPECT_TRUE(net_.pin("g.expression").isClean());
    EXPECT_EQ(1u, net_.pin("g.has expression").value()->size());
    EXPECT_EQ(1u, net_.pin("g.post behaviour").value()->size());
    EXPECT_FALSE(net_.pin("g.post behaviour").isClean());
}

TEST_F(CurveNodesTest, NullCurvesLeaveTheirEntryUnset) {
    net_.add("GetCurveProperties", "g");
    add(first_, {{0, 0}, {1, 1}});
    curves("g.curve", {nullptr, &first_});
    EXPECT_EQ("[1] 0,2", net_.text("g.key count"));
    EXPECT_NE(TM_String::npos, net_.messages("g").find("Input is null at position 0"));
    EXPECT_EQ(TM_String::npos, net_.messages("g").find("position 1"));
    curves("g.curve", {});
    EXPECT_EQ("[1] ", net_.text("g.key count"));
}

TEST_F(CurveNodesTest, UnconnectedPropertiesChangeNothing) {
    net_.add("SetCurveProperties", "s");
    ASSERT_TRUE(first_.setExpression("t"));
    first_.setExpressionPlusSpline(true);
    first_.setPreBehaviour(0);
    first_.setPostBehaviour(2);
    curves("s.curve", {&first_});
    net_.strings("s.expression", {"frame"}); // a value of the pin itself is no source
    net_.bits("s.expression plus spline", {false});
    net_.numbers("s.pre behaviour", {7});
    pointers("s.out curve");
    EXPECT_EQ("t", first_.getExpression());
    EXPECT_TRUE(first_.hasExpressionPlusSpline());
    EXPECT_EQ(0, first_.preBehaviour());
    EXPECT_EQ(2, first_.postBehaviour());
    EXPECT_FALSE(first_.behavioursChanged());
}

TEST_F(CurveNodesTest, ConnectedPropertiesAreSetWithTheLastRepeated) {
    net_.add("SetCurveProperties", "s");
    ANIFloatBase third;
    curves("s.curve", {&first_, nullptr, &second_, &third});
    feed<const char*>("s.expression", "String", "out", {"t", "x", "t*2"});
    feed<bool>("s.expression plus spline", "Bit", "bit", {true, false});
    integers("s.pre behaviour", {0, 5, 2, 3});
    integers("s.post behaviour", {2, 3});
    pointers("s.out curve");
    EXPECT_EQ("t", first_.getExpression());
    EXPECT_EQ("t*2", second_.getExpression());
    EXPECT_EQ("t*2", third.getExpression());
    EXPECT_TRUE(first_.hasExpressionPlusSpline());
    EXPECT_FALSE(third.hasExpressionPlusSpline());
    EXPECT_EQ(0, first_.preBehaviour());
    EXPECT_EQ(2, second_.preBehaviour());
    EXPECT_EQ(3, third.preBehaviour());
    EXPECT_EQ(2, first_.postBehaviour());
    EXPECT_EQ(3, third.postBehaviour());
    EXPECT_TRUE(first_.behavioursChanged());
    EXPECT_EQ(TM_String::npos, net_.messages("s").find("position 0"));
    EXPECT_NE(TM_String::npos, net_.messages("s").find("Input is null at position 1"));
}

TEST_F(CurveNodesTest, OnlyBehavioursSetTheChangedFlag) {
    net_.add("SetCurveProperties", "s");
    curves("s.curve", {&first_});
    feed<const char*>("s.expression", "String", "out", {"t"});
    pointers("s.out curve");
    EXPECT_EQ("t", first_.getExpression());
    EXPECT_FALSE(first_.behavioursChanged());
}

TEST_F(CurveNodesTest, ConnectedEmptyExpressionRemovesIt) {
    net_.add("SetCurveProperties", "s");
    ASSERT_TRUE(first_.setExpression("t"));
    ASSERT_TRUE(second_.setExpression("t"));
    curves("s.curve", {&first_, &second_});
    feed<const char*>("s.expression", "String", "out", {""});
    pointers("s.out curve");
    EXPECT_EQ("", first_.getExpression());
    EXPECT_EQ("", second_.getExpression());
}

TEST_F(CurveNodesTest, RefusedExpressionIsReportedAndLeavesTheCurve) {
    net_.add("SetCurveProperties", "s");
    ASSERT_TRUE(first_.setExpression("t"));
    curves("s.curve", {&first_});
    feed<const char*>("s.expression", "String", "out", {"sin(%n%s"});
    pointers("s.out curve");
    EXPECT_EQ("t", first_.getExpression());
    EXPECT_NE(TM_String::npos, net_.messages("s").find("Expression is refused at position 0"));
    EXPECT_NE(TM_String::npos, net_.messages("s").find("%n%s"));
}

TEST_F(CurveNodesTest, EmptyBehavioursStoreMinusOne) {
    net_.add("SetCurveProperties", "s");
    curves("s.curve", {&first_, &second_});
    integers("s.pre behaviour", {});
    integers("s.post behaviour", {});
    pointers("s.out curve");
    EXPECT_EQ(-1, first_.preBehaviour());
    EXPECT_EQ(-1, second_.postBehaviour());
}

TEST_F(CurveNodesTest, EmptyExpressionsAndBitsAreTheirDefaults) {
    net_.add("SetCurveProperties", "s");
    ASSERT_TRUE(first_.setExpression("t"));
    first_.setExpressionPlusSpline(true);
    curves("s.curve", {&first_});
    feed<const char*>("s.expression", "String", "out", {});
    feed<bool>("s.expression plus spline", "Bit", "bit", {});
    pointers("s.out curve");
    EXPECT_EQ("", first_.getExpression());
    EXPECT_FALSE(first_.hasExpressionPlusSpline());
    EXPECT_EQ("", net_.messages("s"));
}

TEST_F(CurveNodesTest, ASourceMayLieBehindPassThroughs) {
    net_.add("SetCurveProperties", "s");
    net_.add("Sleep", "empty");
    net_.add("Sleep", "fed");
    curves("s.curve", {&first_});
    ASSERT_TRUE(net_.link("empty.through", "s.pre behaviour"));
    integers("fed.in", {3});
    ASSERT_TRUE(net_.link("fed.through", "s.post behaviour"));
    pointers("s.out curve");
    EXPECT_EQ(1, first_.preBehaviour());
    EXPECT_EQ(3, first_.postBehaviour());
}

// --- properties of keys --------------------------------------------------------------------------

TEST_F(CurveNodesTest, TellsThePropertiesOfEachKey) {
    net_.add("GetKeyProperties", "g");
    PointInfo key(0.1, 2, tm_spline::bezier);
    key.setEaseFrom(3);
    key.setEaseTo(4);
    key.setIncoming(5);
    key.setOutgoing(6);
    key.setTension(7);
    key.setContinuity(8);
    key.setBias(9);
    key.setUnifiesTangents(true);
    PointInfo plain(1e300, -1e300, 77);
    keys("g.key", {&key, nullptr, &plain});
    EXPECT_EQ("[3] 0.1,0,inf", net_.text("g.x"));
    EXPECT_EQ("[3] 2,0,-inf", net_.text("g.y"));
    EXPECT_EQ("[1] 2,0,77", net_.text("g.type"));
    EXPECT_EQ("[3] 3,0,0", net_.text("g.ease from"));
    EXPECT_EQ("[3] 4,0,0", net_.text("g.ease to"));
    EXPECT_EQ("[3] 5,0,0", net_.text("g.incoming"));
    EXPECT_EQ("[3] 6,0,0", net_.text("g.outgoing"));
    EXPECT_EQ("[3] 7,0,0", net_.text("g.t"));
    EXPECT_EQ("[3] 8,0,0", net_.text("g.c"));
    EXPECT_EQ("[3] 9,0,0", net_.text("g.b"));
    EXPECT_EQ("100", net_.text("g.unify tan"));
    EXPECT_NE(TM_String::npos, net_.messages("g").find("Input is null at position 1"));
}

TEST_F(CurveNodesTest, NoPropertyConnectedLeavesTheKeys) {
    net_.add("SetKeyProperties", "s");
    PointInfo key(1, 2, tm_spline::step);
    keys("s.key", {&key});
    net_.numbers("s.x", {9.0f});
    EXPECT_EQ(&key, pointers("s.out key")[0]);
    EXPECT_EQ(1.0, key.x());
    EXPECT_EQ(tm_spline::step, key.type());
    EXPECT_EQ("", net_.messages("s"));
}

TEST_F(CurveNodesTest, SetsEveryConnectedProperty) {
    net_.add("SetKeyProperties", "s");
    PointInfo key;
    keys("s.key", {&key});
    reals("s.x", {1});
    reals("s.y", {2});
    integers("s.type", {3});
    reals("s.ease from", {4});
    reals("s.ease to", {5});
    reals("s.incoming", {6});
    reals("s.outgoing", {7});
    reals("s.t", {8});
    reals("s.c", {9});
    reals("s.b", {10});
    feed<bool>("s.unify tan", "Bit", "bit", {true});
    pointers("s.out key");
    EXPECT_EQ(1.0, key.x());
    EXPECT_EQ(2.0, key.y());
    EXPECT_EQ(3, key.type());
    EXPECT_EQ(4.0, key.easeFrom());
    EXPECT_EQ(5.0, key.easeTo());
    EXPECT_EQ(6.0, key.incoming());
    EXPECT_EQ(7.0, key.outgoing());
    EXPECT_EQ(8.0, key.tension());
    EXPECT_EQ(9.0, key.continuity());
    EXPECT_EQ(10.0, key.bias());
    EXPECT_TRUE(key.unifiesTangents());
    EXPECT_EQ("", net_.messages("s"));
}

TEST_F(CurveNodesTest, SizesThatDifferAreReportedAndTheLastRepeats) {
    net_.add("SetKeyProperties", "s");
    PointInfo a, b, c;
    keys("s.key", {&a, &b, nullptr, &c});
    reals("s.x", {1, infinity});
    reals("s.y", {});
    integers("s.type", {0, 0, 0, 2});
    pointers("s.out key");
    EXPECT_EQ(1.0, a.x());
    EXPECT_EQ(infinity, static_cast<float>(b.x()));
    EXPECT_EQ(infinity, static_cast<float>(c.x()));
    EXPECT_EQ(0.0, c.y());
    EXPECT_EQ(2, c.type());
    const TM_String messages = net_.messages("s");
    EXPECT_NE(TM_String::npos, messages.find("Attributes 'key' and 'x' size differs. (4, 2)"));
    EXPECT_NE(TM_String::npos, messages.find("Attributes 'key' and 'y' size differs. (4, 0)"));
    EXPECT_EQ(TM_String::npos, messages.find("'type'"));
    EXPECT_NE(TM_String::npos, messages.find("Input is null at position 2"));
    for (const auto& message : net_.node("s").getMessages().messages()) {
        const bool isSize = message.text.find("size differs") != TM_String::npos;
        EXPECT_EQ(isSize ? 3 : 2, message.level);
    }
}

TEST_F(CurveNodesTest, MovedKeysKeepTheirPlaceInTheCurve) {
    net_.add("GetCurveKeys", "g");
    net_.add("SetKeyProperties", "s");
    add(first_, {{0, 0}, {1, 1}, {2, 2}});
    curves("g.curve", {&first_});
    ASSERT_TRUE(net_.link("g.keys", "s.key"));
    reals("s.x", {5, 4, 3});
    pointers("s.out key");
    EXPECT_EQ("5 4 3 ", times(first_));
}

TEST_F(CurveNodesTest, EmptyPropertiesStoreTheDefault) {
    net_.add("SetKeyProperties", "s");
    PointInfo key(1, 2, tm_spline::step);
    key.setUnifiesTangents(true);
    keys("s.key", {&key});
    reals("s.x", {});
    integers("s.type", {});
    feed<bool>("s.unify tan", "Bit", "bit", {});
    pointers("s.out key");
    EXPECT_EQ(0.0, key.x());
    EXPECT_EQ(2.0, key.y());
    EXPECT_EQ(tm_spline::linear, key.type());
    EXPECT_FALSE(key.unifiesTangents());
    EXPECT_EQ("[warning] Attributes 'key' and 'x' size differs. (1, 0)\n"
              "[warning] Attributes 'key' and 'type' size differs. (1, 0)\n"
              "[warning] Attributes 'key' and 'unify tan' size differs. (1, 0)\n",
              net_.messages("s"));
}

TEST_F(CurveNodesTest, OneUpdateFillsTheConnectedPropertiesOfKeys) {
    net_.add("GetKeyProperties", "g");
    net_.add("Bit", "unify");
    net_.add("Integer", "type");
    PointInfo a(1, 2), b(3, 4, tm_spline::step);
    b.setUnifiesTangents(true);
    keys("g.key", {&a, &b});
    ASSERT_TRUE(net_.link("g.unify tan", "unify.in"));
    ASSERT_TRUE(net_.link("g.type", "type.in"));
    net_.refresh("g.type");
    EXPECT_EQ("[1] 1,3", net_.pin("g.type").value()->asString());
    EXPECT_EQ("01", net_.pin("g.unify tan").value()->asString());
    EXPECT_TRUE(net_.pin("g.unify tan").isClean());
    EXPECT_EQ("[3] 0", net_.pin("g.x").value()->asString());
    EXPECT_FALSE(net_.pin("g.x").isClean());
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Curves: keys, interpolation, behaviours, expressions, changes noticed.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "platform/curve_fixture.h"
#include "support/comma_locale.h"

namespace {

using namespace tidemark;
using namespace curve_tests;

// --- keys ----------------------------------------------------------------------------------------

TEST(PointInfo, FreshKeyIsZeroAndTcb) {
    const PointInfo fresh;
    EXPECT_EQ(0.0, fresh.x());
    EXPECT_EQ(0.0, fresh.y());
    EXPECT_EQ(0.0, fresh.incoming());
    EXPECT_EQ(0.0, fresh.outgoing());
    EXPECT_EQ(0.0, fresh.tension());
    EXPECT_EQ(0.0, fresh.continuity());
    EXPECT_EQ(0.0, fresh.bias());
    EXPECT_EQ(0.0, fresh.easeTo());
    EXPECT_EQ(0.0, fresh.easeFrom());
    EXPECT_EQ(tm_spline::tcb, fresh.type());
    EXPECT_FALSE(fresh.unifiesTangents());
}

TEST(PointInfo, TypesHaveNames) {
    EXPECT_STREQ("linear", tm_spline::nameOf(0));
    EXPECT_STREQ("tcb", tm_spline::nameOf(1));
    EXPECT_STREQ("bezier", tm_spline::nameOf(2));
    EXPECT_STREQ("step", tm_spline::nameOf(3));
    EXPECT_STREQ("linear", tm_spline::nameOf(-7));
}

TEST_F(CurveTest, KeysAreKeptInTimeOrderBehindEqualOnes) {
    add({key(2, 1), key(0, 2), key(1, 3), key(1, 4), key(notANumber, 5), key(3, 6)});
    EXPECT_EQ("0 1 1 2 3 nan ", times());
    EXPECT_EQ(3.0, at(1).y());
    EXPECT_EQ(4.0, at(2).y());
}

TEST_F(CurveTest, ManyAtOnceAreAsOneByOne) {
    const PointInfo a = key(2, 1), b = key(1, 2), c = key(1, 3);
    add({key(1, 0)});
    curve_.refSpline().addPoints({&a, &b, &c, curve_.spline().points()[0]});
    EXPECT_EQ("1 1 1 1 2 ", times());
    EXPECT_EQ(0.0, at(0).y());
    EXPECT_EQ(2.0, at(1).y());
    EXPECT_EQ(3.0, at(2).y());
    EXPECT_EQ(0.0, at(3).y());
    curve_.refSpline().addPoints({});
    EXPECT_EQ(5u, curve_.spline().points().size());
}

TEST_F(CurveTest, KeysAreCopies) {
    PointInfo mine = key(1, 2);
    add({mine});
    mine.setY(9);
    EXPECT_EQ(2.0f, (*this)(1));
    PointInfo copy = at(0);
    copy.setY(8);
    EXPECT_EQ(2.0f, (*this)(1));
}

TEST_F(CurveTest, RemovesTheKeyItIsGivenAndNoOther) {
    add({key(0, 1), key(1, 2), key(2, 3), key(3, 4)});
    const PointInfo* second = &at(1);
    const PointInfo stranger = at(0);
    curve_.refSpline().remove(second);
    curve_.refSpline().remove(second);
    curve_.refSpline().remove(&stranger);
    curve_.refSpline().remove(nullptr);
    EXPECT_EQ("0 2 3 ", times());
    curve_.refSpline().removePoints({&at(2), &at(0), &at(2)});
    EXPECT_EQ("2 ", times());
    curve_.refSpline().removeAllControlPoints();
    curve_.refSpline().removeAllControlPoints();
    EXPECT_EQ("", times());
    EXPECT_EQ(0.0f, (*this)(2));
}

std::vector<Array<void*>> released;

TEST_F(CurveTest, TellsBeforeItFreesKeys) {
    released.clear();
    setKeyReleaseHook([](const Array<void*>& keys) {
        for (void* each : keys) EXPECT_GE(static_cast<PointInfo*>(each)->x(), 0.0);
        released.push_back(keys);
    });
    auto other = std::make_unique<ANIFloatBase>();
    other->refSpline().addPoint(key(7, 7));
    add({key(0, 1), key(1, 2), key(2, 3)});
    void* const first = &at(0);
    void* const last = &at(2);
    curve_.refSpline().remove(&at(1));
    curve_.refSpline().remove(nullptr);
    curve_.refSpline().removeAllControlPoints();
    curve_.refSpline().removeAllControlPoints();
    other.reset();
    setKeyReleaseHook(nullptr);
    ASSERT_EQ(3u, released.size());
    EXPECT_EQ(1u, released[0].size());
    EXPECT_TRUE(released[1] == (Array<void*>{first, last}));
    EXPECT_EQ(1u, released[2].size());
}

TEST_F(CurveTest, TellsBeforeACurveGoes) {
    released.clear();
    setCurveReleaseHook([](const Array<void*>& curves) { released.push_back(curves); });
    auto other = std::make_unique<ANIFloatBase>();
    const Array<void*> expected{other.get()};
    other.reset();
    setCurveReleaseHook(nullptr);
    ASSERT_EQ(1u, released.size());
    EXPECT_TRUE(released[0] == expected);
}

// --- interpolation -------------------------------------------------------------------------------

TEST_F(CurveTest, NoKeysGiveZero) {
    EXPECT_EQ(0.0f, (*this)(0));
    EXPECT_EQ(0.0f, (*this)(-infinity));
    EXPECT_EQ(0.0f, (*this)(notANumber));
}

TEST_F(CurveTest, OneKeyIsAConstant) {
    add({key(1, 5, tm_spline::tcb)});
    for (const int32_t after : {curveConstant, curveLoop, curveLoopOffset}) {
        curve_.setPostBehaviour(after);
        EXPECT_EQ(5.0f, (*this)(0));
        EXPECT_EQ(5.0f, (*this)(1));
        EXPECT_EQ(5.0f, (*this)(2));
    }
    curve_.setPreBehaviour(curveZero);
    curve_.setPostBehaviour(curveZero);
    EXPECT_EQ(0.0f, (*this)(0));
    EXPECT_EQ(5.0f, (*this)(1));
    EXPECT_EQ(0.0f, (*this)(2));
}

TEST_F(CurveTest, LinearKeysGiveALine) {
    add({key(1, 10), key(3, 20), key(4, 0)});
    EXPECT_EQ(10.0f, (*this)(1));
    EXPECT_EQ(12.5f, (*this)(1.5f));
    EXPECT_EQ(20.0f, (*this)(3));
    EXPECT_EQ(5.0f, (*this)(3.75f));
    EXPECT_EQ(0.0f, (*this)(4));
}

TEST_F(CurveTest, StepKeysHoldTheLeftValue) {
    add({key(0, 1, tm_spline::step), key(1, 2, tm_spline::step), key(2, 5)});
    EXPECT_EQ(1.0f, (*this)(0));
    EXPECT_EQ(1.0f, (*this)(0.999f));
    EXPECT_EQ(2.0f, (*this)(1));
    EXPECT_EQ(2.0f, (*this)(1.999f));
    EXPECT_EQ(5.0f, (*this)(2));
}

TEST_F(CurveTest, UnknownTypesAreLinear) {
    add({key(0, 0, 99), key(1, 10, -1), key(2, 30, 4)});
    EXPECT_EQ(5.0f, (*this)(0.5f));
    EXPECT_EQ(20.0f, (*this)(1.5f));
}

TEST_F(CurveTest, BezierKeysFollowTheirSlopes) {
    // Inner points at a third: 0, 4/3, 10 - 2/3, 10; the middle is (0 + 3*4/3 + 3*28/3 + 10) / 8.
    add({bezierKey(0, 0, -100, 2), bezierKey(2, 10, 1, -100)});
    EXPECT_NEAR(42.0 / 8, (*this)(1), 1e-6);
    const double slopeAtStart = ((*this)(0.001f) - (*this)(0)) / 0.001;
    EXPECT_NEAR(2.0, slopeAtStart, 0.02);
    EXPECT_EQ(10.0f, (*this)(2));
}

TEST_F(CurveTest, BezierSlopesOfZeroEaseInAndOut) {
    add({bezierKey(0, 0, 0, 0), bezierKey(1, 8, 0, 0)});
    EXPECT_NEAR(8 * (3 * 0.0625 - 2 * 0.015625), (*this)(0.25f), 1e-6);
    EXPECT_NEAR(4, (*this)(0.5f), 1e-6);
}

TEST_F(CurveTest, UnifiedBezierTangentIsTheMean) {
    PointInfo middle = bezierKey(1, 0, 4, 0);
    middle.setUnifiesTangents(true);
    add({bezierKey(0, 0, 0, 0), middle, bezierKey(2, 0, 0, 0)});
    // Slope 2 on both sides: half way of a second the cubic is at -h s / 8 and h s / 8.
    EXPECT_NEAR(-0.25, (*this)(0.5f), 1e-6);
    EXPECT_NEAR(0.25, (*this)(1.5f), 1e-6);
    at(1).setUnifiesTangents(false);
    EXPECT_NEAR(-0.5, (*this)(0.5f), 1e-6);
    EXPECT_NEAR(0.0, (*this)(1.5f), 1e-6);
}

TEST_F(CurveTest, TwoPlainTcbKeysGiveALine) {
    add({key(1, 0, tm_spline::tcb), key(3, 10, tm_spline::tcb)});
    EXPECT_NEAR(2.5, (*this)(1.5f), 1e-6);
    EXPECT_NEAR(5.0, (*this)(2), 1e-6);
}

// The value half way from key 1 to key 2 of 0, 0, 1, 1 at whole seconds, by the paper's tangents.
double tcbMiddle(double t, double c, double b) {
    const double leaving = (1 - t) * ((1 + c) * (1 + b) / 2 * 0 + (1 - c) * (1 - b) / 2 * 1);
    const double arriving = (1 - t) * ((1 - c) * (1 + b) / 2 * 1 + (1 + c) * (1 - b) / 2 * 0);
    return 0.5 + leaving / 8 - arriving / 8;
}

TEST_F(CurveTest, TcbKeysHaveTheTangentsOfThePaper) {
    const double cases[][3] = {{0, 0, 0}, {1, 0, 0},    {-1, 0, 0},        {0, 1, 0},
                               {0, 0, 1}, {0, 0, -0.5}, {0.25, -0.5, 0.75}};
    for (const auto& [t, c, b] : cases) {
        curve_.refSpline().removeAllControlPoints();
        for (int i = 0; i < 4; ++i) {
            PointInfo made(i, i < 2 ? 0 : 1);
            made.setTension(t);
            made.setContinuity(c);
            made.setBias(b);
            add({made});
        }
        EXPECT_NEAR(tcbMiddle(t, c, b), (*this)(1.5f), 1e-6) << t << " " << c << " " << b;
    }
}

TEST_F(CurveTest, PlainTcbSlopeIsSmoothWithUnevenSpacing) {
    add({key(0, 0, tm_spline::tcb), key(1, 5, tm_spline::tcb), key(4, 2, tm_spline::tcb)});
    const double left = ((*this)(1) - (*this)(0.999f)) / 0.001;
    const double right = ((*this)(1.001f) - (*this)(1)) / 0.001;
    EXPECT_NEAR(0.5, left, 0.02); // (2 - 0) / (4 - 0)
    EXPECT_NEAR(0.5, right, 0.02);
}

PointInfo tcbKey(double x, double y, double t, double c, double b) {
    PointInfo made(x, y);
    made.setTension(t);
    made.setContinuity(c);
    made.setBias(b);
    return made;
}

// Worked out apart, by the paper's equations 8 and 9 with each tangent scaled by twice its own span
// over both, in the basis of Hermite.
TEST_F(CurveTest, TcbKeysOfUnevenSpacing) {
    add({tcbKey(0, 1, 0.1, 0.2, -0.3), tcbKey(1, 5, 0.25, -0.5, 0.75), tcbKey(4, 2, -0.4, 0.3, 0.2),
         tcbKey(4.5, -1, 0, 0, 0.5)});
    const double worked[][3] = {
        // time, value, value with the tangents of the inner keys unified
        {0.25, 2.01188574, 2.04594336}, {0.5, 3.18569531, 3.27651563},
        {2.0, 4.92147222, 5.27638889},  {3.0, 3.87940278, 4.10486111},
        {4.125, 1.493, 1.503125},       {4.25, 0.716, 0.725},
    };
    for (const auto& [time, value, unified] : worked) {
        EXPECT_NEAR(value, (*this)(static_cast<float>(time)), 1e-6) << time;
    }
    at(1).setUnifiesTangents(true);
    at(2).setUnifiesTangents(true);
    for (const auto& [time, value, unified] : worked) {
        EXPECT_NEAR(unified, (*this)(static_cast<float>(time)), 1e-6) << time;
    }
}

// The missing neighbour mirrors the only one, so of the chord's slope a key leaves with the share
// (1 - t)(1 + c b) and arrives with (1 - t)(1 - c b).
TEST_F(CurveTest, TcbEndsTakeTheirNeighbourTwice) {
    add({tcbKey(0, 0, 0.5, 0.5, 1), tcbKey(2, 8, 0.25, -0.5, 1)});
    const double leaving = 0.5 * 1.5 * 4, arriving = 0.75 * 1.5 * 4;
    EXPECT_NEAR(4 + 2 * leaving / 8 - 2 * arriving / 8, (*this)(1), 1e-6);
}

TEST_F(CurveTest, TensionOneStopsAtTheKey) {
    PointInfo middle(1, 5);
    middle.setTension(1);
    add({key(0, 0, tm_spline::tcb), middle, key(2, 10, tm_spline::tcb)});
    EXPECT_NEAR(5.0, (*this)(1.001f), 1e-4);
    EXPECT_NEAR(5.0, (*this)(0.999f), 1e-4);
}

TEST_F(CurveTest, UnifiedTcbTangentHealsContinuity) {
    for (int i = 0; i < 3; ++i) {
        PointInfo made(i, i * i);
        made.setContinuity(-1);
        add({made});
    }
    const auto slope = [&](float from) { return ((*this)(from + 0.001f) - (*this)(from)) / 0.001; };
    EXPECT_NEAR(1.0, slope(0.999f), 0.03); // a corner: the chords
    EXPECT_NEAR(3.0, slope(1.0f), 0.03);
    at(1).setUnifiesTangents(true);
    EXPECT_NEAR(2.0, slope(0.999f), 0.03);
    EXPECT_NEAR(2.0, slope(1.0f), 0.03);
}

TEST_F(CurveTest, MixedKeysUseEachKeysOwnSlope) {
    add({bezierKey(0, 0, 0, 0), key(1, 1), bezierKey(2, 1, 0, 0), key(3, 2, tm_spline::step)});
    // To a linear key along the chord: slopes 0 and 1.
    EXPECT_NEAR(0.5 + 0.0 / 8 - 1.0 / 8, (*this)(0.5f), 1e-6);
    EXPECT_NEAR(1.0, (*this)(1.5f), 1e-6);
    EXPECT_NEAR(1.5 - 1.0 / 8, (*this)(2.5f), 1e-6);
}

TEST_F(CurveTest, EaseGathersSpeedAndSlowsDown) {
    PointInfo left(0, 0), right(1, 1);
    left.setEaseTo(0.5);
    add({left, right});
    // Top speed 4/3; at a quarter 4/3 * 1/16 / (2 * 1/2), at a half 4/3 * 1/4 = 1/3.
    EXPECT_NEAR(1.0 / 12, (*this)(0.25f), 1e-6);
    EXPECT_NEAR(1.0 / 3, (*this)(0.5f), 1e-6);
    EXPECT_NEAR(2.0 / 3, (*this)(0.75f), 1e-6);
    at(1).setEaseFrom(0.5);
    EXPECT_NEAR(0.5, (*this)(0.5f), 1e-6);
    EXPECT_NEAR(0.125, (*this)(0.25f), 1e-6);
    EXPECT_NEAR(0.875, (*this)(0.75f), 1e-6);
    at(0).setEaseTo(0);
    EXPECT_NEAR(1 - 1.0 / 3, (*this)(0.5f), 1e-6);
}

// Distances of a speed that rises over the first share and falls over the last, summed up apart.
TEST_F(CurveTest, EaseChangesTheTimeWithinACubic) {
    add({key(-1, 0, tm_spline::tcb), key(0, 0, tm_spline::tcb), key(2, 8, tm_spline::tcb),
         key(3, 8, tm_spline::tcb)});
    at(1).setEaseTo(0.3);
    at(2).setEaseFrom(0.2);
    EXPECT_NEAR(0.12241061, (*this)(0.2f), 1e-6);
    EXPECT_NEAR(3.68908642, (*this)(1.0f), 1e-5);
    EXPECT_NEAR(7.81353086, (*this)(1.8f), 1e-5);
    at(1).setEaseTo(0.6);
    at(2).setEaseFrom(0.6);
    EXPECT_NEAR(1.188096, (*this)(0.6f), 1e-6);
    // The other sides of these keys, and the other spans, go on evenly.
    at(1).setEaseFrom(1);
    at(2).setEaseTo(1);
    EXPECT_NEAR(1.188096, (*this)(0.6f), 1e-6);
}

TEST_F(CurveTest, EaseNeedsACurvedWay) {
    PointInfo right(1, 1);
    right.setEaseFrom(0.5);
    add({bezierKey(0, 0, 1, 1), right});
    EXPECT_NEAR(1.0 / 3, (*this)(0.25f), 1e-6); // a third faster until it slows down
    at(0).setType(tm_spline::linear);
    EXPECT_EQ(0.25f, (*this)(0.25f));
    at(0).setType(tm_spline::step);
    EXPECT_EQ(0.0f, (*this)(0.25f));
}

TEST_F(CurveTest, EaseOfAnySizeStaysInItsBounds) {
    PointInfo left(0, 0), right(1, 1);
    left.setEaseTo(7);
    right.setEaseFrom(1e300);
    add({left, right});
    EXPECT_NEAR(0.125, (*this)(0.25f), 1e-6); // both half
    at(0).setEaseTo(-1);
    at(1).setEaseFrom(notANumber);
    EXPECT_NEAR(0.25, (*this)(0.25f), 1e-6);
    at(0).setEaseTo(1);
    EXPECT_NEAR(0.0625, (*this)(0.25f), 1e-6);
}

TEST_F(CurveTest, EaseIsOfTcbKeysOnly) {
    PointInfo left = bezierKey(0, 0, 1, 1), right = bezierKey(1, 1, 1, 1);
    left.setEaseTo(0.5);
    right.setEaseFrom(0.5);
    add({left, right});
    EXPECT_NEAR(0.25, (*this)(0.25f), 1e-6);
}

TEST_F(CurveTest, OfKeysAtOneTimeTheLastHolds) {
    add({key(0, 0), key(1, 10), key(1, 15), key(1, 20), key(2, 30)});
    EXPECT_NEAR(9.99, (*this)(0.999f), 1e-4);
    EXPECT_EQ(20.0f, (*this)(1));
    EXPECT_EQ(25.0f, (*this)(1.5f));
}

TEST_F(CurveTest, AJumpIsAnEndForTcbTangents) {
    add({key(0, 0, tm_spline::tcb), key(1, 1, tm_spline::tcb), key(1, 100, tm_spline::tcb),
         key(2, 101, tm_spline::tcb)});
    EXPECT_NEAR(0.25, (*this)(0.25f), 1e-6);
    EXPECT_NEAR(100.25, (*this)(1.25f), 1e-4);
}

TEST_F(CurveTest, KeysAtOneTimeOnlyAreAJump) {
    add({key(1, 10), key(1, 20)});
    curve_.setPostBehaviour(curveLoopOffset);
    EXPECT_EQ(10.0f, (*this)(0));
    EXPECT_EQ(20.0f, (*this)(1));
    EXPECT_EQ(20.0f, (*this)(5));
}

TEST_F(CurveTest, KeysWithoutAUsableTimeArePassedOver) {
    add({key(0, 0), key(notANumber, 7), key(infinity, 8), key(-infinity, 9), key(1e39, 6),
         key(2, 4)});
    EXPECT_EQ(2.0f, (*this)(1));
    EXPECT_EQ(4.0f, (*this)(100));
    curve_.refSpline().removeAllControlPoints();
    add({key(notANumber, 7)});
    EXPECT_EQ(0.0f, (*this)(1));
}

TEST_F(CurveTest, VeryNearKeysDoNoHarm) {
    add({key(0, 1), key(5e-324, 2), key(1e-310, 3), key(1, 4)});
    EXPECT_TRUE(std::isfinite((*this)(0)));
    EXPECT_EQ(3.5f, (*this)(0.5f));
    curve_.setPostBehaviour(curveLoop);
    EXPECT_TRUE(std::isfinite((*this)(1.5f)));
    curve_.refSpline().removeAllControlPoints();
    add({key(0, 1), key(3e-308, 2)});
    EXPECT_TRUE(std::isfinite((*this)(1e30f)));
    EXPECT_EQ(2.0f, (*this)(0)); // one time, seen as floats
}

// 0.7 is no float; the nearest one is below it, that of 0.1 above.
TEST_F(CurveTest, KeysCountAtTheFloatNearestToTheirTime) {
    add({key(0.1, 3, tm_spline::step), key(0.4, 5, tm_spline::step), key(0.7, 9, tm_spline::step)});
    curve_.setPreBehaviour(curveZero);
    curve_.setPostBehaviour(curveZero);
    EXPECT_EQ(3.0f, (*this)(0.1f));
    EXPECT_EQ(5.0f, (*this)(0.4f));
    EXPECT_EQ(9.0f, (*this)(0.7f));
    EXPECT_EQ(0.0f, (*this)(std::nextafterf(0.1f, 0.0f)));
    EXPECT_EQ(3.0f, (*this)(std::nextafterf(0.4f, 0.0f)));
    EXPECT_EQ(5.0f, (*this)(std::nextafterf(0.7f, 0.0f)));
    EXPECT_EQ(0.0f, (*this)(std::nextafterf(0.7f, 1.0f)));
    curve_.refSpline().removeAllControlPoints();
    add({key(0.7, 9), key(0.7 + 1e-9, 2), key(1.3, 4)});
    curve_.setPostBehaviour(curveLoop);
    EXPECT_EQ(2.0f, (*this)(0.7f));
    EXPECT_EQ(4.0f, (*this)(1.3f));
    for (float time = 0.7f; time < 100; time += 0.1f) {
        ASSERT_GE((*this)(time), 2.0f) << time;
        ASSERT_LE((*this)(time), 9.0f) << time;
    }
}

TEST_F(CurveTest, ValuesThatAreNoNumbersStayInTheirSpan) {
    add({key(0, 1), key(1, notANumber), key(2, 3), key(3, 5)});
    EXPECT_TRUE(std::isnan((*this)(0.5f)));
    EXPECT_TRUE(std::isnan((*this)(1.5f)));
    EXPECT_EQ(4.0f, (*this)(2.5f));
}

// --- before and after ----------------------------------------------------------------------------

TEST_F(CurveTest, BeforeTheKeysZeroOrConstant) {
    add({key(1, 10), key(2, 20)});
    EXPECT_EQ(10.0f, (*this)(0));
    for (const int32_t other : {-1, 1, 2, 3, 77}) {
        curve_.setPreBehaviour(other);
        EXPECT_EQ(10.0f, (*this)(-infinity));
    }
    curve_.setPreBehaviour(curveZero);
    EXPECT_EQ(0.0f, (*this)(0.999f));
    EXPECT_EQ(10.0f, (*this)(1));
    EXPECT_EQ(0.0f, (*this)(-infinity));
}

TEST_F(CurveTest, AfterTheKeysFourBehaviours) {
    add({key(1, 10), key(3, 20)});
    EXPECT_EQ(20.0f, (*this)(9));
    curve_.setPostBehaviour(-1);
    EXPECT_EQ(20.0f, (*this)(9));
    curve_.setPostBehaviour(curveZero);
    EXPECT_EQ(20.0f, (*this)(3));
    EXPECT_EQ(0.0f, (*this)(3.001f));
    curve_.setPostBehaviour(curveLoop);
    EXPECT_EQ(20.0f, (*this)(3));
    EXPECT_EQ(12.5f, (*this)(3.5f));
    EXPECT_EQ(10.0f, (*this)(5));
    EXPECT_EQ(10.0f, (*this)(2001));
    EXPECT_EQ(15.0f, (*this)(2002));
    curve_.setPostBehaviour(curveLoopOffset);
    EXPECT_EQ(20.0f, (*this)(3));
    EXPECT_EQ(22.5f, (*this)(3.5f));
    EXPECT_EQ(30.0f, (*this)(5));
    EXPECT_EQ(10.0f + 1000 * 10 + 5, (*this)(2002));
}

TEST_F(CurveTest, RoundsRiseFromTheLastKeyOfTheFirstTime) {
    add({key(0, 5), key(0, 0), key(1, 10), key(1, 12)});
    curve_.setPostBehaviour(curveLoopOffset);
    EXPECT_EQ(5.0f, (*this)(-1));
    EXPECT_EQ(0.0f, (*this)(0));
    EXPECT_EQ(12.0f, (*this)(1));
    EXPECT_EQ(17.0f, (*this)(1.5f));
    EXPECT_EQ(29.0f, (*this)(2.5f));
}

TEST_F(CurveTest, EveryRoundTakesTheKeysAtTheirTimes) {
    add({key(0, 1, tm_spline::step), key(0.3, 2, tm_spline::step), key(0.7, 3, tm_spline::step),
         key(1, 4)});
    curve_.setPostBehaviour(curveLoop);
    for (int round = 1; round < 5000; ++round) {
        ASSERT_EQ(round == 1 ? 4.0f : 1.0f, (*this)(static_cast<float>(round))) << round;
        ASSERT_EQ(2.0f, (*this)(static_cast<float>(round + 0.3))) << round;
        ASSERT_EQ(3.0f, (*this)(static_cast<float>(round + 0.7))) << round;
        ASSERT_EQ(2.0f, (*this)(static_cast<float>(round + 0.699))) << round;
    }
    curve_.refSpline().removeAllControlPoints();
    add({key(0.1, 0), key(0.4, 3)});
    EXPECT_EQ(3.0f, (*this)(0.4f));
    for (int round = 1; round < 5000; ++round) {
        ASSERT_NEAR(0.0, (*this)(static_cast<float>(0.1 + 0.3 * (round + 1))), 1e-3) << round;
    }
    curve_.setPostBehaviour(curveLoopOffset);
    EXPECT_EQ(6.0f, (*this)(0.7f));
    EXPECT_NEAR(9.0, (*this)(1.0f), 1e-5);
}

TEST_F(CurveTest, LoopsOfUnevenPeriodsStayWithinTheKeys) {
    add({key(0.1, 0), key(0.4, 3)});
    curve_.setPostBehaviour(curveLoop);
    for (float time = 0.4f; time < 1000; time += 0.37f) {
        const double past = (double(time) - 0.1) / (0.4 - 0.1);
        const double expected = 3 * (past - std::floor(past));
        const float shown = (*this)(time);
        ASSERT_GE(shown, 0.0f) << time;
        ASSERT_LE(shown, 3.0f) << time;
        if (expected > 0.01 && expected < 2.99) {
            ASSERT_NEAR(expected, shown, 1e-3) << time;
        }
    }
}

TEST_F(CurveTest, EndlessTimes) {
    add({key(1, 10), key(3, 20)});
    for (const int32_t after : {curveConstant, curveLoop, curveLoopOffset}) {
        curve_.setPostBehaviour(after);
        EXPECT_EQ(20.0f, (*this)(infinity));
        EXPECT_TRUE(std::isnan((*this)(notANumber)));
    }
    curve_.setPostBehaviour(curveZero);
    EXPECT_EQ(0.0f, (*this)(infinity));
    curve_.setPostBehaviour(curveLoop);
    const float far = (*this)(std::numeric_limits<float>::max());
    EXPECT_GE(far, 10.0f);
    EXPECT_LE(far, 20.0f);
}

TEST_F(CurveTest, BehavioursAreKeptAsGiven) {
    EXPECT_EQ(1, curve_.preBehaviour());
    EXPECT_EQ(1, curve_.postBehaviour());
    curve_.setPreBehaviour(-5);
    curve_.setPostBehaviour(1000);
    EXPECT_EQ(-5, curve_.preBehaviour());
    EXPECT_EQ(1000, curve_.postBehaviour());
    EXPECT_FALSE(curve_.behavioursChanged());
    curve_.setBehavioursChanged(true);
    EXPECT_TRUE(curve_.behavioursChanged());
}

// --- changes -------------------------------------------------------------------------------------

TEST_F(CurveTest, EveryChangeOfAKeyIsNoticed) {
    add({PointInfo(0, 0), PointInfo(1, 1), PointInfo(2, 7)});
    const std::vector<void (*)(PointInfo&)> changes = {
        [](PointInfo& k) { k.setY(3); },
        [](PointInfo& k) { k.setTension(0.5); },
        [](PointInfo& k) { k.setContinuity(0.5); },
        [](PointInfo& k) { k.setBias(0.5); },
        [](PointInfo& k) { k.setEaseTo(0.3); },
        [](PointInfo& k) { k.setEaseFrom(0.3); },
        [](PointInfo& k) { k.setUnifiesTangents(true); },
        [](PointInfo& k) { k.setX(1.2); },
        [](PointInfo& k) { k.setType(tm_spline::bezier); },
        [](PointInfo& k) { k.setIncoming(0.7); },
        [](PointInfo& k) { k.setOutgoing(-3); },
        [](PointInfo& k) { k = PointInfo(1, 9, tm_spline::linear); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const float left = (*this)(0.7f), right = (*this)(1.7f);
        changes[i](at(1));
        EXPECT_TRUE(left != (*this)(0.7f) || right != (*this)(1.7f)) << "change " << i;
    }
}

TEST_F(CurveTest, AMovedKeyKeepsItsPlaceInTheListAndCountsByItsTime) {
    add({key(0, 0), key(1, 10), key(2, 20)});
    at(0).setX(3);
    EXPECT_EQ("3 1 2 ", times());
    EXPECT_EQ(15.0f, (*this)(1.5f));
    EXPECT_EQ(10.0f, (*this)(2.5f)); // from 20 down to 0
    add({key(1.5, 100)});
    EXPECT_EQ("1 1.5 2 3 ", times());
    EXPECT_EQ(100.0f, (*this)(1.5f));
}

TEST_F(CurveTest, AddingAndRemovingIsNoticed) {
    add({key(0, 0), key(2, 20)});
    EXPECT_EQ(10.0f, (*this)(1));
    add({key(1, 50)});
    EXPECT_EQ(50.0f, (*this)(1));
    curve_.refSpline().remove(&at(1));
    EXPECT_EQ(10.0f, (*this)(1));
}

TEST_F(CurveTest, EulerFilterTakesTheShortWay) {
    add({key(0, 0), key(1, 350), key(2, -10), key(3, 170), key(4, -190), key(5, infinity),
         key(6, 900), key(7, 180)});
    curve_.eulerFilter();
    std::vector<double> values;
    for (const PointInfo* each : curve_.spline().points()) values.push_back(each->y());
    EXPECT_EQ((std::vector<double>{0, -10, -10, 170, 170, infinity, 180, 180}), values);
    EXPECT_EQ(-5.0f, (*this)(0.5f));
}

TEST_F(CurveTest, EulerFilterLeavesHalfTurnsAlone) {
    add({key(0, 0), key(1, 180), key(2, 0), key(3, -180), key(4, 540)});
    curve_.eulerFilter();
    EXPECT_EQ(180.0, at(1).y());
    EXPECT_EQ(0.0, at(2).y());
    EXPECT_EQ(-180.0, at(3).y());
    EXPECT_LE(std::fabs(at(4).y() - at(3).y()), 180.0);
    ANIFloatBase().eulerFilter();
}

TEST_F(CurveTest, EulerFilterOfHugeAnglesStaysFinite) {
    const double huge = std::numeric_limits<double>::max();
    add({key(0, 10), key(1, 1e18), key(2, -huge), key(3, huge), key(4, -huge), key(5, 5)});
    curve_.eulerFilter();
    for (uint32_t i = 1; i < curve_.spline().points().size(); ++i) {
        ASSERT_TRUE(std::isfinite(at(i).y())) << i;
        EXPECT_LE(std::fabs(at(i).y() - at(i - 1).y()), 180.0) << i;
    }
    curve_.refSpline().removeAllControlPoints();
    add({key(0, huge), key(1, -huge), key(2, 5)});
    curve_.eulerFilter();
    for (uint32_t i = 0; i < 3; ++i) EXPECT_EQ(huge, at(i).y()) << i;
}

// --- expressions ---------------------------------------------------------------------------------

TEST_F(CurveTest, ExpressionTakesThePlaceOfTheKeys) {
    add({key(0, 100)});
    EXPECT_EQ("", curve_.getExpression());
    EXPECT_TRUE(curve_.setExpression("2*t + 1"));
    EXPECT_EQ("2*t + 1", curve_.getExpression());
    EXPECT_EQ(4.0f, (*this)(1.5f));
    curve_.setExpressionPlusSpline(true);
    EXPECT_TRUE(curve_.hasExpressionPlusSpline());
    EXPECT_EQ(104.0f, (*this)(1.5f));
    EXPECT_TRUE(curve_.setExpression(""));
    EXPECT_EQ(100.0f, (*this)(1.5f));
    EXPECT_EQ("", curve_.getExpression());
}

TEST_F(CurveTest, FrameIsTimeTimesTheRate) {
    ASSERT_TRUE(curve_.setExpression("frame"));
    EXPECT_EQ(30.0, curve_.frameRate());
    EXPECT_EQ(60.0f, (*this)(2));
    curve_.setFrameRate(24);
    EXPECT_EQ(48.0f, (*this)(2));
    for (const double bad : {0.0, -1.0, double(infinity), double(notANumber)}) {
        curve_.setFrameRate(bad);
        EXPECT_EQ(24.0, curve_.frameRate());
    }
}

TEST_F(CurveTest, FramesAreWholeNumbersAtTheirTimes) {
    ASSERT_TRUE(curve_.setExpression("frame == floor(frame) ? frame : -1"));
    for (const double rate : {30.0, 24.0, 29.97}) {
        curve_.setFrameRate(rate);
        for (int frame = -3000; frame <= 100000; ++frame) {
            ASSERT_EQ(static_cast<float>(frame), (*this)(static_cast<float>(frame / rate))) << rate;
        }
    }
    curve_.setFrameRate(30);
    EXPECT_EQ(-1.0f, (*this)(0.25f));
    EXPECT_EQ(-1.0f, (*this)(100.001f));
    ASSERT_TRUE(curve_.setExpression("frame"));
    EXPECT_EQ(7.5f, (*this)(0.25f));
    EXPECT_EQ(infinity, (*this)(infinity));
    EXPECT_TRUE(std::isnan((*this)(notANumber)));
}

TEST_F(CurveTest, UsualFunctionsAreThere) {
    const std::vector<std::pair<const char*, double>> cases = {
        {"sin(pi/2)", 1},         {"cos(_pi)", -1},
        {"sqrt(16)+abs(-1)", 5},  {"min(3,t,1)", 0.5},
        {"max(3,t)", 3},          {"2^10", 1024},
        {"floor(-1.5)", -2},      {"ceil(1.2)", 2},
        {"round(2.5)", 3},        {"trunc(-1.5)", -1},
        {"pow(2,t)", 1.41421},    {"fmod(7,4)", 3},
        {"7.5 % 2", 1.5},         {"clamp(9,0,5)", 5},
        {"clamp(1,5,0)", 0},      {"exp(0)+ln(_e)", 2},
        {"atan2(1,1)", 0.785398}, {"t > 0.25 ? 1 : 2", 1},
        {"frame == 15", 1},       {"-t", -0.5},
    };
    for (const auto& [text, expected] : cases) {
        ASSERT_TRUE(curve_.setExpression(text)) << text << ": " << curve_.expressionMessage();
        EXPECT_EQ("", curve_.expressionMessage());
        EXPECT_NEAR(expected, (*this)(0.5f), 1e-5) << text;
    }
}

TEST_F(CurveTest, RefusedExpressionsLeaveTheCurveAsItWas) {
    ASSERT_TRUE(curve_.setExpression("t*2"));
    std::string nested(5000, '(');
    const std::vector<std::string> bad = {"sin(",
                                          "foo(t)",
                                          "t +",
                                          "x",
                                          "1 2",
                                          "t,t",
                                          " ",
                                          "\"text\"",
                                          "%n%s",
                                          "\xc3\xa4",
                                          std::string("t\0+", 3),
                                          nested,
                                          std::string(10001, '1'),
                                          "sin()",
                                          "sin(1,2)",
                                          "?:",
                                          ")",
                                          std::string(500, 'a')};
    for (const std::string& text : bad) {
        EXPECT_FALSE(curve_.setExpression(text)) << text;
        EXPECT_NE("", curve_.expressionMessage()) << text;
        EXPECT_EQ("t*2", curve_.getExpression());
        EXPECT_EQ(3.0f, (*this)(1.5f));
    }
    EXPECT_TRUE(curve_.setExpression("t*3"));
    EXPECT_EQ("", curve_.expressionMessage());
}

TEST_F(CurveTest, ExpressionsOutsideTheNumbersStayDefined) {
    ASSERT_TRUE(curve_.setExpression("1/t"));
    EXPECT_EQ(infinity, (*this)(0));
    ASSERT_TRUE(curve_.setExpression("sqrt(-1) + 5 % 0"));
    EXPECT_TRUE(std::isnan((*this)(0)));
    ASSERT_TRUE(curve_.setExpression("1e300 * 1e300"));
    EXPECT_EQ(infinity, (*this)(0));
}

TEST_F(CurveTest, AssignmentsDoNotOutliveAnEvaluation) {
    ASSERT_TRUE(curve_.setExpression("t = 5"));
    EXPECT_EQ(5.0f, (*this)(1));
    ASSERT_TRUE(curve_.setExpression("t"));
    EXPECT_EQ(1.0f, (*this)(1));
}

TEST_F(CurveTest, NumbersInExpressionsKnowNoLocale) {
    const support::CommaLocale comma;
    ASSERT_TRUE(comma.isSet());
    ASSERT_TRUE(curve_.setExpression("t + 1.25"));
    EXPECT_EQ(1.75f, (*this)(0.5f));
    EXPECT_FALSE(curve_.setExpression("t + 1,25"));
}

} // namespace

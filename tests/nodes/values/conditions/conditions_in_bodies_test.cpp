// SPDX-License-Identifier: Apache-2.0
// Conditions inside loops and kernels.
#include <gtest/gtest.h>

#include "nodes/control/kernel_scene.h"
#include "nodes/control/loop_scene.h"
#include "nodes/values/conditions/condition_value.h"

namespace {

using namespace control_tests;

// In C: Z tells whether the index is 0; I chooses S then, and A.result else, for IO.y.
class ChoosingLoop : public LoopScene {
public:
    ChoosingLoop() {
        add("ConditionIsZero", "Z", node("C"));
        add("ConditionIf", "I", node("C"));
        cut("C.A.result", "C.IO.y");
        link("C.F.current index", "C.Z.value");
        link("C.Z.mask", "C.I.condition");
        link("C.IO.x", "C.I.true value");
        link("C.A.result", "C.I.false value");
        link("C.I.value", "C.IO.y");
    }
};

TEST(ConditionsInLoops, ChooseAnewInEachRound) {
    ChoosingLoop net;
    EXPECT_EQ(13, net.ask());
    net.count(0, 1, 1);
    EXPECT_EQ(10, net.ask());
    net.count(0, 4, 1);
    EXPECT_EQ(13, net.ask());
}

// In C: K.element > Z.value; I chooses the constant R (20) for an element that is 0, and the
// element else.
class ChoosingKernel : public KernelScene {
public:
    explicit ChoosingKernel(int threads) {
        add("ConditionIsZero", "Z", node("C"));
        add("ConditionIf", "I", node("C"));
        add("Real", "R", node("C"));
        link("C.K.element", "C.Z.value");
        link("C.Z.mask", "C.I.condition");
        link("C.R.real", "C.I.true value");
        link("C.K.element", "C.I.false value");
        link("C.I.value", "C.IO.y");
        pin("C.R.in")->setFloatValue(20.0f);
        set("C.K.threads", threads);
    }
};

TEST(ConditionsInKernels, ChooseForEachElement) {
    for (const int threads : {1, 2}) {
        ChoosingKernel net(threads);
        net.scene.run();
        EXPECT_EQ((std::vector<float>{4}), net.reals("E.evaluate")) << threads;
        net.setArray({7, 6, 0});
        net.scene.run();
        EXPECT_EQ((std::vector<float>{20}), net.reals("E.evaluate")) << threads;
        net.setArray({0, 6});
        net.scene.run();
        EXPECT_EQ((std::vector<float>{6}), net.reals("E.evaluate")) << threads;
    }
}

TEST(ConditionsInKernels, FilterWithAConditionFromOutside) {
    for (const int threads : {1, 2}) {
        KernelScene net;
        net.add("ConditionLessThan", "L");
        net.add("Real", "limits");
        net.wall("C.IO", true, "c");
        net.add("ConditionFilterBy", "F", net.node("C"));
        net.link("limits.real", "L.value");
        net.link("L.condition", "C.c");
        net.link("C.IO.c", "C.F.condition");
        net.link("C.K.element", "C.F.value");
        net.link("C.F.result", "C.IO.y");
        net.set("C.K.threads", threads);
        net.fill("limits.in", {5});
        net.scene.run();
        EXPECT_EQ((std::vector<float>{4}), net.reals("E.evaluate")) << threads;
        net.fill("limits.in", {3});
        net.scene.run();
        EXPECT_EQ((std::vector<float>{}), net.reals("E.evaluate")) << threads;
    }
}

TEST(ConditionsInKernels, ConditionsComeOut) {
    for (const int threads : {1, 2}) {
        KernelScene net;
        net.add("ConditionEqualToConstant", "L", net.node("C"));
        net.link("C.K.element", "C.L.value");
        net.link("C.L.condition", "C.IO.y");
        net.set("C.K.threads", threads);
        net.scene.run();
        EXPECT_EQ("equal to [3] 4", net.at("E.evaluate")->currentValue()->asString()) << threads;
    }
}

TEST(ConditionsInKernels, HeldNumbersOutliveTheCopies) {
    for (const int threads : {1, 2}) {
        KernelScene net;
        net.add("ConditionEqualTo", "L", net.node("C"));
        net.link("C.K.element", "C.L.value");
        net.link("C.L.condition", "C.IO.y");
        net.set("C.K.threads", threads);
        net.scene.run();
        EXPECT_EQ("equal to [3] 4", net.at("E.evaluate")->currentValue()->asString()) << threads;
    }
}

} // namespace

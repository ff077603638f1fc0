// SPDX-License-Identifier: Apache-2.0
// Curves and keys in the copies of a graph that the threads of a kernel run.
#include <gtest/gtest.h>

#include "nodes/control/kernel_scene.h"
#include "nodes/values/curves/curve_attributes.h"

namespace {

using namespace control_tests;
using tidemark::ANIFloatBase;

/// In C, on four threads: G gives an element of S, and what the test wires to P.element takes its
/// place.
class RealsKernel : public KernelScene {
public:
    RealsKernel() : KernelScene(times()) {
        Node* compound = node("C");
        set("C.K.threads", 4);
        add("GetElement", "G", compound);
        add("SetElement", "P", compound);
        for (const TM_String name : {"C.G.", "C.P."}) {
            link("C.IO.x", name + "array");
            link("C.K.index", name + "index");
        }
        EXPECT_TRUE(pin("C.P.array")->addInternalConnection(pin("C.P.out array")));
        link("C.P.out array", "C.IO.y");
    }
    static std::vector<float> times() {
        std::vector<float> list;
        for (int i = 0; i < 400; ++i) list.push_back(0.01f * static_cast<float>(i));
        return list;
    }
};

// S, with a curve from outside: F > C.curve; in C: IO.curve > Eval.curve, G.element > Eval.time.
TEST(CurveThreads, AKernelsThreadsEvaluateOneCurve) {
    ANIFloatBase curve;
    for (const double x : {0.0, 1.0, 2.5, 3.0}) curve.refSpline().addPoint({x, x * x});
    ASSERT_TRUE(curve.setExpression("sin(frame) + t"));
    curve.setExpressionPlusSpline(true);
    RealsKernel net;
    net.add("CurveEulerFilter", "F");
    net.add("CurveEval", "Eval", net.node("C"));
    net.wall("C.IO", true, "curve");
    static_cast<weft::CurveAttribute*>(net.at("F.curve"))->ownPointers().setValue(&curve);
    net.link("F.out curve", "C.curve");
    net.link("C.IO.curve", "C.Eval.curve");
    net.link("C.G.element", "C.Eval.time");
    net.link("C.Eval.result", "C.P.element");
    net.scene.run();
    std::vector<float> expected;
    for (const float time : RealsKernel::times()) expected.push_back(curve.DameValor(time));
    EXPECT_EQ(net.reals("E.evaluate"), expected);
    EXPECT_TRUE(net.host.posts.empty());
}

// In C: Key > Set.key, G.element > Set.x; Set.out key > Get.key; Get.x + 10 > P.element.
TEST(CurveThreads, EachCopyHasAKeyOfItsOwn) {
    RealsKernel net;
    Node* compound = net.node("C");
    net.add("Key", "Key", compound);
    net.add("SetKeyProperties", "Set", compound);
    net.add("GetKeyProperties", "Get", compound);
    net.add("Real", "R", compound);
    net.add("Add", "A", compound);
    net.pin("C.R.in")->setFloatValue(10.0f);
    net.link("C.Key.key", "C.Set.key");
    net.link("C.G.element", "C.Set.x");
    net.link("C.Set.out key", "C.Get.key");
    net.link("C.Get.x", "C.A.in0");
    net.link("C.R.real", "C.A.in1");
    net.link("C.A.result", "C.P.element");
    net.scene.run();
    std::vector<float> expected;
    for (const float time : RealsKernel::times()) expected.push_back(time + 10.0f);
    EXPECT_EQ(net.reals("E.evaluate"), expected);
    EXPECT_TRUE(net.host.posts.empty());
}

} // namespace

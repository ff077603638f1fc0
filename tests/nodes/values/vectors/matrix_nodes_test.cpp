// SPDX-License-Identifier: Apache-2.0
// What the nodes over quaternions and matrices compute, and what they report.
#include <gtest/gtest.h>

#include "nodes/values/element_loop.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;
using M4 = Matrix4<float>;
using Q = Quaternion<float>;
using V3 = Vector3<float>;

const M4 quarterAboutZ(0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
const Q quaternionAboutZ(0, 0, 0.70710678f, 0.70710678f);

M4 scaled(float x, float y, float z) { return M4(x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1); }

// One node called "n".
class OneNode : public LogicNet {
public:
    explicit OneNode(const TM_String& type) { add(type, "n"); }
    template <typename T>
    OneNode& with(const TM_String& pin, std::initializer_list<T> values) {
        numbers("n." + pin, values);
        return *this;
    }
    template <typename T>
    T at(const TM_String& pin, uint32_t index = 0) {
        refresh("n." + pin);
        return as<NumericAttribute>("n." + pin).numeric().valueAt<T>(index);
    }
    uint32_t size(const TM_String& pin) {
        refresh("n." + pin);
        return as<NumericAttribute>("n." + pin).numeric().size();
    }
    TM_String messages() { return LogicNet::messages("n"); }
};

void expectNear(const Q& expected, const Q& actual) {
    EXPECT_NEAR(expected.x, actual.x, 1e-6f);
    EXPECT_NEAR(expected.y, actual.y, 1e-6f);
    EXPECT_NEAR(expected.z, actual.z, 1e-6f);
    EXPECT_NEAR(expected.w, actual.w, 1e-6f);
}

// Quaternions. Their text has w first.

TEST(QuaternionNodes, ComponentsAreInStorageOrder) {
    OneNode n("QuaternionFromComponents");
    EXPECT_EQ(Q(), n.at<Q>("quaternion"));
    n.with("x", {1.0f, 5.0f}).with("y", {2.0f}).with("z", {3.0f}).with("w", {4.0f});
    EXPECT_EQ("[6] (4,1,2,3),(4,5,2,3)", n.text("n.quaternion"));
    n.add("QuaternionToComponents", "t");
    ASSERT_TRUE(n.link("n.quaternion", "t.quaternion"));
    EXPECT_EQ("[3] 1,5", n.text("t.x"));
    EXPECT_EQ("[3] 2,2", n.text("t.y"));
    EXPECT_EQ("[3] 3,3", n.text("t.z"));
    EXPECT_EQ("[3] 4,4", n.text("t.w"));
}

TEST(QuaternionNodes, OneInOneOut) {
    const Q q(0, 0, 0, 2);
    EXPECT_EQ("[6] (1,0,0,0)",
              OneNode("QuaternionNormalize").with("quaternion", {q}).text("n.result"));
    EXPECT_EQ("[6] (1,0,0,0)",
              OneNode("QuaternionNormalize").with("quaternion", {Q(0, 0, 0, 0)}).text("n.result"));
    EXPECT_EQ("[6] (0.5,0,0,0)",
              OneNode("QuaternionInverse").with("quaternion", {q}).text("n.result"));
    EXPECT_EQ("[6] (0,0,0,0)",
              OneNode("QuaternionInverse").with("quaternion", {Q(0, 0, 0, 0)}).text("n.result"));
    const Q general(1, -2, 3, 4);
    EXPECT_EQ("[6] (4,-1,2,-3)",
              OneNode("QuaternionConjugate").with("quaternion", {general}).text("n.result"));
    EXPECT_EQ("[6] (-4,-1,2,-3)",
              OneNode("QuaternionNegate").with("quaternion", {general}).text("n.result"));
    EXPECT_EQ("[6] (-1,0,0,0)", OneNode("QuaternionNegate").text("n.result"));
}

TEST(QuaternionNodes, AxisAndAngle) {
    OneNode n("QuaternionFromAxisAngle");
    EXPECT_EQ(Q(), n.at<Q>("quaternion"));
    n.with("axis", {V3(0, 0, 1)}).with("angle", {90.0f});
    expectNear(quaternionAboutZ, n.at<Q>("quaternion"));
    OneNode back("QuaternionToAxisAngle");
    EXPECT_EQ("[4] (1,0,0)", back.text("n.axis"));
    EXPECT_EQ("[3] 0", back.text("n.angle"));
    back.with("quaternion", {quaternionAboutZ, Q()});
    EXPECT_EQ("[4] (0,0,1),(1,0,0)", back.text("n.axis"));
    EXPECT_EQ("[3] 90,0", back.text("n.angle"));
}

TEST(QuaternionNodes, Slerp) {
    OneNode n("QuaternionSlerp");
    n.with("second", {quaternionAboutZ});
    expectNear({0, 0, 0.38268343f, 0.92387953f}, n.at<Q>("result"));
    n.with("parameter", {0.25f, 1.0f});
    expectNear({0, 0, 0.19509032f, 0.98078528f}, n.at<Q>("result"));
    expectNear(quaternionAboutZ, n.at<Q>("result", 1));
    EXPECT_EQ("", n.messages());
}

TEST(QuaternionNodes, Dot) {
    OneNode n("QuaternionDot");
    EXPECT_EQ("[3] 1", n.text("n.result"));
    n.with("first", {Q(1, 2, 3, 4)}).with("second", {Q(5, 6, 7, 8), Q(1, 0, 0, 0)});
    EXPECT_EQ("[3] 70,1", n.text("n.result"));
    EXPECT_EQ("", n.messages());
}

TEST(QuaternionNodes, DifferentSizesAreReported) {
    for (const char* type : {"QuaternionDot", "QuaternionSlerp"}) {
        OneNode n(type);
        n.with("first", {Q(), Q(), Q()}).with("second", {Q(), Q()});
        EXPECT_EQ(3u, n.size("result")) << type;
        EXPECT_EQ("[error] input attributes size differs: (3, 2)\n", n.messages()) << type;
    }
}

// Matrices.

TEST(MatrixNodes, ComponentsAreInStorageOrder) {
    OneNode n("Matrix4FromComponents");
    EXPECT_EQ(M4(), n.at<M4>("matrix"));
    float number = 0;
    for (Attribute* in : n.node("n").refInputAttributes()) n.with(in->name(), {++number});
    EXPECT_EQ(M4(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16), n.at<M4>("matrix"));
    n.with("m32", {15.0f, 115.0f});
    EXPECT_EQ(2u, n.size("matrix"));
    n.add("Matrix4ToComponents", "t");
    ASSERT_TRUE(n.link("n.matrix", "t.matrix"));
    EXPECT_EQ("[3] 1,1", n.text("t.m00"));
    EXPECT_EQ("[3] 7,7", n.text("t.m12"));
    EXPECT_EQ("[3] 15,115", n.text("t.m32"));
    EXPECT_EQ("[3] 16,16", n.text("t.m33"));
}

TEST(MatrixNodes, Creating) {
    OneNode move("Matrix4CreateTranslation");
    EXPECT_EQ(M4(), move.at<M4>("matrix"));
    EXPECT_EQ(M4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 5, 6, 1),
              move.with("vector", {V3(4, 5, 6)}).at<M4>("matrix"));
    OneNode scale("Matrix4CreateScale");
    EXPECT_EQ(M4(), scale.at<M4>("matrix"));
    EXPECT_EQ(scaled(4, 5, 6), scale.with("vector", {V3(4, 5, 6)}).at<M4>("matrix"));
    OneNode turn("Matrix4CreateRotation");
    EXPECT_EQ(M4(), turn.at<M4>("matrix"));
    turn.with("vector", {V3(0, 0, 1)}).with("angle", {90.0f, 0.0f});
    EXPECT_EQ(quarterAboutZ, turn.at<M4>("matrix"));
    EXPECT_EQ(M4(), turn.at<M4>("matrix", 1));
    OneNode euler("Matrix4CreateRotationEuler");
    EXPECT_EQ(M4(), euler.at<M4>("matrix"));
    EXPECT_NEAR(0.7391989f, euler.with("vector", {V3(30, 45, 60)}).at<M4>("matrix").x[2][0], 1e-6f);
}

TEST(MatrixNodes, EulerAnglesComeBack) {
    OneNode n("Matrix4CreateRotationEuler");
    n.add("Matrix4GetEulerAngle", "e");
    ASSERT_TRUE(n.link("n.matrix", "e.matrix"));
    n.with("vector", {V3(0, 0, 90), V3(30, 45, 60)});
    n.refresh("e.vector");
    const Numeric& angles = n.as<NumericAttribute>("e.vector").numeric();
    EXPECT_EQ(V3(0, 0, 90), angles.valueAt<V3>(0));
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(30 + 15 * i, angles.valueAt<V3>(1)[i], 1e-4f);
    EXPECT_EQ("[4] (0,0,0)", OneNode("Matrix4GetEulerAngle").text("n.vector"));
}

TEST(MatrixNodes, TransformOfAPoint) {
    OneNode n("SetMatrix4FromComponents");
    EXPECT_EQ(M4(), n.at<M4>("matrix"));
    n.with("translation", {V3(1, 2, 3)}).with("axis", {V3(0, 0, 1)}).with("angle", {90.0f});
    n.with("scale", {V3(2, 2, 2)});
    n.add("Matrix4MulVector3", "m");
    ASSERT_TRUE(n.link("n.matrix", "m.matrix"));
    n.numbers("m.vector", {V3(1, 0, 0), V3(0, 0, 0)});
    EXPECT_EQ("[4] (1,4,3),(1,2,3)", n.text("m.result"));
    EXPECT_EQ("", n.LogicNet::messages("m"));
}

TEST(MatrixNodes, MatrixOfAQuaternion) {
    OneNode n("SetMatrix4FromQuaternion");
    EXPECT_EQ(M4(), n.at<M4>("matrix"));
    const M4 m = n.with("quaternion", {quaternionAboutZ}).at<M4>("matrix");
    EXPECT_TRUE(m.equalWithAbsError(quarterAboutZ, 1e-6f));
}

TEST(MatrixNodes, ProductReportsDifferentSizes) {
    OneNode n("Matrix4MulVector3");
    n.with("matrix", {M4(), scaled(2, 3, 4)});
    n.with("vector", {V3(1, 1, 1), V3(1, 1, 1), V3(2, 2, 2)});
    EXPECT_EQ("[4] (1,1,1),(2,3,4),(4,6,8)", n.text("n.result"));
    EXPECT_EQ("[error] input attributes size differs: (2, 3)\n", n.messages());
}

TEST(MatrixNodes, TransposeAndDeterminant) {
    OneNode transposed("Matrix4Transpose");
    EXPECT_EQ(M4(1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 16),
              transposed.with("matrix", {M4(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16)})
                  .at<M4>("result"));
    OneNode determinant("Matrix4Determinant");
    EXPECT_EQ("[3] 1", determinant.text("n.result"));
    EXPECT_EQ("[3] 24,0",
              determinant.with("matrix", {scaled(2, 3, 4), scaled(0, 1, 1)}).text("n.result"));
}

TEST(Matrix4Inverse, SingularIsReportedAndIdentity) {
    OneNode n("Matrix4Inverse");
    n.with("matrix", {scaled(2, 4, 8), scaled(0, 1, 1), M4(), scaled(1, 1, 0)});
    EXPECT_EQ(scaled(0.5f, 0.25f, 0.125f), n.at<M4>("result"));
    EXPECT_EQ(M4(), n.at<M4>("result", 1));
    EXPECT_EQ(M4(), n.at<M4>("result", 2));
    EXPECT_EQ(M4(), n.at<M4>("result", 3));
    EXPECT_EQ("[warning] Matrix at position 1 is not invertible\n"
              "[warning] Matrix at position 3 is not invertible\n",
              n.messages());
}

// While it lives, every record of a loop has a thread of its own.
struct RealThreads {
    RealThreads() { tidemark::sluice::graph::setThreadForEveryRecord(true); }
    ~RealThreads() { tidemark::sluice::graph::setThreadForEveryRecord(false); }
};

TEST(Matrix4Inverse, ReportsInOrderFromThreads) {
    const RealThreads real;
    constexpr uint32_t count = 1003;
    tidemark::Array<M4> matrices(count);
    TM_String expected;
    for (uint32_t i = 0; i < count; ++i) {
        const bool isSingular = i % 100 == 7;
        matrices[i] = scaled(isSingular ? 0 : 4, 1, static_cast<float>(i + 1));
        if (!isSingular) continue;
        expected += "[warning] Matrix at position " + std::to_string(i) + " is not invertible\n";
    }
    for (const int threads : {1, 4}) {
        OneNode n("Matrix4Inverse");
        n.node("n").setNumberOfThreads(threads);
        n.as<NumericAttribute>("n.matrix").ownNumeric().setValues(matrices);
        n.pin("n.matrix").valueChanged();
        ASSERT_EQ(count, n.size("result"));
        EXPECT_EQ(expected, n.messages());
        EXPECT_EQ(scaled(0.25f, 1, 1.0f / 1001), n.at<M4>("result", 1000));
        EXPECT_EQ(M4(), n.at<M4>("result", 907));
    }
}

// The same numbers on every number of threads.
TEST(VectorThreads, ChangeNothing) {
    const RealThreads real;
    constexpr uint32_t count = 777;
    tidemark::Array<V3> vectors(count);
    for (uint32_t i = 0; i < count; ++i) {
        const auto number = static_cast<float>(i);
        vectors[i] = V3(number, 10 - number, number * 0.37f);
    }
    for (const char* type :
         {"Vector3Length", "Vector3Normalize", "Vector3ToColor4", "Matrix4CreateRotationEuler",
          "Vector3ToComponents", "Vector3ArePerpendicular", "Vector3Interpolate"}) {
        TM_String serial;
        for (const int threads : {1, 2, 7}) {
            OneNode n(type);
            weft::Node& node = n.node("n");
            node.setNumberOfThreads(threads);
            n.as<NumericAttribute>("n." + node.inputAttributeAt(0)->name())
                .ownNumeric()
                .setValues(vectors);
            if (type == TM_String("Vector3ArePerpendicular")) n.with("second", {V3(1, 1, 0)});
            node.inputAttributeAt(0)->valueChanged();
            const Attribute& out = *node.refOutputAttributes()[0];
            const TM_String text = n.text("n." + out.name());
            if (threads == 1) serial = text;
            EXPECT_EQ(serial, text) << type << " " << threads;
        }
    }
}

// The product of quaternions, left one first, is the product of their matrices the other way round.
TEST(QuaternionNodes, ProductsTurnRoundAsMatrices) {
    LogicNet net;
    for (const char* name : {"a", "b"}) {
        net.add("QuaternionFromAxisAngle", TM_String("q") + name);
        net.add("SetMatrix4FromQuaternion", TM_String("m") + name);
        ASSERT_TRUE(
            net.link(TM_String("q") + name + ".quaternion", TM_String("m") + name + ".quaternion"));
    }
    net.numbers("qa.axis", {V3(1, 0, 0)});
    net.numbers("qa.angle", {40.0f});
    net.numbers("qb.axis", {V3(0, 1, 1)});
    net.numbers("qb.angle", {70.0f});
    net.add("Mul", "product");
    net.add("SetMatrix4FromQuaternion", "m");
    net.add("Mul", "matrices");
    ASSERT_TRUE(net.link("qa.quaternion", "product.in0"));
    ASSERT_TRUE(net.link("qb.quaternion", "product.in1"));
    ASSERT_TRUE(net.link("product.result", "m.quaternion"));
    ASSERT_TRUE(net.link("mb.matrix", "matrices.in0"));
    ASSERT_TRUE(net.link("ma.matrix", "matrices.in1"));
    net.refresh("m.matrix");
    net.refresh("matrices.result");
    const M4 ofProduct = net.as<NumericAttribute>("m.matrix").numeric().value<M4>();
    const M4 ofMatrices = net.as<NumericAttribute>("matrices.result").numeric().value<M4>();
    EXPECT_TRUE(ofProduct.equalWithAbsError(ofMatrices, 1e-6f));
    EXPECT_FALSE(ofProduct.equalWithAbsError(M4(), 0.5f));
}

} // namespace

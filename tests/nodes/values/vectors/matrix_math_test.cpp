// SPDX-License-Identifier: Apache-2.0
// Formulas on matrices.
#include "nodes/values/vectors/matrix_math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "nodes/values/vectors/quaternion_math.h"

namespace {

using namespace tidemark::sluice::graph::vectors;
using Matrix = tidemark::Matrix4<float>;
using Q = tidemark::Quaternion<float>;
using Vector = tidemark::Vector3<float>;

constexpr float infinity = std::numeric_limits<float>::infinity();
const Matrix quarterAboutZ(0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);

void expectNear(const Matrix& expected, const Matrix& actual, float tolerance = 1e-6f) {
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            EXPECT_NEAR(expected.x[row][column], actual.x[row][column], tolerance)
                << row << " " << column;
        }
    }
}
void expectNear(const Vector& expected, const Vector& actual, float tolerance) {
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(expected[i], actual[i], tolerance) << i;
}

Q product(const Q& a, const Q& b) {
    return {a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
            a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
            a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w,
            a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}

TEST(MatrixMath, RotationAboutZ) {
    EXPECT_EQ(quarterAboutZ, rotationMatrix({0, 0, 1}, 90));
    EXPECT_EQ(quarterAboutZ, rotationMatrix({0, 0, 20}, 450));
    EXPECT_EQ(Vector(0, 1, 0), transformedPoint(quarterAboutZ, {1, 0, 0}));
    EXPECT_EQ(Matrix(), rotationMatrix({0, 0, 0}, 90));
    EXPECT_FALSE(std::signbit(rotationMatrix({0, 0, 1}, 0).x[1][0]));
}

TEST(MatrixMath, EulerRotatesAboutXThenYThenZ) {
    const Vector degrees(30, 45, 60);
    const Matrix expected(0.3535534f, 0.6123724f, -0.7071068f, 0, -0.5732233f, 0.7391989f,
                          0.3535534f, 0, 0.7391989f, 0.2803301f, 0.6123724f, 0, 0, 0, 0, 1);
    expectNear(expected, eulerMatrix(degrees));
    expectNear(expected, rotationMatrix({1, 0, 0}, 30) * rotationMatrix({0, 1, 0}, 45) *
                             rotationMatrix({0, 0, 1}, 60));
    EXPECT_EQ(quarterAboutZ, eulerMatrix({0, 0, 90}));
    EXPECT_EQ(Matrix(), eulerMatrix({0, 0, 0}));
    EXPECT_FALSE(std::signbit(eulerMatrix({0, 0, 0}).x[0][2]));
}

TEST(MatrixMath, EulerAnglesComeBack) {
    for (const Vector& degrees : {Vector(30, 45, 60), Vector(-170, 80, 179), Vector(0, 0, 0),
                                  Vector(10, -89, -20), Vector(0, 0, 90), Vector(-90, 0, 0)}) {
        expectNear(degrees, eulerAnglesOf(eulerMatrix(degrees)), 5e-4f);
        expectNear(degrees, eulerAnglesOf(scaleMatrix({2, 5, 0.5f}) * eulerMatrix(degrees)), 5e-4f);
    }
    EXPECT_FALSE(std::signbit(eulerAnglesOf(Matrix()).y));
}

// Nothing but the sum, or the difference, of x and z is known; x takes it all.
TEST(MatrixMath, EulerAnglesAtThePoles) {
    expectNear(Vector(10, 90, 0), eulerAnglesOf(eulerMatrix({30, 90, 20})), 1e-3f);
    expectNear(Vector(50, -90, 0), eulerAnglesOf(eulerMatrix({30, -90, 20})), 1e-3f);
    EXPECT_EQ(Vector(0, 0, 0), eulerAnglesOf(scaleMatrix({0, 0, 0})));
}

TEST(MatrixMath, TransformScalesThenRotatesThenMoves) {
    const Matrix m = transformMatrix({1, 2, 3}, {0, 0, 1}, 90, {2, 2, 2});
    EXPECT_EQ(Vector(1, 4, 3), transformedPoint(m, {1, 0, 0}));
    const Matrix general = transformMatrix({1, 2, 3}, {1, 1, 0}, 40, {2, 3, 4});
    expectNear(scaleMatrix({2, 3, 4}) * rotationMatrix({1, 1, 0}, 40) *
                   translationMatrix({1, 2, 3}),
               general);
    EXPECT_EQ(Matrix(), transformMatrix({0, 0, 0}, {0, 1, 0}, 0, {1, 1, 1}));
}

TEST(MatrixMath, MatrixOfAQuaternion) {
    expectNear(quarterAboutZ, matrixOfQuaternion({0, 0, 0.70710678f, 0.70710678f}));
    EXPECT_EQ(quarterAboutZ, matrixOfQuaternion({0, 0, 3, 3})) << "any length";
    EXPECT_EQ(Matrix(), matrixOfQuaternion({0, 0, 0, 0}));
    const Vector axis(1, -2, 0.5f);
    expectNear(rotationMatrix(axis, 77), matrixOfQuaternion(quaternionOfAxisAngle(axis, 77)));
}

TEST(MatrixMath, ProductsOfQuaternionsTurnRound) {
    const Q a = quaternionOfAxisAngle({1, 0, 0}, 40);
    const Q b = quaternionOfAxisAngle({0, 1, 1}, 70);
    expectNear(matrixOfQuaternion(b) * matrixOfQuaternion(a), matrixOfQuaternion(product(a, b)));
}

TEST(MatrixMath, PointsAreNotDividedByTheFourthNumber) {
    Matrix m = translationMatrix({10, 20, 30});
    m.x[3][3] = 2;
    EXPECT_EQ(Vector(11, 22, 33), transformedPoint(m, {1, 2, 3}));
}

TEST(MatrixMath, Determinant) {
    EXPECT_EQ(24.0f, determinantOf(scaleMatrix({2, 3, 4})));
    EXPECT_EQ(1.0f, determinantOf(quarterAboutZ));
    EXPECT_EQ(-1.0f, determinantOf(scaleMatrix({-1, 1, 1})));
    EXPECT_EQ(72.0f, determinantOf(Matrix(1, 2, 3, 4, 5, 6, 7, 8, 2, 6, 4, 8, 3, 1, 1, 2)));
    EXPECT_EQ(0.0f, determinantOf(scaleMatrix({2, 0, 4})));
}

TEST(MatrixMath, InverseUndoes) {
    const Matrix matrices[] = {
        scaleMatrix({2, 4, 8}),
        translationMatrix({1, -2, 3}),
        rotationMatrix({1, 2, 3}, 50),
        transformMatrix({5, 6, 7}, {1, 0, 1}, 120, {0.5f, 3, -1}),
        Matrix(1, 2, 3, 4, 5, 6, 7, 8, 2, 6, 4, 8, 3, 1, 1, 2),
        Matrix(0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0),
    };
    for (const Matrix& m : matrices) {
        const auto inverse = inverseMatrix(m);
        ASSERT_TRUE(inverse);
        expectNear(Matrix(), m * *inverse, 1e-5f);
        expectNear(Matrix(), *inverse * m, 1e-5f);
    }
    EXPECT_EQ(scaleMatrix({0.5f, 0.25f, 0.125f}), *inverseMatrix(matrices[0]));
    EXPECT_FALSE(std::signbit(inverseMatrix(Matrix())->x[0][1]));
}

TEST(MatrixMath, SingularHasNoInverse) {
    EXPECT_FALSE(inverseMatrix(scaleMatrix({2, 0, 4})));
    EXPECT_FALSE(inverseMatrix(Matrix(1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 0, 0, 0, 1)));
    // Two rows alike whose products are not exact in double precision.
    EXPECT_FALSE(inverseMatrix(Matrix(0.1f, 0.7f, 0.3f, 0.9f, 0.1f, 0.7f, 0.3f, 0.9f, 0.2f, 0.3f,
                                      0.7f, 0.1f, 0.6f, 0.2f, 0.8f, 0.3f)));
    EXPECT_FALSE(inverseMatrix(scaleMatrix({NAN, 1, 1})));
    EXPECT_FALSE(inverseMatrix(scaleMatrix({infinity, 1, 1})));
}

TEST(MatrixMath, ScaleDoesNotMakeSingular) {
    EXPECT_EQ(scaleMatrix({1e20f, 1e20f, 1e20f}),
              *inverseMatrix(scaleMatrix({1e-20f, 1e-20f, 1e-20f})));
    const auto far = inverseMatrix(translationMatrix({1e20f, 0, 0}));
    ASSERT_TRUE(far);
    EXPECT_EQ(-1e20f, far->x[3][0]);
}

} // namespace

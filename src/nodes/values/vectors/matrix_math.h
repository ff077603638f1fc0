// SPDX-License-Identifier: Apache-2.0
// Formulas on 4x4 matrices. Row vectors: a point goes as (x, y, z, 1) times the matrix, translation
// is the fourth row, and of a product the left matrix acts first. Angles are in degrees and turn
// counter-clockwise for who looks against the axis (right-handed).
#pragma once

#include <optional>

#include "core/export.h"
#include "core/types.h"

namespace tidemark::sluice::graph::vectors {

/// From 16 numbers in storage order, row by row.
inline Matrix4<float> matrixOf(float m00, float m01, float m02, float m03, float m10, float m11,
                               float m12, float m13, float m20, float m21, float m22, float m23,
                               float m30, float m31, float m32, float m33) {
    return {m00, m01, m02, m03, m10, m11, m12, m13, m20, m21, m22, m23, m30, m31, m32, m33};
}

inline Matrix4<float> translationMatrix(const Vector3<float>& t) {
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, t.x, t.y, t.z, 1};
}
inline Matrix4<float> scaleMatrix(const Vector3<float>& s) {
    return {s.x, 0, 0, 0, 0, s.y, 0, 0, 0, 0, s.z, 0, 0, 0, 0, 1};
}

/// The axis may have any length; about a zero axis nothing turns. O. Rodrigues' formula (1840).
SLUICE_API Matrix4<float> rotationMatrix(const Vector3<float>& axis, float degrees);

/// About x, then y, then z, by the degrees in the vector: Rx * Ry * Rz.
SLUICE_API Matrix4<float> eulerMatrix(const Vector3<float>& degrees);

/// The degrees of `eulerMatrix`, x and z in -180 to 180, y in -90 to 90. The rows are taken at
/// length 1, so a scale before the rotation does no harm. Where x and z turn about the same axis (y
/// near 90 or -90), z is 0.
SLUICE_API Vector3<float> eulerAnglesOf(const Matrix4<float>& matrix);

/// Scale, then rotation, then translation.
SLUICE_API Matrix4<float> transformMatrix(const Vector3<float>& translation,
                                          const Vector3<float>& axis, float degrees,
                                          const Vector3<float>& scale);

/// The rotation of a quaternion of any length; the identity for zero.
SLUICE_API Matrix4<float> matrixOfQuaternion(const Quaternion<float>& q);

/// (x, y, z, 1) times the matrix, without division by the fourth number.
inline Vector3<float> transformedPoint(const Matrix4<float>& m, const Vector3<float>& p) {
    return {p.x * m.x[0][0] + p.y * m.x[1][0] + p.z * m.x[2][0] + m.x[3][0],
            p.x * m.x[0][1] + p.y * m.x[1][1] + p.z * m.x[2][1] + m.x[3][1],
            p.x * m.x[0][2] + p.y * m.x[1][2] + p.z * m.x[2][2] + m.x[3][2]};
}

inline Matrix4<float> transposeOf(const Matrix4<float>& matrix) { return matrix.transposed(); }

SLUICE_API float determinantOf(const Matrix4<float>& matrix);

/// Nothing when the determinant, in double precision, is not told from zero by its rounding error,
/// or is not finite. By Laplace's expansion along two rows: D. Eberly, "The Laplace Expansion
/// Theorem: Computing the Determinants and Inverses of Matrices", Geometric Tools 2008.
SLUICE_API std::optional<Matrix4<float>> inverseMatrix(const Matrix4<float>& matrix);

} // namespace tidemark::sluice::graph::vectors

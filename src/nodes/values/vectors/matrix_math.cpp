// SPDX-License-Identifier: Apache-2.0
// Rotations as matrices and back, determinants and inverses. In double precision inside.
#include "nodes/values/vectors/matrix_math.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "nodes/values/vectors/angles.h"
#include "nodes/values/vectors/vector_math.h"

namespace tidemark::sluice::graph::vectors {

namespace {

// A sine of y beyond this leaves x and z the same axis.
constexpr double poleSine = 0.999999;

// The three rows of the rotating part.
using Rotation = std::array<Vector3<double>, 3>;

Matrix4<float> settledMatrix(const Rotation& rows,
                             const Vector3<double>& translation = Vector3<double>(0.0)) {
    Matrix4<float> matrix;
    for (int row = 0; row < 4; ++row) {
        const Vector3<double>& from = row < 3 ? rows[static_cast<std::size_t>(row)] : translation;
        for (int column = 0; column < 3; ++column) matrix.x[row][column] = settled(from[column]);
    }
    return matrix;
}

Rotation rotationOf(const Vector3<double>& axis, double degrees) {
    const Vector3<double> a = unitVectorOf(axis);
    if (a == Vector3<double>(0.0)) return {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    const auto [s, c] = sineCosineOfDegrees(degrees);
    const double t = 1 - c;
    return {{{t * a.x * a.x + c, t * a.x * a.y + s * a.z, t * a.x * a.z - s * a.y},
             {t * a.x * a.y - s * a.z, t * a.y * a.y + c, t * a.y * a.z + s * a.x},
             {t * a.x * a.z + s * a.y, t * a.y * a.z - s * a.x, t * a.z * a.z + c}}};
}

Vector3<double> unitRow(const Matrix4<float>& m, int row) {
    return unitVectorOf({m.x[row][0], m.x[row][1], m.x[row][2]});
}

// The six determinants of two rows, and for each what its two products amount to without regard of
// sign. Columns 01, 02, 03, 12, 13, 23.
struct RowPair {
    std::array<double, 6> minors;
    std::array<double, 6> sizes;
};

RowPair pairOf(const Matrix4<float>& m, int row) {
    constexpr std::array<std::array<int, 2>, 6> columns = {
        {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}}};
    RowPair pair;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const auto [left, right] = columns[i];
        const double down = double(m.x[row][left]) * m.x[row + 1][right];
        const double up = double(m.x[row][right]) * m.x[row + 1][left];
        pair.minors[i] = down - up;
        pair.sizes[i] = std::abs(down) + std::abs(up);
    }
    return pair;
}

struct Expansion {
    RowPair upper; // rows 0 and 1
    RowPair lower; // rows 2 and 3
    double determinant;
    bool isInvertible;
};

Expansion expansionOf(const Matrix4<float>& m) {
    constexpr std::array<double, 6> signs = {1, -1, 1, 1, -1, 1};
    // Some ten roundings, each relative to the sum of all products.
    constexpr double rounding = 16 * std::numeric_limits<double>::epsilon();
    Expansion e{pairOf(m, 0), pairOf(m, 2), 0, false};
    double size = 0;
    for (std::size_t i = 0; i < signs.size(); ++i) {
        e.determinant += signs[i] * e.upper.minors[i] * e.lower.minors[5 - i];
        size += e.upper.sizes[i] * e.lower.sizes[5 - i];
    }
    // False too when they are NaN or infinite.
    e.isInvertible = std::abs(e.determinant) > size * rounding;
    return e;
}

// One column of the adjugate: the cofactors of row `row`, whose partner in its pair is `other`,
// with the minors of the two remaining rows.
void setColumn(Matrix4<float>& inverse, const Matrix4<float>& m, int row, int other,
               const std::array<double, 6>& minors, double factor) {
    const float* o = m.x[other];
    const std::array<double, 4> cofactors = {
        o[1] * minors[5] - o[2] * minors[4] + o[3] * minors[3],
        -o[0] * minors[5] + o[2] * minors[2] - o[3] * minors[1],
        o[0] * minors[4] - o[1] * minors[2] + o[3] * minors[0],
        -o[0] * minors[3] + o[1] * minors[1] - o[2] * minors[0],
    };
    for (int i = 0; i < 4; ++i) {
        inverse.x[i][row] = settled(cofactors[static_cast<std::size_t>(i)] * factor);
    }
}

} // namespace

Matrix4<float> rotationMatrix(const Vector3<float>& axis, float degrees) {
    return settledMatrix(rotationOf(inDouble(axis), degrees));
}

Matrix4<float> eulerMatrix(const Vector3<float>& degrees) {
    const auto [sx, cx] = sineCosineOfDegrees(degrees.x);
    const auto [sy, cy] = sineCosineOfDegrees(degrees.y);
    const auto [sz, cz] = sineCosineOfDegrees(degrees.z);
    return settledMatrix({{{cy * cz, cy * sz, -sy},
                           {sx * sy * cz - cx * sz, sx * sy * sz + cx * cz, sx * cy},
                           {cx * sy * cz + sx * sz, cx * sy * sz - sx * cz, cx * cy}}});
}

Vector3<float> eulerAnglesOf(const Matrix4<float>& matrix) {
    const Vector3<double> row0 = unitRow(matrix, 0);
    const Vector3<double> row1 = unitRow(matrix, 1);
    const Vector3<double> row2 = unitRow(matrix, 2);
    const double sine = std::clamp(-row0.z, -1.0, 1.0);
    const bool isPole = std::abs(sine) > poleSine;
    const double x = isPole ? std::atan2(-row2.y, row1.y) : std::atan2(row1.z, row2.z);
    const double z = isPole ? 0 : std::atan2(row0.y, row0.x);
    return {settled(x * degreesPerRadian), settled(std::asin(sine) * degreesPerRadian),
            settled(z * degreesPerRadian)};
}

Matrix4<float> transformMatrix(const Vector3<float>& translation, const Vector3<float>& axis,
                               float degrees, const Vector3<float>& scale) {
    Rotation rows = rotationOf(inDouble(axis), degrees);
    for (int i = 0; i < 3; ++i) rows[static_cast<std::size_t>(i)] *= scale[i];
    return settledMatrix(rows, inDouble(translation));
}

Matrix4<float> matrixOfQuaternion(const Quaternion<float>& q) {
    const double x = q.x;
    const double y = q.y;
    const double z = q.z;
    const double w = q.w;
    const double squared = x * x + y * y + z * z + w * w;
    if (squared == 0) return {};
    const double s = 2 / squared;
    return settledMatrix({{{1 - s * (y * y + z * z), s * (x * y + w * z), s * (x * z - w * y)},
                           {s * (x * y - w * z), 1 - s * (x * x + z * z), s * (y * z + w * x)},
                           {s * (x * z + w * y), s * (y * z - w * x), 1 - s * (x * x + y * y)}}});
}

float determinantOf(const Matrix4<float>& matrix) {
    return settled(expansionOf(matrix).determinant);
}

std::optional<Matrix4<float>> inverseMatrix(const Matrix4<float>& matrix) {
    const Expansion e = expansionOf(matrix);
    if (!e.isInvertible) return std::nullopt;
    const double factor = 1 / e.determinant;
    Matrix4<float> inverse;
    setColumn(inverse, matrix, 0, 1, e.lower.minors, factor);
    setColumn(inverse, matrix, 1, 0, e.lower.minors, -factor);
    setColumn(inverse, matrix, 2, 3, e.upper.minors, factor);
    setColumn(inverse, matrix, 3, 2, e.upper.minors, -factor);
    return inverse;
}

} // namespace tidemark::sluice::graph::vectors

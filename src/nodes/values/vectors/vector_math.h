// SPDX-License-Identifier: Apache-2.0
// Formulas on vectors of three floats, in the dialect of element_nodes.h: plain functions without
// state. Whatever takes roots or quotients works in double precision inside, where products of
// floats neither overflow nor vanish.
#pragma once

#include <cmath>
#include <limits>

#include "core/export.h"
#include "core/types.h"

namespace tidemark::sluice::graph::vectors {

/// Below this a squared cross product, or a dot product, counts as zero: the distance of 1 to the
/// next float.
constexpr double parallelTolerance = std::numeric_limits<float>::epsilon();

inline Vector3<double> inDouble(const Vector3<float>& v) { return {v.x, v.y, v.z}; }
inline Vector3<float> inFloat(const Vector3<double>& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

inline Vector3<float> vectorOf(float x, float y, float z) { return {x, y, z}; }

inline float squaredLengthOf(const Vector3<float>& v) { return v.dot(v); }

inline double doubleLengthOf(const Vector3<double>& v) { return std::sqrt(v.dot(v)); }

inline float lengthOf(const Vector3<float>& v) {
    return static_cast<float>(doubleLengthOf(inDouble(v)));
}

/// The vector of length 1 in the same direction; the zero vector stays.
inline Vector3<double> unitVectorOf(const Vector3<double>& v) {
    const double length = doubleLengthOf(v);
    return length == 0 ? v : v / length;
}
inline Vector3<float> unitVector(const Vector3<float>& v) {
    return inFloat(unitVectorOf(inDouble(v)));
}

inline float dotOf(const Vector3<float>& a, const Vector3<float>& b) { return a.dot(b); }

inline Vector3<float> crossOf(const Vector3<float>& a, const Vector3<float>& b) {
    return a.cross(b);
}

inline float distanceBetween(const Vector3<float>& a, const Vector3<float>& b) {
    return static_cast<float>(doubleLengthOf(inDouble(a) - inDouble(b)));
}

/// Radians, 0 to pi, whatever the lengths; 0 if one of the vectors is zero. From sine and cosine
/// together, because the cosine alone tells small angles badly.
SLUICE_API float angleBetween(const Vector3<float>& a, const Vector3<float>& b);

/// The part of `first` along `second`; zero if `second` is zero.
inline Vector3<float> projectedOnto(const Vector3<float>& first, const Vector3<float>& second) {
    const Vector3<double> along = inDouble(second);
    const double squared = along.dot(along);
    if (squared == 0) return Vector3<float>(0.0f);
    return inFloat(along * (inDouble(first).dot(along) / squared));
}

/// The lengths are not taken out: two short vectors are parallel, a zero vector is so to any other.
inline bool areParallel(const Vector3<float>& a, const Vector3<float>& b) {
    const Vector3<double> cross = inDouble(a).cross(inDouble(b));
    return cross.dot(cross) < parallelTolerance;
}

/// As above.
inline bool arePerpendicular(const Vector3<float>& a, const Vector3<float>& b) {
    return std::abs(inDouble(a).dot(inDouble(b))) < parallelTolerance;
}

/// `first` at blend 0, `second` at 1, and on along the same line outside.
inline Vector3<float> interpolated(const Vector3<float>& first, const Vector3<float>& second,
                                   float blend) {
    return first + (second - first) * blend;
}

} // namespace tidemark::sluice::graph::vectors

// SPDX-License-Identifier: Apache-2.0
// Formulas on quaternions, stored x, y, z, w, the identity being (0, 0, 0, 1). A rotation is a unit
// quaternion; angles are in degrees and turn counter-clockwise for who looks against the axis.
#pragma once

#include "core/export.h"
#include "core/types.h"

namespace tidemark::sluice::graph::vectors {

inline Quaternion<float> quaternionOf(float x, float y, float z, float w) { return {x, y, z, w}; }

inline float quaternionDot(const Quaternion<float>& a, const Quaternion<float>& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

/// The inverse rotation of a unit quaternion. Subtracted from 0 to make no negative zeros.
inline Quaternion<float> conjugateOf(const Quaternion<float>& q) {
    return {0 - q.x, 0 - q.y, 0 - q.z, q.w};
}

/// All four numbers negated: the same rotation. Without negative zeros.
inline Quaternion<float> negativeOf(const Quaternion<float>& q) {
    return {0 - q.x, 0 - q.y, 0 - q.z, 0 - q.w};
}

/// Of length 1; the identity for zero.
SLUICE_API Quaternion<float> unitQuaternion(const Quaternion<float>& q);

/// Times `q` it is the identity; zero for zero.
SLUICE_API Quaternion<float> inverseQuaternion(const Quaternion<float>& q);

/// From `first` (parameter 0) to `second` (1) at constant speed along the shorter arc, for unit
/// quaternions. K. Shoemake, "Animating Rotation with Quaternion Curves", SIGGRAPH 1985, section
/// 3.3. Nearly equal rotations are interpolated along the chord and brought to length 1.
SLUICE_API Quaternion<float> slerped(const Quaternion<float>& first,
                                     const Quaternion<float>& second, float parameter);

/// The axis may have any length; about a zero axis nothing turns.
SLUICE_API Quaternion<float> quaternionOfAxisAngle(const Vector3<float>& axis, float degrees);

/// Of length 1; (1, 0, 0) where nothing turns. Quaternions of any length are taken.
SLUICE_API Vector3<float> axisOf(const Quaternion<float>& q);
/// Degrees about `axisOf(q)`, 0 to 360.
SLUICE_API float degreesOf(const Quaternion<float>& q);

} // namespace tidemark::sluice::graph::vectors

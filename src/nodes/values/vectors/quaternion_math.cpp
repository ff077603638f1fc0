// SPDX-License-Identifier: Apache-2.0
// Quaternions: lengths, inverses, interpolation, axis and angle.
#include "nodes/values/vectors/quaternion_math.h"

#include <cmath>

#include "nodes/values/vectors/angles.h"
#include "nodes/values/vectors/vector_math.h"

namespace tidemark::sluice::graph::vectors {

namespace {

// Above this cosine the chord is as good as the arc, and the sine too small to divide by.
constexpr double nearlyEqualCosine = 0.9995;

double squaredLengthOf(const Quaternion<double>& q) {
    return q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w;
}

Quaternion<double> inDouble(const Quaternion<float>& q) { return {q.x, q.y, q.z, q.w}; }

Quaternion<float> settledQuaternion(const Quaternion<double>& q) {
    return {settled(q.x), settled(q.y), settled(q.z), settled(q.w)};
}

Quaternion<double> unitOf(const Quaternion<double>& q) {
    const double length = std::sqrt(squaredLengthOf(q));
    if (length == 0) return {};
    return {q.x / length, q.y / length, q.z / length, q.w / length};
}

Quaternion<double> weighted(const Quaternion<double>& a, double weightA,
                            const Quaternion<double>& b, double weightB) {
    return {a.x * weightA + b.x * weightB, a.y * weightA + b.y * weightB,
            a.z * weightA + b.z * weightB, a.w * weightA + b.w * weightB};
}

Vector3<double> vectorPartOf(const Quaternion<float>& q) { return {q.x, q.y, q.z}; }

} // namespace

Quaternion<float> unitQuaternion(const Quaternion<float>& q) {
    return settledQuaternion(unitOf(inDouble(q)));
}

Quaternion<float> inverseQuaternion(const Quaternion<float>& q) {
    const double squared = squaredLengthOf(inDouble(q));
    if (squared == 0) return {0, 0, 0, 0};
    return settledQuaternion({-q.x / squared, -q.y / squared, -q.z / squared, q.w / squared});
}

Quaternion<float> slerped(const Quaternion<float>& first, const Quaternion<float>& second,
                          float parameter) {
    const Quaternion<double> from = inDouble(first);
    const Quaternion<double> to = inDouble(second);
    const double dot = from.x * to.x + from.y * to.y + from.z * to.z + from.w * to.w;
    // Of the two quaternions of one rotation the nearer.
    const double side = dot < 0 ? -1 : 1;
    const double cosine = dot * side;
    const double t = parameter;
    if (cosine > nearlyEqualCosine) {
        return settledQuaternion(unitOf(weighted(from, 1 - t, to, t * side)));
    }
    const double angle = std::acos(cosine);
    const double sine = std::sin(angle);
    return settledQuaternion(
        weighted(from, std::sin((1 - t) * angle) / sine, to, std::sin(t * angle) / sine * side));
}

Quaternion<float> quaternionOfAxisAngle(const Vector3<float>& axis, float degrees) {
    const Vector3<double> unit = unitVectorOf(inDouble(axis));
    if (unit == Vector3<double>(0.0)) return {};
    const auto [sine, cosine] = sineCosineOfDegrees(degrees / 2.0);
    return settledQuaternion({unit.x * sine, unit.y * sine, unit.z * sine, cosine});
}

Vector3<float> axisOf(const Quaternion<float>& q) {
    const Vector3<double> axis = unitVectorOf(vectorPartOf(q));
    if (axis == Vector3<double>(0.0)) return {1, 0, 0};
    return {settled(axis.x), settled(axis.y), settled(axis.z)};
}

float degreesOf(const Quaternion<float>& q) {
    const double sine = doubleLengthOf(vectorPartOf(q));
    if (sine == 0) return 0;
    return static_cast<float>(2 * std::atan2(sine, static_cast<double>(q.w)) * degreesPerRadian);
}

} // namespace tidemark::sluice::graph::vectors

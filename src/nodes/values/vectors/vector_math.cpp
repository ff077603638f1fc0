// SPDX-License-Identifier: Apache-2.0
// The angle between vectors.
#include "nodes/values/vectors/vector_math.h"

namespace tidemark::sluice::graph::vectors {

float angleBetween(const Vector3<float>& a, const Vector3<float>& b) {
    const Vector3<double> from = inDouble(a);
    const Vector3<double> to = inDouble(b);
    const double sine = doubleLengthOf(from.cross(to));
    const double cosine = from.dot(to);
    // A cosine of -0 would make it pi.
    if (sine == 0 && cosine == 0) return 0.0f;
    return static_cast<float>(std::atan2(sine, cosine));
}

} // namespace tidemark::sluice::graph::vectors

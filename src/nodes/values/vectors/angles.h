// SPDX-License-Identifier: Apache-2.0
// Degrees and radians, and numbers on their way back to float.
#pragma once

#include <cmath>
#include <numbers>

#include "core/export.h"

namespace tidemark::sluice::graph::vectors {

constexpr double degreesPerRadian = 180 / std::numbers::pi;

struct SineCosine {
    double sine;
    double cosine;
};

/// Of any number of degrees; exact at the multiples of 90. NaN of what is not finite.
SLUICE_API SineCosine sineCosineOfDegrees(double degrees);

/// The nearest float, and no negative zero: it would print as "-0.000000".
inline float settled(double number) { return static_cast<float>(number) + 0.0f; }

} // namespace tidemark::sluice::graph::vectors

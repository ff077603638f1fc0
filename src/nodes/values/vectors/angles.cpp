// SPDX-License-Identifier: Apache-2.0
// Sine and cosine of degrees.
#include "nodes/values/vectors/angles.h"

namespace tidemark::sluice::graph::vectors {

SineCosine sineCosineOfDegrees(double degrees) {
    // Whole quarters are taken off in degrees, where that loses nothing.
    int quarters = 0;
    const double rest = std::remquo(degrees, 90.0, &quarters) / degreesPerRadian;
    const double sine = std::sin(rest);
    const double cosine = std::cos(rest);
    switch (quarters & 3) {
    case 1:
        return {cosine, -sine};
    case 2:
        return {-sine, -cosine};
    case 3:
        return {-cosine, sine};
    default:
        return {sine, cosine};
    }
}

} // namespace tidemark::sluice::graph::vectors

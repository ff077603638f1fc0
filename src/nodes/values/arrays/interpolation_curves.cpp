// SPDX-License-Identifier: Apache-2.0
// Even steps along a curve.
#include "nodes/values/arrays/interpolation_curves.h"

namespace tidemark::sluice::graph {

CurvePosition ArcLengthTable::at(float t) const {
    const double share = t > 0 ? (t < 1 ? t : 1) : 0;
    const double distance = share * static_cast<double>(lengths_.back());
    const auto behind = std::upper_bound(lengths_.begin(), lengths_.end(), distance);
    const auto samples = static_cast<double>(lengths_.size() - 1);
    if (behind == lengths_.end()) return positionAlong(samples / stepsPerSegment_);
    const auto before = behind - 1;
    const double way = (distance - *before) / (static_cast<double>(*behind) - *before);
    const auto sample = static_cast<double>(before - lengths_.begin());
    return positionAlong((sample + way) / stepsPerSegment_);
}

} // namespace tidemark::sluice::graph

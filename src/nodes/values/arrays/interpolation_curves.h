// SPDX-License-Identifier: Apache-2.0
// Curves through points, of anything made of floats. `t` runs from 0 at the first point to 1 at the
// last one, with the same share for every segment between two neighbouring points:
//
//     const HermiteCurve<float> curve(points, 0, 0);          // Catmull-Rom
//     float y = curve.at(curvePosition(0.25f, points.size()));
//
// Every curve passes exactly through its points; beyond both ends the last point repeats.
//
// Sources:
// - E. Catmull, R. Rom: A Class of Local Interpolating Splines, in: Computer Aided Geometric
// Design,
//   1974.
// - D. H. U. Kochanek, R. H. Bartels: Interpolating Splines with Local Tension, Continuity, and
// Bias
//   Control, SIGGRAPH 1984; here with continuity 0.
// - G. Farin: Curves and Surfaces for Computer Aided Geometric Design, 1988 (Bernstein form of
// cubic
//   Bezier curves).
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>

#include "core/export.h"
#include "nodes/values/components.h"

namespace tidemark::sluice::graph {

/// A place on a curve: `fraction` (0 to 1) of the way from point `segment` to the next one.
struct CurvePosition {
    uint32_t segment;
    float fraction;
};

/// `along` counts segments from the first point; not negative.
inline CurvePosition positionAlong(double along) {
    const auto segment = static_cast<uint32_t>(along);
    return {segment, static_cast<float>(along - segment)};
}

/// `t` below 0 and not-a-number count as 0, above 1 as 1. `points` is not 0.
inline CurvePosition curvePosition(float t, std::size_t points) {
    const float held = t > 0 ? (t < 1 ? t : 1) : 0;
    return positionAlong(static_cast<double>(held) * static_cast<double>(points - 1));
}

/// `first` at `way` 0, `second` at 1, and straight on beyond.
inline float linearlyBetween(float first, float second, float way) {
    return first + (second - first) * way;
}

/// The same, kept between the two. Not-a-number stays.
inline float heldBetween(float first, float second, float way) {
    const float number = linearlyBetween(first, second, way);
    return std::min(std::max(number, std::min(first, second)), std::max(first, second));
}

/// A cubic polynomial per segment. The tangent at point k is
///
///     (1 - tension) * ((1 + bias) * (p[k] - p[k-1]) + (1 - bias) * (p[k+1] - p[k])) / 2
///
/// Tension 1 is tight, 0 normal, -1 loose. Bias 0 is even, above 0 the tangent leans towards the
/// segment before the point, below 0 towards the one behind.
template <typename T>
class HermiteCurve {
public:
    /// `points` is not empty and outlives the curve.
    HermiteCurve(std::span<const T> points, float tension, float bias)
        : points_(points.data()), last_(static_cast<uint32_t>(points.size()) - 1),
          ofBefore_((1 - tension) * (1 + bias) / 2), ofBehind_((1 - tension) * (1 - bias) / 2) {}

    T at(CurvePosition position) const {
        if (last_ == 0) return points_[0]; // even if it is infinite
        const uint32_t k = position.segment;
        const float s = position.fraction;
        const float leave = s * (1 - s) * (1 - s); // how much of the tangent at the near point
        const float arrive = s * s * (s - 1);      // and of that at the far one
        const float rise = s * s * (3 - 2 * s);
        const float before = leave * ofBefore_;
        const float inside = rise + leave * ofBehind_ + arrive * ofBefore_;
        const float behind = arrive * ofBehind_;
        return combineComponents(
            [=](float p0, float p1, float p2, float p3) {
                return p1 + before * (p1 - p0) + inside * (p2 - p1) + behind * (p3 - p2);
            },
            points_[k > 0 ? k - 1 : 0], points_[k], points_[std::min(k + 1, last_)],
            points_[std::min(k + 2, last_)]);
    }

private:
    const T* points_;
    uint32_t last_;
    float ofBefore_;
    float ofBehind_;
};

/// A cubic Bezier curve per segment, with the inner controls at `p[k] + tangent[k] * influence` and
/// `p[k+1] - tangent[k+1] * influence`.
template <typename T>
class BezierCurve {
public:
    /// Neither is empty, and both outlive the curve. Fewer tangents repeat the last one.
    BezierCurve(std::span<const T> points, std::span<const T> tangents, float influence)
        : points_(points.data()), tangents_(tangents.data()),
          last_(static_cast<uint32_t>(points.size()) - 1),
          lastTangent_(static_cast<uint32_t>(tangents.size()) - 1), influence_(influence) {}

    T at(CurvePosition position) const {
        if (last_ == 0) return points_[0]; // as above
        const uint32_t k = position.segment;
        const float s = position.fraction;
        const float leave = 3 * s * (1 - s) * (1 - s) * influence_;
        const float arrive = 3 * s * s * (1 - s) * influence_;
        const float rise = s * s * (3 - 2 * s);
        return combineComponents(
            [=](float near, float far, float nearTangent, float farTangent) {
                return near + rise * (far - near) + leave * nearTangent - arrive * farTangent;
            },
            points_[k], points_[std::min(k + 1, last_)], tangents_[std::min(k, lastTangent_)],
            tangents_[std::min(k + 1, lastTangent_)]);
    }

private:
    const T* points_;
    const T* tangents_;
    uint32_t last_;
    uint32_t lastTangent_;
    float influence_;
};

/// The Euclidean length of `second - first` over all components: absolute for numbers, Frobenius
/// for matrices.
template <typename T>
float distanceBetween(const T& first, const T& second) {
    double squares = 0;
    for (std::size_t k = 0; k < componentCount<T>; ++k) {
        const double step = static_cast<double>(componentsOf(second)[k]) - componentsOf(first)[k];
        squares += step * step;
    }
    return static_cast<float>(std::sqrt(squares));
}

/// Finds places on a curve by their distance from its beginning along the curve, which is taken for
/// straight between `stepsPerSegment` samples per segment.
class SLUICE_API ArcLengthTable {
public:
    /// `lengths[i]` is the distance of sample `i`: 0 for the first, never falling. More than one.
    ArcLengthTable(std::span<const float> lengths, uint32_t stepsPerSegment)
        : lengths_(lengths), stepsPerSegment_(stepsPerSegment) {}

    /// False for a curve of no length, or of one that is no finite number.
    bool isUsable() const { return lengths_.back() > 0 && std::isfinite(lengths_.back()); }

    /// The place at `t` times the whole length; `t` is held as in `curvePosition`. Only for a
    /// usable table.
    CurvePosition at(float t) const;

private:
    std::span<const float> lengths_;
    uint32_t stepsPerSegment_;
};

} // namespace tidemark::sluice::graph

// SPDX-License-Identifier: Apache-2.0
// The keys of a curve, made ready for evaluation.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/curve_key.h"

namespace tidemark {

/// One polynomial per stretch between keys, and a table that leads from a time to its stretch. It
/// keeps nothing of the keys that it was made from.
class CurveSegments {
public:
    /// From keys in any order.
    explicit CurveSegments(const Array<PointInfo*>& keys);

    /// See `ANIFloatBase`.
    double valueAt(float time, int32_t before, int32_t after) const {
        if (time >= from_ && time < to_) [[likely]]
            return valueIn(segmentOf(time), time);
        return outside(time, before, after);
    }

private:
    struct Segment {
        double start;  // time
        double scale;  // 1 / duration
        double c[4];   // coefficients over 0..1, constant first
        double easeTo; // share of the duration in which it speeds up
        double easeFrom;
    };

    void add(const std::vector<const PointInfo*>& keys, std::size_t index);
    void makeTable();
    uint32_t bucketOf(double time) const;
    uint32_t segmentOf(double time) const;
    double valueIn(uint32_t segment, double time) const;
    double outside(float time, int32_t before, int32_t after) const;
    double repeated(float time, bool rises) const;

    bool isEmpty_ = true;
    double first_ = 0.0; // times
    double last_ = 0.0;
    double from_ = 0.0; // the same, as the nearest float
    double to_ = 0.0;
    double lastInside_ = 0.0;  // the latest time before `to_`
    double valueBefore_ = 0.0; // of the first key
    double firstValue_ = 0.0;  // of the last key at the first time
    double lastValue_ = 0.0;
    double bucketScale_ = 0.0;
    std::vector<double> starts_; // of the segments, as the nearest float, rising
    std::vector<Segment> segments_;
    // For each of the even slices of the time from `from_` to `to_` the segment in which it begins
    // at the earliest, and one entry more.
    std::vector<uint32_t> buckets_;
};

} // namespace tidemark

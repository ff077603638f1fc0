// SPDX-License-Identifier: Apache-2.0
// From keys to polynomials, and from a time to its polynomial.
#include "platform/curve_segments.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/curve.h"

namespace tidemark {

namespace {

using Keys = std::vector<const PointInfo*>;

bool isUsable(const PointInfo& key) {
    return std::fabs(key.x()) <= std::numeric_limits<float>::max();
}

Keys usableInOrder(const Array<PointInfo*>& all) {
    Keys keys;
    keys.reserve(all.size());
    for (const PointInfo* key : all) {
        if (isUsable(*key)) keys.push_back(key);
    }
    const auto earlier = [](const PointInfo* a, const PointInfo* b) { return a->x() < b->x(); };
    if (!std::is_sorted(keys.begin(), keys.end(), earlier)) {
        std::stable_sort(keys.begin(), keys.end(), earlier);
    }
    return keys;
}

// Times that are asked for are floats, so a key counts at the float nearest to its time: asked for
// 0.7, a step at 0.7 has been taken.
double shownTime(double time) { return static_cast<float>(time); }

// Whether there is a way in time from key `i` to the next; also false behind the last one.
bool isSpan(const Keys& keys, std::size_t i) {
    return i + 1 < keys.size() && std::isfinite(1.0 / (keys[i + 1]->x() - keys[i]->x()));
}

// Rise and duration from one key to the next.
struct Step {
    double rise;
    double time;
};

Step stepAt(const Keys& keys, std::size_t i) {
    return {keys[i + 1]->y() - keys[i]->y(), keys[i + 1]->x() - keys[i]->x()};
}

struct Slopes {
    double incoming;
    double outgoing;
};

// Kochanek and Bartels 1984, equations 8 and 9, and their correction for uneven spacing, which
// makes both tangents slopes over the time of the two steps. The key has a neighbour.
Slopes tcbSlopes(const Keys& keys, std::size_t i) {
    const bool hasPrevious = i > 0 && isSpan(keys, i - 1);
    const bool hasNext = isSpan(keys, i);
    const Step before = stepAt(keys, hasPrevious ? i - 1 : i);
    const Step after = hasNext ? stepAt(keys, i) : before;
    const double slack = 1.0 - keys[i]->tension();
    const double c = keys[i]->continuity();
    const double b = keys[i]->bias();
    const double time = before.time + after.time;
    return {slack * ((1 - c) * (1 + b) * before.rise + (1 + c) * (1 - b) * after.rise) / time,
            slack * ((1 + c) * (1 + b) * before.rise + (1 - c) * (1 - b) * after.rise) / time};
}

Slopes slopesAt(const Keys& keys, std::size_t i, double chord) {
    const PointInfo& key = *keys[i];
    Slopes slopes{chord, chord};
    if (key.type() == tm_spline::bezier) slopes = {key.incoming(), key.outgoing()};
    if (key.type() == tm_spline::tcb) slopes = tcbSlopes(keys, i);
    if (key.unifiesTangents()) {
        slopes.incoming = slopes.outgoing = (slopes.incoming + slopes.outgoing) / 2;
    }
    return slopes;
}

// A share of the way: 0 to 1, not-a-number is 0.
double shareOf(double ease) { return ease > 0.0 ? std::min(ease, 1.0) : 0.0; }

// Constant acceleration from rest, constant speed, constant deceleration to rest.
double eased(double u, double speedUp, double slowDown) {
    const double topSpeed = 2.0 / (2.0 - speedUp - slowDown);
    if (u < speedUp) return topSpeed * u * u / (2.0 * speedUp);
    const double left = 1.0 - u;
    if (left < slowDown) return 1.0 - topSpeed * left * left / (2.0 * slowDown);
    return topSpeed * (u - speedUp / 2.0);
}

} // namespace

CurveSegments::CurveSegments(const Array<PointInfo*>& all) {
    const Keys keys = usableInOrder(all);
    if (keys.empty()) return;
    isEmpty_ = false;
    first_ = keys.front()->x();
    last_ = keys.back()->x();
    from_ = shownTime(first_);
    to_ = shownTime(last_);
    valueBefore_ = keys.front()->y();
    lastValue_ = keys.back()->y();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (isSpan(keys, i)) add(keys, i);
    }
    if (segments_.empty()) {
        to_ = from_;
        return;
    }
    firstValue_ = segments_.front().c[0];
    lastInside_ = std::nextafter(to_, from_);
    makeTable();
}

void CurveSegments::add(const Keys& keys, std::size_t i) {
    const PointInfo& left = *keys[i];
    const PointInfo& right = *keys[i + 1];
    const Step step = stepAt(keys, i);
    Segment segment{left.x(), 1.0 / step.time, {left.y(), 0.0, 0.0, 0.0}, 0.0, 0.0};
    if (left.type() == tm_spline::tcb || left.type() == tm_spline::bezier) {
        const double chord = step.rise / step.time;
        const double out = slopesAt(keys, i, chord).outgoing * step.time;
        const double in = slopesAt(keys, i + 1, chord).incoming * step.time;
        segment.c[1] = out;
        segment.c[2] = 3.0 * step.rise - 2.0 * out - in;
        segment.c[3] = out + in - 2.0 * step.rise;
        if (left.type() == tm_spline::tcb) segment.easeTo = shareOf(left.easeTo());
        if (right.type() == tm_spline::tcb) segment.easeFrom = shareOf(right.easeFrom());
        const double sum = segment.easeTo + segment.easeFrom;
        if (sum > 1.0) {
            segment.easeTo /= sum;
            segment.easeFrom /= sum;
        }
    } else if (left.type() != tm_spline::step) {
        segment.c[1] = step.rise;
    }
    segments_.push_back(segment);
    starts_.push_back(shownTime(segment.start));
}

void CurveSegments::makeTable() {
    constexpr std::size_t mostBuckets = std::size_t(1) << 20;
    std::size_t count = std::min(segments_.size() * 4, mostBuckets);
    bucketScale_ = static_cast<double>(count) / (to_ - from_);
    if (!std::isfinite(bucketScale_)) {
        bucketScale_ = 0.0;
        count = 1;
    }
    buckets_.assign(count + 1, 0);
    for (uint32_t i = 0; i < starts_.size(); ++i) buckets_[bucketOf(starts_[i]) + 1] = i;
    // Slices in which no segment starts lie in the segment before.
    for (std::size_t i = 1; i < buckets_.size(); ++i) {
        buckets_[i] = std::max(buckets_[i], buckets_[i - 1]);
    }
}

uint32_t CurveSegments::bucketOf(double time) const {
    const auto bucket = static_cast<uint32_t>((time - from_) * bucketScale_);
    return std::min(bucket, static_cast<uint32_t>(buckets_.size()) - 2);
}

uint32_t CurveSegments::segmentOf(double time) const {
    const double* starts = starts_.data();
    const uint32_t bucket = bucketOf(time);
    uint32_t low = buckets_[bucket];
    uint32_t high = buckets_[bucket + 1];
    // Most slices hold the start of one segment at most; a jump would be guessed wrong half of the
    // time there, so both are looked at without one.
    while (high - low > 1) [[unlikely]] {
            const uint32_t middle = low + (high - low) / 2;
            if (starts[middle] <= time) {
                low = middle;
            } else {
                high = middle - 1;
            }
        }
    return starts[high] <= time ? high : low;
}

double CurveSegments::valueIn(uint32_t index, double time) const {
    const Segment& segment = segments_[index];
    double u = std::clamp((time - segment.start) * segment.scale, 0.0, 1.0);
    if (segment.easeTo + segment.easeFrom > 0.0) u = eased(u, segment.easeTo, segment.easeFrom);
    const double* c = segment.c;
    return ((c[3] * u + c[2]) * u + c[1]) * u + c[0];
}

double CurveSegments::outside(float time, int32_t before, int32_t after) const {
    if (isEmpty_) return 0.0;
    if (std::isnan(time)) return time;
    if (time < from_) return before == curveZero ? 0.0 : valueBefore_;
    if (time == to_) return lastValue_;
    if (after == curveZero) return 0.0;
    const bool repeats = after == curveLoop || after == curveLoopOffset;
    if (!repeats || segments_.empty() || std::isinf(time)) return lastValue_;
    return repeated(time, after == curveLoopOffset);
}

double CurveSegments::repeated(float time, bool rises) const {
    const double period = last_ - first_;
    const double past = time - first_;
    constexpr double mostExact = 4503599627370496.0; // above it every double is a whole number
    const double quotient = past / period;
    double rounds =
        quotient < mostExact ? static_cast<double>(static_cast<int64_t>(quotient)) : quotient;
    double rest = past - rounds * period;
    // Where the quotient was rounded, and of very many rounds.
    if (!(rest >= 0.0 && rest < period)) rest = std::fmod(past, period);
    // What a float can not tell from the time of a key, or from the next round, is taken for it.
    const double slack = std::fabs(time) * (std::numeric_limits<float>::epsilon() / 2);
    if (rest + slack >= period) {
        rest = 0.0;
        rounds += 1.0;
    }
    const double shown = std::clamp(first_ + rest, from_, lastInside_);
    const double value = valueIn(segmentOf(std::min(shown + slack, lastInside_)), shown);
    return rises ? value + rounds * (lastValue_ - firstValue_) : value;
}

} // namespace tidemark

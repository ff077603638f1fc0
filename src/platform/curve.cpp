// SPDX-License-Identifier: Apache-2.0
// Curves and their keys: ownership, order, and when to compile anew.
#include "platform/curve.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/limits.h"
#include "platform/curve_expression.h"
#include "platform/curve_segments.h"

namespace tidemark {

namespace {

std::atomic<ReleaseHook> keyHook{nullptr};
std::atomic<ReleaseHook> curveHook{nullptr};

void tell(const std::atomic<ReleaseHook>& slot, const Array<void*>& objects) {
    const ReleaseHook hook = slot.load();
    if (hook && !objects.empty()) hook(objects);
}

// By time; what is no number comes last.
bool isEarlier(const PointInfo* a, const PointInfo* b) {
    return a->x() < b->x() || (std::isnan(b->x()) && !std::isnan(a->x()));
}

// Tells everybody, then frees.
void release(const Array<PointInfo*>& keys) {
    Array<void*> pointers;
    pointers.reserve(keys.size());
    for (PointInfo* key : keys) pointers.append(key);
    tell(keyHook, pointers);
    for (PointInfo* key : keys) delete key;
}

} // namespace

const char* tm_spline::nameOf(int32_t type) {
    switch (type) {
    case tcb:
        return "tcb";
    case bezier:
        return "bezier";
    case step:
        return "step";
    default:
        return "linear";
    }
}

void setKeyReleaseHook(ReleaseHook hook) { keyHook = hook; }
void setCurveReleaseHook(ReleaseHook hook) { curveHook = hook; }
void keysAreReleased(const Array<void*>& keys) { tell(keyHook, keys); }

// --- keys ----------------------------------------------------------------------------------------

PointInfo& PointInfo::operator=(const PointInfo& other) {
    if (this == &other) return *this;
    copyFrom(other);
    if (owner_) noteChange(true);
    return *this;
}

void PointInfo::copyFrom(const PointInfo& other) {
    x_ = other.x_;
    y_ = other.y_;
    incoming_ = other.incoming_;
    outgoing_ = other.outgoing_;
    tension_ = other.tension_;
    continuity_ = other.continuity_;
    bias_ = other.bias_;
    easeTo_ = other.easeTo_;
    easeFrom_ = other.easeFrom_;
    type_ = other.type_;
    unifiesTangents_ = other.unifiesTangents_;
}

void PointInfo::setX(double x) {
    x_ = x;
    if (owner_) noteChange(true);
}

void PointInfo::noteChange(bool moved) { owner_->noteChange(moved); }

// --- splines -------------------------------------------------------------------------------------

SplineBase::SplineBase() = default;

SplineBase::~SplineBase() { removeAllControlPoints(); }

void SplineBase::noteChange(bool moved) {
    isCompiled_.store(false, std::memory_order_relaxed);
    if (moved) mayBeUnsorted_ = true;
}

void SplineBase::sort() {
    if (!std::is_sorted(points_.begin(), points_.end(), isEarlier)) {
        std::stable_sort(points_.begin(), points_.end(), isEarlier);
    }
    mayBeUnsorted_ = false;
}

void SplineBase::addPoints(const Array<const PointInfo*>& points) {
    const uint64_t count = uint64_t(points_.size()) + points.size();
    limits::checkElements(count, sizeof(PointInfo));
    if (mayBeUnsorted_) sort();
    std::vector<std::unique_ptr<PointInfo>> copies;
    copies.reserve(points.size());
    for (const PointInfo* point : points) {
        copies.push_back(std::make_unique<PointInfo>(*point));
        copies.back()->owner_ = this;
    }
    // One more than needed grows as an append does, so that keys added one by one stay cheap.
    if (count > points_.capacity()) {
        points_.reserve(static_cast<uint32_t>(std::min<uint64_t>(count + count / 8, 0x7fffffff)));
    }
    for (std::unique_ptr<PointInfo>& copy : copies) points_.append(copy.release());
    noteChange(false);
    if (points.size() == 1) {
        PointInfo* const added = points_.back();
        const auto place = std::upper_bound(points_.begin(), points_.end() - 1, added, isEarlier);
        std::rotate(place, points_.end() - 1, points_.end());
        return;
    }
    sort();
}

void SplineBase::removePoints(const Array<const PointInfo*>& points) {
    std::vector<const PointInfo*> sorted(points.begin(), points.end());
    std::sort(sorted.begin(), sorted.end(), std::less<>());
    Array<PointInfo*> kept;
    Array<PointInfo*> removed;
    for (PointInfo* key : points_) {
        const bool goes = std::binary_search(sorted.begin(), sorted.end(), key, std::less<>());
        (goes ? removed : kept).append(key);
    }
    if (removed.empty()) return;
    points_.swap(kept);
    noteChange(false);
    release(removed);
}

void SplineBase::removeAllControlPoints() {
    Array<PointInfo*> removed;
    points_.swap(removed);
    noteChange(false);
    release(removed);
}

const CurveSegments& SplineBase::segments() const {
    if (!isCompiled_.load(std::memory_order_acquire)) [[unlikely]]
        compile();
    return *segments_;
}

void SplineBase::compile() const {
    const std::lock_guard lock(compiling_);
    if (isCompiled_.load(std::memory_order_acquire)) return;
    segments_ = std::make_unique<CurveSegments>(points_);
    isCompiled_.store(true, std::memory_order_release);
}

double SplineBase::valueAt(float time, int32_t before, int32_t after) const {
    return segments().valueAt(time, before, after);
}

void SplineBase::evaluate(const float* times, float* results, uint32_t count, int32_t before,
                          int32_t after) const {
    const CurveSegments& keys = segments();
    for (uint32_t i = 0; i < count; ++i) {
        results[i] = static_cast<float>(keys.valueAt(times[i], before, after));
    }
}

// --- curves --------------------------------------------------------------------------------------

ANIFloatBase::ANIFloatBase() = default;

ANIFloatBase::~ANIFloatBase() { tell(curveHook, {this}); }

float ANIFloatBase::DameValor(float time) const {
    if (!compiled_) {
        return static_cast<float>(spline_.valueAt(time, preBehaviour_, postBehaviour_));
    }
    float result = 0.0f;
    evaluate(&time, &result, 1);
    return result;
}

void ANIFloatBase::evaluate(const float* times, float* results, uint32_t count) const {
    if (!compiled_ || expressionPlusSpline_) {
        spline_.evaluate(times, results, count, preBehaviour_, postBehaviour_);
    }
    if (compiled_) compiled_->evaluate(times, results, count, frameRate_, expressionPlusSpline_);
}

namespace {

// `angle` by full turns as near to `previous` as can be.
double unwound(double angle, double previous) {
    constexpr double turn = 360.0;
    const double step = angle - previous;
    if (std::fabs(step) <= turn / 2) return angle;
    const double near = angle - turn * std::round(step / turn);
    if (std::fabs(near - previous) <= turn / 2) return near;
    // So many turns that neither the step nor their number is exact.
    return previous +
           std::remainder(std::remainder(angle, turn) - std::remainder(previous, turn), turn);
}

} // namespace

void ANIFloatBase::eulerFilter() {
    const PointInfo* previous = nullptr;
    for (PointInfo* key : spline_.points()) {
        if (!std::isfinite(key->y())) continue;
        const double angle = previous ? unwound(key->y(), previous->y()) : key->y();
        if (angle != key->y()) key->setY(angle);
        previous = key;
    }
}

bool ANIFloatBase::setExpression(const TM_String& text) {
    expressionMessage_.clear();
    std::unique_ptr<CurveExpression> compiled;
    if (!text.empty()) {
        compiled = CurveExpression::compile(text, expressionMessage_);
        if (!compiled) return false;
    }
    expression_ = text;
    compiled_ = std::move(compiled);
    return true;
}

void ANIFloatBase::setFrameRate(double rate) {
    if (rate > 0.0 && std::isfinite(rate)) frameRate_ = rate;
}

} // namespace tidemark

// SPDX-License-Identifier: Apache-2.0
// The keys of animation curves.
//
//     PointInfo key(1.0, 5.0, tm_spline::bezier); // at one second, value five
//     key.setOutgoing(2.0);                       // leaves it rising by two per second
#pragma once

#include <cstdint>

#include "core/array.h"
#include "core/export.h"

namespace tidemark {

class SplineBase;

/// How a curve runs between keys; the numbers are those of the pins named "type".
namespace tm_spline {
enum interpolationType : int32_t {
    linear = 0, ///< a straight line to the next key
    tcb = 1,    ///< smooth, shaped by tension, continuity and bias
    bezier = 2, ///< smooth, shaped by the two slopes
    step = 3,   ///< holds the key's value up to the next key
};

/// "linear", "tcb", "bezier", "step"; "linear" for any other number, which counts as that.
SLUICE_API const char* nameOf(int32_t type);
} // namespace tm_spline

/// One key. A key of a curve belongs to that curve, which notices every change; a copy is a key of
/// its own. Numbers of any size may be set, and types that are none.
class SLUICE_API PointInfo {
public:
    /// All zero, of type "tcb".
    PointInfo() = default;
    PointInfo(double x, double y, int32_t type = tm_spline::tcb) : x_(x), y_(y), type_(type) {}
    PointInfo(const PointInfo& other) { copyFrom(other); }
    PointInfo& operator=(const PointInfo& other);

    /// Time in seconds.
    double x() const { return x_; }
    void setX(double x);
    /// The curve's value there.
    double y() const { return y_; }
    void setY(double y) { change(y_, y); }
    /// Slopes of a Bezier key, left and right of it, in units of value per second.
    double incoming() const { return incoming_; }
    void setIncoming(double slope) { change(incoming_, slope); }
    double outgoing() const { return outgoing_; }
    void setOutgoing(double slope) { change(outgoing_, slope); }
    /// Of a TCB key, normally -1 to 1.
    double tension() const { return tension_; }
    void setTension(double tension) { change(tension_, tension); }
    double continuity() const { return continuity_; }
    void setContinuity(double continuity) { change(continuity_, continuity); }
    double bias() const { return bias_; }
    void setBias(double bias) { change(bias_, bias); }
    /// How slowly the curve leaves a TCB key, and arrives at it: the share, 0 to 1, of the way to
    /// the neighbour on that side. See `ANIFloatBase`.
    double easeTo() const { return easeTo_; }
    void setEaseTo(double share) { change(easeTo_, share); }
    double easeFrom() const { return easeFrom_; }
    void setEaseFrom(double share) { change(easeFrom_, share); }
    /// One of `tm_spline::interpolationType`, of whatever else counts as linear.
    int32_t type() const { return type_; }
    void setType(int32_t type) { change(type_, type); }
    /// Whether a Bezier or TCB key has the same slope on both sides: the mean of the two.
    bool unifiesTangents() const { return unifiesTangents_; }
    void setUnifiesTangents(bool unifies) { change(unifiesTangents_, unifies); }

private:
    friend class SplineBase;

    template <typename T>
    void change(T& field, T value) {
        field = value;
        if (owner_) noteChange(false);
    }
    void noteChange(bool moved);
    void copyFrom(const PointInfo& other);

    double x_ = 0.0;
    double y_ = 0.0;
    double incoming_ = 0.0;
    double outgoing_ = 0.0;
    double tension_ = 0.0;
    double continuity_ = 0.0;
    double bias_ = 0.0;
    double easeTo_ = 0.0;
    double easeFrom_ = 0.0;
    int32_t type_ = tm_spline::tcb;
    bool unifiesTangents_ = false;
    SplineBase* owner_ = nullptr; // whose key it is; copies have none
};

/// Told of objects that are about to be freed, so that nobody keeps pointers to them.
using ReleaseHook = void (*)(const Array<void*>& objects);

/// Called by every curve with the keys that it is about to free, as `PointInfo*`. Null: nobody.
SLUICE_API void setKeyReleaseHook(ReleaseHook hook);
/// The same for keys of other owners: whoever frees keys that others may point at calls it first.
SLUICE_API void keysAreReleased(const Array<void*>& keys);

} // namespace tidemark

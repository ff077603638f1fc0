// SPDX-License-Identifier: Apache-2.0
// Animation curves: a value over time, from keys, from an expression, or from both.
//
//     ANIFloatBase curve;
//     curve.refSpline().addPoint({0.0, 0.0, tm_spline::linear});
//     curve.refSpline().addPoint({2.0, 10.0, tm_spline::linear});
//     curve.setPostBehaviour(curveLoop);
//     curve.DameValor(2.5f); // 2.5, a quarter of the second round
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "core/array.h"
#include "core/text.h"
#include "platform/curve_key.h"

namespace tidemark {

class CurveExpression;
class CurveSegments;

/// What a curve does outside its keys. Before the first key only the first two exist; any other
/// number counts as constant.
enum CurveBehaviour : int32_t {
    curveZero = 0,       ///< the value is 0
    curveConstant = 1,   ///< the value of the nearest key holds on
    curveLoop = 2,       ///< the keys repeat
    curveLoopOffset = 3, ///< the same, each round higher by what the keys rise
};

/// The keys of a curve, in time order. It owns them; pointers to them stay good until the key is
/// removed or the spline goes, and the release hook is told before that.
///
/// Any number of threads may evaluate at once. Changes, of keys as well, belong to one thread at a
/// time, while nobody evaluates.
class SLUICE_API SplineBase {
public:
    SplineBase();
    ~SplineBase();
    SplineBase(const SplineBase&) = delete;
    SplineBase& operator=(const SplineBase&) = delete;

    /// Adds a copy, behind other keys of the same time. A list whose order was lost by changes of
    /// `x` is put in order first; a time that is not a number stands last.
    void addPoint(const PointInfo& point) { addPoints({&point}); }
    /// The same for each of them in turn, in one go. They may be keys of this spline.
    void addPoints(const Array<const PointInfo*>& points);
    /// Removes and frees the key; nothing when it is not one of these.
    void remove(const PointInfo* point) { removePoints({point}); }
    /// The same for each of them, with one call of the release hook.
    void removePoints(const Array<const PointInfo*>& points);
    void removeAllControlPoints();

    /// The keys, to be read and changed in place. A change of `x` does not move a key in this list;
    /// evaluation takes the keys by their times nevertheless.
    const Array<PointInfo*>& points() const { return points_; }

    /// The value of the keys at `time` in seconds; 0 without keys. See `ANIFloatBase`.
    double valueAt(float time, int32_t before, int32_t after) const;
    /// `valueAt` for each of `count` times.
    void evaluate(const float* times, float* results, uint32_t count, int32_t before,
                  int32_t after) const;

private:
    friend class PointInfo;

    const CurveSegments& segments() const;
    void compile() const;
    void noteChange(bool moved);
    void sort();

    Array<PointInfo*> points_;
    bool mayBeUnsorted_ = false;
    mutable std::atomic<bool> isCompiled_{false};
    mutable std::mutex compiling_;
    mutable std::unique_ptr<CurveSegments> segments_;
};

/// A value over time. The keys give a spline; an expression, if there is one, takes its place or is
/// added to it.
///
/// From one key, "left", to the next, "right":
/// - left of type step: left's value; linear (or no known type): a straight line;
/// - left of type Bezier or TCB: the cubic in time with a slope at either end (Hermite form; the
///   same as a Bezier curve whose inner points lie at a third and two thirds of the time):
///       h = x1 - x0, u = (x - x0) / h
///       y = y0 (2u^3 - 3u^2 + 1) + h s0 (u^3 - 2u^2 + u) + y1 (3u^2 - 2u^3) + h s1 (u^3 - u^2)
///   where s0 is left's outgoing and s1 is right's incoming slope. A Bezier key has its own; a TCB
///   key the tangents of Kochanek and Bartels, "Interpolating Splines with Local Tension,
///   Continuity, and Bias Control", SIGGRAPH 1984, with their correction for uneven spacing; at an
///   end of the curve the missing neighbour is the mirror image of the other one. A linear or step
///   key on the right ends the curve along the chord.
///   TCB keys ease: over left's `easeTo` share of the way u gathers speed evenly from rest, over
///   right's `easeFrom` share it slows down evenly (shares that add up to more than 1 are scaled
///   down to that; below 0 and not-a-number counts as 0).
///
/// A key counts at the float nearest to its time, as do the times that are asked for. At the time
/// of several keys the last of them holds, as where a curve jumps. Keys whose time is not a number
/// or beyond the range of float are passed over. One key is a constant.
///
/// After the last key the keys repeat as the behaviour tells, the first round with its end, the
/// others with the start of the next one in its place; where they span no time, and at infinity,
/// the last value holds on. A time that is not a number gives no number, without keys 0.
class SLUICE_API ANIFloatBase {
public:
    /// No keys, no expression, constant before and after.
    ANIFloatBase();
    ~ANIFloatBase();
    ANIFloatBase(const ANIFloatBase&) = delete;
    ANIFloatBase& operator=(const ANIFloatBase&) = delete;

    const SplineBase& spline() const { return spline_; }
    SplineBase& refSpline() { return spline_; }

    /// The value at `time` in seconds.
    float DameValor(float time) const;
    /// `DameValor` for each of `count` times; many at once are cheaper. The results must not lie
    /// where the times are.
    void evaluate(const float* times, float* results, uint32_t count) const;

    /// Adds full turns of 360 to the values of keys, in the order of the list, until no step from
    /// one key to the next is larger than 180. Values that are no finite numbers are passed over.
    void eulerFilter();

    /// Empty when there is none.
    const TM_String& getExpression() const { return expression_; }
    /// Takes an expression over `t`, seconds, and `frame`, `t` times the frame rate, which is a
    /// whole number where the precision of `t` leaves that open, in the syntax of muParser with its
    /// functions, and floor, ceil, round, trunc, pow, fmod, clamp(value, min,
    /// max), the constant pi and the operator %. An empty text removes the expression. False, with
    /// a reason in `expressionMessage`, when it is not understood; the curve stays as it was.
    bool setExpression(const TM_String& text);
    /// Why the latest `setExpression` refused; empty when it did not.
    const TM_String& expressionMessage() const { return expressionMessage_; }
    /// Whether an expression is added to the spline instead of taking its place.
    bool hasExpressionPlusSpline() const { return expressionPlusSpline_; }
    void setExpressionPlusSpline(bool plus) { expressionPlusSpline_ = plus; }
    /// Frames in a second, 30 unless set. Nothing when `rate` is not above 0 and finite.
    double frameRate() const { return frameRate_; }
    void setFrameRate(double rate);

    /// `CurveBehaviour`, kept as given. Setting them does not touch `behavioursChanged`.
    int32_t preBehaviour() const { return preBehaviour_; }
    void setPreBehaviour(int32_t behaviour) { preBehaviour_ = behaviour; }
    int32_t postBehaviour() const { return postBehaviour_; }
    void setPostBehaviour(int32_t behaviour) { postBehaviour_ = behaviour; }
    /// Left for the host, which refreshes what it shows and clears it.
    bool behavioursChanged() const { return behavioursChanged_; }
    void setBehavioursChanged(bool changed) { behavioursChanged_ = changed; }

private:
    SplineBase spline_;
    TM_String expression_;
    TM_String expressionMessage_;
    std::unique_ptr<CurveExpression> compiled_; // null without an expression
    double frameRate_ = 30.0;
    int32_t preBehaviour_ = curveConstant;
    int32_t postBehaviour_ = curveConstant;
    bool expressionPlusSpline_ = false;
    bool behavioursChanged_ = false;
};

/// Called by every `ANIFloatBase` that goes, with its address. Null: nobody.
SLUICE_API void setCurveReleaseHook(ReleaseHook hook);

} // namespace tidemark

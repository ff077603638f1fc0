// SPDX-License-Identifier: Apache-2.0
// Expressions over time, by muParser.
#include "platform/curve_expression.h"

#include <muParser.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tidemark {

namespace {

// Reading takes time that grows with the square of the length.
constexpr std::size_t longestExpression = 10000;

double floorOf(double a) { return std::floor(a); }
double ceilOf(double a) { return std::ceil(a); }
double roundOf(double a) { return std::round(a); }
double truncOf(double a) { return std::trunc(a); }
double powerOf(double a, double b) { return std::pow(a, b); }
double remainderOf(double a, double b) { return std::fmod(a, b); }
// Not std::clamp, which must not be given a minimum above the maximum.
double clamped(double a, double low, double high) { return std::min(std::max(a, low), high); }

constexpr double pi = 3.14159265358979323846;

// The time of a frame is mostly no float: frame 21 of 30 in a second is asked for as 0.69999999.
double frameAt(double time, double frameRate) {
    constexpr double precision = std::numeric_limits<float>::epsilon();
    const double frame = time * frameRate;
    const double whole = std::round(frame);
    return std::fabs(frame - whole) <= std::fabs(frame) * precision ? whole : frame;
}

} // namespace

// One compiled form, with the variables that it reads.
class CurveExpression::Form {
public:
    explicit Form(const TM_String& text) {
        parser_.DefineVar("t", &time_);
        parser_.DefineVar("frame", &frame_);
        parser_.DefineConst("pi", pi);
        parser_.DefineFun("floor", floorOf);
        parser_.DefineFun("ceil", ceilOf);
        parser_.DefineFun("round", roundOf);
        parser_.DefineFun("trunc", truncOf);
        parser_.DefineFun("pow", powerOf);
        parser_.DefineFun("fmod", remainderOf);
        parser_.DefineFun("clamp", clamped);
        parser_.DefineOprt("%", remainderOf, mu::prMUL_DIV, mu::oaLEFT, true);
        parser_.SetExpr(text);
    }

    double valueAt(double time, double frameRate) {
        time_ = time;
        frame_ = frameAt(time, frameRate);
        return parser_.Eval();
    }
    int resultCount() const { return parser_.GetNumResults(); }

private:
    mu::Parser parser_;
    double time_ = 0.0;
    double frame_ = 0.0;
};

std::unique_ptr<CurveExpression> CurveExpression::compile(const TM_String& text, TM_String& why) {
    if (text.size() > longestExpression) {
        why = text::format("The expression is longer than %d characters",
                           static_cast<int>(longestExpression));
        return nullptr;
    }
    if (text.find('\0') != TM_String::npos) {
        why = "The expression holds a zero byte";
        return nullptr;
    }
    try {
        auto form = std::make_unique<Form>(text);
        form->valueAt(0.0, 1.0);
        if (form->resultCount() != 1) {
            why = "The expression gives more than one value";
            return nullptr;
        }
        std::unique_ptr<CurveExpression> expression(new CurveExpression(text));
        expression->giveBack(std::move(form));
        return expression;
    } catch (const mu::Parser::exception_type& error) {
        why = error.GetMsg();
        return nullptr;
    }
}

CurveExpression::~CurveExpression() {
    for (std::atomic<Form*>& place : idle_) delete place.load();
}

std::unique_ptr<CurveExpression::Form> CurveExpression::take() const {
    for (std::atomic<Form*>& place : idle_) {
        if (!place.load(std::memory_order_relaxed)) continue;
        if (Form* form = place.exchange(nullptr, std::memory_order_acquire)) {
            return std::unique_ptr<Form>(form);
        }
    }
    return std::make_unique<Form>(text_);
}

void CurveExpression::giveBack(std::unique_ptr<Form> form) const {
    for (std::atomic<Form*>& place : idle_) {
        Form* none = nullptr;
        if (place.compare_exchange_strong(none, form.get(), std::memory_order_release,
                                          std::memory_order_relaxed)) {
            form.release();
            return;
        }
    }
}

void CurveExpression::evaluate(const float* times, float* results, uint32_t count, double frameRate,
                               bool adds) const {
    if (count == 0) return;
    std::unique_ptr<Form> form = take();
    for (uint32_t i = 0; i < count; ++i) {
        const double value = form->valueAt(times[i], frameRate);
        results[i] = static_cast<float>(adds ? value + results[i] : value);
    }
    giveBack(std::move(form));
}

} // namespace tidemark

// SPDX-License-Identifier: Apache-2.0
// Expressions over time, compiled once and evaluated by many threads.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

#include "core/text.h"

namespace tidemark {

/// An accepted expression; see `ANIFloatBase::setExpression` for the language. Evaluation is safe
/// from any number of threads at once: each works on a compiled form of its own, and the forms wait
/// here for the next one.
class CurveExpression {
public:
    /// Null when `text` is refused; `why` then tells the reason.
    static std::unique_ptr<CurveExpression> compile(const TM_String& text, TM_String& why);
    ~CurveExpression();

    /// Adds the expression's value to each of `results`, or replaces it.
    void evaluate(const float* times, float* results, uint32_t count, double frameRate,
                  bool adds) const;

private:
    class Form;
    static constexpr std::size_t mostIdle = 16;

    explicit CurveExpression(const TM_String& text) : text_(text) {}
    std::unique_ptr<Form> take() const;
    void giveBack(std::unique_ptr<Form> form) const;

    TM_String text_;
    mutable std::array<std::atomic<Form*>, mostIdle> idle_{};
};

} // namespace tidemark

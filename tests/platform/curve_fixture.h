// SPDX-License-Identifier: Apache-2.0
// A curve, and short ways to its keys.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>
#include <string>

#include "platform/curve.h"

namespace curve_tests {

using tidemark::ANIFloatBase;
using tidemark::PointInfo;
namespace tm_spline = tidemark::tm_spline;

inline constexpr float infinity = std::numeric_limits<float>::infinity();
inline constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

inline PointInfo key(double x, double y, int32_t type = tm_spline::linear) { return {x, y, type}; }

inline PointInfo bezierKey(double x, double y, double incoming, double outgoing) {
    PointInfo made(x, y, tm_spline::bezier);
    made.setIncoming(incoming);
    made.setOutgoing(outgoing);
    return made;
}

class CurveTest : public testing::Test {
protected:
    void add(std::initializer_list<PointInfo> keys) {
        for (const PointInfo& each : keys) curve_.refSpline().addPoint(each);
    }
    PointInfo& at(uint32_t index) { return *curve_.spline().points()[index]; }
    // The times of the keys in the order of the list, separated by blanks.
    std::string times() {
        std::string text;
        for (const PointInfo* each : curve_.spline().points()) {
            text += tidemark::text::shortest(each->x()) + " ";
        }
        return text;
    }
    float operator()(float time) const { return curve_.DameValor(time); }

    ANIFloatBase curve_;
};

} // namespace curve_tests

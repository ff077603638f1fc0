// SPDX-License-Identifier: Apache-2.0
// The length of a tick, measured against the steady clock.
#include "core/timer.h"

namespace tidemark {

namespace {

using Clock = std::chrono::steady_clock;

struct Reference {
    Clock::time_point time = Clock::now();
    Timer::Ticks ticks = Timer::now();
};

const Reference reference;

// A shorter span would give too coarse a ratio of the two clocks.
constexpr double secondsToMeasure = 0.002;

// Measured once, at the first use, so that a time reads the same whenever it is asked for.
double secondsPerTick() {
    static const double ratio = [] {
        std::chrono::duration<double> span = Clock::now() - reference.time;
        while (span.count() < secondsToMeasure) span = Clock::now() - reference.time;
        return span.count() / static_cast<double>(Timer::now() - reference.ticks);
    }();
    return ratio;
}

} // namespace

double Timer::seconds(Ticks ticks) {
    return ticks == 0 ? 0.0 : static_cast<double>(ticks) * secondsPerTick();
}

} // namespace tidemark

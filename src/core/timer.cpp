// SPDX-License-Identifier: Apache-2.0
// The length of a tick, measured against the steady clock.
#include "core/timer.h"

#include <atomic>

namespace tidemark {

namespace {

using Clock = std::chrono::steady_clock;

struct Reference {
    Clock::time_point time = Clock::now();
    Timer::Ticks ticks = Timer::now();
};

const Reference reference;

// Below this span the ratio of the two clocks would be too coarse to keep.
constexpr double secondsToSettle = 0.25;

double secondsPerTick() {
    static std::atomic<double> settled{0.0};
    const double known = settled.load(std::memory_order_relaxed);
    if (known > 0.0) return known;
    std::chrono::duration<double> span = Clock::now() - reference.time;
    while (span.count() < 1e-4) span = Clock::now() - reference.time;
    const double ratio = span.count() / static_cast<double>(Timer::now() - reference.ticks);
    if (span.count() > secondsToSettle) settled.store(ratio, std::memory_order_relaxed);
    return ratio;
}

} // namespace

double Timer::seconds(Ticks ticks) {
    return ticks == 0 ? 0.0 : static_cast<double>(ticks) * secondsPerTick();
}

} // namespace tidemark

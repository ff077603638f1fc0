// SPDX-License-Identifier: Apache-2.0
// Stop watch of nodes, attributes and runs. It counts processor ticks, because a pull reads the
// clock several times and a system clock call costs more than a small node's update.
#pragma once

#include <chrono>
#include <cstdint>

#include "core/export.h"

#if defined(__x86_64__)
#include <x86intrin.h>
#endif

namespace tidemark {

/// Seconds as a double, from a monotonic clock. A new timer has never been started.
class SLUICE_API Timer {
public:
    using Ticks = uint64_t;

    static Ticks now() {
#if defined(__x86_64__)
        return __rdtsc();
#else
        return static_cast<Ticks>(std::chrono::steady_clock::now().time_since_epoch().count());
#endif
    }
    static double seconds(Ticks ticks);

    void start() { startAt(now()); }
    void stop() { stopAt(now()); }
    /// Goes on from the time it was stopped at; nothing when it runs.
    void resume() { resumeAt(now()); }
    double getTime() const { return seconds(ticks(now())); }

    bool isRunning() const { return startedAt_ != 0; }

    // The same with the clock already read.
    void startAt(Ticks time) {
        sum_ = 0;
        startedAt_ = time;
    }
    void stopAt(Ticks time) {
        if (!startedAt_) return;
        sum_ += time - startedAt_;
        startedAt_ = 0;
    }
    void resumeAt(Ticks time) {
        if (!startedAt_) startedAt_ = time;
    }
    Ticks ticks(Ticks time) const { return startedAt_ ? sum_ + (time - startedAt_) : sum_; }

private:
    Ticks sum_ = 0;
    Ticks startedAt_ = 0;
};

} // namespace tidemark

namespace weft {
using tidemark::Timer;
} // namespace weft

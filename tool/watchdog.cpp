// SPDX-License-Identifier: Apache-2.0
// The watching thread.
#include "tool/watchdog.h"

#include <algorithm>
#include <utility>

#include "core/limits.h"

namespace tidemark::tool {

namespace {

// Longer times are no limit in practice and would overflow the clock.
constexpr double longestSeconds = 1e9;

std::chrono::steady_clock::duration durationOf(double seconds) {
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(std::min(seconds, longestSeconds)));
}

} // namespace

Watchdog::Watchdog(double seconds, uint64_t bytes, std::function<void(LimitHit)> onHit)
    : limitsTime_(seconds > 0.0), deadline_(Clock::now() + durationOf(std::max(seconds, 0.0))),
      mostBytes_(bytes), onHit_(std::move(onHit)) {
    if (limitsTime_ || mostBytes_ != 0) thread_ = std::thread([this] { watch(); });
}

void Watchdog::stop() {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ended_ = true;
    }
    wake_.notify_all();
    thread_.join();
}

LimitHit Watchdog::check() const {
    if (limitsTime_ && Clock::now() >= deadline_) return LimitHit::time;
    if (mostBytes_ != 0 && limits::residentBytes() > mostBytes_) return LimitHit::memory;
    return LimitHit::none;
}

void Watchdog::watch() {
    constexpr auto samplePeriod = std::chrono::milliseconds(10);
    std::unique_lock<std::mutex> lock(mutex_);
    while (!ended_) {
        const LimitHit hit = check();
        if (hit != LimitHit::none) {
            hit_ = hit;
            lock.unlock();
            onHit_(hit);
            return;
        }
        Clock::time_point next = Clock::now() + samplePeriod;
        if (mostBytes_ == 0 || (limitsTime_ && deadline_ < next)) next = deadline_;
        wake_.wait_until(lock, next, [this] { return ended_; });
    }
}

} // namespace tidemark::tool

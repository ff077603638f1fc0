// SPDX-License-Identifier: Apache-2.0
// Watches the time and the memory of a run from a thread of its own.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

namespace tidemark::tool {

/// Which limit was hit.
enum class LimitHit { none, time, memory };

/// Calls `onHit` once, on its own thread, when a limit is hit. Memory is sampled every 10 ms: what
/// grows gradually is noticed here, a single large request is refused by the library.
class Watchdog {
public:
    /// Limits of 0 are none; without any there is no thread. The time counts from now.
    Watchdog(double seconds, uint64_t bytes, std::function<void(LimitHit)> onHit);
    ~Watchdog() { stop(); }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    LimitHit hit() const { return hit_; }
    /// Ends the watch; what was hit stays.
    void stop();

private:
    using Clock = std::chrono::steady_clock;

    void watch();
    LimitHit check() const;

    const bool limitsTime_;
    const Clock::time_point deadline_;
    const uint64_t mostBytes_;
    const std::function<void(LimitHit)> onHit_;
    std::atomic<LimitHit> hit_{LimitHit::none};
    std::mutex mutex_;
    std::condition_variable wake_;
    bool ended_ = false;
    std::thread thread_;
};

} // namespace tidemark::tool

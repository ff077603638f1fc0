// SPDX-License-Identifier: Apache-2.0
// A worker thread that ends before whoever started it goes on.
//
//     Thread thread([](void* argument) { static_cast<Share*>(argument)->run(); }, &share);
//     if (!thread.start()) share.run();
//     thread.join();
#pragma once

#include <pthread.h>

#include <atomic>

#include "core/export.h"

namespace tidemark::platform {

/// Created, started and joined by one thread. It has the default stack size and must not move while
/// it runs.
class SLUICE_API Thread {
public:
    using Entry = void (*)(void* argument);
    enum class State { created, running, done, joined };

    /// `entry` must not throw.
    Thread(Entry entry, void* argument) : entry_(entry), argument_(argument) {}
    /// Joins.
    ~Thread() { join(); }
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// False when the system has no more threads.
    bool start();
    /// In place of `start`, when there are no more threads: does the work on this one.
    void runHere();
    /// Waits for the end. Nothing unless it was started.
    void join();
    State state() const { return state_.load(); }

    /// True on a thread that an object of this class has started, and inside `runHere`.
    static bool isWorker();

private:
    static void* run(void* self);

    Entry entry_;
    void* argument_;
    pthread_t handle_{};
    std::atomic<State> state_{State::created};
};

} // namespace tidemark::platform

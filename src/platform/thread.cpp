// SPDX-License-Identifier: Apache-2.0
// Worker threads.
#include "platform/thread.h"

#include <utility>

namespace tidemark::platform {

namespace {

thread_local bool isWorkerThread = false;

} // namespace

bool Thread::isWorker() { return isWorkerThread; }

bool Thread::start() {
    state_ = State::running;
    if (pthread_create(&handle_, nullptr, run, this) == 0) return true;
    state_ = State::created;
    return false;
}

void Thread::runHere() {
    const bool wasWorker = std::exchange(isWorkerThread, true);
    entry_(argument_);
    isWorkerThread = wasWorker;
    state_ = State::joined;
}

void* Thread::run(void* self) {
    auto& thread = *static_cast<Thread*>(self);
    isWorkerThread = true;
    thread.entry_(thread.argument_);
    thread.state_ = State::done;
    return nullptr;
}

void Thread::join() {
    if (state_ == State::created || state_ == State::joined) return;
    pthread_join(handle_, nullptr);
    state_ = State::joined;
}

} // namespace tidemark::platform

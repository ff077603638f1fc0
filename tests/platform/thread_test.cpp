// SPDX-License-Identifier: Apache-2.0
// Worker threads: their states, and who is one.
#include "platform/thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

using tidemark::platform::Thread;

struct Seen {
    std::atomic<int> calls{0};
    std::atomic<bool> wasWorker{false};
    std::thread::id id;
    static void enter(void* argument) {
        auto& seen = *static_cast<Seen*>(argument);
        seen.wasWorker = Thread::isWorker();
        seen.id = std::this_thread::get_id();
        ++seen.calls;
    }
};

TEST(Thread, RunsOnceAndIsJoined) {
    Seen seen;
    Thread thread(Seen::enter, &seen);
    EXPECT_EQ(thread.state(), Thread::State::created);
    ASSERT_TRUE(thread.start());
    thread.join();
    EXPECT_EQ(thread.state(), Thread::State::joined);
    thread.join();
    EXPECT_EQ(seen.calls, 1);
    EXPECT_TRUE(seen.wasWorker);
    EXPECT_FALSE(Thread::isWorker());
    EXPECT_NE(seen.id, std::this_thread::get_id());
}

TEST(Thread, WithoutAStartNothingRuns) {
    Seen seen;
    Thread thread(Seen::enter, &seen);
    thread.join();
    EXPECT_EQ(thread.state(), Thread::State::created);
    EXPECT_EQ(seen.calls, 0);
}

TEST(Thread, MayDoItsWorkHere) {
    Seen seen;
    Thread thread(Seen::enter, &seen);
    thread.runHere();
    EXPECT_EQ(thread.state(), Thread::State::joined);
    EXPECT_TRUE(seen.wasWorker);
    EXPECT_FALSE(Thread::isWorker());
    EXPECT_EQ(seen.id, std::this_thread::get_id());
}

TEST(Thread, EndsBeforeItsObject) {
    Seen seen;
    {
        Thread thread(Seen::enter, &seen);
        ASSERT_TRUE(thread.start());
    }
    EXPECT_EQ(seen.calls, 1);
}

} // namespace

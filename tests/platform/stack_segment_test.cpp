// SPDX-License-Identifier: Apache-2.0
// Recursion beyond a thread's stack: depth, nesting, exceptions, threads, memory.
#include "platform/stack_segment.h"

#include <fenv.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "core/limits.h"

#if defined(__SANITIZE_THREAD__)
#define SLUICE_INSTRUMENTED 1
#elif defined(__SANITIZE_ADDRESS__)
#define SLUICE_INSTRUMENTED 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer) || __has_feature(address_sanitizer)
#define SLUICE_INSTRUMENTED 1
#endif
#endif

namespace {

using tidemark::platform::runOnFreshStack;
using tidemark::platform::stackIsLow;

#if defined(SLUICE_INSTRUMENTED)
// Frames are several times larger, and the thread sanitizer knows a limited number of stacks.
constexpr int deepest = 200000;
constexpr int mostNested = 1000;
#else
constexpr int deepest = 1000000;
constexpr int mostNested = 12000;
#endif

// About 400 bytes of frame. Returns the sum of 1 to `depth`, or throws at the bottom.
int64_t dive(int depth, bool throwAtBottom);

[[gnu::noinline]] int64_t diveHere(int depth, bool throwAtBottom) {
    volatile char ballast[320];
    ballast[0] = static_cast<char>(depth);
    ballast[319] = ballast[0];
    if (depth == 0) {
        if (throwAtBottom) throw std::runtime_error("the bottom");
        return 0;
    }
    const int64_t below = dive(depth - 1, throwAtBottom);
    if (ballast[319] != static_cast<char>(depth)) throw std::logic_error("overwritten frame");
    return below + depth;
}

int64_t dive(int depth, bool throwAtBottom) {
    if (!stackIsLow()) return diveHere(depth, throwAtBottom);
    int64_t result = 0;
    runOnFreshStack([&] { result = diveHere(depth, throwAtBottom); });
    return result;
}

int64_t sumTo(int64_t n) { return n * (n + 1) / 2; }

// Every call on a segment of its own.
int nest(int depth) {
    int result = 0;
    runOnFreshStack([&] {
        if (depth == 0) throw std::runtime_error("innermost");
        result = nest(depth - 1) + 1;
    });
    return result;
}

std::string messageOf(void (*function)()) {
    try {
        function();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "no exception";
}

TEST(StackSegment, RecursionGoesBeyondTheThreadsStack) {
    EXPECT_EQ(dive(deepest, false), sumTo(deepest));
}

TEST(StackSegment, ShallowCallsStayOnTheThreadsStack) {
    EXPECT_FALSE(stackIsLow());
    EXPECT_EQ(dive(10, false), 55);
}

TEST(StackSegment, FreshStackHasRoom) {
    bool low = true;
    runOnFreshStack([&] { low = stackIsLow(); });
    EXPECT_FALSE(low);
}

TEST(StackSegment, CallRunsElsewhereAndComesBack) {
    char* const here = static_cast<char*>(__builtin_frame_address(0));
    char* there = nullptr;
    runOnFreshStack([&] { there = static_cast<char*>(__builtin_frame_address(0)); });
    const auto distance = here > there ? here - there : there - here;
    EXPECT_GT(distance, 1 << 20);
    EXPECT_FALSE(stackIsLow());
}

TEST(StackSegment, ExceptionFromTheBottomArrivesIntact) {
    EXPECT_EQ(messageOf([] { dive(deepest / 4, true); }), "the bottom");
    EXPECT_EQ(dive(1000, false), sumTo(1000));
}

TEST(StackSegment, ExceptionCrossesThousandsOfSegments) {
    EXPECT_EQ(messageOf([] { nest(mostNested); }), "innermost");
    EXPECT_EQ(std::uncaught_exceptions(), 0);
    EXPECT_FALSE(std::current_exception());
}

TEST(StackSegment, ExceptionKeepsItsType) {
    struct Own {
        int value;
    };
    int seen = 0;
    try {
        runOnFreshStack([] { throw Own{7}; });
    } catch (const Own& own) {
        seen = own.value;
    }
    EXPECT_EQ(seen, 7);
}

TEST(StackSegment, WorksInsideACatchBlock) {
    std::string outer;
    std::string inner;
    try {
        try {
            throw std::runtime_error("outer");
        } catch (const std::exception&) {
            runOnFreshStack([&] {
                try {
                    dive(20000, true);
                } catch (const std::exception& error) {
                    inner = error.what();
                }
            });
            throw;
        }
    } catch (const std::exception& error) {
        outer = error.what();
    }
    EXPECT_EQ(inner, "the bottom");
    EXPECT_EQ(outer, "outer");
}

TEST(StackSegment, WorksWhileAnExceptionUnwinds) {
    struct Diver {
        int64_t* sum;
        ~Diver() { *sum = dive(20000, false); }
    };
    int64_t sum = 0;
    EXPECT_THROW(
        {
            Diver diver{&sum};
            throw std::runtime_error("unwinds");
        },
        std::runtime_error);
    EXPECT_EQ(sum, sumTo(20000));
}

TEST(StackSegment, ThreadsDiveAtTheSameTime) {
    constexpr int count = 4;
    std::array<int64_t, count> sums{};
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([&sums, i] {
            for (int round = 0; round < 3; ++round) sums[i] += dive(50000 + i, false);
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (int i = 0; i < count; ++i) EXPECT_EQ(sums[i], 3 * sumTo(50000 + i));
}

TEST(StackSegment, ThreadWithASmallStackDives) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 192 * 1024), 0);
    int64_t sum = 0;
    pthread_t thread;
    const auto run = [](void* target) -> void* {
        *static_cast<int64_t*>(target) = dive(50000, false);
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &sum), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(sum, sumTo(50000));
}

TEST(StackSegment, RepeatedCallsReuseSegments) {
    char* first = nullptr;
    char* second = nullptr;
    runOnFreshStack([&] { first = static_cast<char*>(__builtin_frame_address(0)); });
    runOnFreshStack([&] { second = static_cast<char*>(__builtin_frame_address(0)); });
    EXPECT_EQ(first, second);
}

TEST(StackSegment, CallTakesTheCallersRounding) {
    runOnFreshStack([] {});
    const int before = fegetround();
    fesetround(FE_UPWARD);
    int inside = -1;
    runOnFreshStack([&] { inside = fegetround(); });
    fesetround(before);
    EXPECT_EQ(inside, FE_UPWARD);
}

#if !defined(SLUICE_INSTRUMENTED)
// Instrumented programs keep memory and addresses of their own.

TEST(StackSegment, MemoryOfADeepRunIsGivenBack) {
    dive(1000, false);
    const uint64_t before = tidemark::limits::residentBytes();
    dive(deepest, false);
    const uint64_t after = tidemark::limits::residentBytes();
    EXPECT_LT(after, before + (uint64_t(80) << 20));
}

TEST(StackSegment, MemoryIsTakenAsItIsUsed) {
    const uint64_t before = tidemark::limits::residentBytes();
    std::thread([] {
        runOnFreshStack([] { runOnFreshStack([] { runOnFreshStack([] {}); }); });
    }).join();
    EXPECT_LT(tidemark::limits::residentBytes(), before + (uint64_t(1) << 20));
}

TEST(StackSegment, EndedThreadLeavesNoSegments) {
    for (int i = 0; i < 200; ++i) std::thread([] { dive(20000, false); }).join();
    const uint64_t before = tidemark::limits::residentBytes();
    for (int i = 0; i < 200; ++i) std::thread([] { dive(20000, false); }).join();
    EXPECT_LT(tidemark::limits::residentBytes(), before + (uint64_t(32) << 20));
}

// In a process of its own: the limit on addresses stays with the process.
int diveWithoutMemory() {
    const rlim_t most = rlim_t(300) << 20;
    const rlimit limit{most, most};
    if (setrlimit(RLIMIT_AS, &limit) != 0) return 2;
    try {
        dive(5000000, false);
    } catch (const std::bad_alloc&) {
        return dive(1000, false) == sumTo(1000) ? 0 : 3;
    }
    return 1;
}

TEST(StackSegment, WithoutMemoryItIsBadAlloc) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) _exit(diveWithoutMemory());
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}
#endif

} // namespace

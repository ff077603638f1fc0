// SPDX-License-Identifier: Apache-2.0
// Stack segments: mapped memory with a guard below, entered and left by a context switch.
#include "platform/stack_segment.h"

#include <pthread.h>
#include <sys/mman.h>
#include <ucontext.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define SLUICE_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SLUICE_ADDRESS_SANITIZER 1
#endif
#endif
#if defined(__SANITIZE_THREAD__)
#define SLUICE_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define SLUICE_THREAD_SANITIZER 1
#endif
#endif

#if defined(SLUICE_ADDRESS_SANITIZER)
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>
#endif
#if defined(SLUICE_THREAD_SANITIZER)
#include <sanitizer/tsan_interface.h>
#endif

namespace tidemark::platform {

namespace detail {
constinit thread_local char* stackFloor = nullptr;
} // namespace detail

namespace {

constexpr std::size_t megabyte = std::size_t(1) << 20;
constexpr std::size_t smallestSegment = megabyte;
#if defined(SLUICE_THREAD_SANITIZER)
// The sanitizer notes at most 65,536 nested calls per fiber.
constexpr std::size_t largestSegment = 2 * megabyte;
#else
constexpr std::size_t largestSegment = 64 * megabyte;
#endif
// Wide, so that two stacks never lie close together: memory checkers tell a change of stacks from
// a large frame by the distance. It costs addresses, no memory.
constexpr std::size_t guardSize = 4 * megabyte;
constexpr std::size_t mostKeptFree = 64 * megabyte;

/// Stands at the upper end of the segment's own memory.
struct Segment {
    Segment* nextFree;
    char* low;
    std::size_t size; // from `low`, this record included
};

/// One call on a segment; lies on the caller's stack.
struct Call {
    void (*function)(void*);
    void* argument;
    ucontext_t callerContext;
    std::exception_ptr failure;
    const void* callerStackLow = nullptr;
    std::size_t callerStackSize = 0;
    void* callerFiber = nullptr;
};

struct ThreadState {
    Segment* free = nullptr;
    std::size_t freeBytes = 0;
    unsigned depth = 0; // calls that run now
    Call* starting = nullptr;
    bool ended = false;
};

// Without a destructor, so that code which runs while the thread ends still finds it.
constinit thread_local ThreadState state;

Segment* mapSegment(std::size_t size) {
    void* memory = mmap(nullptr, guardSize + size, PROT_NONE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    if (memory == MAP_FAILED) return nullptr;
    char* low = static_cast<char*>(memory) + guardSize;
    if (mprotect(low, size, PROT_READ | PROT_WRITE) != 0) {
        munmap(memory, guardSize + size);
        return nullptr;
    }
    return new (low + size - sizeof(Segment)) Segment{nullptr, low, size};
}

void unmapSegment(Segment* segment) {
    char* low = segment->low;
    const std::size_t size = segment->size;
#if defined(SLUICE_ADDRESS_SANITIZER)
    // Another mapping may come to lie here and must not find the marks of our frames.
    __asan_unpoison_memory_region(low, size);
#endif
    munmap(low - guardSize, guardSize + size);
}

/// Takes the link to a free segment out of the list.
Segment* unlink(Segment** link) {
    Segment* segment = *link;
    *link = segment->nextFree;
    state.freeBytes -= segment->size;
    return segment;
}

void giveBackLargest() {
    Segment** largest = &state.free;
    for (Segment** link = &state.free; *link; link = &(*link)->nextFree) {
        if ((*link)->size > (*largest)->size) largest = link;
    }
    unmapSegment(unlink(largest));
}

/// Gives the thread's free segments back when it ends.
struct ThreadEnd {
    bool armed = false;
    ~ThreadEnd() {
        state.ended = true;
        while (state.free) unmapSegment(unlink(&state.free));
    }
};
thread_local ThreadEnd threadEnd;

Segment* takeSegment() {
    std::size_t size = smallestSegment;
    for (unsigned i = 0; i < state.depth && size < largestSegment; ++i) size *= 2;
    for (Segment** link = &state.free; *link; link = &(*link)->nextFree) {
        if ((*link)->size >= size) return unlink(link);
    }
    // Where addresses or memory are short, a smaller segment still leads on.
    for (; size >= smallestSegment; size /= 2) {
        if (Segment* segment = mapSegment(size)) return segment;
    }
    throw std::bad_alloc();
}

void returnSegment(Segment* segment) {
    if (state.ended) return unmapSegment(segment);
    threadEnd.armed = true;
    segment->nextFree = state.free;
    state.free = segment;
    state.freeBytes += segment->size;
    while (state.freeBytes > mostKeptFree) giveBackLargest();
}

/// First function on a segment. It never returns: the last switch leaves it for good.
void enterSegment() {
    Call& call = *state.starting;
#if defined(SLUICE_ADDRESS_SANITIZER)
    __sanitizer_finish_switch_fiber(nullptr, &call.callerStackLow, &call.callerStackSize);
#endif
    try {
        call.function(call.argument);
    } catch (...) {
        call.failure = std::current_exception();
    }
#if defined(SLUICE_ADDRESS_SANITIZER)
    __sanitizer_start_switch_fiber(nullptr, call.callerStackLow, call.callerStackSize);
#endif
#if defined(SLUICE_THREAD_SANITIZER)
    __tsan_switch_to_fiber(call.callerFiber, 0);
#endif
    setcontext(&call.callerContext);
    std::terminate();
}

/// Switches to the segment and comes back when the call is done.
void runOn(Segment& segment, Call& call) {
    // Made anew for each call: a context carries the signal mask and the floating-point modes.
    ucontext_t context{};
    getcontext(&context);
    context.uc_stack.ss_sp = segment.low;
    context.uc_stack.ss_size = segment.size - sizeof(Segment);
    context.uc_link = nullptr;
    makecontext(&context, enterSegment, 0);
    state.starting = &call;
#if defined(SLUICE_THREAD_SANITIZER)
    call.callerFiber = __tsan_get_current_fiber();
    void* fiber = __tsan_create_fiber(0);
#endif
#if defined(SLUICE_ADDRESS_SANITIZER)
    void* fakeStack = nullptr;
    __sanitizer_start_switch_fiber(&fakeStack, segment.low, context.uc_stack.ss_size);
#endif
#if defined(SLUICE_THREAD_SANITIZER)
    __tsan_switch_to_fiber(fiber, 0);
#endif
    swapcontext(&call.callerContext, &context);
#if defined(SLUICE_ADDRESS_SANITIZER)
    __sanitizer_finish_switch_fiber(fakeStack, nullptr, nullptr);
#endif
#if defined(SLUICE_THREAD_SANITIZER)
    __tsan_destroy_fiber(fiber);
#endif
}

} // namespace

namespace detail {

char* findStackFloor() {
    void* low = nullptr;
    std::size_t size = 0;
    pthread_attr_t attributes;
    const bool known = pthread_getattr_np(pthread_self(), &attributes) == 0;
    if (known) {
        pthread_attr_getstack(&attributes, &low, &size);
        pthread_attr_destroy(&attributes);
        stackFloor = static_cast<char*>(low) + stackReserve;
    } else {
        // Nothing is known of this stack: every recursion begins on one of ours.
        stackFloor = reinterpret_cast<char*>(UINTPTR_MAX);
    }
    return stackFloor;
}

void runOnFreshStack(void (*function)(void*), void* argument) {
    Call call{};
    call.function = function;
    call.argument = argument;
    Segment* segment = takeSegment();
    char* callerFloor = stackFloor;
    stackFloor = segment->low + stackReserve;
    ++state.depth;
    runOn(*segment, call);
    --state.depth;
    stackFloor = callerFloor;
    returnSegment(segment);
    if (call.failure) std::rethrow_exception(std::move(call.failure));
}

} // namespace detail

} // namespace tidemark::platform

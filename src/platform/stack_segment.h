// SPDX-License-Identifier: Apache-2.0
// More stack for a recursion that follows user data. A pull recurses once per node of a chain, so a
// chain of a million nodes needs more stack than a thread has.
//
//     void visit(Node& node) {
//         if (stackIsLow()) return runOnFreshStack([&] { visitHere(node); });
//         visitHere(node);
//     }
#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>

#include "core/export.h"

namespace tidemark::platform {

/// Room that a caller of `stackIsLow` may count on when the answer is no.
constexpr std::size_t stackReserve = 256 * 1024;

namespace detail {
/// Lowest address that the running code may reach before it has to change stacks; null until the
/// thread has asked for the first time. Read at every pull, hence the cheapest model of access.
extern SLUICE_API constinit thread_local char* stackFloor
    __attribute__((tls_model("initial-exec")));
SLUICE_API char* findStackFloor();
SLUICE_API void runOnFreshStack(void (*function)(void*), void* argument);
} // namespace detail

/// True when less than `stackReserve` is left of the current stack.
inline bool stackIsLow() {
    char* floor = detail::stackFloor ? detail::stackFloor : detail::findStackFloor();
    return static_cast<char*>(__builtin_frame_address(0)) < floor;
}

/// Calls `function()` on a fresh stack segment of the same thread and returns when it is done. An
/// exception that leaves `function` reaches the caller. May be nested without limit but memory and
/// called from anywhere, also from a catch block; `function` must not end the thread. What it
/// changes of the thread's signal mask and floating-point environment is undone at its end.
///
/// Segments are kept for the thread's next use in part (64 MB), and given back otherwise; memory of
/// a segment is taken as it is used. Throws `std::bad_alloc` when there is none for another.
template <typename Function>
void runOnFreshStack(Function&& function) {
    using Target = std::remove_reference_t<Function>;
    detail::runOnFreshStack([](void* target) { (*static_cast<Target*>(target))(); },
                            const_cast<void*>(static_cast<const void*>(std::addressof(function))));
}

} // namespace tidemark::platform

// SPDX-License-Identifier: Apache-2.0
// More stack for a recursion that follows user data. A pull recurses once per node of a chain, so a
// chain of a million nodes needs more stack than a thread has.
#pragma once

#include <cstddef>
#include <type_traits>

#include "core/export.h"

namespace tidemark::platform {

/// Room that a caller of `stackIsLow` may count on when the answer is no.
constexpr std::size_t stackReserve = 256 * 1024;

namespace detail {
/// Lowest address that the running code may reach before it has to change stacks; null until the
/// thread has asked for the first time.
extern SLUICE_API thread_local char* stackFloor;
SLUICE_API char* findStackFloor();
SLUICE_API void runOnFreshStack(void (*function)(void*), void* argument);
} // namespace detail

/// True when less than `stackReserve` is left of the current stack.
inline bool stackIsLow() {
    char* floor = detail::stackFloor ? detail::stackFloor : detail::findStackFloor();
    return static_cast<char*>(__builtin_frame_address(0)) < floor;
}

/// Calls `function()` on a fresh stack segment of the same thread and returns when it is done. An
/// exception that leaves `function` reaches the caller. Segments are kept for the thread's next use
/// in part, and given back otherwise. Throws `std::bad_alloc` when there is no memory for one.
template <typename Function>
void runOnFreshStack(Function&& function) {
    using Target = std::remove_reference_t<Function>;
    detail::runOnFreshStack([](void* target) { (*static_cast<Target*>(target))(); }, &function);
}

} // namespace tidemark::platform

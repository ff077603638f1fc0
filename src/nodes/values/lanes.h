// SPDX-License-Identifier: Apache-2.0
// Loops over raw memory that the compiler turns into vector instructions, built for two instruction
// sets. Neither set has fused operations: every machine gets the same numbers.
#pragma once

#include <cstddef>

#include "platform/processors.h"

namespace tidemark {

// Each element is read before it is written, and no other depends on it.
#if defined(__GNUC__) && !defined(__clang__)
#define SLUICE_INDEPENDENT_ELEMENTS _Pragma("GCC ivdep")
#else
#define SLUICE_INDEPENDENT_ELEMENTS
#endif

/// Sets `out[i]` to `function(in[i]...)` for `i` below `count`, with the instructions that the
/// caller is built for. `out` may be one of the inputs.
template <typename R, typename Function, typename... A>
[[gnu::always_inline]] inline void mapLanesInline(R* out, std::size_t count, Function function,
                                                  const A*... in) {
    // Runs of a fixed length become vector instructions.
    constexpr std::size_t lanesPerRun = 16;
    std::size_t i = 0;
    for (; i + lanesPerRun <= count; i += lanesPerRun) {
        SLUICE_INDEPENDENT_ELEMENTS
        for (std::size_t k = i; k < i + lanesPerRun; ++k) out[k] = function(in[k]...);
    }
    for (; i < count; ++i) out[i] = function(in[i]...);
}

#undef SLUICE_INDEPENDENT_ELEMENTS

#if defined(__x86_64__)
template <typename R, typename Function, typename... A>
[[gnu::target("avx2")]] void mapWideLanes(R* out, std::size_t count, Function function,
                                          const A*... in) {
    mapLanesInline(out, count, function, in...);
}
#endif

/// The same with the widest instructions that the processor has.
template <typename R, typename Function, typename... A>
void mapLanes(R* out, std::size_t count, Function function, const A*... in) {
#if defined(__x86_64__)
    constexpr std::size_t worthWideInstructions = 32;
    if (count >= worthWideInstructions && platform::hasWideInstructions()) {
        return mapWideLanes(out, count, function, in...);
    }
#endif
    mapLanesInline(out, count, function, in...);
}

} // namespace tidemark

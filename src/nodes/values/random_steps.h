// SPDX-License-Identifier: Apache-2.0
// The generator behind all nodes that make random values: the same seed gives the same values.
#pragma once

#include <cstdint>

namespace tidemark::sluice::graph {

/// A linear congruential generator of 32 bits (multiplier and increment of Knuth and Lewis), begun
/// on a scrambled seed. Each random number is one step.
///
///     RandomSteps steps(seed);
///     const bool bit = steps.next() > 0x7fffffffu;
///     const float real = (steps.next() & 0xffffffu) * 0x1p-24f;     // 0 <= real < 1
class RandomSteps {
public:
    static constexpr uint32_t factor = 1664525u;
    static constexpr uint32_t increment = 1013904223u;

    /// A negative seed counts as unsigned.
    explicit constexpr RandomSteps(int32_t seed)
        : state_((static_cast<uint32_t>(seed) * 0xa5a573a5u ^ 0x5a5a5a5au) * factor + increment) {}

    /// Advances by one step and answers the new state.
    constexpr uint32_t next() { return state_ = state_ * factor + increment; }

    /// The state before the next step.
    constexpr uint32_t state() const { return state_; }

private:
    uint32_t state_;
};

} // namespace tidemark::sluice::graph

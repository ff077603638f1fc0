// SPDX-License-Identifier: Apache-2.0
// A set of bits that belongs to one class and cannot be mixed up with another class's bits.
#pragma once

namespace tidemark::graph {

/// Bits in a `Word`, about objects of class `Owner`. `flags & other` is the common bits and is true
/// in a condition when there is one.
template <typename Owner, typename Word>
class Flag {
public:
    constexpr Flag() = default;
    constexpr explicit Flag(Word bits) : bits_(bits) {}

    constexpr Word bits() const { return bits_; }
    constexpr explicit operator bool() const { return bits_ != 0; }

    friend constexpr Flag operator&(Flag a, Flag b) { return Flag(a.bits_ & b.bits_); }
    friend constexpr Flag operator|(Flag a, Flag b) { return Flag(a.bits_ | b.bits_); }
    friend constexpr bool operator==(Flag, Flag) = default;

private:
    Word bits_ = 0;
};

class GraphNodePin;

/// Directions of pins; `GraphNodePin::inputFlag` and `GraphNodePin::outputFlag` are the two values.
using PinFlags = Flag<GraphNodePin, unsigned int>;

} // namespace tidemark::graph

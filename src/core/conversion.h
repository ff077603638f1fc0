// SPDX-License-Identifier: Apache-2.0
// Conversions and integer arithmetic that C++ leaves undefined at the edges, with one result here.
#pragma once

#include <limits>
#include <type_traits>

namespace tidemark {

/// `number` truncated toward zero. What does not fit becomes the nearest integer that exists, and
/// not-a-number becomes 0.
template <typename Integer, typename Real>
constexpr Integer truncateTo(Real number) {
    static_assert(std::is_integral_v<Integer> && std::is_signed_v<Integer>);
    static_assert(std::is_floating_point_v<Real>);
    // A power of two: exact in every floating-point type, and so is its negative.
    constexpr Real lowest = static_cast<Real>(std::numeric_limits<Integer>::min());
    if (number != number) return 0;
    if (number < lowest) return std::numeric_limits<Integer>::min();
    if (number >= -lowest) return std::numeric_limits<Integer>::max();
    return static_cast<Integer>(number);
}

/// The low bits of the true sum, difference and product.
template <typename Integer>
constexpr Integer wrappingAdd(Integer a, Integer b) {
    using Bits = std::make_unsigned_t<Integer>;
    return static_cast<Integer>(static_cast<Bits>(a) + static_cast<Bits>(b));
}
template <typename Integer>
constexpr Integer wrappingSub(Integer a, Integer b) {
    using Bits = std::make_unsigned_t<Integer>;
    return static_cast<Integer>(static_cast<Bits>(a) - static_cast<Bits>(b));
}
template <typename Integer>
constexpr Integer wrappingMul(Integer a, Integer b) {
    using Bits = std::make_unsigned_t<Integer>;
    return static_cast<Integer>(static_cast<Bits>(a) * static_cast<Bits>(b));
}

/// `a / b` truncated toward zero for a `b` that is not 0; the smallest number divided by -1 is
/// itself.
template <typename Integer>
constexpr Integer wrappingDiv(Integer a, Integer b) {
    if (b == -1) return wrappingSub(Integer(0), a);
    return a / b;
}

} // namespace tidemark

// SPDX-License-Identifier: Apache-2.0
// The element loops of addition, subtraction, multiplication and division, one per pair of types.
#pragma once

#include <span>

#include "core/numeric.h"

namespace weft {

enum class Arithmetic : int32_t { add = 0, sub = 1, mul = 2, div = 3 };

/// Sets `result[i]` to `a[i]` op `b[i]`, from the first element to the last; `result` may be `a` or
/// `b`. The shorter array repeats its last element as that reads by then; an empty one gives an
/// empty result. The result takes the element type of `a`.
///
/// Integers wrap. Where one side is real the operation is done in 32-bit floats, and truncated
/// toward zero for an integer `a` (see `truncateTo`). A 32-bit division by 0 leaves the element of
/// the result as it was. A 64-bit one ends the loop: the answer is the index of that element, and
/// -1 in all other cases.
///
/// Throws what an interrupt of the run throws, and `std::bad_alloc`.
using ArithmeticKernel = int64_t (*)(const Numeric& a, const Numeric& b, Numeric& result);

/// The types that `b` may have beside an `a` of this type, in order of preference; none for a type
/// that knows no such operation.
SLUICE_API std::span<const NumericType> allowedSecondTypes(Arithmetic operation, NumericType a);

/// The loop for a pair of types; null for a pair that is not allowed. While the type of `b` is not
/// known the loop copies `a`.
SLUICE_API ArithmeticKernel arithmeticKernel(Arithmetic operation, NumericType a, NumericType b);

} // namespace weft

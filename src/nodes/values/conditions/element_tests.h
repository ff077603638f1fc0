// SPDX-License-Identifier: Apache-2.0
// Tests of many elements at once: the comparisons of conditions, and the test for zero. A routine
// is chosen once and answers for blocks, one bit per element.
#pragma once

#include <algorithm>
#include <cstdint>

#include "core/types.h"
#include "core/words.h"

namespace tidemark::sluice::graph {

/// Element OP right side. Vectors, colours and matrices: an order holds when it holds for every
/// component, equality too, and what is not equal is unequal.
enum class Comparison { equalTo, notEqualTo, lessThan, lessOrEqual, greaterThan, greaterOrEqual };

/// Two reals are equal when they differ by no more than this, computed in single precision. Orders
/// are exact.
constexpr float equalityTolerance = 1.1920929e-5f;

/// Most elements of a block: a whole number of words, and little enough for the fast memory.
template <typename T>
constexpr uint32_t mostPerBlock = sizeof(T) <= 16 ? 1024 : 128;

/// Bit `i` of `words` becomes the outcome for `left[i]` and `right[i]`, for `i` below `count`; the
/// rest of the last word becomes 0.
template <typename T, typename R = T>
using BlockTest = void (*)(const T* left, const R* right, uint32_t count, uint32_t* words);

/// The routine of a comparison. `T` is int32_t, float, or a Vector3, Color4 or Matrix4 of float.
template <typename T>
BlockTest<T> blockTest(Comparison comparison);

/// Whether every component lies within a tolerance of 0. The same element types.
template <typename T>
BlockTest<T, float> zeroTest();

} // namespace tidemark::sluice::graph

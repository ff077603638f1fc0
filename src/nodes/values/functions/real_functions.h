// SPDX-License-Identifier: Apache-2.0
// Elementary functions of arrays of reals, as fast as the processor can.
//
// Every result lies within 1 unit in the last place of the exact one, which a test asserts on
// floats of all sizes. On processors with AVX2 and FMA these are polynomials evaluated in several
// lanes; the largest errors seen there are 0.61 for sine and cosine, 0.53 for the exponential, 0.80
// for the logarithm and 0.55 for the power. Elsewhere they are those of the C library. Special
// values are those of the C library: `log` of 0 is minus infinity, of a negative number
// not-a-number; `sin` and `cos` of an infinity are not-a-number; powers as ISO C, Annex F, tells.
// Results do not depend on where an element stands in its array.
#pragma once

#include <cstddef>

#include "core/export.h"

namespace tidemark::sluice::graph::real_functions {

/// Each sets `out[i]` for `count` elements; `out` may be `in`. Angles are in radians.
SLUICE_API void sin(const float* in, float* out, std::size_t count);
SLUICE_API void cos(const float* in, float* out, std::size_t count);
SLUICE_API void exp(const float* in, float* out, std::size_t count);
SLUICE_API void log(const float* in, float* out, std::size_t count);
/// `base[i]` raised to the power `exponent[i]`.
SLUICE_API void pow(const float* base, const float* exponent, float* out, std::size_t count);

} // namespace tidemark::sluice::graph::real_functions

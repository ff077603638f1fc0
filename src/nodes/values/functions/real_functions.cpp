// SPDX-License-Identifier: Apache-2.0
// The choice between the lanes of the processor and the C library.
#include "nodes/values/functions/real_functions.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace tidemark::sluice::graph::real_functions {

namespace {

#if defined(__x86_64__)

namespace avx2 {
#define SLUICE_TARGET "avx2,fma"
#include "nodes/values/functions/real_lanes.inc"
#undef SLUICE_TARGET
} // namespace avx2

namespace avx512 {
#define SLUICE_TARGET "avx2,fma,avx512f,avx512dq,avx512vl,avx512bw"
#include "nodes/values/functions/real_lanes.inc"
#undef SLUICE_TARGET
} // namespace avx512

#endif

namespace plain {

void sin(const float* in, float* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out[i] = std::sin(in[i]);
}
void cos(const float* in, float* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out[i] = std::cos(in[i]);
}
void exp(const float* in, float* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out[i] = std::exp(in[i]);
}
void log(const float* in, float* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out[i] = std::log(in[i]);
}
void pow(const float* base, const float* exponent, float* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out[i] = std::pow(base[i], exponent[i]);
}

} // namespace plain

using OfOne = void (*)(const float* in, float* out, std::size_t count);
using OfTwo = void (*)(const float* base, const float* exponent, float* out, std::size_t count);

struct Routines {
    OfOne sin = plain::sin;
    OfOne cos = plain::cos;
    OfOne exp = plain::exp;
    OfOne log = plain::log;
    OfTwo pow = plain::pow;
};

Routines chosen() {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw")) {
        return {avx512::sin, avx512::cos, avx512::exp, avx512::log, avx512::pow};
    }
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) {
        return {avx2::sin, avx2::cos, avx2::exp, avx2::log, avx2::pow};
    }
#endif
    return {};
}

const Routines& routines() {
    static const Routines answer = chosen();
    return answer;
}

} // namespace

void sin(const float* in, float* out, std::size_t count) { routines().sin(in, out, count); }
void cos(const float* in, float* out, std::size_t count) { routines().cos(in, out, count); }
void exp(const float* in, float* out, std::size_t count) { routines().exp(in, out, count); }
void log(const float* in, float* out, std::size_t count) { routines().log(in, out, count); }
void pow(const float* base, const float* exponent, float* out, std::size_t count) {
    routines().pow(base, exponent, out, count);
}

} // namespace tidemark::sluice::graph::real_functions

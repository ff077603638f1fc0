// SPDX-License-Identifier: Apache-2.0
// Keeping elements of four bytes, eight at a time where the processor can.
#include "nodes/values/packing.h"

#include <array>

#include "platform/processors.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace tidemark::sluice::graph {

namespace {

#if defined(__x86_64__)

constexpr uint32_t lanes = 8;
constexpr uint32_t patterns = 1u << lanes;

// For each pattern of eight bits the positions of the set ones, in order, a byte each.
constexpr std::array<uint64_t, patterns> keptLanes = [] {
    std::array<uint64_t, patterns> table{};
    for (uint32_t pattern = 0; pattern < patterns; ++pattern) {
        uint32_t kept = 0;
        for (uint64_t lane = 0; lane < lanes; ++lane) {
            if (pattern >> lane & 1) table[pattern] |= lane << 8 * kept++;
        }
    }
    return table;
}();

// Each step loads its eight elements before it stores eight at or before their place, so that the
// surplus of a store falls on elements that were read already.
[[gnu::target("avx2,popcnt")]] FourBytes* packWide(const FourBytes* block, uint32_t count,
                                                   const uint32_t* words, uint32_t flip,
                                                   FourBytes* out) {
    for (; count >= bitsPerWord; count -= bitsPerWord, block += bitsPerWord) {
        uint32_t word = *words++ ^ flip;
        if (word == 0) continue;
        for (uint32_t lane = 0; lane < bitsPerWord; lane += lanes) {
            const uint32_t pattern = word % patterns;
            word /= patterns;
            const __m256i elements =
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(block + lane));
            const __m128i order = _mm_cvtsi64_si128(static_cast<int64_t>(keptLanes[pattern]));
            const __m256i kept = _mm256_permutevar8x32_epi32(elements, _mm256_cvtepu8_epi32(order));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), kept);
            out += __builtin_popcount(pattern);
        }
    }
    return packPlain(block, count, words, flip, out);
}

#endif

} // namespace

FourBytes* packSmall(const FourBytes* block, uint32_t count, const uint32_t* words, uint32_t flip,
                     FourBytes* out) {
#if defined(__x86_64__)
    if (platform::hasWideInstructions()) return packWide(block, count, words, flip, out);
#endif
    return packPlain(block, count, words, flip, out);
}

} // namespace tidemark::sluice::graph

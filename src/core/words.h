// SPDX-License-Identifier: Apache-2.0
// Arithmetic of bits that are kept in words: bit `i` of a row of bits is bit `i % bitsPerWord` of
// word `i / bitsPerWord`.
#pragma once

#include <cstdint>

#include "core/export.h"

namespace tidemark {

constexpr uint32_t bitsPerWord = 32;
constexpr uint32_t allOnes = ~uint32_t(0);

/// The words that hold that many bits.
constexpr uint32_t wordsFor(uint64_t bits) {
    return static_cast<uint32_t>((bits + bitsPerWord - 1) / bitsPerWord);
}

/// A word with only its lowest `count` bits set; from a word's length on with all.
constexpr uint32_t lowBits(uint32_t count) {
    return count >= bitsPerWord ? allOnes : (uint32_t(1) << count) - 1;
}

/// How many of the first `bits` bits are set.
SLUICE_API uint32_t countSetBits(const uint32_t* words, uint32_t bits);

} // namespace tidemark

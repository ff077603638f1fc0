// SPDX-License-Identifier: Apache-2.0
// Counting bits, with the processor's instruction for it where there is one.
#include "core/words.h"

#include <bit>

namespace tidemark {

namespace {

[[gnu::always_inline]] inline uint32_t sumOfBits(const uint32_t* words, uint32_t count) {
    uint32_t total = 0;
    uint32_t i = 0;
    for (; i + 2 <= count; i += 2) {
        total += static_cast<uint32_t>(std::popcount(words[i] | uint64_t(words[i + 1]) << 32));
    }
    if (i < count) total += static_cast<uint32_t>(std::popcount(words[i]));
    return total;
}

#if defined(__x86_64__)
[[gnu::target("popcnt")]] uint32_t sumOfBitsByInstruction(const uint32_t* words, uint32_t count) {
    return sumOfBits(words, count);
}
#endif

uint32_t countWords(const uint32_t* words, uint32_t count) {
#if defined(__x86_64__)
    static const bool hasInstruction = __builtin_cpu_supports("popcnt");
    if (hasInstruction) return sumOfBitsByInstruction(words, count);
#endif
    return sumOfBits(words, count);
}

} // namespace

uint32_t countSetBits(const uint32_t* words, uint32_t bits) {
    const uint32_t whole = bits / bitsPerWord;
    uint32_t total = countWords(words, whole);
    if (const uint32_t rest = bits % bitsPerWord) {
        total += static_cast<uint32_t>(std::popcount(words[whole] & lowBits(rest)));
    }
    return total;
}

} // namespace tidemark

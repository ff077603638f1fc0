// SPDX-License-Identifier: Apache-2.0
// What the bit nodes share: work on whole words of bit arrays. Bits are numbered as in
// `BitArrayValue`; what lies in a last word beyond the elements may be read and is never relied on.
//
//     compressBits(words, mask, 96, target, 3, meter);     // the bits of `words` where `mask` is
//     set
#pragma once

#include <algorithm>
#include <limits>

#include "core/bit_array.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

constexpr uint32_t bitsPerWord = weft::BitArrayValue::bitsPerWord;
constexpr uint32_t allOnes = ~uint32_t(0);

/// The words that hold that many bits.
constexpr uint32_t wordsFor(uint64_t bits) {
    return static_cast<uint32_t>((bits + bitsPerWord - 1) / bitsPerWord);
}

/// A mask of the lowest `count` bits, which is at most a word's.
constexpr uint32_t lowBits(uint32_t count) {
    return count >= bitsPerWord ? allOnes : (uint32_t(1) << count) - 1;
}

/// A count or position as an "Integer"; what does not fit is the largest one.
constexpr int32_t asInteger(int64_t number) {
    constexpr int64_t most = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(number < most ? number : most);
}

/// What a number holds of type `T`, one element for each of its positions: where it holds fewer,
/// the last one repeats.
template <typename T>
class Elements {
public:
    explicit Elements(const weft::Numeric& number)
        : data_(number.values<T>().data()), size_(number.size()),
          held_(std::min(number.values<T>().size(), size_)) {}

    uint32_t size() const { return size_; }
    /// Beyond the end the last one, of an empty number 0.
    T operator[](uint32_t index) const {
        if (held_ == 0) return T();
        return data_[index < held_ ? index : held_ - 1];
    }

private:
    const T* data_;
    uint32_t size_;
    uint32_t held_;
};

/// Calls `work(first, count)` for consecutive stretches of `words` words, and answers interrupts in
/// between.
template <typename Work>
void inStretches(uint32_t words, WorkMeter& meter, Work work) {
    constexpr uint32_t most = 1 << 16;
    for (uint32_t first = 0; first < words;) {
        const uint32_t count = words - first < most ? words - first : most;
        work(first, count);
        meter.add(count);
        first += count;
    }
}

#if defined(__x86_64__)
/// True when the processor has vector instructions for eight words at once (AVX2).
inline bool hasWideInstructions() {
    static const bool answer =
        __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("popcnt") != 0;
    return answer;
}
#endif

// Each word is read before it is written, and no other depends on it.
#if defined(__GNUC__) && !defined(__clang__)
#define SLUICE_INDEPENDENT_WORDS _Pragma("GCC ivdep")
#else
#define SLUICE_INDEPENDENT_WORDS
#endif

/// Sets `result[i]` to `op(a[i], b[i])`. The result may be one of the operands.
template <typename Op>
[[gnu::always_inline]] inline void mapWords(const uint32_t* a, const uint32_t* b, uint32_t* result,
                                            uint32_t count, Op op) {
    // Blocks of a fixed length become vector instructions.
    constexpr uint32_t wordsPerBlock = 16;
    uint32_t i = 0;
    for (; i + wordsPerBlock <= count; i += wordsPerBlock) {
        SLUICE_INDEPENDENT_WORDS
        for (uint32_t k = i; k < i + wordsPerBlock; ++k) result[k] = op(a[k], b[k]);
    }
    for (; i < count; ++i) result[i] = op(a[i], b[i]);
}

#undef SLUICE_INDEPENDENT_WORDS

/// The word with its bits in the opposite order.
constexpr uint32_t reversed(uint32_t word) {
    word = (word >> 1 & 0x55555555u) | (word & 0x55555555u) << 1;
    word = (word >> 2 & 0x33333333u) | (word & 0x33333333u) << 2;
    word = (word >> 4 & 0x0f0f0f0fu) | (word & 0x0f0f0f0fu) << 4;
    return __builtin_bswap32(word);
}
constexpr uint64_t reversed(uint64_t word) {
    const auto low = static_cast<uint32_t>(word);
    const auto high = static_cast<uint32_t>(word >> bitsPerWord);
    return uint64_t(reversed(low)) << bitsPerWord | reversed(high);
}

/// Makes `target` the first `count` elements of `source`, or all of them and then `fill`.
void resizeCopy(const weft::BitArrayValue& source, uint32_t count, bool fill,
                weft::BitArrayValue& target);

/// Makes `target` the elements of `source`, each of them inverted. The two may be one.
void invertBits(const weft::BitArrayValue& source, weft::BitArrayValue& target, WorkMeter& meter);

/// Writes the bits of `words` where `mask` is set, in order and without gaps, to `target`, and
/// answers their number. Both inputs have `bits` bits. `target`, of `room` words, has room for all
/// of them; it may be one of the two inputs.
uint32_t compressBits(const uint32_t* words, const uint32_t* mask, uint32_t bits, uint32_t* target,
                      uint32_t room, WorkMeter& meter);

/// Writes `bits` bits of `words` to `target`, the last one first. The two do not overlap.
void reverseBits(const uint32_t* words, uint32_t bits, uint32_t* target, WorkMeter& meter);

/// Writes the positions of the `count` set bits of `words`, which has `bits` bits.
void writePositions(const uint32_t* words, uint32_t bits, int32_t* positions, uint32_t count,
                    WorkMeter& meter);

/// Writes '1' or '0' for `count` bits of `words` from `first` on.
void writeDigits(const uint32_t* words, uint32_t first, uint32_t count, char* digits,
                 WorkMeter& meter);

/// Sets bit `i` of `words`, up to `count`, where character `i` is not '0', and clears the others.
void readDigits(const char* digits, uint32_t count, uint32_t* words, WorkMeter& meter);

} // namespace tidemark::sluice::graph

// SPDX-License-Identifier: Apache-2.0
// Which elements of an array stay, as bits, and leaving the others out.
#pragma once

#include <algorithm>
#include <bit>

#include "nodes/values/arrays/array_operation.h"

namespace tidemark::sluice::graph {

namespace array_nodes {

constexpr uint32_t bitsPerWord = weft::BitArrayValue::bitsPerWord;
constexpr uint32_t allBits = ~uint32_t(0);

/// Copies the elements of `in` whose bit of `words` is set to `out`, in order. There is room for
/// all of them; `out` may be `in`.
template <typename T>
void keep(const T* in, uint32_t count, const uint32_t* words, T* out, WorkMeter& meter) {
    for (uint32_t first = 0; first < count; first += bitsPerWord) {
        uint32_t word = words[first / bitsPerWord];
        const uint32_t left = count - first;
        if (left < bitsPerWord) word &= (uint32_t(1) << left) - 1;
        if (word == allBits) {
            out = std::copy_n(in + first, bitsPerWord, out);
        } else {
            for (; word != 0; word &= word - 1) *out++ = in[first + std::countr_zero(word)];
        }
        meter.add(bitsPerWord);
        if constexpr (std::is_same_v<T, TM_String>) meter.add(workOf(in[first]) * bitsPerWord);
    }
}

/// How many of the first `count` bits are set.
inline uint32_t countBits(const uint32_t* words, uint32_t count) {
    uint32_t set = 0;
    for (uint32_t i = 0; i < count / bitsPerWord; ++i) set += std::popcount(words[i]);
    const uint32_t rest = count % bitsPerWord;
    if (rest > 0) set += std::popcount(words[count / bitsPerWord] & ((uint32_t(1) << rest) - 1));
    return set;
}

/// A bit for each element, all set.
inline Array<uint32_t> allKept(std::size_t count) {
    Array<uint32_t> words;
    words.resize(static_cast<uint32_t>((count + bitsPerWord - 1) / bitsPerWord), allBits);
    return words;
}

inline bool isKept(const Array<uint32_t>& kept, uint32_t position) {
    return kept[position / bitsPerWord] >> position % bitsPerWord & 1;
}
inline void drop(Array<uint32_t>& kept, uint32_t position) {
    kept[position / bitsPerWord] &= ~(uint32_t(1) << position % bitsPerWord);
}

/// Leaves in `out` the elements of `in` that are kept.
template <typename T>
void writeKept(std::span<const T> in, const uint32_t* kept, Array<T>& out, WorkMeter& meter) {
    const auto count = static_cast<uint32_t>(in.size());
    sizeForWriting(out, countBits(kept, count), meter);
    keep(in.data(), count, kept, out.data(), meter);
}

inline void writeMask(BitArrayAttribute& pin, const Array<uint32_t>& words, uint32_t count) {
    weft::BitArrayValue* bits = pin.bitsTarget();
    if (!bits) return;
    bits->resize(count, false);
    std::copy(words.begin(), words.end(), bits->wordData());
}

} // namespace array_nodes

} // namespace tidemark::sluice::graph

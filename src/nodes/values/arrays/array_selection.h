// SPDX-License-Identifier: Apache-2.0
// Which elements of an array stay, as bits, and leaving the others out.
#pragma once

#include <algorithm>

#include "nodes/values/arrays/array_operation.h"
#include "nodes/values/packing.h"

namespace tidemark::sluice::graph {

namespace array_nodes {

/// Copies the elements of `in` whose bit of `words` is set to `out`, in order. There is room for
/// all of them, and for `packSurplus` more unless that is more than `count`.
template <typename T>
void keep(const T* in, uint32_t count, const uint32_t* words, T* out, WorkMeter& meter) {
    if constexpr (isPackedAtOnce<T>) {
        inPieces(count, meter, [&](uint32_t first, uint32_t end) {
            out = pack(in + first, end - first, words + first / bitsPerWord, 0, out);
        });
    } else {
        for (uint32_t first = 0; first < count; first += bitsPerWord) {
            const uint32_t length = std::min(bitsPerWord, count - first);
            out = pack(in + first, length, words + first / bitsPerWord, 0, out);
            meter.add(bitsPerWord * (workOf(in[first]) + 1));
        }
    }
}

/// A bit for each element, all set.
inline Array<uint32_t> allKept(std::size_t count) {
    Array<uint32_t> words;
    words.resize(wordsFor(count), allOnes);
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
    const uint32_t left = countSetBits(kept, count);
    const uint32_t surplus = isPackedAtOnce<T> ? std::min(packSurplus, count - left) : 0;
    sizeForWriting(out, uint64_t(left) + surplus, meter);
    keep(in.data(), count, kept, out.data(), meter);
    out.resize(left);
}

inline void writeMask(BitArrayAttribute& pin, const Array<uint32_t>& words, uint32_t count) {
    weft::BitArrayValue* bits = pin.bitsTarget();
    if (!bits) return;
    bits->resize(count, false);
    std::copy(words.begin(), words.end(), bits->wordData());
}

} // namespace array_nodes

} // namespace tidemark::sluice::graph

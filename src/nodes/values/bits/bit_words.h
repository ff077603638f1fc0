// SPDX-License-Identifier: Apache-2.0
// What the bit nodes share: work on whole words of bit arrays. Bits are numbered as in
// `BitArrayValue`; what lies in a last word beyond the elements may be read and is never relied on.
//
//     compressBits(words, mask, 96, target, 3, meter); // what of `words` has its bit in `mask` set
#pragma once

#include <algorithm>
#include <limits>

#include "core/bit_array.h"
#include "core/words.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

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

// SPDX-License-Identifier: Apache-2.0
// Keeping the elements of an array whose bit is set, one behind the other.
#pragma once

#include <bit>

#include "core/numeric.h"
#include "core/words.h"

namespace tidemark::sluice::graph {

/// Below this many bits in a word, going from bit to bit is faster than looking at every element.
constexpr int fewBits = 5;

/// So many elements behind the last one that is kept may be overwritten: see below.
constexpr uint32_t packSurplus = 8;

/// Writes the elements of `block` whose bit of `word` is set to `out` and answers the end of what
/// was written. Behind it, but before `out + count`, up to `packSurplus` elements may be
/// overwritten when they are trivially copyable. `out` may be `block` or lie before it in the same
/// array: what is overwritten was read before.
template <typename T>
T* packWord(const T* block, uint32_t count, uint32_t word, T* out) {
    if (word == 0) return out;
    if (word == allOnes) {
        for (uint32_t i = 0; i < bitsPerWord; ++i) *out++ = block[i];
        return out;
    }
    if (sizeof(T) > sizeof(uint64_t) || std::popcount(word) < fewBits) {
        for (; word != 0; word &= word - 1) *out++ = block[std::countr_zero(word)];
        return out;
    }
    for (uint32_t i = 0; i < count; ++i) {
        *out = block[i];
        out += word >> i & 1;
    }
    return out;
}

/// The same for `count` elements and their words, each of which is xor-ed with `flip` before.
template <typename T>
T* packPlain(const T* block, uint32_t count, const uint32_t* words, uint32_t flip, T* out) {
    uint32_t first = 0;
    for (; first + bitsPerWord <= count; first += bitsPerWord) {
        out = packWord(block + first, bitsPerWord, *words++ ^ flip, out);
    }
    if (first == count) return out;
    const uint32_t rest = count - first;
    return packWord(block + first, rest, (*words ^ flip) & lowBits(rest), out);
}

/// Four bytes of any type.
using FourBytes [[gnu::may_alias]] = uint32_t;

/// The same for elements of four bytes, whatever they are.
FourBytes* packSmall(const FourBytes* block, uint32_t count, const uint32_t* words, uint32_t flip,
                     FourBytes* out);

/// The same in the fastest way for `T`.
template <typename T>
T* pack(const T* block, uint32_t count, const uint32_t* words, uint32_t flip, T* out) {
    if constexpr (sizeof(T) == sizeof(uint32_t) && std::is_trivially_copyable_v<T>) {
        auto* const end = packSmall(reinterpret_cast<const FourBytes*>(block), count, words, flip,
                                    reinterpret_cast<FourBytes*>(out));
        return reinterpret_cast<T*>(end);
    } else {
        return packPlain(block, count, words, flip, out);
    }
}

/// Whether an array of `T` may be filled without knowing before how many elements are kept.
template <typename T>
constexpr bool isPackedAtOnce = std::is_trivially_copyable_v<T>;

/// The elements of type `T` of a number while it is filled with what is kept. At the end, by an
/// exception too, the number has just these.
template <typename T>
class KeptElements {
public:
    static_assert(isPackedAtOnce<T>);

    /// Empties `target` and makes room for `most` elements.
    KeptElements(weft::Numeric& target, uint32_t most)
        : target_(target), array_(target.refValues<T>()) {
        array_.clear();
        array_.resizeForOverwrite(most);
        end_ = array_.data();
    }
    ~KeptElements() {
        array_.resize(static_cast<uint32_t>(end_ - array_.data()));
        target_.updateSize();
    }
    KeptElements(const KeptElements&) = delete;
    KeptElements& operator=(const KeptElements&) = delete;

    /// `block` is no part of the target.
    void add(const T* block, uint32_t count, const uint32_t* words) {
        end_ = pack(block, count, words, 0, end_);
    }

private:
    weft::Numeric& target_;
    Array<T>& array_;
    T* end_ = nullptr;
};

} // namespace tidemark::sluice::graph

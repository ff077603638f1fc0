// SPDX-License-Identifier: Apache-2.0
// Booleans and masks: one element per bit, and the port that carries them.
//
//     bits.resize(3, false);
//     bits.setBit(1, true);
//     bits.asString();     // "010"
#pragma once

#include "core/attribute.h"

namespace weft {

/// An array of bits; a single boolean is an array of one. Bit `i` is bit `i % 32` of word `i / 32`.
/// Bits of the last word beyond the size may hold anything: no operation here looks at them.
///
/// A fresh value holds one false element.
class SLUICE_API BitArrayValue : public Value {
public:
    static const ValueKind kind;
    static constexpr uint32_t bitsPerWord = 32;

    explicit BitArrayValue(NetworkManager* manager);

    // Value. `fromString` reads nothing.

    uint32_t size() const override { return bitCount_; }
    void copyFrom(const Value* other) override;
    /// "1" or "0" per element.
    TM_String asString() const override;
    /// No elements and no memory.
    void purge() override;
    uint64_t estimatedSize() const override { return bitCapacity() / 8; }

    /// Makes the size `count`; new elements are `fill`, existing ones stay.
    void resize(uint32_t count, bool fill);
    /// `index` must be below `size()`.
    bool testBit(uint32_t index) const {
        return words_[index / bitsPerWord] >> index % bitsPerWord & 1;
    }
    /// `index` must be below `size()`.
    void setBit(uint32_t index, bool bit) {
        const uint32_t mask = uint32_t(1) << index % bitsPerWord;
        uint32_t& word = words_[index / bitsPerWord];
        word = bit ? word | mask : word & ~mask;
    }
    /// Element `index`; beyond the end the last one, of an empty value false.
    bool valueAt(uint32_t index) const {
        if (bitCount_ == 0) return false;
        return testBit(index < bitCount_ ? index : bitCount_ - 1);
    }
    /// Sets every element.
    void set(bool all);

    uint32_t count() const;
    uint32_t countFalse() const { return bitCount_ - count(); }
    bool any() const { return firstTrue() >= 0; }
    /// True of an empty array.
    bool none() const { return !any(); }
    /// Positions; -1 when there is no such element.
    int64_t firstTrue() const { return first(0); }
    int64_t firstFalse() const { return first(~uint32_t(0)); }
    int64_t lastTrue() const { return last(0); }
    int64_t lastFalse() const { return last(~uint32_t(0)); }

    /// `(size() + 31) / 32` words.
    const Array<uint32_t>& words() const { return words_; }
    /// For writing; the count of words belongs to `resize`.
    uint32_t* wordData() { return words_.data(); }
    void pin(bool pinned) override { words_.pin(pinned); }
    bool isPinned() const override { return words_.isPinned(); }
    uint64_t bitCapacity() const { return uint64_t(words_.capacity()) * bitsPerWord; }

private:
    uint32_t wordCount() const { return words_.size(); }
    /// The bits of word `index` that are elements.
    uint32_t elementMask(uint32_t index) const;
    int64_t first(uint32_t flip) const;
    int64_t last(uint32_t flip) const;

    Array<uint32_t> words_;
    uint32_t bitCount_ = 1;
    uint32_t inlineWord_ = 0; // what `words_` begins on
    bool flag_ = false;       // carried along with copies; nothing reads it
};

/// A port of the one type "Bit".
class SLUICE_API BitArrayAttribute : public Attribute {
public:
    BitArrayAttribute(NetworkManager* manager, const TM_String& name, Node* parent);

    /// What a reader sees; one false element when the source carries something else.
    const BitArrayValue& bits() const;
    /// Where an output writes; null when that holds no bits.
    BitArrayValue* bitsTarget() const { return valueAs<BitArrayValue>(writeTarget()); }
    /// The attribute's own bits.
    BitArrayValue& ownBits() const { return *static_cast<BitArrayValue*>(value()); }

    /// Element 0, false when there is none.
    bool firstBit() const { return bits().valueAt(0); }
    /// The last element, false when there is none: how nodes read a boolean unless they say
    /// otherwise.
    bool lastBit() const { return bits().valueAt(~uint32_t(0)); }
};

} // namespace weft

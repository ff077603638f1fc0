// SPDX-License-Identifier: Apache-2.0
// Bit arrays by whole words.
#include "core/bit_array.h"

#include <algorithm>
#include <bit>

#include "core/limits.h"

namespace weft {

namespace {

constexpr uint32_t allOnes = ~uint32_t(0);

uint32_t wordsFor(uint32_t bits) {
    return static_cast<uint32_t>((uint64_t(bits) + BitArrayValue::bitsPerWord - 1) /
                                 BitArrayValue::bitsPerWord);
}

} // namespace

const ValueKind BitArrayValue::kind{"BitArrayValue"};

BitArrayValue::BitArrayValue(NetworkManager* manager) : Value(manager, kind) {
    words_.borrow(&inlineWord_, 1, 1);
}

void BitArrayValue::copyFrom(const Value* other) {
    const BitArrayValue* bits = valueAs<BitArrayValue>(other);
    if (!bits || bits == this) return;
    words_ = bits->words_;
    bitCount_ = bits->bitCount_;
    flag_ = bits->flag_;
}

TM_String BitArrayValue::asString() const {
    TM_String text(bitCount_, '0');
    for (uint32_t i = 0; i < bitCount_; ++i) {
        if (testBit(i)) text[i] = '1';
    }
    return text;
}

void BitArrayValue::purge() {
    words_.reset();
    bitCount_ = 0;
}

void BitArrayValue::resize(uint32_t count, bool fill) {
    // Elements are bits here: only their number is held against the limit, the words' array tests
    // the memory.
    tidemark::limits::checkElements(count, 0);
    const uint32_t oldCount = bitCount_;
    words_.resize(wordsFor(count), fill ? allOnes : 0);
    bitCount_ = count;
    if (count <= oldCount || oldCount % bitsPerWord == 0) return;
    // The tail of the word that was the last one held no elements until now.
    const uint32_t exposed = allOnes << oldCount % bitsPerWord;
    uint32_t& word = words_[oldCount / bitsPerWord];
    word = fill ? word | exposed : word & ~exposed;
}

void BitArrayValue::set(bool all) { std::fill(words_.begin(), words_.end(), all ? allOnes : 0); }

uint32_t BitArrayValue::elementMask(uint32_t index) const {
    const uint32_t used = bitCount_ - index * bitsPerWord;
    return used >= bitsPerWord ? allOnes : (uint32_t(1) << used) - 1;
}

uint32_t BitArrayValue::count() const {
    if (bitCount_ == 0) return 0;
    const uint32_t lastWord = wordCount() - 1;
    uint32_t total = 0;
    for (uint32_t i = 0; i < lastWord; ++i) total += std::popcount(words_[i]);
    return total + std::popcount(words_[lastWord] & elementMask(lastWord));
}

int64_t BitArrayValue::first(uint32_t flip) const {
    for (uint32_t i = 0; i < wordCount(); ++i) {
        const uint32_t word = (words_[i] ^ flip) & elementMask(i);
        if (word != 0) return int64_t(i) * bitsPerWord + std::countr_zero(word);
    }
    return -1;
}

int64_t BitArrayValue::last(uint32_t flip) const {
    for (uint32_t i = wordCount(); i > 0; --i) {
        const uint32_t word = (words_[i - 1] ^ flip) & elementMask(i - 1);
        if (word != 0) return int64_t(i) * bitsPerWord - 1 - std::countl_zero(word);
    }
    return -1;
}

BitArrayAttribute::BitArrayAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
    : Attribute(manager, name, parent) {
    appendClass<"BitArrayAttribute">();
    initializeValue(new BitArrayValue(manager));
    static const SpecializationList bit{"Bit"};
    initializeSpecializations(bit);
}

const BitArrayValue& BitArrayAttribute::bits() const {
    // Never destroyed: attributes of static objects may still read it.
    static const BitArrayValue* const fallback = new BitArrayValue(nullptr);
    const BitArrayValue* bits = valueAs<BitArrayValue>(currentValue());
    return bits ? *bits : *fallback;
}

} // namespace weft

// SPDX-License-Identifier: Apache-2.0
// Bit arrays by whole words.
#include "core/bit_array.h"

#include <algorithm>
#include <bit>

#include "core/limits.h"
#include "core/words.h"

namespace weft {

using tidemark::allOnes;
using tidemark::wordsFor;

static_assert(BitArrayValue::bitsPerWord == tidemark::bitsPerWord);

namespace {

constexpr uint32_t wordsPerBlock = 16;

// True when a block of words holds nothing but `blank`.
bool isBlank(const uint32_t* words, uint32_t blank) {
    uint32_t different = 0;
    for (uint32_t k = 0; k < wordsPerBlock; ++k) different |= words[k] ^ blank;
    return different == 0;
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
    return tidemark::lowBits(bitCount_ - index * bitsPerWord);
}

uint32_t BitArrayValue::count() const { return tidemark::countSetBits(words_.data(), bitCount_); }

int64_t BitArrayValue::first(uint32_t flip) const {
    if (bitCount_ == 0) return -1;
    const uint32_t lastWord = wordCount() - 1;
    uint32_t i = 0;
    while (i + wordsPerBlock <= lastWord && isBlank(words_.data() + i, flip)) i += wordsPerBlock;
    for (; i <= lastWord; ++i) {
        const uint32_t used = i < lastWord ? allOnes : elementMask(lastWord);
        const uint32_t word = (words_[i] ^ flip) & used;
        if (word != 0) return int64_t(i) * bitsPerWord + std::countr_zero(word);
    }
    return -1;
}

int64_t BitArrayValue::last(uint32_t flip) const {
    if (bitCount_ == 0) return -1;
    const auto positionIn = [](uint32_t index, uint32_t word) {
        return int64_t(index) * bitsPerWord + (bitsPerWord - 1) - std::countl_zero(word);
    };
    uint32_t i = wordCount() - 1;
    const uint32_t rest = (words_[i] ^ flip) & elementMask(i);
    if (rest != 0) return positionIn(i, rest);
    while (i >= wordsPerBlock && isBlank(words_.data() + i - wordsPerBlock, flip)) {
        i -= wordsPerBlock;
    }
    while (i-- > 0) {
        if (words_[i] != flip) return positionIn(i, words_[i] ^ flip);
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

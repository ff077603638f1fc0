// SPDX-License-Identifier: Apache-2.0
// The array operations of bits that work as those of other elements do, on whole words.
#include <algorithm>
#include <vector>

#include "nodes/values/arrays/array_nodes_impl.h"

namespace tidemark::sluice::graph {

using weft::BitArrayValue;

namespace {

// 32 bits of `words` from bit `first` on; those at or behind `end` are 0.
uint32_t bitsAt(const uint32_t* words, uint64_t first, uint64_t end) {
    const uint64_t word = first / bitsPerWord;
    const unsigned shift = first % bitsPerWord;
    uint64_t pair = words[word];
    if (shift > 0 && (word + 1) * bitsPerWord < end) pair |= uint64_t(words[word + 1]) << 32;
    const auto bits = static_cast<uint32_t>(pair >> shift);
    return bits & lowBits(static_cast<uint32_t>(std::min<uint64_t>(end - first, bitsPerWord)));
}

// New bits, written from the front to the back.
class BitWriter {
public:
    explicit BitWriter(uint64_t count) {
        constexpr uint64_t most = 0x7fffffff;
        if (count > most) throw std::bad_alloc();
        const uint32_t words = wordsFor(count);
        limits::checkElements(words, sizeof(uint32_t));
        words_.resize(words);
    }

    /// Appends the bits `first` to `end - 1` of `source`.
    void append(const BitArrayValue& source, uint64_t first, uint64_t end, WorkMeter& meter) {
        const uint32_t* from = source.words().data();
        while (first < end) {
            const uint64_t room = bitsPerWord - next_ % bitsPerWord;
            words_[next_ / bitsPerWord] |= bitsAt(from, first, end) << next_ % bitsPerWord;
            const uint64_t count = std::min(room, end - first);
            first += count;
            next_ += count;
            meter.add(0);
        }
    }

    void moveInto(BitArrayValue& target) const {
        target.resize(static_cast<uint32_t>(next_), false);
        std::copy(words_.begin(), words_.end(), target.wordData());
    }

private:
    std::vector<uint32_t> words_;
    uint64_t next_ = 0;
};

void insertBits(const BitArrayValue& array, const BitArrayValue& added, int64_t position,
                BitArrayValue& target, WorkMeter meter) {
    const auto at = static_cast<uint64_t>(std::clamp(position, int64_t(0), int64_t(array.size())));
    BitWriter writer(uint64_t(array.size()) + added.size());
    writer.append(array, 0, at, meter);
    writer.append(added, 0, added.size(), meter);
    writer.append(array, at, array.size(), meter);
    writer.moveInto(target);
}

} // namespace

template <>
void ArrayConcat<BitArrayAttribute>::update(weft::Attribute*) {
    array0_->pull();
    array1_->pull();
    BitArrayValue* target = outArray_->bitsTarget();
    if (!target) return;
    insertBits(array0_->bits(), array1_->bits(), array_nodes::atEnd, *target,
               WorkMeter(*networkManager()));
    written(outArray_);
}

template <>
void ArrayInsertElement<BitArrayAttribute>::update(weft::Attribute*) {
    array_->pull();
    element_->pull();
    index_->pull();
    BitArrayValue* target = outArray_->bitsTarget();
    if (!target) return;
    insertBits(array_->bits(), element_->bits(), firstInteger(index_), *target,
               WorkMeter(*networkManager()));
    written(outArray_);
}

template <>
void ArraySlice<BitArrayAttribute>::update(weft::Attribute*) {
    array_->pull();
    first_->pull();
    size_->pull();
    const BitArrayValue& array = array_->bits();
    BitArrayValue* target = outArray_->bitsTarget();
    if (!target) return;
    uint64_t first = 0;
    uint64_t length = 0;
    if (!findSlice(array.size(), first_, size_, first, length)) return;
    WorkMeter meter(*networkManager());
    BitWriter writer(length);
    writer.append(array, first, first + length, meter);
    writer.moveInto(*target);
    written(outArray_);
}

template <>
void ArrayMix<BitArrayAttribute>::update(weft::Attribute*) {
    array0_->pull();
    array1_->pull();
    mask_->pull();
    BitArrayValue* target = outArray_->bitsTarget();
    if (!target) return;
    // Copies, as long as the mask: the target may be one of the three.
    const BitArrayValue& mask = mask_->bits();
    const auto repeated = [&](const BitArrayValue& bits) {
        BitArrayValue copy(nullptr);
        copy.copyFrom(&bits);
        copy.resize(mask.size(), bits.valueAt(~uint32_t(0)));
        return Array<uint32_t>(copy.words());
    };
    const Array<uint32_t> zero = repeated(array0_->bits());
    const Array<uint32_t> one = repeated(array1_->bits());
    const Array<uint32_t> choice = mask.words();
    target->resize(mask.size(), false);
    uint32_t* out = target->wordData();
    for (uint32_t i = 0; i < choice.size(); ++i) {
        out[i] = (zero[i] & ~choice[i]) | (one[i] & choice[i]);
    }
    written(outArray_);
}

template class ArrayConcat<BitArrayAttribute>;
template class ArraySlice<BitArrayAttribute>;
template class ArrayMix<BitArrayAttribute>;
template class ArrayInsertElement<BitArrayAttribute>;

SLUICE_DEFINE_ARRAY_NODE(ArrayBitConcat, ArrayConcatBase, BitArrayAttribute, BitArrayValue)
SLUICE_DEFINE_ARRAY_NODE(ArrayBitSlice, ArraySliceBase, BitArrayAttribute, BitArrayValue)
SLUICE_DEFINE_ARRAY_NODE(ArrayBitMix, ArrayMixBase, BitArrayAttribute, BitArrayValue)
SLUICE_DEFINE_ARRAY_NODE(ArrayBitInsertElement, ArrayInsertElementBase, BitArrayAttribute,
                         BitArrayValue)

} // namespace tidemark::sluice::graph

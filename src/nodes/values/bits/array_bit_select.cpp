// SPDX-License-Identifier: Apache-2.0
// Choosing and ordering elements of bit arrays: by mask, without some positions, backwards; and the
// positions that a mask chooses.
#include "graph/define_node.h"
#include "nodes/values/bits/bit_words.h"
#include "nodes/values/unfinished_output.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::BitArrayValue;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::PassThroughAttribute;

class ArrayBitFilterByMask : public weft::Node {
public:
    ArrayBitFilterByMask(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayBitFilterByMask">();
        describe("This node returns the elements of the input 'array' at positions specified by "
                 "the 'mask' parameter.");
        array_ = addInput<BitArrayAttribute>("array", "The array to take elements from.");
        mask_ = addInput<BitArrayAttribute>("mask", "The positions to take: those set to 1.");
        outArray_ = addOutput<BitArrayAttribute>("out array", "The chosen elements.");
        setAttributeAffectedByAllInputs(outArray_);
        addAttributeAllowedPassThrough(array_, outArray_);
    }

    void update(Attribute*) override {
        array_->pull();
        mask_->pull();
        BitArrayValue* target = outArray_->bitsTarget();
        if (!target) return;
        const BitArrayValue& array = array_->bits();
        const BitArrayValue& mask = mask_->bits();
        const uint32_t size = std::min(mask.count(), array.size());
        const uint32_t common = std::min(mask.size(), array.size());
        const UnfinishedOutput unfinished(target, {&array, &mask});
        if (target != &array && target != &mask) target->resize(size, false);
        WorkMeter meter(*networkManager());
        const uint32_t taken = compressBits(array.words().data(), mask.words().data(), common,
                                            target->wordData(), target->words().size(), meter);
        // Set bits of the mask beyond the array find no element: the rest stays false.
        target->resize(taken, false);
        target->resize(size, false);
        outArray_->valueChanged();
        setAttributeIsClean(outArray_, true);
    }

private:
    BitArrayAttribute* array_;
    BitArrayAttribute* mask_;
    BitArrayAttribute* outArray_;
};

class ArrayBitRemoveIndex : public weft::Node {
public:
    ArrayBitRemoveIndex(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayBitRemoveIndex">();
        describe("This node removes all the input array positions indicated by the 'index' "
                 "input. ");
        array_ = addInput<BitArrayAttribute>("array", "The array to remove elements from.");
        index_ = addInput<NumericAttribute>("index", "The positions of the input array to remove");
        outArray_ = addOutput<BitArrayAttribute>("out array", "The remaining elements.");
        setAttributeAllowedSpecialization(index_, "Integer");
        setAttributeAffectedByAllInputs(outArray_);
        addAttributeAllowedPassThrough(array_, outArray_);
    }

    void update(Attribute*) override {
        array_->pull();
        index_->pull();
        BitArrayValue* target = outArray_->bitsTarget();
        if (!target) return;
        const BitArrayValue& array = array_->bits();
        const UnfinishedOutput unfinished(target, {&array});
        WorkMeter meter(*networkManager());
        const Array<uint32_t> kept = keptPositions(array.size(), meter);
        if (target != &array) target->resize(array.size(), false);
        const uint32_t count = compressBits(array.words().data(), kept.data(), array.size(),
                                            target->wordData(), target->words().size(), meter);
        target->resize(count, false);
        outArray_->valueChanged();
        setAttributeIsClean(outArray_, true);
    }

private:
    Array<uint32_t> keptPositions(uint32_t size, WorkMeter& meter) {
        Array<uint32_t> kept;
        kept.resize(wordsFor(size), allOnes);
        const Elements<int32_t> indices(index_->numeric());
        for (uint32_t i = 0; i < indices.size(); ++i) {
            const auto index = static_cast<uint32_t>(indices[i]);
            if (index < size) {
                kept[index / bitsPerWord] &= ~(uint32_t(1) << index % bitsPerWord);
            } else {
                pushError(text::format("index is out of range: %d", static_cast<int>(indices[i])));
                networkManager()->pollInterrupt();
            }
            meter.add(0);
        }
        return kept;
    }

    BitArrayAttribute* array_;
    NumericAttribute* index_;
    BitArrayAttribute* outArray_;
};

class ArrayBitReverse : public weft::Node {
public:
    ArrayBitReverse(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayBitReverse">();
        describe("This node reverses the order of the input array. ");
        array_ = addInput<BitArrayAttribute>("array", "The array to reverse.");
        outArray_ = addOutput<BitArrayAttribute>("out array", "The elements, the last one first.");
        setAttributeAffectedByAllInputs(outArray_);
        addAttributeAllowedPassThrough(array_, outArray_);
    }

    void update(Attribute*) override {
        array_->pull();
        BitArrayValue* target = outArray_->bitsTarget();
        if (!target) return;
        const BitArrayValue& array = array_->bits();
        const UnfinishedOutput unfinished(target, {&array});
        WorkMeter meter(*networkManager());
        if (target == &array) {
            const Array<uint32_t> copy = array.words();
            reverseBits(copy.data(), array.size(), target->wordData(), meter);
        } else {
            target->resize(array.size(), false);
            reverseBits(array.words().data(), array.size(), target->wordData(), meter);
        }
        outArray_->valueChanged();
        setAttributeIsClean(outArray_, true);
    }

private:
    BitArrayAttribute* array_;
    BitArrayAttribute* outArray_;
};

class ArrayIndexBuildFromMask : public weft::Node {
public:
    ArrayIndexBuildFromMask(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayIndexBuildFromMask">();
        describe("This node returns an array containing the positions of the input 'mask' with a "
                 "value of 1.");
        mask_ = addInput<BitArrayAttribute>("mask", "The mask to search.");
        index_ = addOutput<NumericAttribute>("index", "The positions set to 1, in order.");
        through_ = addOutput<PassThroughAttribute>("through", "The input mask.");
        setAttributeAllowedSpecialization(index_, "Integer");
        setAttributeAffectsAllOutputs(mask_);
        connectInternalAttributes(mask_, through_);
    }

    void update(Attribute* attribute) override {
        mask_->pull();
        if (attribute != index_) return;
        Numeric* target = index_->numericTarget();
        if (!target) return;
        const BitArrayValue& mask = mask_->bits();
        const UnfinishedOutput unfinished(target, {});
        Array<int32_t>& indices = target->refValues<int32_t>();
        indices.resizeForOverwrite(mask.count());
        WorkMeter meter(*networkManager());
        writePositions(mask.words().data(), mask.size(), indices.data(), indices.size(), meter);
        target->updateSize();
        index_->valueChanged();
        setAttributeIsClean(index_, true);
    }

private:
    BitArrayAttribute* mask_;
    NumericAttribute* index_;
    PassThroughAttribute* through_;
};

SLUICE_DEFINE_NODE(ArrayBitFilterByMask)
SLUICE_DEFINE_NODE(ArrayBitRemoveIndex)
SLUICE_DEFINE_NODE(ArrayBitReverse)
SLUICE_DEFINE_NODE(ArrayIndexBuildFromMask)

} // namespace tidemark::sluice::graph

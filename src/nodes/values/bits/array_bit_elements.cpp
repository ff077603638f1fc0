// SPDX-License-Identifier: Apache-2.0
// Single elements of bit arrays, by index: reading, writing, and a mask from indices.
#include "graph/define_node.h"
#include "nodes/values/bits/bit_words.h"
#include "nodes/values/unfinished_output.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::BitArrayValue;
using weft::NetworkManager;
using weft::NumericAttribute;

namespace {

// Messages take long: each of them answers an interrupt.
void reportOutOfRange(weft::Node& node, int32_t index) {
    node.pushError(text::format("index is out of range: %d", static_cast<int>(index)));
    node.networkManager()->pollInterrupt();
}

} // namespace

class GetArrayBitElement : public weft::Node {
public:
    GetArrayBitElement(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"GetArrayBitElement">();
        describe("This node returns the elements of the input 'array' at given positions, which "
                 "are specified by the 'index' parameter.");
        array_ = addInput<BitArrayAttribute>("array", "The array to take elements from.");
        index_ = addInput<NumericAttribute>("index", "The positions of the elements to take.");
        out_ = addOutput<BitArrayAttribute>("out", "The elements, one for each position.");
        setAttributeAllowedSpecialization(index_, "Integer");
        setAttributeAffectedByAllInputs(out_);
        addAttributeAllowedPassThrough(array_, out_);
    }

    void update(Attribute*) override {
        array_->pull();
        index_->pull();
        BitArrayValue* target = out_->bitsTarget();
        if (!target) return;
        const BitArrayValue& source = array_->bits();
        const UnfinishedOutput unfinished(target, {&source});
        const uint32_t size = source.size();
        if (&source == target) {
            const Array<uint32_t> copy = source.words();
            take(copy.data(), size, *target);
        } else {
            take(source.words().data(), size, *target);
        }
        out_->valueChanged();
        setAttributeIsClean(out_, true);
    }

private:
    void take(const uint32_t* words, uint32_t size, BitArrayValue& target) {
        const Elements<int32_t> indices(index_->numeric());
        target.resize(indices.size(), false);
        uint32_t* const out = target.wordData();
        WorkMeter meter(*networkManager());
        for (uint32_t first = 0; first < indices.size(); first += bitsPerWord) {
            const uint32_t count = std::min(bitsPerWord, indices.size() - first);
            uint32_t word = 0;
            for (uint32_t k = 0; k < count; ++k) {
                const auto index = static_cast<uint32_t>(indices[first + k]);
                if (index < size) {
                    word |= (words[index / bitsPerWord] >> index % bitsPerWord & 1) << k;
                } else {
                    reportOutOfRange(*this, indices[first + k]);
                }
            }
            out[first / bitsPerWord] = word;
            meter.add(count);
        }
    }

    BitArrayAttribute* array_;
    NumericAttribute* index_;
    BitArrayAttribute* out_;
};

class SetArrayBitElement : public weft::Node {
public:
    SetArrayBitElement(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"SetArrayBitElement">();
        describe("This node sets the elements of the input 'array' at given positions, which are "
                 "specified by the 'index' parameter. The new value is specified by the 'value' "
                 "input.");
        array_ = addInput<BitArrayAttribute>("array", "The array to set elements of.");
        index_ = addInput<NumericAttribute>("index", "The positions of the elements to set.");
        value_ = addInput<BitArrayAttribute>(
            "value", "The new value for each position. If there are fewer values than positions, "
                     "the last one is repeated.");
        outArray_ = addOutput<BitArrayAttribute>("out array", "The array with its new elements.");
        setAttributeAllowedSpecialization(index_, "Integer");
        setAttributeAffectedByAllInputs(outArray_);
        addAttributeAllowedPassThrough(array_, outArray_);
    }

    void update(Attribute*) override {
        array_->pull();
        index_->pull();
        value_->pull();
        BitArrayValue* target = outArray_->bitsTarget();
        if (!target) return;
        const BitArrayValue& values = value_->bits();
        const UnfinishedOutput unfinished(target, {&array_->bits(), &values});
        const uint32_t count = values.size();
        if (&values == target) {
            const Array<uint32_t> copy = values.words();
            target->copyFrom(&array_->bits());
            put(copy.data(), count, *target);
        } else {
            target->copyFrom(&array_->bits());
            put(values.words().data(), count, *target);
        }
        outArray_->valueChanged();
        setAttributeIsClean(outArray_, true);
    }

private:
    void put(const uint32_t* values, uint32_t valueCount, BitArrayValue& target) {
        const Elements<int32_t> indices(index_->numeric());
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < indices.size(); ++i) {
            const auto index = static_cast<uint32_t>(indices[i]);
            if (index < target.size()) {
                const uint32_t k = i < valueCount ? i : valueCount - 1;
                target.setBit(index, valueCount > 0 &&
                                         (values[k / bitsPerWord] >> k % bitsPerWord & 1) != 0);
            } else {
                reportOutOfRange(*this, indices[i]);
            }
            meter.add(0);
        }
    }

    BitArrayAttribute* array_;
    NumericAttribute* index_;
    BitArrayAttribute* value_;
    BitArrayAttribute* outArray_;
};

class ArrayBitBuildByIndex : public weft::Node {
public:
    ArrayBitBuildByIndex(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayBitBuildByIndex">();
        describe("Given an array of indices this node returns a mask whereas each index included "
                 "in the index-array is set to 1.");
        indexArray_ = addInput<NumericAttribute>("index array", "The positions to set to 1.");
        mask_ = addOutput<BitArrayAttribute>(
            "mask", "The mask. It ends behind the largest index of the input.");
        setAttributeAllowedSpecialization(indexArray_, "Integer");
        setAttributeAffectedByAllInputs(mask_);
    }

    void update(Attribute*) override {
        indexArray_->pull();
        BitArrayValue* target = mask_->bitsTarget();
        if (!target) return;
        const Elements<int32_t> indices(indexArray_->numeric());
        const UnfinishedOutput unfinished(target, {});
        WorkMeter meter(*networkManager());
        target->resize(sizeFor(indices, meter), false);
        target->set(false);
        for (uint32_t i = 0; i < indices.size(); ++i) {
            if (indices[i] >= 0) target->setBit(static_cast<uint32_t>(indices[i]), true);
            meter.add(0);
        }
        mask_->valueChanged();
        setAttributeIsClean(mask_, true);
    }

private:
    // One more than the largest index. Reports the negative ones.
    uint32_t sizeFor(const Elements<int32_t>& indices, WorkMeter& meter) {
        int32_t largest = -1;
        for (uint32_t i = 0; i < indices.size(); ++i) {
            largest = std::max(largest, indices[i]);
            if (indices[i] < 0) reportOutOfRange(*this, indices[i]);
            meter.add(0);
        }
        return static_cast<uint32_t>(largest) + 1;
    }

    NumericAttribute* indexArray_;
    BitArrayAttribute* mask_;
};

SLUICE_DEFINE_NODE(GetArrayBitElement)
SLUICE_DEFINE_NODE(SetArrayBitElement)
SLUICE_DEFINE_NODE(ArrayBitBuildByIndex)

} // namespace tidemark::sluice::graph

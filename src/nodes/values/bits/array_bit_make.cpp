// SPDX-License-Identifier: Apache-2.0
// Bit arrays from nothing or of another size: constants, filling, resizing, random bits.
#include <array>

#include "graph/define_node.h"
#include "nodes/values/bits/bit_words.h"
#include "nodes/values/random_steps.h"
#include "nodes/values/unfinished_output.h"
#include "platform/processors.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::BitArrayValue;
using weft::NetworkManager;
using weft::NumericAttribute;

namespace {

constexpr const char* negativeSize = "Input size is lower than 0";

void fill(BitArrayValue& target, uint32_t size, bool bit) {
    // The size alone first: what the array held before is of no use.
    target.resize(size, bit);
    target.set(bit);
}

// What 1 to 32 steps do to a state, so that the bits of a word do not wait for each other.
struct Leaps {
    std::array<uint32_t, bitsPerWord> factors;
    std::array<uint32_t, bitsPerWord> increments;
};

constexpr Leaps makeLeaps() {
    Leaps leaps{};
    uint32_t factor = 1;
    uint32_t increment = 0;
    for (uint32_t k = 0; k < bitsPerWord; ++k) {
        factor *= RandomSteps::factor;
        increment = increment * RandomSteps::factor + RandomSteps::increment;
        leaps.factors[k] = factor;
        leaps.increments[k] = increment;
    }
    return leaps;
}

constexpr Leaps leaps = makeLeaps();

// A bit is set when its state exceeds 0x7fffffff: the highest bit of the state.
[[gnu::always_inline]] inline uint32_t randomWordsInline(uint32_t state, uint32_t* words,
                                                         uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        uint32_t word = 0;
        for (uint32_t k = 0; k < bitsPerWord; ++k) {
            word |= (state * leaps.factors[k] + leaps.increments[k]) >> (bitsPerWord - 1) << k;
        }
        words[i] = word;
        state = state * leaps.factors.back() + leaps.increments.back();
    }
    return state;
}

// Answers the state after the last bit.
uint32_t randomWordsPlain(uint32_t state, uint32_t* words, uint32_t count) {
    return randomWordsInline(state, words, count);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] uint32_t randomWordsInWideLanes(uint32_t state, uint32_t* words,
                                                        uint32_t count) {
    return randomWordsInline(state, words, count);
}
uint32_t randomWords(uint32_t state, uint32_t* words, uint32_t count) {
    return platform::hasWideInstructions() ? randomWordsInWideLanes(state, words, count)
                                           : randomWordsPlain(state, words, count);
}
#else
uint32_t randomWords(uint32_t state, uint32_t* words, uint32_t count) {
    return randomWordsPlain(state, words, count);
}
#endif

} // namespace

class ArrayBitConstant : public weft::Node {
public:
    ArrayBitConstant(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayBitConstant">();
        describe("This node returns a constant bit array.");
        bit_ = addInput<BitArrayAttribute>("bit", "The value of every element.");
        size_ = addInput<NumericAttribute>("size", "The number of elements of the output array.");
        array_ = addOutput<BitArrayAttribute>("array", "The array of equal elements.");
        bit_->setElementCountRule(1);
        size_->setElementCountRule(1);
        setAttributeAllowedSpecialization(size_, "Integer");
        setDefault(*size_, 1);
        setAttributeAffectedByAllInputs(array_);
    }

    void update(Attribute*) override {
        bit_->pull();
        size_->pull();
        const int32_t size = size_->numeric().value<int32_t>();
        if (size < 0) {
            pushError(negativeSize);
            return;
        }
        BitArrayValue* target = array_->bitsTarget();
        if (!target) return;
        fill(*target, static_cast<uint32_t>(size), bit_->lastBit());
        array_->valueChanged();
        setAttributeIsClean(array_, true);
    }

private:
    BitArrayAttribute* bit_;
    NumericAttribute* size_;
    BitArrayAttribute* array_;
};

class ArrayBitSetAll : public weft::Node {
public:
    ArrayBitSetAll(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayBitSetAll">();
        describe("This node sets all elements of the input 'array' to the given input 'value'.");
        array_ = addInput<BitArrayAttribute>("array", "The array to set the elements of.");
        value_ = addInput<BitArrayAttribute>("value", "The new value of every element.");
        outArray_ = addOutput<BitArrayAttribute>("out array", "The array with its new values.");
        value_->setElementCountRule(1);
        setAttributeAffectedByAllInputs(outArray_);
        addAttributeAllowedPassThrough(array_, outArray_);
    }

    void update(Attribute*) override {
        array_->pull();
        value_->pull();
        BitArrayValue* target = outArray_->bitsTarget();
        if (!target) return;
        const bool value = value_->lastBit();
        fill(*target, array_->bits().size(), value);
        outArray_->valueChanged();
        setAttributeIsClean(outArray_, true);
    }

private:
    BitArrayAttribute* array_;
    BitArrayAttribute* value_;
    BitArrayAttribute* outArray_;
};

class ArrayBitResize : public weft::Node {
public:
    ArrayBitResize(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayBitResize">();
        describe("This node resizes the input 'array'. If the new size is bigger than the original "
                 "array-size, the last array-value is used to fill up the array.");
        array_ = addInput<BitArrayAttribute>("array", "The array to resize.");
        size_ = addInput<NumericAttribute>("size", "The number of elements of the output array.");
        outArray_ = addOutput<BitArrayAttribute>("out array", "The resized array.");
        size_->setElementCountRule(1);
        setAttributeAllowedSpecialization(size_, "Integer");
        setDefault(*size_, 1);
        setAttributeAffectedByAllInputs(outArray_);
        addAttributeAllowedPassThrough(array_, outArray_);
    }

    void update(Attribute*) override {
        array_->pull();
        size_->pull();
        const int32_t size = size_->numeric().value<int32_t>();
        if (size < 0) {
            pushError(negativeSize);
            return;
        }
        BitArrayValue* target = outArray_->bitsTarget();
        if (!target) return;
        resizeCopy(array_->bits(), static_cast<uint32_t>(size), array_->lastBit(), *target);
        outArray_->valueChanged();
        setAttributeIsClean(outArray_, true);
    }

private:
    BitArrayAttribute* array_;
    NumericAttribute* size_;
    BitArrayAttribute* outArray_;
};

class ArrayBitRandom : public weft::Node {
public:
    ArrayBitRandom(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayBitRandom">();
        describe("This node returns a random bit array of the size specified by the 'size' input.");
        size_ = addInput<NumericAttribute>("size", "The number of elements of the output array.");
        seed_ = addInput<NumericAttribute>(
            "seed", "Where the random sequence starts. The same seed gives the same array.");
        array_ = addOutput<BitArrayAttribute>("array", "The random bits.");
        size_->setElementCountRule(1);
        seed_->setElementCountRule(1);
        setAttributeAllowedSpecialization(size_, "Integer");
        setAttributeAllowedSpecialization(seed_, "Integer");
        setDefault(*size_, 1);
        setAttributeAffectedByAllInputs(array_);
    }

    void update(Attribute*) override {
        size_->pull();
        seed_->pull();
        const int32_t size = size_->numeric().value<int32_t>();
        if (size < 0) {
            pushError(negativeSize);
            return;
        }
        BitArrayValue* target = array_->bitsTarget();
        if (!target) return;
        target->resize(static_cast<uint32_t>(size), false);
        const UnfinishedOutput unfinished(target, {});
        uint32_t* const words = target->wordData();
        uint32_t state = RandomSteps(seed_->numeric().value<int32_t>()).state();
        WorkMeter meter(*networkManager());
        inPieces(wordsFor(target->size()), meter, [&](uint32_t first, uint32_t end) {
            state = randomWords(state, words + first, end - first);
        });
        array_->valueChanged();
        setAttributeIsClean(array_, true);
    }

private:
    NumericAttribute* size_;
    NumericAttribute* seed_;
    BitArrayAttribute* array_;
};

SLUICE_DEFINE_NODE(ArrayBitConstant)
SLUICE_DEFINE_NODE(ArrayBitSetAll)
SLUICE_DEFINE_NODE(ArrayBitResize)
SLUICE_DEFINE_NODE(ArrayBitRandom)

} // namespace tidemark::sluice::graph

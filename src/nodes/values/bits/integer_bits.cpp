// SPDX-License-Identifier: Apache-2.0
// Single bits of integers: reading and writing them, element by element. Indices count from the
// least significant bit and wrap at the integer's width.
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
using weft::NumericType;

namespace {

template <typename T>
constexpr uint32_t shiftMask = sizeof(T) * 8 - 1;

template <typename T>
bool bitOf(T integer, int32_t index) {
    const auto shift = static_cast<uint32_t>(index) & shiftMask<T>;
    return (static_cast<std::make_unsigned_t<T>>(integer) >> shift & 1) != 0;
}

template <typename T>
T withBit(T integer, int32_t index, bool bit) {
    using Unsigned = std::make_unsigned_t<T>;
    const Unsigned mask = Unsigned(1) << (static_cast<uint32_t>(index) & shiftMask<T>);
    const auto bits = static_cast<Unsigned>(integer);
    return static_cast<T>(bit ? bits | mask : bits & ~mask);
}

} // namespace

// What reading and writing have in common: the two first pins, types and sizes.
class IntegerBitBase : public weft::Node {
protected:
    IntegerBitBase(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        integer_ = addInput<NumericAttribute>("integer", "The integers to work on.");
        bitIndex_ = addInput<NumericAttribute>(
            "bit index", "The positions of the bits, counted from the least significant one. If "
                         "there are fewer positions than integers, the last one is repeated.");
        setAttributeAllowedSpecializations(integer_, {"Integer", "Integer64"});
        setAttributeAllowedSpecialization(bitIndex_, "Integer");
        setDefault(*integer_, 0);
    }

    void pullBoth() {
        integer_->pull();
        bitIndex_->pull();
    }

    NumericAttribute& integer() const { return *integer_; }
    const Numeric& integers() const { return integer_->numeric(); }
    const Numeric& indices() const { return bitIndex_->numeric(); }
    bool isWide() const { return selectorOf(*integer_) == NumericType::integer64; }

    void warnIfLonger(const Attribute& input, uint32_t size) {
        if (size <= integers().size()) return;
        pushWarning(text::format("size of attribute '%s' is different than size of '%s' (%d, %d)."
                                 "%s",
                                 input.name().c_str(), integer_->name().c_str(),
                                 static_cast<int>(size), static_cast<int>(integers().size()),
                                 " Extra elements will be ignored"));
    }
    void warnIfIndicesLonger() { warnIfLonger(*bitIndex_, indices().size()); }

private:
    NumericAttribute* integer_;
    NumericAttribute* bitIndex_;
};

class IntegerBitValue : public IntegerBitBase {
public:
    IntegerBitValue(NetworkManager* manager, const TM_String& name, Node* parent)
        : IntegerBitBase(manager, name, parent) {
        appendClass<"IntegerBitValue">();
        describe("This node returns the value of the bit at position 'index' of the binary "
                 "representation of the input 'integer'.");
        bit_ = addOutput<BitArrayAttribute>("bit", "The value of the bit, one for each integer.");
        setAttributeAffectedByAllInputs(bit_);
    }

    void update(Attribute*) override {
        pullBoth();
        if (!checkSpecialization(&integer())) return;
        warnIfIndicesLonger();
        BitArrayValue* target = bit_->bitsTarget();
        if (!target) return;
        if (isWide()) {
            read<int64_t>(*target);
        } else {
            read<int32_t>(*target);
        }
        bit_->valueChanged();
        setAttributeIsClean(bit_, true);
    }

private:
    template <typename T>
    void read(BitArrayValue& target) {
        const Elements<T> numbers(integers());
        const Elements<int32_t> positions(indices());
        target.resize(numbers.size(), false);
        const UnfinishedOutput unfinished(&target, {});
        uint32_t* const words = target.wordData();
        WorkMeter meter(*networkManager());
        for (uint32_t w = 0; w < wordsFor(numbers.size()); ++w) {
            const uint32_t first = w * bitsPerWord;
            const uint32_t count = std::min(bitsPerWord, numbers.size() - first);
            uint32_t word = 0;
            for (uint32_t k = 0; k < count; ++k) {
                word |= uint32_t(bitOf(numbers[first + k], positions[first + k])) << k;
            }
            words[w] = word;
            meter.add(count);
        }
    }

    BitArrayAttribute* bit_;
};

class IntegerSetBitValue : public IntegerBitBase {
public:
    IntegerSetBitValue(NetworkManager* manager, const TM_String& name, Node* parent)
        : IntegerBitBase(manager, name, parent) {
        appendClass<"IntegerSetBitValue">();
        describe("This node returns the input 'integer' value with its bit at position 'bit index' "
                 "modified according to 'bit value'.");
        bitValue_ = addInput<BitArrayAttribute>(
            "bit value", "The new values of the bits. If there are fewer values than integers, the "
                         "last one is repeated.");
        result_ = addOutput<NumericAttribute>("result", "The changed integers.");
        bitValue_->ownBits().setBit(0, true);
        setAttributeAllowedSpecializations(result_, {"Integer", "Integer64"});
        addAttributeSpecializationLink(&integer(), result_);
        setAttributeAffectedByAllInputs(result_);
    }

    void update(Attribute*) override {
        pullBoth();
        bitValue_->pull();
        if (!checkSpecialization(&integer())) return;
        warnIfIndicesLonger();
        warnIfLonger(*bitValue_, bitValue_->bits().size());
        Numeric* target = result_->numericTarget();
        if (!target) return;
        if (isWide()) {
            write<int64_t>(*target);
        } else {
            write<int32_t>(*target);
        }
        result_->valueChanged();
        setAttributeIsClean(result_, true);
    }

private:
    template <typename T>
    void write(Numeric& target) {
        // Written last: the result may be one of the inputs.
        const Elements<T> numbers(integers());
        const Elements<int32_t> positions(indices());
        const BitArrayValue& values = bitValue_->bits();
        Array<T> changed;
        changed.resizeForOverwrite(numbers.size());
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < numbers.size(); ++i) {
            changed[i] = withBit(numbers[i], positions[i], values.valueAt(i));
            meter.add(0);
        }
        Array<T>& result = target.refValues<T>();
        if (result.isPinned()) {
            result = changed;
        } else {
            result = std::move(changed);
        }
        target.updateSize();
    }

    BitArrayAttribute* bitValue_;
    NumericAttribute* result_;
};

SLUICE_DEFINE_NODE(IntegerBitValue)
SLUICE_DEFINE_NODE(IntegerSetBitValue)

} // namespace tidemark::sluice::graph

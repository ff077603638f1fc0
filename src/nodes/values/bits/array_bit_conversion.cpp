// SPDX-License-Identifier: Apache-2.0
// Bit arrays as texts of digits and as integers, and back.
#include <new>

#include "core/string_value.h"
#include "graph/define_node.h"
#include "nodes/values/bits/bit_words.h"
#include "nodes/values/strings/string_tools.h"
#include "nodes/values/unfinished_output.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::BitArrayValue;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::NumericType;
using weft::PassThroughAttribute;
using weft::StringAttribute;
using weft::StringValue;

class ArrayBitToString : public weft::Node {
public:
    ArrayBitToString(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayBitToString">();
        describe("This node returns a string version of the input bit array in a form similar "
                 "like: \"01001011\".");
        array_ = addInput<BitArrayAttribute>("array", "The bit array to write.");
        first_ = addInput<NumericAttribute>(
            "first", "The position of the element that will be the first of the string. A negative "
                     "value counts as 0.");
        size_ = addInput<NumericAttribute>(
            "size", "The total number of elements to write. If value is negative, all the elements "
                    "from 'first' are written.");
        string_ = addOutput<StringAttribute>("string", "One character, '1' or '0', per element.");
        through_ = addOutput<PassThroughAttribute>("through", "The input bit array.");
        first_->setElementCountRule(1);
        size_->setElementCountRule(1);
        setAttributeAllowedSpecialization(first_, "Integer");
        setAttributeAllowedSpecialization(size_, "Integer");
        setDefault(*size_, -1);
        setAttributeAffectAllOutputsByAllInputs();
        connectInternalAttributes(array_, through_);
    }

    void update(Attribute* attribute) override {
        array_->pull();
        first_->pull();
        size_->pull();
        if (attribute != string_) return;
        const BitArrayValue& bits = array_->bits();
        const int64_t count = bits.size();
        const int64_t first = std::max(first_->numeric().value<int32_t>(), 0);
        const int64_t wanted = size_->numeric().value<int32_t>();
        const int64_t size = wanted < 0 ? count - first : wanted;
        if (first >= count) return reportOutOfRange(*first_, first);
        if (first + size > count) return reportOutOfRange(*size_, size);
        StringValue* target = string_->stringsTarget();
        if (!target) return;
        checkTextLength(static_cast<uint64_t>(size));
        const UnfinishedOutput unfinished(target, {});
        target->setSize(1);
        TM_String& digits = target->refValues()[0];
        digits.resize(static_cast<std::size_t>(size));
        WorkMeter meter(*networkManager());
        writeDigits(bits.words().data(), static_cast<uint32_t>(first), static_cast<uint32_t>(size),
                    digits.data(), meter);
        string_->valueChanged();
        setAttributeIsClean(string_, true);
    }

private:
    void reportOutOfRange(const NumericAttribute& input, int64_t value) {
        pushError(text::format("Input '%s' is out of range: %d", input.name().c_str(),
                               static_cast<int>(value)));
    }

    BitArrayAttribute* array_;
    NumericAttribute* first_;
    NumericAttribute* size_;
    StringAttribute* string_;
    PassThroughAttribute* through_;
};

class ArrayBitFromString : public weft::Node {
public:
    ArrayBitFromString(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayBitFromString">();
        describe("This node returns a bit array using the input string characters as a reference.");
        string_ = addInput<StringAttribute>(
            "string", "The characters, one for each bit: '0' gives 0, any other gives 1.");
        bitArray_ = addOutput<BitArrayAttribute>("bit array", "The bits.");
        string_->setElementCountRule(1);
        setAttributeAffectedByAllInputs(bitArray_);
    }

    void update(Attribute*) override {
        string_->pull();
        BitArrayValue* target = bitArray_->bitsTarget();
        if (!target) return;
        const TM_String& digits = string_->firstString();
        if (digits.size() > std::numeric_limits<int32_t>::max()) throw std::bad_alloc();
        target->resize(static_cast<uint32_t>(digits.size()), false);
        const UnfinishedOutput unfinished(target, {});
        WorkMeter meter(*networkManager());
        readDigits(digits.data(), target->size(), target->wordData(), meter);
        bitArray_->valueChanged();
        setAttributeIsClean(bitArray_, true);
    }

private:
    StringAttribute* string_;
    BitArrayAttribute* bitArray_;
};

class IntegerToArrayBit : public weft::Node {
public:
    IntegerToArrayBit(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"IntegerToArrayBit">();
        describe("This node returns the binary representation of the input integer value.");
        integer_ = addInput<NumericAttribute>("integer", "The integer to take the bits of.");
        bit_ = addOutput<BitArrayAttribute>(
            "bit", "The 32 or 64 bits of the integer, the most significant one first.");
        integer_->setElementCountRule(1);
        setAttributeAllowedSpecializations(integer_, {"Integer", "Integer64"});
        setDefault(*integer_, 0);
        setAttributeAffectedByAllInputs(bit_);
    }

    void update(Attribute*) override {
        integer_->pull();
        if (!checkSpecialization(integer_)) return;
        BitArrayValue* target = bit_->bitsTarget();
        if (!target) return;
        const Numeric& integer = integer_->numeric();
        if (selectorOf(*integer_) == NumericType::integer64) {
            const uint64_t turned = reversed(static_cast<uint64_t>(integer.value<int64_t>()));
            target->resize(2 * bitsPerWord, false);
            target->wordData()[0] = static_cast<uint32_t>(turned);
            target->wordData()[1] = static_cast<uint32_t>(turned >> bitsPerWord);
        } else {
            target->resize(bitsPerWord, false);
            target->wordData()[0] = reversed(static_cast<uint32_t>(integer.value<int32_t>()));
        }
        bit_->valueChanged();
        setAttributeIsClean(bit_, true);
    }

private:
    NumericAttribute* integer_;
    BitArrayAttribute* bit_;
};

// What the two nodes that read an integer of `width` bits do.
class ArrayBitToIntegerBase : public weft::Node {
protected:
    ArrayBitToIntegerBase(NetworkManager* manager, const TM_String& name, Node* parent,
                          uint32_t width, const char* out, const char* type)
        : Node(manager, name, parent), width_(width) {
        bit_ = addInput<BitArrayAttribute>(
            "bit", "The bits of the integer, the most significant one first.");
        out_ = addOutput<NumericAttribute>(out, "The integer that the bits represent.");
        setAttributeAllowedSpecialization(out_, type);
        setAttributeAffectedByAllInputs(out_);
    }

    template <typename T>
    void write(T number) {
        Numeric* target = out_->numericTarget();
        if (!target) return;
        target->setValue(number);
        out_->valueChanged();
        setAttributeIsClean(out_, true);
    }

    // The first elements as a number; warns when there are more than it can take.
    uint64_t pulledNumber() {
        bit_->pull();
        const BitArrayValue& bits = bit_->bits();
        if (bits.size() > width_) {
            pushWarning(text::format("Input size is bigger than %d (%d). Leftmost extra bits will "
                                     "be ignored.",
                                     static_cast<int>(width_), static_cast<int>(bits.size())));
        }
        const uint32_t count = std::min(bits.size(), width_);
        if (count == 0) return 0;
        const uint64_t low = bits.words()[0];
        const uint64_t high = count > bitsPerWord ? bits.words()[1] : 0;
        return reversed(low | high << bitsPerWord) >> (2 * bitsPerWord - count);
    }

private:
    BitArrayAttribute* bit_;
    NumericAttribute* out_;
    uint32_t width_;
};

class ArrayBitToInteger : public ArrayBitToIntegerBase {
public:
    ArrayBitToInteger(NetworkManager* manager, const TM_String& name, Node* parent)
        : ArrayBitToIntegerBase(manager, name, parent, 32, "integer", "Integer") {
        appendClass<"ArrayBitToInteger">();
        describe("This node converts the binary representation of the input into a 32 bit integer "
                 "value. If the input bit array is smaller than 32 bit, the rest of the left bits "
                 "are treated as 0.");
    }

    void update(Attribute*) override {
        write(static_cast<int32_t>(static_cast<uint32_t>(pulledNumber())));
    }
};

class ArrayBitToInteger64 : public ArrayBitToIntegerBase {
public:
    ArrayBitToInteger64(NetworkManager* manager, const TM_String& name, Node* parent)
        : ArrayBitToIntegerBase(manager, name, parent, 64, "integer64", "Integer64") {
        appendClass<"ArrayBitToInteger64">();
        describe("This node converts the binary representation of the input into a 64 bit integer "
                 "value. If the input bit array is smaller than 64 bit, the rest of the left bits "
                 "are treated as 0.");
    }

    void update(Attribute*) override { write(static_cast<int64_t>(pulledNumber())); }
};

SLUICE_DEFINE_NODE(ArrayBitToString)
SLUICE_DEFINE_NODE(ArrayBitFromString)
SLUICE_DEFINE_NODE(ArrayBitToInteger)
SLUICE_DEFINE_NODE(ArrayBitToInteger64)
SLUICE_DEFINE_NODE(IntegerToArrayBit)

} // namespace tidemark::sluice::graph

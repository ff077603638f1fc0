// SPDX-License-Identifier: Apache-2.0
// What there is to know about a bit array: counts, first and last positions, all and any.
#include "graph/define_node.h"
#include "nodes/values/bits/bit_words.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::BitArrayValue;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::PassThroughAttribute;

namespace {

// The questions, each with its answer as an element of an output.

int32_t sizeOf(const BitArrayValue& bits) { return asInteger(bits.size()); }
int32_t countTrue(const BitArrayValue& bits) { return asInteger(bits.count()); }
int32_t countFalse(const BitArrayValue& bits) { return asInteger(bits.countFalse()); }
int32_t firstTrue(const BitArrayValue& bits) { return asInteger(bits.firstTrue()); }
int32_t firstFalse(const BitArrayValue& bits) { return asInteger(bits.firstFalse()); }
int32_t lastTrue(const BitArrayValue& bits) { return asInteger(bits.lastTrue()); }
int32_t lastFalse(const BitArrayValue& bits) { return asInteger(bits.lastFalse()); }
bool anyTrue(const BitArrayValue& bits) { return bits.any(); }
bool anyFalse(const BitArrayValue& bits) { return bits.firstFalse() >= 0; }
bool allTrue(const BitArrayValue& bits) { return !anyFalse(bits); }
bool allFalse(const BitArrayValue& bits) { return bits.none(); }

using NumberQuestion = int32_t (*)(const BitArrayValue&);
using BitQuestion = bool (*)(const BitArrayValue&);

void answer(const NumericAttribute& out, int32_t number) {
    if (Numeric* target = out.numericTarget()) target->setValue(number);
}

void answer(const BitArrayAttribute& out, bool bit) {
    BitArrayValue* target = out.bitsTarget();
    if (!target) return;
    target->resize(1, false);
    target->setBit(0, bit);
}

} // namespace

class ArrayBitInfo : public weft::Node {
public:
    ArrayBitInfo(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayBitInfo">();
        describe("Returns several information about the input bit array.");
        in_ = addInput<BitArrayAttribute>("in", "The bit array to examine.");
        addNumber(size_, "size", "The number of elements.");
        addBit(allTrue_, "all true", "True if no element is 0.");
        addBit(allFalse_, "all false", "True if no element is 1.");
        addBit(anyTrue_, "any true", "True if at least one element is 1.");
        addBit(anyFalse_, "any false", "True if at least one element is 0.");
        addNumber(countTrue_, "count true", "The number of elements set to 1.");
        addNumber(countFalse_, "count false", "The number of elements set to 0.");
        addNumber(firstTrue_, "first true", "The position of the first 1, or -1.");
        addNumber(firstFalse_, "first false", "The position of the first 0, or -1.");
        addNumber(lastTrue_, "last true", "The position of the last 1, or -1.");
        addNumber(lastFalse_, "last false", "The position of the last 0, or -1.");
        addBit(negated_, "negated", "The array with all its elements inverted.");
        through_ = addOutput<PassThroughAttribute>("through", "The input bit array.");
        setAttributeAffectsAllOutputs(in_);
        connectInternalAttributes(in_, through_);
    }

    void update(Attribute* attribute) override {
        in_->pull();
        const BitArrayValue& bits = in_->bits();
        if (attribute == size_) answer(*size_, sizeOf(bits));
        if (attribute == allTrue_) answer(*allTrue_, allTrue(bits));
        if (attribute == allFalse_) answer(*allFalse_, allFalse(bits));
        if (attribute == anyTrue_) answer(*anyTrue_, anyTrue(bits));
        if (attribute == anyFalse_) answer(*anyFalse_, anyFalse(bits));
        if (attribute == countTrue_) answer(*countTrue_, countTrue(bits));
        if (attribute == countFalse_) answer(*countFalse_, countFalse(bits));
        if (attribute == firstTrue_) answer(*firstTrue_, firstTrue(bits));
        if (attribute == firstFalse_) answer(*firstFalse_, firstFalse(bits));
        if (attribute == lastTrue_) answer(*lastTrue_, lastTrue(bits));
        if (attribute == lastFalse_) answer(*lastFalse_, lastFalse(bits));
        if (attribute == negated_) negate(bits);
        attribute->valueChanged();
    }

private:
    void addNumber(NumericAttribute*& pin, const char* name, const char* help) {
        pin = addOutput<NumericAttribute>(name, help);
        setAttributeAllowedSpecialization(pin, "Integer");
    }

    void addBit(BitArrayAttribute*& pin, const char* name, const char* help) {
        pin = addOutput<BitArrayAttribute>(name, help);
    }

    void negate(const BitArrayValue& bits) {
        BitArrayValue* target = negated_->bitsTarget();
        if (!target) return;
        WorkMeter meter(*networkManager());
        invertBits(bits, *target, meter);
    }

    BitArrayAttribute* in_;
    NumericAttribute* size_;
    BitArrayAttribute* allTrue_;
    BitArrayAttribute* allFalse_;
    BitArrayAttribute* anyTrue_;
    BitArrayAttribute* anyFalse_;
    NumericAttribute* countTrue_;
    NumericAttribute* countFalse_;
    NumericAttribute* firstTrue_;
    NumericAttribute* firstFalse_;
    NumericAttribute* lastTrue_;
    NumericAttribute* lastFalse_;
    BitArrayAttribute* negated_;
    PassThroughAttribute* through_;
};

// One input, one question, one output.

class BitNumberNode : public weft::Node {
public:
    void update(Attribute*) override {
        in_->pull();
        answer(*out_, question_(in_->bits()));
        out_->valueChanged();
    }

protected:
    BitNumberNode(NetworkManager* manager, const TM_String& name, Node* parent,
                  NumberQuestion question, const char* out, const char* help)
        : Node(manager, name, parent), question_(question) {
        in_ = addInput<BitArrayAttribute>("in", "The bit array to examine.");
        out_ = addOutput<NumericAttribute>(out, help);
        setAttributeAllowedSpecialization(out_, "Integer");
        setAttributeAffectedByAllInputs(out_);
    }

private:
    BitArrayAttribute* in_;
    NumericAttribute* out_;
    NumberQuestion question_;
};

class BitBooleanNode : public weft::Node {
public:
    void update(Attribute*) override {
        in_->pull();
        answer(*out_, question_(in_->bits()));
        out_->valueChanged();
    }

protected:
    BitBooleanNode(NetworkManager* manager, const TM_String& name, Node* parent,
                   BitQuestion question, const char* out, const char* help)
        : Node(manager, name, parent), question_(question) {
        in_ = addInput<BitArrayAttribute>("in", "The bit array to examine.");
        out_ = addOutput<BitArrayAttribute>(out, help);
        setAttributeAffectedByAllInputs(out_);
    }

private:
    BitArrayAttribute* in_;
    BitArrayAttribute* out_;
    BitQuestion question_;
};

// One row per type: class, base, question, name and help of the output, description.
#define SLUICE_QUESTION_NODE(Class, Base, question, out, help, description)                        \
    class Class : public Base {                                                                    \
    public:                                                                                        \
        Class(NetworkManager* manager, const TM_String& name, Node* parent)                        \
            : Base(manager, name, parent, question, out, help) {                                   \
            appendClass<#Class>();                                                                 \
            describe(description);                                                                 \
        }                                                                                          \
    };                                                                                             \
    SLUICE_DEFINE_NODE(Class)

SLUICE_QUESTION_NODE(ArrayBitCountTrue, BitNumberNode, countTrue, "count",
                     "The number of bits set to 1.",
                     "This node returns the number of bits set to 1 in the input bit array.")
SLUICE_QUESTION_NODE(ArrayBitCountFalse, BitNumberNode, countFalse, "count",
                     "The number of bits set to 0.",
                     "This node returns the number of bits set to 0 in the input bit array.")
SLUICE_QUESTION_NODE(
    ArrayBitFirstTrue, BitNumberNode, firstTrue, "first", "The position of the first 1, or -1.",
    "This node returns the position of the first bit set to 1 in the input bit array or -1 if all "
    "bits are false.")
SLUICE_QUESTION_NODE(
    ArrayBitFirstFalse, BitNumberNode, firstFalse, "first", "The position of the first 0, or -1.",
    "This node returns the position of the first bit set to 0 in the input bit array or -1 if all "
    "bits are true.")
SLUICE_QUESTION_NODE(
    ArrayBitLastTrue, BitNumberNode, lastTrue, "last", "The position of the last 1, or -1.",
    "This node returns the position of the last bit set to 1 in the input bit array or -1 if all "
    "bits are false.")
SLUICE_QUESTION_NODE(
    ArrayBitLastFalse, BitNumberNode, lastFalse, "last", "The position of the last 0, or -1.",
    "This node returns the position of the last bit set to 0 in the input bit array or -1 if all "
    "bits are true.")
SLUICE_QUESTION_NODE(
    ArrayBitAnyTrue, BitBooleanNode, anyTrue, "any", "True if at least one bit is 1.",
    "This node returns true if the input contains at least one bit equal to 1. False otherwise.")
SLUICE_QUESTION_NODE(
    ArrayBitAnyFalse, BitBooleanNode, anyFalse, "any", "True if at least one bit is 0.",
    "This node returns true if the input contains at least one bit equal to 0. False otherwise.")
// The descriptions of these two are known to users as they stand, each with the other's value.
SLUICE_QUESTION_NODE(ArrayBitAllTrue, BitBooleanNode, allTrue, "all", "True if no bit is 0.",
                     "This node returns true if all the input bits are set to 0. False otherwise.")
SLUICE_QUESTION_NODE(ArrayBitAllFalse, BitBooleanNode, allFalse, "all", "True if no bit is 1.",
                     "This node returns true if all the input bits are set to 1. False otherwise.")

#undef SLUICE_QUESTION_NODE

SLUICE_DEFINE_NODE(ArrayBitInfo)

} // namespace tidemark::sluice::graph

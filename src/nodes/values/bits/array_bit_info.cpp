// SPDX-License-Identifier: Apache-2.0
// What there is to know about a bit array: counts, first and last positions, all and any.
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
        if (attribute == through_) return;
        attribute->valueChanged();
        setAttributeIsClean(attribute, true);
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
        const UnfinishedOutput unfinished(target, {&bits});
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
class BitQuestionNode : public weft::Node {
public:
    void update(Attribute* attribute) override {
        in_->pull();
        if (number_) answer(*number_, askNumber_(in_->bits()));
        if (bit_) answer(*bit_, askBit_(in_->bits()));
        attribute->valueChanged();
        setAttributeIsClean(attribute, true);
    }

protected:
    BitQuestionNode(NetworkManager* manager, const TM_String& name, Node* parent,
                    NumberQuestion question, const char* out, const char* help)
        : BitQuestionNode(manager, name, parent) {
        askNumber_ = question;
        number_ = addOutput<NumericAttribute>(out, help);
        setAttributeAllowedSpecialization(number_, "Integer");
        setAttributeAffectedByAllInputs(number_);
    }
    BitQuestionNode(NetworkManager* manager, const TM_String& name, Node* parent,
                    BitQuestion question, const char* out, const char* help)
        : BitQuestionNode(manager, name, parent) {
        askBit_ = question;
        bit_ = addOutput<BitArrayAttribute>(out, help);
        setAttributeAffectedByAllInputs(bit_);
    }

private:
    BitQuestionNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        in_ = addInput<BitArrayAttribute>("in", "The bit array to examine.");
    }

    BitArrayAttribute* in_;
    // One of the two outputs, with its question.
    NumericAttribute* number_ = nullptr;
    BitArrayAttribute* bit_ = nullptr;
    NumberQuestion askNumber_ = nullptr;
    BitQuestion askBit_ = nullptr;
};

// One row per type: class, question, name and help of the output, description.
#define SLUICE_QUESTION_NODE(Class, question, out, help, description)                              \
    class Class : public BitQuestionNode {                                                         \
    public:                                                                                        \
        Class(NetworkManager* manager, const TM_String& name, Node* parent)                        \
            : BitQuestionNode(manager, name, parent, question, out, help) {                        \
            appendClass<#Class>();                                                                 \
            describe(description);                                                                 \
        }                                                                                          \
    };                                                                                             \
    SLUICE_DEFINE_NODE(Class)

SLUICE_QUESTION_NODE(ArrayBitCountTrue, countTrue, "count", "The number of bits set to 1.",
                     "This node returns the number of bits set to 1 in the input bit array.")
SLUICE_QUESTION_NODE(ArrayBitCountFalse, countFalse, "count", "The number of bits set to 0.",
                     "This node returns the number of bits set to 0 in the input bit array.")
SLUICE_QUESTION_NODE(
    ArrayBitFirstTrue, firstTrue, "first", "The position of the first 1, or -1.",
    "This node returns the position of the first bit set to 1 in the input bit array or -1 if all "
    "bits are false.")
SLUICE_QUESTION_NODE(
    ArrayBitFirstFalse, firstFalse, "first", "The position of the first 0, or -1.",
    "This node returns the position of the first bit set to 0 in the input bit array or -1 if all "
    "bits are true.")
SLUICE_QUESTION_NODE(
    ArrayBitLastTrue, lastTrue, "last", "The position of the last 1, or -1.",
    "This node returns the position of the last bit set to 1 in the input bit array or -1 if all "
    "bits are false.")
SLUICE_QUESTION_NODE(
    ArrayBitLastFalse, lastFalse, "last", "The position of the last 0, or -1.",
    "This node returns the position of the last bit set to 0 in the input bit array or -1 if all "
    "bits are true.")
SLUICE_QUESTION_NODE(
    ArrayBitAnyTrue, anyTrue, "any", "True if at least one bit is 1.",
    "This node returns true if the input contains at least one bit equal to 1. False otherwise.")
SLUICE_QUESTION_NODE(
    ArrayBitAnyFalse, anyFalse, "any", "True if at least one bit is 0.",
    "This node returns true if the input contains at least one bit equal to 0. False otherwise.")
// The descriptions of these two are known to users as they stand, each with the other's value.
SLUICE_QUESTION_NODE(ArrayBitAllTrue, allTrue, "all", "True if no bit is 0.",
                     "This node returns true if all the input bits are set to 0. False otherwise.")
SLUICE_QUESTION_NODE(ArrayBitAllFalse, allFalse, "all", "True if no bit is 1.",
                     "This node returns true if all the input bits are set to 1. False otherwise.")

#undef SLUICE_QUESTION_NODE

SLUICE_DEFINE_NODE(ArrayBitInfo)

} // namespace tidemark::sluice::graph

// SPDX-License-Identifier: Apache-2.0
// Logical operations between bit arrays, word by word.
#include <array>

#include "core/enum_value.h"
#include "graph/define_node.h"
#include "nodes/values/bits/bit_words.h"
#include "nodes/values/lanes.h"
#include "nodes/values/unfinished_output.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::BitArrayValue;
using weft::EnumAttribute;
using weft::NetworkManager;

namespace {

// The keys of the list "op".
enum class Logic : int32_t {
    conjunction = 0,
    disjunction = 1,
    negation = 2,
    exclusive = 3,
    nor = 4,
    xnor = 5,
    nand = 6,
    implication = 7,
    equal = 8,
};

// `result` may be one of the operands.
using Combine = void (*)(const uint32_t* a, const uint32_t* b, uint32_t* result, uint32_t count);

struct And {
    static uint32_t apply(uint32_t a, uint32_t b) { return a & b; }
};
struct Or {
    static uint32_t apply(uint32_t a, uint32_t b) { return a | b; }
};
struct Not {
    static uint32_t apply(uint32_t a, uint32_t) { return ~a; }
};
struct Xor {
    static uint32_t apply(uint32_t a, uint32_t b) { return a ^ b; }
};
struct Nor {
    static uint32_t apply(uint32_t a, uint32_t b) { return ~(a | b); }
};
struct Xnor {
    static uint32_t apply(uint32_t a, uint32_t b) { return ~(a ^ b); }
};
struct Nand {
    static uint32_t apply(uint32_t a, uint32_t b) { return ~(a & b); }
};
struct Implies {
    static uint32_t apply(uint32_t a, uint32_t b) { return ~a | b; }
};

template <typename Op>
void combineWords(const uint32_t* a, const uint32_t* b, uint32_t* result, uint32_t count) {
    mapLanes(
        result, count, [](uint32_t left, uint32_t right) { return Op::apply(left, right); }, a, b);
}

// Null for a key that is no operation.
Combine combinationFor(int32_t key) {
    switch (static_cast<Logic>(key)) {
    case Logic::conjunction:
        return combineWords<And>;
    case Logic::disjunction:
        return combineWords<Or>;
    case Logic::negation:
        return combineWords<Not>;
    case Logic::exclusive:
        return combineWords<Xor>;
    case Logic::nor:
        return combineWords<Nor>;
    case Logic::xnor:
    case Logic::equal:
        return combineWords<Xnor>;
    case Logic::nand:
        return combineWords<Nand>;
    case Logic::implication:
        return combineWords<Implies>;
    }
    return nullptr;
}

// An operand with its last element repeated as far as needed.
class RepeatingBits {
public:
    explicit RepeatingBits(const BitArrayValue& bits)
        : bits_(bits), size_(bits.size()), last_(bits.valueAt(size_) ? allOnes : 0) {
        repeated_.fill(last_);
    }

    // Calls `work(words, first, count)` for consecutive rows of `wordCount` words.
    template <typename Work>
    void forEachRow(uint32_t wordCount, Work work) const {
        const uint32_t whole = std::min(size_ / bitsPerWord, wordCount);
        const uint32_t* const words = bits_.words().data();
        if (whole > 0) work(words, 0, whole);
        uint32_t first = whole;
        if (first < wordCount && size_ % bitsPerWord != 0) {
            const uint32_t own = lowBits(size_ % bitsPerWord);
            const uint32_t mixed = (words[first] & own) | (last_ & ~own);
            work(&mixed, first, 1);
            ++first;
        }
        while (first < wordCount) {
            const uint32_t count = std::min<uint32_t>(repeated_.size(), wordCount - first);
            work(repeated_.data(), first, count);
            first += count;
        }
    }

private:
    const BitArrayValue& bits_;
    uint32_t size_;
    uint32_t last_;
    std::array<uint32_t, 256> repeated_;
};

void combine(Combine combination, const BitArrayValue& in0, const BitArrayValue& in1,
             BitArrayValue& target, WorkMeter& meter) {
    const uint32_t size = in0.size();
    // Where the result is "in1" itself, that is extended first, as the last element tells.
    target.resize(size, &target == &in1 && in1.valueAt(in1.size()));
    const RepeatingBits second(in1);
    second.forEachRow(wordsFor(size), [&](const uint32_t* b, uint32_t from, uint32_t length) {
        const uint32_t* const a = in0.words().data() + from;
        uint32_t* const result = target.wordData() + from;
        inPieces(length, meter, [&](uint32_t first, uint32_t end) {
            combination(a + first, b + first, result + first, end - first);
        });
    });
}

} // namespace

// Two operands and a result of the size of the first; the second is extended by its last element.
class BitBinaryOp : public weft::Node {
public:
    void update(Attribute*) override {
        in0_->pull();
        in1_->pull();
        pullOperation();
        BitArrayValue* target = result_->bitsTarget();
        if (!target) return;
        if (const Combine combination = combinationFor(operation())) {
            const UnfinishedOutput unfinished(target, {&in0_->bits(), &in1_->bits()});
            WorkMeter meter(*networkManager());
            combine(combination, in0_->bits(), in1_->bits(), *target, meter);
        } else {
            target->copyFrom(&in0_->bits());
            pushError("Unknown operation");
        }
        result_->valueChanged();
        setAttributeIsClean(result_, true);
    }

protected:
    BitBinaryOp(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        in0_ = addInput<BitArrayAttribute>("in0", "The first operand.");
        in1_ = addInput<BitArrayAttribute>("in1", "The second operand. If it is shorter than "
                                                  "'in0', its last element is repeated.");
    }

    void addResult() {
        result_ = addOutput<BitArrayAttribute>("result", "The outcome for each element of 'in0'.");
        setAttributeAffectedByAllInputs(result_);
    }

    virtual void pullOperation() {}
    // A key of `Logic`, or any other number.
    virtual int32_t operation() const = 0;

private:
    BitArrayAttribute* in0_;
    BitArrayAttribute* in1_;
    BitArrayAttribute* result_;
};

class BitOperation : public BitBinaryOp {
public:
    BitOperation(NetworkManager* manager, const TM_String& name, Node* parent)
        : BitBinaryOp(manager, name, parent) {
        appendClass<"BitOperation">();
        describe("This node computes a binary operation between the two input arrays.");
        op_ = addInput<EnumAttribute>("op", "The operation. 'negate' does not look at 'in1'.");
        op_->setOptions(
            {"and", "or", "negate", "xor", "nor", "xnor", "nand", "implication", "equal"});
        op_->setElementCountRule(1);
        addResult();
    }

protected:
    void pullOperation() override { op_->pull(); }
    int32_t operation() const override { return op_->enumValue(0); }

private:
    EnumAttribute* op_;
};

// One node per operation; `Class` is the type's name, `word` what its description calls it.
#define SLUICE_BIT_NODE(Class, logic, word)                                                        \
    class Class : public BitBinaryOp {                                                             \
    public:                                                                                        \
        Class(NetworkManager* manager, const TM_String& name, Node* parent)                        \
            : BitBinaryOp(manager, name, parent) {                                                 \
            appendClass<#Class>();                                                                 \
            describe("This node returns the " word " operation between the input bit arrays.");    \
            addResult();                                                                           \
        }                                                                                          \
                                                                                                   \
    protected:                                                                                     \
        int32_t operation() const override { return static_cast<int32_t>(Logic::logic); }          \
    };                                                                                             \
    SLUICE_DEFINE_NODE(Class)

SLUICE_BIT_NODE(BitAnd, conjunction, "AND")
SLUICE_BIT_NODE(BitOr, disjunction, "OR")
SLUICE_BIT_NODE(BitXor, exclusive, "XOR")
SLUICE_BIT_NODE(BitNor, nor, "NOR")
SLUICE_BIT_NODE(BitXnor, xnor, "XNOR")
SLUICE_BIT_NODE(BitNand, nand, "NAND")
SLUICE_BIT_NODE(BitImplication, implication, "IMPLICATION")
SLUICE_BIT_NODE(BitEqual, equal, "EQUAL")

#undef SLUICE_BIT_NODE

class BitNegate : public weft::Node {
public:
    BitNegate(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"BitNegate">();
        describe("This node inverts all the values of the input bit array");
        in_ = addInput<BitArrayAttribute>("in", "The array to invert.");
        result_ = addOutput<BitArrayAttribute>("result", "The inverted array.");
        setAttributeAffectedByAllInputs(result_);
    }

    void update(Attribute*) override {
        in_->pull();
        BitArrayValue* target = result_->bitsTarget();
        if (!target) return;
        const UnfinishedOutput unfinished(target, {&in_->bits()});
        WorkMeter meter(*networkManager());
        invertBits(in_->bits(), *target, meter);
        result_->valueChanged();
        setAttributeIsClean(result_, true);
    }

private:
    BitArrayAttribute* in_;
    BitArrayAttribute* result_;
};

SLUICE_DEFINE_NODE(BitOperation)
SLUICE_DEFINE_NODE(BitNegate)

} // namespace tidemark::sluice::graph

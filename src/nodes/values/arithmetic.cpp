// SPDX-License-Identifier: Apache-2.0
// Addition, subtraction, multiplication and division.
#include "nodes/values/arithmetic.h"

#include <array>

#include "graph/define_node.h"
#include "nodes/values/value_tools.h"

namespace weft {

using tidemark::sluice::graph::selectorOf;

namespace {

struct PairLists {
    SpecializationList in1;
    SpecializationList result;
};

// The names that occur in an allowed pair, in the order in which they are first seen.
PairLists filteredPairs(Arithmetic code, SpecializationList in1List,
                        SpecializationList resultList) {
    Array<TM_String> in1Names;
    Array<TM_String> resultNames;
    for (const TM_String& name : resultList.names()) {
        for (const NumericType type : allowedSecondTypes(code, numericTypeOf(name))) {
            const TM_String& second = nameOf(type);
            if (!in1List.contains(second)) continue;
            if (!in1Names.contains(second)) in1Names.append(second);
            if (!resultNames.contains(name)) resultNames.append(name);
        }
    }
    return {SpecializationList(in1Names), SpecializationList(resultNames)};
}

// Networks settle the same few lists over and over.
class PairMemory {
public:
    const PairLists& lists(Arithmetic code, SpecializationList in1, SpecializationList result) {
        for (uint32_t i = 0; i < used_; ++i) {
            const Entry& entry = entries_[i];
            if (entry.code == code && entry.in1 == in1 && entry.result == result) {
                return entry.lists;
            }
        }
        const uint32_t slot = used_ < entries_.size() ? used_++ : next_++ % entries_.size();
        entries_[slot] = {code, in1, result, filteredPairs(code, in1, result)};
        return entries_[slot].lists;
    }

private:
    struct Entry {
        Arithmetic code = Arithmetic::add;
        SpecializationList in1;
        SpecializationList result;
        PairLists lists;
    };
    std::array<Entry, 16> entries_;
    uint32_t used_ = 0;
    uint32_t next_ = 0;
};

} // namespace

ArithmeticNode::ArithmeticNode(NetworkManager* manager, const TM_String& name, Node* parent,
                               Arithmetic code)
    : Node(manager, name, parent), code_(code) {
    in0_ = addInput<NumericAttribute>("in0", "First operator");
    in1_ = addInput<NumericAttribute>("in1", "Second operator");
    result_ = addOutput<NumericAttribute>("result", "Operation result");
    setAttributeAffect(in0_, result_);
    setAttributeAffect(in1_, result_);
    addAttributeSpecializationLink(in0_, result_);
    addAttributeSpecializationLink(in1_, result_);
    addAttributeAllowedPassThrough(in0_, result_);
    addAttributeAllowedPassThrough(in1_, result_);
}

void ArithmeticNode::update(Attribute*) {
    if (!operation_) return;
    in0_->pull();
    in1_->pull();
    const Numeric* in0 = valueAs<Numeric>(in0_->currentValue());
    const Numeric* in1 = valueAs<Numeric>(in1_->currentValue());
    Numeric* result = result_->numericTarget();
    if (!in0 || !in1 || !result) return;
    const int64_t stopped = operation_(*in0, *in1, *result);
    if (stopped < 0) return;
    pushCritical("Division by zero",
                 tidemark::text::format("element %lld", static_cast<long long>(stopped)));
}

void ArithmeticNode::updateSpecializationLink(Attribute* first, Attribute* second,
                                              SpecializationList& firstList,
                                              SpecializationList& secondList) {
    if (first == in1_ && second == result_) return filterPairs(firstList, secondList);
    if (first == result_ && second == in1_) return filterPairs(secondList, firstList);
    Node::updateSpecializationLink(first, second, firstList, secondList);
}

void ArithmeticNode::filterPairs(SpecializationList& in1List,
                                 SpecializationList& resultList) const {
    thread_local PairMemory memory;
    const PairLists& lists = memory.lists(code_, in1List, resultList);
    in1List = lists.in1;
    resultList = lists.result;
}

void ArithmeticNode::attributeSpecializationChanged(Attribute*) {
    const NumericType type = selectorOf(*in0_);
    operation_ =
        type == NumericType::none ? nullptr : arithmeticKernel(code_, type, selectorOf(*in1_));
}

AddNode::AddNode(NetworkManager* manager, const TM_String& name, Node* parent)
    : ArithmeticNode(manager, name, parent, Arithmetic::add) {
    appendClass<"Add">();
    describe("Computes the addition of the two input values");
}

SubNode::SubNode(NetworkManager* manager, const TM_String& name, Node* parent)
    : ArithmeticNode(manager, name, parent, Arithmetic::sub) {
    appendClass<"Sub">();
    describe("Computes the substraction of the two input values");
}

MulNode::MulNode(NetworkManager* manager, const TM_String& name, Node* parent)
    : ArithmeticNode(manager, name, parent, Arithmetic::mul) {
    appendClass<"Mul">();
    describe("Computes the multiplication of the two input values");
}

DivNode::DivNode(NetworkManager* manager, const TM_String& name, Node* parent)
    : ArithmeticNode(manager, name, parent, Arithmetic::div) {
    appendClass<"Div">();
    describe("Computes the division of the two input values");
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::AddNode;
using weft::DivNode;
using weft::MulNode;
using weft::SubNode;

SLUICE_DEFINE_NODE(AddNode)
SLUICE_DEFINE_NODE(DivNode)
SLUICE_DEFINE_NODE(SubNode)
SLUICE_DEFINE_NODE(MulNode)

} // namespace tidemark::sluice::graph

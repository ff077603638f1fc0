// SPDX-License-Identifier: Apache-2.0
// Addition, subtraction, multiplication and division.
#include "nodes/values/arithmetic.h"

#include "graph/define_node.h"
#include "nodes/values/type_pairs.h"
#include "nodes/values/value_tools.h"

namespace weft {

using tidemark::sluice::graph::selectorOf;

namespace {

template <Arithmetic code>
std::span<const NumericType> secondTypes(NumericType first) {
    return allowedSecondTypes(code, first);
}

TypePairs pairsOf(Arithmetic code) {
    switch (code) {
    case Arithmetic::mul:
        return secondTypes<Arithmetic::mul>;
    case Arithmetic::div:
        return secondTypes<Arithmetic::div>;
    default:
        return secondTypes<Arithmetic::add>;
    }
}

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
    const TypePairs pairs = pairsOf(code_);
    if (first == in1_ && second == result_) return filterPairs(pairs, firstList, secondList);
    if (first == result_ && second == in1_) return filterPairs(pairs, secondList, firstList);
    Node::updateSpecializationLink(first, second, firstList, secondList);
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

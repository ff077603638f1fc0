// SPDX-License-Identifier: Apache-2.0
// Pins and update of the nodes that apply a formula.
#include "nodes/values/functions/function_node.h"

#include <cassert>

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::Numeric;
using weft::NumericAttribute;

NumericFunctionNode::NumericFunctionNode(weft::NetworkManager* manager, const TM_String& name,
                                         Node* parent, const weft::SpecializationList& types,
                                         std::initializer_list<Input> inputs,
                                         const char* resultHelp)
    : Node(manager, name, parent) {
    assert(inputs.size() <= mostInputs && "no formula has more operands");
    setThreadingModeHintByElement();
    std::size_t used = 0;
    for (const Input& input : inputs) {
        auto* pin = addInput<NumericAttribute>(input.name, input.help);
        setAttributeAllowedSpecializations(pin, types);
        setDefault(*pin, input.value);
        inputs_[used++] = pin;
    }
    result_ = addOutput<NumericAttribute>("result", resultHelp);
    setAttributeAllowedSpecializations(result_, types);
    setAttributeAffectedByAllInputs(result_);
    if (types.size() == 1) return;
    for (std::size_t i = 0; i < used; ++i) addAttributeSpecializationLink(inputs_[i], result_);
}

void NumericFunctionNode::setResultType(const char* type) {
    setAttributeAllowedSpecialization(result_, type);
}

void NumericFunctionNode::update(Attribute*) {
    Inputs in{};
    for (std::size_t i = 0; i < mostInputs && inputs_[i]; ++i) inputs_[i]->pull();
    for (std::size_t i = 0; i < mostInputs && inputs_[i]; ++i) {
        in[i] = &inputs_[i]->numeric();
        if (in[i]->type() != in[0]->type()) return;
    }
    Numeric* target = result_->numericTarget();
    const Routine routine = routineFor(in[0]->type());
    if (!target || !routine) return;
    routine(*this, in, *target);
    result_->valueChanged();
}

} // namespace tidemark::sluice::graph

// SPDX-License-Identifier: Apache-2.0
// Choosing one of two values.
#include "core/any_attribute.h"
#include "core/bit_array.h"
#include "graph/define_node.h"

namespace tidemark::sluice::graph {

using weft::AnyAttribute;
using weft::Attribute;
using weft::BitArrayAttribute;
using weft::NetworkManager;

class ConditionIf : public weft::Node {
public:
    ConditionIf(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ConditionIf">();
        describe("This node sets its output 'value' to the input 'true value' if the condition bit "
                 "is set to 'true'.\nOtherwise, the output is set to 'false'.");
        condition_ = addInput<BitArrayAttribute>("condition", "Which of the two values to take.");
        trueValue_ = addInput<AnyAttribute>("true value", "The value when the condition is true. "
                                                          "The output is of its type.");
        falseValue_ = addInput<AnyAttribute>("false value", "The value when the condition is "
                                                            "false.");
        value_ = addOutput<AnyAttribute>("value", "The value chosen, shared and not copied.");
        condition_->setElementCountRule(1);
        setAttributeAffectedByAllInputs(value_);
        addAttributeSpecializationLink(trueValue_, value_);
    }

    void update(Attribute*) override {
        condition_->pull();
        AnyAttribute* const chosen = condition_->firstBit() ? trueValue_ : falseValue_;
        chosen->pull();
        weft::Value* const value = chosen->currentValue();
        if (!value) pushCritical("Input is empty");
        value_->setValue(value);
        value_->valueChanged();
        setAttributeIsClean(value_, true);
    }

    void attributeConnectionChanged(Attribute* attribute) override {
        if (attribute != value_) followTrueValue();
    }

    void attributeSpecializationChanged(Attribute*) override { followTrueValue(); }

private:
    // Connections alone settle over the link: this is for a pin that was told to be less.
    void followTrueValue() {
        if (value_->allowedSpecializations() == trueValue_->allowedSpecializations()) return;
        value_->setAllowedSpecializations(trueValue_->allowedSpecializations());
        updateAttributeSpecialization(value_);
    }

    BitArrayAttribute* condition_ = nullptr;
    AnyAttribute* trueValue_ = nullptr;
    AnyAttribute* falseValue_ = nullptr;
    AnyAttribute* value_ = nullptr;
};

SLUICE_DEFINE_NODE(ConditionIf)

} // namespace tidemark::sluice::graph

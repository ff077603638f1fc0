// SPDX-License-Identifier: Apache-2.0
// Which elements of a value are null.
#include "core/any_attribute.h"
#include "core/bit_array.h"
#include "graph/define_node.h"

namespace tidemark::sluice::graph {

using weft::AnyAttribute;
using weft::Attribute;
using weft::BitArrayAttribute;
using weft::NetworkManager;

class IsNull : public weft::Node {
public:
    IsNull(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"IsNull">();
        describe("This node returns a mask with a bit set for every null element of the input.");
        value_ = addInput<AnyAttribute>("value", "The elements to look at.");
        mask_ = addOutput<BitArrayAttribute>("mask", "A bit for every element, set where it is "
                                                     "null; no bits without a value.");
        setAttributeAffect(value_, mask_);
    }

    void update(Attribute*) override {
        value_->pull();
        weft::BitArrayValue* target = mask_->bitsTarget();
        if (!target) return;
        if (const weft::Value* value = value_->currentValue()) {
            value->nullMask(*target);
        } else {
            target->resize(0, false);
        }
        mask_->valueChanged();
    }

private:
    AnyAttribute* value_;
    BitArrayAttribute* mask_;
};

SLUICE_DEFINE_NODE(IsNull)

} // namespace tidemark::sluice::graph

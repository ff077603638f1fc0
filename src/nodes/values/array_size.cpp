// SPDX-License-Identifier: Apache-2.0
// The element count of any value.
#include "core/any_attribute.h"
#include "core/numeric.h"
#include "graph/define_node.h"

namespace tidemark::sluice::graph {

using weft::AnyAttribute;
using weft::Attribute;
using weft::NetworkManager;
using weft::NumericAttribute;

class ArraySize : public weft::Node {
public:
    ArraySize(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArraySize">();
        describe("This node returns the size of the input 'array'.");
        array_ = addInput<AnyAttribute>("array", "The array to measure.");
        size_ = addOutput<NumericAttribute>("size", "The number of elements; 0 without an array.");
        setAttributeAllowedSpecialization(size_, "Integer");
        setAttributeAffect(array_, size_);
    }

    void update(Attribute*) override {
        array_->pull();
        weft::Numeric* target = size_->numericTarget();
        if (!target) return;
        const weft::Value* array = array_->currentValue();
        target->setValue(static_cast<int32_t>(array ? array->size() : 0));
        size_->valueChanged();
    }

private:
    AnyAttribute* array_;
    NumericAttribute* size_;
};

SLUICE_DEFINE_NODE(ArraySize)

} // namespace tidemark::sluice::graph

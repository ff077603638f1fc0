// SPDX-License-Identifier: Apache-2.0
// Which elements are zero, give or take a tolerance.
#include "graph/define_node.h"
#include "nodes/values/conditions/filtering.h"
#include "nodes/values/unfinished_output.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::NetworkManager;
using weft::NumericAttribute;
using weft::NumericType;

class ConditionIsZero : public weft::Node {
public:
    ConditionIsZero(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ConditionIsZero">();
        describe("Checks if the input elements are zero with respect to the input 'tolerance' "
                 "value.\nFor every input position equal to zero the output mask's bit is set to "
                 "1.");
        value_ = addInput<NumericAttribute>("value", "The value to check if is zero");
        tolerance_ = addInput<NumericAttribute>(
            "tolerance", "How far from zero every component may be. Element for element; the last "
                         "one repeats.");
        mask_ = addOutput<BitArrayAttribute>("mask", "A bit for every element, set where it is "
                                                     "zero.");
        setAttributeAllowedSpecializations(value_,
                                           {"Integer", "Real", "Vector3", "Color4", "Matrix4"});
        setAttributeAllowedSpecialization(tolerance_, "Real");
        setDefault(*tolerance_, equalityTolerance);
        setAttributeAffectedByAllInputs(mask_);
    }

    void update(Attribute*) override {
        if (!checkSpecialization(value_)) return;
        value_->pull();
        tolerance_->pull();
        switch (value_->numeric().type()) {
        case NumericType::integer:
            return test<int32_t>();
        case NumericType::real:
            return test<float>();
        case NumericType::vector3:
            return test<Vector3<float>>();
        case NumericType::color4:
            return test<Color4<float>>();
        case NumericType::matrix4:
            return test<Matrix4<float>>();
        default:
            return;
        }
    }

private:
    template <typename T>
    void test() {
        weft::BitArrayValue* target = mask_->bitsTarget();
        if (!target) return;
        const weft::Numeric& values = value_->numeric();
        const uint32_t count = elementCount<T>(values);
        RightSide<float> tolerance;
        tolerance.setElementsOf(tolerance_->numeric());
        target->resize(count, false);
        const UnfinishedOutput unfinished(target, {});
        testAll(values.values<T>().data(), count, tolerance, zeroTest<T>(), target->wordData(),
                *networkManager());
        mask_->valueChanged();
        setAttributeIsClean(mask_, true);
    }

    NumericAttribute* value_;
    NumericAttribute* tolerance_;
    BitArrayAttribute* mask_;
};

SLUICE_DEFINE_NODE(ConditionIsZero)

} // namespace tidemark::sluice::graph

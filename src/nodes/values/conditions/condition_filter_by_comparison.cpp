// SPDX-License-Identifier: Apache-2.0
// Filters that compare two arrays directly, one node for each comparison.
#include "graph/define_node.h"
#include "nodes/values/conditions/filtering.h"
#include "nodes/values/unfinished_output.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::NumericType;

/// Keeps the elements of "value0" for which "value0" OP "value1" holds.
class FilterByConditionBase : public weft::Node {
public:
    void update(Attribute* asked) override {
        if (!checkSpecialization(value0_) || !checkSpecialization(value1_)) return;
        if (value0_->specialization() != value1_->specialization()) {
            pushError(text::format("input '%s' and '%s' specialization differs",
                                   value0_->name().c_str(), value1_->name().c_str()));
            return;
        }
        value0_->pull();
        value1_->pull();
        switch (value0_->numeric().type()) {
        case NumericType::integer:
            return filter<int32_t>(asked, blockTest<int32_t>(comparison_));
        case NumericType::integer64:
            // Offered, but no element of it has ever passed.
            return filter<int64_t>(asked, nullptr);
        case NumericType::real:
            return filter<float>(asked, blockTest<float>(comparison_));
        case NumericType::vector3:
            return filter<Vector3<float>>(asked, blockTest<Vector3<float>>(comparison_));
        case NumericType::color4:
            return filter<Color4<float>>(asked, blockTest<Color4<float>>(comparison_));
        case NumericType::matrix4:
            return filter<Matrix4<float>>(asked, blockTest<Matrix4<float>>(comparison_));
        default:
            return;
        }
    }

protected:
    FilterByConditionBase(NetworkManager* manager, const TM_String& name, Node* parent,
                          Comparison comparison)
        : Node(manager, name, parent), comparison_(comparison) {
        describe("Filters the input value acording to the 'condition'.\nThe comparison is "
                 "performed for as many elements as it contains the 'value0' input. If 'value1' "
                 "size is smaller it's last element is used for the comparison of the remaining "
                 "elements.\nThe 'result' is an array without the elements that evaluate the "
                 "condition as false.");
        value0_ = addInput<NumericAttribute>("value0", "The left side of the comparison operation");
        value1_ =
            addInput<NumericAttribute>("value1", "The right side of the comparison operation");
        result_ = addOutput<NumericAttribute>("result", "The result after applying the condition");
        mask_ = addOutput<BitArrayAttribute>(
            "mask", "A mask to apply to other same size array to apply the same filter without the "
                    "need of reevaluation.");
        static const weft::SpecializationList types{"Integer", "Integer64", "Real",
                                                    "Vector3", "Color4",    "Matrix4"};
        for (Attribute* pin : {value0_, value1_, result_}) {
            setAttributeAllowedSpecializations(pin, types);
        }
        setAttributeAffectAllOutputsByAllInputs();
        addAttributeSpecializationLink(value0_, result_);
        addAttributeAllowedPassThrough(value0_, result_);
    }

private:
    template <typename T>
    void filter(const Attribute* asked, BlockTest<T> test) {
        const Numeric& values = value0_->numeric();
        RightSide<T> right;
        right.setElementsOf(value1_->numeric());
        FilterTargets targets;
        if (isNeeded(*result_, asked)) targets.result = result_->numericTarget();
        if (isNeeded(*mask_, asked)) targets.mask = mask_->bitsTarget();
        targets.isResultRead = targets.result == &values || targets.result == &value1_->numeric();
        const UnfinishedOutput mask(targets.mask, {});
        const UnfinishedOutput result(targets.result, {&values, &value1_->numeric()});
        filterElements(values, right, test, targets, *networkManager());
        if (targets.result) finish(result_);
        if (targets.mask) finish(mask_);
    }

    void finish(Attribute* output) {
        output->valueChanged();
        setAttributeIsClean(output, true);
    }

    NumericAttribute* value0_;
    NumericAttribute* value1_;
    NumericAttribute* result_;
    BitArrayAttribute* mask_;
    Comparison comparison_;
};

#define SLUICE_FILTER(Class, comparison)                                                           \
    class Class : public FilterByConditionBase {                                                   \
    public:                                                                                        \
        Class(NetworkManager* manager, const TM_String& name, Node* parent)                        \
            : FilterByConditionBase(manager, name, parent, Comparison::comparison) {               \
            appendClass<#Class>();                                                                 \
        }                                                                                          \
    };                                                                                             \
    SLUICE_DEFINE_NODE(Class)

SLUICE_FILTER(ConditionFilterByLessThan, lessThan)
SLUICE_FILTER(ConditionFilterByGreaterThan, greaterThan)
SLUICE_FILTER(ConditionFilterByLessOrEqual, lessOrEqual)
SLUICE_FILTER(ConditionFilterByGreaterOrEqual, greaterOrEqual)
SLUICE_FILTER(ConditionFilterByEqualTo, equalTo)
SLUICE_FILTER(ConditionFilterByNotEqualTo, notEqualTo)

#undef SLUICE_FILTER

} // namespace tidemark::sluice::graph

// SPDX-License-Identifier: Apache-2.0
// Filtering an array by a condition that comes along a pin.
#include "graph/define_node.h"
#include "nodes/values/conditions/condition_value.h"
#include "nodes/values/conditions/filtering.h"
#include "nodes/values/unfinished_output.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::NumericType;

namespace {

// Null for a number that is no comparison.
template <typename T>
BlockTest<T> testOf(const ConditionValue& condition) {
    constexpr uint32_t comparisons = 6;
    const auto code = static_cast<uint32_t>(condition.getConditionType());
    if (code >= 2 * comparisons) return nullptr;
    return blockTest<T>(static_cast<Comparison>(code % comparisons));
}

// False when what the condition compares with is nothing like a `T`.
template <typename T>
bool readRightSide(const ConditionValue& condition, RightSide<T>& right) {
    if (!condition.isConstant()) {
        const Numeric* number = condition.getNumericValue();
        return !number || right.setNumeric(*number);
    }
    T constant = ElementDefault<T>::value();
    if (!condition.getConstant(constant)) return false;
    right.setConstant(constant);
    return true;
}

} // namespace

class ConditionFilterBy : public weft::Node {
public:
    ConditionFilterBy(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ConditionFilterBy">();
        describe("Filters the input values according to the 'condition'.\nThe 'result' is an array "
                 "reduced by the elements that evaluate the condition as false.");
        value_ = addInput<NumericAttribute>("value", "The value to check the condition against");
        condition_ = addInput<ConditionAttribute>("condition", "The condition to apply.");
        result_ = addOutput<NumericAttribute>("result", "The result after applying the condition");
        mask_ = addOutput<BitArrayAttribute>(
            "mask", "A mask to apply to other array with the same size to apply the same filter "
                    "without the need of reevaluation.");
        static const weft::SpecializationList types{"Integer", "Real", "Vector3", "Color4",
                                                    "Matrix4"};
        setAttributeAllowedSpecializations(value_, types);
        setAttributeAllowedSpecializations(result_, types);
        setAttributeAffectAllOutputsByAllInputs();
        addAttributeSpecializationLink(value_, result_);
        addAttributeAllowedPassThrough(value_, result_);
    }

    void update(Attribute* asked) override {
        condition_->pull();
        if (!checkSpecialization(value_)) return;
        value_->pull();
        const Numeric& values = value_->numeric();
        switch (values.type()) {
        case NumericType::integer:
            return filter<int32_t>(values, asked);
        case NumericType::integer64:
            return filterAsIntegers(values, asked);
        case NumericType::real:
            return filter<float>(values, asked);
        case NumericType::vector3:
            return filter<Vector3<float>>(values, asked);
        case NumericType::color4:
            return filter<Color4<float>>(values, asked);
        case NumericType::matrix4:
            return filter<Matrix4<float>>(values, asked);
        default:
            return;
        }
    }

private:
    // A number of 64 bits counts by the integers that it holds as well: fewer or a single one, and
    // the last one repeats.
    void filterAsIntegers(const Numeric& values, const Attribute* asked) {
        const weft::Retained<Numeric> integers(new Numeric(networkManager()));
        integers->setType(NumericType::integer);
        integers->resize(values.size());
        Array<int32_t>& elements = integers->refValues<int32_t>();
        WorkMeter meter(*networkManager());
        inPieces(elements.size(), meter, [&](uint64_t first, uint64_t end) {
            for (auto i = static_cast<uint32_t>(first); i < end; ++i) {
                elements[i] = values.valueAt<int32_t>(i);
            }
        });
        filter<int32_t>(*integers, asked);
    }

    template <typename T>
    void filter(const Numeric& values, const Attribute* asked) {
        const ConditionValue* condition = condition_->condition();
        RightSide<T> right;
        if (!condition || !readRightSide(*condition, right)) {
            pushError("Condition value type not compatible");
            return;
        }
        FilterTargets targets;
        if (isNeeded(*result_, asked)) targets.result = result_->numericTarget();
        if (isNeeded(*mask_, asked)) targets.mask = mask_->bitsTarget();
        // In place it is what fails that stays: graphs were made for it.
        targets.keepsFailing = targets.result == &value_->numeric();
        targets.isResultRead =
            targets.keepsFailing || targets.result == condition->getNumericValue();
        const UnfinishedOutput mask(targets.mask, {});
        const UnfinishedOutput result(targets.result,
                                      {&value_->numeric(), condition->getNumericValue()});
        filterElements(values, right, testOf<T>(*condition), targets, *networkManager());
        if (targets.result) finish(result_);
        if (targets.mask) finish(mask_);
    }

    void finish(Attribute* output) {
        output->valueChanged();
        setAttributeIsClean(output, true);
    }

    NumericAttribute* value_;
    ConditionAttribute* condition_;
    NumericAttribute* result_;
    BitArrayAttribute* mask_;
};

SLUICE_DEFINE_NODE(ConditionFilterBy)

} // namespace tidemark::sluice::graph

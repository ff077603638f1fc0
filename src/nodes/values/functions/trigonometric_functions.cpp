// SPDX-License-Identifier: Apache-2.0
// One of several trigonometric functions, by choice.
#include <cmath>

#include "core/enum_value.h"
#include "graph/define_node.h"
#include "nodes/values/element_map.h"
#include "nodes/values/functions/real_functions.h"

namespace tidemark::sluice::graph {

using weft::EnumAttribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;

namespace {

using Routine = void (*)(const weft::Node& node, const Numeric& in, Numeric& result);

template <float (*function)(float)>
void apply(const weft::Node& node, const Numeric& in, Numeric& result) {
    mapNumbers<float>(
        node, 15, result, [](float x) { return function(x); }, elementsOf<float>(in));
}

template <auto function>
void applyToBlocks(const weft::Node& node, const Numeric& in, Numeric& result) {
    mapBlocks(node, 1, result, function, elementsOf<float>(in));
}

// By the key of the choice.
constexpr Routine routines[] = {applyToBlocks<real_functions::cos>,
                                applyToBlocks<real_functions::sin>,
                                apply<std::tan>,
                                apply<std::acos>,
                                apply<std::asin>,
                                apply<std::atan>,
                                apply<std::cosh>,
                                apply<std::sinh>,
                                apply<std::tanh>};

} // namespace

class TrigonometricFunctions : public weft::Node {
public:
    TrigonometricFunctions(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"TrigonometricFunctions">();
        describe("Evaluates the selected trigonometric function.");
        setThreadingModeHintByElement();
        function_ = addInput<EnumAttribute>("function", "The function to evaluate.");
        function_->setOptions(
            {"cos", "sin", "tan", "acos", "asin", "atan", "cosh", "sinh", "tanh"});
        function_->setElementCountRule(1);
        in_ = addInput<NumericAttribute>("in", "The operand; an angle is in radians.");
        result_ =
            addOutput<NumericAttribute>("result", "The function's value; an angle is in radians.");
        setAttributeAllowedSpecialization(in_, "Real");
        setAttributeAllowedSpecialization(result_, "Real");
        setAttributeAffectedByAllInputs(result_);
    }

    void update(weft::Attribute*) override {
        function_->pull();
        in_->pull();
        const int32_t key = function_->enumValue(0);
        const Numeric& in = in_->numeric();
        Numeric* target = result_->numericTarget();
        if (!target || in.type() != weft::NumericType::real) return;
        if (key < 0 || static_cast<std::size_t>(key) >= std::size(routines)) return;
        routines[key](*this, in, *target);
        result_->valueChanged();
    }

private:
    EnumAttribute* function_;
    NumericAttribute* in_;
    NumericAttribute* result_;
};

SLUICE_DEFINE_NODE(TrigonometricFunctions)

} // namespace tidemark::sluice::graph

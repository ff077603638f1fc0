// SPDX-License-Identifier: Apache-2.0
// Linear interpolation between two values.
#include "core/bit_array.h"
#include "graph/define_node.h"
#include "nodes/values/arrays/interpolation_curves.h"
#include "nodes/values/arrays/num_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::SpecializationList;

class NumInterpolateLinear : public weft::Node {
public:
    NumInterpolateLinear(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"NumInterpolateLinear">();
        describe("Computes linearly interpolated value between the first and second value given by "
                 "the blend value. If the clamp value is set, the result is clamped according to "
                 "the first and second value, otherwise not.");
        const SpecializationList types{"Real", "Vector3", "Color4", "Matrix4", "Quaternion"};
        first_ = addInput<NumericAttribute>("first", "The value at blend 0.");
        second_ = addInput<NumericAttribute>("second", "The value at blend 1.");
        blend_ = addInput<NumericAttribute>("blend", "How far the result lies on the way from the "
                                                     "first to the second value (0..1). Beyond, "
                                                     "the way goes straight on.");
        clamp_ = addInput<BitArrayAttribute>("clamp", "If set, every component of the result stays "
                                                      "between those of the first and the second "
                                                      "value.");
        result_ = addOutput<NumericAttribute>("result", "The interpolated value.");
        declareNumber(*first_, types, 0);
        declareNumber(*second_, types, 1);
        declareNumber(*blend_, {"Real"}, 0.5);
        result_->setAllowedSpecializations(types);
        takeOneElement({clamp_});
        setThreadingModeHintByElement();
        setAttributeAffectedByAllInputs(result_);
        addAttributeSpecializationLink(first_, result_);
        addAttributeSpecializationLink(second_, result_);
    }

    void attributeSpecializationChanged(Attribute*) override {
        interpolate_ = nullptr;
        weft::withElementType(selectorOf(*result_), [&]<typename T>() {
            if constexpr (!std::is_integral_v<T>) {
                interpolate_ = &NumInterpolateLinear::interpolate<T>;
            }
        });
    }

    void update(Attribute*) override {
        if (!interpolate_) return;
        for (Attribute* input : refInputAttributes()) input->pull();
        Numeric* target = result_->numericTarget();
        if (!target) return;
        (this->*interpolate_)(*target);
        result_->valueChanged();
    }

private:
    template <typename T>
    void interpolate(Numeric& target) {
        if (clamp_->lastBit()) {
            map<T>(target, [](const T& first, const T& second, float blend) {
                return combineComponents(
                    [blend](float a, float b) { return heldBetween(a, b, blend); }, first, second);
            });
        } else {
            map<T>(target, [](const T& first, const T& second, float blend) {
                return combineComponents(
                    [blend](float a, float b) { return linearlyBetween(a, b, blend); }, first,
                    second);
            });
        }
    }

    template <typename T, typename Function>
    void map(Numeric& target, Function function) {
        constexpr double nanoseconds = 0.5 * componentCount<T>;
        mapNumbers<T>(*this, nanoseconds, target, function, elementsOf<T>(first_->numeric()),
                      elementsOf<T>(second_->numeric()), elementsOf<float>(blend_->numeric()));
    }

    NumericAttribute* first_;
    NumericAttribute* second_;
    NumericAttribute* blend_;
    BitArrayAttribute* clamp_;
    NumericAttribute* result_;
    void (NumInterpolateLinear::*interpolate_)(Numeric&) = nullptr;
};

SLUICE_DEFINE_NODE(NumInterpolateLinear)

} // namespace tidemark::sluice::graph

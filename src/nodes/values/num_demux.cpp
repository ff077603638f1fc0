// SPDX-License-Identifier: Apache-2.0
// NumDemux: reads a number as the type that the user knows it to have.
#include <array>

#include "core/numeric.h"
#include "graph/define_node.h"
#include "nodes/values/globals/sharing_output.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::NumericType;

class NumDemux : public weft::Node {
public:
    NumDemux(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"NumDemux">();
        describe("This node separates all possible components of a numeric value.\nIt is intended "
                 "to be used when the specialization of the pin is too generic but the user knows "
                 "the real type of the stored value of the input.");
        input_ = addInput<NumericAttribute>("input", "The numeric value to separate.");
        add("integer", "The input as an Integer.", NumericType::integer);
        add("integer64", "The input as an Integer64.", NumericType::integer64);
        add("real", "The input as a Real.", NumericType::real);
        add("vector3", "The input as a Vector3.", NumericType::vector3);
        add("color4", "The input as a Color4.", NumericType::color4);
        add("matrix4", "The input as a Matrix4.", NumericType::matrix4);
        add("quaternion", "The input as a Quaternion.", NumericType::quaternion);
    }

    void update(Attribute* attribute) override {
        for (const Output& output : outputs_) {
            if (output.pin == attribute) return write(output);
        }
    }

private:
    using Pin = weft::SharingOutput<NumericAttribute>;

    struct Output {
        Pin* pin;
        NumericType type;
    };

    void add(const char* name, const char* help, NumericType type) {
        Pin* const pin = addOutput<Pin>(name, help);
        setAttributeAllowedSpecialization(pin, weft::nameOf(type));
        setAttributeAffect(input_, pin);
        outputs_[added_++] = {pin, type};
    }

    void write(const Output& output) {
        if (!input_->source()) {
            if (isVerbosityLevelAllowed(tidemark::graph::messageLevelError)) {
                pushError(text::format("Output pin '%s' has no associated input",
                                       output.pin->name().c_str()));
            }
            return;
        }
        input_->pull();
        auto* const number = weft::valueAs<Numeric>(input_->currentValue());
        if (!number) return;
        output.pin->show(number);
        // Nothing is converted: the value that is shown takes the type, wherever it comes from.
        if (Numeric* target = output.pin->numericTarget()) target->setType(output.type);
        output.pin->valueChanged();
        setAttributeIsClean(output.pin, true);
    }

    NumericAttribute* input_;
    std::array<Output, 7> outputs_;
    std::size_t added_ = 0;
};

SLUICE_DEFINE_NODE(NumDemux)

} // namespace tidemark::sluice::graph

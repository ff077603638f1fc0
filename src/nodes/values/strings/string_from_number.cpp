// SPDX-License-Identifier: Apache-2.0
// Numbers as strings.
#include <algorithm>

#include "core/numeric.h"
#include "graph/define_node.h"
#include "nodes/values/strings/string_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::StringAttribute;
using weft::StringValue;

namespace {

constexpr int mostDigits = 9;
// A negative padding fills up with blanks behind the number; a line is wide enough.
constexpr int mostBlanks = 4096;

TM_String padded(int32_t number, int32_t padding) {
    if (padding >= 0) return text::format("%0*i", std::min(padding, mostDigits), number);
    return text::format("%-*i", -std::max(padding, -mostBlanks), number);
}

TM_String fixed(float number, int32_t places) {
    return text::format("%9.*f", std::clamp(places, 0, mostDigits), static_cast<double>(number));
}

// One string per element of `numbers`, made by `make(number, setting)`.
template <typename T>
void writeEach(const Numeric& numbers, const Numeric& settings, const StringAttribute& out,
               WorkMeter meter, TM_String (*make)(T, int32_t)) {
    StringValue* target = out.stringsTarget();
    if (!target) return;
    target->setSize(numbers.size());
    for (uint32_t i = 0; i < target->size(); ++i) {
        target->setValueAt(i, make(numbers.valueAt<T>(i), settings.valueAt<int32_t>(i)));
        meter.add(target->valueAt(i).size());
    }
}

} // namespace

class IntegerToString : public weft::Node {
public:
    IntegerToString(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"IntegerToString">();
        describe("This node composes a string from an integer, whereas you may define the "
                 "padding.");
        integer_ = addInput<NumericAttribute>("integer", "The integer to write.");
        padding_ = addInput<NumericAttribute>(
            "padding", "The number of digits used to represent the integer value (1..9).");
        string_ = addOutput<StringAttribute>("string", "The integer as a string.");
        setAttributeAllowedSpecialization(integer_, "Integer");
        setAttributeAllowedSpecialization(padding_, "Integer");
        setAttributeAffectedByAllInputs(string_);
    }

    void update(Attribute*) override {
        integer_->pull();
        padding_->pull();
        writeEach<int32_t>(integer_->numeric(), padding_->numeric(), *string_,
                           WorkMeter(*networkManager()), padded);
        string_->valueChanged();
    }

private:
    NumericAttribute* integer_;
    NumericAttribute* padding_;
    StringAttribute* string_;
};

class RealToString : public weft::Node {
public:
    RealToString(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"RealToString">();
        describe("This node composes a string from a real, whereas you may define the number of "
                 "decimal places.");
        real_ = addInput<NumericAttribute>("real", "The real to write.");
        decimalPlaces_ = addInput<NumericAttribute>(
            "decimal places", "The number of digits used to represent the decimal places.");
        string_ = addOutput<StringAttribute>("string", "The real as a string.");
        setAttributeAllowedSpecialization(real_, "Real");
        setAttributeAllowedSpecialization(decimalPlaces_, "Integer");
        setAttributeAffectedByAllInputs(string_);
    }

    void update(Attribute*) override {
        real_->pull();
        decimalPlaces_->pull();
        writeEach<float>(real_->numeric(), decimalPlaces_->numeric(), *string_,
                         WorkMeter(*networkManager()), fixed);
        string_->valueChanged();
    }

private:
    NumericAttribute* real_;
    NumericAttribute* decimalPlaces_;
    StringAttribute* string_;
};

SLUICE_DEFINE_NODE(IntegerToString)
SLUICE_DEFINE_NODE(RealToString)

} // namespace tidemark::sluice::graph

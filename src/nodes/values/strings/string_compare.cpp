// SPDX-License-Identifier: Apache-2.0
// Equality and containment of strings.
#include "core/bit_array.h"
#include "core/numeric.h"
#include "graph/define_node.h"
#include "nodes/values/strings/string_tools.h"
#include "nodes/values/unfinished_output.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::BitArrayValue;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::StringAttribute;
using weft::StringValue;

namespace {

// The strings of an input, in lower case if need be, with the last one repeated.
class ComparedStrings {
public:
    ComparedStrings(const StringValue& strings, bool ignoreCase) : strings_(strings) {
        if (!ignoreCase) return;
        isLowered_ = true;
        for (const TM_String& string : strings.values()) lowered_.append(text::toLower(string));
    }

    std::string_view at(uint32_t index) const {
        if (!isLowered_) return strings_.valueAt(index);
        if (lowered_.empty()) return {};
        return lowered_[index < lowered_.size() ? index : lowered_.size() - 1];
    }

private:
    const StringValue& strings_;
    Array<TM_String> lowered_;
    bool isLowered_ = false;
};

int32_t positionOf(std::string_view wanted, std::string_view text, WorkMeter& meter) {
    const std::size_t found = findText(text, wanted, 0, meter);
    return found == std::string_view::npos ? -1 : toInteger(found);
}

} // namespace

class StringCompare : public weft::Node {
public:
    StringCompare(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"StringCompare">();
        describe("This node performs several comparisons between the input strings.");
        string0_ = addInput<StringAttribute>("string0", "The first string to compare.");
        string1_ = addInput<StringAttribute>("string1", "The second string to compare.");
        ignoreCase_ = addInput<BitArrayAttribute>(
            "ignore case", "If true, uppercase and lowercase letters count as equal.");
        isEqual_ = addOutput<BitArrayAttribute>("is equal", "True if both strings are equal.");
        isInside_ =
            addOutput<BitArrayAttribute>("is inside", "True if 'string1' contains 'string0'.");
        position_ = addOutput<NumericAttribute>(
            "position", "The position of 'string0' inside 'string1'. If 'string0' is not contained "
                        "in 'string1' the returned value is -1");
        setAttributeAllowedSpecialization(position_, "Integer");
        setAttributeAffectAllOutputsByAllInputs();
    }

    void update(Attribute* attribute) override {
        string0_->pull();
        string1_->pull();
        ignoreCase_->pull();
        if (attribute == position_) {
            findPositions();
        } else if (attribute == isInside_) {
            compare(*isInside_, [](std::string_view a, std::string_view b, WorkMeter& meter) {
                return positionOf(a, b, meter) >= 0;
            });
        } else {
            compare(*isEqual_,
                    [](std::string_view a, std::string_view b, WorkMeter&) { return a == b; });
        }
        attribute->valueChanged();
    }

private:
    // Calls `visit` with the index, both strings of every pair, and the meter.
    template <typename Visit>
    void forEachPair(uint32_t count, Visit visit) {
        const bool ignoreCase = ignoreCase_->lastBit();
        const ComparedStrings first(string0_->strings(), ignoreCase);
        const ComparedStrings second(string1_->strings(), ignoreCase);
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < count; ++i) {
            visit(i, first.at(i), second.at(i), meter);
            meter.add(second.at(i).size());
        }
    }

    void findPositions() {
        Numeric* target = position_->numericTarget();
        if (!target) return;
        const uint32_t count = largerSize(string0_->strings(), string1_->strings());
        const UnfinishedOutput unfinished(target, {});
        target->resize(count);
        forEachPair(count,
                    [&](uint32_t i, std::string_view a, std::string_view b, WorkMeter& meter) {
                        target->setValueAt(i, positionOf(a, b, meter));
                    });
    }

    using Holds = bool (*)(std::string_view, std::string_view, WorkMeter&);

    void compare(const BitArrayAttribute& out, Holds holds) {
        BitArrayValue* target = out.bitsTarget();
        if (!target) return;
        const uint32_t count = largerSize(string0_->strings(), string1_->strings());
        const UnfinishedOutput unfinished(target, {});
        target->resize(count, false);
        forEachPair(count, [&](uint32_t i, std::string_view a, std::string_view b,
                               WorkMeter& meter) { target->setBit(i, holds(a, b, meter)); });
    }

    StringAttribute* string0_;
    StringAttribute* string1_;
    BitArrayAttribute* ignoreCase_;
    BitArrayAttribute* isEqual_;
    BitArrayAttribute* isInside_;
    NumericAttribute* position_;
};

SLUICE_DEFINE_NODE(StringCompare)

} // namespace tidemark::sluice::graph

// SPDX-License-Identifier: Apache-2.0
// Remainders of divisions.
#include <array>
#include <cmath>

#include "graph/define_node.h"
#include "nodes/values/element_map.h"
#include "nodes/values/type_pairs.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::NumericType;
using weft::SpecializationList;

namespace {

constexpr double nanosecondsPerNumber = 10;

std::span<const NumericType> typesOfMod(NumericType in) {
    static constexpr std::array integers{NumericType::integer};
    static constexpr std::array reals{NumericType::real};
    static constexpr std::array vectors{NumericType::vector3, NumericType::real};
    static constexpr std::array colors{NumericType::color4, NumericType::real};
    switch (in) {
    case NumericType::integer:
        return integers;
    case NumericType::real:
        return reals;
    case NumericType::vector3:
        return vectors;
    case NumericType::color4:
        return colors;
    default:
        return {};
    }
}

// 0 for a divisor of 0, and for -1, where the smallest number would have no quotient.
int32_t remainder(int32_t x, int32_t y) { return y == 0 || y == -1 ? 0 : x % y; }

template <typename T>
void ofSameType(const weft::Node& node, const Numeric& in, const Numeric& mod, Numeric& result) {
    mapComponents<T>(
        node, nanosecondsPerNumber * static_cast<int>(componentCount<T>), result,
        [](float x, float y) { return std::fmod(x, y); }, elementsOf<T>(in), elementsOf<T>(mod));
}

template <typename T>
void byReal(const weft::Node& node, const Numeric& in, const Numeric& mod, Numeric& result) {
    mapNumbers<T>(
        node, nanosecondsPerNumber * static_cast<int>(componentCount<T>), result,
        [](const T& x, float y) {
            T remainders;
            for (unsigned int i = 0; i < T::dimensions(); ++i) remainders[i] = std::fmod(x[i], y);
            return remainders;
        },
        elementsOf<T>(in), elementsOf<float>(mod));
}

void ofIntegers(const weft::Node& node, const Numeric& in, const Numeric& mod, Numeric& result) {
    mapNumbers<int32_t>(node, 3, result, remainder, elementsOf<int32_t>(in),
                        elementsOf<int32_t>(mod));
}

using Routine = void (*)(const weft::Node& node, const Numeric& in, const Numeric& mod,
                         Numeric& result);

Routine routineFor(NumericType in, NumericType mod) {
    using enum NumericType;
    if (in == integer && mod == integer) return ofIntegers;
    if (in == real && mod == real) return ofSameType<float>;
    if (in == vector3 && mod == vector3) return ofSameType<Vector3<float>>;
    if (in == color4 && mod == color4) return ofSameType<Color4<float>>;
    if (in == vector3 && mod == real) return byReal<Vector3<float>>;
    if (in == color4 && mod == real) return byReal<Color4<float>>;
    return nullptr;
}

} // namespace

class Mod : public weft::Node {
public:
    Mod(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"Mod">();
        describe("Computes module of the input value.");
        setThreadingModeHintByElement();
        in_ = addInput<NumericAttribute>("in", "The value to divide.");
        mod_ = addInput<NumericAttribute>("mod", "The divisor. A remainder by the integer 0 is 0.");
        result_ = addOutput<NumericAttribute>(
            "result", "What the division leaves over, with the sign of the divided value.");
        const SpecializationList types{"Integer", "Real", "Vector3", "Color4"};
        for (NumericAttribute* pin : {in_, mod_, result_}) {
            setAttributeAllowedSpecializations(pin, types);
        }
        setDefault(*in_, 0);
        setDefault(*mod_, 1);
        setAttributeAffectedByAllInputs(result_);
        addAttributeSpecializationLink(in_, result_);
        addAttributeSpecializationLink(mod_, result_);
    }

    void updateSpecializationLink(Attribute* first, Attribute* second,
                                  SpecializationList& firstList,
                                  SpecializationList& secondList) override {
        if (first == mod_ && second == result_) {
            return weft::filterPairs(typesOfMod, firstList, secondList);
        }
        if (first == result_ && second == mod_) {
            return weft::filterPairs(typesOfMod, secondList, firstList);
        }
        Node::updateSpecializationLink(first, second, firstList, secondList);
    }

    void update(Attribute*) override {
        in_->pull();
        mod_->pull();
        const Numeric& in = in_->numeric();
        const Numeric& mod = mod_->numeric();
        Numeric* target = result_->numericTarget();
        const Routine routine = routineFor(in.type(), mod.type());
        if (!target || !routine) return;
        routine(*this, in, mod, *target);
        result_->valueChanged();
    }

private:
    NumericAttribute* in_;
    NumericAttribute* mod_;
    NumericAttribute* result_;
};

SLUICE_DEFINE_NODE(Mod)

} // namespace tidemark::sluice::graph

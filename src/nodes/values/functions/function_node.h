// SPDX-License-Identifier: Apache-2.0
// Base of the nodes that apply a formula to every element of numbers:
//
//     Floor::Floor(NetworkManager* manager, const TM_String& name, Node* parent)
//         : NumericFunctionNode(manager, name, parent, {"Real", "Vector3"},
//                               {{"in", "The value to round down.", 0}}, "The rounded value.") {
//         appendClass<"Floor">();
//     }
//     Routine Floor::routineFor(NumericType type) const {
//         // 1 nanosecond per element, 1 input, and the types that have this routine.
//         return componentwise<1, 1, float, Vector3<float>>(
//             type, [](float x) { return std::floor(x); });
//     }
#pragma once

#include <array>
#include <initializer_list>
#include <utility>

#include "nodes/values/element_map.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

/// One or more number inputs and the output "result", all of one type. As long as the type is open,
/// or no routine is made for it, an update changes nothing.
class NumericFunctionNode : public weft::Node {
public:
    static constexpr std::size_t mostInputs = 5;
    using Inputs = std::array<const weft::Numeric*, mostInputs>;
    /// Computes the result of the inputs, which are up to date; those behind the last are null.
    using Routine = void (*)(const weft::Node& node, const Inputs& in, weft::Numeric& result);

    void update(weft::Attribute*) override;

protected:
    struct Input {
        const char* name;
        const char* help;
        double value; ///< the default
    };

    NumericFunctionNode(weft::NetworkManager* manager, const TM_String& name, Node* parent,
                        const weft::SpecializationList& types, std::initializer_list<Input> inputs,
                        const char* resultHelp);

    /// The routine for a first input of this type, or null.
    virtual Routine routineFor(weft::NumericType type) const = 0;
    /// For nodes whose result is of a type of its own.
    void setResultType(const char* type);

    weft::NumericAttribute& input(std::size_t index) const { return *inputs_[index]; }
    weft::NumericAttribute& result() const { return *result_; }

private:
    std::array<weft::NumericAttribute*, mostInputs> inputs_{};
    weft::NumericAttribute* result_ = nullptr;
};

// Routines. `nanoseconds` is roughly what one element costs; the function has no captures.

namespace function_node {

template <int nanoseconds, typename T, typename Function, std::size_t... index>
void applyByComponent(const weft::Node& node, const NumericFunctionNode::Inputs& in,
                      weft::Numeric& result, std::index_sequence<index...>) {
    mapComponents<T>(node, nanoseconds, result, Function{}, elementsOf<T>(*in[index])...);
}

template <int nanoseconds, typename T, typename Function, std::size_t inputs>
void byComponent(const weft::Node& node, const NumericFunctionNode::Inputs& in,
                 weft::Numeric& result) {
    if constexpr (std::is_integral_v<T>) {
        [&]<std::size_t... index>(std::index_sequence<index...>) {
            mapNumbers<T>(node, nanoseconds, result, Function{}, elementsOf<T>(*in[index])...);
        }
        (std::make_index_sequence<inputs>());
    } else {
        applyByComponent<nanoseconds, T, Function>(node, in, result,
                                                   std::make_index_sequence<inputs>());
    }
}

template <int nanoseconds, auto function, std::size_t... index>
void applyToBlocks(const weft::Node& node, const NumericFunctionNode::Inputs& in,
                   weft::Numeric& result, std::index_sequence<index...>) {
    mapBlocks(node, nanoseconds, result, function, elementsOf<float>(*in[index])...);
}

} // namespace function_node

/// A function of `inputs` numbers, applied to each component of elements of the types `T`; null for
/// any other type.
template <int nanoseconds, std::size_t inputs, typename... T, typename Function>
NumericFunctionNode::Routine componentwise(weft::NumericType type, Function) {
    NumericFunctionNode::Routine found = nullptr;
    ((type == weft::numericTypeFor<T>
          ? void(found = function_node::byComponent<nanoseconds, T, Function, inputs>)
          : void()),
     ...);
    return found;
}

/// A function of blocks of reals, such as those of real_functions.h.
template <int nanoseconds, std::size_t inputs, auto function>
void onBlocks(const weft::Node& node, const NumericFunctionNode::Inputs& in,
              weft::Numeric& result) {
    function_node::applyToBlocks<nanoseconds, function>(node, in, result,
                                                        std::make_index_sequence<inputs>());
}

} // namespace tidemark::sluice::graph

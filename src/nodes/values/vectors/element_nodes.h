// SPDX-License-Identifier: Apache-2.0
// Nodes that apply formulas to the elements of numeric arrays of fixed types. A node is its formula
// and the table of its pins:
//
//     class Vector3Length : public FormulaNode<lengthOf> {
//     public:
//         Vector3Length(NetworkManager* manager, const TM_String& name, Node* parent)
//             : FormulaNode(manager, name, parent, {"vector", "The vector to measure."},
//                           {"result", "The length of the vector.", 2.4}) {
//             appendClass<"Vector3Length">();
//             describe("Computes the length of the given vector.");
//         }
//     };
//
// A result has as many elements as the longest input, none if one input is empty; shorter inputs
// repeat their last element.
#pragma once

#include <array>
#include <type_traits>
#include <utility>

#include "nodes/values/element_map.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph::vectors {

/// An input of elements `T`, and the one element that it shows until it is connected or set.
template <typename T>
struct InputRow {
    const char* name;
    const char* help;
    T initial = ElementDefault<T>::value();
};

struct OutputRow {
    const char* name;
    const char* help;
    double nanoseconds = 0.5; ///< roughly what one element costs, measured on one thread
};

/// What all of these nodes share: pins of one type each, every input affecting every output.
class ElementNode : public weft::Node {
protected:
    ElementNode(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)
        : Node(manager, name, parent) {
        setThreadingModeHintByElement();
    }

    template <typename T>
    weft::NumericAttribute* addNumbers(const InputRow<T>& row) {
        auto* pin = addInput<weft::NumericAttribute>(row.name, row.help);
        setAttributeAllowedSpecialization(pin, nameOf(weft::numericTypeFor<T>));
        if (row.initial != ElementDefault<T>::value()) pin->ownNumeric().setValue(row.initial);
        return pin;
    }

    template <typename R>
    weft::NumericAttribute* addResults(const OutputRow& row) {
        auto* pin = addOutput<weft::NumericAttribute>(row.name, row.help);
        setAttributeAllowedSpecialization(pin, nameOf(weft::numericTypeFor<R>));
        return pin;
    }

    /// Writes `function` of the elements of `in` to `out`. `nanoseconds` is roughly what one
    /// element costs.
    template <typename R, typename Function, typename... A>
    void write(weft::NumericAttribute& out, double nanoseconds, Function function,
               std::span<const A>... in) {
        if (weft::Numeric* target = out.numericTarget()) {
            mapNumbers<R>(*this, nanoseconds, *target, function, in...);
        }
        out.valueChanged();
    }

    /// For one of several outputs: writes it if an update for `asked` needs it, and marks it clean.
    template <typename R, typename Function, typename... A>
    void writeIfNeeded(weft::NumericAttribute& out, const weft::Attribute* asked,
                       double nanoseconds, Function function, std::span<const A>... in) {
        if (!isNeeded(out, asked)) return;
        write<R>(out, nanoseconds, function, in...);
        setAttributeIsClean(&out, true);
    }
};

/// True when two inputs have different numbers of elements and neither is a single one for all.
inline bool doSizesDiffer(const weft::NumericAttribute& a, const weft::NumericAttribute& b) {
    const uint32_t sizeA = a.numeric().size();
    const uint32_t sizeB = b.numeric().size();
    return sizeA != sizeB && sizeA != 1 && sizeB != 1;
}

/// One output, whose elements are `Formula` of the inputs' elements. A formula that answers `bool`
/// makes an output of bits.
template <auto Formula, typename Signature = decltype(Formula)>
class FormulaNode;

template <auto Formula, typename R, typename... A>
class FormulaNode<Formula, R (*)(A...)> : public ElementNode {
public:
    void update(weft::Attribute*) override {
        for (weft::NumericAttribute* input : inputs_) input->pull();
        if (reportsSizes_ && doSizesDiffer(*inputs_[0], *inputs_[1])) {
            pushError(text::format("input attributes size differs: (%d, %d)",
                                   static_cast<int>(inputs_[0]->numeric().size()),
                                   static_cast<int>(inputs_[1]->numeric().size())));
        }
        compute(std::index_sequence_for<A...>());
    }

protected:
    FormulaNode(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                const InputRow<std::remove_cvref_t<A>>&... inputs, const OutputRow& output)
        : ElementNode(manager, name, parent),
          nanoseconds_(output.nanoseconds), inputs_{addNumbers(inputs)...} {
        if constexpr (givesBits) {
            output_ = addOutput<weft::BitArrayAttribute>(output.name, output.help);
        } else {
            output_ = addResults<R>(output);
        }
        setAttributeAffectedByAllInputs(output_);
    }

    /// Asks for an error, level 2, when the first two inputs differ in size. The result is computed
    /// all the same.
    void reportDifferentSizes() { reportsSizes_ = true; }

private:
    static constexpr bool givesBits = std::is_same_v<R, bool>;
    using Output = std::conditional_t<givesBits, weft::BitArrayAttribute, weft::NumericAttribute>;

    // A type of its own for every formula, so that the loop is compiled around it.
    struct Call {
        R operator()(const std::remove_cvref_t<A>&... elements) const {
            return Formula(elements...);
        }
    };

    template <std::size_t... i>
    void compute(std::index_sequence<i...>) {
        if constexpr (givesBits) {
            if (weft::BitArrayValue* target = output_->bitsTarget()) {
                mapBits(*this, nanoseconds_, *target, Call(),
                        elementsOf<std::remove_cvref_t<A>>(inputs_[i]->numeric())...);
            }
            output_->valueChanged();
        } else {
            write<R>(*output_, nanoseconds_, Call(),
                     elementsOf<std::remove_cvref_t<A>>(inputs_[i]->numeric())...);
        }
    }

    double nanoseconds_;
    std::array<weft::NumericAttribute*, sizeof...(A)> inputs_;
    Output* output_;
    bool reportsSizes_ = false;
};

/// One input, and one output for each of the formulas, computed when it is needed.
template <typename In, auto... Formulas>
class SplitNode : public ElementNode {
public:
    void update(weft::Attribute* attribute) override {
        input_->pull();
        std::size_t i = 0;
        (compute<Formulas>(i++, attribute), ...);
    }

protected:
    using Rows = std::array<OutputRow, sizeof...(Formulas)>;

    SplitNode(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
              const InputRow<In>& input, const Rows& rows)
        : ElementNode(manager, name, parent), input_(addNumbers(input)) {
        std::size_t i = 0;
        // Braces keep the order of the table.
        outputs_ = {addOutputOf(Formulas, rows[i++])...};
        setAttributeAffectsAllOutputs(input_);
    }

private:
    struct Output {
        weft::NumericAttribute* pin;
        double nanoseconds;
    };

    template <typename R>
    Output addOutputOf(R (*)(const In&), const OutputRow& row) {
        return {addResults<R>(row), row.nanoseconds};
    }

    template <auto Formula>
    void compute(std::size_t i, const weft::Attribute* asked) {
        using R = std::invoke_result_t<decltype(Formula), const In&>;
        writeIfNeeded<R>(
            *outputs_[i].pin, asked, outputs_[i].nanoseconds,
            [](const In& element) { return Formula(element); }, elementsOf<In>(input_->numeric()));
    }

    weft::NumericAttribute* input_;
    std::array<Output, sizeof...(Formulas)> outputs_;
};

/// One input, and one real output for each number in its elements, in storage order.
template <typename In>
class ComponentsNode : public ElementNode {
public:
    void update(weft::Attribute* attribute) override {
        input_->pull();
        for (std::size_t i = 0; i < count; ++i) {
            writeIfNeeded<float>(
                *outputs_[i], attribute, OutputRow().nanoseconds,
                [i](const In& element) { return reinterpret_cast<const float*>(&element)[i]; },
                elementsOf<In>(input_->numeric()));
        }
    }

protected:
    static constexpr std::size_t count = sizeof(In) / sizeof(float);

    ComponentsNode(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                   const InputRow<In>& input, const std::array<OutputRow, count>& outputs)
        : ElementNode(manager, name, parent), input_(addNumbers(input)) {
        for (std::size_t i = 0; i < count; ++i) outputs_[i] = addResults<float>(outputs[i]);
        setAttributeAffectsAllOutputs(input_);
    }

private:
    weft::NumericAttribute* input_;
    std::array<weft::NumericAttribute*, count> outputs_{};
};

} // namespace tidemark::sluice::graph::vectors

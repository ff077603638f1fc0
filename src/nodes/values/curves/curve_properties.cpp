// SPDX-License-Identifier: Apache-2.0
// Properties of curves: expression, behaviours, number of keys.
#include <algorithm>
#include <limits>

#include "core/bit_array.h"
#include "core/string_value.h"
#include "graph/define_node.h"
#include "nodes/values/arrays/array_elements.h"
#include "nodes/values/curves/curve_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::CurveAttribute;
using weft::NetworkManager;
using weft::NumericAttribute;
using weft::StringAttribute;

namespace {

constexpr const char* plusSplineHelp =
    "True if the evaluation of the curve implies adding the expression and the spline values.";
constexpr const char* preBehaviourHelp =
    "The behaviour of the curve before its first key: 'zero'(0) or 'constant'(1)";
constexpr const char* postBehaviourHelp = "The behaviour of the curve after its last key: "
                                          "'zero'(0), 'constant'(1), 'loop'(2), 'loop-offset'(3)";

} // namespace

class GetCurveProperties : public weft::Node {
public:
    GetCurveProperties(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"GetCurveProperties">();
        describe("This node returns information about the input 'curve' properties.");
        curve_ = addInput<CurveAttribute>("curve", "The curves to examine.");
        hasExpression_ =
            addOutput<BitArrayAttribute>("has expression", "True if the curve has an expression.");
        expression_ = addOutput<StringAttribute>(
            "expression", "The expression stored in the curve. Or an empty string if there is no "
                          "expression for this curve.");
        plusSpline_ = addOutput<BitArrayAttribute>("expression plus spline", plusSplineHelp);
        keyCount_ = addOutput<NumericAttribute>("key count", "The number of keys.");
        preBehaviour_ = addOutput<NumericAttribute>("pre behaviour", preBehaviourHelp);
        postBehaviour_ = addOutput<NumericAttribute>("post behaviour", postBehaviourHelp);
        for (NumericAttribute* number : {keyCount_, preBehaviour_, postBehaviour_}) {
            setAttributeAllowedSpecialization(number, "Integer");
        }
        setAttributeAffectsAllOutputs(curve_);
    }

    void update(Attribute* attribute) override {
        curve_->pull();
        reportNulls();
        writeTruths(*hasExpression_, attribute,
                    [](const ANIFloatBase& curve) { return !curve.getExpression().empty(); });
        writeExpressions(attribute);
        writeTruths(*plusSpline_, attribute,
                    [](const ANIFloatBase& curve) { return curve.hasExpressionPlusSpline(); });
        writeIntegers(*keyCount_, attribute, [](const ANIFloatBase& curve) {
            return static_cast<int32_t>(curve.spline().points().size());
        });
        writeIntegers(*preBehaviour_, attribute,
                      [](const ANIFloatBase& curve) { return curve.preBehaviour(); });
        writeIntegers(*postBehaviour_, attribute,
                      [](const ANIFloatBase& curve) { return curve.postBehaviour(); });
    }

private:
    void reportNulls() {
        for (uint32_t i = 0; i < curve_->pointers().size(); ++i) {
            if (!curve_->curveAt(i)) reportNullElement(*this, i);
        }
    }

    // Calls `write` with index and curve of every element that is not null.
    template <typename Write>
    void forEachCurve(Write write) {
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < curve_->pointers().size(); ++i) {
            if (const ANIFloatBase* curve = curve_->curveAt(i)) write(i, *curve);
            meter.add(1);
        }
    }
    void written(Attribute& out) {
        out.valueChanged();
        setAttributeIsClean(&out, true);
    }

    // Null curves leave their entries as they were, here and below.
    template <typename Read>
    void writeTruths(BitArrayAttribute& out, const Attribute* asked, Read read) {
        weft::BitArrayValue* target = out.bitsTarget();
        if (!target || !isWritten(out, asked)) return;
        const UnfinishedOutput unfinished(target, {});
        target->resize(curve_->pointers().size(), false);
        forEachCurve(
            [&](uint32_t i, const ANIFloatBase& curve) { target->setBit(i, read(curve)); });
        written(out);
    }

    template <typename Read>
    void writeIntegers(NumericAttribute& out, const Attribute* asked, Read read) {
        weft::Numeric* target = out.numericTarget();
        if (!target || !isWritten(out, asked)) return;
        writeElements<int32_t>(*target, {}, [&](Array<int32_t>& numbers) {
            numbers.resize(curve_->pointers().size());
            forEachCurve([&](uint32_t i, const ANIFloatBase& curve) { numbers[i] = read(curve); });
        });
        written(out);
    }

    void writeExpressions(const Attribute* asked) {
        weft::StringValue* target = expression_->stringsTarget();
        if (!target || !isWritten(*expression_, asked)) return;
        writeElements<TM_String>(*target, {}, [&](Array<TM_String>& texts) {
            target->setSize(curve_->pointers().size());
            forEachCurve(
                [&](uint32_t i, const ANIFloatBase& curve) { texts[i] = curve.getExpression(); });
        });
        written(*expression_);
    }

    CurveAttribute* curve_;
    BitArrayAttribute* hasExpression_;
    StringAttribute* expression_;
    BitArrayAttribute* plusSpline_;
    NumericAttribute* keyCount_;
    NumericAttribute* preBehaviour_;
    NumericAttribute* postBehaviour_;
};

class SetCurveProperties : public weft::Node {
public:
    SetCurveProperties(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"SetCurveProperties">();
        describe("This node changes properties of the input 'curve'.");
        curve_ = addInput<CurveAttribute>("curve", "The curves to change.");
        expression_ = addInput<StringAttribute>(
            "expression", "The expression to store in the curve. If left empty, the existing "
                          "expression is removed.");
        plusSpline_ = addInput<BitArrayAttribute>("expression plus spline", plusSplineHelp);
        preBehaviour_ = addInput<NumericAttribute>("pre behaviour", preBehaviourHelp);
        postBehaviour_ = addInput<NumericAttribute>("post behaviour", postBehaviourHelp);
        outCurve_ = addOutput<CurveAttribute>("out curve", "The changed curves.");
        for (NumericAttribute* behaviour : {preBehaviour_, postBehaviour_}) {
            setAttributeAllowedSpecialization(behaviour, "Integer");
            setDefault(*behaviour, curveConstant);
        }
        setAttributeAffectAllOutputsByAllInputs();
        connectInternalAttributes(curve_, outCurve_);
    }

    void update(Attribute*) override {
        Array<Attribute*> inputs;
        inputAttributes(inputs);
        for (Attribute* input : inputs) input->pull();
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < curve_->pointers().size(); ++i) {
            if (ANIFloatBase* curve = curve_->curveAt(i)) {
                change(*curve, i);
            } else {
                reportNullElement(*this, i);
            }
            meter.add(1);
        }
        outCurve_->valueChanged();
        setAttributeIsClean(outCurve_, true);
    }

private:
    void change(ANIFloatBase& curve, uint32_t i) {
        if (hasRealSource(*expression_)) changeExpression(curve, i);
        if (hasRealSource(*plusSpline_)) {
            curve.setExpressionPlusSpline(plusSpline_->bits().valueAt(i));
        }
        if (hasRealSource(*preBehaviour_)) {
            curve.setPreBehaviour(behaviourAt(*preBehaviour_, i));
            curve.setBehavioursChanged(true);
        }
        if (hasRealSource(*postBehaviour_)) {
            curve.setPostBehaviour(behaviourAt(*postBehaviour_, i));
            curve.setBehavioursChanged(true);
        }
    }

    void changeExpression(ANIFloatBase& curve, uint32_t i) {
        if (curve.setExpression(expression_->strings().valueAt(i))) return;
        pushError(text::format("Expression is refused at position %d", static_cast<int>(i)),
                  curve.expressionMessage());
    }

    // The last element repeats; an empty input gives the number of no behaviour.
    static int32_t behaviourAt(const NumericAttribute& pin, uint32_t i) {
        constexpr int32_t none = -1;
        return pin.numeric().size() == 0 ? none : pin.numeric().valueAt<int32_t>(i);
    }

    CurveAttribute* curve_;
    StringAttribute* expression_;
    BitArrayAttribute* plusSpline_;
    NumericAttribute* preBehaviour_;
    NumericAttribute* postBehaviour_;
    CurveAttribute* outCurve_;
};

SLUICE_DEFINE_NODE(GetCurveProperties)
SLUICE_DEFINE_NODE(SetCurveProperties)

} // namespace tidemark::sluice::graph

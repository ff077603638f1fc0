// SPDX-License-Identifier: Apache-2.0
// The nodes that make conditions from numbers: of a number that is read when the condition is
// applied, and of a constant.
#include "core/enum_value.h"
#include "graph/define_node.h"
#include "nodes/values/conditions/condition_value.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::EnumAttribute;
using weft::NetworkManager;
using weft::NumericAttribute;
using ConditionType = ConditionValue::ConditionType;

namespace {

constexpr const char* equalTo =
    "Condition is evaluated as true if the reference value is equal to the input 'value'.";
constexpr const char* notEqualTo =
    "Condition is evaluated as true if the other value is not equal to the input 'value'.";
constexpr const char* lessThan =
    "Condition is evaluated as true if the other value is strictly less than the input 'value'.";
constexpr const char* lessOrEqual =
    "Condition is evaluated as true if the other value is less or equal than the input 'value'.";
constexpr const char* greaterThan = "Condition is evaluated as true if the other value is strictly "
                                    "greater than the input 'value'.";
constexpr const char* greaterOrEqual =
    "Condition is evaluated as true if the other value is greater or equal than the input 'value'.";

const weft::SpecializationList& comparableTypes() {
    static const weft::SpecializationList list{"Integer", "Real", "Vector3", "Matrix4", "Color4"};
    return list;
}

} // namespace

/// "value" is the right side of the comparisons: all its elements, as they are when the condition
/// is applied.
class ConditionBase : public weft::Node {
public:
    void update(Attribute*) override {
        ConditionValue* target = condition_->conditionTarget();
        const ConditionType type = conditionType();
        if (target) target->setConditionType(type);
        if (!checkSpecialization(value_)) return;
        value_->pull();
        if (!target) return;
        target->setNumericValue(weft::valueAs<weft::Numeric>(value_->currentValue()));
        target->setConstant(false);
        condition_->valueChanged();
        setAttributeIsClean(condition_, true);
    }

protected:
    ConditionBase(NetworkManager* manager, const TM_String& name, Node* parent, ConditionType type)
        : Node(manager, name, parent), type_(type) {
        value_ = addInput<NumericAttribute>(
            "value", "The right side of the comparison. Element for element it is compared with "
                     "what the condition is applied to; its last element repeats.");
        condition_ = addOutput<ConditionAttribute>("condition", "The condition, for other nodes to "
                                                                "apply.");
        setAttributeAllowedSpecializations(value_, comparableTypes());
        setDefault(*value_, 0.0);
        setAttributeAffect(value_, condition_);
    }

    virtual ConditionType conditionType() { return type_; }
    ConditionAttribute* condition() const { return condition_; }

private:
    NumericAttribute* value_;
    ConditionAttribute* condition_;
    ConditionType type_;
};

/// The first element of "value", as it is now, is the right side of the comparisons.
class ConstantConditionBase : public weft::Node {
public:
    void update(Attribute*) override {
        ConditionValue* target = condition_->conditionTarget();
        if (target) target->setConditionType(conditionType());
        if (!checkSpecialization(value_)) return;
        value_->pull();
        if (!target) return;
        target->setNumericValue(nullptr);
        target->setConstant(true);
        setConstant(*target, value_->numeric());
        condition_->valueChanged();
        setAttributeIsClean(condition_, true);
    }

protected:
    ConstantConditionBase(NetworkManager* manager, const TM_String& name, Node* parent,
                          ConditionType type)
        : Node(manager, name, parent), type_(type) {
        value_ = addInput<NumericAttribute>("value", "The right side of the comparison.");
        condition_ = addOutput<ConditionAttribute>("condition", "The condition, for other nodes to "
                                                                "apply.");
        setAttributeAllowedSpecializations(value_, comparableTypes());
        setDefault(*value_, 0.0);
        value_->setElementCountRule(1);
        setAttributeAffect(value_, condition_);
    }

    virtual ConditionType conditionType() { return type_; }

private:
    // Types that no condition compares leave the constant as it was.
    static void setConstant(ConditionValue& target, const weft::Numeric& number) {
        switch (number.type()) {
        case weft::NumericType::integer:
            return target.setIntegerValue(number.value<int32_t>());
        case weft::NumericType::real:
            return target.setRealValue(number.value<float>());
        case weft::NumericType::vector3:
            return target.setVector3Value(number.value<Vector3<float>>());
        case weft::NumericType::color4:
            return target.setColor4Value(number.value<Color4<float>>());
        case weft::NumericType::matrix4:
            return target.setMatrix4Value(number.value<Matrix4<float>>());
        default:
            return;
        }
    }

    NumericAttribute* value_;
    ConditionAttribute* condition_;
    ConditionType type_;
};

#define SLUICE_CONDITION(Class, Base, type, text)                                                  \
    class Class : public Base {                                                                    \
    public:                                                                                        \
        Class(NetworkManager* manager, const TM_String& name, Node* parent)                        \
            : Base(manager, name, parent, ConditionType::type) {                                   \
            appendClass<#Class>();                                                                 \
            describe(text);                                                                        \
        }                                                                                          \
    };                                                                                             \
    SLUICE_DEFINE_NODE(Class)

// A comparison with a number, and the same with a constant.
#define SLUICE_CONDITIONS(Class, comparison)                                                       \
    SLUICE_CONDITION(Class, ConditionBase, comparison, comparison)                                 \
    SLUICE_CONDITION(Class##Constant, ConstantConditionBase, comparison##Constant, comparison)

SLUICE_CONDITIONS(ConditionEqualTo, equalTo)
SLUICE_CONDITIONS(ConditionNotEqualTo, notEqualTo)
SLUICE_CONDITIONS(ConditionLessThan, lessThan)
SLUICE_CONDITIONS(ConditionLessOrEqual, lessOrEqual)
SLUICE_CONDITIONS(ConditionGreaterThan, greaterThan)
SLUICE_CONDITIONS(ConditionGreaterOrEqual, greaterOrEqual)

#undef SLUICE_CONDITIONS
#undef SLUICE_CONDITION

class ConditionGeneric : public ConditionBase {
public:
    ConditionGeneric(NetworkManager* manager, const TM_String& name, Node* parent)
        : ConditionBase(manager, name, parent, ConditionType::greaterThan) {
        appendClass<"ConditionGeneric">();
        describe(greaterThan);
        type_ = addInput<EnumAttribute>("type", "The comparison.");
        weft::Enum& options = type_->ownEnum();
        options.setOption(0, "equal to");
        options.setOption(1, "not equal to");
        options.setOption(4, "greater than");
        options.setOption(5, "greater or equal than");
        options.setOption(2, "less than");
        options.setOption(3, "less or equal than");
        options.setKey(4);
        type_->setElementCountRule(1);
        setAttributeAffect(type_, condition());
    }

protected:
    ConditionType conditionType() override {
        type_->pull();
        return static_cast<ConditionType>(type_->enumValue(0));
    }

private:
    EnumAttribute* type_;
};

SLUICE_DEFINE_NODE(ConditionGeneric)

} // namespace tidemark::sluice::graph

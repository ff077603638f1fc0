// SPDX-License-Identifier: Apache-2.0
// Conditions as values.
#include "nodes/values/conditions/condition_value.h"

#include <array>
#include <limits>

#include "nodes/values/conditions/element_conversion.h"

namespace tidemark::sluice::graph {

const weft::ValueKind ConditionValue::kind{"ConditionValue"};

ConditionValue::ConditionValue(weft::NetworkManager* manager) : Value(manager, kind) {}

ConditionValue::ConditionValue(const ConditionValue& other)
    : ConditionValue(other.networkManager()) {
    *this = other;
}

ConditionValue& ConditionValue::operator=(const ConditionValue& other) {
    setNumericValue(other.numeric_);
    conditionType_ = other.conditionType_;
    isConstant_ = other.isConstant_;
    constant_ = other.constant_;
    return *this;
}

ConditionValue::~ConditionValue() { setNumericValue(nullptr); }

void ConditionValue::copyFrom(const Value* other) {
    if (const auto* condition = weft::valueAs<ConditionValue>(other)) *this = *condition;
}

void ConditionValue::purge() {
    setNumericValue(nullptr);
    conditionType_ = ConditionType::equalTo;
    isConstant_ = false;
    constant_ = Constant();
}

TM_String ConditionValue::comparisonName() const {
    static constexpr std::array<const char*, 6> names{"equal to",     "not equal to",
                                                      "less than",    "less or equal than",
                                                      "greater than", "greater or equal than"};
    const auto code = static_cast<uint32_t>(conditionType_);
    return code < 2 * names.size() ? names[code % names.size()] : "";
}

TM_String ConditionValue::asString() const {
    const TM_String name = comparisonName();
    if (isConstant_) {
        weft::Numeric number(networkManager());
        copyConstantTo(number);
        return name + " " + number.asString();
    }
    return numeric_ ? name + " " + numeric_->asString() : name;
}

void ConditionValue::setNumericValue(weft::Numeric* value) {
    if (value == numeric_) return;
    if (value) value->retain();
    weft::Numeric* const old = numeric_;
    numeric_ = value;
    if (old) old->release();
}

// Constants.

void ConditionValue::becomeConstant(NumericType type) {
    constant_.type = type;
    isConstant_ = true;
    setNumericValue(nullptr);
}

void ConditionValue::setIntegerValue(int32_t value) {
    constant_.integer = value;
    becomeConstant(NumericType::integer);
}

void ConditionValue::setInteger64Value(int64_t value) {
    constant_.integer64 = value;
    becomeConstant(NumericType::integer64);
}

void ConditionValue::setRealValue(float value) {
    constant_.real = value;
    becomeConstant(NumericType::real);
}

void ConditionValue::setVector3Value(const Vector3<float>& value) {
    constant_.vector = value;
    becomeConstant(NumericType::vector3);
}

void ConditionValue::setColor4Value(const Color4<float>& value) {
    constant_.color = value;
    becomeConstant(NumericType::color4);
}

void ConditionValue::setMatrix4Value(const Matrix4<float>& value) {
    constant_.matrix = value;
    becomeConstant(NumericType::matrix4);
}

template <typename Visit>
void ConditionValue::withConstant(Visit visit) const {
    switch (constant_.type) {
    case NumericType::integer:
        return visit(constant_.integer);
    case NumericType::integer64:
        return visit(constant_.integer64);
    case NumericType::real:
        return visit(constant_.real);
    case NumericType::vector3:
        return visit(constant_.vector);
    case NumericType::color4:
        return visit(constant_.color);
    case NumericType::matrix4:
        return visit(constant_.matrix);
    }
}

template <typename T>
bool ConditionValue::getConstant(T& value) const {
    bool isCompatible = false;
    withConstant([&]<typename From>(const From& constant) {
        if constexpr (isConvertible<T, From>) {
            value = convertedTo<T>(constant);
            isCompatible = true;
        }
    });
    return isCompatible;
}

template SLUICE_API bool ConditionValue::getConstant(int32_t&) const;
template SLUICE_API bool ConditionValue::getConstant(int64_t&) const;
template SLUICE_API bool ConditionValue::getConstant(float&) const;
template SLUICE_API bool ConditionValue::getConstant(Vector3<float>&) const;
template SLUICE_API bool ConditionValue::getConstant(Color4<float>&) const;
template SLUICE_API bool ConditionValue::getConstant(Matrix4<float>&) const;

bool ConditionValue::getIntegerValue(int32_t& value) const {
    value = std::numeric_limits<int32_t>::max();
    return getConstant(value);
}

bool ConditionValue::getInteger64Value(int64_t& value) const {
    value = std::numeric_limits<int64_t>::max();
    return getConstant(value);
}

bool ConditionValue::getRealValue(float& value) const {
    value = std::numeric_limits<float>::max();
    return getConstant(value);
}

bool ConditionValue::getVector3Value(Vector3<float>& value) const { return getConstant(value); }

bool ConditionValue::getColor4Value(Color4<float>& value) const {
    value = ElementDefault<Color4<float>>::value();
    return getConstant(value);
}

bool ConditionValue::getMatrix4Value(Matrix4<float>& value) const {
    value = ElementDefault<Matrix4<float>>::value();
    return getConstant(value);
}

void ConditionValue::copyConstantTo(weft::Numeric& number) const {
    withConstant([&]<typename T>(const T& constant) {
        number.setType(weft::numericTypeFor<T>);
        number.setValue(constant);
    });
}

ConditionAttribute::ConditionAttribute(weft::NetworkManager* manager, const TM_String& name,
                                       weft::Node* parent)
    : Attribute(manager, name, parent) {
    appendClass<"ConditionAttribute">();
    initializeValue(new ConditionValue(manager));
    static const weft::SpecializationList condition{"Condition"};
    initializeSpecializations(condition);
}

} // namespace tidemark::sluice::graph

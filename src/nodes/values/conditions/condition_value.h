// SPDX-License-Identifier: Apache-2.0
// Conditions as values: a comparison kept together with its right side, not yet applied, and the
// port that carries one. It reads "element OP right side".
//
//     condition.setConditionType(ConditionValue::ConditionType::lessThanConstant);
//     condition.setRealValue(2.5f);
//     condition.asString();     // "less than [3] 2.500000"
#pragma once

#include "core/attribute.h"
#include "core/numeric.h"
#include "core/types.h"

namespace tidemark::sluice::graph {

/// One comparison. Its right side is one constant or, element for element, a `Numeric` that stays
/// where it is and is read when the condition is applied.
///
/// A fresh condition compares for equality with a `Numeric` that it does not have, which stands for
/// the default element of whatever type it is applied to.
class SLUICE_API ConditionValue : public weft::Value {
public:
    static const weft::ValueKind kind;

    /// The comparisons of the second half are the first half's, made for constants. Which of the
    /// two the right side is, `isConstant` says. Any other number is a condition that never holds.
    enum class ConditionType : int32_t {
        equalTo = 0,
        notEqualTo = 1,
        lessThan = 2,
        lessOrEqual = 3,
        greaterThan = 4,
        greaterOrEqual = 5,
        equalToConstant = 6,
        notEqualToConstant = 7,
        lessThanConstant = 8,
        lessOrEqualConstant = 9,
        greaterThanConstant = 10,
        greaterOrEqualConstant = 11,
    };
    /// The type of the constant.
    enum class NumericType : int32_t {
        integer = 0,
        integer64 = 1,
        real = 2,
        vector3 = 3,
        color4 = 4,
        matrix4 = 5,
    };

    explicit ConditionValue(weft::NetworkManager* manager);
    ConditionValue(const ConditionValue& other);
    ConditionValue& operator=(const ConditionValue& other);
    ~ConditionValue() override;

    // Value.

    void copyFrom(const weft::Value* other) override;
    /// The comparison and the right side: "greater or equal than [1] 4,5"; "equal to" alone while
    /// there is no right side.
    TM_String asString() const override;
    /// As made.
    void purge() override;

    ConditionType getConditionType() const { return conditionType_; }
    void setConditionType(ConditionType type) { conditionType_ = type; }
    /// The comparison in words, empty for a number that is none.
    TM_String comparisonName() const;

    /// The right side when it is not a constant; null when there is none.
    weft::Numeric* getNumericValue() const { return numeric_; }
    /// Holds a reference on it. Null gives it up.
    void setNumericValue(weft::Numeric* value);

    NumericType getNumericType() const { return constant_.type; }
    void setNumericType(NumericType type) { constant_.type = type; }
    bool isConstant() const { return isConstant_; }
    void setConstant(bool constant) { isConstant_ = constant; }

    // Each of these makes the right side that constant and lets go of the `Numeric`.

    void setIntegerValue(int32_t value);
    void setInteger64Value(int64_t value);
    void setRealValue(float value);
    void setVector3Value(const Vector3<float>& value);
    void setColor4Value(const Color4<float>& value);
    void setMatrix4Value(const Matrix4<float>& value);

    // The constant as another type; see `isConvertible`. False when it cannot be that: then the
    // numbers are the largest ones, a vector stays as it was, a colour is opaque black and a matrix
    // the identity.

    bool getIntegerValue(int32_t& value) const;
    bool getInteger64Value(int64_t& value) const;
    bool getRealValue(float& value) const;
    bool getVector3Value(Vector3<float>& value) const;
    bool getColor4Value(Color4<float>& value) const;
    bool getMatrix4Value(Matrix4<float>& value) const;
    /// The same by element type; `value` stays as it was when the answer is false.
    template <typename T>
    bool getConstant(T& value) const;

    /// Makes `number` the constant, with its type.
    void copyConstantTo(weft::Numeric& number) const;

private:
    struct Constant {
        NumericType type = NumericType::integer;
        int32_t integer = 0;
        int64_t integer64 = 0;
        float real = 0.0f;
        Vector3<float> vector{0.0f, 0.0f, 0.0f};
        Matrix4<float> matrix;
        Color4<float> color{0.0f, 0.0f, 0.0f, 1.0f};
    };

    template <typename Visit>
    void withConstant(Visit visit) const;
    void becomeConstant(NumericType type);

    ConditionType conditionType_ = ConditionType::equalTo;
    bool isConstant_ = false;
    weft::Numeric* numeric_ = nullptr; // one reference
    Constant constant_;
};

/// A port of the one type "Condition".
class SLUICE_API ConditionAttribute : public weft::Attribute {
public:
    ConditionAttribute(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent);

    /// What a reader sees; null when the source carries something else.
    const ConditionValue* condition() const {
        return weft::valueAs<ConditionValue>(currentValue());
    }
    /// Where an output writes; null when that is no condition.
    ConditionValue* conditionTarget() const { return weft::valueAs<ConditionValue>(writeTarget()); }
    /// The attribute's own condition.
    ConditionValue& ownCondition() const { return *static_cast<ConditionValue*>(value()); }
};

} // namespace tidemark::sluice::graph

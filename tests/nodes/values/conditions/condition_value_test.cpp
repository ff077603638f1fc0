// SPDX-License-Identifier: Apache-2.0
// Conditions as values: constants and their conversions, the held number, copies, texts.
#include "nodes/values/conditions/condition_value.h"

#include <gtest/gtest.h>

#include <limits>

#include "core/network_manager.h"
#include "core/node.h"

namespace {

using namespace tidemark;
using sluice::graph::ConditionValue;
using weft::NetworkManager;
using weft::Numeric;
using weft::Retained;
using Type = ConditionValue::ConditionType;
using Number = ConditionValue::NumericType;

class Conditions : public testing::Test {
protected:
    Numeric* newNumber(float number) {
        auto* value = new Numeric(&manager);
        value->setType(weft::NumericType::real);
        value->setValue(number);
        return value;
    }

    NetworkManager manager;
    Retained<ConditionValue> holder{new ConditionValue(&manager)};
    ConditionValue& condition = *holder;
};

// What each getter leaves and answers, as one text.
TM_String answers(const ConditionValue& condition) {
    int32_t integer = 5;
    int64_t integer64 = 5;
    float real = 5.0f;
    Vector3<float> vector(5.0f, 5.0f, 5.0f);
    Color4<float> color(5.0f, 5.0f, 5.0f, 5.0f);
    Matrix4<float> matrix(5.0f);
    TM_String text = condition.getIntegerValue(integer) ? "yes " : "no ";
    text += std::to_string(integer);
    text += condition.getInteger64Value(integer64) ? " yes " : " no ";
    text += std::to_string(integer64);
    text += condition.getRealValue(real) ? " yes " : " no ";
    text += text::shortest(real);
    text += condition.getVector3Value(vector) ? " yes " : " no ";
    text +=
        text::shortest(vector.x) + "," + text::shortest(vector.y) + "," + text::shortest(vector.z);
    text += condition.getColor4Value(color) ? " yes " : " no ";
    text += text::shortest(color.r) + "," + text::shortest(color.g) + "," +
            text::shortest(color.b) + "," + text::shortest(color.a);
    text += condition.getMatrix4Value(matrix) ? " yes " : " no ";
    return text + text::shortest(matrix[0][0]) + "," + text::shortest(matrix[0][1]);
}

const TM_String noNumber = "no 2147483647 no 9223372036854775807 no 3.4028235e+38";
const TM_String noVector = " no 5,5,5 no 0,0,0,1";
const TM_String noMatrix = " no 1,0";

TEST_F(Conditions, FreshOneIsEqualToNothingYet) {
    EXPECT_EQ(Type::equalTo, condition.getConditionType());
    EXPECT_EQ(Number::integer, condition.getNumericType());
    EXPECT_EQ(nullptr, condition.getNumericValue());
    EXPECT_FALSE(condition.isConstant());
    EXPECT_EQ("yes 0 yes 0 yes 0" + noVector + noMatrix, answers(condition));
    EXPECT_EQ(1u, condition.size());
}

TEST_F(Conditions, FreshConstantsAreZeroOpaqueAndIdentity) {
    condition.setNumericType(Number::vector3);
    EXPECT_EQ(noNumber + " yes 0,0,0 yes 0,0,0,1" + noMatrix, answers(condition));
    condition.setNumericType(Number::color4);
    EXPECT_EQ(noNumber + " yes 0,0,0 yes 0,0,0,1" + noMatrix, answers(condition));
    condition.setNumericType(Number::matrix4);
    EXPECT_EQ(noNumber + noVector + " yes 1,0", answers(condition));
}

TEST_F(Conditions, CodesAreStated) {
    EXPECT_EQ(1, static_cast<int>(Type::notEqualTo));
    EXPECT_EQ(2, static_cast<int>(Type::lessThan));
    EXPECT_EQ(3, static_cast<int>(Type::lessOrEqual));
    EXPECT_EQ(4, static_cast<int>(Type::greaterThan));
    EXPECT_EQ(5, static_cast<int>(Type::greaterOrEqual));
    EXPECT_EQ(6, static_cast<int>(Type::equalToConstant));
    EXPECT_EQ(11, static_cast<int>(Type::greaterOrEqualConstant));
    EXPECT_EQ(1, static_cast<int>(Number::integer64));
    EXPECT_EQ(2, static_cast<int>(Number::real));
    EXPECT_EQ(3, static_cast<int>(Number::vector3));
    EXPECT_EQ(4, static_cast<int>(Number::color4));
    EXPECT_EQ(5, static_cast<int>(Number::matrix4));
}

TEST_F(Conditions, IntegerBecomesTheOtherNumbers) {
    condition.setIntegerValue(-7);
    EXPECT_TRUE(condition.isConstant());
    EXPECT_EQ(Number::integer, condition.getNumericType());
    EXPECT_EQ("yes -7 yes -7 yes -7" + noVector + noMatrix, answers(condition));
}

TEST_F(Conditions, Integer64KeepsItsLowHalfAsInteger) {
    condition.setInteger64Value((int64_t(1) << 32) + 3);
    EXPECT_EQ(Number::integer64, condition.getNumericType());
    EXPECT_EQ("yes 3 yes 4294967299 yes " + text::shortest(4294967299.0f) + noVector + noMatrix,
              answers(condition));
}

TEST_F(Conditions, RealIsCutTowardsZero) {
    condition.setRealValue(-2.9f);
    EXPECT_EQ(Number::real, condition.getNumericType());
    EXPECT_EQ("yes -2 yes -2 yes -2.9" + noVector + noMatrix, answers(condition));
}

TEST_F(Conditions, RealOutOfRangeHasAnIntegerAllTheSame) {
    int32_t integer = 1;
    condition.setRealValue(std::numeric_limits<float>::infinity());
    EXPECT_TRUE(condition.getIntegerValue(integer));
    EXPECT_EQ(std::numeric_limits<int32_t>::max(), integer);
    condition.setRealValue(std::numeric_limits<float>::quiet_NaN());
    EXPECT_TRUE(condition.getIntegerValue(integer));
    EXPECT_EQ(0, integer);
}

TEST_F(Conditions, VectorBecomesAnOpaqueColor) {
    condition.setVector3Value({1.0f, 2.0f, 3.0f});
    EXPECT_EQ(Number::vector3, condition.getNumericType());
    EXPECT_EQ(noNumber + " yes 1,2,3 yes 1,2,3,1" + noMatrix, answers(condition));
}

TEST_F(Conditions, ColorBecomesAVectorWithoutAlpha) {
    condition.setColor4Value({1.0f, 2.0f, 3.0f, 4.0f});
    EXPECT_EQ(Number::color4, condition.getNumericType());
    EXPECT_EQ(noNumber + " yes 1,2,3 yes 1,2,3,4" + noMatrix, answers(condition));
}

TEST_F(Conditions, MatrixIsOnlyAMatrix) {
    condition.setMatrix4Value(Matrix4<float>(3.0f));
    EXPECT_EQ(Number::matrix4, condition.getNumericType());
    EXPECT_EQ(noNumber + noVector + " yes 3,3", answers(condition));
}

TEST_F(Conditions, HoldsItsNumber) {
    Numeric* number = newNumber(2.0f);
    condition.setNumericValue(number);
    EXPECT_EQ(1, number->refCount());
    condition.setNumericValue(number);
    EXPECT_EQ(1, number->refCount());
    const Retained<Numeric> other(newNumber(3.0f));
    const int32_t id = number->id();
    condition.setNumericValue(&*other);
    EXPECT_EQ(nullptr, manager.findObject(id));
    EXPECT_EQ(2, other->refCount());
    condition.setNumericValue(nullptr);
    EXPECT_EQ(1, other->refCount());
}

TEST_F(Conditions, ConstantLetsGoOfTheNumber) {
    const Retained<Numeric> number(newNumber(2.0f));
    condition.setNumericValue(&*number);
    condition.setRealValue(1.0f);
    EXPECT_EQ(nullptr, condition.getNumericValue());
    EXPECT_EQ(1, number->refCount());
}

TEST_F(Conditions, GivesItsNumberUpAtItsEnd) {
    const Retained<Numeric> number(newNumber(2.0f));
    {
        const Retained<ConditionValue> shortLived(new ConditionValue(&manager));
        shortLived->setNumericValue(&*number);
        EXPECT_EQ(2, number->refCount());
    }
    EXPECT_EQ(1, number->refCount());
}

TEST_F(Conditions, CopiesShareTheNumber) {
    const Retained<Numeric> number(newNumber(2.0f));
    condition.setNumericValue(&*number);
    condition.setConditionType(Type::lessThan);
    const Retained<ConditionValue> copy(new ConditionValue(condition));
    EXPECT_EQ(&*number, copy->getNumericValue());
    EXPECT_EQ(Type::lessThan, copy->getConditionType());
    const Retained<ConditionValue> assigned(new ConditionValue(&manager));
    *assigned = *copy;
    EXPECT_EQ(4, number->refCount());
    EXPECT_EQ("less than [3] 2", assigned->asString());
    assigned->copyFrom(assigned.get());
    EXPECT_EQ(4, number->refCount());
}

TEST_F(Conditions, CopyFromTakesConditionsOnly) {
    const Retained<ConditionValue> other(new ConditionValue(&manager));
    other->setConditionType(Type::greaterOrEqualConstant);
    other->setVector3Value({1.0f, 2.0f, 3.0f});
    condition.copyFrom(other.get());
    EXPECT_EQ("greater or equal than [4] (1,2,3)", condition.asString());
    const Retained<Numeric> number(newNumber(2.0f));
    condition.copyFrom(number.get());
    condition.copyFrom(nullptr);
    EXPECT_EQ("greater or equal than [4] (1,2,3)", condition.asString());
}

TEST_F(Conditions, TextNamesTheComparisonAndTheRightSide) {
    EXPECT_EQ("equal to", condition.asString());
    const char* const names[] = {"equal to",           "not equal to", "less than",
                                 "less or equal than", "greater than", "greater or equal than"};
    for (int code = 0; code < 12; ++code) {
        condition.setConditionType(static_cast<Type>(code));
        EXPECT_EQ(names[code % 6], condition.comparisonName());
    }
    condition.setIntegerValue(4);
    EXPECT_EQ("greater or equal than [1] 4", condition.asString());
    condition.setConditionType(static_cast<Type>(12));
    EXPECT_EQ("", condition.comparisonName());
    EXPECT_EQ(" [1] 4", condition.asString());
}

TEST_F(Conditions, PurgedOneIsAsMade) {
    const Retained<Numeric> number(newNumber(2.0f));
    condition.setConditionType(Type::lessThan);
    condition.setColor4Value({1.0f, 2.0f, 3.0f, 4.0f});
    condition.setNumericValue(&*number);
    condition.purge();
    EXPECT_EQ(1, number->refCount());
    EXPECT_EQ("equal to", condition.asString());
    EXPECT_FALSE(condition.isConstant());
    EXPECT_EQ("yes 0 yes 0 yes 0" + noVector + noMatrix, answers(condition));
}

TEST_F(Conditions, NumberOutlivesItsMaker) {
    const Retained<ConditionValue> kept(new ConditionValue(&manager));
    kept->setNumericValue(newNumber(2.5f));
    EXPECT_EQ("equal to [3] 2.5", kept->asString());
}

TEST_F(Conditions, PortCarriesOne) {
    class Holder : public weft::Node {
    public:
        explicit Holder(NetworkManager* manager) : Node(manager, "n", nullptr) {
            in = addInput<sluice::graph::ConditionAttribute>("in");
        }
        sluice::graph::ConditionAttribute* in;
    };
    const Retained<Holder> node(new Holder(&manager));
    EXPECT_EQ("ConditionAttribute", node->in->className());
    EXPECT_EQ("Condition", node->in->specialization());
    EXPECT_EQ("\"Condition\"", node->in->allowedSpecializationsText());
    EXPECT_EQ(&node->in->ownCondition(), node->in->condition());
    EXPECT_EQ(&node->in->ownCondition(), node->in->conditionTarget());
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Numbers: element access, sizes, memory, text.
#include "core/numeric.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

#include "core/conversion.h"
#include "core/network_manager.h"
#include "core/node.h"
#include "core/string_value.h"

namespace {

using namespace weft;
using tidemark::TM_String;
using tidemark::truncateTo;

class NumericTest : public testing::Test {
protected:
    NetworkManager manager_;
    Retained<Numeric> holder_{new Numeric(&manager_)};
    Numeric& number_ = *holder_;
};

constexpr NumericType allSelectors[] = {
    NumericType::integer, NumericType::integer64,  NumericType::real,   NumericType::vector3,
    NumericType::color4,  NumericType::quaternion, NumericType::matrix4};

TEST_F(NumericTest, FreshValueHoldsOneDefaultPerType) {
    EXPECT_EQ(NumericType::none, number_.type());
    EXPECT_EQ(1u, number_.size());
    EXPECT_EQ(0, number_.value<int32_t>());
    EXPECT_EQ(0, number_.value<int64_t>());
    EXPECT_EQ(0.0f, number_.value<float>());
    EXPECT_EQ(Vector3<float>(0, 0, 0), number_.value<Vector3<float>>());
    EXPECT_EQ(Color4<float>(0, 0, 0, 1), number_.value<Color4<float>>());
    EXPECT_EQ((Quaternion<float>{0, 0, 0, 1}), number_.value<Quaternion<float>>());
    EXPECT_EQ(Matrix4<float>(), number_.value<Matrix4<float>>());
    for (const NumericType type : allSelectors) {
        withElementType(type, [&]<typename T>() { EXPECT_EQ(1u, number_.values<T>().size()); });
    }
}

TEST_F(NumericTest, StaysSmall) {
    EXPECT_LE(sizeof(Numeric), 180u);
    EXPECT_EQ(124u, number_.estimatedSize());
    number_.setType(NumericType::real);
    number_.setValue(1.5f);
    EXPECT_EQ(124u, number_.estimatedSize());
    EXPECT_EQ(257u, number_.checkSum());
}

TEST_F(NumericTest, WritingOneValueLeavesOthersAlone) {
    const Retained<Numeric> other(new Numeric(&manager_));
    for (const NumericType type : allSelectors) {
        withElementType(type, [&]<typename T>() {
            number_.refValues<T>()[0] = T(3);
            EXPECT_EQ(T(3), number_.value<T>());
            EXPECT_EQ(tidemark::ElementDefault<T>::value(), other->value<T>());
        });
    }
}

TEST_F(NumericTest, EveryTypeKeepsItsElementBesideTheOthers) {
    number_.refValues<float>()[0] = 1.5f;
    number_.refValues<int32_t>()[0] = 7;
    number_.refValues<int64_t>()[0] = 8;
    number_.refValues<Quaternion<float>>()[0] = {1, 2, 3, 4};
    EXPECT_EQ(1.5f, number_.value<float>());
    EXPECT_EQ(7, number_.value<int32_t>());
    EXPECT_EQ(8, number_.value<int64_t>());
    EXPECT_EQ((Quaternion<float>{1, 2, 3, 4}), number_.value<Quaternion<float>>());
    EXPECT_EQ(0.0f, number_.value<Vector3<float>>().x);
}

TEST_F(NumericTest, TypeNamesAreComparedWhole) {
    const char* names[] = {"Integer", "Integer64",  "Real",   "Vector3",
                           "Color4",  "Quaternion", "Matrix4"};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(i + 1, static_cast<int>(numericTypeOf(names[i])));
        EXPECT_EQ(names[i], nameOf(static_cast<NumericType>(i + 1)));
    }
    for (const char* other : {"", "Int", "integer", "Integer6", "Integer64 ", "RealField", "Bit"}) {
        EXPECT_EQ(NumericType::none, numericTypeOf(other)) << other;
    }
    EXPECT_EQ("", nameOf(NumericType::none));
}

TEST_F(NumericTest, SizeFollowsTheSelectedArray) {
    number_.refValues<float>() = {1.0f, 2.0f, 3.0f};
    EXPECT_EQ(1u, number_.size());
    number_.setType(NumericType::real);
    EXPECT_EQ(3u, number_.size());
    number_.setType(NumericType::none);
    EXPECT_EQ(3u, number_.size()) << "without a selector the size stays";
    number_.setType(NumericType::integer);
    EXPECT_EQ(1u, number_.size());
    number_.setType(NumericType::real);
    EXPECT_EQ(3u, number_.size()) << "the array of the other type was kept";
}

TEST_F(NumericTest, ResizeKeepsElementsAndAddsDefaults) {
    number_.setType(NumericType::color4);
    number_.setValue(Color4<float>(1, 2, 3, 4));
    number_.resize(3);
    EXPECT_EQ(3u, number_.size());
    EXPECT_EQ(Color4<float>(1, 2, 3, 4), number_.valueAt<Color4<float>>(0));
    EXPECT_EQ(Color4<float>(0, 0, 0, 1), number_.valueAt<Color4<float>>(2));
    EXPECT_EQ(3u, number_.values<Color4<float>>().capacity()) << "exactly what was asked for";
    number_.resize(1);
    EXPECT_EQ(1u, number_.size());
    EXPECT_EQ(3u, number_.values<Color4<float>>().capacity());
}

TEST_F(NumericTest, ResizeWithoutSelectorDoesNothing) {
    number_.resize(5);
    EXPECT_EQ(1u, number_.size());
    EXPECT_EQ(1u, number_.values<int32_t>().size());
}

TEST_F(NumericTest, ResizeToNothingAndBackDoesNotTouchTheSharedDefault) {
    const Retained<Numeric> other(new Numeric(&manager_));
    for (const NumericType type : allSelectors) {
        withElementType(type, [&]<typename T>() {
            number_.setType(type);
            number_.resize(0);
            EXPECT_EQ(0u, number_.size());
            EXPECT_EQ(tidemark::ElementDefault<T>::value(), number_.valueAt<T>(3));
            number_.refValues<T>().append(T(9));
            EXPECT_EQ(tidemark::ElementDefault<T>::value(), other->value<T>());
        });
    }
}

TEST_F(NumericTest, SetValueMakesTheSelectedArrayOneElement) {
    number_.setType(NumericType::integer);
    number_.resize(4);
    number_.setValue(int32_t(9));
    EXPECT_EQ(1u, number_.size());
    EXPECT_EQ(9, number_.value<int32_t>());
    // Of another type: the selected array is resized, the given type's element written.
    number_.resize(4);
    number_.setValue(2.5f);
    EXPECT_EQ(1u, number_.size());
    EXPECT_EQ(9, number_.value<int32_t>());
    EXPECT_EQ(2.5f, number_.value<float>());
}

TEST_F(NumericTest, SetValueWithoutSelectorWritesTheElement) {
    number_.setValue(2.5f);
    EXPECT_EQ(2.5f, number_.value<float>());
    number_.setSize(0);
    number_.setValue(3.5f);
    EXPECT_EQ(2.5f, number_.values<float>()[0]) << "size 0 and no selector: nothing is stored";
}

TEST_F(NumericTest, SetValueAtIgnoresIndexesBeyondTheSize) {
    number_.setType(NumericType::integer);
    number_.resize(2);
    number_.setValueAt(1, int32_t(5));
    number_.setValueAt(2, int32_t(6));
    number_.setValueAt(4000000000u, int32_t(7));
    EXPECT_EQ("[1] 0,5", number_.asString());
    // The array of another type may be shorter than the size.
    number_.setValueAt(1, 1.0f);
    EXPECT_EQ(1u, number_.values<float>().size());
}

TEST_F(NumericTest, IndexPastTheEndReadsTheLastElement) {
    number_.setType(NumericType::real);
    number_.setValues(Array<float>{1.0f, 2.0f, 3.0f});
    EXPECT_EQ(3.0f, number_.valueAt<float>(100));
    EXPECT_EQ(3.0f, number_.valueAt<float>(0xffffffffu));
    EXPECT_EQ(1.0f, number_.value<float>());
    EXPECT_EQ(1.0f, number_.valueChecking<float>());
}

TEST_F(NumericTest, EmptyValueReadsDefaults) {
    number_.setType(NumericType::quaternion);
    number_.resize(0);
    EXPECT_EQ((Quaternion<float>{0, 0, 0, 1}), number_.valueAt<Quaternion<float>>(2));
    number_.setType(NumericType::integer);
    number_.setSize(0);
    EXPECT_EQ(0, number_.value<int32_t>());
}

TEST_F(NumericTest, SizeBeyondTheArrayReadsWhatIsThere) {
    number_.setType(NumericType::integer);
    number_.setValue(int32_t(4));
    number_.setSize(10);
    EXPECT_EQ(4, number_.valueAt<int32_t>(9));
    EXPECT_EQ("[1] 4", number_.asString());
}

TEST_F(NumericTest, SetValuesLeavesTheSelector) {
    number_.setType(NumericType::integer);
    number_.setValues(Array<float>{1.0f, 2.0f});
    EXPECT_EQ(NumericType::integer, number_.type());
    EXPECT_EQ(2u, number_.size());
    number_.updateSize();
    EXPECT_EQ(1u, number_.size());
    number_.setValues(Array<float>());
    EXPECT_EQ(0u, number_.size());
}

TEST_F(NumericTest, CopyTakesEverythingOver) {
    const Retained<Numeric> copy(new Numeric(&manager_));
    number_.setType(NumericType::integer);
    number_.setValues(Array<int32_t>{1, 2, 3});
    number_.refValues<Matrix4<float>>()[0].x[3][1] = 6.0f;
    copy->refValues<float>()[0] = 4.0f;
    copy->copyFrom(&number_);
    EXPECT_EQ(NumericType::integer, copy->type());
    EXPECT_EQ("[1] 1,2,3", copy->asString());
    EXPECT_EQ(6.0f, copy->value<Matrix4<float>>().x[3][1]);
    EXPECT_EQ(0.0f, copy->value<float>()) << "the default was copied as well";
    number_.setValueAt(0, int32_t(9));
    EXPECT_EQ(1, copy->value<int32_t>());
    copy->copyFrom(copy.get());
    EXPECT_EQ("[1] 1,2,3", copy->asString());
}

TEST_F(NumericTest, CopyOfAFreshValueStaysWithoutMemory) {
    const Retained<Numeric> copy(new Numeric(&manager_));
    copy->setType(NumericType::real);
    copy->resize(1000);
    copy->copyFrom(&number_);
    EXPECT_EQ(124u, copy->estimatedSize());
    EXPECT_EQ(NumericType::none, copy->type());
    EXPECT_EQ(1u, copy->size());
}

TEST_F(NumericTest, CopyFromAnotherClassChangesNothing) {
    const Retained<StringValue> text(new StringValue(&manager_));
    number_.setType(NumericType::real);
    number_.setValue(2.0f);
    number_.copyFrom(text.get());
    number_.copyFrom(nullptr);
    EXPECT_EQ("[3] 2", number_.asString());
}

TEST_F(NumericTest, PurgeGoesBackToDefaultsAndKeepsTheSelector) {
    number_.setType(NumericType::vector3);
    number_.resize(100);
    number_.refValues<int32_t>()[0] = 5;
    number_.purge();
    EXPECT_EQ(124u, number_.estimatedSize());
    EXPECT_EQ(NumericType::vector3, number_.type());
    EXPECT_EQ(1u, number_.size());
    EXPECT_EQ("[4] (0,0,0)", number_.asString());
    EXPECT_EQ(0, number_.value<int32_t>());
    number_.setValue(Vector3<float>(1, 2, 3));
    EXPECT_EQ("[4] (1,2,3)", number_.asString());
}

TEST_F(NumericTest, EstimatedSizeCountsCapacities) {
    number_.setType(NumericType::matrix4);
    number_.resize(10);
    EXPECT_EQ(124u + 9 * 64, number_.estimatedSize());
    EXPECT_EQ(10u + 256, number_.checkSum());
}

TEST_F(NumericTest, ArraysMayBeSwappedAndMoved) {
    number_.setType(NumericType::real);
    number_.setValue(1.0f);
    Array<float> other{5.0f, 6.0f};
    number_.refValues<float>().swap(other);
    number_.updateSize();
    EXPECT_EQ("[3] 5,6", number_.asString());
    ASSERT_EQ(1u, other.size());
    EXPECT_EQ(1.0f, other[0]);
    number_.refValues<float>() = std::move(other);
    number_.updateSize();
    EXPECT_EQ("[3] 1", number_.asString());
}

// Text.

TEST_F(NumericTest, TextOfEveryType) {
    EXPECT_EQ("", number_.asString());
    number_.refValues<Quaternion<float>>()[0] = {1, 2, 3, 4};
    number_.refValues<Color4<float>>()[0] = Color4<float>(0.25f, 0.5f, 0.75f, 1);
    number_.refValues<Vector3<float>>()[0] = Vector3<float>(-1, 0.1f, 1e20f);
    number_.refValues<int64_t>()[0] = std::numeric_limits<int64_t>::min();
    const char* expected[] = {"[1] 0",
                              "[2] -9223372036854775808",
                              "[3] 0",
                              "[4] (-1,0.1,1e+20)",
                              "[5] (0.25,0.5,0.75,1)",
                              "[6] (4,1,2,3)",
                              "[7] (1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)"};
    for (int i = 0; i < 7; ++i) {
        number_.setType(allSelectors[i]);
        EXPECT_EQ(expected[i], number_.asString());
    }
}

TEST_F(NumericTest, NewlineAfterEveryTwentiethElement) {
    number_.setType(NumericType::integer);
    number_.resize(20);
    EXPECT_EQ("[1] 0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n", number_.asString());
    number_.resize(21);
    EXPECT_EQ("[1] 0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\n0", number_.asString());
}

TEST_F(NumericTest, MatricesTakeTheirCommasFromTheVectors) {
    const TM_String one = "(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)";
    number_.setType(NumericType::matrix4);
    number_.resize(2);
    EXPECT_EQ("[7] " + one + one, number_.asString());
    number_.refValues<Vector3<float>>().resize(2);
    EXPECT_EQ("[7] " + one + "," + one, number_.asString());
    number_.refValues<Vector3<float>>().resize(3);
    EXPECT_EQ("[7] " + one + "," + one + ",", number_.asString());
}

TEST_F(NumericTest, ReadsWhatItWrites) {
    const char* texts[] = {"[1] 1,-2,2147483647",
                           "[2] 9223372036854775807,-9223372036854775808",
                           "[3] 0.1,-1e-30,3.4028235e+38,inf,-inf",
                           "[4] (1,2,3),(4,5,6)",
                           "[5] (0.25,0.5,0.75,1)",
                           "[6] (1,0,0,0),(0.5,0.5,0.5,0.5)",
                           "[7] (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16)",
                           "[1] ",
                           "[4] "};
    for (const char* text : texts) {
        const Retained<Numeric> number(new Numeric(&manager_));
        number->fromString(text);
        EXPECT_EQ(text, number->asString());
    }
    number_.fromString("[3] nan");
    EXPECT_TRUE(std::isnan(number_.value<float>()));
}

TEST_F(NumericTest, ReadsLongArraysBack) {
    number_.setType(NumericType::vector3);
    number_.resize(45);
    for (uint32_t i = 0; i < 45; ++i) number_.setValueAt(i, Vector3<float>(float(i), 0.5f, -1));
    const TM_String text = number_.asString();
    const Retained<Numeric> other(new Numeric(&manager_));
    other->fromString(text);
    EXPECT_EQ(45u, other->size());
    EXPECT_EQ(text, other->asString());
}

TEST_F(NumericTest, MatricesWithoutCommasAreNotReadBack) {
    const TM_String one = "(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)";
    number_.fromString("[7] " + one + one);
    EXPECT_EQ(NumericType::matrix4, number_.type());
    EXPECT_EQ(0u, number_.size());
    number_.fromString("[7] " + one + "," + one + ",");
    EXPECT_EQ(2u, number_.size());
}

TEST_F(NumericTest, ElementsWithAWrongNumberOfPartsAreLeftOut) {
    number_.fromString("[4] (1,2,3),(4,5),(6,7,8,9),(10,11,12)");
    EXPECT_EQ("[4] (1,2,3),(10,11,12)", number_.asString());
    number_.fromString("[6] (1,2,3)");
    EXPECT_EQ("[6] ", number_.asString());
    EXPECT_EQ(0u, number_.size());
}

TEST_F(NumericTest, WordsReadAsZero) {
    number_.fromString("[1] a,2b,,4");
    EXPECT_EQ("[1] 0,2,0,4", number_.asString());
    number_.fromString("[1] 4294967297");
    EXPECT_EQ("[1] 1", number_.asString());
    number_.fromString("[3] 1e999");
    EXPECT_EQ("[3] inf", number_.asString());
}

TEST_F(NumericTest, TextsWithoutSelectorChangeNothing) {
    number_.fromString("[1] 5");
    for (const char* text : {"", " ", "[", "[]", "[] 4", "[0] 4", "[8] 4", "[-1] 4", "1 4", "4",
                             "[1 4", "x[1] 4", "\n\n", "[99999999999999999999] 1"}) {
        number_.fromString(text);
        EXPECT_EQ("[1] 5", number_.asString()) << text;
    }
    number_.fromString("[2]");
    EXPECT_EQ("[2] ", number_.asString());
}

TEST_F(NumericTest, TextDoesNotDependOnTheLocale) {
    ASSERT_TRUE(std::setlocale(LC_ALL, "de_DE.UTF-8"));
    number_.fromString("[3] 1.5,2.25");
    const TM_String text = number_.asString();
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ("[3] 1.5,2.25", text);
}

// Conversions.

TEST(Conversion, RealsAreTruncatedTowardZero) {
    EXPECT_EQ(7, truncateTo<int32_t>(7.9f));
    EXPECT_EQ(-7, truncateTo<int32_t>(-7.9f));
    EXPECT_EQ(0, truncateTo<int32_t>(-0.5));
    EXPECT_EQ(16777216, truncateTo<int32_t>(16777216.0f));
}

TEST(Conversion, WhatDoesNotFitBecomesTheNearestInteger) {
    constexpr auto min32 = std::numeric_limits<int32_t>::min();
    constexpr auto max32 = std::numeric_limits<int32_t>::max();
    EXPECT_EQ(max32, truncateTo<int32_t>(2147483648.0f));
    EXPECT_EQ(max32, truncateTo<int32_t>(1e30f));
    EXPECT_EQ(max32, truncateTo<int32_t>(INFINITY));
    EXPECT_EQ(min32, truncateTo<int32_t>(-2147483648.0f));
    EXPECT_EQ(min32, truncateTo<int32_t>(-INFINITY));
    EXPECT_EQ(min32, truncateTo<int32_t>(-2147483648.5));
    EXPECT_EQ(max32, truncateTo<int32_t>(2147483647.5));
    EXPECT_EQ(0, truncateTo<int32_t>(NAN));
    EXPECT_EQ(std::numeric_limits<int64_t>::max(), truncateTo<int64_t>(9223372036854775808.0f));
    EXPECT_EQ(std::numeric_limits<int64_t>::min(), truncateTo<int64_t>(-1e30f));
    EXPECT_EQ(0, truncateTo<int64_t>(NAN));
}

TEST(Conversion, IntegersWrap) {
    constexpr auto min32 = std::numeric_limits<int32_t>::min();
    constexpr auto max32 = std::numeric_limits<int32_t>::max();
    EXPECT_EQ(min32, tidemark::wrappingAdd(max32, 1));
    EXPECT_EQ(max32, tidemark::wrappingSub(min32, 1));
    EXPECT_EQ(1, tidemark::wrappingMul(max32, max32));
    EXPECT_EQ(min32, tidemark::wrappingDiv(min32, -1));
    EXPECT_EQ(-3, tidemark::wrappingDiv(7, -2));
}

// The port.

class NumericAttributeTest : public testing::Test {
protected:
    NumericAttributeTest() {
        node_->addInputAttribute(pin_);
        node_->addInputAttribute(text_);
    }
    ~NumericAttributeTest() override { node_->deleteIt(); }

    NetworkManager manager_;
    Retained<Node> node_{new Node(&manager_, "n", nullptr)};
    NumericAttribute* pin_ = new NumericAttribute(&manager_, "number", node_.get());
    StringAttribute* text_ = new StringAttribute(&manager_, "text", node_.get());
};

TEST_F(NumericAttributeTest, MayBecomeAnyNumericType) {
    EXPECT_EQ("NumericAttribute", pin_->className());
    EXPECT_EQ("\"Integer\", \"Integer64\", \"Real\", \"Vector3\", \"Color4\", \"Quaternion\", "
              "\"Matrix4\"",
              pin_->allowedSpecializationsText());
    EXPECT_TRUE(pin_->allowedSpecializations() == pin_->specializations());
    EXPECT_EQ(NumericType::none, pin_->ownNumeric().type());
}

TEST_F(NumericAttributeTest, OneNameSetsTheTypeAndMoreTakeItAway) {
    pin_->applySpecializations(SpecializationList{"Real"});
    EXPECT_EQ(NumericType::real, pin_->ownNumeric().type());
    pin_->ownNumeric().setValue(2.5f);
    pin_->applySpecializations(SpecializationList{"Integer"});
    EXPECT_EQ(0, pin_->ownNumeric().value<int32_t>());
    pin_->applySpecializations(SpecializationList{"Integer", "Real"});
    EXPECT_EQ(NumericType::none, pin_->ownNumeric().type());
    pin_->applySpecializations(SpecializationList{"Real"});
    EXPECT_EQ("[3] 2.5", pin_->ownNumeric().asString());
    pin_->applySpecializations(SpecializationList{"Bit"});
    EXPECT_EQ(NumericType::none, pin_->ownNumeric().type());
}

TEST_F(NumericAttributeTest, DebugInfoNamesTheSize) {
    pin_->ownNumeric().setSize(3);
    EXPECT_NE(TM_String::npos, pin_->debugInfo().find("array size: 3\n"));
}

TEST_F(NumericAttributeTest, ReadsADefaultFromASourceOfAnotherClass) {
    ASSERT_TRUE(text_->connectTo(pin_, nullptr) || pin_->source() == text_);
    ASSERT_EQ(text_->value(), pin_->currentValue());
    EXPECT_EQ(1u, pin_->numeric().size());
    EXPECT_EQ(0.0f, pin_->numeric().value<float>());
    EXPECT_EQ(NumericType::none, pin_->numeric().type());
    pin_->setPassThrough(true);
    EXPECT_EQ(nullptr, pin_->numericTarget());
}

} // namespace

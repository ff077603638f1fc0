// SPDX-License-Identifier: Apache-2.0
// Choices: options, text form, and keys from lists, integers and strings.
#include "core/enum_value.h"

#include <gtest/gtest.h>

#include "core/bit_array.h"
#include "core/network_manager.h"
#include "core/node.h"
#include "core/numeric.h"
#include "core/string_value.h"

namespace {

using namespace weft;
using tidemark::TM_String;

TEST(Enum, FreshValueHasChosenKeyZero) {
    NetworkManager manager;
    const Retained<Enum> list(new Enum(&manager));
    EXPECT_EQ(1u, list->size());
    EXPECT_EQ(0, list->keyAt(0));
    EXPECT_TRUE(list->options().empty());
    EXPECT_EQ("[{},0", list->asString());
    EXPECT_EQ(1u, list->checkSum());
}

TEST(Enum, LooksUpLabelsAndKeys) {
    NetworkManager manager;
    const Retained<Enum> list(new Enum(&manager));
    list->setOption(4, "greater");
    list->setOption(0, "equal");
    list->setOption(1, "different");
    EXPECT_EQ("greater", list->label(4));
    EXPECT_EQ("", list->label(3));
    EXPECT_EQ(1, list->keyOf("different"));
    EXPECT_EQ(Enum::noKey, list->keyOf("Different"));
    EXPECT_EQ(0, list->options().begin()->first) << "in the order of the keys";
}

TEST(Enum, TextFormReadsBack) {
    NetworkManager manager;
    const Retained<Enum> list(new Enum(&manager));
    list->setOption(0, "a b");
    list->setOption(-3, "quote\" and : and ,");
    list->setOption(7, "");
    list->refKeys() = {7, 0, 7};
    const TM_String text = list->asString();
    EXPECT_EQ("[{-3:\"quote\" and : and ,\",0:\"a b\",7:\"\",},7,0,7", text);
    const Retained<Enum> other(new Enum(&manager));
    other->fromString(text);
    EXPECT_EQ(text, other->asString());
    list->refKeys().clear();
    other->fromString(list->asString());
    EXPECT_EQ(0u, other->size());
    EXPECT_EQ(Enum::noKey, other->keyAt(0));
}

TEST(Enum, OtherTextsChangeNothing) {
    NetworkManager manager;
    const Retained<Enum> list(new Enum(&manager));
    list->setOption(1, "one");
    list->setKey(1);
    const TM_String before = list->asString();
    for (const char* text : {"", "one", "[", "[{", "[{1", "[{1:", "[{1:\"", "[{1:\",", "[{1:\"a\"",
                             "[{1:\"a\",", "[{1:\"a\",}", "[{1:a\",},0", "[{:},"}) {
        list->fromString(text);
        EXPECT_EQ(before, list->asString()) << text;
    }
}

TEST(Enum, CopyAndPurge) {
    NetworkManager manager;
    const Retained<Enum> list(new Enum(&manager));
    const Retained<Enum> copy(new Enum(&manager));
    list->setOption(1, "one");
    list->refKeys() = {1, 1, 0};
    copy->copyFrom(list.get());
    EXPECT_EQ(list->asString(), copy->asString());
    copy->copyFrom(copy.get());
    const Retained<StringValue> text(new StringValue(&manager));
    copy->copyFrom(text.get());
    EXPECT_EQ(list->asString(), copy->asString());
    EXPECT_GT(list->estimatedSize(), 12u);
    list->purge();
    EXPECT_EQ("[{1:\"one\",},0", list->asString());
    list->setKey(1);
    EXPECT_EQ(1, list->keyAt(5));
}

//   n.number, n.text, n.list, n.plain -> n.pin
class EnumAttributeTest : public testing::Test {
protected:
    template <typename A>
    A* add(const char* name) {
        A* attribute = new A(&manager_, name, node_.get());
        node_->addInputAttribute(attribute);
        return attribute;
    }
    EnumAttributeTest() { pin_->setOptions({"zero", "one", "two"}); }
    ~EnumAttributeTest() override { node_->deleteIt(); }

    NetworkManager manager_;
    Retained<Node> node_{new Node(&manager_, "n", nullptr)};
    EnumAttribute* pin_ = add<EnumAttribute>("pin");
    NumericAttribute* number_ = add<NumericAttribute>("number");
    StringAttribute* text_ = add<StringAttribute>("text");
};

TEST_F(EnumAttributeTest, AllowsListIntegerAndString) {
    EXPECT_EQ("EnumAttribute", pin_->className());
    EXPECT_EQ("\"List\", \"Integer\", \"String\"", pin_->allowedSpecializationsText());
    EXPECT_EQ(3u, pin_->ownEnum().options().size());
    EXPECT_EQ("two", pin_->ownEnum().label(2));
}

TEST_F(EnumAttributeTest, UnconnectedIsAList) {
    EXPECT_EQ(0, pin_->enumValue(0));
    pin_->ownEnum().refKeys() = {2, 1};
    EXPECT_EQ(2, pin_->enumValue(0));
    EXPECT_EQ(1, pin_->enumValue(9)) << "the last key is repeated";
    pin_->ownEnum().refKeys().clear();
    EXPECT_EQ(-1, pin_->enumValue(0));
}

TEST_F(EnumAttributeTest, TakesIntegersAsTheyAre) {
    number_->setAllowedSpecializations(SpecializationList{"Integer"});
    number_->ownNumeric().setValues(Array<int32_t>{3, -5});
    ASSERT_TRUE(manager_.connect(number_, pin_, nullptr));
    EXPECT_EQ("Integer", pin_->specialization());
    EXPECT_EQ(3, pin_->enumValue(0));
    EXPECT_EQ(-5, pin_->enumValue(1));
    EXPECT_EQ(-5, pin_->enumValue(7));
}

TEST_F(EnumAttributeTest, LooksStringsUp) {
    text_->ownStrings().setSize(2);
    text_->ownStrings().setValueAt(0, "two");
    text_->ownStrings().setValueAt(1, "three");
    ASSERT_TRUE(manager_.connect(text_, pin_, nullptr));
    EXPECT_EQ(2, pin_->enumValue(0));
    EXPECT_EQ(-1, pin_->enumValue(1));
}

TEST_F(EnumAttributeTest, TakesTheKeysOfAnotherList) {
    auto* other = add<EnumAttribute>("other");
    other->setAllowedSpecializations(SpecializationList{"List"});
    other->ownEnum().setKey(1);
    ASSERT_TRUE(manager_.connect(other, pin_, nullptr));
    EXPECT_EQ(1, pin_->enumValue(0));
    pin_->disconnectSource();
    EXPECT_EQ(0, pin_->enumValue(0));
}

TEST_F(EnumAttributeTest, HasNoKeyWhileTheSourceIsOpen) {
    auto* other = add<EnumAttribute>("other");
    ASSERT_TRUE(manager_.connect(other, pin_, nullptr));
    ASSERT_FALSE(pin_->isSpecialized());
    EXPECT_EQ(-1, pin_->enumValue(0));
}

TEST_F(EnumAttributeTest, HasNoKeyFromAValueOfAnotherClass) {
    auto* bits = add<BitArrayAttribute>("bits");
    text_->setValue(bits->value());
    ASSERT_TRUE(manager_.connect(text_, pin_, nullptr));
    ASSERT_EQ(bits->value(), pin_->currentValue());
    ASSERT_TRUE(pin_->isSpecialized());
    EXPECT_EQ(-1, pin_->enumValue(0));
}

} // namespace

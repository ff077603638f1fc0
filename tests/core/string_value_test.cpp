// SPDX-License-Identifier: Apache-2.0
// Strings and stored elements, their ports, and the evaluate port.
#include "core/string_value.h"

#include <gtest/gtest.h>

#include "core/bit_array.h"
#include "core/evaluate_attribute.h"
#include "core/network_manager.h"
#include "core/node.h"
#include "core/numeric.h"
#include "core/types.h"

namespace {

using namespace weft;
using tidemark::TM_String;

// Larger than what a value keeps inside itself.
struct Large {
    int numbers[20] = {4};
    friend bool operator==(const Large&, const Large&) = default;
};
class LargeValue : public StoredValue<Large> {
public:
    static const ValueKind kind;
    explicit LargeValue(NetworkManager* manager) : StoredValue(manager, kind) {}
};
const ValueKind LargeValue::kind{"LargeValue"};

class StringValueTest : public testing::Test {
protected:
    NetworkManager manager_;
    Retained<StringValue> holder_{new StringValue(&manager_)};
    StringValue& strings_ = *holder_;
};

TEST_F(StringValueTest, FreshValueIsOneEmptyString) {
    EXPECT_EQ(1u, strings_.size());
    EXPECT_EQ("", strings_.valueAt(0));
    EXPECT_EQ("", strings_.asString());
    EXPECT_EQ(sizeof(TM_String), strings_.estimatedSize());
    EXPECT_EQ(1u, strings_.checkSum());
}

TEST_F(StringValueTest, TextIsTheStringItself) {
    const TM_String text = "  two words,\n\"quoted\" %n%s \xc3\xa4 ";
    strings_.fromString(text);
    EXPECT_EQ(1u, strings_.size());
    EXPECT_EQ(text, strings_.asString());
    strings_.append("end");
    EXPECT_EQ(text + "\nend", strings_.asString());
}

TEST_F(StringValueTest, IndexPastTheEndReadsTheLastElement) {
    strings_.setValue("a");
    strings_.append("b");
    EXPECT_EQ("a", strings_.valueAt(0));
    EXPECT_EQ("b", strings_.valueAt(99));
    strings_.setSize(0);
    EXPECT_EQ("", strings_.valueAt(0));
    EXPECT_EQ("", strings_.asString());
}

TEST_F(StringValueTest, ElementsAreSetAndRemovedByIndex) {
    strings_.setSize(3);
    strings_.setValueAt(0, "a");
    strings_.setValueAt(1, "b");
    strings_.setValueAt(2, "c");
    strings_.setValueAt(3, "d");
    EXPECT_EQ("a\nb\nc", strings_.asString());
    strings_.removeAt(1);
    strings_.removeAt(5);
    EXPECT_EQ("a\nc", strings_.asString());
    strings_.setSize(3);
    EXPECT_EQ("a\nc\n", strings_.asString());
    strings_.setValue(strings_.valueAt(1));
    EXPECT_EQ("c", strings_.asString());
}

TEST_F(StringValueTest, CopiesArePrivate) {
    const Retained<StringValue> copy(new StringValue(&manager_));
    strings_.setValue("a long string that does not fit into a string object");
    strings_.append("b");
    copy->copyFrom(&strings_);
    strings_.setValueAt(1, "c");
    EXPECT_EQ("b", copy->valueAt(1));
    copy->copyFrom(copy.get());
    const Retained<BitArrayValue> bits(new BitArrayValue(&manager_));
    copy->copyFrom(bits.get());
    copy->copyFrom(nullptr);
    EXPECT_EQ(2u, copy->size());
    EXPECT_GT(copy->estimatedSize(), 2 * sizeof(TM_String) + 40);
}

TEST_F(StringValueTest, PurgeGoesBackToOneEmptyString) {
    strings_.setSize(100);
    strings_.purge();
    EXPECT_EQ(1u, strings_.size());
    EXPECT_EQ(sizeof(TM_String), strings_.estimatedSize());
    strings_.setValue("again");
    strings_.append("and again");
    strings_.purge();
    EXPECT_EQ("", strings_.asString());
}

TEST_F(StringValueTest, GrowthIsHeldAgainstTheElementLimit) {
    tidemark::limits::set({.maxElements = 10});
    EXPECT_NO_THROW(strings_.setSize(10));
    EXPECT_THROW(strings_.setSize(11), std::bad_alloc);
    EXPECT_THROW(strings_.append("x"), std::bad_alloc);
    EXPECT_EQ(10u, strings_.size());
    tidemark::limits::set({});
    strings_.setSize(20);
    const Retained<StringValue> copy(new StringValue(&manager_));
    tidemark::limits::set({.maxElements = 10});
    EXPECT_THROW(copy->copyFrom(&strings_), std::bad_alloc);
    tidemark::limits::set({});
    EXPECT_EQ(1u, copy->size());
}

TEST_F(StringValueTest, StoredElementsMayBeLarge) {
    const Retained<LargeValue> large(new LargeValue(&manager_));
    EXPECT_EQ(1u, large->size());
    EXPECT_EQ(Large(), large->valueAt(7));
    Large other;
    other.numbers[3] = 9;
    large->append(other);
    EXPECT_EQ(other, large->valueAt(1));
    large->purge();
    EXPECT_EQ(1u, large->size());
    EXPECT_EQ(nullptr, valueAs<StringValue>(static_cast<Value*>(large.get())));
}

class StringAttributeTest : public testing::Test {
protected:
    template <typename A>
    A* add(const char* name, bool output = false) {
        A* attribute = new A(&manager_, name, node_.get());
        if (output)
            node_->addOutputAttribute(attribute);
        else
            node_->addInputAttribute(attribute);
        return attribute;
    }
    ~StringAttributeTest() override { node_->deleteIt(); }

    NetworkManager manager_;
    Retained<Node> node_{new Node(&manager_, "n", nullptr)};
};

TEST_F(StringAttributeTest, ClassesAndTypes) {
    auto* text = add<StringAttribute>("text");
    auto* path = add<FilePathAttribute>("path");
    auto* folder = add<FolderAttribute>("folder");
    EXPECT_EQ("StringAttribute", text->className());
    EXPECT_EQ("FilePathAttribute", path->className());
    EXPECT_EQ("FolderAttribute", folder->className());
    EXPECT_EQ("\"String\"", text->allowedSpecializationsText());
    EXPECT_EQ("\"FilePath\", \"String\"", path->allowedSpecializationsText());
    EXPECT_EQ("\"Folder\", \"String\"", folder->allowedSpecializationsText());
    EXPECT_TRUE(manager_.canConnect(text, path, nullptr));
    EXPECT_TRUE(manager_.canConnect(path, text, nullptr));
    EXPECT_TRUE(manager_.canConnect(folder, path, nullptr)) << "both may be strings";
    EXPECT_FALSE(path->hasSaveFileFlag());
    path->setSaveFileFlag(true);
    EXPECT_TRUE(path->hasSaveFileFlag());
}

TEST_F(StringAttributeTest, ReadsAnEmptyStringFromASourceOfAnotherClass) {
    auto* text = add<StringAttribute>("text");
    auto* bits = add<BitArrayAttribute>("bits");
    text->ownStrings().setValue("own");
    EXPECT_EQ("own", text->firstString());
    bits->connectTo(text, nullptr);
    ASSERT_EQ(bits->value(), text->currentValue());
    EXPECT_EQ("", text->firstString());
    EXPECT_EQ(1u, text->strings().size());
    text->setPassThrough(true);
    EXPECT_EQ(nullptr, text->stringsTarget());
}

TEST_F(StringAttributeTest, EvaluateTakesEveryNamedTypeButPolymorphic) {
    auto* in = add<EvaluateAttribute>("in");
    EXPECT_EQ("EvaluateAttribute", in->className());
    EXPECT_EQ("The evaluate.", in->getDescription());
    EXPECT_EQ("All", in->allowedSpecializationsText());
    const SpecializationList& list = in->allowedSpecializations();
    EXPECT_EQ(68u, list.size());
    EXPECT_EQ("Integer", list[0]);
    EXPECT_EQ("RealField", list[67]);
    EXPECT_FALSE(list.contains("Polymorphic"));
    EXPECT_TRUE(list.contains("Evaluate"));
    EXPECT_TRUE(in->specializations() == list);
    EXPECT_EQ(nullptr, in->value());
}

TEST_F(StringAttributeTest, EvaluateOutputIsEvaluateAlone) {
    auto* out = add<EvaluateAttribute>("out", true);
    EXPECT_EQ("\"Evaluate\"", out->allowedSpecializationsText());
    EXPECT_EQ("Evaluate", out->specialization());
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Pointers to objects that live elsewhere, and their ports.
#include "core/pointer_value.h"

#include <gtest/gtest.h>

#include "core/bit_array.h"
#include "core/limits.h"
#include "core/network_manager.h"
#include "core/node.h"
#include "core/numeric.h"

namespace {

using namespace weft;
using tidemark::TM_String;

struct Anchor {
    int depth = 0;
};
struct Buoy {};
using AnchorValue = PointerValue<Anchor>;
using BuoyValue = PointerValue<Buoy>;

class AnchorAttribute : public PointerAttribute {
public:
    AnchorAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
        : PointerAttribute(manager, name, parent, new AnchorValue(manager), AnchorValue::kind) {
        appendClass<"AnchorAttribute">();
        initializeSpecializations({"Anchor"});
    }
};

class PointerValueTest : public testing::Test {
protected:
    TM_String nulls() {
        const Retained<BitArrayValue> mask(new BitArrayValue(&manager_));
        pointers_.nullMask(*mask);
        return mask->asString();
    }
    // Positions of the elements in `anchors_`, "-" for null.
    TM_String shown() {
        TM_String text;
        for (void* element : pointers_.values()) {
            text += element ? std::to_string(static_cast<Anchor*>(element) - anchors_) : "-";
        }
        return text;
    }
    void fill(uint32_t count) {
        pointers_.setSize(0);
        for (uint32_t i = 0; i < count; ++i) pointers_.append(&anchors_[i]);
    }

    NetworkManager manager_;
    Retained<AnchorValue> holder_{new AnchorValue(&manager_)};
    AnchorValue& pointers_ = *holder_;
    Anchor anchors_[10];
};

TEST_F(PointerValueTest, FreshValueIsOneNull) {
    EXPECT_EQ(1u, pointers_.size());
    EXPECT_EQ(nullptr, pointers_.valueAt(0));
    EXPECT_EQ(nullptr, pointers_.at(7));
    EXPECT_EQ("1", nulls());
    EXPECT_EQ(sizeof(void*), pointers_.estimatedSize());
    EXPECT_EQ(1u, pointers_.checkSum());
}

TEST_F(PointerValueTest, IndexPastTheEndReadsTheLastElement) {
    fill(3);
    EXPECT_EQ(&anchors_[1], pointers_.at(1));
    EXPECT_EQ(&anchors_[2], pointers_.at(99));
    EXPECT_EQ(&anchors_[2], pointers_.at(~uint32_t(0)));
    pointers_.setSize(0);
    EXPECT_EQ(nullptr, pointers_.at(0));
    EXPECT_EQ("", nulls());
}

TEST_F(PointerValueTest, GrowthAddsNulls) {
    fill(2);
    pointers_.setSize(4);
    EXPECT_EQ("01--", shown());
    EXPECT_EQ("0011", nulls());
    pointers_.setValueAt(3, &anchors_[5]);
    pointers_.setValueAt(4, &anchors_[6]);
    pointers_.removeAt(0);
    EXPECT_EQ("1-5", shown());
}

TEST_F(PointerValueTest, CopiesSharePointersWithTheSameClassOnly) {
    fill(3);
    const Retained<AnchorValue> copy(new AnchorValue(&manager_));
    const Retained<BuoyValue> other(new BuoyValue(&manager_));
    copy->copyFrom(&pointers_);
    EXPECT_TRUE(copy->values() == pointers_.values());
    other->copyFrom(&pointers_);
    EXPECT_EQ(1u, other->size());
    EXPECT_EQ(nullptr, valueAs<BuoyValue>(static_cast<Value*>(copy.get())));
    pointers_.purge();
    EXPECT_EQ("-", shown());
    EXPECT_EQ(3u, copy->size());
}

TEST_F(PointerValueTest, RemovingBlanksBelowAndAboveTheSortedLimit) {
    fill(6);
    pointers_.append(&anchors_[0]);
    pointers_.removeReferencesTo({});
    EXPECT_EQ("0123450", shown());
    pointers_.removeReferencesTo({&anchors_[0], nullptr, &anchors_[9]});
    EXPECT_EQ("-12345-", shown());
    pointers_.removeReferencesTo({&anchors_[5], &anchors_[9], &anchors_[1], &anchors_[3]});
    EXPECT_EQ("--2-4--", shown());
    EXPECT_EQ("1101011", nulls());
}

TEST_F(PointerValueTest, RemovingManyAgreesWithTheDefinition) {
    fill(10);
    Array<void*> gone;
    for (int i = 0; i < 10; ++i) {
        if (i % 3 == 0) gone.append(&anchors_[9 - i]);
    }
    pointers_.removeReferencesTo(gone);
    EXPECT_EQ("-12-45-78-", shown());
}

TEST_F(PointerValueTest, PinnedArraysStayInPlace) {
    fill(3);
    pointers_.pin(true);
    EXPECT_TRUE(pointers_.isPinned());
    EXPECT_THROW(pointers_.setSize(1000), tidemark::PinnedArray);
    EXPECT_THROW(pointers_.purge(), tidemark::PinnedArray);
    pointers_.pin(false);
    EXPECT_EQ("012", shown());
}

TEST_F(PointerValueTest, SizesAreHeldAgainstTheLimit) {
    tidemark::limits::set({.maxElements = 100});
    EXPECT_THROW(pointers_.setSize(101), std::bad_alloc);
    tidemark::limits::set({});
    EXPECT_EQ(1u, pointers_.size());
}

TEST_F(PointerValueTest, PortsShowNullForOtherKinds) {
    Node node(&manager_, "node", nullptr);
    auto* in = new AnchorAttribute(&manager_, "in", &node);
    node.addInputAttribute(in);
    EXPECT_EQ(nullptr, in->firstPointer());
    in->ownPointers().setValue(&anchors_[3]);
    EXPECT_EQ(&anchors_[3], in->firstPointer());
    EXPECT_EQ(&anchors_[3], pointerAt<Anchor>(*in, 5));
    EXPECT_EQ(&in->ownPointers(), in->pointersTarget());
    in->removeReferencesTo({&anchors_[3]});
    EXPECT_EQ(nullptr, in->firstPointer());
    const Retained<Numeric> number(new Numeric(&manager_));
    in->setValue(number.get());
    EXPECT_EQ(1u, in->pointers().size());
    EXPECT_EQ(nullptr, in->firstPointer());
    EXPECT_EQ(nullptr, in->pointersTarget());
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// Ports that carry a value of any class.
#include "core/any_attribute.h"

#include <gtest/gtest.h>

#include "core/bit_array.h"
#include "core/evaluate_attribute.h"
#include "core/network_manager.h"
#include "core/node.h"
#include "core/numeric.h"

namespace {

using namespace weft;

class Relay : public Node {
public:
    Relay(NetworkManager* manager, const tidemark::TM_String& name) : Node(manager, name, nullptr) {
        in = addInput<AnyAttribute>("in");
        out = addOutput<AnyAttribute>("out");
        number = addOutput<NumericAttribute>("number");
        bits = addInput<BitArrayAttribute>("bits");
    }
    AnyAttribute* in;
    AnyAttribute* out;
    NumericAttribute* number;
    BitArrayAttribute* bits;
};

class AnyAttributes : public testing::Test {
protected:
    NetworkManager manager;
    Retained<Relay> first{new Relay(&manager, "first")};
    Retained<Relay> second{new Relay(&manager, "second")};
};

TEST_F(AnyAttributes, IsNamedLast) { EXPECT_EQ("AnyAttribute", first->in->className()); }

TEST_F(AnyAttributes, HasNoValueOfItsOwn) {
    EXPECT_EQ(nullptr, first->in->value());
    EXPECT_EQ(nullptr, first->in->currentValue());
    EXPECT_EQ(nullptr, first->out->writeTarget());
}

TEST_F(AnyAttributes, MayBeEveryTypeButPolymorphic) {
    const SpecializationList& allowed = first->in->allowedSpecializations();
    EXPECT_EQ(68u, allowed.size());
    EXPECT_TRUE(allowed == EvaluateAttribute::allTypes());
    EXPECT_TRUE(first->in->specializations() == allowed);
    EXPECT_TRUE(allowed.contains("Condition"));
    EXPECT_FALSE(allowed.contains("Polymorphic"));
}

TEST_F(AnyAttributes, ShowsAllOnBothSides) {
    EXPECT_EQ("All", first->in->allowedSpecializationsText());
    EXPECT_EQ("All", first->out->allowedSpecializationsText());
}

TEST_F(AnyAttributes, ShowsWhatItsSourceShows) {
    ASSERT_TRUE(manager.connect(first->number, second->in, nullptr));
    EXPECT_EQ(first->number->value(), second->in->currentValue());
    second->in->disconnectSource();
    EXPECT_EQ(nullptr, second->in->currentValue());
}

TEST_F(AnyAttributes, HandsAnObjectOnToItsReaders) {
    ASSERT_TRUE(manager.connect(first->out, second->in, nullptr));
    first->out->setValue(first->number->value());
    EXPECT_EQ(first->number->value(), second->in->currentValue());
}

TEST_F(AnyAttributes, ReadersOfAnotherClassSeeTheirFallback) {
    ASSERT_TRUE(manager.connect(first->out, second->bits, nullptr));
    first->out->setValue(first->number->value());
    EXPECT_EQ("0", second->bits->bits().asString());
}

} // namespace

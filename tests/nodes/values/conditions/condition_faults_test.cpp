// SPDX-License-Identifier: Apache-2.0
// Condition nodes on what no graph should hold: values of other classes, missing values, empty
// arrays.
#include <gtest/gtest.h>

#include <functional>

#include "nodes/values/conditions/condition_net.h"

namespace {

using namespace sluice_tests;
using namespace weft;

// All types but the one of values of any class, which hands on whatever there is.
const std::vector<TM_String>& types() {
    static const std::vector<TM_String> all = [] {
        std::vector<TM_String> list{"ConditionGeneric", "ConditionFilterBy", "ConditionIsZero"};
        for (const TM_String name : {"EqualTo", "NotEqualTo", "LessThan", "LessOrEqual",
                                     "GreaterThan", "GreaterOrEqual"}) {
            list.push_back("Condition" + name);
            list.push_back("Condition" + name + "Constant");
            list.push_back("ConditionFilterBy" + name);
        }
        return list;
    }();
    return all;
}

// Has every node updated, of each type that it compares, after `spoil` had its way with it.
void updateSpoiled(const std::function<void(ConditionNet&, Node&)>& spoil) {
    for (const TM_String& type : types()) {
        for (const char* chosen : {"Integer", "Real", "Vector3", "Color4", "Matrix4"}) {
            ConditionNet net;
            Node& node = net.add(type, "n");
            for (Attribute* in : node.refInputAttributes()) {
                if (in->name().find("value") == 0) net.type("n." + in->name(), chosen);
            }
            spoil(net, node);
            for (Attribute* out : node.refOutputAttributes()) {
                EXPECT_NO_THROW(node.doUpdate(out)) << type << " of " << chosen;
            }
        }
    }
}

TEST(ConditionFaults, ValuesOfAnotherClassAreHarmless) {
    updateSpoiled([](ConditionNet& net, Node& node) {
        const Retained<Value> other(new StringValue(&net.manager()));
        for (Attribute* in : node.refInputAttributes()) in->setValue(other.get());
    });
}

TEST(ConditionFaults, MissingValuesAreHarmless) {
    updateSpoiled([](ConditionNet&, Node& node) {
        for (Attribute* in : node.refInputAttributes()) in->setValue(nullptr);
    });
}

TEST(ConditionFaults, TargetsOfAnotherClassStayAsTheyAre) {
    const auto spoil = [](Value& other) {
        return [&other](ConditionNet&, Node& node) {
            for (Attribute* out : node.refOutputAttributes()) out->setValue(&other);
        };
    };
    ConditionNet net;
    const Retained<StringValue> other(new StringValue(&net.manager()));
    other->setValue("kept");
    updateSpoiled(spoil(*other));
    EXPECT_EQ("kept", other->asString());
}

TEST(ConditionFaults, MissingTargetsAreHarmless) {
    updateSpoiled([](ConditionNet&, Node& node) {
        for (Attribute* out : node.refOutputAttributes()) out->setValue(nullptr);
    });
}

TEST(ConditionFaults, EmptyInputsGiveEmptyOutputs) {
    updateSpoiled([](ConditionNet&, Node& node) {
        for (Attribute* in : node.refInputAttributes()) {
            if (auto* number = valueAs<Numeric>(in->value())) number->resize(0);
            if (auto* choice = valueAs<Enum>(in->value())) choice->refKeys().clear();
        }
    });
    for (const TM_String type : {"ConditionFilterBy", "ConditionFilterByLessThan"}) {
        ConditionNet net;
        Node& node = net.add(type, "n");
        for (Attribute* in : node.refInputAttributes()) {
            auto* number = valueAs<Numeric>(in->value());
            if (!number) continue;
            net.type("n." + in->name(), "Vector3");
            number->resize(0);
        }
        EXPECT_EQ("[4] ", net.text("n.result"));
        EXPECT_EQ("", net.text("n.mask"));
        EXPECT_EQ("", net.messages("n"));
    }
}

TEST(ConditionFaults, ChoiceHandsOnWhateverThereIs) {
    ConditionNet net;
    net.add("ConditionIf", "i");
    const Retained<StringValue> text(new StringValue(&net.manager()));
    net.pin("i.condition").setValue(text.get());
    const Retained<Enum> choice(new Enum(&net.manager()));
    net.pin("i.false value").setValue(choice.get());
    net.refresh("i.value");
    EXPECT_EQ(choice.get(), net.pin("i.value").value()) << "what is no bit reads false";
    net.pin("i.condition").setValue(nullptr);
    net.pin("i.value").markDirty(true);
    EXPECT_NO_THROW(net.refresh("i.value"));
}

} // namespace

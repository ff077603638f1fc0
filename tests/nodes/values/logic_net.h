// SPDX-License-Identifier: Apache-2.0
// A small network of logic nodes for tests, spoken to in a few words:
//
//     LogicNet net;
//     net.add("Real", "r");
//     net.add("Add", "a");
//     net.link("r.real", "a.in0");
//     net.numbers("r.in", {2.5f});
//     EXPECT_EQ("[3] 2.5", net.text("a.result"));
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>

#include "core/bit_array.h"
#include "core/enum_value.h"
#include "core/node.h"
#include "core/numeric.h"
#include "core/string_value.h"

namespace sluice_tests {

using tidemark::TM_String;

class LogicNet {
public:
    LogicNet();
    ~LogicNet();

    weft::NetworkManager& manager();

    /// A node of a registered type, below the root.
    weft::Node& add(const TM_String& type, const TM_String& name);
    weft::Node& node(const TM_String& name);
    /// `pin` is "node.pin".
    weft::Attribute& pin(const TM_String& pin);
    template <typename A>
    A& as(const TM_String& name) {
        A* attribute = dynamic_cast<A*>(&pin(name));
        if (!attribute) throw std::runtime_error(name + " is of another class");
        return *attribute;
    }
    bool link(const TM_String& from, const TM_String& to) {
        return manager().connect(&pin(from), &pin(to), nullptr);
    }
    bool canLink(const TM_String& from, const TM_String& to) {
        return manager().canConnect(&pin(from), &pin(to), nullptr);
    }

    /// Chooses the type of a polymorphic pin.
    void type(const TM_String& name, const TM_String& specialization) {
        pin(name).setSpecializationOverride(specialization);
        pin(name).updateSpecializations(nullptr);
    }
    template <typename T>
    void numbers(const TM_String& name, std::initializer_list<T> values) {
        auto& attribute = as<weft::NumericAttribute>(name);
        attribute.ownNumeric().setValues(tidemark::Array<T>(values));
        attribute.valueChanged();
    }
    void strings(const TM_String& name, std::initializer_list<const char*> values) {
        auto& attribute = as<weft::StringAttributeBase>(name);
        attribute.ownStrings().setSize(0);
        for (const char* value : values) attribute.ownStrings().append(value);
        attribute.valueChanged();
    }
    void bits(const TM_String& name, std::initializer_list<bool> values) {
        auto& attribute = as<weft::BitArrayAttribute>(name);
        attribute.ownBits().resize(static_cast<uint32_t>(values.size()), false);
        uint32_t i = 0;
        for (const bool value : values) attribute.ownBits().setBit(i++, value);
        attribute.valueChanged();
    }

    /// Brings the pin up to date as a reader connected to it would.
    void refresh(const TM_String& name) {
        if (pin(name).isInput())
            pin(name).pull();
        else
            pin(name).computeNow();
    }
    /// The text of what the pin shows when it is up to date.
    TM_String text(const TM_String& name) {
        refresh(name);
        return pin(name).currentValue()->asString();
    }
    /// Its strings between bars: "a|b".
    TM_String list(const TM_String& name) {
        refresh(name);
        TM_String out;
        const auto& strings = as<weft::StringAttributeBase>(name).strings();
        for (uint32_t i = 0; i < strings.size(); ++i) {
            out += (i > 0 ? "|" : "") + strings.valueAt(i);
        }
        return out;
    }
    /// The node's messages, one a line.
    TM_String messages(const TM_String& name) {
        TM_String out;
        for (const auto& message : node(name).getMessages().messages()) {
            out += message.asString() + "\n";
        }
        return out;
    }

private:
    struct Private;
    std::unique_ptr<Private> private_;
};

} // namespace sluice_tests

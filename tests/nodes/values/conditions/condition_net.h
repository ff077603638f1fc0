// SPDX-License-Identifier: Apache-2.0
// Networks with conditions: values as text, and what a filter answers as text.
#pragma once

#include "nodes/values/conditions/condition_value.h"
#include "nodes/values/logic_net.h"

namespace sluice_tests {

using tidemark::sluice::graph::ConditionAttribute;
using tidemark::sluice::graph::ConditionValue;

class ConditionNet : public LogicNet {
public:
    /// Chooses the type of the pin and fills it: "[3] 1,2.5".
    void set(const TM_String& name, const TM_String& text) {
        type(name, weft::nameOf(static_cast<weft::NumericType>(text[1] - '0')));
        as<weft::NumericAttribute>(name).ownNumeric().fromString(text);
        pin(name).valueChanged();
    }
    /// A maker "c" of a registered type and a filter "f" that takes its condition from there.
    void filterBy(const TM_String& maker) {
        add(maker, "c");
        add("ConditionFilterBy", "f");
        link("c.condition", "f.condition");
    }
    /// Result and mask of the filter "f": "[3] 2,3 011".
    TM_String filtered() { return text("f.result") + " " + text("f.mask"); }
    TM_String filtered(const TM_String& right, const TM_String& values) {
        set("c.value", right);
        set("f.value", values);
        return filtered();
    }

    ConditionValue& condition(const TM_String& name) {
        refresh(name);
        return const_cast<ConditionValue&>(*as<ConditionAttribute>(name).condition());
    }
};

/// A filter by two arrays, once.
inline TM_String filteredBy(const TM_String& type, const TM_String& value0,
                            const TM_String& value1) {
    ConditionNet net;
    net.add(type, "f");
    net.set("f.value0", value0);
    net.set("f.value1", value1);
    return net.filtered();
}

} // namespace sluice_tests

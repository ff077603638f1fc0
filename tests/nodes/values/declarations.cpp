// SPDX-License-Identifier: Apache-2.0
// Declarations of nodes as text.
#include "nodes/values/declarations.h"

#include <algorithm>
#include <vector>

#include "nodes/values/logic_net.h"

namespace sluice_tests {

namespace {

// The elements of a number's first array entry, as one text without its selector.
TM_String numberText(const weft::Numeric& value, const TM_String& type) {
    weft::Numeric shown(value.networkManager());
    shown.copyFrom(&value);
    shown.setType(weft::numericTypeOf(type));
    const TM_String text = shown.asString();
    return text.substr(text.find(' ') + 1);
}

// "1" for every form of the same number: "1" and "(1,1,1)".
TM_String shortened(const TM_String& text) {
    std::vector<TM_String> parts(1);
    for (const char c : text) {
        if (c == ',') {
            parts.emplace_back();
        } else if (c != '(' && c != ')') {
            parts.back() += c;
        }
    }
    if (std::adjacent_find(parts.begin(), parts.end(), std::not_equal_to<>()) != parts.end()) {
        return text;
    }
    return parts[0];
}

TM_String defaultText(const weft::Attribute& pin) {
    const auto* value = weft::valueAs<weft::Numeric>(pin.value());
    if (!value) return pin.value() ? pin.value()->asString() : "none";
    TM_String all;
    TM_String common;
    bool same = true;
    for (const TM_String& name : pin.allowedSpecializations().names()) {
        const TM_String text = shortened(numberText(*value, name));
        if (all.empty()) common = text;
        same = same && text == common;
        all += (all.empty() ? "" : " ") + name + ":" + text;
    }
    return same ? common : all;
}

TM_String pinLine(const char* side, const weft::Attribute& pin) {
    TM_String line = TM_String(side) + " " + pin.name() +
                     (pin.elementCountRule() == 1 ? "! " : " ") + pin.className() + " " +
                     pin.allowedSpecializationsText();
    if (pin.isInput()) line += " = " + defaultText(pin);
    return line + "\n";
}

} // namespace

TM_String declared(const TM_String& type) {
    LogicNet net;
    const weft::Node& node = net.add(type, "n");
    TM_String text = node.className() + "\n";
    for (const weft::Attribute* pin : node.refInputAttributes()) text += pinLine("in", *pin);
    for (const weft::Attribute* pin : node.refOutputAttributes()) text += pinLine("out", *pin);
    return text;
}

TM_String missingTexts(const TM_String& type) {
    LogicNet net;
    const weft::Node& node = net.add(type, "n");
    TM_String missing = node.getDescription().empty() ? "description" : "";
    tidemark::Array<weft::Attribute*> pins;
    node.attributes(pins);
    for (const weft::Attribute* pin : pins) {
        if (pin->getDescription().empty()) missing += " " + pin->name();
    }
    return missing;
}

TM_String missingAffects(const TM_String& type) {
    LogicNet net;
    const weft::Node& node = net.add(type, "n");
    TM_String missing;
    for (const weft::Attribute* in : node.refInputAttributes()) {
        for (weft::Attribute* out : node.refOutputAttributes()) {
            if (!in->affects().contains(out)) missing += " " + in->name() + "->" + out->name();
        }
    }
    return missing;
}

} // namespace sluice_tests

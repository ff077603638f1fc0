// SPDX-License-Identifier: Apache-2.0
// Upper and lower case, and what there is to know about a string.
#include <algorithm>

#include "core/bit_array.h"
#include "core/numeric.h"
#include "graph/define_node.h"
#include "nodes/values/strings/string_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::BitArrayValue;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::PassThroughAttribute;
using weft::StringAttribute;
using weft::StringValue;

namespace {

bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isLower(char c) { return c >= 'a' && c <= 'z'; }

void changeCase(const StringAttribute& in, const StringAttribute& out, WorkMeter& meter,
                TM_String (*change)(std::string_view)) {
    copyUnlessPassedThrough(in, out);
    StringValue* target = out.stringsTarget();
    if (!target) return;
    for (TM_String& string : target->refValues()) {
        string = change(string);
        meter.add(string.size());
    }
}

} // namespace

class StringUpperLowerCase : public weft::Node {
public:
    StringUpperLowerCase(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"StringUpperLowerCase">();
        describe("Returns an uppercase and lowercase version of the input 'string'.");
        string_ = addInput<StringAttribute>("string", "The string to change.");
        uppercase_ = addOutput<StringAttribute>("uppercase", "The string in uppercase letters.");
        lowercase_ = addOutput<StringAttribute>("lowercase", "The string in lowercase letters.");
        setAttributeAffectsAllOutputs(string_);
        addAttributeAllowedPassThrough(string_, uppercase_);
        addAttributeAllowedPassThrough(string_, lowercase_);
    }

    void update(Attribute* attribute) override {
        string_->pull();
        WorkMeter meter(*networkManager());
        if (attribute == uppercase_) changeCase(*string_, *uppercase_, meter, text::toUpper);
        if (attribute == lowercase_) changeCase(*string_, *lowercase_, meter, text::toLower);
        attribute->valueChanged();
    }

private:
    StringAttribute* string_;
    StringAttribute* uppercase_;
    StringAttribute* lowercase_;
};

class StringInfo : public weft::Node {
public:
    StringInfo(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"StringInfo">();
        describe("Returns several information about the input string.");
        string_ = addInput<StringAttribute>("string", "The string to examine.");
        length_ = addOutput<NumericAttribute>("length", "The number of characters.");
        isEmpty_ = addOutput<BitArrayAttribute>("is empty", "True if there are no characters.");
        allUppercase_ = addOutput<BitArrayAttribute>(
            "all uppercase", "True if all the characters are uppercase letters.");
        allLowercase_ = addOutput<BitArrayAttribute>(
            "all lowercase", "True if all the characters are lowercase letters.");
        uppercase_ = addOutput<StringAttribute>("uppercase", "The string in uppercase letters.");
        lowercase_ = addOutput<StringAttribute>("lowercase", "The string in lowercase letters.");
        through_ = addOutput<PassThroughAttribute>("through", "The input string.");
        setAttributeAllowedSpecialization(length_, "Integer");
        setAttributeAffectsAllOutputs(string_);
        connectInternalAttributes(string_, through_);
    }

    void update(Attribute* attribute) override {
        string_->pull();
        WorkMeter meter(*networkManager());
        if (attribute == length_) measure(meter);
        if (attribute == isEmpty_) test(*isEmpty_, meter, [](char) { return false; });
        if (attribute == allUppercase_) test(*allUppercase_, meter, isUpper);
        if (attribute == allLowercase_) test(*allLowercase_, meter, isLower);
        if (attribute == uppercase_) changeCase(*string_, *uppercase_, meter, text::toUpper);
        if (attribute == lowercase_) changeCase(*string_, *lowercase_, meter, text::toLower);
        attribute->valueChanged();
    }

private:
    void measure(WorkMeter& meter) {
        Numeric* target = length_->numericTarget();
        if (!target) return;
        const StringValue& strings = string_->strings();
        target->resize(strings.size());
        for (uint32_t i = 0; i < strings.size(); ++i) {
            target->setValueAt(i, toInteger(strings.valueAt(i).size()));
            meter.add(1);
        }
    }

    // One bit per string: all of its characters pass the test.
    void test(const BitArrayAttribute& out, WorkMeter& meter, bool (*passes)(char)) {
        BitArrayValue* target = out.bitsTarget();
        if (!target) return;
        const StringValue& strings = string_->strings();
        target->resize(strings.size(), false);
        for (uint32_t i = 0; i < strings.size(); ++i) {
            const TM_String& string = strings.valueAt(i);
            target->setBit(i, std::all_of(string.begin(), string.end(), passes));
            meter.add(string.size());
        }
    }

    StringAttribute* string_;
    NumericAttribute* length_;
    BitArrayAttribute* isEmpty_;
    BitArrayAttribute* allUppercase_;
    BitArrayAttribute* allLowercase_;
    StringAttribute* uppercase_;
    StringAttribute* lowercase_;
    PassThroughAttribute* through_;
};

SLUICE_DEFINE_NODE(StringUpperLowerCase)
SLUICE_DEFINE_NODE(StringInfo)

} // namespace tidemark::sluice::graph

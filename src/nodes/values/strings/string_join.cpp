// SPDX-License-Identifier: Apache-2.0
// Putting strings together.
#include "graph/define_node.h"
#include "nodes/values/strings/string_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::NetworkManager;
using weft::StringAttribute;
using weft::StringValue;

class StringConcatenate : public weft::Node {
public:
    StringConcatenate(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"StringConcatenate">();
        describe("This node takes the input 'array' of strings and concatenates all of them "
                 "placing the 'separator' string between each of them.\nFor example:\n'array' : "
                 "['Hi','Sluice','user']\n'separator' : '-SL-'\n'out' : 'Hi-SL-Sluice-SL-user'");
        array_ = addInput<StringAttribute>("array", "The strings to concatenate.");
        separator_ = addInput<StringAttribute>(
            "separator", "The string that is placed between each of the strings.");
        out_ = addOutput<StringAttribute>("out", "The concatenated string.");
        setAttributeAffectedByAllInputs(out_);
    }

    void update(Attribute*) override {
        array_->pull();
        separator_->pull();
        StringValue* target = out_->stringsTarget();
        if (!target) return;
        target->setValue(joined(array_->strings().values(), separator_->firstString()));
        out_->valueChanged();
    }

private:
    TM_String joined(const Array<TM_String>& strings, const TM_String& separator) {
        uint64_t length = 0;
        for (const TM_String& string : strings) length += string.size() + separator.size();
        checkTextLength(length);
        TM_String out;
        out.reserve(length);
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < strings.size(); ++i) {
            if (i > 0) out += separator;
            out += strings[i];
            meter.add(strings[i].size() + separator.size());
        }
        return out;
    }

    StringAttribute* array_;
    StringAttribute* separator_;
    StringAttribute* out_;
};

class StringConcat2 : public weft::Node {
public:
    StringConcat2(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"StringConcat2">();
        describe("This node takes the input 'left' and 'right' strings concatenates them in a "
                 "single one. You may specify a 'separator' string between both of them.\nFor "
                 "example:\n'left' : 'Hi'\n'right' : 'Sluice'\n'separator' : '-SL-'\n'out' : "
                 "'Hi-SL-Sluice'");
        left_ = addInput<StringAttribute>("left", "The beginning of the output string.");
        right_ = addInput<StringAttribute>("right", "The end of the output string.");
        separator_ = addInput<StringAttribute>("separator",
                                               "The string that is placed between both of them.");
        out_ = addOutput<StringAttribute>("out", "The concatenated string.");
        setAttributeAffectedByAllInputs(out_);
    }

    void update(Attribute*) override {
        left_->pull();
        right_->pull();
        separator_->pull();
        StringValue* target = out_->stringsTarget();
        if (!target) return;
        const StringValue& left = left_->strings();
        const StringValue& right = right_->strings();
        const bool isAnyEmpty = left.size() == 0 || right.size() == 0;
        const TM_String separator = separator_->firstString();
        target->setSize(isAnyEmpty ? 0 : largerSize(left, right));
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < target->size(); ++i) {
            const TM_String& end = right.valueAt(i);
            const uint64_t length = left.valueAt(i).size() + separator.size() + end.size();
            checkTextLength(length);
            TM_String joined;
            joined.reserve(length);
            target->setValueAt(i, joined.append(left.valueAt(i)).append(separator).append(end));
            meter.add(length);
        }
        out_->valueChanged();
    }

private:
    StringAttribute* left_;
    StringAttribute* right_;
    StringAttribute* separator_;
    StringAttribute* out_;
};

SLUICE_DEFINE_NODE(StringConcatenate)
SLUICE_DEFINE_NODE(StringConcat2)

} // namespace tidemark::sluice::graph

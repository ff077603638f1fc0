// SPDX-License-Identifier: Apache-2.0
// Replacing inside strings.
#include "graph/define_node.h"
#include "nodes/values/strings/string_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::NetworkManager;
using weft::StringAttribute;
using weft::StringValue;

class StringReplace : public weft::Node {
public:
    StringReplace(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"StringReplace">();
        describe("Returns a version of the input 'string' with every occurrence of the string "
                 "'before' replaced with 'after'.\nThe operation is case sensitive.");
        string_ = addInput<StringAttribute>("string", "The string to change.");
        before_ = addInput<StringAttribute>("before", "The string to look for.");
        after_ = addInput<StringAttribute>("after", "The string that takes its place.");
        result_ = addOutput<StringAttribute>("result", "The changed string.");
        setAttributeAffectedByAllInputs(result_);
        addAttributeAllowedPassThrough(string_, result_);
    }

    void update(Attribute*) override {
        string_->pull();
        copyUnlessPassedThrough(*string_, *result_);
        before_->pull();
        after_->pull();
        const TM_String before = before_->firstString();
        const TM_String after = after_->firstString();
        if (before.empty()) {
            pushError("'before' string cannot be empty'");
            return;
        }
        StringValue* target = result_->stringsTarget();
        if (!target) return;
        WorkMeter meter(*networkManager());
        for (TM_String& string : target->refValues()) {
            replaceAll(string, before, after, meter);
            meter.add(string.size());
        }
        result_->valueChanged();
    }

private:
    static void replaceAll(TM_String& string, const TM_String& before, const TM_String& after,
                           WorkMeter& meter) {
        std::size_t found = findText(string, before, 0, meter);
        if (found == TM_String::npos) return;
        TM_String result;
        std::size_t start = 0;
        while (found != TM_String::npos) {
            growFor(result, found - start + after.size());
            result.append(string, start, found - start).append(after);
            meter.add(found - start + after.size());
            start = found + before.size();
            found = findText(string, before, start, meter);
        }
        growFor(result, string.size() - start);
        string = std::move(result.append(string, start));
    }

    // A short text may grow without end: the limit is asked each time it needs more room.
    static void growFor(TM_String& text, std::size_t more) {
        const std::size_t needed = text.size() + more;
        if (needed <= text.capacity()) return;
        checkTextLength(needed);
        text.reserve(needed + needed / 2);
    }

    StringAttribute* string_;
    StringAttribute* before_;
    StringAttribute* after_;
    StringAttribute* result_;
};

SLUICE_DEFINE_NODE(StringReplace)

} // namespace tidemark::sluice::graph

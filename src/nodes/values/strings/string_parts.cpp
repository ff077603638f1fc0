// SPDX-License-Identifier: Apache-2.0
// Taking strings apart: pieces between separators, and stretches of characters.
#include <algorithm>
#include <limits>
#include <new>

#include "core/numeric.h"
#include "graph/define_node.h"
#include "nodes/values/strings/string_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::NetworkManager;
using weft::NumericAttribute;
using weft::StringAttribute;
using weft::StringValue;

class StringSplit : public weft::Node {
public:
    StringSplit(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"StringSplit">();
        describe("This node takes the input string and splits it into the output 'array' of "
                 "strings. The separator determines where to split the strings exactly.\nIt must "
                 "be a single character.\nFor example:\n'in' : 'Hi-Sluice-user''separator' : "
                 "'-'\n'array' : ['Hi','Sluice','user']\n");
        in_ = addInput<StringAttribute>("in", "The string to split.");
        separator_ = addInput<StringAttribute>(
            "separator", "The character that separates the pieces. If it is empty, every character "
                         "of the input string becomes a piece.");
        array_ = addOutput<StringAttribute>("array", "The pieces of the input string.");
        setAttributeAffectedByAllInputs(array_);
    }

    void update(Attribute*) override {
        separator_->pull();
        const TM_String separator = separator_->firstString();
        if (separator.size() > 1) {
            pushError("Separator must be empty or one character long");
            return;
        }
        in_->pull();
        StringValue* target = array_->stringsTarget();
        if (!target) return;
        // A copy: the source may be what is written.
        const TM_String text = in_->firstString();
        if (separator.empty()) {
            splitIntoCharacters(text, *target);
        } else {
            splitAt(text, separator[0], *target);
        }
        array_->valueChanged();
    }

private:
    void splitIntoCharacters(const TM_String& text, StringValue& target) {
        checkCount(text.size());
        target.setSize(static_cast<uint32_t>(text.size()));
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < target.size(); ++i) {
            target.refValues()[i].assign(1, text[i]);
            meter.add(1);
        }
    }

    void splitAt(const TM_String& text, char separator, StringValue& target) {
        const auto cuts = static_cast<uint64_t>(std::count(text.begin(), text.end(), separator));
        checkCount(cuts + 1);
        target.setSize(static_cast<uint32_t>(cuts + 1));
        WorkMeter meter(*networkManager());
        std::size_t start = 0;
        for (TM_String& piece : target.refValues()) {
            const std::size_t end = std::min(text.find(separator, start), text.size());
            piece.assign(text, start, end - start);
            start = end + 1;
            meter.add(piece.size());
        }
    }

    static void checkCount(uint64_t count) {
        if (count > std::numeric_limits<int32_t>::max()) throw std::bad_alloc();
    }

    StringAttribute* in_;
    StringAttribute* separator_;
    StringAttribute* array_;
};

class StringSubString : public weft::Node {
public:
    StringSubString(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"StringSubString">();
        describe("This node returns a substring of the input string. Thus, it contains the "
                 "fragment of the input string with the specified size starting from position "
                 "'first'.");
        in_ = addInput<StringAttribute>("in", "The string to take the fragment from.");
        first_ = addInput<NumericAttribute>("first", "The position of the character that will be "
                                                     "the first of the output string");
        size_ = addInput<NumericAttribute>(
            "size", "The total number of characters to copy from the input string. If value is "
                    "negative, all the characters from 'first' are copied to the output string.");
        out_ = addOutput<StringAttribute>("out", "The fragment.");
        setAttributeAllowedSpecialization(first_, "Integer");
        setAttributeAllowedSpecialization(size_, "Integer");
        setAttributeAffectedByAllInputs(out_);
    }

    void update(Attribute*) override {
        in_->pull();
        first_->pull();
        size_->pull();
        StringValue* target = out_->stringsTarget();
        if (!target) return;
        const StringValue& strings = in_->strings();
        target->setSize(strings.size());
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < strings.size(); ++i) {
            cut(strings.valueAt(i), i, *target);
            meter.add(strings.valueAt(i).size());
        }
        out_->valueChanged();
    }

private:
    void cut(const TM_String& string, uint32_t i, StringValue& target) {
        const auto length = static_cast<int64_t>(string.size());
        const int64_t first = first_->numeric().valueAt<int32_t>(i);
        const int64_t wanted = size_->numeric().valueAt<int32_t>(i);
        const int64_t size = wanted < 0 ? length - first : wanted;
        if (first < 0 || first >= length) {
            reportOutOfRange(*first_, i, first);
        } else if (first + size - 1 >= length) {
            reportOutOfRange(*size_, i, size);
        } else {
            target.refValues()[i].assign(string, static_cast<std::size_t>(first),
                                         static_cast<std::size_t>(size));
        }
    }

    void reportOutOfRange(const NumericAttribute& input, uint32_t position, int64_t value) {
        pushError(text::format("Input '%s' at position %d is out of range: %d",
                               input.name().c_str(), static_cast<int>(position),
                               static_cast<int>(value)));
    }

    StringAttribute* in_;
    NumericAttribute* first_;
    NumericAttribute* size_;
    StringAttribute* out_;
};

SLUICE_DEFINE_NODE(StringSplit)
SLUICE_DEFINE_NODE(StringSubString)

} // namespace tidemark::sluice::graph

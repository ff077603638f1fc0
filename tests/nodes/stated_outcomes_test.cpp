// SPDX-License-Identifier: Apache-2.0
// What every node over values does with an input that has no elements, a negative number or a huge
// one: held against the table in stated_outcomes.txt, which has a line for every such input of
// every registered type.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "core/exceptions.h"
#include "core/limits.h"
#include "core/pointer_value.h"
#include "graph/node_factory.h"
#include "graph/scene_manager.h"
#include "nodes/values/globals/common_storage.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;
namespace graph = tidemark::sluice::graph;
namespace limits = tidemark::limits;

// Types whose outcome is their scene's, the host's or that of an object outside.
const std::set<TM_String> otherCategories = {"Execution", "Scene", "Curve"};

bool isOverValues(const graph::NodeFactory& factory) {
    const graph::NodeDescriptor& descriptor = factory.getDescriptor();
    if (descriptor.getTypeName() == "GetAllGlobalVariableNames") return false;
    for (const TM_String& category : descriptor.getAllowedCategories()) {
        if (!otherCategories.count(category.substr(0, category.find('.'))) ||
            category.find(".Array") != TM_String::npos)
            return true;
    }
    return false;
}

void setIntegers(Numeric& number, std::initializer_list<int32_t> integers) {
    withElementType(number.type(), [&]<typename T>() {
        tidemark::Array<T> elements;
        for (const int32_t each : integers) {
            if constexpr (std::is_arithmetic_v<T>) {
                elements.append(static_cast<T>(each));
            } else {
                T element = tidemark::ElementDefault<T>::value();
                reinterpret_cast<float*>(&element)[0] = static_cast<float>(each);
                elements.append(element);
            }
        }
        number.setValues(elements);
    });
}

// Three elements, or one where one is taken; null for pointers, 1 for choices.
void givePlain(Attribute& input) {
    const bool isSingle = input.elementCountRule() == 1;
    if (auto* number = valueAs<Numeric>(input.value())) {
        isSingle ? setIntegers(*number, {1}) : setIntegers(*number, {1, 2, 1});
    } else if (auto* text = valueAs<StringValue>(input.value())) {
        text->setSize(0);
        for (const char* each : {"b", "abc", "b"}) {
            if (text->size() == 0 || !isSingle) text->append(each);
        }
    } else if (auto* bits = valueAs<BitArrayValue>(input.value())) {
        bits->resize(isSingle ? 1 : 3, true);
        if (!isSingle) bits->setBit(1, false);
    } else if (auto* choice = valueAs<Enum>(input.value())) {
        choice->setKey(1);
    } else if (auto* pointers = dynamic_cast<PointerValueBase*>(input.value())) {
        pointers->setSize(3);
    }
    input.valueChanged();
}

// False for an input that holds no elements of its own.
bool giveNothing(Attribute& input) {
    if (auto* number = valueAs<Numeric>(input.value())) {
        setIntegers(*number, {});
    } else if (auto* text = valueAs<StringValue>(input.value())) {
        text->setSize(0);
    } else if (auto* bits = valueAs<BitArrayValue>(input.value())) {
        bits->resize(0, false);
    } else if (auto* choice = valueAs<Enum>(input.value())) {
        choice->refKeys().clear();
    } else if (auto* pointers = dynamic_cast<PointerValueBase*>(input.value())) {
        pointers->setSize(0);
    } else {
        return false;
    }
    return true;
}

TM_String textOf(const Attribute& output) {
    const Value* value = output.currentValue();
    if (!value) return "none";
    if (const auto* strings = valueAs<StringValue>(value)) {
        TM_String all;
        for (uint32_t i = 0; i < strings->size(); ++i) all += "<" + strings->valueAt(i) + ">";
        return all;
    }
    if (const auto* pointers = dynamic_cast<const PointerValueBase*>(value)) {
        return std::to_string(pointers->size()) + " pointers";
    }
    TM_String text = value->asString();
    if (valueAs<Numeric>(value) && !text.empty()) text = text.substr(text.find(' ') + 1);
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

// One type in a net of its own, all inputs plain.
class Outcome {
public:
    explicit Outcome(const TM_String& type) : node_(net_.add(type, "n")) {
        for (Attribute* input : node_.refInputAttributes()) settleType(*input);
        for (Attribute* input : node_.refInputAttributes()) givePlain(*input);
        before_ = compute();
    }
    Node& node() { return node_; }

    /// What the node shows after an input was changed: "empty" when that is every output, "kept" or
    /// else all outputs, and what it says.
    TM_String after(Attribute& changed) {
        node_.refMessages().clear();
        changed.markDirty(true);
        const std::map<TM_String, TM_String> shown = compute();
        TM_String outcome = thrown_;
        if (thrown_.empty()) outcome = shown == before_ ? "kept" : described(shown);
        for (const auto& message : node_.getMessages().messages()) {
            if (outcome.find(message.asString()) == TM_String::npos) {
                outcome += " | " + message.asString();
            }
        }
        return outcome;
    }

private:
    // Reals where they are allowed, else the first type.
    void settleType(Attribute& input) {
        if (!valueAs<Numeric>(input.value()) || input.isSpecialized()) return;
        const auto& types = input.specializations();
        input.setSpecializationOverride(types.contains("Real") ? "Real" : types[0]);
        input.updateSpecializations(nullptr);
    }
    std::map<TM_String, TM_String> compute() {
        std::map<TM_String, TM_String> shown;
        thrown_.clear();
        for (Attribute* output : node_.refOutputAttributes()) {
            try {
                output->computeNow();
            } catch (const std::bad_alloc&) {
                thrown_ = "out of memory";
            } catch (const graph::Exception&) {
                thrown_ = "stopped";
            }
            shown[output->name()] = textOf(*output);
        }
        return shown;
    }
    TM_String described(const std::map<TM_String, TM_String>& shown) const {
        TM_String all;
        bool isEmpty = true;
        for (const Attribute* output : node_.refOutputAttributes()) {
            isEmpty = isEmpty && output->currentValue() && output->currentValue()->size() == 0;
            all += (all.empty() ? "" : " ") + output->name() + "=" + shown.at(output->name());
        }
        return isEmpty ? "empty" : all;
    }

    LogicNet net_;
    Node& node_;
    std::map<TM_String, TM_String> before_;
    TM_String thrown_;
};

bool isOfIntegers(const Attribute& input) {
    const auto& allowed = input.allowedSpecializations();
    return valueAs<Numeric>(input.value()) && allowed.size() == 1 && allowed[0] == "Integer";
}

// Every line that the table must have for a type.
std::vector<TM_String> outcomesOf(const TM_String& type) {
    std::vector<TM_String> lines;
    const uint32_t inputs = Outcome(type).node().refInputAttributes().size();
    for (uint32_t i = 0; i < inputs; ++i) {
        const auto add = [&](const char* what, auto change) {
            CommonStorage::instance().removeAll();
            Outcome outcome(type);
            Attribute& input = *outcome.node().inputAttributeAt(i);
            if (!change(input)) return;
            lines.push_back(type + "." + input.name() + " " + what + ": " + outcome.after(input));
        };
        add("empty", giveNothing);
        for (const char* number : {"-1", "2147483647"}) {
            add(number, [number](Attribute& input) {
                if (!isOfIntegers(input)) return false;
                input.value()->fromString(TM_String("[1] ") + number);
                return true;
            });
        }
    }
    return lines;
}

std::vector<TM_String> tableLines() {
    std::ifstream in(SLUICE_TESTS_DIR "/nodes/stated_outcomes.txt");
    EXPECT_TRUE(in);
    std::vector<TM_String> lines;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line[0] != '#') lines.push_back(line);
    }
    return lines;
}

TEST(StatedOutcomes, OfEveryTypeOverValues) {
    const limits::Limits before = limits::current();
    limits::Limits small;
    small.maxElements = 100'000;
    limits::set(small);
    std::vector<TM_String> found;
    for (graph::NodeFactory* factory : graph::SceneManager::instance().getArrNodeFactory()) {
        if (!isOverValues(*factory)) continue;
        for (const TM_String& line : outcomesOf(factory->getDescriptor().getTypeName())) {
            found.push_back(line);
        }
    }
    limits::set(before);
    CommonStorage::instance().removeAll();
    const std::vector<TM_String> expected = tableLines();
    const std::set<TM_String> known(expected.begin(), expected.end());
    const std::set<TM_String> seen(found.begin(), found.end());
    for (const TM_String& line : found) EXPECT_TRUE(known.count(line)) << "found: " << line;
    for (const TM_String& line : expected) EXPECT_TRUE(seen.count(line)) << "expected: " << line;
}

} // namespace

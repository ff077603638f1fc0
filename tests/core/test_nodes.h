// SPDX-License-Identifier: Apache-2.0
// Nodes that tests of the dataflow core build their networks from.
#pragma once

#include <functional>
#include <string>

#include "core/evaluate_attribute.h"
#include "core/node.h"
#include "core/numeric.h"
#include "support/callback_log.h"

namespace test_nodes {

using tidemark::TM_String;
using weft::Attribute;
using weft::NetworkManager;
using weft::Node;
using weft::NumericAttribute;

inline const weft::SpecializationList& realOnly() {
    static const weft::SpecializationList list{"Real"};
    return list;
}

/// Writes "update <name> <attribute>" into the log for every update. What it does is the test's.
class ScriptNode : public Node {
public:
    ScriptNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"Script">();
    }
    void update(Attribute* attribute) override {
        ++updates;
        support::CallbackLog::add("run " + name() + " " + attribute->name());
        if (onUpdate) onUpdate(attribute);
    }
    void onValueChanged(Attribute* attribute) override {
        support::CallbackLog::add("valueChanged " + support::Net::nameOf(attribute));
    }
    void attributeConnectionChanged(Attribute* attribute) override {
        if (onConnectionChanged) onConnectionChanged(attribute);
    }
    void attributeSpecializationChanged(Attribute* attribute) override {
        if (onTypesChanged) onTypesChanged(attribute);
    }
    void updateSpecializationLink(Attribute* first, Attribute* second,
                                  weft::SpecializationList& firstList,
                                  weft::SpecializationList& secondList) override {
        if (onLink) return onLink(first, second, firstList, secondList);
        Node::updateSpecializationLink(first, second, firstList, secondList);
    }

    template <typename A = NumericAttribute>
    A* in(const char* name) {
        return addInput<A>(name);
    }
    template <typename A = NumericAttribute>
    A* out(const char* name) {
        return addOutput<A>(name);
    }
    /// Inputs and outputs of one class, every input affecting every output.
    template <typename A = NumericAttribute>
    ScriptNode* ports(std::initializer_list<const char*> inputs,
                      std::initializer_list<const char*> outputs) {
        for (const char* name : inputs) in<A>(name);
        for (const char* name : outputs) out<A>(name);
        setAttributeAffectAllOutputsByAllInputs();
        return this;
    }
    void pullInputs() {
        for (Attribute* input : refInputAttributes()) input->pull();
    }

    using Node::addAttributeAllowedPassThrough;
    using Node::addAttributePassThrough;
    using Node::addAttributeSpecializationLink;
    using Node::removeAttributePassThrough;
    using Node::setAllowDynamicAttributes;
    using Node::setAttributeAffect;
    using Node::setAttributeAffectAllOutputsByAllInputs;
    using Node::setAttributeAffectedByAllInputs;
    using Node::setAttributeAffectsAllOutputs;
    using Node::setAttributeAllowedSpecialization;
    using Node::setAttributeAllowedSpecializations;
    using Node::setAttributeCleanAndChangeValue;
    using Node::setAttributeIsClean;
    using Node::setPropagatesPresets;
    using Node::setUpdateEnabled;

    std::function<void(Attribute*)> onUpdate;
    std::function<void(Attribute*)> onConnectionChanged;
    std::function<void(Attribute*)> onTypesChanged;
    std::function<void(Attribute*, Attribute*, weft::SpecializationList&,
                       weft::SpecializationList&)>
        onLink;
    int updates = 0;
};

/// Pulls "in", writes one more to "out"; both of type Real.
class StepNode : public Node {
public:
    StepNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"Step">();
        in_ = addInput<NumericAttribute>("in");
        out_ = addOutput<NumericAttribute>("out");
        setAttributeAllowedSpecializations(in_, realOnly());
        setAttributeAllowedSpecializations(out_, realOnly());
        setAttributeAffect(in_, out_);
    }
    void update(Attribute*) override {
        in_->pull();
        if (throwing) pushCritical("the step fails", "in the deep");
        out_->numericTarget()->setValue<float>(in_->numeric().value<float>() + 1.0f);
    }
    bool throwing = false;

private:
    NumericAttribute* in_;
    NumericAttribute* out_;
};

/// One input of every type, "evaluate", which its update pulls.
class AskNode : public Node {
public:
    AskNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"Ask">();
        evaluate = addInput<weft::EvaluateAttribute>("evaluate");
    }
    void update(Attribute*) override { evaluate->pull(); }

    weft::EvaluateAttribute* evaluate;
};

/// An input and an output that are pure pass-throughs, tied for good.
class PassNode : public Node {
public:
    PassNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"TestPass">();
        auto* in = addInput<weft::PassThroughAttribute>("in");
        auto* out = addOutput<weft::PassThroughAttribute>("out");
        addAttributeAllowedPassThrough(in, out);
        addAttributePassThrough(in, out);
    }
    // Without a source of its own the output gets nothing from here: pulling the input is all.
    void update(Attribute*) override { refInputAttributes()[0]->pull(); }
};

/// What a pull of an attribute and everything behind it reads and writes: numbers of type Real.
inline float pulled(NumericAttribute* attribute) {
    attribute->pull();
    return attribute->numeric().value<float>();
}

} // namespace test_nodes

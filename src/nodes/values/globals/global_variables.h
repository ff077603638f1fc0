// SPDX-License-Identifier: Apache-2.0
// The nodes that set and get global variables, written once for all element types. A type joins by
// its rows in node_types/*.def, of two categories, and one line in the file of the type:
//
//     SLUICE_DEFINE_GLOBAL_VARIABLE(Num, weft::NumericAttribute, SetGlobalVariableCopy)
//
// which defines SetNumGlobalVariable and GetNumGlobalVariable. A type whose values cannot be copied
// takes SetGlobalVariableBase. To copy, ports of pointers need what `ObjectsOf` asks for.
#pragma once

#include "core/bit_array.h"
#include "core/string_value.h"
#include "graph/define_node.h"
#include "nodes/values/globals/common_storage.h"
#include "nodes/values/globals/sharing_output.h"

namespace weft {

/// The first string of `name`; reports "Name left empty" on its node when that is empty.
SLUICE_API TM_String variableName(const StringAttribute& name);

/// Stores a reference to the value of its input.
template <typename Attr>
class SetGlobalVariableBase : public Node {
public:
    /// `element`: the word of the type, a literal.
    SetGlobalVariableBase(NetworkManager* manager, const TM_String& name, Node* parent,
                          const char* element)
        : Node(manager, name, parent), element_(element) {
        appendClass<"SetGlobalVariableBase">();
        describe("This node creates a reference to the input pin in global memory to be used "
                 "within other Sluice graphs through the GetGlobalVariable nodes.");
        name_ = addInput<StringAttribute>("name", "The name of the global variable.");
        in_ = addInput<Attr>("in", "The value connected to the input");
        through_ = addOutput<PassThroughAttribute>("through", "The value of 'in', unchanged.");
        name_->setElementCountRule(1);
        setAttributeAffect(name_, through_);
        connectInternalAttributes(in_, through_);
    }

    void update(Attribute*) override {
        in_->pull();
        name_->pull();
        const TM_String variable = variableName(*name_);
        if (variable.empty()) return;
        try {
            store(variable);
        } catch (const CopyFailure& failure) {
            failCopy(*this, failure);
        }
        // Once per run, whichever outputs are asked for.
        for (Attribute* output : this->refOutputAttributes()) setAttributeIsClean(output, true);
    }

protected:
    virtual void store(const TM_String& variable) {
        CommonStorage::instance().store(element_, variable, *in_, false);
    }

    const char* const element_;
    StringAttribute* name_;
    Attr* in_;
    PassThroughAttribute* through_;
};

/// Stores a reference or, unless told otherwise, a deep copy.
template <typename Attr>
class SetGlobalVariableCopy : public SetGlobalVariableBase<Attr> {
public:
    SetGlobalVariableCopy(NetworkManager* manager, const TM_String& name, Node* parent,
                          const char* element)
        : SetGlobalVariableBase<Attr>(manager, name, parent, element) {
        this->template appendClass<"SetGlobalVariableCopy">();
        this->describe("This node allows the user to create a reference or a copy of the input pin "
                       "in global memory to be used within other Sluice graph through the "
                       "GetGlobalVariable nodes.");
        storeCopy_ = this->template addInput<BitArrayAttribute>(
            "store copy", "True to store a copy of the input, which later changes of the input "
                          "leave alone. False to store a reference to it.");
        outCopy_ = this->template addOutput<SharingOutput<Attr>>(
            "out copy", "The value copied in memory in case a copy has been performed. The same "
                        "input value otherwise.");
        storeCopy_->ownBits().set(true);
        storeCopy_->setElementCountRule(1);
        this->setAttributeAffectAllOutputsByAllInputs();
        this->addAttributeSpecializationLink(this->in_, outCopy_);
    }

protected:
    void store(const TM_String& variable) override {
        storeCopy_->pull();
        const GlobalVariable stored = CommonStorage::instance().store(
            this->element_, variable, *this->in_, storeCopy_->lastBit());
        if (!stored.value) return;
        outCopy_->show(stored.value.get());
        outCopy_->valueChanged();
    }

private:
    BitArrayAttribute* storeCopy_;
    SharingOutput<Attr>* outCopy_;
};

/// Shows a variable; shows what it did before while there is none of that name.
template <typename Attr>
class GetGlobalVariable : public Node {
public:
    GetGlobalVariable(NetworkManager* manager, const TM_String& name, Node* parent,
                      const char* element)
        : Node(manager, name, parent), element_(element) {
        appendClass<"GetGlobalVariable">();
        describe("This node returns a reference to previously stored variables in global memory "
                 "(using the SetGlobalVariable-Nodes).");
        name_ = addInput<StringAttribute>("name", "The name of the global variable.");
        out_ = addOutput<SharingOutput<Attr>>("out", "The value of the global variable.");
        name_->setElementCountRule(1);
        setAttributeAffect(name_, out_);
    }

    void update(Attribute*) override {
        name_->pull();
        const TM_String variable = variableName(*name_);
        if (variable.empty()) return;
        const GlobalVariable found = CommonStorage::instance().find(element_, variable);
        if (!found.value) return;
        if (out_->allowedSpecializations() != found.allowed) {
            out_->setAllowedSpecializations(found.allowed);
            out_->updateSpecializations(nullptr);
        }
        out_->show(found.value.get());
        out_->valueChanged();
        setAttributeIsClean(out_, true);
    }

private:
    const char* const element_;
    StringAttribute* name_;
    SharingOutput<Attr>* out_;
};

} // namespace weft

/// The line by which an element type joins; in namespace tidemark::sluice::graph.
#define SLUICE_DEFINE_GLOBAL_VARIABLE(Word, Attr, Setter)                                          \
    class Set##Word##GlobalVariable : public weft::Setter<Attr> {                                  \
    public:                                                                                        \
        Set##Word##GlobalVariable(weft::NetworkManager* manager, const TM_String& name,            \
                                  weft::Node* parent)                                              \
            : Setter(manager, name, parent, #Word) {                                               \
            appendClass<"Set" #Word "GlobalVariable">();                                           \
        }                                                                                          \
    };                                                                                             \
    class Get##Word##GlobalVariable : public weft::GetGlobalVariable<Attr> {                       \
    public:                                                                                        \
        Get##Word##GlobalVariable(weft::NetworkManager* manager, const TM_String& name,            \
                                  weft::Node* parent)                                              \
            : GetGlobalVariable(manager, name, parent, #Word) {                                    \
            appendClass<"Get" #Word "GlobalVariable">();                                           \
        }                                                                                          \
    };                                                                                             \
    SLUICE_DEFINE_NODE(Set##Word##GlobalVariable)                                                  \
    SLUICE_DEFINE_NODE(Get##Word##GlobalVariable)

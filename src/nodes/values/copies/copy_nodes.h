// SPDX-License-Identifier: Apache-2.0
// Nodes that cut the sharing of a value, and the base of all nodes that make objects. A type joins
// by its row in node_types/*.def and one line in the file of the type, by the class of its values:
//
//     SLUICE_DEFINE_COPY(NumCopy, weft::Copy<weft::NumericAttribute>)
//     SLUICE_DEFINE_COPY(MeshCopy, weft::CopyPtr<weft::MeshAttribute>)
#pragma once

#include "core/exceptions.h"
#include "core/node.h"
#include "graph/define_node.h"
#include "nodes/values/copies/created_objects.h"

namespace weft {

/// Owns the objects that it made for the pointers in its outputs. They are freed when they are made
/// anew, by a purge and with the node; what pointed to them anywhere is null afterwards. A node in
/// a kernel's copy leaves other scenes alone until that copy goes.
template <typename Attr>
class CreatorNode : public Node {
public:
    using Object = typename ObjectsOf<Attr>::Object;

    CreatorNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"CreatorNode">();
    }
    ~CreatorNode() override { objects_.freeAll(networkManager(), true); }

    void purge() override {
        Node::purge();
        freeObjects();
    }

protected:
    void freeObjects() { objects_.freeAll(networkManager(), !networkManager()->isPrivate()); }
    CreatedObjects<Attr>& objects() { return objects_; }

private:
    CreatedObjects<Attr> objects_;
};

/// Pins and description of both kinds of copies, in the base `Base`.
template <typename Attr, typename Base>
class CopyPins : public Base {
public:
    CopyPins(NetworkManager* manager, const TM_String& name, Node* parent)
        : Base(manager, name, parent) {
        this->describe("This node returns a copy of the input, which later changes of the input "
                       "leave alone.");
        in_ = this->template addInput<Attr>("in", "The value to copy.");
        out_ = this->template addOutput<Attr>("out", "A copy of the input");
        this->setAttributeAffect(in_, out_);
        this->addAttributeSpecializationLink(in_, out_);
    }

    void update(Attribute*) override {
        in_->pull();
        if (!out_->writeTarget()) return;
        try {
            copy();
        } catch (const CopyFailure& failure) {
            failCopy(*this, failure);
        }
        out_->valueChanged();
        this->setAttributeIsClean(out_, true);
    }

protected:
    virtual void copy() = 0;

    Attr* in_;
    Attr* out_;
};

/// Of values that hold their elements themselves.
template <typename Attr>
class Copy : public CopyPins<Attr, Node> {
public:
    using CopyPins<Attr, Node>::CopyPins;

protected:
    void copy() override {
        try {
            this->out_->writeTarget()->copyFrom(this->in_->currentValue());
        } catch (const std::bad_alloc&) {
            // The elements are copied as one.
            throw CopyFailure{0};
        }
    }
};

/// Of values that hold pointers: the objects are copied.
template <typename Attr>
class CopyPtr : public CopyPins<Attr, CreatorNode<Attr>> {
public:
    using CopyPins<Attr, CreatorNode<Attr>>::CopyPins;

protected:
    void copy() override {
        this->freeObjects();
        PointerValueBase* target = this->out_->pointersTarget();
        if (!target) return;
        try {
            this->objects().copyAll(this->in_->pointers(), *target, *this->networkManager());
        } catch (const tidemark::TM_Exception&) {
            // What an interrupt left unfinished is not shown.
            target->setSize(0);
            this->freeObjects();
            throw;
        }
    }
};

} // namespace weft

/// The line by which a type joins; in namespace tidemark::sluice::graph.
#define SLUICE_DEFINE_COPY(Type, Base)                                                             \
    class Type : public Base {                                                                     \
    public:                                                                                        \
        Type(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)             \
            : Base(manager, name, parent) {                                                        \
            appendClass<#Type>();                                                                  \
        }                                                                                          \
    };                                                                                             \
    SLUICE_DEFINE_NODE(Type)

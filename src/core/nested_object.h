// SPDX-License-Identifier: Apache-2.0
// Names, class names and the parent and child tree of logic objects.
#pragma once

#include <string_view>

#include "core/class_chain.h"
#include "core/object.h"
#include "core/small_list.h"

namespace weft {

class Node;
using tidemark::SmallList;

/// An object with a name and a place in the tree of nodes. Names are unique among all children of
/// one parent, attributes and nodes alike, as long as they are given by `setName`.
class SLUICE_API NestedObject : public Object {
public:
    /// `parent` is noted, not changed: the object joins its lists by the parent's operations.
    NestedObject(NetworkManager* manager, Node* parent);

    const TM_String& name() const { return name_; }
    /// Stores `uniqueName(name)`, then tells the rename callback.
    void renameTo(const TM_String& name);

    /// The names from the outermost ancestor to this object, joined by points.
    TM_String fullName() const;

    /// `name`, or the first of its successors by `nextName` that no other child of the parent has.
    TM_String uniqueName(const TM_String& name) const;

    /// The name that follows `name`: its final digits plus one, at least two digits wide, behind
    /// the rest. The digits are cut out wherever they stand in the name: `a1b1` gives `ab02`.
    static TM_String nextName(const TM_String& name);

    /// Class names from the first base to the most derived class.
    Array<TM_String> typeNames() const;
    /// The most derived class's name, or empty.
    TM_String className() const { return TM_String(classNameView()); }
    std::string_view classNameView() const { return classChain_ ? classChain_->name : ""; }
    bool hasSameTypeNames(const NestedObject& other) const;

    Node* parent() const { return parent_; }
    void setParent(Node* parent) { parent_ = parent; }

    /// In order of addition. Only nodes have any.
    const SmallList<NestedObject*>& children() const {
        return const_cast<NestedObject*>(this)->childList();
    }
    /// Rises along the children of one parent.
    uint32_t childOrder() const { return childOrder_; }
    /// Appends unless present, and takes a reference. `child->parent()` stays as it is. Nothing on
    /// an object that has no children.
    void addChild(NestedObject* child);
    /// Removes, keeping the order, and releases the reference.
    void removeChild(NestedObject* child);

protected:
    /// Called by the constructor of every class with its own name.
    template <ClassName name>
    void appendClass() {
        classChain_ = classLink<name>(classChain_);
    }

    /// Where the children are kept; in the base an empty list that stays empty.
    virtual SmallList<NestedObject*>& childList();
    /// Called after a child came and before it goes: keeps name look-ups.
    virtual void childAdded(NestedObject& child) { (void)child; }
    virtual void childRemoving(NestedObject& child) { (void)child; }

    void initializeName(TM_String name) { name_ = std::move(name); }

private:
    friend class Node;

    Node* parent_;
    const ClassChain* classChain_ = nullptr;
    TM_String name_;
};

} // namespace weft

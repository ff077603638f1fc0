// SPDX-License-Identifier: Apache-2.0
// A node that contains a part of the graph. It adds a level of names and of parents, not a second
// evaluator: its pins are wired into the inner graph by ordinary connections, and pulls cross its
// wall like any other connection.
#pragma once

#include <memory>

#include "core/array.h"
#include "core/node.h"
#include "graph/graph_node.h"

namespace weft {

/// True for the loop nodes, whose most derived class is named exactly "For" or "Kernel".
SLUICE_API bool isIterator(const Node& node);

/// All attributes are dynamic pass-throughs. Computing an output is pulling it, unless an iterator
/// among the direct children feeds it: then that iterator computes it.
class SLUICE_API Compound : public Node {
public:
    Compound(NetworkManager* manager, const TM_String& name, Node* parent);
    ~Compound() override;

    // Virtual operations, in the order that derived classes rely on.

    /// Whether an iterator among the children feeds the first output. The other outputs are not
    /// looked at, and `asker` is not used.
    virtual bool hasIterator(Node* asker);
    // Two places of the order without a use so far.
    virtual void reservedOperation2() {}
    virtual void reservedOperation3() {}
    /// Appends the outputs of iterators among the direct children that lie upstream of `attribute`,
    /// in the order of its upstream closure.
    virtual void collectIteratorAttributes(Attribute* attribute, Array<Attribute*>& result);

    /// Throws when two or more attributes of iterators feed `attribute`.
    void update(Attribute* attribute) override;

protected:
    void childAdded(NestedObject& child) override;
    void childRemoving(NestedObject& child) override;

private:
    struct Lookups;
    const Array<Attribute*>& iteratorAttributesOf(Attribute* attribute);
    void searchIterators(const Attribute* attribute, Array<Attribute*>& found) const;

    SmallList<NestedObject*> iterators_; // among the children
    std::unique_ptr<Lookups> lookups_;
};

} // namespace weft

namespace tidemark::sluice::graph {

/// Its pins come into being from its interface nodes; a file's list of them gives only their order.
class SLUICE_API Node_Compound : public Node {
public:
    bool isCompound() const override { return true; }
    void createWeftNode() override;
    /// Makes each input affect the outputs that it feeds.
    void setAutoAffects() override;
    /// Append the names to the order lists, each once. Always true.
    bool readInputs_fromBoostPropertyTree(const PropertyTree& tree) override;
    bool readOutputs_fromBoostPropertyTree(const PropertyTree& tree) override;
};

} // namespace tidemark::sluice::graph

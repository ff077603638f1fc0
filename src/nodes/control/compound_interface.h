// SPDX-License-Identifier: Apache-2.0
// A node inside a compound that carries values across the compound's wall. What goes in here comes
// out of the compound, and the other way round:
//
//            C
//            +--------------------------------+
//     x -->  | IO.x -->  ( inner )  -->  IO.y | --> y
//            +--------------------------------+
//
// IO's output `x` is fed by the compound's input `x`, IO's input `y` feeds the compound's output
// `y`.
#pragma once

#include "core/node.h"
#include "graph/graph_node.h"

namespace weft {

/// All attributes are dynamic pass-throughs, so no value is copied at a wall.
class SLUICE_API CompoundInterface : public Node {
public:
    CompoundInterface(NetworkManager* manager, const TM_String& name, Node* parent);

    // Virtual operations, in the order that derived classes rely on. They work on the logic node
    // alone; pins are added by the graph node.

    /// Adds an input named after the number of inputs there are: "in00", "in01", ... Since that is
    /// no serial, renaming an input does not free its number.
    virtual Attribute* addDynamicInputAttribute();
    /// Adds an output: "out00", "out01", ...
    virtual Attribute* addDynamicOutputAttribute();

    /// Throws at root level, where there is no wall.
    void update(Attribute* attribute) override;
};

} // namespace weft

namespace tidemark::sluice::graph {

/// Every pin has a counterpart of the other direction on the compound that owns the node.
class SLUICE_API Node_CompoundInterface : public Node {
public:
    bool isInterface() const override { return true; }
    void createWeftNode() override;
    /// Add the stored pins with their counterparts. A name that the compound has already for
    /// another pin is made free. Always true.
    bool readInputs_fromBoostPropertyTree(const PropertyTree& tree) override;
    bool readOutputs_fromBoostPropertyTree(const PropertyTree& tree) override;

protected:
    /// The counterparts go with the node.
    void onRemovingFromScene() override;

private:
    void addStoredPin(GraphNodePin* interfacePin, const TM_String& storedName);
    void removeCounterparts(const Array<Pin*>& pins);
};

} // namespace tidemark::sluice::graph

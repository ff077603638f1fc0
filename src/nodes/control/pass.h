// SPDX-License-Identifier: Apache-2.0
// Nodes that move values along without touching them.
#pragma once

#include "core/node.h"
#include "graph/graph_node.h"

namespace weft {

/// One wire with a name: "through" shows what "in" shows.
class SLUICE_API Pass : public Node {
public:
    Pass(NetworkManager* manager, const TM_String& name, Node* parent);
    void update(Attribute* attribute) override;
};

/// As many wires as the user makes. Asking for any output computes all inputs, first to last.
class SLUICE_API Concentrator : public Node {
public:
    Concentrator(NetworkManager* manager, const TM_String& name, Node* parent);
    void update(Attribute* attribute) override;
};

/// As many wires as the user makes. Asking for an output computes the input that it is wired to.
class SLUICE_API Selector : public Node {
public:
    Selector(NetworkManager* manager, const TM_String& name, Node* parent);
    void update(Attribute* attribute) override;
};

} // namespace weft

namespace tidemark::sluice::graph {

class SLUICE_API Node_Pass : public Node {
public:
    void createWeftNode() override;
    /// Adds the inputs that are missing; a second one of a name is a pin of its own. Always true,
    /// as the other readers.
    bool readInputs_fromBoostPropertyTree(const PropertyTree& tree) override;
    /// Renames the outputs that there are, in order; more of them are an error on the node. A file
    /// without internal connections leaves the one from the first input to the first output.
    bool readOutputs_fromBoostPropertyTree(const PropertyTree& tree) override;
};

/// Its dynamic pins may be wired to every pin of the other side.
class SLUICE_API Node_Selector : public Node {
public:
    void createWeftNode() override;
    GraphNodePin* addDynamicInputPin() override;
    GraphNodePin* addDynamicOutputPin() override;
    /// Reads the pins that there are and adds the others, also a second one of a name.
    bool readInputs_fromBoostPropertyTree(const PropertyTree& tree) override;
    /// Renames the outputs that there are, in order, and adds the others.
    bool readOutputs_fromBoostPropertyTree(const PropertyTree& tree) override;

protected:
    /// Called for each new pair of an input and an output.
    virtual void pairAdded(weft::Attribute* input, weft::Attribute* output);
};

/// The same, and every input makes every output dirty.
class SLUICE_API Node_Concentrator : public Node_Selector {
public:
    void createWeftNode() override;

protected:
    void pairAdded(weft::Attribute* input, weft::Attribute* output) override;
};

} // namespace tidemark::sluice::graph

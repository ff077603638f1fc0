// SPDX-License-Identifier: Apache-2.0
// What stands for a kernel inside the private copies of its graph that its threads run.
#pragma once

#include "core/node.h"
#include "core/numeric.h"
#include "graph/graph_node.h"

namespace weft {

/// Computes nothing: the thread writes the outputs and marks what depends on them.
class SLUICE_API KernelVars : public Node {
public:
    KernelVars(NetworkManager* manager, const TM_String& name, Node* parent);

    /// Outputs that there always are; those of the variables follow.
    static constexpr uint32_t ownOutputs = 3;

    // The outputs that there always are, owned by the node as all attributes are.
    NumericAttribute* element;
    NumericAttribute* threadId;
    NumericAttribute* index;
};

} // namespace weft

namespace tidemark::sluice::graph {

class SLUICE_API Node_KernelVars : public Node {
public:
    void createWeftNode() override;
    /// Adds the outputs that are missing. Always true.
    bool readOutputs_fromBoostPropertyTree(const PropertyTree& tree) override;
};

} // namespace tidemark::sluice::graph

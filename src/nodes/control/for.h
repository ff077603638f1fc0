// SPDX-License-Identifier: Apache-2.0
// A counting loop: while a compound's output is asked for, the nodes around this one that depend on
// it are computed once per value of the index, in the same network and on the same thread.
#pragma once

#include "core/node.h"
#include "core/numeric.h"
#include "graph/graph_node.h"

namespace weft {

/// Only inside a compound, and the only iterator there.
class SLUICE_API For : public Node {
public:
    For(NetworkManager* manager, const TM_String& name, Node* parent);

    /// Marks the attribute clean: asking for the index never starts the loop.
    void update(Attribute* attribute) override;
    /// Runs the loop for all outputs of the compound that `compoundOutput` belongs to, from `start`
    /// up to, but without, `stop`. Outputs keep their last values when there is no iteration.
    /// Nothing tests `step`: with 0 only an exception or an interrupt ends the loop. An exception
    /// leaves the outputs dirty.
    void iterate(Attribute* compoundOutput) override;

private:
    struct Body;
    void repeat(Node& compound, int32_t start, int32_t stop, int32_t step);
    void findBody(const Node& compound, Body& body) const;
    static void computeOutputs(const Node& compound);
    void tellIteration(const int32_t& index) const;

    NumericAttribute* start_;
    NumericAttribute* stop_;
    NumericAttribute* step_;
    NumericAttribute* index_;
};

} // namespace weft

namespace tidemark::sluice::graph {

class SLUICE_API Node_For : public Node {
public:
    bool isIterator() const override { return true; }
    void createWeftNode() override;
    /// Nothing: the loop acts when its compound is asked.
    void preUpdate() override {}
};

} // namespace tidemark::sluice::graph

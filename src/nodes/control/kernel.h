// SPDX-License-Identifier: Apache-2.0
// A loop over the elements of an array on several threads. The logic network is no place for more
// than one thread, so each thread runs a private copy of the part of the graph that the compound's
// outputs depend on. Results reach the outside through the values at the compound's walls.
#pragma once

#include <vector>

#include "core/node.h"
#include "core/numeric.h"
#include "graph/graph_node.h"

namespace tidemark::sluice::graph {
class SL_GraphScene;
}

namespace weft {

class KernelPlan;
struct KernelShare;

/// Only inside a compound, and the only iterator there. See docs/kernels.md for what a thread sees.
class SLUICE_API Kernel : public Node {
public:
    Kernel(NetworkManager* manager, const TM_String& name, Node* parent);

    /// Marks the attribute clean: asking for an output runs nothing.
    void update(Attribute* attribute) override;
    /// Runs the kernel for all outputs of the compound that `compoundOutput` belongs to.
    void iterate(Attribute* compoundOutput) override;

    /// Runs `attributes`, the part of the graph that is repeated, for the elements from `start` up
    /// to and including `stop`, which counts as the last one when it is negative or too large.
    /// `numberOfThreads` is at least 1; the elements are split evenly among the threads and the
    /// rest falls to the last one. All threads have ended when this returns or throws.
    virtual void runClones(int numberOfThreads, int32_t start, int32_t stop,
                           const Array<Attribute*>& attributes);

    /// The scene whose nodes are copied. It owns the graph node of this one.
    void setScene(tidemark::sluice::graph::SL_GraphScene* scene) { scene_ = scene; }
    tidemark::sluice::graph::SL_GraphScene* scene() const { return scene_; }
    const NumericAttribute* element() const { return element_; }

private:
    int threadCount() const;
    void runShares(const KernelPlan& plan, const std::vector<KernelShare>& shares, bool isAlone);

    tidemark::sluice::graph::SL_GraphScene* scene_ = nullptr;
    NumericAttribute* array_;
    NumericAttribute* threads_;
    NumericAttribute* start_;
    NumericAttribute* stop_;
    NumericAttribute* element_;
    NumericAttribute* threadId_;
    NumericAttribute* index_;
};

} // namespace weft

namespace tidemark::sluice::graph {

class SLUICE_API Node_Kernel : public Node {
public:
    bool isIterator() const override { return true; }
    void createWeftNode() override;
    /// Nothing: the kernel acts when its compound is asked.
    void preUpdate() override {}
};

} // namespace tidemark::sluice::graph

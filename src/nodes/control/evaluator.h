// SPDX-License-Identifier: Apache-2.0
// The terminal node of a run: what its pins ask for is computed, and nothing else.
#pragma once

#include "core/array.h"
#include "core/evaluate_attribute.h"
#include "core/node.h"
#include "graph/graph_node.h"

namespace weft {

/// Every dynamic attribute is an `EvaluateAttribute`. Only at root level.
class SLUICE_API Evaluator : public Node {
public:
    Evaluator(NetworkManager* manager, const TM_String& name, Node* parent);

    /// Pulls an input that is not clean. Throws below root level.
    void update(Attribute* attribute) override;

    /// True only on the evaluator of a kernel's private scene, which is run once per element: the
    /// chain behind it is then made dirty by the first run alone.
    bool kernelMode = false;
    /// In kernel mode, `upstreamCache` must be rebuilt.
    bool cacheIsStale = true;
    /// Every attribute upstream of the inputs, once, in the order first seen. Not owned.
    Array<Attribute*> upstreamCache;
    /// The input that every evaluator has. Owned by the node as all attributes are.
    EvaluateAttribute* evaluate;
};

} // namespace weft

namespace tidemark::sluice::graph {

class SLUICE_API Node_Evaluator : public Node {
public:
    bool isEvaluator() const override { return true; }
    void createWeftNode() override;
    weft::Attribute* createDynamicAttribute() override;
    /// Renames the pins that there are, in order, and adds the others. Always true.
    bool readInputs_fromBoostPropertyTree(const PropertyTree& tree) override;

    /// Makes the whole chain behind every pin dirty, so that every run computes it anew.
    void preUpdate() override;
    /// Asks for every pin, in order.
    void update() override;
    /// Calls `postUpdate` on every node upstream.
    void postUpdate() override;
    bool hasPostUpdate() const override { return true; }

private:
    weft::Evaluator& evaluator() const;
    void preUpdateOfKernel(weft::Evaluator& evaluator);
    const Array<Node*>& upstreamToNotify();
    void searchUpstreamToNotify();

    // Nodes upstream that have something to do after a run, by id; true for one topology.
    Array<Node*> upstreamToNotify_;
    uint32_t notifyEpoch_ = 0;
};

} // namespace tidemark::sluice::graph

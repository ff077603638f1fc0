// SPDX-License-Identifier: Apache-2.0
// Evaluators: the three phases of a run, and reading their pins.
#include "nodes/control/evaluator.h"

#include <algorithm>
#include <typeinfo>
#include <unordered_set>

#include "graph/define_node.h"
#include "graph/graph_scene.h"
#include "graph/node_types.h"
#include "persistence/tree_access.h"

namespace weft {

Evaluator::Evaluator(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"Evaluator">();
    setAllowDynamicAttributes(true);
    describe(
        "The Evaluator node is the terminal node that determines which nodes are actually "
        "evaluated at graph execution.\n"
        "At graph execution, every Evaluator node pin computes the chain of nodes connected to "
        "it and executes them in the proper order.\n"
        "This node accepts the creation of dynamic input/output pins with used-defined names.\n"
        "Take note that Evaluator nodes can only be located at the root level.");
    evaluate = addInput<EvaluateAttribute>("evaluate", "Whatever is connected here is computed.");
}

void Evaluator::update(Attribute* attribute) {
    if (parent() && parent()->parent()) {
        pushCritical("Evaluator nodes can be only at root level.");
    }
    if (attribute->isInput()) attribute->pull();
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::Evaluator;

Evaluator& Node_Evaluator::evaluator() const { return *static_cast<Evaluator*>(getCoreNode()); }

weft::Attribute* Node_Evaluator::createDynamicAttribute() {
    return new weft::EvaluateAttribute(getCoreNode()->networkManager(), "_", getCoreNode());
}

bool Node_Evaluator::readInputs_fromBoostPropertyTree(const PropertyTree& tree) {
    weft::Node& core = *getCoreNode();
    uint32_t index = 0;
    tree::forEachNamed(tree, "inputs", "input", [&](const TM_String& name, const PropertyTree&) {
        const uint32_t position = index++;
        if (core.findAttribute(name)) return;
        GraphNodePin* pin = position < core.refInputAttributes().size()
                                ? getPinForAttribute(core.inputAttributeAt(position))
                                : addDynamicInputPin();
        if (pin) pin->setName(name);
    });
    return true;
}

// Before a run.

void Node_Evaluator::preUpdate() {
    if (!getCoreNode()) return;
    if (evaluator().kernelMode) return preUpdateOfKernel(evaluator());
    weft::NetworkManager& manager = *getCoreNode()->networkManager();
    for (const Pin* pin : getArrInputPin()) {
        if (!pin->getWeftAttribute()) continue;
        Array<weft::Attribute*> closure;
        manager.collectUpstream(pin->getWeftAttribute(), closure);
        manager.markAllDirtyForRun(closure);
    }
}

void Node_Evaluator::preUpdateOfKernel(Evaluator& evaluator) {
    // From the second element on, what changes for an element makes its own chain dirty.
    if (!evaluator.cacheIsStale) return;
    weft::NetworkManager& manager = *evaluator.networkManager();
    evaluator.upstreamCache.clear();
    std::unordered_set<const weft::Attribute*> known;
    for (const weft::Attribute* input : evaluator.refInputAttributes()) {
        Array<weft::Attribute*> closure;
        manager.collectUpstream(input, closure);
        for (weft::Attribute* upstream : closure) {
            if (known.insert(upstream).second) evaluator.upstreamCache.append(upstream);
        }
    }
    evaluator.cacheIsStale = false;
    manager.markAllDirtyForRun(evaluator.upstreamCache);
}

// The run.

void Node_Evaluator::update() {
    weft::Node* const core = getCoreNode();
    if (!core) return;
    const bool monitoring = core->networkManager()->monitoring();
    if (monitoring) {
        core->resetNodeTimer(true);
        core->startNodeTimer();
    }
    for (Pin* pin : getArrInputPin()) pin->update();
    if (monitoring) core->stopNodeTimer(true);
}

// After a run.

// Evaluators can feed evaluators, even in a ring. Their part in this phase is only to pass it on,
// so they are followed here instead of being called, each once.
void Node_Evaluator::postUpdate() {
    if (!getCoreNode()) return;
    Array<Node_Evaluator*> passing{this};
    std::unordered_set<const Node*> known{this};
    for (uint32_t i = 0; i < passing.size(); ++i) {
        for (Node* node : passing[i]->upstreamToNotify()) {
            if (typeid(*node) != typeid(Node_Evaluator)) {
                node->postUpdate();
            } else if (known.insert(node).second) {
                passing.append(static_cast<Node_Evaluator*>(node));
            }
        }
    }
}

const Array<Node*>& Node_Evaluator::upstreamToNotify() {
    const uint32_t epoch = getCoreNode()->networkManager()->topologyEpoch();
    if (notifyEpoch_ != epoch) {
        searchUpstreamToNotify();
        notifyEpoch_ = epoch;
    }
    return upstreamToNotify_;
}

void Node_Evaluator::searchUpstreamToNotify() {
    const weft::Node* core = getCoreNode();
    upstreamToNotify_.clear();
    const weft::Node* owner = core;
    for (const Pin* pin : getArrInputPin()) {
        if (!pin->getWeftAttribute()) continue;
        Array<weft::Attribute*> closure;
        core->networkManager()->collectUpstream(pin->getWeftAttribute(), closure);
        for (const weft::Attribute* upstream : closure) {
            if (!upstream->isOutput() || upstream->parent() == owner) continue;
            owner = upstream->parent();
            Node* node = owner && owner != core ? getScene()->nodeOf(owner) : nullptr;
            if (node && node->hasPostUpdate()) upstreamToNotify_.append(node);
        }
    }
    const auto byId = [](const Node* a, const Node* b) { return a->getId() < b->getId(); };
    std::sort(upstreamToNotify_.begin(), upstreamToNotify_.end(), byId);
    const auto end = std::unique(upstreamToNotify_.begin(), upstreamToNotify_.end());
    upstreamToNotify_.resize(static_cast<uint32_t>(end - upstreamToNotify_.begin()));
}

SLUICE_DEFINE_GRAPH_NODE(Evaluator, Evaluator)

} // namespace tidemark::sluice::graph

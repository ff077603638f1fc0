// SPDX-License-Identifier: Apache-2.0
// Counting loops: what belongs to the body, and the iterations.
#include "nodes/control/for.h"

#include <unordered_set>

#include "core/update_scope.h"
#include "graph/define_node.h"
#include "graph/graph_scene.h"
#include "graph/node_types.h"
#include "graph/scene_manager.h"
#include "nodes/control/iterator_body.h"

namespace weft {

using tidemark::sluice::graph::SceneManager;

/// What every iteration computes anew, as long as the edges stay as they are.
struct For::Body {
    uint32_t topologyEpoch = 0;
    Array<Attribute*> attributes;
    Array<Node*> owners; // of the attributes, each once
};

For::For(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"For">();
    describe("The For node is a special node that can be used to perform graph iterations.\n"
             "A For node must always be inside a Compound node. It cannot be located at the root "
             "level.\n"
             "Nodes - at the same level as the For node - are evaluated as many times as the For "
             "condition requires. Thus, a node depending on the For 'currentIndex' output is "
             "evaluated for each iteration. If it is connected several times to an evaluator node, "
             "it is evaluated accordingly repetitively. This is a limitation yet to be solved."
             "Only one single For node is allowed at the same graph level. Nested For iterations "
             "can be performed using nested Compounds, each containing a separate For node.");
    start_ = addInput<NumericAttribute>("start", "The index of the first iteration.");
    stop_ = addInput<NumericAttribute>("stop", "The index that ends the loop; it is not used.");
    step_ = addInput<NumericAttribute>("step", "What the index grows by after each iteration.");
    index_ = addOutput<NumericAttribute>("current index", "The index of the iteration.");
    for (NumericAttribute* bound : {start_, stop_, step_}) {
        setAttributeAllowedSpecialization(bound, "Integer");
        bound->setElementCountRule(1);
        setAttributeAffect(bound, index_);
    }
    setAttributeAllowedSpecialization(index_, "Integer");
    step_->ownNumeric().setValue<int32_t>(1);
}

namespace {

constexpr char atRootLevel[] = "For nodes cannot be at root level.";

} // namespace

void For::update(Attribute* attribute) {
    checkIteratorPlace(*this, atRootLevel);
    setAttributeIsClean(attribute, true);
}

void For::iterate(Attribute* compoundOutput) {
    checkIteratorPlace(*this, atRootLevel);
    checkNotIterating(*this);
    // Whoever follows the iterations may take the loop out of the graph.
    const Retained<Node> self(this);
    const Retained<Node> compound(compoundOutput->parent());
    UpdateScope scope(*this);
    for (NumericAttribute* bound : {start_, stop_, step_}) bound->pull();
    pullInputs(*compound);
    // The numbers are read late: bounds and the compound's inputs may depend on the same loop.
    const int32_t start = start_->numeric().value<int32_t>();
    const int32_t stop = stop_->numeric().value<int32_t>();
    if (start < stop) repeat(*compound, start, stop, step_->numeric().value<int32_t>());
    for (Attribute* output : compound->refOutputAttributes()) output->setClean(true);
    scope.done();
}

void For::repeat(Node& compound, int32_t start, int32_t stop, int32_t step) {
    NetworkManager& manager = *networkManager();
    Body body;
    int32_t index = start;
    do {
        manager.pollInterrupt();
        if (body.topologyEpoch != manager.topologyEpoch()) findBody(compound, body);
        if (Numeric* target = index_->numericTarget()) target->setValueAt<int32_t>(0, index);
        index_->setClean(true);
        for (Node* owner : body.owners) owner->setUpdateEnabledPublic(true);
        for (Attribute* attribute : body.attributes) attribute->setClean(false);
        computeOutputs(compound);
        tellIteration(index);
        if (isDeleted() || compound.isDeleted()) return;
        // Beyond the largest number the index goes on with the smallest.
        index = static_cast<int32_t>(static_cast<uint32_t>(index) + static_cast<uint32_t>(step));
    } while (index < stop);
}

void For::findBody(const Node& compound, Body& body) const {
    body.topologyEpoch = networkManager()->topologyEpoch();
    body.attributes = collectBody(compound, [&](const Attribute& upstream, const Attribute& out) {
        const Node* owner = upstream.parent();
        if (&upstream == &out || !owner || owner == this) return false;
        return liesIn(*owner, parent()) && !isIteratedDeeper(*owner, compound);
    });
    body.owners.clear();
    std::unordered_set<const Node*> known;
    for (const Attribute* attribute : body.attributes) {
        if (known.insert(attribute->parent()).second) body.owners.append(attribute->parent());
    }
}

// Afterwards the outputs are dirty again, for the next iteration.
void For::computeOutputs(const Node& compound) {
    for (uint32_t i = 0; i < compound.refOutputAttributes().size(); ++i) {
        Attribute* output = compound.outputAttributeAt(i);
        const LifeWatch life(output);
        output->pull();
        if (!life.isGone()) output->setClean(false);
    }
}

// Networks that nobody sees tell nobody.
void For::tellIteration(const int32_t& index) const {
    if (!networkManager()->monitoring()) return;
    if (const auto tell = SceneManager::iterationCompletedSlot()) tell(index);
    if (const auto tell = SceneManager::forNode_iterationCompletedCallback_) tell(index);
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::For;

SLUICE_DEFINE_GRAPH_NODE(For, For)

} // namespace tidemark::sluice::graph

// SPDX-License-Identifier: Apache-2.0
// What a kernel copies: which nodes, which wires, and what stands for what lies outside.
#include "nodes/control/kernel_plan.h"

#include "nodes/control/compound.h"
#include "nodes/control/kernel.h"
#include "nodes/control/kernel_vars.h"
#include "persistence/tree_access.h"

namespace weft {

namespace {

using tidemark::graph::GraphConnection;
using tidemark::graph::GraphNodeBase;
using tidemark::sluice::graph::PropertyTree;
namespace tree = tidemark::sluice::graph::tree;

// A stand-in with a pin per attribute. Pins are known by their places, so a name that comes twice
// or that the node uses itself may be changed.
void appendStandIn(PropertyTree& nodes, const TM_String& name, const char* type,
                   const char* listName, const char* itemName,
                   const std::vector<Attribute*>& attributes, std::unordered_set<TM_String> taken) {
    PropertyTree& node = tree::append(nodes, "node");
    tree::append(node, "name", name);
    tree::append(node, "type", type);
    PropertyTree& list = tree::append(node, listName);
    for (const Attribute* attribute : attributes) {
        TM_String pinName = attribute->name();
        while (!taken.insert(pinName).second) pinName = NestedObject::nextName(pinName);
        tree::append(tree::append(list, itemName), "name", pinName);
    }
}

template <typename Pins>
uint32_t placeOf(const Pins& pins, const Attribute& attribute) {
    for (uint32_t i = 0; i < pins.size(); ++i) {
        if (pins[i]->getWeftAttribute() == &attribute) return i;
    }
    return pins.size();
}

} // namespace

KernelPlan::KernelPlan(const Kernel& kernel, const Array<Attribute*>& attributes)
    : kernel_(kernel), compound_(*kernel.parent()), tree_(tree::makeDocument()) {
    for (Attribute* attribute : attributes) classify(*attribute);
    addWhatNodesRead();
    const GraphNode* compound = kernel_.scene()->nodeOf(&compound_);
    if (!compound) return;
    for (GraphNodeBase* child : compound->children()) {
        auto* node = dynamic_cast<GraphNode*>(child);
        if (node && children_.count(node->getCoreNode()) > 0) roots_.push_back(node);
    }
    for (GraphNode* root : roots_) listNodes(root);
    writeTree();
    addInnerWires();
    addOuterWires();
    addOutlets();
}

KernelPlan::~KernelPlan() = default;

KernelPlan::GraphNode* KernelPlan::kernelNode() const { return kernel_.scene()->nodeOf(&kernel_); }

bool KernelPlan::isWall(const Node& owner) const {
    return owner.parent() == &compound_ && owner.classNameView() == "CompoundInterface";
}

void KernelPlan::classify(Attribute& attribute) {
    const Node& owner = *attribute.parent();
    const bool isChild = owner.parent() == &compound_;
    if (&owner == &kernel_) return;
    if (isChild && owner.classNameView() == "Kernel") {
        compound_.pushCritical("Only one kernel per compound is allowed");
    }
    if (!isWall(owner)) return addChildOf(&owner);
    if (attribute.isInput()) {
        outletInputs_.push_back(&attribute);
    } else {
        addVariable(&attribute);
    }
}

void KernelPlan::addVariable(Attribute* output) {
    const auto place = static_cast<uint32_t>(variables_.size());
    if (variablePlaces_.emplace(output, place).second) variables_.push_back(output);
}

// Children are copied whole, with all that they contain.
void KernelPlan::addChildOf(const Node* owner) {
    while (owner->parent() != &compound_) owner = owner->parent();
    children_.insert(owner);
}

void KernelPlan::listNodes(GraphNode* node) {
    nodePlaces_.emplace(node->getCoreNode(), static_cast<uint32_t>(nodes_.size()));
    nodes_.push_back(node);
    for (GraphNodeBase* child : node->children()) {
        if (auto* inner = dynamic_cast<GraphNode*>(child)) listNodes(inner);
    }
}

// A node may read inputs that none of its outputs is said to depend on.
void KernelPlan::addWhatNodesRead() {
    std::vector<const Node*> readers;
    for (const Node* child : compound_.refNodes()) {
        if (children_.count(child) > 0) readers.push_back(child);
    }
    for (std::size_t i = 0; i < readers.size(); ++i) {
        for (const Attribute* input : readers[i]->refInputAttributes()) {
            Attribute* const source = input->source();
            const Node* owner = source ? source->parent() : nullptr;
            if (!owner || owner->parent() != &compound_ || isIterator(*owner)) continue;
            if (isWall(*owner)) {
                addVariable(source);
            } else if (children_.insert(owner).second) {
                readers.push_back(owner);
            }
        }
    }
}

void KernelPlan::writeTree() {
    PropertyTree& scene = tree::append(*tree_, "scene");
    const GraphNode* compound = kernel_.scene()->nodeOf(&compound_);
    const Array<GraphNodeBase*> written = [&] {
        Array<GraphNodeBase*> list;
        for (GraphNode* root : roots_) list.append(root);
        return list;
    }();
    kernel_.scene()->writeNodes_toBoostPropertyTree(scene, compound, written);
    PropertyTree& nodes = *tree::refChild(scene, "nodes");
    appendStandIn(nodes, kernel_.name(), "KernelVars", "outputs", "output", variables_,
                  {"element", "thread id", "index"});
    appendStandIn(nodes, "kernelEvaluator", "Evaluator", "inputs", "input", outletInputs_, {});
}

// Where an attribute of the real graph is found in a copy: false for what is not copied.
bool KernelPlan::findEnd(const Attribute& attribute, End& end) const {
    const Node* owner = attribute.parent();
    if (owner == &kernel_) {
        end = {vars, placeOf(kernel_.scene()->nodeOf(owner)->getArrOutputPin(), attribute)};
        return attribute.isOutput();
    }
    if (const auto variable = variablePlaces_.find(&attribute); variable != variablePlaces_.end()) {
        end = {vars, KernelVars::ownOutputs + variable->second};
        return true;
    }
    const auto place = nodePlaces_.find(owner);
    if (place == nodePlaces_.end()) return false;
    const GraphNode& node = *nodes_[place->second];
    const auto& pins = attribute.isInput() ? node.getArrInputPin() : node.getArrOutputPin();
    end = {place->second, placeOf(pins, attribute)};
    return end.pin < pins.size();
}

void KernelPlan::addInnerWires() {
    Array<GraphNodeBase*> copied;
    for (GraphNode* root : roots_) copied.append(root);
    tidemark::graph::GraphScene::Connections inner;
    kernel_.scene()->getConnectionsInvolvingOnlyNodes(copied, inner);
    for (const GraphConnection* connection : inner) {
        const auto* source =
            dynamic_cast<const tidemark::sluice::graph::Pin*>(connection->getSourcePin());
        const auto* target =
            dynamic_cast<const tidemark::sluice::graph::Pin*>(connection->getTargetPin());
        if (!source || !target || !source->getWeftAttribute() || !target->getWeftAttribute()) {
            continue;
        }
        Wire wire;
        if (findEnd(*source->getWeftAttribute(), wire.source) &&
            findEnd(*target->getWeftAttribute(), wire.target)) {
            wires_.push_back(wire);
        }
    }
}

// Wires that come from a stand-in or lead to one.
void KernelPlan::addOuterWires() {
    const auto addFrom = [this](const Attribute& source) {
        Wire wire;
        if (!findEnd(source, wire.source) || wire.source.node != vars) return;
        for (const Attribute* target : source.destinations()) {
            if (findEnd(*target, wire.target) && wire.target.node != vars) wires_.push_back(wire);
        }
    };
    for (const Attribute* output : kernel_.refOutputAttributes()) addFrom(*output);
    for (const Attribute* variable : variables_) addFrom(*variable);
    for (uint32_t i = 0; i < outletInputs_.size(); ++i) {
        Wire wire;
        wire.target = {evaluator, i};
        const Attribute* source = outletInputs_[i]->source();
        if (source && findEnd(*source, wire.source)) wires_.push_back(wire);
    }
}

void KernelPlan::addOutlets() {
    std::unordered_set<const Attribute*> known;
    for (const Attribute* input : outletInputs_) {
        Outlet outlet{input->source(), {}};
        if (!outlet.source || !known.insert(outlet.source).second) continue;
        if (findEnd(*outlet.source, outlet.end)) outlets_.push_back(outlet);
    }
}

} // namespace weft

// SPDX-License-Identifier: Apache-2.0
// Compounds: handing an output to the iterator that feeds it, and reading the order of the pins.
#include "nodes/control/compound.h"

#include <unordered_map>
#include <unordered_set>

#include "graph/define_node.h"
#include "graph/graph_scene.h"
#include "graph/node_types.h"
#include "persistence/tree_access.h"

namespace weft {

bool isIterator(const Node& node) {
    const std::string_view name = node.classNameView();
    return name == "For" || name == "Kernel";
}

/// What was found for each attribute, as long as the edges stay as they are.
struct Compound::Lookups {
    uint32_t topologyEpoch;
    std::unordered_map<const Attribute*, Array<Attribute*>> found;
};

Compound::Compound(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"Compound">();
    setAllowDynamicAttributes(true);
    describe(
        "This node acts as a container of a subgraph. Thus, an additional layer of abstraction "
        "is provided.\n"
        "The Compound node allows the creation of dynamic input/output pins with used-defined "
        "names.\n"
        "If a pin is added to the Compound, an equivalent interface node is created within the "
        "contained graph.");
}

Compound::~Compound() = default;

bool Compound::hasIterator(Node*) {
    if (refOutputAttributes().empty()) return false;
    Array<Attribute*> found;
    collectIteratorAttributes(outputAttributeAt(0), found);
    return !found.empty();
}

void Compound::collectIteratorAttributes(Attribute* attribute, Array<Attribute*>& result) {
    // Most compounds hold no iterator, and then no closure needs to be looked through.
    if (iterators_.empty()) return;
    for (Attribute* output : iteratorAttributesOf(attribute)) result.append(output);
}

const Array<Attribute*>& Compound::iteratorAttributesOf(Attribute* attribute) {
    const uint32_t epoch = networkManager()->topologyEpoch();
    if (!lookups_ || lookups_->topologyEpoch != epoch) {
        lookups_ = std::make_unique<Lookups>(Lookups{epoch, {}});
    }
    const auto [entry, isNew] = lookups_->found.try_emplace(attribute);
    if (isNew) searchIterators(attribute, entry->second);
    return entry->second;
}

void Compound::searchIterators(const Attribute* attribute, Array<Attribute*>& found) const {
    Array<Attribute*> closure;
    networkManager()->collectUpstream(attribute, closure);
    for (Attribute* upstream : closure) {
        const Node* owner = upstream->parent();
        if (!upstream->isOutput() || !owner || owner->parent() != this) continue;
        if (isIterator(*owner)) found.append(upstream);
    }
}

void Compound::update(Attribute* attribute) {
    Array<Attribute*> found;
    collectIteratorAttributes(attribute, found);
    if (found.empty()) return attribute->pull();
    // Attributes are counted, not nodes: two outputs of one iterator are one too many as well.
    if (found.size() > 1) pushCritical("Only one iterator node is allowed per compound level.");
    found[0]->parent()->iterate(attribute);
}

// A child that comes or goes moves no edge by itself, so the lookups are dropped here. A child that
// moves to another parent may be announced as removed twice.
void Compound::childAdded(NestedObject& child) {
    Node::childAdded(child);
    if (child.isAttributeObject() || !isIterator(static_cast<Node&>(child))) return;
    if (!iterators_.contains(&child)) iterators_.append(&child);
    lookups_.reset();
}

void Compound::childRemoving(NestedObject& child) {
    Node::childRemoving(child);
    if (child.isAttributeObject() || !isIterator(static_cast<Node&>(child))) return;
    iterators_.remove(&child);
    lookups_.reset();
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::Compound;

void Node_Compound::setAutoAffects() {
    weft::Node* core = getCoreNode();
    weft::NetworkManager& manager = *core->networkManager();
    for (const Pin* output : getArrOutputPin()) {
        if (!output->getWeftAttribute()) continue;
        Array<weft::Attribute*> closure;
        manager.collectUpstream(output->getWeftAttribute(), closure);
        std::unordered_set<const weft::Attribute*> ownInputs;
        for (const weft::Attribute* upstream : closure) {
            if (upstream->isInput() && upstream->parent() == core) ownInputs.insert(upstream);
        }
        for (const Pin* input : getArrInputPin()) {
            if (ownInputs.count(input->getWeftAttribute()) == 0) continue;
            core->setAttributeAffectPublic(input->getWeftAttribute(), output->getWeftAttribute());
        }
    }
}

namespace {

void readPinsOrder(const PropertyTree& tree, const char* list, const char* item,
                   Array<TM_String>& order) {
    std::unordered_set<TM_String> known(order.begin(), order.end());
    tree::forEachNamed(tree, list, item, [&](const TM_String& name, const PropertyTree&) {
        if (known.insert(name).second) order.append(name);
    });
}

} // namespace

bool Node_Compound::readInputs_fromBoostPropertyTree(const PropertyTree& tree) {
    readPinsOrder(tree, "inputs", "input", refInputPinsOrder());
    return true;
}

bool Node_Compound::readOutputs_fromBoostPropertyTree(const PropertyTree& tree) {
    readPinsOrder(tree, "outputs", "output", refOutputPinsOrder());
    return true;
}

SLUICE_DEFINE_GRAPH_NODE(Compound, Compound)

} // namespace tidemark::sluice::graph

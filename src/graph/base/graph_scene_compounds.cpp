// SPDX-License-Identifier: Apache-2.0
// Compounds: nodes move in and out, interface nodes lead connections through the wall.
#include <map>
#include <utility>

#include "graph/base/graph_scene_base.h"

namespace tidemark::graph {

// --- interface pins ----------------------------------------------------------------------------

GraphNodeBase* GraphScene::addCompoundInterfaceNode(GraphNodeBase* compound) {
    if (!compound || !compound->isCompound()) return nullptr;
    GraphNodeBase* node = createNewInterfaceNode();
    if (!node || !addNodeToGraph(node)) return nullptr;
    node->setNodeOwner(compound);
    return node;
}

bool GraphScene::addCompoundInterfacePin(const PinFlags& flags, GraphNodeBase* interfaceNode,
                                         GraphNodePin*& interfacePin, GraphNodePin*& compoundPin) {
    interfacePin = nullptr;
    compoundPin = nullptr;
    const GraphNodeBase* compound = interfaceNode ? interfaceNode->getNodeOwner() : nullptr;
    if (!compound) return false;
    const bool input = static_cast<bool>(flags & GraphNodePin::inputFlag);
    const TM_String name = compound->getFreePinNameLikeThis(input ? "input" : "output");
    interfacePin =
        input ? interfaceNode->addDynamicOutputPin() : interfaceNode->addDynamicInputPin();
    if (!interfacePin) return false;
    interfacePin->setName(name);
    compoundPin = createCompoundPinForInterfacePin(interfacePin);
    return compoundPin != nullptr;
}

GraphNodePin* GraphScene::createCompoundPinForInterfacePin(GraphNodePin* interfacePin) {
    const GraphNodeBase* node = interfacePin ? interfacePin->getParentGraphNodePtr() : nullptr;
    GraphNodeBase* compound = node ? node->getNodeOwner() : nullptr;
    if (!compound) return nullptr;
    GraphNodePin* pin =
        interfacePin->isInput() ? compound->addDynamicOutputPin() : compound->addDynamicInputPin();
    if (!pin) return nullptr;
    pin->setName(interfacePin->getName());
    pin->setChildGraphNodePinPtr(interfacePin);
    interfacePin->setParentGraphNodePinPtr(pin);
    return pin;
}

// --- moving ------------------------------------------------------------------------------------

void GraphScene::collectNames(const GraphNodeBase* node, Array<TM_String>& names) const {
    Nodes below;
    node->getNodesRecursively(below);
    names.append(node->getFullName());
    for (const GraphNodeBase* inner : below) names.append(inner->getFullName());
}

bool GraphScene::moveNodes(const Nodes& nodes, GraphNodeBase* from, GraphNodeBase* to,
                           NameMap& renamed) {
    bool moved = false;
    for (GraphNodeBase* node : nodes) {
        if (!node || node == to || node->getNodeOwner() != from) continue;
        Array<TM_String> before;
        Array<TM_String> after;
        collectNames(node, before);
        node->setNodeOwner(to);
        collectNames(node, after);
        for (uint32_t i = 0; i < before.size(); ++i) renamed[before[i]] = after[i];
        moved = true;
    }
    return moved;
}

bool GraphScene::moveNodesToCompound(const Nodes& nodes, GraphNodeBase* compound,
                                     NameMap& renamed) {
    if (!compound || !compound->isCompound() || !compound->getNodeOwner()) return false;
    return moveNodes(nodes, compound->getNodeOwner(), compound, renamed);
}

bool GraphScene::removeNodesFromCompound(const Nodes& nodes, GraphNodeBase* compound,
                                         NameMap& renamed) {
    if (!compound || !compound->isCompound() || !compound->getNodeOwner()) return false;
    return moveNodes(nodes, compound, compound->getNodeOwner(), renamed);
}

// --- leading connections through a wall --------------------------------------------------------

/// Replaces connections that cross the wall of a compound by pairs that meet at pins of a new
/// interface node. Connections with the same source share the pins.
class GraphScene::WallCrossing {
public:
    WallCrossing(GraphScene& scene, GraphNodeBase* compound) : scene_(scene), compound_(compound) {}

    void leadThrough(GraphConnection* connection) {
        GraphNodePin* source = connection->getSourcePin();
        GraphNodePin* target = connection->getTargetPin();
        const bool fromInside = isInside(connection->getSourceNode());
        if (fromInside == isInside(connection->getTargetNode())) return;
        if (connection->getSourceNode() == compound_ || connection->getTargetNode() == compound_) {
            return;
        }
        GraphNodePin* exit = exitFor(source, fromInside);
        if (!exit) return;
        scene_.removeConnection(connection);
        if (!scene_.connect(exit, target)) scene_.connect(source, target);
    }

private:
    bool isInside(const GraphNodeBase* node) const {
        return node && node->isOwnedByNode(compound_, true);
    }

    // The pin on the other side of the wall that carries what `source` gives; null when none can.
    GraphNodePin* exitFor(GraphNodePin* source, bool fromInside) {
        const auto known = exits_.find(source);
        if (known != exits_.end()) return known->second;
        GraphNodePin* inner = nullptr;
        GraphNodePin* outer = nullptr;
        const PinFlags side = fromInside ? GraphNodePin::outputFlag : GraphNodePin::inputFlag;
        GraphNodePin* exit = nullptr;
        if (scene_.addCompoundInterfacePin(side, interfaceNode(), inner, outer)) {
            GraphNodePin* entry = fromInside ? inner : outer;
            if (scene_.connect(source, entry)) exit = fromInside ? outer : inner;
        }
        exits_[source] = exit;
        return exit;
    }

    GraphNodeBase* interfaceNode() {
        if (!interfaceNode_) interfaceNode_ = scene_.addCompoundInterfaceNode(compound_);
        return interfaceNode_;
    }

    GraphScene& scene_;
    GraphNodeBase* compound_;
    GraphNodeBase* interfaceNode_ = nullptr;
    std::map<GraphNodePin*, GraphNodePin*> exits_;
};

bool GraphScene::removeNodesFromCompoundCreatingInterfaces(const Nodes& nodes,
                                                           GraphNodeBase* compound,
                                                           NameMap& renamed) {
    Nodes moving;
    for (GraphNodeBase* node : nodes) {
        if (node && node->getNodeOwner() == compound) moving.append(node);
    }
    if (!removeNodesFromCompound(moving, compound, renamed)) return false;
    Connections touched;
    getConnectionsInvolvingNodes(moving, touched);
    WallCrossing wall(*this, compound);
    for (GraphConnection* connection : touched) wall.leadThrough(connection);
    return true;
}

} // namespace tidemark::graph

// SPDX-License-Identifier: Apache-2.0
// What can be asked of a scene: nodes, pins and connections by id, name and neighbourhood.
#include <algorithm>
#include <string_view>
#include <unordered_set>

#include "graph/base/graph_scene_base.h"

namespace tidemark::graph {

namespace {

using NodeSet = std::unordered_set<const GraphNodeBase*>;

// The nodes and all below them, each once, in the order met.
GraphScene::Nodes withNodesBelow(const GraphScene::Nodes& nodes, NodeSet& known) {
    GraphScene::Nodes all;
    for (GraphNodeBase* node : nodes) {
        if (!node) continue;
        GraphScene::Nodes below;
        node->getNodesRecursively(below);
        if (known.insert(node).second) all.append(node);
        for (GraphNodeBase* inner : below) {
            if (known.insert(inner).second) all.append(inner);
        }
    }
    return all;
}

// Connections of the nodes, each once, in the order of the scene's list.
GraphScene::Connections connectionsOf(const GraphScene::Nodes& nodes) {
    GraphScene::Connections found;
    for (const GraphNodeBase* node : nodes) node->getConnections(found);
    std::sort(found.begin(), found.end(), [](const GraphConnection* a, const GraphConnection* b) {
        return a->indexInScene() < b->indexInScene();
    });
    const auto* end = std::unique(found.begin(), found.end());
    found.resize(static_cast<uint32_t>(end - found.begin()));
    return found;
}

bool joins(const GraphConnection* connection, const GraphConnection& like) {
    return connection->getSourcePin() == like.getSourcePin() &&
           connection->getTargetPin() == like.getTargetPin();
}

GraphNodeBase* otherEnd(const GraphConnection* connection, const GraphNodeBase* node) {
    GraphNodeBase* source = connection->getSourceNode();
    return source == node ? connection->getTargetNode() : source;
}

} // namespace

// --- nodes -------------------------------------------------------------------------------------

GraphNodeBase* GraphScene::getNodePtrById(unsigned id) const { return nodes_.find(id); }

bool GraphScene::hasGraphNodeWithId(unsigned id) const { return nodes_.contains(id); }

GraphNodeBase* GraphScene::getNodePtrByFullName(const TM_String& fullName) const {
    std::string_view rest = fullName;
    const auto nextName = [&rest] {
        const std::string_view name = rest.substr(0, rest.find('.'));
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
        return name;
    };
    if (!rootNode_ || fullName.empty() || fullName.back() == '.') return nullptr;
    if (nextName() != rootNode_->getName()) return nullptr;
    GraphNodeBase* node = rootNode_;
    while (node && !rest.empty()) node = node->findChild(nextName());
    return node;
}

void GraphScene::getAllGraphCompounds(Nodes& compounds) const {
    for (const auto entry : nodes_) {
        if (entry.value->isCompound()) compounds.append(entry.value);
    }
}

void GraphScene::getNodesConnectedWithNode(const GraphNodeBase* node, Nodes& nodes) const {
    getNodesConnectedBase(node, GraphNodePin::inputFlag | GraphNodePin::outputFlag, nodes);
}

void GraphScene::getNodesConnectedBase(const GraphNodeBase* node, const PinFlags& directions,
                                       Nodes& nodes) const {
    if (!node) return;
    NodeSet known(nodes.begin(), nodes.end());
    for (const GraphNodePin* pin : node->pins()) {
        if (!(pin->getFlags() & directions)) continue;
        Connections connections;
        getPinConnections(pin, connections);
        for (const GraphConnection* connection : connections) {
            GraphNodeBase* other = otherEnd(connection, node);
            if (other && known.insert(other).second) nodes.append(other);
        }
    }
}

bool GraphScene::areNodesConnected(const GraphNodeBase* a, const GraphNodeBase* b) const {
    return a && b && a->hasConnectionsWithNode(b);
}

// --- pins --------------------------------------------------------------------------------------

GraphNodePin* GraphScene::getPinPtrByFullName(const TM_String& fullName) const {
    const std::size_t point = fullName.rfind('.');
    if (point == TM_String::npos) return nullptr;
    const GraphNodeBase* node = getNodePtrByFullName(fullName.substr(0, point));
    return node ? node->findPin(std::string_view(fullName).substr(point + 1)) : nullptr;
}

void GraphScene::getConnectablePins(const GraphNodePin* pin, const GraphNodeBase* node,
                                    Pins& pins) const {
    if (!pin || !node) return;
    if (pin->isOutput()) {
        node->allowsConnectionFrom(pin, pins);
    } else {
        node->allowsConnectionTo(pin, pins);
    }
}

void GraphScene::getConnectablePins(const GraphNodePin* pin, const Nodes& nodes, Pins& pins) const {
    for (const GraphNodeBase* node : nodes) getConnectablePins(pin, node, pins);
}

void GraphScene::getConnectablePins(const GraphNodePin* pin, Pins& pins) const {
    const GraphNodeBase* node = pin ? pin->getParentGraphNodePtr() : nullptr;
    const GraphNodeBase* owner = node ? node->getNodeOwner() : nullptr;
    if (owner) getConnectablePins(pin, owner->children(), pins);
}

bool GraphScene::isPinFull(const GraphNodePin* pin) const { return pin && pin->isFull(); }

bool GraphScene::hasPinConnections(const GraphNodePin* pin) const {
    return getPinNumConnections(pin) > 0;
}

bool GraphScene::hasPinConnections(unsigned pinId) const {
    return hasPinConnections(getPinPtrById(pinId));
}

unsigned GraphScene::getPinNumConnections(const GraphNodePin* pin) const {
    return pin ? pin->inputConnections().size() + pin->outputConnections().size() : 0;
}

unsigned GraphScene::getPinNumConnections(unsigned pinId) const {
    return getPinNumConnections(getPinPtrById(pinId));
}

void GraphScene::getEvaluablePins(Pins& pins) const {
    for (const auto entry : nodes_) {
        if (entry.value->isEvaluator()) entry.value->getInputPins(pins);
    }
}

// --- connections -------------------------------------------------------------------------------

bool GraphScene::hasConnectionsLikeThis(const GraphConnection& connection) const {
    Connections found;
    getConnectionsLikeThis(connection, found);
    return !found.empty();
}

void GraphScene::getConnectionsLikeThis(const GraphConnection& connection,
                                        Connections& connections) const {
    const GraphNodePin* target = connection.getTargetPin();
    if (!target) return;
    for (GraphConnection* own : target->inputConnections()) {
        if (isListed(own) && joins(own, connection)) connections.append(own);
    }
}

void GraphScene::getPinConnections(const GraphNodePin* pin, Connections& connections) const {
    if (!pin) return;
    for (GraphConnection* connection : pin->inputConnections()) connections.append(connection);
    for (GraphConnection* connection : pin->outputConnections()) connections.append(connection);
}

void GraphScene::getPinConnections(unsigned pinId, Connections& connections) const {
    getPinConnections(getPinPtrById(pinId), connections);
}

void GraphScene::getNodeConnectionsByPin(const GraphNodeBase* node, const TM_String& pinName,
                                         Connections& connections) const {
    if (node) getPinConnections(node->getPinByName(pinName), connections);
}

void GraphScene::getNodeConnectionsByPin(unsigned nodeId, const TM_String& pinName,
                                         Connections& connections) const {
    getNodeConnectionsByPin(nodes_.find(nodeId), pinName, connections);
}

void GraphScene::getConnectionsWithNode(const GraphNodeBase* node, Connections& connections) const {
    if (node) node->getConnections(connections);
}

void GraphScene::getConnectionsWithNode(unsigned nodeId, Connections& connections) const {
    getConnectionsWithNode(nodes_.find(nodeId), connections);
}

void GraphScene::getConnectionsBetweenNodes(const GraphNodeBase* a, const GraphNodeBase* b,
                                            Connections& connections) const {
    if (a && b) a->getConnectionsWithNode(b, connections);
}

void GraphScene::getConnectionsInvolvingNodes(const Nodes& nodes, Connections& connections) const {
    NodeSet known;
    for (GraphConnection* connection : connectionsOf(withNodesBelow(nodes, known))) {
        connections.append(connection);
    }
}

void GraphScene::getConnectionsInvolvingOnlyNodes(const Nodes& nodes,
                                                  Connections& connections) const {
    NodeSet known;
    for (GraphConnection* connection : connectionsOf(withNodesBelow(nodes, known))) {
        if (known.count(connection->getSourceNode()) && known.count(connection->getTargetNode())) {
            connections.append(connection);
        }
    }
}

// --- permissions -------------------------------------------------------------------------------

bool GraphScene::isConnectionAllowed(const GraphNodePin* source, const GraphNodePin* target) const {
    return source && source->allowsConnectionTo(target);
}

bool GraphScene::isConnectionAllowed(const GraphNodePin* source,
                                     const GraphNodeBase* target) const {
    return source && target && target->allowsConnectionFrom(source);
}

bool GraphScene::isConnectionAllowed(const GraphNodeBase* source,
                                     const GraphNodePin* target) const {
    return source && target && source->allowsConnectionTo(target);
}

bool GraphScene::isConnectionAllowed(const GraphNodeBase* source,
                                     const GraphNodeBase* target) const {
    return source && target && source->allowsConnectionTo(target);
}

bool GraphScene::isConnectionAllowed(const GraphConnection& connection) const {
    return isConnectionAllowed(connection.getSourcePin(), connection.getTargetPin());
}

} // namespace tidemark::graph

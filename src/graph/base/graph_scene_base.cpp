// SPDX-License-Identifier: Apache-2.0
// Scenes: adding and removing nodes, pins and connections.
#include "graph/base/graph_scene_base.h"

#include <atomic>
#include <limits>

#include "graph/base/interned_text.h"

namespace tidemark::graph {

GraphScene::NodeCallback GraphScene::addNodeCallback_ = nullptr;
GraphScene::NodeCallback GraphScene::removeNodeCallback_ = nullptr;
GraphScene::ConnectionCallback GraphScene::addConnectionCallback_ = nullptr;
GraphScene::ConnectionCallback GraphScene::removeConnectionCallback_ = nullptr;

namespace {

unsigned nextSceneId() {
    static std::atomic<unsigned> lastId{0};
    return ++lastId;
}

template <typename T>
unsigned freeIdIn(const IdTable<T>& table) {
    if (table.lastId() < std::numeric_limits<unsigned>::max()) return table.lastId() + 1;
    unsigned id = 1;
    while (table.contains(id)) ++id;
    return id;
}

GraphNodeBase* makeNode(const TM_String& type) {
    auto* node = new GraphNodeBase();
    node->setType(type);
    node->setName(type);
    return node;
}

GraphNodeBase* ownerOfSource(const GraphConnection* connection) {
    const GraphNodeBase* node = connection->getSourceNode();
    return node ? node->getNodeOwner() : nullptr;
}

} // namespace

GraphScene::GraphScene() : sceneId_(nextSceneId()) {
    GraphNodeBase* root = makeNode("root");
    root->setType(TM_String());
    root->setGraphScene(this);
    root->setCompound(true);
    setRootNode(root);
}

GraphScene::~GraphScene() {
    GraphScene::clear();
    setRootNode(nullptr);
}

void GraphScene::setRootNode(GraphNodeBase* root) {
    if (rootNode_ == root) return;
    if (rootNode_) rootNode_->destroyNodePins();
    delete rootNode_;
    rootNode_ = root;
}

// --- the scene as a whole ----------------------------------------------------------------------

void GraphScene::clear() {
    removeAllConnections();
    removeAllNodes();
    clearMessages();
}

void GraphScene::clearMessages() { messages_.clear(); }

Color4<float> GraphScene::getColorFromNodeType(const TM_String& type) const {
    const auto found = nodeTypeColors_.find(text::toLower(type));
    return found == nodeTypeColors_.end() ? ElementDefault<Color4<float>>::value() : found->second;
}

Color4<float> GraphScene::getColorFromNodeType(const GraphNodeBase* node) const {
    return getColorFromNodeType(node ? node->getType() : TM_String());
}

bool GraphScene::hasColorForNodeType(const TM_String& type) const {
    return nodeTypeColors_.count(text::toLower(type)) > 0;
}

void GraphScene::setColorForNodeType(const TM_String& type, const Color4<float>& color) {
    nodeTypeColors_[text::toLower(type)] = color;
}

// --- nodes -------------------------------------------------------------------------------------

void GraphScene::insertNodeInMapById(unsigned id, GraphNodeBase* node) { nodes_.insert(id, node); }

bool GraphScene::addNodeToGraph(GraphNodeBase* node) {
    if (!node) return false;
    node->setGraphScene(this);
    if (addNodeCallback_ && isTold() && node->getNodeOwner())
        addNodeCallback_(this, node->getNodeOwner(), node);
    if (node->getId() == 0 || nodes_.contains(node->getId())) node->setId(getFreeNodeId());
    insertNodeInMapById(node->getId(), node);
    for (GraphNodePin* pin : node->pins()) addNodePin(pin);
    return true;
}

bool GraphScene::removeNodeFromGraph(unsigned id) { return removeNodeFromGraph(nodes_.find(id)); }

bool GraphScene::removeNodeFromGraph(GraphNodeBase* node) {
    if (!node || node == rootNode_ || node->getGraphScene() != this) return false;
    removeNodesInCompoundFromGraph(node);
    removeConnectionsWithNode(node);
    if (nodes_.find(node->getId()) == node) nodes_.erase(node->getId());
    if (GraphNodeBase* owner = node->getNodeOwner()) owner->removeNodeFromNodesList(node);
    node->onRemovingFromScene();
    node->destroyNodePins();
    delete node;
    return true;
}

void GraphScene::removeNodesInCompoundFromGraph(GraphNodeBase* compound) {
    if (!compound || compound->children().empty()) return;
    Nodes below;
    compound->getNodesRecursively(below);
    // A node stands before the nodes below it, so from the end each one is empty when its turn
    // comes.
    for (uint32_t i = below.size(); i > 0; --i) removeNodeFromGraph(below[i - 1]);
}

void GraphScene::removeAllNodes() {
    while (!nodes_.empty()) {
        const uint32_t before = nodes_.size();
        removeNodeFromGraph(nodes_.find(nodes_.lastId()));
        if (nodes_.size() >= before) return;
    }
}

GraphNodeBase* GraphScene::createNewCompound() {
    GraphNodeBase* node = makeNode("Compound");
    node->setCompound(true);
    return node;
}

GraphNodeBase* GraphScene::createNewInterfaceNode() {
    GraphNodeBase* node = makeNode("CompoundInterface");
    node->setInterface(true);
    return node;
}

GraphNodeBase* GraphScene::createNewEvaluator() { return makeNode("Evaluator"); }

GraphNodeBase* GraphScene::createNewPassThrough() { return makeNode("Pass"); }

unsigned GraphScene::getFreeNodeId() const { return freeIdIn(nodes_); }

TM_String GraphScene::getFreeNodeName(const GraphNodeBase* owner, const TM_String& name) const {
    if (!owner) owner = rootNode_;
    return owner ? owner->getFreeNodeNameLikeThis(name, nullptr) : name;
}

TM_String GraphScene::getFreeNodeCompoundName(const GraphNodeBase* owner) const {
    return getFreeNodeName(owner, "Compound");
}

TM_String GraphScene::getFreeInterfaceNodeName(const GraphNodeBase* owner,
                                               const PinFlags& direction) const {
    const bool input = static_cast<bool>(direction & GraphNodePin::inputFlag);
    return getFreeNodeName(owner, input ? "InputInterface" : "OutputInterface");
}

// --- pins --------------------------------------------------------------------------------------

GraphNodePin* GraphScene::createNewPin(GraphNodeBase* node, const PinFlags& flags) {
    if (!node) return nullptr;
    const char* stem = flags & GraphNodePin::inputFlag ? "in" : "out";
    return createNewPin(node, flags, node->getFreePinNameLikeThis(stem));
}

GraphNodePin* GraphScene::createNewPin(GraphNodeBase* node, const PinFlags& flags,
                                       const TM_String& name) {
    if (!node) return nullptr;
    auto* pin = new GraphNodePin(node, freeIdIn(pins_), flags);
    pin->setName(name);
    addNodePin(node, pin);
    return pin;
}

bool GraphScene::addNodePin(GraphNodePin* pin) {
    if (!pin) return false;
    pins_.insert(pin->getId(), pin);
    return true;
}

bool GraphScene::addNodePin(GraphNodeBase* node, GraphNodePin* pin) {
    if (!node || !pin) return false;
    node->addNodePin(pin);
    return addNodePin(pin);
}

void GraphScene::addNodePins(GraphNodeBase* node, const Pins& pins) {
    for (GraphNodePin* pin : pins) addNodePin(node, pin);
}

bool GraphScene::removeNodePin(GraphNodePin* pin) {
    if (!pin) return false;
    removeConnectionsWithPin(pin);
    return pins_.find(pin->getId()) == pin && pins_.erase(pin->getId());
}

void GraphScene::removeNodePins(GraphNodeBase* node) {
    if (!node) return;
    for (uint32_t i = node->pins().size(); i > 0; --i) removeNodePin(node->pins()[i - 1]);
}

bool GraphScene::removeNodePinFromSceneAndNode(GraphNodePin* pin) {
    if (!pin) return false;
    const bool known = removeNodePin(pin);
    GraphNodeBase* node = pin->getParentGraphNodePtr();
    const bool listed = node && node->removeNodePin(pin);
    return known || listed;
}

TM_String GraphScene::getFreePinName(const TM_String& nodeFullName, const TM_String& name) const {
    const GraphNodeBase* node = getNodePtrByFullName(nodeFullName);
    return node ? node->getFreePinNameLikeThis(name) : name;
}

// --- connections -------------------------------------------------------------------------------

GraphConnection* GraphScene::createGraphConnection(GraphNodePin* source, GraphNodePin* target) {
    if (!source || !target) return nullptr;
    auto connection = std::make_unique<GraphConnection>(source, target);
    connection->index_ = connections_.size();
    connections_.append(connection.get());
    return connection.release();
}

GraphConnection* GraphScene::connectBase(GraphNodePin* source, GraphNodePin* target) {
    GraphConnection* connection = createGraphConnection(source, target);
    if (!connection) return nullptr;
    source->addOutputConnection(connection);
    target->addInputConnection(connection);
    if (addConnectionCallback_ && isTold()) {
        addConnectionCallback_(this, ownerOfSource(connection), connection);
    }
    return connection;
}

GraphConnection* GraphScene::connect(GraphNodePin* source, GraphNodePin* target, bool flag) {
    if (!isConnectionAllowed(source, target)) return nullptr;
    GraphConnection* connection = connectBase(source, target);
    connection->setFlag(flag);
    return connection;
}

GraphConnection* GraphScene::connect(unsigned sourceId, unsigned targetId, bool flag) {
    return connect(getPinPtrById(sourceId), getPinPtrById(targetId), flag);
}

GraphConnection* GraphScene::connect(const TM_String& sourceFullName,
                                     const TM_String& targetFullName, bool flag) {
    return connect(getPinPtrByFullName(sourceFullName), getPinPtrByFullName(targetFullName), flag);
}

GraphConnection* GraphScene::connect(GraphNodeBase* sourceNode, const TM_String& sourceName,
                                     GraphNodeBase* targetNode, const TM_String& targetName,
                                     bool flag) {
    if (!sourceNode || !targetNode) return nullptr;
    return connect(sourceNode->getPinByName(sourceName), targetNode->getPinByName(targetName),
                   flag);
}

bool GraphScene::isListed(const GraphConnection* connection) const {
    return connection && connection->index_ < connections_.size() &&
           connections_[connection->index_] == connection;
}

void GraphScene::notifyConnectionRemoved(GraphConnection* connection) {
    if (removeConnectionCallback_ && isTold()) {
        removeConnectionCallback_(this, ownerOfSource(connection), connection);
    }
}

void GraphScene::destroyConnection(GraphConnection* connection) {
    const uint32_t hole = connection->index_;
    connections_[hole] = connections_.back();
    connections_[hole]->index_ = hole;
    connections_.removeAt(connections_.size() - 1);
    connection->detach();
    delete connection;
}

bool GraphScene::removeConnection(GraphConnection* connection) {
    if (!isListed(connection)) return false;
    notifyConnectionRemoved(connection);
    destroyConnection(connection);
    return true;
}

void GraphScene::removeConnectionsOf(const GraphNodePin::Connections& list) {
    while (!list.empty()) {
        const uint32_t before = list.size();
        removeConnection(list.back());
        if (list.size() >= before) return;
    }
}

void GraphScene::removeConnectionsWithPin(GraphNodePin* pin) {
    if (!pin) return;
    removeConnectionsOf(pin->outputConnections());
    removeConnectionsOf(pin->inputConnections());
}

void GraphScene::removeConnectionsWithNode(GraphNodeBase* node) {
    if (!node) return;
    for (uint32_t i = node->pins().size(); i > 0; --i) {
        removeConnectionsWithPin(node->pins()[i - 1]);
    }
}

void GraphScene::removeConnectionsWithNode(unsigned nodeId) {
    removeConnectionsWithNode(nodes_.find(nodeId));
}

void GraphScene::removeConnectionsBetweenNodes(GraphNodeBase* a, GraphNodeBase* b) {
    Connections between;
    getConnectionsBetweenNodes(a, b, between);
    for (uint32_t i = between.size(); i > 0; --i) removeConnection(between[i - 1]);
}

void GraphScene::removeAllConnections() {
    while (!connections_.empty()) {
        const uint32_t before = connections_.size();
        removeConnection(connections_.back());
        if (connections_.size() >= before) return;
    }
}

} // namespace tidemark::graph

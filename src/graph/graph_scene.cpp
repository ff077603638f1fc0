// SPDX-License-Identifier: Apache-2.0
// Scenes: nodes, pins, connections and their life.
#include "graph/graph_scene.h"

#include <algorithm>
#include <atomic>
#include <numeric>
#include <vector>

#include "core/host_node_value.h"
#include "graph/scene_manager.h"
#include "graph/suffix_index.h"
#include "platform/thread.h"

namespace tidemark::sluice::graph {

namespace {

constexpr unsigned graphKind = 3;

// Whoever installs it may be a worker thread of a kernel.
constinit std::atomic<CommonAttributes*> commonAttributes{nullptr};

} // namespace

void CommonAttributes::install(CommonAttributes* attributes) { commonAttributes = attributes; }

void CommonAttributes::visitAll(const std::function<void(weft::Attribute&)>& visit) {
    if (CommonAttributes* installed = commonAttributes) installed->visitAttributes(visit);
}

SL_GraphScene SL_GraphScene::mainGraph_;

ScenePrivate::ScenePrivate(SL_GraphScene* owner)
    : scene(owner), rootNode(&networkManager, "root", nullptr) {
    // For life: the root is a member and must never be deleted by its count.
    rootNode.retain();
    networkManager.setSceneMessages(&owner->refMessages());
}

ScenePrivate::~ScenePrivate() = default;

SL_GraphScene::SL_GraphScene() : scenePrivate_(new ScenePrivate(this)) {
    graphKind_ = graphKind;
    allowsCompounds_ = true;
    initializeRootNode();
    registerAtSceneManager();
}

void SL_GraphScene::initializeRootNode() {
    auto* const root = new Node_Root(&scenePrivate_->rootNode);
    root->setGraphScene(this);
    root->setCompound(true);
    root->GraphNodeBase::setName(scenePrivate_->rootNode.name());
    root->setId(static_cast<unsigned>(scenePrivate_->rootNode.id()));
    setRootNode(root);
}

SL_GraphScene::~SL_GraphScene() {
    SceneManager::instance().removeScene(this);
    clear();
    setRootNode(nullptr);
    delete scenePrivate_;
}

void SL_GraphScene::registerAtSceneManager() { SceneManager::instance().addScene(this); }
void SL_GraphScene::unregisterFromSceneManager() { SceneManager::instance().removeScene(this); }

// Nodes.

bool SL_GraphScene::addNodeToGraph(GraphNodeBase* graphNode) {
    auto* const node = dynamic_cast<NodeBase*>(graphNode);
    if (!node) return GraphScene::addNodeToGraph(graphNode);
    if (node->getGraphScene() == this && getNodePtrById(node->getId()) == node) return true;
    node->setGraphScene(this);
    if (addNodeCallback_ && isTold() && node->getNodeOwner()) {
        addNodeCallback_(this, node->getNodeOwner(), node);
    }
    node->onAddingToScene();
    insertNodeInMapById(node->getId(), node);
    if (suffixes_) suffixes_->insert(node->getName());
    const TM_String& type = node->getType();
    if (type == "Evaluator" || type == "For" || type == "Kernel") arrUpdateNodes_.append(node);
    weft::Node* const logic = node->getCoreNode();
    if (logic && !logic->classNameView().empty() && logic->classNameView() != type) {
        logic->pushWarning(text::format("Class Name <%s> and Node Type <%s> differ",
                                        logic->className().c_str(), type.c_str()));
    }
    return true;
}

// A node that is on its way into the scene is not counted yet.
void SL_GraphScene::nodeRenamed(const Node* node, const TM_String& before) {
    if (!suffixes_ || node->getName() == before) return;
    if (getNodePtrById(node->getId()) != node) return;
    suffixes_->erase(before);
    suffixes_->insert(node->getName());
}

void SL_GraphScene::nodeLeaving(const Node* node) {
    if (suffixes_) suffixes_->erase(node->getName());
}

void SL_GraphScene::assignUniqueName(GraphNodeBase* node) {
    if (!suffixes_) suffixes_ = std::make_unique<SuffixIndex>(nodesById());
    const TM_String name = node->getName();
    int64_t number = 1;
    if (suffixes_->has(name + "_01")) {
        number = suffixes_->nextNumber(name, nodesById());
    }
    const int digits = number < 100 ? 2 : number < 1000 ? 3 : number < 10000 ? 4 : 5;
    node->setName(name + text::format("_%0*lld", digits, static_cast<long long>(number)));
}

void SL_GraphScene::removeFromUpdateNodes(NodeBase* node) {
    for (uint32_t i = arrUpdateNodes_.size(); i > 0; --i) {
        if (arrUpdateNodes_[i - 1] == node) return arrUpdateNodes_.removeAt(i - 1);
    }
}

GraphNodeBase* SL_GraphScene::createNewNode(const char* type) {
    NodeFactory* const factory = SceneManager::instance().getNodeFactoryFromType(type);
    NodeBase* const node = factory ? factory->createNode() : nullptr;
    if (node) assignUniqueName(node);
    return node;
}

GraphNodeBase* SL_GraphScene::createNewCompound() { return createNewNode("Compound"); }
GraphNodeBase* SL_GraphScene::createNewInterfaceNode() {
    return createNewNode("CompoundInterface");
}
GraphNodeBase* SL_GraphScene::createNewEvaluator() { return createNewNode("Evaluator"); }
GraphNodeBase* SL_GraphScene::createNewPassThrough() { return createNewNode("Pass"); }

Node* SL_GraphScene::nodeOf(const weft::Node* logicNode) const {
    if (!logicNode) return nullptr;
    return dynamic_cast<Node*>(getNodePtrById(static_cast<unsigned>(logicNode->id())));
}

// Connections.

namespace {

// Null for a pin that was made without one.
weft::Attribute* attributeOf(GraphNodePin* pin) {
    const auto* own = dynamic_cast<const Pin*>(pin);
    return own ? own->getWeftAttribute() : nullptr;
}

} // namespace

bool SL_GraphScene::weftConnect(GraphNodePin* source, GraphNodePin* target) {
    weft::Attribute* const from = attributeOf(source);
    weft::Attribute* const to = attributeOf(target);
    weft::NetworkManager& network = networkManager();
    const weft::Retained<weft::ErrorObject> error(new weft::ErrorObject(&network));
    network.connect(from, to, error.get());
    if (error->message().empty()) return true;
    if (from && from->parent()) from->parent()->pushError(error->message());
    return false;
}

GraphConnection* SL_GraphScene::connect(GraphNodePin* source, GraphNodePin* target, bool) {
    if (!source || !target || !source->allowsConnectionTo(target)) return nullptr;
    GraphConnection* const connection = connectBase(source, target);
    weftConnect(source, target);
    return connection;
}

bool SL_GraphScene::removeConnection(GraphConnection* connection) {
    if (!isListed(connection)) return false;
    weft::Attribute* const target = attributeOf(connection->getTargetPin());
    if (target) target->disconnectSource();
    notifyConnectionRemoved(connection);
    destroyConnection(connection);
    return true;
}

bool SL_GraphScene::addCompoundInterfacePin(const PinFlags& flags, GraphNodeBase* interfaceNode,
                                            GraphNodePin*& interfacePin,
                                            GraphNodePin*& compoundPin) {
    interfacePin = compoundPin = nullptr;
    if (!interfaceNode) return true;
    const bool isCompoundInput = static_cast<bool>(flags & GraphNodePin::inputFlag);
    interfacePin = isCompoundInput ? interfaceNode->addDynamicOutputPin()
                                   : interfaceNode->addDynamicInputPin();
    if (!interfacePin) return true;
    compoundPin = createCompoundPinForInterfacePin(interfacePin);
    const TM_String name = isCompoundInput ? "input" : "output";
    const GraphNodeBase* const compound = interfaceNode->getNodeOwner();
    const TM_String free = compound ? compound->getFreePinNameLikeThis(name) : name;
    interfacePin->setName(free);
    if (compoundPin) compoundPin->setName(free);
    return true;
}

GraphNodePin* SL_GraphScene::createCompoundPinForInterfacePin(GraphNodePin* interfacePin) {
    GraphNodeBase* const node = interfacePin ? interfacePin->getParentGraphNodePtr() : nullptr;
    GraphNodeBase* const compound = node ? node->getNodeOwner() : nullptr;
    if (!compound) return nullptr;
    GraphNodePin* const made =
        interfacePin->isInput() ? compound->addDynamicOutputPin() : compound->addDynamicInputPin();
    if (!made) return nullptr;
    made->setName(interfacePin->getName());
    interfacePin->setParentGraphNodePinPtr(made);
    if (interfacePin->isInput()) {
        weftConnect(interfacePin, made);
    } else {
        weftConnect(made, interfacePin);
    }
    return made;
}

// The scene as a whole.

void SL_GraphScene::clear() {
    // The callbacks belong to the process. A worker that ends a scene of its own leaves them alone,
    // because others run meanwhile.
    const bool isWorker = platform::Thread::isWorker();
    if (!isWorker) SceneManager::instance().disconnectCallbacks();
    setCacheDisabled(true, false);
    networkManager().setTearingDown(true);
    suffixes_.reset();
    arrUpdateNodes_.reset(); // first, or every node that goes would be looked for in it
    GraphScene::clear();
    networkManager().setTearingDown(false);
    setCacheDisabled(false, false);
    arrImportedNodes_.reset();
    arrImportedConnections_.reset();
    if (!isWorker) SceneManager::instance().setupCallbacks();
}

void SL_GraphScene::purge() {
    for (const auto entry : nodesById()) {
        const auto* node = dynamic_cast<const NodeBase*>(entry.value);
        weft::Node* const logic = node ? node->getCoreNode() : nullptr;
        if (!logic) continue;
        logic->purge();
        logic->refMessages().clear();
        logic->resetLastUpdateTime();
    }
    clearMessages();
}

void SL_GraphScene::setCacheDisabled(bool disabled, bool recompute) {
    networkManager().setCacheDisabled(disabled);
    if (recompute) recomputeCaches();
}

void SL_GraphScene::recomputeCaches() { networkManager().rebuildAllDirtyChains(); }

void SL_GraphScene::removeAllReferencesToNodePointer(void* nodo) {
    for (const auto entry : networkManager().objects()) {
        weft::Object* object = entry.value;
        // An attribute may hold a value of another scene, which is in no table of this one.
        if (object->isAttributeObject()) object = static_cast<weft::Attribute*>(object)->value();
        if (!object || (object != entry.value && object->networkManager() == &networkManager())) {
            continue;
        }
        if (auto* value = dynamic_cast<weft::HostNodeValue*>(object)) value->forget(nodo);
    }
    CommonAttributes::visitAll([nodo](weft::Attribute& attribute) {
        if (auto* value = dynamic_cast<weft::HostNodeValue*>(attribute.value())) {
            value->forget(nodo);
        }
    });
}

void SL_GraphScene::getEvaluablePins(ArrayOfPtr<GraphNodePin>& out) const {
    for (const NodeBase* node : arrUpdateNodes_) {
        if (node->getType() != "Evaluator") continue;
        for (const Pin* pin : node->getArrInputPin()) {
            ArrayOfPtr<Pin> upstream;
            pin->getUpstreamPins(upstream);
            for (Pin* found : upstream) out.append(found);
        }
    }
}

// Names as a file gave them.

TM_String SL_GraphScene::translateNodeName(const TM_String& name) const {
    const auto found = xmlToImportedName_.find(name);
    return found == xmlToImportedName_.end() ? name : found->second;
}

TM_String SL_GraphScene::translatePinName(const TM_String& fullPinName) const {
    if (xmlToImportedName_.empty()) return fullPinName;
    const std::size_t point = fullPinName.rfind('.');
    if (point == TM_String::npos) return translateNodeName(fullPinName);
    return translateNodeName(fullPinName.substr(0, point)) + fullPinName.substr(point);
}

// Values by name.

namespace {

Pin* findPin(const SL_GraphScene& scene, const TM_String& name) {
    return dynamic_cast<Pin*>(scene.getPinPtrByFullName(name));
}

} // namespace

void SL_GraphScene::setPinFloatValue(const TM_String& name, float value) {
    if (Pin* pin = findPin(*this, name)) pin->setFloatValue(value);
}
void SL_GraphScene::setPinIntValue(const TM_String& name, int value) {
    if (Pin* pin = findPin(*this, name)) pin->setIntValue(value);
}
void SL_GraphScene::setPinStringValue(const TM_String& name, const TM_String& value) {
    if (Pin* pin = findPin(*this, name)) pin->setStringValue(value);
}
void SL_GraphScene::setPinVector3Value(const TM_String& name, const Vector3<float>& value) {
    if (Pin* pin = findPin(*this, name)) pin->setVector3Value(value);
}
float SL_GraphScene::getPinFloatValue(const TM_String& name) const {
    const Pin* pin = findPin(*this, name);
    return pin ? pin->getFloatValue() : 0.0f;
}
int SL_GraphScene::getPinIntValue(const TM_String& name) const {
    const Pin* pin = findPin(*this, name);
    return pin ? pin->getIntValue() : 0;
}
TM_String SL_GraphScene::getPinStringValue(const TM_String& name) const {
    const Pin* pin = findPin(*this, name);
    return pin ? pin->getStringValue() : TM_String();
}
Vector3<float> SL_GraphScene::getPinVector3Value(const TM_String& name) const {
    const Pin* pin = findPin(*this, name);
    return pin ? pin->getVector3Value() : Vector3<float>(0.0f);
}

// Ranks.

namespace {

template <typename T>
void sortByNumber(Array<TM_String>& names, Array<T>& numbers) {
    std::vector<uint32_t> order(numbers.size());
    std::iota(order.begin(), order.end(), 0u);
    std::stable_sort(order.begin(), order.end(),
                     [&](uint32_t a, uint32_t b) { return numbers[a] < numbers[b]; });
    Array<TM_String> sortedNames;
    Array<T> sortedNumbers;
    for (const uint32_t index : order) {
        sortedNames.append(std::move(names[index]));
        sortedNumbers.append(numbers[index]);
    }
    names = std::move(sortedNames);
    numbers = std::move(sortedNumbers);
}

} // namespace

void SL_GraphScene::computeTimeAndMemoryRank(Array<TM_String>& namesByTime, Array<float>& times,
                                             Array<TM_String>& namesBySize,
                                             Array<uint64_t>& sizes) const {
    namesByTime.clear();
    times.clear();
    sizes.clear();
    std::vector<const weft::Node*> pending{&scenePrivate_->rootNode};
    while (!pending.empty()) {
        const weft::Node* node = pending.back();
        pending.pop_back();
        namesByTime.append(node->name());
        times.append(static_cast<float>(node->getLastUpdateTime()));
        sizes.append(node->estimatedSize());
        const auto& children = node->refNodes();
        for (uint32_t i = children.size(); i > 0; --i) pending.push_back(children[i - 1]);
    }
    namesBySize = namesByTime;
    sortByNumber(namesByTime, times);
    sortByNumber(namesBySize, sizes);
}

} // namespace tidemark::sluice::graph

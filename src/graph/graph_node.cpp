// SPDX-License-Identifier: Apache-2.0
// Graph nodes: life, pins, names, messages and the forwarding to the logic node.
#include "graph/graph_node.h"

#include <cassert>

#include "bridge/host.h"
#include "graph/base/pin_order.h"
#include "graph/graph_scene.h"
#include "graph/scene_manager.h"

namespace tidemark::sluice::graph {

namespace {

Pin* findByName(const Array<Pin*>& pins, const TM_String& name) {
    for (Pin* pin : pins) {
        if (pin->getName() == name) return pin;
    }
    return nullptr;
}

} // namespace

// Nodes with many pins find them by hash, which the generic node keeps.
Pin* NodeBase::getInputPinPtrByName(const TM_String& name) const {
    GraphNodePin* const found = findPin(name);
    auto* const pin = dynamic_cast<Pin*>(found);
    if (pin && pin->isInput()) return pin;
    return found ? findByName(arrInputPin_, name) : nullptr;
}

Pin* NodeBase::getOutputPinPtrByName(const TM_String& name) const {
    GraphNodePin* const found = findPin(name);
    auto* const pin = dynamic_cast<Pin*>(found);
    if (pin && pin->isOutput()) return pin;
    return found ? findByName(arrOutputPin_, name) : nullptr;
}

Node::Node(const Node& other) : NodeBase(other), weftNode_(other.weftNode_) {}

Node::~Node() {
    // A copy shares what it points to; a node that was removed has nothing left.
    if (!weftNode_ || !getGraphScene() || getGraphScene()->getNodePtrById(getId()) != this) return;
    destroyWeftNode();
    destroyNodePins();
}

SL_GraphScene* Node::getScene() const { return static_cast<SL_GraphScene*>(getGraphScene()); }

ScenePrivate* Node::getScenePrivatePtr() const {
    const SL_GraphScene* scene = getScene();
    return scene ? scene->getScenePrivate() : nullptr;
}

void Node::adoptWeftNode(weft::Node* node) {
    weftNode_ = node;
    weftNode_->retain();
    getScenePrivatePtr()->rootNode.addNode(weftNode_);
    setId(static_cast<unsigned>(weftNode_->id()));
    setName(weftNode_->name());
}

void Node::destroyWeftNode() {
    if (!weftNode_) return;
    for (Pin* pin : arrInputPin_) pin->forgetWeftAttribute();
    for (Pin* pin : arrOutputPin_) pin->forgetWeftAttribute();
    weft::Node* const node = weftNode_;
    weftNode_ = nullptr;
    node->deleteIt();
    node->release();
}

void Node::onAddingToScene() {
    createWeftNode();
    arrInputPin_.clear();
    arrOutputPin_.clear();
    arrInputPin_.reserve(weftNode_->refInputAttributes().size());
    arrOutputPin_.reserve(weftNode_->refOutputAttributes().size());
    for (weft::Attribute* input : weftNode_->refInputAttributes()) createInputPin(input);
    for (weft::Attribute* output : weftNode_->refOutputAttributes()) createOutputPin(output);
}

void Node::onRemovingFromScene() {
    SL_GraphScene* const scene = getScene();
    if (scene) {
        scene->removeFromUpdateNodes(this);
        scene->nodeLeaving(this);
    }
    destroyWeftNode();
    destroyNodePins();
    const bool isTold = !scene || scene->isTold();
    if (isCompound() && isTold && GraphScene::removeNodeCallback_) {
        GraphScene::removeNodeCallback_(scene, getNodeOwner(), this);
    }
}

// Names and the tree.

void Node::setName(const TM_String& name) {
    const TM_String before = getName();
    if (weftNode_) {
        weftNode_->setName(name);
        storeName(weftNode_->name());
    } else {
        storeName(name);
    }
    if (SL_GraphScene* scene = getScene()) scene->nodeRenamed(this, before);
    const bool isTold = !getScene() || getScene()->isTold();
    if (weftNode_ && isTold && SceneManager::node_renamedCallback_) {
        SceneManager::node_renamedCallback_(getName());
    }
}

void Node::setNodeOwnerBase(GraphNodeBase* owner) {
    NodeBase::setNodeOwnerBase(owner);
    const auto* above = dynamic_cast<const NodeBase*>(owner);
    weft::Node* const newParent = above ? above->getCoreNode() : nullptr;
    if (!weftNode_ || !newParent || newParent == weftNode_->parent()) return;
    weftNode_->reparent(newParent);
}

bool Node::isUpdating() const { return weftNode_ && weftNode_->isUpdating(); }
bool Node::dynamicPinsAllowed() const { return weftNode_ && weftNode_->allowDynamicAttributes(); }
TM_String Node::getDescription() const {
    return weftNode_ ? weftNode_->getDescription() : TM_String();
}

// Running.

void Node::update() {
    if (!weftNode_) return;
    const bool monitoring = weftNode_->networkManager()->monitoring();
    if (monitoring) {
        weftNode_->resetNodeTimer(true);
        weftNode_->startNodeTimer();
    }
    for (Pin* pin : arrOutputPin_) pin->update();
    if (monitoring) weftNode_->stopNodeTimer(true);
}

void Node::update_notCleaning() {
    if (weftNode_) weftNode_->updateNotCleaning();
}
void Node::preUpdate() {
    if (weftNode_) weftNode_->preUpdate();
}
void Node::postUpdate() {
    if (weftNode_) weftNode_->postUpdate();
}

// Pins.

Pin* Node::createPin(weft::Attribute* attribute, const PinFlags& flags) {
    Pin* const pin = new Pin(this, 0u, flags);
    pin->setWeftAttribute(attribute);
    getGraphScene()->addNodePin(pin);
    addNodePin(pin);
    return pin;
}

Pin* Node::createInputPin(weft::Attribute* attribute) {
    Pin* const pin = createPin(attribute, GraphNodePin::inputFlag);
    arrInputPin_.append(pin);
    return pin;
}

Pin* Node::createOutputPin(weft::Attribute* attribute) {
    Pin* const pin = createPin(attribute, GraphNodePin::outputFlag);
    arrOutputPin_.append(pin);
    return pin;
}

void Node::destroyPin(Pin* pin) {
    if (GraphScene* scene = getGraphScene()) scene->removeNodePin(pin);
    NodeBase::removeNodePin(pin);
    delete pin;
}

void Node::destroyPins(Array<Pin*>& pins) {
    for (uint32_t i = pins.size(); i > 0; --i) destroyPin(pins[i - 1]);
    pins.clear();
}

void Node::destroyNodePins() {
    destroyPins(arrInputPin_);
    destroyPins(arrOutputPin_);
    NodeBase::destroyNodePins(); // pins that were made without an attribute
}

bool Node::removeNodePin(GraphNodePin* pin) {
    auto* const own = dynamic_cast<Pin*>(pin);
    if (!own || !(arrInputPin_.remove(own) || arrOutputPin_.remove(own))) return true;
    GraphNodePin* const onCompound = isInterface() ? own->getParentGraphNodePinPtr() : nullptr;
    if (onCompound) onCompound->getParentGraphNodePtr()->removeNodePin(onCompound);
    weft::Attribute* const dynamic = own->isDynamic() ? own->getWeftAttribute() : nullptr;
    destroyPin(own);
    if (dynamic) dynamic->deleteIt();
    return true;
}

Pin* Node::getPinForAttribute(const weft::Attribute* attribute) const {
    if (!attribute) return nullptr;
    for (Pin* pin : attribute->isInput() ? arrInputPin_ : arrOutputPin_) {
        if (pin->getWeftAttribute() == attribute) return pin;
    }
    return nullptr;
}

void Node::reorderInputPins(const Array<TM_String>& names) {
    NodeBase::reorderInputPins(names);
    tidemark::graph::orderPinsByNames(arrInputPin_, names);
}

void Node::reorderOutputPins(const Array<TM_String>& names) {
    NodeBase::reorderOutputPins(names);
    tidemark::graph::orderPinsByNames(arrOutputPin_, names);
}

// Dynamic pins.

weft::Attribute* Node::createDynamicAttribute() {
    return new weft::PassThroughAttribute(weftNode_->networkManager(), "_", weftNode_);
}

weft::Attribute* Node::enterDynamicAttribute(weft::Attribute* attribute, bool isInput) {
    TM_String name = isInput ? "in" : "out";
    // The names that an interface node's pins must not take are those of its compound.
    const GraphNodeBase* named = isInterface() && getNodeOwner() ? getNodeOwner() : this;
    if (getGraphScene()) name = named->getFreePinNameLikeThis(name);
    attribute->renameTo(name);
    if (isInput) {
        weftNode_->addInputAttribute(attribute);
    } else {
        weftNode_->addOutputAttribute(attribute);
    }
    weftNode_->addDynamicAttribute(attribute);
    return attribute;
}

weft::Attribute* Node::addDynamicInputAttribute() {
    return enterDynamicAttribute(createDynamicAttribute(), true);
}

weft::Attribute* Node::addDynamicOutputAttribute() {
    return enterDynamicAttribute(createDynamicAttribute(), false);
}

GraphNodePin* Node::addDynamicInputPin() {
    return weftNode_ ? createInputPin(addDynamicInputAttribute()) : nullptr;
}

GraphNodePin* Node::addDynamicOutputPin() {
    return weftNode_ ? createOutputPin(addDynamicOutputAttribute()) : nullptr;
}

// Internal connections.

void Node::getInternalConnections(Array<GraphConnection>& out) const {
    for (Pin* input : arrInputPin_) {
        ArrayOfPtr<GraphNodePin> ends;
        input->internalConnections(ends);
        for (GraphNodePin* end : ends) out.append(GraphConnection(input, end));
    }
}

void Node::getInternalConnectionsForPainting(Array<GraphConnection>& out) const {
    for (Pin* input : arrInputPin_) {
        ArrayOfPtr<GraphNodePin> ends;
        input->internalConnections(ends);
        if (ends.empty() && input->isPassThrough()) input->forcedInternalConnections(ends);
        for (GraphNodePin* end : ends) out.append(GraphConnection(input, end));
    }
}

void Node::applyInternalConnections() {
    for (Pin* input : arrInputPin_) {
        if (input->getWeftAttribute()) applyInternalConnections(*input);
    }
}

void Node::applyInternalConnections(Pin& input) {
    weft::Attribute* const attribute = input.getWeftAttribute();
    if (!attribute->allowedPassThroughs().empty()) {
        const weft::SmallList<weft::Attribute*> existing = attribute->passThroughs();
        for (weft::Attribute* other : existing) attribute->removePassThrough(other);
    }
    for (const TM_String& name : input.getInternalConnectionsFromImport()) {
        Pin* const output = getOutputPinPtrByName(name);
        if (!output || !output->getWeftAttribute()) {
            bridge::CCallbackCenter::Instance().Post(bridge::message::unknownPin,
                                                     getName() + "." + name);
            continue;
        }
        weft::Attribute* const target = output->getWeftAttribute();
        if (!attribute->allowedPassThroughs().contains(target)) {
            weftNode_->pushError(text::format("Internal connection %s->%s not allowed",
                                              input.getName().c_str(), name.c_str()));
            attribute->addAllowedPassThrough(target);
        }
        attribute->addPassThrough(target);
    }
}

// Messages.

const MessageHandler& Node::getMessages() const {
    return weftNode_ ? weftNode_->getMessages() : NodeBase::getMessages();
}
MessageHandler& Node::refMessages() {
    return weftNode_ ? weftNode_->refMessages() : NodeBase::refMessages();
}
bool Node::hasErrors() const { return getMessages().hasErrorsOrCriticals(); }
bool Node::hasWarnings() const { return getMessages().hasWarnings(); }
bool Node::hasMessages() const { return !getMessages().isEmpty(); }
void Node::clearMessages() { refMessages().clear(); }
void Node::getMessages(Array<Message>& out) const {
    for (const Message& message : getMessages().messages()) out.append(message);
}
void Node::getMessagesAsStrings(Array<TM_String>& out) const {
    for (const Message& message : getMessages().messages()) out.append(message.asString());
}

// Threads.

void Node::setNumberOfThreads(unsigned threads) {
    constexpr unsigned allOnes = ~0u;
    if (weftNode_)
        weftNode_->setNumberOfThreads(threads == allOnes ? 0 : static_cast<int>(threads));
}

int Node::getNumberOfThreads() const {
    return weftNode_ ? weftNode_->getStoredNumberOfThreads() : 0;
}

} // namespace tidemark::sluice::graph

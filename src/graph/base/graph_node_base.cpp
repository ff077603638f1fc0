// SPDX-License-Identifier: Apache-2.0
// Nodes: pins, place in the tree, names, permissions, messages.
#include "graph/base/graph_node_base.h"

#include <algorithm>

#include "graph/base/graph_node_pin.h"
#include "graph/base/graph_scene_base.h"
#include "graph/base/interned_text.h"
#include "graph/base/pin_order.h"

namespace tidemark::graph {

namespace {

template <typename Test>
bool anyPin(const GraphNodeBase::Pins& pins, Test test) {
    return std::any_of(pins.begin(), pins.end(), test);
}

// Appends the pins that pass; true when there is one.
template <typename Test>
bool collectPins(const GraphNodeBase::Pins& pins, GraphNodeBase::Pins& out, Test test) {
    const uint32_t before = out.size();
    for (GraphNodePin* pin : pins) {
        if (test(pin)) out.append(pin);
    }
    return out.size() > before;
}

// Visits the nodes below `top` in preorder until `visit` answers true, and gives that node. It
// keeps its own stack, because nesting is as deep as the user makes it.
template <typename Visit>
GraphNodeBase* walkBelow(const GraphNodeBase* top, Visit visit) {
    GraphNodeBase::Nodes waiting;
    const auto push = [&waiting](const GraphNodeBase* node) {
        for (uint32_t i = node->children().size(); i > 0; --i) {
            waiting.append(node->children()[i - 1]);
        }
    };
    push(top);
    while (!waiting.empty()) {
        GraphNodeBase* node = waiting.back();
        waiting.removeAt(waiting.size() - 1);
        if (visit(node)) return node;
        push(node);
    }
    return nullptr;
}

GraphNodeBase* otherEnd(const GraphConnection* connection, const GraphNodeBase* node) {
    GraphNodeBase* source = connection->getSourceNode();
    return source == node ? connection->getTargetNode() : source;
}

// Calls `visit` with each connection of a node's pins, once, until it answers true.
template <typename Visit>
bool anyConnection(const GraphNodeBase::Pins& pins, Visit visit) {
    for (const GraphNodePin* pin : pins) {
        for (GraphConnection* connection : pin->inputConnections()) {
            if (visit(connection)) return true;
        }
        for (GraphConnection* connection : pin->outputConnections()) {
            // One that comes back to the node is met at its input.
            if (connection->getTargetNode() == pin->getParentGraphNodePtr()) continue;
            if (visit(connection)) return true;
        }
    }
    return false;
}

} // namespace

TM_String numberedNodeName(std::string_view stem, uint64_t number) {
    TM_String name(stem);
    name += number < 10 ? "_0" : "_";
    return name + std::to_string(number);
}

std::string_view GraphNodeBase::PinTraits::name(const GraphNodePin& pin) { return pin.name_; }
uint32_t GraphNodeBase::PinTraits::order(const GraphNodePin& pin) { return pin.order_; }

GraphNodeBase::GraphNodeBase()
    : type_(internedText(TM_String())), category_(internedText(TM_String())) {}

GraphNodeBase::GraphNodeBase(const GraphNodeBase& other)
    : TM_Class(other), pins_(other.pins_), id_(other.id_), order_(other.order_),
      compound_(other.compound_), interface_(other.interface_), scene_(other.scene_),
      owner_(other.owner_), children_(other.children_), name_(other.name_), type_(other.type_),
      category_(other.category_) {
    if (other.description_) description_ = std::make_unique<TM_String>(*other.description_);
    if (other.messages_) messages_ = std::make_unique<MessageHandler>(*other.messages_);
}

GraphNodeBase::~GraphNodeBase() = default;

bool GraphNodeBase::operator==(const GraphNodeBase& other) const {
    return getId() == other.getId() && getGraphScene() == other.getGraphScene();
}

bool GraphNodeBase::isInputInterface() const { return isInterface() && hasOutputPins(); }

bool GraphNodeBase::isOutputInterface() const { return isInterface() && hasInputPins(); }

bool GraphNodeBase::isSameNodeAs(const GraphNodeBase* node) const { return node && *this == *node; }

// --- pins --------------------------------------------------------------------------------------

bool GraphNodeBase::hasPin(const GraphNodePin* pin) const {
    return anyPin(pins_, [pin](const GraphNodePin* own) { return own == pin; });
}

void GraphNodeBase::getPins(const PinFlags& flags, Pins& pins) const {
    collectPins(pins_, pins, [&flags](const GraphNodePin* pin) {
        return static_cast<bool>(pin->getFlags() & flags);
    });
}

void GraphNodeBase::getInputPins(Pins& pins) const { getPins(GraphNodePin::inputFlag, pins); }

void GraphNodeBase::getOutputPins(Pins& pins) const { getPins(GraphNodePin::outputFlag, pins); }

bool GraphNodeBase::hasInputPins() const {
    return anyPin(pins_, [](const GraphNodePin* pin) { return pin->isInput(); });
}

bool GraphNodeBase::hasOutputPins() const {
    return anyPin(pins_, [](const GraphNodePin* pin) { return pin->isOutput(); });
}

GraphNodePin* GraphNodeBase::findPin(std::string_view name) const {
    return pinsByName_.find(name, pins_);
}

GraphNodePin* GraphNodeBase::getPinByName(const TM_String& name) const { return findPin(name); }

bool GraphNodeBase::hasPinWithName(const TM_String& name) const { return findPin(name) != nullptr; }

void GraphNodeBase::getNotConnectedPins(Pins& pins) const {
    collectPins(pins_, pins, [](const GraphNodePin* pin) { return !pin->isConnected(); });
}

void GraphNodeBase::getConnectedPins(Pins& pins) const {
    collectPins(pins_, pins, [](const GraphNodePin* pin) { return pin->isConnected(); });
}

bool GraphNodeBase::isEditable() const {
    return anyPin(pins_,
                  [](const GraphNodePin* pin) { return pin->isInput() && pin->isEditable(); });
}

TM_String GraphNodeBase::getFreePinNameLikeThis(const TM_String& name) const {
    return pinsByName_.freeName(name, pins_);
}

void GraphNodeBase::addPinToList(GraphNodePin* pin) {
    pin->order_ = pins_.empty() ? 0 : pins_.back()->order_ + 1;
    pins_.append(pin);
    pinsByName_.added(pin);
}

bool GraphNodeBase::removePinFromList(GraphNodePin* pin) {
    for (uint32_t i = pins_.size(); i > 0; --i) {
        if (pins_[i - 1] != pin) continue;
        pinsByName_.removing(pin);
        pins_.removeAt(i - 1);
        return true;
    }
    return false;
}

void GraphNodeBase::addNodePin(GraphNodePin* pin) { addPinToList(pin); }

bool GraphNodeBase::removeNodePin(GraphNodePin* pin) { return removePinFromList(pin); }

void GraphNodeBase::destroyNodePins() {
    while (!pins_.empty()) {
        GraphNodePin* pin = pins_.back();
        if (scene_) scene_->removeNodePin(pin);
        removePinFromList(pin);
        delete pin;
    }
}

GraphNodePin* GraphNodeBase::addDynamicPin(const PinFlags& flags) {
    if (!scene_) return nullptr;
    const char* stem = flags & GraphNodePin::inputFlag ? "in" : "out";
    return scene_->createNewPin(this, flags, getFreePinNameLikeThis(stem));
}

GraphNodePin* GraphNodeBase::addDynamicInputPin() { return addDynamicPin(GraphNodePin::inputFlag); }

GraphNodePin* GraphNodeBase::addDynamicOutputPin() {
    return addDynamicPin(GraphNodePin::outputFlag);
}

void GraphNodeBase::renamePin(GraphNodePin* pin, const TM_String& name) {
    pinsByName_.rename(pin, [pin, &name] { pin->name_ = name; });
}

void GraphNodeBase::reorderPins(const Array<TM_String>& names, const PinFlags& flags) {
    orderPinsByNames(pins_, names, [&flags](const GraphNodePin* pin) {
        return static_cast<bool>(pin->getFlags() & flags);
    });
    pinsByName_.forget();
    for (uint32_t i = 0; i < pins_.size(); ++i) pins_[i]->order_ = i;
}

void GraphNodeBase::reorderInputPins(const Array<TM_String>& names) {
    reorderPins(names, GraphNodePin::inputFlag);
}

void GraphNodeBase::reorderOutputPins(const Array<TM_String>& names) {
    reorderPins(names, GraphNodePin::outputFlag);
}

// --- permissions -------------------------------------------------------------------------------

bool GraphNodeBase::allowsConnectionFrom(const GraphNodePin* pin) const {
    return anyPin(pins_, [pin](const GraphNodePin* own) { return own->allowsConnectionFrom(pin); });
}

bool GraphNodeBase::allowsConnectionFrom(const GraphNodePin* pin, Pins& accepting) const {
    return collectPins(pins_, accepting,
                       [pin](const GraphNodePin* own) { return own->allowsConnectionFrom(pin); });
}

bool GraphNodeBase::allowsConnectionFrom(const GraphNodeBase* node) const {
    return node &&
           anyPin(pins_, [node](const GraphNodePin* own) { return node->allowsConnectionTo(own); });
}

bool GraphNodeBase::allowsConnectionFrom(const GraphNodeBase* node, Pins& accepting) const {
    return node && collectPins(pins_, accepting, [node](const GraphNodePin* own) {
               return node->allowsConnectionTo(own);
           });
}

bool GraphNodeBase::allowsConnectionTo(const GraphNodePin* pin) const {
    return anyPin(pins_, [pin](const GraphNodePin* own) { return own->allowsConnectionTo(pin); });
}

bool GraphNodeBase::allowsConnectionTo(const GraphNodePin* pin, Pins& accepting) const {
    return collectPins(pins_, accepting,
                       [pin](const GraphNodePin* own) { return own->allowsConnectionTo(pin); });
}

bool GraphNodeBase::allowsConnectionTo(const GraphNodeBase* node) const {
    return node && anyPin(pins_, [node](const GraphNodePin* own) {
               return node->allowsConnectionFrom(own);
           });
}

bool GraphNodeBase::allowsConnectionTo(const GraphNodeBase* node, Pins& accepting) const {
    return node && collectPins(pins_, accepting, [node](const GraphNodePin* own) {
               return node->allowsConnectionFrom(own);
           });
}

// --- names and the tree ------------------------------------------------------------------------

TM_String GraphNodeBase::getFullName() const {
    ArrayOfPtr<const GraphNodeBase> path;
    for (const GraphNodeBase* node = this; node; node = node->getNodeOwner()) path.append(node);
    TM_String name = path.back()->getName();
    for (uint32_t i = path.size() - 1; i > 0; --i) (name += '.') += path[i - 1]->getName();
    return name;
}

void GraphNodeBase::storeName(const TM_String& name) {
    if (owner_) {
        owner_->childrenByName_.rename(this, [this, &name] { name_ = name; });
    } else {
        name_ = name;
    }
}

void GraphNodeBase::setNodeOwner(GraphNodeBase* owner) {
    if (owner == this) return;
    if (owner && !children_.empty() && owner->isOwnedByNode(this, true)) return;
    GraphNodeBase* before = owner_;
    if (before) before->removeNodeFromNodesList(this);
    setNodeOwnerBase(owner);
    if (owner) owner->addNodeToNodesList(this);
}

bool GraphNodeBase::isRoot() const {
    const GraphScene* scene = getGraphScene();
    return scene && scene->getRootNode() == this;
}

bool GraphNodeBase::isOwnedByNode(const GraphNodeBase* node, bool recursive) const {
    if (!node) return false;
    if (!recursive) return owner_ == node;
    const GraphNodeBase* owner = owner_;
    while (owner && owner != node) owner = owner->owner_;
    return owner != nullptr;
}

void GraphNodeBase::addNodeToNodesList(GraphNodeBase* node) {
    node->order_ = children_.empty() ? 0 : children_.back()->order_ + 1;
    children_.append(node);
    childrenByName_.added(node);
}

bool GraphNodeBase::removeNodeFromNodesList(GraphNodeBase* node) {
    GraphNodeBase** place = std::lower_bound(
        children_.begin(), children_.end(), node,
        [](const GraphNodeBase* a, const GraphNodeBase* b) { return a->order_ < b->order_; });
    if (place == children_.end() || *place != node) return false;
    childrenByName_.removing(node);
    children_.removeAt(static_cast<uint32_t>(place - children_.begin()));
    return true;
}

void GraphNodeBase::addNode(GraphNodeBase* node) {
    if (node) node->setNodeOwner(this);
}

bool GraphNodeBase::removeNode(GraphNodeBase* node) {
    if (!node || node->getNodeOwner() != this) return false;
    node->setNodeOwner(nullptr);
    return true;
}

void GraphNodeBase::clearNodesArray() {
    childrenByName_.forget();
    children_.reset();
}

GraphNodeBase* GraphNodeBase::findChild(std::string_view name) const {
    return childrenByName_.find(name, children_);
}

GraphNodeBase* GraphNodeBase::getNodeByName(const TM_String& name, bool recursive) const {
    GraphNodeBase* child = findChild(name);
    if (child || !recursive) return child;
    return walkBelow(this, [&name](const GraphNodeBase* node) { return node->name_ == name; });
}

void GraphNodeBase::getNodesRecursively(Nodes& nodes) const {
    walkBelow(this, [&nodes](GraphNodeBase* node) {
        nodes.append(node);
        return false;
    });
}

void GraphNodeBase::getCompoundNodes(Nodes& nodes) const {
    for (GraphNodeBase* child : children_) {
        if (child->isCompound()) nodes.append(child);
    }
}

TM_String GraphNodeBase::getFreeNodeNameLikeThis(const TM_String& name,
                                                 const GraphNodeBase* node) const {
    const auto bornByAnother = [&name, node](const GraphNodeBase* child) {
        return child != node && child->name_ == name;
    };
    if (node && node->name_ == name &&
        std::none_of(children_.begin(), children_.end(), bornByAnother)) {
        return name;
    }
    return childrenByName_.freeName(name, children_, numberedNodeName);
}

// --- texts and messages ------------------------------------------------------------------------

void GraphNodeBase::setType(const TM_String& type) { type_ = internedText(type); }

void GraphNodeBase::setCategory(const TM_String& category) { category_ = internedText(category); }

TM_String GraphNodeBase::getDescription() const {
    return description_ ? *description_ : TM_String();
}

void GraphNodeBase::setDescription(const TM_String& description) {
    description_ = description.empty() ? nullptr : std::make_unique<TM_String>(description);
}

bool GraphNodeBase::hasErrors() const { return getMessages().hasErrorsOrCriticals(); }

bool GraphNodeBase::hasWarnings() const { return getMessages().hasWarnings(); }

bool GraphNodeBase::hasMessages() const { return !getMessages().isEmpty(); }

const MessageHandler& GraphNodeBase::getMessages() const {
    static const MessageHandler none;
    return messages_ ? *messages_ : none;
}

void GraphNodeBase::getMessages(Array<Message>& messages) const {
    for (const Message& message : getMessages().messages()) messages.append(message);
}

MessageHandler& GraphNodeBase::refMessages() {
    if (!messages_) messages_ = std::make_unique<MessageHandler>();
    return *messages_;
}

void GraphNodeBase::clearMessages() {
    if (messages_) messages_->clear();
}

void GraphNodeBase::getMessagesAsStrings(Array<TM_String>& messages) const {
    for (const Message& message : getMessages().messages()) messages.append(message.asString());
}

// --- connections -------------------------------------------------------------------------------

void GraphNodeBase::getInternalConnections(Array<GraphConnection>& connections) const {
    for (GraphNodePin* pin : pins_) {
        if (!pin->isInput()) continue;
        Pins ends;
        pin->internalConnections(ends);
        for (GraphNodePin* end : ends) connections.append(GraphConnection(pin, end));
    }
}

void GraphNodeBase::getInternalConnectionsForPainting(Array<GraphConnection>& connections) const {
    getInternalConnections(connections);
}

void GraphNodeBase::getConnections(Connections& connections) const {
    anyConnection(pins_, [&connections](GraphConnection* connection) {
        connections.append(connection);
        return false;
    });
}

void GraphNodeBase::getConnectionsWithNode(const GraphNodeBase* node,
                                           Connections& connections) const {
    anyConnection(pins_, [&](GraphConnection* connection) {
        if (otherEnd(connection, this) == node) connections.append(connection);
        return false;
    });
}

bool GraphNodeBase::hasConnectionsWithNode(const GraphNodeBase* node) const {
    return anyConnection(pins_, [&](const GraphConnection* connection) {
        return otherEnd(connection, this) == node;
    });
}

} // namespace tidemark::graph

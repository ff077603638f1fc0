// SPDX-License-Identifier: Apache-2.0
// Pins: their place in a node, their connections, their counterparts.
#include "graph/base/graph_node_pin.h"

#include <cstring>
#include <memory>

#include "graph/base/graph_node_base.h"

namespace tidemark::graph {

GraphNodePin::GraphNodePin(GraphNodeBase* node, const unsigned& id, const PinFlags& flags)
    : id_(id), node_(node), flags_(flags) {}

GraphNodePin::GraphNodePin(const GraphNodePin& other)
    : TM_Class(other), id_(other.id_), userWord_(other.userWord_), node_(other.node_),
      flags_(other.flags_), order_(other.order_), childPin_(other.childPin_),
      parentPin_(other.parentPin_), name_(other.name_), inputs_(other.inputs_),
      outputs_(other.outputs_) {
    copyViewState(other);
}

GraphNodePin& GraphNodePin::operator=(const GraphNodePin& other) {
    if (this == &other) return *this;
    storeName(other.name_);
    id_ = other.id_;
    userWord_ = other.userWord_;
    node_ = other.node_;
    flags_ = other.flags_;
    childPin_ = other.childPin_;
    parentPin_ = other.parentPin_;
    inputs_ = other.inputs_;
    outputs_ = other.outputs_;
    delete view_.exchange(nullptr);
    copyViewState(other);
    return *this;
}

GraphNodePin::~GraphNodePin() {
    if (childPin_ && childPin_->parentPin_ == this) childPin_->parentPin_ = nullptr;
    if (parentPin_ && parentPin_->childPin_ == this) parentPin_->childPin_ = nullptr;
    delete view_.load();
}

void GraphNodePin::copyViewState(const GraphNodePin& other) {
    PinViewState* state = other.view_.load();
    if (!state) return;
    const std::lock_guard<std::mutex> lock(state->mutex);
    std::memcpy(viewState().bytes, state->bytes, sizeof(state->bytes));
}

PinViewState& GraphNodePin::viewState() {
    PinViewState* state = view_.load(std::memory_order_acquire);
    if (state) return *state;
    auto fresh = std::make_unique<PinViewState>();
    // Another thread may have been faster; then its block is the pin's.
    if (!view_.compare_exchange_strong(state, fresh.get())) return *state;
    return *fresh.release();
}

bool GraphNodePin::isCompoundPin() const { return node_ && node_->isCompound(); }
bool GraphNodePin::isInterfacePin() const { return node_ && node_->isInterface(); }
bool GraphNodePin::isEvaluatorPin() const { return node_ && node_->isEvaluator(); }
bool GraphNodePin::isPassThroughPin() const { return node_ && node_->isPassThrough(); }

bool GraphNodePin::allowsConnectionFrom(const GraphNodePin* source) const {
    if (!source || !source->isOutput() || !isInput()) return false;
    if (source->getParentGraphNodePtr() == node_) return false;
    return !isFull();
}

bool GraphNodePin::allowsConnectionTo(const GraphNodePin* target) const {
    return target && target->allowsConnectionFrom(this);
}

GraphNodeBase* GraphNodePin::getChildInterfaceNodePtr() const {
    return childPin_ ? childPin_->getParentGraphNodePtr() : nullptr;
}

GraphScene* GraphNodePin::getParentGraphScenePtr() const {
    return node_ ? node_->getGraphScene() : nullptr;
}

TM_String GraphNodePin::getFullName() const {
    return node_ ? node_->getFullName() + "." + getName() : getName();
}

void GraphNodePin::storeName(const TM_String& name) {
    if (node_) {
        node_->renamePin(this, name);
    } else {
        name_ = name;
    }
}

bool GraphNodePin::isConnected() const { return !inputs_.empty() || !outputs_.empty(); }

bool GraphNodePin::isFull() const { return isInput() && !inputs_.empty(); }

Color4<float> GraphNodePin::getColor() const { return ElementDefault<Color4<float>>::value(); }

Color4<float> GraphNodePin::getBorderColor() const { return getColor(); }

void GraphNodePin::addInputConnection(GraphConnection* connection) { inputs_.append(connection); }

void GraphNodePin::addOutputConnection(GraphConnection* connection) { outputs_.append(connection); }

bool GraphNodePin::removeInputConnection(GraphConnection* connection) {
    return inputs_.remove(connection);
}

bool GraphNodePin::removeOutputConnection(GraphConnection* connection) {
    return outputs_.remove(connection);
}

} // namespace tidemark::graph

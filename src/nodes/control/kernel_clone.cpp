// SPDX-License-Identifier: Apache-2.0
// Copies of a kernel's graph: reading them, their walls, and running them.
#include "nodes/control/kernel_clone.h"

#include <typeinfo>

#include "bridge/host.h"
#include "core/bit_array.h"
#include "nodes/control/evaluator.h"
#include "nodes/control/kernel.h"

namespace weft {

namespace {

using tidemark::graph::GraphNodeBase;
using tidemark::graph::Message;
using tidemark::sluice::graph::RunOutcome;

constexpr uint32_t elementsBetweenReports = 4096;
constexpr std::size_t mostReports = 100; // distinct ones of one copy

// Arrays of plain elements, which several threads may write to at different places.
bool isPlain(const Value& value) {
    return value.isKind(Numeric::kind) || value.isKind(BitArrayValue::kind);
}

KernelPlan::End variableEnd(std::size_t variable) {
    return {KernelPlan::vars, KernelVars::ownOutputs + static_cast<uint32_t>(variable)};
}

uint32_t countBelow(const KernelPlan::GraphNode& node) {
    uint32_t count = 1;
    for (const GraphNodeBase* child : node.children()) {
        const auto* inner = dynamic_cast<const KernelPlan::GraphNode*>(child);
        if (inner) count += countBelow(*inner);
    }
    return count;
}

bool isSameClass(const Value& a, const Value& b) { return typeid(a) == typeid(b); }

Attribute* behindPassThroughs(Attribute* attribute) {
    while (attribute->isPassThrough() && attribute->source()) attribute = attribute->source();
    return attribute;
}

} // namespace

KernelClone::KernelClone(const KernelPlan& plan, const KernelShare& share, bool alone)
    : plan_(plan), share_(share), alone_(alone) {
    NetworkManager& network = scene_.networkManager();
    network.followInterruptsOf(plan.kernel().networkManager());
    scene_.clear();
    network.setMonitoring(false);
    // Messages name nodes by their full names, and these are to be the ones that the user knows.
    scene_.getRootNode()->setName(plan.kernel().parent()->fullName());
    readNodes();
    if (!vars_ || !evaluatorNode_) return; // an interrupt
    setVariables();
    connect();
    for (std::size_t i = 0; i < plan_.variables().size(); ++i) {
        const Pin* pin = pinAt(variableEnd(i), false);
        if (pin) shareVariable(*plan_.variables()[i], *pin->getWeftAttribute());
    }
    for (const KernelPlan::Outlet& outlet : plan_.outlets()) shareOutlet(outlet);
    auto& evaluator = *static_cast<Evaluator*>(evaluatorNode_->getCoreNode());
    evaluator.kernelMode = true;
    evaluator.upstreamCache.clear();
    evaluator.cacheIsStale = true;
    network.setShared(true);
}

KernelClone::~KernelClone() { scene_.networkManager().setShared(false); }

// Building.

void KernelClone::readNodes() {
    scene_.readNodes_fromBoostPropertyTree(plan_.tree(), nullptr, true);
    nodes_.assign(plan_.nodes().size(), nullptr);
    const auto& children = scene_.getRootNode()->children();
    if (scene_.networkManager().isInterrupted() || children.size() < 2) return;
    // Whatever they are called by now, the stand-ins came last.
    varsNode_ = static_cast<GraphNode*>(children[children.size() - 2]);
    evaluatorNode_ = static_cast<GraphNode*>(children[children.size() - 1]);
    vars_ = dynamic_cast<KernelVars*>(varsNode_->getCoreNode());
    uint32_t place = 0;
    uint32_t next = 0;
    for (GraphNode* original : plan_.roots()) {
        pairNodes(*original, *scene_.getRootNode(), next, place);
    }
}

// Copies stand in the order of the originals; only one of a type that files cannot make is missing.
void KernelClone::pairNodes(const GraphNode& original, const GraphNodeBase& parent, uint32_t& next,
                            uint32_t& place) {
    GraphNode* copy = nullptr;
    if (next < parent.children().size() &&
        parent.children()[next]->getType() == original.getType()) {
        copy = static_cast<GraphNode*>(parent.children()[next++]);
    }
    nodes_[place++] = copy;
    uint32_t nextInside = 0;
    for (const GraphNodeBase* child : original.children()) {
        const auto* inner = dynamic_cast<const GraphNode*>(child);
        if (!inner) continue;
        if (copy) {
            pairNodes(*inner, *copy, nextInside, place);
        } else {
            place += countBelow(*inner);
        }
    }
}

void KernelClone::setVariables() {
    const TM_String elementType = plan_.kernel().element()->specialization();
    if (!elementType.empty()) {
        vars_->element->setAllowedSpecializations(SpecializationList::single(elementType));
    }
    for (std::size_t i = 0; i < plan_.variables().size(); ++i) {
        const Pin* pin = pinAt(variableEnd(i), false);
        const TM_String type = plan_.variables()[i]->specialization();
        if (!pin || type.empty()) continue;
        pin->getWeftAttribute()->setAllowedSpecializations(SpecializationList::single(type));
    }
}

void KernelClone::connect() {
    for (const KernelPlan::Wire& wire : plan_.wires()) {
        Pin* const source = pinAt(wire.source, false);
        Pin* const target = pinAt(wire.target, true);
        if (source && target) scene_.connect(source, target, false);
    }
}

// Null for a pin that the copy has not got. Pins of a compound exist as far as they are used, so
// their places may differ.
KernelClone::Pin* KernelClone::pinAt(const KernelPlan::End& end, bool isInput) const {
    const bool isStandIn = end.node == KernelPlan::vars || end.node == KernelPlan::evaluator;
    const GraphNode* node = end.node == KernelPlan::vars        ? varsNode_
                            : end.node == KernelPlan::evaluator ? evaluatorNode_
                                                                : nodes_[end.node];
    if (!node) return nullptr;
    const Array<Pin*>& pins = isInput ? node->getArrInputPin() : node->getArrOutputPin();
    Pin* const pin = end.pin < pins.size() ? pins[end.pin] : nullptr;
    if (isStandIn) return pin;
    const GraphNode& original = *plan_.nodes()[end.node];
    const Array<Pin*>& originals = isInput ? original.getArrInputPin() : original.getArrOutputPin();
    const TM_String& name = originals[end.pin]->getName();
    if (pin && pin->getName() == name) return pin;
    return isInput ? node->getInputPinPtrByName(name) : node->getOutputPinPtrByName(name);
}

// Walls.

// An output that writes to what comes in through `copy`, by an internal connection.
const Attribute* KernelClone::writerInPlace(const Attribute& copy) const {
    Array<Attribute*> downstream;
    copy.networkManager()->collectDownstream(&copy, downstream);
    for (const Attribute* found : downstream) {
        const bool isOwn = found->parent() == vars_;
        if (found->isOutput() && found->isPassThrough() && !found->isPurePassThrough() && !isOwn) {
            return found;
        }
    }
    return nullptr;
}

// Something of the same class that nobody else uses, filled with the same.
Value* KernelClone::privateCopy(const Attribute& near, const Value& outside) const {
    Array<Attribute*> downstream;
    near.networkManager()->collectDownstream(&near, downstream);
    for (const Attribute* found : downstream) {
        Value* const own = found->value();
        if (!own || own == &outside || !isSameClass(*own, outside)) continue;
        own->copyFrom(&outside);
        return own;
    }
    return nullptr;
}

void KernelClone::shareVariable(const Attribute& variable, Attribute& copy) {
    Value* const outside = variable.currentValue();
    if (!outside) return;
    Value* inside = outside;
    if (!alone_ && !isPlain(*outside) && writerInPlace(copy)) {
        if (const Stand* known = standFor(*outside)) {
            inside = known->inside;
        } else if (Value* own = privateCopy(copy, *outside)) {
            inside = own;
            stands_.push_back({outside, own, false});
        }
    }
    copy.setValue(inside);
    if (!alone_ && inside == outside) sharedValues_.push_back(outside);
}

// Where several threads run, each has a result of its own, and the last one's counts.
void KernelClone::shareOutlet(const KernelPlan::Outlet& outlet) {
    const Pin* pin = pinAt(outlet.end, false);
    if (!pin) return;
    Attribute* const writer = behindPassThroughs(pin->getWeftAttribute());
    // What comes in and goes out again is a variable's.
    if (writer->parent() == vars_ && writer->isPassThrough()) return;
    Value* const own = writer->value();
    if (!own && writer->isOutput() && !writer->isPassThrough()) {
        handovers_.push_back({behindPassThroughs(outlet.source), writer});
    }
    Value* const outside = outlet.source->currentValue();
    if (!outside || !own || own == outside || !isSameClass(*own, *outside)) return;
    if (alone_) return writer->setValue(outside);
    own->copyFrom(outside);
    stands_.push_back({outside, own, true});
}

const KernelClone::Stand* KernelClone::standFor(const Value& outside) const {
    for (const Stand& stand : stands_) {
        if (stand.outside == &outside) return &stand;
    }
    return nullptr;
}

// Running.

void KernelClone::run(const Numeric& array) {
    if (!vars_ || !evaluatorNode_) return;
    withElementType(array.type(), [&]<typename T>() { runElements(array.values<T>()); });
    collectReports();
}

template <typename T>
void KernelClone::runElements(const Array<T>& elements) {
    Numeric& element = vars_->element->ownNumeric();
    const uint32_t end = share_.first + share_.count;
    uint32_t untilReports = elementsBetweenReports;
    for (uint32_t i = share_.first; i < end; ++i) {
        if (scene_.networkManager().isInterrupted()) return;
        // A negative start counts through indices that the array has not got.
        element.setValueAt<T>(0, i < elements.size() ? elements[i]
                                                     : tidemark::ElementDefault<T>::value());
        runElement(i);
        if (scene_.lastOutcome() == RunOutcome::finished && --untilReports > 0) continue;
        untilReports = elementsBetweenReports;
        collectReports();
    }
}

void KernelClone::runElement(uint32_t index) {
    try {
        // Each time, because nodes may write to these values in place.
        vars_->index->ownNumeric().setValueAt<int32_t>(0, static_cast<int32_t>(index));
        vars_->threadId->ownNumeric().setValueAt<int32_t>(0, static_cast<int32_t>(share_.thread));
        vars_->index->valueChanged();
        vars_->threadId->valueChanged();
        vars_->element->valueChanged();
        scene_.run();
    } catch (...) {
        // The scene has dealt with every failure that it knows.
        scene_.networkManager().setEvaluating(false);
        tidemark::bridge::CCallbackCenter::Instance().Post(
            tidemark::bridge::message::panelLine,
            "[" + scene_.interruptedNodeName() + "] failed with an exception of an unknown kind");
    }
}

// A thread of a million elements would else pile up a million times the same.
void KernelClone::collectReports() {
    const auto collect = [this](uint32_t place, GraphNode* node) {
        if (!node || node->getMessages().isEmpty()) return;
        for (const Message& message : node->getMessages().messages()) {
            if (reports_.size() >= mostReports) break;
            if (!reported_.emplace(place, message.asString()).second) continue;
            reports_.emplace_back(place, message);
        }
        node->refMessages().clear();
    };
    for (uint32_t place = 0; place < nodes_.size(); ++place) collect(place, nodes_[place]);
    collect(KernelPlan::vars, varsNode_);
    collect(KernelPlan::evaluator, evaluatorNode_);
}

KernelPlan::GraphNode* KernelClone::interruptedNode() const {
    if (!scene_.wasInterrupted()) return nullptr;
    const int32_t failed = scene_.networkManager().failedNodeId();
    for (uint32_t place = 0; place < nodes_.size(); ++place) {
        const Node* logic = nodes_[place] ? nodes_[place]->getCoreNode() : nullptr;
        if (logic && logic->id() == failed) return plan_.nodes()[place];
    }
    return nullptr;
}

} // namespace weft

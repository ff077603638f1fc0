// SPDX-License-Identifier: Apache-2.0
// The object table, connection checks, and the graph of dependencies.
#include "core/network_manager.h"

#include <cassert>
#include <cstdlib>
#include <utility>

#include "core/callbacks.h"
#include "core/exceptions.h"
#include "core/node.h"

namespace weft {

std::atomic<int32_t> NetworkManager::_nextAvailableId{0};

NetworkManager::NetworkManager() = default;

NetworkManager::~NetworkManager() {
    for (const auto entry : objects_) entry.value->networkManager_ = nullptr;
}

int32_t NetworkManager::nextId() {
    const int32_t id = _nextAvailableId.fetch_add(1, std::memory_order_relaxed) + 1;
    // Ids are never used again, so a process can make this many objects and no more.
    if (id <= 0) std::abort();
    return id;
}

// Set and cleared while no other thread uses the network.
bool NetworkManager::setShared(bool shared) { return std::exchange(shared_, shared); }

std::unique_lock<std::mutex> NetworkManager::lockIfShared() const {
    std::unique_lock<std::mutex> lock(objectsMutex_, std::defer_lock);
    if (shared_) lock.lock();
    return lock;
}

void NetworkManager::enter(Object* object) {
    const auto lock = lockIfShared();
    objects_.insert(static_cast<uint32_t>(object->id()), object);
}

void NetworkManager::leave(Object* object) {
    const auto lock = lockIfShared();
    objects_.erase(static_cast<uint32_t>(object->id()));
    removals_.fetch_add(1, std::memory_order_relaxed);
}

Object* NetworkManager::findObject(int32_t id) const {
    const auto lock = lockIfShared();
    return id > 0 ? objects_.find(static_cast<uint32_t>(id)) : nullptr;
}

uint32_t NetworkManager::nextMark() {
    if (++mark_ != 0) return mark_;
    // After four billion traversals old marks could be taken for new ones.
    for (const auto entry : objects_) {
        if (entry.value->isAttributeObject()) static_cast<Attribute*>(entry.value)->mark_ = 0;
    }
    return mark_ = 1;
}

void NetworkManager::clearToBeEvaluatedFlags() {
    if (!monitoring_) return;
    for (const auto entry : objects_) {
        if (entry.value->isAttributeObject()) {
            static_cast<Attribute*>(entry.value)->toBeEvaluated_ = false;
        }
    }
}

// Connections.

namespace {

bool refuse(ErrorObject* error, TM_String reason) {
    if (error) error->setMessage(std::move(reason));
    return false;
}

TM_String fullNameOf(const Attribute* attribute) {
    return attribute ? attribute->fullName() : TM_String();
}

bool typesMatch(const Attribute& source, const Attribute& destination) {
    const SpecializationList& from = source.specializations();
    const SpecializationList& to = destination.specializations();
    const bool bothTyped = !from.empty() && !to.empty();
    if ((source.isPassThrough() || destination.isPassThrough()) && !bothTyped) return true;
    if (bothTyped) return from.hasNameInCommonWith(to);
    return source.hasSameTypeNames(destination);
}

} // namespace

bool NetworkManager::canConnect(Attribute* source, Attribute* destination, ErrorObject* error) {
    if (!source) return refuse(error, fullNameOf(source) + " is not a valid object");
    if (!destination) return refuse(error, fullNameOf(destination) + " is is not a valid object");
    if (source == destination) {
        return refuse(error, source->fullName() + " can't be connected to itself");
    }
    for (const Attribute* end : {source, destination}) {
        if (!end->parent() || !end->isListed_) {
            return refuse(error, "no parent node found for " + end->fullName());
        }
    }
    if (destination->source_ == source) {
        return refuse(error,
                      source->fullName() + " already connected to " + destination->fullName());
    }
    if (destination->isOutput_ && !destination->isPassThrough_) {
        return refuse(error, destination->fullName() + " is output");
    }
    if (isUpstream(source, destination)) return refuse(error, "cycle");
    if (!typesMatch(*source, *destination)) return refuse(error, "types don't match");
    return true;
}

bool NetworkManager::connect(Attribute* source, Attribute* destination, ErrorObject* error) {
    const Retained<ErrorObject> reason(error ? error : new ErrorObject(this));
    return canConnect(source, destination, reason.get()) &&
           source->connectTo(destination, reason.get());
}

// Both ends are searched in step, so the smaller side decides what the question costs: one side of
// a new connection is nearly always short. Meeting the other side's mark is a way between them.
bool NetworkManager::isUpstream(const Attribute* from, const Attribute* target) {
    if (from == target) return true;
    const uint32_t above = nextMark();
    const uint32_t below = nextMark();
    upstream_.assign(1, const_cast<Attribute*>(from));
    downstream_.assign(1, const_cast<Attribute*>(target));
    upstream_[0]->mark_ = above;
    downstream_[0]->mark_ = below;
    while (!upstream_.empty() && !downstream_.empty()) {
        if (stepUpstream(above, below) || stepDownstream(below, above)) return true;
    }
    return false;
}

bool NetworkManager::stepUpstream(uint32_t mine, uint32_t others) {
    const Attribute* step = upstream_.back();
    upstream_.pop_back();
    const auto meets = [&](Attribute* next) {
        if (next->mark_ == others) return true;
        if (next->mark_ != mine) {
            next->mark_ = mine;
            upstream_.push_back(next);
        }
        return false;
    };
    // The source of an output counts as well: outputs of compounds have one and no affects.
    if ((step->isInput_ || step->isOutput_) && step->source_ && meets(step->source_)) return true;
    if (!step->isOutput_) return false;
    for (Attribute* input : step->affectedBy_) {
        if (meets(input)) return true;
    }
    return false;
}

bool NetworkManager::stepDownstream(uint32_t mine, uint32_t others) {
    const Attribute* step = downstream_.back();
    downstream_.pop_back();
    const auto meets = [&](Attribute* next) {
        if (next->mark_ == others) return true;
        if (next->mark_ != mine) {
            next->mark_ = mine;
            downstream_.push_back(next);
        }
        return false;
    };
    for (Attribute* destination : step->destinations_) {
        if ((destination->isInput_ || destination->isOutput_) && meets(destination)) return true;
    }
    for (Attribute* output : step->affects_) {
        if (output->isOutput_ && meets(output)) return true;
    }
    return false;
}

// Edges.

void NetworkManager::addEdge(Attribute* from, Attribute* to) {
    ++topologyEpoch_;
    from->successors_.append({to, topologyEpoch_, liveEpoch});
    to->predecessors_.append({from, topologyEpoch_, liveEpoch});
    from->hasVertex_ = to->hasVertex_ = true;
}

namespace {

// Position of the last live edge to `end`, or -1.
template <typename Edges>
int64_t liveEdgeTo(const Edges& edges, const Attribute* end) {
    for (uint32_t i = edges.size(); i > 0; --i) {
        const auto& edge = edges[i - 1];
        if (edge.end == end && edge.died == NetworkManager::liveEpoch) return i - 1;
    }
    return -1;
}

} // namespace

void NetworkManager::removeEdge(Attribute* from, Attribute* to) {
    const int64_t forward = liveEdgeTo(from->successors_, to);
    if (forward < 0) return;
    const int64_t backward = liveEdgeTo(to->predecessors_, from);
    assert(backward >= 0 && "an edge stands in both of its ends");
    ++topologyEpoch_;
    if (keepsDeadEdges() && !tearingDown_) {
        from->successors_[forward].died = topologyEpoch_;
        to->predecessors_[backward].died = topologyEpoch_;
        deadEdgeOwners_.push_back(from);
        return;
    }
    from->successors_.removeAt(static_cast<uint32_t>(forward));
    to->predecessors_.removeAt(static_cast<uint32_t>(backward));
}

void NetworkManager::dropDeadEdges() {
    for (Attribute* owner : deadEdgeOwners_) {
        for (uint32_t i = owner->successors_.size(); i > 0; --i) {
            const Attribute::Edge edge = owner->successors_[i - 1];
            if (edge.died == liveEpoch) continue;
            owner->successors_.removeAt(i - 1);
            auto& back = edge.end->predecessors_;
            for (uint32_t k = back.size(); k > 0; --k) {
                if (back[k - 1].end == owner && back[k - 1].born == edge.born) back.removeAt(k - 1);
            }
        }
    }
    deadEdgeOwners_.clear();
}

// A dead attribute leaves every chain at once, also those that are otherwise out of date.
void NetworkManager::dropEdgesOf(Attribute* attribute) {
    makeLive(attribute);
    forgetChain(attribute);
    if (attribute->notifiesDirty_) --dirtyListeners_;
    if (attribute->listens_) --dirtyListeners_;
    attribute->notifiesDirty_ = attribute->listens_ = false;
    if (attribute->typeState_ == Attribute::TypeState::changed) --changedTypes_;
    attribute->typeState_ = Attribute::TypeState::fresh;
    if (--attributes_ == 0) cleaned_ = 0;
    if (!attribute->hasVertex_) return;
    ++topologyEpoch_;
    for (const Attribute::Edge& edge : attribute->successors_) {
        auto& back = edge.end->predecessors_;
        for (uint32_t i = back.size(); i > 0; --i) {
            if (back[i - 1].end == attribute) back.removeAt(i - 1);
        }
    }
    for (const Attribute::Edge& edge : attribute->predecessors_) {
        auto& forward = edge.end->successors_;
        for (uint32_t i = forward.size(); i > 0; --i) {
            if (forward[i - 1].end == attribute) forward.removeAt(i - 1);
        }
    }
    attribute->successors_.clear();
    attribute->predecessors_.clear();
    std::erase(deadEdgeOwners_, attribute);
}

// What survives.

SurvivingList::SurvivingList(const NetworkManager* manager, const Array<Attribute*>& list)
    : manager_(manager), list_(list) {
    if (!manager_) return;
    removals_ = manager_->removals_;
    ids_.reserve(list.size());
    for (const Attribute* entry : list) ids_.append(entry->id());
}

bool SurvivingList::holds(uint32_t index) const {
    if (!manager_ || manager_->removals_ == removals_) return true;
    return manager_->findObject(ids_[index]) == list_[index];
}

// Interrupts and failures.

void NetworkManager::raiseInterrupt() const {
    if (!evaluating_) return;
    throw tidemark::sluice::graph::CancelGraphException(
        "Graph execution cancelled", tidemark::sluice::graph::cancelExceptionCode);
}

void NetworkManager::noteFailure(const Node* node) {
    if (failedNodeId_ == 0) failedNodeId_ = node->id();
}

} // namespace weft

// SPDX-License-Identifier: Apache-2.0
// Walks over the graph of dependencies: closures, dirty chains and marking.
#include <memory>

#include "core/callbacks.h"
#include "core/network_manager.h"

namespace weft {

namespace {

// Flat chains are kept up to this many bytes per network; beyond it walks search each time.
constexpr uint64_t keptChainLimit = uint64_t(256) << 20;

bool isShown(uint32_t born, uint32_t died, uint32_t epoch) {
    if (epoch == NetworkManager::liveEpoch) return died == NetworkManager::liveEpoch;
    return born <= epoch && epoch < died;
}

// Depth first in the order of recursion: neighbours are pushed last first and tested when popped.
template <typename Edges, typename Visit>
void search(std::vector<Attribute*>& stack, Attribute* start, Edges edgesOf, Visit visit) {
    struct Base {
        std::vector<Attribute*>& stack;
        std::size_t size;
        ~Base() { stack.resize(size); }
    };
    const Base base{stack, stack.size()};
    stack.push_back(start);
    while (stack.size() > base.size) {
        Attribute* step = stack.back();
        stack.pop_back();
        if (!visit(step)) continue;
        edgesOf(step, stack);
    }
}

} // namespace

// `visit(a)` is called once for each attribute that has not got `mark` yet.
template <typename Visit>
void NetworkManager::visitDownstream(Attribute* start, uint32_t mark, uint32_t epoch, Visit visit) {
    search(
        stack_, start,
        [mark, epoch](Attribute* step, std::vector<Attribute*>& stack) {
            for (uint32_t i = step->successors_.size(); i > 0; --i) {
                const Attribute::Edge& edge = step->successors_[i - 1];
                if (edge.end->mark_ == mark || !isShown(edge.born, edge.died, epoch)) continue;
                stack.push_back(edge.end);
            }
        },
        [mark, &visit](Attribute* step) {
            if (step->mark_ == mark) return false;
            step->mark_ = mark;
            visit(step);
            return true;
        });
}

void NetworkManager::collectDownstream(const Attribute* attribute, Array<Attribute*>& list) {
    if (!attribute->hasVertex_) return;
    list.clear();
    visitDownstream(const_cast<Attribute*>(attribute), nextMark(), liveEpoch,
                    [&list](Attribute* found) { list.append(found); });
}

void NetworkManager::collectUpstream(const Attribute* attribute, Array<Attribute*>& list) {
    if (!attribute->hasVertex_) return;
    list.clear();
    const uint32_t mark = nextMark();
    search(
        stack_, const_cast<Attribute*>(attribute),
        [mark](Attribute* step, std::vector<Attribute*>& stack) {
            for (uint32_t i = step->predecessors_.size(); i > 0; --i) {
                const Attribute::Edge& edge = step->predecessors_[i - 1];
                if (edge.died != liveEpoch || edge.end->mark_ == mark) continue;
                stack.push_back(edge.end);
            }
        },
        [mark, &list](Attribute* step) {
            if (step->mark_ == mark) return false;
            step->mark_ = mark;
            list.append(step);
            return true;
        });
}

// Which topology a chain shows.

uint32_t NetworkManager::shownEpoch(const Attribute& attribute) const {
    if (attribute.chainEpoch_ != liveEpoch) return attribute.chainEpoch_;
    return cacheDisabled_ ? frozenEpoch_ : liveEpoch;
}

void NetworkManager::makeStale(Attribute* attribute, uint32_t epoch) {
    if (attribute->chainEpoch_ == liveEpoch) ++staleAttributes_;
    attribute->chainEpoch_ = epoch;
    forgetChain(attribute);
}

void NetworkManager::makeUpstreamStale(Attribute* attribute) {
    Array<Attribute*> upstream;
    collectUpstream(attribute, upstream);
    for (Attribute* above : upstream) {
        if (above->chainEpoch_ == liveEpoch) makeStale(above, topologyEpoch_);
    }
}

void NetworkManager::makeLive(Attribute* attribute) {
    if (attribute->chainEpoch_ == liveEpoch) return;
    attribute->chainEpoch_ = liveEpoch;
    forgetChain(attribute);
    --staleAttributes_;
    if (!keepsDeadEdges()) dropDeadEdges();
}

void NetworkManager::rebuildDirtyChains(Attribute* attribute) {
    if (!keepsDeadEdges()) return; // every chain shows today's topology
    Array<Attribute*> upstream;
    collectUpstream(attribute, upstream);
    for (Attribute* above : upstream) {
        if (cacheDisabled_) {
            makeStale(above, topologyEpoch_);
        } else {
            makeLive(above);
        }
    }
}

void NetworkManager::rebuildAllDirtyChains() {
    if (cacheDisabled_ || staleAttributes_ == 0) return;
    for (const auto entry : objects_) {
        if (entry.value->isAttributeObject()) makeLive(static_cast<Attribute*>(entry.value));
    }
}

void NetworkManager::setCacheDisabled(bool disabled) {
    if (disabled == cacheDisabled_) return;
    if (disabled) {
        cacheDisabled_ = true;
        frozenEpoch_ = topologyEpoch_;
        return;
    }
    if (topologyEpoch_ != frozenEpoch_ && !tearingDown_) {
        for (const auto entry : objects_) {
            if (!entry.value->isAttributeObject()) continue;
            auto* attribute = static_cast<Attribute*>(entry.value);
            if (attribute->chainEpoch_ == liveEpoch) makeStale(attribute, frozenEpoch_);
        }
    }
    cacheDisabled_ = false;
    if (!keepsDeadEdges()) dropDeadEdges();
}

void NetworkManager::collectChain(Attribute& attribute, Array<Attribute*>& chain) {
    chain.clear();
    visitDownstream(&attribute, nextMark(), shownEpoch(attribute),
                    [&chain](Attribute* found) { chain.append(found); });
}

// Marking.

void NetworkManager::fireClean(Attribute* attribute) const {
    if (!monitoring_ || !Callbacks::_attributeCleanCallback || attribute->isDeleted()) return;
    Callbacks::_attributeCleanCallback(attribute);
}

void NetworkManager::runPendingDirtyHooks(Attribute* attribute) {
    if (Callbacks::pendingDirtyHooks.empty()) return;
    const auto hooks = std::move(Callbacks::pendingDirtyHooks);
    Callbacks::pendingDirtyHooks.clear();
    for (void (*hook)(Attribute*) : hooks) hook(attribute);
}

void NetworkManager::walkDirty(Attribute* attribute, bool force) {
    const LifeWatch watch(attribute);
    if (!dirtyHold_) {
        if (attribute->isClean_ || force) {
            if (hasListeners()) {
                markChainTellingListeners(attribute);
            } else {
                markChain(attribute);
            }
            if (watch.isGone()) return;
            runPendingDirtyHooks(attribute);
        }
        if (!watch.isGone()) fireClean(attribute);
    }
    if (!watch.isGone()) fireClean(attribute);
}

void NetworkManager::forgetChain(Attribute* attribute) {
    if (!attribute->rare_.get().chainCache) return;
    std::unique_ptr<Attribute::ChainCache>& kept = attribute->rare_.ref().chainCache;
    keptChainBytes_ -= uint64_t(kept->chain.capacity()) * sizeof(Attribute*);
    kept.reset();
}

// A chain is worth keeping from its second walk under one topology on.
bool NetworkManager::keepChain(Attribute* attribute) {
    if (attribute->walkedEpoch_ != topologyEpoch_) {
        attribute->walkedEpoch_ = topologyEpoch_;
        return false;
    }
    forgetChain(attribute);
    if (keptChainBytes_ > keptChainLimit) return false;
    auto kept = std::make_unique<Attribute::ChainCache>();
    kept->epoch = topologyEpoch_;
    collectChain(*attribute, kept->chain);
    keptChainBytes_ += uint64_t(kept->chain.capacity()) * sizeof(Attribute*);
    attribute->rare_.ref().chainCache = std::move(kept);
    return true;
}

void NetworkManager::markChain(Attribute* attribute) {
    const uint32_t epoch = shownEpoch(*attribute);
    if (epoch == liveEpoch) {
        const auto& kept = attribute->rare_.get().chainCache;
        if ((kept && kept->epoch == topologyEpoch_) || keepChain(attribute)) {
            for (Attribute* entry : attribute->rare_.get().chainCache->chain)
                entry->isClean_ = false;
            return;
        }
    }
    visitDownstream(attribute, nextMark(), epoch,
                    [](Attribute* found) { found->isClean_ = false; });
}

// The chain is copied: what is called may change the topology, and even delete entries.
void NetworkManager::markChainTellingListeners(Attribute* attribute) {
    Array<Attribute*> chain;
    collectChain(*attribute, chain);
    const SurvivingList survivors(this, chain);
    for (uint32_t i = 0; i < chain.size(); ++i) {
        if (!survivors.holds(i)) continue;
        Attribute* const entry = chain[i];
        entry->isClean_ = false;
        if (entry->listens_) entry->onDirtied();
        if (!survivors.holds(i) || !entry->notifiesDirty_ || !monitoring_ || entry->isDeleted())
            continue;
        if (Callbacks::_attributeDirtiedCallback) Callbacks::_attributeDirtiedCallback(entry);
    }
}

bool NetworkManager::canMarkTogether() const {
    return !dirtyHold_ && !hasListeners() && !keepsDeadEdges();
}

// One mark serves for all: below an attribute that has it everything is dirty already, as long as
// nothing became clean and no edge was added in between, which only what is told can do.
void NetworkManager::markAllDirty(const Array<Attribute*>& list) {
    const SurvivingList survivors(this, list);
    cleaned_ &= cleanedEver;
    uint32_t topology = topologyEpoch_;
    uint32_t mark = nextMark();
    for (uint32_t i = 0; i < list.size(); ++i) {
        if (!survivors.holds(i)) continue;
        Attribute* const attribute = list[i];
        if (!canMarkTogether()) {
            walkDirty(attribute, true);
            continue;
        }
        if ((cleaned_ & cleanedSinceMark) != 0 || topologyEpoch_ != topology) {
            mark = nextMark();
            cleaned_ &= cleanedEver;
            topology = topologyEpoch_;
        }
        visitDownstream(attribute, mark, liveEpoch,
                        [](Attribute* found) { found->isClean_ = false; });
        const LifeWatch watch(attribute);
        runPendingDirtyHooks(attribute);
        if (!watch.isGone()) fireClean(attribute);
        if (!watch.isGone()) fireClean(attribute);
    }
    // A call further out has to look again.
    if (cleaned_ != 0) cleaned_ |= cleanedSinceMark;
}

void NetworkManager::markAllDirtyForRun(const Array<Attribute*>& list) {
    for (Attribute* attribute : list) attribute->toBeEvaluated_ = true;
    markAllDirty(list);
}

} // namespace weft

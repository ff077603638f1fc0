// SPDX-License-Identifier: Apache-2.0
// Search and propagation of types over a group of attributes.
#include "core/specialization_solver.h"

#include <algorithm>
#include <atomic>

#include "core/callbacks.h"
#include "core/network_manager.h"
#include "core/node.h"

namespace weft {

namespace {

constexpr int mostSearchRounds = 100;

// How often propagation may look at an attribute before it is cut off. Lists only get narrower, so
// only a node whose links contradict themselves comes near.
constexpr uint64_t mostVisitsPerAttribute = 200;

// An attribute whose group was found to be large keeps this mark where its index in a gathered
// group stands otherwise. The mark is good until something is taken apart, and for one limit only.
constexpr uint32_t largeMark = 0x80000000u;
constexpr uint32_t limitOfMarks = 64;
std::atomic<uint32_t> splits{0};

uint32_t markOfLarge() { return largeMark | splits.load(std::memory_order_relaxed); }

} // namespace

void SpecializationSolver::noteSplit() {
    splits.store((splits.load(std::memory_order_relaxed) + 1) & ~largeMark,
                 std::memory_order_relaxed);
}

bool SpecializationSolver::isSmallGroup(Attribute* start) {
    const uint32_t limit = manager_.searchedGroupLimit();
    if (limit != limitOfMarks) return gather(start, limit);
    const uint32_t mark = markOfLarge();
    if (start->scratch_ == mark) return false;
    for (const SpecializationLink& link : start->links_) {
        if (link.first->scratch_ == mark || link.second->scratch_ == mark) return false;
    }
    for (const Attribute* reader : start->destinations_) {
        if (reader->scratch_ == mark) return false;
        if (start->destinations_.size() > limit) return false;
    }
    return gather(start, limit);
}

void SpecializationSolver::rememberLarge(Attribute* source, Attribute* destination) {
    if (manager_.searchedGroupLimit() != limitOfMarks) return;
    source->scratch_ = destination->scratch_ = markOfLarge();
    for (const Entry& entry : entries_) entry.attribute->scratch_ = markOfLarge();
}

// The group in the order of recursion: both ends of each link, the source, each destination. False
// when it has more than `limit` attributes.
bool SpecializationSolver::gather(Attribute* start, uint32_t limit) {
    const uint32_t mark = manager_.nextMark();
    std::vector<Attribute*> pending{start};
    entries_.clear();
    const auto isNew = [mark](const Attribute* a) { return a && a->mark_ != mark; };
    while (!pending.empty()) {
        Attribute* const step = pending.back();
        pending.pop_back();
        if (step->mark_ == mark) continue;
        if (entries_.size() == limit || step->destinations_.size() > limit) return false;
        step->mark_ = mark;
        step->scratch_ = static_cast<uint32_t>(entries_.size());
        entries_.push_back({step, step->id(), {}});
        for (uint32_t i = step->destinations_.size(); i > 0; --i) {
            if (isNew(step->destinations_[i - 1])) pending.push_back(step->destinations_[i - 1]);
        }
        if (isNew(step->source_)) pending.push_back(step->source_);
        for (uint32_t i = step->links_.size(); i > 0; --i) {
            const SpecializationLink& link = step->links_[i - 1];
            if (isNew(link.second)) pending.push_back(link.second);
            if (isNew(link.first)) pending.push_back(link.first);
        }
    }
    isGathered_ = true;
    return true;
}

void SpecializationSolver::seedFromAllowed() {
    for (Entry& entry : entries_) {
        const Attribute& a = *entry.attribute;
        const SpecializationList& chosen = a.specializationOverride();
        entry.list = chosen.empty() ? a.allowed_ : chosen;
    }
}

// Every neighbour of a gathered attribute is gathered. Otherwise an attribute enters when it is
// first looked at, with what it is now.
uint32_t SpecializationSolver::indexOf(Attribute* attribute) {
    if (isGathered_) return attribute->scratch_;
    const auto next = static_cast<uint32_t>(entries_.size());
    const auto [place, isNew] = indices_.try_emplace(attribute, next);
    if (isNew) entries_.push_back({attribute, attribute->id(), attribute->specializations_});
    return place->second;
}

bool SpecializationSolver::settle(Attribute* start) {
    if (manager_.isTearingDown()) return true;
    if (!gather(start, manager_.searchedGroupLimit())) return settleByPropagation(start);
    seedFromAllowed();
    const bool settled = search(start);
    markSettled();
    applyAll();
    return settled;
}

bool SpecializationSolver::settleByPropagation(Attribute* start) {
    gather(start, UINT32_MAX);
    seedFromAllowed();
    queue_.clear();
    for (uint32_t i = static_cast<uint32_t>(entries_.size()); i > 0; --i) {
        entries_[i - 1].isQueued = true;
        queue_.push_back(i - 1);
    }
    const bool settled = propagate();
    markSettled();
    applyAll();
    return settled;
}

bool SpecializationSolver::settleConnection(Attribute* source, Attribute* destination) {
    if (manager_.isTearingDown()) return true;
    if (isSmallGroup(source)) return settle(source);
    if (manager_.changedTypes_ > 0 && isGroupChanged(source)) return settleByPropagation(source);
    isGathered_ = false;
    entries_.clear();
    for (Attribute* end : {source, destination}) {
        if (end->typeState_ == Attribute::TypeState::fresh) queueFresh(end);
    }
    narrowPair(source, destination);
    const bool settled = propagate();
    markSettled();
    rememberLarge(source, destination);
    applyConnection(source);
    return settled;
}

bool SpecializationSolver::isGroupChanged(Attribute* start) {
    gather(start, UINT32_MAX);
    return std::any_of(entries_.begin(), entries_.end(), [](const Entry& entry) {
        return entry.attribute->typeState_ == Attribute::TypeState::changed;
    });
}

// What was never settled may have links that narrow though the connection itself changes nothing.
void SpecializationSolver::queueFresh(Attribute* start) {
    std::vector<Attribute*> pending{start};
    while (!pending.empty()) {
        Attribute* const step = pending.back();
        pending.pop_back();
        const uint32_t index = indexOf(step);
        if (entries_[index].isQueued) continue;
        entries_[index].isQueued = true;
        queue_.push_back(index);
        const auto look = [&pending](Attribute* next) {
            if (next->typeState_ == Attribute::TypeState::fresh) pending.push_back(next);
        };
        for (const SpecializationLink& link : step->links_) {
            look(link.first);
            look(link.second);
        }
        if (step->source_) look(step->source_);
        for (Attribute* destination : step->destinations_) look(destination);
    }
}

// The search.

bool SpecializationSolver::search(Attribute* start) {
    narrowLinks();
    visited_.assign(entries_.size(), false);
    Attribute* candidate = findNarrower(start, start, false);
    for (int round = 0; candidate; ++round) {
        if (round == mostSearchRounds) return false;
        visited_.assign(entries_.size(), false);
        push(candidate, listOf(candidate));
        narrowLinks();
        visited_.assign(entries_.size(), false);
        candidate = findNarrower(start, start, false);
    }
    return true;
}

void SpecializationSolver::narrowLinks() {
    for (const Entry& entry : entries_) {
        Node* const node = entry.attribute->parent();
        if (!node) continue;
        for (const SpecializationLink& link : entry.attribute->links_) {
            node->updateSpecializationLink(link.first, link.second, listOf(link.first),
                                           listOf(link.second));
        }
    }
}

bool SpecializationSolver::isCandidate(Attribute* attribute, Attribute* previous, bool viaLink) {
    if (attribute == previous) return false;
    const SpecializationList mine = listOf(attribute);
    const SpecializationList theirs = listOf(previous);
    if (previous->isPassThrough_ && theirs.empty()) return true;
    return !viaLink && mine.hasNameInCommonWith(theirs) && mine.size() <= theirs.size() &&
           !mine.isSameSet(theirs);
}

// The last candidate found counts.
Attribute* SpecializationSolver::findNarrower(Attribute* attribute, Attribute* previous,
                                              bool viaLink) {
    Attribute* candidate = isCandidate(attribute, previous, viaLink) ? attribute : nullptr;
    if (visited_[attribute->scratch_]) return candidate;
    visited_[attribute->scratch_] = true;
    const auto look = [&](Attribute* next, bool overLink) {
        if (Attribute* found = findNarrower(next, attribute, overLink)) candidate = found;
    };
    for (const SpecializationLink& link : attribute->links_) {
        if (link.first != attribute) look(link.first, true);
        if (link.second != attribute) look(link.second, true);
    }
    if (attribute->source_) look(attribute->source_, false);
    for (Attribute* destination : attribute->destinations_) look(destination, false);
    return candidate;
}

// A list that has nothing in common with what stands there changes nothing: whether types match
// was asked before the connection was made.
void SpecializationSolver::push(Attribute* attribute, SpecializationList list) {
    SpecializationList& own = listOf(attribute);
    if (attribute->isPassThrough_ && own.empty()) {
        own = list;
    } else if (!(list == own) && list.hasNameInCommonWith(own)) {
        own = list.intersectedWith(own);
    }
    if (visited_[attribute->scratch_]) return;
    visited_[attribute->scratch_] = true;
    if (attribute->source_) push(attribute->source_, listOf(attribute));
    for (Attribute* destination : attribute->destinations_) push(destination, listOf(attribute));
    Node* const node = attribute->parent();
    if (!node) return;
    for (const SpecializationLink& link : attribute->links_) {
        SpecializationList first = listOf(link.first);
        SpecializationList second = listOf(link.second);
        node->updateSpecializationLink(link.first, link.second, first, second);
        if (link.first != attribute) push(link.first, first);
        if (link.second != attribute) push(link.second, second);
    }
}

// The propagation.

void SpecializationSolver::store(uint32_t index, SpecializationList list) {
    Entry& entry = entries_[index];
    if (entry.list == list) return;
    entry.list = list;
    if (entry.isQueued) return;
    entry.isQueued = true;
    queue_.push_back(index);
}

void SpecializationSolver::narrowPair(Attribute* a, Attribute* b) {
    const uint32_t first = indexOf(a);
    const uint32_t second = indexOf(b);
    const SpecializationList ofA = entries_[first].list;
    const SpecializationList ofB = entries_[second].list;
    if (a->isPassThrough_ && ofA.empty()) return store(first, ofB);
    if (b->isPassThrough_ && ofB.empty()) return store(second, ofA);
    if (!ofA.hasNameInCommonWith(ofB) || ofA.isSameSet(ofB)) return;
    if (!ofA.isSubsetOf(ofB)) store(first, ofA.intersectedWith(ofB));
    if (!ofB.isSubsetOf(ofA)) store(second, ofA.intersectedWith(ofB));
}

void SpecializationSolver::narrowLink(const SpecializationLink& link) {
    Node* const node = link.first->parent();
    if (!node) return;
    const uint32_t first = indexOf(link.first);
    const uint32_t second = indexOf(link.second);
    SpecializationList ofFirst = entries_[first].list;
    SpecializationList ofSecond = entries_[second].list;
    node->updateSpecializationLink(link.first, link.second, ofFirst, ofSecond);
    store(first, ofFirst);
    store(second, ofSecond);
}

bool SpecializationSolver::propagate() {
    uint64_t visits = 0;
    while (!queue_.empty()) {
        if (++visits > mostVisitsPerAttribute * (entries_.size() + 1)) return false;
        const uint32_t index = queue_.back();
        queue_.pop_back();
        entries_[index].isQueued = false;
        Attribute* const step = entries_[index].attribute;
        for (const SpecializationLink& link : step->links_) narrowLink(link);
        if (step->source_) narrowPair(step, step->source_);
        for (Attribute* destination : step->destinations_) narrowPair(step, destination);
    }
    return true;
}

// Applying.

void SpecializationSolver::markSettled() {
    for (const Entry& entry : entries_) {
        Attribute::TypeState& state = entry.attribute->typeState_;
        if (state == Attribute::TypeState::changed) --manager_.changedTypes_;
        state = Attribute::TypeState::settled;
    }
}

// What is told may delete attributes of the group, so they are found again by id.
void SpecializationSolver::applyAll() {
    std::vector<Entry> entries = std::move(entries_);
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.id < b.id; });
    const uint64_t removals = manager_.removals_;
    for (const Entry& entry : entries) {
        if (manager_.removals_ != removals && !manager_.findObject(entry.id)) continue;
        entry.attribute->applySpecializations(entry.list);
    }
}

void SpecializationSolver::applyChanges() {
    std::erase_if(entries_, [](const Entry& entry) {
        return entry.attribute->specializations_ == entry.list;
    });
    applyAll();
}

bool SpecializationSolver::isHeard() const {
    if (manager_.hasListeners() || !Callbacks::pendingDirtyHooks.empty()) return true;
    if (!manager_.monitoring()) return false;
    if (Callbacks::_attributeSpecializationCallback) return true;
    if (!Callbacks::_attributeCleanCallback) return false;
    return !Callbacks::nobodyListens || !Callbacks::nobodyListens();
}

// A change of types re-applies every attribute of the group, changed or not. Where that could only
// be seen by something being clean, the unchanged ones are just marked.
void SpecializationSolver::applyConnection(Attribute* start) {
    const bool heard = isHeard();
    if (!heard && !manager_.mayHoldClean()) return applyChanges();
    const std::vector<Entry> narrowed = std::move(entries_);
    gather(start, UINT32_MAX);
    for (Entry& entry : entries_) entry.list = entry.attribute->specializations_;
    for (const Entry& entry : narrowed) listOf(entry.attribute) = entry.list;
    if (heard) return applyAll();
    Array<Attribute*> clean;
    for (const Entry& entry : entries_) {
        if (entry.attribute->isClean_) clean.append(entry.attribute);
    }
    manager_.markAllDirty(clean);
    applyChanges();
}

} // namespace weft

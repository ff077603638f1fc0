// SPDX-License-Identifier: Apache-2.0
// Attributes: the pull, shared values, connections, affects, pass-throughs and teardown.
#include "core/attribute.h"

#include <cstring>
#include <vector>

#include "core/callbacks.h"
#include "core/network_manager.h"
#include "core/node.h"
#include "core/specialization_solver.h"
#include "core/update_scope.h"
#include "platform/stack_segment.h"

namespace weft {

namespace {

// Times of single computations are kept in units of two to this power, to fit 32 bits.
constexpr int kiloTicks = 10;

} // namespace

HelpText::~HelpText() {
    if (isOwned_) delete[] data_;
}

void HelpText::setLiteral(const char* literal) {
    if (isOwned_) delete[] data_;
    data_ = literal;
    isOwned_ = false;
}

void HelpText::set(const TM_String& text) {
    char* copy = new char[text.size() + 1];
    std::memcpy(copy, text.c_str(), text.size() + 1);
    setLiteral(copy);
    isOwned_ = true;
}

Attribute::Attribute(NetworkManager* manager, const TM_String& name, Node* parent)
    : NestedObject(manager, parent), chainEpoch_(NetworkManager::liveEpoch) {
    appendClass<"Attribute">();
    isAttributeObject_ = true;
    initializeName(uniqueName(name));
    if (manager) ++manager->attributes_;
}

Attribute::~Attribute() {
    if (!isDeleted()) tearDown();
}

void Attribute::initializeValue(Value* value) {
    value->retain();
    value_ = currentValue_ = value;
}

void Attribute::purge() {
    if (isOutput_ && value_) value_->purge();
}

uint64_t Attribute::estimatedSize() const { return value_ ? value_->estimatedSize() : 0; }

uint64_t Attribute::checkSum() const { return value_ ? value_->checkSum() : 0; }

TM_String Attribute::asScript() const { return name() + " " + className(); }

TM_String Attribute::debugInfo() const {
    const double seconds = Timer::seconds(Timer::Ticks(lastCleanKiloTicks_) << kiloTicks);
    TM_String text = "attribute: " + fullName() + "\n";
    text += TM_String("isClean: ") + (isClean_ ? "1" : "0") + "\n";
    text += tidemark::text::format("last cleaning took: secs:%d, millisecs: %d\n",
                                   static_cast<int>(seconds),
                                   static_cast<int>(seconds * 1000.0) % 1000);
    text += "dirty chain: [";
    TM_String separator;
    for (const Attribute* entry : dirtyChain()) {
        text += separator + entry->name();
        separator = ", ";
    }
    text += "]\nclean chain: [";
    Array<Attribute*> upstream;
    networkManager()->collectUpstream(this, upstream);
    separator.clear();
    for (const Attribute* entry : upstream) {
        text += separator + entry->name();
        separator = ", ";
    }
    return text + "] -> " + name() + "\n";
}

TM_String Attribute::allowedSpecializationsText() const {
    if (!rare_.get().typeDescription.empty()) return rare_.get().typeDescription;
    TM_String text;
    for (const TM_String& name : allowed_.names()) {
        if (!text.empty()) text += ", ";
        text += "\"" + name + "\"";
    }
    return text;
}

void Attribute::setNotifiesDirty(bool notify) {
    if (notify == notifiesDirty_ || isDeleted()) return;
    notifiesDirty_ = notify;
    networkManager()->dirtyListeners_ += notify ? 1 : -1;
}

// Marking in bulk relies on being told what became clean meanwhile.
void Attribute::setClean(bool clean) {
    isClean_ = clean;
    if (clean && networkManager()) networkManager()->noteCleaning();
}

void Attribute::listenToDirtied() {
    if (listens_) return;
    listens_ = true;
    ++networkManager()->dirtyListeners_;
}

// The pull.

// The pull has two forms: with monitoring off it neither reads the clock nor tells anybody.

namespace {

class CleaningFlag {
public:
    explicit CleaningFlag(bool& flag) : flag_(flag) { flag_ = true; }
    ~CleaningFlag() { flag_ = false; }
    CleaningFlag(const CleaningFlag&) = delete;
    CleaningFlag& operator=(const CleaningFlag&) = delete;

private:
    bool& flag_;
};

[[gnu::cold, gnu::noinline]] void endIfInterrupted(NetworkManager& manager, const Node* node) {
    if (manager.evaluating() && node) manager.noteFailure(node);
    manager.pollInterrupt();
}

} // namespace

void Attribute::pullDirty() {
    NetworkManager& manager = *networkManager();
    if (manager.dirtyHold_) return;
    if (manager.monitoring_) {
        cleanTimed(manager);
    } else {
        cleanPlain(manager);
    }
    if (elementCountRule_ == 1) checkElementCount();
}

void Attribute::clean() {
    NetworkManager& manager = *networkManager();
    if (manager.dirtyHold_ || isClean_) return;
    if (manager.monitoring_) {
        cleanTimed(manager);
    } else {
        cleanPlain(manager);
    }
}

void Attribute::computeNow() {
    if (isClean_) return;
    NetworkManager& manager = *networkManager();
    if (manager.monitoring_) {
        computeTimed(manager, Timer::now());
    } else {
        computePlain(manager);
    }
}

void Attribute::cleanPlain(NetworkManager& manager) {
    manager.noteCleaning();
    if (source_ && !source_->isClean_) source_->computePlain(manager);
    isClean_ = true;
}

void Attribute::computePlain(NetworkManager& manager) {
    if (tidemark::platform::stackIsLow()) [[unlikely]] {
        return tidemark::platform::runOnFreshStack([&] { computePlain(manager); });
    }
    Node* const node = parent();
    if (manager.isInterrupted()) [[unlikely]]
        endIfInterrupted(manager, node);
    manager.noteCleaning();
    if (node && node->updateEnabled_) {
        const CleaningFlag cleaning(isCleaning_);
        Node::UpdateScope scope(*node);
        node->update(this);
        scope.done();
    }
    isClean_ = true;
}

// The hold keeps what happens between its two ends from starting a walk.
void Attribute::cleanTimed(NetworkManager& manager) {
    manager.dirtyHold_ = true;
    manager.noteCleaning();
    Node* const reader = parent();
    // The reader does not pay for what it waits for.
    const bool pauses = reader && reader->nodeTimer_.isRunning();
    Timer::Ticks time = 0;
    if (pauses) {
        time = Timer::now();
        reader->nodeTimer_.stopAt(time);
        reader->lastUpdateTicks_ = reader->nodeTimer_.ticks(time);
    }
    if (isInput_ && !source_) isClean_ = true;
    if (source_) {
        manager.dirtyHold_ = false;
        if (!source_->isClean_) {
            time = source_->computeTimed(manager, pauses ? time : Timer::now());
        }
    }
    isClean_ = true;
    if (pauses) reader->nodeTimer_.resumeAt(time);
    manager.dirtyHold_ = false;
    manager.fireClean(this);
}

// `time` is the clock as the caller has just read it; the answer is the clock at the end, so that a
// chain of pulls reads it twice per node.
Timer::Ticks Attribute::computeTimed(NetworkManager& manager, Timer::Ticks time) {
    if (tidemark::platform::stackIsLow()) [[unlikely]] {
        tidemark::platform::runOnFreshStack([&] { time = computeTimed(manager, time); });
        return time;
    }
    Node* const node = parent();
    if (manager.isInterrupted()) [[unlikely]]
        endIfInterrupted(manager, node);
    manager.noteCleaning();
    const CleaningFlag cleaning(isCleaning_);
    const Timer::Ticks begin = time;
    if (node && node->updateEnabled_) time = node->updateTimed(this, time);
    isClean_ = true;
    lastCleanKiloTicks_ = static_cast<uint32_t>((time - begin) >> kiloTicks);
    accumulatedTicks_ += time - begin;
    manager.fireClean(this);
    return time;
}

void Attribute::valueChanged() {
    NetworkManager& manager = *networkManager();
    if (isPassThrough_ || manager.evaluating_) return;
    const LifeWatch self(this);
    manager.walkDirty(this, false);
    if (self.isGone()) return;
    if (Node* node = parent()) node->onValueChanged(this);
}

void Attribute::markDirty(bool force) { networkManager()->walkDirty(this, force); }

bool Attribute::checkElementCount() {
    if (elementCountRule_ != 1) return true;
    const Value* read = isInput_ || isPassThrough_ ? currentValue_ : value_;
    if (!read) return false;
    const uint32_t count = read->size();
    if (count == 1) return true;
    if (Node* node = parent()) {
        node->pushWarning(tidemark::text::format(
            "size of attribute '%s' is different than 1 (%d).%s", name().c_str(),
            static_cast<int>(count), " Extra elements will be ignored"));
    }
    return false;
}

// Shared values.

void Attribute::setValue(Value* newValue) {
    if (newValue == value_) return;
    if (newValue) newValue->retain();
    Value* const old = value_;
    value_ = currentValue_ = newValue;
    // Every reader down the connections, pass-throughs and inputs that feed inputs included.
    std::vector<Attribute*> pending{this};
    const uint32_t mark = networkManager()->nextMark();
    mark_ = mark;
    while (!pending.empty()) {
        const Attribute* step = pending.back();
        pending.pop_back();
        for (Attribute* reader : step->destinations_) {
            if (reader->mark_ == mark) continue;
            reader->mark_ = mark;
            reader->currentValue_ = step->currentValue_ ? step->currentValue_ : reader->value_;
            pending.push_back(reader);
        }
    }
    // Last, because until here readers may still have looked at it.
    if (old) old->release();
}

void Attribute::refreshCurrentValue() {
    const auto follow = [](Attribute& a) {
        Value* const offered = a.source_ ? a.source_->currentValue_ : nullptr;
        a.currentValue_ = offered ? offered : a.value_;
    };
    follow(*this);
    if (destinations_.empty()) return;
    std::vector<Attribute*> pending(destinations_.begin(), destinations_.end());
    while (!pending.empty()) {
        Attribute* reader = pending.back();
        pending.pop_back();
        Value* const before = reader->currentValue_;
        follow(*reader);
        // Nothing new for those beyond, which also ends a ring of pass-throughs.
        if (reader->currentValue_ == before) continue;
        pending.insert(pending.end(), reader->destinations_.begin(), reader->destinations_.end());
    }
}

// Connections.

void Attribute::becomeSourceOf(Attribute* destination) {
    const LifeWatch self(this);
    const LifeWatch reader(destination);
    if (destination->source_) destination->disconnectSource();
    if (self.isGone() || reader.isGone()) return;
    destination->currentValue_ = destination->value_;
    destination->source_ = this;
    networkManager()->addEdge(this, destination);
    destination->refreshCurrentValue();
    adoptContentSeenByOthers(destination);
    networkManager()->walkDirty(destination, false);
}

// A late connection from a pass-through without source gets what its other readers see.
void Attribute::adoptContentSeenByOthers(Attribute* newDestination) {
    if (!isPassThrough_ || source_ || destinations_.empty() || !newDestination->value_) return;
    Attribute* found = destinations_[0];
    const uint32_t mark = networkManager()->nextMark();
    while (found->isPassThrough_ && found->mark_ != mark && !found->destinations_.empty()) {
        found->mark_ = mark;
        found = found->destinations_[0];
    }
    if (found->isPassThrough_ || found == newDestination || !found->value_) return;
    newDestination->value_->copyFrom(found->value_);
}

// What is told on the way may delete either end: nodes drop ports that came free, hosts anything.
bool Attribute::connectTo(Attribute* destination, ErrorObject*) {
    NetworkManager& manager = *networkManager();
    const LifeWatch self(this);
    const LifeWatch reader(destination);
    destinations_.append(destination);
    if (destination->source_ != this) becomeSourceOf(destination);
    if (self.isGone() || reader.isGone()) return false;
    if (!manager.cacheDisabled()) manager.rebuildDirtyChains(this);
    const bool settled = SpecializationSolver(manager).settleConnection(this, destination);
    if (!self.isGone() && parent()) parent()->connectionChanged(this);
    if (reader.isGone()) return settled;
    if (Node* node = destination->parent()) node->connectionChanged(destination);
    if (self.isGone() || reader.isGone() || isDeleted() || !manager.monitoring()) return settled;
    if (Callbacks::_attributeConnectedCallback) {
        Callbacks::_attributeConnectedCallback(this, destination);
    }
    return settled;
}

void Attribute::disconnectSource() {
    if (!source_) return;
    NetworkManager& manager = *networkManager();
    const LifeWatch self(this);
    Attribute* const old = source_;
    manager.removeEdge(old, this);
    SpecializationSolver::noteSplit();
    source_ = nullptr;
    currentValue_ = value_;
    if (old->destinations_.contains(this)) old->removeDestination(this);
    if (self.isGone() || isDeleted()) return;
    refreshCurrentValue();
    if (manager.isTearingDown()) return;
    if (!manager.cacheDisabled()) manager.rebuildDirtyChains(this);
    updateSpecializations(nullptr);
    if (!self.isGone()) manager.walkDirty(this, false);
    if (!self.isGone() && parent()) parent()->connectionChanged(this);
    if (self.isGone() || isDeleted() || !manager.monitoring()) return;
    if (Callbacks::_attributeDisconnectedCallback) Callbacks::_attributeDisconnectedCallback(this);
}

void Attribute::removeDestination(Attribute* destination) {
    if (!destination || !destinations_.remove(destination)) return;
    NetworkManager& manager = *networkManager();
    const LifeWatch self(this);
    if (destination->source_ == this) destination->disconnectSource();
    if (self.isGone() || isDeleted() || manager.isTearingDown()) return;
    if (!manager.cacheDisabled()) manager.rebuildDirtyChains(this);
    updateSpecializations(nullptr);
    if (!self.isGone() && parent()) parent()->connectionChanged(this);
}

// Affects.

void Attribute::addAffect(Attribute* output) {
    if (!output || affects_.contains(output)) return;
    affects_.append(output);
    if (!output->affectedBy_.contains(this)) output->affectedBy_.append(this);
    NetworkManager& manager = *networkManager();
    manager.addEdge(this, output);
    if (!manager.cacheDisabled()) manager.rebuildDirtyChains(this);
}

void Attribute::removeAffect(Attribute* output) {
    if (!output || !affects_.remove(output)) return;
    output->affectedBy_.remove(this);
    NetworkManager& manager = *networkManager();
    // Chains that show the affect go on showing it until something rebuilds them.
    if (!manager.cacheDisabled()) manager.makeUpstreamStale(this);
    manager.removeEdge(this, output);
}

// Pass-throughs.

void Attribute::addAllowedPassThrough(Attribute* other) {
    if (!other) return;
    if (!allowedPassThroughs_.contains(other)) allowedPassThroughs_.append(other);
    if (!other->allowedPassThroughs_.contains(this)) other->allowedPassThroughs_.append(this);
}

void Attribute::addPassThrough(Attribute* other) {
    if (!other || !allowedPassThroughs_.contains(other)) return;
    Node* const node = parent();
    if (isOutput_ && !passThroughs_.empty()) {
        if (node) {
            node->pushError(tidemark::text::format(
                "Trying to connect attribute '%s' to '%s' which is already connected to '%s'",
                other->name().c_str(), name().c_str(), passThroughs_[0]->name().c_str()));
        }
        return;
    }
    isPassThrough_ = true;
    if (!passThroughs_.contains(other)) passThroughs_.append(other);
    if (!other->passThroughs_.contains(this)) other->addPassThrough(this);
    if (!isOutput_) return;
    other->removeAffect(this);
    if (node) node->connectInternalAttributes(other, this);
}

void Attribute::removePassThrough(Attribute* other) {
    if (!other || !passThroughs_.remove(other)) return;
    other->removePassThrough(this);
    if (passThroughs_.empty() && !isPurePassThrough()) isPassThrough_ = false;
    if (!isOutput_) return;
    disconnectSource();
    for (Attribute* destination : destinations_) destination->refreshCurrentValue();
}

// Specializations.

void Attribute::noteTypeChange() {
    if (typeState_ != TypeState::settled) return;
    typeState_ = TypeState::changed;
    ++networkManager()->changedTypes_;
}

void Attribute::setAllowedSpecializations(const SpecializationList& list) {
    noteTypeChange();
    allowed_ = specializations_ = list;
    specializationChanged(list);
}

void Attribute::setSpecializationOverride(const TM_String& name) {
    noteTypeChange();
    rare_.ref().chosenType = SpecializationList::single(name);
    applySpecializations(SpecializationList::single(name));
}

void Attribute::clearSpecializationOverride() {
    noteTypeChange();
    if (rare_.isUsed()) rare_.ref().chosenType = SpecializationList();
}

void Attribute::applySpecializations(const SpecializationList& list) {
    if (isDeleted()) return;
    NetworkManager& manager = *networkManager();
    const LifeWatch self(this);
    specializations_ = list;
    specializationChanged(specializations_);
    if (Node* node = parent()) node->attributeSpecializationChanged(this);
    if (self.isGone() || isDeleted()) return;
    if (Callbacks::_attributeSpecializationCallback && manager.monitoring()) {
        Callbacks::_attributeSpecializationCallback(this);
    }
    if (!self.isGone()) manager.walkDirty(this, false);
}

bool Attribute::updateSpecializations(ErrorObject*) {
    return SpecializationSolver(*networkManager()).settle(this);
}

void Attribute::addSpecializationLink(Attribute* other) {
    const SpecializationLink link{this, other};
    noteTypeChange();
    other->noteTypeChange();
    links_.append(link);
    if (other != this) other->links_.append(link);
}

Array<Attribute*> Attribute::dirtyChain() const {
    Array<Attribute*> chain;
    NetworkManager& manager = *networkManager();
    manager.collectChain(const_cast<Attribute&>(*this), chain);
    return chain;
}

// Teardown.

void Attribute::deleteIt() {
    if (isDeleted()) return;
    // One that no node holds is its maker's to delete.
    if (holders_ == 0) return tearDown();
    // The node may hold the only reference, which the teardown gives up on its way.
    const Retained<Attribute> self(this);
    tearDown();
}

void Attribute::leaveConnections() {
    if (source_) disconnectSource();
    const SmallList<Attribute*> readers = destinations_;
    const uint32_t count = readers.size();
    // Where nobody is told, from the end: what stays behind the removed one moves.
    const bool fromTheEnd = networkManager()->isTearingDown();
    for (uint32_t i = 0; i < count; ++i) removeDestination(readers[fromTheEnd ? count - 1 - i : i]);
}

void Attribute::leaveRelations() {
    for (Attribute* output : affects_) output->affectedBy_.remove(this);
    for (Attribute* input : affectedBy_) input->affects_.remove(this);
    affects_.clear();
    affectedBy_.clear();
    const SmallList<SpecializationLink> links = links_;
    if (!links.empty()) SpecializationSolver::noteSplit();
    for (const SpecializationLink& link : links) {
        link.first->links_.remove(link);
        link.second->links_.remove(link);
    }
    // Not `passThroughs_`: an output that refused a second input stands in that input's list alone.
    for (Attribute* other : allowedPassThroughs_) {
        other->allowedPassThroughs_.remove(this);
        if (!other->passThroughs_.remove(this)) continue;
        if (other->passThroughs_.empty() && !other->isPurePassThrough()) {
            other->isPassThrough_ = false;
        }
    }
    allowedPassThroughs_.clear();
    passThroughs_.clear();
}

void Attribute::tearDown() {
    NetworkManager* const manager = networkManager();
    if (manager && Callbacks::_attributeDeletedCallback && manager->monitoring()) {
        Callbacks::_attributeDeletedCallback(this);
    }
    if (parent()) parent()->removeAttribute(this);
    if (manager) leaveConnections();
    leaveRelations();
    if (manager) manager->dropEdgesOf(this);
    if (value_) value_->release();
    value_ = currentValue_ = nullptr;
    markDeleted();
}

PassThroughAttribute::PassThroughAttribute(NetworkManager* manager, const TM_String& name,
                                           Node* parent)
    : Attribute(manager, name, parent) {
    appendClass<"PassThroughAttribute">();
    setPassThrough(true);
}

TM_String PassThroughAttribute::allowedSpecializationsText() const {
    return isOutput() && source() ? source()->allowedSpecializationsText() : "All";
}

} // namespace weft

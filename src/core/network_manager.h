// SPDX-License-Identifier: Apache-2.0
// The network of one scene: the table of its objects, the graph of dependencies, and connections.
//
// Every attribute has a dirty chain: itself and everything reachable downstream over connections
// and affects, in depth-first order of first discovery. Chains are not stored. An edge knows when
// it was born and, as long as some chain still shows it, when it died; an attribute knows which
// topology its chain shows, nearly always today's. A walk searches the edges of that topology, and
// keeps the flat result where it is walked again before the topology changes.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

#include "core/attribute.h"
#include "core/id_table.h"

namespace tidemark::graph {
class MessageHandler;
}

namespace weft {

/// Owns nothing: objects enter and leave by their constructors and destructors. Used by one thread
/// at a time; `requestInterrupt` may be called from any. While it is shared, values that belong to
/// it may come and go on other threads.
class SLUICE_API NetworkManager {
public:
    NetworkManager();
    /// Objects that are left lose their manager and live on.
    ~NetworkManager();
    NetworkManager(const NetworkManager&) = delete;
    NetworkManager& operator=(const NetworkManager&) = delete;

    // Connections.

    /// False, with the reason in `error` (which may be null), when the connection may not be made.
    bool canConnect(Attribute* source, Attribute* destination, ErrorObject* error);
    /// Makes the connection if it may be made; a source that `destination` has already is replaced.
    bool connect(Attribute* source, Attribute* destination, ErrorObject* error);
    /// True if `target` can be reached from `from` against the flow.
    bool isUpstream(const Attribute* from, const Attribute* target);

    // Dependency graph.

    /// One more edge each time, also between a pair that has one.
    void addEdge(Attribute* from, Attribute* to);
    /// Removes one edge.
    void removeEdge(Attribute* from, Attribute* to);
    /// Replaces `list` by what depends on the attribute, itself first, in depth-first order. An
    /// attribute that never had an edge leaves `list` as it is.
    void collectDownstream(const Attribute* attribute, Array<Attribute*>& list);
    /// The same against the flow: the upstream closure.
    void collectUpstream(const Attribute* attribute, Array<Attribute*>& list);
    /// Brings the chains of the attribute and of all that lies upstream up to date.
    void rebuildDirtyChains(Attribute* attribute);
    /// Brings all chains up to date.
    void rebuildAllDirtyChains();
    /// Rises with every change of the edges.
    uint32_t topologyEpoch() const { return topologyEpoch_; }

    // Walks.

    /// Marks the attribute's chain as `Attribute::markDirty` says.
    void walkDirty(Attribute* attribute, bool force);
    /// `markDirty(true)` and `setToBeEvaluated(true)` on each attribute of `list`, in order, at the
    /// cost of one pass over what lies downstream of all of them.
    void markAllDirtyForRun(const Array<Attribute*>& list);
    /// `markDirty(true)` on each attribute of `list`, in order, at the same cost.
    void markAllDirty(const Array<Attribute*>& list);
    /// Takes `toBeEvaluated` from every attribute, if `monitoring` is on.
    void clearToBeEvaluatedFlags();

    // Objects.

    /// Null for an unknown id.
    Object* findObject(int32_t id) const;
    /// Set while workers use values of this network: the table of objects is then locked. Answers
    /// what was set before.
    bool setShared(bool shared);
    /// In rising order of id.
    const tidemark::IdTable<Object>& objects() const { return objects_; }

    // Flags.

    /// Set: nothing walks.
    bool dirtyHold() const { return dirtyHold_; }
    void setDirtyHold(bool hold) { dirtyHold_ = hold; }
    /// Set: dirty chains stay as they are while the topology changes.
    bool cacheDisabled() const { return cacheDisabled_; }
    void setCacheDisabled(bool disabled);
    /// Gates timing and callbacks.
    bool monitoring() const { return monitoring_; }
    void setMonitoring(bool monitoring) { monitoring_ = monitoring; }
    /// True while a scene runs: values that nodes write start no walks.
    bool evaluating() const { return evaluating_; }
    void setEvaluating(bool evaluating) { evaluating_ = evaluating; }
    /// Set while a whole network is thrown away: connections go without settling types or walking.
    bool isTearingDown() const { return tearingDown_; }
    void setTearingDown(bool tearingDown) { tearingDown_ = tearingDown; }

    /// Groups of connected attributes up to this size settle their types by the narrowing search
    /// that starts anew at every change; larger ones by propagation (see `SpecializationSolver`).
    uint32_t searchedGroupLimit() const { return searchedGroupLimit_; }
    void setSearchedGroupLimit(uint32_t attributes) { searchedGroupLimit_ = attributes; }

    // Interrupts.

    /// Thread-safe and lock-free: ends the run in progress, or the next one, with a cancellation.
    void requestInterrupt() { interrupted_.store(true, std::memory_order_relaxed); }
    void clearInterrupt() { interrupted_.store(false, std::memory_order_relaxed); }
    bool isInterrupted() const {
        return interrupted_.load(std::memory_order_relaxed) || (outer_ && outer_->isInterrupted());
    }
    /// From now on an interrupt of `outer`, which must outlive this network, is one of this network
    /// as well.
    void followInterruptsOf(const NetworkManager* outer) { outer_ = outer; }
    /// True for a network that works for another one, unseen by the host.
    bool isPrivate() const { return outer_ != nullptr; }
    /// Throws the cancellation when an interrupt was requested and a run is in progress. Long work
    /// inside a node calls it at least every 50 milliseconds.
    void pollInterrupt() const {
        if (isInterrupted()) raiseInterrupt();
    }

    /// Id of the innermost node whose update was left by an exception since `forgetFailure`, or 0.
    int32_t failedNodeId() const { return failedNodeId_; }
    void noteFailure(const Node* node);
    void forgetFailure() { failedNodeId_ = 0; }

    /// Where the scene's own messages go; null without a scene.
    tidemark::graph::MessageHandler* sceneMessages() const { return sceneMessages_; }
    void setSceneMessages(tidemark::graph::MessageHandler* messages) { sceneMessages_ = messages; }

    /// Chain epoch of an attribute whose chain is up to date.
    static constexpr uint32_t liveEpoch = 0xffffffffu;

private:
    friend class Object;
    friend class LifeWatch;
    friend class SurvivingList;
    friend class Attribute;
    friend class Node;
    friend class SpecializationSolver;

    static int32_t nextId();
    void enter(Object* object);
    void leave(Object* object);
    std::unique_lock<std::mutex> lockIfShared() const;

    // Traversals mark what they saw with a number of their own.
    uint32_t nextMark();
    void raiseInterrupt() const;
    void fireClean(Attribute* attribute) const;
    void runPendingDirtyHooks(Attribute* attribute);

    bool hasListeners() const { return dirtyListeners_ > 0; }
    uint32_t shownEpoch(const Attribute& attribute) const;
    void makeStale(Attribute* attribute, uint32_t epoch);
    void makeUpstreamStale(Attribute* attribute);
    void makeLive(Attribute* attribute);
    void collectChain(Attribute& attribute, Array<Attribute*>& chain);
    void dropDeadEdges();
    void dropEdgesOf(Attribute* attribute);
    bool keepsDeadEdges() const { return cacheDisabled_ || staleAttributes_ > 0; }
    // False: no attribute that is left can be clean.
    bool mayHoldClean() const { return cleaned_ != 0; }
    // A plain store, because every pull makes it.
    void noteCleaning() { cleaned_ = cleanedSinceMark | cleanedEver; }

    template <typename Visit>
    void visitDownstream(Attribute* start, uint32_t mark, uint32_t epoch, Visit visit);
    void markChain(Attribute* attribute);
    void markChainTellingListeners(Attribute* attribute);
    bool canMarkTogether() const;
    bool keepChain(Attribute* attribute);
    void forgetChain(Attribute* attribute);
    bool stepUpstream(uint32_t mine, uint32_t others);
    bool stepDownstream(uint32_t mine, uint32_t others);

    tidemark::IdTable<Object> objects_;
    bool dirtyHold_ = false;
    bool cacheDisabled_ = false;
    bool monitoring_ = true;
    bool evaluating_ = false;
    bool tearingDown_ = false;
    bool shared_ = false;
    std::atomic<bool> interrupted_{false};
    const NetworkManager* outer_ = nullptr;
    uint32_t topologyEpoch_ = 1;
    uint32_t frozenEpoch_ = 0; // topology when `cacheDisabled` was set
    uint32_t mark_ = 0;
    uint32_t dirtyListeners_ = 0;
    uint32_t staleAttributes_ = 0;
    uint32_t changedTypes_ = 0; // attributes whose declaration changed since their group settled
    std::atomic<uint64_t> removals_{0};            // objects that left so far
    static constexpr uint8_t cleanedEver = 1;      // since there was no attribute at all
    static constexpr uint8_t cleanedSinceMark = 2; // since `markAllDirty` last looked
    uint8_t cleaned_ = 0;                          // whether an attribute became clean
    uint32_t attributes_ = 0;                      // that are not torn down
    uint32_t searchedGroupLimit_ = 64;
    int32_t failedNodeId_ = 0;
    uint64_t keptChainBytes_ = 0;
    std::vector<Attribute*> stack_;    // of traversals; each uses the part above where it began
    std::vector<Attribute*> upstream_; // frontiers of `isUpstream`
    std::vector<Attribute*> downstream_;
    std::vector<Attribute*> deadEdgeOwners_;
    tidemark::graph::MessageHandler* sceneMessages_ = nullptr;

    mutable std::mutex objectsMutex_; // of the table, while it is shared

    static std::atomic<int32_t> _nextAvailableId;
};

/// Notices when an object is deleted by what is called meanwhile. The manager must outlive it.
class LifeWatch {
public:
    explicit LifeWatch(const Object* object)
        : manager_(*object->networkManager()), id_(object->id()), removals_(manager_.removals_) {}
    bool isGone() const { return manager_.removals_ != removals_ && !manager_.findObject(id_); }

private:
    const NetworkManager& manager_;
    const int32_t id_;
    const uint64_t removals_;
};

/// The same for the attributes of a list, which stays as it is meanwhile. Without a manager nothing
/// can be noticed.
class SurvivingList {
public:
    SurvivingList(const NetworkManager* manager, const Array<Attribute*>& list);
    bool holds(uint32_t index) const;

private:
    const NetworkManager* manager_;
    const Array<Attribute*>& list_;
    Array<int32_t> ids_;
    uint64_t removals_ = 0;
};

} // namespace weft

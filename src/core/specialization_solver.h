// SPDX-License-Identifier: Apache-2.0
// Settles the types of connected attributes.
//
// Attributes that are linked or connected form a group. Two methods narrow what each may be:
//
// - The search, for groups up to `NetworkManager::searchedGroupLimit`. It begins anew from what
// every
//   attribute is allowed to be, and pushes narrower lists along connections, one found at a time,
//   at most 100 times. Its result can depend on where it begins.
// - The propagation, for larger groups, where the search would cost the square of the group and run
//   into its bound. It narrows along connections and links until nothing changes, and a new
//   connection begins from what is settled already, so that it touches only what it changes. It
//   begins anew where a declaration changed since the group was settled.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "core/attribute.h"

namespace weft {

class NetworkManager;

/// Made for one change of one network and used on its thread.
class SpecializationSolver {
public:
    explicit SpecializationSolver(NetworkManager& manager) : manager_(manager) {}

    /// Settles the whole group of `start` from the allowed lists and applies the result to every
    /// attribute of it. False when the search or propagation was cut off.
    bool settle(Attribute* start);

    /// Settles the group after `source` was connected to `destination`.
    bool settleConnection(Attribute* source, Attribute* destination);

    /// To be called when a connection or a link goes: groups that were large may be small now.
    static void noteSplit();

private:
    struct Entry {
        Attribute* attribute;
        int32_t id;
        SpecializationList list;
        bool isQueued = false;
    };

    bool gather(Attribute* start, uint32_t limit);
    bool isSmallGroup(Attribute* start);
    void rememberLarge(Attribute* source, Attribute* destination);
    void seedFromAllowed();
    uint32_t indexOf(Attribute* attribute);
    SpecializationList& listOf(Attribute* attribute) { return entries_[indexOf(attribute)].list; }

    bool search(Attribute* start);
    void narrowLinks();
    Attribute* findNarrower(Attribute* attribute, Attribute* previous, bool viaLink);
    bool isCandidate(Attribute* attribute, Attribute* previous, bool viaLink);
    void push(Attribute* attribute, SpecializationList list);

    bool settleByPropagation(Attribute* start);
    bool isGroupChanged(Attribute* start);
    void queueFresh(Attribute* start);
    bool propagate();
    void narrowPair(Attribute* a, Attribute* b);
    void narrowLink(const SpecializationLink& link);
    void store(uint32_t index, SpecializationList list);

    void markSettled();
    void applyAll();
    void applyChanges();
    void applyConnection(Attribute* start);
    bool isHeard() const;

    NetworkManager& manager_;
    std::vector<Entry> entries_;
    std::vector<uint32_t> queue_;
    std::vector<bool> visited_;
    std::unordered_map<Attribute*, uint32_t> indices_; // of entries that were not gathered
    bool isGathered_ = false;
};

} // namespace weft

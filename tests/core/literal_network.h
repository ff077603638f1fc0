// SPDX-License-Identifier: Apache-2.0
// A model of connections, affects and dirty walks that takes every step literally: chains are
// arrays that are rebuilt when told. Slow, and compared with the real network.
#pragma once

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

/// Attributes without types and without code, by id. `log` gets a line for every callback, with the
/// flags of all attributes at that moment.
class LiteralNetwork {
public:
    void add(int id, int node, bool isOutput, bool notifies) {
        Entry entry;
        entry.node = node;
        entry.isOutput = isOutput;
        entry.notifies = notifies;
        entry.chain = {id};
        entries_[id] = entry;
    }

    bool dirtyHold = false;
    bool cacheDisabled = false;
    std::vector<std::string> log;

    std::string flags() const {
        std::string text;
        for (const auto& [id, entry] : entries_) text += entry.isClean ? 'c' : 'd';
        return text;
    }
    const std::vector<int>& chainOf(int id) { return entries_[id].chain; }

    // Connections.

    bool connect(int a, int b) {
        if (a == b || entries_[b].source == a || entries_[b].isOutput) return false;
        if (isUpstream(a, b)) return false;
        entries_[a].destinations.push_back(b);
        if (entries_[b].source != a) {
            if (entries_[b].source) disconnectSource(b);
            entries_[b].source = a;
            addEdge(a, b);
            walk(b, false);
        }
        if (!cacheDisabled) rebuild(a);
        settle(a);
        return true;
    }

    void disconnectSource(int a) {
        const int old = entries_[a].source;
        if (!old) return;
        removeEdge(old, a);
        entries_[a].source = 0;
        if (has(entries_[old].destinations, a)) removeDestination(old, a);
        if (!cacheDisabled) rebuild(a);
        settle(a);
        walk(a, false);
    }

    void removeDestination(int s, int d) {
        if (!has(entries_[s].destinations, d)) return;
        removeOne(entries_[s].destinations, d);
        if (entries_[d].source == s) disconnectSource(d);
        if (!cacheDisabled) rebuild(s);
        settle(s);
    }

    bool isUpstream(int from, int target) {
        std::set<int> seen{from};
        std::vector<int> pending{from};
        while (!pending.empty()) {
            const int step = pending.back();
            pending.pop_back();
            if (step == target) return true;
            std::vector<int> next;
            if (entries_[step].source) next.push_back(entries_[step].source);
            if (entries_[step].isOutput) {
                const auto& by = entries_[step].affectedBy;
                next.insert(next.end(), by.begin(), by.end());
            }
            for (const int other : next) {
                if (seen.insert(other).second) pending.push_back(other);
            }
        }
        return false;
    }

    // Affects.

    void setAffect(int a, int b) {
        if (entries_[a].node != entries_[b].node || !entries_[b].isOutput) return;
        if (has(entries_[b].affectedBy, a) || isUpstream(a, b)) return;
        entries_[a].affects.push_back(b);
        entries_[b].affectedBy.push_back(a);
        addEdge(a, b);
        if (!cacheDisabled) rebuild(a);
    }

    void removeAffect(int a, int b) {
        if (!has(entries_[a].affects, b)) return;
        removeOne(entries_[a].affects, b);
        removeOne(entries_[b].affectedBy, a);
        removeEdge(a, b);
    }

    // Chains and walks.

    void rebuild(int a) {
        if (!entries_[a].hasVertex) return;
        std::vector<int> upstream;
        collect(a, upstream, &Entry::predecessors);
        for (const int above : upstream) {
            entries_[above].chain.clear();
            collect(above, entries_[above].chain, &Entry::successors);
        }
    }
    void rebuildAll() {
        for (auto& [id, entry] : entries_) {
            entry.chain.clear();
            collect(id, entry.chain, &Entry::successors);
        }
    }

    void walk(int a, bool force) {
        if (!dirtyHold) {
            if (entries_[a].isClean || force) {
                for (const int e : entries_[a].chain) {
                    entries_[e].isClean = false;
                    if (entries_[e].notifies) note("dirty ", e);
                }
            }
            note("clean ", a);
        }
        note("clean ", a);
    }

    void pull(int a) {
        if (dirtyHold || entries_[a].isClean) return;
        if (const int source = entries_[a].source; source && !entries_[source].isClean) {
            entries_[source].isClean = true; // its node does nothing
            note("clean ", source);
        }
        entries_[a].isClean = true;
        note("clean ", a);
    }

private:
    struct Entry {
        int node = 0;
        bool isOutput = false;
        bool notifies = false;
        bool isClean = false;
        bool hasVertex = false;
        int source = 0;
        std::vector<int> destinations, affects, affectedBy, successors, predecessors, chain;
    };

    static bool has(const std::vector<int>& list, int id) {
        return std::find(list.begin(), list.end(), id) != list.end();
    }
    static void removeOne(std::vector<int>& list, int id) {
        list.erase(std::find(list.begin(), list.end(), id));
    }
    void addEdge(int a, int b) {
        entries_[a].successors.push_back(b);
        entries_[b].predecessors.push_back(a);
        entries_[a].hasVertex = entries_[b].hasVertex = true;
    }
    void removeEdge(int a, int b) {
        removeOne(entries_[a].successors, b);
        removeOne(entries_[b].predecessors, a);
    }
    void collect(int id, std::vector<int>& list, std::vector<int> Entry::*edges) {
        if (has(list, id)) return;
        list.push_back(id);
        for (const int next : entries_[id].*edges) collect(next, list, edges);
    }
    // Without types nothing narrows, and every attribute of the group is applied again.
    void settle(int start) {
        std::set<int> group{start};
        std::vector<int> pending{start};
        while (!pending.empty()) {
            const Entry& entry = entries_[pending.back()];
            pending.pop_back();
            std::vector<int> next = entry.destinations;
            if (entry.source) next.push_back(entry.source);
            for (const int other : next) {
                if (group.insert(other).second) pending.push_back(other);
            }
        }
        for (const int id : group) walk(id, false);
    }
    void note(const char* word, int id) {
        log.push_back(word + std::to_string(id) + " " + flags());
    }

    std::map<int, Entry> entries_;
};

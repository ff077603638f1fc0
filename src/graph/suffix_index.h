// SPDX-License-Identifier: Apache-2.0
// Which suffix makes a node's name unique in its scene, without a look at all names each time.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>

#include "core/id_table.h"
#include "core/text.h"
#include "graph/base/graph_node_base.h"

namespace tidemark::sluice::graph {

/// Knows the names of all nodes of a scene as long as it is told of every change.
class SLUICE_API SuffixIndex {
public:
    using Nodes = IdTable<tidemark::graph::GraphNodeBase>;

    explicit SuffixIndex(const Nodes& nodes);

    void insert(const TM_String& name);
    void erase(const TM_String& name);
    /// Some node bears the name, letter case ignored.
    bool has(const TM_String& name) const;
    /// One more than the highest number behind `base` and one character in the names of `nodes`; 1
    /// at least.
    int64_t nextNumber(const TM_String& base, const Nodes& nodes);

private:
    template <typename Visit>
    void eachKnownBaseOf(const TM_String& name, Visit visit);

    std::unordered_map<TM_String, uint32_t> countByLowerName_;
    std::unordered_map<TM_String, int64_t> nextByBase_; // of bases that were asked for
};

} // namespace tidemark::sluice::graph

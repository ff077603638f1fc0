// SPDX-License-Identifier: Apache-2.0
// What differs between two graphs. Nodes are the same node when they have the same name in the same
// compound; what belongs to a node that only one graph has is told with the node.
#pragma once

#include <string>
#include <vector>

#include "tool/json.h"
#include "tool/session.h"

namespace tidemark::tool {

/// One thing that is not the same in both graphs. A side that does not have it holds null.
struct Difference {
    /// "node", "type", "pin", "value", "internal connection", "connection", "order", "layout" or
    /// "note".
    const char* kind;
    std::string name; ///< what differs: a node, a pin or a connection, with full names
    std::string what; ///< of a layout: which of its data; else empty
    Json a = nullptr;
    Json b = nullptr;

    /// "removed" when only the first graph has it, "added" when only the second, else "changed".
    const char* change() const;
};

/// What differs from `a` to `b`, both read and not run: nodes and what belongs to them in the order
/// of the tree, then connections, then, with `withLayout`, the layouts. The order of connections
/// and of layout data is not compared.
std::vector<Difference> compareGraphs(const Graph& a, const Graph& b, bool withLayout);

/// As one line: "- node root.Sum (Add)", "~ value root.A.in: Real [2.5] -> Real [3.0]".
std::string differenceText(const Difference& difference);

/// {"kind", "change", "name", "what", "a", "b"}, without what is empty or null.
Json differenceJson(const Difference& difference);

} // namespace tidemark::tool

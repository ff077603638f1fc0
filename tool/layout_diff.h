// SPDX-License-Identifier: Apache-2.0
// The part of a comparison that only views see.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tool/graph_diff.h"

namespace tidemark::tool {

/// Appends what differs between two layouts. Data of nodes for which `isOfBoth` is false is left
/// out: it came or went with the node.
void compareLayouts(const tidemark::graph::GraphLayout& a, const tidemark::graph::GraphLayout& b,
                    const std::function<bool(const std::string&)>& isOfBoth,
                    std::vector<Difference>& found);

} // namespace tidemark::tool

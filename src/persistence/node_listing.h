// SPDX-License-Identifier: Apache-2.0
// What a graph file says about its nodes, before anything is made of it.
#pragma once

#include "core/array.h"
#include "core/export.h"
#include "core/text.h"

namespace tidemark::sluice::graph {

/// A node as the file gives it.
struct ListedNode {
    TM_String fullName;
    TM_String type; ///< as written, also when it is an old or an unknown one
};

/// All nodes of the file but its root, each before its own children. Reports nothing; empty when
/// the file can not be read.
SLUICE_API Array<ListedNode> listNodesOfFile(const TM_String& path);

} // namespace tidemark::sluice::graph

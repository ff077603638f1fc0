// SPDX-License-Identifier: Apache-2.0
// What the nodes over curves and keys share.
#pragma once

#include "core/bit_array.h"
#include "core/node.h"
#include "nodes/values/curves/curve_attributes.h"
#include "nodes/values/unfinished_output.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

/// True when the pin is fed by an attribute that has a value of its own, however many pass-through
/// attributes lie between.
bool hasRealSource(const weft::Attribute& pin);

/// True for the outputs that a node of many outputs writes: those with a reader, and the one asked
/// for.
inline bool isWritten(const weft::Attribute& output, const weft::Attribute* asked) {
    return &output == asked || !output.destinations().empty();
}

/// Reports "Input is null at position %d" on the node.
void reportNullElement(weft::Node& node, uint32_t position);

} // namespace tidemark::sluice::graph

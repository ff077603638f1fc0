// SPDX-License-Identifier: Apache-2.0
// What loop nodes have in common: their place in the graph, and which part of it they repeat.
#pragma once

#include <functional>

#include "core/node.h"

namespace weft {

/// Throws with `text` when the iterator stands at root level.
void checkIteratorPlace(Node& iterator, const char* text);

/// Throws when the iterator is at work already: then an input of its compound waits for an output
/// of the same compound, which would go on for ever.
void checkNotIterating(Node& iterator);

/// Makes every input of the compound clean, so that what lies before it is computed once and not
/// once per iteration.
void pullInputs(const Node& compound);

/// True for `ancestor` itself and for every node inside it.
bool liesIn(const Node& node, const Node* ancestor);

/// True for a node that belongs to an iterator deeper inside: one that stands in a compound, other
/// than `compound`, with an iterator of its own.
bool isIteratedDeeper(const Node& node, const Node& compound);

/// Every attribute upstream of the outputs of `compound` for which `isKept(attribute, output)`,
/// each once, in the order first seen.
Array<Attribute*>
collectBody(const Node& compound,
            const std::function<bool(const Attribute& attribute, const Attribute& output)>& isKept);

} // namespace weft

// SPDX-License-Identifier: Apache-2.0
// Sources and messages of the nodes over curves and keys.
#include "nodes/values/curves/curve_tools.h"

namespace tidemark::sluice::graph {

bool hasRealSource(const weft::Attribute& pin) {
    const weft::Attribute* source = pin.source();
    while (source && source->isPassThrough()) source = source->source();
    return source != nullptr;
}

void reportNullElement(weft::Node& node, uint32_t position) {
    node.pushError(text::format("Input is null at position %d", static_cast<int>(position)));
}

} // namespace tidemark::sluice::graph

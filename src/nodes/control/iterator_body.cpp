// SPDX-License-Identifier: Apache-2.0
// The place of loop nodes and what they repeat.
#include "nodes/control/iterator_body.h"

#include <unordered_set>

#include "nodes/control/compound.h"

namespace weft {

void checkIteratorPlace(Node& iterator, const char* text) {
    const Node* compound = iterator.parent();
    if (!compound || !compound->parent()) iterator.pushCritical(text);
}

void checkNotIterating(Node& iterator) {
    if (!iterator.isUpdating()) return;
    iterator.pushCritical("an input of the compound depends on one of its outputs");
}

void pullInputs(const Node& compound) {
    Array<Attribute*> inputs;
    compound.inputAttributes(inputs);
    const SurvivingList surviving(compound.networkManager(), inputs);
    for (uint32_t i = 0; i < inputs.size(); ++i) {
        if (surviving.holds(i)) inputs[i]->pull();
    }
}

bool liesIn(const Node& node, const Node* ancestor) {
    const Node* step = &node;
    while (step && step != ancestor) step = step->parent();
    return step != nullptr;
}

bool isIteratedDeeper(const Node& node, const Node& compound) {
    Node* const around = node.parent();
    if (!around || around == &compound || !around->parent()) return false;
    auto* const inner = dynamic_cast<Compound*>(around);
    return inner && inner->hasIterator(nullptr);
}

Array<Attribute*> collectBody(
    const Node& compound,
    const std::function<bool(const Attribute& attribute, const Attribute& output)>& isKept) {
    Array<Attribute*> body;
    Array<Attribute*> closure;
    std::unordered_set<const Attribute*> known;
    for (const Attribute* output : compound.refOutputAttributes()) {
        closure.clear(); // an output without any edge leaves the list as it is
        compound.networkManager()->collectUpstream(output, closure);
        for (Attribute* upstream : closure) {
            if (isKept(*upstream, *output) && known.insert(upstream).second) body.append(upstream);
        }
    }
    return body;
}

} // namespace weft

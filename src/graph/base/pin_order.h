// SPDX-License-Identifier: Apache-2.0
// Putting pins in the order of a list of names.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/array.h"
#include "core/text.h"

namespace tidemark::graph {

/// Reorders those pins of `pins` for which `takesPart(pin)` holds: first the ones named in `names`,
/// in that order, then the others as they stood. The rest keep their places in the list. Names that
/// no pin has are skipped; of pins with one name each mention takes the next.
template <typename P, typename Condition>
void orderPinsByNames(ArrayOfPtr<P>& pins, const Array<TM_String>& names, Condition takesPart) {
    std::vector<uint32_t> places;
    std::unordered_multimap<std::string_view, std::size_t> byName;
    for (uint32_t i = 0; i < pins.size(); ++i) {
        if (takesPart(pins[i])) places.push_back(i);
    }
    // Backwards, because equal keys are found last entered first.
    for (std::size_t k = places.size(); k-- > 0;) byName.emplace(pins[places[k]]->getName(), k);

    std::vector<P*> ordered;
    std::vector<bool> taken(places.size());
    for (const TM_String& name : names) {
        auto [first, last] = byName.equal_range(name);
        if (first == last) continue;
        auto earliest = first;
        for (auto it = first; it != last; ++it) {
            if (it->second < earliest->second) earliest = it;
        }
        ordered.push_back(pins[places[earliest->second]]);
        taken[earliest->second] = true;
        byName.erase(earliest);
    }
    for (std::size_t k = 0; k < places.size(); ++k) {
        if (!taken[k]) ordered.push_back(pins[places[k]]);
    }
    for (std::size_t k = 0; k < places.size(); ++k) pins[places[k]] = ordered[k];
}

template <typename P>
void orderPinsByNames(ArrayOfPtr<P>& pins, const Array<TM_String>& names) {
    orderPinsByNames(pins, names, [](const P*) { return true; });
}

} // namespace tidemark::graph

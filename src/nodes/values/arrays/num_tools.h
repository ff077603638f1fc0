// SPDX-License-Identifier: Apache-2.0
// What the nodes over numeric arrays share: declaring their pins, choosing by type, making
// elements.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <type_traits>

#include "core/node.h"
#include "core/numeric.h"
#include "nodes/values/components.h"
#include "nodes/values/element_map.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

/// True when `T` is one of `Others`: for choosing the types that a node has a routine for.
template <typename T, typename... Others>
constexpr bool isOneOf = (std::is_same_v<T, Others> || ...);

/// Narrows a pin to `types` and lets it show `number` (see `setDefault`).
inline void declareNumber(weft::NumericAttribute& pin, const weft::SpecializationList& types,
                          double number) {
    pin.setAllowedSpecializations(types);
    setDefault(pin, number);
}

/// Each of these pins takes exactly one element.
inline void takeOneElement(std::initializer_list<weft::Attribute*> pins) {
    for (weft::Attribute* pin : pins) pin->setElementCountRule(1);
}

/// Makes the array of `T` in `target` `count` elements long and sets each, in index order, to what
/// `elementAt(index)` answers; then the size of `target`. What `elementAt` changes it refers to:
/// the loop works with copies of it. Throws `std::bad_alloc` for what memory or the limits do not
/// hold. An interrupt leaves no elements.
template <typename T, typename ElementAt>
void generateElements(const weft::Node& node, weft::Numeric& target, uint32_t count,
                      ElementAt elementAt) {
    Array<T>& array = target.refValues<T>();
    element_map::sizeForWriting(array, count);
    T* const out = array.data();
    const auto fill = [&](uint32_t first, uint32_t end) {
        ElementAt next(elementAt); // near at hand, whatever is written
        // In runs of a fixed length, which the compiler turns into vector instructions.
        constexpr uint32_t run = 16;
        uint32_t i = first;
        for (; end - i >= run; i += run) {
            for (uint32_t k = 0; k < run; ++k) out[i + k] = next(i + k);
        }
        for (; i < end; ++i) out[i] = next(i);
    };
    const UnfinishedOutput unfinished(&target, {});
    inPieces(node, count, fill);
    target.setSize(count);
}

} // namespace tidemark::sluice::graph

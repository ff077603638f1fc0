// SPDX-License-Identifier: Apache-2.0
// Places for things that are wired to each other: from left to right along the wires, in layers.
#pragma once

#include <cstddef>
#include <vector>

namespace tidemark::tool {

/// A thing to place. Its size is given; `x`, `y` (left, top) are the answer, from 0, 0 on.
struct LayeredItem {
    double width = 0, height = 0;
    double x = 0, y = 0;
};

/// A level piece of a wire where it passes between the items of a layer.
struct Stretch {
    double x = 0, y = 0, width = 0;
};

/// A wire between two items. It leaves and arrives at the given heights below their tops.
struct LayeredWire {
    std::size_t source = 0, target = 0;
    double sourceHeight = 0, targetHeight = 0;
    /// The answer: from left to right, where the wire passes other layers. Wires that lead back or
    /// on to the next layer have none, and in very large networks no wire has any.
    std::vector<Stretch> stretches{};
};

/// Places all items. Rings are fine: one of their wires leads back. Items without a wire stand in
/// rows below the others. Time grows with items and wires, times the logarithm of a layer's size.
void placeInLayers(std::vector<LayeredItem>& items, std::vector<LayeredWire>& wires);

} // namespace tidemark::tool

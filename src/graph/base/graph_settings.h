// SPDX-License-Identifier: Apache-2.0
// What an editor of graphs lets its user choose.
#pragma once

#include "core/types.h"

namespace tidemark::graph {

/// Plain record; the values given here are the ones an editor starts with. Lengths are in pixels at
/// a zoom of 1.
struct GraphSettings {
    Color4<float> gridColor{0.6f, 0.6f, 0.6f, 1.0f};
    float zoomFactor = 1.0f;
    bool showGrid = true;
    bool snapToGrid = false;
    Tuple2<float, float> inputPinSize{13.0f, 15.0f};
    Tuple2<float, float> outputPinSize{13.0f, 15.0f};
    float horizontalMargin = 5.0f;
    float verticalMargin = 5.0f;
    bool antialiasing = true;
    bool horizontalInputs = false;
    bool horizontalOutputs = false;
    bool bezierConnections = false; ///< taken from the host's preferences
};

} // namespace tidemark::graph

// SPDX-License-Identifier: Apache-2.0
// Curves from JSON: one curve, or a list of them.
//
//     {"keys": [{"x": 0, "y": 0, "type": "linear"},
//               {"x": 1, "y": 10, "type": "tcb", "t": 0.5, "c": 0, "b": 0},
//               {"x": 2, "y": 0, "type": "bezier", "incoming": -4, "outgoing": 0}],
//      "pre behaviour": "constant", "post behaviour": "loop",
//      "expression": "sin(t)", "expression plus spline": true, "frame rate": 25}
//
// The fields are named like the pins of the nodes that read and write them, and have their
// meanings. All may be left out but "x" and "y" of a key; a key is then as a fresh one, of type
// "tcb", a curve without keys and constant before and after them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/curve.h"
#include "tool/json.h"

namespace tidemark::tool {

/// Curves that live as long as this list.
using Curves = std::vector<std::unique_ptr<ANIFloatBase>>;

/// Appends the curve that `json` tells, or those of a list. Throws `UsageError`, which names
/// `source` and the field, when it tells none; the list is as before then.
void addCurves(const Json& json, const std::string& source, Curves& curves);

/// The same from a file.
void addCurvesOfFile(const std::string& file, Curves& curves);

} // namespace tidemark::tool

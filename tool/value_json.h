// SPDX-License-Identifier: Apache-2.0
// Values of pins as JSON: a list with one entry per element, and back.
//
//     Integer, Integer64, Real   numbers            Bit                          booleans
//     Vector3                    [x, y, z]          String, FilePath, Folder     strings
//     Color4                     [r, g, b, a]       list pins                    the label
//     Quaternion                 [x, y, z, w]       host objects                 the name or null
//     Matrix4                    16 numbers
//     Condition                  {"condition": "less than", "constant": true, "value": [2.5]}
//     Curve                      {"keys": 2, "expression": ""}, null where there is none
//     Key                        {"type": "tcb", "x": 0, "y": 1}, likewise
#pragma once

#include <string>

#include "tool/curve_file.h"
#include "tool/json.h"

namespace tidemark::sluice::graph {
class Pin;
}
namespace weft {
class Numeric;
}

namespace tidemark::tool {

/// The shortest number that reads back as the same float; "inf", "-inf" or "nan".
Json floatJson(float number);

/// What the pin holds: always a list, empty without a value or a type. Floats as of `floatJson`.
Json valueJson(const sluice::graph::Pin& pin);

/// The elements of the selected type, as `valueJson` lists them.
Json numericJson(const weft::Numeric& numeric);

/// {"pin", "type", "size", "value"}; `name` is the full name to show.
Json pinJson(const sluice::graph::Pin& pin, const std::string& name);

/// Stores `value` in the pin as a user gave it: a list sets an array, anything else one element.
/// `type` is the specialization to choose first, or empty; a pin that may still be of several types
/// then takes the first that can hold the value. Throws `UsageError`, which names the pin, when the
/// pin holds no such values.
///
/// A curve is "@FILE", which may hold several, an object as such a file has, or null; `curves`
/// keeps what is made.
void setPinValue(sluice::graph::Pin& pin, const std::string& type, const Json& value,
                 Curves& curves);

/// `text` as JSON when it is JSON, else as a JSON string.
Json jsonOrText(const std::string& text);

} // namespace tidemark::tool

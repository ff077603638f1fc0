// SPDX-License-Identifier: Apache-2.0
// The JSON documents of the program: keys in the order written, two ways to print them.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace tidemark::tool {

using Json = nlohmann::ordered_json;

/// On one line, a blank after commas and colons; bytes that are no UTF-8 become replacement
/// characters.
std::string dumped(const Json& json);

/// A document for stdout: two blanks per level, lists of plain values and small records on one
/// line, a newline at the end.
std::string document(const Json& json);

} // namespace tidemark::tool

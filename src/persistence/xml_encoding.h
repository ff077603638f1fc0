// SPDX-License-Identifier: Apache-2.0
// Whether bytes are text that a graph file may hold: UTF-8 without NUL bytes.
#pragma once

#include <cstddef>
#include <string_view>

#include "core/types.h"
#include "persistence/packed_xml.h"

namespace tidemark::sluice::graph {

/// True for UTF-8 without overlong forms and surrogates.
bool isUtf8(std::string_view bytes);

/// The first thing in `bytes` that speaks against UTF-8 text: a byte order mark or a declaration of
/// another encoding, a NUL byte, or an invalid sequence.
Optional<XmlProblem> findEncodingProblem(std::string_view bytes);

/// Length of the UTF-8 byte order mark that `bytes` begin with; 0 when there is none.
std::size_t byteOrderMarkLength(std::string_view bytes);

/// 1 plus the line breaks before `offset`.
long lineAt(std::string_view bytes, std::size_t offset);

} // namespace tidemark::sluice::graph

// SPDX-License-Identifier: Apache-2.0
// Texts and colours for pictures: whatever bytes a graph holds, the files stay well-formed.
#pragma once

#include <string>

#include "core/text.h"
#include "core/types.h"

namespace tidemark::tool {

/// Text for an XML element or a double-quoted attribute. Bytes and characters that XML cannot hold
/// become question marks.
std::string escaped(const std::string& text);

/// At most `most` bytes, with "..." behind what was cut; never half a character.
std::string cut(const std::string& text, std::size_t most);

/// "#rrggbb"
std::string hex(const Color4<float>& color);

/// Whether white text reads better on it than black.
bool isDark(const Color4<float>& color);

} // namespace tidemark::tool

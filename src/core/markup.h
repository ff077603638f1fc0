// SPDX-License-Identifier: Apache-2.0
// Texts for pages and pictures: whatever bytes a graph holds, the files stay well-formed.
#pragma once

#include <cstddef>
#include <string_view>

#include "core/export.h"
#include "core/text.h"

namespace tidemark::text {

/// Text for an element or a double-quoted attribute of XML or HTML. Bytes and characters that XML
/// cannot hold become question marks.
SLUICE_API TM_String escapedMarkup(std::string_view text);

/// At most `most` bytes, with "..." behind what was cut; never half a character of UTF-8.
SLUICE_API TM_String cutText(std::string_view text, std::size_t most);

} // namespace tidemark::text

// SPDX-License-Identifier: Apache-2.0
// Texts that a whole graph shares: a million nodes of one type name that type once.
#pragma once

#include "core/export.h"
#include "core/text.h"

namespace tidemark::graph {

/// The one copy of `text`, valid as long as the process. For texts of which there are few, such as
/// the names of node types and categories. May be called from any thread.
SLUICE_API const TM_String* internedText(const TM_String& text);

} // namespace tidemark::graph

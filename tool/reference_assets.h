// SPDX-License-Identifier: Apache-2.0
// What the pages of the node reference share: their look, and the search of the start page.
#pragma once

namespace tidemark::tool {

extern const char* const referenceStyle;
extern const char* const referenceScript;

} // namespace tidemark::tool

// SPDX-License-Identifier: Apache-2.0
// Reading and writing whole scenes, what the scene's and the parsing helper's operations share.
#pragma once

#include "graph/graph_scene.h"

namespace tidemark::sluice::graph {

/// Reads a document into the scene and, when `layout` is not null, its layout. False, with a report
/// to the host, when nothing could be read; also when the reading was ended, by the limit on nodes
/// or by an interrupt.
bool readScene(bool isFile, const TM_String& pathOrText, SL_GraphScene& scene, GraphLayout* layout);

/// Writes the scene to a file or to `out`, with the layout when it is not null. False, with a
/// report to the host, when that failed; a file that was there before is then untouched.
bool writeScene(bool toFile, const TM_String& path, const SL_GraphScene& scene,
                const GraphLayout* layout, TM_String& out);

/// The name as it is seen from inside the node `above`, whose own name becomes "root":
/// "root.C.Add_01" is "root.Add_01" from inside "root.C".
TM_String relativeName(const TM_String& fullName, const TM_String& above);

} // namespace tidemark::sluice::graph

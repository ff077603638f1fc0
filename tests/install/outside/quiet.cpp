// SPDX-License-Identifier: Apache-2.0
// Links the library and does nothing with it: what appears on its outputs is the library's doing.
#include "core/limits.h"
#include "graph/graph_scene.h"

int main() { return tidemark::limits::current().maxNodes == 0 ? 0 : 1; }

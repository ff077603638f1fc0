// SPDX-License-Identifier: Apache-2.0
// Pictures of graphs as text.
#pragma once

#include <string>

#include "tool/picture.h"

namespace tidemark::tool {

/// A vector picture that stands by itself: no script, nothing from elsewhere, light and dark.
/// Names, types, values and messages show when the pointer rests on something. Any name is safe.
std::string svgOf(const Picture& picture, const sluice::graph::SL_GraphScene& scene);

/// For programs of Graphviz: a record per node, a cluster per compound.
std::string dotOf(const sluice::graph::SL_GraphScene& scene);

} // namespace tidemark::tool

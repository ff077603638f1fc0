// SPDX-License-Identifier: Apache-2.0
// Pins by their full names, as users name them on the command line.
#pragma once

#include <string>
#include <vector>

#include "core/array.h"
#include "core/text.h"
#include "tool/curve_file.h"

namespace tidemark::sluice::graph {
class NodeBase;
class Pin;
class SL_GraphScene;
} // namespace tidemark::sluice::graph

namespace tidemark::tool {

/// The pin of that full name; throws `UsageError`, which names the nearest one, when there is none.
sluice::graph::Pin& findPin(const sluice::graph::SL_GraphScene& scene, const std::string& name);

/// All nodes but the root, each before its own children, in the order of the tree.
std::vector<sluice::graph::NodeBase*> nodesInTreeOrder(const sluice::graph::SL_GraphScene& scene);

/// Does what `--set` was given, "PIN=VALUE" or "PIN:TYPE=VALUE". Curves that it makes join
/// `curves`, which outlives the scene.
void applySetting(const sluice::graph::SL_GraphScene& scene, const std::string& setting,
                  Curves& curves);

/// Sets the pins of the JSON object in `file`.
void applySettingFile(const sluice::graph::SL_GraphScene& scene, const std::string& file,
                      Curves& curves);

} // namespace tidemark::tool

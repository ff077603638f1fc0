// SPDX-License-Identifier: Apache-2.0
// Node types as JSON, with what one fresh node of the type tells about its pins.
#pragma once

#include <string>

#include "graph/graph_scene.h"
#include "graph/node_factory.h"
#include "tool/json.h"

namespace tidemark::tool {

/// Makes one node of each type it is asked for in a scene of its own.
class TypeExplorer {
public:
    /// {"type", "category", "allowedCategories", "description", "dynamicPins", "inputs", "outputs"}
    Json describe(sluice::graph::NodeFactory& factory);
    /// The type's page of the manual; `wiki`: in the markup of the wiki.
    std::string page(sluice::graph::NodeFactory& factory, bool wiki);

private:
    sluice::graph::NodeBase* makeNode(sluice::graph::NodeFactory& factory);

    sluice::graph::SL_GraphScene scene_;
};

/// The type's long main category.
std::string mainCategory(const sluice::graph::NodeFactory& factory);

/// `text` up to its first line break.
std::string firstLine(const std::string& text);

/// The factory of `type`, also by a name of old files. Throws `UsageError`, which names the nearest
/// type.
sluice::graph::NodeFactory& factoryOf(const std::string& type);

} // namespace tidemark::tool

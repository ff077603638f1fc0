// SPDX-License-Identifier: Apache-2.0
// The walk over the node elements of a document.
#include "persistence/node_listing.h"

#include <boost/property_tree/ptree.hpp>

#include "persistence/tree_access.h"
#include "persistence/xml_document.h"

namespace tidemark::sluice::graph {

namespace {

// Documents are not deeper than the limit of their loading.
void listBelow(const PropertyTree& element, const TM_String& prefix, Array<ListedNode>& out) {
    tree::forEachNamed(element, "nodes", "node",
                       [&](const TM_String& name, const PropertyTree& node) {
                           const TM_String& type = tree::childText(node, "type");
                           const bool isRoot = name == "root" && type.empty();
                           const TM_String fullName = isRoot ? name : prefix + "." + name;
                           if (!isRoot) out.append({fullName, type});
                           listBelow(node, fullName, out);
                       });
}

} // namespace

Array<ListedNode> listNodesOfFile(const TM_String& path) {
    Array<ListedNode> nodes;
    PropertyTree document;
    if (loadTree(true, path, document)) return nodes;
    if (const PropertyTree* scene = tree::child(document, "scene")) {
        listBelow(*scene, "root", nodes);
    }
    return nodes;
}

} // namespace tidemark::sluice::graph

// SPDX-License-Identifier: Apache-2.0
// Compounds from files: the type that a path gives, and the trees that a reader places in a graph.
#include "persistence/compound_file.h"

#include <boost/property_tree/ptree.hpp>

#include "bridge/host.h"
#include "persistence/graph_parsing_helper.h"
#include "persistence/tree_access.h"

namespace tidemark::sluice::graph {

RefToPathNodeFactory::RefToPathNodeFactory() : tree_(std::make_unique<PropertyTree>()) {}

RefToPathNodeFactory::RefToPathNodeFactory(const TM_String& path) : RefToPathNodeFactory() {
    RefToPathNodeFactory::initializeFromPath(path);
}

RefToPathNodeFactory::~RefToPathNodeFactory() = default;

void RefToPathNodeFactory::setPropertyTree(const PropertyTree& tree) { *tree_ = tree; }

void RefToPathNodeFactory::initializeFromPath(const TM_String& path) {
    filePath_ = path;
    initialized_ = true;
    const std::size_t library = bridge::host().graphLibraryPath().size();
    const TM_String cut = path.substr(0, path.find('.'));
    TM_String below = cut.size() > library ? cut.substr(library) : TM_String();
    if (!below.empty() && below[0] == '/') below.erase(0, 1);
    NodeDescriptor descriptor;
    descriptor.setBuiltIn(false);
    const std::size_t slash = below.rfind('/');
    if (slash == TM_String::npos) {
        descriptor.setTypeName(below);
        descriptor.setCategoryName("User");
        descriptor.setSingleAllowedCategory("User");
    } else {
        TM_String category = below.substr(0, slash);
        if (!category.empty() && category.back() == '/') category.pop_back();
        for (char& c : category) c = c == '/' ? '.' : c;
        descriptor.setTypeName(below.substr(slash + 1));
        descriptor.setCategoryName(category.substr(0, category.find('.')));
        descriptor.setSingleAllowedCategory(category);
    }
    setDescriptor(descriptor);
}

bool RefToPathNodeFactory::updatePropertyTree() {
    tree_->clear();
    return GraphParsingHelper::XML_fileToPropertyTree(filePath_, *tree_) && !tree_->empty();
}

namespace {

// What the file calls the compound, with its owners, or "root" for one made around the content.
struct Placed {
    PropertyTree element;
    TM_String prefix = "root";
};

Placed compoundOf(const PropertyTree& document, const TM_String& name) {
    Placed placed;
    TM_String nameInFile;
    PropertyTree found;
    if (GraphParsingHelper::hasSingleCompoundAtTop(document, nameInFile, found)) {
        placed.prefix = "root." + nameInFile;
        tree::append(placed.element, "name", name);
        tree::append(placed.element, "type", "Compound"); // files may write it in any case
        for (const auto& [key, child] : found) {
            if (key != "name" && key != "type") placed.element.push_back({key, child});
        }
        return placed;
    }
    tree::append(placed.element, "name", name);
    tree::append(placed.element, "type", "Compound");
    PropertyTree nodes;
    GraphParsingHelper::getNodesLevelSkippingRoot(document, nodes);
    placed.element.push_back({"nodes", nodes});
    return placed;
}

} // namespace

void RefToPathNodeFactory::getCleanNodePropertyTree(PropertyTree& tree) const {
    TM_String name;
    PropertyTree found;
    if (GraphParsingHelper::hasSingleCompoundAtTop(*tree_, name, found)) {
        tree = found;
        return;
    }
    tree.clear();
    tree.push_back({"node", compoundOf(*tree_, getDescriptor().getTypeName()).element});
}

void RefToPathNodeFactory::getCleanPropertyTree(const TM_String& name, const TM_String& fullName,
                                                PropertyTree& nodeTree,
                                                PropertyTree& connectionsTree,
                                                PropertyTree& layoutTree) const {
    const Placed placed = compoundOf(*tree_, name);
    nodeTree.clear();
    PropertyTree& nodes = tree::append(tree::append(nodeTree, "scene"), "nodes");
    nodes.push_back({"node", placed.element});

    connectionsTree.clear();
    PropertyTree& scene = tree::append(connectionsTree, "scene");
    const PropertyTree* own = tree::child(*tree_, "scene");
    const PropertyTree* connections = own ? tree::child(*own, "connections") : nullptr;
    PropertyTree& list = tree::append(scene, "connections");
    if (connections) list = *connections;
    GraphParsingHelper::replaceConnectionPrefixTextInPtree(list, placed.prefix, fullName);

    GraphLayout layout;
    GraphParsingHelper::readLayout_XML(*tree_, layout);
    layout.replacePrefixInNames(placed.prefix, fullName);
    layout.removeNode(fullName);
    layoutTree.clear();
    GraphParsingHelper::writeLayoutBasic_toBoostPropertyTree(tree::append(layoutTree, "scene"),
                                                             layout);
}

} // namespace tidemark::sluice::graph

// SPDX-License-Identifier: Apache-2.0
// Documents, scenes with layouts, and the tools on trees.
#include "persistence/graph_parsing_helper.h"

#include <boost/property_tree/ptree.hpp>

#include "persistence/scene_files.h"
#include "persistence/tree_access.h"
#include "persistence/xml_document.h"

namespace tidemark::sluice::graph {

void (*GraphParsingHelper::readProgress_)(const char*, uint64_t, uint64_t) = nullptr;

// Documents.

bool GraphParsingHelper::XML_toPropertyTree(bool isFile, const TM_String& pathOrText,
                                            PropertyTree& tree) {
    const Optional<XmlProblem> problem = loadTree(isFile, pathOrText, tree);
    if (problem) reportXmlProblem(isFile ? pathOrText : TM_String(), *problem);
    return !problem;
}

bool GraphParsingHelper::XML_fileToPropertyTree(const TM_String& path, PropertyTree& tree) {
    return XML_toPropertyTree(true, path, tree);
}

bool GraphParsingHelper::XML_stringToPropertyTree(const TM_String& text, PropertyTree& tree) {
    return XML_toPropertyTree(false, text, tree);
}

bool GraphParsingHelper::XML_stringToPropertyTreeNoError(const TM_String& text,
                                                         PropertyTree& tree) {
    return !loadTree(false, text, tree);
}

unsigned GraphParsingHelper::getMaximumDepth() { return maximumXmlDepth(); }
void GraphParsingHelper::setMaximumDepth(unsigned levels) { setMaximumXmlDepth(levels); }

// Scenes.

bool GraphParsingHelper::read_XML_base_static(const PropertyTree& document, SL_GraphScene& scene,
                                              GraphLayout& layout) {
    const bool isRead = scene.readNodes_fromBoostPropertyTree(document, nullptr, true);
    scene.readConnections_fromBoostPropertyTree(document);
    readLayoutOf(document, scene, layout);
    return isRead;
}

bool GraphParsingHelper::read_XML_base_static(bool isFile, const TM_String& pathOrText,
                                              SL_GraphScene& scene, GraphLayout& layout) {
    return readScene(isFile, pathOrText, scene, &layout);
}

bool GraphParsingHelper::write_XML_base_static(bool isFile, const TM_String& path,
                                               const SL_GraphScene& scene,
                                               const GraphLayout& layout, TM_String& out) {
    return writeScene(isFile, path, scene, &layout, out);
}

// Tools on trees.

namespace {

bool isRootElement(const PropertyTree& node) {
    return tree::childText(node, "name") == "root" && tree::childText(node, "type").empty();
}

const PropertyTree* sceneNodes(const PropertyTree& document) {
    const PropertyTree* scene = tree::child(document, "scene");
    return scene ? tree::child(*scene, "nodes") : nullptr;
}

// The only "node" of the list; null when there is none or more than one.
const PropertyTree* singleNode(const PropertyTree* list) {
    const PropertyTree* single = nullptr;
    int count = 0;
    if (list) {
        tree::forEach(*list, "node", [&](const PropertyTree& node) {
            single = &node;
            ++count;
        });
    }
    return count == 1 ? single : nullptr;
}

template <typename Replace>
void forEachConnectionEnd(PropertyTree& tree, const Replace& replace) {
    for (auto& [name, element] : tree) {
        if (name != "connection") {
            forEachConnectionEnd(element, replace);
            continue;
        }
        for (auto& [endName, end] : element) {
            if (endName == "source" || endName == "target") replace(end.data());
        }
    }
}

} // namespace

bool GraphParsingHelper::getNodesLevelSkippingRoot(const PropertyTree& document,
                                                   PropertyTree& out) {
    const PropertyTree* nodes = sceneNodes(document);
    const PropertyTree* first = nodes ? tree::child(*nodes, "node") : nullptr;
    if (!first) return false;
    const PropertyTree* level = isRootElement(*first) ? tree::child(*first, "nodes") : nodes;
    if (level) out = *level;
    return level != nullptr;
}

bool GraphParsingHelper::hasSingleCompoundAtTop(const PropertyTree& document, TM_String& name,
                                                PropertyTree& out) {
    const PropertyTree* node = singleNode(sceneNodes(document));
    if (node && tree::childText(*node, "type").empty()) {
        node = singleNode(tree::child(*node, "nodes"));
    }
    if (!node || text::toLower(tree::childText(*node, "type")) != "compound") return false;
    name = tree::childText(*node, "name");
    out = *node;
    return true;
}

void GraphParsingHelper::replaceConnectionTextInPtree(PropertyTree& tree, const TM_String& before,
                                                      const TM_String& after) {
    forEachConnectionEnd(tree, [&](TM_String& end) { end = text::replaceAll(end, before, after); });
}

void GraphParsingHelper::replaceConnectionPrefixTextInPtree(PropertyTree& tree,
                                                            const TM_String& before,
                                                            const TM_String& after) {
    forEachConnectionEnd(tree, [&](TM_String& end) {
        if (end.compare(0, before.size(), before) == 0) end.replace(0, before.size(), after);
    });
}

} // namespace tidemark::sluice::graph

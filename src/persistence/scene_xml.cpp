// SPDX-License-Identifier: Apache-2.0
// The scene's operations on files, texts and property trees.
#include <boost/property_tree/ptree.hpp>
#include <unordered_set>

#include "graph/graph_scene.h"
#include "persistence/scene_files.h"
#include "persistence/scene_reader.h"
#include "persistence/xml_document.h"

namespace tidemark::sluice::graph {

// Writing.

bool SL_GraphScene::write_XML(const TM_String& path) {
    TM_String unused;
    return write_XML_base(true, path, unused);
}

bool SL_GraphScene::write_XML_toString(TM_String& out) { return write_XML_base(false, {}, out); }

bool SL_GraphScene::write_XML_base(bool toFile, const TM_String& path, TM_String& out) {
    return writeScene(toFile, path, *this, nullptr, out);
}

void SL_GraphScene::write_toBoostPropertyTree(PropertyTree& tree) const {
    writeNodes_toBoostPropertyTree(tree);
    writeConnections_toBoostPropertyTree(tree);
}

void SL_GraphScene::write_toBoostPropertyTree(PropertyTree& tree, const NodeBase* parent,
                                              const ArrayOfPtr<GraphNodeBase>& nodes) const {
    writeNodes_toBoostPropertyTree(tree, parent, nodes);
    writeConnections_toBoostPropertyTree(tree, parent, nodes);
}

void SL_GraphScene::writeNodes_toBoostPropertyTree(PropertyTree& tree) const {
    PropertyTree& list = tree.push_back({"nodes", PropertyTree()})->second;
    static_cast<const NodeBase*>(getRootNode())->write_toBoostPropertyTree(list);
}

void SL_GraphScene::writeNodes_toBoostPropertyTree(PropertyTree& tree, const NodeBase* parent,
                                                   const ArrayOfPtr<GraphNodeBase>& nodes) const {
    PropertyTree& list = tree.push_back({"nodes", PropertyTree()})->second;
    const std::unordered_set<const GraphNodeBase*> wanted(nodes.begin(), nodes.end());
    for (const GraphNodeBase* child : parent->children()) {
        if (wanted.count(child) == 0) continue;
        static_cast<const NodeBase*>(child)->write_toBoostPropertyTree(list);
    }
}

namespace {

void appendConnection(PropertyTree& list, const TM_String& source, const TM_String& target) {
    PropertyTree& connection = list.push_back({"connection", PropertyTree()})->second;
    connection.push_back({"source", PropertyTree(source)});
    connection.push_back({"target", PropertyTree(target)});
}

} // namespace

void SL_GraphScene::writeConnections_toBoostPropertyTree(PropertyTree& tree) const {
    PropertyTree& list = tree.push_back({"connections", PropertyTree()})->second;
    for (const GraphConnection* connection : connections()) {
        appendConnection(list, connection->getSourcePin()->getFullName(),
                         connection->getTargetPin()->getFullName());
    }
}

void SL_GraphScene::writeConnections_toBoostPropertyTree(
    PropertyTree& tree, const NodeBase* parent, const ArrayOfPtr<GraphNodeBase>& nodes) const {
    PropertyTree& list = tree.push_back({"connections", PropertyTree()})->second;
    const TM_String above = parent->getFullName();
    Connections inside;
    getConnectionsInvolvingOnlyNodes(nodes, inside);
    for (const GraphConnection* connection : inside) {
        appendConnection(list, relativeName(connection->getSourcePin()->getFullName(), above),
                         relativeName(connection->getTargetPin()->getFullName(), above));
    }
}

// Reading.

bool SL_GraphScene::read_XML(const TM_String& path) { return read_XML_base(true, path); }
bool SL_GraphScene::read_XML_fromString(const TM_String& text) {
    return read_XML_base(false, text);
}

bool SL_GraphScene::read_XML_base(bool isFile, const TM_String& pathOrText) {
    return readScene(isFile, pathOrText, *this, nullptr);
}

bool SL_GraphScene::read_fromBoostPropertyTree(const PropertyTree& tree) {
    return read_fromBoostPropertyTree(tree, nullptr);
}

bool SL_GraphScene::read_fromBoostPropertyTree(const PropertyTree& tree, NodeBase* parent) {
    const bool isRead = readNodes_fromBoostPropertyTree(tree, parent, true);
    readConnections_fromBoostPropertyTree(tree);
    return isRead;
}

Optional<NodeBase*> SL_GraphScene::readNode_fromBoostPropertyTree(const PropertyTree& tree,
                                                                  const TM_String& prefix,
                                                                  NodeBase* parent) {
    SceneReader reader(*this);
    return reader.readNode(tree, prefix, parent);
}

bool SL_GraphScene::readNodes_fromBoostPropertyTree(const PropertyTree& tree, NodeBase* parent,
                                                    bool clear) {
    SceneReader reader(*this);
    const bool isRead = reader.readNodes(tree, parent, clear);
    if (reader.problem()) reportXmlProblem({}, *reader.problem());
    return isRead;
}

bool SL_GraphScene::readConnections_fromBoostPropertyTree(const PropertyTree& tree) {
    SceneReader reader(*this);
    return reader.readConnections(tree);
}

} // namespace tidemark::sluice::graph

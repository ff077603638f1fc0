// SPDX-License-Identifier: Apache-2.0
// Writing of scenes: the elements of one node are a tree only until they are text.
#include "persistence/scene_writer.h"

#include <boost/property_tree/ptree.hpp>
#include <vector>

#include "persistence/file_save.h"
#include "persistence/graph_parsing_helper.h"

namespace tidemark::sluice::graph {

Optional<XmlProblem> SceneWriter::toFile(const TM_String& path) {
    FileSave save(path);
    const auto toFile = [&](std::string_view piece) { return save.write(piece); };
    if (save.reason().empty()) {
        if (Optional<XmlProblem> problem = write(toFile)) return problem;
    }
    if (save.commit()) return {};
    return XmlProblem{save.reason(), 0};
}

Optional<XmlProblem> SceneWriter::toText(TM_String& out) {
    out.clear();
    Optional<XmlProblem> problem = write([&](std::string_view piece) {
        out.append(piece);
        return true;
    });
    if (problem) out.clear();
    return problem;
}

Optional<XmlProblem> SceneWriter::write(const XmlWriter::Sink& sink) {
    if (isTooDeep()) {
        return XmlProblem{"cannot be written: compounds are nested deeper than can be read", 0};
    }
    XmlWriter writer(sink);
    writer.open("scene");
    writer.open("nodes");
    writeNode(writer, *static_cast<const NodeBase*>(scene_.getRootNode()));
    writer.close();
    writeConnections(writer);
    if (layout_) {
        PropertyTree tree;
        GraphParsingHelper::writeLayout_toBoostPropertyTree(tree, scene_, *layout_);
        writeTree(writer, tree);
    }
    writer.close();
    // What the sink refused, the sink's owner knows.
    writer.finish();
    return problem_;
}

// An element of a node at depth d below the root lies at level 3 + 2 d, and 4 levels may follow.
bool SceneWriter::isTooDeep() const {
    const unsigned deepest = (maximumXmlDepth() - std::min(maximumXmlDepth(), 7u)) / 2;
    struct Place {
        const GraphNodeBase* node;
        unsigned depth;
    };
    std::vector<Place> compounds{{scene_.getRootNode(), 0}};
    while (!compounds.empty()) {
        const Place place = compounds.back();
        compounds.pop_back();
        if (place.depth > deepest) return true;
        for (const GraphNodeBase* child : place.node->children()) {
            if (child->isCompound()) compounds.push_back({child, place.depth + 1});
        }
    }
    return false;
}

void SceneWriter::writeTree(XmlWriter& writer, const PropertyTree& tree) {
    writer.children(tree);
    if (!writer.hasBadText() || problem_) return;
    problem_ = XmlProblem{"cannot be written: " + findBadText(tree) + " is not UTF-8", 0};
}

void SceneWriter::writeNode(XmlWriter& writer, const NodeBase& node) {
    if (writer.hasFailed()) return;
    PropertyTree tree;
    node.write_toBoostPropertyTree(tree, {}, true);
    PropertyTree& element = tree.front().second;
    if (element.empty() || element.back().first != "nodes") return writeTree(writer, tree);
    element.pop_back();
    writer.open("node");
    writeTree(writer, element);
    writer.open("nodes");
    for (const GraphNodeBase* child : node.children()) {
        writeNode(writer, *static_cast<const NodeBase*>(child));
    }
    writer.close();
    writer.close();
}

void SceneWriter::writeConnections(XmlWriter& writer) const {
    writer.open("connections");
    for (const GraphConnection* connection : scene_.connections()) {
        writer.open("connection");
        writer.leaf("source", connection->getSourcePin()->getFullName());
        writer.leaf("target", connection->getTargetPin()->getFullName());
        writer.close();
    }
    writer.close();
}

} // namespace tidemark::sluice::graph

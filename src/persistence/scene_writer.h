// SPDX-License-Identifier: Apache-2.0
// Writes a whole scene as a document, a node at a time.
#pragma once

#include "graph/graph_scene.h"
#include "persistence/xml_document.h"
#include "persistence/xml_writer.h"

namespace tidemark::sluice::graph {

class SceneWriter {
public:
    /// `layout` may be null: then the document has none.
    SceneWriter(const SL_GraphScene& scene, const GraphLayout* layout)
        : scene_(scene), layout_(layout) {}

    // Give the problem when the scene could not be written. A file that was there before is then
    // untouched, a text empty.

    Optional<XmlProblem> toFile(const TM_String& path);
    Optional<XmlProblem> toText(TM_String& out);

private:
    Optional<XmlProblem> write(const XmlWriter::Sink& sink);
    void writeNode(XmlWriter& writer, const NodeBase& node);
    void writeConnections(XmlWriter& writer) const;
    void writeTree(XmlWriter& writer, const PropertyTree& tree);
    bool isTooDeep() const;

    const SL_GraphScene& scene_;
    const GraphLayout* layout_;
    Optional<XmlProblem> problem_;
};

} // namespace tidemark::sluice::graph

// SPDX-License-Identifier: Apache-2.0
// Makes nodes and connections from elements: the steps behind the scene's reading operations, from
// a property tree or, a piece at a time, from a packed document.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "graph/graph_scene.h"
#include "persistence/packed_xml.h"
#include "persistence/xml_document.h"

namespace tidemark::sluice::graph {

class RefToPathNodeFactory;

/// Serves one reading. Failures are reported to the host and skipped, as the scene's operations
/// say.
class SceneReader {
public:
    explicit SceneReader(SL_GraphScene& scene) : scene_(scene) {}

    /// The file that the document comes from: it may not include itself.
    void setFile(const TM_String& path);

    // From a tree. False when the element with the list is missing, or when the reading was ended.

    Optional<NodeBase*> readNode(const PropertyTree& tree, const TM_String& prefix,
                                 NodeBase* parent);
    bool readNodes(const PropertyTree& document, NodeBase* parent, bool clear);
    bool readConnections(const PropertyTree& document);

    // From a packed document. At no time more than a piece of it is a tree. Nodes come first.

    bool readNodes(const PackedXml& document, bool clear);
    bool readConnections(const PackedXml& document);

    /// Why the reading was ended before its end: the limit on nodes. Without value otherwise, also
    /// after an interrupt.
    const Optional<XmlProblem>& problem() const { return problem_; }
    bool isEnded() const { return ended_; }

private:
    /// A node whose children are to be read.
    struct Begun {
        NodeBase* node;
        TM_String fullName; ///< as the file gives it
    };

    Optional<Begun> beginNode(const PropertyTree& tree, const TM_String& prefix, NodeBase* parent);
    NodeBase* makeNode(const PropertyTree& tree, const TM_String& type, const Begun& begun,
                       const TM_String& prefix, NodeBase* parent);
    NodeBase* makeBuiltIn(const PropertyTree& tree, NodeBase* node, NodeBase* parent);
    NodeBase* makeReference(RefToPathNodeFactory& factory, const TM_String& name,
                            const Begun& begun, const TM_String& prefix, NodeBase* parent);
    bool mayOpen(const RefToPathNodeFactory& factory, const TM_String& fullName);
    bool isTooDeep(const TM_String& fullName, const NodeBase* parent);
    void endNode(NodeBase* node, bool hadChildren);
    bool isRefused(const TM_String& lowerType, bool atRoot, const TM_String& fullName,
                   const TM_String& type);
    void clearImported();

    void readChildren(const PackedXml& document, const PackedXml::Range& list,
                      const TM_String& prefix, NodeBase* parent);
    void readBigNode(const PackedXml& document, const PackedXml::BigNode& element,
                     const TM_String& prefix, NodeBase* parent);
    template <typename Step>
    void forEachPiece(const PackedXml& document, const PackedXml::Range& list, Step step);
    bool parsePiece(std::string_view text, PropertyTree& tree);

    void readConnection(const PropertyTree& tree);
    void postWithFile(int id, Array<TM_String> arguments);
    void reportUnknownType(const TM_String& type, const TM_String& fullName);
    void reportMissingPin(const TM_String& fullPinName);
    TM_String nearestPinName(const TM_String& fullPinName) const;
    bool mayMakeNode();
    bool shouldStop();
    void advance(std::size_t bytes);

    SL_GraphScene& scene_;
    XmlTreeParser parser_;
    const char* stage_ = ""; // of the progress that is told
    std::size_t done_ = 0;
    std::size_t total_ = 0;
    uint64_t nodesMade_ = 0;
    unsigned suggestions_ = 0;
    TM_String documentFile_;           // canonical; empty for a text
    std::vector<TM_String> openFiles_; // canonical paths of the compound files being read
    std::vector<TM_String> filePaths_; // the same as their factories name them
    uint64_t nodesOfFiles_ = 0;        // made while a compound file was read
    std::unordered_set<const RefToPathNodeFactory*> upToDate_; // read from disk by this reader
    bool ended_ = false;
    Optional<XmlProblem> problem_;
    std::unordered_map<TM_String, TM_String> nearestTypes_;
};

} // namespace tidemark::sluice::graph

// SPDX-License-Identifier: Apache-2.0
// Node types that are files: a compound that users keep by itself and place in any graph.
#pragma once

#include <memory>

#include "graph/node_factory.h"
#include "graph/property_tree_fwd.h"

namespace tidemark::sluice::graph {

/// A type whose nodes are read from a graph file, as if the file's content stood in the document
/// that names the type. Registered with `SceneManager::registerNodeFactory` by whoever knows the
/// files; nothing here looks for them.
class SLUICE_API RefToPathNodeFactory : public NodeFactory {
public:
    RefToPathNodeFactory();
    /// As `initializeFromPath`.
    explicit RefToPathNodeFactory(const TM_String& path);
    ~RefToPathNodeFactory() override;

    /// Null: the reader asks for trees instead.
    NodeBase* createNode() override { return nullptr; }

    // Virtual operations, in the order that derived classes rely on.

    /// Takes type and category from the path up to its first point: below the host's graph library
    /// path the folders are the category and the last part is the type; without folders the
    /// category is "User". Where the library's own path holds points, give the path below it here
    /// and the file's with `setFilePath`.
    virtual void initializeFromPath(const TM_String& path);
    /// Reads the file anew. False, with a report to the host, when it cannot be read or is empty.
    virtual bool updatePropertyTree();
    /// The element of the file's only compound, or of a compound made around what the file holds.
    virtual void getCleanNodePropertyTree(PropertyTree& tree) const;
    /// Documents with the compound under `name`, with the file's connections, and with its layout,
    /// all as if the compound stood at `fullName`. An unreadable file gives an empty compound.
    virtual void getCleanPropertyTree(const TM_String& name, const TM_String& fullName,
                                      PropertyTree& nodeTree, PropertyTree& connectionsTree,
                                      PropertyTree& layoutTree) const;
    /// As `createNode`.
    virtual NodeBase* getNode() { return createNode(); }

    const TM_String& getFilePath() const { return filePath_; }
    void setFilePath(const TM_String& path) { filePath_ = path; }
    /// True once a path was taken over.
    bool getInitialized() const { return initialized_; }
    void setInitialized(bool initialized) { initialized_ = initialized; }
    /// The file's document.
    void setPropertyTree(const PropertyTree& tree);

private:
    TM_String filePath_;
    bool initialized_ = false;
    std::unique_ptr<PropertyTree> tree_;
};

} // namespace tidemark::sluice::graph

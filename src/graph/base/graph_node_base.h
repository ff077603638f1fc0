// SPDX-License-Identifier: Apache-2.0
// A node of the editable graph: its pins, its place in the tree of a scene, its texts.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "core/array.h"
#include "core/export.h"
#include "core/message_handler.h"
#include "core/name_index.h"
#include "core/text.h"
#include "graph/base/graph_connection.h"
#include "graph/base/graph_flags.h"
#include "graph/base/tm_class.h"

namespace tidemark::graph {

class GraphNodePin;
class GraphScene;

/// A node. Scenes own the nodes that were added to them; a node owns neither its pins nor its
/// children, whose removal goes through the scene. Nodes form a tree below the scene's root node.
///
/// Lists handed out by reference parameters are appended to. The base knows no values: what
/// concerns them answers no or does nothing, and is overridden where values live.
class SLUICE_API GraphNodeBase : public TM_Class {
public:
    using Pins = ArrayOfPtr<GraphNodePin>;
    using Nodes = ArrayOfPtr<GraphNodeBase>;
    using Connections = ArrayOfPtr<GraphConnection>;

    GraphNodeBase();
    /// The copy shares the pins and names the same scene, owner and children without standing in
    /// their lists: a template of values, never to be added to a scene.
    GraphNodeBase(const GraphNodeBase& other);
    GraphNodeBase& operator=(const GraphNodeBase&) = delete;
    ~GraphNodeBase() override;

    /// Same id in the same scene.
    virtual bool operator==(const GraphNodeBase& other) const;
    /// The node belongs to a scene.
    virtual bool isValid() const { return scene_ != nullptr; }
    virtual bool isCompound() const { return compound_; }
    virtual bool isEvaluator() const { return false; }
    /// A view may draw the node as a mere point of its connections: what `isPassThrough` says.
    virtual bool isDrawnAsPoint() const { return isPassThrough(); }
    /// A view may draw the node as a comment.
    virtual bool isComment() const { return false; }
    virtual bool isPassThrough() const { return false; }
    /// The content of the node comes from elsewhere and may not be edited here.
    virtual bool isLocked() const { return false; }
    virtual void setCompound(bool compound) { compound_ = compound; }
    /// An interface node that brings something into its compound: it has output pins.
    virtual bool isInputInterface() const;
    /// An interface node that takes something out of its compound: it has input pins.
    virtual bool isOutputInterface() const;
    virtual bool isInterface() const { return interface_; }
    virtual void setInterface(bool interface) { interface_ = interface; }
    virtual bool isSameNodeAs(const GraphNodeBase* node) const;
    virtual bool isIterator() const { return false; }

    virtual bool hasPin(const GraphNodePin* pin) const;
    /// The pins that have one of the directions, in the order of the node's list.
    virtual void getPins(const PinFlags& flags, Pins& pins) const;
    virtual void getInputPins(Pins& pins) const;
    virtual void getOutputPins(Pins& pins) const;
    virtual bool hasInputPins() const;
    virtual bool hasOutputPins() const;
    /// The first pin of that name, input or output; null when there is none.
    virtual GraphNodePin* getPinByName(const TM_String& name) const;

    // Whether some pin of this node accepts a connection from the pin, or from some pin of the
    // node; the forms with a list give all pins of this node that do. False for null.
    virtual bool allowsConnectionFrom(const GraphNodePin* pin) const;
    virtual bool allowsConnectionFrom(const GraphNodePin* pin, Pins& accepting) const;
    virtual bool allowsConnectionFrom(const GraphNodeBase* node) const;
    virtual bool allowsConnectionFrom(const GraphNodeBase* node, Pins& accepting) const;
    // The same with connections that start at this node.
    virtual bool allowsConnectionTo(const GraphNodePin* pin) const;
    virtual bool allowsConnectionTo(const GraphNodePin* pin, Pins& accepting) const;
    virtual bool allowsConnectionTo(const GraphNodeBase* node) const;
    virtual bool allowsConnectionTo(const GraphNodeBase* node, Pins& accepting) const;

    /// The owner's full name, a point, the own name; without owner the own name.
    virtual TM_String getFullName() const;
    virtual const TM_String& getName() const { return name_; }
    /// Stores the name and nothing more: it may be taken.
    virtual void setName(const TM_String& name) { storeName(name); }
    virtual unsigned getId() const { return id_; }
    /// Only while the node is in no scene's map.
    virtual void setId(unsigned id) { id_ = id; }
    virtual GraphScene* getGraphScene() const { return scene_; }
    virtual void setGraphScene(GraphScene* scene) { scene_ = scene; }
    /// Null for the root, and for a node that stands nowhere yet.
    virtual GraphNodeBase* getNodeOwner() const { return owner_; }
    /// Moves the node to the end of the owner's children; null takes it out of the tree. Does
    /// nothing when `owner` is this node or lies below it.
    virtual void setNodeOwner(GraphNodeBase* owner);
    /// The root node of its scene.
    virtual bool isRoot() const;
    /// `node` is the owner or, when `recursive`, some owner above.
    virtual bool isOwnedByNode(const GraphNodeBase* node, bool recursive) const;

    virtual bool isUpdating() const { return false; }
    virtual void update() {}
    virtual void update_notCleaning() {}

    /// `node->setNodeOwner(this)`.
    virtual void addNode(GraphNodeBase* node);
    /// Takes a child out of the tree without deleting it; false when it is no child of this node.
    virtual bool removeNode(GraphNodeBase* node);
    /// The first child of that name, or, when `recursive` and there is none, the first node below
    /// in preorder; null when there is none.
    virtual GraphNodeBase* getNodeByName(const TM_String& name, bool recursive) const;
    /// Forgets the children, which keep their owner.
    virtual void clearNodesArray();
    /// All nodes below, each before its own children.
    virtual void getNodesRecursively(Nodes& nodes) const;
    /// The children that are compounds.
    virtual void getCompoundNodes(Nodes& nodes) const;
    virtual bool dynamicPinsAllowed() const { return false; }
    /// `name` when no child but `node` (which may be null) bears it, otherwise the first free one
    /// of name_01, name_02, ...
    virtual TM_String getFreeNodeNameLikeThis(const TM_String& name,
                                              const GraphNodeBase* node) const;
    /// `name` when no pin bears it, otherwise the first free one of name1, name2, ...
    virtual TM_String getFreePinNameLikeThis(const TM_String& name) const;
    virtual void getNotConnectedPins(Pins& pins) const;
    virtual void getConnectedPins(Pins& pins) const;
    virtual bool hasPinWithName(const TM_String& name) const;
    /// Some input pin is editable.
    virtual bool isEditable() const;
    virtual TM_String getInfo() const { return TM_String(); }
    virtual TM_String getDescription() const;
    virtual void setDescription(const TM_String& description);
    virtual TM_String asHTML() const { return TM_String(); }
    /// A view leaves the node out, or draws it marked.
    virtual bool isHidden() const { return false; }
    virtual bool isHighlighted() const { return false; }

    virtual bool hasErrors() const;
    virtual bool hasWarnings() const;
    virtual bool hasMessages() const;
    virtual const MessageHandler& getMessages() const;
    virtual void getMessages(Array<Message>& messages) const;
    virtual MessageHandler& refMessages();
    virtual void clearMessages();
    virtual void getMessagesAsStrings(Array<TM_String>& messages) const;

    /// For each input pin, one connection per internal connection, from the input to its other end.
    virtual void getInternalConnections(Array<GraphConnection>& connections) const;
    virtual void getInternalConnectionsForPainting(Array<GraphConnection>& connections) const;

    virtual const TM_String& getType() const { return *type_; }
    virtual void setType(const TM_String& type);

    // List operations: they keep the lists and nothing else.
    virtual void addPinToList(GraphNodePin* pin);
    virtual bool removePinFromList(GraphNodePin* pin);
    virtual void setNodeOwnerBase(GraphNodeBase* owner) { owner_ = owner; }
    virtual void addNodeToNodesList(GraphNodeBase* node);
    virtual bool removeNodeFromNodesList(GraphNodeBase* node);

    /// Appends the pin to the list.
    virtual void addNodePin(GraphNodePin* pin);
    /// A new pin with the next free name "in" or "out", entered in the scene; null without scene.
    virtual GraphNodePin* addDynamicInputPin();
    virtual GraphNodePin* addDynamicOutputPin();
    /// Takes the pin out of the list without deleting it; false when it is not there.
    virtual bool removeNodePin(GraphNodePin* pin);
    /// Takes all pins out of scene and node and deletes them.
    virtual void destroyNodePins();
    /// Puts the input (output) pins in the order of `names`, pins not named behind the others.
    virtual void reorderInputPins(const Array<TM_String>& names);
    virtual void reorderOutputPins(const Array<TM_String>& names);

    /// In the order of the pins.
    virtual void getConnections(Connections& connections) const;
    virtual void getConnectionsWithNode(const GraphNodeBase* node, Connections& connections) const;
    virtual bool hasConnectionsWithNode(const GraphNodeBase* node) const;
    /// A description for tools of an editor; empty in the base.
    virtual TM_String toXml() const { return TM_String(); }

    const Pins& pins() const { return pins_; }
    const Nodes& children() const { return children_; }

    const TM_String& getCategory() const { return *category_; }
    void setCategory(const TM_String& category);

    /// The first child, or pin, of that name, whatever the length of the list at about the same
    /// cost; null when there is none.
    GraphNodeBase* findChild(std::string_view name) const;
    GraphNodePin* findPin(std::string_view name) const;

protected:
    /// Called by the scene when the node has left its maps and its owner's list, before it is
    /// deleted. The owner can still be asked for.
    virtual void onRemovingFromScene() {}

    /// Stores the name, and tells the owner that finds its children by it.
    void storeName(const TM_String& name);

private:
    friend class GraphNodePin;
    friend class GraphScene;

    struct ChildTraits {
        static std::string_view name(const GraphNodeBase& node) { return node.name_; }
        static uint32_t order(const GraphNodeBase& node) { return node.order_; }
    };
    struct PinTraits {
        static std::string_view name(const GraphNodePin& pin);
        static uint32_t order(const GraphNodePin& pin);
    };

    void renamePin(GraphNodePin* pin, const TM_String& name);
    void reorderPins(const Array<TM_String>& names, const PinFlags& flags);
    GraphNodePin* addDynamicPin(const PinFlags& flags);

    Pins pins_;
    unsigned id_ = 0;
    uint32_t order_ = 0; // rises along the owner's list of children
    bool compound_ = false;
    bool interface_ = false;
    GraphScene* scene_ = nullptr;
    GraphNodeBase* owner_ = nullptr;
    Nodes children_;
    TM_String name_;
    const TM_String* type_;                    // interned
    const TM_String* category_;                // interned
    std::unique_ptr<TM_String> description_;   // null when empty
    std::unique_ptr<MessageHandler> messages_; // null until used
    mutable LazyNameIndex<GraphNodeBase, ChildTraits> childrenByName_;
    mutable LazyNameIndex<GraphNodePin, PinTraits> pinsByName_;
};

/// `stem` with a number of two digits at least behind it: "Add_01".
SLUICE_API TM_String numberedNodeName(std::string_view stem, uint64_t number);

} // namespace tidemark::graph

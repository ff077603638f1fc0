// SPDX-License-Identifier: Apache-2.0
// A scene: the owner of the nodes, pins and connections of one editable graph.
#pragma once

#include <map>
#include <memory>

#include "core/array.h"
#include "core/export.h"
#include "core/id_table.h"
#include "core/message_handler.h"
#include "core/text.h"
#include "core/types.h"
#include "graph/base/graph_connection.h"
#include "graph/base/graph_node_base.h"
#include "graph/base/graph_node_pin.h"
#include "graph/base/tm_class.h"

namespace tidemark::graph {

/// One editable graph. It owns its root node, the nodes that were added to it and the connections;
/// pins are deleted by their nodes. Nodes and pins are found by id and by full name, the names from
/// the root down with points between them: "root.Compound_01.Add_01.result". A name that itself
/// holds a point is never found by path.
///
/// Lists handed out by reference parameters are appended to, without repetitions inside one answer.
/// Null arguments are answered by false, null or nothing. A scene is edited by one thread at a
/// time.
class SLUICE_API GraphScene : public TM_Class {
public:
    using Pins = ArrayOfPtr<GraphNodePin>;
    using Nodes = ArrayOfPtr<GraphNodeBase>;
    using Connections = ArrayOfPtr<GraphConnection>;
    using NameMap = std::map<TM_String, TM_String>;
    using NodeCallback = void (*)(GraphScene* scene, GraphNodeBase* owner, GraphNodeBase* node);
    using ConnectionCallback = void (*)(GraphScene* scene, GraphNodeBase* ownerOfSourceNode,
                                        GraphConnection* connection);

    /// Installed by whoever follows changes; null by default. The base fires the ones of
    /// connections.
    static NodeCallback addNodeCallback_;
    static NodeCallback removeNodeCallback_;
    static ConnectionCallback addConnectionCallback_;
    static ConnectionCallback removeConnectionCallback_;

    /// An empty scene with a plain root node named "root" and an id of its own.
    GraphScene();
    GraphScene(const GraphScene&) = delete;
    GraphScene& operator=(const GraphScene&) = delete;
    ~GraphScene() override;

    /// False for a scene that the host does not know of: changes of it are told to nobody.
    virtual bool isTold() const { return true; }

    // --- what is there -------------------------------------------------------------------------

    virtual GraphNodeBase* getNodePtrById(unsigned id) const;
    virtual GraphNodeBase* getNodePtrByFullName(const TM_String& fullName) const;
    virtual bool hasGraphNodeWithId(unsigned id) const;
    /// All compounds of the scene but the root, by rising id.
    virtual void getAllGraphCompounds(Nodes& compounds) const;
    /// The nodes at the other ends of the node's connections.
    virtual void getNodesConnectedWithNode(const GraphNodeBase* node, Nodes& nodes) const;
    /// The same through the pins of the given directions; nodes already in `nodes` are left out.
    virtual void getNodesConnectedBase(const GraphNodeBase* node, const PinFlags& directions,
                                       Nodes& nodes) const;

    // The pins of a node, of several nodes, or of all nodes beside the pin's own, that would accept
    // a connection with `pin`, whichever end it is.
    virtual void getConnectablePins(const GraphNodePin* pin, const GraphNodeBase* node,
                                    Pins& pins) const;
    virtual void getConnectablePins(const GraphNodePin* pin, const Nodes& nodes, Pins& pins) const;
    virtual void getConnectablePins(const GraphNodePin* pin, Pins& pins) const;

    virtual bool isPinFull(const GraphNodePin* pin) const;
    virtual bool hasPinConnections(const GraphNodePin* pin) const;
    virtual bool hasPinConnections(unsigned pinId) const;
    virtual unsigned getPinNumConnections(const GraphNodePin* pin) const;
    virtual unsigned getPinNumConnections(unsigned pinId) const;
    /// The input pins of the evaluator nodes.
    virtual void getEvaluablePins(Pins& pins) const;

    /// Connections of the scene with the same two pins.
    virtual bool hasConnectionsLikeThis(const GraphConnection& connection) const;
    virtual void getConnectionsLikeThis(const GraphConnection& connection,
                                        Connections& connections) const;
    virtual bool areNodesConnected(const GraphNodeBase* a, const GraphNodeBase* b) const;
    virtual void getPinConnections(const GraphNodePin* pin, Connections& connections) const;
    virtual void getPinConnections(unsigned pinId, Connections& connections) const;
    virtual void getNodeConnectionsByPin(const GraphNodeBase* node, const TM_String& pinName,
                                         Connections& connections) const;
    virtual void getNodeConnectionsByPin(unsigned nodeId, const TM_String& pinName,
                                         Connections& connections) const;
    virtual void getConnectionsWithNode(const GraphNodeBase* node, Connections& connections) const;
    virtual void getConnectionsWithNode(unsigned nodeId, Connections& connections) const;
    virtual void getConnectionsBetweenNodes(const GraphNodeBase* a, const GraphNodeBase* b,
                                            Connections& connections) const;
    /// Connections with at least one end at one of the nodes or below, in the scene's order.
    virtual void getConnectionsInvolvingNodes(const Nodes& nodes, Connections& connections) const;
    /// Connections with both ends at the nodes or below, in the scene's order.
    virtual void getConnectionsInvolvingOnlyNodes(const Nodes& nodes,
                                                  Connections& connections) const;

    // Whether `connect` would be allowed; with nodes, between some of their pins.
    virtual bool isConnectionAllowed(const GraphNodePin* source, const GraphNodePin* target) const;
    virtual bool isConnectionAllowed(const GraphNodePin* source, const GraphNodeBase* target) const;
    virtual bool isConnectionAllowed(const GraphNodeBase* source, const GraphNodePin* target) const;
    virtual bool isConnectionAllowed(const GraphNodeBase* source,
                                     const GraphNodeBase* target) const;
    virtual bool isConnectionAllowed(const GraphConnection& connection) const;

    virtual unsigned getGraphType() const { return graphKind_; }

    // --- the scene as a whole ------------------------------------------------------------------

    virtual void run() {}
    /// Removes all connections and all nodes but the root, from the end, and clears the messages.
    virtual void clear();
    virtual void clearMessages();
    /// Gives back memory that can be computed again.
    virtual void purge() {}
    /// Fills the map of node type colours.
    virtual void setupNodeColor() {}
    /// By type name, letter case ignored; opaque black when there is none.
    virtual Color4<float> getColorFromNodeType(const TM_String& type) const;
    virtual Color4<float> getColorFromNodeType(const GraphNodeBase* node) const;
    virtual bool hasColorForNodeType(const TM_String& type) const;
    /// A description for tools of an editor; empty in the base.
    virtual TM_String toXml() const { return TM_String(); }

    // --- nodes ---------------------------------------------------------------------------------

    /// Takes ownership of a node and enters it, and the pins it has, in the maps. An id that is 0
    /// or taken is replaced by a free one. The node's owner is the caller's to set.
    virtual bool addNodeToGraph(GraphNodeBase* node);
    /// Removes the nodes below, then the node's connections, takes it out of maps and tree and
    /// deletes it. False for the root and for a node of another scene.
    virtual bool removeNodeFromGraph(unsigned id);
    virtual bool removeNodeFromGraph(GraphNodeBase* node);
    /// Removes all nodes below, the last first.
    virtual void removeNodesInCompoundFromGraph(GraphNodeBase* compound);

    // New nodes of the four kinds that the scene itself needs, not yet added: the caller owns them.
    virtual GraphNodeBase* createNewCompound();
    virtual GraphNodeBase* createNewInterfaceNode();
    virtual GraphNodeBase* createNewEvaluator();
    virtual GraphNodeBase* createNewPassThrough();

    /// All but the root.
    virtual void removeAllNodes();

    // Move nodes between a compound and its owner. They keep their connections; names are not made
    // unique. The full names of the nodes and of all below them, before and after, go to `renamed`.
    // Nodes that stand elsewhere are left alone; false when nothing was moved.

    /// The siblings of `compound` among `nodes` go into it.
    virtual bool moveNodesToCompound(const Nodes& nodes, GraphNodeBase* compound, NameMap& renamed);
    /// A new interface node in `compound`, added to the scene; null when none can be made.
    virtual GraphNodeBase* addCompoundInterfaceNode(GraphNodeBase* compound);
    /// The children of `compound` among `nodes` go out of it.
    virtual bool removeNodesFromCompound(const Nodes& nodes, GraphNodeBase* compound,
                                         NameMap& renamed);
    /// The same; then each connection that crosses the compound's wall is led through a pin of a
    /// new interface node. A connection for which that is refused stays as it is.
    virtual bool removeNodesFromCompoundCreatingInterfaces(const Nodes& nodes,
                                                           GraphNodeBase* compound,
                                                           NameMap& renamed);

    virtual unsigned getFreeNodeId() const;
    // Names free among the children of `owner` (null: the root), with _01, _02, ... when needed.
    virtual TM_String getFreeNodeName(const GraphNodeBase* owner, const TM_String& name) const;
    /// From "Compound".
    virtual TM_String getFreeNodeCompoundName(const GraphNodeBase* owner) const;
    /// From "InputInterface" or "OutputInterface".
    virtual TM_String getFreeInterfaceNodeName(const GraphNodeBase* owner,
                                               const PinFlags& direction) const;

    // --- pins ----------------------------------------------------------------------------------

    /// A new pin with a free id, entered in node and scene. Without name: the next free one like
    /// "in" or "out".
    virtual GraphNodePin* createNewPin(GraphNodeBase* node, const PinFlags& flags);
    virtual GraphNodePin* createNewPin(GraphNodeBase* node, const PinFlags& flags,
                                       const TM_String& name);
    /// Enters the pin in the map by its id.
    virtual bool addNodePin(GraphNodePin* pin);
    /// Also appends it to the node.
    virtual bool addNodePin(GraphNodeBase* node, GraphNodePin* pin);
    virtual void addNodePins(GraphNodeBase* node, const Pins& pins);
    /// Removes the pin's connections and takes it out of the map; node and pin stay.
    virtual bool removeNodePin(GraphNodePin* pin);
    /// `removeNodePin` for every pin of the node.
    virtual void removeNodePins(GraphNodeBase* node);
    /// Takes it out of the node as well, whose `removeNodePin` decides whether it is deleted.
    virtual bool removeNodePinFromSceneAndNode(GraphNodePin* pin);
    /// Adds a pin of the side `flags` to the compound that owns `interfaceNode`, and its
    /// counterpart, of the other side, to the interface node; the interface pin is named "input" or
    /// "output" after `flags`, or the next free name like it.
    virtual bool addCompoundInterfacePin(const PinFlags& flags, GraphNodeBase* interfaceNode,
                                         GraphNodePin*& interfacePin, GraphNodePin*& compoundPin);
    /// The counterpart of an interface node's pin on the compound, new and linked both ways; null
    /// when the interface node has no owner.
    virtual GraphNodePin* createCompoundPinForInterfacePin(GraphNodePin* interfacePin);
    /// `name` when the node of that full name has no such pin, otherwise the first free one of
    /// name1, name2, ...; `name` when there is no such node.
    virtual TM_String getFreePinName(const TM_String& nodeFullName, const TM_String& name) const;

    // --- connections ---------------------------------------------------------------------------

    /// A new connection, listed in the scene but not in its pins' lists.
    virtual GraphConnection* createGraphConnection(GraphNodePin* source, GraphNodePin* target);

    // Make a connection when `isConnectionAllowed` agrees; null otherwise, or when a pin is
    // unknown. `flag` is kept with the connection. All end in the first form.
    virtual GraphConnection* connect(GraphNodePin* source, GraphNodePin* target, bool flag = false);
    virtual GraphConnection* connect(unsigned sourceId, unsigned targetId, bool flag = false);
    virtual GraphConnection* connect(const TM_String& sourceFullName,
                                     const TM_String& targetFullName, bool flag = false);
    virtual GraphConnection* connect(GraphNodeBase* sourceNode, const TM_String& sourceName,
                                     GraphNodeBase* targetNode, const TM_String& targetName,
                                     bool flag = false);

    // All end in `removeConnection`.
    virtual void removeConnectionsWithNode(GraphNodeBase* node);
    virtual void removeConnectionsWithNode(unsigned nodeId);
    virtual void removeConnectionsWithPin(GraphNodePin* pin);
    virtual void removeConnectionsBetweenNodes(GraphNodeBase* a, GraphNodeBase* b);
    /// Calls the callback, takes the connection out of the list, whose last entry takes its place,
    /// detaches and deletes it. False when it is not listed in this scene.
    virtual bool removeConnection(GraphConnection* connection);
    /// From the end.
    virtual void removeAllConnections();
    /// Makes the connection without asking: lists it, enters it in both pins, calls the callback.
    virtual GraphConnection* connectBase(GraphNodePin* source, GraphNodePin* target);

    // --- access --------------------------------------------------------------------------------

    GraphNodeBase* getRootNode() const { return rootNode_; }
    GraphNodePin* getPinPtrByFullName(const TM_String& fullName) const;
    GraphNodePin* getPinPtrById(unsigned id) const { return pins_.find(id); }
    const MessageHandler& getMessages() const { return messages_; }
    MessageHandler& refMessages() { return messages_; }

    /// By rising id; the root is in neither map nor list.
    const IdTable<GraphNodeBase>& nodesById() const { return nodes_; }
    const IdTable<GraphNodePin>& pinsById() const { return pins_; }
    /// In the order made, but for the holes that removals filled with the last one.
    const Connections& connections() const { return connections_; }

    /// Unique in the process, from 1.
    unsigned getSceneId() const { return sceneId_; }

protected:
    void insertNodeInMapById(unsigned id, GraphNodeBase* node);

    /// Takes ownership of `root`, which may be null, and deletes the root there was with its pins.
    void setRootNode(GraphNodeBase* root);

    /// The first two steps and the last two of removing a connection, for scenes that do more.
    void notifyConnectionRemoved(GraphConnection* connection);
    void destroyConnection(GraphConnection* connection);
    bool isListed(const GraphConnection* connection) const;

    void setColorForNodeType(const TM_String& type, const Color4<float>& color);

    unsigned graphKind_ = 0;
    bool allowsCompounds_ = false;

private:
    class WallCrossing;

    void collectNames(const GraphNodeBase* node, Array<TM_String>& names) const;
    bool moveNodes(const Nodes& nodes, GraphNodeBase* from, GraphNodeBase* to, NameMap& renamed);
    void removeConnectionsOf(const GraphNodePin::Connections& list);

    IdTable<GraphNodeBase> nodes_;
    IdTable<GraphNodePin> pins_;
    Connections connections_;
    GraphNodeBase* rootNode_ = nullptr;
    MessageHandler messages_;
    unsigned sceneId_;
    std::map<TM_String, Color4<float>> nodeTypeColors_; // by lower-cased type name
};

} // namespace tidemark::graph

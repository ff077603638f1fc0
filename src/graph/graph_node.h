// SPDX-License-Identifier: Apache-2.0
// The editable object of one node type. It stands in the tree of a scene, owns its pins, and holds
// a reference to exactly one logic node, which does the computing.
//
// A node is constructed by a factory (name and type only), added (`SL_GraphScene::addNodeToGraph`:
// logic node and pins come to be), owned (`setNodeOwner`: it has its place in the tree), and
// removed (`onRemovingFromScene`, then deleted by the scene).
#pragma once

#include "core/node.h"
#include "graph/base/graph_node_base.h"
#include "graph/pin.h"

namespace tidemark::sluice::graph {

using tidemark::graph::GraphConnection;
using tidemark::graph::Message;
using tidemark::graph::MessageHandler;

class SL_GraphScene;
struct ScenePrivate;

/// Pins in their display order, without a logic node.
class SLUICE_API NodeBase : public GraphNodeBase {
public:
    NodeBase() = default;
    NodeBase(const NodeBase& other) = default;

    bool hasInputPins() const override { return !arrInputPin_.empty(); }
    bool hasOutputPins() const override { return !arrOutputPin_.empty(); }

    /// Appends the logic node's pins.
    virtual void onAddingToScene() {}
    void onRemovingFromScene() override {}
    /// Null without one.
    virtual weft::Node* getCoreNode() const { return nullptr; }
    /// Writes the node; of its children only those of `nodes` when `filtered`.
    virtual void write_toBoostPropertyTree(PropertyTree& tree,
                                           const ArrayOfPtr<GraphNodeBase>& nodes,
                                           bool filtered) const = 0;
    virtual void write_toBoostPropertyTree(PropertyTree& tree) const = 0;
    virtual bool readInputs_fromBoostPropertyTree(const PropertyTree& tree) = 0;
    virtual bool readOutputs_fromBoostPropertyTree(const PropertyTree&) { return true; }
    /// Called by the scene around a run.
    virtual void preUpdate() {}
    virtual void postUpdate() {}
    virtual void setAutoAffects() {}
    virtual int getNumberOfThreads() const { return 0; }

    const Array<Pin*>& getArrInputPin() const { return arrInputPin_; }
    const Array<Pin*>& getArrOutputPin() const { return arrOutputPin_; }
    /// Exact name; null when missing.
    Pin* getInputPinPtrByName(const TM_String& name) const;
    Pin* getOutputPinPtrByName(const TM_String& name) const;

    /// Pin names read from a file, used once after the node's children are read.
    const Array<TM_String>& getInputPinsOrder() const { return order_.get().inputs; }
    Array<TM_String>& refInputPinsOrder() { return order_.ref().inputs; }
    void setInputPinsOrder(const Array<TM_String>& names) { order_.ref().inputs = names; }
    const Array<TM_String>& getOutputPinsOrder() const { return order_.get().outputs; }
    Array<TM_String>& refOutputPinsOrder() { return order_.ref().outputs; }
    void forgetPinsOrder() { order_.reset(); }
    void setOutputPinsOrder(const Array<TM_String>& names) { order_.ref().outputs = names; }

protected:
    Array<Pin*> arrInputPin_;
    Array<Pin*> arrOutputPin_;

private:
    struct PinsOrder {
        Array<TM_String> inputs;
        Array<TM_String> outputs;
    };
    Lazy<PinsOrder> order_;
};

/// Base of every node class.
class SLUICE_API Node : public NodeBase {
public:
    Node() = default;
    /// Copies the pointer to the logic node without a reference: a template of values that must not
    /// outlive its source nor enter a scene.
    Node(const Node& other);
    ~Node() override;

    // The tree and the scene.

    void onAddingToScene() override;
    void onRemovingFromScene() override;
    weft::Node* getCoreNode() const override { return weftNode_; }
    SL_GraphScene* getScene() const;
    ScenePrivate* getScenePrivatePtr() const;
    /// Takes the name that the logic node settles on.
    void setName(const TM_String& name) override;
    void setNodeOwnerBase(GraphNodeBase* owner) override;
    bool isUpdating() const override;
    bool dynamicPinsAllowed() const override;
    TM_String getDescription() const override;
    /// As `asSinglePageConfluenceHTML`.
    TM_String asHTML() const override;

    // Running.

    void update() override;
    void update_notCleaning() override;
    void preUpdate() override;
    void postUpdate() override;
    /// True when `postUpdate` does more than nothing, so that it has to be called.
    virtual bool hasPostUpdate() const { return false; }

    // Pins.

    GraphNodePin* addDynamicInputPin() override;
    GraphNodePin* addDynamicOutputPin() override;
    /// Deletes the pin; a dynamic one with its attribute, an interface node's with the counterpart
    /// on the compound. Always true.
    bool removeNodePin(GraphNodePin* pin) override;
    void destroyNodePins() override;
    void reorderInputPins(const Array<TM_String>& names) override;
    void reorderOutputPins(const Array<TM_String>& names) override;
    Pin* createInputPin(weft::Attribute* attribute);
    Pin* createOutputPin(weft::Attribute* attribute);
    /// Null when the attribute has no pin here.
    Pin* getPinForAttribute(const weft::Attribute* attribute) const;
    void getInternalConnections(Array<GraphConnection>& out) const override;
    void getInternalConnectionsForPainting(Array<GraphConnection>& out) const override;
    /// Makes the internal connections whose names the pins read from a file.
    void applyInternalConnections();

    // Messages: those of the logic node.

    bool hasErrors() const override;
    bool hasWarnings() const override;
    bool hasMessages() const override;
    const MessageHandler& getMessages() const override;
    void getMessages(Array<Message>& out) const override;
    MessageHandler& refMessages() override;
    void clearMessages() override;
    void getMessagesAsStrings(Array<TM_String>& out) const override;

    // Threads.

    /// All ones is stored as 0, inherit.
    void setNumberOfThreads(unsigned threads);
    int getNumberOfThreads() const override;

    // Files: see persistence.

    void write_toBoostPropertyTree(PropertyTree& tree, const ArrayOfPtr<GraphNodeBase>& nodes,
                                   bool filtered) const override;
    void write_toBoostPropertyTree(PropertyTree& tree) const override;
    bool readInputs_fromBoostPropertyTree(const PropertyTree& tree) override;

    /// The node's page of the manual in the markup of the wiki; `expander` as in
    /// `Pin::asConfluenceHTML`.
    virtual TM_String asConfluenceHTML(const bool& expander) const;
    /// The page by itself: images and links that it names relatively lead to the folder and path of
    /// the environment variables SLDOCFOLDER and SLDOCPATH, if these are set.
    virtual TM_String asSinglePageConfluenceHTML() const;
    /// The first paragraph of the description, in markup.
    virtual TM_String firstDescriptionLineForConfluence() const;
    /// Builds the logic node in the scene's network and hands it to `adoptWeftNode`.
    virtual void createWeftNode() = 0;
    /// A new attribute with a free name, "in" or "out" at first, listed as dynamic.
    virtual weft::Attribute* addDynamicInputAttribute();
    virtual weft::Attribute* addDynamicOutputAttribute();
    /// The attribute behind a dynamic pin: a pass-through named "_".
    virtual weft::Attribute* createDynamicAttribute();

protected:
    /// The steps after the logic node was made: its place below the root, its messages, id and
    /// name.
    void adoptWeftNode(weft::Node* node);
    /// Tears the logic node down and releases it; once.
    void destroyWeftNode();
    /// The root's logic node belongs to the scene.
    void borrowWeftNode(weft::Node* node) { weftNode_ = node; }

private:
    Pin* createPin(weft::Attribute* attribute, const PinFlags& flags);
    void destroyPin(Pin* pin);
    void destroyPins(Array<Pin*>& pins);
    weft::Attribute* enterDynamicAttribute(weft::Attribute* attribute, bool isInput);
    void applyInternalConnections(Pin& input);
    void write(PropertyTree& tree, const ArrayOfPtr<GraphNodeBase>* nodes) const;

    weft::Node* weftNode_ = nullptr;
};

/// The root of every scene. Its logic node is the one that the scene owns.
class SLUICE_API Node_Root : public Node {
public:
    explicit Node_Root(weft::Node* logicRoot) { borrowWeftNode(logicRoot); }
    ~Node_Root() override { borrowWeftNode(nullptr); }
    void createWeftNode() override {}
    void onRemovingFromScene() override { borrowWeftNode(nullptr); }
};

} // namespace tidemark::sluice::graph
